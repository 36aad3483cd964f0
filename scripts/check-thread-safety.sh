#!/usr/bin/env bash
# Lets clang check that what a lock guards is touched with the lock held only. Nothing is built; the
# engine's sources are left out. Usage: scripts/check-thread-safety.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh build fuzz
find vdstomgr -name '*.cpp' -not -path '*/win32/*' -not -path '*/dao/sqlite/*' -print0 |
  xargs -0 -P "$(nproc)" -n 8 clang++ -std=c++20 -I. -fsyntax-only -Wthread-safety -Werror=thread-safety
echo "check-thread-safety: every guarded member is touched with its lock held"
