// Ellipses, splines, rays and construction lines, 3D polylines and faces: what is their own beside what all
// entities share. Curves are checked against sampling.
#include "entitysamples.h"

#include <cmath>
#include <random>

using namespace testing_entities;

namespace {

constexpr double pi = host::pi;

using CurvePointer = std::unique_ptr<AcDbCurve>;

class Numbers {
public:
    explicit Numbers(unsigned seed) : m_engine(seed) {}
    double operator()(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    AcGePoint3d point(double reach, double height) {
        const double x = (*this)(-reach, reach);
        const double y = (*this)(-reach, reach);
        return {x, y, height > 0.0 ? (*this)(-height, height) : 0.0};
    }

private:
    std::mt19937 m_engine;
};

CurvePointer tilted(AcDbCurve* curve) {
    curve->transformBy(AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 0.5).normal(), {1, 0, 0}) *
                       AcGeMatrix3d::translation({3, -4, 5}));
    return CurvePointer(curve);
}

AcDb3dPolyline* polyline3d(bool closed) {
    return new AcDb3dPolyline(AcDb::k3dSimplePoly, {{0, 0, 0}, {10, 0, 4}, {12, 7, -3}, {3, 9, 1}}, closed);
}

std::vector<CurvePointer> curves() {
    std::vector<CurvePointer> made;
    const AcGeVector3d up = AcGeVector3d::kZAxis;
    made.emplace_back(new AcDbEllipse({4, 5, 1}, up, {6, 2, 0}, 0.4));
    made.emplace_back(new AcDbEllipse({4, 5, 1}, up, {6, 2, 0}, 0.4, 0.7, 4.0));
    made.emplace_back(new AcDbEllipse({4, 5, 1}, -up, {6, 2, 0}, 0.9, 5.0, 1.5));
    made.push_back(tilted(new AcDbEllipse({4, 5, 1}, up, {6, 2, 0}, 0.4, 0.7, 4.0)));
    made.emplace_back(new AcDbSpline({{0, 0, 0}, {10, 5, 0}, {20, -5, 0}, {25, 0, 0}}, {1, 1, 0}, {0, 1, 0}));
    made.push_back(tilted(new AcDbSpline({{0, 0, 0}, {10, 5, 2}, {20, -5, 4}, {25, 0, 0}}, 4)));
    made.emplace_back(new AcDbSpline({{0, 0, 0}, {10, 5, 0}, {14, -5, 0}, {4, -8, 0}, {0, 0, 0}}));
    made.emplace_back(new AcDbSpline({1, 2, 0}, up, {5, 0, 0}, 0.5, 0.3, 5.0));
    made.emplace_back(new AcDbSpline(2, true, false, false,
                                     {{0, 0, 0}, {5, 8, 0}, {10, 0, 0}, {15, -8, 3}, {20, 0, 0}},
                                     {0, 0, 0, 1, 2.5, 3, 3, 3}, {1, 0.5, 1, 2, 1}));
    made.emplace_back(polyline3d(false));
    made.emplace_back(polyline3d(true));
    return made;
}

struct Range {
    double from = 0, to = 0, length = 0;
    explicit Range(const AcDbCurve& curve) {
        EXPECT_EQ(curve.getStartParam(from), Acad::eOk);
        EXPECT_EQ(curve.getEndParam(to), Acad::eOk);
        EXPECT_EQ(curve.getDistAtParam(to, length), Acad::eOk);
    }
    double at(double fraction) const { return from + (to - from) * fraction; }
};

AcGePoint3d pointOf(const AcDbCurve& curve, double parameter) {
    AcGePoint3d point;
    EXPECT_EQ(curve.getPointAtParam(parameter, point), Acad::eOk);
    return point;
}

class SplineTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
};

TEST_F(SplineTest, ConversionsAgree) {
    for (const CurvePointer& curve : curves()) {
        const Range range(*curve);
        double before = -1.0;
        for (int k = 0; k <= 29; ++k) {
            const double parameter = range.at(k / 29.0);
            const AcGePoint3d point = pointOf(*curve, parameter);
            double distance = 0.0, back = 0.0;
            ASSERT_EQ(curve->getDistAtParam(parameter, distance), Acad::eOk);
            EXPECT_GT(distance, before);
            before = distance;
            ASSERT_EQ(curve->getParamAtDist(distance, back), Acad::eOk);
            EXPECT_NEAR(back, parameter, 1e-8);
            ASSERT_EQ(curve->getParamAtPoint(point, back), Acad::eOk);
            EXPECT_NEAR(pointOf(*curve, back).distanceTo(point), 0.0, 1e-9);
            constexpr double step = 1e-6;
            if (parameter - step < range.from || parameter + step > range.to ||
                AcDb3dPolyline::cast(curve.get()) != nullptr) {
                continue;
            }
            AcGeVector3d first, second, ahead, behind;
            ASSERT_EQ(curve->getFirstDeriv(parameter, first), Acad::eOk);
            ASSERT_EQ(curve->getSecondDeriv(parameter, second), Acad::eOk);
            curve->getFirstDeriv(parameter + step, ahead);
            curve->getFirstDeriv(parameter - step, behind);
            const AcGeVector3d slope =
                (pointOf(*curve, parameter + step) - pointOf(*curve, parameter - step)) / (2 * step);
            EXPECT_NEAR((first - slope).length(), 0.0, 1e-5);
            EXPECT_NEAR((second - (ahead - behind) / (2 * step)).length(), 0.0, 1e-3);
        }
        double unused = 0.0;
        EXPECT_EQ(curve->getParamAtDist(range.length + 0.01, unused), Acad::eInvalidInput);
        EXPECT_EQ(curve->getParamAtPoint(pointOf(*curve, range.from) + AcGeVector3d(0.2, 0.3, 50), unused),
                  Acad::eInvalidInput);
    }
}

TEST_F(SplineTest, ClosestPointsAndExtentsAgreeWithSampling) {
    Numbers random(3);
    for (const CurvePointer& curve : curves()) {
        const Range range(*curve);
        AcDbExtents box, sampled;
        ASSERT_EQ(curve->getGeomExtents(box), Acad::eOk);
        std::vector<AcGePoint3d> points;
        for (int k = 0; k <= 12000; ++k) {
            const AcGePoint3d point = pointOf(*curve, range.at(k / 12000.0));
            sampled.addPoint(point);
            if (k % 40 == 0) {
                points.push_back(point);
            }
        }
        EXPECT_NEAR(box.minPoint().distanceTo(sampled.minPoint()), 0.0, 1e-5);
        EXPECT_NEAR(box.maxPoint().distanceTo(sampled.maxPoint()), 0.0, 1e-5);
        for (int probe = 0; probe < 25; ++probe) {
            const AcGePoint3d given = random.point(20, 6);
            AcGePoint3d closest, extended, seen;
            ASSERT_EQ(curve->getClosestPointTo(given, closest), Acad::eOk);
            ASSERT_EQ(curve->getClosestPointTo(given, extended, true), Acad::eOk);
            ASSERT_EQ(curve->getClosestPointTo(given, AcGeVector3d::kZAxis, seen), Acad::eOk);
            EXPECT_LE(extended.distanceTo(given), closest.distanceTo(given) + 1e-9);
            double parameter = 0.0;
            EXPECT_EQ(curve->getParamAtPoint(closest, parameter), Acad::eOk);
            for (const AcGePoint3d& point : points) {
                ASSERT_LE(closest.distanceTo(given), point.distanceTo(given) + 1e-9);
                ASSERT_LE(std::hypot(seen.x - given.x, seen.y - given.y),
                          std::hypot(point.x - given.x, point.y - given.y) + 1e-9);
            }
        }
    }
}

TEST_F(SplineTest, PartsAreTheWhole) {
    for (const CurvePointer& curve : curves()) {
        const Range range(*curve);
        AcGeDoubleArray cuts{range.at(0.7), range.at(0.2)};
        AcDbVoidPtrArray pieces;
        ASSERT_EQ(curve->getSplitCurves(cuts, pieces), Acad::eOk);
        EXPECT_EQ(pieces.length(), curve->isClosed() ? 2 : 3);
        AcGePoint3d expected = pointOf(*curve, curve->isClosed() ? range.at(0.2) : range.from);
        double sum = 0.0;
        for (void* made : pieces) {
            const CurvePointer piece(AcDbCurve::cast(static_cast<AcDbEntity*>(made)));
            const Range part(*piece);
            EXPECT_NEAR(pointOf(*piece, part.from).distanceTo(expected), 0.0, 1e-8);
            expected = pointOf(*piece, part.to);
            sum += part.length;
            double unused = 0.0;
            EXPECT_EQ(curve->getParamAtPoint(pointOf(*piece, part.at(0.5)), unused), Acad::eOk);
        }
        EXPECT_NEAR(sum, range.length, 1e-7);
        std::vector<AcGePoint3d> points;
        for (int k = 0; k <= 10; ++k) {
            points.emplace_back();
            curve->getPointAtDist(range.length * k / 10, points.back());
        }
        ASSERT_EQ(curve->reverseCurve(), Acad::eOk);
        for (int k = 0; k <= 10; ++k) {
            AcGePoint3d point;
            ASSERT_EQ(curve->getPointAtDist(range.length * (10 - k) / 10, point), Acad::eOk);
            EXPECT_NEAR(point.distanceTo(points[static_cast<std::size_t>(k)]), 0.0, 1e-7);
        }
    }
}

TEST_F(SplineTest, ExtensionsGoOnAlongTheCurve) {
    for (const CurvePointer& curve : curves()) {
        const Range range(*curve);
        if (curve->isClosed()) {
            EXPECT_EQ(curve->extend(range.to + 0.1), Acad::eInvalidInput);
            continue;
        }
        AcGeVector3d before, after;
        AcGePoint3d point;
        const AcGePoint3d start = pointOf(*curve, range.from);
        curve->getFirstDeriv(range.to, before);
        EXPECT_EQ(curve->extend(range.at(0.5)), Acad::eInvalidInput);
        ASSERT_EQ(curve->extend(range.to + 0.1), Acad::eOk);
        const Range longer(*curve);
        EXPECT_GT(longer.length, range.length);
        ASSERT_EQ(curve->getPointAtDist(range.length, point), Acad::eOk);
        ASSERT_EQ(curve->getFirstDeriv(point, after), Acad::eOk);
        EXPECT_NEAR(after.angleTo(before), 0.0, 1e-5);
        EXPECT_NEAR(pointOf(*curve, longer.from).distanceTo(start), 0.0, 1e-9);
        ASSERT_EQ(curve->extend(range.from - 0.1), Acad::eOk);
        EXPECT_GT(pointOf(*curve, Range(*curve).from).distanceTo(start), 0.01);
    }
}

TEST_F(SplineTest, OffsetsLieAtTheirDistance) {
    for (const CurvePointer& curve : curves()) {
        AcDbVoidPtrArray offsets;
        if (!curve->isPlanar() || AcDb3dPolyline::cast(curve.get()) != nullptr) {
            EXPECT_EQ(curve->getOffsetCurves(0.5, offsets), Acad::eNotApplicable);
            continue;
        }
        for (const double distance : {0.5, -0.5}) {
            offsets.setLogicalLength(0);
            ASSERT_EQ(curve->getOffsetCurves(distance, offsets), Acad::eOk);
            ASSERT_EQ(offsets.length(), 1);
            const CurvePointer offset(AcDbCurve::cast(static_cast<AcDbEntity*>(offsets[0])));
            const Range range(*offset);
            if (curve->isClosed()) {
                EXPECT_EQ(range.length > Range(*curve).length, distance > 0);
            }
            for (int k = 0; k <= 60; ++k) {
                AcGePoint3d nearest;
                const AcGePoint3d point = pointOf(*offset, range.at(k / 60.0));
                curve->getClosestPointTo(point, nearest);
                EXPECT_NEAR(nearest.distanceTo(point), 0.5, 1e-6);
            }
        }
    }
}

TEST_F(SplineTest, CrossingsLieOnBothCurvesAndNoneIsMissed) {
    Numbers random(5);
    const auto flat = [&](int kind) -> CurvePointer {
        const AcGePoint3d a = random.point(9, 0), b = random.point(9, 0);
        switch (kind) {
        case 0:
            return CurvePointer(new AcDbLine(a, b));
        case 1:
            return CurvePointer(new AcDbArc(a, random(2, 8), random(0, 6), random(0, 6)));
        case 2:
            return CurvePointer(new AcDbEllipse(a, AcGeVector3d::kZAxis, b.asVector(), random(0.2, 0.9),
                                                random(0, 6), random(0, 6)));
        default:
            return CurvePointer(
                new AcDbSpline({a, b, random.point(9, 0), random.point(9, 0), random.point(9, 0)}));
        }
    };
    int total = 0;
    for (int i = 0; i < 240; ++i) {
        const CurvePointer first = flat(i % 4), second = flat(i / 4 % 4);
        if (i % 4 < 2 && i / 4 % 4 < 2) {
            continue; // told by a table elsewhere
        }
        AcGePoint3dArray points;
        ASSERT_EQ(first->intersectWith(second.get(), AcDb::kOnBothOperands, points), Acad::eOk);
        for (const AcGePoint3d& point : points) {
            double unused = 0.0;
            EXPECT_EQ(first->getParamAtPoint(point, unused), Acad::eOk);
            EXPECT_EQ(second->getParamAtPoint(point, unused), Acad::eOk);
        }
        // Chords that cross do so near a point that was found.
        const auto chords = [](const AcDbCurve& curve) {
            std::vector<AcGePoint3d> result;
            const Range range(curve);
            for (int k = 0; k <= 400; ++k) {
                result.push_back(pointOf(curve, range.at(k / 400.0)));
            }
            return result;
        };
        const std::vector<AcGePoint3d> ofFirst = chords(*first), ofSecond = chords(*second);
        int crossings = 0;
        for (std::size_t k = 0; k + 1 < ofFirst.size(); ++k) {
            for (std::size_t l = 0; l + 1 < ofSecond.size(); ++l) {
                const AcGeVector3d u = ofFirst[k + 1] - ofFirst[k], v = ofSecond[l + 1] - ofSecond[l];
                const AcGeVector3d gap = ofSecond[l] - ofFirst[k];
                const double det = u.x * v.y - u.y * v.x;
                const double s = (gap.x * v.y - gap.y * v.x) / det, t = (gap.x * u.y - gap.y * u.x) / det;
                crossings += s >= 0 && s < 1 && t >= 0 && t < 1 ? 1 : 0;
            }
        }
        EXPECT_EQ(points.length(), crossings) << i;
        total += crossings;
    }
    EXPECT_GT(total, 100);
}

TEST_F(SplineTest, CrossingTable) {
    const AcDbEllipse ellipse({0, 0, 0}, AcGeVector3d::kZAxis, {5, 0, 0}, 0.6);
    const AcDbEllipse half({0, 0, 0}, AcGeVector3d::kZAxis, {5, 0, 0}, 0.6, 0, pi);
    const AcDbSpline wave({{0, 0, 0}, {5, 5, 0}, {10, -5, 0}, {15, 0, 0}});
    const AcDbSpline straight(1, false, false, false, {{0, 0, 0}, {4, 0, 0}}, {0, 0, 1, 1},
                              AcGeDoubleArray());
    const AcDbLine across({-9, 1, 0}, {9, 1, 0}), touching({-9, 3, 0}, {9, 3, 0}),
        shorter({20, 0, 0}, {20, 4, 0});
    const AcDbLine above({0, 0, -5}, {5, 5, 5}), standing({5, 5, -5}, {5, 5, 5});
    AcDbRay ray;
    ray.setBasePoint({-9, -1, 0});
    ray.setUnitDir({1, 0, 0});
    AcDbXline xline;
    xline.setBasePoint({0, 1, 0});
    xline.setUnitDir({1, 0, 0});
    const struct {
        const char* what;
        const AcDbEntity& first;
        const AcDbEntity& second;
        AcDb::Intersect type;
        int expected;
    } table[] = {
        {"line and ellipse", across, ellipse, AcDb::kOnBothOperands, 2},
        {"a touch", touching, ellipse, AcDb::kOnBothOperands, 1},
        {"the lower half is missing", ray, half, AcDb::kOnBothOperands, 0},
        {"it is there when extended", ray, half, AcDb::kExtendArg, 2},
        {"construction line and ellipse", xline, ellipse, AcDb::kOnBothOperands, 2},
        {"construction line and ray beside it", xline, ray, AcDb::kOnBothOperands, 0},
        {"an ellipse and itself", ellipse, ellipse, AcDb::kOnBothOperands, 0},
        {"a spline and itself: the common ends of its pieces", wave, wave, AcDb::kOnBothOperands, 2},
        {"beyond the spline's end", shorter, wave, AcDb::kOnBothOperands, 0},
        {"on the spline's tangent", shorter, wave, AcDb::kExtendBoth, 1},
        {"over the spline", above, wave, AcDb::kOnBothOperands, 0},
        {"through the spline", standing, wave, AcDb::kOnBothOperands, 1},
        {"a straight spline on a line", straight, AcDbLine({-1, 0, 0}, {9, 0, 0}), AcDb::kOnBothOperands, 0},
        {"a straight spline before a line", straight, AcDbLine({4, 0, 0}, {9, 0, 0}), AcDb::kOnBothOperands,
         1},
    };
    for (const auto& row : table) {
        AcGePoint3dArray points, back;
        ASSERT_EQ(row.first.intersectWith(&row.second, row.type, points), Acad::eOk) << row.what;
        EXPECT_EQ(points.length(), row.expected) << row.what;
        const AcDb::Intersect swapped = row.type == AcDb::kExtendArg ? AcDb::kExtendThis : row.type;
        row.second.intersectWith(&row.first, swapped, back);
        EXPECT_EQ(back.length(), row.expected) << row.what;
    }
}

TEST_F(SplineTest, AnyTransformOfEllipsesAndCirclesIsExact) {
    Numbers random(7);
    const AcDbCircle circle({1, 2, 3}, AcGeVector3d(1, 1, 2).normal(), 4);
    const AcDbArc arc({1, 2, 3}, AcGeVector3d(1, 1, 2).normal(), 4, 0.5, 3);
    const AcDbEllipse ellipse({1, 2, 3}, AcGeVector3d::kZAxis, {4, 1, 0}, 0.3);
    const AcDbEllipse part({1, 2, 3}, AcGeVector3d::kZAxis, {4, 1, 0}, 0.3, 1, 3);
    const AcDbSpline spline({{0, 0, 0}, {5, 5, 1}, {10, -5, 0}, {15, 0, 0}});
    for (int i = 0; i < 40; ++i) {
        AcGeMatrix3d matrix;
        for (unsigned int row = 0; row < 3; ++row) {
            for (unsigned int column = 0; column < 4; ++column) {
                matrix.entry[row][column] = random(-2, 2);
            }
        }
        for (const AcDbCurve* source :
             std::initializer_list<const AcDbCurve*>{&circle, &arc, &ellipse, &part, &spline}) {
            AcDbEntity* copy = nullptr;
            ASSERT_EQ(source->getTransformedCopy(matrix, copy), Acad::eOk);
            const CurvePointer moved(AcDbCurve::cast(copy));
            const Range range(*source);
            EXPECT_EQ(moved->isClosed(), source->isClosed());
            for (int k = 0; k <= 12; ++k) {
                double unused = 0.0;
                const AcGePoint3d image = matrix * pointOf(*source, range.at(k / 12.0));
                EXPECT_EQ(moved->getParamAtPoint(image, unused), Acad::eOk);
            }
            if (const auto* made = AcDbEllipse::cast(moved.get())) {
                EXPECT_LE(made->radiusRatio(), 1.0);
                EXPECT_NEAR(made->majorAxis().dotProduct(made->normal()), 0.0, 1e-9);
            }
        }
    }
}

TEST_F(SplineTest, ExplodedBlocksTurnScaledCirclesIntoEllipses) {
    Drawing drawing;
    AcDbBlockReference reference({0, 0, 0}, drawing.block);
    reference.setScaleFactors({3, 1, 1});
    AcDbVoidPtrArray parts;
    ASSERT_EQ(reference.explode(parts), Acad::eOk);
    int ellipses = 0;
    for (void* made : parts) {
        const std::unique_ptr<AcDbEntity> part(static_cast<AcDbEntity*>(made));
        ellipses += AcDbEllipse::cast(part.get()) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(ellipses, 1);
}

TEST_F(SplineTest, EllipseValues) {
    AcDbEllipse ellipse({0, 0, 0}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5, 0, pi / 4);
    double parameter = 0.0, angle = 0.0, area = 0.0;
    ellipse.paramAtAngle(pi / 4, parameter);
    EXPECT_NEAR(parameter, std::atan(2.0), 1e-12);
    ellipse.angleAtParam(parameter, angle);
    EXPECT_NEAR(angle, pi / 4, 1e-12);
    EXPECT_NEAR(ellipse.endAngle(), pi / 4, 1e-12);
    AcGePoint3d end;
    ellipse.getEndPoint(end);
    EXPECT_NEAR(end.x, end.y, 1e-12);
    EXPECT_EQ(ellipse.setRadiusRatio(1.5), Acad::eInvalidInput);
    EXPECT_EQ(ellipse.set({0, 0, 0}, AcGeVector3d::kZAxis, {0, 0, 4}, 0.5), Acad::eInvalidInput);
    EXPECT_EQ(ellipse.set({1, 1, 0}, AcGeVector3d::kZAxis, {0, 4, 0}, 0.5), Acad::eOk);
    EXPECT_TRUE(ellipse.isClosed());
    ellipse.getArea(area);
    EXPECT_NEAR(area, 8 * pi, 1e-12);
    // A minor axis pulled beyond the major one becomes the major one.
    ASSERT_EQ(ellipse.moveGripPointsAt({2}, {-6, 0, 0}), Acad::eOk);
    EXPECT_NEAR(ellipse.majorRadius(), 8, 1e-12);
    EXPECT_NEAR(ellipse.minorRadius(), 4, 1e-12);
    AcGePoint3dArray points;
    AcDbIntArray ids;
    ellipse.getOsnapPoints(AcDb::kOsModeQuad, 0, {}, {}, {}, points, ids);
    EXPECT_EQ(points.length(), 4);
    points.setLogicalLength(0);
    ellipse.getOsnapPoints(AcDb::kOsModePerp, 0, {}, {3, 1, 0}, {}, points, ids);
    EXPECT_GE(points.length(), 2);
    points.setLogicalLength(0);
    ellipse.getOsnapPoints(AcDb::kOsModeTan, 0, {}, {30, 1, 0}, {}, points, ids);
    EXPECT_EQ(points.length(), 2);
}

TEST_F(SplineTest, SplineDataChangeTogether) {
    AcDbSpline spline({{0, 0, 0}, {5, 5, 0}, {10, -5, 0}, {15, 0, 0}}, {1, 0, 0}, {1, 0, 0});
    EXPECT_TRUE(spline.hasFitData());
    EXPECT_EQ(spline.numControlPoints(), 6);
    ASSERT_EQ(spline.moveGripPointsAt({1}, {0, 2, 0}), Acad::eOk);
    AcGePoint3d point;
    spline.getFitPointAt(1, point);
    EXPECT_EQ(point, AcGePoint3d(5, 7, 0));
    double parameter = 0.0;
    EXPECT_EQ(spline.getParamAtPoint(point, parameter), Acad::eOk);
    EXPECT_EQ(spline.insertFitPointAt(2, {7, 0, 1}), Acad::eOk);
    EXPECT_EQ(spline.numControlPoints(), 7);
    EXPECT_FALSE(spline.isPlanar());
    EXPECT_EQ(spline.removeFitPointAt(2), Acad::eOk);
    EXPECT_TRUE(spline.isPlanar());
    const double length = Range(spline).length;
    EXPECT_EQ(spline.elevateDegree(5), Acad::eOk);
    EXPECT_FALSE(spline.hasFitData());
    EXPECT_EQ(spline.degree(), 5);
    EXPECT_EQ(spline.insertKnot(3.0), Acad::eOk);
    EXPECT_EQ(spline.setWeightAt(0, 1.0), Acad::eOk);
    EXPECT_TRUE(spline.isRational());
    EXPECT_NEAR(Range(spline).length, length, 1e-9);
    const std::string before = bytesOf(spline);
    EXPECT_EQ(spline.setWeightAt(0, -1.0), Acad::eInvalidInput);
    EXPECT_EQ(spline.setControlPointAt(99, {}), Acad::eInvalidIndex);
    EXPECT_EQ(
        spline.setNurbsData(3, false, false, false, {{0, 0, 0}, {1, 1, 0}}, {0, 0, 1, 1}, AcGeDoubleArray()),
        Acad::eInvalidInput);
    EXPECT_EQ(bytesOf(spline), before);
    AcDbCurve* made = nullptr;
    ASSERT_EQ(spline.toPolyline(made), Acad::eOk);
    const CurvePointer polyline(made);
    EXPECT_NE(AcDbPolyline::cast(made), nullptr);
    EXPECT_NEAR(Range(*polyline).length, length, 0.01);
    // The ends are snapped to, not the places between the curve's own pieces.
    AcGePoint3dArray points;
    AcDbIntArray ids;
    spline.getOsnapPoints(AcDb::kOsModeEnd, 0, {}, {}, {}, points, ids);
    EXPECT_EQ(points.length(), 2);
    spline.getOsnapPoints(AcDb::kOsModeMid, 0, {}, {}, {}, points, ids);
    ASSERT_EQ(points.length(), 3);
    double half = 0.0;
    spline.getDistAtPoint(points[2], half);
    EXPECT_NEAR(half, length / 2, 1e-6);
}

TEST_F(SplineTest, FitPointsAloneMakeASplineInFiles) {
    host::ResbufBuilder builder;
    builder.string(100, L"AcDbEntity").string(8, L"0").string(100, L"AcDbSpline");
    builder.integer(70, 1024 + 8).integer(71, 3).integer(74, 3);
    for (const AcGePoint3d& point : {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 4, 0), AcGePoint3d(8, 0, 0)}) {
        builder.point(11, point.x, point.y, point.z);
    }
    const host::ResbufList list = builder.release();
    host::ResbufDxfReader reader(nullptr, list.get());
    AcDbSpline spline;
    ASSERT_EQ(spline.dxfIn(&reader), Acad::eOk);
    EXPECT_EQ(spline.numControlPoints(), 5);
    double parameter = 0.0;
    EXPECT_EQ(spline.getParamAtPoint({4, 4, 0}, parameter), Acad::eOk);
    // Numbers that fit nowhere are refused.
    builder.string(100, L"AcDbEntity").string(8, L"0").string(100, L"AcDbSpline");
    builder.integer(71, 3).real(40, 0).real(40, 1).point(10, 0, 0, 0);
    const host::ResbufList damaged = builder.release();
    host::ResbufDxfReader second(nullptr, damaged.get());
    EXPECT_EQ(AcDbSpline().dxfIn(&second), Acad::eInvalidInput);
}

TEST_F(SplineTest, InfiniteLinesHaveNoExtents) {
    AcDbRay ray;
    ray.setBasePoint({1, 1, 0});
    ray.setUnitDir({0, 3, 0});
    AcDbExtents box;
    EXPECT_EQ(ray.getGeomExtents(box), Acad::eInvalidExtents);
    AcGePoint3d point;
    double parameter = 0.0;
    EXPECT_EQ(ray.getPointAtParam(1e6, point), Acad::eOk);
    EXPECT_EQ(ray.getPointAtParam(-1, point), Acad::eInvalidInput);
    EXPECT_EQ(ray.getEndParam(parameter), Acad::eNotApplicable);
    ray.getClosestPointTo({5, -7, 0}, point);
    EXPECT_EQ(point, AcGePoint3d(1, 1, 0));
    ray.getClosestPointTo({5, -7, 0}, point, true);
    EXPECT_EQ(point, AcGePoint3d(1, -7, 0));
    AcDbVoidPtrArray parts;
    ASSERT_EQ(ray.getSplitCurves(AcGeDoubleArray{2.0, 5.0}, parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 3);
    AcDbXline xline;
    ASSERT_EQ(xline.getSplitCurves(AcGeDoubleArray{2.0, 5.0}, parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 6);
    const wchar_t* kinds[] = {L"AcDbLine", L"AcDbLine", L"AcDbRay", L"AcDbRay", L"AcDbLine", L"AcDbRay"};
    for (int index = 0; index < 6; ++index) {
        const std::unique_ptr<AcDbEntity> part(static_cast<AcDbEntity*>(parts[index]));
        EXPECT_STREQ(part->isA()->name(), kinds[index]);
    }
    parts.setLogicalLength(0);
    ASSERT_EQ(xline.getOffsetCurves(2.0, parts), Acad::eOk);
    const std::unique_ptr<AcDbEntity> parallel(static_cast<AcDbEntity*>(parts[0]));
    EXPECT_EQ(AcDbXline::cast(parallel.get())->basePoint(), AcGePoint3d(0, -2, 0));
    EXPECT_EQ(xline.setUnitDir({0, 0, 0}), Acad::eInvalidInput);
}

/// The greatest distance from the points to the curve.
double farthest(const AcDbSpline& spline, const AcGePoint3dArray& points) {
    double most = 0.0;
    for (const AcGePoint3d& point : points) {
        AcGePoint3d closest;
        spline.getClosestPointTo(point, closest);
        most = std::max(most, closest.distanceTo(point));
    }
    return most;
}

TEST_F(SplineTest, FitToleranceSparesControlPoints) {
    Numbers random(7);
    for (const int count : {5, 12, 150}) {
        AcGePoint3dArray points;
        for (int i = 0; i < count; ++i) {
            points.append({3.0 * i, 20.0 * std::sin(0.05 * i) + random(-0.4, 0.4), random(-0.1, 0.1)});
        }
        AcDbSpline spline(points, {1, 1, 0}, {1, 0, 0});
        EXPECT_EQ(spline.numControlPoints(), count + 2);
        EXPECT_LT(farthest(spline, points), 1e-6);
        int before = spline.numControlPoints();
        for (const double tolerance : {0.2, 1.0, 30.0}) {
            ASSERT_EQ(spline.setFitTol(tolerance), Acad::eOk);
            EXPECT_LE(spline.numControlPoints(), before) << count << " points within " << tolerance;
            before = spline.numControlPoints();
            EXPECT_LE(farthest(spline, points), tolerance * (1.0 + 1e-9));
            AcGePoint3d end;
            spline.getStartPoint(end);
            EXPECT_EQ(end, points.first());
            spline.getEndPoint(end);
            EXPECT_EQ(end, points.last());
            AcGeVector3d along;
            double start = 0.0;
            spline.getStartParam(start);
            spline.getFirstDeriv(start, along);
            EXPECT_LT(along.angleTo({1, 1, 0}), 1e-9);
            EXPECT_EQ(spline.numFitPoints(), count) << "the points are kept";
        }
        EXPECT_LT(before, 12) << count;
        ASSERT_EQ(spline.setFitTol(0.0), Acad::eOk);
        EXPECT_LT(farthest(spline, points), 1e-6);
    }
    EXPECT_EQ(AcDbSpline().setFitTol(-1.0), Acad::eInvalidInput);
}

TEST_F(SplineTest, ClosedWithinATolerance) {
    AcGePoint3dArray points;
    for (int i = 0; i <= 60; ++i) {
        const double angle = 2.0 * pi * (i % 60) / 60;
        const double radius = 10.0 + (i % 2 == 0 ? 0.01 : -0.01);
        points.append({radius * std::cos(angle), radius * std::sin(angle), 0.0});
    }
    points.last() = points.first();
    const AcDbSpline spline(points, 4, 0.05);
    EXPECT_TRUE(spline.isClosed());
    EXPECT_LT(spline.numControlPoints(), 20);
    EXPECT_LE(farthest(spline, points), 0.05);
    double start = 0.0;
    double end = 0.0;
    AcGeVector3d leaving;
    AcGeVector3d arriving;
    spline.getStartParam(start);
    spline.getEndParam(end);
    spline.getFirstDeriv(start, leaving);
    spline.getFirstDeriv(end, arriving);
    EXPECT_LT(leaving.angleTo(arriving), 1e-9) << "no corner where it closes";
}

TEST_F(SplineTest, FacesHideEdges) {
    AcDbFace face({0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, true, false, true, true);
    std::vector<host::CurvePiece> pieces;
    face.curvePieces(pieces);
    EXPECT_EQ(pieces.size(), 3u);
    EXPECT_EQ(AcDbFace({0, 0, 0}, {4, 0, 0}, {4, 4, 0}).explode(*std::make_unique<AcDbVoidPtrArray>()),
              Acad::eNotApplicable);
    face.makeEdgeVisibleAt(1);
    bool visible = false;
    face.isEdgeVisibleAt(1, visible);
    EXPECT_TRUE(visible);
    EXPECT_TRUE(face.isPlanar());
    face.setVertexAt(3, {0, 4, 2});
    EXPECT_FALSE(face.isPlanar());
    EXPECT_EQ(face.setVertexAt(4, {}), Acad::eInvalidIndex);
}

} // namespace
