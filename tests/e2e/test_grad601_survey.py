#!/usr/bin/env python3
"""Grad601 surveys end to end: Kelvo601 with two sensors and the GPS, Lum601
with one sensor and no GPS, the field simulator playing "$PBAR" sentences
with bad lines among them (a line one byte short, one without CR, one of 140
characters, letters in a value, random bytes) and a silence while Logging.
The data file is read back: every reading record is a sentence the simulator
sent, in the record form, none lost between the first and the last; the bad
lines left no record; the silence left "1CONN BRK 1" remarks and the
readings came back after it. Screenshots while Logging: each sensor's
profile in its own curve window and its bar in its own bar window, in the
sensor's pen, with one sensor the first curve window and the single bar;
the colour image of one and of two sensors (a short Kelvo601 walk with one
sensor); "Setup Display Options" with the two sensors' rows from the
logging screen and from the main menu."""
import os
import subprocess
import time

import em31_family_walk as walk
import harness
import readout_checks as readouts
import sent_log
import test_gps_survey as survey
import test_session_start as session

INSTRUMENT_COM = 4
LINE_SENSOR_COUNT = 5
LINE_GPS_INPUT = 23
LINE_SCALE_MIN = 21
LINE_SCALE_MAX = 22
# Sensor #1 and #2 in the pens of the first start (stored 0x00BBGGRR).
PENS = [readouts.rgb_of_setting(16711680), readouts.rgb_of_setting(65280)]


def send(sim, text):
    sim.stdin.write((text + "\n").encode())
    sim.stdin.flush()


def good_sentences(log_path):
    """The sentences the logger may take: CR LF last, "$PBAR" first, 9 bytes
    or more up to the CR, short enough for the frame buffer."""
    out = []
    for _, raw in sent_log.messages(log_path, "instrument"):
        if raw.endswith("\r\n") and raw.startswith("$PBAR") and 9 <= len(raw) - 1 and len(raw) - 2 < 128:
            out.append(raw[:-2])
    return out


def record_text(sentence):
    """'T', the first two characters, then from the sixth on; up to the tick's column."""
    return ("T" + sentence[:2] + sentence[5:])[:16]


def start(box, program, sensors, gps, log_path):
    """Settings, the simulator (on both ports with the GPS), the program and
    its logging screen; (simulator, program run, window) or None."""
    path = session.first_start(box, program)
    changes = {LINE_SENSOR_COUNT: sensors - 1, LINE_SCALE_MIN: "0.000000", LINE_SCALE_MAX: "20.000000"}
    if not gps:
        changes[LINE_GPS_INPUT] = 0
    session.edit_settings(path, changes)
    if gps:
        sim = walk.start_sim(box, "grad601", log_path, ["--sensors", str(sensors)])
    else:
        peer = box.serial_pair(INSTRUMENT_COM)
        sim = box.spawn([os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--instrument", peer,
                         "--model", "grad601", "--sensors", str(sensors), "--log", log_path],
                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    started, window = session.start_program(box, program)
    if gps:
        opened = walk.open_logging(box, window)
    else:
        box.key(window, "l")
        opened = session.control_visible(box, 460, "&File")
    return (sim, started, window) if opened else None


def check_views(checks, name, shot, box, sensors, colour):
    """The profile and bars of each sensor in its windows and pen; the swath."""
    curves = readouts.window_rects(box, readouts.CURVE_ID)
    checks.equal(len(curves), sensors, name + ": curve windows shown")
    for sensor, rect in enumerate(curves[:sensors]):
        readouts.check_pens(checks, "%s: the profile of sensor %d" % (name, sensor + 1), shot, rect, [PENS[sensor]])
    bar_windows = [readouts.BAR_Q_ID, readouts.BAR_I_ID] if sensors == 2 else [readouts.DECAY_ID]
    for sensor, control in enumerate(bar_windows):
        rects = readouts.window_rects(box, control)
        if checks.check(len(rects) == 1, "%s: bar window %d shown" % (name, control)):
            readouts.check_pens(checks, "%s: the bar of sensor %d" % (name, sensor + 1), shot, rects[0],
                                [PENS[sensor]], least=20)
    if colour:
        readouts.check_swath(checks, name, shot, box, two_sensors=sensors == 2)


def display_options(checks, box, window, name, key):
    """"Setup Display Options" by its key ("o" in the logging screen, "p" in
    the main menu) with the rows of the two sensors; Cancel."""
    box.key(window, key)
    dialog = box.wait_title("Setup Display Options", timeout=20)
    if not checks.check(dialog is not None, name + ": \"Setup Display Options\" opens"):
        return
    time.sleep(0.5)
    texts = [row["text"] for row in box.windows()]
    checks.check("Sensor #1" in texts and "Sensor #2" in texts, name + ": the rows \"Sensor #1\" and \"Sensor #2\"")
    checks.check("Sensor #1 settings are used for one sensor system." in texts, name + ": the note of one sensor")
    box.screenshot("grad601-%s-display-options" % name)
    box.xdotool(["key", "Escape"])
    box.window_gone("Setup Display Options")


def run(checks, program, sensors, gps):
    name = "%s-%d" % (program, sensors)
    with harness.Sandbox("grad601-" + name) as box:
        log_path = os.path.join(box.prefix, "sent.log")
        opened = start(box, program, sensors, gps, log_path)
        if not checks.check(opened is not None, name + ": the session starts"):
            return
        sim, started, window = opened
        time.sleep(2)
        box.screenshot("grad601-%s-monitoring" % name)
        if not checks.check(survey.log_to_file(box, window, "GRAD"), name + ": \"&File\" brings Stand By"):
            return
        time.sleep(3)
        for fault in ("short", "letters", "no-end", "long"):
            send(sim, "fault " + fault)
            time.sleep(0.4)
        send(sim, "garbage instrument 300")
        time.sleep(2)
        send(sim, "quiet instrument 2.5")
        time.sleep(5)
        shot = box.screenshot("grad601-%s-logging" % name)
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        check_views(checks, name, shot, box, sensors, gps and program.startswith("Kelvo"))
        if gps:
            display_options(checks, box, window, name, "o")
        walk.finish(box, checks, name, sim, started, window)
        data, files = walk.read_file(box, "GRAD", "grad601-" + name)
        if not checks.check(data is not None, name + ": the data file exists (%s)" % files):
            return
        check_file(checks, name, program, sensors, data, good_sentences(log_path), log_path)


def colour_of_one_sensor(checks):
    """Kelvo601 with one sensor: its profile, single bar and swath; the
    display options from the main menu afterwards."""
    program = "Kelvo601"
    name = program + "-1"
    with harness.Sandbox("grad601-" + name) as box:
        log_path = os.path.join(box.prefix, "sent.log")
        opened = start(box, program, 1, True, log_path)
        if not checks.check(opened is not None, name + ": the session starts with the GPS"):
            return
        sim, started, window = opened
        if not walk.go(box, checks, program, "ONE", sim, started, window, log_path):
            return
        time.sleep(8)
        shot = box.screenshot("grad601-%s-logging" % name)
        walk.pause(box, window)
        check_views(checks, name, shot, box, 1, True)
        walk.leave(box, window)
        display_options(checks, box, window, name + " main menu", "p")
        box.key(window, "x")
        checks.equal(started.wait(30), 0, name + ": exit code 0")
        send(sim, "quit")


def check_file(checks, name, program, sensors, data, sent, log_path):
    what = name + ": "
    checks.equal(len(data) % 27, 0, what + "whole records of 27 bytes")
    recs = sent_log.records(data)
    checks.check(all(r[-1:] == b"\n" for r in recs), what + "each record ends in its line feed")
    first = recs[0].decode("latin-1")
    checks.equal(first[0:9], "KLV601 AW" if program.startswith("Kelvo") else "LUM601 AW", what + "signature")
    checks.equal(first[19], str(sensors - 1), what + "sensors minus 1 in record 1")
    readings = [r for r in recs if chr(r[0]) == "T"]
    texts = [r[0:16].decode("latin-1").rstrip(" ") for r in readings]
    expected = [record_text(s).rstrip(" ") for s in sent]
    checks.check(len(readings) > 50, what + "%d reading records" % len(readings))
    checks.check(sent_log.longest_run_match(texts, expected),
                 what + "the %d readings are the simulator's sentences, in order, none lost" % len(texts))
    # Each record against the sentence it came from: its text, then blanks up to the tick.
    starts = [i for i in range(len(expected)) if expected[i:i + len(texts)] == texts]
    paired = sent[starts[0]:starts[0] + len(readings)] if starts else []
    checks.check(len(paired) == len(readings) and
                 all(r[0:16] == record_text(s).ljust(16).encode("latin-1") for r, s in zip(readings, paired)),
                 what + "each record is its sentence's text, blanks up to the tick")
    ticks = [int(r[16:26]) for r in readings]
    checks.check(all(b >= a for a, b in zip(ticks, ticks[1:])), what + "reading ticks never go back")
    checks.check(any(b"x" in r[0:16] for r in readings), what + "the line with letters is logged as it came")
    checks.check(not any(b"7777" in r for r in readings), what + "the line of 140 characters left no record")
    gaps = [b - a for a, b in zip(ticks, ticks[1:])]
    checks.check(max(gaps) >= 2000, what + "the silence stands in the ticks (longest gap %d ms)" % max(gaps))
    breaks = [i for i, r in enumerate(recs) if r[0:12] == b"X1CONN BRK 1"]
    checks.check(len(breaks) >= 3, what + "%d \"1CONN BRK 1\" remarks during the silence" % len(breaks))
    after = [r for r in recs[breaks[-1]:] if chr(r[0]) == "T"] if breaks else []
    checks.check(len(after) >= 10, what + "%d readings after the silence" % len(after))
    messages = sent_log.messages(log_path, "instrument")
    harness.log("%s: records by tag %s; sentences sent %d (good %d), readings logged %d" %
                (name, sent_log.tag_counts(recs), len(messages), len(sent), len(readings)))


def main():
    checks = harness.Checks()
    run(checks, "Kelvo601", 2, True)
    run(checks, "Lum601", 1, False)
    colour_of_one_sensor(checks)
    checks.finish()


if __name__ == "__main__":
    main()
