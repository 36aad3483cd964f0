#!/usr/bin/env python3
"""Makes one program of a page's examples, its blocks of C++.

Usage: scripts/extract_examples.py PAGE.md PROGRAM.cpp. Each block becomes a function of its own; they run in
their order, in a new folder that is deleted at the end. All but the first, which is about what comes before any
object, share `catalogue` and `images`.
"""
import pathlib
import re
import sys

PREAMBLE = """\
#undef NDEBUG
#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>
#include <vdstomgr/vdstomgr.h>
#include "tests/temporary_folder.h"

static CRkPhotoDBManager& Catalogue() { static CRkPhotoDBManager catalogue; return catalogue; }
static CRkPhotoImageStorage& Images() { static CRkPhotoImageStorage images; return images; }
"""
OBJECTS = """\
[[maybe_unused]] CRkPhotoDBManager& catalogue = Catalogue();
[[maybe_unused]] CRkPhotoImageStorage& images = Images();
"""
MAIN = """\
int main() {{
  const std::filesystem::path folder = MakeTemporaryFolder("examples");
  std::filesystem::current_path(folder);
{calls}
  Catalogue().CloseDB();
  Images().CloseFile();
  std::filesystem::current_path(folder.parent_path());
  std::filesystem::remove_all(folder);
}}
"""

page, program = map(pathlib.Path, sys.argv[1:])
text = page.read_text()
functions, calls = "", []
for block in re.finditer(r"^```cpp\n(.*?)^```$", text, re.M | re.S):
    first_line = text.count("\n", 0, block.start(1)) + 1
    objects = OBJECTS if calls else ""
    name = f"Example{len(calls) + 1}"
    functions += f'\nstatic void {name}() {{\n{objects}#line {first_line} "{page.name}"\n{block[1]}}}\n'
    calls.append(f"  {name}();")
if not calls:
    sys.exit(f"extract_examples: {page} has no examples")
program.write_text(PREAMBLE + functions + "\n" + MAIN.format(calls="\n".join(calls)))
