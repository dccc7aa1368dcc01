#!/usr/bin/env python3
"""Makes old-r12.dxf: a small drawing as programs of the early nineties wrote them on Chinese systems - release 12,
GBK bytes, no handles, no subclass markers, no objects. Run by hand; the result is kept beside this script."""

import pathlib

LAYERS = (("0", 7, "CONTINUOUS"), ("道路", 1, "CONTINUOUS"), ("围墙", 3, "DASHED"), ("注记", 2, "CONTINUOUS"))
LINETYPES = (("CONTINUOUS", "实线", ()), ("DASHED", "虚线 __ __ __", (12.7, -6.35)))
STYLES = (("STANDARD", "txt", ""), ("汉字", "txt", "hztxt"))


def table(name, records):
    groups = [(0, "TABLE"), (2, name), (70, len(records))]
    for record in records:
        groups += [(0, name), *record]
    return groups + [(0, "ENDTAB")]


def at(x, y, z=0.0, code=10):
    return [(code, x), (code + 10, y), (code + 20, z)]


def polyline(layer, vertices, closed=0):
    """Vertices are (x, y, bulge)."""
    groups = [(0, "POLYLINE"), (8, layer), (66, 1), *at(0.0, 0.0), (70, closed)]
    for x, y, bulge in vertices:
        groups += [(0, "VERTEX"), (8, layer), *at(x, y)] + ([(42, bulge)] if bulge else [])
    return groups + [(0, "SEQEND"), (8, layer)]


def text(layer, value, x, y, height, style="汉字", rotation=0.0):
    return [(0, "TEXT"), (8, layer), *at(x, y), (40, height), (1, value), (50, rotation), (7, style)]


def groups():
    yield from [(0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1009"), (9, "$DWGCODEPAGE"), (3, "ANSI_936"),
                (9, "$LTSCALE"), (40, 0.2), (9, "$EXTMIN"), *at(0.0, 0.0), (9, "$EXTMAX"), *at(120.0, 80.0),
                (0, "ENDSEC")]
    yield from [(0, "SECTION"), (2, "TABLES")]
    yield from table("LTYPE", [[(2, name), (70, 0), (3, told), (72, 65), (73, len(dashes)),
                                (40, float(sum(map(abs, dashes)))), *[(49, dash) for dash in dashes]]
                               for name, told, dashes in LINETYPES])
    yield from table("LAYER", [[(2, name), (70, 0), (62, colour), (6, linetype)] for name, colour, linetype in LAYERS])
    yield from table("STYLE", [[(2, name), (70, 0), (40, 0.0), (41, 1.0), (50, 0.0), (71, 0), (42, 2.5), (3, font),
                                (4, big)] for name, font, big in STYLES])
    yield from [(0, "ENDSEC"), (0, "SECTION"), (2, "BLOCKS")]
    yield from [(0, "BLOCK"), (8, "0"), (2, "电杆"), (70, 2), *at(0.0, 0.0), (3, "电杆"),
                (0, "CIRCLE"), (8, "0"), *at(0.0, 0.0), (40, 1.0),
                (0, "ATTDEF"), (8, "0"), *at(2.0, 0.0), (40, 2.5), (1, ""), (3, "杆号"), (2, "NO"), (70, 0),
                (7, "汉字"), (0, "ENDBLK"), (8, "0")]
    yield from [(0, "ENDSEC"), (0, "SECTION"), (2, "ENTITIES")]
    yield from polyline("围墙", [(10.0, 10.0, 0.0), (70.0, 10.0, 0.0), (70.0, 50.0, 0.0), (10.0, 50.0, 0.0)], 1)
    yield from polyline("道路", [(0.0, 60.0, 0.0), (60.0, 60.0, 0.2), (110.0, 75.0, 0.0)])
    yield from polyline("道路", [(0.0, 66.0, 0.0), (60.0, 66.0, 0.2), (108.0, 80.0, 0.0)])
    yield from [(0, "LINE"), (8, "0"), *at(90.0, 0.0), *at(90.0, 60.0, code=11)]
    yield from [(0, "SOLID"), (8, "0"), *at(30.0, 20.0), *at(50.0, 20.0, code=11), *at(30.0, 40.0, code=12),
                *at(50.0, 40.0, code=13)]
    yield from text("注记", "柳林小学", 14.0, 42.0, 4.0)
    yield from text("道路", "至青石镇", 4.0, 61.5, 3.0)
    yield from text("注记", "%%c300 砖3", 32.0, 44.0, 2.5)
    for number, y in (("1号杆", 5.0), ("2号杆", 55.0)):
        yield from [(0, "INSERT"), (8, "0"), (66, 1), (2, "电杆"), *at(90.0, y),
                    (0, "ATTRIB"), (8, "0"), *at(92.0, y), (40, 2.5), (1, number), (2, "NO"), (70, 0), (7, "汉字"),
                    (0, "SEQEND"), (8, "0")]
    yield from [(0, "ENDSEC"), (0, "EOF")]


def main():
    lines = "".join(f"{code:>3}\r\n{value}\r\n" for code, value in groups())
    pathlib.Path(__file__).with_name("old-r12.dxf").write_bytes(lines.encode("gbk"))


if __name__ == "__main__":
    main()
