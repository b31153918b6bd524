#!/usr/bin/env python3
"""Continuing a data file end to end (Kelvo31): an EM31-MK2 walk with the
colour image is logged, paused and left; the program starts again and the
same file is chosen with "&File": the positions the file holds are told, the
survey is drawn again from the file (the map compared with the one before
exit), and logging goes on in the same file, behind its old bytes, after an
"r" header, a line header and a time record. Then the program with GPS off
refuses the file with the message naming both states, and the navigation
program refuses the existing name; the file keeps its bytes through both."""
import os
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_replay as replay
import test_session_start as session

PROGRAM = "Kelvo31"
NAVIGATION = "Lum31"
WHITE, GREY_GRID, BLACK = 0xFFFFFF, 0xC0C0C0, 0x000000
SECONDS = 70
NEAR = 2   # pixels an edge may move between sessions


def records(data):
    return gps_survey.records(data, 27)


def corner_count(data):
    """Records "{d" and "{h": the positions the file is said to hold."""
    return sum(1 for r in records(data) if r[0:1] == b"{" and r[1:2] in (b"d", b"h"))


def cursor_place(pixels, width):
    """The cursor's middle: the column and the row with the most black."""
    columns, rows = {}, {}
    for i, p in enumerate(pixels):
        x, y = i % width, i // width
        if p == BLACK and 1 < x < width - 2 and 1 < y < width - 2:
            columns[x] = columns.get(x, 0) + 1
            rows[y] = rows.get(y, 0) + 1
    if not columns:
        return None
    return max(columns, key=columns.get), max(rows, key=rows.get)


def painted(p):
    return p not in (WHITE, GREY_GRID, BLACK)


def covered(source, target, width, dx, dy):
    """Of the painted pixels of `source` that fall inside `target` moved by
    (dx, dy): how many, how many have a painted pixel near their place in
    `target`, and how many of the coloured ones keep their colour there. The
    canvas rounds toward zero about the map origin, and the two sessions have
    their origins apart, so an edge may fall up to two pixels apart."""
    height = len(source) // width
    total = near = coloured = same = 0
    steps = range(-NEAR, NEAR + 1)
    for i, p in enumerate(source):
        if not painted(p):
            continue
        x, y = i % width + dx, i // width + dy
        if not (NEAR + 1 <= x < width - NEAR - 1 and NEAR + 1 <= y < height - NEAR - 1):
            continue
        total += 1
        around = [target[(y + v) * width + x + u] for u in steps for v in steps]
        near += any(painted(q) for q in around)
        if p in walk.CLASS_COLOURS:
            coloured += 1
            same += p in around
    return total, near, coloured, same


def compare_maps(checks, before, after, width):
    """The map drawn from the file against the live map before exit. The new
    session's window stands around the cursor at the same ground, so the two
    pictures are the same but moved by the cursor's move."""
    a, b = cursor_place(before, width), cursor_place(after, width)
    if not checks.check(a is not None and b is not None, "the cursor is found before and after (%s, %s)" % (a, b)):
        return
    best = None
    for u in (-1, 0, 1):
        for v in (-1, 0, 1):
            dx, dy = b[0] - a[0] + u, b[1] - a[1] + v
            forth = covered(before, after, width, dx, dy)
            if best is None or forth[1] > best[1][1]:
                best = (dx, dy), forth
    (dx, dy), forth = best
    back = covered(after, before, width, -dx, -dy)
    harness.log("map moved by (%d, %d): before %s, after %s" % (dx, dy, forth, back))
    checks.check(forth[0] > 300, "the survey shows in both pictures (%d pixels)" % forth[0])
    checks.check(abs(back[0] - forth[0]) <= 0.15 * forth[0], "as many pixels are drawn from the file as live "
                 "(%d and %d)" % (back[0], forth[0]))
    checks.check(forth[1] >= 0.97 * forth[0], "what was drawn live is drawn from the file (%d of %d pixels)"
                 % (forth[1], forth[0]))
    checks.check(back[1] >= 0.97 * back[0], "nothing more is drawn from the file (%d of %d pixels)" % (back[1], back[0]))
    checks.check(forth[3] >= 0.95 * forth[2], "the colour image keeps its colours (%d of %d pixels)"
                 % (forth[3], forth[2]))


def start_stand_still(box, gps, instrument, fix):
    """A receiver standing at `fix` without noise, and the instrument."""
    stand = os.path.join(box.prefix, "stand.txt")
    with open(stand, "w") as f:
        f.write("%.8f %.8f\n%.8f %.8f\n" % (fix[0], fix[1], fix[0], fix[1]))
    return replay.start_sim(box, gps, instrument, os.path.join(box.prefix, "stand.log"),
                            ["--path", stand, "--origin", "%.8f,%.8f" % fix, "--noise", "0"])


def leave_program(box, checks, program, window, what):
    walk.leave(box, window)
    box.key(window, "x")
    checks.equal(program.wait(30), 0, what + ": exit code 0")


def log_and_leave(box, checks):
    """The first session: a walk logged, paused, the receiver then standing at
    its last position; returns the map before exit, the file's path and bytes,
    and the running simulator's ports."""
    walk.settings(box, PROGRAM, {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": "1.000000",
                                 "SurveyMode": 0, "DipoleMode": 0, "Component": 0, "PositionSize": 4,
                                 "ScaleMin": "0.000000", "ScaleMax": "40.000000"})
    gps = box.serial_pair(walk.GPS_COM)
    instrument = box.serial_pair(walk.INSTRUMENT_COM)
    sim = replay.start_sim(box, gps, instrument, os.path.join(box.prefix, "sent.log"),
                           ["--line-length", "25", "--speed", "1.5"])
    program, window = session.start_program(box, PROGRAM)
    if not checks.check(walk.open_logging(box, window), "logging screen and a first fix"):
        return None
    if not walk.go(box, checks, PROGRAM, "APPEND", sim, program, window, ""):
        return None
    time.sleep(16)
    walk.pause(box, window)
    time.sleep(1)
    folder = box.c_path("C:\\Survey")
    path = os.path.join(folder, [n for n in os.listdir(folder) if n.upper().startswith("APPEND")][0])
    fix = replay.last_fix(records(open(path, "rb").read()))
    if not checks.check(fix is not None, "the file holds the walk's positions"):
        return None
    walk.send(sim, "quit")
    sim.wait(10)
    start_stand_still(box, gps, instrument, fix)
    screens = replay.Screens(box)
    if not checks.check(screens.map is not None, "the map window is found"):
        return None
    before = screens.take("append-before-exit", settle=6)
    leave_program(box, checks, program, window, "first session")
    return screens, before, path, open(path, "rb").read()


def continue_file(box, checks, screens, before, path, old):
    """The second session: the same file chosen, told, drawn and continued."""
    program, window = session.start_program(box, PROGRAM)
    if not checks.check(walk.open_logging(box, window), "second session: logging screen and a first fix"):
        return
    gps_survey.choose_file(box, window, "C:\\Survey\\APPEND")
    count = corner_count(old)
    checks.equal(session.wait_dialog(box, "INFORMATION", timeout=30),
                 "Total Number of GPS Positions:       %d||" % count,
                 "the positions the file holds are told (%d)" % count)
    gps_survey.answer(box, "INFORMATION")
    checks.check(session.control_visible(box, 460, "&Go", timeout=30), "the continued file brings Stand By")
    after = screens.take("append-after-choice", settle=5)
    compare_maps(checks, before["map"], after["map"], screens.map[2] - screens.map[0])
    checks.equal(open(path, "rb").read()[:len(old)], old, "the old bytes stay as they were")

    box.key(window, "g")
    time.sleep(6)
    walk.pause(box, window)
    leave_program(box, checks, program, window, "second session")
    data = open(path, "rb").read()
    with open(os.path.join(harness.artefact_dir(), "append.data"), "wb") as f:
        f.write(data)
    checks.equal(data[:len(old)], old, "the file begins with its old %d bytes" % len(old))
    checks.equal(len(data) % 27, 0, "the file is whole records")
    new = records(data[len(old):])
    tags = "".join(chr(r[0]) for r in new)
    harness.log("continued records: %s..." % tags[:40])
    checks.check(tags.startswith("rHGGGLBAZ*X"), "an \"r\" header, line header and time record come first (%s)"
                 % tags[:12])
    if len(new) < 12:
        return
    first_old = records(old)[0]
    checks.equal(new[0][1:], first_old[1:], "the \"r\" record is the first header record but for its tag")
    checks.equal(new[1], records(old)[1], "the name record is the same")
    checks.equal(new[10][1:9], b"$STARTED", "logging starts again")
    checks.check(tags.count("T") >= 3, "readings are logged in the same file (%d)" % tags.count("T"))
    checks.check(len(gps_survey.gps_groups(new, 27)) >= 3, "positions are logged in the same file")
    checks.check(tags.endswith("X") and new[-1][1:7] == b"PAUSED", "the pause ends it")


def refusals(box, checks, path):
    """GPS off in the program, on in the file; then the navigation program."""
    data = open(path, "rb").read()
    settings = session.settings_path(box, PROGRAM)
    session.edit_settings(settings, {session.LINE_GPS_INPUT: 0})
    program, window = session.start_program(box, PROGRAM)
    box.key(window, "l")
    checks.check(gps_survey.wait_first_fix(box, timeout=30), "without GPS \"&File\" is open at once")
    gps_survey.choose_file(box, window, "C:\\Survey\\APPEND")
    checks.equal(session.wait_dialog(box, "WARNING", timeout=30),
                 "GPS state in the file: ENABLED||Selected GPS state: DISABLED ||Please adjust the configuration. ",
                 "GPS off against a file with GPS is refused with both states")
    gps_survey.answer(box, "WARNING")
    checks.check(session.control_visible(box, 460, "&File", timeout=20), "the session stays in Monitoring")
    box.key(window, "x")
    session.control_visible(box, 420, "&Logging")
    box.key(window, "x")
    checks.equal(program.wait(30), 0, "refused: exit code 0")
    checks.equal(open(path, "rb").read(), data, "the refused file keeps its bytes")

    lum = session.first_start(box, NAVIGATION)
    session.edit_settings(lum, {session.LINE_GPS_INPUT: 0})
    program, window = session.start_program(box, NAVIGATION)
    box.key(window, "l")
    checks.check(gps_survey.wait_first_fix(box, timeout=30), NAVIGATION + ": \"&File\" is open")
    gps_survey.choose_file(box, window, "C:\\Survey\\" + os.path.basename(path))
    checks.equal(session.wait_dialog(box, "WARNING", timeout=30), "The file already exisits. Please enter another name",
                 NAVIGATION + ": an existing name is refused")
    gps_survey.answer(box, "WARNING")
    dialog = box.wait_title("Create Data File", timeout=30)
    checks.check(dialog is not None, NAVIGATION + ": the save dialog comes again")
    if dialog is not None:
        time.sleep(1)
        box.xdotool(["windowfocus", "--sync", dialog], check=False)
        box.xdotool(["key", "Escape"])
    checks.equal(session.wait_dialog(box, "INFORMATION", timeout=30), "File not from Lum31 program",
                 NAVIGATION + ": cancelled")
    gps_survey.answer(box, "INFORMATION")
    box.key(window, "x")
    session.control_visible(box, 420, "&Logging")
    box.key(window, "x")
    checks.equal(program.wait(30), 0, NAVIGATION + ": exit code 0")
    checks.equal(open(path, "rb").read(), data, NAVIGATION + ": the file keeps its bytes")


def run(checks):
    with harness.Sandbox("append") as box:
        first = log_and_leave(box, checks)
        if first is None:
            return
        screens, before, path, old = first
        harness.log("first session: %d bytes, %d positions" % (len(old), corner_count(old)))
        continue_file(box, checks, screens, before, path, old)
        refusals(box, checks, path)


def main():
    checks = harness.Checks()
    run(checks)
    checks.finish()


if __name__ == "__main__":
    main()
