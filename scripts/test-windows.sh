#!/usr/bin/env bash
# Builds the storage engine for 64-bit and 32-bit Windows and runs the 64-bit tests under Wine.
# Usage: scripts/test-windows.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build windows
scripts/build.sh windows-x86_64
scripts/build.sh windows-i686

# Wine keeps its registry and drive here, asks for no add-ons and needs no display.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY
log=build/test-windows.log
: >"$log"

run() { # run ZONE PROGRAM [options...]: a Windows program gets its time zone from outside
  local result=0
  TZ=$1 timeout 600 wine "build/windows-x86_64/tests/$2.exe" --gtest_brief=1 "${@:3}" \
    >>"$log" 2>&1 || result=$?
  [ $result -eq 0 ] && return
  tail -n 60 "$log" >&2
  echo "$2 failed under Wine with $result (time zone $1); the whole log is in $log." >&2
  exit 1
}

echo "Running the tests (Wine)"
run UTC test_platform
run Asia/Seoul test_platform --gtest_filter='TimeText.*'
run America/New_York test_platform --gtest_filter='TimeText.*'
run UTC test_storage
passed=$(awk '/PASSED/ { sum += $4 } END { print sum }' "$log")
echo "Built for Windows (x86-64 and i686); $passed x86-64 tests passed under Wine."
