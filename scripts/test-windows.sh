#!/usr/bin/env bash
# Builds the library for 64-bit and 32-bit Windows, runs the tests of the former under Wine, packs a zip for
# each and tries them as a host would: a program is built with either, the 64-bit one is run. Libraries are
# carried from one system to the other and back.
# Usage: scripts/test-windows.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build windows
scripts/build.sh windows-x86_64
scripts/build.sh release -DVDSTO_BUILD_TESTS=ON -DVDSTO_BUILD_BENCH=OFF -- carry
scripts/build.sh windows-i686 -DVDSTO_BUILD_TESTS=OFF # nothing here can run them; linux-m32 stands in

# Wine keeps its registry and drive here, asks for no add-ons and needs no display.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY
logs=$PWD/build/test-windows
rm -rf "$logs" && mkdir -p "$logs"
TZ=UTC wine cmd /c exit # makes the drive before two programs want to

run() { # run ZONE PROGRAM [options...]: a Windows program gets its time zone from outside
  local result=0 log=$logs/$2-${1//\//-}.log
  TZ=$1 timeout 1200 wine "build/windows-x86_64/tests/$2.exe" --gtest_print_time=1 "${@:3}" \
    >"$log" 2>&1 || result=$?
  [ $result -eq 0 ] && return
  grep -a -B 20 'FAILED' "$log" | tail -n 60 >&2 || true
  echo "$2 failed under Wine with $result (time zone $1); the whole log is in $log." >&2
  return 1
}
export -f run
export logs

echo "Running the tests (Wine)"
xargs -P "$(nproc)" -L 1 bash -c 'run "$@"' run <<'PROGRAMS'
UTC test_storage
UTC test_dao
UTC test_catalogue
UTC test_search
UTC test_transfer
UTC test_session
UTC test_records
UTC test_platform
Asia/Seoul test_platform --gtest_filter=TimeText.*
America/New_York test_platform --gtest_filter=TimeText.*
PROGRAMS
passed=$(cat "$logs"/*.log | awk '/PASSED/ { sum += $4 } END { print sum }')

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sed -n '/^```cpp$/,/^```$/p' README.md | sed '1d;$d' >"$work/main.cpp"
cat >"$work/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(consumer CXX)
find_package(VdStoMgr REQUIRED)
add_compile_options(-Wall -Wextra -Werror)
add_executable(consumer main.cpp)
target_link_libraries(consumer VdStoMgr::VdStoMgr)
CMAKE

fail() {
  echo "test-windows: $1" >&2
  exit 1
}

try_zip() { # try_zip PROCESSOR: packs, unpacks and builds a program with nothing else
  local processor=$1 zips=$PWD/build/windows-$1/zip installed
  rm -rf "$zips"
  cpack --config "build/windows-$processor/CPackConfig.cmake" -B "$zips" >"$logs/zip-$processor.log"
  (cd "$work" && cmake -E tar xf "$zips"/VdStoMgr-*-windows-"$processor".zip)
  installed=$(echo "$work"/VdStoMgr-*-windows-"$processor")
  for file in bin/VdStoMgr.dll lib/libVdStoMgr.dll.a \
    licences/{database-engine,gcc-mingw-w64-base,mingw-w64-common}.txt; do
    [ -s "$installed/$file" ] || fail "the zip for $processor has no $file"
  done
  needs=$("$processor-w64-mingw32-objdump" -p "$installed/bin/VdStoMgr.dll" | sed -n 's/.*DLL Name: //p')
  ! echo "$needs" | grep -vixE 'kernel32\.dll|user32\.dll|advapi32\.dll|bcrypt\.dll|msvcrt\.dll' >&2 ||
    fail "the library for $processor needs these files beside the system's own"
  cmake -S "$work" -B "$work/$processor" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw-$processor.cmake" \
    -DVdStoMgr_DIR="$installed/lib/cmake/VdStoMgr" >"$logs/consumer-$processor.log"
  cmake --build "$work/$processor" >>"$logs/consumer-$processor.log" ||
    fail "no program builds with the zip for $processor"
  cp "$installed/bin/VdStoMgr.dll" "$work/$processor"
}

on_linux() { TZ=Asia/Seoul build/release/tests/carry "$1" "$work/library" "${@:2}"; }
on_windows() { TZ=Asia/Seoul wine "$work/x86_64/carry.exe" "$1" "z:$work/library" "${@:2}"; }

carry_over() { # carry_over FROM TO [PASSWORD]: what one makes must answer the other as it answers its maker
  rm -rf "$work/library" && mkdir "$work/library"
  "$1" make "${@:3}" && "$1" tell "${@:3}" | tr -d '\r' >"$work/at-home"
  "$2" tell "${@:3}" | tr -d '\r' >"$work/abroad"
  grep -q 'store sound' "$work/abroad" && ! grep -E '^error|[1-9][0-9]* faults' "$work/abroad" >&2 ||
    fail "a library carried from $1 to $2 is not sound"
  diff "$work/at-home" "$work/abroad" >&2 || fail "a library carried from $1 to $2 answers otherwise"
}

echo "Trying the zips"
try_zip x86_64
try_zip i686
answer=$(cd "$work" && TZ=UTC wine x86_64/consumer.exe | tr -d '\r')
[ "$answer" = "바다.jpg" ] || fail "the program built with the zip answers '$answer'"
cp "build/windows-x86_64/tests/host_guide_examples.exe" "$work/x86_64"
(cd "$work/x86_64" && TZ=UTC wine host_guide_examples.exe >/dev/null 2>&1) || fail "the host guide's examples fail"
echo "Carrying libraries over"
cp build/windows-x86_64/tests/carry.exe "$work/x86_64"
for password in "" secret; do
  carry_over on_linux on_windows ${password:+"$password"}
  carry_over on_windows on_linux ${password:+"$password"}
done
echo "Built for Windows (x86-64 and i686); $passed x86-64 tests passed under Wine, and both zips build a program."
