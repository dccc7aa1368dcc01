#!/usr/bin/env python3
"""Draws every block, linetype and function of the symbol library $DXT with its name, as docs/dxt.png.

    library/make_symbol_sheet.py build/dev/bin/qdvhost docs/dxt.png
"""
import subprocess
import sys
import tempfile

BLOCKS = ["LDPW", "LXPW", "LXPJ", "LDPJ", "RDPW", "RXPW", "RXPJ", "RDPJ",
          "bridge1", "bridge2", "bridge3", "bridge4"]
LINETYPES = ["DOT", "DASHED", "HIDDEN", "CENTER2", "ACITY", "E_line"]
LINES = [("jqx", "粗实线"), ("dgx", "细实线"), ("hdx", "点线"), ("hxx", "虚线"),
         ("xpw", "未加固斜坡"), ("xpj", "加固斜坡"), ("dpw", "未加固陡坎"), ("dpj", "加固陡坎"),
         ("substation", "变电站"), ("county", "县界"), ("country", "国界"), ("province", "省界"),
         ("city", "市界"), ("eline", "电力线"), ("railroad", "铁路"), ("drailroad", "复线铁路")]
SLOPES = ("xpw", "xpj", "dpw", "dpj")
MARKS = [("hoverb", "上跨桥，横"), ("voverb", "上跨桥，竖"), ("hnoverb", "桥，横"), ("hnoverb1", "桥，竖")]
CELL = (46.0, 26.0)
COLUMNS = 4


class Sheet:
    """The lines of a script, filled cell by cell from the top."""

    def __init__(self):
        self.lines = []
        self.row = 0
        self.column = 0

    def add(self, *lines):
        self.lines += lines

    def text(self, x, y, height, content):
        self.add("TEXT", f"{x},{y}", f"{height}", "0", content, "")

    def heading(self, content):
        if self.column:
            self.row += 1
            self.column = 0
        self.text(0.0, -self.row * CELL[1] - 10.0, 4.0, content)
        self.row += 0.2

    def cell(self, name):
        """The lower left corner of the next cell's drawing."""
        x, y = self.column * CELL[0], -self.row * CELL[1] - CELL[1]
        self.text(x, y + 1.0, 2.5, name)
        self.column += 1
        if self.column == COLUMNS:
            self.row += 1
            self.column = 0
        return x, y + 5.0


def script():
    sheet = Sheet()
    sheet.add("INSERT", "*$DXT", "0,0", "", "", "LTSCALE 10")
    sheet.heading("图块 $DXT")
    for name in BLOCKS:
        x, y = sheet.cell(name)
        if name.startswith("bridge"):
            sheet.add("LINE", f"{x},{y + 8}", f"{x + 32},{y + 8}", "")
            sheet.add("INSERT", name, f"{x + 16},{y + 8}", "1", "1", "0")
        else:
            sheet.add("LINE", f"{x},{y + 8}", f"{x + 32},{y + 8}", "")
            step = 3.0
            for i in range(1, 11):
                sheet.add("INSERT", name, f"{x + step * i},{y + 8}", "1", "1", "0")
    sheet.heading("线型，LTSCALE 10")
    for name in LINETYPES:
        x, y = sheet.cell(name)
        sheet.add("CELTYPE " + name, "LINE", f"{x},{y + 6}", f"{x + 40},{y + 6}", "", "CELTYPE ByLayer")
    sheet.heading("绘制线状符号的函数")
    for name, title in LINES:
        x, y = sheet.cell(f"{name} {title}")
        sheet.add(name, f"{x},{y + 4}", f"{x + 12},{y + 4}", f"{x + 24},{y + 12}", f"{x + 40},{y + 8}", "")
        if name in SLOPES:
            sheet.add(f"{x + 6},{y + 6}")
    sheet.heading("桥梁标记的函数")
    for name, title in MARKS:
        x, y = sheet.cell(f"{name} {title}")
        across = name.startswith("v") or name.endswith("1")
        ends = ((x + 8, y), (x + 8, y + 16)) if not across else ((x, y + 8), (x + 16, y + 8))
        along = ((x, y + 8), (x + 16, y + 8)) if not across else ((x + 8, y), (x + 8, y + 16))
        for line in (ends, along):
            sheet.add("LINE", *(f"{px},{py}" for px, py in line), "")
        sheet.add(name, f"{x + 8},{y + 8}", "")
    sheet.add("ZOOM E")
    return "\n".join(sheet.lines) + "\n"


def main():
    program, picture = sys.argv[1:3]
    with tempfile.TemporaryDirectory() as settings:
        subprocess.run([program, "--settings", settings, "--script", "-", "--plot", picture],
                       input=script().encode(), check=True, stdout=subprocess.DEVNULL)


if __name__ == "__main__":
    main()
