#!/usr/bin/env python3
"""The EM61-MK2 in Wheel mode end to end: "&Go" switches the instrument with
"H" "W" and hands the port to the wheel reader, which takes a frame per wheel
step and the wheel letters the other reader refuses; a pulled cable is only a
stopped wheel (no break records); the pause switches back with "H" "X". The
data file is read back against the frames the simulator sent."""
import time

import harness
import test_session_start as session
from em61_walk import (MK2_LINES, READING_TAGS, create_file, data_file, in_order_once, leave, marker_ticks,
                       received, records, sent_frames, settings, start_simulator, start_traced, tag_counts, tell,
                       tick, wait_screen)


def main():
    checks = harness.Checks()
    program = "Kelvo61MK2"
    with harness.Sandbox("em61-mk2-wheel") as box:
        path = session.first_start(box, program)
        settings(path, MK2_LINES, {"GpsInput": 0, "SurveyMode": 1})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61mk2", ["--target-every", "0", "--stamp", "--wheel-step", "0.2"])
        box.key(window, "l")
        if not checks.check(wait_screen(box, 460, "&File"), program + ": the handshake starts the session"):
            checks.finish()
        time.sleep(6.5)
        if not checks.check(create_file(box, window, "MK2WHEEL"), program + ": \"&File\" brings Stand By"):
            checks.finish()
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), program + ": Logging (Wheel)")
        time.sleep(5)
        tell(sim, "quiet instrument 2")   # the cable pulled: the wheel seems to stand still
        time.sleep(4)
        box.screenshot("em61-mk2-wheel-logging")
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), program + ": a key pauses")
        time.sleep(2)
        leave(box, checks, program, window, run)
        tell(sim, "quit")
        time.sleep(0.5)

        checks.equal(received(log), b"HXHWHX",
                     program + ": \"H\" \"X\" at the start, \"H\" \"W\" at \"&Go\", \"H\" \"X\" at the pause")
        data, names = data_file(box, "MK2WHEEL")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            checks.finish()
        recs = records(data)
        harness.log(program + ": records by tag", tag_counts(recs))
        starts = [i for i, r in enumerate(recs) if r[1:9] == b"$STARTED"]
        pauses = [i for i, r in enumerate(recs) if r[1:7] == b"PAUSED"]
        if not checks.check(len(starts) == 1 and len(pauses) == 1, program + ": one recording"):
            checks.finish()
        logged = [r for r in recs[starts[0]:pauses[0]] if r[0:1] in READING_TAGS]
        checks.check(not any(r[1:12] == b"1CONN BRK 1" for r in recs), program + ": no break record in Wheel mode")
        checks.check(any(r[0:1] == b"J" for r in logged), program + ": the wheel letter 'J' is taken")
        sent = sent_frames(log)
        in_order_once(checks, program, logged, sent)
        start_tick = marker_ticks(recs, "$STARTED")[0]
        checks.check(all(tick(r) >= start_tick for r in logged), program + ": no reading older than \"$STARTED\"")
        ticks = [tick(r) for r in logged]
        gaps = [b - a for a, b in zip(ticks, ticks[1:])]
        checks.check(gaps and max(gaps) >= 1800, program + ": the stopped wheel is a gap of %d ms" % max(gaps or [0]))
        harness.log("%s: %d wheel frames logged over %.1f s" % (program, len(logged), (ticks[-1] - ticks[0]) / 1000.0))
    checks.finish()


if __name__ == "__main__":
    main()
