#!/usr/bin/env python3
"""The serial ports as the programs open them: the line settings seen from the
Linux side of the virtual ports, COM9 and COM10 by their two name forms, and a
session that survives random bytes on both lines without growing."""
import os
import subprocess
import termios
import time

import harness
import test_session_start as session

# Settings lines of the EM31-MK2 programs.
LINE_INSTRUMENT_PORT = 8
LINE_GPS_PORT = 38
LINE_GPS_BAUD = 39
LINE_GPS_PARITY = 41
LINE_GPS_STOP = 42

SPEEDS = {termios.B9600: 9600, termios.B19200: 19200, termios.B57600: 57600, termios.B4800: 4800}

# About how long this test runs alone, so that ctest starts the longest first.
SECONDS = 95


def line_of(program_end):
    """Termios of the program's end of a virtual port."""
    fd = os.open(program_end, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
    try:
        iflag, oflag, cflag, lflag, ispeed, ospeed, cc = termios.tcgetattr(fd)
    finally:
        os.close(fd)
    return {"speed": SPEEDS.get(ospeed, ospeed), "two_stop": bool(cflag & termios.CSTOPB),
            "parity_check": bool(iflag & termios.INPCK), "xon": bool(iflag & termios.IXON),
            "xoff": bool(iflag & termios.IXOFF)}


def program_end(box, com):
    return os.path.realpath(os.path.join(box.prefix, "dosdevices", "com%d" % com))


def rss_kb(box, name):
    """Resident memory of the Windows program running in this sandbox, in kB."""
    best = 0
    for pid in box.pids(name):
        try:
            for line in open("/proc/%s/status" % pid):
                if line.startswith("VmRSS:"):
                    best = max(best, int(line.split()[1]))
        except OSError:
            pass
    return best


def main():
    checks = harness.Checks()
    sim_path = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    if not os.path.isfile(sim_path):
        harness.skip("no field simulator")

    # GPS at 57600 baud, even parity, two stop bits; the instrument at its own 9600.
    with harness.Sandbox("ports-settings") as box:
        path = session.first_start(box, "Kelvo31")
        session.edit_settings(path, {LINE_GPS_BAUD: 4, LINE_GPS_PARITY: 1, LINE_GPS_STOP: 1})
        gps = box.serial_pair(6)
        instrument = box.serial_pair(4)
        box.spawn([sim_path, "--gps", gps, "--gps-option", "1", "--instrument", instrument, "--model", "em31"],
                  stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        box.key(window, "l")
        if checks.check(session.control_visible(box, 460, "&File"), "a session with both ports"):
            time.sleep(1)
            g = line_of(program_end(box, 6))
            checks.equal(g["speed"], 57600, "GPS port speed from code 4")
            checks.check(g["two_stop"], "GPS port two stop bits")
            checks.check(g["parity_check"], "GPS port checks the parity it was given")
            checks.check(g["xon"] and g["xoff"], "GPS port has XON/XOFF flow control")
            i = line_of(program_end(box, 4))
            checks.equal(i["speed"], 9600, "instrument port at 9600 baud")
            checks.check(not i["two_stop"], "instrument port one stop bit")
            checks.check(not i["parity_check"], "instrument port without parity")
            checks.check(not i["xon"] and not i["xoff"], "instrument port without XON/XOFF")
        program.stop()

    # The EM38-MK2 opens at 19200 whatever the settings say.
    with harness.Sandbox("ports-em38mk2") as box:
        session.first_start(box, "Kelvo38MK2")
        box.serial_pair(6)
        box.serial_pair(4)
        program, window = session.start_program(box, "Kelvo38MK2")
        box.key(window, "l")
        time.sleep(1.5)
        i = line_of(program_end(box, 4))
        checks.equal(i["speed"], 19200, "EM38-MK2 instrument port at 19200 baud")
        program.stop()

    # COM9 takes the short name, COM10 the device path: both open.
    with harness.Sandbox("ports-names") as box:
        path = session.first_start(box, "Kelvo31")
        session.edit_settings(path, {LINE_INSTRUMENT_PORT: 8, LINE_GPS_PORT: 9})
        gps = box.serial_pair(10)
        instrument = box.serial_pair(9)
        box.spawn([sim_path, "--gps", gps, "--gps-option", "1", "--instrument", instrument, "--model", "em31"],
                  stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        box.key(window, "l")
        checks.check(session.control_visible(box, 460, "&File"), "COM9 and COM10 both open")
        checks.equal(line_of(program_end(box, 10))["speed"], 9600, "COM10 has its line settings")
        program.stop()

    # Random bytes on both lines for a minute: no crash, no growth.
    with harness.Sandbox("ports-garbage") as box:
        session.first_start(box, "Kelvo31")
        gps = box.serial_pair(6)
        instrument = box.serial_pair(4)
        # The walk stands nearly still, so that no new map page is made meanwhile.
        sim = box.spawn([sim_path, "--gps", gps, "--gps-option", "0", "--instrument", instrument, "--model", "em31",
                         "--speed", "0.01"], stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        box.key(window, "l")
        session.control_visible(box, 460, "&File")
        time.sleep(3)
        before = rss_kb(box, "Kelvo31")
        for second in range(60):
            sim.stdin.write(b"garbage gps 800\ngarbage instrument 500\n")
            if second % 10 == 0:
                sim.stdin.write(b"overlong gps 300\ndollar-mid\nbad-checksum\n")
            sim.stdin.flush()
            time.sleep(1)
        after = rss_kb(box, "Kelvo31")
        checks.check(program.running(), "the program runs on after a minute of random bytes")
        checks.check(after <= before + 2048, "memory stays put (%d kB before, %d kB after)" % (before, after))
        box.key(window, "x")
        checks.check(session.control_visible(box, 420, "&Logging"), "and leaves its session normally")
        box.key(window, "x")
        checks.equal(program.wait(30), 0, "exit code 0 after the random bytes")

    checks.finish()


if __name__ == "__main__":
    main()
