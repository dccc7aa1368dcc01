#!/usr/bin/env python3
"""Makes suite.ico, the icon of the suite's dialogs: a route with its angle points on a map's sheet.

Run by hand; the result is kept beside this script.
"""

import pathlib
import struct

SAMPLES = 6
SHEET, EDGE, ROUTE, POINT, RIVER = (255, 255, 255), (52, 92, 150), (200, 40, 40), (30, 60, 120), (110, 180, 230)
COURSE = [(0.16, 0.78), (0.42, 0.42), (0.62, 0.58), (0.86, 0.20)]
WATER = [(0.08, 0.30), (0.35, 0.22), (0.55, 0.30), (0.92, 0.74)]


def near_line(x, y, points, reach):
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        dx, dy = x1 - x0, y1 - y0
        t = max(0.0, min(1.0, ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)))
        if (x - x0 - t * dx) ** 2 + (y - y0 - t * dy) ** 2 < reach * reach:
            return True
    return False


def color_at(x, y, size):
    """The colour at a place from 0 to 1, or None outside of the sheet."""
    if not (0.04 < x < 0.96 and 0.04 < y < 0.96):
        return None
    thin = max(0.035, 0.7 / size)
    if any((x - px) ** 2 + (y - py) ** 2 < (2.2 * thin) ** 2 for px, py in COURSE):
        return POINT
    if near_line(x, y, COURSE, thin):
        return ROUTE
    if not (0.04 + thin < x < 0.96 - thin and 0.04 + thin < y < 0.96 - thin):
        return EDGE
    return RIVER if near_line(x, y, WATER, 1.3 * thin) else SHEET


def pixel(column, row, size):
    hits = []
    for i in range(SAMPLES * SAMPLES):
        x = (column + (i % SAMPLES + 0.5) / SAMPLES) / size
        y = (row + (i // SAMPLES + 0.5) / SAMPLES) / size
        color = color_at(x, y, size)
        if color:
            hits.append(color)
    if not hits:
        return 0, 0, 0, 0
    red, green, blue = (round(sum(part) / len(hits)) for part in zip(*hits))
    return blue, green, red, round(255 * len(hits) / SAMPLES ** 2)


def picture(size):
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    rows = (bytes(pixel(column, row, size)) for row in reversed(range(size)) for column in range(size))
    mask = bytes((size + 31) // 32 * 4 * size)
    return header + b"".join(rows) + mask


def main():
    sizes = (16, 32, 48)
    pictures = [picture(size) for size in sizes]
    offset = 6 + 16 * len(sizes)
    directory = struct.pack("<HHH", 0, 1, len(sizes))
    for size, data in zip(sizes, pictures):
        directory += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    target = pathlib.Path(__file__).resolve().parent / "suite.ico"
    target.write_bytes(directory + b"".join(pictures))


if __name__ == "__main__":
    main()
