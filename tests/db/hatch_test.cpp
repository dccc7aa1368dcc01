// Hatches: lines within boundaries, islands, areas, fillings, and what their records hold.
#include "entitysamples.h"

#include <algorithm>
#include <cmath>
#include <random>

using namespace testing_entities;
using host::BoundaryPiece;
using host::HatchLine;
using host::HatchLoop;
using host::HatchPatternLine;
using host::HatchStyleKind;

namespace {

class HatchTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
};

HatchLoop polygon(std::initializer_list<host::BulgeVertex> vertices) {
    HatchLoop loop;
    loop.type = HatchLoop::polylineFlag;
    loop.path.closed = true;
    loop.path.vertices = vertices;
    return loop;
}

HatchLoop square(double low, double high) {
    return polygon({{{low, low}}, {{high, low}}, {{high, high}}, {{low, high}}});
}

HatchLoop circle(const AcGePoint2d& center, double radius) {
    HatchLoop loop;
    host::HatchEdge& edge = loop.edges.emplace_back();
    edge.kind = host::HatchEdge::Kind::arc;
    edge.start = center;
    edge.major.set(radius, 0);
    edge.endAngle = host::twoPi;
    return loop;
}

using Loops = std::vector<std::vector<BoundaryPiece>>;

Loops piecesOf(const std::vector<const HatchLoop*>& loops) {
    Loops pieces;
    for (const HatchLoop* loop : loops) {
        pieces.push_back(host::boundaryPieces(*loop));
    }
    return pieces;
}

/// Winding by summed angles over fine chords: shares nothing with the sweep.
bool inside(const std::vector<BoundaryPiece>& pieces, const AcGePoint2d& point) {
    double turn = 0.0;
    const auto chord = [&](const AcGePoint2d& a, const AcGePoint2d& b) {
        const AcGeVector2d u = a - point;
        const AcGeVector2d v = b - point;
        turn += std::atan2(u.crossProduct(v), u.dotProduct(v));
    };
    for (const BoundaryPiece& piece : pieces) {
        constexpr int parts = 400;
        AcGePoint2d last = piece.start;
        for (int part = 1; piece.isArc && part < parts; ++part) {
            const AcGePoint2d next = piece.pointAt(piece.from + (piece.to - piece.from) * part / parts);
            chord(last, next);
            last = next;
        }
        chord(last, piece.end);
    }
    return std::fabs(turn) > host::pi;
}

int depthAt(const Loops& loops, const AcGePoint2d& point) {
    return static_cast<int>(
        std::count_if(loops.begin(), loops.end(), [&](const auto& loop) { return inside(loop, point); }));
}

double lengthOf(const std::vector<HatchLine>& lines) {
    double length = 0.0;
    for (const HatchLine& line : lines) {
        length += line.start.distanceTo(line.end);
    }
    return length;
}

double area(const Loops& loops, HatchStyleKind style) {
    const std::vector<int> depths = host::nestingDepths(loops);
    double sum = 0.0;
    for (std::size_t index = 0; index < loops.size(); ++index) {
        sum += (host::isHatched(style, depths[index] + 1) - host::isHatched(style, depths[index])) *
               std::fabs(host::signedArea(loops[index]));
    }
    return sum;
}

TEST_F(HatchTest, LinesLieInsideAndCoverTheArea) {
    const HatchLoop outer =
        polygon({{{0, 0}, 0.4}, {{30, -5}}, {{34, 20}, -0.6}, {{12, 26}, 1.1}, {{-6, 14}}});
    const HatchLoop hole = circle({14, 10}, 6);
    const HatchLoop island = square(12, 15);
    const Loops loops = piecesOf({&outer, &hole, &island});
    for (const HatchStyleKind style :
         {HatchStyleKind::normal, HatchStyleKind::outer, HatchStyleKind::ignore}) {
        for (const double angle : {0.0, 0.7, host::halfPi, 2.5}) {
            const double spacing = 0.0503;
            std::vector<HatchLine> lines;
            ASSERT_TRUE(host::hatchLines(loops, style, host::userPattern(angle, spacing, false), lines));
            const double expected = area(loops, style);
            EXPECT_NEAR(lengthOf(lines) * spacing, expected, 2e-3 * expected);
            for (std::size_t index = 0; index < lines.size(); index += 7) {
                const AcGePoint2d middle = lines[index].start + (lines[index].end - lines[index].start) / 2;
                ASSERT_TRUE(host::isHatched(style, depthAt(loops, middle)))
                    << index << " at " << middle.x << "," << middle.y << " angle " << angle << " style "
                    << static_cast<int>(style);
                const AcGeVector2d way = lines[index].end - lines[index].start;
                EXPECT_NEAR(std::fabs(way.crossProduct(host::direction(angle))), 0.0, 1e-9);
            }
        }
    }
}

TEST_F(HatchTest, IslandsInTheThreeStyles) {
    const HatchLoop outer = square(0, 10);
    const HatchLoop hole = square(2, 8);
    const HatchLoop island = square(4, 6);
    const Loops loops = piecesOf({&outer, &hole, &island});
    const HatchPatternLine row{0.0, {0, 5}, {0, 100}, {}};
    const auto ends = [&](HatchStyleKind style) {
        std::vector<HatchLine> lines;
        EXPECT_TRUE(host::hatchLines(loops, style, std::vector{row}, lines));
        std::vector<double> xs;
        for (const HatchLine& line : lines) {
            xs.insert(xs.end(), {line.start.x, line.end.x});
        }
        return xs;
    };
    EXPECT_EQ(ends(HatchStyleKind::normal), (std::vector<double>{0, 2, 4, 6, 8, 10}));
    EXPECT_EQ(ends(HatchStyleKind::outer), (std::vector<double>{0, 2, 8, 10}));
    EXPECT_EQ(ends(HatchStyleKind::ignore), (std::vector<double>{0, 10}));
    EXPECT_EQ(host::nestingDepths(loops), (std::vector<int>{0, 1, 2}));
    EXPECT_DOUBLE_EQ(area(loops, HatchStyleKind::normal), 100 - 36 + 4);
    EXPECT_DOUBLE_EQ(area(loops, HatchStyleKind::outer), 100 - 36);
    EXPECT_DOUBLE_EQ(area(loops, HatchStyleKind::ignore), 100);
}

TEST_F(HatchTest, LinesThroughCornersAndAlongEdgesDoNotLeak) {
    // Every corner lies on a line, edges lie along lines, arcs begin and end on lines and touch them.
    const HatchLoop stairs =
        polygon({{{0, 0}}, {{6, 0}}, {{6, 2}}, {{4, 2}}, {{4, 4}}, {{2, 4}, -1}, {{0, 4}, 1}, {{0, 2}}});
    const HatchLoop diamond = polygon({{{10, 0}}, {{12, 2}}, {{10, 4}}, {{8, 2}}});
    const HatchLoop round = circle({16, 2}, 2);
    const Loops loops = piecesOf({&stairs, &diamond, &round});
    std::vector<HatchLine> lines;
    ASSERT_TRUE(host::hatchLines(loops, HatchStyleKind::normal, host::userPattern(0, 1, true), lines));
    for (const HatchLine& line : lines) {
        const AcGePoint2d middle = line.start + (line.end - line.start) / 2;
        EXPECT_LE(line.start.distanceTo(line.end), 6.0);
        EXPECT_TRUE(depthAt(loops, middle) == 1 || middle.y == 0.0 || middle.x == 0.0 || middle.y == 2.0 ||
                    middle.x == 4.0)
            << middle.x << " " << middle.y;
    }
}

TEST_F(HatchTest, DashesFollowThePattern) {
    const HatchLoop outer = square(0, 10);
    const Loops loops = piecesOf({&outer});
    // Rows 4 apart, each shifted by 1; a dash of 2, a gap of 1, a dot, a gap of 1.
    const HatchPatternLine row{0.0, {1, 1}, {1, 4}, {2, -1, 0, -1}};
    std::vector<HatchLine> lines;
    ASSERT_TRUE(host::hatchLines(loops, HatchStyleKind::normal, std::vector{row}, lines));
    std::vector<std::string> told;
    for (const HatchLine& line : lines) {
        char text[64];
        std::snprintf(text, sizeof text, "%g:%g-%g", line.start.y, line.start.x, line.end.x);
        told.emplace_back(text);
    }
    EXPECT_EQ(told, (std::vector<std::string>{"1:0-0", "1:1-3", "1:4-4", "1:5-7", "1:8-8", "1:9-10", "5:1-1",
                                              "5:2-4", "5:5-5", "5:6-8", "5:9-9", "9:0-1", "9:2-2", "9:3-5",
                                              "9:6-6", "9:7-9", "9:10-10"}));
}

TEST_F(HatchTest, FarCoordinatesKeepThePattern) {
    const double far = 40'000'000;
    const HatchLoop outer = square(far, far + 10);
    std::vector<HatchLine> lines;
    const HatchPatternLine row{0.0, {0, 0}, {0.5, 2}, {1, -1}};
    ASSERT_TRUE(host::hatchLines(piecesOf({&outer}), HatchStyleKind::normal, std::vector{row}, lines));
    EXPECT_NEAR(lengthOf(lines), 25.0, 1e-5);
}

TEST_F(HatchTest, TooManyLinesAreRefusedNotComputed) {
    const HatchLoop outer = square(0, 1000);
    const Loops loops = piecesOf({&outer});
    std::vector<HatchLine> lines(3);
    EXPECT_FALSE(host::hatchLines(loops, HatchStyleKind::normal, host::userPattern(0.3, 1e-9, false), lines));
    EXPECT_TRUE(lines.empty());
    const HatchPatternLine dense{0.0, {0, 0}, {0, 10}, {1e-9, -1e-9}};
    EXPECT_FALSE(host::hatchLines(loops, HatchStyleKind::normal, std::vector{dense}, lines));
    AcDbHatch hatch;
    AcGePoint2dArray corners;
    for (const AcGePoint2d& corner : {AcGePoint2d(0, 0), AcGePoint2d(1000, 0), AcGePoint2d(0, 1000)}) {
        corners.append(corner);
    }
    hatch.appendLoop(AcDbHatch::kExternal, corners, AcGeDoubleArray());
    hatch.setPatternSpace(1e-9);
    hatch.setPattern(AcDbHatch::kUserDefined, L"_USER");
    EXPECT_EQ(hatch.evaluateHatch(), Acad::eHatchTooDense);
    AcDbVoidPtrArray parts;
    EXPECT_EQ(hatch.explode(parts), Acad::eHatchTooDense);
    EXPECT_TRUE(parts.isEmpty());
    hatch.setPatternSpace(100);
    EXPECT_EQ(hatch.evaluateHatch(), Acad::eOk);
    EXPECT_EQ(hatch.numHatchLines(), 10);
}

TEST_F(HatchTest, EdgesInAnyDirectionMakeAClosedBoundary) {
    HatchLoop loop;
    const auto line = [&](const AcGePoint2d& from, const AcGePoint2d& to) {
        host::HatchEdge& edge = loop.edges.emplace_back();
        edge.start = from;
        edge.end = to;
    };
    line({10, 0}, {0, 0}); // turned round
    line({10, 0}, {10, 10});
    line({0, 10}, {10, 10}); // turned round
    host::HatchEdge& arc = loop.edges.emplace_back();
    arc.kind = host::HatchEdge::Kind::arc;
    arc.start.set(0, 5);
    arc.major.set(5, 0);
    arc.startAngle = -host::halfPi; // clockwise over the left side from below: measured clockwise
    arc.endAngle = host::halfPi;
    arc.counterclockwise = false;
    std::vector<BoundaryPiece> pieces = host::boundaryPieces(loop);
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        const BoundaryPiece& next = pieces[(index + 1) % pieces.size()];
        EXPECT_EQ(pieces[index].end.x, next.start.x);
        EXPECT_EQ(pieces[index].end.y, next.start.y);
    }
    // The clockwise arc from straight up bulges to the right: it is bitten out of the square.
    EXPECT_NEAR(std::fabs(host::signedArea(pieces)), 100 - host::pi * 25 / 2, 1e-9);
}

TEST_F(HatchTest, SplinesCountAsTheyRun) {
    HatchLoop loop;
    loop.edges.resize(2);
    host::HatchEdge& edge = loop.edges[0];
    edge.kind = host::HatchEdge::Kind::spline;
    edge.spline = std::make_unique<host::HatchSpline>();
    edge.spline->degree = 2;
    edge.spline->knots = {0, 0, 0, 1, 1, 1};
    edge.spline->controlPoints = {{0, 0}, {5, 10}, {10, 0}};
    host::HatchEdge& base = loop.edges[1];
    base.start.set(10, 0);
    // A parabola's segment has two thirds of its triangle's area.
    EXPECT_NEAR(std::fabs(host::signedArea(host::boundaryPieces(loop))), 100.0 / 3, 1e-3);
    edge.spline->knots.clear();
    edge.spline->fitPoints = {{0, 0}, {5, 5}, {10, 0}};
    EXPECT_NEAR(std::fabs(host::signedArea(host::boundaryPieces(loop))), 25.0, 1e-9);
}

TEST_F(HatchTest, AnUnevenMapKeepsAreaAndLines) {
    Drawing drawing;
    AcDbHatch hatch;
    AcGePoint2dArray vertices;
    AcGeDoubleArray bulges;
    for (const auto& [point, bulge] : {std::pair(AcGePoint2d(0, 0), 0.3),
                                       {AcGePoint2d(8, 1), -0.7},
                                       {AcGePoint2d(9, 7), 1.0},
                                       {AcGePoint2d(1, 6), 0.0}}) {
        vertices.append(point);
        bulges.append(bulge);
    }
    hatch.appendLoop(AcDbHatch::kExternal, vertices, bulges);
    hatch.setPatternLines(AcDbHatch::kCustomDefined, L"X", {{0.4, {1, 1}, {0.1, 0.5}, {1, -0.5}}});
    double before = 0;
    ASSERT_EQ(hatch.getArea(before), Acad::eOk);
    hatch.evaluateHatch();
    const std::vector<HatchLine> lines = hatch.hatchLines();
    AcGeMatrix3d map;
    map.setCoordSystem({3, 4, 0}, {2, 0.5, 0}, {-1, 3, 0}, {0, 0, 1});
    ASSERT_EQ(hatch.transformBy(map), Acad::eOk);
    double after = 0;
    ASSERT_EQ(hatch.getArea(after), Acad::eOk);
    EXPECT_NEAR(after, before * 6.5, 1e-6);
    hatch.evaluateHatch();
    ASSERT_EQ(hatch.numHatchLines(), static_cast<int>(lines.size()));
    double difference = 0;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        // The order of the lines may turn with the map: compare sums.
        difference += (map * host::to3d(lines[index].start)).x + (map * host::to3d(lines[index].end)).x -
                      hatch.hatchLines()[index].start.x - hatch.hatchLines()[index].end.x;
    }
    EXPECT_NEAR(difference, 0.0, 1e-6);
}

TEST_F(HatchTest, ExplodesIntoLinesAndSolids) {
    AcDbHatch hatch;
    AcGePoint2dArray outer, hole;
    for (const AcGePoint2d& corner :
         {AcGePoint2d(0, 0), AcGePoint2d(10, 0), AcGePoint2d(12, 9), AcGePoint2d(0, 8)}) {
        outer.append(corner);
        hole.append(corner * 0.5 + AcGeVector2d(2, 1));
    }
    hatch.appendLoop(AcDbHatch::kExternal, outer, AcGeDoubleArray());
    hatch.appendLoop(AcDbHatch::kDefault, hole, AcGeDoubleArray());
    double expected = 0;
    hatch.getArea(expected);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(hatch.explode(parts), Acad::eOk);
    double sum = 0;
    for (void* part : parts) {
        const std::unique_ptr<AcDbSolid> solid(AcDbSolid::cast(static_cast<AcDbEntity*>(part)));
        ASSERT_NE(solid, nullptr);
        AcGePoint3d corners[4];
        for (Adesk::UInt16 index = 0; index < 4; ++index) {
            solid->getPointAt(index, corners[index]);
        }
        sum +=
            (corners[1].x - corners[0].x + corners[3].x - corners[2].x) / 2 * (corners[2].y - corners[0].y);
    }
    EXPECT_NEAR(sum, expected, 1e-9);
    parts.removeAll();
    hatch.setPatternSpace(0.5);
    hatch.setPattern(AcDbHatch::kUserDefined, L"_USER");
    ASSERT_EQ(hatch.explode(parts), Acad::eOk);
    double length = 0;
    for (void* part : parts) {
        const std::unique_ptr<AcDbLine> line(AcDbLine::cast(static_cast<AcDbEntity*>(part)));
        ASSERT_NE(line, nullptr);
        length += line->startPoint().distanceTo(line->endPoint());
    }
    EXPECT_NEAR(length * 0.5, expected, 3.0);
}

TEST_F(HatchTest, LoopsOfObjectsFollowThem) {
    Drawing drawing;
    const AcDbObjectId round = drawing.append(new AcDbCircle({5, 5, 0}, AcGeVector3d::kZAxis, 3));
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, {0, 0});
    polyline->addVertexAt(1, {10, 0}, 0.5);
    polyline->addVertexAt(2, {10, 10});
    polyline->addVertexAt(3, {0, 10});
    polyline->setClosed(true);
    double outer = 0;
    polyline->getArea(outer);
    const AcDbObjectId frame = drawing.append(polyline);
    AcDbHatch hatch;
    hatch.setAssociative(true);
    AcDbObjectIdArray ids;
    ids.append(frame);
    ASSERT_EQ(hatch.appendLoop(AcDbHatch::kExternal, ids), Acad::eOk);
    ids[0] = round;
    ASSERT_EQ(hatch.appendLoop(AcDbHatch::kDefault, ids), Acad::eOk);
    double area = 0;
    ASSERT_EQ(hatch.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, outer - host::pi * 9, 1e-9);
    AcDbObjectIdArray sources;
    hatch.getAssocObjIds(sources);
    ASSERT_EQ(sources.length(), 2);
    EXPECT_EQ(sources[1], round);
    EXPECT_EQ(hatch.loopTypeAt(0) & AcDbHatch::kPolyline, AcDbHatch::kPolyline);
    EXPECT_EQ(hatch.loopTypeAt(1) & AcDbHatch::kPolyline, 0);
    // A parabola over its chord: two thirds of the triangle.
    AcGePoint3dArray control;
    AcGeDoubleArray knots;
    for (const double x : {0.0, 5.0, 10.0}) {
        control.append({x, x == 5.0 ? 10.0 : 0.0, 0});
    }
    for (const double knot : {0.0, 0.0, 0.0, 1.0, 1.0, 1.0}) {
        knots.append(knot);
    }
    AcDbHatch curved;
    ids[0] = drawing.append(new AcDbSpline(2, false, false, false, control, knots, AcGeDoubleArray()));
    ids.append(drawing.append(new AcDbLine({10, 0, 0}, {0, 0, 0})));
    ASSERT_EQ(curved.appendLoop(AcDbHatch::kDefault, ids), Acad::eOk);
    ASSERT_EQ(curved.getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 100.0 / 3, 1e-3);
}

} // namespace
