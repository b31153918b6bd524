#!/usr/bin/env python3
"""EM31-MK2 surveys end to end, mapping (Kelvo31) and navigation (Lum31):
the wrong instrument on the port refused at the start, then a logged walk with
the field simulator on both ports and faults on the instrument line (garbage,
a CR at the wrong distance, letters for digits, an overlong line, a silence,
the other dipole). The data file is read back record by record against the
simulator's log: every frame sent while Logging, decimated by KeepEveryNth, in
order; swath sets; the break record and readings after it. Screenshots of the
profile, bars, numbers, colour image and colour bar are taken and checked."""
import os
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

FRAME_MS = 1000.0 / 10.5


def kelvo31(checks):
    program = "Kelvo31"
    with harness.Sandbox("em31-kelvo31") as box:
        walk.settings(box, program, {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": "0.200000",
                                     "SurveyMode": 0, "DipoleMode": 0, "Component": 0,
                                     "ScaleMin": "0.000000", "ScaleMax": "40.000000"})
        log_path = os.path.join(box.prefix, "sent.log")
        sim = walk.start_sim(box, "em38-7", log_path)
        run, window = session.start_program(box, program)
        # An EM38 on the EM31-MK2's port: no frame of the right form comes.
        box.key(window, "l")
        checks.check(gps_survey.answer(box, "Connection Issue"), program + ": the wrong instrument is refused")
        checks.check(session.control_visible(box, 420, "&Logging", timeout=10), program + ": back at the main menu")
        walk.send(sim, "model em31")
        time.sleep(1)
        if not checks.check(walk.open_logging(box, window), program + ": logging screen and a first fix"):
            return
        if not walk.go(box, checks, program, "EM31WALK", sim, run, window, log_path):
            return
        faults = [(3, "garbage instrument 60"), (5, "bad-cr"), (7, "letters"), (9, "overlong instrument 250"),
                  (11, "marker"), (13, "dipole h"), (16, "quiet instrument 2")]
        started = time.time()
        for at, command in faults:
            time.sleep(max(0.0, started + at - time.time()))
            walk.send(sim, command)
        time.sleep(max(0.0, started + 17.0 - time.time()))
        silent_shot = box.screenshot("em31-kelvo31-silent")
        time.sleep(max(0.0, started + 21.0 - time.time()))
        logging_shot = box.screenshot("em31-kelvo31-logging")
        walk.send(sim, "dipole v")
        time.sleep(max(0.0, started + 26.0 - time.time()))
        walk.pause(box, window)
        curve = walk.window_rect(box, 600)
        bars = [walk.window_rect(box, 620), walk.window_rect(box, 630)]
        numbers = walk.window_rect(box, 650)
        mapw = walk.window_rect(box, 652)
        # The scale dialog shows the colour legend while it is open.
        box.key(window, "a")
        dialog = box.wait_title("Scale Readings")
        checks.check(dialog is not None, program + ": Sc&ale Readings")
        time.sleep(1)
        bar_shot = box.screenshot("em31-kelvo31-colourbar")
        legend = walk.window_rect(box, 653)
        box.xdotool(["key", "Escape"])
        box.window_gone("Scale Readings")
        walk.finish(box, checks, program, sim, run, window)

        # Screens.
        if curve and mapw and numbers and all(bars):
            profile = [p for p in walk.pixels_of(logging_shot, curve) if p not in (0xFFFFFF, 0xC0C0C0)]
            checks.check(len(profile) > 100, program + ": the profile shows curves (%d pixels)" % len(profile))
            bar_pixels = sum(len([p for p in walk.pixels_of(logging_shot, r) if p not in (0xFFFFFF, 0xC0C0C0)])
                             for r in bars)
            checks.check(bar_pixels > 100, program + ": the bars stand (%d pixels)" % bar_pixels)
            green = sum(1 for p in walk.pixels_of(logging_shot, numbers) if p == 0x00FF00)
            checks.check(green > 500, program + ": the numbers panel is green while Logging")
            dark = session.dark_pixels(logging_shot, numbers)
            checks.check(dark > 50, program + ": the numbers are written (%d dark pixels)" % dark)
            coloured = walk.colour_pixels(logging_shot, mapw)
            checks.check(coloured > 300, program + ": the swath is painted in class colours (%d pixels)" % coloured)
            classes = walk.colour_classes(logging_shot, mapw)
            checks.check(len(classes) >= 3, program + ": the swath shows %d classes of the 0..40 scale" % len(classes))
        else:
            checks.check(False, program + ": the readout windows were found")
        if legend:
            coloured = walk.colour_pixels(bar_shot, legend)
            checks.check(coloured > 4000, program + ": ColorBarWnd shows the classes (%d pixels)" % coloured)
        else:
            checks.check(False, program + ": ColorBarWnd shows while the scale dialog is open")
        harness.log("screens: %s %s %s" % (silent_shot, logging_shot, bar_shot))

        data, names = walk.read_file(box, "EM31WALK")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return
        check_file(checks, program, data, log_path, 27, walk.keep_every_nth(0.2, FRAME_MS))


def check_file(checks, program, data, log_path, length, nth):
    label = program + ": "
    checks.equal(len(data) % length, 0, label + "whole records")
    recs = gps_survey.records(data, length)
    checks.check(all(r[-1:] == b"\n" and b"\n" not in r[:-1] for r in recs), label + "every record ends in its LF")
    counts = walk.tag_counts(recs)
    harness.log("%s record counts by tag: %s" % (program, sorted(counts.items())))
    sent = walk.good_frames(walk.sent_instrument_bytes(log_path), 12)
    good = [f for f in sent if f[1]]
    texts, positions = walk.check_readings(checks, label, recs, length, sent, 12, nth, FRAME_MS)
    if positions:
        harness.log("%s: %d frames sent from the first to the last logged, %d readings logged (every %d-th)"
                    % (program, positions[-1] - positions[0] + 1, len(texts), nth))
    checks.check(len(good) > len(texts), label + "the simulator's log holds the frames")
    xs = gps_survey.marker_texts(recs, "X")
    breaks = [i for i, r in enumerate(recs) if r[0:1] == b"X" and b"CONN BRK" in r]
    checks.check(len(breaks) >= 1, label + "the silence left break records (%d)" % len(breaks))
    pause = [i for i, r in enumerate(recs) if r[0:7] == b"XPAUSED"]
    if breaks and pause:
        after = [r for r in recs[breaks[-1]:pause[-1]] if r[0:1] == b"T"]
        checks.check(len(after) > 10, label + "logging goes on when frames return (%d readings)" % len(after))
    checks.check("$STARTED" in xs and "PAUSED" in xs, label + "started and paused")
    if program.startswith("Kelvo"):
        corners = [r for r in recs if r[0:1] == b"{"]
        checks.check(sum(1 for r in corners if r[1:2] == b"0") >= 1, label + "a swath start marker")
        checks.check(len(corners) > 40, label + "%d swath corner records" % len(corners))
    dipoles = set(chr(r[1]) for r in recs if r[0:1] == b"T")
    checks.check(len(dipoles) >= 2, label + "both dipoles logged (status bytes %s)" % sorted(dipoles))


def lum31(checks):
    program = "Lum31"
    with harness.Sandbox("em31-lum31") as box:
        started = walk.begin(box, checks, program, {"GpsDataOption": 1, "SampleInterval": "0.100000",
                                                    "SurveyMode": 0, "DipoleMode": 0, "Component": 0},
                             "em31", "LUMWALK")
        if not started:
            return
        sim, run, window, log_path = started
        time.sleep(5)
        walk.send(sim, "dipole h")
        time.sleep(3)
        walk.send(sim, "quiet instrument 2")
        time.sleep(6)
        box.screenshot("em31-lum31-logging")
        walk.pause(box, window)
        walk.finish(box, checks, program, sim, run, window)
        data, names = walk.read_file(box, "LUMWALK")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return
        check_file(checks, program, data, log_path, 24, walk.keep_every_nth(0.1, FRAME_MS))


def main():
    checks = harness.Checks()
    kelvo31(checks)
    lum31(checks)
    checks.finish()


if __name__ == "__main__":
    main()
