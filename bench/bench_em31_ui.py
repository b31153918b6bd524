#!/usr/bin/env python3
"""Figures of an EM31-MK2 survey under Wine, from outside the program:
the CPU of the program and of its wineserver (from /proc) while Logging
(a) the receiver alone, GGA and RMC at 10 Hz, and (b) the EM31-MK2 at its
frame rate with the same receiver and the colour image on; and the latency
from a frame leaving the simulator to its reading record in the data file
(the screen is drawn by the same handler right after the record).
Run after the windows and native builds:  python3 bench/bench_em31_ui.py [--em31-only]"""
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import em31_family_walk as walk  # noqa: E402
import harness  # noqa: E402
import test_gps_survey as survey  # noqa: E402
import test_session_start as session  # noqa: E402
import wine_cpu  # noqa: E402

SECONDS = 60


def measure_cpu(box, what, seconds=SECONDS):
    meter = wine_cpu.Meter(box, "Kelvo31")
    meter.start()
    time.sleep(seconds)
    wine_cpu.report(what, meter.stop())


def survey_run(box, instrument, name, monitoring_first=False):
    lines = {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": "0.100000"}
    path = walk.settings(box, "Kelvo31", lines)
    if not instrument:
        session.edit_settings(path, {4: 0})
    log_path = os.path.join(box.prefix, "sent.log")
    sim = walk.start_sim(box, "em31", log_path)
    run, window = session.start_program(box, "Kelvo31")
    walk.open_logging(box, window)
    if monitoring_first:
        measure_cpu(box, "Monitoring the receiver alone (GGA at 10 Hz, no file)", 30)
    survey.log_to_file(box, window, name)
    time.sleep(3)
    return sim, run, window, log_path


def latency(box, log_path, name):
    """Polls the data file and notes when each reading record appears; the
    simulator's log tells when its frame left."""
    folder = box.c_path("C:\\Survey")
    file_name = [n for n in os.listdir(folder) if n.upper().startswith(name)][0]
    path = os.path.join(folder, file_name)
    seen = os.path.getsize(path)
    arrivals = {}
    end = time.time() + 20
    while time.time() < end:
        size = os.path.getsize(path)
        if size > seen:
            now = time.time() * 1000.0
            with open(path, "rb") as f:
                f.seek(seen)
                data = f.read(size - seen)
            for i in range(0, len(data) - len(data) % 27, 27):
                if data[i:i + 1] == b"T":
                    arrivals[data[i:i + 12].decode("latin-1")] = now
            seen += len(data) - len(data) % 27
        time.sleep(0.0005)
    sent = {}
    for line in open(log_path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) == 3 and parts[1] == "instrument":
            text = walk.unescape(parts[2]).rstrip("\r")
            sent.setdefault(text, []).append(float(parts[0]))
    # A frame of equal text sent earlier is not this one: the last sending
    # before the record appeared is.
    delays = []
    for text, at in arrivals.items():
        before = [ms for ms in sent.get(text, []) if ms <= at]
        if before:
            delays.append(at - max(before))
    delays.sort()
    if delays:
        print("frame sent to its record in the file: median %.1f ms, 99th %.1f ms, worst %.1f ms (%d readings)"
              % (statistics.median(delays), delays[int(len(delays) * 0.99) - 1], delays[-1], len(delays)))


def main():
    if "--em31-only" not in sys.argv:
        receiver_alone()
    with harness.Sandbox("bench-em31-em31") as box:
        sim, run, window, log_path = survey_run(box, True, "EM31")
        measure_cpu(box, "Logging the EM31-MK2 (10.5 frames/s, all kept) with GGA at 10 Hz, colour image on")
        latency(box, log_path, "EM31")
        box.key(window, "p")
        run.stop()


def receiver_alone():
    with harness.Sandbox("bench-em31-gps") as box:
        sim, run, window, _ = survey_run(box, False, "GPSONLY", monitoring_first=True)
        measure_cpu(box, "Logging the receiver alone (GGA at 10 Hz)")
        box.key(window, "p")
        run.stop()


if __name__ == "__main__":
    main()
