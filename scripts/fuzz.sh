#!/usr/bin/env bash
# Builds the libFuzzer target of tests/fuzz with clang into build-fuzz/ and runs it.
#
#   scripts/fuzz.sh smoke            60 s from the seeds (CI runs this from scripts/test.sh)
#   scripts/fuzz.sh long [SECONDS]   a long run (default 1800 s) that keeps its corpus in
#                                    build-fuzz/corpus between runs
#   scripts/fuzz.sh build            build only
#   scripts/fuzz.sh repro FILE...    run the target once over each FILE (a crash input)
#
# Seeds: every file of the sample corpus (../shared/corpus, or $QUILLON_CORPUS_DIR) copied into
# build-fuzz/seeds at each run, the same files with lines at the reader's limits put in
# (tests/fuzz/edge_seeds.py), and the fixed crash inputs of tests/fuzz/regressions/.
# Findings are written to build-fuzz/artifacts/. See docs/fuzzing.md.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

mode=${1:-smoke}
dir=build-fuzz
corpus_src=${QUILLON_CORPUS_DIR:-$root/../shared/corpus}
jobs=${QUILLON_FUZZ_BUILD_JOBS:-2}

build() {
  CC=${CC_FUZZ:-clang} CXX=${CXX_FUZZ:-clang++} cmake -S . -B "$dir" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLON_FUZZ=ON \
    -DQUILLON_BUILD_TESTS=OFF -DQUILLON_BUILD_BENCH=OFF >/dev/null
  cmake --build "$dir" --target fuzz_import -j "$jobs"
}

seeds() {
  rm -rf "$dir/seeds"
  mkdir -p "$dir/seeds"
  if [ -d "$corpus_src" ]; then
    cp "$corpus_src"/* "$dir/seeds/"
    # The sample files again with lines at the reader's limits behind each kind of keyword.
    python3 tests/fuzz/edge_seeds.py "$dir/seeds" "$corpus_src"/*.mat
  else
    echo "fuzz.sh: no sample corpus at $corpus_src; starting from the regressions alone" >&2
  fi
  # Fixed crash inputs stay in the seeds, so that every run tries them again first.
  if [ -d tests/fuzz/regressions ]; then
    find tests/fuzz/regressions -maxdepth 1 -type f ! -name '*.md' -exec cp {} "$dir/seeds/" \;
  fi
}

# Options shared by every run. A line of 8192 characters or more is turned away by the target, so
# inputs a little over that are enough to reach every limit of the reader.
fuzz_options=(
  -dict=tests/fuzz/quillon.dict
  -max_len=20000
  -timeout=20
  -rss_limit_mb=2560
  -malloc_limit_mb=1024
  -print_final_stats=1
  -artifact_prefix="$dir/artifacts/"
)

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:allocator_may_return_null=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

case "$mode" in
  build)
    build
    ;;
  smoke)
    build
    seeds
    rm -rf "$dir/corpus-smoke"
    mkdir -p "$dir/corpus-smoke" "$dir/artifacts"
    # A fresh corpus each time: the run starts from the seeds alone and is the same for everyone.
    "$dir/tests/fuzz/fuzz_import" "${fuzz_options[@]}" -max_total_time=60 \
      "$dir/corpus-smoke" "$dir/seeds"
    ;;
  long)
    seconds=${2:-1800}
    build
    seeds
    mkdir -p "$dir/corpus" "$dir/artifacts"
    "$dir/tests/fuzz/fuzz_import" "${fuzz_options[@]}" -max_total_time="$seconds" \
      "$dir/corpus" "$dir/seeds"
    ;;
  repro)
    shift
    [ $# -gt 0 ] || { echo "usage: $0 repro FILE..." >&2; exit 2; }
    build
    "$dir/tests/fuzz/fuzz_import" -runs=1 "$@"
    ;;
  *)
    echo "usage: $0 smoke | long [SECONDS] | build | repro FILE..." >&2
    exit 2
    ;;
esac
