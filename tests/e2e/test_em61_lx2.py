#!/usr/bin/env python3
"""The EM61-LX2 end to end, with one and with two sensors. Each run walks the
filter calibration by keys (the coils lifted for the first part), logs a line
over metal targets beside the walk, and reads the data file back: its "O" and
"I" records against the frames the simulator sent, every frame logged once and
in order. Kelvo61LX2, one sensor: nulling in Stand By, the calibration refused
by its ratio, the Simple alarm ringing over each target, a soft marker held
on an arrow key. Lum61LX2, two sensors: the calibration accepted, the
Enhanced alarm speaking the side of each target. The sounds the program asked
for are read from Wine's sound trace."""
import time

import harness
import test_session_start as session
from em61_walk import (LX2_LINES, answer, calibration_values, data_file, leave, lx2_values, mean_windows, read_log,
                       received, recording, records, sent_frames, settings, sounds, start_session, start_simulator,
                       start_traced, tag_counts, tell, wait_screen)

SPEED = 2.0
EVERY = 6.0
FLAGS_KEEP_PLAYING = 0x40015
FLAGS_CUTTING = 0x40005


def calibrate(checks, box, sim, program, window, lifted_seconds):
    """Menu, "Ca&librate Filter", the coils lifted for the first part, on the
    ground for the second; returns the title and text of the last box."""
    box.key(window, "m")
    time.sleep(1)
    box.xdotool(["key", "l"])
    checks.check(answer(box, "Filter Calibration Part 1"), program + ": \"Filter Calibration Part 1\"")
    tell(sim, "lift %.1f" % lifted_seconds)
    lifted_at = time.time()
    part2 = "Filter Calibration Part 2" if "two" in program else "Calibration Part 2"
    dialog = box.wait_title(part2, timeout=20)
    checks.check(dialog is not None, program + ": the second part's box after the offsets in the air")
    time.sleep(max(0.0, lifted_at + lifted_seconds + 0.5 - time.time()))
    answer(box, part2)


def lx2_run(checks, program, two, alarm_type, expected_words):
    label = program + (" two sensors" if two else " one sensor")
    with harness.Sandbox("em61-lx2-%s" % ("two" if two else "one")) as box:
        path = session.first_start(box, program)
        # No ring for a late link: the rings are the alarm's. With one sensor
        # no ticks either: a tick that plays would keep a ring (which doesn't
        # cut) from sounding, and the trace names only sounds that play.
        settings(path, LX2_LINES, {"GpsInput": 0, "SampleInterval": "0.050000", "Em61Type": 2,
                                   "SensorCount": 1 if two else 0, "AlarmType": alarm_type, "AlarmAudio": 1,
                                   "SoftMarkerKey": 1, "AudioDisconnectAlarm": 0, "AudioTicks": 1 if two else 0})
        run, window, trace = start_traced(box, program)
        extra = ["--sensors", "2" if two else "1", "--speed", str(SPEED), "--target-every", str(EVERY),
                 "--target-start", "96", "--line-length", "124", "--lines", "1"]
        if not two:
            # One sensor on the line sees a target beside it weakly: stronger
            # targets keep each one clear above the level.
            extra += ["--stamp", "--target-amplitude", "1200"]
        sim, log = start_simulator(box, "em61lx2", extra)
        sim_start = time.time()
        if not start_session(checks, box, window, log, label, "LX2RUN"):
            return
        calibrate(checks, box, sim, label, window, 9.0)
        if two:
            text = session.wait_dialog(box, "Filter Calibration Complete", timeout=25)
            checks.check(text is not None and text.startswith("Filter Factor for Left  Sensor = "),
                         label + ": the calibration's result for both sensors (%r)" % text)
            answer(box, "Filter Calibration Complete")
        else:
            text = session.wait_dialog(box, "Filter Factor Left Coil", timeout=25)
            # The window list shows each line break as "||".
            checks.check(text is not None and text.startswith("Calibration Failed.||Calculated Filter Factor for Left Coil ( ")
                         and text.endswith(" )|| is out of valid range ( 125 to 1000 ).||Program restores previous value ( 310.0 )"),
                         label + ": one sensor's ratio fails the range of the factor (%r)" % text)
            answer(box, "Filter Factor Left Coil")
            time.sleep(1)
            box.key(window, "u")
            checks.check(answer(box, "NULLING"), label + ": Nulling in Stand By asks first")
            time.sleep(7)
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), label + ": Logging")
        if not two:
            time.sleep(2)
            box.xdotool(["keydown", "Up"])
            time.sleep(0.6)
            box.xdotool(["keyup", "Up"])
        # On past the fifth and last target (at 96 + 4 x 6 m), before the walk
        # turns at the line's end (124 m) and comes back over it.
        time.sleep(max(0.0, sim_start + (96 + 4 * EVERY + 3) / SPEED - time.time()))
        box.screenshot("em61-lx2-%s-logging" % ("two" if two else "one"))
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), label + ": a key pauses")
        leave(box, checks, label, window, run)
        tell(sim, "quit")
        time.sleep(0.5)

        checks.equal(received(log), b"HX", label + ": the program wrote \"H\" \"X\" and nothing else")
        asked = sounds(trace)
        harness.log(label + ": sounds asked for (name, flags, trace seconds):",
                    [s for s in sounds(trace, timed=True) if s[0] != "SOUND_RESULT"])
        alarm = [(n, f) for n, f in asked if n != "SOUND_RESULT"]
        checks.equal([n for n, _ in alarm], expected_words, label + ": the alarm's sounds over the five targets")
        expected_flags = FLAGS_KEEP_PLAYING if alarm_type == 1 else FLAGS_CUTTING
        checks.check(all(f == expected_flags for _, f in alarm), label + ": their flags %s" % set(f for _, f in alarm))
        if two:
            checks.check(any(n == "SOUND_RESULT" and f == FLAGS_KEEP_PLAYING for n, f in asked),
                         label + ": the ticks of readings while Logging")
        else:
            checks.check(not any(n == "SOUND_RESULT" for n, f in asked), label + ": no tick with the ticks off")

        data, names = data_file(box, "LX2RUN")
        if not checks.check(data is not None, label + ": one data file (%s)" % names):
            return
        recs = records(data)
        harness.log(label + ": records by tag", tag_counts(recs))
        # The sensors' count and the N.C.C. type mark the signature.
        signature = ("KLV" if program.startswith("Kelvo") else "LUM") + "LX" + ("2" if two else "1") + "N W"
        checks.equal(recs[0][0:9], signature.encode(), label + ": signature")
        tags = "".join(chr(r[0]) for r in recs[:24])
        head = "KHGGGOOOOIILBAZOOOOII*" if program.startswith("Kelvo") else "LHGOOOOIILBAZOOOOII*"
        checks.check(tags.startswith(head), label + ": header and line header with \"O\" and \"I\" (%s)" % tags)
        header_i = [calibration_values(r) for r in recs if r[0:1] == b"I"][:2]
        checks.equal(header_i, [(310.0, 0.0), (310.0, 0.0)], label + ": the header's filter records")
        sent = sent_frames(log)
        starts = [i for i, r in enumerate(recs) if r[1:9] == b"$STARTED"]
        before = recs[:starts[0] if starts else 0]
        notes = [(ms, text) for ms, stream, text in read_log(log) if stream == "note"]
        lifted_ms = [ms for ms, text in notes if "coils lifted" in text]
        air = [lx2_values(f) for ms, f in sent if lifted_ms and lifted_ms[0] + 500 <= ms <= lifted_ms[0] + 8500]
        ground = [lx2_values(f) for ms, f in sent if lifted_ms and lifted_ms[0] + 9500 <= ms <= lifted_ms[0] + 20000]
        offsets = [sum(v[i] for v in air) / max(1, len(air)) for i in range(4)]
        if two:
            o_records = [calibration_values(r) for r in before if r[0:1] == b"O"][8:]
            i_records = [calibration_values(r) for r in before if r[0:1] == b"I"][4:]
            checks.equal(len(o_records), 4, label + ": the accepted calibration writes four \"O\" records")
            checks.equal(len(i_records), 2, label + ": and two \"I\" records")
            if len(o_records) == 4 and len(i_records) == 2:
                checks.check(all(abs(o_records[i][0] - offsets[i]) <= 0.5 and o_records[i][1] == 0.0 for i in range(4)),
                             label + ": the offsets %s are the lifted coils' %s" %
                             ([v for v, _ in o_records], ["%.2f" % v for v in offsets]))
                for side in (0, 1):
                    e = sum(v[2 * side] for v in ground) / max(1, len(ground)) - offsets[2 * side]
                    l = sum(v[2 * side + 1] for v in ground) / max(1, len(ground)) - offsets[2 * side + 1]
                    ratio = e / l if l else 0.0
                    factor = ratio * 128 - 44 if ratio > 3.1 else ratio * 108 + 18
                    checks.check(abs(i_records[side][0] - factor) <= 0.02 * factor and i_records[side][1] == 310.0,
                                 label + ": side %d's filter factor %.2f from the frames' %.2f, previous 310.00" %
                                 (side, i_records[side][0], factor))
        else:
            o_records = [calibration_values(r) for r in before if r[0:1] == b"O"][8:]
            checks.equal(len(o_records), 4, label + ": the nulling writes four \"O\" records")
            means = mean_windows([lx2_values(f)[:2] for ms, f in sent], 100)
            if len(o_records) == 4:
                found = any(abs(m[0] - o_records[0][0]) <= 0.006 and abs(m[1] - o_records[1][0]) <= 0.006 for m in means)
                checks.check(found, label + ": the zero levels %s are the mean of 100 frames sent" %
                             [v for v, _ in o_records[:2]])
        # The soft marker changes the letter only: 'T' was sent.
        logged = recording(checks, label, recs, sent, lx2=True,
                           as_sent=lambda r: b"T" + r[1:] if r[0:1] == b"M" and not two else r)
        if not two:
            marked = [r for r in logged if r[0:1] == b"M"]
            checks.check(len(marked) >= 3, label + ": %d readings marked while the arrow key was held" % len(marked))


def main():
    checks = harness.Checks()
    lx2_run(checks, "Kelvo61LX2", False, 1, ["SOUND_RING"] * 5)
    lx2_run(checks, "Lum61LX2", True, 2, ["LEFTSOUND", "BETWEENSOUND", "RIGHTSOUND", "LEFTRIGHTSOUND", "LEFTSOUND"])
    checks.finish()


if __name__ == "__main__":
    main()
