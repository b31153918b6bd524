#!/usr/bin/env python3
"""EM34-3 and EM38 surveys end to end with the field simulator on both ports.
Kelvo34-3 in Auto mode with changes of separation and dipole (warnings, the
swath restarting with the channel) and in Manual mode with three readings a
station taken by the instrument's button, two stations accepted and one
refused in "Confirm and Save Readings"; Kelvo38 with 7-byte and then 12-byte
frames. Each data file is read back record by record against the simulator's
log: readings in order and at the cadence, the stacked station records with
their held positions, swath sets."""
import os
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

EM34_FRAME_MS = 55.078211059704785


def em34_auto(checks):
    program = "Kelvo34-3"
    with harness.Sandbox("em31-kelvo34-auto") as box:
        started = walk.begin(box, checks, program, {"GpsDataOption": 1, "MapDisplayMode": 1,
                                                    "SampleInterval": "0.200000", "SurveyMode": 0, "DipoleMode": 1},
                             "em34", "EM34AUTO", ["--separation", "20"])
        if not started:
            return
        sim, run, window, log_path = started
        time.sleep(6)
        walk.send(sim, "separation 40")
        time.sleep(5)
        shot = box.screenshot("em31-kelvo34-auto-logging")
        walk.send(sim, "separation 20")
        walk.send(sim, "dipole h")
        time.sleep(5)
        walk.pause(box, window)
        mapw = walk.window_rect(box, 652)
        walk.finish(box, checks, program, sim, run, window)
        if mapw:
            coloured = walk.colour_pixels(shot, mapw)
            checks.check(coloured > 200, program + ": the swath is painted in class colours (%d pixels)" % coloured)
        data, names = walk.read_file(box, "EM34AUTO")
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return
        recs = gps_survey.records(data, 27)
        counts = walk.tag_counts(recs)
        harness.log("%s Auto record counts by tag: %s" % (program, sorted(counts.items())))
        sent = walk.good_frames(walk.sent_instrument_bytes(log_path), 12)
        nth = walk.keep_every_nth(0.2, EM34_FRAME_MS)
        texts, positions = walk.check_readings(checks, program + " Auto: ", recs, 27, sent, 12, nth, EM34_FRAME_MS)
        if positions:
            harness.log("%s Auto: %d frames sent from the first to the last logged, %d readings logged (every %d-th)"
                        % (program, positions[-1] - positions[0] + 1, len(texts), nth))
        statuses = sorted(set(ord(t[1]) for t in texts))
        checks.check(len(statuses) >= 3, program + ": three set-ups logged, warnings or not (%s)" % statuses)
        starts = sum(1 for r in recs if r[0:2] == b"{0")
        checks.check(starts >= 2, program + ": the swath restarts when the channel changes (%d starts)" % starts)


def em34_manual(checks):
    program = "Kelvo34-3"
    with harness.Sandbox("em31-kelvo34-manual") as box:
        started = walk.begin(box, checks, program, {"GpsDataOption": 1, "MapDisplayMode": 1, "SurveyMode": 2,
                                                    "DipoleMode": 2}, "em34", "EM34MAN", ["--separation", "10"])
        if not started:
            return
        sim, run, window, log_path = started
        time.sleep(1)
        answers = ["Return", "Escape", "Return"]
        for station, key in enumerate(answers):
            for separation in (10, 20, 40):
                walk.send(sim, "separation %d" % separation)
                time.sleep(0.3)
                walk.send(sim, "hold 4")
                time.sleep(1.2)
            dialog = box.wait_title("Confirm and Save Readings", timeout=10)
            if not checks.check(dialog is not None, program + ": station %d asks for confirmation" % (station + 1)):
                break
            if station == 0:
                box.screenshot("em31-kelvo34-manual-confirm")
            time.sleep(0.5)
            box.xdotool(["windowfocus", "--sync", dialog], check=False)
            box.xdotool(["key", key])
            box.window_gone("Confirm and Save Readings")
            time.sleep(2.5)
        box.screenshot("em31-kelvo34-manual-logging")
        walk.pause(box, window)
        walk.finish(box, checks, program, sim, run, window)
        data, names = walk.read_file(box, "EM34MAN")
        if not checks.check(data is not None, program + ": Manual: one data file (%s)" % names):
            return
        recs = gps_survey.records(data, 27)
        counts = walk.tag_counts(recs)
        harness.log("%s Manual record counts by tag: %s" % (program, sorted(counts.items())))
        stacked = [r for r in recs if chr(r[0]) in "T23"]
        checks.equal("".join(chr(r[0]) for r in stacked), "T23T23", program + ": two stations of three stacked readings")
        checks.check(all(r[12:16] == b"    " and r[16:26].strip().isdigit() for r in stacked),
                     program + ": twelve characters, four blanks and the reading's own tick")
        sent = [f[0] for f in walk.good_frames(walk.sent_instrument_bytes(log_path), 12) if f[1]]
        pressed = [f for f in sent if ord(f[1]) & 64]
        at = 0
        found = 0
        for r in stacked:
            body = r[1:12].decode("latin-1")
            while at < len(pressed) and pressed[at][1:12] != body:
                at += 1
            if at < len(pressed):
                found += 1
                at += 1
        checks.equal(found, 6, program + ": each stacked reading is a frame sent with the button down, in order")
        seps = [(ord(chr(r[1])) & 24) for r in stacked]
        checks.equal(seps, [16, 8, 24, 16, 8, 24], program + ": the separations 10, 20, 40 m of each station")
        groups = gps_survey.gps_groups(recs, 27)
        station_at = [i for i, r in enumerate(recs) if r[0:1] == b"T"]
        for n, index in enumerate(station_at):
            before = [g for g in groups if g[4] < index]
            checks.check(bool(before) and before[-1][2] == "p" and before[-1][4] >= index - 2,
                         program + ": station %d follows its held position with flag p" % (n + 1))
            after = [g for g in groups if g[4] > index]
            checks.check(bool(after) and after[0][2] == " ",
                         program + ": the first position after station %d has a blank flag" % (n + 1))
        checks.equal(sum(1 for g in groups if g[2] == "p"), 2, program + ": one held position for each accepted station")
        checks.check(sum(1 for r in recs if r[0:2] == b"{0") == 1, program + ": the station array starts its swath once")


def em38(checks):
    program = "Kelvo38"
    with harness.Sandbox("em31-kelvo38") as box:
        walk.settings(box, program, {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": "0.200000",
                                     "SurveyMode": 0, "DipoleMode": 0, "Component": 0})
        log_path = os.path.join(box.prefix, "sent.log")
        sim = walk.start_sim(box, "em38-7", log_path)
        run, window = session.start_program(box, program)
        runs = (("em38-7", 7, 72.0, "EM38SHORT", "em38-12"), ("em38-12", 12, 91.0, "EM38LONG", None))
        for model, length, frame_ms, stem, next_model in runs:
            if not checks.check(walk.open_logging(box, window), "%s %s: logging screen" % (program, model)):
                return
            if not walk.go(box, checks, program, stem, sim, run, window, log_path):
                return
            time.sleep(10)
            shot = box.screenshot("em31-kelvo38-%s-logging" % model)
            walk.pause(box, window)
            mapw = walk.window_rect(box, 652)
            if next_model:
                # The instrument is changed while the session still holds the
                # port, so that the next link check measures the new frames.
                walk.send(sim, "model " + next_model)
                time.sleep(1.5)
            if mapw:
                coloured = walk.colour_pixels(shot, mapw)
                checks.check(coloured > 100, "%s %s: the swath is painted in class colours (%d pixels)"
                             % (program, model, coloured))
            walk.leave(box, window)
            data, names = walk.read_file(box, stem)
            if not checks.check(data is not None, "%s %s: one data file (%s)" % (program, model, names)):
                continue
            recs = gps_survey.records(data, 27)
            counts = walk.tag_counts(recs)
            harness.log("%s %s record counts by tag: %s" % (program, model, sorted(counts.items())))
            sent = walk.good_frames(walk.sent_instrument_bytes(log_path), length)
            nth = walk.keep_every_nth(0.2, frame_ms)
            texts, positions = walk.check_readings(checks, "%s %s: " % (program, model), recs, 27, sent, length, nth,
                                                   frame_ms)
            if positions:
                harness.log("%s %s: %d frames sent from the first to the last logged, %d readings logged (every %d-th)"
                            % (program, model, positions[-1] - positions[0] + 1, len(texts), nth))
        box.key(window, "x")
        checks.equal(run.wait(30), 0, program + ": exit code 0")
        walk.send(sim, "quit")


def main():
    checks = harness.Checks()
    em34_auto(checks)
    em34_manual(checks)
    em38(checks)
    checks.finish()


if __name__ == "__main__":
    main()
