#!/usr/bin/env python3
"""Soak: a program Logging for an hour under Wine at the top rates (the
instrument's own frame rate, every frame kept, and a 20 Hz GGA/GSA receiver
at 115200 baud). Prints, each minute, the resident memory of the program and
its wineserver, the program's GDI objects and the CPU of both; at the end,
the frames and sentences the simulator sent while Logging against those in
the data file. Not a test: run after the windows and native builds,
    python3 bench/soak.py [--minutes N] [PROGRAM ...]
By default the busiest pair, the EM38-MK2 (binary frames every 47 ms at
19200 baud), then the EM31-MK2, an hour each. Programs: see PROGRAMS in
tests/e2e/soak_walk.py."""
import argparse
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402
import soak_walk  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--minutes", type=int, default=60)
    parser.add_argument("programs", nargs="*", metavar="PROGRAM", help=", ".join(sorted(soak_walk.PROGRAMS)))
    args = parser.parse_args()
    args.programs = args.programs or ["Kelvo38MK2", "Kelvo31"]
    unknown = [p for p in args.programs if p not in soak_walk.PROGRAMS]
    if unknown:
        parser.error("no soak set up for %s" % ", ".join(unknown))
    checks = harness.Checks()
    for program in args.programs:
        result = soak_walk.run(checks, program, args.minutes)
        if result is None:
            continue
        samples, readback = result
        soak_walk.check_flat(checks, program, samples, min(5, max(1, args.minutes // 3)))
        if samples:
            mean = sum(s.cpu_program + s.cpu_server for s in samples) / len(samples)
            harness.log("%s: %d minutes, CPU %.1f %% of a core on average (worst minute %.1f %%); resident "
                        "%.1f MiB at minute 1, %.1f MiB at the end; GDI objects %d at minute 1, %d at the end (%s)"
                        % (program, len(samples), mean, max(s.cpu_program + s.cpu_server for s in samples),
                           samples[0].program_mib, samples[-1].program_mib, samples[0].gdi, samples[-1].gdi,
                           samples[-1].method))
        if readback:
            harness.log("%s: sentences sent while Logging %d, in the file %d; frames sent %d, in the file %d"
                        % ((program,) + readback))
    checks.finish()


if __name__ == "__main__":
    main()
