#!/usr/bin/env python3
"""The EM61-LX2 programs the other way round from test_em61_lx2: Kelvo61LX2
with two sensors and the Simple alarm speaking the side of the first crossing
of the level, nulled in Monitoring so that the new file's header carries the
zero levels; Lum61LX2 with one sensor and the Enhanced alarm ringing over each
target but the one whose peak passes the maximum level. Each data file is
read back against the frames the simulator sent."""
import time

import harness
import test_session_start as session
from em61_walk import (BAR_I_ID, BAR_Q_ID, DECAY_ID, LX2_LINES, LX2_SCALE, calibration_values, check_views,
                       create_file, data_file, leave, lx2_values, mean_windows, received, recording, records,
                       sent_frames, settings, sounds, start_session, start_simulator, start_traced, tag_counts, tell,
                       wait_normalised, wait_screen)

SPEED = 2.0
EVERY = 6.0
FIRST = 40.0


def run(checks, program, two, alarm_type, expected_words, expected_flags):
    label = program + (" two sensors" if two else " one sensor")
    with harness.Sandbox("em61-lx2s-%s" % ("two" if two else "one")) as box:
        path = session.first_start(box, program)
        settings(path, LX2_LINES, {"GpsInput": 0, "SampleInterval": "0.050000", "Em61Type": 2,
                                   "SensorCount": 1 if two else 0, "AlarmType": alarm_type, "AlarmAudio": 1,
                                   "AudioDisconnectAlarm": 0})
        program_run, window, trace = start_traced(box, program)
        extra = ["--sensors", "2" if two else "1", "--speed", str(SPEED), "--target-every", str(EVERY),
                 "--target-start", str(FIRST), "--line-length", str(FIRST + 4 * EVERY + 4), "--lines", "1"]
        if not two:
            extra.append("--stamp")
        sim, log = start_simulator(box, "em61lx2", extra)
        sim_start = time.time()
        box.key(window, "l")
        if not checks.check(wait_screen(box, 460, "&File"), label + ": the handshake starts the session"):
            return
        checks.check(wait_normalised(log), label + ": the first 98 frames normalise")
        if two:
            box.key(window, "u")   # Nulling in Monitoring: no question, no record
            time.sleep(7)
        if not checks.check(create_file(box, window, "LX2S"), label + ": \"&File\" brings Stand By"):
            return
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), label + ": Logging")
        # Past the fifth target, before the walk turns at the line's end.
        time.sleep(max(0.0, sim_start + (FIRST + 4 * EVERY + 3) / SPEED - time.time()))
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), label + ": a key pauses")
        leave(box, checks, label, window, program_run)
        tell(sim, "quit")
        time.sleep(0.5)

        checks.equal(received(log), b"HX", label + ": the program wrote \"H\" \"X\" and nothing else")
        harness.log(label + ": sounds asked for (name, flags, trace seconds):",
                    [s for s in sounds(trace, timed=True) if s[0] != "SOUND_RESULT"])
        alarm = [(n, f) for n, f in sounds(trace) if n != "SOUND_RESULT"]
        checks.equal([n for n, _ in alarm], expected_words, label + ": the alarm's sounds over the five targets")
        checks.check(all(f == expected_flags for _, f in alarm), label + ": their flags %s" % set(f for _, f in alarm))
        data, names = data_file(box, "LX2S")
        if not checks.check(data is not None, label + ": one data file (%s)" % names):
            return
        recs = records(data)
        harness.log(label + ": records by tag", tag_counts(recs))
        sent = sent_frames(log)
        header_o = [calibration_values(r) for r in recs[:12] if r[0:1] == b"O"]
        if two:
            # The header keeps the zero levels of the nulling in Monitoring: means of 100 frames.
            means = mean_windows([lx2_values(f) for _, f in sent], 100)
            found = any(all(abs(m[i] - header_o[i][0]) <= 0.006 for i in range(4)) for m in means)
            checks.check(len(header_o) == 4 and found,
                         label + ": the header's zero levels %s are the mean of 100 frames sent" % header_o)
        else:
            checks.equal(header_o, [(0.0, None)] * 4, label + ": zero levels 0.00 without a nulling")
        recording(checks, label, recs, sent, lx2=True)


def views(checks, two):
    """Kelvo61LX2 with the GPS: one sensor's early, late and filtered curves in
    the first curve window and three bars in the decay window; with two
    sensors each sensor's curves in a curve window of its own and its three
    bars in a bar window of its own; the swath of the late channel on the map."""
    program = "Kelvo61LX2"
    label = program + " views" + (" two sensors" if two else " one sensor")
    with harness.Sandbox("em61-lx2-views-%s" % ("two" if two else "one")) as box:
        path = session.first_start(box, program)
        settings(path, dict(LX2_LINES, **LX2_SCALE),
                 {"GpsInput": 1, "GpsDataOption": 1, "SampleInterval": "0.100000", "Em61Type": 2,
                  "SensorCount": 1 if two else 0, "AlarmType": 0, "AudioDisconnectAlarm": 0, "MapDisplayMode": 2,
                  "ScaleMin": "-10.000000", "ScaleMax": "150.000000"})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61lx2", ["--sensors", "2" if two else "1", "--target-every", "3",
                                                     "--target-amplitude", "900"], gps=True)
        if not start_session(checks, box, window, log, label, "LX2VIEW"):
            return
        box.key(window, "g")
        checks.check(wait_screen(box, 460, "P A U S E"), label + ": Logging")
        time.sleep(6)
        check_views(checks, label, box, "em61-lx2-views-%s" % ("two" if two else "one"), 2 if two else 1, 3,
                    [BAR_Q_ID, BAR_I_ID] if two else [DECAY_ID], True)
        box.key(window, "p")
        checks.check(wait_screen(box, 460, "&Go"), label + ": a key pauses")
        leave(box, checks, label, window, run)
        tell(sim, "quit")


def main():
    checks = harness.Checks()
    # Simple: the side of the first reading over the level; the pair of targets
    # of "both" reaches it on the stronger left side first.
    run(checks, "Kelvo61LX2", True, 1, ["LEFTSOUND", "BETWEENSOUND", "RIGHTSOUND", "LEFTSOUND", "LEFTSOUND"], 0x40005)
    # Enhanced: the target between the sensors' line peaks above the maximum level.
    run(checks, "Lum61LX2", False, 2, ["RINGINSOUND"] * 4, 0x40005)
    views(checks, False)
    views(checks, True)
    checks.finish()


if __name__ == "__main__":
    main()
