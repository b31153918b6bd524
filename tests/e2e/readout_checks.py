"""The views beside the map read from a screenshot: the curve windows, the bar
windows and the map, each checked for the colours it is drawn in."""
import em31_family_walk as walk

CURVE_ID, DECAY_ID, BAR_Q_ID, BAR_I_ID, MAP_ID = 600, 610, 620, 630, 652
WHITE, GREY = 0xFFFFFF, 0xC0C0C0


def rgb_of_setting(colour):
    """A stored colour 0x00BBGGRR as the screenshot's 0xRRGGBB."""
    return ((colour & 0xFF) << 16) | (colour & 0xFF00) | ((colour >> 16) & 0xFF)


def window_rects(box, control_id):
    """The visible windows of one id, from the top down (the curve windows share theirs)."""
    return sorted((row["rect"] for row in box.windows() if row["id"] == control_id and row["visible"]),
                  key=lambda r: (r[1], r[0]))


def drawn_pixels(png, rect):
    """What is drawn on the white ground besides the grey scale lines: {colour: count}."""
    counts = {}
    for p in walk.pixels_of(png, rect):
        if p not in (WHITE, GREY):
            counts[p] = counts.get(p, 0) + 1
    return counts


def check_pens(checks, label, png, rect, pens, least=60):
    """The window shows each pen's colour, `least` pixels or more, and nothing
    else but white, the grey scale lines and the window's border."""
    counts = drawn_pixels(png, rect)
    for colour in pens:
        checks.check(counts.get(colour, 0) >= least,
                     "%s in %06X (%d pixels)" % (label, colour, counts.get(colour, 0)))
    inside = (rect[0] + 1, rect[1] + 1, rect[2] - 1, rect[3] - 1)
    foreign = {c: n for c, n in drawn_pixels(png, inside).items() if c not in pens}
    checks.check(sum(foreign.values()) <= 5, "%s: no other colour (%s)" % (label, sorted(foreign.items())[:4]))


def split_rows(png, rect):
    """Rows of the map (the walk goes north) in which the swath's left and
    right halves hold different classes, each three pixels or more; and the
    rows the swath crosses."""
    width = rect[2] - rect[0]
    pixels = walk.pixels_of(png, rect)
    split = crossed = 0
    for y in range(len(pixels) // width):
        run = [p for p in pixels[y * width:(y + 1) * width] if p in walk.CLASS_COLOURS]
        if len(run) < 8:
            continue
        crossed += 1
        left, right = run[:len(run) // 2], run[len(run) // 2:]
        a, b = max(set(left), key=left.count), max(set(right), key=right.count)
        if a != b and left.count(a) >= 3 and right.count(b) >= 3:
            split += 1
    return split, crossed


def check_swath(checks, label, png, box, least_classes=2, two_sensors=None):
    """The swath in class colours; with `two_sensors` given, split in two
    halves of their own classes (True) or one class across (False)."""
    rects = window_rects(box, MAP_ID)
    if not checks.check(len(rects) == 1, label + ": the map shows"):
        return
    coloured = walk.colour_pixels(png, rects[0])
    checks.check(coloured > 300, label + ": the swath is painted in class colours (%d pixels)" % coloured)
    classes = walk.colour_classes(png, rects[0])
    checks.check(len(classes) >= least_classes, label + ": the swath shows %d classes" % len(classes))
    if two_sensors is None:
        return
    split, crossed = split_rows(png, rects[0])
    if two_sensors:
        checks.check(split >= 10, label + ": %d of %d swath rows show the two sensors' classes side by side"
                      % (split, crossed))
    else:
        checks.check(split <= crossed // 10, label + ": %d of %d swath rows split (one sensor)" % (split, crossed))
