#!/usr/bin/env bash
# Installs a build into a temporary prefix, then builds the example host against the installed
# files alone, once with pkg-config and once as a CMake project through find_package, and runs
# both. Arguments: the build folder, the examples' folder, the library folder below the prefix,
# the C++ compiler and its flags (under the sanitizers, theirs), cmake.
set -euo pipefail
build=$1 examples=$2 libdir=$3 cxx=$4 flags=$5 cmake=$6

work=$(mktemp -d "${TMPDIR:-/tmp}/halvorine-example.XXXXXX")
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
export LD_LIBRARY_PATH=$prefix/$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}

# The example must build warning-free against the public headers, as the component does.
flags="$flags -Wall -Wextra -Werror"

echo "-- two_patients through pkg-config"
read -ra compile <<<"$flags"
read -ra package <<<"$(PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig pkg-config --cflags --libs halvorine)"
"$cxx" "${compile[@]}" "$examples/two_patients.cpp" -o "$work/two_patients" "${package[@]}"
"$work/two_patients"

echo "-- two_patients through find_package"
"$cmake" -S "$examples" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
"$cmake" --build "$work/build" >/dev/null
"$work/build/two_patients"
