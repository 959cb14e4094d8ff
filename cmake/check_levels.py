#!/usr/bin/env python3
"""Checks how the library's files include one another.

Every file includes its own folder and those that stand before it in the list, headers do not include one
another in a circle, and kalvo.h includes every public header.
"""
import re
import sys
from pathlib import Path

LEVELS = ["base", "kernels", "frame", "pixels", "streams", "measure", "vectors", "raster", "gdi", "image", "archive",
          "imagefiles", "display", "transforms", "kalvo.h"]

INCLUDE = re.compile(r'^\s*#\s*include\s+"kalvo/([^"]+)"', re.MULTILINE)
PUBLIC = re.compile(r".*/kx[^/]*\.h|base/(win32types|messagebox|clock|criticalsection|tls)\.h|gdi/gdi(_[^/]*)?\.h")


def level_of(path):
    folder = path.split("/")[0]
    if folder not in LEVELS:
        sys.exit(f"check_levels: kalvo/{path} belongs to no level")
    return LEVELS.index(folder)


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
    faults = [f"kalvo/{path} must not include kalvo/{included}, which stands above it"
              for path, list_ in includes.items() for included in list_ if level_of(included) > level_of(path)]
    if cycle := find_cycle(includes):
        faults.append("headers include one another: " + " -> ".join(cycle))
    faults += [f"kalvo/kalvo.h does not include kalvo/{path}"
               for path in includes if PUBLIC.fullmatch(path) and path not in includes["kalvo.h"]]
    print("\n".join(faults), file=sys.stderr, end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
