#!/usr/bin/env bash
# The quick start: sets up the machine, builds the default preset and loads the sample disc.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh
cmake --preset default
cmake --build build/default -j2
build/default/bin/halvorine load data/sample-disc
