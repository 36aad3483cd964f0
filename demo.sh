#!/usr/bin/env bash
# Imports a folder of photos into a new catalogue and shows it. Usage: ./demo.sh [FOLDER]
# Without a folder it makes a small one of its own. What it makes lies under build/demo.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

[ $# -le 1 ] || { echo "Usage: ./demo.sh [FOLDER]" >&2; exit 2; }
if [ $# -eq 1 ]; then
  [ -d "$1" ] || { echo "demo.sh: '$1' is no folder" >&2; exit 2; }
  folder=$(cd "$1" && pwd)
  "$here/scripts/install-dependencies.sh" build
else
  folder=$here/build/demo/사진
  "$here/scripts/install-dependencies.sh" build demo
  "$here/scripts/make-demo-photos.sh" "$folder"
fi
"$here/scripts/build.sh" release -DVDSTO_BUILD_TESTS=OFF -DVDSTO_BUILD_BENCH=OFF

vdsto=$here/build/release/tools/vdsto/vdsto
export VDSTO_LIBRARY=$here/build/demo/library
rm -rf "$VDSTO_LIBRARY"

show() {
  printf '\n$ vdsto'
  printf ' %q' "$@"
  printf '\n'
  "$vdsto" "$@"
}
show import "$folder"
show import "$folder"
show tree
show ls "$(basename "$folder")"
show stat
show store stat
show gallery "$(basename "$folder")" --recursive --output "$here/build/demo/gallery" --force
echo
echo "Look at the gallery: $here/build/demo/gallery/index.html"
echo "The catalogue is in $VDSTO_LIBRARY. Go on with:"
echo "  export VDSTO_LIBRARY='$VDSTO_LIBRARY'"
echo "  $vdsto --help"
