#!/usr/bin/env python3
"""Review and replay end to end (Kelvo31): an EM31-MK2 survey logged with
readings and the colour image from the field simulator, then paused; a
second simulator stands still at the survey's last position, so that the
map window stays where it is. The map is then drawn again from the data
file by every repaint (zoom in and out, Fit All, review entered and left,
a colour channel changed and back, in review and outside it, Toggle View
twice) and each picture is compared pixel by pixel with the live one where
the replay draws the same: the map at the same size and view, the profile
of the logged readings. The data file keeps its bytes through all of it."""
import os
import subprocess
import time

import em31_family_walk as walk
import harness
import test_gps_survey as gps_survey
import test_session_start as session

PROGRAM = "Kelvo31"
MAP_ID, CURVE_ID = 652, 600
RADIO_CONDUCTIVITY, RADIO_INPHASE = 480, 481
GREY_GRID, WHITE, BLACK = 0xC0C0C0, 0xFFFFFF, 0x000000
CURSOR_ARM = 6   # "Cursor Size" choice 3
SECONDS = 90


def start_sim(box, gps, instrument, log_path, extra, rate=10):
    argv = [os.path.join(harness.native_tools_dir(), "fieldsim", "fieldsim"), "--gps", gps, "--gps-option", "1",
            "--rate", str(rate), "--log", log_path] + list(extra)
    if instrument:
        argv += ["--instrument", instrument, "--model", "em31"]
    return box.spawn(argv, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def degrees(text, hemisphere):
    """ddmm.mmmm (or dddmm.mmmm) as signed degrees."""
    whole = int(float(text) / 100)
    value = whole + (float(text) - whole * 100) / 60.0
    return -value if hemisphere in "SW" else value


def last_fix(recs):
    for sentence, _seq, _flag, _tick, _index in reversed(gps_survey.gps_groups(recs, 27)):
        fields = sentence.split(",")
        if fields[0].endswith("GGA") and len(fields) > 5 and fields[2] and fields[4]:
            return degrees(fields[2], fields[3]), degrees(fields[4], fields[5])
    return None


def logged_columns(recs):
    """Readings since the last line header, and whether one of the swath's
    segments holds more than one of them (the replay then colours that
    segment by all its readings, where the live map leaves the last out)."""
    readings, per_segment, in_segment = 0, [], 0
    for r in recs:
        tag = chr(r[0])
        if tag == "Z":
            readings = 0
        elif tag == "T":
            readings += 1
            in_segment += 1
        elif tag == "{" and r[1:2] == b"0":
            in_segment = 0
        elif tag == "{" and r[1:2] == b"h":
            per_segment.append(in_segment)
            in_segment = 0
    return readings, any(n > 1 for n in per_segment)


def client_rect(box, control_id, png, found=None):
    """The window's client area on the screen: inside its black one-pixel
    border, found on a screenshot near the window's rectangle (or, with no
    black border there, one pixel inside the rectangle). `found`, a list,
    gets whether the black border was seen."""
    rect = walk.window_rect(box, control_id)
    if not rect:
        return None
    l, t, r, b = rect
    pixels = walk.pixels_of(png, (l - 3, t - 3, r + 3, b + 3))
    width, height = r - l + 6, b - t + 6

    def black_column(x):
        return all(pixels[y * width + x] == BLACK for y in range(6, height - 6))

    def black_row(y):
        return all(pixels[y * width + x] == BLACK for x in range(6, width - 6))

    left = next((x for x in range(0, 7) if black_column(x)), 3)
    right = next((x for x in range(width - 1, width - 8, -1) if black_column(x)), width - 4)
    top = next((y for y in range(0, 7) if black_row(y)), 3)
    bottom = next((y for y in range(height - 1, height - 8, -1) if black_row(y)), height - 4)
    if found is not None:
        found.append(black_column(left) and black_row(top))
    return (l - 3 + left + 1, t - 3 + top + 1, l - 3 + right, t - 3 + bottom)


class Screens:
    """Screenshots cropped to the map's and the profile's client areas."""

    def __init__(self, box):
        self.box = box
        # The map's black border may be drawn a moment after its client: the
        # screenshot is taken again until the border is there.
        for attempt in range(10):
            png = box.screenshot("replay-windows")
            found = []
            self.map = client_rect(box, MAP_ID, png, found)
            if found and found[0]:
                break
            time.sleep(0.5)
        self.curve = client_rect(box, CURVE_ID, png)

    def take(self, name, settle=1.5):
        time.sleep(settle)
        png = self.box.screenshot("replay-" + name)
        map_pixels = walk.pixels_of(png, self.map) if self.map else []
        curve = client_rect(self.box, CURVE_ID, png)
        curve_pixels = walk.pixels_of(png, curve) if curve else []
        width = (curve[2] - curve[0]) if curve else 0
        return {"png": png, "map": map_pixels, "curve": curve_pixels, "curve_width": width}


def differing(a, b):
    return [i for i, (p, q) in enumerate(zip(a, b)) if p != q]


def only_cursor(a, b, width):
    """The places where two pictures of the map differ are the cursor's arms
    in the first (black lines through one point) and nothing else."""
    places = differing(a, b)
    if not places:
        return True, 0
    if any(a[i] != BLACK for i in places):
        return False, len(places)
    xs = sorted(set(i % width for i in places))
    ys = sorted(set(i // width for i in places))
    return len(places) <= 4 * CURSOR_ARM + 8 and (len(xs) <= 2 * CURSOR_ARM + 4 or len(ys) <= 2 * CURSOR_ARM + 4), \
        len(places)


def painted(pixels):
    return sum(1 for p in pixels if p in walk.CLASS_COLOURS)


def shifted(pixels, width, dx, dy):
    """The picture moved by (dx, dy) pixels, white where nothing comes in."""
    height = len(pixels) // width
    out = [WHITE] * len(pixels)
    for y in range(max(0, dy), min(height, height + dy)):
        row, source = y * width, (y - dy) * width
        for x in range(max(0, dx), min(width, width + dx)):
            out[row + x] = pixels[source + x - dx]
    return out


def placed_again(checks, what, replayed, live, width):
    """After a change of scale the live window is placed again so that the
    position under the cursor stands at the cursor's place. With a page of an
    odd side the live window had the cursor one pixel up and left of the
    position's pixel, so the picture may come back one pixel up and left.
    Returns the live picture moved as the window was, with its border rows
    and columns, which the move leaves empty, taken from the replayed one."""
    best = None
    for dx in (0, -1):
        for dy in (0, -1):
            moved = shifted(live, width, dx, dy)
            inner = [i for i in range(len(live)) if 2 <= i % width < width - 2 and 2 <= i // width < width - 2]
            miss = sum(1 for i in inner if moved[i] != replayed[i] and moved[i] != BLACK and replayed[i] != BLACK)
            if best is None or miss < best[0]:
                best = (miss, dx, dy, moved)
    harness.log("%s: the window came back moved by (%d, %d)" % (what, best[1], best[2]))
    moved = best[3]
    height = len(live) // width
    for i in range(len(moved)):
        x, y = i % width, i // width
        if x >= width - 1 or y >= height - 1 or x < 1 or y < 1:
            moved[i] = replayed[i]
    return moved


def compare_map(checks, what, replayed, live, multi_reading_segments):
    """The replayed map at the live map's size and view: the same pixels,
    but where a segment of the swath holds two readings or more. The cursor
    (black, drawn on the window only) is not compared."""
    cursor = [i for i in differing(replayed, live) if replayed[i] == BLACK or live[i] == BLACK]
    checks.check(len(cursor) <= 2 * (4 * CURSOR_ARM + 8), what + ": the cursor's arms apart (%d pixels)" % len(cursor))
    places = [i for i in differing(replayed, live) if replayed[i] != BLACK and live[i] != BLACK]
    shape = [i for i in places if (replayed[i] in walk.CLASS_COLOURS) != (live[i] in walk.CLASS_COLOURS)]
    if multi_reading_segments:
        checks.check(not shape, what + ": the swath covers the same pixels (%d differ in colour only)" % len(places))
    else:
        checks.check(not places, what + ": pixel for pixel as drawn live (%d of %d differ)" % (len(places), len(live)))


def compare_profile(checks, what, replayed, live, width, readings):
    """The replayed profile against the live one: the logged readings stand
    two pixels further left (the pause breaks the curve), the oldest of them
    starts afresh (live it continued the curve of the readings before Go), and
    readings that were not logged are only in the live one."""
    height = len(live) // width if width else 0
    column = width - 10
    newest = column - 2
    oldest = newest - 2 * (readings - 1)
    first, last = max(oldest + 4, 3), newest - 3
    checks.check(readings >= 10 and last > first, what + ": %d logged readings in the profile" % readings)
    wrong = 0
    curve_pixels = 0
    for y in range(height):
        for x in range(first, last + 1):
            r, l = replayed[y * width + x], live[y * width + x + 2]
            curve_pixels += r not in (WHITE, GREY_GRID)
            wrong += r != l
    checks.check(curve_pixels > 2 * (last - first), what + ": the curves are drawn (%d pixels)" % curve_pixels)
    checks.check(wrong == 0, what + ": pixel for pixel the live curves, two pixels to the left (%d differ)" % wrong)
    left = sum(1 for y in range(height) for x in range(0, max(oldest - 4, 0))
               if replayed[y * width + x] not in (WHITE, GREY_GRID))
    checks.check(left == 0, what + ": nothing left of the line's logged readings (%d pixels)" % left)


def press(box, window, *keys):
    box.key(window, *keys)
    time.sleep(0.5)


class Survey:
    """A logged survey, paused, with the receiver standing still at its last
    position: the program, its window, the data file and what it held."""
    program = window = path = logged = profile_shot = None


def logged_survey(box, checks, seconds, sample_interval="1.000000", gps_rate=10):
    """Logs an EM31-MK2 walk with the colour image for `seconds`, pauses, and
    puts a receiver that stands still without noise at the last logged
    position, so that the map window stays where it is."""
    survey = Survey()
    walk.settings(box, PROGRAM, {"GpsDataOption": 1, "MapDisplayMode": 1, "SampleInterval": sample_interval,
                                 "SurveyMode": 0, "DipoleMode": 0, "Component": 0, "PositionSize": 4,
                                 "ScaleMin": "0.000000", "ScaleMax": "40.000000"})
    gps = box.serial_pair(walk.GPS_COM)
    instrument = box.serial_pair(walk.INSTRUMENT_COM)
    log_path = os.path.join(box.prefix, "sent.log")
    sim = start_sim(box, gps, instrument, log_path, ["--line-length", "25", "--speed", "1.5"], gps_rate)
    survey.program, survey.window = session.start_program(box, PROGRAM)
    if not checks.check(walk.open_logging(box, survey.window), "logging screen and a first fix"):
        return None
    if not walk.go(box, checks, PROGRAM, "REPLAY", sim, survey.program, survey.window, log_path):
        return None
    time.sleep(seconds)
    # The instrument falls silent just before the pause: the live profile
    # then ends with the last logged reading. The pause repaints the
    # readouts, which may erase the profile: it is taken before.
    walk.send(sim, "quiet instrument 900")
    time.sleep(0.3)
    survey.profile_shot = box.screenshot("replay-live-profile")
    walk.pause(box, survey.window)
    time.sleep(1)
    folder = box.c_path("C:\\Survey")
    survey.path = os.path.join(folder, [n for n in os.listdir(folder) if n.upper().startswith("REPLAY")][0])
    survey.logged = open(survey.path, "rb").read()
    fix = last_fix(gps_survey.records(survey.logged, 27))
    if not checks.check(fix is not None, "the file holds the survey's positions"):
        return None
    walk.send(sim, "quit")
    sim.wait(10)
    stand = os.path.join(box.prefix, "stand.txt")
    with open(stand, "w") as f:
        f.write("%.8f %.8f\n%.8f %.8f\n" % (fix[0], fix[1], fix[0], fix[1]))
    start_sim(box, gps, None, os.path.join(box.prefix, "stand.log"),
              ["--path", stand, "--origin", "%.8f,%.8f" % fix, "--noise", "0"])
    return survey


def run(checks):
    with harness.Sandbox("replay") as box:
        survey = logged_survey(box, checks, 28)
        if survey is None:
            return
        program, window, path, logged = survey.program, survey.window, survey.path, survey.logged
        profile_shot = survey.profile_shot
        readings, multi = logged_columns(gps_survey.records(logged, 27))
        harness.log("logged: %d bytes, %d readings, segments with several readings: %s" % (len(logged), readings, multi))
        screens = Screens(box)
        if not checks.check(screens.map and screens.curve, "map and profile windows found"):
            return
        width = screens.map[2] - screens.map[0]
        harness.log("map client %s, profile client %s" % (screens.map, screens.curve))
        live = screens.take("live", settle=6)
        live_profile = walk.pixels_of(profile_shot, screens.curve)
        checks.check(len([p for p in live_profile if p not in (WHITE, GREY_GRID)]) > 100,
                     "the live profile shows its curves while Logging")

        checks.check(painted(live["map"]) > 1000, "the live swath is painted (%d pixels)" % painted(live["map"]))

        # Review: the live pages at the live view, without the cursor.
        press(box, window, "i")
        review = screens.take("review")
        same, count = only_cursor(live["map"], review["map"], width)
        checks.check(same, "review shows the live pages at the live view, the cursor gone (%d pixels differ)" % count)
        # Zoom in and out again: the same size, the pages drawn from the file.
        press(box, window, "KP_Add")
        zoomed = screens.take("zoom-in")
        checks.check(len(differing(zoomed["map"], review["map"])) > 100, "zoom in draws another scale")
        press(box, window, "KP_Subtract")
        back = screens.take("zoom-back")
        compare_map(checks, "zoom in and out", back["map"], review["map"], multi)
        # The other channel and back, in review.
        box.click_control(control_id=RADIO_INPHASE)
        inphase = screens.take("review-inphase")
        checks.check(len(differing(inphase["map"], back["map"])) > 100, "review: the inphase image differs")
        box.click_control(control_id=RADIO_CONDUCTIVITY)
        channel_back = screens.take("review-conductivity")
        compare_map(checks, "review: channel changed and back", channel_back["map"], review["map"], multi)
        # Fit All: the whole survey in the window.
        press(box, window, "f")
        fitted = screens.take("fit-all")
        cols = [i % width for i, p in enumerate(fitted["map"]) if p in walk.CLASS_COLOURS]
        rows = [i // width for i, p in enumerate(fitted["map"]) if p in walk.CLASS_COLOURS]
        checks.check(cols and min(cols) > 5 and max(cols) < width - 5 and min(rows) > 5 and max(rows) < width - 5,
                     "Fit All frames the whole swath (%d pixels)" % len(cols))
        # Leaving review: the live size again, the map and the profile drawn
        # from the file, the window placed again around the cursor.
        press(box, window, "e")
        left_review = screens.take("exit-review", settle=4)
        placed = placed_again(checks, "exit review", left_review["map"], live["map"], width)
        compare_map(checks, "exit review", left_review["map"], placed, multi)
        compare_profile(checks, "exit review: profile", left_review["curve"], live_profile, live["curve_width"],
                        readings)

        # A channel changed and back outside review.
        box.click_control(control_id=RADIO_INPHASE)
        outside = screens.take("inphase", settle=3)
        checks.check(len(differing(outside["map"], live["map"])) > 100, "the inphase image differs")
        box.click_control(control_id=RADIO_CONDUCTIVITY)
        outside_back = screens.take("conductivity", settle=3)
        compare_map(checks, "channel changed and back", outside_back["map"], placed, multi)

        # Toggle View twice: the profile drawn from the file at each size.
        press(box, window, "m", "v")
        hidden = screens.take("toggle-hidden", settle=2)
        checks.check(hidden["curve_width"] > live["curve_width"], "without the map the profile is wider")
        curve = [p for p in hidden["curve"] if p not in (WHITE, GREY_GRID)]
        checks.check(len(curve) > 100, "the wide profile is drawn from the file (%d pixels)" % len(curve))
        press(box, window, "m", "v")
        shown = screens.take("toggle-shown", settle=4)
        compare_map(checks, "toggle view twice", shown["map"], placed, multi)
        compare_profile(checks, "toggle view twice: profile", shown["curve"], live_profile, live["curve_width"],
                        readings)

        # Nothing of this wrote to the data file.
        after = open(path, "rb").read()
        checks.check(after == logged, "the data file keeps its %d bytes through the replays (%d now)"
                     % (len(logged), len(after)))
        walk.leave(box, window)
        box.key(window, "x")
        checks.equal(program.wait(30), 0, "exit code 0")


def main():
    checks = harness.Checks()
    run(checks)
    checks.finish()


if __name__ == "__main__":
    main()
