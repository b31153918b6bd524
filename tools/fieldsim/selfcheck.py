#!/usr/bin/env python3
"""Self-check of the field simulator.

Starts socat pty pairs and fieldsim for every "NMEA Data:" option and every
instrument model for a couple of seconds, reads what arrives on the far end of
each pair, and checks it independently of the simulator's code: checksums,
the fields where the logger looks for each value, time steps, frame shapes,
status bits and frame periods. Then it plays every control command and the loss
and return of a port. Exits 0 when all checks pass, 1 otherwise.

Usage: selfcheck.py [path/to/fieldsim [part ...]]   (needs socat on the PATH;
       the parts are those of PARTS below, all when none is named)
"""

import math
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import termios
import time
import tty

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
ORIGIN = (43.6099, -79.6107)
QUALITY = 4

FAILURES = []


def check(condition, message):
    condition = bool(condition)
    if not condition:
        FAILURES.append(message)
        print("FAIL:", message)
    return condition


def find_fieldsim():
    if len(sys.argv) > 1:
        return sys.argv[1]
    for build in ("fieldsim-native", "native"):
        path = os.path.join(ROOT, "build", build, "tools", "fieldsim", "fieldsim")
        if os.access(path, os.X_OK):
            return path
    sys.exit("selfcheck: fieldsim not built; pass its path")


# ------------------------------------------------------------------ plumbing

class PtyPair:
    """socat joining two ptys: the simulator writes to `sim`, we read `app`."""

    def __init__(self, directory, name):
        self.sim = os.path.join(directory, name + "-sim")
        self.app = os.path.join(directory, name + "-app")
        self.process = None
        self.start()

    def start(self):
        self.process = subprocess.Popen(
            ["socat", "pty,raw,echo=0,link=" + self.sim, "pty,raw,echo=0,link=" + self.app],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.time() + 5
        while not (os.path.exists(self.sim) and os.path.exists(self.app)):
            if time.time() > deadline:
                raise RuntimeError("socat did not make its ptys")
            time.sleep(0.02)

    def stop(self):
        if self.process and self.process.poll() is None:
            self.process.terminate()
            self.process.wait(timeout=5)
        self.process = None
        for link in (self.sim, self.app):
            if os.path.lexists(link):
                os.unlink(link)


class Reader:
    """Reads the logger's end of a pair, keeping each chunk's arrival time."""

    def __init__(self, path):
        self.fd = os.open(path, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
        tty.setraw(self.fd)
        attributes = termios.tcgetattr(self.fd)
        attributes[3] &= ~termios.ECHO
        termios.tcsetattr(self.fd, termios.TCSANOW, attributes)
        self.chunks = []

    def pump(self, seconds):
        end = time.time() + seconds
        while True:
            left = end - time.time()
            if left <= 0:
                return
            ready, _, _ = select.select([self.fd], [], [], left)
            if ready:
                try:
                    data = os.read(self.fd, 4096)
                except OSError:
                    time.sleep(0.05)
                    continue
                if data:
                    self.chunks.append((time.time(), data))

    def data(self):
        return b"".join(chunk for _, chunk in self.chunks)

    def close(self):
        os.close(self.fd)


def start_fieldsim(binary, arguments, log=None):
    command = [binary] + arguments + (["--log", log] if log else [])
    return subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def send(process, line):
    process.stdin.write((line + "\n").encode())
    process.stdin.flush()


def finish(process, name):
    try:
        send(process, "quit")
    except (BrokenPipeError, OSError):
        pass
    try:
        out, err = process.communicate(timeout=5)
    except subprocess.TimeoutExpired:
        process.kill()
        out, err = process.communicate()
        check(False, name + ": fieldsim did not quit")
    check(process.returncode == 0, "%s: exit code %s, stderr %r" % (name, process.returncode, err))
    check(out == b"", "%s: printed %r without --verbose" % (name, out[:200]))


def read_log(path):
    entries = []
    with open(path, encoding="latin-1") as log:
        for line in log:
            ms, stream, text = line.rstrip("\n").split(" ", 2)
            entries.append((int(ms), stream, text))
    return entries


# ------------------------------------------------------------------ NMEA

def nmea_checksum(body):
    value = 0
    for byte in body.encode("latin-1"):
        value ^= byte
    return value


def checksum_state(line):
    """None without '*', True when it matches, False when not."""
    if "*" not in line:
        return None
    body, digits = line[1:].split("*", 1)
    try:
        return int(digits, 16) == nmea_checksum(body)
    except ValueError:
        return False


def utm(lat, lon, zone):
    """Transverse Mercator after Krueger's series, to test the grid sentences."""
    a, f, k0 = 6378137.0, 1 / 298.257223563, 0.9996
    n = f / (2 - f)
    big_a = a / (1 + n) * (1 + n ** 2 / 4 + n ** 4 / 64)
    alpha = [n / 2 - 2 * n ** 2 / 3 + 5 * n ** 3 / 16, 13 * n ** 2 / 48 - 3 * n ** 3 / 5, 61 * n ** 3 / 240]
    phi, lam = math.radians(lat), math.radians(lon - (6 * zone - 183))
    e = 2 * math.sqrt(n) / (1 + n)
    t = math.sinh(math.atanh(math.sin(phi)) - e * math.atanh(e * math.sin(phi)))
    xi, eta = math.atan(t / math.cos(lam)), math.atanh(math.sin(lam) / math.sqrt(1 + t * t))
    north = xi + sum(al * math.sin(2 * j * xi) * math.cosh(2 * j * eta) for j, al in enumerate(alpha, 1))
    east = eta + sum(al * math.cos(2 * j * xi) * math.sinh(2 * j * eta) for j, al in enumerate(alpha, 1))
    return k0 * big_a * north + (10000000 if lat < 0 else 0), 500000 + k0 * big_a * east


# Where the logger looks, as (kind, field from 1 with field 1 the address).
FIELD_MAPS = {
    0: [(0, 8), (1, 7), (2, 4), (3, 3), (4, 6), (5, 5)],
    1: [(0, 8), (1, 7), (2, 4), (3, 3), (4, 6), (5, 5), (7, 9)],
    2: [(0, 4), (1, 3), (2, 7), (3, 6), (4, 9), (5, 8), (6, 15)],
    3: [(0, 9), (1, 8), (8, 6), (9, 4), (10, 10)],
    4: [(0, 9), (1, 8), (8, 6), (9, 4), (10, 10)],
    5: [(2, 3), (3, 2), (4, 5), (5, 4)],
    6: [(0, 10), (1, 9), (2, 6), (3, 5), (4, 8), (5, 7), (6, 11)],
    7: [(8, 3), (9, 5)],
    "7slam": [(8, 3), (9, 5), (12, 8), (13, 9), (14, 12), (15, 14)],
    8: [(2, 3), (3, 2), (4, 5), (5, 4)],
}
KEYS = {0: "GGA", 1: "GGA", 2: "POS", 3: "LLK", 4: "LLQ", 5: "GLL", 6: "GGK", 7: "GGA", 8: "GLL"}
# Where the receiver really puts its time (the logger's time field is 2 for
# POS and GGK, which holds the word there).
TIME_FIELDS = {0: 2, 1: 2, 2: 5, 3: 2, 4: 2, 5: 6, 6: 3, 7: 2, 8: 6}
FLOAT = re.compile(r"^[+-]?\d+(\.\d+)?$")


def field(fields, number):
    return fields[number - 1] if number <= len(fields) else None


def check_position_sentence(name, option, slam, feet, line):
    fields = line.split("*")[0].split(",")
    ok = True
    lat = lon = None
    north = east = None
    for kind, number in FIELD_MAPS["7slam" if slam else option]:
        value = field(fields, number)
        where = "%s: field %d of %s" % (name, number, line)
        if not check(value is not None and value != "", where + " missing"):
            return False
        if kind == 0:
            ok &= check(value.isdigit() and int(value) >= 2, where + ": satellites")
        elif kind == 1:
            decoded = int(value) + (1 if option == 2 else 0)
            ok &= check(decoded == QUALITY, where + ": quality %s" % value)
        elif kind in (2, 4):
            ok &= check(value in (("N", "S") if kind == 2 else ("E", "W")), where + ": hemisphere")
        elif kind in (3, 5):
            point = 4 if kind == 3 else 5
            ok &= check(value.find(".") == point and FLOAT.match(value), where + ": angle form")
            degrees = float(value[:point - 2]) + float(value[point - 2:][:8]) / 60
            hemisphere = field(fields, number + 1)
            degrees *= -1 if hemisphere in ("S", "W") else 1
            if kind == 3:
                lat = degrees
            else:
                lon = degrees
        elif kind in (6, 7, 10):
            ok &= check(FLOAT.match(value) and 0 < float(value) < 50, where + ": dilution")
        elif kind in (8, 9):
            ok &= check(FLOAT.match(value) is not None, where + ": grid value")
            metres = float(value) * (0.3048 if feet else 1.0)
            if kind == 8:
                north = metres
            else:
                east = metres
        elif kind == 12:
            ok &= check(value.isdigit() and 0 <= int(value) <= 99, where + ": SLAM confidence")
        else:
            ok &= check(FLOAT.match(value) is not None, where + ": roll/pitch/yaw")
    if lat is not None:
        ok &= check(abs(lat - ORIGIN[0]) < 0.01 and abs(lon - ORIGIN[1]) < 0.01, name + ": position far off " + line)
    if north is not None:
        zone = int(math.floor(ORIGIN[1] / 6)) + 31
        origin_north, origin_east = utm(ORIGIN[0], ORIGIN[1], zone)
        ok &= check(abs(north - origin_north) < 200 and abs(east - origin_east) < 200,
                    name + ": grid far off the origin (%.1f %.1f vs %.1f %.1f)" % (north, east, origin_north, origin_east))
    if option == 7:
        ok &= check(field(fields, 11) == ("F" if feet else "M"), name + ": unit letter in field 11 of " + line)
    return ok


def check_grid_against_gga(name, lines):
    """LLK/LLQ grid values against the UTM of the GGA of the same epoch."""
    geodetic = {}
    for line in lines:
        fields = line.split("*")[0].split(",")
        if fields[0] == "$GPGGA":
            lat = (float(fields[2][:2]) + float(fields[2][2:]) / 60) * (-1 if fields[3] == "S" else 1)
            lon = (float(fields[4][:3]) + float(fields[4][3:]) / 60) * (-1 if fields[5] == "W" else 1)
            geodetic[fields[1]] = (lat, lon)
    pairs = 0
    for line in lines:
        fields = line.split("*")[0].split(",")
        if fields[0] in ("$GPLLK", "$GPLLQ") and fields[1] in geodetic:
            lat, lon = geodetic[fields[1]]
            north, east = utm(lat, lon, int(math.floor(lon / 6)) + 31)
            pairs += 1
            check(abs(float(fields[5]) - north) < 0.1 and abs(float(fields[3]) - east) < 0.1,
                  name + ": grid %s %s against UTM %.3f %.3f" % (fields[5], fields[3], north, east))
    check(pairs > 0, name + ": no GGA beside the grid sentences")


def seconds_of(text):
    return int(text[0:2]) * 3600 + int(text[2:4]) * 60 + float(text[4:])


def check_gps_lines(name, option, slam, feet, mixed, rate, text, seconds):
    lines = [line for line in text.split("\r\n") if line]
    key = KEYS[option]
    key_lines = [line for line in lines if key in line]
    checksummed_key = not (option == 8 or (option == 7 and not slam))
    check(all(line.startswith("$") for line in lines), name + ": a line without leading $")
    check(text.endswith("\r\n"), name + ": last line not ended by CR LF")
    expected = rate * seconds
    check(abs(len(key_lines) - expected) <= max(3, 0.15 * expected),
          "%s: %d position sentences in %.1f s at %g Hz" % (name, len(key_lines), seconds, rate))
    for line in lines:
        state = checksum_state(line)
        if key in line:
            if checksummed_key:
                check(state is True, name + ": bad or missing checksum: " + line)
            else:
                check(state is None, name + ": checksum where none belongs: " + line)
        else:
            check(state is True, name + ": mixed sentence without valid checksum: " + line)
            check(mixed or (option == 0 and "GSA" in line), name + ": unexpected sentence " + line)
    checked = [check_position_sentence(name, option, slam, feet, line) for line in key_lines[:50]]
    check(all(checked), name + ": position fields")
    times = [seconds_of(field(line.split("*")[0].split(","), TIME_FIELDS[option])) for line in key_lines]
    steps = [round((b - a) % 86400, 2) for a, b in zip(times, times[1:])]
    check(all(abs(step - 1.0 / rate) < 0.011 for step in steps), name + ": time steps %s" % steps[:10])
    if option == 0:
        gsa = [line for line in lines if "GSA" in line]
        check(len(gsa) >= len(key_lines) - 1, name + ": GSA missing")
        for line in gsa[:5]:
            pdop = field(line.split("*")[0].split(","), 16)
            check(pdop is not None and FLOAT.match(pdop), name + ": GSA field 16 PDOP " + line)
    if mixed and option in (3, 4):
        check_grid_against_gga(name, lines)
    if mixed:
        addresses = {line.split(",")[0] for line in lines}
        check({"$GPRMC", "$GPVTG", "$GPGSV", "$GPZDA"} <= addresses, name + ": mix lacks sentences %s" % addresses)
    return lines


def run_gps_option(binary, directory, option, slam=False, feet=False, mixed=False, rate=10.0, seconds=2.0):
    name = "option %d%s%s%s @%gHz" % (option, " slam" if slam else "", " feet" if feet else "",
                                      " mix" if mixed else "", rate)
    pair = PtyPair(directory, "gps")
    reader = Reader(pair.app)
    arguments = ["--gps", pair.sim, "--gps-option", str(option), "--rate", str(rate)]
    arguments += (["--slam"] if slam else []) + (["--rts-feet"] if feet else []) + (["--mix"] if mixed else [])
    process = start_fieldsim(binary, arguments)
    reader.pump(seconds)
    finish(process, name)
    reader.pump(0.2)
    reader.close()
    pair.stop()
    text = reader.data().decode("latin-1")
    check_gps_lines(name, option, slam, feet, mixed, rate, text, seconds)
    print("ok  " if not FAILURES else "..  ", name, "-", len(text.split("\r\n")) - 1, "lines")


# ------------------------------------------------------------------ instrument

MODELS = {  # name: (value bytes before CR, period in ms)
    "em31": (12, 95.23809523809524),
    "em34": (12, 55.078211059704785),
    "em38-7": (7, 72.0),
    "em38-12": (12, 91.0),
}


def decode_status(model, status):
    """The logger's reading of the status byte: marker, dipole, separation, range."""
    if status > 128:
        status -= 128
    marker = status >= 64
    if marker:
        status -= 64
    separation = None
    if model == "em34":
        dipole = "V" if status < 32 else "H"
        if status >= 32:
            status -= 32
        if status < 16:
            if status >= 8:
                status -= 8
            separation = 20
        elif status < 24:
            status -= 16
            separation = 10
        else:
            status -= 24
            separation = 40
    else:
        dipole = "V" if status >= 32 else "H"
        if status >= 32:
            status -= 32
        if status >= 16:
            status -= 16
        if status >= 8:
            status -= 8
    return marker, dipole, separation, status


def em31_factor(r):
    return -0.25 if r in (0, 6) else (-0.025 if r == 4 else -0.0025)


def em34_factor(r):
    return {0: -0.00075, 2: -0.0025, 3: -0.0075, 4: -0.025, 5: -0.075}.get(r, -0.25)


def check_frames(name, model, data, dipole="V", separation=20, expect_marker=False):
    length, _ = MODELS[model]
    frames = data.split(b"\r")
    if frames and frames[-1] == b"":
        frames.pop()
    check(len(frames) > 5, name + ": too few frames")
    markers = 0
    pattern = re.compile(rb"^T.[+-]\d{4}([+-]\d{4})?$", re.S)
    for frame in frames:
        if not check(len(frame) == length and pattern.match(frame), name + ": frame %r" % frame):
            continue
        marker, got_dipole, got_separation, r = decode_status(model, frame[1])
        markers += marker
        check(got_dipole == dipole, name + ": dipole %s in %r" % (got_dipole, frame))
        if model == "em34":
            check(got_separation == separation, name + ": separation %s in %r" % (got_separation, frame))
            value = int(frame[2:7]) * em34_factor(r)
        elif model == "em31":
            value = int(frame[2:7]) * em31_factor(r)
            inphase = int(frame[7:12]) * -0.0025
            check(-5 < inphase < 20, name + ": inphase %.2f" % inphase)
        else:
            check(r >= 4, name + ": EM38 frame not marked as conductivity %r" % frame)
            value = int(frame[2:7]) * (-1.0 if r - 4 == 3 else -0.1)
        check(1 < value < 150, name + ": conductivity %.2f mS/m from %r" % (value, frame))
    check(markers == (1 if expect_marker else 0), name + ": %d marker frames" % markers)
    return frames


def run_instrument(binary, directory, model, extra=(), dipole="V", separation=20, seconds=2.0):
    name = "instrument %s %s" % (model, " ".join(extra))
    pair = PtyPair(directory, "em")
    reader = Reader(pair.app)
    log = os.path.join(directory, "em.log")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", model] + list(extra), log)
    reader.pump(seconds / 2)
    send(process, "marker")
    reader.pump(seconds / 2)
    finish(process, name)
    reader.pump(0.2)
    reader.close()
    pair.stop()
    frames = check_frames(name, model, reader.data(), dipole, separation, expect_marker=True)
    sent = [ms for ms, stream, _ in read_log(log) if stream == "instrument"]
    period = (sent[-1] - sent[0]) / (len(sent) - 1)
    _, expected = MODELS[model]
    check(abs(period - expected) < 0.01 * expected, "%s: period %.2f ms, expected %.3f" % (name, period, expected))
    check(abs(len(frames) - seconds * 1000 / expected) <= 3, "%s: %d frames in %.1f s" % (name, len(frames), seconds))
    print("ok  " if not FAILURES else "..  ", name, "- %d frames, period %.2f ms" % (len(frames), period))


# ------------------------------------------------------------------ Grad601 and EM38-MK2

def run_gradiometer(binary, directory):
    name = "instrument grad601 --sensors 2, faults"
    pair = PtyPair(directory, "em")
    reader = Reader(pair.app)
    log = os.path.join(directory, "grad.log")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", "grad601", "--sensors", "2"], log)
    reader.pump(0.6)
    for fault in ("short", "no-end", "letters", "long"):
        send(process, "fault " + fault)
        reader.pump(0.25)
    reader.pump(0.5)
    finish(process, name)
    reader.pump(0.2)
    reader.close()
    pair.stop()
    lines = reader.data().split(b"\n")[:-1]
    good = [l for l in lines if re.fullmatch(rb"\$PBAR,[+-]\d+\.\d,[+-]\d+\.\d\r", l)]
    odd = [l for l in lines if l not in good]
    check(b"$PBAR,1\r" in odd, name + ": the short line")
    check(any(l.startswith(b"$PBAR,") and not l.endswith(b"\r") for l in odd), name + ": the line without CR")
    check(any(b"x" in l for l in odd), name + ": the line with letters")
    check(any(len(l) == 141 for l in odd), name + ": the line of 140 characters")
    check(len(odd) == 4, name + ": four bad lines, got %r" % odd)
    sent = [ms for ms, stream, _ in read_log(log) if stream == "instrument"]
    period = (sent[-1] - sent[0]) / (len(sent) - 1)
    check(abs(period - 91.0) < 1.0, "%s: period %.2f ms, expected 91" % (name, period))
    print("ok  " if not FAILURES else "..  ", name, "- %d sentences, period %.2f ms" % (len(lines), period))


def word_at(frame, offset):
    """The big-endian unsigned word of a binary frame."""
    return (frame[offset] << 8) | frame[offset + 1]


def run_em38mk2(binary, directory):
    name = "instrument em38mk2 --coils 1, dipole, marker, faults"
    pair = PtyPair(directory, "em")
    reader = Reader(pair.app)
    log = os.path.join(directory, "mk2.log")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", "em38mk2", "--coils", "1",
                                      "--temperature", "23.5"], log)
    reader.pump(0.5)
    send(process, "dipole h")
    reader.pump(0.3)
    send(process, "marker")
    reader.pump(0.3)
    send(process, "fault no-end")
    reader.pump(0.3)
    send(process, "fault end-inside")
    reader.pump(0.3)
    finish(process, name)
    reader.close()
    pair.stop()
    data = reader.data()
    frames = [data[i:i + 16] for i in range(0, len(data) - 15) if data[i:i + 1] == b"T" and
              data[i + 14:i + 16] == b"\xff\xff" and (i + 16 == len(data) or data[i + 16:i + 17] == b"T")]
    statuses = [f[1] for f in frames]
    check(statuses[:3] == [6, 6, 6], name + ": vertical frames first: %r" % statuses[:3])
    check(2 in statuses and 3 in statuses, name + ": horizontal frames and a marker in them")
    check(all(word_at(f, 2) == 0x8000 and word_at(f, 4) == 0x8000 for f in frames if f[2:4] != b"\xff\xff"),
          name + ": one coil pair: the second pair's words hold 0x8000")
    celsius = word_at(frames[0], 10) * 100 / 13107 - 50
    check(abs(celsius - 23.5) < 0.01, name + ": temperature word reads %.2f" % celsius)
    sent = [text for _, stream, text in read_log(log) if stream == "instrument"]
    check(sum(1 for t in sent if not t.endswith("\\xFF\\xFF")) == 1, name + ": one frame without its end pair")
    check(sum(1 for t in sent if t.startswith("T\\x02\\xFF\\xFF\\xFF\\xFF")) == 1,
          name + ": one frame with 0xFF pairs in its data")
    times = [ms for ms, stream, _ in read_log(log) if stream == "instrument"]
    period = (times[-1] - times[0]) / (len(times) - 1)
    check(abs(period - 47.0) < 1.0, "%s: period %.2f ms, expected 47" % (name, period))
    print("ok  " if not FAILURES else "..  ", name, "- %d frames, period %.2f ms" % (len(frames), period))


# ------------------------------------------------------------------ faults

def run_gps_faults(binary, directory):
    name = "gps faults"
    pair = PtyPair(directory, "gps")
    reader = Reader(pair.app)
    log = os.path.join(directory, "gps.log")
    process = start_fieldsim(binary, ["--gps", pair.sim, "--gps-option", "1", "--rate", "10", "--mix"], log)
    reader.pump(0.5)
    for command in ("bad-checksum", "lower-checksum", "dollar-mid"):
        send(process, command)
        reader.pump(0.35)
    send(process, "overlong gps 250 lf")
    reader.pump(0.3)
    send(process, "overlong gps 40")
    reader.pump(0.3)
    send(process, "garbage gps 100")
    reader.pump(0.3)
    send(process, "quiet gps 1.2")
    reader.pump(2.0)
    send(process, "quiet gps 5")
    reader.pump(0.5)
    send(process, "quiet gps 0")
    reader.pump(0.5)
    send(process, "close gps")
    reader.pump(0.2)
    closed_at = time.time()
    reader.pump(1.0)
    check(process.poll() is None, name + ": fieldsim ended after close gps")
    finish(process, name)
    reader.close()
    pair.stop()

    text = reader.data().decode("latin-1")
    lines = [line for line in text.split("\r\n") if line]
    # Lines of one sentence each; the others carry garbage, a cut sentence or an overlong text.
    clean = [line for line in lines if line.startswith("$") and "$" not in line[1:]]
    bad = [line for line in clean if checksum_state(line) is False]
    check(len(bad) == 1 and "GGA" in bad[0], name + ": bad-checksum gave %s" % bad)
    lower = [line for line in clean if re.search(r"\*[0-9a-f]{2}$", line) and re.search(r"\*.*[a-f]", line)]
    check(len(lower) == 1 and checksum_state(lower[0]) is True, name + ": lower-checksum gave %s" % lower)
    dollar_mid = [line for line in lines if line.startswith("$") and "$" in line[1:] and not line.startswith("$GPTXT")]
    check(len(dollar_mid) == 1 and checksum_state("$" + dollar_mid[0].split("$")[-1]) is True,
          name + ": dollar-mid gave %s" % dollar_mid)
    overlong = [line for line in lines if line.startswith("$GPTXT,")]
    check(any(len(line) == 250 and "*" not in line for line in overlong), name + ": overlong 250 lf")
    check(any(len(line) > 40 and line[40:].startswith("$GP") for line in overlong), name + ": overlong 40 without LF")
    chunks = reader.chunks
    gaps = [(b[0] - a[0], a[0]) for a, b in zip(chunks, chunks[1:])]
    check(any(1.0 < gap < 1.6 for gap, _ in gaps), name + ": no 1.2 s silence")
    check(any(0.3 < gap < 0.8 for gap, _ in gaps), name + ": quiet gps 0 didn't end the silence")
    check(all(at < closed_at for at, _ in chunks), name + ": data after close gps")
    garbage = [entry for entry in read_log(log) if entry[1] == "gps" and not entry[2].startswith("$")]
    check(len(garbage) == 1 and "$" not in garbage[0][2] and "\\n" not in garbage[0][2],
          name + ": garbage in log %s" % garbage)
    sent = "".join(text for _, stream, text in read_log(log) if stream == "gps")
    check(sent.count("$") == text.count("$"), name + ": log and line differ in sentences")
    print("ok  " if not FAILURES else "..  ", name)


def run_instrument_faults(binary, directory):
    name = "instrument faults"
    pair = PtyPair(directory, "em")
    reader = Reader(pair.app)
    script = os.path.join(directory, "script.txt")
    with open(script, "w") as out:
        out.write("# timed commands\nat 0.4 marker\nat 0.8 garbage instrument 30\n")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", "em31", "--script", script])
    reader.pump(1.2)
    send(process, "quiet instrument 1")
    reader.pump(1.5)
    send(process, "marker")
    reader.pump(0.5)
    send(process, "close instrument")
    reader.pump(0.2)
    closed_at = time.time()
    reader.pump(0.8)
    finish(process, name)
    reader.close()
    pair.stop()
    data = reader.data()
    frames = [frame for frame in data.split(b"\r") if frame]
    good = [frame for frame in frames if len(frame) == 12 and frame[0:1] == b"T"]
    odd = [frame for frame in frames if frame not in good]
    check(len(odd) == 1 and len(odd[0]) == 30 + 12 and odd[0][-12:-11] == b"T",
          name + ": garbage should prefix exactly one frame: %r" % odd)
    check(sum(1 for frame in good if decode_status("em31", frame[1])[0]) == 2, name + ": two markers expected")
    gaps = [b[0] - a[0] for a, b in zip(reader.chunks, reader.chunks[1:])]
    check(any(0.9 < gap < 1.2 for gap in gaps), name + ": no 1 s silence")
    check(all(at < closed_at for at, _ in reader.chunks), name + ": data after close instrument")
    print("ok  " if not FAILURES else "..  ", name)


def run_instrument_changes(binary, directory):
    """The button held, the other dipole and separation, a CR at the wrong
    distance, letters for digits, an overlong line and another model."""
    name = "instrument changes"
    pair = PtyPair(directory, "em")
    reader = Reader(pair.app)
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", "em34", "--separation", "20"])
    reader.pump(0.3)
    for command in ("hold 3", "dipole h", "separation 40", "bad-cr", "letters", "overlong instrument 50"):
        send(process, command)
        reader.pump(0.3)
    send(process, "model em38-7")
    reader.pump(0.5)
    finish(process, name)
    reader.close()
    pair.stop()
    frames = [frame for frame in reader.data().split(b"\r") if frame]
    held = [f for f in frames if len(f) == 12 and f[0:1] == b"T" and f[1] & 64]
    check(len(held) == 3, name + ": three frames with the button down, %d" % len(held))
    turned = [f for f in frames if len(f) == 12 and f[0:1] == b"T" and (f[1] & 32) and (f[1] & 24) == 24]
    check(len(turned) >= 3, name + ": horizontal frames at 40 m")
    check(any(len(f) == 13 and f[0:1] == b"T" for f in frames), name + ": one frame with its CR a byte late")
    check(any(len(f) == 12 and f[4:6] == b"AB" for f in frames), name + ": a frame with letters for digits")
    check(any(len(f) >= 50 and f[:50].isdigit() for f in frames), name + ": fifty digits without CR")
    check(len(frames[-1]) == 7 and frames[-1][0:1] == b"T", name + ": 7-byte frames after the model change")
    print("ok  " if not FAILURES else "..  ", name)


def run_port_loss(binary, directory):
    """socat dies and comes back: fieldsim must survive and reopen."""
    name = "port loss"
    pair = PtyPair(directory, "gps")
    log = os.path.join(directory, "loss.log")
    process = start_fieldsim(binary, ["--gps", pair.sim, "--gps-option", "1", "--rate", "5"], log)
    reader = Reader(pair.app)
    reader.pump(0.6)
    reader.close()
    pair.stop()
    time.sleep(1.2)
    check(process.poll() is None, name + ": fieldsim died with its port")
    pair.start()
    reader = Reader(pair.app)
    reader.pump(1.5)
    reader.close()
    finish(process, name)
    pair.stop()
    check(b"$GPGGA" in reader.data(), name + ": nothing after the port came back")
    notes = [text for _, stream, text in read_log(log) if stream == "note"]
    check(any("lost" in note for note in notes) and sum("opened" in note for note in notes) >= 2,
          name + ": notes %s" % notes)
    print("ok  " if not FAILURES else "..  ", name)


# ------------------------------------------------------------------ EM61 family

def em61_frames(data):
    """Frames of 15 bytes ending 0x7F 0x7F, found by their end and letter."""
    frames = []
    at = 0
    while True:
        end = data.find(b"\x7f\x7f", at)
        if end < 0:
            return frames
        start = end - 13
        if start >= 0 and data[start:start + 1] in (b"T", b"M", b"J") and data[end:end + 2] == b"\x7f\x7f":
            frames.append(data[start:end + 2])
        at = end + 2


def em61_word(frame, offset):
    value = word_at(frame, offset)
    return value - 65536 if value >= 32768 else value


def write_bytes(reader, data):
    os.write(reader.fd, data)


def run_em61(binary, directory, model, extra, polled=False):
    """The command exchange, frames unasked or per poll, and Wheel mode."""
    name = "%s%s" % (model, " polled" if polled else "")
    pair = PtyPair(directory, "em61")
    reader = Reader(pair.app)
    log = os.path.join(directory, "em61.log")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", model, "--speed", "1.5"] + extra +
                             (["--polled"] if polled else []), log)
    reader.pump(0.6)
    check(reader.data() == b"", name + ": sends before a command: %r" % reader.data()[:40])
    write_bytes(reader, b"H")
    time.sleep(0.04)
    write_bytes(reader, b"X")
    reader.pump(0.3)
    reply = reader.data()
    check(reply.startswith(b"OK" if polled else b"OV"), name + ": reply %r" % reply[:20])
    reader.chunks = []
    if polled:
        reader.pump(0.5)
        check(reader.data() == b"", name + ": frames without a poll")
        for _ in range(10):
            write_bytes(reader, b"A")
            reader.pump(0.1)
        frames = em61_frames(reader.data())
        check(len(frames) == 10, name + ": %d frames for 10 polls" % len(frames))
    else:
        reader.pump(2.0)
        frames = em61_frames(reader.data())
        check(abs(len(frames) - 2000 / 55.078) <= 4, name + ": %d frames in 2 s" % len(frames))
    check(all(len(f) == 15 and f[1] == 0x14 for f in frames), name + ": frame shape and gain byte")
    check(all(em61_word(f, 10) == 3000 and f[12] == 80 for f in frames), name + ": current and battery")
    # Wheel mode: a frame per 0.2 m at 1.5 m/s, 7.5 a second.
    write_bytes(reader, b"HW")
    reader.pump(0.3)
    reader.chunks = []
    reader.pump(2.0)
    wheel = em61_frames(reader.data())
    check(12 <= len(wheel) <= 18, name + ": %d wheel frames in 2 s" % len(wheel))
    check(any(f[0:1] == b"J" for f in wheel), name + ": no wheel letter 'J'")
    finish(process, name)
    reader.close()
    pair.stop()
    received = "".join(text for _, stream, text in read_log(log) if stream == "instrument<")
    check(received.startswith("HX"), name + ": the log keeps what came back: %r" % received[:20])
    notes = [text for _, stream, text in read_log(log) if stream == "note"]
    check(any(n.startswith("target left") for n in notes) and any(n.startswith("target both") for n in notes),
          name + ": target notes %s" % notes[:6])
    print("ok  " if not FAILURES else "..  ", name)


def run_em61_faults(binary, directory):
    name = "em61 faults"
    pair = PtyPair(directory, "em61f")
    reader = Reader(pair.app)
    log = os.path.join(directory, "em61f.log")
    process = start_fieldsim(binary, ["--instrument", pair.sim, "--model", "em61lx2", "--sensors", "2",
                                      "--reply", "none"], log)
    write_bytes(reader, b"HX")
    reader.pump(1.0)
    check(reader.data() == b"", name + ": reply none answered %r" % reader.data()[:20])
    send(process, "reply wrong")
    write_bytes(reader, b"HX")
    reader.pump(0.4)
    check(reader.data() == b"ER", name + ": reply wrong gave %r" % reader.data()[:20])
    reader.chunks = []
    send(process, "reply noisy")
    write_bytes(reader, b"HX")
    reader.pump(0.4)
    check(reader.data().startswith(b"\x13O\xff\x00V"), name + ": reply noisy gave %r" % reader.data()[:20])
    send(process, "cut 2")
    reader.pump(0.3)
    send(process, "split")
    reader.pump(0.3)
    send(process, "quiet instrument 1")
    reader.pump(0.2)
    quiet_from = time.time()
    reader.pump(0.7)
    quiet_to = time.time()
    write_bytes(reader, b"HX")   # unheard while the cable is out
    reader.pump(0.8)
    finish(process, name)
    reader.close()
    pair.stop()
    stream = reader.data()[5:]
    # Whole frames of 15 bytes and two of 13 without their end.
    whole = stream.count(b"\x7f\x7f")
    check(whole > 15 and len(stream) == 15 * whole + 2 * 13,
          name + ": %d bytes for %d whole frames and two cut ones" % (len(stream), whole))
    check(all(not (quiet_from < at < quiet_to) for at, _ in reader.chunks), name + ": data while quiet")
    sent = [text.lower() for _, stream_name, text in read_log(log) if stream_name == "instrument"]
    halves = [i for i, (a, b) in enumerate(zip(sent, sent[1:])) if len(a) <= 7 * 4 and b.endswith("\\x7f\\x7f")
              and not a.endswith("\\x7f\\x7f") and not a.endswith("\\x7f")]
    check(len(halves) >= 1, name + ": no frame split over two writes")
    check(sent.count("ov") == 0, name + ": a command heard while quiet")
    print("ok  " if not FAILURES else "..  ", name)


def run_command_line(binary):
    help_text = subprocess.run([binary, "--help"], capture_output=True, text=True)
    check(help_text.returncode == 0 and "--gps-option" in help_text.stdout and "dollar-mid" in help_text.stdout,
          "--help")
    wrong = subprocess.run([binary, "--gps", "/dev/null", "--gps-option", "9"], capture_output=True, text=True)
    check(wrong.returncode == 2 and wrong.stderr, "an option out of range is refused")


def gps_options(binary, directory):
    for option in range(9):
        run_gps_option(binary, directory, option)


def gps_variants(binary, directory):
    run_gps_option(binary, directory, 7, slam=True)
    run_gps_option(binary, directory, 7, feet=True)
    run_gps_option(binary, directory, 0, mixed=True, rate=5)
    run_gps_option(binary, directory, 3, mixed=True, rate=1, seconds=3.0)
    run_gps_option(binary, directory, 4, mixed=True, rate=5)
    run_gps_option(binary, directory, 8, mixed=True, rate=20)


def instruments(binary, directory):
    run_instrument(binary, directory, "em31")
    run_instrument(binary, directory, "em31", ["--dipole", "h", "--range", "0"], dipole="H")
    run_instrument(binary, directory, "em34")
    run_instrument(binary, directory, "em34", ["--dipole", "h", "--separation", "10"], dipole="H", separation=10)
    run_instrument(binary, directory, "em34", ["--separation", "40"], separation=40)
    run_instrument(binary, directory, "em38-7")
    run_instrument(binary, directory, "em38-12", ["--range", "3"])
    run_instrument_changes(binary, directory)


def faults(binary, directory):
    run_command_line(binary)
    run_gps_faults(binary, directory)
    run_instrument_faults(binary, directory)
    run_port_loss(binary, directory)


# The checks mostly wait on real time: ctest runs each part as a test of its
# own, side by side with the others (tests/list_parts.py lists them).
def em61(binary, directory):
    run_em61(binary, directory, "em61mk2", [])
    run_em61(binary, directory, "em61mk2", [], polled=True)
    run_em61(binary, directory, "em61lx2", ["--sensors", "2"])
    run_em61_faults(binary, directory)


def gradmk2(binary, directory):
    run_gradiometer(binary, directory)
    run_em38mk2(binary, directory)


PARTS = {"gps-options": gps_options, "gps-variants": gps_variants, "instruments": instruments, "faults": faults,
         "em61": em61, "gradmk2": gradmk2}
SECONDS = {"gps-options": 25, "gps-variants": 20, "instruments": 20, "faults": 15, "em61": 20, "gradmk2": 5}


def main():
    if shutil.which("socat") is None:
        print("selfcheck: socat is missing")
        return 1
    binary = find_fieldsim()
    parts = sys.argv[2:] or list(PARTS)
    unknown = [part for part in parts if part not in PARTS]
    if unknown:
        sys.exit("selfcheck: unknown part %s; the parts are %s" % (", ".join(unknown), ", ".join(PARTS)))
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    with tempfile.TemporaryDirectory(prefix="fieldsim-check-") as directory:
        for part in parts:
            PARTS[part](binary, directory)
    print("selfcheck: %s" % ("all passed" if not FAILURES else "%d failures" % len(FAILURES)))
    return 0 if not FAILURES else 1


if __name__ == "__main__":
    sys.exit(main())
