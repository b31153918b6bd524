#!/usr/bin/env python3
"""Figures of the replays in the running program under Wine (Kelvo31), from
the command to its return, the last page drawn and composed (ui_timer sends
the command's WM_COMMAND to the logging screen and times it): review entered,
zoom in and out, a colour channel and back in review, Fit All, review left
(map and profile drawn again), Toggle View twice, a channel and back outside
review. First over the file of a short logged walk (one position a second,
ten readings a second), then over a day's worth of records: the walk's
positions, footprint and readings copied over some 150 x 160 m beside it
up to about 530,000 records, appended to the open file while the program
stands by, so that every command replays them.
Run after the windows and native builds:  python3 bench/bench_replay_ui.py"""
import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402
import test_gps_survey as survey_file  # noqa: E402
import test_replay as replay  # noqa: E402

DAY_RECORDS = 530000
COMMANDS = [("enter review", 477), ("zoom in", 474), ("zoom out", 475), ("channel inphase", 481),
            ("channel back", 480), ("fit all", 476), ("exit review", 478), ("toggle view (hide)", 511),
            ("toggle view (show)", 511), ("channel inphase, live", 481), ("channel back, live", 480)]


def timed(box, command_id):
    out = box.run_tool("ui_timer", ["command", replay.PROGRAM, str(command_id)], timeout=600).strip()
    time.sleep(1.5)   # positions, and the screen, settle
    try:
        return float(out)
    except ValueError:
        return None


def day_of_records(logged):
    """The walk's records between "$STARTED" and "PAUSED", copied over the
    ground beside it up to a day's records: copy k moved 3 m east for each
    k % 50 and 8 m north for each k // 50."""
    recs = survey_file.records(logged, 27)
    start = next(i for i, r in enumerate(recs) if r[0:9] == b"X$STARTED")
    end = next(i for i, r in enumerate(recs) if r[0:7] == b"XPAUSED")
    body = recs[start + 1:end]
    copies = []
    for k in range(DAY_RECORDS // max(1, len(body))):
        east, north = 3.0 * (k % 50), 8.0 * (k // 50)
        for r in body:
            if r[0:1] == b"{" and r[1:2] != b"0":
                letter = r[1] - ord("a")
                value = float(r[2:16]) + (east if letter % 2 == 0 else north)
                r = (b"{" + r[1:2] + (b"%14.3f" % value)).ljust(26) + b"\n"
            copies.append(r)
    return b"".join(copies) + b"XPAUSED          0000000000\n"


def run_commands(box, label):
    for name, command_id in COMMANDS:
        ms = timed(box, command_id)
        print("%-6s %-24s %s" % (label, name, "%.0f ms" % ms if ms is not None else "no answer"))
        sys.stdout.flush()


def main():
    checks = harness.Checks()
    with harness.Sandbox("replay-bench") as box:
        survey = replay.logged_survey(box, checks, 40, sample_interval="0.100000", gps_rate=1)
        if survey is None:
            checks.finish()
            return
        time.sleep(4)
        print("walk   file %.3f MB, %d records" % (len(survey.logged) / 1e6, len(survey.logged) // 27))
        run_commands(box, "walk")
        day = day_of_records(survey.logged)
        with open(survey.path, "ab") as f:
            f.write(day)
        size = os.path.getsize(survey.path)
        print("day    file %.1f MB, %d records (%d readings)" % (size / 1e6, size // 27, day.count(b"\nT") + 1))
        run_commands(box, "day")
        replay.walk.leave(box, survey.window)
        box.key(survey.window, "x")
        survey.program.wait(60)


if __name__ == "__main__":
    main()
