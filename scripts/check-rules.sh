#!/usr/bin/env bash
# What must stay true of the tree and no compiler checks: structure and sizes, the table of statements,
# the index of operations, what hosts and headers see, leftovers of merges, the tests' share. Usage: scripts/check-rules.sh
set -euo pipefail
cd "$(dirname "$0")/.."
fault=0

scripts/check_structure.py || fault=1
scripts/check_statements.py || fault=1
scripts/make_operation_index.py --check || fault=1

if git grep -nE '^(<{7}|>{7}) ' -- . >&2; then
  echo "check-rules: the lines above were left behind by a merge" >&2
  fault=1
fi

lines() { find "$@" \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 -r cat | grep -cvE '^\s*$'; }
code=$(lines vdstomgr tools)
tests=$(lines tests)
share=$((100 * tests / code))
if [ $share -lt 25 ] || [ $share -gt 33 ]; then
  echo "check-rules: tests have $tests lines for $code of code: $share %, but 25 to 33 are wanted" >&2
  fault=1
fi

exit $fault
