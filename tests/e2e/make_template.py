#!/usr/bin/env python3
"""Boots the one Wine prefix that every end-to-end test copies."""
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def main():
    target = sys.argv[1]
    if os.path.isfile(os.path.join(target, ".kelvo-ready")):
        print("template ready:", target)
        return 0
    subprocess.run(["bash", os.path.join(HERE, "boot_prefix.sh"), target], check=True)
    # The program never makes its settings folders; an installation does.
    # Tests add them where they need them.
    print("template booted:", target)
    return 0


if __name__ == "__main__":
    sys.exit(main())
