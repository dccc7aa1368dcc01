#!/usr/bin/env python3
"""Makes the pictures of the four river styles, river1.sld to river4.sld, that the river dialog shows.

Run by hand; the results are kept beside this script. Coordinates are dots of the picture, y upwards.
"""

import math
import pathlib
import struct

WIDTH, HEIGHT = 1700, 1150
CYAN, GREEN, FOREGROUND = 4, 3, 7
HALF_RIVER = 210
BORDER = 45


class Slide:
    """Lines in standard colours as a slide file."""

    def __init__(self):
        self.records = bytearray()
        self.color = None

    def line(self, points, color):
        dots = [(round(x), round(y)) for x, y in points]
        if color != self.color:
            self.records += struct.pack("<BB", color, 0xFF)
            self.color = color
        last = None
        for (x0, y0), (x1, y1) in zip(dots, dots[1:]):
            if (x0, y0) == (x1, y1):
                continue
            dx, dy = x1 - x0, y1 - y0
            if last == (x0, y0) and -128 <= dx <= 127 and -128 <= dy <= 127:
                self.records += struct.pack("<bBb", dx, 0xFE, dy)
            else:  # from the new point back, so that the next one can go on there
                self.records += struct.pack("<HHHH", x1, y1, x0, y0)
            last = (x1, y1)

    def write(self, path):
        header = b"AutoCAD Slide\r\n\x1a\0" + struct.pack(
            "<BBHHIHH", 86, 2, WIDTH - 1, HEIGHT - 1, round(WIDTH / HEIGHT * 1e7), 2, 0x1234)
        path.write_bytes(header + bytes(self.records) + struct.pack("<BB", 0, 0xFC))


def middle(x):
    """The river's middle line: y, and the unit direction there."""
    turn = 2 * math.pi / WIDTH
    y = HEIGHT / 2 + 190 * math.sin(turn * x)
    slope = 190 * turn * math.cos(turn * x)
    length = math.hypot(1, slope)
    return y, (1 / length, slope / length)


def beside(x, distance):
    """A point beside the middle line; positive distances lie to the left of the flow."""
    y, (dx, dy) = middle(x)
    return x - distance * dy, y + distance * dx


def is_shown(point):
    return BORDER <= point[0] <= WIDTH - BORDER and 0 <= point[1] < HEIGHT


def parallel(distance):
    """The part of a line beside the middle that is shown."""
    return [point for point in (beside(x, distance) for x in range(-300, WIDTH + 301, 10)) if is_shown(point)]


MIDDLE = [(x, middle(x)[0]) for x in range(-300, WIDTH + 301, 5)]


def inside(x, y, half):
    """Whether a place is within so much of the middle line."""
    return any(abs(x - px) < half and math.hypot(x - px, y - py) < half for px, py in MIDDLE)


def stretches(points, drawn, gap):
    """Dashes along a line."""
    dash, room, draws = [points[0]], drawn, True
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        length, done = math.hypot(x1 - x0, y1 - y0), 0.0
        while length - done > room:
            done += room
            at = (x0 + (x1 - x0) * done / length, y0 + (y1 - y0) * done / length)
            if draws:
                yield dash + [at]
            draws, room = not draws, gap if draws else drawn
            dash = [at]
        room -= length - done
        dash.append((x1, y1))
    if draws:
        yield dash


def banks(slide):
    for side in (1, -1):
        slide.line(parallel(side * HALF_RIVER), CYAN)


def water(slide, half):
    """Dashes in the direction of the flow, staggered from row to row."""
    step = 6
    for row, y in enumerate(range(40, HEIGHT - 39, 44)):
        start = None
        for x in range(BORDER, WIDTH - BORDER, step):
            place = (x + row * 97) % 330
            draws = (place < 190 or 240 <= place < 285) and inside(x, y, half)
            if draws and start is None:
                start = x
            elif not draws and start is not None:
                if x - start > 3 * step:
                    slide.line([(start, y), (x, y)], CYAN)
                start = None


def slopes(slide):
    """Slope marks from the banks into the river."""
    for side in (1, -1):
        for x in range(-300, WIDTH + 301, 75):
            mark = [beside(x, side * HALF_RIVER), beside(x, side * (HALF_RIVER - 68))]
            if all(map(is_shown, mark)):
                slide.line(mark, GREEN)


def arrow(slide, x):
    y, (dx, dy) = middle(x)
    size = 16.0

    def at(along, left):
        return x + size * (along * dx - left * dy), y + size * (along * dy + left * dx)

    tip = at(10, 0)
    slide.line([at(-10, 0), tip], FOREGROUND)
    slide.line([at(6.5, 2), tip], FOREGROUND)
    slide.line([at(6.5, -2), tip], FOREGROUND)


def main():
    folder = pathlib.Path(__file__).resolve().parent
    pictures = [Slide() for _ in range(4)]
    for picture in pictures:
        banks(picture)
    slopes(pictures[0])
    water(pictures[0], HALF_RIVER - 95)
    water(pictures[1], HALF_RIVER - 22)
    for distance in (105, 0, -105):
        for dash in stretches(parallel(distance), 62, 34):
            pictures[2].line(dash, CYAN)
    for x in (430, 1270):
        arrow(pictures[3], x)
    for number, picture in enumerate(pictures, 1):
        picture.write(folder / f"river{number}.sld")


if __name__ == "__main__":
    main()
