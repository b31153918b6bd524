#!/usr/bin/env python3
"""The setup dialogs of the main menu, driven by keys as an operator does:
each opened by its key, changed with Tab, arrows and typing, closed with Enter
(or C, or Escape for Cancel), and the settings file compared byte for byte
with the expected one written out by hand. Then a GPS-only session: the port
line that GPS Port Setup chose, seen from outside on the virtual port; a Map
Size too small for the walk refused with its warning; the coordinate units
and the map options inside a session."""
import os
import subprocess
import termios
import time

import harness
import test_gps_survey as survey_test
import test_session_start as session
import test_settings as first

GPS_COM = 7              # the port chosen in System Setup below (index 6)


def expected(lines, changes):
    """A first-start file (lines as in test_settings) with lines replaced by
    index, joined with CR LF."""
    lines = list(lines)
    for index, value in changes.items():
        lines[index] = value
    return first.join(lines)


class Program:
    """One program of the sandbox: its first start, its main menu, its file."""

    def __init__(self, box, name):
        self.box = box
        self.name = name
        self.path = session.first_start(box, name)
        self.process, self.window = session.start_program(box, name)

    def read(self):
        with open(self.path, "rb") as f:
            return f.read()

    def dialog(self, key, title):
        """Opens a dialog from the main menu by its key; its X window."""
        for attempt in range(3):
            self.box.key(self.window, key)
            found = self.box.wait_title(title, timeout=8)
            if found:
                return found
            harness.log("     (key %s pressed again)" % key)
        raise RuntimeError("no dialog %r" % title)

    def keys(self, dialog, *keys):
        self.box.key(dialog, *keys)

    def type(self, dialog, text):
        if text.startswith("-"):        # xdotool would take it for an option
            self.box.key(dialog, "minus")
            text = text[1:]
        self.box.type(dialog, text)

    def closed(self, title):
        return self.box.window_gone(title, timeout=10)

    def stop(self):
        self.box.key(self.window, "x")
        if self.process.wait(20) is None:
            self.process.stop()


def control(box, control_id, title=None, timeout=5.0):
    """(text, enabled) of a visible control with this id, in the dialog of
    this title when given. A dialog's X window may show before its controls
    are filled in, so the list is asked again for up to `timeout` seconds."""
    end = time.time() + timeout
    while True:
        inside = title is None
        for row in box.windows():
            if row["depth"] == 0:
                inside = title is None or row["text"] == title
                continue
            if inside and row["id"] == control_id and row["visible"] and row["text"] is not None:
                return row["text"], row["enabled"]
        if time.time() >= end:
            return None, None
        time.sleep(0.3)


def message(box, title, timeout=15):
    """Text of the message box with this title, its line ends as '|'."""
    return session.wait_dialog(box, title, timeout)


def tab(n):
    return ["Tab"] * n


def in_session(checks, box, screen, key, title):
    """A dialog of the logging screen opened by its key; its X window or None."""
    box.key(screen, key)
    dialog = box.wait_title(title)
    checks.check(dialog is not None, "%s opens %s in the session" % (key.upper(), title))
    return dialog


# ---------------------------------------------------------------- EM31-MK2

def em31_dialogs(checks, box):
    p = Program(box, "Kelvo31")
    base = first.EM31MK2
    checks.equal(p.read(), expected(base, {}), "Kelvo31: the first start's file")

    # Survey Setup: no number for the rate reads 0, and 0 readings a second is 1.
    d = p.dialog("s", "Survey Setup")
    checks.equal(control(box, 1111, "Survey Setup"), ("5.00", True), "Survey Setup shows 5.00 readings a second")
    p.keys(d, "Tab")
    p.type(d, "abc")
    p.keys(d, "Tab", "Down", "Tab", "Down", "Tab")
    p.type(d, "7")
    p.keys(d, "Tab")
    p.type(d, "2.5")
    p.keys(d, "Tab", "Down", "Tab", "End", "Tab")
    p.type(d, "10")
    p.keys(d, "Tab")
    p.type(d, "0.5")
    p.keys(d, "Return")
    checks.check(p.closed("Survey Setup"), "Survey Setup closes on Enter")
    survey = {47: "1", 48: "1", 50: "0.500000", 53: "1.000000", 54: "7", 55: "2.500000", 56: "1", 57: "3",
              58: "10.000000"}
    checks.equal(p.read(), expected(base, survey), "Survey Setup OK writes the survey byte for byte")

    # System Setup: C cancels from a check box, and nothing is written.
    before = p.read()
    d = p.dialog("t", "System Setup")
    checks.equal(control(box, 1001, "System Setup")[0], "EM31-MK2 State:", "System Setup names the instrument")
    p.keys(d, "Up", *tab(7))
    p.keys(d, "space", "c")
    checks.check(p.closed("System Setup"), "C closes System Setup as Cancel")
    checks.equal(p.read(), before, "Cancel writes nothing")

    d = p.dialog("t", "System Setup")
    p.keys(d, "Up", "Tab", "Down", "Tab", "Down", "Tab", "Down", "Tab", "End", "Tab", "Down", "Down", "Tab",
           "Down", "Down", "Tab", "space", "Return")
    checks.check(p.closed("System Setup"), "System Setup closes on Enter")
    system = {3: "0", 6: "2", 7: "4", 8: "0", 11: "3", 13: "1", 37: "6", 68: "2"}
    checks.equal(p.read(), expected(base, {**survey, **system}), "System Setup OK writes the system byte for byte")

    # Geometry Setup: numbers typed, then the unit: they are meant in feet.
    d = p.dialog("e", "Geometry Setup")
    checks.equal(control(box, 1151, "Geometry Setup")[0], "-0.30", "Geometry Setup shows the X offset")
    p.keys(d, "Tab", "shift+Tab")
    p.type(d, "1")
    p.keys(d, "Tab")
    p.type(d, "2")
    p.keys(d, "Tab", "Down", "Down", "Return")
    checks.check(p.closed("Geometry Setup"), "Geometry Setup closes on Enter")
    geometry = {43: "2", 44: "0.304800", 45: "0.609600"}
    changed = {**survey, **system}
    changed.update(geometry)
    checks.equal(p.read(), expected(base, changed), "Geometry Setup OK takes the offsets in feet")

    # GPS Port Setup: the sentence choice renames the mask, the line is changed.
    d = p.dialog("g", "GPS Port Setup")
    checks.equal(control(box, 1445, "GPS Port Setup")[0], "HDOP", "GGA shows HDOP")
    p.keys(d, "Tab", "Up")
    checks.equal(control(box, 1445, "GPS Port Setup")[0], "PDOP", "GGA/GSA shows PDOP")
    p.keys(d, "Down", "Down", "Down", "Down", "Down", "Down", "Down")
    checks.equal(control(box, 1441, "GPS Port Setup")[0], "N/A", "the pseudo-GGA of a total station has no mask")
    checks.equal(control(box, 1437, "GPS Port Setup")[1], True, "and its RTS units are offered")
    p.keys(d, *(["Up"] * 7))
    p.keys(d, "Tab", "Tab", "Down", "Tab", "Down", "Tab", "Tab", "Down", "Tab", "Up", "Tab", "Down", "Down", "Tab")
    p.type(d, "abc")
    p.keys(d, "Tab", "Down", "Down", "Tab", "space", "Return")
    checks.check(p.closed("GPS Port Setup"), "GPS Port Setup closes on Enter")
    gps = {10: "0", 36: "0", 38: "2", 40: "1", 41: "1", 69: "0", 70: "3", 71: "7", 72: "0.000000"}
    changed.update(gps)
    checks.equal(p.read(), expected(base, changed), "GPS Port Setup OK writes the port byte for byte")

    # Map Options: a colour view without an instrument is refused at once.
    d = p.dialog("m", "Map Display Options")
    p.keys(d, "Down", "Tab")
    p.type(d, "60")
    p.keys(d, "Tab", "Down", "Tab", "Up", "Tab", "Down", "Tab", "Tab", "Tab", "Down", "Tab")
    p.type(d, "0.3")
    p.keys(d, "Tab")
    p.type(d, "120")
    p.keys(d, "Tab", "Down")
    refused = message(box, "INFORMATION")
    checks.equal(refused, "Only sensor position avaiable for GXY format", "a colour view needs the instrument")
    box.key(box.wait_title("INFORMATION"), "Return")
    d = box.wait_title("Map Display Options")
    checks.equal(control(box, 1509, "Map Display Options")[0], "Sensor Positions, No Color Image",
                 "the view goes back to positions")
    p.keys(d, "Return")
    checks.check(p.closed("Map Display Options"), "Map Display Options close on Enter")
    options = {5: "1", 12: "0", 49: "3", 59: "2", 60: "5", 63: "0.500000", 64: "60", 65: "1", 66: "-60.000000"}
    changed.update(options)
    checks.equal(p.read(), expected(base, changed), "Map Display Options OK write the map byte for byte")
    return p, changed


def line_of(box, com):
    end = os.path.realpath(os.path.join(box.prefix, "dosdevices", "com%d" % com))
    fd = os.open(end, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
    try:
        iflag, oflag, cflag, lflag, ispeed, ospeed, cc = termios.tcgetattr(fd)
    finally:
        os.close(fd)
    return ospeed, bool(cflag & termios.CSTOPB), bool(iflag & termios.INPCK)


def em31_session(checks, box, p, changed):
    """GPS only (the instrument was disabled), on the port and line chosen."""
    sim_path = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    if not os.path.isfile(sim_path):
        checks.check(False, "the field simulator is built")
        return
    peer = box.serial_pair(GPS_COM)
    # A fast walk east, 50 m a second: soon far beyond a map of 1 foot a side.
    box.spawn([sim_path, "--gps", peer, "--gps-option", "0", "--rate", "5", "--speed", "50", "--lines", "1",
               "--line-length", "20000", "--heading", "90"], stdin=subprocess.PIPE,
              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    box.key(p.window, "l")
    started = session.control_visible(box, 460, "&File", timeout=20)
    checks.check(started, "a GPS-only session starts")
    if not started:
        return
    speed, two_stop, parity = line_of(box, GPS_COM)
    checks.equal(speed, termios.B19200, "the GPS port runs at the 19200 baud chosen")
    checks.check(two_stop, "with the two stop bits chosen")
    checks.check(parity, "and checks the parity chosen")

    screen = box.wait_window("Kelvo31")
    time.sleep(12)
    # Map Size: one foot a side cannot hold the walk.
    d = in_session(checks, box, screen, "s", "Map Size")
    if d:
        checks.equal(control(box, 1463, "Map Size")[0], "feet", "the map size is in feet")
        box.key(d, "Tab", "shift+Tab")
        box.type(d, "1")
        box.key(d, "Return")
        text = message(box, "WARNING")
        checks.equal(text, "Map Size too small||Please select Map Size option||and increase the map size",
                     "a map too small for the walk is refused")
        box.key(box.wait_title("WARNING"), "Return")
        checks.check(box.window_gone("WARNING"), "the warning closes")
        checks.equal(p.read(), expected(first.EM31MK2, changed), "the old map size is kept and saved")

    # Coordinates Display Units: back to UTM meters.
    d = in_session(checks, box, screen, "t", "Set Coordinates Display Units")
    if d:
        checks.equal(control(box, 1450)[0], "UTM feet", "the units of System Setup are shown")
        box.key(d, "Up", "Return")
        box.window_gone("Set Coordinates Display Units")
        changed[68] = "1"
        checks.equal(p.read(), expected(first.EM31MK2, changed), "the coordinate units are saved")

    # Map Display Options in a session: units and swath are fixed; Escape cancels.
    d = in_session(checks, box, screen, "y", "Map Display Options")
    if d:
        checks.equal(control(box, 1470, "Map Display Options")[1], False, "map units fixed in a session")
        checks.equal(control(box, 1472, "Map Display Options")[1], False, "the swath fixed in a session")
        box.key(d, "Escape")
        checks.check(box.window_gone("Map Display Options"), "Escape cancels")
        checks.equal(p.read(), expected(first.EM31MK2, changed), "Cancel writes nothing")
    # GPS Warning Mask: the labels of GGA/GSA, four more satellites.
    d = in_session(checks, box, screen, "w", "GPS Warning Mask")
    if d:
        checks.equal(control(box, 1445, "GPS Warning Mask")[0], "PDOP", "the mask names the dilution of GGA/GSA")
        box.key(d, "Tab", "Tab", "Tab", "Down", "Down", "Down", "Down", "Return")
        box.window_gone("GPS Warning Mask")
        changed[71] = "11"
        checks.equal(p.read(), expected(first.EM31MK2, changed), "the warning mask is saved")

    # A data file: Stand By, and the review row is offered at once.
    made = survey_test.create_file(box, screen, "dialogs")
    checks.check(made, "File brings Stand By")
    if made:
        checks.equal(control(box, 470)[1], True, "the review row's Lf is enabled after File")
        checks.equal(control(box, 477)[1], True, "and Enter Review too")
    box.key(screen, "x")
    if made:
        survey_test.answer(box, "Confirm Exit")
    session.control_visible(box, 420, "&Logging", timeout=20)


# ---------------------------------------------------------------- other instruments

def em61mk2_dialogs(checks, box):
    p = Program(box, "Kelvo61MK2")
    base = first.EM61MK2
    d = p.dialog("s", "Survey Setup")
    p.keys(d, "Down")
    checks.equal(control(box, 1119, "Survey Setup")[0], "Wheel Increment", "Wheel renames the increment")
    checks.equal(control(box, 1111, "Survey Setup"), ("Not Available", False), "Wheel has no reading rate")
    checks.equal(control(box, 1118, "Survey Setup")[0], "0.200", "and shows the wheel's increment")
    p.keys(d, *tab(6))
    p.type(d, "0.5")
    p.keys(d, "Escape")
    checks.check(p.closed("Survey Setup"), "Escape cancels Survey Setup")
    checks.equal(p.read(), expected(base, {}), "Cancel after a mode change keeps the increments")

    d = p.dialog("s", "Survey Setup")
    p.keys(d, "Down", *tab(6))
    p.type(d, "0.5")
    p.keys(d, *(["shift+Tab"] * 6), "Down")
    checks.equal(control(box, 1119, "Survey Setup")[0], "Station Increment", "Manual names the station increment")
    checks.equal(control(box, 1118, "Survey Setup")[0], "2.000", "and shows the Manual increment")
    p.keys(d, *tab(6))
    p.type(d, "3")
    p.keys(d, "Tab", "Down", "Return")
    checks.check(p.closed("Survey Setup"), "Survey Setup closes on Enter")
    changed = {44: "2", 47: "0.500000", 48: "3.000000", 70: "1"}
    checks.equal(p.read(), expected(base, changed), "Manual with every increment typed, byte for byte")

    d = p.dialog("e", "Geometry Setup")
    checks.check(control(box, 1421, "Geometry Setup")[0] is not None, "the geometry picture stands in the dialog")
    p.keys(d, "Tab", "Tab", "Tab", "End", "Return")
    checks.check(p.closed("Geometry Setup"), "Geometry Setup closes on Enter")
    changed[4] = "4"
    checks.equal(p.read(), expected(base, changed), "the hand-held sensor size is saved")
    p.stop()


def em61lx2_dialogs(checks, box):
    p = Program(box, "Kelvo61LX2")
    base = first.EM61LX2
    d = p.dialog("t", "System Setup")
    checks.equal(control(box, 915, "System Setup"), ("N/A", False), "one sensor: no right filter factor")
    p.keys(d, *tab(3), "Down")
    checks.equal(control(box, 915, "System Setup"), ("310.0", True), "two sensors: the right factor at once")
    p.keys(d, *tab(5))
    p.type(d, "100")
    p.keys(d, "Tab")
    p.type(d, "500")
    p.keys(d, "Return")
    text = message(box, "Filter Factor Left Coil")
    checks.equal(text, "Entered Filter Factor for Left Coil ( 100.0 )|| is out of valid range ( 125 to 1000 ).||"
                       "Program restores previous value ( 310.0 )", "a left factor of 100 is refused")
    box.key(box.wait_title("Filter Factor Left Coil"), "Return")
    checks.check(p.closed("System Setup"), "System Setup closes after the message")
    changed = {3: "1", 95: "500.000000"}
    checks.equal(p.read(), expected(base, changed), "the right factor is taken, the left kept")

    d = p.dialog("s", "Survey Setup")
    p.keys(d, *tab(9))
    p.type(d, "0.25")
    p.keys(d, "Tab")
    p.type(d, "-1.5")
    p.keys(d, "Return")
    checks.check(p.closed("Survey Setup"), "the array's Survey Setup closes on Enter")
    changed.update({43: "0.250000", 44: "-1.500000"})
    checks.equal(p.read(), expected(base, changed), "the array's offsets stand in its Survey Setup")
    p.stop()


def em343_dialogs(checks, box):
    p = Program(box, "Kelvo34-3")
    d = p.dialog("s", "Survey Setup")
    p.keys(d, "Down")
    checks.equal(control(box, 1401, "Survey Setup")[0], "Configurations:", "Manual counts readings")
    checks.equal(control(box, 1173, "Survey Setup")[0], "1 reading", "from 1 reading")
    checks.equal(control(box, 1400, "Survey Setup")[0], "Samples/Rdg:", "the rate field holds samples")
    p.keys(d, "Tab")
    p.type(d, "7")
    p.keys(d, "Tab", "Down", "Down", "Down", "Return")
    checks.check(p.closed("Survey Setup"), "Survey Setup closes on Enter")
    checks.equal(p.read(), expected(first.EM343, {47: "2", 49: "3", 50: "7"}),
                 "Manual is stored as 2 with 4 readings and 7 samples")
    p.stop()


def grad601_dialogs(checks, box):
    p = Program(box, "Kelvo601")
    d = p.dialog("e", "Geometry Setup")
    checks.equal(control(box, 1155, "Geometry Setup", timeout=0)[0], None, "the gradiometer has no unit radios")
    p.keys(d, "Tab", "Tab")
    p.type(d, "0.8")
    p.keys(d, "Return")
    checks.check(p.closed("Geometry Setup"), "Geometry Setup closes on Enter")
    checks.equal(p.read(), expected(first.GRAD601, {6: "0.800000"}), "the sensor separation in metres")
    p.stop()


def main():
    checks = harness.Checks()
    started = time.time()
    with harness.Sandbox("setup-dialogs", screen=(1280, 800)) as box:
        p, changed = em31_dialogs(checks, box)
        em31_session(checks, box, p, changed)
        p.stop()
        em61mk2_dialogs(checks, box)
        em61lx2_dialogs(checks, box)
        em343_dialogs(checks, box)
        grad601_dialogs(checks, box)
    harness.log("wall time %.0f s" % (time.time() - started))
    checks.finish()


if __name__ == "__main__":
    main()
