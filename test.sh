#!/usr/bin/env bash
# Builds and runs the tests. Usage: ./test.sh [PRESET [cmake options...]]
# The preset is release (the default), debug, asan, tsan or linux-m32.
set -euo pipefail
cd "$(dirname "$0")"

preset=${1:-release}
[ $# -eq 0 ] || shift
purposes=(build test)
[ "$preset" != linux-m32 ] || purposes+=(32-bit)
scripts/install-dependencies.sh "${purposes[@]}"
scripts/build.sh "$preset" -DVDSTO_BUILD_TESTS=ON -DVDSTO_BUILD_BENCH=OFF "$@"
ctest --preset "$preset" --parallel "$(nproc)"
