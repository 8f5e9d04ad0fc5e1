#!/usr/bin/env bash
# Installs a build into a temporary prefix, then builds the example hosts against the installed
# files alone, once with pkg-config and once as a CMake project through find_package, and runs
# them. by_name links the platform runtime only and reaches the component through a registry of
# its own, into which the installed halvorine registers the installed library. Arguments: the
# build folder, the examples' folder, the library folder below the prefix, the C++ compiler and
# its flags (under the sanitizers, theirs), cmake.
set -euo pipefail
build=$1 examples=$2 libdir=$3 cxx=$4 flags=$5 cmake=$6

work=$(mktemp -d "${TMPDIR:-/tmp}/halvorine-example.XXXXXX")
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
export LD_LIBRARY_PATH=$prefix/$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
export HALVORINE_REGISTRY=$work/registry.reg

# The examples must build warning-free against the public headers, as the component does.
flags="$flags -Wall -Wextra -Werror"

# Runs by_name on an empty folder: the load must fail for want of a DICOMDIR there, through an
# error record whose source is the registered name. Then it loads the sample disc, with the
# installed data files beside it as a host keeps them.
check_by_name() {
  local host=$1
  if readelf -d "$host" | grep -q 'NEEDED.*libdicomdir'; then
    echo "by_name links the component" >&2
    return 1
  fi
  mkdir -p "$work/empty"
  local status=0
  "$host" "$work/empty" >"$work/by_name.out" || status=$?
  cat "$work/by_name.out"
  local failure="^by_name: <exception Message=\"Can't open file $work/empty/DICOMDIR"
  failure+=" File=DicomDirImpl, Line=[0-9]+\"></exception>\$"
  [ "$status" -eq 1 ] &&
    grep -qx 'by_name: source DicomDir.DicomDirImpl.1' "$work/by_name.out" &&
    grep -qE "$failure" "$work/by_name.out" || return 1
  cp "$prefix"/share/halvorine/* "$(dirname "$host")/"
  "$host" "$examples/../data/sample-disc" >"$work/by_name.out"
  cat "$work/by_name.out"
  grep -qx 'by_name: [1-9][0-9]* patients' "$work/by_name.out" &&
    grep -qx 'by_name: PID001 Sample^Alice' "$work/by_name.out"
}

echo "-- register the installed component"
"$prefix/bin/halvorine" register "$prefix/$libdir/libdicomdir.so"

echo "-- two_patients and by_name through pkg-config"
read -ra compile <<<"$flags"
pc() { PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig pkg-config "$@" halvorine; }
read -ra package <<<"$(pc --cflags --libs)"
read -ra runtime <<<"$(pc --cflags) -L$(pc --variable=libdir) -lhalvocom"
"$cxx" "${compile[@]}" "$examples/two_patients.cpp" -o "$work/two_patients" "${package[@]}"
"$work/two_patients"
"$cxx" "${compile[@]}" "$examples/by_name.cpp" -o "$work/by_name" "${runtime[@]}"
check_by_name "$work/by_name"

echo "-- two_patients and by_name through find_package"
"$cmake" -S "$examples" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
"$cmake" --build "$work/build" >/dev/null
"$work/build/two_patients"
check_by_name "$work/build/by_name"

echo "-- unregister the installed component"
"$prefix/bin/halvorine" unregister "$prefix/$libdir/libdicomdir.so"
