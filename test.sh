#!/usr/bin/env bash
# Builds and runs the tests. Usage: ./test.sh [PRESET]   (release, debug, asan or tsan; default release)
set -euo pipefail
cd "$(dirname "$0")"

preset=${1:-release}
scripts/install-dependencies.sh build test
scripts/build.sh "$preset" -DVDSTO_BUILD_TESTS=ON -DVDSTO_BUILD_BENCH=OFF
ctest --preset "$preset" --parallel "$(nproc)"
