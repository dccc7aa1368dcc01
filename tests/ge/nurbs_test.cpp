// NURBS curves, their Bezier pieces and the polynomials behind them, against sampling and known curves; the
// fitting of polylines.
#include "random_paths.h"

#include <gtest/gtest.h>

namespace {

using host::BernsteinPolynomial;
using host::BezierCurve;
using test::RandomPaths;

AcGeNurbCurve3d randomCurve(RandomPaths& random, int degree, bool rational, bool flat) {
    const int count = degree + 1 + random.below(6);
    AcGePoint3dArray points;
    AcGeDoubleArray weights;
    AcGeKnotVector knots;
    double knot = 0.0;
    bool isRepeated = true; // never more than twice
    for (int i = 0; i < count; ++i) {
        points.append({random.number(-8, 8), random.number(-8, 8), flat ? 0.0 : random.number(-3, 3)});
        if (rational)
            weights.append(random.number(0.4, 2.5));
    }
    for (int i = 0; i <= count + degree; ++i) {
        if (i > degree && i <= count) {
            isRepeated = degree > 1 && !isRepeated && i < count && random.below(5) == 0;
            knot += isRepeated ? 0.0 : random.number(0.3, 2.0);
        }
        knots.append(knot);
    }
    return {degree, knots, points, weights};
}

double sampledDistance(const AcGeCurve3d& curve, const AcGePoint3d& point) {
    const AcGeInterval range = curve.interval();
    double nearest = 1e300;
    for (int i = 0; i <= 2000; ++i)
        nearest = std::min(
            nearest, curve.evalPoint(range.lowerBound() + range.length() * i / 2000.0).distanceTo(point));
    return nearest;
}

TEST(Bernstein, RootsAreThoseThatProductsWereMadeOf) {
    RandomPaths random(11);
    for (int i = 0; i < 400; ++i) {
        std::vector<double> expected;
        BernsteinPolynomial product({random.number(0.5, 2.0)});
        for (int k = 1 + random.below(7); k > 0; --k) {
            const double root = random.number(-0.5, 1.5);
            const bool isApart = std::all_of(expected.begin(), expected.end(),
                                             [&](double other) { return std::fabs(other - root) > 0.1; });
            if (!isApart)
                continue;
            product = product * BernsteinPolynomial({-root, 1.0 - root});
            if (root >= 0.0 && root <= 1.0)
                expected.push_back(root);
        }
        std::sort(expected.begin(), expected.end());
        const std::vector<double> roots = product.roots();
        ASSERT_EQ(roots.size(), expected.size()) << i;
        for (std::size_t k = 0; k < roots.size(); ++k)
            EXPECT_NEAR(roots[k], expected[k], 1e-8);
    }
    // A touch is one root; what nearly touches is one within its tolerance only.
    const BernsteinPolynomial half({-0.5, 0.5});
    BernsteinPolynomial square = half * half;
    ASSERT_EQ(square.roots(1e-12).size(), 1u);
    EXPECT_NEAR(square.roots(1e-12)[0], 0.5, 1e-5);
    square += BernsteinPolynomial({1e-6, 1e-6, 1e-6});
    EXPECT_TRUE(square.roots().empty());
    EXPECT_EQ(square.roots(2e-6).size(), 1u);
    square -= BernsteinPolynomial({2e-6, 2e-6, 2e-6});
    EXPECT_EQ(square.roots().size(), 2u);
    EXPECT_EQ(square.roots(2e-6).size(), 1u);
    EXPECT_TRUE(BernsteinPolynomial({0.0, 0.0, 0.0}).roots().empty());
}

TEST(NurbCurve, PiecesOfEveryDegreeAreTheCurve) {
    RandomPaths random(13);
    for (int i = 0; i < 200; ++i) {
        const AcGeNurbCurve3d curve = randomCurve(random, 1 + i % 5, i % 2 == 0, i % 3 == 0);
        ASSERT_TRUE(curve.isValid());
        double at = curve.startParam();
        for (const host::BezierSpan& span : bezierSpans(curve)) {
            EXPECT_EQ(span.low, at);
            at = span.high;
            for (const double t : {0.0, 0.2, 0.7, 1.0}) {
                std::array<AcGeVector3d, 2> own, whole;
                const double parameter = span.low + (span.high - span.low) * (t == 1.0 ? 1 - 1e-12 : t);
                const AcGePoint3d point = span.curve.evaluate(t, 2, own.data());
                EXPECT_LT(point.distanceTo(curve.evaluate(parameter, 2, whole.data())), 1e-9);
                const double width = span.high - span.low;
                EXPECT_LT((own[0] / width - whole[0]).length(), 1e-6 * (1.0 + whole[0].length()));
                EXPECT_LT((own[1] / (width * width) - whole[1]).length(), 1e-6 * (1 + whole[1].length()));
            }
            const auto [left, right] = span.curve.split(0.3);
            EXPECT_LT(left.pointAt(0.5).distanceTo(span.curve.pointAt(0.15)), 1e-9);
            EXPECT_LT(right.pointAt(0.5).distanceTo(span.curve.pointAt(0.65)), 1e-9);
            EXPECT_LT(span.curve.elevated().pointAt(0.4).distanceTo(span.curve.pointAt(0.4)), 1e-9);
        }
        EXPECT_EQ(at, curve.endParam());
    }
}

TEST(NurbCurve, ClosestPointsAndTurnsAreNotMissed) {
    RandomPaths random(17);
    for (int i = 0; i < 150; ++i) {
        const AcGeNurbCurve3d curve = randomCurve(random, 2 + i % 3, i % 2 == 0, false);
        const AcGePoint3d point(random.number(-9, 9), random.number(-9, 9), random.number(-4, 4));
        const double sampled = sampledDistance(curve, point);
        EXPECT_LE(curve.distanceTo(point), sampled + 1e-9);
        EXPECT_GT(curve.distanceTo(point), sampled - 0.1);
        for (const host::BezierSpan& span : bezierSpans(curve)) {
            AcGeVector3d along;
            for (const double t : span.curve.turns(AcGeVector3d::kYAxis)) {
                span.curve.evaluate(t, 1, &along);
                EXPECT_NEAR(along.y, 0.0, 1e-6);
            }
            for (const double t : span.curve.feet(point)) {
                const AcGeVector3d arm = span.curve.evaluate(t, 1, &along) - point;
                EXPECT_NEAR(arm.dotProduct(along), 0.0, 1e-5 * (1.0 + along.length()));
            }
            for (const double t : span.curve.touches(point, AcGeVector3d::kZAxis)) {
                AcGeVector3d arm = span.curve.evaluate(t, 1, &along) - point;
                EXPECT_NEAR(arm.x * along.y - arm.y * along.x, 0.0, 1e-5 * (1.0 + along.length()));
            }
            std::vector<AcGePoint3d> chords{span.curve.pointAt(0.0)};
            span.curve.appendChords(0.01, chords);
            for (int k = 0; k <= 40; ++k) {
                double nearest = 1e300;
                for (std::size_t c = 0; c + 1 < chords.size(); ++c)
                    nearest = std::min(
                        nearest,
                        AcGeLineSeg3d(chords[c], chords[c + 1]).distanceTo(span.curve.pointAt(k / 40.0)));
                EXPECT_LE(nearest, 0.0101);
            }
        }
    }
}

TEST(NurbCurve, RaisedAndJoinedCurvesKeepTheirShape) {
    RandomPaths random(19);
    for (int i = 0; i < 60; ++i) {
        const AcGeNurbCurve3d curve = randomCurve(random, 1 + i % 4, i % 2 == 0, false);
        AcGeNurbCurve3d raised(curve);
        raised.elevateDegree(2);
        ASSERT_TRUE(raised.isValid());
        EXPECT_EQ(raised.degree(), curve.degree() + 2);
        AcGeNurbCurve3d first(curve), second(curve);
        const double middle = 0.5 * (curve.startParam() + curve.endParam());
        first.setInterval({curve.startParam(), middle});
        second.setInterval({middle, curve.endParam()});
        second.elevateDegree(1);
        first.joinWith(second);
        ASSERT_TRUE(first.isValid());
        for (double t = 0.01; t < curve.endParam(); t += 0.1) {
            EXPECT_LT(raised.evalPoint(t).distanceTo(curve.evalPoint(t)), 1e-9);
            EXPECT_LT(first.evalPoint(t).distanceTo(curve.evalPoint(t)), 1e-9);
        }
    }
    // A straight part goes before a curve of weights.
    AcGeNurbCurve3d line{AcGeLineSeg3d(AcGePoint3d(8, -3, 0), AcGePoint3d(3, 0, 0))};
    const AcGeNurbCurve3d arc{
        AcGeEllipArc3d(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 3, 2, 0, 2)};
    line.joinWith(arc);
    EXPECT_EQ(line.interval().length(), 3.0);
    EXPECT_NEAR(line.evalPoint(1.0 + 0.7).distanceTo(arc.evalPoint(0.7)), 0.0, 1e-12);
}

TEST(NurbCurve, RunsThroughItsFitPoints) {
    RandomPaths random(23);
    for (int i = 0; i < 60; ++i) {
        AcGePoint3dArray points;
        for (int k = 2 + random.below(20); k > 0; --k)
            points.append({random.number(-50, 50), random.number(-50, 50), random.number(-5, 5)});
        const AcGeVector3d start(1, 2, 0), end(0, -3, 1);
        const bool hasStart = i % 2 == 0, hasEnd = i % 3 == 0;
        const AcGeNurbCurve3d open(points, start, end, hasStart, hasEnd);
        ASSERT_TRUE(open.isValid());
        EXPECT_EQ(open.numControlPoints(), points.length() + 2);
        for (const AcGePoint3d& point : points)
            EXPECT_LT(open.distanceTo(point), 1e-9);
        std::array<AcGeVector3d, 2> d;
        open.evaluate(open.startParam(), 2, d.data());
        // A tangent is followed at unit speed; a free end has no curvature.
        EXPECT_LT(hasStart ? (d[0] - start.normal()).length() : d[1].length(), 1e-9);
        open.evaluate(open.endParam(), 2, d.data());
        EXPECT_LT(hasEnd ? (d[0] - end.normal()).length() : d[1].length(), 1e-8);

        const AcGeNurbCurve3d closed = AcGeNurbCurve3d::throughClosed(points);
        ASSERT_TRUE(closed.isValid());
        double period = 0.0;
        EXPECT_TRUE(closed.isPeriodic(period));
        EXPECT_TRUE(closed.isClosed(AcGeTol().setEqualPoint(1e-9)));
        std::array<AcGeVector3d, 2> there;
        closed.evaluate(closed.startParam(), 2, d.data());
        closed.evaluate(closed.endParam(), 2, there.data());
        EXPECT_LT((d[0] - there[0]).length(), 1e-9);
        EXPECT_LT((d[1] - there[1]).length(), 1e-8);
        for (const AcGePoint3d& point : points)
            EXPECT_LT(closed.distanceTo(point), 1e-9);
    }
    // The knots are the lengths of the chords.
    const AcGeNurbCurve3d curve({{0, 0, 0}, {3, 4, 0}, {3, 4, 0}, {3, 16, 0}}, {}, {}, false, false);
    EXPECT_EQ(curve.knots().numIntervals(), 2);
    EXPECT_DOUBLE_EQ(curve.knotAt(4), 5.0);
    EXPECT_DOUBLE_EQ(curve.endParam(), 17.0);
    EXPECT_FALSE(AcGeNurbCurve3d({{1, 1, 1}, {1, 1, 1}}, {}, {}, false, false).isValid());
    EXPECT_FALSE(AcGeNurbCurve3d::throughClosed(AcGePoint3dArray()).isValid());
}

TEST(NurbCurve, OffsetsLieAtTheirDistanceAndNowhereNearer) {
    RandomPaths random(29);
    int found = 0;
    for (int i = 0; i < 25; ++i) {
        AcGePoint3dArray points;
        for (int k = 0; k < 5; ++k)
            points.append({10.0 * k + random.number(-3, 3), random.number(-12, 12), 0.0});
        const bool isClosed = i % 2 == 0;
        if (isClosed)
            points.append({20, -40, 0});
        const AcGeNurbCurve3d curve =
            isClosed ? AcGeNurbCurve3d::throughClosed(points) : AcGeNurbCurve3d(points, {}, {}, false, false);
        const double distance = random.number(-4, 4);
        for (const AcGeNurbCurve3d& offset :
             host::offsetCurves(curve, isClosed, AcGeVector3d::kZAxis, distance)) {
            ++found;
            ASSERT_TRUE(offset.isValid());
            EXPECT_EQ(offset.isClosed(), isClosed);
            for (int k = 1; k < 200; ++k) {
                const double t = offset.startParam() + (offset.endParam() - offset.startParam()) * k / 200.0;
                EXPECT_NEAR(curve.distanceTo(offset.evalPoint(t)), std::fabs(distance),
                            1e-6 * std::fabs(distance))
                    << i;
            }
        }
    }
    EXPECT_GE(found, 25);
    // The inner parallel of an ellipse, where the plain one crosses itself: it ends in two points.
    const AcGeNurbCurve3d ellipse{AcGeEllipArc3d(AcGePoint3d::kOrigin, {1, 0, 0}, {0, 1, 0}, 10, 4)};
    const auto inner = host::offsetCurves(ellipse, true, AcGeVector3d::kZAxis, -3.0);
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_NEAR(inner[0].orthoBoundBlock().maxPoint().y, 1.0, 1e-6);
    EXPECT_TRUE(host::offsetCurves(ellipse, true, AcGeVector3d::kZAxis, -4.5).empty());
    // A corner is rounded outside and kept inside.
    const AcGeNurbCurve3d corner(1, {0, 0, 1, 2, 2}, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    const auto outside = host::offsetCurves(corner, false, AcGeVector3d::kZAxis, 2.0);
    const auto inside = host::offsetCurves(corner, false, AcGeVector3d::kZAxis, -2.0);
    ASSERT_EQ(outside.size(), 1u);
    ASSERT_EQ(inside.size(), 1u);
    EXPECT_NEAR(outside[0].length(outside[0].startParam(), outside[0].endParam()), 20 + host::pi, 1e-5);
    EXPECT_NEAR(inside[0].length(inside[0].startParam(), inside[0].endParam()), 16, 1e-5);
}

TEST(NurbCurve, CrossingsOfBezierCurves) {
    RandomPaths random(31);
    for (int i = 0; i < 80; ++i) {
        const BezierCurve a = bezierSpans(randomCurve(random, 3, i % 2 == 0, true)).front().curve;
        const BezierCurve b = bezierSpans(randomCurve(random, 2 + i % 2, false, true)).front().curve;
        std::size_t crossings = 0;
        constexpr int count = 150;
        std::vector<AcGePoint3d> ofA, ofB;
        for (int k = 0; k <= count; ++k) {
            ofA.push_back(a.pointAt(static_cast<double>(k) / count));
            ofB.push_back(b.pointAt(static_cast<double>(k) / count));
        }
        for (std::size_t k = 0; k < count; ++k)
            for (std::size_t l = 0; l < count; ++l) {
                const AcGeVector3d u = ofA[k + 1] - ofA[k], v = ofB[l + 1] - ofB[l], gap = ofB[l] - ofA[k];
                const double det = u.x * v.y - u.y * v.x;
                const double s = (gap.x * v.y - gap.y * v.x) / det, t = (gap.x * u.y - gap.y * u.x) / det;
                crossings += s >= 0 && s < 1 && t >= 0 && t < 1;
            }
        const auto hits = host::intersectBeziers(a, b, 1e-9);
        EXPECT_EQ(hits.size(), crossings) << i;
        for (const auto& [s, t] : hits)
            EXPECT_LT(a.pointAt(s).distanceTo(b.pointAt(t)), 1e-9);
    }
}

TEST(NurbCurve, OfThePlaneFollowsThatOfSpace) {
    const AcGeNurbCurve2d flat({{0, 0}, {4, 3}, {8, -1}, {12, 5}}, {1, 0}, {0, 1});
    const AcGeNurbCurve3d spatial({{0, 0, 0}, {4, 3, 0}, {8, -1, 0}, {12, 5, 0}}, {1, 0, 0}, {0, 1, 0});
    ASSERT_TRUE(flat.isValid());
    EXPECT_EQ(flat.type(), AcGe::kNurbCurve2d);
    EXPECT_DOUBLE_EQ(flat.length(0.0, flat.endParam()), spatial.length(0.0, spatial.endParam()));
    AcGeNurbCurve2d turned(flat);
    turned.transformBy(AcGeMatrix2d::rotation(host::halfPi));
    EXPECT_LT(turned.evalPoint(6.0).distanceTo(AcGeMatrix2d::rotation(host::halfPi) * flat.evalPoint(6.0)),
              1e-12);
}

TEST(PolylineFit, ArcsRunThroughTheVerticesWithCommonTangents) {
    RandomPaths random(37);
    for (int i = 0; i < 2000; ++i) {
        std::vector<host::FitVertex> vertices;
        for (int k = 3 + random.below(8); k > 0; --k) {
            vertices.push_back({{random.number(-9, 9), random.number(-9, 9)}, {}});
            if (random.below(4) == 0)
                vertices.back().tangent = random.number(0, host::twoPi);
        }
        const bool closed = i % 2 == 0;
        const host::BulgePath path = host::fitArcs(vertices, closed);
        ASSERT_EQ(path.segmentCount(), static_cast<int>(2 * (vertices.size() - (closed ? 0 : 1))));
        for (std::size_t k = 0; 2 * k < path.vertices.size(); ++k) {
            EXPECT_EQ(path.vertices[2 * k].point, vertices[k].point);
            if (vertices[k].tangent && (closed || k + 1 < vertices.size())) {
                const AcGeVector2d along = path.segment(static_cast<int>(2 * k)).tangent(0.0);
                EXPECT_LT((along - host::direction(*vertices[k].tangent)).length(), 1e-6);
            }
        }
        for (int k = 0; k + (closed ? 0 : 1) < path.segmentCount(); ++k) {
            const AcGeVector2d in = path.segment(k).tangent(1.0);
            const AcGeVector2d out = path.segment((k + 1) % path.segmentCount()).tangent(0.0);
            EXPECT_LT((in - out).length(), 1e-6) << i << " at " << k;
        }
    }
    // Three points on a circle give that circle.
    const std::vector<host::FitVertex> quarter{
        {{5, 0}, {}}, {{5 * std::sqrt(0.5), 5 * std::sqrt(0.5)}, {}}, {{0, 5}, {}}};
    EXPECT_NEAR(length(host::fitArcs(quarter, false)), 2.5 * host::pi, 1e-9);
    EXPECT_EQ(
        host::fitArcs(std::vector<host::FitVertex>{{{0, 0}, {}}, {{4, 0}, {}}}, false).vertices[0].bulge, 0);
    // A ring that repeats its first vertex at the end is as round there as elsewhere; so is a chain with
    // doubled vertices.
    std::vector<host::FitVertex> ring;
    for (int i = 0; i <= 12; ++i)
        ring.push_back({AcGePoint2d::kOrigin + 5.0 * host::direction(i % 12 * host::pi / 6.0), {}});
    EXPECT_NEAR(length(host::fitArcs(ring, true)), 10.0 * host::pi, 1e-9);
    const std::vector<host::FitVertex> doubled{quarter[0], quarter[0], quarter[1],
                                               quarter[1], quarter[2], quarter[2]};
    EXPECT_NEAR(length(host::fitArcs(doubled, false)), 2.5 * host::pi, 1e-9);
    EXPECT_EQ(length(host::fitArcs(std::vector<host::FitVertex>(3, quarter[0]), true)), 0.0);
}

TEST(PolylineFit, SplinesKeepEndsAndStayInTheirFrame) {
    const std::vector<AcGePoint3d> frame{{0, 0, 0}, {10, 0, 1}, {10, 10, 2}, {0, 10, 3}, {-5, 20, 4}};
    for (const int degree : {2, 3}) {
        const auto open = host::splineVertices(frame, false, degree, 8);
        ASSERT_EQ(open.size(), 4u * 8 + 1);
        EXPECT_EQ(open.front(), frame.front());
        EXPECT_EQ(open.back(), frame.back());
        const auto closed = host::splineVertices(frame, true, degree, 8);
        ASSERT_EQ(closed.size(), 40u);
        // Every one is a mean of neighbouring frame vertices: no two far apart.
        for (std::size_t i = 0; i < closed.size(); ++i)
            EXPECT_LT(closed[i].distanceTo(closed[(i + 1) % closed.size()]), 3.0);
    }
    // A quadratic patch passes the middles of the frame's inner segments; a cubic one of four is Bezier's.
    EXPECT_LT(host::splineVertices(frame, false, 2, 6)[8].distanceTo({10, 5, 1.5}), 1e-12);
    const std::span<const AcGePoint3d> four(frame.data(), 4);
    EXPECT_LT(host::splineVertices(four, false, 3, 2)[3].distanceTo({7.5, 5, 1.5}), 1e-12);
    EXPECT_EQ(host::splineVertices(std::span(frame.data(), 2), false, 3, 8).size(), 9u);
    EXPECT_EQ(host::splineVertices(std::span(frame.data(), 3), false, 3, 8).size(), 17u); // quadratic
    RandomPaths random(29);
    for (int round = 0; round < 2000; ++round) {
        std::vector<AcGePoint3d> points;
        for (int k = 2 + random.below(20); k > 0; --k)
            points.push_back({random.number(-1e6, 1e6), random.number(-1e6, 1e6), random.number(-9, 9)});
        const auto fitted = host::splineVertices(points, false, 2 + round % 2, 1 + random.below(9));
        EXPECT_EQ(fitted.front(), points.front());
        EXPECT_EQ(fitted.back(), points.back());
        EXPECT_LE(fitted[fitted.size() / 2].z, 9.0);
    }
}

} // namespace
