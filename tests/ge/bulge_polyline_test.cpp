// Segments and paths with bulges: known figures, and properties of random ones checked by brute force.
#include "random_paths.h"

#include <gtest/gtest.h>

namespace {

using host::BulgePath;
using host::PathSegment;
using test::RandomPaths;

constexpr double tight = 1e-10;

BulgePath circle(double radius) {
    BulgePath path;
    path.closed = true;
    path.add({-radius, 0.0}, 1.0);
    path.add({radius, 0.0}, 1.0);
    return path;
}

// A running track: two straights of 10 and two half circles of radius 2.
BulgePath track() {
    BulgePath path;
    path.closed = true;
    path.add({0.0, -2.0});
    path.add({10.0, -2.0}, 1.0);
    path.add({10.0, 2.0});
    path.add({0.0, 2.0}, 1.0);
    return path;
}

TEST(PathSegment, KnownArcs) {
    const PathSegment quarter({1.0, 0.0}, {0.0, 1.0}, std::tan(host::pi / 8.0));
    EXPECT_NEAR(quarter.radius(), 1.0, tight);
    EXPECT_LT(quarter.center().distanceTo({0.0, 0.0}), tight);
    EXPECT_NEAR(quarter.length(), host::halfPi, tight);
    EXPECT_NEAR(quarter.sweep(), host::halfPi, tight);
    EXPECT_LT(quarter.pointAt(0.5).distanceTo({std::sqrt(0.5), std::sqrt(0.5)}), tight);
    EXPECT_TRUE(quarter.tangent(0.0).isEqualTo(AcGeVector2d::kYAxis));
    EXPECT_NEAR(quarter.firstDerivative(0.3).length(), host::halfPi, tight);
    // Toward the centre, with the square of the angle.
    EXPECT_LT((quarter.secondDerivative(0.0) - AcGeVector2d(-host::halfPi * host::halfPi, 0.0)).length(),
              tight);
    EXPECT_EQ(quarter.closestFraction({-5.0, 1.0}), 1.0);
    EXPECT_EQ(PathSegment({1.0, 1.0}, {1.0, 1.0}, 5.0).kind(), PathSegment::Kind::Point);
    EXPECT_EQ(PathSegment({0.0, 0.0}, {1.0, 1.0}, std::nan("")).kind(), PathSegment::Kind::Line);
}

// The same checks from bulges that hardly bend to bulges that are nearly whole circles.
TEST(PathSegment, EveryBulgeKeepsItsPrecision) {
    const AcGePoint2d start(500000.0, 3400000.0), end(500003.0, 3400004.0);
    for (const double magnitude : {1e-13, 1e-9, 1e-6, 1e-3, 0.1, 0.5, 0.999999, 1.0, 2.0, 50.0, 1e4})
        for (const double bulge : {magnitude, -magnitude}) {
            SCOPED_TRACE(bulge);
            const PathSegment arc(start, end, bulge);
            const double radius = arc.radius(), slack = 4e-9 + 1e-14 * arc.length();
            EXPECT_NEAR(arc.length(), radius * std::fabs(arc.sweep()), 1e-9 * arc.length());
            // The middle rises above the chord by bulge times half the chord, to the right for a positive
            // bulge.
            const AcGePoint2d rise =
                AcGePoint2d(500001.5, 3400002.0) + AcGeVector2d(0.8, -0.6) * (2.5 * bulge);
            EXPECT_LT(arc.pointAt(0.5).distanceTo(rise), slack);
            for (const double fraction : {0.0, 0.1, 0.37, 0.9, 1.0}) {
                const AcGePoint2d point = arc.pointAt(fraction);
                EXPECT_NEAR(arc.closestFraction(point), fraction, 1e-8);
                // Also seen from beside the arc.
                const AcGePoint2d beside =
                    point + arc.tangent(fraction).perpVector() * std::min(0.5, 0.3 * radius);
                EXPECT_NEAR(arc.closestFraction(beside), fraction, 1e-8);
                EXPECT_LT(arc.part(0.0, 1.0 - fraction).end.distanceTo(arc.pointAt(1.0 - fraction)), slack);
            }
            const PathSegment half = arc.part(0.0, 0.5);
            EXPECT_NEAR(half.length(), 0.5 * arc.length(), 1e-8);
            const auto beside = arc.parallel(0.01);
            ASSERT_TRUE(beside);
            EXPECT_NEAR(arc.distanceTo(beside->pointAt(0.3)), 0.01, 1e-8 * (1.0 + std::fabs(bulge) / 100.0));
            EXPECT_NEAR(beside->radius() - radius, bulge > 0.0 ? 0.01 : -0.01, 1e-8 * (1.0 + radius));
        }
}

TEST(PathSegment, ExtentsAreTouchedAndNeverLeft) {
    RandomPaths random(3);
    for (int i = 0; i < 2000; ++i) {
        const PathSegment arc({random.number(-9, 9), random.number(-9, 9)},
                              {random.number(-9, 9), random.number(-9, 9)}, random.number(-4, 4));
        host::Box2d sampled;
        for (int k = 0; k <= 400; ++k)
            sampled.add(arc.pointAt(k / 400.0));
        const host::Box2d box = arc.extents();
        const double step = arc.length() / 400.0, slack = step * step / arc.radius();
        EXPECT_TRUE(box.grownBy(1e-9).contains(sampled.minimum) &&
                    box.grownBy(1e-9).contains(sampled.maximum));
        EXPECT_TRUE(sampled.grownBy(slack).contains(box.minimum) &&
                    sampled.grownBy(slack).contains(box.maximum));
    }
}

TEST(PathSegment, IntersectionsAgreeWithBruteForce) {
    RandomPaths random(5);
    const auto point = [&] { return AcGePoint2d(random.number(-5, 5), random.number(-5, 5)); };
    const auto bulge = [&] { return random.below(3) ? random.number(-2, 2) : 0.0; };
    int crossings = 0;
    for (int i = 0; i < 4000; ++i) {
        const PathSegment a(point(), point(), bulge()), b(point(), point(), bulge());
        const auto side = [&](double fraction) {
            const AcGePoint2d p = a.pointAt(fraction);
            return b.isArc() ? p.distanceTo(b.center()) - b.radius()
                             : (b.end - b.start).crossProduct(p - b.start);
        };
        int expected = 0;
        for (int k = 0; k < 300; ++k) {
            double low = k / 300.0, high = (k + 1) / 300.0;
            if ((side(low) < 0.0) == (side(high) < 0.0))
                continue;
            const bool below = side(low) < 0.0;
            for (int step = 0; step < 60; ++step)
                ((side(0.5 * (low + high)) < 0.0) == below ? low : high) = 0.5 * (low + high);
            expected += b.distanceTo(a.pointAt(low)) < 1e-9;
        }
        const host::SegmentIntersections found = intersect(a, b);
        EXPECT_EQ(found.count, expected) << i;
        crossings += found.count;
        for (const host::SegmentIntersection& item : found) {
            EXPECT_LT(a.pointAt(item.firstFraction).distanceTo(item.point), 1e-9);
            EXPECT_LT(b.pointAt(item.secondFraction).distanceTo(item.point), 1e-9);
        }
    }
    EXPECT_GT(crossings, 500);
}

struct Meeting {
    const char* name;
    PathSegment first, second;
    int count;
    bool overlap;
};

TEST(PathSegment, MeetingsOfSpecialPosition) {
    const PathSegment line({0, 0}, {10, 0}), arc({0, 0}, {10, 0}, 1.0), wide({0, 0}, {1, 0}, 4.0);
    const Meeting table[] = {
        {"the same line", line, line, 2, true},
        {"the same line the other way", line, line.reversed(), 2, true},
        {"part of the line", line, {{5, 0}, {20, 0}}, 2, true},
        {"inside the line", line, {{7, 0}, {3, 0}}, 2, true},
        {"end to end in line", line, {{10, 0}, {12, 0}}, 1, false},
        {"in line but apart", line, {{10.001, 0}, {12, 0}}, 0, false},
        {"parallel", line, {{0, 1e-6}, {10, 1e-6}}, 0, false},
        {"a T", line, {{5, 0}, {5, 5}}, 1, false},
        {"tangent to the lowest point", arc, {{-5, -5}, {15, -5}}, 1, false},
        {"just beyond tangency", arc, {{-5, -5.001}, {15, -5.001}}, 0, false},
        {"chord", arc, line, 2, false},
        {"circles touching outside", arc, {{0, -10}, {10, -10}, -1.0}, 1, false},
        {"the same arc", arc, arc, 2, true},
        {"the rest of the circle", arc, {{10, 0}, {0, 0}, 1.0}, 2, false},
        {"concentric", arc, {{1, 0}, {9, 0}, 1.0}, 0, false},
        {"arcs with two stretches in common", wide, wide.part(0.5, 1.5), 4, true},
        {"a point on the line", line, {{5, 0}, {5, 0}}, 1, false},
        {"small circle, far end of a long line",
         {{0, 0}, {1e6, 1.0}},
         {{999999, 0}, {999999, 2}, 1.0},
         1,
         false},
    };
    for (const Meeting& meeting : table) {
        SCOPED_TRACE(meeting.name);
        for (const bool swapped : {false, true}) {
            const auto found =
                swapped ? intersect(meeting.second, meeting.first) : intersect(meeting.first, meeting.second);
            EXPECT_EQ(found.count, meeting.count);
            EXPECT_EQ(found.overlap, meeting.overlap);
        }
    }
}

TEST(BulgePath, MeasuresOfKnownFigures) {
    EXPECT_NEAR(length(circle(3.0)), 6.0 * host::pi, tight);
    EXPECT_NEAR(signedArea(circle(3.0)), 9.0 * host::pi, tight);
    EXPECT_NEAR(signedArea(reversed(track())), -(40.0 + 4.0 * host::pi), tight);
    EXPECT_NEAR(length(track()), 20.0 + 4.0 * host::pi, tight);
    const host::Box2d box = extents(track());
    EXPECT_LT(box.minimum.distanceTo({-2.0, -2.0}), tight);
    EXPECT_LT(box.maximum.distanceTo({12.0, 2.0}), tight);
    EXPECT_EQ(length(BulgePath()), 0.0);
    EXPECT_TRUE(extents(BulgePath()).isEmpty());
    // Far from the origin the area keeps its digits.
    BulgePath square;
    square.closed = true;
    for (const AcGePoint2d& corner :
         {AcGePoint2d(0, 0), AcGePoint2d(1, 0), AcGePoint2d(1, 1), AcGePoint2d(0, 1)})
        square.add(corner + AcGeVector2d(4e6, 5e6));
    EXPECT_NEAR(signedArea(square), 1.0, 1e-9);
}

TEST(BulgePath, ParametersDistancesAndPointsConvertBothWays) {
    RandomPaths random(17);
    for (int i = 0; i < 300; ++i) {
        const BulgePath path = i % 2 ? random.walk() : random.grid();
        const host::PathMeasure measure(path);
        ASSERT_NEAR(measure.length(), length(path), 1e-9);
        for (int k = 0; k <= 20; ++k) {
            const double parameter = path.endParameter() * k / 20.0;
            const double distance = distanceAtParameter(path, parameter);
            EXPECT_NEAR(measure.distanceAtParameter(parameter), distance, 1e-9);
            const auto back = measure.parameterAtDistance(distance);
            ASSERT_TRUE(back);
            // Not always the same parameter: segments may have no length.
            EXPECT_LT(pointAt(path, *back).distanceTo(pointAt(path, parameter)), 1e-8);
            EXPECT_LT(pointAt(path, closestParameter(path, pointAt(path, parameter)))
                          .distanceTo(pointAt(path, parameter)),
                      1e-8);
            const double step = 1e-6;
            if (std::floor(parameter - step) == std::floor(parameter + step) && parameter > step) {
                const AcGeVector2d slope =
                    (pointAt(path, parameter + step) - pointAt(path, parameter - step)) / (2 * step);
                EXPECT_LT((firstDerivativeAt(path, parameter) - slope).length(),
                          1e-4 * (1.0 + slope.length()));
                const AcGeVector2d bend =
                    (firstDerivativeAt(path, parameter + step) - firstDerivativeAt(path, parameter - step)) /
                    (2 * step);
                EXPECT_LT((secondDerivativeAt(path, parameter) - bend).length(),
                          1e-3 * (1.0 + bend.length()));
            }
        }
        EXPECT_FALSE(measure.parameterAtDistance(-0.001));
        EXPECT_FALSE(measure.parameterAtDistance(measure.length() + 0.001));
    }
    // The last of several equal vertices: distance 10 is where the path goes on.
    BulgePath path;
    for (const double x : {0.0, 10.0, 10.0, 20.0})
        path.add({x, 0.0});
    EXPECT_EQ(host::parameterAtDistance(path, 10.0), 2.0);
}

TEST(BulgePath, PartsTogetherAreTheWhole) {
    RandomPaths random(23);
    for (int i = 0; i < 500; ++i) {
        const BulgePath path = random.walk();
        std::vector<double> cuts;
        for (int k = random.below(5); k >= 0; --k)
            cuts.push_back(random.below(3) ? random.number(0.0, path.endParameter())
                                           : static_cast<double>(random.below(path.vertexCount())));
        double sum = 0.0;
        AcGePoint2d last;
        const std::vector<BulgePath> parts = splitAt(path, cuts);
        for (std::size_t k = 0; k < parts.size(); ++k) {
            sum += length(parts[k]);
            if (k > 0) {
                EXPECT_LT(pointAt(parts[k], 0.0).distanceTo(last), 1e-9);
            }
            last = pointAt(parts[k], parts[k].endParameter());
        }
        EXPECT_NEAR(sum, length(path), 1e-8);
        EXPECT_NEAR(length(reversed(path)), length(path), 1e-9);
        const double at = random.number(0.0, path.endParameter());
        const double turned =
            std::fmod(2.0 * path.endParameter() - (path.closed ? 1.0 : 0.0) - at, path.endParameter());
        EXPECT_LT(pointAt(reversed(path), turned).distanceTo(pointAt(path, at)), 1e-9);
    }
    const BulgePath over = subPath(track(), 3.5, 0.5); // across the first vertex
    EXPECT_NEAR(length(over), 5.0 + host::pi, tight);
    EXPECT_LT(over.vertices.front().point.distanceTo({-2.0, 0.0}), tight);
}

TEST(BulgePath, ContainmentAgreesWithTheWindingOfManyChords) {
    RandomPaths random(29);
    for (int i = 0; i < 300; ++i) {
        BulgePath path = i % 2 ? random.tangle() : random.ring();
        path.closed = true;
        BulgePath chords;
        chords.closed = true;
        for (int s = 0; s < path.segmentCount(); ++s)
            for (int k = 0; k < 300; ++k)
                chords.add(path.segment(s).pointAt(k / 300.0));
        for (int k = 0; k < 30; ++k) {
            const AcGePoint2d point(random.number(-12, 12), random.number(-12, 12));
            if (host::PathIndex(path).distanceTo(point) > 0.01) {
                EXPECT_EQ(windingNumber(path, point), windingNumber(chords, point));
            }
        }
    }
    EXPECT_EQ(containment(track(), {-1.9, 0.0}), AcGe::kInside);
    EXPECT_EQ(containment(track(), {-2.0, 0.0}), AcGe::kOnBoundary);
    EXPECT_EQ(containment(track(), {-1.9, 1.9}), AcGe::kOutside);
}

TEST(BulgePath, IntersectionsOfPathsAgreeWithAllPairs) {
    RandomPaths random(31);
    for (int i = 0; i < 300; ++i) {
        const BulgePath a = random.tangle(), b = random.tangle();
        std::size_t expected = 0;
        for (int s = 0; s < a.segmentCount(); ++s)
            for (int t = 0; t < b.segmentCount(); ++t)
                expected += static_cast<std::size_t>(intersect(a.segment(s), b.segment(t)).count);
        const auto found = intersect(a, b);
        EXPECT_EQ(found.size(), expected);
        for (const host::PathIntersection& item : found) {
            EXPECT_LT(pointAt(a, item.firstParameter).distanceTo(item.point), 1e-8);
            EXPECT_LT(pointAt(b, item.secondParameter).distanceTo(item.point), 1e-8);
        }
        const host::PathIndex index(a);
        const AcGePoint2d point(random.number(-15, 15), random.number(-15, 15));
        const double nearest = pointAt(a, closestParameter(a, point)).distanceTo(point);
        EXPECT_NEAR(index.distanceTo(point), nearest, 1e-12);
        EXPECT_TRUE(index.isNearerThan(point, nearest + 1e-9));
        EXPECT_FALSE(index.isNearerThan(point, nearest - 1e-9));
    }
}

TEST(BulgePath, VerticesAndRepeatsAreMetOnce) {
    BulgePath cross;
    for (const AcGePoint2d& point :
         {AcGePoint2d(0, -5), AcGePoint2d(0, 0), AcGePoint2d(0, 0), AcGePoint2d(0, 5)})
        cross.add(point);
    BulgePath bend;
    for (const AcGePoint2d& point : {AcGePoint2d(-5, 0), AcGePoint2d(0, 0), AcGePoint2d(5, 0)})
        bend.add(point);
    EXPECT_LE(intersect(cross, bend).size(), 2u); // before and after the repeated vertex
    EXPECT_TRUE(selfIntersections(cross).empty());
    EXPECT_TRUE(selfIntersections(track()).empty());

    BulgePath eight; // crosses itself once in the middle
    eight.closed = true;
    for (const AcGePoint2d& point :
         {AcGePoint2d(0, 0), AcGePoint2d(4, 4), AcGePoint2d(4, 0), AcGePoint2d(0, 4)})
        eight.add(point);
    const auto meetings = selfIntersections(eight);
    ASSERT_EQ(meetings.size(), 1u);
    EXPECT_NEAR(meetings[0].firstParameter, 0.5, tight);
    EXPECT_NEAR(meetings[0].secondParameter, 2.5, tight);

    BulgePath back; // returns over half of itself
    for (const double x : {0.0, 10.0, 5.0})
        back.add({x, 0.0});
    EXPECT_FALSE(selfIntersections(back).empty());
    EXPECT_TRUE(selfIntersections(back)[0].overlap);
}

TEST(BulgePath, PointsOnChordsLieWithinOrWithoutLikeOthers) {
    // A ring of two half circles turned through all directions, so that chords are level, upright and
    // oblique.
    for (int step = 0; step < 48; ++step) {
        const AcGeVector2d arm = 5.0 * host::direction(step * host::pi / 24.0);
        for (const double bulge : {1.0, -1.0, 0.4, -0.4}) {
            host::BulgePath ring;
            ring.closed = true;
            ring.add(AcGePoint2d::kOrigin + arm, bulge);
            ring.add(AcGePoint2d::kOrigin - arm, bulge);
            const int around = bulge > 0.0 ? 1 : -1;
            for (const double share : {-0.6, 0.0, 0.8})
                EXPECT_EQ(host::windingNumber(ring, AcGePoint2d::kOrigin + arm * share), around) << step;
            EXPECT_EQ(host::windingNumber(ring, AcGePoint2d::kOrigin + arm * 1.5), 0) << step;
        }
    }
}

} // namespace
