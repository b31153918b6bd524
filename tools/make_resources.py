#!/usr/bin/env python3
"""Makes the program's binary resources from nothing but this script, so that the
build needs no file from outside: the icon, and the nine wave sounds at the sizes
the programs have always carried them in."""
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


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    with open(os.path.join(out, "kelvo.ico"), "wb") as f:
        f.write(icon())
    for name, (size, tone, pattern) in SOUNDS.items():
        with open(os.path.join(out, name + ".wav"), "wb") as f:
            f.write(wave(size, tone, pattern))
    with open(os.path.join(out, "stamp"), "w") as f:
        f.write("generated\n")


if __name__ == "__main__":
    main()
