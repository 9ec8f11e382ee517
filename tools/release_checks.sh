#!/usr/bin/env bash
# What is tried before a release, on Debian 12 and as root, besides .ci/run: other compilers and
# flags, projects that take the library in, and a machine that has nothing installed.
#
# Usage: tools/release_checks.sh [CHECK...]     all of them when none is named
set -euo pipefail
cd "$(dirname "$0")/.."

clang=19 # the newest one that Debian 12 has
build=$PWD/build/release-checks

# Usage: configure NAME [OPTION...]
configure() {
    cmake -G Ninja -S . -B "$build/$1" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
        "${@:2}"
}

# Usage: build_and_test NAME [OPTION...]
build_and_test() {
    configure "$@"
    cmake --build "$build/$1"
    ctest --test-dir "$build/$1" --output-on-failure --no-tests=error
}

# Usage: expect_refusal WORDS COMMAND...
expect_refusal() {
    local words=$1 output
    shift
    if output=$("$@" 2>&1); then
        echo "This should have failed: $*" >&2
        return 1
    fi
    tr -s ' \n' ' ' <<<"$output" | grep -F -- "$words" >/dev/null || {
        echo "$output" >&2
        return 1
    }
}

# The libraries export nothing but what is the library's own, and the instances of the standard
# library's templates that every library has which uses them.
check_shared() {
    build_and_test shared -DBUILD_SHARED_LIBS=ON
    nm -D --defined-only --demangle "$build"/shared/lib*.so | grep -v '^$' |
        grep -vP 'velmora|\.so:$|^\w+ [VWu] (?!.*YAML).*std::' && return 1
    true
}

# The sort of libstdc++ 12 calls what is deprecated, and this Clang says so of the code that sorts.
check_newest_clang() {
    build_and_test clang -DCMAKE_CXX_COMPILER=clang++-$clang -DCMAKE_CXX_FLAGS=-Wno-deprecated-declarations
}

# Debian's GoogleTest is for 64 bits, but comes with its source.
check_32_bits() {
    cmake -G Ninja -S /usr/src/googletest -B "$build/googletest" -DCMAKE_CXX_FLAGS=-m32
    cmake --build "$build/googletest"
    cmake --install "$build/googletest" --prefix "$build/googletest/installed"
    build_and_test 32-bits -DCMAKE_CXX_FLAGS=-m32 -DVELMORA_BUILD_YAML=OFF \
        -DCMAKE_PREFIX_PATH="$build/googletest/installed"
}

check_refusals() {
    local number=velmora/config/number.cpp missing=() package
    expect_refusal 'leave out -ffast-math' g++ -std=c++20 -I. -ffast-math -fsyntax-only $number
    expect_refusal 'leave out -ffast-math' clang++ -std=c++20 -I. -Ofast -fsyntax-only $number
    expect_refusal 'std::from_chars for doubles' clang++-$clang -stdlib=libc++ -std=c++20 -I. -fsyntax-only $number

    for package in yaml-cpp CLI11 GTest benchmark; do missing+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON"); done
    expect_refusal 'yaml-cpp 0.7 is not found' configure refused -DVELMORA_BUILD_YAML=ON "${missing[@]}"
    configure alone -DVELMORA_BUILD_BENCHMARKS=ON "${missing[@]}"
    cmake --build "$build/alone"
    cmake --install "$build/alone" --prefix "$build/alone/installed"
    expect_refusal 'Build it with -DVELMORA_BUILD_YAML=ON' \
        cmake -G Ninja -S tests/consumer -B "$build/refused-consumer" -DCOMPONENTS=yaml \
        -DCMAKE_PREFIX_PATH="$build/alone/installed"
}

# Projects that build the library as a part of theirs.
check_parents() {
    local from
    for from in SUBDIRECTORY FETCHED; do
        cmake -G Ninja -S tests/consumer -B "$build/$from" -DFROM=$from -DVELMORA="$PWD"
        cmake --build "$build/$from"
        "$build/$from/consumer"
        "$build/$from/consumer-yaml"
    done
}

# A machine on which nothing is installed.
check_bare_debian() {
    local root=$build/bare command
    for command in demo test; do
        rm -rf "$root"
        debootstrap --variant=minbase bookworm "$root"
        mkdir "$root/velmora"
        git archive HEAD | tar -x -C "$root/velmora"
        env -i PATH="$PATH" unshare --mount chroot "$root" sh -c \
            "mount -t proc proc /proc && /velmora/dev $command" </dev/null
    done
}

apt-get update
DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
    clang-$clang libclang-rt-$clang-dev libc++-$clang-dev libc++abi-$clang-dev g++-multilib debootstrap binutils
./dev setup
(($# > 0)) || set -- shared newest_clang 32_bits refusals parents bare_debian
for name in "$@"; do
    echo "== $name"
    "check_$name"
done
echo "All of these hold: $*"
