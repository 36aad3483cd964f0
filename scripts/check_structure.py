#!/usr/bin/env python3
"""What must stay true of the tree's structure: who includes whom, and sizes that a reader takes in.

Usage: scripts/check_structure.py. Prints a line for each fault and exits with 1 when there is one.
"""
import pathlib
import re
import sys

# The rooms of the library and what each may include besides itself, bottom up.
ROOMS = {
    "platform": [],
    "storage": ["platform"],
    "records": ["platform"],
    "session": ["platform", "records"],
    "tables": ["platform", "records", "session"],
    "transfer": ["platform", "records", "session", "tables"],
    "catalogue": ["platform", "records", "session", "tables", "transfer"],
    "search": ["platform", "records", "session", "tables"],
}
PUBLIC = "vdstomgr/vdstomgr.h"  # all that the tool includes of the library

# Headers of the system and of the engine, and the only sources that may include them.
FOREIGN = re.compile(r"#include <(sqlite3|windows|unistd|fcntl|iconv|pthread|sys/[a-z]+)\.h>")
FOREIGN_ROOMS = ("vdstomgr/platform/os/", "vdstomgr/platform/text/", "vdstomgr/platform/dao/sqlite/")
FOREIGN_HEADER = "vdstomgr/platform/framework/types.h"  # on Windows the types are the system's own
# All file work goes through platform/os, so that a test can make every call fail.
OTHER_FILE_WORK = re.compile(r"#include <(filesystem|fstream)>")

HEADER_LINES, SOURCE_LINES, FUNCTION_LINES = 250, 400, 40
# A function begins with a line at the margin that ends in "{" and holds a "(", and ends with "}" there.
FUNCTION = re.compile(r"^(?!namespace|struct|class|enum|union|extern|constexpr|const |inline constexpr)\S.*")

faults = []


def files(folder):
    return sorted(p for p in pathlib.Path(folder).rglob("*") if p.suffix in (".h", ".cpp"))


def includes(path):
    return re.findall(r'#include [<"]((?:vdstomgr|vdsto)/[^>"]+)[>"]', path.read_text())


def check_rooms():
    for path in files("vdstomgr"):
        if len(path.parts) < 3:
            continue
        room = path.parts[1]
        if room not in ROOMS:
            faults.append(f"{path}: no room of the library is called {room}")
            continue
        for included in includes(path):
            other = included.split("/")[1]
            if other != room and other not in ROOMS[room]:
                faults.append(f"{path}: {room} must not include {included}")
        if FOREIGN.search(path.read_text()) and str(path) != FOREIGN_HEADER and not (
                path.suffix == ".cpp" and str(path).startswith(FOREIGN_ROOMS)):
            faults.append(f"{path} includes a header of the system or the engine")
        if OTHER_FILE_WORK.search(path.read_text()):
            faults.append(f"{path} works on files beside platform/os")
    for path in files("tools"):
        faults.extend(f"{path}: the tool includes {PUBLIC} and no more of the library, not {included}"
                      for included in includes(path)
                      if included.startswith("vdstomgr/") and included != PUBLIC)


def check_circles():
    graph = {str(p): [i for i in includes(p) if i.startswith("vdstomgr/")] for p in files("vdstomgr")}
    done, under_way = set(), []

    def visit(name):
        if name in under_way:
            faults.append("includes go in a circle: " + " > ".join(under_way[under_way.index(name):] + [name]))
        elif name not in done:
            under_way.append(name)
            for included in graph.get(name, []):
                visit(included)
            under_way.pop()
            done.add(name)

    for name in graph:
        visit(name)


def check_interface():
    """What hosts include declares no function that they cannot link."""
    headers, waiting = set(), [PUBLIC]
    while waiting:
        name = waiting.pop()
        if name not in headers:
            headers.add(name)
            waiting += includes(pathlib.Path(name))
    for name in sorted(headers):
        text = re.sub(r"//[^\n]*", "", pathlib.Path(name).read_text())
        for declaration in re.findall(r"(?:^|\n\n?)([a-z][^\n;{}()]*\([^;{}]*\);)", text):
            if not re.match(r"(inline|constexpr|template|static_assert|using|typedef)\b", declaration):
                faults.append(f"{name}: hosts cannot link {' '.join(declaration.split())}")


def check_sizes(path):
    lines = path.read_text().splitlines()
    limit = HEADER_LINES if path.suffix == ".h" else SOURCE_LINES
    if len(lines) > limit:
        faults.append(f"{path} has {len(lines)} lines, more than {limit}")
    start = None
    for number, line in enumerate(lines, 1):
        if FUNCTION.match(line) and (start is None or not lines[number - 2].strip()):
            start = number
        elif line == "}" and start is not None:
            text = "\n".join(lines[start - 1:number])
            if "(" in text.split("{")[0] and number - start + 1 > FUNCTION_LINES + text.split("{")[0].count("\n"):
                faults.append(f"{path}:{start} begins a function of {number - start + 1} lines")
            start = None


check_rooms()
check_circles()
check_interface()
for source in files("vdstomgr") + files("tools"):
    check_sizes(source)
for fault in faults:
    print("check_structure:", fault, file=sys.stderr)
sys.exit(bool(faults))
