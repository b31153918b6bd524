#!/usr/bin/env python3
"""A GPS-only survey end to end in each of the fourteen programs: "&Logging",
the first fix, "&File" with a typed name, "&Go", a walk, a pause, a second
"&Go", a comment, a pause and "E&xit" with Yes. The data file is then read
record by record: header, line header and time record, "$STARTED", every
sentence the simulator sent while Logging present once and in order as GPS
groups with sequence numbers and "p" flags about once a second, the swath
corner sets, "PAUSED" and the comment. Two programs also log GLL and the RTS
pseudo-GGA; one EM31-MK2 run with its instrument on writes line, station and
comment records; a program killed while Logging leaves only whole records."""
import os
import re
import subprocess
import time

import harness
import test_session_start as session

GPS_COM = 6
INSTRUMENT_COM = 4

# Settings lines of "InstrumentEnabled" and "GpsDataOption" by program family.
LINES = {
    "Kelvo601": (4, 24), "Lum601": (4, 24),
    "Kelvo61LX2": (5, 36), "Lum61LX2": (5, 36),
    "Kelvo61MK2": (4, 35), "Lum61MK2": (4, 35),
}
DEFAULT_LINES = (4, 37)

SIGNATURE_START = {
    "Kelvo601": "KLV601 AW", "Lum601": "LUM601 AW", "Kelvo61LX2": "KLVLX1  W", "Lum61LX2": "LUMLX1  W",
    "Kelvo61MK2": "KLVMK2  W", "Lum61MK2": "LUMMK2  W", "Kelvo31": "KLV31   W", "Lum31": "LUM31   W",
    "Kelvo38": "KLV38   W", "Lum38": "LUM38   W", "Kelvo34-3": "KLV343  W", "Lum34-3": "LUM343  W",
    "Kelvo38MK2": "KLV38MK2W", "Lum38MK2": "LUM382  W",
}


def record_length(program):
    return 24 if program == "Lum31" else 27


def sent_sentences(log_path, with_times=False):
    """The sentences the simulator sent on the GPS line, in order; with
    `with_times` each as (sentence, wall-clock ms of its sending)."""
    out = []
    if not os.path.exists(log_path):
        return out
    for line in open(log_path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) < 3 or parts[1] != "gps":
            continue
        raw = re.sub(r"\\x([0-9a-fA-F]{2})", lambda m: chr(int(m.group(1), 16)),
                     parts[2].replace("\\r", "\r").replace("\\n", "\n").replace("\\\\", "\\"))
        for piece in raw.split("\n"):
            piece = piece.strip("\r")
            if piece.startswith("$"):
                # The receiver keeps only bytes strictly between 35 and 127.
                text = "".join(c for c in piece if 35 < ord(c) < 127)
                out.append((text, float(parts[0])) if with_times else text)
    return out


def order_start(sent, sentences):
    """Where `sentences` stand in `sent` one after another, or -1. A sentence
    without a time of day (GSA) repeats while the fix stays the same, and a
    recording can begin with it, so every place of the first one is tried."""
    count = len(sentences)
    for at, text in enumerate(sent):
        if sentences and text == sentences[0] and sent[at:at + count] == sentences:
            return at
    return -1


def stands_in_order(sent, sentences):
    """True when `sentences` stand in `sent` one after another."""
    return order_start(sent, sentences) >= 0


def records(data, length):
    return [data[i:i + length] for i in range(0, len(data) - len(data) % length, length)]


def gps_groups(recs, length):
    """(sentence, sequence, flag, tick) of each GPS group, and the index of
    its end record."""
    groups = []
    text = None
    width = length - 2
    for index, rec in enumerate(recs):
        tag = chr(rec[0])
        if tag in "@?":
            text = rec[1:width + 1].decode("latin-1")
        elif tag in '#"' and text is not None:
            text += rec[1:width + 1].decode("latin-1")
        elif tag == "!" and text is not None:
            seq = rec[1:7].decode("latin-1")
            flag = chr(rec[7])
            tick = rec[length - 11:length - 1].decode("latin-1")
            groups.append((text.rstrip(" "), seq, flag, tick, index))
            text = None
    return groups


def marker_texts(recs, tag):
    return [rec[1:12].decode("latin-1").rstrip(" ") for rec in recs if chr(rec[0]) == tag]


def check_survey_file(checks, program, data, sent, option_key, walked_seconds, checksum_option=True,
                      instrument=False):
    length = record_length(program)
    what = program + ": "
    checks.equal(len(data) % length, 0, what + "the file is whole records of %d bytes" % length)
    recs = records(data, length)
    checks.check(all(r[-1:] == b"\n" and b"\n" not in r[:-1] for r in recs),
                 what + "every record ends in its line feed and holds no other")
    if len(recs) < 10:
        checks.check(False, what + "the file holds a header and a log")
        return
    first = recs[0].decode("latin-1")
    checks.equal(first[0:9], SIGNATURE_START[program], what + "signature of record 1")
    checks.equal(first[12:15], "GPS", what + "GPS in record 1")
    # The EM31-MK2, EM38 and EM34-3 navigation programs leave N blank.
    blank_n = (not program.startswith("Kelvo")) and program in ("Lum31", "Lum38", "Lum34-3")
    expected_n = " " if blank_n else ("1" if instrument else "0")
    checks.equal(first[21], expected_n, what + "the instrument count N in record 1")
    tags = "".join(chr(r[0]) for r in recs[:24])
    mapping = program.startswith("Kelvo")
    header = "HGGG" if mapping else "HG"
    checks.check(tags[1:1 + len(header)] == header, what + "header records %s (got %s)" % (header, tags))
    line_at = tags.find("LBAZ", 1)
    checks.check(line_at > 0, what + "line header L, B, A, Z (got %s)" % tags)
    checks.check("*" in tags[line_at:], what + "time record after the line header")
    checks.equal(recs[line_at + 2][19], 0, what + "the zero byte at column 19 of the A record")

    xs = marker_texts(recs, "X")
    checks.equal([x for x in xs if x in ("$STARTED", "PAUSED")], ["$STARTED", "PAUSED", "$STARTED", "PAUSED"],
                 what + "two recordings, each started and paused")
    checks.check("Field note" in marker_texts(recs, "C"), what + "the comment record")

    starts = [i for i, r in enumerate(recs) if r[0:9] == b"X$STARTED"]
    pauses = [i for i, r in enumerate(recs) if r[0:7] == b"XPAUSED"]
    groups = gps_groups(recs, length)
    for run, (begin, end) in enumerate(zip(starts, pauses)):
        logged = [g for g in groups if begin < g[4] < end]
        sentences = [g[0] for g in logged]
        label = what + "recording %d: " % (run + 1)
        if not sentences:
            checks.check(False, label + "GPS groups were written")
            continue
        checks.check(stands_in_order(sent, sentences),
                     label + "%d sentences in the file are the simulator's, once each and in order" % len(sentences))
        keyed = [g for g in logged if option_key in g[0]]
        seqs = [int(g[1]) for g in keyed]
        if checksum_option:
            checks.check(seqs == list(range(seqs[0], seqs[0] + len(seqs))) if seqs else False,
                         label + "sequence numbers rise by one per position sentence")
        passed = [g for g in keyed if g[2] == "p"]
        seconds = (int(logged[-1][3]) - int(logged[0][3])) / 1000.0
        checks.check(abs(len(passed) - seconds) <= 2 + 0.1 * seconds,
                     label + "%d positions marked p in %.1f s: about one a second" % (len(passed), seconds))
        walked = walked_seconds if run == 0 else walked_seconds / 2
        checks.check(seconds >= walked - 3, label + "the walk of %.0f s is in the file" % seconds)
        corners = [r for r in recs[begin:end] if chr(r[0]) == "{"]
        starts_of_swath = [r for r in corners if r[1:2] == b"0"]
        sets = [r for r in corners if r[1:2] != b"0"]
        checks.equal(len(starts_of_swath), 1, label + "one swath start marker")
        checks.check(len(sets) >= 4 * (len(passed) - 3),
                     label + "%d corner records for %d positions" % (len(sets), len(passed)))


def choose_file(box, window, name):
    """"&File", the name typed into the save dialog; False when no dialog came."""
    box.key(window, "f")
    dialog = box.wait_title("Create Data File", timeout=30)
    if dialog is None:
        return False
    time.sleep(1)
    box.xdotool(["windowfocus", "--sync", dialog], check=False)
    box.xdotool(["key", "ctrl+a"])
    box.type(dialog, name)
    box.xdotool(["key", "Return"])
    return True


def create_file(box, window, name):
    """"&File" with a new name: Stand By."""
    return choose_file(box, window, name) and session.control_visible(box, 460, "&Go", timeout=20)


def answer(box, title, keys=("Return",)):
    dialog = box.wait_title(title, timeout=20)
    if dialog is None:
        return False
    time.sleep(0.5)
    box.xdotool(["windowfocus", "--sync", dialog], check=False)
    for k in keys:
        box.xdotool(["key", k])
    return True


def wait_first_fix(box, timeout=40):
    """The first fix enables "&File"."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        for row in box.windows():
            if row["id"] == 460 and row["visible"] and row["enabled"] and row["text"] == "&File":
                return True
        time.sleep(0.5)
    return False


def survey(checks, program, option=0, key="GGA", sim_option=None, walk=20, instrument=False, extra=()):
    name = "%s-%d%s" % (program.replace("-", ""), option, "-instrument" if instrument else "")
    with harness.Sandbox("survey-" + name) as box:
        path = session.first_start(box, program)
        instrument_line, option_line = LINES.get(program, DEFAULT_LINES)
        changes = {option_line: option}
        if not instrument:
            changes[instrument_line] = 0
        session.edit_settings(path, changes)
        gps = box.serial_pair(GPS_COM)
        log_path = os.path.join(box.prefix, "sent.log")
        argv = [os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps,
                "--gps-option", str(option if sim_option is None else sim_option), "--rate", "10",
                "--log", log_path] + list(extra)
        if instrument:
            argv += ["--instrument", box.serial_pair(INSTRUMENT_COM), "--model", "em31"]
        sim = box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        program_run, window = session.start_program(box, program)
        box.key(window, "l")
        if not checks.check(session.control_visible(box, 460, "&File"), program + ": logging screen"):
            return
        if not instrument and not checks.check(wait_first_fix(box), program + ": the first fix enables the buttons"):
            return
        folder = "C:\\Survey\\"
        os.makedirs(box.c_path(folder), exist_ok=True)
        file_name = "SURVEY_" + name.upper()
        if not checks.check(create_file(box, window, folder + file_name), program + ": \"&File\" brings Stand By"):
            return
        box.key(window, "g")
        time.sleep(walk)
        box.screenshot("survey-%s-logging" % name)
        box.key(window, "p")                       # any key pauses
        session.control_visible(box, 460, "&Go")
        box.key(window, "g")
        time.sleep(walk / 2)
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        if instrument:
            box.key(window, "q")
            checks.check(answer(box, "Quick Line"), program + ": Quick Line asks for the next line")
            box.key(window, "n")
            dialog = box.wait_title("New Station")
            if checks.check(dialog is not None, program + ": New Station"):
                box.xdotool(["windowfocus", "--sync", dialog], check=False)
                box.xdotool(["key", "ctrl+a"])
                box.type(dialog, "7.25")
                box.xdotool(["key", "Return"])
        box.key(window, "c")
        if checks.check(box.wait_title("Enter Comment") is not None, program + ": the comment dialog"):
            dialog = box.wait_title("Enter Comment")
            box.type(dialog, "Field note")
            box.xdotool(["key", "Return"])
        time.sleep(1)
        box.key(window, "x")
        checks.check(answer(box, "Confirm Exit"), program + ": \"E&xit\" asks to confirm")
        checks.check(session.control_visible(box, 420, "&Logging"), program + ": back at the main menu")
        box.key(window, "x")
        checks.equal(program_run.wait(30), 0, program + ": exit code 0")
        sim.stdin.write(b"quit\n")
        sim.stdin.flush()
        time.sleep(0.5)
        ext = os.listdir(box.c_path("C:\\Survey")) if os.path.isdir(box.c_path("C:\\Survey")) else []
        files = [f for f in ext if f.upper().startswith(file_name)]
        if not checks.check(len(files) == 1, program + ": the data file %s exists (%s)" % (file_name, ext)):
            return
        data = open(os.path.join(box.c_path("C:\\Survey"), files[0]), "rb").read()
        harness.log("%s: %d bytes" % (files[0], len(data)))
        with open(os.path.join(harness.artefact_dir(), "survey-%s.data" % name), "wb") as f:
            f.write(data)
        check_survey_file(checks, program, data, sent_sentences(log_path), key, walk, option not in (7, 8),
                          instrument)
        if instrument:
            recs = records(data, record_length(program))
            tags = "".join(chr(r[0]) for r in recs)
            checks.check(tags.count("L") >= 2, program + ": a second line header after Quick Line")
            station = [r for r in recs if chr(r[0]) == "S"]
            checks.check(len(station) == 1 and station[0][1:12] == b"       7.25",
                         program + ": the station record of New Station")


def killed_path(box):
    folder = box.c_path("C:\\Survey")
    names = [n for n in os.listdir(folder) if n.upper().startswith("KILLED")] if os.path.isdir(folder) else []
    return os.path.join(folder, names[0]) if names else os.path.join(folder, "KILLED.gxy")


def killed_while_logging(checks):
    with harness.Sandbox("survey-killed") as box:
        path = session.first_start(box, "Kelvo31")
        session.edit_settings(path, {4: 0})
        gps = box.serial_pair(GPS_COM)
        box.spawn([os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps,
                   "--gps-option", "1", "--rate", "10"], stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        box.key(window, "l")
        wait_first_fix(box)
        os.makedirs(box.c_path("C:\\Survey"), exist_ok=True)
        create_file(box, window, "C:\\Survey\\KILLED")
        box.key(window, "g")
        time.sleep(8)
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        data = open(killed_path(box), "rb").read()
        checks.check(data.endswith(b"\n") and b"XPAUSED" in data, "after a pause everything written is on disk")
        box.key(window, "g")
        time.sleep(5)
        program.stop()
        data = open(killed_path(box), "rb").read()
        whole = data[:len(data) - len(data) % 27]
        recs = records(whole, 27)
        checks.check(all(r[-1:] == b"\n" and chr(r[0]) in "KHGLBAZ*X@#!{?\"C" for r in recs),
                     "a program killed while Logging leaves %d valid whole records" % len(recs))


# Each part is a ctest test of its own, run side by side with the others: a
# program's survey (with its GLL and RTS runs where it has them), the EM31-MK2
# run with its instrument on, and the killed program.
PARTS = harness.PROGRAM_NAMES + ["Kelvo31-instrument", "killed"]
# About how long each part runs alone, so that ctest starts the longest first.
SECONDS = dict([(name, 50) for name in harness.PROGRAM_NAMES] +
               [("Kelvo31", 110), ("Lum31", 110), ("Kelvo38", 110), ("Lum38MK2", 110),
                ("Kelvo31-instrument", 35), ("killed", 25)])


def run_part(checks, part, quick):
    if part == "Kelvo31-instrument":
        survey(checks, "Kelvo31", instrument=True, walk=10)
        return
    if part == "killed":
        killed_while_logging(checks)
        return
    walk = 60 if part in ("Kelvo31", "Lum31") else 20
    if quick:
        walk = 10
    survey(checks, part, walk=walk)
    # GLL (option 5) and the RTS pseudo-GGA (option 7), one mapping and one navigation program.
    if part in ("Kelvo38", "Lum38MK2"):
        survey(checks, part, option=5, key="GLL", walk=10)
        survey(checks, part, option=7, key="GGA", walk=10)


def main():
    checks = harness.Checks()
    quick = os.environ.get("KELVO_E2E_QUICK") == "1"
    for part in harness.parts_to_run(PARTS):
        run_part(checks, part, quick)
    checks.finish()


if __name__ == "__main__":
    main()
