#!/usr/bin/env python3
"""Background files under a live GPS-only survey in Kelvo31: four text files
(space, comma, tab and semicolon delimited, geodetic, with labels, "B" breaks
and "/" comments) and a data file of the family are loaded through "Enter
Background Files" (key V) and the open dialog while Stand By, each in its
own place around the first fix and its own symbol, then the survey is logged
over them. The screenshot must show each file in the background colour
(32, 32, 32) where it lies, no line across a break, and the survey's track;
a file removed through "Remove Background Files" must be gone from the map,
the others kept; leaving the session deletes the intermediate files."""
import math
import os
import subprocess
import time

import harness
import test_gps_survey as survey
import test_session_start as session

PROGRAM = "Kelvo31"
ORIGIN = (43.6099, -79.6107)          # the simulator's first position
MAP_SIZE = 40                         # metres on a side of the map window
BACKGROUND = (32, 32, 32)
FOLDER = "C:\\Survey\\bg"
TEMP = "C:\\ProgramData\\Ostrel\\Temp"

# Controls of the load dialog.
TYPE, COORDINATES, COLUMN_X, COLUMN_Y, COLUMN_LABEL, DELIMITER, DISPLAY = 1342, 1344, 1346, 1347, 1348, 1349, 1350
REMOVE_FIRST = 1361


def geodetic(east, north):
    """Latitude and longitude of a point `east`, `north` metres from the origin."""
    lat = ORIGIN[0] + north / 111132.0
    lon = ORIGIN[1] + east / (111320.0 * math.cos(math.radians(ORIGIN[0])))
    return lat, lon


def text_file(delimiter, runs, label):
    """Lines "lon<d>lat<d>label", a comment, a header, and "B" between runs."""
    lines = ["/ background points written by the test", "Longitude%sLatitude%sName" % (delimiter, delimiter)]
    number = 0
    for i, run in enumerate(runs):
        if i:
            lines.append("B")
        for east, north in run:
            lat, lon = geodetic(east, north)
            number += 1
            lines.append("%.8f%s%.8f%s%s%d" % (lon, delimiter, lat, delimiter, label, number))
    return ("\r\n".join(lines) + "\r\n").encode()


def family_file(points, signature="KLV31   W226GPS0 0 0 0", length=27):
    """A data file of the family (GGA), by hand: 27-byte records, 24 for the
    navigation EM31-MK2."""
    width = length - 2

    def record(text):
        return (text[:length - 1].ljust(length - 1) + "\n").encode()
    out = record(signature)
    out += record("HBACKGROUND   1.000    0")
    out += record("G  0.000  0.000 70011")
    out += record("G    500000.000 17")
    out += record("G   4800000.000")
    out += record("L1") + record("B       0.00") + record("AN") + record("Z23112026 12:00:00")
    out += record("*12:00:00.000   123456789") + record("X$STARTED       123456789")
    for n, (east, north) in enumerate(points):
        lat, lon = geodetic(east, north)
        la, lo = abs(lat), abs(lon)
        sentence = "$GPGGA,1200%02d.00,%02d%08.5f,%s,%03d%08.5f,%s,4,10,0.9,100.0,M,-34.0,M,,*00" % (
            n, int(la), (la - int(la)) * 60, "N" if lat >= 0 else "S", int(lo), (lo - int(lo)) * 60,
            "E" if lon >= 0 else "W")
        slices = [sentence[i:i + width] for i in range(0, len(sentence), width)]
        out += record("@" + slices[0]) + b"".join(record("#" + s) for s in slices[1:])
        out += record(("!%06dp" % (n + 1)).ljust(length - 11) + "%10d" % (123457000 + n))
    return out


# Each file: name, type, delimiter list index, display code, the file's text, and
# where its symbols lie (boxes in metres east and north of the origin).
def files():
    along = [(-16 + i, 0) for i in range(9)]
    comma_runs = [[(e, 8) for e, _ in along], [(e, 12) for e, _ in along]]
    tab_runs = [[(e, -8) for e, _ in along], [(e, -12) for e, _ in along]]
    return [
        ("comma.txt", 2, 1, 11, text_file(",", comma_runs, "C"), (-16, 7, -8, 13)),
        ("space.txt", 2, 0, 8, text_file(" ", [[(8 + 2 * i, 9) for i in range(5)]], "S"), (7, 7, 17, 11)),
        ("tab.txt", 2, 2, 10, text_file("\t", tab_runs, "T"), (-16, -13, -8, -7)),
        ("semi.txt", 2, 3, 5, text_file(";", [[(8 + 2 * i, -10) for i in range(5)]], "M"), (7, -12, 17, -8)),
        ("walk.T31", 0, 1, 11, family_file([(-6 + i, 16) for i in range(13)]), (-7, 15, 7, 17)),
    ]


def read_pixels(png):
    """(width, height, RGB bytes) of a screenshot."""
    ppm = subprocess.run(["convert", png, "ppm:-"], capture_output=True, check=True).stdout
    # P6 header: magic, "width height", maximum, each ended by a line feed.
    _, size, _, pixels = ppm.split(b"\n", 3)
    width, height = (int(v) for v in size.split())
    return width, height, pixels


def count_colour(image, box, colour):
    width, height, pixels = image
    l, t, r, b = box
    count = 0
    for y in range(max(t, 0), min(b, height)):
        row = y * width * 3
        for x in range(max(l, 0), min(r, width)):
            i = row + 3 * x
            if (pixels[i], pixels[i + 1], pixels[i + 2]) == colour:
                count += 1
    return count


def count_blue(image, box):
    width, height, pixels = image
    l, t, r, b = box
    return sum(1 for y in range(t, b) for x in range(l, r)
               if pixels[(y * width + x) * 3] < 40 and pixels[(y * width + x) * 3 + 1] < 40
               and pixels[(y * width + x) * 3 + 2] > 200)


class MapGeometry:
    """Screen pixels of ground metres around the origin, which the first
    position puts in the middle of the map window."""

    def __init__(self, box, map_size=MAP_SIZE):
        self.rect = None
        for row in box.windows():
            if row["id"] == 652 and row["visible"]:
                self.rect = row["rect"]
        if self.rect:
            l, t, r, b = self.rect
            side = r - l
            self.page = side - 2
            self.scale = self.page / float(map_size)
            self.cx = l + self.page // 2 - 1
            self.cy = t + self.page // 2 - 1

    def box(self, area):
        e1, n1, e2, n2 = area
        return (int(self.cx + e1 * self.scale), int(self.cy - n2 * self.scale),
                int(self.cx + e2 * self.scale), int(self.cy - n1 * self.scale))


def set_combo(box, rows, control_id, index):
    for row in rows:
        if row["id"] == control_id and row["visible"]:
            l, t, r, b = row["rect"]
            box.click((l + r) // 2, (t + b) // 2)
            time.sleep(0.3)
            box.xdotool(["key", "Home"])
            for _ in range(index):
                box.xdotool(["key", "Down"])
            box.xdotool(["key", "Return"])
            time.sleep(0.2)
            return True
    return False


def load(box, checks, window, name, kind, delimiter, display, labels=True):
    box.key(window, "v")
    dialog = box.wait_title("Load BackGround File")
    if not checks.check(dialog is not None, name + ": the load dialog opens on V"):
        return False
    rows = box.windows()
    checks.equal(any(r["id"] == COLUMN_LABEL and r["visible"] for r in rows), labels,
                 name + ": the labels column only in the mapping product's dialog")
    set_combo(box, rows, TYPE, kind)
    if kind != 0:
        set_combo(box, rows, COORDINATES, 0)
        set_combo(box, rows, DELIMITER, delimiter)
    set_combo(box, rows, DISPLAY, display)
    box.click_control(text="OK")
    opened = box.wait_title("Open", timeout=20)
    if not checks.check(opened is not None, name + ": the open dialog follows"):
        return False
    time.sleep(0.5)
    box.xdotool(["key", "ctrl+a"])
    box.type(opened, FOLDER + "\\" + name)
    box.xdotool(["key", "Return"])
    checks.check(box.window_gone("Open", timeout=20), name + ": the open dialog closes")
    deadline = time.time() + 20
    while time.time() < deadline:
        told = [d for d in session.dialogs(box) if d[0] in ("WARNING", "FILE ERROR", "INFORMATION")]
        if told:
            checks.check(False, name + ": no message, got %s" % (told,))
            survey.answer(box, told[0][0])
            return False
        stem = name[:-4] + name[-3:]
        if any(f.startswith(stem + ".$") for f in os.listdir(box.c_path(TEMP))):
            return True
        time.sleep(0.3)
    checks.check(False, name + ": its intermediate file was made")
    return False


def simulator():
    sim_path = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    if not os.path.isfile(sim_path):
        harness.skip("no field simulator at " + sim_path)
    return sim_path


def start_walk(box, sim_path):
    gps = box.serial_pair(survey.GPS_COM)
    box.spawn([sim_path, "--gps", gps, "--gps-option", "1", "--rate", "5", "--heading", "0",
               "--lines", "10", "--line-length", "5", "--spacing", "0.5", "--speed", "0.8"],
              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def navigation(checks, sim_path):
    """Lum31: the smaller dialog, a data file of 24-byte records joined by a
    thin line and a text file as dots, loaded while Monitoring."""
    program_name = "Lum31"
    with harness.Sandbox("background-navigation") as box:
        path = session.first_start(box, program_name)
        session.edit_settings(path, {4: 0, 37: 1})
        start_walk(box, sim_path)
        os.makedirs(box.c_path(FOLDER), exist_ok=True)
        os.makedirs(box.c_path(TEMP), exist_ok=True)
        plan = [
            ("nav.gxy", 0, 1, 1, family_file([(-6 + i, 14) for i in range(13)], "LUM31   W216GPS0 0 0", 24),
             (-7, 13, 7, 15)),
            ("dots.txt", 1, 1, 0, text_file(",", [[(-14 + 2 * i, -10) for i in range(5)]], "D"), (-15, -11, -5, -9)),
        ]
        for name, _, _, _, data, _ in plan:
            with open(os.path.join(box.c_path(FOLDER), name), "wb") as f:
                f.write(data)
        program, window = session.start_program(box, program_name)
        box.key(window, "l")
        if not checks.check(survey.wait_first_fix(box), program_name + ": the first fix"):
            return
        for name, kind, delimiter, display, _, _ in plan:
            load(box, checks, window, name, kind, delimiter, display, labels=False)
        time.sleep(3)
        geometry = MapGeometry(box)
        image = read_pixels(box.screenshot("background-navigation"))
        if checks.check(geometry.rect is not None, program_name + ": the map window is shown"):
            for name, _, _, _, _, area in plan:
                found = count_colour(image, geometry.box(area), BACKGROUND)
                checks.check(found > 15, "%s: %s drawn where it lies (%d pixels)" % (program_name, name, found))
        box.key(window, "x")
        checks.check(session.control_visible(box, 420, "&Logging"), program_name + ": back at the main menu")
        checks.equal(os.listdir(box.c_path(TEMP)), [], program_name + ": the intermediate files are deleted")
        box.key(window, "x")
        checks.equal(program.wait(30), 0, program_name + ": exit code 0")


def main():
    checks = harness.Checks()
    sim_path = simulator()
    navigation(checks, sim_path)
    with harness.Sandbox("background") as box:
        path = session.first_start(box, PROGRAM)
        session.edit_settings(path, {4: 0, 37: 1})
        start_walk(box, sim_path)
        os.makedirs(box.c_path(FOLDER), exist_ok=True)
        os.makedirs(box.c_path(TEMP), exist_ok=True)
        plan = files()
        for name, _, _, _, data, _ in plan:
            with open(os.path.join(box.c_path(FOLDER), name), "wb") as f:
                f.write(data)
        program, window = session.start_program(box, PROGRAM)
        box.key(window, "l")
        if not checks.check(survey.wait_first_fix(box), "the first fix"):
            return checks.finish()
        if not checks.check(survey.create_file(box, window, "C:\\Survey\\UNDER"), "\"&File\" brings Stand By"):
            return checks.finish()
        for name, kind, delimiter, display, _, _ in plan:
            load(box, checks, window, name, kind, delimiter, display)
        temp_files = sorted(os.listdir(box.c_path(TEMP)))
        checks.equal(temp_files, ["commatxt.$00", "semitxt.$03", "spacetxt.$01", "tabtxt.$02", "walkT31.$04"],
                     "one intermediate file per background file")
        checks.equal(len(box.read_c(TEMP + "\\commatxt.$00")), 19 * 38, "18 points and a break, 38 bytes each")

        box.key(window, "g")
        time.sleep(8)
        geometry = MapGeometry(box)
        png = box.screenshot("background-under-survey")
        image = read_pixels(png)
        if not checks.check(geometry.rect is not None, "the map window is shown"):
            return checks.finish()
        for name, _, _, _, _, area in plan:
            found = count_colour(image, geometry.box(area), BACKGROUND)
            checks.check(found > 40, "%s: drawn in the background colour where it lies (%d pixels)" % (name, found))
        # The comma file's two runs lie at 8 and 12 m north; without the
        # break a line would run from (-8, 8) back to (-16, 12).
        gap = count_colour(image, geometry.box((-13, 9.6, -11, 10.4)), BACKGROUND)
        checks.equal(gap, 0, "comma.txt: no line across its \"B\" break")
        checks.check(count_colour(image, geometry.box((-13, 7.5, -11, 8.5)), BACKGROUND) > 10,
                     "comma.txt: its runs are joined lines")
        empty = count_colour(image, geometry.box((-4, -6, 4, -3)), BACKGROUND)
        checks.equal(empty, 0, "no background where no file has points")
        track = count_blue(image, geometry.box((-3, -3, 8, 8)))
        checks.check(track > 30, "the survey is drawn over the background (%d pixels)" % track)

        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        box.key(window, "m")
        time.sleep(1)
        box.xdotool(["key", "Up"])
        box.xdotool(["key", "Up"])
        box.xdotool(["key", "Return"])
        dialog = box.wait_title("Remove BackGround Files")
        if checks.check(dialog is not None, "\"Remove Background Files\" opens its list"):
            rows = box.windows()
            names = [r["text"] for r in rows if REMOVE_FIRST <= r["id"] < REMOVE_FIRST + 10 and r["visible"]]
            checks.equal(names, [p[0] for p in plan], "the list names the five files")
            box.click_control(text="comma.txt")
            box.click_control(text="OK")
            box.window_gone("Remove BackGround Files")
            time.sleep(4)   # the next position composes the window again
            png = box.screenshot("background-after-removal")
            image = read_pixels(png)
            removed = count_colour(image, geometry.box(plan[0][5]), BACKGROUND)
            checks.equal(removed, 0, "comma.txt: gone from the map after its removal")
            for name, _, _, _, _, area in plan[1:]:
                found = count_colour(image, geometry.box(area), BACKGROUND)
                checks.check(found > 40, "%s: still drawn after the removal (%d pixels)" % (name, found))
            checks.equal(sorted(os.listdir(box.c_path(TEMP))),
                         ["semitxt.$03", "spacetxt.$01", "tabtxt.$02", "walkT31.$04"],
                         "the removed file's intermediate file is deleted")

            # A zoom in review repaints the grid layer: the background comes
            # back from the intermediate files, at the new scale about the origin.
            box.key(window, "i")
            session.control_visible(box, 478, "&Exit Review")
            box.key(window, "minus")
            time.sleep(3)
            zoomed = MapGeometry(box, map_size=42)
            image = read_pixels(box.screenshot("background-zoomed-out"))
            for name, _, _, _, _, area in plan[1:]:
                found = count_colour(image, zoomed.box(area), BACKGROUND)
                checks.check(found > 40, "%s: drawn again after a zoom (%d pixels)" % (name, found))
            checks.equal(count_colour(image, zoomed.box(plan[0][5]), BACKGROUND), 0,
                         "comma.txt: not drawn again after its removal")
            box.key(window, "e")
            session.control_visible(box, 477, "Enter Rev&iew")

        box.key(window, "x")
        survey.answer(box, "Confirm Exit")
        checks.check(session.control_visible(box, 420, "&Logging"), "back at the main menu")
        checks.equal(os.listdir(box.c_path(TEMP)), [], "leaving the session deletes the intermediate files")
        box.key(window, "x")
        checks.equal(program.wait(30), 0, "exit code 0")
    checks.finish()


if __name__ == "__main__":
    main()
