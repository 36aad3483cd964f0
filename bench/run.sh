#!/usr/bin/env bash
# Measures the catalogue against hand-written code on the same engine and prints one table of ratios, and
# searches against the engine's own LIKE and trigram index.
# Usage: bench/run.sh [PHOTOS...]   (sizes of the catalogues; default 10000 1000000)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build bench
scripts/build.sh release -DVDSTO_BUILD_BENCH=ON -- vdsto_bench vdsto_search_bench
build/release/bench/vdsto_bench build/bench "$@"
build/release/bench/vdsto_search_bench build/bench "$@"
