#!/usr/bin/env python3
"""Writes a DXF drawing of N mixed entities for measuring: make_drawing.py N FILE.

Lines, light polylines, texts, block references with attributes, circles, arcs and points, in the proportions of
a route map, spread over a square with one entity on about a hundred square metres. The same N gives the same file.
"""

import io
import math
import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "samples"))
from dxf_file import Drawing  # noqa: E402

LAYERS = ("道路", "居民地", "水系", "植被", "线路", "注记")


def frame():
    """The drawing without entities, as text before and after the place where they go, and the first free handle."""
    drawing = Drawing()
    drawing.linetype("DASHED", "虚线", [12.7, -6.35])
    drawing.style("Standard", "txt.shx")
    for index, name in enumerate(LAYERS):
        drawing.layer(name, index + 1, "DASHED" if index == 3 else "Continuous")
    drawing.block("杆塔")
    with drawing.inside("杆塔"):
        drawing.polyline("0", [(-1, -1), (1, -1), (1, 1), (-1, 1)], closed=True)
        drawing.attribute_definition("0", "号", "编号", "", (2, 0), 2, "Standard")
    drawing.viewport((0, 0), 1000, 1.5)
    drawing.finish_objects([], ("ISO_A2_(594.00_x_420.00_MM)", 594, 420))
    model = drawing.blocks["*Model_Space"]["record"]
    text = io.StringIO()
    drawing.write_to(text)
    before, mark, after = text.getvalue().partition("  2\nENTITIES\n")
    seed = drawing.first_free_handle()
    return before + mark, after, model, seed


def entities(count, model, handle):
    """Yields (text, next handle)."""
    source = random.Random(count)
    side = math.sqrt(count) * 10
    real = source.uniform

    def head(kind, layer, owner=model):
        nonlocal handle
        handle += 1
        return f"  0\n{kind}\n  5\n{handle - 1:X}\n330\n{owner}\n100\nAcDbEntity\n  8\n{layer}\n"

    for number in range(count):
        x, y = real(0, side), real(0, side)
        layer = LAYERS[source.randrange(len(LAYERS))]
        kind = source.random()
        if kind < 0.30:
            text = (head("LINE", layer) + f"100\nAcDbLine\n 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n0.0\n"
                    f" 11\n{x + real(-20, 20):.6f}\n 21\n{y + real(-20, 20):.6f}\n 31\n0.0\n")
        elif kind < 0.55:
            vertices = source.randrange(2, 14)
            text = head("LWPOLYLINE", layer) + f"100\nAcDbPolyline\n 90\n{vertices}\n 70\n{source.randrange(2)}\n 43\n0.0\n"
            for _ in range(vertices):
                x, y = x + real(-8, 8), y + real(-8, 8)
                text += f" 10\n{x:.6f}\n 20\n{y:.6f}\n"
                if source.random() < 0.15:
                    text += f" 42\n{real(-1, 1):.6f}\n"
        elif kind < 0.70:
            text = (head("TEXT", layer) + f"100\nAcDbText\n 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n0.0\n 40\n2.5\n  1\n砖{number % 9}\n"
                    f" 50\n{real(0, 360):.4f}\n  7\nStandard\n100\nAcDbText\n")
        elif kind < 0.80:
            owner = f"{handle:X}"
            text = (head("INSERT", layer) + "100\nAcDbBlockReference\n 66\n1\n  2\n杆塔\n"
                    f" 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n0.0\n 50\n{real(0, 360):.4f}\n")
            text += (head("ATTRIB", layer, owner) + f"100\nAcDbText\n 10\n{x + 2:.6f}\n 20\n{y:.6f}\n 30\n0.0\n 40\n2.0\n"
                     f"  1\nN{number}\n  7\nStandard\n100\nAcDbAttribute\n280\n0\n  2\n号\n 70\n0\n280\n1\n")
            text += head("SEQEND", layer, owner)
        elif kind < 0.88:
            text = head("CIRCLE", layer) + f"100\nAcDbCircle\n 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n0.0\n 40\n{real(.5, 8):.6f}\n"
        elif kind < 0.95:
            text = (head("ARC", layer) + f"100\nAcDbCircle\n 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n0.0\n 40\n{real(.5, 8):.6f}\n"
                    f"100\nAcDbArc\n 50\n{real(0, 180):.6f}\n 51\n{real(181, 360):.6f}\n")
        else:
            text = head("POINT", layer) + f"100\nAcDbPoint\n 10\n{x:.6f}\n 20\n{y:.6f}\n 30\n{real(0, 300):.3f}\n"
        yield text, handle


def main():
    if len(sys.argv) != 3:
        sys.exit("用法: make_drawing.py 数量 文件")
    count, path = int(sys.argv[1]), sys.argv[2]
    before, after, model, seed = frame()
    # Every entity takes at most three handles; the seed must stand in the header, before they are counted.
    limit = seed + 3 * count
    before = before.replace(f"$HANDSEED\n  5\n{seed:X}\n", f"$HANDSEED\n  5\n{limit:X}\n", 1)
    with open(path, "w", encoding="utf-8", newline="\n") as file:
        file.write(before)
        for text, _ in entities(count, model, seed):
            file.write(text)
        file.write(after)


if __name__ == "__main__":
    main()
