"""What the EM61 end-to-end tests share: the settings lines of the two
programs, a program started with the sound trace on, the simulator's log read
back into frames and command bytes, the data file cut into records, and an
EM61 decode of the frames written out from the frame layout, so that the "O"
and "I" records can be held against what the simulator sent."""
import os
import re
import subprocess
import time

import em31_family_walk as walk
import harness
import test_gps_survey as survey
import test_session_start as session

INSTRUMENT_COM = 4   # settings' default instrument port, index 3
GPS_COM = 6
READING_TAGS = b"TDEFMNPQJKjk"
RECORD = 27

# Settings file lines (line 1 is the version) of the EM61-MK2 (group A less
# the rows of other models) and of the EM61-LX2 (group B).
MK2_LINES = {"InstrumentEnabled": 4, "SensorSize": 5, "InstrumentPort": 8, "AudioTicks": 9, "PauseKey": 12,
             "MapDisplayMode": 13, "Em61Type": 14, "GpsInput": 34, "GpsDataOption": 35, "GpsPort": 36,
             "SurveyMode": 45, "SampleInterval": 50, "NullApply": 71}
LX2_LINES = {"SensorCount": 4, "InstrumentEnabled": 5, "InstrumentPort": 9, "AudioTicks": 10,
             "AudioDisconnectAlarm": 11, "PauseKey": 13,
             "MapDisplayMode": 14, "Em61Type": 15, "GpsInput": 35, "GpsDataOption": 36, "GpsPort": 37,
             "SurveyMode": 46, "SampleInterval": 51, "NullApply": 72, "AlarmType": 84, "AlarmAudio": 85,
             "AlarmChannel": 86, "AlarmLevel": 88, "AlarmMinLevel": 89, "AlarmMaxLevel": 90,
             "AlarmDescendingReadings": 91, "SoftMarkerKey": 94, "FilterFactorLeft": 95, "FilterFactorRight": 96}


def settings(path, lines, values):
    session.edit_settings(path, dict((lines[name], value) for name, value in values.items()))


def fieldsim():
    path = os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim")
    if not os.path.isfile(path):
        harness.skip("no field simulator at " + path)
    return path


def start_simulator(box, model, extra=(), gps=False):
    log = os.path.join(box.prefix, "sent.log")
    argv = [fieldsim(), "--instrument", box.serial_pair(INSTRUMENT_COM), "--model", model, "--log", log]
    if gps:
        argv += ["--gps", box.serial_pair(GPS_COM), "--gps-option", "1", "--rate", "10"]
    argv += list(extra)
    sim = box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return sim, log


def tell(sim, line):
    sim.stdin.write((line + "\n").encode())
    sim.stdin.flush()


def start_traced(box, program):
    """The program with Wine's sound trace on: every PlaySoundW leaves the
    sound's name and flags in the trace."""
    env = box.env()
    env["WINEDEBUG"] = "+timestamp,+winmm"
    trace = os.path.join(box.prefix, "wine-trace.txt")
    process = subprocess.Popen(["wine", os.path.join(harness.bin_dir(), program + ".exe")], env=env,
                               stdout=subprocess.DEVNULL, stderr=open(trace, "wb"), start_new_session=True)
    box.programs.append(harness.Program(box, program, process))
    window = box.wait_window(program)
    session.control_visible(box, 420, "&Logging", timeout=30)
    return box.programs[-1], window, trace


def sounds(trace, timed=False):
    """(name, flags) of each sound the program asked for, in order; with
    `timed` also the trace's time stamp in seconds."""
    out = []
    flags = None
    for line in open(trace, "rb").read().decode("latin-1").splitlines():
        m = re.search(r"MULTIMEDIA_PlaySound .*fdwSound=([0-9A-Fa-f]+)", line)
        if m:
            flags = int(m.group(1), 16)
            continue
        m = re.search(r'proc_PlaySound SoundName=L"([A-Z_0-9]+)"', line)
        if m:
            stamp = re.match(r"\s*([0-9]+\.[0-9]+):", line)
            entry = (m.group(1), flags)
            out.append(entry + (float(stamp.group(1)) if stamp else 0.0,) if timed else entry)
    return out


# ------------------------------------------------------------------ the simulator's log

def unescape(text):
    out = bytearray()
    i = 0
    while i < len(text):
        c = text[i]
        if c == "\\" and i + 1 < len(text):
            n = text[i + 1]
            if n == "r":
                out.append(13)
                i += 2
                continue
            if n == "n":
                out.append(10)
                i += 2
                continue
            if n == "\\":
                out.append(92)
                i += 2
                continue
            if n == "x":
                out.append(int(text[i + 2:i + 4], 16))
                i += 4
                continue
        out.append(ord(c))
        i += 1
    return bytes(out)


def read_log(path):
    entries = []
    for line in open(path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) == 3:
            entries.append((int(parts[0]), parts[1], parts[2]))
    return entries


def received(path):
    """Every byte the program wrote to the instrument, in order."""
    return b"".join(unescape(text) for _, stream, text in read_log(path) if stream == "instrument<")


def received_times(path):
    """(ms, byte) of every byte the program wrote."""
    out = []
    for ms, stream, text in read_log(path):
        if stream == "instrument<":
            out.extend((ms, bytes([b])) for b in unescape(text))
    return out


def sent_frames(path):
    """(ms, frame) of each whole frame the simulator sent: 15 bytes ending
    0x7F 0x7F, a frame split over two writes joined; frames cut short are not
    frames."""
    frames = []
    half = None
    for ms, stream, text in read_log(path):
        if stream != "instrument":
            continue
        data = unescape(text)
        if half is not None:
            data = half[1] + data
            ms = half[0]
            half = None
        if len(data) == 7 and data[:1] in READING_TAGS:
            half = (ms, data)
            continue
        if len(data) == 15 and data.endswith(b"\x7f\x7f"):
            frames.append((ms, data))
    return frames


# ------------------------------------------------------------------ the data file

def data_file(box, name):
    folder = box.c_path("C:\\Survey")
    names = [n for n in os.listdir(folder) if n.upper().startswith(name.upper())] if os.path.isdir(folder) else []
    if len(names) != 1:
        return None, names
    data = open(os.path.join(folder, names[0]), "rb").read()
    with open(os.path.join(harness.artefact_dir(), "em61-%s.data" % name.lower()), "wb") as f:
        f.write(data)
    return data, names


def records(data):
    return [data[i:i + RECORD] for i in range(0, len(data) - len(data) % RECORD, RECORD)]


def tag_counts(recs):
    counts = {}
    for i, r in enumerate(recs):
        tag = "reading" if i > 0 and r[0:1] in READING_TAGS else chr(r[0])
        counts[tag] = counts.get(tag, 0) + 1
    return counts


def reading_key(rec):
    """The bytes of the frame as it came: the EM61-MK2's record keeps offsets 0
    to 9 and moves the raw current and the battery byte to offsets 13 to 15."""
    return rec[0:10] + rec[13:16]


def lx2_key(rec):
    """The EM61-LX2's record keeps the letter, gain byte and channel words; the
    average current takes the place of the raw one and the battery's."""
    return rec[0:10]


def tick(rec):
    return int(rec[16:26].decode("latin-1"))


def marker_ticks(recs, text):
    return [tick(r) for r in recs if r[0:1] == b"X" and r[1:12].decode("latin-1").rstrip() == text]


def in_order_once(checks, label, logged, sent, lx2=False):
    """The logged frames are the sent ones from some point on, each once and in
    order, as far as they go; returns the index in `sent` of the first."""
    keys = [lx2_key(r) if lx2 else reading_key(r) for r in logged]
    frames = [f[:10] if lx2 else f[:13] for _, f in sent]
    if not keys:
        checks.check(False, label + ": readings were logged")
        return -1
    starts = [i for i, f in enumerate(frames) if f == keys[0] and frames[i:i + len(keys)] == keys]
    if not checks.check(len(starts) >= 1,
                        label + ": %d readings are the simulator's frames, once each and in order" % len(keys)):
        # Where the run breaks: the longest stretch that matches, and what follows it.
        best, at = 0, -1
        for i, f in enumerate(frames):
            n = 0
            while n < len(keys) and i + n < len(frames) and frames[i + n] == keys[n]:
                n += 1
            if n > best:
                best, at = n, i
        harness.log("%s: the first %d readings match frames %d on; reading %d %r, frames there %r" % (
            label, best, at, best, keys[best] if best < len(keys) else None,
            frames[at + best - 1:at + best + 2] if at >= 0 else None))
    return starts[0] if starts else -1


# ------------------------------------------------------------------ decoding, from the frame layout

def word(frame, offset):
    value = frame[offset] << 8 | frame[offset + 1]
    return value - 65536 if value >= 32768 else value


def gains(byte):
    out = []
    rest = byte
    for high, low in ((192, 64), (48, 16), (12, 4)):
        if rest >= high:
            out.append(100)
            rest -= high
        elif rest >= low:
            out.append(10)
            rest -= low
        else:
            out.append(1)
    out.append(100 if rest >= 3 else 10 if rest == 1 else 1)
    return out


def lx2_values(frame, factor=1.0):
    """Early and late of both sensors, in mV, by the LX2's scale (x 20 / gain)."""
    g = gains(frame[1])
    return [word(frame, 2 + 2 * i) * 20.0 / g[i] * factor for i in range(4)]


def mk2_values(frame, factor):
    """The four channels of a 'T' frame of a Standard coil (x 4.8333 / gain x 2)."""
    g = gains(frame[1])
    return [word(frame, 2 + 2 * i) * 4.8333 / g[i] * 2 * factor for i in range(4)]


def mean_windows(values, length):
    """Every mean of `length` consecutive value rows."""
    out = []
    for start in range(0, len(values) - length + 1):
        rows = values[start:start + length]
        out.append([sum(r[i] for r in rows) / length for i in range(len(rows[0]))])
    return out


def calibration_values(rec):
    """The two values of an "O" or "I" record: columns 1 to 9 and 11 to 19."""
    text = rec.decode("latin-1")
    second = text[11:20].strip()
    return float(text[1:10]), float(second) if second else None


def wait_screen(box, control_id, text, timeout=20):
    return session.control_visible(box, control_id, text, timeout=timeout)


def wait_normalised(log, timeout=30):
    """Normalising takes the first 98 frames of a session: waits until the
    simulator has sent a few more than that."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        if os.path.exists(log) and len(sent_frames(log)) >= 104:
            time.sleep(0.3)
            return True
        time.sleep(0.3)
    return False


def answer(box, title, keys=("Return",)):
    return survey.answer(box, title, keys)


def create_file(box, window, name):
    os.makedirs(box.c_path("C:\\Survey"), exist_ok=True)
    return survey.create_file(box, window, "C:\\Survey\\" + name)


def leave(box, checks, program, window, run, with_file=True):
    box.key(window, "x")
    if with_file:
        checks.check(answer(box, "Confirm Exit"), program + ": \"E&xit\" asks to confirm")
    checks.check(wait_screen(box, 420, "&Logging"), program + ": back at the main menu")
    box.key(window, "x")
    checks.equal(run.wait(30), 0, program + ": exit code 0")


def start_session(checks, box, window, log, label, file_name, screen_text="the handshake starts the session"):
    """"&Logging" with its handshake, the first 98 frames normalising, "&File"."""
    box.key(window, "l")
    if not checks.check(wait_screen(box, 460, "&File"), label + ": " + screen_text):
        return False
    checks.check(wait_normalised(log), label + ": the first 98 frames normalise")
    return checks.check(create_file(box, window, file_name), label + ": \"&File\" brings Stand By")


def recording(checks, label, recs, sent, lx2=False, as_sent=None):
    """The readings of the file's one recording, checked against the frames
    sent: each once and in order, none older than "$STARTED". `as_sent` turns
    a record back into what was sent (a soft marker changes the letter)."""
    starts = [i for i, r in enumerate(recs) if r[1:9] == b"$STARTED"]
    pauses = [i for i, r in enumerate(recs) if r[1:7] == b"PAUSED"]
    if not checks.check(len(starts) == 1 and len(pauses) == 1, label + ": one recording"):
        return []
    logged = [r for r in recs[starts[0]:pauses[0]] if r[0:1] in READING_TAGS]
    in_order_once(checks, label, [as_sent(r) for r in logged] if as_sent else logged, sent, lx2)
    start_tick = marker_ticks(recs, "$STARTED")[0]
    checks.check(all(tick(r) >= start_tick for r in logged), label + ": no reading older than \"$STARTED\"")
    harness.log("%s: %d readings logged" % (label, len(logged)))
    return logged


# ------------------------------------------------------------------ the views beside the map

# The channels' pens and brushes by default: blue, green, red, magenta.
PENS = {0x0000FF, 0x00FF00, 0xFF0000, 0xFF00FF}
CURVE_ID, DECAY_ID, BAR_Q_ID, BAR_I_ID, MAP_ID = 600, 610, 620, 630, 652
MK2_SCALE = {"ScaleMin": 32, "ScaleMax": 33}
LX2_SCALE = {"ScaleMin": 33, "ScaleMax": 34}


def visible_rects(box, control_id):
    return [row["rect"] for row in box.windows() if row["id"] == control_id and row["visible"]]


def pen_pixels(png, rect):
    """{pen colour: pixels} inside a window."""
    counts = {}
    for p in walk.pixels_of(png, rect):
        if p in PENS:
            counts[p] = counts.get(p, 0) + 1
    return counts


def bars_standing(box, shot, bars, bar_windows):
    for control_id in bar_windows:
        rects = visible_rects(box, control_id)
        if len(rects) != 1 or len([v for v in pen_pixels(shot, rects[0]).values() if v > 10]) < bars:
            return False
    return True


def check_views(checks, label, box, name, curves, bars, bar_windows, colour_image, tries=10):
    """Screenshots `name` of a Logging screen, one a second until the bars of
    a target stand: `curves` curve windows each with curves in the pens'
    colours, `bars` bars in each of `bar_windows` (their ids), and with
    `colour_image` the swath on the map in class colours. The windows' places
    are read from the screen as it stands."""
    for _ in range(tries):
        shot = box.screenshot(name)
        if bars_standing(box, shot, bars, bar_windows):
            break
        time.sleep(1.0)
    curve_rects = visible_rects(box, CURVE_ID)
    checks.equal(len(curve_rects), curves, label + ": %d curve window(s) shown" % curves)
    for i, rect in enumerate(curve_rects):
        pens = pen_pixels(shot, rect)
        checks.check(sum(pens.values()) > 60 and len(pens) == bars,
                     label + ": curve window %d draws the curves in the pens' colours %s" %
                     (i + 1, dict((hex(k), v) for k, v in pens.items())))
    for control_id in bar_windows:
        rects = visible_rects(box, control_id)
        if not checks.check(len(rects) == 1, label + ": bar window %d shown" % control_id):
            continue
        pens = pen_pixels(shot, rects[0])
        checks.check(len(pens) == bars and all(v > 10 for v in pens.values()),
                     label + ": %d bars in window %d, each in its channel's colour %s" %
                     (bars, control_id, dict((hex(k), v) for k, v in pens.items())))
    if colour_image:
        maps = visible_rects(box, MAP_ID)
        if checks.check(len(maps) == 1, label + ": the map is shown"):
            coloured = walk.colour_pixels(shot, maps[0])
            checks.check(coloured > 300, label + ": the swath is painted in class colours (%d pixels)" % coloured)
