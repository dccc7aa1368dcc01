#!/usr/bin/env python3
"""Types commands at random into the program over a drawing, takes all of them back, and compares the drawing with the one
before; then repeats them and compares with the one after. What differs, fails or crashes is told with the shortest list of
commands that still does it.

random_walk.py PROGRAM DRAWING [--seed N] [--commands N] [--folder DIR] [--shrink SECONDS] [--audit COMMAND]
"""

import argparse
import os
import pathlib
import random
import re
import subprocess
import sys
import time

VOLATILE = ("$TDCREATE", "$TDUCREATE", "$TDUPDATE", "$TDUUPDATE", "$TDINDWG", "$TDUSRTIMER", "$HANDSEED", "$VERSIONGUID",
            "$FINGERPRINTGUID", "$EXTMIN", "$EXTMAX", "$PEXTMIN", "$PEXTMAX")
FAULTS = ("出错", "runtime error", "AddressSanitizer")


class Generator:
    """Commands with answers that mostly fit, about the places where the drawing has something."""

    def __init__(self, seed, places):
        self.random = random.Random(seed)
        self.places = places
        xs, ys = [x for x, _ in places], [y for _, y in places]
        self.size = max(max(xs) - min(xs), max(ys) - min(ys), 1.0)

    def number(self, low, high):
        return f"{self.random.uniform(low, high):.4g}"

    def length(self):
        return f"{self.size * self.random.choice((0.001, 0.01, 0.05, 0.2)) * self.random.uniform(0.5, 2):.5g}"

    def point(self):
        x, y = self.random.choice(self.places)
        reach = self.size * self.random.choice((0, 0, 0.01, 0.1))
        z = self.random.choice(("", "", "", ",0", f",{self.number(-5, 5)}"))
        return f"{x + self.random.uniform(-reach, reach):.7g},{y + self.random.uniform(-reach, reach):.7g}{z}"

    def offset(self):
        if self.random.random() < 0.3:
            return f"@{self.length()}<{self.number(0, 360)}"
        sign = self.random.choice(("", "-"))
        return f"@{sign}{self.length()},{self.random.choice(('', '-'))}{self.length()}"

    def name(self, of):
        return f"{of}{self.random.randint(1, 4)}"

    def angle(self):
        return self.random.choice(("0", "90", "30", "-45", "180", self.number(-360, 360)))

    def factor(self):
        return self.random.choice(("2", "0.5", "1", self.number(0.2, 3), "-1"))

    def some(self):
        """Answers to "select objects", with the Enter that ends them."""
        kind = self.random.randrange(8)
        if kind == 0:
            return ["L", ""]
        if kind == 1:
            return ["P", ""]
        if kind == 2:
            return ["F", self.point(), self.point(), "", ""]
        if kind == 3:
            return [self.point(), self.point(), ""]
        if kind == 4:
            return ["W", self.point(), self.point(), "R", self.point(), ""]
        if kind == 5:
            return ["(entlast)", ""]
        x, y = self.random.choice(self.places)
        reach = self.size * self.random.choice((0.01, 0.03, 0.1))
        return ["C", f"{x - reach:.7g},{y - reach:.7g}", f"{x + reach:.7g},{y + reach:.7g}", ""]

    def few(self):
        """The same for what multiplies: one object, so that a long walk does not end in millions."""
        return self.random.choice((["L", ""], ["(entlast)", ""], [self.point(), ""], ["P", "R", "ALL", "A", "L", ""]))

    def one(self):
        return self.random.choice((self.point(), self.point(), "L", "(entlast)"))

    def drawing(self):
        p, o = self.point, self.offset
        return self.random.choice((
            lambda: ["LINE", p(), o(), "U", o(), o(), self.random.choice(("", "C"))],
            lambda: ["CIRCLE", p(), self.length()], lambda: ["CIRCLE", "3P", p(), p(), p()], lambda: ["CIRCLE", "2P", p(), o()],
            lambda: ["ARC", p(), p(), p()], lambda: ["ARC", "C", p(), o(), "A", self.angle()],
            lambda: ["PLINE", p(), o(), "A", o(), "L", "W", "1", "2", o(), self.random.choice(("", "C"))],
            lambda: ["RECTANG", p(), o()], lambda: ["POLYGON", str(self.random.randint(3, 9)), p(), "I", self.length()],
            lambda: ["DONUT", self.length(), self.length(), p(), p(), ""], lambda: ["SOLID", p(), o(), o(), o(), ""],
            lambda: ["POINT", p()], lambda: ["TEXT", p(), self.length(), self.angle(), "文字 A%%d", ""],
            lambda: ["TEXT", "J", self.random.choice(("C", "M", "R", "MC", "BL", "TR")), p(), self.length(), self.angle(), "杆塔", ""],
            lambda: ["MTEXT", p(), "H", self.length(), o(), "一行{\\C1;红}", "两行", ""],
            lambda: ["ELLIPSE", p(), o(), self.length()], lambda: ["ELLIPSE", "A", p(), o(), self.length(), "30", "200"],
            lambda: ["SPLINE", p(), o(), o(), o(), "", "", ""], lambda: ["SPLINE", p(), o(), o(), "C", ""],
            lambda: ["XLINE", p(), o(), ""], lambda: ["RAY", p(), o(), ""],
            lambda: ["MLINE", "S", "2", p(), o(), o(), self.random.choice(("", "C"))],
            lambda: ["-HATCH", "P", self.random.choice(("S", "ANSI31\n1\n0", "U\n45\n" + self.length() + "\nN")), "S", *self.some(), ""],
            lambda: ["-HATCH", p(), ""], lambda: ["-HATCH", p(), p(), ""], lambda: ["BOUNDARY", p(), ""],
            lambda: ["LEADER", p(), o(), "", "引线", ""], lambda: ["QLEADER", p(), o(), "", "0", "说明", ""],
            lambda: ["LEADER", p(), o(), "F", "S", "", "", "", "N"], lambda: ["TOLERANCE", "P", "0.1", "Y", "A", "", p()],
            lambda: ["WIPEOUT", p(), o(), o(), "C"], lambda: ["3DFACE", p(), o(), o(), "", "", ""],
            lambda: ["TRACE", self.length(), p(), o(), o(), ""],
            lambda: ["REVCLOUD", "A", self.length(), "", "R", p(), o(), "N"], lambda: ["REVCLOUD", "O", self.one(), "Y"],
            lambda: ["SPLINE", p(), o(), o(), o(), "F", self.length(), "", "", ""],
            lambda: ["DIMLINEAR", p(), p(), o()], lambda: ["DIMALIGNED", p(), p(), o()], lambda: ["DIMRADIUS", self.one(), o()],
            lambda: ["DIMDIAMETER", self.one(), o()], lambda: ["DIMANGULAR", self.one(), self.one(), o()],
            lambda: ["DIMANGULAR", "", p(), p(), p(), o()],
            lambda: ["MEASURE", self.one(), self.length()], lambda: ["DIVIDE", self.one(), str(self.random.randint(2, 9))],
        ))()

    def editing(self):
        p, o, s = self.point, self.offset, self.some
        return self.random.choice((
            lambda: ["MOVE", *s(), p(), o()], lambda: ["COPY", *self.few(), p(), o(), ""], lambda: ["ERASE", *s()], lambda: ["OOPS"],
            lambda: ["ROTATE", *s(), p(), self.angle()], lambda: ["ROTATE", *self.few(), p(), "C", self.angle()],
            lambda: ["SCALE", *s(), p(), self.factor()], lambda: ["MIRROR", *s(), p(), o(), "Y"], lambda: ["MIRROR", *self.few(), p(), o(), "N"],
            lambda: ["ALIGN", *s(), p(), o(), p(), o(), "", "Y"], lambda: ["ARRAY", *self.few(), "R", "2", "3", self.length(), self.length()],
            lambda: ["ARRAY", *self.few(), "P", p(), "4", "360", "Y"], lambda: ["STRETCH", *s(), p(), o()],
            lambda: ["TRIM", *s(), p(), p(), ""], lambda: ["EXTEND", *s(), p(), p(), ""],
            lambda: ["OFFSET", self.length(), self.one(), p(), ""], lambda: ["OFFSET", "T", self.one(), p(), ""],
            lambda: ["FILLET", "R", self.length()], lambda: ["FILLET", self.one(), p()], lambda: ["FILLET", "P", self.one()],
            lambda: ["CHAMFER", "D", self.length(), self.length()], lambda: ["CHAMFER", self.one(), p()],
            lambda: ["BREAK", self.one(), p()], lambda: ["BREAK", self.one(), "F", p(), "@"],
            lambda: ["LENGTHEN", "DE", self.length(), self.one(), ""], lambda: ["REVERSE", *s()], lambda: ["JOIN", self.one(), *s()],
            lambda: ["EXPLODE", *s()],
            lambda: ["PEDIT", self.one(), "Y", self.random.choice("WFSDCO"), self.length(), ""],
            lambda: ["PEDIT", self.one(), "E", "N", "I", p(), "M", p(), "X", ""],
            lambda: ["PEDIT", "M", *s(), "Y", "J", "0.1", "", ""],
            lambda: ["DRAWORDER", *s(), self.random.choice("FB")],
            lambda: ["HATCHEDIT", self.one(), self.random.choice(("DI", "DR\nB", "B\nY", "S\nO", "P\nS"))],
            lambda: ["HATCHEDIT", self.one(), "AS", *s()], lambda: ["HATCHEDIT", self.one(), "R", p(), ""],
            lambda: ["SPLINEDIT", self.one(), self.random.choice(("C", "O", "E", "P", "F\nL\n0\nX", "R\nE\n5\nX")), "X"],
            lambda: ["SPLINEDIT", self.one(), "M", "N", p(), "X", "U", "X"],
            lambda: ["DIMEDIT", self.random.choice(("H", "N\n文", "R\n30")), *s()], lambda: ["DIMEDIT", "O", *s(), "60"],
            lambda: ["DIMTEDIT", self.one(), self.random.choice(("L", "C", "H"))], lambda: ["DIMTEDIT", self.one(), p()],
            lambda: ["DIMOVERRIDE", "TXT", self.length(), "", *s()], lambda: ["DIMOVERRIDE", "C", *s()],
            lambda: ["-DIMSTYLE", "S", self.name("标注")], lambda: ["-DIMSTYLE", "A", *s()],
        ))()

    def properties(self):
        n, s = self.name, self.some
        color = str(self.random.randint(1, 255))
        return self.random.choice((
            lambda: ["CHPROP", *s(), "C", color, "LA", n("层"), ""], lambda: ["CHPROP", *s(), "LT", "ByBlock", "S", "2", "T", "1", "LW", "0.3", ""],
            lambda: ["CHANGE", *s(), "P", "E", self.number(-9, 9), ""], lambda: ["CHANGE", *s(), self.point()],
            lambda: ["MATCHPROP", self.one(), *s()],
            lambda: ["-LAYER", "M", n("层"), "C", color, "", ""], lambda: ["-LAYER", "N", n("层"), "OFF", n("层"), "", "F", n("层"), ""],
            lambda: ["-LAYER", "T", "*", "ON", "*", "U", "*", "S", "0", ""], lambda: ["-LAYER", "LO", n("层"), "L", "Continuous", n("层"), ""],
            lambda: ["-RENAME", "LA", n("层"), n("层")], lambda: ["-RENAME", "B", n("块"), n("块")],
            lambda: ["-PURGE", self.random.choice(("A", "LA", "B", "E", "Z")), "*", "N"], lambda: ["-PURGE", "A", "*", "N"],
            lambda: ["-STYLE", n("式"), "txt,gbcbig", "0", "0.8", "0", "N", "N", "N"], lambda: ["TEXTSTYLE", self.random.choice(("Standard", n("式")))],
            lambda: ["-LINETYPE", "S", "ByLayer", ""], lambda: ["-LINETYPE", "L", "DASHED", "acadiso.lin", ""],
            lambda: ["CECOLOR", color], lambda: ["CECOLOR", "ByLayer"], lambda: ["LTSCALE", self.number(0.1, 9)],
            lambda: ["CELTSCALE", "2"], lambda: ["DIMSCALE", self.number(0.5, 9)], lambda: ["DIMTXT", self.number(0.5, 9)],
            lambda: ["CLAYER", self.random.choice(("0", n("层")))], lambda: ["LIMITS", "0,0", self.point()],
            lambda: ["FIND", "文", "图", "", ""], lambda: ["AUDIT", "Y"],
            lambda: ["UCS", self.point(), ""], lambda: ["UCS", "Z", self.angle()], lambda: ["UCS", "W"], lambda: ["UCS", "W"],
            lambda: ["ZOOM", "E"], lambda: ["REGEN"], lambda: ["LIST", *s()],
        ))()

    def blocks(self):
        n, s = self.name, self.some
        return self.random.choice((
            lambda: ["-BLOCK", n("块"), self.point(), *self.few()], lambda: ["-BLOCK", n("块"), "Y", self.point(), *self.few()],
            lambda: ["-INSERT", n("块"), self.point(), self.factor(), "", self.angle()], lambda: ["-INSERT", n("块"), self.point(), "1", "1", "0"],
            lambda: ["-INSERT", "*" + n("块"), self.point(), "1", "0"], lambda: ["EXPLODE", "L", ""],
            lambda: ["-GROUP", "C", n("组"), "说明", *s()], lambda: ["-GROUP", "E", n("组")],
            lambda: ["-LAYOUT", "N", n("图")], lambda: ["-LAYOUT", "D", n("图")], lambda: ["-LAYOUT", "R", n("图"), n("图")],
            lambda: ["-LAYOUT", "C", n("图"), n("图")],
        ))()

    def steps(self):
        return self.random.choice((
            ["U"], ["U"], ["REDO"], ["UNDO", str(self.random.randint(1, 9))], ["UNDO", "M"], ["UNDO", "B", "N"], ["UNDO", "BE"], ["UNDO", "E"],
        ))

    def programs(self):
        last = "(setq e (entget (entlast)))"
        return [self.random.choice((
            f'(progn {last} (entmod (subst (cons 8 "{self.name("层")}") (assoc 8 e) e)))',
            f'(progn {last} (entmod (append e (list (cons 62 {self.random.randint(0, 256)})))))',
            f'(progn {last} (entmake (cdr e)))', "(entdel (entlast))",
            '(progn (regapp "走") (setq e (entget (entlast))) (entmod (append e (list (list -3 (list "走" (cons 1000 "值")))))))',
            f'(command "_LINE" "{self.point()}" "{self.offset()}" "")', f'(command "_MOVE" (entlast) "" "{self.point()}" "{self.offset()}")',
            f'(command "_CIRCLE" "{self.point()}")', '(command)', "(/ 1 0)",
            f'(entmake (list (cons 0 "LINE") (cons 10 (list 0 0 0)) (cons 11 (list {self.number(-9, 9)} 5 0))))',
            '(if (setq s (ssget "X" (list (cons 0 "LINE")))) (sslength s))',
        ))]

    def command(self):
        kind = self.random.choices((self.drawing, self.editing, self.properties, self.blocks, self.steps, self.programs),
                                   (30, 34, 18, 10, 6, 4))[0]
        answers = kind()
        if self.random.random() < 0.04:  # a slip: an answer too much, one too few, or Escape
            at = self.random.randrange(len(answers)) + 1
            slip = self.random.randrange(3)
            if slip == 0:
                answers.insert(at, self.random.choice(("", "X", self.point(), "-5", "墙", "@", "0")))
            elif slip == 1:
                answers = answers[:at] + ["^C"]
            elif len(answers) > at:
                del answers[at]
        return "\n".join([*answers, "^C"])


def places_of(folder):
    """Where the drawing has something: points of its model space, at the most a few hundred."""
    points = []
    text = (folder / "first.dxf").read_text(encoding="utf-8", errors="replace")
    entities = text[text.find("\nENTITIES\n"):]
    for x, y in re.findall(r"\n 10\n([-+.\deE]+)\n 20\n([-+.\deE]+)\n", entities):
        points.append((float(x), float(y)))
    points = [(x, y) for x, y in points if abs(x) < 1e7 and abs(y) < 1e7]
    return random.Random(0).sample(points, min(len(points), 400)) or [(0.0, 0.0), (100.0, 50.0)]


def without_volatile(lines):
    """Of a dump or a DXF file, without times and the next free handle."""
    kept, skipping = [], False
    for line in lines:
        if line.startswith("$"):
            skipping = line in VOLATILE
        elif line in ("ENDSEC", "  9") or line.startswith("  0"):
            skipping = False
        if not skipping:
            kept.append(line)
    return kept


class Walk:
    def __init__(self, program, drawing, folder, timeout, audit):
        self.program, self.drawing, self.folder, self.timeout, self.audit_command = program, drawing, folder, timeout, audit
        folder.mkdir(parents=True, exist_ok=True)
        for name in ("first.dxf", "first.txt"):
            (folder / name).unlink(missing_ok=True)
        result = self.run("", ["--save", "first.dxf", "--dump", "first.txt"])
        if result.returncode != 0:
            sys.exit(f"{drawing}: 退出码 {result.returncode}\n{result.stderr.decode('utf-8', 'replace')}")

    def run(self, script, options, drawing=None):
        (self.folder / "walk.scr").write_text(script, encoding="utf-8")
        words = [self.program, "--script", "walk.scr", "--module", "none", "--settings", "settings", *options,
                 str(drawing or self.drawing)]
        result = subprocess.run(words, cwd=self.folder, capture_output=True, timeout=self.timeout,
                                env=os.environ | {"QT_QPA_PLATFORM": "offscreen", "HOME": str(self.folder)})
        (self.folder / "output.txt").write_bytes(result.stdout)
        (self.folder / "errors.txt").write_bytes(result.stderr)
        return result

    def lines(self, name):
        return without_volatile((self.folder / name).read_text(encoding="utf-8", errors="replace").splitlines())

    def fault(self, commands):
        """What is wrong after these commands, in a word or a few lines; nothing when all is well."""
        for file in self.folder.glob("w-*"):
            file.unlink()
        script = "".join(f"{command}\n" for command in commands)
        script += "UNDO\nE\n^C\n(setvar \"CMDECHO\" 1)\nSAVE\nw-after.dxf\nUNDO\n32767\nSAVE\nw-undone.dxf\nREDO\nSAVE\nw-redone.dxf\nUNDO\n32767\n"
        try:
            result = self.run(script, ["--dump", "w-undone.txt"])
        except subprocess.TimeoutExpired:
            return "没有结束"
        errors = result.stderr.decode("utf-8", "replace")
        if result.returncode not in (0, 1):
            return f"退出码 {result.returncode}\n{errors[-2000:]}"
        for line in errors.splitlines():
            if any(fault in line for fault in FAULTS):
                return line
        for before, after in (("first.txt", "w-undone.txt"), ("first.dxf", "w-undone.dxf"), ("w-after.dxf", "w-redone.dxf")):
            if not (self.folder / after).exists():
                return f"没有 {after}"
            difference = first_difference(self.lines(before), self.lines(after))
            if difference:
                return f"{before} 与 {after} 不同:\n{difference}"
        return self.audit() if self.audit_command else ""

    def shortest(self, commands, fault, seconds):
        """Leaves out commands in ever smaller pieces while the fault of that kind stays, for so long."""
        kind, end = kind_of(fault), time.monotonic() + seconds
        piece = (len(commands) + 1) // 2
        while piece:
            at = 0
            while at < len(commands) and time.monotonic() < end:
                fewer = commands[:at] + commands[at + piece:]
                if fewer and kind_of(self.fault(fewer)) == kind:
                    commands = fewer
                else:
                    at += piece
            piece = piece // 2
        return commands

    def issues(self, file):
        """What another program finds wrong in a file. Groups whose members were erased stay, and are allowed."""
        result = subprocess.run([*self.audit_command.split(), file], cwd=self.folder, capture_output=True, timeout=self.timeout, text=True)
        if result.returncode != 0:
            return [result.stdout + result.stderr]
        return [line.strip() for line in re.findall(r"Issue \[\d+\].*\n(.*)", result.stdout) if "empty group" not in line]

    def audit(self):
        """What is wrong in the drawing as the commands left it, and was not before."""
        before = self.issues("first.dxf")
        return "\n".join(issue for issue in self.issues("w-after.dxf") if issue not in before)


def kind_of(fault):
    """The first line without its numbers, so that the same fault elsewhere in the script counts as the same."""
    return re.sub(r"\d+", "", fault.split("\n", 1)[0])


def around(line, other):
    """The stretch of a long line where it leaves the other."""
    at = next((at for at, (a, b) in enumerate(zip(line, other)) if a != b), min(len(line), len(other)))
    return line if len(line) <= 120 else "… " + line[max(0, at - 40):at + 80]


def first_difference(before, after):
    for at, (one, other) in enumerate(zip(before, after)):
        if one != other:
            return "\n".join([*(f"  {line[:120]}" for line in before[max(0, at - 12):at]), f"- {around(one, other)}",
                              *(f"- {line[:120]}" for line in before[at + 1:at + 4]), f"+ {around(other, one)}",
                              *(f"+ {line[:120]}" for line in after[at + 1:at + 4])])
    return "" if len(before) == len(after) else f"{len(before)} 行, {len(after)} 行"


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("program")
    arguments.add_argument("drawing")
    arguments.add_argument("--seed", type=int, default=1)
    arguments.add_argument("--commands", type=int, default=1000)
    arguments.add_argument("--folder", default="random-walk")
    arguments.add_argument("--timeout", type=int, default=300)
    arguments.add_argument("--shrink", type=int, default=600, help="seconds for making a list that fails shorter")
    arguments.add_argument("--audit", default="", help="a command that is given a DXF file, as `python3 -m ezdxf audit`")
    given = arguments.parse_args()
    folder = pathlib.Path(given.folder).resolve()
    walk = Walk(str(pathlib.Path(given.program).resolve()), pathlib.Path(given.drawing).resolve(), folder, given.timeout, given.audit)
    generator = Generator(given.seed, places_of(folder))
    commands = [generator.command() for _ in range(given.commands)]
    fault = walk.fault(commands)
    if fault:
        commands = walk.shortest(commands, fault, given.shrink)
        sys.exit(f"{given.drawing} --seed {given.seed}: {walk.fault(commands)}\n--- {len(commands)} 条命令:\n" + "\n".join(commands))
    print(f"{given.drawing} --seed {given.seed}: {given.commands} 条命令, 全部放弃后图形不变")


if __name__ == "__main__":
    main()
