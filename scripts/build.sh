#!/usr/bin/env bash
# Configures and builds one preset. Usage: scripts/build.sh PRESET [cmake options...] [-- targets...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
options=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do options+=("$1"); shift; done
[ $# -gt 0 ] && shift
targets=()
[ $# -gt 0 ] && targets=(--target "$@")

echo "Building ($preset)"
log=build/$preset.log
mkdir -p build
if ! { cmake --preset "$preset" "${options[@]}" &&
       cmake --build --preset "$preset" "${targets[@]}"; } >"$log" 2>&1; then
  tail -n 60 "$log" >&2
  echo "The build failed; the whole log is in $log." >&2
  exit 1
fi
