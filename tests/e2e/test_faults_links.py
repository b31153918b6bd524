#!/usr/bin/env python3
"""Cables of a day in the field, in one logged EM31-MK2 survey (Kelvo31, a
10 Hz receiver, every frame kept):
  - the GPS cable pulled for 10 s and put back: silence on the GPS line; the
    receiver's break every 3 s ("GPS CONN BRK", the port closed and opened
    again) and logging going on when sentences return;
  - the instrument cable pulled for 4 s and put back: "1CONN BRK 1" at each
    tick of the session timer, the "Lost Connection, trying" panel, and the
    readings back after it;
  - the GPS port vanishing as a USB adapter does and coming back: its pty
    pair removed while the program holds the port, and made again; the
    reopening fails with "Cannot open COM6 for GPS" (the GPS thread waits in
    that box), and after the box the next break opens the new port and
    logging goes on.
The data file is read back against the simulator's log: every frame and
sentence sent while Logging is in it once, in order."""
import os
import subprocess
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

PROGRAM = "Kelvo31"
RECORD = 27
TICK_AT = 16
FRAME_MS = 1000.0 / 10.5


# About how long the test runs alone, so that ctest starts the longest first.
SECONDS = 60

def tick(rec):
    return int(rec[TICK_AT:TICK_AT + 10])


def markers(recs, text):
    return [i for i, r in enumerate(recs) if r[0:1] == b"X" and r[1:12].rstrip(b" ") == text]


def survey(checks, box):
    walk.settings(box, PROGRAM, {"GpsDataOption": 1, "SampleInterval": "0.100000", "SurveyMode": 0,
                                 "MapDisplayMode": 1, "AudioTicks": 0})
    gps_peer = box.serial_pair(walk.GPS_COM, by_link=True)
    log_path = os.path.join(box.prefix, "sent.log")
    sim = box.spawn([os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps_peer,
                     "--gps-option", "1", "--rate", "10", "--instrument", box.serial_pair(walk.INSTRUMENT_COM),
                     "--model", "em31", "--log", log_path, "--line-length", "25", "--speed", "1.5"],
                    stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    run, window = session.start_program(box, PROGRAM)
    if not checks.check(walk.open_logging(box, window), "logging screen and a first fix"):
        return None
    if walk.go(box, checks, PROGRAM, "CABLES", sim, run, window, log_path) is None:
        return None
    started = time.time()

    def at(seconds):
        time.sleep(max(0.0, started + seconds - time.time()))

    # The GPS cable out for 10 s.
    at(3)
    walk.send(sim, "quiet gps 10")
    # The instrument cable out for 4 s.
    at(16)
    walk.send(sim, "quiet instrument 4")
    at(18)
    silent_shot = box.screenshot("faults-instrument-cable")
    bars = [walk.window_rect(box, 620), walk.window_rect(box, 630)]
    bar_area = None
    if all(bars):
        bar_area = (min(r[0] for r in bars), min(r[1] for r in bars), max(r[2] for r in bars),
                    min(r[1] for r in bars) + 60)
    at(22)
    normal_shot = box.screenshot("faults-instrument-back")
    # The USB adapter of the GPS vanishes, and comes back.
    box.unplug(walk.GPS_COM)
    text = session.wait_dialog(box, "Serial Port", timeout=12)
    checks.equal(text, "Cannot open COM%d for GPS" % walk.GPS_COM,
                 "the vanished port: the reopening fails and says so")
    time.sleep(2)
    box.serial_pair(walk.GPS_COM, by_link=True)
    checks.check(gps_survey.answer(box, "Serial Port"), "the box is answered once the adapter is back")
    time.sleep(9)
    checks.equal(session.dialogs(box), [], "the next break opens the new port: no further box")
    checks.check(run.running(), "the program goes on")
    # Keys go first to the frame after a box of the GPS thread; the button is tapped.
    box.click_control(text="P A U S E")
    checks.check(session.control_visible(box, 460, "&Go", timeout=15), "paused")
    walk.finish(box, checks, PROGRAM, sim, run, window)
    data, names = walk.read_file(box, "CABLES")
    if not checks.check(data is not None, "one data file (%s)" % names):
        return None
    return data, log_path, silent_shot, normal_shot, bar_area


def check_gps(checks, recs, log_path):
    groups = gps_survey.gps_groups(recs, RECORD)
    sent = gps_survey.sent_sentences(log_path)
    breaks = markers(recs, b"GPS CONN BR")
    if not checks.check(len(breaks) >= 5, "GPS breaks written (%d)" % len(breaks)):
        return
    # The cable: three breaks 3 s apart in the 10 s of silence.
    before = [g for g in groups if g[4] < breaks[0]]
    cable = [b for b in breaks if not any(breaks[0] < g[4] < b for g in groups)]
    checks.equal(len(cable), 3, "the 10 s without the GPS cable: a break every 3 s")
    # Not before 3001 ms without a good sentence; a busy machine may be later.
    first = tick(recs[cable[0]]) - int(before[-1][3])
    checks.check(2990 <= first <= 4500, "the first break 3 s after the last sentence (%d ms)" % first)
    steps = [tick(recs[b]) - tick(recs[a]) for a, b in zip(cable, cable[1:])]
    checks.check(all(2990 <= s <= 4500 for s in steps), "breaks follow each other at 3 s (%s ms)" % steps)
    # Logging goes on after the cable is back, up to the vanished adapter.
    vanish = [b for b in breaks if b > cable[-1]]
    middle = [g[0] for g in groups if cable[-1] < g[4] < vanish[0]]
    checks.check(gps_survey.stands_in_order(sent, [g[0] for g in before]),
                 "%d sentences before the cable was pulled, each once, in order" % len(before))
    checks.check(len(middle) > 50 and gps_survey.stands_in_order(sent, middle),
                 "%d sentences after the cable is back, each once, in order, none lost" % len(middle))
    # The adapter: breaks while it is gone, the last one opens the new port.
    after = [g[0] for g in groups if g[4] > vanish[-1]]
    checks.check(len(vanish) >= 2, "breaks while the adapter is gone and at its return (%d)" % len(vanish))
    checks.check(len(after) > 50 and gps_survey.stands_in_order(sent, after),
                 "%d sentences after the adapter came back, each once, in order, none lost" % len(after))


def check_instrument(checks, recs, log_path):
    breaks = markers(recs, b"1CONN BRK 1")
    checks.check(9 <= len(breaks) <= 16, "4 s without the instrument: \"1CONN BRK 1\" at each tick (%d)"
                 % len(breaks))
    if len(breaks) < 2:
        return
    # A late tick of the timer is followed by an early one; most keep time.
    steps = [tick(recs[b]) - tick(recs[a]) for a, b in zip(breaks, breaks[1:])]
    on_time = sum(1 for s in steps if 250 <= s <= 400)
    checks.check(on_time >= 0.75 * len(steps) and min(steps) >= 50,
                 "one break record per tick of 300 ms (%d of %d steps; %s ms)" % (on_time, len(steps), sorted(steps)))
    checks.check(breaks == list(range(breaks[0], breaks[0] + len(breaks))) or
                 all(recs[i][0:1] != b"T" for i in range(breaks[0], breaks[-1])),
                 "no reading between the break records")
    after = [r for r in recs[breaks[-1]:] if r[0:1] == b"T"]
    checks.check(len(after) > 50, "readings resume after the cable is back (%d)" % len(after))
    starts = [i for i, r in enumerate(recs) if r[0:9] == b"X$STARTED"]
    pauses = [i for i, r in enumerate(recs) if r[0:7] == b"XPAUSED"]
    frames = walk.good_frames(walk.sent_instrument_bytes(log_path), 12)
    texts, positions = walk.check_readings(checks, "", recs[starts[0]:pauses[-1]], RECORD, frames, 12, 1, FRAME_MS)
    skipped = sum(b - a - 1 for a, b in zip(positions, positions[1:]))
    checks.check(len(positions) == len(texts) and skipped == 0,
                 "every frame sent while Logging is in the file once (%d readings, %d left out)"
                 % (len(texts), skipped))


def check_panel(checks, silent_shot, normal_shot, box_rect):
    """The lost-connection panel: bold dark text on the bar area while the
    instrument is silent, none once it is back."""
    if box_rect is None:
        checks.check(False, "the bar area was found")
        return
    silent = session.dark_pixels(silent_shot, box_rect)
    normal = session.dark_pixels(normal_shot, box_rect)
    checks.check(silent > 150 and silent > 3 * normal,
                 "\"Lost Connection, trying\" shows while the instrument is silent (%d dark pixels, %d after)"
                 % (silent, normal))


def main():
    checks = harness.Checks()
    with harness.Sandbox("faults-links") as box:
        result = survey(checks, box)
        if result is not None:
            data, log_path, silent_shot, normal_shot, bar_area = result
            check_panel(checks, silent_shot, normal_shot, bar_area)
            checks.equal(len(data) % RECORD, 0, "the file is whole records")
            recs = gps_survey.records(data, RECORD)
            checks.check(all(r[-1:] == b"\n" and b"\n" not in r[:-1] for r in recs), "every record ends in its LF")
            check_gps(checks, recs, log_path)
            check_instrument(checks, recs, log_path)
    checks.finish()


if __name__ == "__main__":
    main()
