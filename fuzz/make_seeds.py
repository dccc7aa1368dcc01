#!/usr/bin/env python3
"""Writes small files for the fuzz targets to start from: make_seeds.py FOLDER makes a folder in it for each target."""

import pathlib
import re
import struct
import sys

SENTINEL = b"AutoCAD Binary DXF\r\n\x1a\x00"


def text(groups):
    return "".join(f"{code:3}\n{value}\n" for code, value in groups).encode("utf-8")


def binary(groups, wide=True):
    """The same groups as a binary file: codes of two bytes, or of one as before release 13."""
    out = bytearray(SENTINEL)
    for code, value in groups:
        if wide:
            out += struct.pack("<h", code)
        else:
            out += bytes([code]) if code < 255 else b"\xff" + struct.pack("<h", code)
        if 10 <= code < 60 or 110 <= code < 150 or 210 <= code < 240 or 1010 <= code < 1060:
            out += struct.pack("<d", float(value))
        elif 60 <= code < 80 or 170 <= code < 180 or 270 <= code < 290 or 370 <= code < 390 or 1060 <= code < 1071:
            out += struct.pack("<h", int(value))
        elif 290 <= code < 300:
            out += struct.pack("<B", int(value))
        elif 90 <= code < 100 or 420 <= code < 430 or code == 1071:
            out += struct.pack("<i", int(value))
        elif 160 <= code < 170:
            out += struct.pack("<q", int(value))
        elif 310 <= code < 320 or code == 1004:
            data = bytes.fromhex(value)
            out += bytes([len(data)]) + data
        else:
            out += str(value).encode("utf-8") + b"\0"
    return bytes(out)


def section(name, groups):
    return [(0, "SECTION"), (2, name), *groups, (0, "ENDSEC")]


def header(version, *more):
    return section("HEADER", [(9, "$ACADVER"), (1, version), *more])


def entity(kind, handle, *groups):
    return [(0, kind), (5, f"{handle:X}"), (330, "1F"), (100, "AcDbEntity"), (8, "墙"), *groups]


POINT = [(10, 1), (20, 2), (30, 0)]

ENTITIES = [
    *entity("LINE", 0x30, (62, 1), (100, "AcDbLine"), *POINT, (11, 3), (21, 4), (31, 0)),
    *entity("LWPOLYLINE", 0x31, (420, 16711680), (100, "AcDbPolyline"), (90, 3), (70, 1), (43, 0.5), (10, 0), (20, 0), (42, 0.5),
            (10, 5), (20, 0), (40, 1), (41, 2), (10, 5), (20, 5)),
    *entity("TEXT", 0x32, (100, "AcDbText"), *POINT, (40, 2.5), (1, "砖%%d^J\\U+56F4"), (50, 30), (72, 1), (11, 1), (21, 1), (31, 0),
            (100, "AcDbText"), (73, 2)),
    *entity("CIRCLE", 0x33, (48, 2), (100, "AcDbCircle"), *POINT, (40, 2), (210, 0), (220, 1), (230, 0)),
    *entity("ARC", 0x34, (100, "AcDbCircle"), *POINT, (40, 2), (100, "AcDbArc"), (50, 10), (51, 350)),
    *entity("POINT", 0x35, (100, "AcDbPoint"), *POINT, (50, 45)),
    *entity("INSERT", 0x36, (100, "AcDbBlockReference"), (66, 1), (2, "杆"), *POINT, (41, 2), (50, 30)),
    *entity("ATTRIB", 0x37, (100, "AcDbText"), *POINT, (40, 2), (1, "N1"), (100, "AcDbAttribute"), (280, 0), (2, "号"), (70, 0)),
    *entity("SEQEND", 0x38),
    *entity("POLYLINE", 0x39, (100, "AcDb2dPolyline"), (66, 1), *POINT, (70, 1)),
    *entity("VERTEX", 0x3A, (100, "AcDbVertex"), (100, "AcDb2dVertex"), *POINT, (42, 1)),
    *entity("VERTEX", 0x3B, (100, "AcDbVertex"), (100, "AcDb2dVertex"), (10, 9), (20, 9), (30, 0)),
    *entity("SEQEND", 0x3C),
    *entity("HATCH", 0x3D, (100, "AcDbHatch"), (10, 0), (20, 0), (30, 0), (210, 0), (220, 0), (230, 1), (2, "SOLID"), (70, 1), (71, 0), (91, 1),
            (92, 7), (72, 1), (73, 1), (93, 3), (10, 0), (20, 0), (42, 0), (10, 4), (20, 0), (42, 1), (10, 4), (20, 4), (42, 0), (97, 0),
            (75, 0), (76, 1), (98, 1), (10, 1), (20, 1)),
    *entity("MTEXT", 0x3E, (100, "AcDbMText"), *POINT, (40, 2.5), (41, 50), (71, 1), (72, 1), (3, "长"), (1, "{\\fArial|b1;x}\\P^I y"), (7, "Standard"),
            (1001, "ACAD"), (1000, "x"), (1005, "30"), (1010, 1), (1020, 2), (1030, 3), (1071, 7)),
    *entity("ELLIPSE", 0x3F, (100, "AcDbEllipse"), *POINT, (11, 5), (21, 0), (31, 0), (210, 0), (220, 0), (230, 1), (40, 0.5), (41, 0), (42, 6.28)),
    *entity("SPLINE", 0x40, (100, "AcDbSpline"), (70, 8), (71, 3), (72, 8), (73, 4), (74, 0), *[(40, k) for k in (0, 0, 0, 0, 1, 1, 1, 1)],
            *[group for i in range(4) for group in ((10, i), (20, i * i), (30, 0))]),
    *entity("SOLID", 0x41, (100, "AcDbTrace"), *POINT, (11, 2), (21, 0), (31, 0), (12, 0), (22, 2), (32, 0), (13, 2), (23, 2), (33, 0)),
    *entity("DIMENSION", 0x42, (100, "AcDbDimension"), (2, "*D1"), *POINT, (70, 32), (3, "Standard"), (100, "AcDbAlignedDimension"), (13, 0), (23, 0),
            (33, 0), (14, 5), (24, 0), (34, 0), (100, "AcDbRotatedDimension")),
    *entity("LEADER", 0x43, (100, "AcDbLeader"), (3, "Standard"), (71, 1), (72, 0), (73, 3), (76, 2), *POINT, (10, 5), (20, 5), (30, 0)),
    *entity("ACAD_PROXY_ENTITY", 0x44, (100, "AcDbProxyEntity"), (90, 498), (91, 500), (92, 12), (310, "0C0000000000000000000000"), (93, 16),
            (310, "A5F8"), (330, "30"), (94, 0), (95, 21), (70, 0)),
    *entity("THING", 0x45, (100, "AcDbThing"), (1, "x"), (102, "{A"), (330, "30"), (102, "}"), (160, 12), (101, "Embedded Object"), (70, 1)),
]

BLOCK_RECORDS = [group for handle, name in (("1F", "*Model_Space"), ("1B", "*Paper_Space"), ("50", "杆"), ("51", "*D1"))
                 for group in ((0, "BLOCK_RECORD"), (5, handle), (330, "1"), (100, "AcDbSymbolTableRecord"), (100, "AcDbBlockTableRecord"),
                               (2, name), (340, "0"))]

TABLES = section("TABLES", [
    (0, "TABLE"), (2, "LTYPE"), (5, "5"), (330, "0"), (100, "AcDbSymbolTable"), (70, 1),
    (0, "LTYPE"), (5, "60"), (330, "5"), (100, "AcDbSymbolTableRecord"), (100, "AcDbLinetypeTableRecord"), (2, "虚线"), (70, 0), (3, "__ __"),
    (72, 65), (73, 2), (40, 3), (49, 2), (74, 2), (75, 0), (340, "62"), (46, 1), (50, 0), (44, 0), (45, 0), (9, "墙"), (49, -1), (74, 0), (0, "ENDTAB"),
    (0, "TABLE"), (2, "LAYER"), (5, "2"), (330, "0"), (100, "AcDbSymbolTable"), (70, 1),
    (0, "LAYER"), (5, "61"), (330, "2"), (100, "AcDbSymbolTableRecord"), (100, "AcDbLayerTableRecord"), (2, "墙"), (70, 4), (62, -3), (6, "虚线"),
    (370, 25), (0, "ENDTAB"),
    (0, "TABLE"), (2, "STYLE"), (5, "3"), (330, "0"), (100, "AcDbSymbolTable"), (70, 1),
    (0, "STYLE"), (5, "62"), (330, "3"), (100, "AcDbSymbolTableRecord"), (100, "AcDbTextStyleTableRecord"), (2, "Standard"), (70, 0), (40, 0), (41, 1),
    (50, 0), (71, 0), (42, 2.5), (3, "txt"), (4, "hztxt"), (0, "ENDTAB"),
    (0, "TABLE"), (2, "BLOCK_RECORD"), (5, "1"), (330, "0"), (100, "AcDbSymbolTable"), (70, 4), *BLOCK_RECORDS, (0, "ENDTAB"),
])

BLOCKS = section("BLOCKS", [group for owner, name in (("1F", "*Model_Space"), ("50", "杆"), ("51", "*D1"))
                            for group in ((0, "BLOCK"), (330, owner), (100, "AcDbEntity"), (8, "0"), (100, "AcDbBlockBegin"), (2, name), (70, 0),
                                          *POINT, (3, name), (1, ""), (0, "ATTDEF"), (330, owner), (100, "AcDbEntity"), (8, "0"), (100, "AcDbText"),
                                          *POINT, (40, 1), (1, "a"), (100, "AcDbAttributeDefinition"), (3, "编号"), (2, "号"), (70, 8),
                                          (0, "ENDBLK"), (330, owner), (100, "AcDbEntity"), (8, "0"), (100, "AcDbBlockEnd"))])

CLASSES = section("CLASSES", [(0, "CLASS"), (1, "THING"), (2, "AcDbThing"), (3, "App"), (90, 1), (91, 1), (280, 0), (281, 1)])

OBJECTS = section("OBJECTS", [
    (0, "DICTIONARY"), (5, "C"), (330, "0"), (100, "AcDbDictionary"), (281, 1), (3, "ACAD_GROUP"), (350, "D"), (3, "X"), (350, "70"), (3, "S"), (350, "71"),
    (0, "DICTIONARY"), (5, "D"), (330, "C"), (100, "AcDbDictionary"), (281, 1), (3, "G"), (350, "72"),
    (0, "XRECORD"), (5, "70"), (102, "{ACAD_REACTORS"), (330, "C"), (102, "}"), (330, "C"), (100, "AcDbXrecord"), (280, 1), (1, "x"), (10, 1), (20, 2),
    (290, 1), (310, "00FF"), (330, "30"), (1071, 5),
    (0, "VISUALSTYLE"), (5, "71"), (330, "C"), (100, "AcDbVisualStyle"), (2, "s"), (70, 1), (177, 3),
    (0, "GROUP"), (5, "72"), (330, "D"), (100, "AcDbGroup"), (300, ""), (70, 0), (71, 1), (340, "30"), (340, "33"),
])

END = [(0, "EOF")]


def old(groups):
    """Without what release 12 does not have."""
    return [(code, value) for code, value in groups if code not in (100, 330) and code < 255]


def drawings():
    seed = (9, "$HANDSEED"), (5, "100")
    whole = [*header("AC1032", *seed, (9, "$LTSCALE"), (40, 2), (9, "$CLAYER"), (8, "墙"), (9, "$NEW"), (70, 1)), *CLASSES, *TABLES, *BLOCKS,
             *section("ENTITIES", ENTITIES), *OBJECTS, *section("OTHER", [(0, "THING"), (310, "FF")]), *END]
    yield "whole", text(whole)
    yield "whole-binary", binary(whole)
    page = [*header("AC1015", (9, "$DWGCODEPAGE"), (3, "ANSI_936"), *seed), *TABLES, *BLOCKS, *section("ENTITIES", ENTITIES), *OBJECTS, *END]
    yield "page", text(page).decode("utf-8").encode("gbk")
    simple = [*header("AC1009"), *section("ENTITIES", old(ENTITIES)), *END]
    yield "old", text(simple)
    yield "old-binary", binary(simple, wide=False)
    yield "late-tables", text([*section("ENTITIES", ENTITIES), *TABLES, *END])
    yield "least", text([*section("ENTITIES", []), *END])
    for start in range(len(ENTITIES)):
        if ENTITIES[start][0] == 0:
            end = next((at for at in range(start + 1, len(ENTITIES)) if ENTITIES[at][0] == 0), len(ENTITIES))
            if ENTITIES[start][1] not in ("VERTEX", "SEQEND", "ATTRIB"):
                yield f"one-{ENTITIES[start][1].lower()}", text([*header("AC1032"), *section("ENTITIES", ENTITIES[start:end]), *END])


def linetypes():
    yield "plain", "*墙,____ . ____\nA,.5,-.25,0,-.25\n*B\nA, 1 ,-2\n".encode("utf-8")
    yield "insets", ('*栅,x\nA,1,-.2,["栅",STANDARD,S=.1,R=0.0,X=-0.1,Y=-.05],-.25\n;c\n'
                     "*圈,o\nA,.25,-.1,[CIRC1,ltypeshp.shx,x=-.1,s=.1,a=90d],-.1,1\n").encode("gbk")
    yield "wide", "\ufeff*C,\nA,1,-1,\\\n2\nA,\n*D\n".encode("utf-16-le")


def patterns():
    yield "plain", "*砖墙,砖\n0, 0,0, 0,.25\n90, 0,0, 0,.25, .25,-.25\n*点\n45,.1,.2,.5,-1,0,-.5,\n;c\n".encode("utf-8")
    yield "page", "*墙,面\n-30,0,0,1e3,-1,0\n*\n*空\n*坏\n1,2,3,4\n".encode("gbk")
    yield "wide", "\ufeff*C,\n0,0,0,0,1\n".encode("utf-16-le")


def programs():
    for number, program in enumerate((
            "(defun c:t (a / b) (setq b (cons a (list 1 2.5 \"杆\\n\\101\" 'x '(1 . 2)))) (foreach e b (princ e)) b)\n(c:t 3)",
            "(setq f (lambda (n) (if (< n 2) 1 (* n (f (1- n)))))) (f 9) (mapcar '+ '(1 2) '(3 4)) (apply 'max '(1 2 3))",
            "(defun *error* (m) (princ m)) (repeat 3 (setq a (append a '(1)))) (/ 1 0)",
            "(vl-catch-all-apply '(lambda () (nth -1 '(1)))) ;| c |; (cond ((= 1 2) 3) (t (strcat \"a\" (itoa 5) (rtos 1.5 2 3))))",
            "(while (< (setq i (if i (1+ i) 0)) 5) (setq s (substr (strcase \"abc\") 1 i))) (vl-sort '(3 1 2) '<) (assoc 1 '((1 . 2)))",
            "(setq l (vl-string->list \"abc\")) (vl-list->string (reverse l)) (subst 1 2 '(2 3)) (member 2 l) (read \"(a . b)\") (eval '(+ 1 2))",
            "(polar '(0 0) (angtof \"45\") 2.0) (distance '(0 0 1) '(1 1)) (inters '(0 0) '(1 1) '(0 1) '(1 0)) (wcmatch \"abc\" \"a*,~b\")",
            "(logand 6 3) (lsh 1 31) (gcd 12 18) (rem 7.5 2) (fix -2.7) (atan 1 0) (expt 2 10) (boole 6 5 3) (~ 5) (vl-remove-if 'numberp '(1 a))",
            "(read \"(\") )", "'(1 . 2 3)", "\"\\U+4E2D\\")):
        yield str(number), program.encode("utf-8")


def function_names():
    """The functions that the manual lists, as the fuzzer's dictionary."""
    manual = (pathlib.Path(__file__).parent.parent / "docs" / "lisp.md").read_text(encoding="utf-8")
    code = " ".join(re.findall(r"`([^`]*)`", manual[manual.index("## Functions"):]))
    names = sorted({name for name in code.split() if re.fullmatch(r"[-a-z0-9*/+<>=~]+", name)})
    return "".join(f'"({name} "\n' for name in names)


def shapes():
    drawing = b"\x01\x14\x08\x05\xfb\x02\x09\x01\x01\x00\x00\x05\x0a\x02\x10\x0b\x01\x02\x00\x05\x32\x06\x0c\x04\x04\x40\x03\x02\x0d\x01\x01\x20\x00\x00\x04\x02\x0e\x18\x00"

    def word(value):
        return struct.pack("<H", value)

    def named(data):
        return b"N\0" + data
    entries = [(0, b"\x08\x02\x00\x00"), (65, drawing), (66, b"\x07\x41\x00")]
    yield "shapes", (b"AutoCAD-86 shapes V1.0\r\n\x1a" + word(0) + word(66) + word(len(entries)) +
                     b"".join(word(code) + word(len(named(data))) for code, data in entries) + b"".join(named(data) for _, data in entries) + b"EOF")
    info = named(b"\x08\x02\x00\x00\x00\x00")
    yield "unicode", (b"AutoCAD-86 unifont 1.0\r\n\x1a" + word(3) + word(len(info)) + info +
                      b"".join(word(code) + word(len(data) + 1) + b"\0" + data for code, data in entries[1:]))
    big = [(0, b"\x08\x02\x00\x00"), (0xB0A1, drawing), (0x41, b"\x07\x00\xb0\xa1\x00\x00\x08\x08\x00")]
    head = b"AutoCAD-86 bigfont 1.0\r\n\x1a" + word(8) + word(len(big)) + word(1) + word(0x81) + word(0xFE)
    offset, index, data = len(head) + 8 * len(big), b"", b""
    for code, one in big:
        index += word(code) + word(len(named(one))) + struct.pack("<I", offset + len(data))
        data += named(one)
    yield "big", head + index + data


def main():
    if len(sys.argv) != 2:
        sys.exit("用法: make_seeds.py 文件夹")
    for kind, files in (("dxf", drawings()), ("lin", linetypes()), ("pat", patterns()), ("lisp", programs()),
                        ("shx", shapes())):
        folder = pathlib.Path(sys.argv[1]) / kind
        folder.mkdir(parents=True, exist_ok=True)
        for name, content in files:
            (folder / f"{name}.{kind}").write_bytes(content)
    (pathlib.Path(sys.argv[1]) / "lisp.dict").write_text(function_names(), encoding="utf-8")


if __name__ == "__main__":
    main()
