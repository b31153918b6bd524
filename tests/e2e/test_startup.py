#!/usr/bin/env python3
"""Every program starts with its name as title, sizes its window by the screen,
makes only the Temp folder on a new computer, and ends with exit code 0 by the
"E&xit" button and by the X key."""
import os

import harness

LABELS = ["&Logging", "&Survey Setup", "Sys&tem Setup", "G&eometry Setup", "&GPS Port Setup",
          "GPS M&onitoring", "&Map Options", "&Profiles Options", "&Reset to Default", "E&xit"]

# screen -> accepted outer window rectangles (x, y, width, height)
SCREENS = [
    ((1920, 1080), [(320, 140, 1280, 762)]),
    ((1280, 800), [(0, 0, 1280, 762)]),
    ((1024, 768), [(0, 0, 1024, 730)]),
    # Larger than the screen: Windows and Wine clamp an overlapped window at
    # creation to the screen plus its frame.
    ((640, 480), [(0, 0, 800, 562), (0, 0, 652, 492)]),
    ((800, 1280), [(0, 0, 800, 1242)]),
    ((768, 1024), [(0, 0, 768, 986)]),
    ((1000, 1000), [(100, 0, 800, 1242), (100, 0, 800, 1012), (0, 0, 812, 1012)]),
]

# Each part is a ctest test of its own, run side by side with the other.
PARTS = ["programs", "screens"]
# About how long each part runs alone, so that ctest starts the longest first.
SECONDS = {"programs": 120, "screens": 40}


def every_program(checks):
    with harness.Sandbox("startup-all") as box:
        ostrel = box.c_path("C:\\ProgramData\\Ostrel")
        checks.check(not os.path.exists(ostrel), "a new computer has no Ostrel folder")
        for index, name in enumerate(harness.PROGRAM_NAMES):
            program = box.start(name)
            window = box.wait_window(name)
            checks.check(bool(window), "%s starts with its name as title" % name)
            box.wait_control(420, "&Logging")
            if index == 0:
                entries = sorted(os.listdir(ostrel)) if os.path.isdir(ostrel) else None
                checks.equal(entries, ["Temp"], "the first start makes only the Temp folder")
                labels = [row["text"] for row in box.windows()
                          if row["class"].lower() == "button" and 420 <= row["id"] <= 429]
                checks.equal(labels, LABELS, "the ten main buttons and their labels")
            if name == "Kelvo61LX2":
                labels = [row["text"] for row in box.windows() if row["id"] == 423]
                checks.equal(labels, ["Alarms S&etup"], "EM61-LX2 shows its alarm setup button")
            if index % 2 == 0:
                box.key(window, "x")
                how = "X key"
            else:
                box.click_control(text="E&xit")
                how = "Exit button"
            code = program.wait(30)
            checks.equal(code, 0, "%s ends with exit code 0 by the %s" % (name, how))
            program.stop()


def every_screen(checks):
    for (screen, accepted) in SCREENS:
        with harness.Sandbox("startup-%dx%d" % screen, screen=screen) as box:
            program = box.start("Kelvo31")
            window = box.wait_window("Kelvo31")
            box.wait_control(420, "&Logging")
            rect = box.geometry(window)
            checks.check(rect in accepted, "screen %dx%d gives window %s (accepted %s)"
                         % (screen[0], screen[1], rect, accepted))
            box.screenshot("startup-main-menu-%dx%d" % screen)
            box.key(window, "x")
            checks.equal(program.wait(30), 0, "exit code 0 on screen %dx%d" % screen)


def main():
    checks = harness.Checks()
    for part in harness.parts_to_run(PARTS):
        {"programs": every_program, "screens": every_screen}[part](checks)
    checks.finish()


if __name__ == "__main__":
    main()
