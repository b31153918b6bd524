#!/usr/bin/env python3
"""The EM61-MK2 end to end. Kelvo61MK2 on a continuous link: the handshake
"H" "X" answered "OV", normalising, a file, nulling in Stand By with its "O"
records, logging through garbage, a frame split over two writes and one cut
short. Lum61MK2 on the polled link: the handshake refused while unanswered and
while answered wrongly, then answered with noise; polls of 'A' at the
session timer's rate; the cable pulled during a poll, the break records, the
handshake again and the frames back. Each data file is read back against the
frames the simulator sent."""
import time

import harness
import test_session_start as session
from em61_walk import (DECAY_ID, MK2_LINES, MK2_SCALE, READING_TAGS, answer, calibration_values, check_views,
                       data_file, in_order_once, leave, marker_ticks, mean_windows, mk2_values, received,
                       received_times, recording, records, sent_frames, settings, start_session, start_simulator,
                       start_traced, tag_counts, tell, tick, wait_screen)

def readings(recs, begin, end):
    return [r for r in recs[begin:end] if r[0:1] in READING_TAGS]


def index_of(recs, text):
    for i, r in enumerate(recs):
        if r[0:1] == b"X" and r[1:12].decode("latin-1").rstrip() == text:
            return i
    return -1


def continuous(checks):
    program = "Kelvo61MK2"
    with harness.Sandbox("em61-mk2-continuous") as box:
        path = session.first_start(box, program)
        # No GPS; a reading each frame in Auto (0.05 s keeps every frame).
        # A coil without current correction ("Standard N.C.C."), so that the
        # levels are plain means of the frames.
        settings(path, MK2_LINES, {"GpsInput": 0, "SampleInterval": "0.050000", "Em61Type": 2})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61mk2", ["--target-every", "0", "--stamp"])
        if not start_session(checks, box, window, log, program, "MK2CONT"):
            return
        box.key(window, "u")
        checks.check(answer(box, "NULLING"), program + ": Nulling in Stand By asks first")
        time.sleep(4)
        box.key(window, "g")
        time.sleep(2)
        for line in ("garbage instrument 40", "split", "cut 1", "marker"):
            tell(sim, line)
            time.sleep(1.2)
        time.sleep(3)
        box.screenshot("em61-mk2-continuous-logging")
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), program + ": a key pauses")
        leave(box, checks, program, window, run)
        tell(sim, "quit")
        time.sleep(0.5)

        checks.equal(received(log), b"HX", program + ": the program wrote \"H\" \"X\" and nothing else")
        data, names = data_file(box, "MK2CONT")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return
        recs = records(data)
        checks.equal(len(data) % 27, 0, program + ": whole records")
        harness.log(program + ": records by tag", tag_counts(recs))
        first = recs[0].decode("latin-1")
        checks.equal(first[0:9], "KLVMK2  W", program + ": signature")
        checks.equal(recs[2][15:16], b"0", program + ": Em61FastLink 0 in record 3")
        tags = "".join(chr(r[0]) for r in recs[:20])
        checks.check(tags.startswith("KHGGGOOOOLBAZOOOO*"), program + ": header and line header with \"O\" records (%s)" % tags)
        zero = [calibration_values(r) for r in recs[5:9]] + [calibration_values(r) for r in recs[13:17]]
        checks.check(all(v == (0.0, None) for v in zero), program + ": zero levels 0.00 before a nulling: %s" % zero)
        started = index_of(recs, "$STARTED")
        paused = index_of(recs, "PAUSED")
        nulling = [i for i, r in enumerate(recs) if r[0:1] == b"O" and 17 <= i < started]
        checks.equal(len(nulling), 4, program + ": the nulling writes four \"O\" records in Stand By")
        sent = sent_frames(log)
        if len(nulling) == 4:
            levels = [calibration_values(recs[i]) for i in nulling]
            checks.check(all(second == 0.0 for _, second in levels), program + ": the previous levels are 0.00")
            # The levels are the mean of 50 frames: x 4.8333 / gain x 2 ('T').
            means = mean_windows([mk2_values(f, 1.0) for _, f in sent], 50)
            found = any(all(abs(m[i] - levels[i][0]) <= 0.006 for i in range(3)) and
                        abs(m[3] - levels[3][0]) <= 0.006 * max(1.0, abs(m[3])) for m in means)
            checks.check(found, program + ": the zero levels %s are the mean of 50 frames sent" % [v for v, _ in levels])
        logged = recording(checks, program, recs, sent)
        checks.check(any(r[0:1] == b"M" for r in logged), program + ": the marker frame was logged")
        checks.check(all(r[13] == 0x0B and r[14] == 0xB8 for r in logged), program + ": raw current 3000 kept")
        # The ring runs without a correction too: the average 3000.00 stands in offsets 10 to 12.
        checks.check(all(r[10] == 0x0B and r[11] == 0xB8 and r[12] == 0 for r in logged),
                     program + ": the average current in offsets 10 to 12")


def views(checks):
    """Kelvo61MK2 with the GPS: the four channels' curves in the first curve
    window, four bars in the decay window, the swath of channel 3 on the map."""
    program = "Kelvo61MK2"
    with harness.Sandbox("em61-mk2-views") as box:
        path = session.first_start(box, program)
        lines = dict(MK2_LINES, **MK2_SCALE)
        settings(path, lines, {"GpsInput": 1, "GpsDataOption": 1, "SampleInterval": "0.100000", "Em61Type": 2,
                               "MapDisplayMode": 3, "ScaleMin": "-10.000000", "ScaleMax": "150.000000"})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61mk2", ["--target-every", "3", "--target-amplitude", "900"], gps=True)
        if not start_session(checks, box, window, log, program + " views", "MK2VIEW"):
            return
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), program + " views: Logging")
        time.sleep(6)
        check_views(checks, program + " views", box, "em61-mk2-views", 1, 4, [DECAY_ID], True)
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), program + " views: a key pauses")
        leave(box, checks, program, window, run)
        tell(sim, "quit")


def polled(checks):
    program = "Lum61MK2"
    with harness.Sandbox("em61-mk2-polled") as box:
        path = session.first_start(box, program)
        settings(path, MK2_LINES, {"GpsInput": 0, "SampleInterval": "0.100000"})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61mk2", ["--polled", "--reply", "none", "--target-every", "0", "--stamp"])
        box.key(window, "l")
        checks.equal(session.wait_dialog(box, "Connection Issue", timeout=20),
                     "Instrument OFF or Disconnected, or wrong COM port selected",
                     program + ": no reply to the handshake")
        answer(box, "Connection Issue")
        tell(sim, "reply wrong")
        box.key(window, "l")
        checks.equal(session.wait_dialog(box, "Connection Issue", timeout=20),
                     "Instrument OFF or Disconnected, or wrong COM port selected",
                     program + ": a wrong reply to the handshake")
        answer(box, "Connection Issue")
        tell(sim, "reply noisy")
        if not start_session(checks, box, window, log, program, "MK2POLL", "a reply with noise in it is taken"):
            return
        box.key(window, "g")
        time.sleep(5)
        tell(sim, "quiet instrument 1.5")   # the cable pulled during a poll
        time.sleep(6)
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), program + ": the screen still answers after the break")
        leave(box, checks, program, window, run)
        tell(sim, "quit")
        time.sleep(0.5)

        wrote = received(log)
        checks.equal(wrote[:14], b"HX" * 7, program + ": three rounds of \"H\" \"X\" for each refused start, then one")
        rest = wrote[14:].decode("latin-1")
        checks.check(re.fullmatch(r"A+(HX)+A+", rest) is not None,
                     program + ": then polls, the handshake again after the break, polls (%s...)" % rest[:40])
        polls = [ms for ms, b in received_times(log) if b == b"A"]
        gaps = sorted(b - a for a, b in zip(polls, polls[1:]))
        median = gaps[len(gaps) // 2] if gaps else 0
        harness.log("%s: %d polls, median gap %d ms" % (program, len(polls), median))
        checks.check(80 <= median <= 140, program + ": a poll each 100 ms (median %d ms)" % median)
        data, names = data_file(box, "MK2POLL")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return
        recs = records(data)
        harness.log(program + ": records by tag", tag_counts(recs))
        checks.equal(recs[0][0:9], b"LUMMK2  W", program + ": signature")
        checks.equal(recs[2][15:16], b"1", program + ": Em61FastLink 1 in record 3")
        started = index_of(recs, "$STARTED")
        paused = index_of(recs, "PAUSED")
        breaks = [i for i, r in enumerate(recs) if r[1:12] == b"1CONN BRK 1"]
        checks.check(len(breaks) >= 3, program + ": %d break records while the cable was out" % len(breaks))
        logged = readings(recs, started, paused)
        sent = sent_frames(log)
        before = [r for r in logged if breaks and recs.index(r) < breaks[0]]
        after = [r for r in logged if breaks and recs.index(r) > breaks[-1]]
        checks.check(len(before) > 20 and len(after) > 20,
                     program + ": readings before (%d) and after (%d) the break" % (len(before), len(after)))
        in_order_once(checks, program + " before the break", before, sent)
        in_order_once(checks, program + " after the break", after, sent)
        start_tick = marker_ticks(recs, "$STARTED")[0] if started > 0 else 0
        checks.check(all(tick(r) >= start_tick for r in logged), program + ": no reading older than \"$STARTED\"")
        frames_per_second = len(logged) / max(0.001, (tick(logged[-1]) - tick(logged[0])) / 1000.0) if logged else 0
        harness.log("%s: %d frames sent, %d readings logged, %.1f readings/s while logging" %
                    (program, len(sent), len(logged), frames_per_second))


import re  # noqa: E402


def main():
    checks = harness.Checks()
    continuous(checks)
    views(checks)
    polled(checks)
    checks.finish()


if __name__ == "__main__":
    main()
