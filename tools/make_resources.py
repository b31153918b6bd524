#!/usr/bin/env python3
"""Makes the program's binary resources from nothing but this script, so that the
build needs no file from outside: the icon, the nine wave sounds at the sizes
the programs have always carried them in, and the pictures of the geometry
dialogs (the instrument seen from above, its reference point and the GPS
antenna's offsets)."""
import math
import os
import struct
import sys

SOUNDS = {  # name: (size of the file in bytes, tone in Hz, pattern)
    "SOUND_RESULT": (1192, 1760, "tick"),
    "SOUND_RING": (10026, 880, "ring"),
    "SOUND_RING_2S": (23865, 880, "ring"),
    "SOUND_GPSWARNING": (8230, 660, "beeps"),
    "RINGINSOUND": (10026, 990, "ring"),
    "LEFTSOUND": (9260, 440, "fall"),
    "RIGHTSOUND": (9942, 440, "rise"),
    "BETWEENSOUND": (8030, 523, "steady"),
    "LEFTRIGHTSOUND": (26410, 440, "both"),
}
RATE = 11025


def wave(size, tone, pattern):
    frames = size - 44
    data = bytearray()
    for i in range(frames):
        t = i / RATE
        f = tone
        if pattern == "fall":
            f = tone * (1.5 - 0.5 * i / frames)
        elif pattern == "rise":
            f = tone * (1.0 + 0.5 * i / frames)
        elif pattern == "both":
            f = tone * (1.5 - 0.5 * i / frames) if i < frames // 2 else tone * (1.0 + (i - frames // 2) / frames)
        on = True
        if pattern == "ring":
            on = int(t * 12) % 2 == 0
        elif pattern == "beeps":
            on = int(t * 8) % 2 == 0
        envelope = min(1.0, (frames - i) / 200.0, i / 50.0 + 0.01)
        value = math.sin(2 * math.pi * f * t) * 0.6 * envelope if on else 0.0
        data.append(int(128 + 127 * value) & 0xFF)
    header = b"RIFF" + struct.pack("<I", 36 + frames) + b"WAVE"
    header += b"fmt " + struct.pack("<IHHIIHH", 16, 1, 1, RATE, RATE, 1, 8)
    header += b"data" + struct.pack("<I", frames)
    out = header + bytes(data)
    assert len(out) == size
    return out


def icon():
    """A 32 x 32 icon: a survey track with readings on a white ground."""
    side = 32
    pixels = []
    for y in range(side):
        row = []
        for x in range(side):
            r, g, b = 255, 255, 255
            if x in (0, side - 1) or y in (0, side - 1):
                r, g, b = 64, 64, 64
            elif x % 8 == 4:
                # parallel survey lines in colour classes
                level = (y * 7 + x * 3) % 32
                r, g, b = (0, 0, 255) if level < 10 else (0, 200, 0) if level < 20 else (255, 0, 0)
            elif abs(y - 16) < 2 and 4 < x < 28:
                r, g, b = 53, 181, 21
            row.append((r, g, b))
        pixels.append(row)
    xor = bytearray()
    for y in reversed(range(side)):
        for (r, g, b) in pixels[y]:
            xor += bytes((b, g, r, 255))
    mask = bytes(side * side // 8)
    bmp_header = struct.pack("<IiiHHIIiiII", 40, side, side * 2, 1, 32, 0, len(xor) + len(mask), 0, 0, 0, 0)
    image = bmp_header + xor + mask
    directory = struct.pack("<HHH", 0, 1, 1) + struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(image), 22)
    return directory + image


class Picture:
    """A small 24-bit raster on white, drawn with lines, boxes and discs."""

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.pixels = [[(255, 255, 255)] * width for _ in range(height)]

    def dot(self, x, y, colour):
        if 0 <= x < self.width and 0 <= y < self.height:
            self.pixels[y][x] = colour

    def box(self, x0, y0, x1, y1, colour, fill=None):
        for y in range(y0, y1 + 1):
            for x in range(x0, x1 + 1):
                edge = x in (x0, x1) or y in (y0, y1)
                if edge or fill:
                    self.dot(x, y, colour if edge else fill)

    def disc(self, cx, cy, r, colour, ring_only=False):
        for y in range(cy - r, cy + r + 1):
            for x in range(cx - r, cx + r + 1):
                d = (x - cx) ** 2 + (y - cy) ** 2
                if d <= r * r and (not ring_only or d >= (r - 2) * (r - 2)):
                    self.dot(x, y, colour)

    def line(self, x0, y0, x1, y1, colour):
        steps = max(abs(x1 - x0), abs(y1 - y0), 1)
        for i in range(steps + 1):
            self.dot(round(x0 + (x1 - x0) * i / steps), round(y0 + (y1 - y0) * i / steps), colour)

    def arrow_up(self, x, y0, y1, colour):
        self.line(x, y0, x, y1, colour)
        self.line(x, y1, x - 4, y1 + 6, colour)
        self.line(x, y1, x + 4, y1 + 6, colour)

    def bmp(self):
        """A 16-colour bitmap: the pictures use a handful of colours."""
        palette = []
        for row in self.pixels:
            for colour in row:
                if colour not in palette:
                    palette.append(colour)
        assert len(palette) <= 16
        palette += [(0, 0, 0)] * (16 - len(palette))
        index = {colour: i for i, colour in enumerate(palette)}
        row_bytes = ((self.width + 1) // 2 + 3) & ~3
        data = bytearray()
        for y in reversed(range(self.height)):
            row = bytearray()
            values = [index[c] for c in self.pixels[y]] + [0]
            for x in range(0, self.width, 2):
                row.append((values[x] << 4) | values[x + 1])
            row += bytes(row_bytes - len(row))
            data += row
        colours = b"".join(bytes((b, g, r, 0)) for (r, g, b) in palette)
        info = struct.pack("<IiiHHIIiiII", 40, self.width, self.height, 1, 4, 0, len(data), 2835, 2835, 16, 0)
        offset = 14 + len(info) + len(colours)
        header = b"BM" + struct.pack("<IHHI", offset + len(data), 0, 0, offset)
        return header + info + colours + bytes(data)


RED, BLUE, GREY, BLACK, YELLOW = (220, 0, 0), (0, 0, 255), (128, 128, 128), (0, 0, 0), (230, 200, 0)


def geometry_picture(kind):
    """The instrument from above, walking up the picture: its reference point
    (black), the antenna (blue) with its X and Y offsets (grey)."""
    p = Picture(200, 150)
    p.arrow_up(12, 130, 20, GREY)
    if kind == "coil":
        p.box(60, 55, 140, 95, RED)
    elif kind == "boom":
        p.box(97, 10, 103, 140, BLACK, (255, 255, 255))
        p.box(94, 70, 106, 80, RED, RED)
    elif kind == "bar":
        p.box(95, 30, 105, 120, BLACK, (255, 255, 255))
        p.box(93, 70, 107, 78, RED, RED)
    elif kind == "coils34":
        p.disc(100, 18, 12, RED, ring_only=True)
        p.disc(100, 132, 12, RED, ring_only=True)
        p.line(100, 30, 100, 120, GREY)
    elif kind == "sensors":
        p.disc(70, 80, 8, RED)
        p.disc(130, 80, 8, RED)
        p.line(70, 78, 130, 78, BLACK)
        p.line(70, 82, 130, 82, BLACK)
    elif kind == "lx2":
        p.box(40, 60, 98, 95, YELLOW)
        p.box(102, 60, 160, 95, YELLOW)
    p.disc(100, 75 if kind != "coils34" else 75, 3, BLACK)
    p.disc(150, 35, 5, BLUE)
    p.line(100, 35, 150, 35, GREY)
    p.line(150, 40, 150, 75, GREY)
    return p.bmp()


PICTURES = {  # file name: instrument kind; the resource script names each file
    "arr_130.bmp": "coil", "arr_131.bmp": "boom", "arr_145.bmp": "bar",
    "ARR_EM34_200.bmp": "coils34", "ARR601_240_BMP.bmp": "sensors", "ARR_LX2.bmp": "lx2",
}


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    with open(os.path.join(out, "kelvo.ico"), "wb") as f:
        f.write(icon())
    for name, (size, tone, pattern) in SOUNDS.items():
        with open(os.path.join(out, name + ".wav"), "wb") as f:
            f.write(wave(size, tone, pattern))
    for name, kind in PICTURES.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(geometry_picture(kind))
    with open(os.path.join(out, "stamp"), "w") as f:
        f.write("generated\n")


if __name__ == "__main__":
    main()
