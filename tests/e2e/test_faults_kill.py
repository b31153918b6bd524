#!/usr/bin/env python3
"""The program killed at random moments while Logging, twenty times, and the
power cut: Wine itself (wineserver and every process of the prefix) killed
at once, four times. Each round starts the EM31-MK2 mapping program with the
field simulator on both ports, makes a new file, logs, pauses and logs
again until the kill. After each pause the file on disk ends in the
"PAUSED" record with everything before it; after each kill the file is whole
valid records (the record length, the line feed last, known tags) and still
holds, unchanged, all that was there at the pause. The four parts, a
sandbox of six rounds each, run side by side."""
import os
import random
import signal
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

PROGRAM = "Kelvo31"
KILLS_EACH = 5          # 4 parts x 5 = 20 kills of the program
POWER_CUTS_EACH = 1     # and 4 power cuts
# Each part is a ctest test of its own: one sandbox and its rounds.
PARTS = ["kills-1", "kills-2", "kills-3", "kills-4"]
SECONDS = 60
RECORD = 27
# Tags of the records a Logging EM31-MK2 mapping session writes after the
# header's first record, which starts with the signature "KLV31".
KNOWN_TAGS = set("HGLBAZ*X@#!?\"{TC")


def whole_valid_records(data):
    """(whole, why not): every record RECORD bytes, its line feed last and
    no other, its tag known."""
    if len(data) % RECORD:
        return False, "%d bytes are no whole number of records" % len(data)
    for i in range(0, len(data), RECORD):
        r = data[i:i + RECORD]
        if r[-1:] != b"\n" or b"\n" in r[:-1]:
            return False, "record %d does not end in its line feed: %r" % (i // RECORD, r)
        if (i == 0 and r[0:5] != b"KLV31") or (i > 0 and chr(r[0]) not in KNOWN_TAGS):
            return False, "record %d has an unknown tag: %r" % (i // RECORD, r)
    return True, ""


def power_cut(box):
    """kill -9 of wineserver and of every process of the prefix, at once."""
    pids = box.pids("", suffix="")
    for pid in pids:
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
    return len(pids)


def file_path(box, stem):
    folder = box.c_path("C:\\Survey")
    names = [n for n in os.listdir(folder) if n.upper().startswith(stem)] if os.path.isdir(folder) else []
    return os.path.join(folder, names[0]) if len(names) == 1 else None


def one_round(box, sim, results, label, stem, cut, rng):
    program, window = session.start_program(box, PROGRAM)
    if not walk.open_logging(box, window):
        results.append((False, label + ": logging screen and a first fix"))
        program.stop()
        return
    if not gps_survey.create_file(box, window, "C:\\Survey\\" + stem):
        results.append((False, label + ": Stand By"))
        program.stop()
        return
    box.key(window, "g")
    time.sleep(rng.uniform(0.5, 2.5))
    walk.pause(box, window)
    path = file_path(box, stem)
    at_pause = open(path, "rb").read() if path else b""
    whole, why = whole_valid_records(at_pause)
    last = at_pause[-RECORD:]
    results.append((whole and last[0:7] == b"XPAUSED",
                    label + ": after the pause the file ends in \"PAUSED\" with %d whole records before it %s"
                    % (len(at_pause) // RECORD, why)))
    box.key(window, "g")
    time.sleep(rng.uniform(0.2, 3.0))
    if cut:
        killed = power_cut(box)
        program.stop()
        what = "power cut (%d processes)" % killed
    else:
        program.stop()
        what = "program killed"
    time.sleep(0.3)
    data = open(path, "rb").read() if path else b""
    whole, why = whole_valid_records(data)
    results.append((whole, label + ": %s while Logging: %d whole valid records %s"
                    % (what, len(data) // RECORD, why)))
    results.append((data.startswith(at_pause) and len(data) > len(at_pause),
                    label + ": everything that was on disk at the pause is still there, and more after it"))
    logged = sum(1 for i in range(len(at_pause), len(data) - RECORD + 1, RECORD) if data[i:i + 1] == b"T")
    results.append((logged > 0, label + ": readings logged after the second Go (%d)" % logged))


def sandbox_rounds(index, results):
    rng = random.Random(1000 + index)
    with harness.Sandbox("faults-kill-%d" % index) as box:
        walk.settings(box, PROGRAM, {"GpsDataOption": 1, "SampleInterval": "0.100000", "SurveyMode": 0,
                                     "MapDisplayMode": 1})
        os.makedirs(box.c_path("C:\\Survey"), exist_ok=True)
        sim = walk.start_sim(box, "em31", os.path.join(box.prefix, "sent.log"))
        rounds = [False] * KILLS_EACH + [True] * POWER_CUTS_EACH
        for n, cut in enumerate(rounds):
            label = "part %d round %d" % (index, n + 1)
            one_round(box, sim, results, label, "KILL%d%02d" % (index, n), cut, rng)
        walk.send(sim, "quit")


def main():
    checks = harness.Checks()
    for part in harness.parts_to_run(PARTS):
        results = []
        sandbox_rounds(int(part.split("-")[1]), results)
        for ok, what in results:
            checks.check(ok, what)
        kills = sum(1 for ok, what in results if "program killed while Logging" in what)
        cuts = sum(1 for ok, what in results if "power cut" in what and "while Logging" in what)
        checks.equal((kills, cuts), (KILLS_EACH, POWER_CUTS_EACH),
                     part + ": five kills of the program and a power cut were made")
    checks.finish()


if __name__ == "__main__":
    main()
