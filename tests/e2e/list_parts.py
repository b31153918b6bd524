#!/usr/bin/env python3
"""Lists the ctest tests of the end-to-end scripts, for tests/CMakeLists.txt.

One line per test: "<script stem> <part> <seconds>". A script without a
module-level PARTS list is one test, its part "-". A script with PARTS is one
test per part; ctest gives the part as the script's argument. SECONDS (a
number, or a dict by part) says about how long a test runs alone, so that
ctest starts the longest first; 60 when absent. Scripts are imported, not run:
their work stays under `if __name__ == "__main__"`."""
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
    for script in sys.argv[1:]:
        folder, name = os.path.split(os.path.abspath(script))
        stem = os.path.splitext(name)[0]
        sys.path.insert(0, folder)
        module = importlib.import_module(stem)
        parts = getattr(module, "PARTS", None)
        if not parts:
            print(stem, "-", seconds_of(module, None))
            continue
        for part in parts:
            if not re.fullmatch(r"[A-Za-z0-9][A-Za-z0-9_.+-]*", part):
                raise SystemExit("%s: part name %r is not a plain word" % (script, part))
            print(stem, part, seconds_of(module, part))
    return 0


if __name__ == "__main__":
    sys.exit(main())
