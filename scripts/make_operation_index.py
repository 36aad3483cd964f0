#!/usr/bin/env python3
"""Writes docs/operations.md: every operation of the interface by subject, one line each, from the headers.

Usage: scripts/make_operation_index.py [--check]. With --check nothing is written; prints what is amiss: a
group of operations whose header does not say what they do, an index that is not what the headers say.
"""
import pathlib
import re
import sys

UMBRELLA = "vdstomgr/vdstomgr.h"
ROOMS = ("vdstomgr/session/database_owner.h", "vdstomgr/catalogue/", "vdstomgr/transfer/",
         "vdstomgr/search/", "vdstomgr/storage/")
INDEX = pathlib.Path("docs/operations.md")
INTRODUCTION = """# Operations

Every operation of the catalogue, of the search database and of the storage engine by subject: what it takes, and
the first sentence of what its header says about it. One without a sentence is told by its name and by the one above it, of whose kind
it is. Made by `scripts/make_operation_index.py`; [host-guide.md](host-guide.md) shows how they go together.
"""
CLASS = re.compile(r"(?:class|struct) VDSTO_API (\w+)(?: : .*)? \{")
FUNCTION = re.compile(r"(?:VDSTO_API |static |virtual )*(.*?[ *&])(\w+)(\(.*\)(?: const)?)$")


def headers(path, seen):
    """The header and what it includes, each after what it stands on."""
    if path in seen:
        return
    seen.add(path)
    for included in re.findall(r'^#include "(.*)"', pathlib.Path(path).read_text(), re.M):
        yield from headers(included, seen)
    yield path


def declarations(text):
    """(docstring, declaration) of each; a section's title has no declaration, a blank line neither of them."""
    doc, code = [], ""
    for line in text.splitlines():
        stripped = line.strip()
        if not code and stripped.startswith("/// ----"):
            yield stripped.strip("/- "), ""
        elif not code and stripped.startswith("}"):
            yield "", "}"
        elif not code and stripped.startswith("///"):
            doc.append(stripped[3:].strip())
        elif stripped.startswith(("#", "//")):
            doc = []
        elif not (stripped or code):
            doc = []
            yield "", ""
        elif stripped:
            code = f"{code} {stripped.split('//')[0]}".strip()
            is_scope = re.match(r"(class|struct|namespace)\b.*\{$", code)
            is_whole = code.count("(") == code.count(")") and code.count("{") == code.count("}")
            if is_scope or is_whole and code.endswith((";", ":", "}")):
                yield " ".join(doc), code
                doc, code = [], ""


def sentence(doc):
    return re.match(r"(.*?[.?](?=\s|$)|.*)", doc).group()


class Index:
    def __init__(self):
        self.lines = [INTRODUCTION]
        self.undocumented = []

    def add_header(self, path):
        """The header's class and its public operations, then its free functions."""
        inside, access, name = "", "public", ""
        free = []
        for doc, declared in declarations(pathlib.Path(path).read_text()):
            opened = CLASS.match(declared)
            if opened:
                inside, access, name = opened[1], "private", ""
                self.lines.append(f"\n## {inside}\n\n`{path}`. {sentence(doc)}\n")
            elif declared in ("public:", "protected:", "private:"):
                access = declared[:-1]
            elif declared == "}":
                inside = ""
            elif not declared:
                name = ""
                if doc and access == "public":
                    self.lines.append(f"\n{doc}:\n")
            elif inside and access == "public":
                name = self.add_operation(self.lines, path, doc, declared, name)
            elif declared.startswith("VDSTO_API") and (doc or name):
                name = self.add_operation(free, path, doc, declared, name)
        if free:
            self.lines += [f"\nFree functions of `{path}`:\n", *free]

    def add_operation(self, lines, path, doc, declared, last_name):
        match = FUNCTION.match(re.sub(r"\s*(\{.*|;)$", "", declared))
        if not match or "operator" in match[2]:
            return last_name
        lines.append(f"- `{match[2]}{match[3]}`" + (f": {sentence(doc)}" if doc else ""))
        if not doc and not last_name:
            self.undocumented.append(f"{path}: {match[2]}")
        return match[2]


index = Index()
for header in headers(UMBRELLA, set()):
    if header.startswith(ROOMS):
        index.add_header(header)
text = re.sub(r"\n{3,}", "\n\n", "\n".join(index.lines)) + "\n"
if "--check" not in sys.argv:
    INDEX.write_text(text)
    sys.exit()
for operation in index.undocumented:
    print(f"make_operation_index: {operation} has no docstring", file=sys.stderr)
stale = not INDEX.exists() or INDEX.read_text() != text
if stale:
    print(f"make_operation_index: {INDEX} is out of date: run scripts/make_operation_index.py", file=sys.stderr)
sys.exit(stale or bool(index.undocumented))
