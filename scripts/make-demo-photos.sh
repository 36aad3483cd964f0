#!/usr/bin/env bash
# Makes a small folder of pictures in several formats, some with EXIF. Usage: make-demo-photos.sh DIR
set -euo pipefail

dir=$1
[ -e "$dir/.complete" ] && exit 0
mkdir -p "$dir/2024 제주도/성산 일출봉" "$dir/2025 Berlin"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

picture() { # picture FILE WIDTH HEIGHT SEED
  vips perlin "$work/p.v" "$2" "$3" --cell-size 64 --seed "$4"
  vips scale "$work/p.v" "$work/s.v"
  vips falsecolour "$work/s.v" "$1"
}
exif() { # exif FILE DATE ORIENTATION
  exiv2 -M"set Exif.Image.Make VdSto" -M"set Exif.Image.Model Demo 1" \
        -M"set Exif.Image.Orientation $3" -M"set Exif.Photo.DateTimeOriginal $2" \
        -M"set Exif.Photo.FNumber 28/10" -M"set Exif.Photo.ExposureTime 1/125" \
        -M"set Exif.Photo.ISOSpeedRatings 200" "$1"
}
picture "$dir/2024 제주도/바다.jpg" 1600 1200 1
exif "$dir/2024 제주도/바다.jpg" "2024:05:04 11:20:00" 1
picture "$dir/2024 제주도/성산 일출봉/해돋이.jpg" 1200 1600 2
exif "$dir/2024 제주도/성산 일출봉/해돋이.jpg" "2024:05:05 05:31:00" 6
picture "$dir/2024 제주도/성산 일출봉/파노라마.tif" 2400 600 3
picture "$dir/2025 Berlin/Tiergarten.webp" 800 600 4
picture "$dir/2025 Berlin/Karte.png" 640 640 5
head -c 2000 "$dir/2024 제주도/바다.jpg" > "$dir/2025 Berlin/damaged.jpg"
echo "not a picture" > "$dir/notes.txt"
touch "$dir/.complete"
