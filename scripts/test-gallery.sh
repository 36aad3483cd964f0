#!/usr/bin/env bash
# Looks at a gallery with a browser: installs Chromium and what drives it, builds vdsto and runs the test, which
# ./test.sh skips on a machine without them. Usage: scripts/test-gallery.sh [SCREENSHOTS]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build test gallery
scripts/build.sh release -DVDSTO_BUILD_TESTS=ON -DVDSTO_BUILD_BENCH=OFF -- vdsto
place=build/release/tests/gallery
mkdir -p "$place/driver"
cp tests/gallery/package.json tests/gallery/package-lock.json "$place/driver"
npm ci --prefix "$place/driver" --ignore-scripts --no-audit --no-fund --loglevel=error
if [ $# -gt 0 ]; then
  node tests/gallery/gallery_test.mjs build/release/tools/vdsto/vdsto "$place/work" "$1"
else
  ctest --preset release -R '^gallery\.browser$'
fi
