#!/usr/bin/env bash
# Runs every test: the optimised build, then the same suites under ASan+UBSan, then a short fuzz run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
status=0
for kind in release asan; do
  echo "== build ($kind)"
  scripts/build.sh "$kind"
  dir=build; [ "$kind" = asan ] && dir=build-asan
  echo "== tests ($kind)"
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir "$dir" --output-on-failure -j "$jobs" || status=1
done
# Last: one minute of the libFuzzer target over the import road, built with clang (docs/fuzzing.md).
echo "== fuzz (smoke)"
scripts/fuzz.sh smoke || status=1
exit $status
