#!/usr/bin/env bash
# Sets up, builds and runs every test: the full build with warnings as errors,
# then the core and its tests again under AddressSanitizer and
# UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOLVANE_WERROR=ON >/dev/null
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTOLVANE_WERROR=ON -DTOLVANE_SANITIZE=ON \
  -DTOLVANE_DESKTOP=OFF -DTOLVANE_BENCH=OFF >/dev/null
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j "$jobs"

# The parsers of outside input under libFuzzer, briefly.
bash scripts/fuzz.sh
