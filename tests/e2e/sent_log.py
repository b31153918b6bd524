"""What the field simulator sent, read back from its log: one message a
line, "<ms> <stream> <bytes>", with bytes outside printable ASCII escaped."""
import os
import re


def unescape(text):
    """The log's escaping undone, byte for byte, as latin-1 text."""
    out = []
    i = 0
    while i < len(text):
        c = text[i]
        if c == "\\" and i + 1 < len(text):
            n = text[i + 1]
            if n == "x" and re.match(r"[0-9a-fA-F]{2}", text[i + 2:i + 4]):
                out.append(chr(int(text[i + 2:i + 4], 16)))
                i += 4
                continue
            out.append({"r": "\r", "n": "\n", "\\": "\\"}.get(n, n))
            i += 2
            continue
        out.append(c)
        i += 1
    return "".join(out)


def messages(log_path, stream):
    """(milliseconds, bytes as latin-1 text) of each message on `stream`."""
    out = []
    if not os.path.exists(log_path):
        return out
    for line in open(log_path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) == 3 and parts[1] == stream:
            out.append((int(parts[0]), unescape(parts[2])))
    return out


def records(data, length=27):
    return [data[i:i + length] for i in range(0, len(data) - len(data) % length, length)]


def tag_counts(recs):
    counts = {}
    for r in recs:
        tag = chr(r[0])
        if tag == "O" and chr(r[1]) in "123456":
            tag = "O" + chr(r[1])
        counts[tag] = counts.get(tag, 0) + 1
    return dict(sorted(counts.items()))


def longest_run_match(found, expected):
    """Whether `found` stands in `expected` as one unbroken run."""
    if not found:
        return False
    first = found[0]
    for start in [i for i, e in enumerate(expected) if e == first]:
        if expected[start:start + len(found)] == found:
            return True
    return False
