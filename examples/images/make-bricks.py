#!/usr/bin/env python3
"""Writes bricks.png, the brick wall the rust example paints over: 256 x 256 pixels, eight
courses of running bond that tile seamlessly in both directions, each brick a slightly different
red-brown with a grainy surface, in pale mortar. Standard library only; the same file every run."""
import random
import struct
import zlib
from pathlib import Path

SIZE = 256
COURSE = 32          # brick height plus mortar
BRICK = 64           # brick length plus mortar
MORTAR = 4


def brick_colour(rng):
    base = (148 + rng.randint(-22, 22), 62 + rng.randint(-14, 14), 44 + rng.randint(-10, 10))
    return base


def main():
    rng = random.Random(2024)
    courses = SIZE // COURSE
    per_course = SIZE // BRICK
    colours = {(c, b): brick_colour(rng) for c in range(courses) for b in range(per_course)}
    rows = []
    for y in range(SIZE):
        course = y // COURSE
        in_course = y % COURSE
        shift = (BRICK // 2) * (course % 2)
        row = bytearray([0])  # filter type 0 for each scanline
        for x in range(SIZE):
            sx = (x + shift) % SIZE
            brick = sx // BRICK
            in_brick = sx % BRICK
            grain = rng.randint(-9, 9)
            if in_course < MORTAR or in_brick < MORTAR:
                value = 196 + grain
                pixel = (value, value - 6, value - 16)
            else:
                r, g, b = colours[(course, brick)]
                # Darker towards the lower edge: a hint of relief.
                edge = -10 if in_course > COURSE - 4 else 0
                pixel = (r + grain + edge, g + grain + edge, b + grain + edge)
            row.extend(max(0, min(255, channel)) for channel in pixel)
        rows.append(bytes(row))
    raw = b"".join(rows)

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF))

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", SIZE, SIZE, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw, 9))
    png += chunk(b"IEND", b"")
    Path(__file__).with_name("bricks.png").write_bytes(png)


if __name__ == "__main__":
    main()
