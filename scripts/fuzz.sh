#!/usr/bin/env bash
# Fuzzes the storage engine's file formats, one target after the other.
# Usage: scripts/fuzz.sh [SECONDS [SEED]]   (for all targets together; default 60, and a seed by chance)
# What was found lies in build/fuzz/findings; what helps to find more is kept in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
seed=${2:-0}
targets=(array_file record_storage)
scripts/install-dependencies.sh build fuzz
scripts/build.sh fuzz -- make_fuzz_seeds "${targets[@]/#/fuzz_}"

memory=${TMPDIR:-/tmp}
[ -w /dev/shm ] && memory=/dev/shm # files in memory: many more runs per second
TMPDIR=$(mktemp -d "$memory/vdsto-fuzz.XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
programs=build/fuzz/bench/fuzz
"$programs/make_fuzz_seeds" "$TMPDIR/seeds"

for target in "${targets[@]}"; do
  echo "Fuzzing ($target)"
  mkdir -p build/fuzz/findings "build/fuzz/corpus/$target"
  log=build/fuzz/$target.log
  if ! "$programs/fuzz_$target" -seed="$seed" -max_total_time=$((seconds / ${#targets[@]})) \
    -timeout=10 -max_len=4096 \
    -artifact_prefix="build/fuzz/findings/$target-" \
    "build/fuzz/corpus/$target" "$TMPDIR/seeds/$target" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "The input that led to this is in build/fuzz/findings; the whole log is in $log." >&2
    exit 1
  fi
  grep -E '^Done' "$log"
done
