#!/usr/bin/env python3
"""The busiest link pair under Wine: Kelvo38MK2 Logging an EM38-MK2 at its
47 ms frame rate (19200 baud, every frame kept: the sample interval is one
frame) while a 20 Hz receiver talks at 115200 baud. Prints the CPU of the
program and of its wineserver together, in percent of one core, with the
program's busiest threads (the main thread, then the two readers), and the
frames the simulator sent against the reading records logged over the run.
Run after the windows and native builds:
    python3 bench/bench_em38mk2_logging.py [SECONDS]   (default 600)
On a shared machine the figures move with the other load (wake-ups across
cores cost the readers and the wineserver more); pinned to one core they are
steadier for comparing two builds:
    taskset -c 1 python3 bench/bench_em38mk2_logging.py 120"""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
import harness  # noqa: E402
import sent_log  # noqa: E402
import test_em38mk2_survey as mk2  # noqa: E402
import test_gps_survey as survey  # noqa: E402
import test_session_start as session  # noqa: E402
import wine_cpu  # noqa: E402

LINE_GPS_BAUD = 39


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 600.0
    sim = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    with harness.Sandbox("bench-em38mk2") as box:
        path = session.first_start(box, "Kelvo38MK2")
        session.edit_settings(path, {LINE_GPS_BAUD: 5, mk2.sample_interval_line(): "0.047000"})
        gps = box.serial_pair(6)
        instrument = box.serial_pair(4)
        log_path = os.path.join(box.prefix, "sent.log")
        feeder = box.spawn([sim, "--gps", gps, "--gps-option", "1", "--rate", "20", "--baud", "115200",
                            "--instrument", instrument, "--model", "em38mk2", "--log", log_path],
                           stdin=subprocess.PIPE)
        program, window = session.start_program(box, "Kelvo38MK2")
        box.key(window, "l")
        survey.wait_first_fix(box)
        survey.log_to_file(box, window, "BENCH")
        time.sleep(2)
        meter = wine_cpu.Meter(box, "Kelvo38MK2")
        meter.start()
        time.sleep(seconds)
        figures = meter.stop()
        box.key(window, "p")
        session.control_visible(box, 460, "&Go")
        time.sleep(1)
        feeder.stdin.write(b"quit\n")
        feeder.stdin.flush()
        program.stop()
        wine_cpu.report("Logging EM38-MK2 frames every 47 ms and GGA at 20 Hz / 115200 baud", figures)
        data = open(os.path.join(box.c_path("C:\\Survey"), [f for f in os.listdir(box.c_path("C:\\Survey"))
                                                               if f.upper().startswith("BENCH")][0]), "rb").read()
        recs = sent_log.records(data)
        readings = [r[0:14].decode("latin-1") for r in recs if chr(r[0]) in "Tt"]
        sent = mk2.reader_frames(log_path)
        whole = sent_log.longest_run_match(readings, sent)
        first = sent.index(readings[0]) if readings and readings[0] in sent else -1
        span = sent[first:first + len(readings)] if first >= 0 else []
        print("frames sent during the logged span: %d; reading records: %d; unbroken run of the sent frames: %s; "
              "GPS groups: %d" % (len(span), len(readings), "yes" if whole else "NO",
                                  sum(1 for r in recs if chr(r[0]) == "!")))


if __name__ == "__main__":
    main()
