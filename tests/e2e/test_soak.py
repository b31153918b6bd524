#!/usr/bin/env python3
"""Three minutes of the soak: the EM31-MK2 mapping program Logging at its
frame rate with every frame kept and a 20 Hz receiver at 115200 baud; memory
and GDI objects flat after the first minute, every sentence sent while
Logging in the data file once, and every frame once but for one in a
thousand that its posting reader may overwrite while the screen's thread is
held up (bench/soak.py runs the hour)."""
import harness
import soak_walk

MINUTES = 3


# About how long the test runs alone, so that ctest starts the longest first.
SECONDS = 230

def main():
    checks = harness.Checks()
    for program in ("Kelvo31",):
        result = soak_walk.run(checks, program, MINUTES)
        if result is not None:
            soak_walk.check_flat(checks, program, result[0], 1)
    checks.finish()


if __name__ == "__main__":
    main()
