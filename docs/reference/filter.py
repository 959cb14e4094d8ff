#!/usr/bin/env python3
"""What doxygen reads instead of a header: filter.py HEADER

A comment is about all declarations down to the next empty line or comment; doxygen takes it for the first alone. So
we repeat it.
"""
import sys

comment, is_used, is_inside = [], False, False
with open(sys.argv[1], encoding="utf-8") as header:
    for line in header:
        code = line.split("///<")[0].strip()
        if code.startswith("///"):
            comment = [line] if is_used else comment + [line]
            is_used = False
        elif not code or code.startswith(("#", "}", "public:", "protected:", "private:")) or code.endswith("{"):
            comment, is_used, is_inside = [], False, False
        elif comment:
            if is_used and not is_inside and "///<" not in line:
                sys.stdout.writelines(comment)
            is_used, is_inside = True, not code.endswith((";", "}"))
        sys.stdout.write(line)
