#!/usr/bin/env python3
"""Joins a MOF file and everything that it includes into one file, so that an administrator handles a single one.

    make-bundle.py INPUT OUTPUT
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#pragma\s+include\s*\(\s*"([^"]+)"\s*\)\s*$')


def lines_of(path):
    for line in path.read_text(encoding="utf-8").splitlines():
        match = INCLUDE.match(line)
        if match is None:
            yield line
        else:
            yield from lines_of(path.parent / match.group(1))
            yield ""


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    text = "\n".join(lines_of(pathlib.Path(sys.argv[1])))
    pathlib.Path(sys.argv[2]).write_text(re.sub(r"\n{3,}", "\n\n", text).rstrip() + "\n", encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
