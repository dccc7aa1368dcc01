#!/usr/bin/env python3
"""Draws samples before (left) and after (right) each text command, and texts in every direction, as docs/text.png.

    library/make_text_sheet.py build/dev/bin/qdvhost docs/text.png
"""
import math
import subprocess
import sys
import tempfile

WIDTH, HEIGHT, GAP = 120.0, 44.0, 8.0
STYLES = [("宋", "", "", 0, "Noto Serif CJK SC"), ("黑", "", "", 0, "Noto Sans CJK SC"),
          ("倒黑", "", "", 0, "@Noto Sans CJK SC"), ("长仿", "gbeitc.shx", "gbcbig.shx", 0, ""),
          ("罗马", "romans.shx", "gbcbig.shx", 0, ""), ("竖", "romans.shx", "gbcbig.shx", 4, "")]


def style(name, font, big_font, flags, face):
    data = f'(list -3 (list "ACAD" (cons 1000 "{face}") (cons 1071 34)))' if face else ""
    return ("(entmake (list '(0 . \"STYLE\") '(100 . \"AcDbSymbolTableRecord\") '(100 . \"AcDbTextStyleTableRecord\")"
            f" '(2 . \"{name}\") '(70 . {flags}) '(41 . 1.0) '(3 . \"{font}\") '(4 . \"{big_font}\") {data}))")


def text(content, x, y, height=5.0, style_name="长仿", degrees=0.0, horizontal=0):
    """At a place within a cell."""
    def at(left, bottom):
        place = f"{left + x} {bottom + y} 0.0"
        return (f"(entmake (list '(0 . \"TEXT\") '(10 {place}) '(40 . {height}) '(50 . {math.radians(degrees)})"
                f" '(7 . \"{style_name}\") '(1 . \"{content}\") '(72 . {horizontal}) '(11 {place})))")
    return at


def lines(*answers):
    return lambda left, bottom: "\n".join(answer(left, bottom) if callable(answer) else answer
                                          for answer in answers)


def point(x, y):
    return lambda left, bottom: f"{left + x},{bottom + y}"


WHOLE = lines("W", point(1, 1), point(WIDTH - 1, HEIGHT - 1), "")
MIXED = [text("ABC中文DEF", 10, 34), text("N12号杆塔", 14, 24, 5, "宋"), text("110kV 线路", 30, 14, 4, "罗马"),
         text("导线LGJ-240/30", 8, 5, 5, "黑"), text("斜A文字", 95, 6, 5, "宋", 60)]
SAMPLES = [
    ("V7_THAlign 右对齐", MIXED, lines("V7_THAlign", WHOLE, "R", point(80, 40))),
    ("V7_TVAlign 间距 3", MIXED, lines("V7_TVAlign", WHOLE, "3")),
    ("V7_LinkText", [text("10kV", 10, 30, 5, "罗马"), text("城南线", 40, 30, 5, "宋"), text("12号", 70, 20, 4),
                     text("杆", 70, 8, 5, "宋")], lines("V7_LinkText", WHOLE)),
    ("V7_CCEScale 0.7", MIXED, lines("V7_CCEScale", "0.7", WHOLE)),
    ("V7_EditText 拆字，批量字高 4", MIXED[:3], lines("V7_EditText", WHOLE, "@click 201", "@check 203 1", "@check 210 0",
                                              "@check 211 0", "@check 212 0", "@check 213 0", "@set 204 4", "@click 1")),
    ("V7_DeltaMark 递减 5", [], lines("V7_DeltaMark", "@set 231 N", "@set 203 号", "@set 209 20", "@set 210 5",
                                   "@click 233", "@set 204 5", "@select 211 0", "@click 1", point(5, 25),
                                   point(40, 25), point(75, 25), point(5, 10), "")),
    ("V7_SumNum", [text("1.5", 10, 34), text("2", 10, 24), text("10.25", 10, 14), text("12.50m", 40, 34)],
     lines("V7_SumNum", "", WHOLE, point(60, 20))),
    ("V7_Scadimh 2", [lines("DIMLINEAR", point(10, 8), point(110, 8), point(60, 24))],
     lines("V7_Scadimh", WHOLE, "2")),
    ("V7_ChgLType B", [lines("LINE", point(10, 34), point(110, 34), "", "CIRCLE", point(60, 16), "12")],
     lines("V7_ChgLType", WHOLE, "B")),
]


def mtext(content, x, y, flow):
    return lambda left, bottom: (
        "(entmake (list '(0 . \"MTEXT\") '(100 . \"AcDbEntity\") '(100 . \"AcDbMText\")"
        f" '(10 {left + x} {bottom + y} 0.0) '(40 . 4.0) '(41 . 32.0) '(71 . 1) '(72 . {flow}) '(7 . \"罗马\")"
        f" '(1 . \"{content}\")))")


DIRECTIONS = ("竖排文字；@ 字体转 270°；多行文字横、竖排",
              [text("竖排110kV", 8, 42, 4, "竖"), text("竖中", 20, 22, 4, "竖", 0, 4),
               text("直排黑体A1", 32, 42, 4, "倒黑", 270), mtext("电力线路图\\\\P第二行 N12", 42, 40, 1),
               mtext("电力线路图\\\\P第二行 N12", 90, 40, 3)])


def script():
    answers = [style(*each) for each in STYLES] + ["LTSCALE 10"]
    for row, (title, sample, command) in enumerate(SAMPLES):
        bottom = -row * (HEIGHT + GAP + 6.0)
        answers.append(text(title, 0, HEIGHT + 2.0, 4.0, "黑")(0.0, bottom))
        for left in (0.0, WIDTH + GAP):
            answers += ["RECTANG", f"{left},{bottom}", f"{left + WIDTH},{bottom + HEIGHT}"]
            answers += [each(left, bottom) for each in sample]
        answers.append(command(WIDTH + GAP, bottom))
    bottom = -len(SAMPLES) * (HEIGHT + GAP + 6.0)
    answers.append(text(DIRECTIONS[0], 0, HEIGHT + 2.0, 4.0, "黑")(0.0, bottom))
    answers += [each(0.0, bottom) for each in DIRECTIONS[1]]
    return "\n".join(answers) + "\n"


def main():
    host, picture = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([host, "--script", "-", "--settings", folder, "--plot", picture], input=script(), text=True,
                       check=True)


if __name__ == "__main__":
    main()
