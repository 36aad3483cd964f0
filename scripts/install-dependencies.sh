#!/usr/bin/env bash
# Installs what the build needs and the machine lacks (Debian packages), and says what it installs.
# Usage: scripts/install-dependencies.sh [build|demo|test|gallery|bench|docs|fuzz|windows|32-bit]...
# (build is always included)
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config ca-certificates
  libvips-dev libexiv2-dev libcli11-dev libcurl4-openssl-dev nlohmann-json3-dev libssl-dev libutf8proc-dev
)
for purpose in "$@"; do
  case "$purpose" in
    build) ;;
    demo) packages+=(libvips-tools exiv2) ;;
    test) packages+=(libgtest-dev libgmock-dev python3 openssh-server lighttpd lighttpd-mod-webdav lighttpd-mod-openssl openssl) ;;
    gallery) packages+=(chromium fonts-nanum) ;;
    bench) packages+=(libbenchmark-dev libvips-tools liblmdb-dev librocksdb-dev) ;;
    docs) packages+=(doxygen) ;;
    fuzz) packages+=(clang libclang-rt-dev) ;;
    windows)
      packages+=(g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix googletest python3 wine wine64)
      ;;
    32-bit) packages+=(g++-multilib googletest) ;;
    *) echo "install-dependencies.sh: unknown purpose '$purpose'" >&2; exit 2 ;;
  esac
done
# A Node.js that did not come from Debian's packages is as good.
command -v npm >/dev/null 2>&1 || packages+=(npm)

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing Debian packages: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null 2>&1 || { echo "Please install these packages and run this again." >&2; exit 1; }
  as_root=(sudo)
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  echo "The packages could not be installed." >&2
  exit 1
fi
