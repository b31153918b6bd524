#!/usr/bin/env python3
"""The EM61-MK2 in Wheel mode end to end, on the continuous and on the polled
link: "&Go" switches the instrument with "H" "W" and hands the port to the
wheel reader, which takes a frame per wheel step and the wheel letters the
other readers refuse; a pulled cable is only a stopped wheel (no break
records); the pause switches back with "H" "X". Before "&Go" the polled link
asks for each frame with 'A'. The data file is read back against the frames
the simulator sent."""
import re
import time

import harness
import test_session_start as session
from em61_walk import (MK2_LINES, data_file, leave, received, recording, records, sent_frames, settings,
                       start_session, start_simulator, start_traced, tag_counts, tell, tick, wait_screen)


def run(checks, polled):
    program = "Kelvo61MK2"
    label = program + (" polled" if polled else " continuous")
    with harness.Sandbox("em61-mk2-wheel-%s" % ("polled" if polled else "continuous")) as box:
        path = session.first_start(box, program)
        settings(path, MK2_LINES, {"GpsInput": 0, "SurveyMode": 1})
        run_, window, trace = start_traced(box, program)
        extra = ["--target-every", "0", "--stamp", "--wheel-step", "0.2"] + (["--polled"] if polled else [])
        sim, log = start_simulator(box, "em61mk2", extra)
        if not start_session(checks, box, window, log, label, "MK2WHEEL"):
            return
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), label + ": Logging (Wheel)")
        time.sleep(5)
        tell(sim, "quiet instrument 2")   # the cable pulled: the wheel seems to stand still
        time.sleep(4)
        box.screenshot("em61-mk2-wheel-%s-logging" % ("polled" if polled else "continuous"))
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), label + ": a key pauses")
        time.sleep(2)
        leave(box, checks, label, window, run_)
        tell(sim, "quit")
        time.sleep(0.5)

        wrote = received(log).decode("latin-1")
        if polled:
            checks.check(re.fullmatch(r"HXA+HWHX", wrote) is not None,
                         label + ": \"H\" \"X\", polls, \"H\" \"W\" at \"&Go\", \"H\" \"X\" at the pause (%s)" %
                         re.sub(r"A+", lambda m: "A*%d" % len(m.group(0)), wrote))
        else:
            checks.equal(wrote, "HXHWHX",
                         label + ": \"H\" \"X\" at the start, \"H\" \"W\" at \"&Go\", \"H\" \"X\" at the pause")
        data, names = data_file(box, "MK2WHEEL")
        if not checks.check(data is not None, label + ": one data file (%s)" % names):
            return
        recs = records(data)
        harness.log(label + ": records by tag", tag_counts(recs))
        checks.equal(recs[2][15:16], b"1" if polled else b"0", label + ": Em61FastLink in record 3")
        logged = recording(checks, label, recs, sent_frames(log))
        checks.check(not any(r[1:12] == b"1CONN BRK 1" for r in recs), label + ": no break record in Wheel mode")
        checks.check(any(r[0:1] == b"J" for r in logged), label + ": the wheel letter 'J' is taken")
        ticks = [tick(r) for r in logged]
        gaps = [b - a for a, b in zip(ticks, ticks[1:])]
        checks.check(gaps and max(gaps) >= 1800, label + ": the stopped wheel is a gap of %d ms" % max(gaps or [0]))
        if ticks:
            harness.log("%s: wheel frames over %.1f s" % (label, (ticks[-1] - ticks[0]) / 1000.0))


def main():
    checks = harness.Checks()
    run(checks, polled=False)
    run(checks, polled=True)
    checks.finish()


if __name__ == "__main__":
    main()
