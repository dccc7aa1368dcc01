"""A small writer of complete DXF files (R2018, UTF-8) for samples and measurements.

A Drawing collects tables, blocks, entities and dictionary objects; write() gives the file. Records are plain
lists of (group code, value); coordinates are drawing units, angles degrees.
"""

import math


def number(value):
    """The shortest text of a real with at most nine decimals; always with a point."""
    text = f"{value:.9f}".rstrip("0")
    if text.endswith("."):
        text += "0"
    return "0.0" if text == "-0.0" else text


def point(code, location):
    """The groups of a 3D point; a missing z is 0."""
    x, y, *rest = location
    return [(code, float(x)), (code + 10, float(y)), (code + 20, float(rest[0]) if rest else 0.0)]


def tag_text(code, value):
    if isinstance(value, float):
        value = number(value)
    return f"{code:>3}\n{value}\n"


HORIZONTAL = {"left": 0, "centre": 1, "right": 2, "aligned": 3, "middle": 4, "fit": 5}
VERTICAL = {"baseline": 0, "bottom": 1, "middle": 2, "top": 3}


class Drawing:
    def __init__(self):
        self._last_handle = 0x2F
        self.header = []
        self.tables = {}
        self.table_handles = {}
        for name in ("VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"):
            self.tables[name] = []
            self.table_handles[name] = self.handle()
        self.blocks = {}
        self.objects = []
        self.root = self.handle()
        self.plot_style = self.handle()
        self.layouts = {"*Model_Space": self.handle(), "*Paper_Space": self.handle()}
        for name in ("ByBlock", "ByLayer", "Continuous"):
            self.linetype(name, "", [])
        self.application("ACAD")
        for name in self.layouts:
            self.block(name, layout=self.layouts[name])
        self.active = "*Model_Space"

    def handle(self):
        self._last_handle += 1
        return f"{self._last_handle:X}"

    # Tables

    def record(self, table, kind, groups, extra=()):
        own = self.handle()
        code = 105 if table == "DIMSTYLE" else 5
        self.tables[table].append(
            [(0, table), (code, own), *extra, (330, self.table_handles[table]),
             (100, "AcDbSymbolTableRecord"), (100, kind), *groups])
        return own

    def application(self, name):
        return self.record("APPID", "AcDbRegAppTableRecord", [(2, name), (70, 0)])

    def linetype(self, name, description, lengths):
        groups = [(2, name), (70, 0), (3, description), (72, 65), (73, len(lengths)),
                  (40, float(sum(abs(length) for length in lengths)))]
        for length in lengths:
            groups += [(49, float(length)), (74, 0)]
        return self.record("LTYPE", "AcDbLinetypeTableRecord", groups)

    def layer(self, name, colour, linetype="Continuous", lineweight=-3, plotted=True):
        groups = [(2, name), (70, 0), (62, colour), (6, linetype)]
        if not plotted:
            groups.append((290, 0))
        groups += [(370, lineweight), (390, self.plot_style)]
        return self.record("LAYER", "AcDbLayerTableRecord", groups)

    def style(self, name, font, big_font="", width=1.0, oblique=0.0, typeface=None):
        """A text style; typeface names the TrueType face as extended data, the way drafting programs do."""
        groups = [(2, name), (70, 0), (40, 0.0), (41, width), (50, oblique), (71, 0), (42, 2.5),
                  (3, font), (4, big_font)]
        if typeface:
            groups += [(1001, "ACAD"), (1000, typeface), (1071, 0)]
        return self.record("STYLE", "AcDbTextStyleTableRecord", groups)

    def dimension_style(self, name, scale, text_style):
        groups = [(2, name), (70, 0), (40, scale), (41, 2.5), (42, 0.625), (43, 3.75), (44, 1.25), (73, 0), (74, 0),
                  (77, 1), (78, 8), (140, 2.5), (141, 2.5), (147, 0.625), (172, 1), (271, 1), (340, text_style)]
        return self.record("DIMSTYLE", "AcDbDimStyleTableRecord", groups)

    def viewport(self, centre, height, aspect):
        groups = [(2, "*Active"), (70, 0), (10, 0.0), (20, 0.0), (11, 1.0), (21, 1.0),
                  (12, float(centre[0])), (22, float(centre[1])), (13, 0.0), (23, 0.0), (14, 10.0), (24, 10.0),
                  (15, 10.0), (25, 10.0), *point(16, (0, 0, 1)), *point(17, (0, 0, 0)), (40, float(height)),
                  (41, float(aspect)), (42, 50.0), (43, 0.0), (44, 0.0), (50, 0.0), (51, 0.0), (71, 0), (72, 1000),
                  (73, 1), (74, 3), (75, 0), (76, 0), (77, 0), (78, 0)]
        return self.record("VPORT", "AcDbViewportTableRecord", groups)

    # Blocks

    def block(self, name, base=(0, 0), layout="0"):
        """Opens a block definition; `with drawing.inside(name)` fills it."""
        record = self.record("BLOCK_RECORD", "AcDbBlockTableRecord",
                             [(2, name), (340, layout), (70, 0), (280, 1), (281, 0)])
        self.blocks[name] = {"record": record, "begin": self.handle(), "end": self.handle(), "base": base,
                             "entities": [], "attributes": False}
        return record

    def inside(self, name):
        return _Inside(self, name)

    # Entities

    def entity(self, kind, layer, groups, *, owner=None, colour=None, linetype=None, linetype_scale=None,
               lineweight=None, xdata=(), extension=None):
        """Adds one entity to the active block and returns its handle. `groups` begin with the subclass marker
        after AcDbEntity; extended data are the groups of one or more applications."""
        own = self.handle()
        owner = owner or self.blocks[self.active]["record"]
        head = [(0, kind), (5, own)]
        if extension:
            head += [(102, "{ACAD_XDICTIONARY"), (360, extension), (102, "}")]
        head.append((330, owner))
        head.append((100, "AcDbEntity"))
        if self.active == "*Paper_Space":
            head.append((67, 1))
        head.append((8, layer))
        for code, value in ((6, linetype), (62, colour), (370, lineweight), (48, linetype_scale)):
            if value is not None:
                head.append((code, value))
        self.blocks[self.active]["entities"].append(head + list(groups) + list(xdata))
        return own

    def line(self, layer, start, end, **common):
        return self.entity("LINE", layer, [(100, "AcDbLine"), *point(10, start), *point(11, end)], **common)

    def point(self, layer, location, **common):
        return self.entity("POINT", layer, [(100, "AcDbPoint"), *point(10, location)], **common)

    def circle(self, layer, centre, radius, **common):
        return self.entity("CIRCLE", layer, [(100, "AcDbCircle"), *point(10, centre), (40, float(radius))], **common)

    def arc(self, layer, centre, radius, start, end, **common):
        return self.entity("ARC", layer, [(100, "AcDbCircle"), *point(10, centre), (40, float(radius)),
                                          (100, "AcDbArc"), (50, float(start)), (51, float(end))], **common)

    def solid(self, layer, corners, **common):
        """Corners in the order they are met on the outline; a triangle may have three."""
        a, b, c, *rest = corners
        d = rest[0] if rest else c
        return self.entity("SOLID", layer, [(100, "AcDbTrace"), *point(10, a), *point(11, b), *point(12, d),
                                            *point(13, c)], **common)

    def polyline(self, layer, vertices, closed=False, width=None, elevation=0.0, generate=False, **common):
        """A light polyline. A vertex is (x, y), (x, y, bulge) or (x, y, bulge, start width, end width)."""
        groups = [(100, "AcDbPolyline"), (90, len(vertices)), (70, int(closed) | (128 if generate else 0))]
        if width is not None:
            groups.append((43, float(width)))
        if elevation:
            groups.append((38, float(elevation)))
        for vertex in vertices:
            x, y, bulge, *widths = (*vertex, 0.0) if len(vertex) == 2 else vertex
            groups += [(10, float(x)), (20, float(y))]
            if widths:
                groups += [(40, float(widths[0])), (41, float(widths[1]))]
            if bulge:
                groups.append((42, float(bulge)))
        return self.entity("LWPOLYLINE", layer, groups, **common)

    def heavy_polyline(self, layer, vertices, closed=False, elevation=0.0, **common):
        """An old-style 2D polyline with its vertices and their end mark."""
        head = [(100, "AcDb2dPolyline"), (66, 1), *point(10, (0, 0, elevation)), (70, int(closed))]
        own = self.entity("POLYLINE", layer, head, **common)
        for x, y in vertices:
            self.entity("VERTEX", layer, [(100, "AcDbVertex"), (100, "AcDb2dVertex"), *point(10, (x, y, elevation)),
                                          (70, 0)], owner=own)
        self.entity("SEQEND", layer, [], owner=own)
        return own

    def text_groups(self, text, location, height, style, rotation, align, width, marker="AcDbText"):
        horizontal, vertical = align
        groups = [(100, "AcDbText"), *point(10, location), (40, float(height)), (1, text)]
        if rotation:
            groups.append((50, float(rotation)))
        if width != 1.0:
            groups.append((41, float(width)))
        groups.append((7, style))
        if HORIZONTAL[horizontal]:
            groups.append((72, HORIZONTAL[horizontal]))
        if HORIZONTAL[horizontal] or VERTICAL[vertical]:
            groups += point(11, location)
        tail = [(73, VERTICAL[vertical])] if VERTICAL[vertical] else []
        return groups, tail

    def text(self, layer, text, location, height, style, rotation=0.0, align=("left", "baseline"), width=1.0,
             **common):
        """A text whose location is its alignment point; the first point is left for the reader to compute."""
        groups, tail = self.text_groups(text, location, height, style, rotation, align, width)
        return self.entity("TEXT", layer, groups + [(100, "AcDbText")] + tail, **common)

    def mtext(self, layer, text, location, height, width, style, attachment=1, **common):
        groups = [(100, "AcDbMText"), *point(10, location), (40, float(height)), (41, float(width)),
                  (71, attachment), (72, 5), (1, text), (7, style), (73, 1), (44, 1.0)]
        return self.entity("MTEXT", layer, groups, **common)

    def attribute_definition(self, layer, tag, prompt, default, location, height, style,
                             align=("left", "baseline"), flags=0, width=1.0):
        groups, tail = self.text_groups(default, location, height, style, 0.0, align, width)
        tail = [(74, value) for _, value in tail]
        self.blocks[self.active]["attributes"] = True
        return self.entity("ATTDEF", layer, groups + [(100, "AcDbAttributeDefinition"), (280, 0), (3, prompt),
                                                      (2, tag), (70, flags)] + tail + [(280, 1)])

    def insert(self, layer, name, location, rotation=0.0, scale=1.0, attributes=(), attribute_layer=None,
               **common):
        """A block reference. An attribute is (tag, text, location, height, style, rotation, align)."""
        groups = [(100, "AcDbBlockReference")]
        if attributes:
            groups.append((66, 1))
        groups += [(2, name), *point(10, location)]
        if scale != 1.0:
            groups += [(41, float(scale)), (42, float(scale)), (43, float(scale))]
        if rotation:
            groups.append((50, float(rotation)))
        own = self.entity("INSERT", layer, groups, **common)
        for tag, text, place, height, style, angle, align in attributes:
            parts, tail = self.text_groups(text, place, height, style, angle, align, 1.0)
            tail = [(74, value) for _, value in tail]
            self.entity("ATTRIB", attribute_layer or layer, parts + [(100, "AcDbAttribute"), (280, 0), (2, tag), (70, 0)] + tail +
                        [(280, 1)], owner=own)
        if attributes:
            self.entity("SEQEND", layer, [], owner=own)
        return own

    # Objects

    def object(self, kind, owner, groups, own=None):
        own = own or self.handle()
        self.objects.append([(0, kind), (5, own), (330, owner), *groups])
        return own

    def dictionary(self, owner, entries, own=None):
        """Entries are (name, handle) pairs; the objects themselves are added apart."""
        groups = [(100, "AcDbDictionary"), (281, 1)]
        for name, handle in entries:
            groups += [(3, name), (350, handle)]
        return self.object("DICTIONARY", owner, groups, own)

    def xrecord(self, owner, groups):
        return self.object("XRECORD", owner, [(100, "AcDbXrecord"), (280, 1), *groups])

    def layout(self, owner, name, block, order, paper, own):
        """A layout; paper is (media name, width, height) in millimetres."""
        media, width, height = paper
        flags = 1712 if block == "*Model_Space" else 688
        plot = [(100, "AcDbPlotSettings"), (1, ""), (2, "none_device"), (4, media), (6, ""), (40, 7.5), (41, 20.0), (42, 7.5),
                (43, 20.0), (44, float(width)), (45, float(height)), (46, 0.0), (47, 0.0), (48, 0.0), (49, 0.0),
                (140, 0.0), (141, 0.0), (142, 1.0), (143, 1.0), (70, flags), (72, 1), (73, 0),
                (74, 0 if block == "*Model_Space" else 5), (7, ""), (75, 16), (76, 0), (77, 2), (78, 300),
                (147, 1.0), (148, 0.0), (149, 0.0)]
        page = [(100, "AcDbLayout"), (1, name), (70, 1), (71, order), (10, 0.0), (20, 0.0), (11, float(width)),
                (21, float(height)), *point(12, (0, 0, 0)), *point(14, (0, 0, 0)),
                *point(15, (width, height, 0)), (146, 0.0), *point(13, (0, 0, 0)), *point(16, (1, 0, 0)),
                *point(17, (0, 1, 0)), (76, 0), (330, self.blocks[block]["record"])]
        return self.object("LAYOUT", owner, plot + page, own)

    def finish_objects(self, own_dictionaries, model_paper):
        """The root dictionary with the standard ones and the given (name, handle) pairs."""
        group, layouts, styles, line_styles, settings = (self.handle() for _ in range(5))
        line_style = self.handle()
        entries = [("ACAD_GROUP", group), ("ACAD_LAYOUT", layouts), ("ACAD_MLINESTYLE", line_styles),
                   ("ACAD_PLOTSETTINGS", settings), ("ACAD_PLOTSTYLENAME", styles), *own_dictionaries]
        made = self.objects
        self.objects = []
        self.dictionary("0", entries, self.root)
        self.dictionary(self.root, [], group)
        self.dictionary(self.root, [], settings)
        self.dictionary(self.root, [("Model", self.layouts["*Model_Space"]), ("布局1", self.layouts["*Paper_Space"])],
                        layouts)
        self.layout(layouts, "Model", "*Model_Space", 0, model_paper, self.layouts["*Model_Space"])
        self.layout(layouts, "布局1", "*Paper_Space", 1, model_paper, self.layouts["*Paper_Space"])
        self.dictionary(self.root, [("Standard", line_style)], line_styles)
        self.object("MLINESTYLE", line_styles,
                    [(100, "AcDbMlineStyle"), (2, "Standard"), (70, 0), (3, ""), (62, 256), (51, 90.0), (52, 90.0),
                     (71, 2), (49, 0.5), (62, 256), (6, "BYLAYER"), (49, -0.5), (62, 256), (6, "BYLAYER")],
                    line_style)
        self.object("ACDBDICTIONARYWDFLT", self.root,
                    [(100, "AcDbDictionary"), (281, 1), (3, "Normal"), (350, self.plot_style),
                     (100, "AcDbDictionaryWithDefault"), (340, self.plot_style)], styles)
        self.object("ACDBPLACEHOLDER", styles, [], self.plot_style)
        self.objects += made

    # The file

    def first_free_handle(self):
        return self._last_handle + 1

    def write(self, path):
        with open(path, "w", encoding="utf-8", newline="\r\n") as file:
            self.write_to(file)

    def write_to(self, file):
        def put(groups):
            file.writelines(tag_text(code, value) for code, value in groups)

        def section(name, records):
            put([(0, "SECTION"), (2, name)])
            for groups in records:
                put(groups)
            put([(0, "ENDSEC")])

        header = [(9, "$ACADVER"), (1, "AC1032"), (9, "$DWGCODEPAGE"), (3, "ANSI_936"), *self.header,
                  (9, "$HANDSEED"), (5, f"{self.first_free_handle():X}")]
        section("HEADER", [header])
        section("CLASSES", [
            [(0, "CLASS"), (1, "ACDBDICTIONARYWDFLT"), (2, "AcDbDictionaryWithDefault"), (3, "ObjectDBX Classes"),
             (90, 0), (91, 1), (280, 0), (281, 0)],
            [(0, "CLASS"), (1, "ACDBPLACEHOLDER"), (2, "AcDbPlaceHolder"), (3, "ObjectDBX Classes"),
             (90, 0), (91, 1), (280, 0), (281, 0)],
            [(0, "CLASS"), (1, "LAYOUT"), (2, "AcDbLayout"), (3, "ObjectDBX Classes"),
             (90, 0), (91, 2), (280, 0), (281, 0)]])
        tables = []
        for name, records in self.tables.items():
            tail = [(100, "AcDbDimStyleTable"), (71, len(records))] if name == "DIMSTYLE" else []
            tables.append([(0, "TABLE"), (2, name), (5, self.table_handles[name]), (330, "0"),
                           (100, "AcDbSymbolTable"), (70, len(records)), *tail])
            tables += records
            tables.append([(0, "ENDTAB")])
        section("TABLES", tables)
        blocks = []
        for name, block in self.blocks.items():
            owner = [(330, block["record"]), (100, "AcDbEntity"), *([(67, 1)] if name == "*Paper_Space" else []),
                     (8, "0")]
            blocks.append([(0, "BLOCK"), (5, block["begin"]), *owner, (100, "AcDbBlockBegin"), (2, name),
                           (70, 2 if block["attributes"] else 0), *point(10, block["base"]), (3, name), (1, "")])
            if name not in self.layouts:
                blocks += block["entities"]
            blocks.append([(0, "ENDBLK"), (5, block["end"]), *owner, (100, "AcDbBlockEnd")])
        section("BLOCKS", blocks)
        section("ENTITIES", [record for name in self.layouts for record in self.blocks[name]["entities"]])
        section("OBJECTS", self.objects)
        put([(0, "EOF")])


class _Inside:
    """Entities added within the `with` go into the named block."""

    def __init__(self, drawing, name):
        self.drawing, self.name = drawing, name

    def __enter__(self):
        self.before, self.drawing.active = self.drawing.active, self.name

    def __exit__(self, *_):
        self.drawing.active = self.before


class Path:
    """A centre line of straight pieces and arcs that meet tangentially, as roads and rivers run.

    Stations are lengths along the centre line; an offset is to the left of the direction of travel. The
    parallels of such a line are again such lines with the same bulges, so no approximation is needed.
    """

    def __init__(self, start, heading, pieces):
        """pieces: (length, turn) with the turn in degrees, left positive, 0 for a straight piece."""
        self.pieces = []
        x, y = start
        heading = math.radians(heading)
        station = 0.0
        for length, turn in pieces:
            self.pieces.append((station, length, x, y, heading, math.radians(turn)))
            (x, y), heading = self._along(x, y, heading, length, math.radians(turn), length)
            station += length
        self.length = station

    @staticmethod
    def _along(x, y, heading, length, turn, distance):
        if not turn:
            return (x + distance * math.cos(heading), y + distance * math.sin(heading)), heading
        radius = length / turn
        end = heading + distance / radius
        return (x + radius * (math.sin(end) - math.sin(heading)),
                y - radius * (math.cos(end) - math.cos(heading))), end

    def at(self, station, offset=0.0):
        """The point at a station beside the line, and the direction there in degrees."""
        for start, length, x, y, heading, turn in self.pieces:
            if station <= start + length or start + length == self.length:
                (px, py), angle = self._along(x, y, heading, length, turn, station - start)
                return (px - offset * math.sin(angle), py + offset * math.cos(angle)), math.degrees(angle)
        raise ValueError("empty path")

    def parallel(self, offset, begin=0.0, end=None):
        """Vertices (x, y, bulge) of the parallel between two stations."""
        end = self.length if end is None else end
        vertices = []
        for start, length, _, _, _, turn in self.pieces:
            low, high = max(begin, start), min(end, start + length)
            if high - low > 1e-6:
                (x, y), _ = self.at(low, offset)
                vertices.append((x, y, math.tan(turn * (high - low) / length / 4)))
        (x, y), _ = self.at(end, offset)
        return vertices + [(x, y, 0.0)]

    def station(self, measure, offset, low, high):
        """The station between low and high where measure(point beside the line) changes its sign."""
        negative = measure(self.at(low, offset)[0]) < 0
        for _ in range(60):
            middle = (low + high) / 2
            if (measure(self.at(middle, offset)[0]) < 0) == negative:
                low = middle
            else:
                high = middle
        return low

    def nearest(self, location):
        """The station nearest to a point, to a centimetre, and the signed offset of the point there."""
        def distance(station):
            (x, y), _ = self.at(station)
            return math.hypot(x - location[0], y - location[1])
        step = self.length / 400
        best = min((index * step for index in range(401)), key=distance)
        while step > 0.005:
            step /= 2
            best = min((max(best - step, 0), best, min(best + step, self.length)), key=distance)
        (x, y), angle = self.at(best)
        angle = math.radians(angle)
        return best, -(location[0] - x) * math.sin(angle) + (location[1] - y) * math.cos(angle)
