// Curves: the conversions agree with each other, with small steps along the curve and with the pieces that a
// curve is cut into; known values in tables.
#include "entitysamples.h"

#include <cmath>

using namespace testing_entities;

namespace {

constexpr double pi = host::pi;

struct CurveCase {
    const char* name;
    AcDbCurve* (*make)();
};
void PrintTo(const CurveCase& one, std::ostream* out) {
    *out << one.name;
}

AcDbPolyline* polylineOf(std::initializer_list<std::array<double, 3>> vertices, bool closed = false) {
    auto* polyline = new AcDbPolyline;
    for (const auto& [x, y, bulge] : vertices) {
        polyline->addVertexAt(polyline->numVerts(), {x, y}, bulge);
    }
    polyline->setClosed(closed);
    return polyline;
}

AcDbCurve* tilt(AcDbCurve* curve) {
    curve->transformBy(AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 0.5).normal(), {1, 0, 0}) *
                       AcGeMatrix3d::translation({3, -4, 5}));
    return curve;
}

const CurveCase curveCases[] = {
    {"Line",
     [] {
         return static_cast<AcDbCurve*>(new AcDbLine({1, 2, 3}, {7, -6, 3}));
     }},
    {"TiltedLine",
     [] {
         return tilt(new AcDbLine({1, 2, 3}, {7, -6, 3}));
     }},
    {"Circle",
     [] {
         return static_cast<AcDbCurve*>(new AcDbCircle({4, 5, 0}, AcGeVector3d::kZAxis, 3));
     }},
    {"TiltedCircle",
     [] {
         return tilt(new AcDbCircle({4, 5, 0}, AcGeVector3d::kZAxis, 3));
     }},
    {"Arc",
     [] {
         return static_cast<AcDbCurve*>(new AcDbArc({4, 5, 1}, 3, 5.5, 1.25));
     }},
    {"TiltedArc",
     [] {
         return tilt(new AcDbArc({4, 5, 1}, AcGeVector3d(0, 0, -1), 3, 0.5, 4));
     }},
    {"Polyline",
     [] {
         return static_cast<AcDbCurve*>(polylineOf({{0, 0, 0}, {10, 0, 0.5}, {12, 7, 0}, {3, 9, 0}}));
     }},
    {"ClosedPolyline",
     [] {
         return static_cast<AcDbCurve*>(
             polylineOf({{0, 0, 0}, {10, 0, 0.5}, {12, 7, -0.3}, {3, 9, 0}}, true));
     }},
    {"TiltedPolyline",
     [] {
         return tilt(polylineOf({{0, 0, -1}, {10, 0, 0.5}, {12, 7, 2}, {3, 9, 0}}));
     }},
    {"Polyline2d",
     [] {
         AcGePoint3dArray points{AcGePoint3d(0, 0, 0), AcGePoint3d(6, 0, 0), AcGePoint3d(6, 8, 0)};
         const AcGeDoubleArray bulges{0.4, -0.2, 0.0};
         return static_cast<AcDbCurve*>(
             new AcDb2dPolyline(AcDb::k2dSimplePoly, points, 2, false, 0, 0, &bulges));
     }},
};

class CurveTest : public testing::TestWithParam<CurveCase> {
protected:
    static void SetUpTestSuite() { initialize(); }
    void SetUp() override {
        curve.reset(GetParam().make());
        ASSERT_EQ(curve->getStartParam(from), Acad::eOk);
        ASSERT_EQ(curve->getEndParam(to), Acad::eOk);
        ASSERT_EQ(curve->getDistAtParam(to, length), Acad::eOk);
    }
    AcGePoint3d at(double parameter) const {
        AcGePoint3d point;
        EXPECT_EQ(curve->getPointAtParam(parameter, point), Acad::eOk);
        return point;
    }
    std::vector<double> parameters(int count) const {
        std::vector<double> all;
        for (int index = 0; index <= count; ++index) {
            all.push_back(from + (to - from) * index / count);
        }
        return all;
    }
    std::unique_ptr<AcDbCurve> curve;
    double from = 0, to = 0, length = 0;
};

TEST_P(CurveTest, ConversionsAgree) {
    double before = -1.0;
    for (const double parameter : parameters(37)) {
        const AcGePoint3d point = at(parameter);
        double distance = 0.0;
        double back = 0.0;
        ASSERT_EQ(curve->getDistAtParam(parameter, distance), Acad::eOk);
        EXPECT_GT(distance, before);
        before = distance;
        ASSERT_EQ(curve->getParamAtDist(distance, back), Acad::eOk);
        EXPECT_NEAR(back, parameter, 1e-9);
        AcGePoint3d again;
        ASSERT_EQ(curve->getPointAtDist(distance, again), Acad::eOk);
        EXPECT_NEAR(again.distanceTo(point), 0.0, 1e-9);
        ASSERT_EQ(curve->getParamAtPoint(point, back), Acad::eOk);
        EXPECT_NEAR(at(back).distanceTo(point), 0.0, 1e-9);
    }
    double unused = 0.0;
    EXPECT_EQ(curve->getParamAtDist(length + 0.01, unused), Acad::eInvalidInput);
    EXPECT_EQ(curve->getParamAtDist(-0.01, unused), Acad::eInvalidInput);
    EXPECT_EQ(curve->getParamAtPoint(at(from) + AcGeVector3d(0.2, 0.3, 50), unused), Acad::eInvalidInput);
}

TEST_P(CurveTest, DerivativesAreThoseOfSmallSteps) {
    constexpr double step = 1e-6;
    for (const double parameter : parameters(23)) {
        if (parameter - step < from || parameter + step > to ||
            std::fabs(parameter - std::round(parameter)) < 2 * step) {
            continue;
        }
        AcGeVector3d first;
        AcGeVector3d second;
        AcGeVector3d ahead;
        AcGeVector3d behind;
        ASSERT_EQ(curve->getFirstDeriv(parameter, first), Acad::eOk);
        ASSERT_EQ(curve->getSecondDeriv(parameter, second), Acad::eOk);
        curve->getFirstDeriv(parameter + step, ahead);
        curve->getFirstDeriv(parameter - step, behind);
        EXPECT_NEAR((first - (at(parameter + step) - at(parameter - step)) / (2 * step)).length(), 0.0, 1e-5);
        EXPECT_NEAR((second - (ahead - behind) / (2 * step)).length(), 0.0, 1e-4);
    }
}

TEST_P(CurveTest, NoPointIsNearerThanTheClosest) {
    AcDbExtents box;
    ASSERT_EQ(curve->getGeomExtents(box), Acad::eOk);
    for (int probe = 0; probe < 40; ++probe) {
        const AcGePoint3d given(box.minPoint().x + std::sin(probe * 1.7) * 15,
                                box.minPoint().y + probe * 0.5 - 3,
                                box.minPoint().z + std::cos(probe * 0.9) * 4);
        for (const bool extend : {false, true}) {
            AcGePoint3d closest;
            ASSERT_EQ(curve->getClosestPointTo(given, closest, extend), Acad::eOk);
            for (const double parameter : parameters(200)) {
                ASSERT_LE(closest.distanceTo(given), at(parameter).distanceTo(given) + 1e-9);
            }
            double parameter = 0.0;
            if (!extend) {
                EXPECT_EQ(curve->getParamAtPoint(closest, parameter), Acad::eOk);
            }
        }
        // Seen along Z the nearest point may not be nearer in the plane either.
        AcGePoint3d seen;
        ASSERT_EQ(curve->getClosestPointTo(given, AcGeVector3d::kZAxis, seen), Acad::eOk);
        const auto flat = [&](const AcGePoint3d& point) {
            return std::hypot(point.x - given.x, point.y - given.y);
        };
        for (const double parameter : parameters(200)) {
            ASSERT_LE(flat(seen), flat(at(parameter)) + 1e-9);
        }
    }
}

TEST_P(CurveTest, ExtentsAreTight) {
    AcDbExtents box;
    ASSERT_EQ(curve->getGeomExtents(box), Acad::eOk);
    AcDbExtents sampled;
    for (const double parameter : parameters(20000)) {
        sampled.addPoint(at(parameter));
    }
    EXPECT_NEAR(box.minPoint().distanceTo(sampled.minPoint()), 0.0, 1e-5);
    EXPECT_NEAR(box.maxPoint().distanceTo(sampled.maxPoint()), 0.0, 1e-5);
}

TEST_P(CurveTest, PiecesAreTheWhole) {
    AcGeDoubleArray cuts;
    cuts.append(from + (to - from) * 0.7);
    cuts.append(from + (to - from) * 0.2);
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(curve->getSplitCurves(cuts, pieces), Acad::eOk);
    EXPECT_EQ(pieces.length(), curve->isClosed() ? 2 : 3);
    double sum = 0.0;
    AcGePoint3d expectedStart = at(curve->isClosed() ? cuts[1] : from);
    for (void* made : pieces) {
        const std::unique_ptr<AcDbCurve> piece(AcDbCurve::cast(static_cast<AcDbEntity*>(made)));
        ASSERT_NE(piece, nullptr);
        double end = 0.0;
        double own = 0.0;
        AcGePoint3d start;
        piece->getEndParam(end);
        piece->getDistAtParam(end, own);
        piece->getStartPoint(start);
        EXPECT_NEAR(start.distanceTo(expectedStart), 0.0, 1e-9);
        piece->getEndPoint(expectedStart);
        sum += own;
        AcGePoint3d middle;
        ASSERT_EQ(piece->getPointAtDist(own / 2, middle), Acad::eOk);
        double unused = 0.0;
        EXPECT_EQ(curve->getParamAtPoint(middle, unused), Acad::eOk);
    }
    EXPECT_NEAR(sum, length, 1e-9);
}

TEST_P(CurveTest, ReversingTurnsTheDistancesRound) {
    std::vector<AcGePoint3d> points;
    for (int index = 0; index <= 10; ++index) {
        AcGePoint3d point;
        curve->getPointAtDist(length * index / 10, point);
        points.push_back(point);
    }
    if (curve->isKindOf(AcDbCircle::desc())) {
        return; // starts wherever its X axis points
    }
    ASSERT_EQ(curve->reverseCurve(), Acad::eOk);
    for (int index = 0; index <= 10; ++index) {
        AcGePoint3d point;
        ASSERT_EQ(curve->getPointAtDist(length * (10 - index) / 10, point), Acad::eOk);
        EXPECT_NEAR(point.distanceTo(points[static_cast<std::size_t>(index)]), 0.0, 1e-9);
    }
}

TEST_P(CurveTest, OffsetsLieAtTheirDistance) {
    for (const double distance : {0.5, -0.5}) {
        AcDbVoidPtrArray curves;
        ASSERT_EQ(curve->getOffsetCurves(distance, curves), Acad::eOk);
        ASSERT_EQ(curves.length(), 1);
        const std::unique_ptr<AcDbCurve> offset(AcDbCurve::cast(static_cast<AcDbEntity*>(curves[0])));
        EXPECT_EQ(offset->isA(), curve->isA());
        double end = 0.0;
        double own = 0.0;
        offset->getEndParam(end);
        offset->getDistAtParam(end, own);
        if (curve->isClosed()) {
            EXPECT_EQ(own > length, distance > 0);
        }
        AcGePoint3d middle;
        AcGePoint3d nearest;
        AcGeVector3d along;
        double parameter = 0.0;
        ASSERT_EQ(offset->getPointAtDist(own * 0.1, middle), Acad::eOk);
        curve->getClosestPointTo(middle, nearest);
        EXPECT_NEAR(nearest.distanceTo(middle), 0.5, 1e-9);
        curve->getParamAtPoint(nearest, parameter);
        curve->getFirstDeriv(parameter, along);
        AcGePlane plane;
        AcDb::Planarity planarity{};
        curve->getPlane(plane, planarity);
        const AcGeVector3d normal =
            planarity == AcDb::kLinear ? AcDbLine::cast(curve.get())->normal() : plane.normal();
        const bool isRight = along.crossProduct(normal).dotProduct(middle - nearest) > 0;
        // Both circles and arcs run counterclockwise: outwards is to their right.
        EXPECT_EQ(isRight, distance > 0);
    }
}

TEST_P(CurveTest, ExtensionGoesOnAlongTheCurve) {
    if (curve->isClosed()) {
        EXPECT_NE(curve->extend(to + 0.1), Acad::eOk);
        return;
    }
    const AcGePoint3d start = at(from);
    AcGeVector3d before;
    curve->getFirstDeriv(to, before);
    EXPECT_EQ(curve->extend((from + to) / 2), Acad::eInvalidInput);
    ASSERT_EQ(curve->extend(to + 0.1), Acad::eOk);
    double newEnd = 0.0;
    double newLength = 0.0;
    AcGePoint3d point;
    curve->getEndParam(newEnd);
    curve->getDistAtParam(newEnd, newLength);
    EXPECT_GT(newLength, length);
    EXPECT_NEAR(at(from).distanceTo(start), 0.0, 1e-9);
    ASSERT_EQ(curve->getPointAtDist(length, point), Acad::eOk);
    AcGeVector3d after;
    ASSERT_EQ(curve->getFirstDeriv(point, after), Acad::eOk);
    EXPECT_NEAR(after.angleTo(before), 0.0, 1e-7);
    ASSERT_EQ(curve->extend(from - 0.1), Acad::eOk);
    curve->getStartPoint(point);
    EXPECT_GT(point.distanceTo(start), 0.01);
}

INSTANTIATE_TEST_SUITE_P(All, CurveTest, testing::ValuesIn(curveCases),
                         [](const auto& given) { return std::string(given.param.name); });

class GeometryTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
};

TEST_F(GeometryTest, Areas) {
    double area = 0.0;
    EXPECT_EQ(AcDbCircle({1, 2, 3}, AcGeVector3d::kZAxis, 2).getArea(area), Acad::eOk);
    EXPECT_DOUBLE_EQ(area, 4 * pi);
    AcDbArc({0, 0, 0}, 2, 0, pi).getArea(area);
    EXPECT_DOUBLE_EQ(area, 2 * pi);
    const std::unique_ptr<AcDbPolyline> square(
        polylineOf({{0, 0, 0}, {0, 4, 0}, {4, 4, 0}, {4, 0, 0}}, true));
    square->getArea(area);
    EXPECT_DOUBLE_EQ(area, 16);
    square->setBulgeAt(1, -1); // a half circle outwards, clockwise as the square
    square->getArea(area);
    EXPECT_NEAR(area, 16 + 2 * pi, 1e-12);
}

struct Crossing {
    const char* what;
    AcDbEntity* first;
    AcDbEntity* second;
    AcDb::Intersect type;
    std::vector<AcGePoint3d> expected;
};

TEST_F(GeometryTest, IntersectionTable) {
    const auto line = [](double x1, double y1, double x2, double y2, double z = 0) -> AcDbEntity* {
        return new AcDbLine({x1, y1, z}, {x2, y2, z});
    };
    const auto circle = [](double x, double y, double r) -> AcDbEntity* {
        return new AcDbCircle({x, y, 0}, AcGeVector3d::kZAxis, r);
    };
    const double far = 4e6; // coordinates of a survey grid
    const Crossing table[] = {
        {"crossing lines", line(0, 0, 4, 4), line(0, 4, 4, 0), AcDb::kOnBothOperands, {{2, 2, 0}}},
        {"lines that would cross", line(0, 0, 1, 1), line(0, 4, 4, 0), AcDb::kOnBothOperands, {}},
        {"the first extended", line(0, 0, 1, 1), line(0, 4, 4, 0), AcDb::kExtendThis, {{2, 2, 0}}},
        {"the wrong one extended", line(0, 0, 1, 1), line(0, 4, 4, 0), AcDb::kExtendArg, {}},
        {"both extended", line(0, 0, 1, 1), line(0, 4, 1, 3), AcDb::kExtendBoth, {{2, 2, 0}}},
        {"touching ends", line(0, 0, 4, 0), line(4, 0, 4, 4), AcDb::kOnBothOperands, {{4, 0, 0}}},
        {"end to end on one line", line(0, 0, 4, 0), line(4, 0, 9, 0), AcDb::kOnBothOperands, {{4, 0, 0}}},
        {"overlapping", line(0, 0, 4, 0), line(2, 0, 9, 0), AcDb::kOnBothOperands, {}},
        {"parallel", line(0, 0, 4, 0), line(0, 1, 4, 1), AcDb::kExtendBoth, {}},
        {"one above the other", line(0, 0, 4, 4), line(0, 4, 4, 0, 1), AcDb::kOnBothOperands, {}},
        {"far from the origin",
         line(far, far, far + 4, far + 4),
         line(far, far + 4, far + 4, far),
         AcDb::kOnBothOperands,
         {{far + 2, far + 2, 0}}},
        {"line through a circle",
         line(-9, 0, 9, 0),
         circle(0, 0, 5),
         AcDb::kOnBothOperands,
         {{-5, 0, 0}, {5, 0, 0}}},
        {"line ends inside", line(0, 0, 9, 0), circle(0, 0, 5), AcDb::kOnBothOperands, {{5, 0, 0}}},
        {"line touches a circle", line(-9, 5, 9, 5), circle(0, 0, 5), AcDb::kOnBothOperands, {{0, 5, 0}}},
        {"circles cross", circle(0, 0, 5), circle(6, 0, 5), AcDb::kOnBothOperands, {{3, 4, 0}, {3, -4, 0}}},
        {"circles touch", circle(0, 0, 5), circle(8, 0, 3), AcDb::kOnBothOperands, {{5, 0, 0}}},
        {"circle in circle", circle(0, 0, 5), circle(1, 0, 3), AcDb::kOnBothOperands, {}},
        {"arc misses", new AcDbArc({0, 0, 0}, 5, 0, pi / 2), line(-9, -3, 9, -3), AcDb::kOnBothOperands, {}},
        {"arc extended",
         new AcDbArc({0, 0, 0}, 5, 0, pi / 2),
         line(-9, -3, 0, -3),
         AcDb::kExtendThis,
         {{-4, -3, 0}}},
        {"upright circle and flat line",
         new AcDbCircle({0, 0, 0}, AcGeVector3d::kXAxis, 5),
         line(-1, 3, 1, 3, 4),
         AcDb::kOnBothOperands,
         {{0, 3, 4}}},
        {"circles in two planes",
         new AcDbCircle({0, 0, 0}, AcGeVector3d::kXAxis, 5),
         circle(0, 0, 5),
         AcDb::kOnBothOperands,
         {{0, 5, 0}, {0, -5, 0}}},
        {"polyline once at its vertex",
         polylineOf({{0, 0, 0}, {2, 2, 0}, {4, 0, 0}}),
         line(2, 0, 2, 4),
         AcDb::kOnBothOperands,
         {{2, 2, 0}}},
        {"polyline with an arc",
         polylineOf({{0, 0, 1}, {4, 0, 0}}),
         line(2, -9, 2, 9),
         AcDb::kOnBothOperands,
         {{2, -2, 0}}},
        {"polyline extended at its end",
         polylineOf({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}),
         line(-9, 5, 9, 5),
         AcDb::kExtendThis,
         {{2, 5, 0}}},
        {"polyline and polyline",
         polylineOf({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}, true),
         polylineOf({{2, -1, 0}, {2, 9, 0}}),
         AcDb::kOnBothOperands,
         {{2, 0, 0}, {2, 2, 0}}},
        {"nothing", new AcDbPolyline, line(0, 0, 1, 1), AcDb::kOnBothOperands, {}},
    };
    for (const Crossing& one : table) {
        const std::unique_ptr<AcDbEntity> first(one.first);
        const std::unique_ptr<AcDbEntity> second(one.second);
        for (const bool turned : {false, true}) {
            AcGePoint3dArray points;
            AcDb::Intersect type = one.type;
            if (turned && type != AcDb::kOnBothOperands && type != AcDb::kExtendBoth) {
                type = type == AcDb::kExtendThis ? AcDb::kExtendArg : AcDb::kExtendThis;
            }
            ASSERT_EQ((turned ? second : first)->intersectWith((turned ? first : second).get(), type, points),
                      Acad::eOk);
            ASSERT_EQ(static_cast<std::size_t>(points.length()), one.expected.size()) << one.what;
            for (const AcGePoint3d& expected : one.expected) {
                EXPECT_TRUE(std::any_of(points.begin(), points.end(), [&](const AcGePoint3d& point) {
                    return point.distanceTo(expected) < 1e-7;
                })) << one.what;
            }
        }
    }
}

TEST_F(GeometryTest, ProjectedIntersectionGivesPointsOfTheFirst) {
    const AcDbLine low({0, 0, 0}, {4, 4, 0});
    const AcDbLine high({0, 4, 7}, {4, 0, 9});
    AcGePoint3dArray points;
    low.intersectWith(&high, AcDb::kOnBothOperands, AcGePlane::kXYPlane, points);
    high.intersectWith(&low, AcDb::kOnBothOperands, AcGePlane::kXYPlane, points);
    ASSERT_EQ(points.length(), 2);
    EXPECT_TRUE(points[0].isEqualTo({2, 2, 0}));
    EXPECT_TRUE(points[1].isEqualTo({2, 2, 8}));
    // An upright circle is a line from above, met in two points of it; a tilted one is an ellipse.
    const AcDbCircle upright({0, 0, 0}, AcGeVector3d::kYAxis, 5);
    points.removeAll();
    upright.intersectWith(&high, AcDb::kOnBothOperands, AcGePlane::kXYPlane, points);
    EXPECT_EQ(points.length(), 2);
    const AcDbCircle tilted({0, 0, 0}, AcGeVector3d(0, 1, 1).normal(), 5);
    const AcDbCircle flat({0, 0, -3}, AcGeVector3d::kZAxis, 4);
    points.removeAll();
    tilted.intersectWith(&flat, AcDb::kOnBothOperands, AcGePlane::kXYPlane, points);
    ASSERT_EQ(points.length(), 4);
    for (const AcGePoint3d& point : points) {
        EXPECT_NEAR(std::hypot(point.x, point.y), 4.0, 1e-7);
        double unused = 0.0;
        EXPECT_EQ(tilted.getParamAtPoint(point, unused), Acad::eOk);
    }
}

TEST_F(GeometryTest, ManySegmentsCrossWhereTheyShould) {
    // Two zigzags, checked against every pair of segments by itself.
    AcDbPolyline first;
    AcDbPolyline second;
    for (unsigned int index = 0; index < 200; ++index) {
        first.addVertexAt(index, {index * 1.0, std::sin(index * 1.3) * 4});
        second.addVertexAt(index, {200 - index * 1.01, std::cos(index * 0.9) * 4},
                           index % 5 == 0 ? 0.3 : 0.0);
    }
    AcGePoint3dArray points;
    ASSERT_EQ(first.intersectWith(&second, AcDb::kOnBothOperands, points), Acad::eOk);
    std::vector<host::CurvePiece> ofFirst;
    std::vector<host::CurvePiece> ofSecond;
    first.curvePieces(ofFirst);
    second.curvePieces(ofSecond);
    std::size_t count = 0;
    for (const host::CurvePiece& a : ofFirst) {
        for (const host::CurvePiece& b : ofSecond) {
            count += host::intersect({&a, 1}, {&b, 1}).size();
        }
    }
    EXPECT_GT(count, 50U);
    EXPECT_EQ(static_cast<std::size_t>(points.length()), count);
}

TEST_F(GeometryTest, GeometryCurvesRunAsTheEntities) {
    const std::unique_ptr<AcDbPolyline> polyline(polylineOf({{0, 0, 0}, {4, 0, 0.5}, {4, 6, -2}, {0, 6, 0}}));
    polyline->setNormal({0, 1, 1});
    AcGeLineSeg3d line;
    ASSERT_EQ(polyline->getLineSegAt(0, line), Acad::eOk);
    EXPECT_EQ(polyline->getLineSegAt(1, line), Acad::eInvalidInput);
    for (const unsigned int index : {1U, 2U}) {
        AcGeCircArc3d arc;
        AcGeCircArc2d flat;
        ASSERT_EQ(polyline->getArcSegAt(index, arc), Acad::eOk);
        ASSERT_EQ(polyline->getArcSegAt(index, flat), Acad::eOk);
        for (const double part : {0.0, 0.25, 1.0}) {
            AcGePoint3d expected;
            polyline->getPointAtParam(index + part, expected);
            EXPECT_TRUE(arc.evalPoint(arc.startAng() + part * (arc.endAng() - arc.startAng()))
                            .isEqualTo(expected, AcGeTol().setEqualPoint(1e-9)));
        }
        EXPECT_NEAR(flat.radius(), arc.radius(), 1e-12);
    }
    AcDbArc arc({1, 2, 3}, AcGeVector3d(1, 0, 1), 4, 5.5, 1.0);
    AcGeCurve3d* made = nullptr;
    ASSERT_EQ(arc.getAcGeCurve(made), Acad::eOk);
    const std::unique_ptr<AcGeCurve3d> curve(made);
    AcGePoint3d start;
    AcGePoint3d end;
    arc.getStartPoint(start);
    arc.getEndPoint(end);
    EXPECT_TRUE(curve->isOn(start) && curve->isOn(end));
    EXPECT_TRUE(
        static_cast<AcGeCircArc3d*>(made)->startPoint().isEqualTo(start, AcGeTol().setEqualPoint(1e-9)));
    EXPECT_TRUE(static_cast<AcGeCircArc3d*>(made)->endPoint().isEqualTo(end, AcGeTol().setEqualPoint(1e-9)));
}

TEST_F(GeometryTest, MirroredArcsAndScaledOnes) {
    AcDbArc arc({2, 0, 0}, 3, 0, pi / 2);
    ASSERT_EQ(arc.transformBy(AcGeMatrix3d::mirroring(AcGePlane::kYZPlane)), Acad::eOk);
    EXPECT_TRUE(arc.center().isEqualTo({-2, 0, 0}));
    EXPECT_TRUE(arc.normal().isEqualTo(AcGeVector3d::kZAxis));
    EXPECT_NEAR(arc.startAngle(), pi / 2, 1e-12);
    EXPECT_NEAR(arc.endAngle(), pi, 1e-12);
    const std::unique_ptr<AcDbPolyline> bent(polylineOf({{0, 0, 0.5}, {4, 0, 0}}));
    ASSERT_EQ(bent->transformBy(AcGeMatrix3d::mirroring(AcGePlane::kZXPlane)), Acad::eOk);
    double bulge = 0.0;
    bent->getBulgeAt(0, bulge);
    EXPECT_DOUBLE_EQ(bulge, -0.5);
    AcGeMatrix3d uneven;
    uneven.setCoordSystem(AcGePoint3d::kOrigin, {2, 0, 0}, {0, 3, 0}, {0, 0, 1});
    const std::string before = bytesOf(*bent);
    EXPECT_EQ(bent->transformBy(uneven), Acad::eCannotScaleNonUniformly);
    EXPECT_EQ(bytesOf(*bent), before);
    EXPECT_EQ(arc.transformBy(uneven), Acad::eCannotScaleNonUniformly);
    const std::unique_ptr<AcDbPolyline> straight(polylineOf({{0, 0, 0}, {4, 1, 0}}));
    EXPECT_EQ(straight->transformBy(uneven), Acad::eOk);
    AcGePoint2d point;
    straight->getPointAt(1, point);
    EXPECT_TRUE(point.isEqualTo({8, 3}));
    AcGeMatrix3d flat;
    flat.entry[1][1] = 0;
    EXPECT_EQ(straight->transformBy(flat), Acad::eDegenerateGeometry);
}

TEST_F(GeometryTest, ArcGripsKeepTheOtherPoints) {
    AcDbArc arc({0, 0, 0}, 5, 0, pi / 2);
    AcDbIntArray second;
    second.append(1);
    ASSERT_EQ(arc.moveGripPointsAt(second, {-3, -1, 0}), Acad::eOk);
    AcGePoint3d end;
    AcGePoint3d start;
    arc.getEndPoint(end);
    arc.getStartPoint(start);
    EXPECT_TRUE(end.isEqualTo({-3, 4, 0}, AcGeTol().setEqualPoint(1e-9)));
    EXPECT_TRUE(start.isEqualTo({5, 0, 0}, AcGeTol().setEqualPoint(1e-9)));
    double unused = 0.0;
    EXPECT_EQ(arc.getParamAtPoint({5 * std::sqrt(0.5), 5 * std::sqrt(0.5), 0}, unused), Acad::eOk);
    AcDbArc stretched({0, 0, 0}, 5, 0, pi / 2);
    AcDbIntArray first;
    first.append(0);
    ASSERT_EQ(stretched.moveStretchPointsAt(first, {2, 0, 0}), Acad::eOk);
    const double chord = std::hypot(7, 5);
    const double height = std::tan(pi / 8) * 5 * std::sqrt(2.0) / 2;
    EXPECT_NEAR(stretched.radius(), (chord * chord / 4 + height * height) / (2 * height), 1e-9);
}

TEST_F(GeometryTest, SnapTable) {
    struct Row {
        AcDbEntity* entity;
        AcDb::OsnapMode mode;
        std::vector<AcGePoint3d> expected;
    };
    const AcGePoint3d pick(4, 1, 0);
    const AcGePoint3d last(13, 0, 0);
    const Row rows[] = {
        {new AcDbLine({0, 0, 0}, {8, 0, 0}), AcDb::kOsModeEnd, {{0, 0, 0}, {8, 0, 0}}},
        {new AcDbLine({0, 0, 0}, {8, 0, 0}), AcDb::kOsModeMid, {{4, 0, 0}}},
        {new AcDbLine({0, 0, 0}, {8, 0, 0}), AcDb::kOsModeNear, {{4, 0, 0}}},
        {new AcDbLine({0, 0, 0}, {0, 8, 0}), AcDb::kOsModePerp, {{0, 0, 0}}},
        {new AcDbPoint({1, 2, 3}), AcDb::kOsModeNode, {{1, 2, 3}}},
        {new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5), AcDb::kOsModeCen, {{0, 0, 0}}},
        {new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5),
         AcDb::kOsModeQuad,
         {{5, 0, 0}, {0, 5, 0}, {-5, 0, 0}, {0, -5, 0}}},
        {new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5), AcDb::kOsModePerp, {{5, 0, 0}, {-5, 0, 0}}},
        {new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5),
         AcDb::kOsModeTan,
         {{25.0 / 13, 60.0 / 13, 0}, {25.0 / 13, -60.0 / 13, 0}}},
        {new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 5), AcDb::kOsModeEnd, {}},
        {new AcDbArc({0, 0, 0}, 5, -0.1, 2), AcDb::kOsModeQuad, {{5, 0, 0}, {0, 5, 0}}},
        {polylineOf({{0, 0, 0}, {8, 0, 0}, {8, 8, 0}}, true),
         AcDb::kOsModeEnd,
         {{0, 0, 0}, {8, 0, 0}, {8, 8, 0}}},
        {polylineOf({{0, 0, 1}, {8, 0, 0}}), AcDb::kOsModeCen, {{4, 0, 0}}},
        {new AcDbSolid({0, 0, 0}, {8, 0, 0}, {0, 8, 0}), AcDb::kOsModeEnd, {{0, 0, 0}, {8, 0, 0}, {0, 8, 0}}},
        {new AcDbText({1, 2, 0}, L"x"), AcDb::kOsModeIns, {{1, 2, 0}}},
    };
    for (const Row& row : rows) {
        const std::unique_ptr<AcDbEntity> entity(row.entity);
        AcGePoint3dArray points;
        AcDbIntArray ids;
        ASSERT_EQ(entity->getOsnapPoints(row.mode, 0, pick, last, AcGeMatrix3d::kIdentity, points, ids),
                  Acad::eOk);
        ASSERT_EQ(static_cast<std::size_t>(points.length()), row.expected.size()) << row.mode;
        for (const AcGePoint3d& expected : row.expected) {
            EXPECT_TRUE(std::any_of(points.begin(), points.end(), [&](const AcGePoint3d& point) {
                return point.distanceTo(expected) < 1e-9;
            })) << row.mode;
        }
    }
}

// Distances are kept from call to call, and forgotten when the polyline changes.
TEST(Polylines, DistancesFollowTheVertices) {
    AcDbPolyline polyline;
    for (unsigned index = 0; index < 1000; ++index) {
        polyline.addVertexAt(index, AcGePoint2d(index * 0.3, index % 2), index % 7 == 0 ? 0.5 : 0.0);
    }
    double summed = 0.0;
    for (unsigned index = 0; index < 999; ++index) {
        double distance = -1.0, parameter = -1.0;
        ASSERT_EQ(polyline.getDistAtParam(index, distance), Acad::eOk);
        EXPECT_EQ(distance, summed);
        ASSERT_EQ(polyline.getDistAtParam(index + 0.25, distance), Acad::eOk);
        ASSERT_EQ(polyline.getParamAtDist(distance, parameter), Acad::eOk);
        EXPECT_NEAR(parameter, index + 0.25, 1e-9);
        summed += host::PathSegment(polyline.bulgePath().segment(static_cast<int>(index))).length();
    }
    double whole = 0.0, shorter = 0.0;
    EXPECT_EQ(polyline.getDistAtParam(999, whole), Acad::eOk);
    EXPECT_EQ(whole, summed);
    EXPECT_EQ(polyline.getDistAtParam(999.5, whole), Acad::eInvalidInput);
    EXPECT_EQ(polyline.getDistAtParam(-0.5, whole), Acad::eInvalidInput);
    polyline.removeVertexAt(500);
    EXPECT_EQ(polyline.getDistAtParam(998, shorter), Acad::eOk);
    EXPECT_LT(shorter, whole);
}

} // namespace
