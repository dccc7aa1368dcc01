#!/usr/bin/env python3
"""Makes acad.pat (inches) and acadiso.pat (millimetres) from one table of the usual standard hatch patterns.

A pattern is made of families of parallel lines, or of figures that repeat on a lattice: every line of a figure
becomes a family whose dashes and offsets follow from the lattice. Run by hand; the results are kept beside this
script.
"""

import math
import pathlib

MILLIMETRES = 25.4


class Family:
    """Parallel lines: angle in degrees, a point of the first one, the way along and across to the next."""

    def __init__(self, angle, across, base=(0, 0), dashes=(), along=0.0):
        self.angle, self.across, self.base, self.dashes, self.along = angle, across, base, dashes, along

    def text(self, scale):
        lengths = [*self.base, self.along, self.across, *self.dashes]
        return ",".join([number(self.angle), *(number(length * scale) for length in lengths)])


def number(value):
    text = f"{value:.9f}".rstrip("0").rstrip(".")
    return "0" if text in ("", "-0") else text


def lines(angle, spacing, base=(0, 0), dashes=(), along=0.0):
    return [Family(angle, spacing, base, dashes, along)]


def lattice(a, b, segments, reach=24):
    """Families of segments ((x, y), (dx, dy)) that repeat by the vectors a and b; a zero vector is a dot."""
    cell = abs(a[0] * b[1] - a[1] * b[0])
    steps = sorted(((i * a[0] + j * b[0], i * a[1] + j * b[1])
                    for i in range(-reach, reach + 1) for j in range(-reach, reach + 1) if (i, j) != (0, 0)),
                   key=lambda step: math.hypot(*step))
    families = []
    for base, vector in segments:
        size = math.hypot(*vector)
        along = vector if size else a
        length = math.hypot(*along)
        ux, uy = along[0] / length, along[1] / length
        # The shortest way of the lattice along the line, and the one to the next line.
        period = next(math.hypot(*step) for step in steps
                      if abs(step[0] * uy - step[1] * ux) < 1e-9 and step[0] * ux + step[1] * uy > 0)
        distance = cell / period
        step = next(step for step in steps if abs(step[1] * ux - step[0] * uy - distance) < 1e-9)
        dashes = () if size > period - 1e-9 else (size, size - period)
        families.append(Family(math.degrees(math.atan2(uy, ux)) % 360, distance, base, dashes,
                               step[0] * ux + step[1] * uy))
    return families


def square(size, segments):
    return lattice((size, 0), (0, size), segments)


def figure(points, closed=False):
    """Segments through points."""
    ends = [*points[1:], points[0]] if closed else points[1:]
    return [((x, y), (u - x, v - y)) for (x, y), (u, v) in zip(points, ends)]


def scaled(families, factor):
    return [Family(f.angle, f.across * factor, tuple(c * factor for c in f.base),
                   tuple(d * factor for d in f.dashes), f.along * factor) for f in families]


def strokes(size, grid, data):
    """Strokes on a grid of `grid` squares a side: x, y, dx, dy."""
    unit = size / grid
    return square(size, [((x * unit, y * unit), (dx * unit, dy * unit)) for x, y, dx, dy in data])


SQRT3 = math.sqrt(3)
DIAGONAL = .125 * math.sqrt(2)  # along the X axis between the lines of ANSI31


def ansi():
    yield "ANSI31", "铁、砖、石", lines(45, .125)
    yield "ANSI32", "钢", lines(45, .375) + lines(45, .375, (DIAGONAL, 0))
    yield "ANSI33", "青铜、黄铜、紫铜", lines(45, .25) + lines(45, .25, (DIAGONAL, 0), (.125, -.0625))
    yield "ANSI34", "塑料、橡胶", [f for i in range(4) for f in lines(45, .75, (i * DIAGONAL, 0))]
    yield "ANSI35", "耐火砖、耐火材料", (lines(45, .25) +
                                  lines(45, .25, (DIAGONAL, 0), (.3125, -.0625, 0, -.0625)))
    yield "ANSI36", "大理石、板岩、玻璃", lines(45, .125, (0, 0), (.3125, -.0625, 0, -.0625), .21875)
    yield "ANSI37", "铅、锌、镁、隔热材料", lines(45, .125) + lines(135, .125)
    yield "ANSI38", "铝", lines(45, .125) + lines(135, .125, (0, 0), (.3125, -.1875), .25)


def plain():
    yield "LINE", "平行水平线", lines(0, .125)
    yield "NET", "水平/垂直网格", lines(0, .125) + lines(90, .125)
    yield "NET3", "0-60-120 网格", lines(0, .125) + lines(60, .125) + lines(120, .125)
    yield "DASH", "虚线", lines(0, .125, (0, 0), (.125, -.125), .125)
    yield "DOTS", "点阵", lines(0, .0625, (0, 0), (0, -.0625), .03125)
    yield "ANGLE", "角钢", (lines(0, .275, (0, 0), (.2, -.075)) + lines(90, .275, (0, 0), (.2, -.075)))
    yield "CROSS", "十字", (lines(0, .25, (0, 0), (.125, -.375), .25) +
                          lines(90, .25, (.0625, -.0625), (.125, -.375), .25))
    yield "STEEL", "钢", lines(45, .125) + lines(45, .125, (0, .0625))
    yield "BRASS", "黄铜", lines(0, .25) + lines(0, .25, (0, .125), (.125, -.0625))
    yield "SACNCR", "混凝土", lines(45, .09375) + lines(45, .09375, (.06629126, 0), (0, -.09375))
    yield "PLAST", "塑料", [f for i in range(3) for f in lines(0, .25, (0, i * .03125))]
    yield "PLASTI", "塑料", [f for y in (0, .03125, .0625, .15625) for f in lines(0, .25, (0, y))]
    yield "CLAY", "粘土", (lines(0, .1875) + lines(0, .1875, (0, .03125)) + lines(0, .1875, (0, .0625)) +
                         lines(0, .1875, (0, .125), (.1875, -.125)))
    yield "CORK", "软木", (lines(0, .125) + [f for i in range(3) for f in
                                          lines(135, .25, (.0625 + i * .03125, -.0625 - i * .03125),
                                                (math.sqrt(2) * .125, -math.sqrt(2) * .125), 0)])
    yield "FLEX", "软性材料", (lines(0, .25, (0, 0), (.25, -.25)) +
                           lines(45, math.sqrt(2) / 8, (.25, 0),
                                 (.0625, math.sqrt(2) * -.25 + .125, .0625, math.sqrt(2) * -.25),
                                 math.sqrt(2) / 8 * 3))
    yield "GRATE", "格栅", lines(0, .03125) + lines(90, .125)
    yield "TRANS", "传热材料", lines(0, .25) + lines(0, .25, (0, .125), (.125, -.125))
    yield "INSUL", "绝热材料", (lines(0, .375) + lines(0, .375, (0, .125), (.125, -.125)) +
                            lines(0, .375, (0, .25), (.125, -.125)))
    yield "MUDST", "泥沙岩", lines(0, .25, (0, 0), (.25, -.25, 0, -.25, 0, -.25), .5)
    yield "DOLMIT", "地壳岩层", lines(0, .25) + lines(45, math.sqrt(.5), (0, 0),
                                             (.25 * math.sqrt(2), -.75 * math.sqrt(2)), math.sqrt(.5))


def tilings():
    yield "BRICK", "砖墙", lattice((.5, 0), (.25, .25), figure([(0, 0), (.5, 0)]) + figure([(0, 0), (0, .25)]))
    yield "BRSTONE", "砖石", (lines(0, .33) + lines(90, .33, (.9, 0), (.33, -.33), .33) +
                           lines(90, .33, (.8, 0), (.33, -.33), .33) +
                           lines(0, .33, (.9, .055), (-.9, .1), .5) + lines(0, .33, (.9, .11), (-.9, .1), .5) +
                           lines(0, .33, (.9, .165), (-.9, .1), .5))
    yield "SQUARE", "小方块", lines(0, .125, (0, 0), (.125, -.125)) + lines(90, .125, (0, 0), (.125, -.125))
    yield "BOX", "方钢", square(1, figure([(0, 0), (.75, 0), (.75, .75), (0, .75)], True) +
                             figure([(.25, .25), (1, .25)]) + figure([(.25, .25), (.25, 1)]))
    yield "HEX", "六边形", lattice((.375, 0), (.1875, .375 * SQRT3 / 2), hexagon(.125 * SQRT3 / 2 * 2 / SQRT3))
    yield "HONEY", "蜂巢", lattice((.1875 * SQRT3, 0), (.09375 * SQRT3, .28125), honeycomb(.1875))
    yield "TRIANG", "等边三角形", lattice((.375, 0), (.1875, .1875 * SQRT3),
                                     figure([(0, 0), (.1875, 0), (.09375, .09375 * SQRT3)], True))
    yield "STARS", "六芒星", lattice((.25, 0), (.125, .125 * SQRT3),
                                 figure([(0, 0), (.125, 0), (.0625, .0625 * SQRT3)], True) +
                                 figure([(0, .0721688), (.125, .0721688), (.0625, .0721688 - .0625 * SQRT3)],
                                        True))
    yield "ZIGZAG", "楼梯效果", lattice((.125, .125), (.25, 0), figure([(0, 0), (.125, 0), (.125, .125)]))
    yield "HOUND", "犬牙交错网格", (lines(0, .0625, (0, 0), (1, -.5), .25) +
                              lines(90, -.0625, (0, 0), (1, -.5), .25))
    yield "ESCHER", "立方体", lattice((1, 0), (.5, SQRT3 / 2),
                                  figure([(0, 0), (.5, 0)]) + figure([(0, 0), (-.25, SQRT3 / 4)]) +
                                  figure([(0, 0), (-.25, -SQRT3 / 4)]) + figure([(.2, .2 * SQRT3), (.45, .2 * SQRT3)]) +
                                  figure([(.25, SQRT3 / 4), (0, SQRT3 / 2)]))
    yield "GRASS", "草地", lattice((1, 0), (.5, .5), [((0, 0), (0, .1875)), ((0, 0), (.125, .125)),
                                                   ((0, 0), (-.125, .125))])
    yield "SWAMP", "沼泽", lattice((1, 0), (.5, .5), [((-.1875, 0), (.375, 0)), ((0, 0), (0, .1875)),
                                                   ((.0625, 0), (.125, .125)), ((-.0625, 0), (-.125, .125)),
                                                   ((-.375, 0), (0, 0)), ((.375, 0), (0, 0))])
    yield "EARTH", "泥土", (square(.5, [((x, y), (.25, 0)) for x, y in ((0, 0), (0, .09375), (0, .1875))] +
                                [((x, y), (0, .25)) for x, y in ((.28125, .0), (.375, .0), (.46875, .0))] +
                                [((x, y), (0, .25)) for x, y in ((.03125, .25), (.125, .25), (.21875, .25))] +
                                [((.25, y), (.25, 0)) for y in (.28125, .375, .46875)]))
    yield "GRAVEL", "砾石", strokes(1, 16, ((1, 1, 3, 1), (4, 2, 1, 2), (5, 4, -2, 2), (3, 6, -2, -1), (1, 5, 0, -4),
                                         (7, 1, 4, 0), (11, 1, 2, 2), (13, 3, -1, 2), (12, 5, -4, 0), (8, 5, -1, -4),
                                         (2, 9, 3, -1), (5, 8, 2, 2), (7, 10, -1, 3), (6, 13, -4, 0), (2, 13, 0, -4),
                                         (9, 8, 3, 0), (12, 8, 2, 2), (14, 10, -1, 3), (13, 13, -3, 1),
                                         (10, 14, -2, -2), (8, 12, 1, -4), (14, 5, 1, 2), (15, 7, -1, 1)))


def hexagon(side):
    points = [(side * math.cos(math.radians(60 * i)) + .1875, side * math.sin(math.radians(60 * i)) + .1)
              for i in range(6)]
    return figure(points, True)


def honeycomb(side):
    """Three sides of a hexagon standing on a corner; the lattice makes the others."""
    return [((0, 0), (0, side)), ((0, 0), (side * SQRT3 / 2, -side / 2)), ((0, 0), (-side * SQRT3 / 2, -side / 2))]


def architecture():
    def bricks(width, height):
        return lattice((width, 0), (width / 2, height), figure([(0, 0), (width, 0)]) + figure([(0, 0), (0, height)]))

    def mortar(width, height, joint):
        return lattice((width, 0), (width / 2, height),
                       figure([(0, 0), (width - joint, 0), (width - joint, height - joint), (0, height - joint)], True))

    yield "AR-B816", "8x16 块砖顺砌", bricks(16, 8)
    yield "AR-B816C", "8x16 块砖顺砌, 灰缝", mortar(16, 8, .375)
    yield "AR-B88", "8x8 块砖顺砌", bricks(8, 8)
    yield "AR-BRELM", "标准砖块英式砌法, 灰缝", (
        lattice((8, 0), (0, 5.334), figure([(0, 0), (7.625, 0), (7.625, 2.25), (0, 2.25)], True)) +
        lattice((4, 0), (0, 5.334), figure([(2, 2.667), (5.625, 2.667), (5.625, 4.917), (2, 4.917)], True)))
    yield "AR-BRSTD", "标准砖块顺砌", bricks(8, 2.667)
    yield "AR-HBONE", "标准人字形砖块", rotated(lattice((4, 4), (8, -8), figure([(0, 0), (12, 0)]) +
                                                 figure([(0, 0), (0, 12)])), 45)
    yield "AR-PARQ1", "2x12 镶木地板", square(24, [((0, 2 * i), (12, 0)) for i in range(7)] +
                                         [((12, 12 + 2 * i), (12, 0)) for i in range(7)] +
                                         [((12 + 2 * i, 0), (0, 12)) for i in range(7)] +
                                         [((2 * i, 12), (0, 12)) for i in range(7)])
    yield "AR-RROOF", "屋顶瓦", (lines(0, 1, (0, 0), (15, -2, 5, -1), 2.2) +
                              lines(0, 1.33, (1.33, .5), (3, -.33, 6, -.75), -1) +
                              lines(0, .67, (.5, .85), (8, -1.4, 2, -1), 5.2))
    yield "AR-RSHKE", "屋顶木瓦", (lines(0, 12, (0, 0), (6, -5, 7, -3, 9, -4), 25.5) +
                               lines(0, 12, (6, .5), (5, -29), 25.5) + lines(0, 12, (18, -.75), (3, -31), 25.5) +
                               [f for x in (0, 6, 11, 18, 21, 30) for f in lattice((34, 0), (8.5, 12),
                                                                                  [((x, 0), (0, 11.25))])])
    yield "AR-SAND", "沙", scaled(strokes(1, 12, tuple((x, y, 0, 0) for x, y in (
        (1, 1), (5, 2), (9, 1), (3, 4), (7, 5), (11, 4), (0, 7), (4, 8), (8, 9), (10, 7), (2, 10), (6, 11), (11, 11),
        (1, 5), (8, 3), (5, 6)))), 2)
    yield "AR-CONC", "混凝土", (scaled(strokes(1, 12, ((1, 2, 1, 1), (2, 3, 1, -1), (3, 2, -2, 0), (7, 8, 1, 1),
                                                     (8, 9, 0, -1), (8, 8, -1, 0), (9, 3, 1, 0), (10, 3, -1, 1),
                                                     (9, 4, 0, -1), (3, 9, 1, 0), (4, 9, -1, 1), (3, 10, 0, -1))), 12) +
                             scaled(strokes(1, 12, tuple((x, y, 0, 0) for x, y in (
                                 (0, 0), (5, 1), (4, 6), (10, 10), (6, 4), (1, 7), (11, 6), (6, 11)))), 12))


def rotated(families, angle):
    turn = math.radians(angle)
    c, s = math.cos(turn), math.sin(turn)
    return [Family(f.angle + angle, f.across, (f.base[0] * c - f.base[1] * s, f.base[0] * s + f.base[1] * c),
                   f.dashes, f.along) for f in families]


# ISO 128 line patterns for a pen of 1 mm, lines 5 mm apart, in millimetres in both files.
ISO = (
    ("02", "虚线", (12, -3)),
    ("03", "间隔虚线", (12, -18)),
    ("04", "长点划线", (24, -3, .5, -3)),
    ("05", "长双点划线", (24, -3, .5, -3, .5, -3)),
    ("06", "长三点划线", (24, -3, .5, -3, .5, -3, .5, -3)),
    ("07", "点线", (.5, -3)),
    ("08", "长短划线", (24, -3, 6, -3)),
    ("09", "长双短划线", (24, -3, 6, -3, 6, -3)),
    ("10", "点划线", (12, -3, .5, -3)),
    ("11", "双划单点线", (12, -3, 12, -3, .5, -3)),
    ("12", "双点划线", (12, -3, .5, -3, .5, -3)),
    ("13", "双划双点线", (12, -3, 12, -3, .5, -3, .5, -3)),
    ("14", "三点划线", (12, -3, .5, -3, .5, -3, .5, -3)),
    ("15", "双划三点线", (12, -3, 12, -3, .5, -3, .5, -3, .5, -3)),
)


def definition(name, told, families, scale):
    return f"*{name}, {told}\n" + "".join(family.text(scale) + "\n" for family in families)


def text(unit, scale):
    yield f";; 标准填充图案，长度单位：{unit}。\n;; 由 make_patterns.py 生成。\n\n"
    yield definition("SOLID", "实体填充", lines(45, .125), scale)
    for source in (ansi, plain, tilings, architecture):
        for name, told, families in source():
            yield definition(name, told, families, scale)
    for number_, told, pattern in ISO:
        yield definition(f"ACAD_ISO{number_}W100", f"ISO {told}", lines(0, 5, (0, 0), pattern), 1)


def main():
    folder = pathlib.Path(__file__).parent
    for name, unit, scale in (("acad.pat", "英寸", 1), ("acadiso.pat", "毫米", MILLIMETRES)):
        (folder / name).write_text("".join(text(unit, scale)), encoding="utf-8")


if __name__ == "__main__":
    main()
