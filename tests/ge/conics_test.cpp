// Circles and ellipses against dense sampling, and in special positions.
#include "random_paths.h"

#include <gtest/gtest.h>

namespace {

using host::EllipseShape;

EllipseShape randomEllipse(test::RandomPaths& random) {
    const AcGeVector2d axis = host::direction(random.number(0.0, host::twoPi));
    return {{random.number(-4, 4), random.number(-4, 4)},
            axis * random.number(0.3, 6.0),
            axis.perpVector() * (random.number(0.3, 6.0) * (random.below(2) ? 1.0 : -1.0))};
}

TEST(Ellipse, ClosestPointsAgreeWithSampling) {
    test::RandomPaths random(3);
    for (int i = 0; i < 1500; ++i) {
        const EllipseShape ellipse = randomEllipse(random);
        const AcGePoint2d point(random.number(-8, 8), random.number(-8, 8));
        const double start = random.number(0.0, host::twoPi);
        const double end = i % 3 ? start + random.number(0.1, host::twoPi) : start + host::twoPi;
        double sampled = 1e300;
        for (int k = 0; k <= 2000; ++k)
            sampled =
                std::min(sampled, ellipse.pointAt(start + (end - start) * k / 2000.0).distanceTo(point));
        const double angle = closestEllipseAngle(ellipse, point, start, end);
        EXPECT_GE(angle, start);
        EXPECT_LE(angle, end);
        const double distance = ellipse.pointAt(angle).distanceTo(point);
        EXPECT_LE(distance, sampled + 1e-12);
        EXPECT_GT(distance, sampled - 0.02);
        for (const double foot : ellipseFeet(ellipse, point))
            EXPECT_NEAR((ellipse.pointAt(foot) - point).dotProduct(ellipse.derivativeAt(foot)), 0.0, 1e-9);
    }
    // From the centre of a circle every point is as close.
    EXPECT_TRUE(ellipseFeet(EllipseShape::circle({1, 1}, 2.0), {1, 1}).empty());
    // From the centre of an ellipse the ends of the minor axis are closest.
    const EllipseShape flat{{0, 0}, {5, 0}, {0, 1}};
    EXPECT_EQ(ellipseFeet(flat, {0, 0}).size(), 4u);
    EXPECT_NEAR(flat.pointAt(closestEllipseAngle(flat, {0, 0})).distanceTo({0, 0}), 1.0, 1e-12);
}

TEST(Ellipse, CrossingsAreOnBothAndNoneIsMissed) {
    test::RandomPaths random(5);
    int crossings = 0;
    for (int i = 0; i < 1500; ++i) {
        const EllipseShape a = randomEllipse(random), b = randomEllipse(random);
        const auto outside = [&](double angle) {
            const AcGeVector2d arm = a.pointAt(angle) - b.center;
            return std::hypot(arm.dotProduct(b.major) / b.major.lengthSqrd(),
                              arm.dotProduct(b.minor) / b.minor.lengthSqrd()) > 1.0;
        };
        std::size_t changes = 0;
        for (int k = 0; k < 4000; ++k)
            changes += outside(host::twoPi * k / 4000.0) != outside(host::twoPi * (k + 1) / 4000.0);
        const auto found = intersectEllipses(a, b);
        EXPECT_EQ(found.size(), changes) << i;
        crossings += static_cast<int>(found.size());
        for (const host::EllipseCrossing& crossing : found)
            EXPECT_LT(a.pointAt(crossing.firstAngle).distanceTo(b.pointAt(crossing.secondAngle)), 1e-9);

        const AcGePoint2d origin(random.number(-4, 4), random.number(-4, 4));
        const AcGeVector2d along(random.number(-2, 2), random.number(-2, 2));
        for (const host::LineEllipseCrossing& crossing : intersectLineEllipse(origin, along, a))
            EXPECT_LT((origin + along * crossing.lineParameter).distanceTo(a.pointAt(crossing.angle)), 1e-9);
    }
    EXPECT_GT(crossings, 1000);
}

TEST(Ellipse, SpecialPositions) {
    const EllipseShape flat{{0, 0}, {5, 0}, {0, 1}}, tall{{0, 0}, {0, 5}, {-1, 0}};
    EXPECT_EQ(intersectEllipses(flat, tall).size(), 4u);
    EXPECT_EQ(intersectEllipses(flat, EllipseShape::circle({0, 0}, 1.0)).size(), 2u); // touching twice inside
    EXPECT_EQ(intersectEllipses(flat, EllipseShape::circle({6, 0}, 1.0)).size(), 1u);
    EXPECT_EQ(intersectEllipses(flat, flat).size(), 0u);
    EXPECT_EQ(intersectLineEllipse({-9, 1}, {1, 0}, flat).size(), 1u);
    EXPECT_EQ(intersectLineEllipse({-9, 1.0001}, {1, 0}, flat).size(), 0u);
    EXPECT_EQ(host::intersectCircles({0, 0}, 2, {4, 0}, 2).size(), 1u);
    EXPECT_EQ(host::intersectCircles({0, 0}, 5, {3, 0}, 2).size(), 1u);
    EXPECT_LT(host::intersectCircles({0, 0}, 5, {3, 0}, 2)[0].distanceTo({5, 0}), 1e-12);
    EXPECT_EQ(host::intersectCircles({0, 0}, 5, {0, 0}, 5).size(), 0u);
    EXPECT_EQ(host::intersectCircles({0, 0}, 5, {8, 0}, 5).size(), 2u);
}

} // namespace
