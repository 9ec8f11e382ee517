#!/bin/sh
# Installs a build, then builds and runs the consumer against it, once with CMake and once with
# pkg-config.
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

cmake -S "$source" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/moved" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$*" >/dev/null
cmake --build "$work/build" >/dev/null
test "$("$work/build/consumer")" = server.port

pc=$(find "$work/moved" -name velmora.pc)
PKG_CONFIG_PATH=$(dirname "$pc")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # the flags are words
"$compiler" -std=c++20 "$@" "$source/main.cpp" -o "$work/with-pkg-config" \
    $(pkg-config --cflags --libs velmora)
test "$("$work/with-pkg-config")" = server.port

test -f "$PKG_CONFIG_PATH/velmora-yaml.pc" || exit 0
test "$("$work/build/consumer-yaml")" = "{'server': {'port': 8080}}"
# shellcheck disable=SC2046
"$compiler" -std=c++20 "$@" "$source/yaml.cpp" -o "$work/yaml-with-pkg-config" \
    $(pkg-config --cflags --libs velmora-yaml)
test "$("$work/yaml-with-pkg-config")" = "{'server': {'port': 8080}}"
