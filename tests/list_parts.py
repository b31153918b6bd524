#!/usr/bin/env python3
"""Lists the ctest tests of a test script, for cmake/test_parts.cmake.

One line per test: "<part> <seconds>". A script without a module-level PARTS
is one test, its part "-". A script with PARTS is one test per part, which
ctest names after the part and passes to the script as its last argument.
SECONDS (a number, or a dict by part) says about how long a test runs alone,
so that ctest starts the longest first; 60 when absent. The script is
imported, not run: its work stays under `if __name__ == "__main__"`."""
import importlib
import os
import re
import sys

DEFAULT_SECONDS = 60


def seconds_of(module, part):
    seconds = getattr(module, "SECONDS", DEFAULT_SECONDS)
    if isinstance(seconds, dict):
        seconds = seconds.get(part, DEFAULT_SECONDS)
    return int(seconds)


def main():
    folder, name = os.path.split(os.path.abspath(sys.argv[1]))
    sys.path.insert(0, folder)
    module = importlib.import_module(os.path.splitext(name)[0])
    parts = getattr(module, "PARTS", None)
    if not parts:
        print("-", seconds_of(module, None))
        return 0
    for part in parts:
        if not re.fullmatch(r"[A-Za-z0-9][A-Za-z0-9_.+-]*", part):
            raise SystemExit("%s: part name %r is not a plain word" % (sys.argv[1], part))
        print(part, seconds_of(module, part))
    return 0


if __name__ == "__main__":
    sys.exit(main())
