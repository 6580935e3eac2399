#!/usr/bin/env bash
# Builds the libFuzzer targets with clang into build-fuzz and runs each one for
# FUZZ_SECONDS (15 by default), starting from its seed inputs in
# fuzz/corpus/NAME. Prints one line per target with the inputs it ran; a
# crash, leak or sanitizer report fails the run and shows the fuzzer's output.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-15}

cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DTOLVANE_FUZZ=ON -DTOLVANE_DESKTOP=OFF -DTOLVANE_TESTS=OFF -DTOLVANE_BENCH=OFF >/dev/null
cmake --build build-fuzz -j "$(nproc)"

found=0
for exe in build-fuzz/fuzz/fuzz_*; do
  [ -x "$exe" ] || continue
  found=1
  name=${exe##*/fuzz_}
  work=$(mktemp -d)
  if [ -d "fuzz/corpus/$name" ]; then cp -r "fuzz/corpus/$name/." "$work/"; fi
  if ! "$exe" -max_total_time="$seconds" -print_final_stats=1 -rss_limit_mb=2048 \
      -artifact_prefix="$work/" "$work" >"$work.log" 2>&1; then
    tail -n 60 "$work.log"
    echo "fuzz_$name failed; its input is in $work"
    exit 1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work.log")
  echo "fuzz_$name: ${runs:-?} inputs in ${seconds} s, no failure"
  rm -rf "$work" "$work.log"
done
if [ "$found" -eq 0 ]; then
  echo "fuzz: no fuzz target was built"
  exit 1
fi
