#!/usr/bin/env python3
"""The map while a survey is logged: the window follows the receiver east,
west, north and south, and the instrument's footprint is drawn behind,
under or ahead of the antenna by the lag of the geometry (-1, 0 and +2 m).
Screenshots are kept as artefacts; each must show the footprint in the
position colour on the map."""
import os
import subprocess
import time

import harness
import test_gps_survey as survey
import test_session_start as session

# Settings lines of the EM31-MK2 programs.
LINE_GPS_OFFSET_Y = 46
LINE_MAP_SIZE = 65
LINE_MAP_DISPLAY_MODE = 13

# The three walks: lag of the geometry, heading, the directions they show.
WALKS = {"lag-1": (-1, 90, "east, west and south"),
         "lag+0": (0, 0, "north, south and east"),
         "lag+2": (2, 270, "west, east and north")}
# Each walk is a ctest test of its own, run side by side with the others.
PARTS = list(WALKS)
# About how long each part runs alone, so that ctest starts the longest first.
SECONDS = 50


def blue_pixels(png, rect):
    """Pixels of the position colour (0, 0, 255) inside rect = (x, y, w, h)."""
    x, y, w, h = rect
    ppm = subprocess.run(["convert", png, "-crop", "%dx%d+%d+%d" % (w, h, x, y), "+repage", "ppm:-"],
                         capture_output=True, check=True).stdout
    # P6 header: magic, width, height, maximum, each followed by white space.
    parts = ppm.split(b"\n", 3)
    pixels = parts[3]
    count = 0
    for i in range(0, len(pixels) - 2, 3):
        if pixels[i] < 40 and pixels[i + 1] < 40 and pixels[i + 2] > 200:
            count += 1
    return count


def map_rect(box):
    for row in box.windows():
        if row["id"] == 652 and row["visible"]:
            l, t, r, b = row["rect"]
            return (l + 2, t + 2, r - l - 4, b - t - 4)
    return None


def walk(checks, lag, heading, directions):
    name = "lag%+d" % lag
    with harness.Sandbox("map-" + name) as box:
        path = session.first_start(box, "Kelvo31")
        # Positions view: the footprint in the position colour.
        session.edit_settings(path, {LINE_GPS_OFFSET_Y: "%f" % lag, LINE_MAP_SIZE: 20, LINE_MAP_DISPLAY_MODE: 0})
        gps = box.serial_pair(6)
        instrument = box.serial_pair(4)
        sim = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
        box.spawn([sim, "--gps", gps, "--gps-option", "1", "--rate", "10", "--instrument", instrument,
                   "--model", "em31", "--heading", str(heading), "--lines", "4", "--line-length", "24",
                   "--spacing", "3", "--speed", "2.5"], stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        box.key(window, "l")
        if not checks.check(survey.wait_first_fix(box), name + ": first fix"):
            return
        os.makedirs(box.c_path("C:\\Survey"), exist_ok=True)
        if not checks.check(survey.create_file(box, window, "C:\\Survey\\MAP_" + name.replace("+", "P").replace("-", "M")),
                            name + ": data file"):
            return
        box.key(window, "g")
        rect = map_rect(box)
        for shot in range(4):
            time.sleep(9)
            png = box.screenshot("map-%s-%d" % (name, shot))
            if rect:
                count = blue_pixels(png, rect)
                checks.check(count > 50, "%s, screenshot %d (%s): footprint drawn (%d pixels)"
                             % (name, shot, directions, count))
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        box.key(window, "x")
        survey.answer(box, "Confirm Exit")
        session.control_visible(box, 420, "&Logging")
        box.key(window, "x")
        checks.equal(program.wait(30), 0, name + ": exit code 0")


def main():
    checks = harness.Checks()
    for part in harness.parts_to_run(PARTS):
        walk(checks, *WALKS[part])
    checks.finish()


if __name__ == "__main__":
    main()
