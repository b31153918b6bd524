"""A long logged survey at the top rates: one program Logging under Wine with
the field simulator sending the instrument's frames at its own rate and a
20 Hz receiver at 115200 baud. Every minute the program's resident memory,
its GDI objects (tools/wintools/gdi_objects) and the CPU of the program and
its wineserver are sampled; at the end the data file is read back against
the simulator's log: every frame and sentence sent while Logging must stand
in the file exactly once, in order. Shared by bench/soak.py (an hour) and
test_soak.py (three minutes in CI)."""
import os
import shutil
import subprocess
import time

import em31_family_walk as walk
import harness
import test_em38mk2_survey as em38mk2
import test_gps_survey as gps_survey
import test_session_start as session

GPS_RATE_HZ = 20
GPS_BAUD = 115200
GPS_BAUD_CODE = 5          # 115200 in the "Baud Rate:" list
GPS_OPTION = 0             # GGA and GSA: both go to the file whole



def text_frames(log_path):
    """(frame, good, ms sent) of the EM31-MK2's text frames, as its reader takes them."""
    return walk.good_frames(walk.sent_instrument_bytes(log_path), 12)


def em38mk2_frames(log_path):
    """The EM38-MK2's binary frames the simulator sent whole, in the same
    form; the first byte as 'T', as the reading lookup keys frames."""
    return [("T" + frame[1:], True, ms) for ms, frame in em38mk2.sent_frames(log_path)]


# Per program: the simulator's model and arguments, the frames sent, whether
# its reader posts frames (and reads on) or sends them (and waits), the
# frame's length and period, the reading records' tags, and the settings
# lines to change: the colour map, GGA and GSA, 115200 baud, Auto, and the
# sample interval that keeps every frame.
EM31_LINES = {37: GPS_OPTION, 39: GPS_BAUD_CODE, 47: 0, 54: "0.100000"}
PROGRAMS = {
    "Kelvo31": {"model": ["em31"], "frames": text_frames, "posted": True, "frame_length": 12,
                "frame_ms": 1000.0 / 10.5, "tags": "T", "lines": {**EM31_LINES, 13: 1}},
    "Lum31": {"model": ["em31"], "frames": text_frames, "posted": True, "frame_length": 12,
              "frame_ms": 1000.0 / 10.5, "tags": "T", "lines": EM31_LINES},
    "Kelvo38MK2": {"model": ["em38mk2", "--coils", "2"], "frames": em38mk2_frames, "posted": False,
                   "frame_length": 14, "frame_ms": 47.0, "tags": "Tt",
                   "lines": {**EM31_LINES, 13: 1, 54: "0.047000"}},
}


def stat_seconds(path):
    """CPU seconds (user and system) of a /proc stat file: a process's or a thread's."""
    try:
        fields = open(path).read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
    except (OSError, IndexError, ValueError):
        return 0.0


def process_seconds(pid):
    """CPU seconds (user and system) a process has used."""
    return stat_seconds("/proc/%d/stat" % pid)


def resident_mib(pid):
    try:
        for line in open("/proc/%d/status" % pid):
            if line.startswith("VmRSS:"):
                return int(line.split()[1]) / 1024.0
    except (OSError, ValueError):
        pass
    return 0.0


def gdi_objects(box, title):
    """(GDI objects, how they were counted) of the program's process."""
    out = box.run_tool("gdi_objects", [title]).split()
    try:
        return int(out[out.index("gdi") + 1]), out[out.index("method") + 1]
    except (ValueError, IndexError):
        return -1, "none"


def check_gdi_count(checks, box):
    """The tool counts a process's GDI objects: its own 100 brushes, made and
    deleted, are counted and uncounted."""
    counts = [line.split()[1] for line in box.run_tool("gdi_objects", ["--self"]).splitlines()
              if line.startswith("gdi ")]
    values = [int(c) for c in counts if c.lstrip("-").isdigit()]
    checks.check(len(values) == 3 and values[1] - values[0] == 100 and values[2] == values[0],
                 "GDI objects are counted (%s: before, with 100 brushes, after deleting them)" % values)


def start_simulator(box, model, log_path):
    gps = box.serial_pair(walk.GPS_COM)
    instrument = box.serial_pair(walk.INSTRUMENT_COM)
    argv = [os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"),
            "--gps", gps, "--gps-option", str(GPS_OPTION), "--rate", str(GPS_RATE_HZ), "--baud", str(GPS_BAUD),
            "--instrument", instrument, "--model"] + model + ["--log", log_path,
            "--lines", "10", "--line-length", "40", "--speed", "1.2"]
    return box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Sample:
    def __init__(self, minute, program_mib, server_mib, gdi, method, cpu_program, cpu_server, file_bytes):
        self.minute = minute
        self.program_mib = program_mib
        self.server_mib = server_mib
        self.gdi = gdi
        self.method = method
        self.cpu_program = cpu_program
        self.cpu_server = cpu_server
        self.file_bytes = file_bytes

    def line(self):
        return ("minute %3d: resident %6.1f MiB (wineserver %5.1f MiB), GDI objects %5d, "
                "CPU %5.1f %% of a core (program %5.1f %%, wineserver %4.1f %%), data file %8d bytes"
                % (self.minute, self.program_mib, self.server_mib, self.gdi, self.cpu_program + self.cpu_server,
                   self.cpu_program, self.cpu_server, self.file_bytes))


def data_file_size(box, stem):
    folder = box.c_path("C:\\Survey")
    for name in os.listdir(folder) if os.path.isdir(folder) else []:
        if name.upper().startswith(stem):
            return os.path.getsize(os.path.join(folder, name))
    return 0


def sample_minutes(box, program, stem, minutes, report):
    """Sleeps through the minutes of Logging and samples each."""
    exe_pid = box.pids(program)[0]
    server_pid = box.pids("wineserver", suffix="")[0]
    samples = []
    start = time.time()
    before = (process_seconds(exe_pid), process_seconds(server_pid), start)
    for minute in range(1, minutes + 1):
        time.sleep(max(0.0, start + 60.0 * minute - time.time()))
        now = (process_seconds(exe_pid), process_seconds(server_pid), time.time())
        wall = now[2] - before[2]
        gdi, method = gdi_objects(box, program)
        sample = Sample(minute, resident_mib(exe_pid), resident_mib(server_pid), gdi, method,
                        100.0 * (now[0] - before[0]) / wall, 100.0 * (now[1] - before[1]) / wall,
                        data_file_size(box, stem))
        before = now
        samples.append(sample)
        report(program + " " + sample.line())
    return samples


def check_file(checks, program, data, log_path, report):
    """Every sentence and frame the simulator sent while Logging, once each
    and in order. Returns (sentences sent, logged, frames sent, logged)."""
    program_row = PROGRAMS[program]
    length = gps_survey.record_length(program)
    label = program + ": "
    checks.equal(len(data) % length, 0, label + "the file is whole records")
    recs = gps_survey.records(data, length)
    # A binary frame may hold the byte 10 in a reading record's text.
    checks.check(all(r[-1:] == b"\n" and (chr(r[0]) in program_row["tags"] or b"\n" not in r[:-1]) for r in recs),
                 label + "every record ends in its LF")
    starts = [i for i, r in enumerate(recs) if r[0:9] == b"X$STARTED"]
    pauses = [i for i, r in enumerate(recs) if r[0:7] == b"XPAUSED"]
    if not checks.check(len(starts) == 1 and len(pauses) == 1, label + "one recording, started and paused"):
        return None
    begin, end = starts[0], pauses[0]
    tick_at = length - 11
    groups = [g for g in gps_survey.gps_groups(recs, length) if begin < g[4] < end]
    logged = [g[0] for g in groups]
    timed = gps_survey.sent_sentences(log_path, with_times=True)
    sent = [t for t, _ in timed]
    at = gps_survey.order_start(sent, logged)
    window = sent[at:at + len(logged)] if at >= 0 else []
    checks.check(at >= 0,
                 label + "%d sentences logged: the simulator's, each once, in order, none left out between "
                 "the first and the last" % len(logged))
    # The simulator's clock and the program's tick differ by one offset: the
    # sentences sent after "$STARTED" and before "PAUSED" (a fifth of a
    # second inside either end) are all in the file.
    if at >= 0:
        offsets = sorted(timed[at + i][1] - int(g[3]) for i, g in enumerate(groups))
        offset = offsets[len(offsets) // 2]
        first = int(recs[begin][tick_at:tick_at + 10]) + offset + 200
        last = int(recs[end][tick_at:tick_at + 10]) + offset - 200
        while_logging = [t for t, ms in timed if first < ms < last]
        checks.check(set(while_logging) <= set(logged),
                     label + "all %d sentences sent between \"$STARTED\" and \"PAUSED\" are in the file"
                     % len(while_logging))
    frames = program_row["frames"](log_path)
    texts, positions = walk.check_readings(checks, label, recs[begin:end], length, frames, program_row["frame_length"], 1,
                                           program_row["frame_ms"], program_row["tags"])
    skipped = sum(b - a - 1 for a, b in zip(positions, positions[1:]))
    span = positions[-1] - positions[0] + 1 if positions else 0
    if program_row["posted"]:
        # The reader posts its frame and reads on: a frame may be overwritten
        # by the next while the screen's thread is held up (two compile jobs
        # on both cores do that now and then); none may come twice.
        checks.check(len(positions) == len(texts) and skipped <= span // 1000,
                     label + "%d readings logged for the %d frames sent from the first logged to the last: "
                     "none twice, %d overwritten by the next before the screen took it (at most 1 in 1000)"
                     % (len(texts), span, skipped))
    else:
        checks.check(len(positions) == len(texts) and skipped == 0,
                     label + "%d readings logged for the %d frames sent from the first logged to the last: "
                     "none lost, none twice" % (len(texts), span))
    if positions and at >= 0:
        # Frames sent after "$STARTED" and before "PAUSED" that are not logged.
        ticks = [int(r[tick_at:tick_at + 10]) for r in recs[begin:end] if chr(r[0]) in program_row["tags"]]
        offsets = sorted(frames[p][2] - t for p, t in zip(positions, ticks))
        offset = offsets[len(offsets) // 2]
        first = int(recs[begin][tick_at:tick_at + 10]) + offset + 200
        last = int(recs[end][tick_at:tick_at + 10]) + offset - 200
        outside = [i for i, f in enumerate(frames) if f[1] and first < f[2] < last and
                   not positions[0] <= i <= positions[-1]]
        checks.check(not outside, label + "no frame sent between \"$STARTED\" and \"PAUSED\" is missing "
                     "before the first or after the last logged (%d)" % len(outside))
    report("%s: sentences sent while Logging %d, logged %d; frames sent %d, logged %d"
           % (program, len(window), len(logged), span, len(texts)))
    return len(window), len(logged), span, len(texts)


def run(checks, program, minutes, stem="SOAK", report=harness.log):
    """Logs for `minutes` with the samples of each minute, then reads the file
    back. Returns (samples, readback figures), or None when no session ran."""
    program_row = PROGRAMS[program]
    with harness.Sandbox("soak-" + program.replace("-", "")) as box:
        check_gdi_count(checks, box)
        session.edit_settings(session.first_start(box, program), program_row["lines"])
        log_path = os.path.join(box.prefix, "sent.log")
        sim = start_simulator(box, program_row["model"], log_path)
        started, window = session.start_program(box, program)
        if not checks.check(walk.open_logging(box, window), program + ": logging screen and a first fix"):
            return None
        if walk.go(box, checks, program, stem, sim, started, window, log_path) is None:
            return None
        samples = sample_minutes(box, program, stem, minutes, report)
        walk.pause(box, window)
        walk.finish(box, checks, program, sim, started, window)
        data, names = walk.read_file(box, stem)
        shutil.copy(log_path, os.path.join(harness.artefact_dir(), "soak-%s-sent.log" % program))
        if not checks.check(data is not None, program + ": one data file (%s)" % names):
            return samples, None
        return samples, check_file(checks, program, data, log_path, report)


def check_flat(checks, program, samples, settle_minutes):
    """Memory and GDI objects after the first minutes stay where they were."""
    if len(samples) <= settle_minutes:
        return
    base = samples[settle_minutes - 1]
    last = samples[-1]
    grown = max(s.program_mib for s in samples[settle_minutes:]) - base.program_mib
    checks.check(grown < 8.0, program + ": resident memory flat after minute %d (%.1f MiB, at most %.1f MiB more)"
                 % (settle_minutes, base.program_mib, grown))
    if base.gdi >= 0:
        extra = max(s.gdi for s in samples[settle_minutes:]) - base.gdi
        checks.check(extra <= 10, program + ": GDI objects flat after minute %d (%d, at most %d more; %s)"
                     % (settle_minutes, base.gdi, extra, last.method))
    else:
        checks.check(False, program + ": the GDI objects could be counted")
