"""One logged survey of the EM31-MK2, EM34-3 or EM38 programs with the field
simulator on both ports, and the data file read back record by record against
the simulator's own log of what it sent. Shared by test_em31_family*.py."""
import os
import re
import subprocess
import time

import harness
import test_gps_survey as gps_survey
import test_session_start as session

GPS_COM = 6
INSTRUMENT_COM = 4

# Settings lines of the group the EM31-MK2 and EM38 programs write; the EM34-3
# has its coil reference and samples per reading in the survey block, so its
# lines from "SurveyMode" on stand two (after "DipoleMode") or one further.
LINE = {"AudioTicks": 9, "MapDisplayMode": 13, "ScaleMin": 32, "ScaleMax": 33, "GpsDataOption": 37, "GpsOffsetY": 46,
        "SurveyMode": 47, "Component": 48, "DipoleMode": 49, "SampleInterval": 54, "PositionSize": 61}
LINE_34 = dict(LINE, SurveyMode=48, Component=49, DipoleMode=50, SampleInterval=56, PositionSize=63)

# RGB of the colour classes 0 to 49.
CLASS_COLOURS = {
    0x2000FF, 0x1800FF, 0x1000FF, 0x0800FF, 0x0000FF, 0x0010FF, 0x0040FF, 0x0060FF, 0x006FFF,
    0x0088FF, 0x00A0FF, 0x00C0FF, 0x00E0FF, 0x00FFFF, 0x00FFE0, 0x00FFC0, 0x00FFA0, 0x00FF80,
    0x00FF60, 0x00FF20, 0x00FF10, 0x00FF08, 0x00FF00, 0x10FF00, 0x20FF00, 0x40FF00, 0x60FF00,
    0x80FF00, 0xA0FF00, 0xE0FF00, 0xF0FF00, 0xFFFF00, 0xFFF200, 0xFFE000, 0xFFC400, 0xFFA000,
    0xFF8800, 0xFF6E00, 0xFF6000, 0xFF5000, 0xFF4000, 0xFF2000, 0xFF0000, 0xFF0008, 0xFF0010,
    0xFF0020, 0xFF0040, 0xFF0060, 0xFF0080, 0xFF00FF}


def unescape(text):
    return re.sub(r"\\x([0-9a-fA-F]{2})", lambda m: chr(int(m.group(1), 16)),
                  text.replace("\\r", "\r").replace("\\n", "\n").replace("\\\\", "\\"))


def sent_instrument_bytes(log_path):
    """What went over the instrument line: (bytes, wall-clock ms) of each message."""
    out = []
    for line in open(log_path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) == 3 and parts[1] == "instrument":
            out.append((unescape(parts[2]), float(parts[0])))
    return out


def good_frames(stream, length):
    """The frames a reader takes from the byte stream: the `length` bytes
    before a CR when the first of them is 'T' (a line of more than 180 bytes
    without its CR is dropped); each with a flag: True for a good frame, False
    for a CR at the wrong distance, which still uses up a slot; and the time
    the simulator sent it."""
    frames = []
    line = ""
    for c, sent_ms in ((c, ms) for text, ms in stream for c in text):
        line += c
        if len(line) > 181:
            line = ""
            continue
        if c != "\r" or len(line) <= length:
            continue
        start = len(line) - 1 - length
        if line[start] == "T":
            frames.append((line[start:start + length], True, sent_ms))
            line = ""
        else:
            frames.append((None, False, sent_ms))
    return frames


def pixels_of(png, rect):
    l, t, r, b = rect
    ppm = subprocess.run(["convert", png, "-crop", "%dx%d+%d+%d" % (r - l, b - t, l, t), "+repage", "ppm:-"],
                         capture_output=True, check=True).stdout
    data = ppm.split(b"\n", 3)[3]
    return [(data[i] << 16) | (data[i + 1] << 8) | data[i + 2] for i in range(0, len(data) - 2, 3)]


def window_rect(box, control_id):
    for row in box.windows():
        if row["id"] == control_id and row["visible"]:
            return row["rect"]
    return None


def send(sim, command):
    sim.stdin.write((command + "\n").encode())
    sim.stdin.flush()


def start_sim(box, model, log_path, extra=()):
    gps = box.serial_pair(GPS_COM)
    instrument = box.serial_pair(INSTRUMENT_COM)
    argv = [os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps, "--gps-option", "1",
            "--rate", "10", "--instrument", instrument, "--model", model, "--log", log_path,
            "--line-length", "25", "--speed", "1.5"] + list(extra)
    return box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def settings(box, program, values):
    path = session.first_start(box, program)
    lines = LINE_34 if "34" in program else LINE
    session.edit_settings(path, {lines[name]: value for name, value in values.items()})
    return path


def open_logging(box, window):
    box.key(window, "l")
    if not session.control_visible(box, 460, "&File", timeout=30):
        return False
    return gps_survey.wait_first_fix(box, timeout=40)


def keep_every_nth(sample_interval, frame_ms):
    return max(1, int(sample_interval * 1000.0 / frame_ms + 0.5))


def check_readings(checks, label, recs, length, sent_frames, frame_length, nth, frame_ms, tags="T"):
    """Every logged reading is a frame the simulator sent, in order, and the
    readings stand the cadence apart in the simulator's list."""
    tick_at = length - 11 if length == 27 else 13
    readings = [r for r in recs if chr(r[0]) in tags]
    texts = [r[0:frame_length].decode("latin-1") for r in readings]
    checks.check(all(r[frame_length:13] == b" " * (13 - frame_length) for r in readings),
                 label + "readings are blank padded to 13 characters")
    checks.check(all(r[tick_at:tick_at + 10].strip().isdigit() for r in readings), label + "readings carry a tick")
    # Frames of equal text are told apart by time: the simulator's clock and
    # the program's tick differ by one offset, the one most pairs agree on.
    ticks = [int(r[tick_at:tick_at + 10]) for r in readings]
    candidates = {}
    for i, f in enumerate(sent_frames):
        if f[1]:
            candidates.setdefault(f[0], []).append(i)
    votes = {}
    for text, tick in zip(texts, ticks):
        for i in candidates.get("T" + text[1:], []):
            key = int((sent_frames[i][2] - tick) // 20)
            votes[key] = votes.get(key, 0) + 1
    offset = (max(votes, key=votes.get) * 20 + 10) if votes else 0
    positions = []
    for text, tick in zip(texts, ticks):
        best = None
        for i in candidates.get("T" + text[1:], []):
            miss = abs(sent_frames[i][2] - tick - offset)
            if miss < 120 and (not positions or i > positions[-1]) and (best is None or miss < best[0]):
                best = (miss, i)
        if best is None:
            break
        positions.append(best[1])
    checks.check(len(positions) == len(texts) and len(texts) > 0,
                 label + "%d of %d readings are the simulator's frames, in order" % (len(positions), len(texts)))
    if len(positions) < 2:
        return texts, positions
    gaps = [b - a for a, b in zip(positions, positions[1:])]
    on_cadence = sum(1 for g in gaps if g == nth)
    checks.check(on_cadence >= 0.9 * len(gaps),
                 label + "%d of %d steps between readings are every %d-th frame sent" % (on_cadence, len(gaps), nth))
    span = positions[-1] - positions[0] + 1
    checks.check(abs(len(texts) - (span / nth)) <= 3 + 0.05 * len(texts),
                 label + "%d readings for %d frames sent at every %d-th" % (len(texts), span, nth))
    steps = sorted(b - a for a, b in zip(ticks, ticks[1:]))
    median = steps[len(steps) // 2]
    checks.check(abs(median - nth * frame_ms) <= 0.1 * nth * frame_ms,
                 label + "readings are %d ms apart, every %d-th frame of %.1f ms" % (median, nth, frame_ms))
    return texts, positions


def tag_counts(recs):
    counts = {}
    for r in recs:
        counts[chr(r[0])] = counts.get(chr(r[0]), 0) + 1
    return counts


def read_file(box, stem, artefact=None):
    """The one data file C:\\Survey\\<stem>.*, kept among the artefacts; (bytes
    or None, the names found)."""
    folder = box.c_path("C:\\Survey")
    names = [n for n in os.listdir(folder) if n.upper().startswith(stem.upper())] if os.path.isdir(folder) else []
    if len(names) != 1:
        return None, names
    data = open(os.path.join(folder, names[0]), "rb").read()
    with open(os.path.join(harness.artefact_dir(), (artefact or "em31family-" + stem) + ".data"), "wb") as f:
        f.write(data)
    return data, names


def colour_pixels(png, rect):
    return sum(1 for p in pixels_of(png, rect) if p in CLASS_COLOURS)


def colour_classes(png, rect):
    """The classes painted with more than 20 pixels each."""
    counts = {}
    for p in pixels_of(png, rect):
        if p in CLASS_COLOURS:
            counts[p] = counts.get(p, 0) + 1
    return sorted(p for p, n in counts.items() if n > 20)


def begin(box, checks, program, values, model, stem, extra=()):
    """Settings, the simulator, "&Logging", the first fix, "&File" and "&Go".
    Returns (simulator, program run, window, log path), or None."""
    settings(box, program, values)
    log_path = os.path.join(box.prefix, "sent.log")
    sim = start_sim(box, model, log_path, extra)
    run, window = session.start_program(box, program)
    if not checks.check(open_logging(box, window), program + ": logging screen and a first fix"):
        return None
    return go(box, checks, program, stem, sim, run, window, log_path)


def go(box, checks, program, stem, sim, run, window, log_path):
    if not checks.check(gps_survey.log_to_file(box, window, stem), program + ": Stand By"):
        return None
    return sim, run, window, log_path


def pause(box, window):
    box.key(window, "p")
    session.control_visible(box, 460, "&Go")


def leave(box, window):
    """"E&xit" with Yes: whether it asked and the main menu came back."""
    box.key(window, "x")
    asked = gps_survey.answer(box, "Confirm Exit")
    return asked and session.control_visible(box, 420, "&Logging")


def finish(box, checks, program, sim, run, window):
    checks.check(leave(box, window), program + ": \"E&xit\" asks to confirm and the main menu is back")
    box.key(window, "x")
    checks.equal(run.wait(30), 0, program + ": exit code 0")
    send(sim, "quit")
    time.sleep(0.5)
