#!/bin/sh
# Installs a build, then builds and runs the consumer against it, once with CMake, whose generator
# CMAKE_GENERATOR names, and once with pkg-config.
#
# Usage: check.sh BUILD_DIRECTORY COMPILER [FLAG...]
set -eu
build=$1 compiler=$2
shift 2
source=$(dirname "$0")
work=$build/consumer
rm -rf "$work"
cmake --install "$build" --prefix "$work/installed" >/dev/null
# A moved tree must work as well.
mv "$work/installed" "$work/moved"

PKG_CONFIG_PATH=$(dirname "$(find "$work/moved" -name velmora.pc)")
export PKG_CONFIG_PATH
test -f "$PKG_CONFIG_PATH/velmora-app.pc" && app=app || app=

cmake -S "$source" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/moved" -DCOMPONENTS="$app" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$*" >/dev/null
cmake --build "$work/build" >/dev/null

# Usage: check SOURCE TARGET PACKAGE OUTPUT [FLAG...]
check() {
    name=$1 target=$2 package=$3 output=$4
    shift 4
    test "$("$work/build/$target")" = "$output"
    # shellcheck disable=SC2046 # the flags are words
    "$compiler" -std=c++20 "$@" "$source/$name" -o "$work/$target" $(pkg-config --cflags --libs "$package")
    test "$(LD_LIBRARY_PATH=$PKG_CONFIG_PATH/.. "$work/$target")" = "$output"
}

check main.cpp consumer velmora server.port "$@"
test -n "$app" || exit 0
check yaml.cpp consumer-yaml velmora-yaml "{'server': {'port': 8080}}" "$@"
check app.cpp consumer-app velmora-app 8080 "$@"
