#!/usr/bin/env python3
"""The survey export end to end: Kelvo31 logs a survey under Wine while the
field simulator walks a known straight line to and fro (east from its origin),
with the sensor 1 m behind the antenna and 0.5 m to its left. The exporter, built natively, turns
the data file into CSV, track CSV, GeoJSON, KML and SVG; then the Windows
exporter does the same under Wine and must give the same bytes. Every
exported reading must lie on the simulator's line within the receiver's
noise (moved 0.5 m to the left of travel), in order, where the simulator's
antenna was 1 m of walking earlier, with the values of the frame the
simulator sent."""
import math
import os
import re
import shutil
import subprocess
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey

PROGRAM = "Kelvo31"
ORIGIN = (43.6099, -79.6107)
SPEED = 1.5            # m/s
LINE_LENGTH = 30.0     # m, due east
LAG = 1.0              # GPS Y offset: the sensor trails the antenna
ACROSS = 0.5           # GPS X offset: the sensor stands this far left of the antenna's track
LINE_GPS_OFFSET_X = 45
NOISE = 0.02           # the simulator's position noise, m
FRAME_MS = 1000.0 / 10.5
STEM = "EXPWALK"
OUTPUTS = {"--csv": "walk.csv", "--track": "track.csv", "--geojson": "walk.json", "--kml": "walk.kml",
           "--svg": "walk.svg"}
SECONDS = 40


def native_exporter():
    return os.path.join(os.path.dirname(harness.native_tools_dir()), "bin", "kelvo_export")


def windows_exporter():
    return os.path.join(harness.bin_dir(), "kelvo_export.exe")


def local_metres(lat, lon):
    """(east, north) of a point from the simulator's origin, on the ellipsoid."""
    a, e2 = 6378137.0, 0.00669437999014
    phi = math.radians(ORIGIN[0])
    w = 1.0 - e2 * math.sin(phi) ** 2
    meridian = a * (1 - e2) / w ** 1.5
    normal = a / math.sqrt(w)
    return (math.radians(lon - ORIGIN[1]) * normal * math.cos(phi), math.radians(lat - ORIGIN[0]) * meridian)


def sent_positions(log_path):
    """(simulator ms, GGA text, east, north) of each GGA the simulator sent."""
    out = []
    for line in open(log_path, "rb").read().decode("latin-1").splitlines():
        parts = line.split(" ", 2)
        if len(parts) < 3 or parts[1] != "gps":
            continue
        for piece in walk.unescape(parts[2]).split("\n"):
            piece = "".join(c for c in piece if 35 < ord(c) < 127)
            if not piece.startswith("$") or "GGA" not in piece:
                continue
            f = piece.split(",")
            lat = (int(f[2][:2]) + float(f[2][2:]) / 60.0) * (-1 if f[3] == "S" else 1)
            lon = (int(f[4][:3]) + float(f[4][3:]) / 60.0) * (-1 if f[5] == "W" else 1)
            east, north = local_metres(lat, lon)
            out.append((float(parts[0]), piece, east, north))
    return out


def decode_frame(text):
    """Conductivity and inphase of an EM31-MK2 frame, by the frame's own rules:
    the status byte from the top bit down, the range code's factor."""
    s = ord(text[1])
    if s > 128:
        s -= 128
    if s >= 64:
        s -= 64
    dipole = "H"
    if s >= 32:
        dipole, s = "V", s - 32
    if s >= 16:
        s -= 16
    if s >= 8:
        s -= 8
    factor = {0: -0.25, 4: -0.025, 6: -0.25}.get(s, -0.0025)
    return dipole, int(text[2:7]) * factor, int(text[7:12]) * -0.0025


def run_exports(box, folder, name):
    """The native exporter and, under Wine, the Windows one, each in a folder
    of its own beside the data file, with the same arguments."""
    results = {}
    for side in ("native", "windows"):
        out = os.path.join(folder, side)
        os.makedirs(out, exist_ok=True)
        shutil.copy(os.path.join(folder, name), out)
        args = [name]
        for option, output in OUTPUTS.items():
            args += [option, output]
        command = [native_exporter()] + args if side == "native" else ["wine", windows_exporter()] + args
        started = time.time()
        with open(os.path.join(out, "report.txt"), "wb") as report:
            code = subprocess.run(command, cwd=out, env=box.env(), stdin=subprocess.DEVNULL, stdout=report,
                                  stderr=subprocess.DEVNULL, timeout=120, start_new_session=True).returncode
        harness.log("%s exporter: exit %d in %.1f s" % (side, code, time.time() - started))
        results[side] = (code, out)
    return results


def check_refusals(checks, box, folder):
    """Files the exporters cannot read: a one-line message and status 2, from both."""
    cases = {"missing.T31": None, "empty.T31": b"", "foreign.T31": b"Line,Station,Easting,Northing\r\n1,0,5,5\r\n",
             "junk.T31": bytes((i * 151 + 7) % 256 for i in range(4000))}
    for name, content in cases.items():
        if content is not None:
            with open(os.path.join(folder, name), "wb") as f:
                f.write(content)
        for side, command in (("native", [native_exporter()]), ("windows", ["wine", windows_exporter()])):
            result = subprocess.run(command + [name, "--csv", "refused.csv"], cwd=folder, env=box.env(),
                                    stdin=subprocess.DEVNULL, capture_output=True, timeout=60, start_new_session=True)
            message = result.stderr.decode("latin-1").strip()
            checks.check(result.returncode == 2 and len(message.splitlines()) == 1 and name in message,
                         "%s exporter on %s: status %d, \"%s\"" % (side, name, result.returncode, message))
            checks.check(not os.path.exists(os.path.join(folder, "refused.csv")), "%s: no output left" % side)


def check_export(checks, data, log_path, out):
    recs = gps_survey.records(data, 27)
    # The program's tick against the simulator's clock, by the GPS sentences of both.
    sent = sent_positions(log_path)
    by_text = {}
    for ms, text, east, north in sent:
        by_text.setdefault(text, []).append(ms)
    offsets = sorted(int(tick) - by_text[text][0] for text, _, _, tick, _ in gps_survey.gps_groups(recs, 27)
                     if text in by_text and len(by_text[text]) == 1)
    if not checks.check(len(offsets) > 50, "the file's GGA sentences are the simulator's (%d)" % len(offsets)):
        return
    offset = offsets[len(offsets) // 2]
    times = [s[0] for s in sent]

    def antenna_at(ms):
        i = max(1, min(len(sent) - 1, next((k for k, t in enumerate(times) if t >= ms), len(times) - 1)))
        (t0, _, e0, n0), (t1, _, e1, n1) = sent[i - 1], sent[i]
        f = (ms - t0) / (t1 - t0) if t1 > t0 else 0.0
        return e0 + f * (e1 - e0), n0 + f * (n1 - n0)

    frames = {f[0] for f in walk.good_frames(walk.sent_instrument_bytes(log_path), 12) if f[1]}
    readings = {int(r[16:26]): r[0:12].decode("latin-1") for r in recs if r[0:1] == b"T"}
    rows = open(os.path.join(out, "walk.csv")).read().splitlines()
    header = rows[0].split(",")
    checks.equal(header[:11], ["line", "station", "tick", "utc", "marker", "sensor", "position", "easting [m]",
                               "northing [m]", "latitude", "longitude"], "the CSV's columns")
    rows = [r.split(",") for r in rows[1:]]
    harness.log("CSV excerpt:\n  " + "\n  ".join(",".join(r) for r in rows[40:46]))
    checks.equal(len(rows), len(readings), "a CSV row for each reading record (%d)" % len(readings))
    ticks = [int(r[2]) for r in rows]
    checks.check(all(b > a for a, b in zip(ticks, ticks[1:])), "the readings stand in the order of their ticks")
    placed = [r for r in rows if r[6] == "gps"]
    checks.check(len(placed) >= len(rows) - 3, "%d of %d readings placed between positions" % (len(placed), len(rows)))
    across, along, value_errors, unsent, before_start = [], [], 0, 0, 0
    # Logging began with the first reading: a sensor that trails the antenna
    # stands before the first logged position until LAG metres are walked,
    # on the line the track's first step points along, which the receiver's
    # noise turns. Those readings are placed, but not held to the line.
    logging_began = int(rows[0][2]) - offset if rows else 0
    for r in placed:
        east, north = local_metres(float(r[9]), float(r[10]))
        # Where the simulator's antenna was LAG metres of walking before the frame was sent.
        ms = int(r[2]) - offset - LAG / SPEED * 1000.0
        expected, _ = antenna_at(ms)
        along.append(abs(east - expected))
        if ms < logging_began:
            before_start += 1
            continue
        # Left of travel is north walking east and south walking west; at
        # the line's ends the direction turns.
        if 0.25 < expected < LINE_LENGTH - 0.25:
            eastward = antenna_at(ms + 100.0)[0] > antenna_at(ms - 100.0)[0]
            across.append(abs(north - (ACROSS if eastward else -ACROSS)))
    for r in rows:
        text = readings.get(int(r[2]))
        if text is None or "T" + text[1:] not in frames:
            unsent += 1
            continue
        dipole, conductivity, inphase = decode_frame(text)
        c, i = (r[11], r[13]) if dipole == "V" else (r[12], r[14])
        if abs(float(c) - conductivity) > 1e-4 or abs(float(i) - inphase) > 1e-4:
            value_errors += 1
    checks.equal(unsent, 0, "every exported reading is a frame the simulator sent")
    checks.equal(value_errors, 0, "every exported value is that frame's conductivity and inphase")
    if across:
        checks.check(max(across) <= 6 * NOISE, "every reading lies on the walked line, %.1f m to the left of travel: "
                     "%.3f m off at most (%d more before %.0f m were walked)" % (ACROSS, max(across), before_start, LAG))
        checks.check(before_start <= LAG / SPEED * 1000.0 / FRAME_MS + 2,
                     "only the readings of the first %.0f m stand before the track (%d)" % (LAG, before_start))
        along.sort()
        checks.check(along[len(along) * 95 // 100] <= 0.3 and along[-1] <= 0.5,
                     "each reading stands where the antenna was %.0f m of walking earlier: median %.3f m, 95%% %.3f m, "
                     "most %.3f m off" % (LAG, along[len(along) // 2], along[len(along) * 95 // 100], along[-1]))
    report = open(os.path.join(out, "report.txt")).read()
    harness.log("report:\n" + report)
    checks.check("Readings     %d: %d placed" % (len(rows), len(placed)) in report, "the report counts the readings")
    checks.check(re.search(r"GPS gaps     0 longer", report) is not None, "the report finds no GPS gap")
    checks.check(re.search(r"Speed        mean 1\.[45]\d m/s", report) is not None, "the report has the walking speed")
    svg = os.path.join(out, "walk.svg")
    png = os.path.join(harness.artefact_dir(), "export-walk.png")
    subprocess.run(["convert", svg, png], check=False, capture_output=True)
    if os.path.exists(png):
        coloured = walk.colour_pixels(png, (0, 0, 1210, 420))
        checks.check(coloured > 500, "the picture shows the readings in class colours (%d pixels)" % coloured)
    for name in list(OUTPUTS.values()) + ["report.txt"]:
        shutil.copy(os.path.join(out, name), os.path.join(harness.artefact_dir(), "export-" + name))


def main():
    checks = harness.Checks()
    if not os.path.exists(native_exporter()) or not os.path.exists(windows_exporter()):
        harness.skip("the exporters are not built")
    with harness.Sandbox("export") as box:
        walk.settings(box, PROGRAM, {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": "0.200000",
                                     "SurveyMode": 0, "DipoleMode": 0, "Component": 0, "GpsOffsetY": "%f" % LAG,
                                     "ScaleMin": "0.000000", "ScaleMax": "40.000000"})
        walk.session.edit_settings(walk.session.settings_path(box, PROGRAM), {LINE_GPS_OFFSET_X: "%f" % ACROSS})
        log_path = os.path.join(box.prefix, "sent.log")
        gps = box.serial_pair(walk.GPS_COM)
        instrument = box.serial_pair(walk.INSTRUMENT_COM)
        sim = box.spawn([os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps,
                         "--gps-option", "1", "--rate", "10", "--instrument", instrument, "--model", "em31",
                         "--log", log_path, "--lines", "1", "--line-length", str(LINE_LENGTH), "--heading", "90",
                         "--speed", str(SPEED), "--noise", str(NOISE),
                         "--origin", "%.4f,%.4f" % ORIGIN], stdin=subprocess.PIPE,
                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        run, window = walk.session.start_program(box, PROGRAM)
        if not checks.check(walk.open_logging(box, window), "logging screen and a first fix"):
            checks.finish()
        if not walk.go(box, checks, PROGRAM, STEM, sim, run, window, log_path):
            checks.finish()
        time.sleep(28)
        walk.pause(box, window)
        walk.finish(box, checks, PROGRAM, sim, run, window)
        folder = box.c_path("C:\\Survey")
        data, names = walk.read_file(box, STEM)
        if not checks.check(data is not None, "one data file (%s)" % names):
            checks.finish()
        results = run_exports(box, folder, names[0])
        native_code, native_out = results["native"]
        windows_code, windows_out = results["windows"]
        checks.equal(native_code, 0, "the native exporter ends with 0")
        checks.equal(windows_code, 0, "the Windows exporter ends with 0")
        for name in list(OUTPUTS.values()) + ["report.txt"]:
            a = open(os.path.join(native_out, name), "rb").read()
            b = open(os.path.join(windows_out, name), "rb").read()
            checks.check(len(a) > 0 and a == b, "%s: the same %d bytes from both exporters" % (name, len(a)))
        check_export(checks, data, log_path, native_out)
        check_refusals(checks, box, folder)
    checks.finish()


if __name__ == "__main__":
    main()
