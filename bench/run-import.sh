#!/usr/bin/env bash
# Measures `vdsto import`: many small JPEGs, some of 12 megapixels, and both again unchanged, beside a walk that
# reads every file's size and time. Usage: bench/run-import.sh [SMALL [LARGE [OTHER]]]
# (default 20000 and 100; OTHER is a second vdsto program, of an older state, say, measured in turn with this one)
# Each is run three times ($VDSTO_BENCH_ROUNDS) in turn with its pictures in the cache; the best counts. The files
# lie in $VDSTO_BENCH_FOLDER (default build/bench-import).
set -euo pipefail
cd "$(dirname "$0")/.."

small=${1:-20000}
large=${2:-100}
other=${3:-}
folder=$(realpath -m "${VDSTO_BENCH_FOLDER:-build/bench-import}")
vdsto=$PWD/build/release/tools/vdsto/vdsto

scripts/install-dependencies.sh build test demo
scripts/build.sh release -- vdsto
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"

# Every file differs from the others in a few bytes after the end of its picture.
picture() { # picture FILE WIDTH HEIGHT
  vips perlin p.v "$2" "$3" --cell-size 64 --seed 7
  vips scale p.v s.v
  vips gaussnoise n.v "$2" "$3" --sigma 12
  vips add s.v n.v sum.v
  vips cast sum.v c.v uchar
  vips falsecolour c.v "$1[Q=88]"
  exiv2 -M"set Exif.Image.Make VdSto" -M"set Exif.Image.Model Bench 1" \
        -M"set Exif.Photo.DateTimeOriginal 2024:05:04 11:20:00" "$1"
}
picture small.jpg 480 360
picture large.jpg 4000 3000
python3 - "$small" "$large" <<'PYTHON'
import os, sys
for name, count in (("small", int(sys.argv[1])), ("large", int(sys.argv[2]))):
    picture = open(name + ".jpg", "rb").read()
    for i in range(count):
        place = f"{name}/{i % 100}"
        os.makedirs(place, exist_ok=True)
        with open(f"{place}/photo{i}.jpg", "wb") as out:
            out.write(picture + b"%08d" % i)
PYTHON

declare -A best
TIMEFORMAT='%R'
measure() { # measure ROW COMMAND...
  local took
  took=$({ time "${@:2}" >log 2>&1; } 2>&1)
  if [ -z "${best[$1]:-}" ] || awk "BEGIN { exit !($took < ${best[$1]}) }"; then best[$1]=$took; fi
}
programs=("$vdsto")
[ -z "$other" ] || programs+=("$other")
for ((round = 0; round < ${VDSTO_BENCH_ROUNDS:-3}; ++round)); do
  for pictures in small large; do
    cat $pictures/*/* >/dev/null
    sync
    for program in "${programs[@]}"; do
      rm -rf library
      measure "$program $pictures" "$program" --json --library library import $pictures
      grep -q "\"added\": $(find $pictures -type f | wc -l)," log || { cat log >&2; exit 1; }
      measure "$program $pictures again" "$program" --json --library library import $pictures
      grep -q '"added": 0,' log || { cat log >&2; exit 1; }
    done
    measure "walk $pictures" find $pictures -type f -printf '%s %T@\n'
  done
done

row() { # row TEXT KEY FILES
  local files=$3 walk=${best[walk ${2%% *}]}
  for program in "${programs[@]}"; do
    printf '%-24s %-8s %8.2f s %10.1f us a file, %8.1f over the walk\n' "$1" \
      "$([ "$program" = "$vdsto" ] && echo this || echo other)" "${best[$program $2]}" \
      "$(awk "BEGIN { print ${best[$program $2]} * 1e6 / $files }")" \
      "$(awk "BEGIN { print (${best[$program $2]} - $walk) * 1e6 / $files }")"
  done
}
echo "seconds elapsed, best; a walk alone: ${best[walk small]} s and ${best[walk large]} s"
row "$small small JPEGs" small "$small"
row "unchanged" "small again" "$small"
row "$large of 12 megapixels" large "$large"
row "unchanged" "large again" "$large"
