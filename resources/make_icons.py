#!/usr/bin/env python3
"""Draws the icons of the palette's title bar, a drawing pin from the side and from above: make_icons.py FOLDER."""

import pathlib
import struct
import sys

# One character a pixel of a 16 by 16 picture: blank is transparent.
COLORS = {" ": (0, 0, 0, 0), "#": (60, 60, 60, 255), "o": (214, 64, 52, 255), "+": (238, 140, 128, 255)}
UNPINNED = """


       ##
       #o#
       #o######
       #o+++++#
  ######oooooo#
  ######oooooo#
       #oooooo#
       #o######
       #o#
       ##




"""
PINNED = """

     ######
     #o++o#
     #o++o#
     #o++o#
     #o++o#
     #oooo#
   ##########
   #oooooooo#
   ##########
       ##
       ##
       ##
       #

"""


def icon(picture, scales=(1, 2)):
    rows = (picture[1:].split("\n") + [""] * 16)[:16]
    images = []
    for scale in scales:
        size = 16 * scale
        pixels = bytearray()
        for y in range(size - 1, -1, -1):  # bottom row first
            for x in range(size):
                red, green, blue, alpha = COLORS[rows[y // scale].ljust(16)[x // scale]]
                pixels += bytes((blue, green, red, alpha))
        header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(pixels), 0, 0, 0, 0)
        images.append((size, header + pixels + bytes(size * ((size + 31) // 32 * 4))))  # an empty mask
    directory, offset = struct.pack("<HHH", 0, 1, len(images)), 6 + 16 * len(images)
    for size, data in images:
        directory += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return directory + b"".join(data for _, data in images)


folder = pathlib.Path(sys.argv[1])
(folder / "unpinned.ico").write_bytes(icon(UNPINNED))
(folder / "pinned.ico").write_bytes(icon(PINNED))
