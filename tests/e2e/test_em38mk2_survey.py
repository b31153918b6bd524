#!/usr/bin/env python3
"""EM38-MK2 surveys end to end at 19200 baud: Kelvo38MK2 with both coil pairs
and Lum38MK2 with one. Offsets stored in the settings stand in the header's
"O1".."O6" records. A calibration is driven by keys ("&Menu", "Ca&libration",
YES; the simulator held vertical, then turned horizontal), and its "O1".."O6"
records hold the offsets computed from the frames the simulator sent, with
the stored ones as the previous values; Remove Calibration writes zeros with
the computed ones as previous. In the one-coil run the instrument first falls
silent during a calibration, which fails and writes nothing. While Logging
the simulator sends frames without their end pair, 0xFF pairs inside the
data, random bytes, and falls silent: every reading record is a frame it
sent, none lost between the first and the last, with "1CONN BRK 1" for the
silence. A short walk of Kelvo38MK2 with the GPS: screenshots while Logging
show the eight curves of both dipoles in their pens, the conductivity bars
in BarQWnd and the inphase bars in BarIWnd, the colour image of the first
coil's conductivity, and "Setup Display Options" with its eight rows."""
import os
import subprocess
import time

import em31_family_walk as walk
import harness
import readout_checks as readouts
import sent_log
import test_gps_survey as survey
import test_session_start as session
import test_settings

INSTRUMENT_COM = 4
LINE_GPS_INPUT = 36
LINE_TYPE = 14
LINE_FIRST_OFFSET = 75
STORED = [1.5, -2.25, 0.125, 0.25, -0.5, 0.75]
LINE_SCALES = 32   # Minimum and Maximum of the conductivity scale, then of the inphase scale
# The pens of channels 0 to 7 at a first start (stored 0x00BBGGRR): blue,
# green, red, orange, then the same for the second coil pair.
PENS = [readouts.rgb_of_setting(c) for c in (16711680, 65280, 255, 4227327)]


def sample_interval_line():
    """The line of the time between readings: one frame's 47 ms keeps every frame."""
    lines = test_settings.EM38MK2
    for i in range(len(lines) - 4):
        if lines[i:i + 4] == ["1.000000", "0.200000", "2.000000", "0.200000"]:
            return i + 4
    raise RuntimeError("no sample interval line")


def send(sim, text):
    sim.stdin.write((text + "\n").encode())
    sim.stdin.flush()


def word_value(high, low):
    return (((high << 8) | low) * 5 / 1024.0 - 160.0) * 8.0


def decode(frame):
    """Raw values with zero offsets: dipole, C1, I1, C2, I2."""
    b = [ord(c) for c in frame]
    return ("H" if b[1] < 4 else "V", word_value(b[6], b[7]), word_value(b[8], b[9]) * 0.028819,
            word_value(b[2], b[3]), word_value(b[4], b[5]) * 0.00720475)


def sent_frames(log_path):
    """(ms, 14 bytes) of each whole frame the simulator sent."""
    return [(ms, raw[:14]) for ms, raw in sent_log.messages(log_path, "instrument")
            if len(raw) == 16 and raw[0] in "Tt" and raw.endswith("\xff\xff")]


def reader_frames(log_path):
    """The frames a reader takes from the bytes the simulator sent: the 14
    bytes from 'T' or 't' 15 places before a pair of 0xFF (a spoilt frame can
    make such a pair with bytes of its neighbours); a run of 181 bytes without
    one is thrown away."""
    frames = []
    line = []
    for _, raw in sent_log.messages(log_path, "instrument"):
        for c in raw:
            line.append(c)
            at = len(line) - 1
            if at > 180:
                line = []
                continue
            if c == "\xff" and at > 14 and line[at - 1] == "\xff" and line[at - 15] in "Tt":
                frames.append("".join(line[at - 15:at - 1]))
                line = []
    return frames


def offsets_records(recs):
    """Each run of six "O1".."O6" records as six (current, previous) pairs."""
    runs = []
    for i, r in enumerate(recs):
        if r[0:2] == b"O1" and [x[0:2] for x in recs[i:i + 6]] == [b"O%d" % k for k in range(1, 7)]:
            runs.append([(float(x[2:12]), float(x[13:23])) for x in recs[i:i + 6]])
    return runs


def expected_offsets(frames, coils):
    """The offsets a calibration over these frames computes: vertical and
    horizontal means of the raw values (the walk is slow, so any 30 of them
    give the same means within the noise)."""
    v = [decode(f) for f in frames if decode(f)[0] == "V"]
    h = [decode(f) for f in frames if decode(f)[0] == "H"]
    if not v or not h:
        return None
    mean = lambda rows, k: sum(r[k] for r in rows) / len(rows)
    o = [mean(v, 1) - 2 * mean(h, 1), mean(v, 3) - 2 * mean(h, 3), mean(v, 2), mean(v, 4), mean(h, 2), mean(h, 4)]
    if coils == 1:
        o[1] = o[3] = o[5] = 0.0
    return o


def menu_command(box, window, letter):
    box.key(window, "m")
    time.sleep(1.0)
    box.xdotool(["key", letter])


def calibrate(box, sim, window, what, silent=False):
    """"Ca&libration" from the menu, YES; the simulator vertical, then horizontal."""
    send(sim, "dipole v")
    menu_command(box, window, "l")
    ok = survey.answer(box, "CALIBRATION")
    started = time.time()
    if silent:
        send(sim, "quiet instrument 4")
        time.sleep(6.5)
        return ok, started
    time.sleep(3.0)
    send(sim, "dipole h")
    time.sleep(7.0)
    return ok, started


def run(checks, program, coils):
    name = "%s-%d" % (program, coils)
    with harness.Sandbox("em38mk2-" + name) as box:
        path = session.first_start(box, program)
        changes = {LINE_GPS_INPUT: 0, LINE_TYPE: 0 if coils == 2 else 1, sample_interval_line(): "0.047000"}
        for i, value in enumerate(STORED):
            changes[LINE_FIRST_OFFSET + i] = "%.6f" % value
        session.edit_settings(path, changes)
        peer = box.serial_pair(INSTRUMENT_COM)
        log_path = os.path.join(box.prefix, "sent.log")
        sim = box.spawn([os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--instrument", peer,
                         "--model", "em38mk2", "--coils", str(coils), "--speed", "0.05", "--temperature", "23.5",
                         "--log", log_path],
                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        started, window = session.start_program(box, program)
        box.key(window, "l")
        if not checks.check(session.control_visible(box, 460, "&File"), name + ": the session starts at 19200 baud"):
            return
        folder = "C:\\Survey\\"
        os.makedirs(box.c_path(folder), exist_ok=True)
        if not checks.check(survey.create_file(box, window, folder + "MK2"), name + ": \"&File\" brings Stand By"):
            return
        if coils == 1:
            ok, _ = calibrate(box, sim, window, name, silent=True)
            checks.check(ok, name + ": the calibration box (silent instrument)")
        ok, calibration_start = calibrate(box, sim, window, name)
        checks.check(ok, name + ": the calibration box")
        calibration_end = time.time()
        box.screenshot("em38mk2-%s-calibrated" % name)
        send(sim, "dipole v")
        box.key(window, "g")
        time.sleep(2)
        send(sim, "fault no-end")
        time.sleep(0.3)
        send(sim, "fault end-inside")
        time.sleep(0.3)
        send(sim, "garbage instrument 400")
        time.sleep(1)
        send(sim, "marker")
        time.sleep(1)
        send(sim, "quiet instrument 1.5")
        time.sleep(3)
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        menu_command(box, window, "r")
        checks.check(survey.answer(box, "Delete Calibration"), name + ": the removal box")
        time.sleep(1)
        walk.finish(box, checks, name, sim, started, window)
        data, files = walk.read_file(box, "MK2", "em38mk2-" + name)
        if not checks.check(data is not None, name + ": the data file exists (%s)" % files):
            return
        settings = open(path, "rb").read().split(b"\r\n")
        stored_after = [float(settings[LINE_FIRST_OFFSET - 1 + i]) for i in range(6)]
        frames = sent_frames(log_path)
        window_frames = [f for ms, f in frames if calibration_start * 1000 <= ms <= calibration_end * 1000]
        check_file(checks, name, program, coils, data, frames, window_frames, stored_after, log_path)


def check_file(checks, name, program, coils, data, frames, window_frames, stored_after, log_path):
    what = name + ": "
    checks.equal(len(data) % 27, 0, what + "whole records of 27 bytes")
    recs = sent_log.records(data)
    first = recs[0].decode("latin-1")
    checks.equal(first[0:9], "KLV38MK2W" if program.startswith("Kelvo") else "LUM382  W", what + "signature")
    checks.equal(first[19], "2" if coils == 2 else "1", what + "the type in record 1")
    runs = offsets_records(recs)
    checks.equal(len(runs), 3, what + "three runs of O1..O6: header, calibration, removal")
    if len(runs) != 3:
        return
    header, calibration, removal = runs
    checks.check(all(abs(c - s) < 5e-4 and p == 0.0 for (c, p), s in zip(header, STORED)),
                 what + "the header holds the stored offsets %s" % header)
    computed = [c for c, _ in calibration]
    checks.check(all(abs(p - s) < 5e-4 for (_, p), s in zip(calibration, STORED)),
                 what + "the calibration's previous values are the stored offsets")
    expected = expected_offsets(window_frames, coils)
    tolerance = [0.4, 0.4, 0.01, 0.01, 0.01, 0.01]
    checks.check(expected is not None and all(abs(c - e) <= t for c, e, t in zip(computed, expected, tolerance)),
                 what + "computed %s, from the frames sent %s" % (
                     ["%.3f" % c for c in computed], ["%.3f" % e for e in expected or []]))
    if coils == 1:
        checks.check(computed[1] == 0.0 and computed[3] == 0.0 and computed[5] == 0.0,
                     what + "one coil pair: O2, O4, O6 are 0")
    checks.check(all(c == 0.0 and abs(p - k) < 5e-4 for (c, p), k in zip(removal, computed)),
                 what + "removal: zeros, the computed offsets as previous")
    checks.check(all(v == 0.0 for v in stored_after), what + "the settings hold zeros after the removal")
    readings = [r for r in recs if chr(r[0]) in "Tt"]
    texts = [r[0:14].decode("latin-1") for r in readings]
    sent = reader_frames(log_path)
    checks.check(len(readings) > 100, what + "%d reading records" % len(readings))
    checks.check(sent_log.longest_run_match(texts, sent),
                 what + "the %d readings are the simulator's frames, in order, none lost" % len(texts))
    checks.check(all(r[14:16] == b"  " for r in readings), what + "two blanks before the tick")
    checks.check(any(r[1] == 7 for r in readings), what + "the marker press is logged")
    breaks = [r for r in recs if r[0:12] == b"X1CONN BRK 1"]
    checks.check(len(breaks) >= 2, what + "%d \"1CONN BRK 1\" remarks during the silence" % len(breaks))
    messages = sent_log.messages(log_path, "instrument")
    harness.log("%s: records by tag %s; messages sent %d (whole frames %d), readings logged %d; calibration offsets %s" %
                (name, sent_log.tag_counts(recs), len(messages), len(frames), len(readings), computed))


def views(checks):
    """Kelvo38MK2 with both coil pairs and the GPS, vertical then horizontal
    dipole while Logging: curves, bars and swath in their colours."""
    program = "Kelvo38MK2"
    name = program + "-views"
    with harness.Sandbox("em38mk2-views") as box:
        path = session.first_start(box, program)
        session.edit_settings(path, {LINE_SCALES: "10.000000", LINE_SCALES + 1: "30.000000",
                                     LINE_SCALES + 2: "-2.000000", LINE_SCALES + 3: "2.000000"})
        log_path = os.path.join(box.prefix, "sent.log")
        sim = walk.start_sim(box, "em38mk2", log_path, ["--coils", "2"])
        started, window = session.start_program(box, program)
        if not checks.check(walk.open_logging(box, window), name + ": logging screen and a first fix"):
            return
        if not walk.go(box, checks, program, "VIEWS", sim, started, window, log_path):
            return
        time.sleep(4)
        send(sim, "dipole h")
        time.sleep(4)
        shot = box.screenshot("em38mk2-%s-logging" % name)
        walk.pause(box, window)
        curves = readouts.window_rects(box, readouts.CURVE_ID)
        if checks.equal(len(curves), 1, name + ": one curve window"):
            readouts.check_pens(checks, name + ": the curves of both dipoles", shot, curves[0], PENS)
        for control, pens, what in ((readouts.BAR_Q_ID, [PENS[0], PENS[1]], "conductivity"),
                                    (readouts.BAR_I_ID, [PENS[2], PENS[3]], "inphase")):
            rects = readouts.window_rects(box, control)
            if checks.check(len(rects) == 1, "%s: the %s bar window" % (name, what)):
                readouts.check_pens(checks, "%s: the %s bars" % (name, what), shot, rects[0], pens, least=20)
        readouts.check_swath(checks, name, shot, box, least_classes=3)
        box.key(window, "o")
        dialog = box.wait_title("Setup Display Options", timeout=20)
        if checks.check(dialog is not None, name + ": \"Setup Display Options\" opens"):
            time.sleep(0.5)
            texts = [row["text"] for row in box.windows()]
            rows = ["Conductivity / V / 1m", "Conductivity / H / 1m", "Inphase / V / 1m", "Inphase / H / 1m",
                    "Conductivity / V / 0.5m", "Conductivity / H / 0.5m", "Inphase / V / 0.5m",
                    "Inphase / H / 0.5m", "Display Grid Lines for:"]
            checks.check(all(r in texts for r in rows), name + ": the eight rows and the grid list")
            box.screenshot("em38mk2-%s-display-options" % name)
            box.xdotool(["key", "Escape"])
            box.window_gone("Setup Display Options")
        walk.finish(box, checks, program, sim, started, window)


def main():
    checks = harness.Checks()
    run(checks, "Kelvo38MK2", 2)
    run(checks, "Lum38MK2", 1)
    views(checks)
    checks.finish()


if __name__ == "__main__":
    main()
