#!/usr/bin/env python3
"""Start-up time of a program under Wine: from the process start to its main
window being shown, median and spread over several starts in one prefix.
Run after a windows build:  python3 bench/bench_startup.py [PROGRAM] [STARTS]"""
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else "Kelvo31"
    starts = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    times = []
    with harness.Sandbox("bench-startup") as box:
        # One start to warm the prefix's wineserver and file cache.
        warm = box.start(program)
        window = box.wait_window(program)
        box.key(window, "x")
        warm.wait(30)
        for _ in range(starts):
            begin = time.monotonic()
            started = box.start(program)
            window = box.wait_window(program, timeout=60)
            times.append(time.monotonic() - begin)
            box.key(window, "x")
            started.wait(30)
    times_ms = [t * 1000 for t in times]
    print("program: %s, starts: %d" % (program, starts))
    print("process start to main window shown, under Wine: median %.0f ms, min %.0f ms, max %.0f ms"
          % (statistics.median(times_ms), min(times_ms), max(times_ms)))


if __name__ == "__main__":
    main()
