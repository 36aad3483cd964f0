#!/usr/bin/env python3
"""Is every statement of the library's sources in the table of statements that a test runs?

Usage: scripts/check_statements.py. Statements are the string literals that begin with a statement's
verb (those that make or drop tables run whenever a catalogue is made); a place in one ("%d", "%s")
stands for any value in the table. Prints those that are missing.
"""
import pathlib
import re
import sys

ROOMS = ("session", "tables", "transfer", "catalogue", "search")
TABLE = "tests/catalogue/statements.sql"
LITERALS = re.compile(r'(?:"(?:[^"\\\n]|\\.)*"\s*)+')
VERB = re.compile(r"(?i)(select|insert|update|delete)\s")


def folded(statement):
    return re.sub(r"\s+", " ", statement).strip().lower()


def statements(path):
    text = re.sub(r"//[^\n]*", "", path.read_text())
    for run in LITERALS.finditer(text):
        pieces = re.findall(r'"((?:[^"\\\n]|\\.)*)"', run.group())
        statement = "".join(pieces).replace("\\t", "\t").replace('\\"', '"')
        if VERB.match(statement):
            yield statement


def pattern(statement):
    escaped = re.escape(folded(statement))
    escaped = escaped.replace(r"'%s'", "'[^']*'").replace("%d", r"-?\d+").replace("%s", ".+?")
    return re.compile(escaped)


known = [folded(line.split(" ", 1)[1]) for line in pathlib.Path(TABLE).read_text().splitlines()
         if line and not line.startswith("--")]
missing = 0
for room in ROOMS:
    for path in sorted(pathlib.Path("vdstomgr", room).glob("*.[hc]*")):
        for statement in statements(path):
            if not any(pattern(statement).fullmatch(line) for line in known):
                print(f"check_statements: {path}: not in {TABLE}: {statement}", file=sys.stderr)
                missing += 1
sys.exit(missing > 0)
