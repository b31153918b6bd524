"""The fourteen programs, read from the one variant list (src/core/variants.def).

As a module: `VARIANTS` is a list of dicts with the keys instrument, model,
product, name, version, extension and folder, in the list's order.
`product_version()` is the version of the whole delivery (installer, zip).
As a command: `variants.py FIELD NAME` prints one field of the program NAME,
`variants.py names` prints the fourteen names, one a line, and
`variants.py product-version` prints the delivery's version.
"""
import os
import re
import sys

DEF_FILE = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))),
                        "src", "core", "variants.def")
LINE = re.compile(r'^VARIANT\(\s*"([^"]*)",\s*(-?\d+),\s*([01]),\s*"([^"]+)",\s*"([^"]+)",'
                  r'\s*"([^"]+)",\s*"([^"]+)"\)')
KEYS = ("instrument", "model", "product", "name", "version", "extension", "folder")


def read_variants(path=DEF_FILE):
    rows = []
    with open(path, encoding="ascii") as source:
        for line in source:
            found = LINE.match(line)
            if found:
                row = dict(zip(KEYS, found.groups()))
                row["model"] = int(row["model"])
                row["product"] = int(row["product"])
                rows.append(row)
    return rows


VARIANTS = read_variants()


def by_name(name):
    for row in VARIANTS:
        if row["name"] == name:
            return row
    raise KeyError(name)


def product_version(rows=None):
    """"MAJOR.MINOR.SUM": the highest program version, which an operator knows
    from the main screens, then the sum of all fourteen versions in hundredths,
    which rises whenever any one program's version does."""
    rows = VARIANTS if rows is None else rows
    hundredths = [int(major) * 100 + int(minor)
                  for major, minor in (row["version"].split(".") for row in rows)]
    highest = max(hundredths)
    return "%d.%02d.%d" % (highest // 100, highest % 100, sum(hundredths))


if __name__ == "__main__":
    if len(sys.argv) == 2 and sys.argv[1] == "names":
        print("\n".join(row["name"] for row in VARIANTS))
    elif len(sys.argv) == 2 and sys.argv[1] == "product-version":
        print(product_version())
    elif len(sys.argv) == 3 and sys.argv[1] in KEYS:
        print(by_name(sys.argv[2])[sys.argv[1]])
    else:
        sys.exit("usage: variants.py names | variants.py product-version | variants.py FIELD NAME")
