#!/usr/bin/env python3
"""Figures of the EM61 link under Wine, against the field simulator on
virtual serial ports: the polled link's poll round trip and the frames a
second it reaches when the session timer asks faster than the line can
answer, against the instrument's own 18.2 frames a second; and the CPU the
program takes while Logging an EM61-LX2 with two sensors at its continuous
rate, with a 10 Hz GPS receiver and the Enhanced alarm on.
Run after the windows and native builds:  python3 bench/bench_em61_link.py"""
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402
import test_session_start as session  # noqa: E402
from em61_walk import (LX2_LINES, MK2_LINES, READING_TAGS, create_file, data_file, read_log, received_times,  # noqa: E402
                       records, sent_frames, settings, start_simulator, start_traced, tell, wait_screen)
import test_gps_survey as survey  # noqa: E402


def own_cpu_seconds(box):
    """CPU of the processes of this sandbox's Wine prefix only: other
    developers run the same programs on this machine."""
    total = 0.0
    ticks = os.sysconf("SC_CLK_TCK")
    for pid in os.listdir("/proc"):
        if not pid.isdigit():
            continue
        try:
            environ = open("/proc/%s/environ" % pid, "rb").read()
            if ("WINEPREFIX=" + box.prefix).encode() not in environ:
                continue
            fields = open("/proc/%s/stat" % pid).read().rsplit(")", 1)[1].split()
            total += (int(fields[11]) + int(fields[12])) / ticks
        except (OSError, IndexError):
            pass
    return total


def polled(interval):
    program = "Lum61MK2"
    with harness.Sandbox("bench-em61-polled") as box:
        path = session.first_start(box, program)
        # A session timer faster than a frame takes on the line (15 bytes at
        # 9600 baud: 15.6 ms, which the simulator's pacing keeps).
        settings(path, MK2_LINES, {"GpsInput": 0, "SampleInterval": "%.6f" % interval})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61mk2", ["--polled", "--target-every", "0", "--stamp", "--pace"])
        box.key(window, "l")
        wait_screen(box, 460, "&File")
        time.sleep(8)
        create_file(box, window, "BENCHPOLL")
        box.key(window, "g")
        time.sleep(3)
        mark = int(time.time() * 1000)
        time.sleep(20)
        end = int(time.time() * 1000)
        box.key(window, "p")
        wait_screen(box, 460, "&Go")
        polls = [ms for ms, b in received_times(log) if b == b"A" and mark <= ms <= end]
        frames = [ms for ms, f in sent_frames(log) if mark <= ms <= end]
        gaps = [b - a for a, b in zip(polls, polls[1:])]
        print("polled EM61-MK2 under Wine, timer at %d ms, line paced at 9600 baud: %d polls and %d frames in %.1f s: %.1f frames a second "
              "(the instrument's own rate 18.2)" % (interval * 1000, len(polls), len(frames), (end - mark) / 1000.0,
                                                   len(frames) * 1000.0 / (end - mark)))
        if gaps:
            print("poll round trip (poll to the next poll, the frame handled between): median %d ms, "
                  "10th percentile %d ms, 90th %d ms" % (statistics.median(gaps), sorted(gaps)[len(gaps) // 10],
                                                         sorted(gaps)[len(gaps) * 9 // 10]))
        data, _ = data_file(box, "BENCHPOLL")
        recs = records(data or b"")
        logged = [r for r in recs[1:] if r[0:1] in READING_TAGS]
        print("readings logged in the whole recording: %d" % len(logged))
        run.stop()


def continuous_cpu():
    program = "Kelvo61LX2"
    with harness.Sandbox("bench-em61-cpu") as box:
        path = session.first_start(box, program)
        settings(path, LX2_LINES, {"GpsInput": 1, "GpsDataOption": 1, "SampleInterval": "0.050000",
                                   "SensorCount": 1, "AlarmType": 2, "AlarmAudio": 1})
        run, window, trace = start_traced(box, program)
        sim, log = start_simulator(box, "em61lx2", ["--sensors", "2", "--target-every", "3", "--lines", "4"],
                                   gps=True)
        box.key(window, "l")
        wait_screen(box, 460, "&File")
        survey.wait_first_fix(box)
        time.sleep(6)
        create_file(box, window, "BENCHCPU")
        box.key(window, "g")
        time.sleep(3)
        before, start = own_cpu_seconds(box), time.time()
        mark = int(start * 1000)
        time.sleep(30)
        used = own_cpu_seconds(box) - before
        seconds = time.time() - start
        frames = [ms for ms, f in sent_frames(log) if ms >= mark]
        print("CPU while Logging an EM61-LX2 (two sensors, %.1f frames a second, Enhanced alarm) with GGA at 10 Hz: "
              "%.1f %% of one core (%.2f s in %.0f s, Wine's own processes of the prefix included)"
              % (len(frames) / seconds, 100 * used / seconds, used, seconds))
        box.key(window, "p")
        run.stop()


def main():
    polled(0.1)
    polled(0.01)
    continuous_cpu()


if __name__ == "__main__":
    main()
