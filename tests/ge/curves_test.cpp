// Curves of the plane and of space. Every kind must agree with itself: derivatives with differences, lengths
// and closest points with sampling, parts with the whole.
#include "random_paths.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

using test::RandomPaths;

AcGePoint3dArray helixPoints() {
    AcGePoint3dArray points;
    for (int i = 0; i < 9; ++i)
        points.append({4.0 * std::cos(i * 0.9), 3.0 * std::sin(i * 0.9), 0.5 * i});
    return points;
}

AcGeNurbCurve3d cubic(bool rational) {
    const AcGeKnotVector knots{0, 0, 0, 0, 1, 2, 2, 3.5, 5, 6, 6, 6, 6};
    AcGeDoubleArray weights;
    for (int i = 0; i < 9; ++i)
        weights.append(1.0 + 0.3 * (i % 3));
    return rational ? AcGeNurbCurve3d(3, knots, helixPoints(), weights)
                    : AcGeNurbCurve3d(3, knots, helixPoints());
}

std::vector<std::unique_ptr<AcGeCurve3d>> curvesOfSpace() {
    std::vector<std::unique_ptr<AcGeCurve3d>> curves;
    const AcGePoint3d center(1, 2, 3);
    const AcGeVector3d normal(1, -2, 2);
    curves.emplace_back(new AcGeLineSeg3d(AcGePoint3d(1, 2, 3), AcGePoint3d(4, -1, 7)));
    curves.emplace_back(new AcGeCircArc3d(center, normal, normal.perpVector(), 5.0, 0.7, 4.0));
    curves.emplace_back(new AcGeCircArc3d(center, normal, 2.0));
    curves.emplace_back(new AcGeCircArc3d(AcGePoint3d(1, 0, 0), AcGePoint3d(3, 4, 1), AcGePoint3d(0, 5, 2)));
    curves.emplace_back(new AcGeEllipArc3d(center, {1, 1, 0}, {-1, 1, 3}, 6.0, 2.5, 1.0, 5.5));
    curves.emplace_back(new AcGePolyline3d(helixPoints()));
    curves.emplace_back(new AcGeNurbCurve3d(cubic(false)));
    curves.emplace_back(new AcGeNurbCurve3d(cubic(true)));
    curves.emplace_back(
        new AcGeNurbCurve3d(AcGeEllipArc3d(center, {1, 1, 0}, {-1, 1, 3}, 6.0, 2.5, 1.0, 5.5)));
    return curves;
}

std::vector<std::unique_ptr<AcGeCurve2d>> curvesOfThePlane() {
    std::vector<std::unique_ptr<AcGeCurve2d>> curves;
    AcGePoint2dArray points;
    for (const AcGePoint3d& point : helixPoints())
        points.append(host::to2d(point));
    curves.emplace_back(new AcGeLineSeg2d(AcGePoint2d(1, 2), AcGePoint2d(4, -1)));
    curves.emplace_back(new AcGeCircArc2d({1, 2}, 5.0, 0.7, 4.0));
    curves.emplace_back(new AcGeCircArc2d({1, 2}, 5.0, 0.7, 4.0, {1, 1}, true));
    curves.emplace_back(new AcGeCircArc2d({1, 0}, {3, 4}, {0, 5}));
    curves.emplace_back(new AcGeCircArc2d({1, 0}, {3, 4}, -0.6));
    curves.emplace_back(new AcGeEllipArc2d({1, 2}, {1, 1}, {1, -1}, 6.0, 2.5, 1.0, 5.5));
    curves.emplace_back(new AcGePolyline2d(points));
    return curves;
}

template <class Curve>
void checkCurve(const Curve& curve, unsigned seed) {
    using Vector = typename Curve::Vector;
    using Point = typename Curve::Point;
    const AcGeInterval range = curve.interval();
    const double low = range.lowerBound(), width = range.length(), step = 1e-5 * width;
    Point start, end;
    ASSERT_TRUE(curve.hasStartPoint(start) && curve.hasEndPoint(end));

    // Derivatives, away from places where the curve is not smooth.
    const bool isPolyline = curve.isKindOf(AcGe::kPolyline2d) || curve.isKindOf(AcGe::kPolyline3d);
    for (double t = low + 0.0371 * width; t < low + width - step; t += 0.0713 * width) {
        Vector derivatives[2], before[1], after[1];
        const Point point = curve.evaluate(t, 2, derivatives);
        const Vector slope = (curve.evalPoint(t + step) - curve.evalPoint(t - step)) / (2 * step);
        EXPECT_LT((derivatives[0] - slope).length(), 1e-4 * (1.0 + slope.length()));
        curve.evaluate(t - step, 1, before);
        curve.evaluate(t + step, 1, after);
        const Vector bend = (after[0] - before[0]) / (2 * step);
        EXPECT_LT((derivatives[1] - bend).length(), 1e-3 * (1.0 + bend.length()));
        EXPECT_NEAR(curve.evalPoint(curve.paramOf(point)).distanceTo(point), 0.0, 1e-9);
    }

    // Length, distances along the curve, extents and closest points against many chords.
    const int count = 4000;
    double chords = 0.0;
    typename Curve::PointArray samples;
    curve.getSamplePoints(count + 1, samples);
    typename Curve::BoundBlock box = curve.orthoBoundBlock(), loose(samples[0], samples[0]);
    box.swell(1e-9);
    for (int i = 0; i < count; ++i) {
        chords += samples[i].distanceTo(samples[i + 1]);
        EXPECT_TRUE(box.contains(samples[i]));
        loose.extend(samples[i + 1]);
    }
    loose.swell(1e-4);
    EXPECT_TRUE(loose.contains(curve.orthoBoundBlock().minPoint()) &&
                loose.contains(curve.orthoBoundBlock().maxPoint()));
    const double length = curve.length(low, low + width);
    EXPECT_NEAR(length, chords, 1e-4 * chords);
    EXPECT_NEAR(curve.length(low, low + 0.3 * width) + curve.length(low + 0.3 * width, low + width), length,
                1e-8);
    const double middle = curve.paramAtLength(low, 0.4 * length);
    EXPECT_NEAR(curve.length(low, middle), 0.4 * length, 1e-8);
    EXPECT_NEAR(curve.length(curve.paramAtLength(middle, 0.1 * length, false), middle), 0.1 * length, 1e-8);

    RandomPaths random(seed);
    for (int i = 0; i < 30; ++i) {
        Point point;
        for (unsigned int axis = 0; axis < (std::is_same_v<Point, AcGePoint2d> ? 2u : 3u); ++axis)
            point[axis] = random.number(-8, 8);
        double sampled = 1e300;
        for (const Point& sample : samples)
            sampled = std::min(sampled, sample.distanceTo(point));
        EXPECT_LE(curve.distanceTo(point), sampled + 1e-9);
        EXPECT_GT(curve.distanceTo(point), sampled - 0.01);
    }

    // Halves, and the other direction.
    Curve *first = nullptr, *second = nullptr;
    curve.getSplitCurves(low + 0.45 * width, first, second);
    const std::unique_ptr<Curve> firstPart(first), secondPart(second);
    ASSERT_TRUE(first && second);
    Point join, other;
    EXPECT_TRUE(first->hasEndPoint(join) && second->hasStartPoint(other));
    EXPECT_LT(join.distanceTo(other), 1e-9);
    EXPECT_LT(join.distanceTo(curve.evalPoint(low + 0.45 * width)), 1e-9);
    const auto wholeLength = [](const Curve& part) {
        return part.length(part.interval().lowerBound(), part.interval().upperBound());
    };
    EXPECT_NEAR(wholeLength(*first) + wholeLength(*second), length, 1e-7);
    const std::unique_ptr<Curve> turned(curve.copy());
    turned->reverseParam();
    EXPECT_TRUE(turned->hasStartPoint(join) && turned->hasEndPoint(other));
    EXPECT_LT(join.distanceTo(end) + other.distanceTo(start), 1e-9);
    EXPECT_NEAR(wholeLength(*turned), length, 1e-8);
    EXPECT_LT(turned->evalPoint(turned->interval().lowerBound() + 0.3 * turned->interval().length())
                  .distanceTo(curve.evalPoint(low + 0.7 * width)),
              isPolyline ? 1e-6 : 1e-9);
}

TEST(Curves, EveryKindOfSpaceAgreesWithItself) {
    unsigned index = 0;
    for (const auto& curve : curvesOfSpace()) {
        SCOPED_TRACE(index);
        checkCurve(*curve, index++);
        // Carried by a map that keeps the kinds, each point goes where the map takes it.
        const AcGeMatrix3d map =
            AcGeMatrix3d::mirroring(AcGePlane({1, 2, 3}, {2, 1, 5})) * AcGeMatrix3d::scaling(2.5, {1, 1, 1});
        const std::unique_ptr<AcGeCurve3d> moved(curve->copy());
        moved->transformBy(map);
        for (double fraction : {0.0, 0.2, 0.77, 1.0}) {
            const double t = curve->interval().lowerBound() + fraction * curve->interval().length();
            EXPECT_LT(moved->evalPoint(t).distanceTo(map * curve->evalPoint(t)), 1e-9);
        }
    }
}

TEST(Curves, EveryKindOfThePlaneAgreesWithItself) {
    unsigned index = 0;
    for (const auto& curve : curvesOfThePlane()) {
        SCOPED_TRACE(index);
        checkCurve(*curve, index++);
        const AcGeMatrix2d map = AcGeMatrix2d::mirroring(AcGeLine2d({1, 2}, AcGeVector2d(3, 1)));
        const std::unique_ptr<AcGeCurve2d> moved(curve->copy());
        moved->transformBy(map);
        const double t = curve->interval().lowerBound() + 0.3 * curve->interval().length();
        EXPECT_LT(moved->evalPoint(t).distanceTo(map * curve->evalPoint(t)), 1e-9);
    }
}

// A circle or ellipse stretched by any map is an ellipse with new axes and angles.
TEST(Curves, EllipsesFollowAnyMap) {
    RandomPaths random(9);
    const auto vector = [&] {
        return AcGeVector3d(random.number(-3, 3), random.number(-3, 3), random.number(-3, 3));
    };
    for (int i = 0; i < 200; ++i) {
        AcGeMatrix3d map;
        map.setCoordSystem(AcGePoint3d() + vector(), vector(), vector(), vector());
        if (std::fabs(map.det()) < 0.1)
            continue;
        const AcGeEllipArc3d arc({1, 2, 3}, {1, 1, 0}, {-1, 1, 3}, 6.0, i % 2 ? 6.0 : 2.5, 1.0, 5.5);
        AcGeEllipArc3d moved(arc);
        moved.transformBy(map);
        EXPECT_TRUE(moved.majorAxis().isPerpendicularTo(moved.minorAxis(), AcGeTol().setEqualVector(1e-8)));
        EXPECT_LT(moved.startPoint().distanceTo(map * arc.startPoint()), 1e-8);
        EXPECT_LT(moved.endPoint().distanceTo(map * arc.endPoint()), 1e-8);
        EXPECT_LT(moved.distanceTo(map * arc.evalPoint(3.3)), 1e-8);
    }
}

TEST(Curves, StraightCurvesMeetOnlyWithinTheirEnds) {
    const AcGeLine3d line(AcGePoint3d(0, 0, 1), AcGeVector3d::kXAxis);
    const AcGeRay3d ray(AcGePoint3d(5, -1, 1), AcGeVector3d::kYAxis);
    const AcGeLineSeg3d low(AcGePoint3d(5, -3, 1), AcGePoint3d(5, -1, 1)),
        skew(AcGePoint3d(5, -3, 0), AcGePoint3d(5, 3, 0));
    AcGePoint3d point;
    EXPECT_TRUE(line.intersectWith(ray, point));
    EXPECT_EQ(point, AcGePoint3d(5, 0, 1));
    EXPECT_FALSE(line.intersectWith(low, point));
    EXPECT_FALSE(line.intersectWith(skew, point));
    EXPECT_TRUE(skew.intersectWith(AcGePlane(AcGePoint3d(0, 1, 0), AcGeVector3d::kYAxis), point));
    EXPECT_FALSE(low.intersectWith(AcGePlane(AcGePoint3d(0, 1, 0), AcGeVector3d::kYAxis), point));
    AcGePoint3d onOther;
    EXPECT_EQ(line.closestPointTo(skew, onOther), AcGePoint3d(5, 0, 1));
    EXPECT_EQ(onOther, AcGePoint3d(5, 0, 0));

    AcGeLinearEnt3d* common = nullptr;
    const AcGeLineSeg3d a(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)),
        b(AcGePoint3d(14, 0, 0), AcGePoint3d(6, 0, 0));
    ASSERT_TRUE(a.overlap(b, common));
    const std::unique_ptr<AcGeLinearEnt3d> owned(common);
    EXPECT_NEAR(common->length(0.0, 1.0), 4.0, 1e-12);
    EXPECT_FALSE(a.overlap(AcGeLineSeg3d(AcGePoint3d(10, 0, 0), AcGePoint3d(12, 0, 0)), common));

    AcGeLine3d edge;
    ASSERT_TRUE(
        AcGePlane::kXYPlane.intersectWith(AcGePlane(AcGePoint3d(0, 0, 2), AcGeVector3d(1, 0, 1)), edge));
    EXPECT_TRUE(edge.isOn(AcGePoint3d(2, 7, 0)));
    EXPECT_TRUE(AcGeMatrix3d::mirroring(AcGeLine3d::kXAxis)
                    .isEqualTo(AcGeMatrix3d::rotation(host::pi, AcGeVector3d::kXAxis)));
}

TEST(Curves, ArcsMeetLinesPlanesAndEachOther) {
    const AcGeCircArc3d upper({0, 0, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 5.0, 0.0, host::pi);
    int count = 0;
    AcGePoint3d p, q;
    EXPECT_TRUE(upper.intersectWith(AcGeLine3d(AcGePoint3d(3, 0, 0), AcGeVector3d::kYAxis), count, p, q));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(p, AcGePoint3d(3, 4, 0));
    EXPECT_TRUE(upper.intersectWith(AcGeLine3d(AcGePoint3d(3, 4, -9), AcGeVector3d::kZAxis), count, p, q));
    EXPECT_FALSE(upper.intersectWith(AcGeLineSeg3d(AcGePoint3d(3, 4, 9), AcGePoint3d(3, 4, 1)), count, p, q));
    EXPECT_TRUE(upper.intersectWith(AcGePlane(AcGePoint3d(0, 3, 0), AcGeVector3d::kYAxis), count, p, q));
    EXPECT_EQ(count, 2);
    EXPECT_FALSE(upper.intersectWith(AcGePlane(AcGePoint3d(0, -3, 0), AcGeVector3d::kYAxis), count, p, q));
    EXPECT_TRUE(upper.intersectWith(AcGeCircArc3d({6, 0, 0}, -AcGeVector3d::kZAxis, 5.0), count, p, q));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(p, AcGePoint3d(3, 4, 0));
    EXPECT_TRUE(upper.intersectWith(AcGeCircArc3d({0, 4, 0}, AcGeVector3d::kYAxis, 3.0), count, p, q));
    EXPECT_EQ(count, 2);
    AcGeError flag;
    AcGeCircArc3d unchanged(upper);
    unchanged.set({0, 0, 0}, {1, 1, 0}, {2, 2, 0}, flag);
    EXPECT_EQ(flag, AcGe::kLinearlyDependentArg1Arg2Arg3);
    EXPECT_NEAR(unchanged.radius(), 5.0, 1e-12);

    AcGePoint2d r, s;
    EXPECT_TRUE(
        AcGeCircArc2d({0, 0}, 5.0, 0.0, host::pi).intersectWith(AcGeCircArc2d({6, 0}, 5.0), count, r, s));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(r, AcGePoint2d(3, 4));
    EXPECT_TRUE(AcGeCircArc2d({0, 0}, {3, 4}, 0.5).isOn(AcGePoint2d(3, 4)));
}

TEST(Curves, OffsetsLieToTheRight) {
    AcGeVoidPointerArray offsets;
    EXPECT_TRUE(AcGeLineSeg2d(AcGePoint2d(0, 0), AcGePoint2d(10, 0)).getTrimmedOffset(2.0, offsets));
    EXPECT_TRUE(AcGeCircArc2d({0, 0}, 5.0).getTrimmedOffset(2.0, offsets));
    EXPECT_TRUE(AcGeCircArc2d({0, 0}, 5.0, 0.0, 1.0, {1, 0}, true).getTrimmedOffset(2.0, offsets));
    EXPECT_FALSE(AcGeCircArc2d({0, 0}, 5.0).getTrimmedOffset(-5.0, offsets));
    ASSERT_EQ(offsets.length(), 3);
    std::vector<std::unique_ptr<AcGeCurve2d>> curves;
    for (void* offset : offsets)
        curves.emplace_back(static_cast<AcGeCurve2d*>(offset));
    EXPECT_EQ(curves[0]->evalPoint(0.5), AcGePoint2d(5, -2));
    EXPECT_NEAR(curves[1]->evalPoint(0.0).x, 7.0, 1e-12);
    EXPECT_NEAR(curves[2]->evalPoint(0.0).x, 3.0, 1e-12);
}

TEST(NurbCurve, KnotsCanBeAddedAndPartsCutExactly) {
    for (const bool rational : {false, true}) {
        const AcGeNurbCurve3d whole = cubic(rational);
        AcGeNurbCurve3d denser(whole), part(whole);
        for (const double knot : {0.5, 2.0, 3.5, 5.9})
            denser.insertKnot(knot);
        EXPECT_EQ(denser.numControlPoints(), whole.numControlPoints() + 4);
        ASSERT_TRUE(part.setInterval(AcGeInterval(0.7, 5.2)));
        for (double t = 0.0; t <= 6.0; t += 0.1) {
            EXPECT_LT(denser.evalPoint(t).distanceTo(whole.evalPoint(t)), 1e-12);
            if (t > 0.7 && t < 5.2) {
                EXPECT_LT(part.evalPoint(t).distanceTo(whole.evalPoint(t)), 1e-12);
            }
        }
        EXPECT_EQ(whole.startPoint(), helixPoints().first());
        EXPECT_EQ(whole.endPoint(), helixPoints().last());
    }
    // The exact circle, also between its points.
    const AcGeNurbCurve3d circle{AcGeEllipArc3d(AcGeCircArc3d({1, 1, 0}, AcGeVector3d::kZAxis, 3.0))};
    for (double t = 0.0; t < host::twoPi; t += 0.1)
        EXPECT_NEAR(circle.evalPoint(t).distanceTo({1, 1, 0}), 3.0, 1e-12);
    EXPECT_TRUE(circle.isClosed());
    AcGePlane plane;
    EXPECT_TRUE(circle.isPlanar(plane));
    EXPECT_FALSE(cubic(false).isPlanar(plane));
    // What does not fit together is told and does no harm.
    const AcGeNurbCurve3d broken(3, AcGeKnotVector{0, 1, 0.5}, helixPoints());
    EXPECT_FALSE(broken.isValid());
    EXPECT_EQ(broken.evalPoint(0.5), AcGePoint3d::kOrigin);
}

// Any two kinds, brought to cross at a known point, are found to; and whatever is found lies on both.
TEST(CurveIntersection, EveryPairOfKindsIsFoundToCross) {
    const auto firsts = curvesOfSpace(), seconds = curvesOfSpace();
    for (std::size_t i = 0; i < firsts.size(); ++i)
        for (std::size_t j = 0; j < seconds.size(); ++j) {
            SCOPED_TRACE(testing::Message() << i << " and " << j);
            const auto at = [](const AcGeCurve3d& curve, double fraction) {
                return curve.evalPoint(curve.interval().lowerBound() + fraction * curve.interval().length());
            };
            const AcGePoint3d meeting = at(*firsts[i], 0.43);
            const std::unique_ptr<AcGeCurve3d> moved(seconds[j]->copy());
            moved->rotateBy(1.0, {1, 2, -1});
            moved->translateBy(meeting - at(*moved, 0.61));
            const AcGeTol tolerance = AcGeTol().setEqualPoint(1e-9);
            const AcGeCurveCurveInt3d common(*firsts[i], *moved, AcGeVector3d::kIdentity, tolerance);
            bool found = false;
            for (int k = 0; k < common.numIntPoints(); ++k) {
                double s = 0.0, t = 0.0;
                common.getIntParams(k, s, t);
                EXPECT_LT(firsts[i]->evalPoint(s).distanceTo(moved->evalPoint(t)), 1e-9);
                found = found || common.intPoint(k).distanceTo(meeting) < 1e-6;
            }
            EXPECT_TRUE(found);
        }
}

TEST(CurveIntersection, CountsOfKnownPairs) {
    const AcGeCircArc2d circle({0, 0}, 5.0), upper({0, 0}, 5.0, 0.0, host::pi);
    const AcGeLine2d axis = AcGeLine2d::kXAxis;
    const AcGeEllipArc2d ellipse({0, 0}, {1, 0}, {0, 1}, 8.0, 2.0), tall({0, 0}, {0, 1}, {1, 0}, 8.0, 2.0);
    AcGePoint2dArray points;
    for (int i = 0; i <= 20; ++i)
        points.append({-10.0 + i, i % 2 ? 1.0 : -1.0});
    const AcGePolyline2d zigzag(points);
    const AcGeLineSeg2d chord(AcGePoint2d(-5, 0), AcGePoint2d(5, 0)),
        above(AcGePoint2d(-9, 5), AcGePoint2d(9, 5));
    struct {
        const AcGeCurve2d &first, &second;
        int points, overlaps;
    } table[] = {
        {circle, axis, 2, 0},
        {axis, circle, 2, 0},
        {upper, above, 1, 0},
        {ellipse, tall, 4, 0},
        {circle, ellipse, 4, 0},
        {zigzag, axis, 20, 0},
        {axis, chord, 0, 1},
        {chord, upper, 2, 0},
        {axis, AcGeLine2d::kYAxis, 1, 0},
        {above, axis, 0, 0},
        {upper, AcGeCircArc2d({0, 0}, 5.0, 1.0, 2.0), 0, 1},
    };
    for (const auto& row : table) {
        const AcGeCurveCurveInt2d common(row.first, row.second);
        EXPECT_EQ(common.numIntPoints(), row.points) << (&row - table);
        EXPECT_EQ(common.overlapCount(), row.overlaps) << (&row - table);
    }
}

} // namespace
