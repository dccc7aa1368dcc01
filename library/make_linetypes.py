#!/usr/bin/env python3
"""Makes acad.lin (inches) and acadiso.lin (millimetres) from one table of the usual standard linetypes.

Dash lengths are positive, gaps negative, a dot is zero. Run by hand; the results are kept beside this script.
"""

import pathlib

MILLIMETRES = 25.4

# name, Chinese name, pattern in inches; each is also made at half and at double size.
FAMILIES = (
    ("BORDER", "边界线", (.5, -.25, .5, -.25, 0, -.25)),
    ("CENTER", "中心线", (1.25, -.25, .25, -.25)),
    ("DASHDOT", "点划线", (.5, -.25, 0, -.25)),
    ("DASHED", "虚线", (.5, -.25)),
    ("DIVIDE", "双点划线", (.5, -.25, 0, -.25, 0, -.25)),
    ("DOT", "点线", (0, -.25)),
    ("HIDDEN", "隐藏线", (.25, -.125)),
    ("PHANTOM", "假想线", (1.25, -.25, .25, -.25, .25, -.25)),
)
SIZES = (("", "", 1), ("2", "（半倍）", .5), ("X2", "（两倍）", 2))
# The short centre line keeps a longer first dash than half of the full one.
EXCEPTIONS = {"CENTER2": (.75, -.125, .125, -.125)}

# ISO 128 patterns for a pen of 1 mm, in millimetres in both files.
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

# Patterns with a shape or a text in a gap; a shape is (name, parameters), a text ("text", parameters).
# All lengths and parameters except r and u (degrees) are inches.
COMPLEX = (
    ("FENCELINE1", "圆形栅栏 ----0-----0----0-----0----", (
        .25, -.1, ("CIRC1", {"x": -.1, "s": .1}), -.1, 1)),
    ("FENCELINE2", "方形栅栏 ----[]-----[]----[]-----[]--", (
        .25, -.1, ("BOX", {"x": -.1, "s": .1}), -.1, 1)),
    ("TRACKS", "轨道 -|-|-|-|-|-|-|-|-|-|-|-", (
        .15, ("TRACK1", {"s": .25}), .15)),
    ("BATTING", "保温层 SSSSSSSSSSSSSSSSSSSSSSS", (
        .0001, -.1, ("BAT", {"x": -.1, "s": .1}), -.2, ("BAT", {"r": 180, "x": .1, "s": .1}), -.1)),
    ("HOT_WATER_SUPPLY", "热水管 ---- HW ---- HW ---- HW ----", (
        .5, -.2, ('"HW"', {"s": .1, "u": 0, "x": -.1, "y": -.05}), -.2)),
    ("GAS_LINE", "煤气管 ----GAS----GAS----GAS----", (
        .5, -.2, ('"GAS"', {"s": .1, "u": 0, "x": -.1, "y": -.05}), -.25)),
    ("ZIGZAG", "锯齿线 /\\/\\/\\/\\/\\/\\/\\/\\", (
        .0001, -.2, ("ZIG", {"x": -.2, "s": .2}), -.4, ("ZIG", {"r": 180, "x": .2, "s": .2}), -.2)),
)


def number(value):
    text = f"{value:.6f}".rstrip("0").rstrip(".")
    return "0" if text in ("", "-0") else text


def art(pattern, width=36):
    """The pattern in characters, one underscore for about every half of the shortest dash."""
    dashes = [length for length in pattern if length > 0]
    step = min(dashes, default=1) / (1 if len(set(dashes)) > 1 else 2)
    once = "".join("." if length == 0 or (length > 0 and length < max(dashes) / 10)
                   else " " if length < 0 else "_" * max(1, min(8, round(length / step))) for length in pattern)
    return (once * (width // len(once) + 1))[:width].rstrip()


def simple(name, told, pattern, scale):
    return f"*{name},{told} {art(pattern)}\nA,{','.join(number(length * scale) for length in pattern)}\n"


def complex_element(element, scale):
    if not isinstance(element, tuple):
        return number(element * scale)
    name, parameters = element
    font = "STANDARD" if name.startswith('"') else "ltypeshp.shx"
    told = [f"{key}={number(value if key in 'ru' else value * scale)}" for key, value in parameters.items()]
    return f"[{','.join([name, font, *told])}]"


def lines(unit, scale):
    yield f";; 标准线型，长度单位：{unit}。\n;; 由 make_linetypes.py 生成。\n"
    for base, told, pattern in FAMILIES:
        yield "\n"
        for suffix, size, factor in SIZES:
            name = base + suffix
            yield simple(name, told + size, EXCEPTIONS.get(name, [length * factor for length in pattern]), scale)
    yield "\n;; ISO 128 线型，按 1 mm 笔宽定义，长度单位：毫米；其他笔宽用线型比例缩放。\n"
    for number_, told, pattern in ISO:
        yield simple(f"ACAD_ISO{number_}W100", "ISO " + told, pattern, 1)
    yield "\n;; 带形或文字的线型。\n"
    for name, told, pattern in COMPLEX:
        yield f"*{name},{told}\nA,{','.join(complex_element(element, scale) for element in pattern)}\n"


def main():
    folder = pathlib.Path(__file__).parent
    for name, unit, scale in (("acad.lin", "英寸", 1), ("acadiso.lin", "毫米", MILLIMETRES)):
        (folder / name).write_text("".join(lines(unit, scale)), encoding="utf-8")


if __name__ == "__main__":
    main()
