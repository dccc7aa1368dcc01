#!/usr/bin/env python3
"""Makes route-map.dxf: an invented power-line route map, one A2 sheet at 1:2000.

Drawing units are metres on the ground, so a millimetre on paper is two units. The sheet's lower left corner is
the origin; x runs east and y north. Run by hand; the result is kept beside this script and is the same every
time.
"""

import math
import pathlib

from dxf_file import Drawing, Path, point

MILLIMETRE = 2.0  # of paper, in metres on the ground
SHEET = (594 * MILLIMETRE, 420 * MILLIMETRE)
LEFT, BOTTOM, RIGHT, TOP = 50.0, 20.0, SHEET[0] - 20.0, SHEET[1] - 20.0  # the inner frame
LINE_NAME = "110kV青柳线"

FRAME, TITLE, ROAD, RAIL, HOUSE, WATER, RELIEF, PLANT, POWER, POWER_NOTES, OLD_POWER, NAMES, CONTROL = (
    "图框", "图签", "道路", "铁路", "居民地", "水系", "等高线", "植被", "110kV线路", "110kV线路注记", "已有电力线", "注记",
    "控制点")


def unit(angle):
    return math.cos(math.radians(angle)), math.sin(math.radians(angle))


def beside(location, angle, along, left=0.0):
    """The point `along` in the direction of the angle and `left` across it."""
    c, s = unit(angle)
    return location[0] + along * c - left * s, location[1] + along * s + left * c


def direction(start, end):
    return math.degrees(math.atan2(end[1] - start[1], end[0] - start[0]))


def distance(start, end):
    return math.hypot(end[0] - start[0], end[1] - start[1])


def upright(angle):
    """The reading angle of a text along a direction."""
    angle %= 360
    return angle - 180 if 90 < angle <= 270 else angle


def degrees_and_minutes(angle):
    minutes = round(abs(angle) * 60)
    return f"{minutes // 60}%%d{minutes % 60:02d}'"


# Tables


def set_up():
    drawing = Drawing()
    drawing.header = [
        (9, "$INSBASE"), *point(10, (0, 0)), (9, "$EXTMIN"), *point(10, (0, 0)), (9, "$EXTMAX"), *point(10, SHEET),
        (9, "$LIMMIN"), (10, 0.0), (20, 0.0), (9, "$LIMMAX"), (10, SHEET[0]), (20, SHEET[1]),
        (9, "$LTSCALE"), (40, 10.0), (9, "$CELTSCALE"), (40, 1.0), (9, "$CLAYER"), (8, "0"),
        (9, "$TEXTSTYLE"), (7, "工程字"), (9, "$TEXTSIZE"), (40, 5.0), (9, "$CELTYPE"), (6, "ByLayer"),
        (9, "$CECOLOR"), (62, 256), (9, "$LUNITS"), (70, 2), (9, "$LUPREC"), (70, 2), (9, "$AUNITS"), (70, 0),
        (9, "$AUPREC"), (70, 2), (9, "$PDMODE"), (70, 0), (9, "$PDSIZE"), (40, 0.0), (9, "$PLINEGEN"), (70, 0),
        (9, "$INSUNITS"), (70, 6), (9, "$MEASUREMENT"), (70, 1), (9, "$LWDISPLAY"), (290, 1),
        (9, "$DIMSTYLE"), (2, "路径图")]
    # Dash lengths are the usual metric ones; entities scale them to the sheet.
    drawing.linetype("DASHED", "长划线 __ __ __ __", [12.7, -6.35])
    drawing.linetype("HIDDEN", "短划线 _ _ _ _ _ _", [6.35, -3.175])
    drawing.linetype("CENTER", "中心线 ____ _ ____ _", [31.75, -6.35, 6.35, -6.35])
    drawing.linetype("DOT", "点线 . . . . . .", [0, -6.35])
    drawing.linetype("DASHDOT", "点划线 __ . __ .", [12.7, -6.35, 0, -6.35])
    drawing.linetype("DIVIDE", "双点划线 __ . . __", [12.7, -6.35, 0, -6.35, 0, -6.35])
    drawing.linetype("铁路", "黑白相间的铁路 ■ ■ ■", [10, -10])
    drawing.style("工程字", "gbenor.shx", "gbcbig.shx", width=0.8)
    drawing.style("Standard", "txt.shx", "hztxt.shx")
    drawing.style("宋体", "simsun.ttc", typeface="宋体")
    drawing.style("黑体", "simhei.ttf", typeface="黑体")
    drawing.style("仿宋", "simfang.ttf", width=0.7, typeface="仿宋")
    drawing.style("水系字", "simsun.ttc", oblique=15.0, typeface="宋体")
    for name, colour, linetype, weight in (
            ("0", 7, "Continuous", -3), (FRAME, 7, "Continuous", 25), (TITLE, 7, "Continuous", 25),
            (ROAD, 30, "Continuous", 25), (RAIL, 7, "Continuous", 25), (HOUSE, 7, "Continuous", 18),
            (WATER, 150, "Continuous", 25), (RELIEF, 32, "Continuous", 13), (PLANT, 94, "Continuous", 13),
            (POWER, 1, "Continuous", 50), (POWER_NOTES, 1, "Continuous", 18), (OLD_POWER, 6, "Continuous", 18), (NAMES, 7, "Continuous", 18),
            (CONTROL, 5, "Continuous", 18)):
        drawing.layer(name, colour, linetype, weight)
    drawing.layer("辅助线", 8, "HIDDEN", plotted=False)
    for name in ("QDV_ROUTE", "QDV_HOUSE"):
        drawing.application(name)
    style = next(record for record in drawing.tables["STYLE"] if (2, "工程字") in record)
    drawing.dimension_style("Standard", 1.0, style[1][1])
    drawing.dimension_style("路径图", MILLIMETRE, style[1][1])
    drawing.viewport((SHEET[0] / 2, SHEET[1] / 2), SHEET[1], 1.6)
    return drawing


# Symbols: blocks in metres at the map's scale, drawn by block or by layer of the reference


def symbol_blocks(drawing):
    def define(name, draw):
        drawing.block(name)
        with drawing.inside(name):
            draw()

    def lines(*pairs):
        for start, end in pairs:
            drawing.line("0", start, end)

    def paddy():
        lines(((0, 0), (0, 4)), ((0, 0), (-1.4, 1.6)), ((0, 0), (1.4, 1.6)))

    def dry_field():
        lines(((-1.1, 0), (-1.1, 2.4)), ((1.1, 0), (1.1, 2.4)), ((-2.4, 0), (2.4, 0)))

    def wood():
        drawing.circle("0", (0, 1.6), 1.6)

    def orchard():
        drawing.circle("0", (0, 3.0), 1.2)
        lines(((0, 0), (0, 1.8)), ((0, 0), (1.6, 0)))

    def bamboo():
        lines(((0, 0), (0, 4)), ((0, 3), (-1.6, 1.6)), ((0, 3), (1.6, 1.6)))

    def shrub():
        drawing.solid("0", [(-0.6, 0), (0.6, 0), (0.6, 1.2), (-0.6, 1.2)])
        drawing.circle("0", (1.8, 0.4), 0.4)
        drawing.circle("0", (-1.8, 0.4), 0.4)

    def grave():
        drawing.arc("0", (0, 0), 1.8, 0, 180)
        lines(((-2.6, 0), (2.6, 0)))

    def triangulation():
        drawing.polyline("0", [(-2.6, -1.5), (2.6, -1.5), (0, 3)], closed=True)
        drawing.circle("0", (0, 0), 0.3)

    def transformer():
        drawing.circle("0", (0, 1.5), 1.8)
        drawing.circle("0", (0, -1.0), 1.8)

    def pole():
        drawing.circle("0", (0, 0), 1.0)

    def arrows():  # a line that goes on, both ways along x
        for side in (1, -1):
            drawing.polyline("0", [(side * 1.0, 0, 0, 0, 0), (side * 7, 0, 0, 1.6, 0), (side * 10, 0, 0, 0, 0)])

    def north():
        drawing.solid("0", [(0, 26), (-5, 0), (0, 6)])
        drawing.polyline("0", [(0, 26), (5, 0), (0, 6)], closed=True)
        drawing.text("0", "北", (0, 29), 7, "黑体", align=("centre", "baseline"))

    def flow():
        drawing.polyline("0", [(0, 0, 0, 0, 0), (16, 0, 0, 3.2, 0), (22, 0, 0, 0, 0)])

    for name, draw in (("水田", paddy), ("旱地", dry_field), ("林地", wood), ("果园", orchard), ("竹林", bamboo),
                       ("灌木", shrub), ("坟地", grave), ("三角点", triangulation), ("变压器", transformer),
                       ("电杆", pole), ("线路走向", arrows), ("指北针", north), ("流向", flow)):
        define(name, draw)
    tower_block(drawing, "直线塔", False)
    tower_block(drawing, "转角塔", True)


def tower_block(drawing, name, angle_tower):
    """A square with its diagonals, or filled for an angle tower; the number, height and span are attributes."""
    drawing.block(name)
    with drawing.inside(name):
        drawing.polyline("0", [(-3, -3), (3, -3), (3, 3), (-3, 3)], closed=True)
        if angle_tower:
            drawing.solid("0", [(-3, -3), (3, -3), (3, 3), (-3, 3)])
        else:
            drawing.line("0", (-3, -3), (3, 3))
            drawing.line("0", (-3, 3), (3, -3))
        for index, (tag, prompt) in enumerate((("杆塔号", "杆塔编号"), ("呼高", "杆塔型式和呼称高(m)"),
                                               ("档距", "到下一基的档距(m)"))):
            drawing.attribute_definition(POWER_NOTES, tag, prompt, "", (0, 14 - 6 * index), 5, "工程字", ("centre", "baseline"))


# Map features


class Features:
    """The paths that several features refer to."""

    def __init__(self):
        self.river = Path((330, 850), -80, [(90, 0), (130, 30), (60, 0), (140, -62), (40, 0), (150, 50), (60, 0),
                                            (150, -50), (160, 20)])
        self.river_width = 38.0
        self.highway = Path((20, 280), 3, [(150, 0), (160, 9), (200, 0), (180, -16), (190, 0), (160, 8), (180, 0)])
        self.highway_width = 9.0
        self.junction = 720.0
        crossing, angle = self.highway.at(self.junction)
        self.side_road = Path(crossing, angle + 90, [(90, 0), (120, 14), (90, 0), (110, -12), (240, 0)])
        self.side_width = 6.0
        self.railway = Path((846, 850), -62, [(120, 0), (240, 24), (300, -14)])
        self.lane_mouth = 495.0
        crossing, angle = self.highway.at(self.lane_mouth)
        self.lane = Path(crossing, angle - 90, [(40, 0), (90, 20), (90, -34), (30, 0)])
        self.lane_width = 4.0


def between_frame(path, offset, begin_measure, end_measure):
    """The stations at which a parallel enters and leaves the map."""
    middle = path.length / 2
    return (path.station(begin_measure, offset, 0, middle), path.station(end_measure, offset, middle, path.length))


def river(drawing, features):
    path = features.river
    half = features.river_width / 2
    bridges = [crossing_stations(path, features.highway, features.highway_width / 2 + 0.5)]
    for side in (half, -half):
        begin, end = between_frame(path, side, lambda p: TOP - p[1], lambda p: BOTTOM - p[1])
        for low, high in bridges:
            first = path.station(lambda p: features.highway.nearest(p)[1] - features.highway_width / 2 - 0.5, side, low, high)
            second = path.station(lambda p: features.highway.nearest(p)[1] + features.highway_width / 2 + 0.5, side, low, high)
            drawing.polyline(WATER, path.parallel(side, begin, first))
            begin = second
        drawing.polyline(WATER, path.parallel(side, begin, end))
    # A shoal and the name along the stream, read downstream.
    shoal_begin, shoal_end = 330, 380
    outline = path.parallel(2, shoal_begin, shoal_end)
    back = path.parallel(9, shoal_begin, shoal_end)
    drawing.polyline(WATER, outline[:-1] + [(*outline[-1][:2], 0.9)] +
                     [(x, y, -outline[i - 1][2] if i else 0) for i, (x, y, _) in reversed(list(enumerate(back)))],
                     closed=True, linetype="DOT", linetype_scale=0.03)
    for character, station in zip("清溪河", (105, 145, 185)):
        location, angle = path.at(station)
        drawing.text(WATER, character, location, 9, "水系字", rotation=upright(angle + 90),
                     align=("centre", "middle"))
    for station in (300, 640):
        location, angle = path.at(station)
        drawing.insert(WATER, "流向", beside(location, angle, -11), rotation=angle % 360)


def crossing_stations(path, other, half_width):
    """Two stations of a path well before and after it crosses another."""
    stations = [path.length * index / 400 for index in range(401)]
    sides = [other.nearest(path.at(station)[0])[1] for station in stations]
    middle = next(stations[i] for i in range(400) if sides[i] * sides[i + 1] <= 0)
    return middle - half_width - 40, middle + half_width + 40


def bridge(drawing, features):
    """Wing walls of the highway's bridge over the river."""
    path = features.highway
    half = features.highway_width / 2
    low, high = crossing_stations(path, features.river, features.river_width / 2)
    first = path.station(lambda p: features.river.nearest(p)[1] + features.river_width / 2 + 4, 0, low, (low + high) / 2)
    last = path.station(lambda p: features.river.nearest(p)[1] - features.river_width / 2 - 4, 0, (low + high) / 2, high)
    if first > last:
        first, last = last, first
    for side in (1, -1):
        offset = side * (half + 1.2)
        start, start_angle = path.at(first, offset)
        end, end_angle = path.at(last, offset)
        vertices = [beside(start, start_angle, -3.5, side * 3.5), *path.parallel(offset, first, last),
                    beside(end, end_angle, 3.5, side * 3.5)]
        drawing.polyline(ROAD, vertices, colour=7)
    location, angle = path.at((first + last) / 2, half + 6)
    drawing.text(ROAD, "清溪河大桥", location, 5, "工程字", rotation=angle, align=("centre", "baseline"), colour=7)


def roads(drawing, features):
    half = features.highway_width / 2
    side_half = features.side_width / 2
    radius = 10.0
    path = features.highway
    lane_half = features.lane_width / 2
    for side, mouth, mouth_half in ((half, features.junction, side_half), (-half, features.lane_mouth, lane_half)):
        begin, end = between_frame(path, side, lambda p: p[0] - LEFT, lambda p: p[0] - RIGHT)
        drawing.polyline(ROAD, path.parallel(side, begin, mouth - mouth_half - radius))
        drawing.polyline(ROAD, path.parallel(side, mouth + mouth_half + radius, end))
        sign = 1 if side > 0 else -1
        for along in (-1, 1):
            centre, angle = path.at(mouth + along * (mouth_half + radius), side + sign * radius)
            toward_road = angle - 90 * sign
            toward_mouth = angle + (0 if along < 0 else 180)
            start, finish = sorted_arc(toward_road, toward_mouth)
            drawing.arc(ROAD, centre, radius, start % 360, finish % 360)
    drawing.polyline(ROAD, path.parallel(0, *between_frame(path, 0, lambda p: p[0] - LEFT, lambda p: p[0] - RIGHT)),
                     linetype="CENTER", linetype_scale=0.04, lineweight=13, generate=True)
    side_path = features.side_road
    start = half + radius
    for side in (side_half, -side_half):
        end = side_path.station(lambda p: TOP - p[1], side, 300, side_path.length)
        drawing.polyline(ROAD, side_path.parallel(side, start, end))
    lane = features.lane
    for side in (lane_half, -lane_half):
        drawing.polyline(ROAD, lane.parallel(side, start, lane.length))
    for text, station in (("S207省道", 300), ("S207省道", 990)):
        location, angle = path.at(station, half + 3)
        drawing.text(ROAD, text, location, 5, "工程字", rotation=angle, align=("centre", "baseline"), colour=7)
    location, angle = path.at(200, -half - 3)
    drawing.text(ROAD, "至 青石镇", location, 5, "工程字", rotation=angle, align=("right", "top"), colour=7)
    location, angle = path.at(1080, -half - 3)
    drawing.text(ROAD, "至 望江县城", location, 5, "工程字", rotation=angle, align=("left", "top"), colour=7)
    location, angle = side_path.at(80, side_half + 2.5)
    drawing.text(ROAD, "柳林路", location, 5, "工程字", rotation=upright(angle), align=("centre", "baseline"), colour=7)
    # A cart track and a footpath.
    drawing.heavy_polyline(ROAD, [(232, 297), (226, 330), (238, 368), (230, 410), (246, 452), (240, 500), (252, 545)],
                           linetype="DASHED", linetype_scale=0.05)
    drawing.heavy_polyline(ROAD, [(776, 350), (780, 300), (794, 254), (860, 242), (960, 214), (1040, 206), (1120, 186), (1158, 178)],
                           linetype="HIDDEN", linetype_scale=0.05)


def sorted_arc(one, other):
    """The start and end that make the shorter counter-clockwise arc of two directions."""
    return (one, other) if (other - one) % 360 <= 180 else (other, one)


def railway(drawing, features):
    path = features.railway
    begin, end = between_frame(path, 0, lambda p: TOP - p[1], lambda p: p[0] - RIGHT)
    for side in (1.5, -1.5):
        limits = between_frame(path, side, lambda p: TOP - p[1], lambda p: p[0] - RIGHT)
        drawing.polyline(RAIL, path.parallel(side, *limits))
    drawing.polyline(RAIL, path.parallel(0, begin, end), width=3.0, linetype="铁路", linetype_scale=0.1,
                     generate=True)
    location, angle = path.at(205, 5)
    drawing.text(RAIL, "望青铁路", location, 5, "工程字", rotation=upright(angle), align=("centre", "baseline"))


class Village:
    """Houses set out by the caller; each is an outline with its material and storeys."""

    def __init__(self, drawing):
        self.drawing = drawing
        self.count = 0

    def house(self, centre, width, depth, angle, label, notch=0.0):
        """A rectangle, or with a notch an L of which a corner is left out."""
        w, d = width / 2, depth / 2
        corners = [(-w, -d), (w, -d), (w, d), (-w, d)]
        if notch:
            corners = [(-w, -d), (w, -d), (w, d - notch), (w - notch * 1.4, d - notch), (w - notch * 1.4, d), (-w, d)]
        outline = [beside(centre, angle, x, y) for x, y in corners]
        self.count += 1
        storeys = int(label[-1]) if label[-1].isdigit() else 1
        data = [(1001, "QDV_HOUSE"), (1000, label.rstrip("0123456789")), (1070, storeys),
                (1041, round(width, 2)), (1041, round(depth, 2))]
        self.drawing.polyline(HOUSE, outline, closed=True, xdata=data)
        place = beside(centre, angle, -notch * 0.6, -notch * 0.42)
        self.drawing.text(HOUSE, label, place, 4, "工程字", rotation=upright(angle), align=("centre", "middle"))

    def row(self, path, side, setback, begin, sizes, gap=5.0):
        """Houses one after another along a road. A size is (frontage, depth, label[, notch]) or a number to
        leave a gap of that length."""
        station = begin
        for size in sizes:
            if isinstance(size, (int, float)):
                station += size
                continue
            width, depth, label, *notch = size
            location, angle = path.at(station + width / 2)
            offset = side * (setback + depth / 2)
            self.house(beside(location, angle, 0, offset), width, depth, angle if side < 0 else angle + 180, label,
                       *notch)
            station += width + gap


def villages(drawing, features):
    village = Village(drawing)
    side = features.side_road
    village.row(side, -1, 11, 205, [(15, 11, "砖3"), (14, 11, "砖2"), (16, 12, "砖3", 4), (12, 10, "混2"), 4,
                                    (15, 12, "砖4"), (13, 10, "砖2"), (16, 11, "砖3"), (12, 9, "混1"), (15, 12, "砖5")])
    village.row(side, -1, 30, 208, [(13, 10, "砖2"), (15, 12, "混3"), 8, (14, 10, "砖2"), (12, 10, "土1"), 6,
                                    (16, 12, "砖3", 4), (13, 10, "砖2"), (12, 9, "简")])
    village.row(side, -1, 50, 240, [(14, 10, "砖1"), (13, 11, "砖2"), 7, (16, 11, "混2"), (12, 10, "砖2"), (12, 8, "棚")])
    village.row(side, 1, 11, 300, [(14, 11, "砖2"), (16, 12, "砖4"), (13, 10, "砖2"), (15, 12, "砖3", 4),
                                   (12, 10, "混1"), (14, 10, "砖2")])
    road = features.highway
    village.row(road, 1, 13, 62, [(15, 11, "砖2"), (13, 10, "砖2"), (16, 12, "砖3", 4), (12, 9, "土1"), 34,
                                  (14, 11, "砖3"), (15, 10, "混2"), (12, 9, "简")])
    village.row(road, 1, 33, 70, [(14, 10, "混1"), (15, 12, "砖2"), 6, (13, 10, "砖1"), 42, (14, 10, "砖2")])
    village.row(road, -1, 13, 70, [(13, 10, "砖2"), (14, 11, "砖2"), (12, 9, "棚")])
    lane = features.lane
    village.row(lane, 1, 8, 50, [(14, 10, "砖2"), (15, 11, "砖3"), (13, 10, "混2"), (12, 9, "砖1"), 6, (14, 11, "砖2"),
                                 (15, 10, "砖2", 4), (14, 10, "砖2"), (13, 10, "混2")])
    village.row(lane, -1, 8, 128, [(13, 10, "砖2"), (15, 11, "砖2", 4), (14, 10, "混1"), (13, 9, "土1"), (14, 10, "砖3")])
    village.row(lane, 1, 26, 56, [(14, 10, "砖2"), (13, 9, "简"), 9, (14, 10, "砖2"), (12, 9, "混1")])
    for text, location, height in (("柳林村", (838, 712), 9), ("石板坡", (150, 372), 9), ("下河湾", (640, 268), 9)):
        drawing.text(NAMES, text, location, height, "黑体", align=("centre", "middle"))
    return village


def school_and_station(drawing, features):
    """Two compounds whose walls are still to be drawn."""
    village = Village(drawing)
    village.house((566, 706), 46, 12, 0, "砖4")
    village.house((530, 668), 12, 44, 0, "砖3")
    village.house((612, 690), 14, 12, 0, "混1")
    track = [(566, 644), (596, 644, 1.0), (596, 676), (566, 676, 1.0)]
    drawing.polyline(HOUSE, track, closed=True)
    inner = [(566, 648), (596, 648, 1.0), (596, 672), (566, 672, 1.0)]
    drawing.polyline(HOUSE, inner, closed=True)
    drawing.text(NAMES, "操场", (581, 660), 5, "工程字", align=("centre", "middle"))
    drawing.text(NAMES, "柳林小学", (566, 690), 6, "宋体", align=("centre", "middle"))
    village.house((917, 404), 30, 12, 3, "混2")
    village.house((955, 428), 12, 10, 3, "砖1")
    for x in (900, 916, 932):
        drawing.insert(OLD_POWER, "变压器", (x, 425), rotation=3.0)
    drawing.text(NAMES, "35kV柳林变电站", (925, 446), 5, "宋体", rotation=3.0, align=("centre", "middle"))


def ponds(drawing):
    drawing.polyline(WATER, [(560, 392, 0.35), (604, 386, 0.3), (626, 412, 0.42), (598, 436, 0.12), (566, 428, 0.38)],
                     closed=True)
    drawing.text(WATER, "鱼塘", (592, 411), 6, "水系字", align=("centre", "middle"))
    drawing.polyline(WATER, [(664, 222, 0.4), (688, 210, 0.35), (700, 230, 0.45), (676, 246, 0.2)], closed=True)
    drawing.text(WATER, "塘", (682, 228), 6, "水系字", align=("centre", "middle"))
    drawing.polyline(WATER, [(300, 512, 0.3), (330, 504, 0.42), (338, 530, 0.35), (310, 538, 0.4)], closed=True)
    drawing.text(WATER, "塘", (320, 521), 6, "水系字", align=("centre", "middle"))
    # A ditch that feeds the fish pond.
    drawing.polyline(WATER, [(506, 556), (522, 512, 0.1), (540, 470), (572, 431)], lineweight=35)


def contours(drawing):
    hill(drawing, (214, 152), (142, 104), 18, 300, 5, "老鹰岩", 336.4, lambda t: 1 + 0.10 * math.cos(2 * t + 0.6) +
         0.06 * math.sin(3 * t) + 0.03 * math.cos(5 * t + 1.1))
    hill(drawing, (1088, 704), (66, 62), -10, 290, 5, "尖山子", 311.8, lambda t: 1 + 0.08 * math.cos(2 * t) +
         0.05 * math.sin(3 * t + 0.4) + 0.03 * math.sin(5 * t))


def hill(drawing, centre, radii, turn, low, interval, name, summit, shape):
    """Nested contours as heavy polylines at their elevations; every fifth is drawn heavier and numbered."""
    count = math.ceil((summit - low) / interval)
    for index in range(count):
        share = ((count - index - 0.55) / count) ** 0.9
        elevation = float(low + index * interval)
        wobble = 1 - 0.5 * index / count
        vertices = []
        steps = 72 if share > 0.6 else 48 if share > 0.3 else 30
        main = elevation % (5 * interval) == 0
        skip = 0.16 / share * 40 / radii[0] if main else 0.0  # room for the number
        for step in range(steps + (1 if main else 0)):
            t = skip + (2 * math.pi - 2 * skip) * step / steps if main else 2 * math.pi * step / steps
            scale = share * (1 + (shape(t) - 1) * wobble)
            vertices.append(beside(centre, turn, radii[0] * scale * math.cos(t), radii[1] * scale * math.sin(t)))
        drawing.heavy_polyline(RELIEF, vertices, closed=not main, elevation=elevation,
                               lineweight=25 if main else None)
        if main:
            scale = share * (1 + (shape(0) - 1) * wobble)
            place = beside(centre, turn, radii[0] * scale, 0)
            drawing.text(RELIEF, f"{elevation:.0f}", place, 4, "工程字", rotation=upright(turn - 90),
                         align=("centre", "middle"))
    drawing.insert(CONTROL, "三角点", centre)
    drawing.text(CONTROL, name, (centre[0] + 6, centre[1] + 1), 5, "工程字", align=("left", "baseline"))
    drawing.line(CONTROL, (centre[0] + 6, centre[1] - 0.5), (centre[0] + 24, centre[1] - 0.5))
    drawing.text(CONTROL, f"{summit:.1f}", (centre[0] + 15, centre[1] - 2), 4, "工程字", align=("centre", "top"))


def planted(drawing, kind, outline, spacing, angle=0.0, name=None, name_at=None):
    """A dotted boundary filled with the symbol of what grows there."""
    drawing.polyline(PLANT, outline, closed=True, linetype="DOT", linetype_scale=0.035)
    inner = shrunk(outline, 6.0)
    xs, ys = [p[0] for p in outline], [p[1] for p in outline]
    row = 0
    y = min(ys) + spacing * 0.5
    while y < max(ys):
        x = min(xs) + spacing * (0.5 if row % 2 == 0 else 1.0)
        while x < max(xs):
            near_name = name_at and abs(x - name_at[0]) < 20 and abs(y + 2 - name_at[1]) < 9
            if inside((x, y), inner) and inside((x, y + 4), inner) and not near_name:
                drawing.insert(PLANT, kind, (x, y), rotation=angle)
            x += spacing
        y += spacing * 0.8
        row += 1
    if name:
        drawing.text(PLANT, name, name_at, 6, "仿宋", align=("centre", "middle"), colour=7)


def shrunk(outline, margin):
    """A convex outline moved inward, roughly: every corner toward the centre by the margin and a bit."""
    cx = sum(p[0] for p in outline) / len(outline)
    cy = sum(p[1] for p in outline) / len(outline)
    result = []
    for x, y, *_ in outline:
        length = math.hypot(x - cx, y - cy)
        result.append((x + (cx - x) * margin * 1.2 / length, y + (cy - y) * margin * 1.2 / length))
    return result


def inside(location, outline):
    x, y = location
    result = False
    for (ax, ay), (bx, by) in zip(outline, outline[1:] + outline[:1]):
        if (ay > y) != (by > y) and x < (bx - ax) * (y - ay) / (by - ay) + ax:
            result = not result
    return result


def vegetation(drawing):
    planted(drawing, "旱地", [(66, 436), (216, 446), (222, 500), (234, 560), (60, 590)], 26, name="旱地", name_at=(140, 510))
    planted(drawing, "灌木", [(262, 400), (372, 410), (386, 470), (268, 486)], 26)
    planted(drawing, "水田", [(646, 378), (700, 376), (704, 440), (700, 506), (566, 530), (590, 452), (640, 430)], 24)
    planted(drawing, "水田", [(508, 366), (548, 372), (544, 440), (500, 468), (490, 390)], 24)
    planted(drawing, "林地", [(450, 800), (640, 804), (628, 742), (486, 736)], 22, name="松林", name_at=(560, 772))
    planted(drawing, "果园", [(642, 152), (760, 148), (754, 196), (648, 194)], 22)
    planted(drawing, "林地", [(850, 146), (1010, 148), (950, 200), (850, 226)], 22)
    planted(drawing, "竹林", [(822, 282), (890, 262), (960, 240), (1010, 262), (990, 296), (880, 300)], 24)
    planted(drawing, "旱地", [(880, 560), (966, 548), (930, 640), (884, 690)], 26)
    planted(drawing, "灌木", [(1066, 566), (1114, 560), (1110, 610), (1070, 616)], 24)
    for location in ((1066, 262), (1080, 256), (1094, 264), (1074, 272)):
        drawing.insert(PLANT, "坟地", location, colour=7)
    drawing.text(NAMES, "坟地", (1080, 286), 5, "工程字", align=("centre", "middle"))


def spot_heights(drawing):
    for x, y, height in ((112, 622, 288.4), (330, 590, 281.7), (352, 360, 279.2), (468, 700, 283.5), (645, 575, 282.9),
                         (862, 590, 284.1), (1010, 440, 286.6), (1120, 420, 287.3), (700, 300, 278.8),
                         (1040, 330, 285.0), (420, 90, 276.3), (940, 770, 289.9)):
        drawing.circle(CONTROL, (x, y), 0.5)
        drawing.point(CONTROL, (x, y, height))
        drawing.text(CONTROL, f"{height:.1f}", (x + 2, y), 4, "工程字", align=("left", "middle"))


def old_power_line(drawing):
    poles = [(RIGHT, 318), (1010, 312), (880, 322), (798, 332), (786, 422), (792, 506), (818, 586), (830, 646)]
    for start, end in zip(poles, poles[1:]):
        angle = direction(start, end)
        clear = 0.0 if start[0] == RIGHT else 1.0
        drawing.line(OLD_POWER, beside(start, angle, clear), beside(end, angle, -1.0))
    for index, location in enumerate(poles[1:], 1):
        drawing.insert(OLD_POWER, "电杆", location)
        angle = direction(poles[index - 1], location)
        if 1 < index < len(poles) - 1:
            drawing.insert(OLD_POWER, "线路走向", location, rotation=angle % 360)
    drawing.insert(OLD_POWER, "变压器", (poles[-1][0], poles[-1][1] + 4.0), scale=0.8)
    for start, end, side in ((poles[1], poles[2], 3), (poles[4], poles[5], 3)):
        angle = direction(start, end)
        middle = ((start[0] + end[0]) / 2, (start[1] + end[1]) / 2)
        turned = upright(angle)
        drawing.text(OLD_POWER, "10kV柳林线", beside(middle, turned, 0, side), 5, "工程字", rotation=turned,
                     align=("centre", "baseline"))


class Tower:
    def __init__(self, number, location, kind, height):
        self.number, self.location, self.kind, self.height = number, location, kind, height


def tower_line(drawing):
    """The 110 kV line: towers with their attributes, spans, angle marks, and extended data for calculation."""
    first, corner, second, last = (112, 752), (268, 664), (820, 478), (1072, 508)
    share = 0.52
    between = (corner[0] + (second[0] - corner[0]) * share, corner[1] + (second[1] - corner[1]) * share)
    towers = [Tower("N21", first, "Z", "ZM1-24"), Tower("N22", corner, "J", "JG2-21"), Tower("N23", between, "Z", "ZM2-30"),
              Tower("N24", second, "J", "JG1-24"), Tower("N25", (946, 478 + 126 * 30 / 252), "Z", "ZM1-27"),
              Tower("N26", last, "Z", "ZM2-33")]
    west = beside(first, direction(corner, first), (first[0] - LEFT) / -unit(direction(corner, first))[0])
    east = beside(last, direction(second, last), (RIGHT - last[0]) / unit(direction(second, last))[0])
    points = [west, *(tower.location for tower in towers), east]
    for start, end in zip(points, points[1:]):
        angle = direction(start, end)
        begin = start if start == west else beside(start, angle, 3.2)
        finish = end if end == east else beside(end, angle, -3.2)
        drawing.line(POWER, begin, finish)
    for index, tower in enumerate(towers, 1):
        incoming = direction(points[index - 1], tower.location)
        outgoing = direction(tower.location, points[index + 1])
        turn = (outgoing - incoming + 180) % 360 - 180
        angle = incoming + turn / 2
        span = distance(tower.location, points[index + 1])
        last_tower = index == len(towers)
        middle = beside(tower.location, outgoing, span / 2, 3)
        label = beside(tower.location, angle, 0, 14.5 if turn <= 0.01 else -17)
        below = beside(label, angle, 0, -6.5) if turn <= 0.01 else beside(label, angle, 0, -6.5)
        attributes = [("杆塔号", tower.number, label, 5, "工程字", angle, ("centre", "baseline")),
                      ("呼高", tower.height, below, 4, "工程字", angle, ("centre", "baseline")),
                      ("档距", "" if last_tower else f"{span:.0f}", middle, 5, "工程字", outgoing,
                       ("centre", "baseline"))]
        data = [(1001, "QDV_ROUTE"), (1000, LINE_NAME), (1002, "{"), (1000, tower.kind), (1070, index),
                (1040, round(span, 2)), (1040, round(turn, 4)), (1002, "}"), (1011, *[tower.location[0]]),
                (1021, tower.location[1]), (1031, 0.0)]
        extension = drawing.handle() if tower.kind == "J" else None
        own = drawing.insert(POWER, "转角塔" if tower.kind == "J" else "直线塔", tower.location,
                             rotation=angle % 360, attributes=attributes, attribute_layer=POWER_NOTES, xdata=data,
                             extension=extension)
        if extension:
            angle_mark(drawing, tower, incoming, turn)
            record = drawing.handle()
            drawing.dictionary(own, [("QDV_ANGLE", record)], extension)
            drawing.objects.append([(0, "XRECORD"), (5, record), (330, extension), (100, "AcDbXrecord"), (280, 1),
                                    (40, round(turn, 6)), (1, "左转" if turn > 0 else "右转")])
    start, end = towers[1].location, towers[3].location
    angle = direction(start, end)
    place = beside(start, angle, 0.64 * distance(start, end), 4)
    drawing.text(POWER_NOTES, f"新建{LINE_NAME}", place, 5, "黑体", rotation=angle, align=("centre", "baseline"))
    return towers


def angle_mark(drawing, tower, incoming, turn):
    """The old direction carried on, the arc to the new one, and the angle written beside."""
    drawing.line(POWER, beside(tower.location, incoming, 4), beside(tower.location, incoming, 46), linetype="DASHED",
                 linetype_scale=0.03, lineweight=18)
    start, end = sorted_arc(incoming, incoming + turn)
    drawing.arc(POWER, tower.location, 34, start % 360, end % 360, lineweight=18)
    text = ("左" if turn > 0 else "右") + degrees_and_minutes(turn)
    side = -1 if turn > 0 else 1
    drawing.text(POWER_NOTES, text, beside(tower.location, incoming, 50, side * 2.0), 5, "工程字", rotation=upright(incoming),
                 align=("left", "bottom" if side > 0 else "top"))


# The sheet


def frame(drawing):
    drawing.block("A2图框")
    with drawing.inside("A2图框"):
        drawing.polyline(FRAME, [(0, 0), (SHEET[0], 0), SHEET, (0, SHEET[1])], closed=True, lineweight=18)
        drawing.polyline(FRAME, [(LEFT, BOTTOM), (RIGHT, BOTTOM), (RIGHT, TOP), (LEFT, TOP)], closed=True, width=1.4)
        drawing.attribute_definition(FRAME, "图幅", "图幅代号", "A2", (RIGHT, TOP + 4), 5, "工程字", ("right", "baseline"))
    drawing.insert(FRAME, "A2图框", (0, 0), attributes=[
        ("图幅", "A2", (RIGHT, TOP + 4), 5, "工程字", 0.0, ("right", "baseline"))])
    for x in range(200, 1200, 200):
        for y in range(200, 800, 200):
            drawing.line(CONTROL, (x - 5, y), (x + 5, y), colour=8)
            drawing.line(CONTROL, (x, y - 5), (x, y + 5), colour=8)
        drawing.line(FRAME, (x, TOP), (x, TOP + 6), lineweight=13)
        drawing.text(FRAME, f"{512000 + x}", (x + 1.5, TOP + 2), 4, "工程字", align=("left", "baseline"))
    for y in range(200, 800, 200):
        drawing.line(FRAME, (LEFT - 6, y), (LEFT, y), lineweight=13)
        drawing.text(FRAME, f"{3356000 + y}", (LEFT - 2, y + 1.5), 4, "工程字", rotation=90.0, align=("left", "bottom"))


TITLE_WIDTH, TITLE_HEIGHT = 180 * MILLIMETRE, 56 * MILLIMETRE


def title_block(drawing):
    """The title block with its lower right corner at the insertion point."""
    w, h = TITLE_WIDTH, TITLE_HEIGHT
    column = -w + 120.0
    rows = [14.0, 28.0, 42.0, 56.0, 70.0]
    fields = [("单位名称", "设计单位", (-w / 2, h - 17), 9, "黑体", "望江电力勘测设计院"),
              ("工程名称", "工程名称", ((column) / 2, 68), 7, "宋体", "青石—柳林110kV送电线路工程"),
              ("图名", "图名", (column / 2, 44), 8, "黑体", "线路路径图"),
              ("图号", "图号", ((column + 46) / 2, 13), 5, "工程字", "WJ-0712S-D0102-03"),
              ("批准", "批准", (-w + 60, 72.5), 5, "工程字", "江望平"), ("审核", "审核", (-w + 60, 58.5), 5, "工程字", "苏青原"),
              ("校核", "校核", (-w + 60, 44.5), 5, "工程字", "陈山柏"), ("设计", "设计", (-w + 60, 30.5), 5, "工程字", "林小溪"),
              ("比例", "比例", (-w + 60, 16.5), 5, "工程字", "1:2000"), ("日期", "日期", (-w + 60, 2.5), 5, "工程字", "2024.05")]
    drawing.block("图签")
    with drawing.inside("图签"):
        drawing.polyline(TITLE, [(0, 0), (0, h), (-w, h), (-w, 0)], closed=True, width=1.0)
        drawing.line(TITLE, (-w, h - 28), (0, h - 28))
        drawing.line(TITLE, (column, 0), (column, h - 28))
        drawing.line(TITLE, (-w + 34, 0), (-w + 34, h - 28))
        for y in rows:
            drawing.line(TITLE, (-w, y), (column, y))
        drawing.line(TITLE, (column, 56), (0, 56))
        drawing.line(TITLE, (column, 32), (0, 32))
        drawing.line(TITLE, (column + 46, 0), (column + 46, 32))
        drawing.text(TITLE, "图号", (column + 23, 13), 5, "工程字", align=("centre", "baseline"))
        for tag, prompt, place, height, style, _ in fields:
            baseline = "middle" if tag in ("单位名称", "工程名称", "图名") else "baseline"
            drawing.attribute_definition(TITLE, tag, prompt, "", place, height, style, ("centre", baseline))
            if tag in ("批准", "审核", "校核", "设计", "比例", "日期"):
                drawing.text(TITLE, tag, (-w + 17, place[1]), 5, "工程字", align=("centre", "baseline"))
    attributes = []
    for tag, _, (x, y), height, style, value in fields:
        baseline = "middle" if tag in ("单位名称", "工程名称", "图名") else "baseline"
        attributes.append((tag, value, (RIGHT + x, BOTTOM + y), height, style, 0.0, ("centre", baseline)))
    drawing.insert(TITLE, "图签", (RIGHT, BOTTOM), attributes=attributes)


def legend(drawing):
    """The explanation of signs, left of the title block."""
    left, bottom, width, height = RIGHT - TITLE_WIDTH - 190, BOTTOM, 190.0, TITLE_HEIGHT
    drawing.polyline(FRAME, [(left, bottom), (left + width, bottom), (left + width, bottom + height),
                             (left, bottom + height)], closed=True, lineweight=25)
    drawing.text(FRAME, "图  例", (left + width / 2, bottom + height - 9), 7, "黑体", align=("centre", "middle"))
    entries = [("直线塔", "直线杆塔", POWER), ("转角塔", "转角杆塔", POWER), ("电杆", "10kV电杆", OLD_POWER),
               ("变压器", "变压器", OLD_POWER), ("三角点", "三角点", CONTROL), ("水田", "水田", PLANT),
               ("旱地", "旱地", PLANT), ("林地", "林地", PLANT), ("果园", "果园", PLANT), ("竹林", "竹林", PLANT),
               ("灌木", "灌木", PLANT), ("坟地", "坟地", PLANT)]
    for index, (name, text, layer) in enumerate(entries):
        column, row = divmod(index, 6)
        x, y = left + 18 + column * 95, bottom + height - 27 - row * 15
        drawing.insert(layer, name, (x, y - (0 if layer in (POWER, OLD_POWER, CONTROL) else 1.5)))
        drawing.text(FRAME, text, (x + 16, y), 5, "工程字", align=("left", "middle"))


def notes(drawing):
    left, bottom = RIGHT - TITLE_WIDTH - 190, BOTTOM + TITLE_HEIGHT
    drawing.mtext(NAMES, "{\\fSimHei|b0|i0|c134|p2;说明：}\\P1. 本图采用独立坐标系，1985国家高程基准。\\P"
                  "2. 杆塔呼称高和档距以米计。\\P3. 图中地名均为虚构。", (1010, 806), 5, 154, "宋体")
    drawing.mtext(NAMES, "本段跨越：\\P10kV线路 1处\\P铁路 1处\\P公路 1处\\P清溪河 1处", (762, 806), 5, 90, "工程字")


def route_data(drawing):
    """A dictionary of the route's figures beside the drawing's own."""
    data, general, crossings = (drawing.handle() for _ in range(3))
    drawing.dictionary(drawing.root, [("GENERAL", general), ("CROSSINGS", crossings)], data)
    drawing.objects.append([(0, "XRECORD"), (5, general), (330, data), (100, "AcDbXrecord"), (280, 1),
                            (1, LINE_NAME), (40, 110.0), (70, 6), (290, 1), *point(10, (0, 0))])
    drawing.objects.append([(0, "XRECORD"), (5, crossings), (330, data), (100, "AcDbXrecord"), (280, 1),
                            (1, "清溪河"), (1, "柳林路"), (1, "10kV柳林线"), (1, "望青铁路")])
    return data


def main():
    drawing = set_up()
    symbol_blocks(drawing)
    features = Features()
    contours(drawing)
    river(drawing, features)
    ponds(drawing)
    vegetation(drawing)
    roads(drawing, features)
    bridge(drawing, features)
    railway(drawing, features)
    villages(drawing, features)
    school_and_station(drawing, features)
    spot_heights(drawing)
    old_power_line(drawing)
    tower_line(drawing)
    frame(drawing)
    title_block(drawing)
    legend(drawing)
    notes(drawing)
    drawing.insert(FRAME, "指北针", (1130, 560))
    data = route_data(drawing)
    drawing.finish_objects([("QDV_ROUTE_DATA", data)], ("ISO_A2_(594.00_x_420.00_MM)", 594, 420))
    drawing.write(pathlib.Path(__file__).with_name("route-map.dxf"))


if __name__ == "__main__":
    main()
