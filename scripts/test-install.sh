#!/usr/bin/env bash
# Installs a built preset into a folder of its own and builds the README's program against it, as a host
# would: with the CMake package and with pkg-config. Usage: scripts/test-install.sh [PRESET]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "build/$preset" --prefix "$work/installed" >/dev/null
sed -n '/^```cpp$/,/^```$/p' README.md | sed '1d;$d' > "$work/main.cpp"
cat > "$work/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(consumer CXX)
find_package(VdStoMgr REQUIRED)
add_executable(consumer main.cpp)
target_link_libraries(consumer VdStoMgr::VdStoMgr)
CMAKE
cmake -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/installed" >/dev/null
cmake --build "$work/build" >/dev/null

export PKG_CONFIG_PATH=$(dirname "$(find "$work/installed" -name vdstomgr.pc)")
lib=$(pkg-config --variable=libdir vdstomgr)
c++ -std=c++20 $(pkg-config --cflags vdstomgr) "$work/main.cpp" $(pkg-config --libs vdstomgr) \
    -Wl,-rpath,"$lib" -o "$work/by-pkg-config"

cd "$work"
for program in build/consumer ./by-pkg-config; do
  [ "$("$program")" = "바다.jpg" ] || { echo "test-install: $program does not answer" >&2; exit 1; }
done
# What is installed is the interface, all of it and nothing else, as the compiler sees it.
installed_headers=$(cd installed/include && find vdstomgr -name '*.h' | sort)
included_headers=$(echo '#include <vdstomgr/vdstomgr.h>' | c++ -std=c++20 -MM -x c++ -Iinstalled/include - |
  tr -d '\\' | tr ' ' '\n' | sed -n 's#^installed/include/##p' | sort)
if ! diff <(echo "$installed_headers") <(echo "$included_headers"); then
  echo "test-install: the installed headers are not what vdstomgr.h includes" >&2
  exit 1
fi
# A host must not meet the engine: neither its headers nor its symbols.
if grep -rlE '#include <(sqlite3|windows|unistd)\.h>' installed/include | grep -v framework/types.h; then
  echo "test-install: an installed header includes the engine or the system" >&2
  exit 1
fi
if nm -D --defined-only "$lib"/libVdStoMgr.so | grep -E ' T sqlite3_'; then
  echo "test-install: the library exports the engine" >&2
  exit 1
fi
"installed/bin/vdsto" --version >/dev/null 2>&1 || "installed/bin/vdsto" --help >/dev/null
echo "test-install: the installed package builds and runs"
