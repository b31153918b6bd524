#!/usr/bin/env python3
"""The settings file on disk. Each program writes its file at a first start only
when its folder exists, with the bytes below, and runs all the same without it.
A valid file is left untouched by a start; a file of another version is replaced
by the defaults; a truncated file or letters in numeric lines start silently.
"&Reset to Default" (button or key R) then OK deletes the file and closes the
program with exit code 0; Cancel changes nothing."""
import os
import time

import harness

# The mapping program's first-start file of each instrument, line by line.
GRAD601 = [
    "Ver1.01", "C:\\", "C:\\", "1", "1", "1", "1.000000", "0", "0", "0", "3", "1", "1", "1", "0",
    "1", "2", "3", "16711680", "65280", "0.000000", "500.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "0.000000", "0.000000", "0", "1",
    "1.000000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000", "0", "1", "1", "0", "1", "2", "1", "0",
]
EM61LX2 = [
    "Ver1.08", "C:\\", "C:\\", "0", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "2", "0", "2", "3", "4", "2", "2", "3", "4", "1",
    "16711680", "65280", "255", "16711935", "16711680", "65280", "255", "16711935",
    "0", "0.000000", "500.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "0.000000", "0.000000", "0", "5",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0", "0.000000", "0.000000", "0.000000", "0.000000",
    "0", "1", "1", "0", "1", "2", "1",
    "0", "1", "0", "0", "100.000000", "50.000000", "1000.000000", "0",
    "0", "0", "0", "310.000000", "310.000000",
]
EM61MK2 = [
    "Ver2.27", "C:\\", "C:\\", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "3", "0", "2", "3", "4", "2", "2", "3", "4", "1",
    "16711680", "65280", "255", "16711935", "16711680", "65280", "255", "16711935",
    "0", "0.000000", "500.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "0.000000", "0.000000", "0", "5",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0", "0.000000", "0.000000", "0.000000", "0.000000",
    "0", "1", "1", "0", "1", "2", "1", "0", "0",
]
EM31MK2 = [
    "Ver2.26", "C:\\", "C:\\", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "1", "0", "3", "2", "3", "2", "2", "2", "2", "2",
    "16711680", "65280", "255", "16711935", "16711680", "65280", "255", "16711935",
    "0", "0.000000", "500.000000", "-25.000000", "25.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "-0.300000", "0.000000",
    "0", "0", "0", "2",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0", "1", "1", "0", "1", "2", "1", "0", "0",
]
EM38 = [
    "Ver2.11", "C:\\", "C:\\", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "1", "0", "3", "2", "3", "2", "2", "2", "2", "2",
    "16711680", "65280", "255", "16711935", "16711680", "65280", "255", "16711935",
    "0", "0.000000", "500.000000", "-25.000000", "25.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "-0.300000", "0.000000",
    "0", "0", "0", "1",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0", "1", "1", "0", "1", "2", "1", "0", "0",
]
EM343 = [
    "Ver2.14", "C:\\", "C:\\", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "1", "0", "3", "3", "3", "2", "2", "2", "4", "1",
    "16711680", "65280", "255", "16776960", "4227327", "16711935", "255", "16711935",
    "0", "0.000000", "500.000000", "-25.000000", "25.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "0.000000", "0.000000",
    "0", "0", "0", "0", "10", "2",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0", "1", "1", "0", "1", "2", "1", "0", "0",
]
EM38MK2 = [
    "Ver2.28", "C:\\", "C:\\", "1", "0", "0", "0", "3", "1", "1", "1", "0",
    "1", "0", "3", "3", "3", "3", "2", "2", "2", "2",
    "16711680", "65280", "255", "4227327", "16711680", "65280", "255", "4227327",
    "0", "0.000000", "500.000000", "-25.000000", "25.000000",
    "1", "1", "5", "1", "1", "0", "0", "5.000000", "0", "-0.300000", "0.000000",
    "0", "0", "0", "1",
    "1.000000", "0.200000", "2.000000", "0.200000", "1", "1.000000", "0", "2", "0.000000",
    "3", "4", "0", "16711680", "2.000000", "40", "0", "-20.000000", "1", "0",
    "1", "1", "5", "4.000000", "5.000000",
    "0.000000", "0.000000", "0.000000", "0.000000", "0.000000", "0.000000",
    "0", "1", "1", "0", "1", "2", "1", "0", "0",
]

# model -> (mapping lines, navigation version line, index of MapDisplayMode)
BY_MODEL = {
    -4: (GRAD601, "Ver1.05", 15),
    -2: (EM61LX2, "Ver1.00", 13),
    -1: (EM61MK2, "Ver2.20", 12),
    0: (EM31MK2, "Ver2.16", 12),
    3: (EM38, "Ver2.00", 12),
    4: (EM343, "Ver2.12", 12),
    7: (EM38MK2, "Ver2.16", 12),
}

# One program of each settings group for the cases that do not depend on the model.
DETAIL_PROGRAMS = ["Kelvo31", "Lum601", "Kelvo61LX2"]
RESET_TITLE = "Reset to Default Setting"

# Each part is a ctest test of its own, run side by side with the others: the
# first and second starts of every program, and the cases of each program above.
PARTS = ["first-start"] + DETAIL_PROGRAMS
# About how long each part runs alone, so that ctest starts the longest first.
SECONDS = {"first-start": 70, "Kelvo31": 40, "Lum601": 40, "Kelvo61LX2": 40}


def expected_lines(model, product):
    lines, navigation_version, map_mode_index = BY_MODEL[model]
    lines = list(lines)
    if product == 1:
        lines[0] = navigation_version
        lines[map_mode_index] = "0"
    return lines


def join(lines):
    return "".join(line + "\r\n" for line in lines).encode("latin-1")


class Variant:
    def __init__(self, box, name, folder, model, product):
        self.box = box
        self.name = name
        self.folder_path = box.c_path("C:\\ProgramData\\Ostrel\\" + folder)
        self.file_path = os.path.join(self.folder_path, folder + ".INI")
        self.lines = expected_lines(model, product)

    def read(self):
        with open(self.file_path, "rb") as f:
            return f.read()

    def write(self, data):
        os.makedirs(self.folder_path, exist_ok=True)
        with open(self.file_path, "wb") as f:
            f.write(data)

    def start(self):
        program = self.box.start(self.name)
        window = self.box.wait_window(self.name)
        wait_ready(self.box)
        return program, window


def wait_ready(box, timeout=60):
    """The X window appears before the frame's create step has run; the "E&xit"
    button is made after the settings are loaded."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        for row in box.windows():
            if row["depth"] > 0 and row["id"] == 429 and row["class"].lower() == "button":
                time.sleep(0.5)
                return
        time.sleep(0.3)
    raise RuntimeError("the main menu did not appear within %ss" % timeout)


def press_until(box, window, key, done, tries=3):
    """Presses a key until `done()` holds: a key pressed while Wine is still
    settling the focus can be lost."""
    for attempt in range(tries):
        if attempt:
            harness.log("     (key %s pressed again)" % key)
        box.key(window, key)
        if done():
            return True
    return False


def dialog_shown(box, title, timeout):
    deadline = time.time() + timeout
    while time.time() < deadline:
        found = box.xdotool(["search", "--name", "^%s$" % title], check=False)
        if found.split():
            return True
        time.sleep(0.3)
    return False


def dialogs_open(box):
    return [row for row in box.windows()
            if row["depth"] == 0 and row["visible"] and row["class"] == "#32770"]


def close_by_x(checks, box, variant, program, window, what):
    press_until(box, window, "x", lambda: program.wait(10) is not None)
    code = program.wait(20)
    checks.equal(code, 0, "%s: %s, then X ends with exit code 0" % (variant.name, what))
    program.stop()


def first_and_second_start(checks, box, variant):
    program, window = variant.start()
    checks.check(not os.path.exists(variant.folder_path),
                 "%s: no settings folder, nothing written, the program runs" % variant.name)
    checks.check(program.running(), "%s runs on its defaults without a settings folder" % variant.name)
    close_by_x(checks, box, variant, program, window, "without a folder")

    os.makedirs(variant.folder_path)
    program, window = variant.start()
    expected = join(variant.lines)
    checks.equal(variant.read() if os.path.exists(variant.file_path) else None, expected,
                 "%s: the first start writes the defaults (%d bytes)" % (variant.name, len(expected)))
    close_by_x(checks, box, variant, program, window, "first start")

    edited = list(variant.lines)
    edited[1] = "D:\\Survey\\North Field\\"
    edited[2] = "E:\\Backgrounds\\"
    variant.write(join(edited))
    program, window = variant.start()
    close_by_x(checks, box, variant, program, window, "edited file")
    checks.equal(variant.read(), join(edited), "%s: a start leaves a valid file untouched" % variant.name)


def start_without_message(checks, box, variant, data, what):
    variant.write(data)
    program, window = variant.start()
    time.sleep(1.5)
    checks.equal(dialogs_open(box), [], "%s: %s starts without a message" % (variant.name, what))
    checks.check(variant.read() == data, "%s: %s is left as it is" % (variant.name, what))
    close_by_x(checks, box, variant, program, window, what)


def detail_cases(checks, box, variant):
    expected = join(variant.lines)

    old = list(variant.lines)
    old[0] = "Ver0.99"
    old[1] = "Z:\\Old\\"
    variant.write(join(old))
    program, window = variant.start()
    checks.equal(variant.read(), expected, "%s: an old version line is replaced by defaults" % variant.name)
    close_by_x(checks, box, variant, program, window, "old version")

    # Cut in the middle of line 21, without a line end.
    start_without_message(checks, box, variant, join(variant.lines[:20]) + b"16711", "a truncated file")

    broken = list(variant.lines)
    for index in range(3, len(broken), 4):
        broken[index] = "abc"
    start_without_message(checks, box, variant, join(broken), "letters in numeric lines")

    huge = join(variant.lines[:1]) + b"C:\\" + b"X" * (10 * 1024 * 1024) + b"\r\n" + bytes(range(256)) * 4096
    start_without_message(checks, box, variant, huge, "a 10 MB line and binary junk")

    # Reset by the button, then OK.
    variant.write(expected)
    program, window = variant.start()
    box.click_control(text="&Reset to Default")
    box.wait_window(RESET_TITLE, timeout=20)
    box.click_control(text="OK")
    checks.equal(program.wait(30), 0, "%s: reset by the button and OK ends with exit code 0" % variant.name)
    checks.check(not os.path.exists(variant.file_path), "%s: the reset deleted the file" % variant.name)
    checks.check(os.path.isdir(variant.folder_path), "%s: the folder stays" % variant.name)
    program.stop()

    # Reset by key R, then OK.
    variant.write(expected)
    program, window = variant.start()
    press_until(box, window, "r", lambda: dialog_shown(box, RESET_TITLE, 8))
    box.wait_window(RESET_TITLE, timeout=20)
    box.click_control(text="OK")
    checks.equal(program.wait(30), 0, "%s: reset by key R and OK ends with exit code 0" % variant.name)
    checks.check(not os.path.exists(variant.file_path), "%s: key R deleted the file" % variant.name)
    program.stop()

    # Cancel changes nothing.
    edited = list(variant.lines)
    edited[1] = "D:\\Kept\\"
    variant.write(join(edited))
    program, window = variant.start()
    press_until(box, window, "r", lambda: dialog_shown(box, RESET_TITLE, 8))
    box.wait_window(RESET_TITLE, timeout=20)
    box.click_control(text="Cancel")
    time.sleep(1.0)
    checks.check(program.running(), "%s: Cancel keeps the program running" % variant.name)
    checks.equal(variant.read(), join(edited), "%s: Cancel leaves the file" % variant.name)
    close_by_x(checks, box, variant, program, window, "Cancel")

    # The next start after a reset writes the defaults again.
    os.unlink(variant.file_path)
    program, window = variant.start()
    checks.equal(variant.read(), expected, "%s: the start after a reset writes the defaults" % variant.name)
    close_by_x(checks, box, variant, program, window, "start after reset")


def main():
    checks = harness.Checks()
    rows = dict((row[0], row) for row in harness.VARIANTS)
    for part in harness.parts_to_run(PARTS):
        with harness.Sandbox("settings-" + part) as box:
            if part == "first-start":
                for row in harness.VARIANTS:
                    first_and_second_start(checks, box, Variant(box, *row))
            else:
                detail_cases(checks, box, Variant(box, *rows[part]))
    checks.finish()


if __name__ == "__main__":
    main()
