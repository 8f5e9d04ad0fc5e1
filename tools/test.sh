#!/usr/bin/env bash
# The whole test suite on a fresh Debian 12 machine: set-up, then build and test the default
# preset and the sanitizer preset. Give preset names to run only those.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh
presets=("$@")
[ ${#presets[@]} -eq 0 ] && presets=(default asan)
for preset in "${presets[@]}"; do
  cmake --preset "$preset"
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j "$(nproc)"
done
