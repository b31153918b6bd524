#!/usr/bin/env python3
"""Figures of the user interface under Wine: the time from the "&Logging" key
to the logging screen shown (median of several sessions, GPS on a virtual port
with the field simulator, instrument disabled), one main-menu paint, and the
CPU the program takes while a GPS-only survey is logged at 10 Hz and while the
GPS line carries a saturated 115200-baud stream.
Run after the windows and native builds:  python3 bench/bench_ui.py"""
import os
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402
import test_gps_survey as survey  # noqa: E402
import test_session_start as session  # noqa: E402


def cpu_seconds(name):
    total = 0.0
    ticks = os.sysconf("SC_CLK_TCK")
    for pid in subprocess.run(["pgrep", "-f", name + ".exe"], capture_output=True, text=True).stdout.split():
        try:
            fields = open("/proc/%s/stat" % pid).read().rsplit(")", 1)[1].split()
            total += (int(fields[11]) + int(fields[12])) / ticks
        except (OSError, IndexError):
            pass
    return total


def main():
    sim = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    with harness.Sandbox("bench-ui") as box:
        path = session.first_start(box, "Kelvo31")
        session.edit_settings(path, {4: 0, 39: 5})   # instrument off, GPS at 115200 baud
        gps = box.serial_pair(6)
        feeder = box.spawn([sim, "--gps", gps, "--gps-option", "1", "--rate", "10", "--baud", "115200"],
                           stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo31")
        paint = box.run_tool("ui_timer", ["paint", "Kelvo31", "50"]).split()
        print("one main-menu paint under Wine: median %s ms, worst %s ms (50 paints)" % (paint[0], paint[1]))
        times = []
        for _ in range(5):
            out = box.run_tool("ui_timer", ["logging", "Kelvo31", "460"]).strip()
            if out.replace(".", "").isdigit():
                times.append(float(out))
            time.sleep(1)
            box.key(window, "x")
            session.control_visible(box, 420, "&Logging")
        if times:
            print("\"&Logging\" key to the logging screen shown, under Wine: median %.0f ms, min %.0f, max %.0f (%d sessions)"
                  % (statistics.median(times), min(times), max(times), len(times)))

        # CPU while a GPS-only survey is logged.
        box.key(window, "l")
        survey.wait_first_fix(box)
        survey.log_to_file(box, window, "BENCH")
        time.sleep(2)
        before, start = cpu_seconds("Kelvo31"), time.time()
        time.sleep(30)
        used = cpu_seconds("Kelvo31") - before
        print("CPU while logging GGA at 10 Hz: %.1f %% of one core (%.2f s in %.0f s)"
              % (100 * used / (time.time() - start), used, time.time() - start))

        # A saturated line: as many sentences as 115200 baud carries.
        feeder.stdin.write(b"quit\n")
        feeder.stdin.flush()
        feeder.wait(10)
        box.spawn([sim, "--gps", gps, "--gps-option", "0", "--rate", "20", "--mix", "--baud", "115200"],
                  stdin=subprocess.PIPE)
        time.sleep(2)
        before, start = cpu_seconds("Kelvo31"), time.time()
        time.sleep(30)
        used = cpu_seconds("Kelvo31") - before
        print("CPU per second of a saturated GPS line while logging: %.2f s (%.0f %% of one core)"
              % (used / (time.time() - start), 100 * used / (time.time() - start)))
        box.key(window, "p")
        program.stop()


if __name__ == "__main__":
    main()
