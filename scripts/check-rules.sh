#!/usr/bin/env bash
# What must stay true of the tree and no compiler checks: includes run one way, foreign headers stay in
# their rooms, tests keep their share. Usage: scripts/check-rules.sh
set -euo pipefail
cd "$(dirname "$0")/.."
fault=0
complain() { echo "check-rules: $*" >&2; fault=1; }

# includes_of FOLDER: the rooms of the library that its files include
includes_of() {
  grep -rhoE '#include [<"]vdstomgr/[a-z_]+/' "$1" --include=*.h --include=*.cpp 2>/dev/null |
    sed -E 's#.*vdstomgr/([a-z_]+)/#\1#' | sort -u
}
allow() { # allow ROOM ALLOWED...
  local room=$1 found
  shift
  for found in $(includes_of "vdstomgr/$room"); do
    [[ " $room $* " == *" $found "* ]] || complain "vdstomgr/$room must not include vdstomgr/$found"
  done
}
allow platform
allow records platform
allow storage platform
for room in catalogue transfer search; do allow $room platform records catalogue; done

system='#include <(sqlite3|windows|unistd|fcntl|iconv|pthread|sys/[a-z]+)\.h>'
while read -r file; do
  case "$file" in
    vdstomgr/platform/os/*.cpp | vdstomgr/platform/os/*/*.cpp | vdstomgr/platform/text/*.cpp | \
      vdstomgr/platform/dao/sqlite/*.cpp) ;;
    vdstomgr/platform/framework/types.h) ;; # on Windows the interface's types are the system's own
    *) complain "$file includes a header of the system or the engine" ;;
  esac
done < <(grep -rlE "$system" vdstomgr --include=*.h --include=*.cpp || true)

if grep -rlE '#include "vdstomgr/(platform/dao/(jet|sqlite|engine)|.*_map\.h)' tools; then
  complain "tools see public headers only"
fi

lines() { find "$@" \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 -r cat | grep -cvE '^\s*$'; }
code=$(lines vdstomgr tools)
tests=$(lines tests)
share=$((100 * tests / code))
if [ $share -lt 25 ] || [ $share -gt 33 ]; then
  complain "tests have $tests lines for $code of code: $share %, but 25 to 33 are wanted"
fi

exit $fault
