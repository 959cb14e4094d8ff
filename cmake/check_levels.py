#!/usr/bin/env python3
"""Checks how the library's files include one another.

Every file includes its own level and lower ones, folders of level 4 ignore one another, headers do not
include one another in a circle, and kalvo.h includes every public header. Level 5 is kalvo.h alone.
"""
import re
import sys
from pathlib import Path

# The first pattern that matches the path below kalvo/ tells the level of a file.
LEVELS = [
    (0, r"platform/|frame/kxexport\.h"),
    (1, r"frame/"),
    (2, r"vectors/(kxvector|vectorfile|kxgenericvector)"),
    (2, r"image/kxpixel"),
    (2, r"persistence/(kx(file|filepointer|mem)?serializer|streamposition|streambytes|byteorder)"),
    (4, r"measure/kxextent|vectors/kxpixelvector"),
    (2, r"measure/"),
    (3, r"image/"),
    (4, r"persistence/|display/|transforms/"),
    (5, r"kalvo\.h"),
]
NEIGHBOURS = 4
# What folders of level 4 may still take from one another: (who, what).
EXCEPTIONS = [(r"vectors/kxpixelvector", r"display/kxplot\.h"), (r"display/", r"vectors/kxpixelvector\.h")]

INCLUDE = re.compile(r'^\s*#\s*include\s+"kalvo/([^"]+)"', re.MULTILINE)
PUBLIC = re.compile(r"(.*/kx[^/]*(?<!_templimpl)|platform/(win32types|messagebox|clock|criticalsection|gdi|tls))\.h")


def level_of(path):
    for level, pattern in LEVELS:
        if re.match(pattern, path):
            return level
    sys.exit(f"check_levels: kalvo/{path} belongs to no level")


def allowed(path, included):
    level, other = level_of(path), level_of(included)
    if level != other or level != NEIGHBOURS or path.split("/")[0] == included.split("/")[0]:
        return other <= level
    return any(re.match(who, path) and re.match(what, included) for who, what in EXCEPTIONS)


def find_cycle(includes):
    """The first circle of files found, as a list that ends where it starts; empty when there is none."""
    finished, chain = set(), []

    def visit(path):
        if path in chain:
            return chain[chain.index(path):] + [path]
        if path in finished:
            return []
        chain.append(path)
        for included in includes.get(path, []):
            if cycle := visit(included):
                return cycle
        finished.add(chain.pop())
        return []

    return next(filter(None, map(visit, includes)), [])


def main(root):
    files = sorted(path for path in root.rglob("*") if path.suffix in (".h", ".cpp"))
    includes = {str(path.relative_to(root)): INCLUDE.findall(path.read_text()) for path in files}
    faults = [f"kalvo/{path} (level {level_of(path)}) must not include kalvo/{included} (level {level_of(included)})"
              for path, list_ in includes.items() for included in list_ if not allowed(path, included)]
    if cycle := find_cycle(includes):
        faults.append("headers include one another: " + " -> ".join(cycle))
    faults += [f"kalvo/kalvo.h does not include kalvo/{path}"
               for path in includes if PUBLIC.fullmatch(path) and path not in includes["kalvo.h"]]
    print("\n".join(faults), file=sys.stderr, end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
