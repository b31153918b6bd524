#!/usr/bin/env python3
"""From the main menu to a live logging screen and back: "&Logging" by button
and by key, each refusal with its own message, the silent instrument's panel,
and "E&xit" back to the menu."""
import os
import time

import harness

INSTRUMENT_COM = 4   # the settings' default instrument port, index 3
GPS_COM = 6          # the settings' default GPS port, index 5

# Lines of the settings file of the EM31-MK2, EM38 and EM34-3 programs (the
# version line is line 1; these three share the line of the coil type).
LINE_INSTRUMENT_ENABLED = 4
LINE_INSTRUMENT_PORT = 8
LINE_GPS_INPUT = 36
LINE_GPS_PORT = 38

# In the other programs the instrument's State line is 4 as well, but for the
# gradiometer (after the folders) it is 4 too: group C puts it third.
GPS_ONLY_LINE = {"Kelvo601": 4, "Lum601": 4, "Kelvo61LX2": 5, "Lum61LX2": 5,
                 "Kelvo61MK2": 4, "Lum61MK2": 4, "Kelvo38MK2": 4, "Lum38MK2": 4}

# About how long each part runs alone, so that ctest starts the longest first.
SECONDS = {"em31": 35, "portrait": 25, "refusals": 30, "models": 35, "gps-only": 60}


def settings_path(box, program):
    folder = dict((v[0], v[1]) for v in harness.VARIANTS)[program]
    return box.c_path("C:\\ProgramData\\Ostrel\\%s\\%s.INI" % (folder, folder))


def start_program(box, program):
    """Starts a program and waits until its main menu can take keys (the X
    window shows before the frame's create step has made the buttons)."""
    started = box.start(program)
    window = box.wait_window(program)
    control_visible(box, 420, "&Logging", timeout=30)
    return started, window


def first_start(box, program):
    """Makes the settings folder as an installation does and lets a first
    start write the file."""
    path = settings_path(box, program)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    started, window = start_program(box, program)
    deadline = time.time() + 20
    while not os.path.exists(path) and time.time() < deadline:
        time.sleep(0.2)
    box.key(window, "x")
    if started.wait(30) is None:
        started.stop()
    return path


def edit_settings(path, changes):
    lines = open(path, "rb").read().split(b"\r\n")
    for number, value in changes.items():
        lines[number - 1] = str(value).encode()
    with open(path, "wb") as f:
        f.write(b"\r\n".join(lines))


def dialogs(box):
    rows = box.windows()
    found = []
    for i, row in enumerate(rows):
        if row["depth"] == 0 and row["class"] == "#32770" and row["visible"]:
            texts = []
            for child in rows[i + 1:]:
                if child["depth"] == 0:
                    break
                if child["id"] == 550:
                    texts.append(child["text"])
            found.append((row["text"], texts[0] if texts else None))
    return found


def wait_dialog(box, title, timeout=20):
    deadline = time.time() + timeout
    while time.time() < deadline:
        for found_title, text in dialogs(box):
            if found_title == title:
                return text
        time.sleep(0.5)
    return None


def control_visible(box, control_id, text=None, timeout=20):
    deadline = time.time() + timeout
    while time.time() < deadline:
        for row in box.windows():
            if row["depth"] > 0 and row["id"] == control_id and row["visible"] and \
                    (text is None or row["text"] == text):
                return True
        time.sleep(0.5)
    return False


def start_simulator(box, gps_peer=None, instrument_peer=None, model="em31", extra=()):
    sim = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    if not os.path.isfile(sim):
        harness.skip("no field simulator at " + sim)
    argv = [sim, "--gps-option", "1", "--rate", "5"]
    if gps_peer:
        argv += ["--gps", gps_peer]
    if instrument_peer:
        argv += ["--instrument", instrument_peer, "--model", model]
    argv += list(extra)
    import subprocess
    return box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def dark_pixels(png, rect):
    """Pixels of text (dark) inside rect = (left, top, right, bottom) of a screenshot."""
    import subprocess
    l, t, r, b = rect
    ppm = subprocess.run(["convert", png, "-crop", "%dx%d+%d+%d" % (r - l, b - t, l, t), "+repage", "ppm:-"],
                         capture_output=True, check=True).stdout
    pixels = ppm.split(b"\n", 3)[3]
    return sum(1 for i in range(0, len(pixels) - 2, 3) if max(pixels[i], pixels[i + 1], pixels[i + 2]) < 80)


def bar_area(box):
    """The top of the bar windows, where the lost-connection notice stands."""
    rects = [row["rect"] for row in box.windows() if row["id"] in (620, 630) and row["visible"]]
    if not rects:
        return None
    left = min(r[0] for r in rects) + 2
    right = max(r[2] for r in rects) - 2
    top = min(r[1] for r in rects) + 2
    return (left, top, right, top + 50)


def reaches_logging_screen(box, checks, program, window, how):
    if how == "key":
        box.key(window, "l")
    else:
        box.click_control(text="&Logging")
    ok = control_visible(box, 460, "&File")
    checks.check(ok, "%s: \"&Logging\" by %s reaches the logging screen" % (program, how))
    return ok


def back_to_menu(box, checks, program, window):
    box.key(window, "x")
    checks.check(control_visible(box, 420, "&Logging"), "%s: \"E&xit\" returns to the main menu" % program)


def live_session(checks):
    """A live EM31-MK2 session, twice, then the program ends with code 0."""
    with harness.Sandbox("session-em31") as box:
        path = first_start(box, "Kelvo31")
        checks.check(os.path.exists(path), "first start wrote the settings file")
        gps = box.serial_pair(GPS_COM)
        instrument = box.serial_pair(INSTRUMENT_COM)
        sent_log = os.path.join(box.prefix, "sent.log")
        sim = start_simulator(box, gps, instrument, "em31", extra=["--log", sent_log])
        program, window = start_program(box, "Kelvo31")
        box.screenshot("session-kelvo31-main-menu")
        if reaches_logging_screen(box, checks, "Kelvo31", window, "key"):
            time.sleep(3)
            area = bar_area(box)
            shot = box.screenshot("session-kelvo31-logging-landscape")
            before = dark_pixels(shot, area) if area else -1
            sim.stdin.write(b"quiet instrument 4\n")
            sim.stdin.flush()
            time.sleep(2.5)
            shot = box.screenshot("session-kelvo31-lost-connection")
            during = dark_pixels(shot, area) if area else -1
            time.sleep(4)
            shot = box.screenshot("session-kelvo31-link-back")
            after = dark_pixels(shot, area) if area else -1
            checks.check(during > before + 50, "a silent instrument shows the lost-connection notice (%d -> %d dark pixels)"
                         % (before, during))
            checks.check(after < before + 20, "the notice goes when frames return (%d dark pixels)" % after)
            back_to_menu(box, checks, "Kelvo31", window)
        if reaches_logging_screen(box, checks, "Kelvo31", window, "button"):
            back_to_menu(box, checks, "Kelvo31", window)
        # The GPS monitor opens from the menu and returns to it.
        box.key(window, "o")
        checks.check(control_visible(box, 780), "\"GPS M&onitoring\" opens the GPS monitor")
        time.sleep(2)
        box.screenshot("session-kelvo31-gps-monitor")
        # "&Send" asks for the command and writes it to the receiver with CR LF.
        box.key(window, "s")
        checks.check(box.wait_title("GetGPSMessage"), "\"&Send\" opens the command dialog")
        box.xdotool(["key", "Return"])
        time.sleep(1.5)
        came_back = open(sent_log, "rb").read() if os.path.exists(sent_log) else b""
        checks.check(b"$PASHS,NME,SAT,A,ON\\r\\n" in came_back, "the command reached the receiver")
        box.key(window, "x")
        checks.check(control_visible(box, 420, "&Logging"), "the monitor's \"E&xit\" returns to the main menu")
        box.key(window, "x")
        checks.equal(program.wait(30), 0, "Kelvo31 ends with exit code 0 after two sessions")


def portrait(checks):
    """Menu and logging screen in portrait, one mapping and one navigation program."""
    for program_name in ("Kelvo31", "Lum31"):
        with harness.Sandbox("session-portrait-" + program_name, screen=(800, 1280)) as box:
            session_screen = program_name.lower()
            first_start(box, program_name)
            gps = box.serial_pair(GPS_COM)
            instrument = box.serial_pair(INSTRUMENT_COM)
            start_simulator(box, gps, instrument, "em31")
            program, window = start_program(box, program_name)
            box.screenshot("session-%s-main-menu-portrait" % session_screen)
            if reaches_logging_screen(box, checks, program_name + " (portrait)", window, "key"):
                time.sleep(4)
                box.screenshot("session-%s-logging-portrait" % session_screen)
                back_to_menu(box, checks, program_name, window)
            program.stop()


def refusals(checks):
    """The refusals, each with its own title and text."""
    with harness.Sandbox("session-refusals") as box:
        path = first_start(box, "Kelvo31")
        edit_settings(path, {LINE_INSTRUMENT_ENABLED: 0, LINE_GPS_INPUT: 0})
        program, window = start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "EM AND GPS DISABLED"), "Instrument Disabled and GPS Disabled",
                     "both links disabled")
        program.stop()

        edit_settings(path, {LINE_INSTRUMENT_ENABLED: 1, LINE_GPS_INPUT: 1, LINE_INSTRUMENT_PORT: 5})
        program, window = start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "Serial Port Issue"),
                     "Serial Port COM6 Assigned to Instrument and GPS, please change port selection.",
                     "the same port twice")
        program.stop()

        edit_settings(path, {LINE_INSTRUMENT_PORT: 3})
        box.remove_port(INSTRUMENT_COM)
        box.serial_pair(GPS_COM)
        program, window = start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "Serial Port", timeout=30), "Cannot open COM4 ",
                     "a missing instrument port")
        program.stop()

        box.serial_pair(INSTRUMENT_COM)
        box.remove_port(GPS_COM)
        program, window = start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "Serial Port", timeout=30), "Cannot open COM6 for GPS",
                     "a missing GPS port")
        program.stop()

        box.serial_pair(GPS_COM)
        program, window = start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "Connection Issue", timeout=30),
                     "Instrument OFF or Disconnected, or wrong COM port selected", "a silent instrument")
        program.stop()


def frame_lengths(checks):
    """The EM34-3 and the EM38 with both frame lengths, and one of the wrong length."""
    for program_name, model in (("Kelvo34-3", "em34"), ("Kelvo38", "em38-7"), ("Kelvo38", "em38-12")):
        with harness.Sandbox("session-" + model) as box:
            first_start(box, program_name)
            gps = box.serial_pair(GPS_COM)
            instrument = box.serial_pair(INSTRUMENT_COM)
            start_simulator(box, gps, instrument, model)
            program, window = start_program(box, program_name)
            if reaches_logging_screen(box, checks, "%s (%s)" % (program_name, model), window, "key"):
                back_to_menu(box, checks, program_name, window)
            program.stop()

    with harness.Sandbox("session-em38-wrong") as box:
        first_start(box, "Kelvo38")
        box.serial_pair(GPS_COM)
        peer = box.serial_pair(INSTRUMENT_COM)
        writer = box.spawn(["python3", "-c",
                            "import os,time\nf=os.open(%r,os.O_WRONLY)\n"
                            "while True:\n os.write(f,b'T\\x20+0123+04\\r')\n time.sleep(0.08)\n" % peer])
        program, window = start_program(box, "Kelvo38")
        box.key(window, "l")
        checks.equal(wait_dialog(box, "Connection Issue", timeout=30),
                     "Instrument OFF or Disconnected, or wrong COM port selected",
                     "EM38 frames of 9 bytes are refused")
        program.stop()
        writer.kill()


def gps_only(checks):
    """Every other program with the instrument disabled: a GPS-only session."""
    with harness.Sandbox("session-gps-only") as box:
        for program_name in ("Kelvo601", "Lum601", "Kelvo61LX2", "Lum61LX2", "Kelvo61MK2", "Lum61MK2",
                             "Lum31", "Lum38", "Lum34-3", "Kelvo38MK2", "Lum38MK2"):
            path = first_start(box, program_name)
            edit_settings(path, {GPS_ONLY_LINE.get(program_name, LINE_INSTRUMENT_ENABLED): 0})
            gps = box.serial_pair(GPS_COM)
            sim = start_simulator(box, gps)
            program, window = start_program(box, program_name)
            if reaches_logging_screen(box, checks, program_name + " (GPS only)", window, "key"):
                if program_name in ("Lum31", "Kelvo38MK2", "Lum601"):
                    time.sleep(3)
                    box.screenshot("session-%s-gps-only" % program_name)
                back_to_menu(box, checks, program_name, window)
            box.key(window, "x")
            checks.equal(program.wait(30), 0, "%s ends with exit code 0" % program_name)
            program.stop()
            sim.kill()


# Each part is a ctest test of its own, run side by side with the others.
PARTS = {"em31": live_session, "portrait": portrait, "refusals": refusals, "models": frame_lengths,
         "gps-only": gps_only}


def main():
    checks = harness.Checks()
    for part in harness.parts_to_run(PARTS):
        PARTS[part](checks)
    checks.finish()


if __name__ == "__main__":
    main()
