#!/usr/bin/env bash
# Measures the storage engine against other stores of blobs and prints one table for each workload.
# Usage: bench/run-storage.sh [RECORDSxBYTES...]
# Without arguments: 20000x4096 20000x20480 1000000x4096. The last needs up to 13 GB of disk for one
# subject at a time and takes long; `bench/run-storage.sh 20000x4096 20000x20480` leaves it out.
# A virtual machine that gives free memory back to its host (page reporting) makes whoever writes first
# pay for getting it again, up to ten times the time of a put. Memory is therefore taken and freed before
# each thing that is timed, and the subjects take turns in being the first.
# The files lie in $VDSTO_BENCH_FOLDER (default build/bench-storage).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build bench
scripts/build.sh release -DVDSTO_BUILD_BENCH=ON -- vdsto_storage_bench
build/release/bench/vdsto_storage_bench "${VDSTO_BENCH_FOLDER:-build/bench-storage}" "$@"
