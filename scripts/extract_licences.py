#!/usr/bin/env python3
"""Writes the licence notices of C sources: each comment that names a copyright, a licence or none.
Usage: extract_licences.py SOURCE... OUTPUT"""
import re
import sys

NOTICE = re.compile(r"copyright|licen[cs]e|public domain|disclaims", re.IGNORECASE)
COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)


def main():
    *sources, output = sys.argv[1:]
    notices = {}
    for source in sources:
        with open(source, encoding="utf-8", errors="replace") as file:
            for comment in COMMENT.findall(file.read()):
                if NOTICE.search(comment):
                    notices.setdefault(comment)
    with open(output, "w", encoding="utf-8") as file:
        file.write("\n\n".join(notices) + "\n")


if __name__ == "__main__":
    main()
