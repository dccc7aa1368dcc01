// Parallel curves: known figures, and the properties that define them on thousands of random paths.
#include "random_paths.h"

#include <gtest/gtest.h>

namespace {

using host::BulgePath;
using host::offsetPath;
using host::PathSegment;
using test::RandomPaths;

BulgePath pathOf(bool closed, std::initializer_list<host::BulgeVertex> vertices) {
    BulgePath path;
    path.closed = closed;
    path.vertices = vertices;
    return path;
}

// "closed: x,y x,y(bulge) ..." with three decimals, so that whole results compare as text.
std::string textOf(const std::vector<BulgePath>& paths) {
    std::string text;
    for (const BulgePath& path : paths) {
        text += text.empty() ? "" : " | ";
        text += path.closed ? "closed:" : "open:";
        for (std::size_t i = 0; i < path.vertices.size(); ++i) {
            const auto number = [](double value) {
                char digits[40];
                std::snprintf(digits, sizeof digits, "%.3f", value);
                std::string result(digits);
                result.erase(result.find_last_not_of('0') + 1);
                if (result.back() == '.')
                    result.pop_back();
                return result == "-0" ? "0" : result;
            };
            const host::BulgeVertex& vertex = path.vertices[i];
            text += " " + number(vertex.point.x) + "," + number(vertex.point.y);
            if (vertex.bulge != 0.0)
                text += "(" + number(vertex.bulge) + ")";
        }
    }
    return text;
}

const double quarter = std::tan(host::pi / 8.0);

struct Case {
    const char* name;
    BulgePath path;
    double distance;
    const char* expected;
};

TEST(Offset, KnownFigures) {
    const BulgePath line = pathOf(false, {{{0, 0}}, {{10, 0}}});
    const BulgePath bend = pathOf(false, {{{0, 0}}, {{10, 0}}, {{10, 10}}});
    const BulgePath box = pathOf(true, {{{0, 0}}, {{10, 0}}, {{10, 6}}, {{0, 6}}});
    const BulgePath circle = pathOf(true, {{{-5, 0}, 1}, {{5, 0}, 1}});
    const BulgePath track = pathOf(true, {{{0, -2}}, {{10, -2}, 1}, {{10, 2}}, {{0, 2}, 1}});
    const BulgePath rounded = pathOf(false, {{{0, 0}}, {{8, 0}, quarter}, {{10, 2}}, {{10, 10}}});
    const BulgePath neck = pathOf(true, {{{0, 0}},
                                         {{10, 0}},
                                         {{10, 4}},
                                         {{20, 4}},
                                         {{20, 0}},
                                         {{30, 0}},
                                         {{30, 10}},
                                         {{20, 10}},
                                         {{20, 6}},
                                         {{10, 6}},
                                         {{10, 10}},
                                         {{0, 10}}});
    const BulgePath spike = pathOf(false, {{{0, 0}}, {{10, 0}}, {{0, 0}}});
    const BulgePath repeated =
        pathOf(false, {{{0, 0}, 1}, {{0, 0}}, {{10, 0}, -3}, {{10, 0}}, {{10, 10}}, {{10, 10}, 2}});
    const BulgePath bow = pathOf(false, {{{0, 0}}, {{10, 0}, -1}, {{14, 0}}, {{24, 0}}});
    const Case table[] = {
        {"right of a line", line, 1, "open: 0,-1 10,-1"},
        {"left of a line", line, -1, "open: 0,1 10,1"},
        {"no distance", line, 0, "open: 0,0 10,0"},
        {"an outer corner is extended", bend, 1, "open: 0,-1 11,-1 11,10"},
        {"an inner corner is cut", bend, -1, "open: 0,1 9,1 9,10"},
        {"more than the inner corner holds", bend, -10, ""},
        {"a box grows", box, 1, "closed: -1,-1 11,-1 11,7 -1,7"},
        {"a box shrinks", box, -1, "closed: 1,1 9,1 9,5 1,5"},
        {"a clockwise box shrinks to its right", reversed(box), 1, "closed: 1,5 9,5 9,1 1,1"},
        {"a box folds up", box, -3, ""},
        {"a box vanishes", box, -3.5, ""},
        {"a circle grows", circle, 2, "closed: -7,0(1) 7,0(1)"},
        {"a circle shrinks", circle, -2, "closed: -3,0(1) 3,0(1)"},
        {"a circle to its centre", circle, -5, ""},
        {"a circle beyond its centre", circle, -8, ""},
        {"a track grows", track, 1, "closed: 0,-3 10,-3(1) 10,3 0,3(1)"},
        {"a track shrinks", track, -1, "closed: 0,-1 10,-1(1) 10,1 0,1(1)"},
        {"a track folds up", track, -2, ""},
        {"rounded corner outside", rounded, 1, "open: 0,-1 8,-1(0.414) 11,2 11,10"},
        {"rounded corner inside", rounded, -1, "open: 0,1 8,1(0.414) 9,2 9,10"},
        {"the rounding vanishes", rounded, -2, "open: 0,2 8,2 8,10"},
        {"the rounding is passed", rounded, -3, "open: 0,3 7,3 7,10"},
        {"two rooms and a narrow neck", neck, -1.5,
         "closed: 1.5,1.5 8.5,1.5 8.5,5.5 8.5,8.5 1.5,8.5 | closed: 21.5,5.5 21.5,1.5 28.5,1.5 28.5,8.5 "
         "21.5,8.5"},
        {"around the end of a spike", spike, 1, "open: 0,-1 10,-1(1) 10,1 0,1"},
        {"segments without length", repeated, 1, "open: 0,-1 11,-1 11,10"},
        {"one point", pathOf(false, {{{3, 3}}, {{3, 3}, 1}}), 1, ""},
        {"nothing", pathOf(true, {}), 1, ""},
        {"a number that is none", pathOf(false, {{{0, 0}}, {{std::nan(""), 0}}}), 1, ""},
        {"arc and line, inner corners", bow, -1, "open: 0,1 9.172,1(-0.707) 14.828,1 24,1"},
        {"arc and line, outer corners", bow, 0.5, "open: 0,-0.5 10.586,-0.5(-1.414) 13.414,-0.5 24,-0.5"},
        {"arc and line that do not meet", bow, 1.5,
         "open: 0,-1.5 10,-1.5(0.414) 11.5,0(-1) 12.5,0(0.414) 14,-1.5 24,-1.5"},
        {"the path leaves the circle at its end", pathOf(true, {{{0, 0}, 1}, {{4, 0}}}), -0.5,
         "closed: 0.586,-0.5(0.707) 3.414,-0.5"},
    };
    for (const Case& item : table)
        EXPECT_EQ(textOf(offsetPath(item.path, item.distance)), item.expected) << item.name;
}

// A path near a corner whose sides, extended, would reach across it: the corner is rounded there.
TEST(Offset, ExtensionsStopAtThePathItself) {
    const BulgePath hook =
        pathOf(false, {{{0, 0}}, {{10, 0}}, {{0, 0.5}}, {{0, 20}}, {{14, 20}}, {{14, -20}}});
    const auto results = offsetPath(hook, 1.0);
    ASSERT_FALSE(results.empty());
    const host::PathIndex index(hook);
    for (const BulgePath& result : results)
        EXPECT_LT(extents(result).maximum.x, 15.0 + 1e-9);
}

TEST(Offset, FarFromTheOriginAndInAnyScale) {
    for (const double scale : {1e-3, 1.0, 1e4}) {
        const AcGeVector2d far(3.4e5 * scale, -4.5e5 * scale);
        BulgePath path = pathOf(false, {{{0, 0}}, {{8, 0}, quarter}, {{10, 2}}, {{10, 10}}});
        for (host::BulgeVertex& vertex : path.vertices)
            vertex.point = AcGePoint2d() + vertex.point.asVector() * scale + far;
        auto results = offsetPath(path, -scale);
        ASSERT_EQ(results.size(), 1u);
        for (host::BulgeVertex& vertex : results[0].vertices)
            vertex.point = AcGePoint2d() + (vertex.point.asVector() - far) / scale;
        EXPECT_EQ(textOf(results), "open: 0,1 8,1(0.414) 9,2 9,10");
    }
}

// Random paths and distances. Nothing of a result is nearer to the path than the distance; what is at the
// distance lies on the right side; results do not cross themselves; a closed path without crossings gives
// closed results.
class OffsetProperties : public testing::Test {
protected:
    void check(const BulgePath& path, double distance) {
        const host::PathIndex index(path);
        const double size = std::fabs(distance);
        const auto results = offsetPath(path, distance);
        std::vector<host::PathIndex> indices;
        const bool isSimple = path.closed && selfIntersections(path).empty();
        for (const BulgePath& result : results) {
            EXPECT_TRUE(result.closed || !isSimple);
            EXPECT_TRUE(selfIntersections(result, 1e-9).empty());
            for (int i = 0; i < result.segmentCount(); ++i)
                for (int k = 0; k <= 8; ++k) {
                    const AcGePoint2d point = result.segment(i).pointAt(k / 8.0);
                    const double nearest = index.distanceTo(point);
                    EXPECT_GT(nearest, size * (1.0 - 1e-7));
                    if (k > 0 && k < 8 && nearest < size * (1.0 + 1e-9)) {
                        EXPECT_TRUE(isOnSide(index, point, distance));
                    }
                }
            indices.emplace_back(result);
        }
        checkNothingIsMissing(index, distance, indices);
    }

    // Some foot of the perpendiculars of this length sees the point on the side of the distance.
    static bool isOnSide(const host::PathIndex& index, const AcGePoint2d& point, double distance) {
        for (const PathSegment& segment : index.segments()) {
            const double fraction = segment.closestFraction(point);
            const AcGeVector2d arm = point - segment.pointAt(fraction);
            if (arm.length() < std::fabs(distance) * (1.0 + 1e-7) &&
                segment.tangent(fraction).crossProduct(arm) * distance <= 1e-7)
                return true;
        }
        return false;
    }

    // The parallel point of every point of the path that is not too near is on a result, except inside the
    // areas that extended corners add.
    void checkNothingIsMissing(const host::PathIndex& index, double distance,
                               const std::vector<host::PathIndex>& results) {
        const double size = std::fabs(distance);
        int missing = 0;
        for (const PathSegment& segment : index.segments()) {
            if (segment.kind() == PathSegment::Kind::Point)
                continue;
            for (int k = 1; k < 40; ++k) {
                const AcGePoint2d point =
                    segment.pointAt(k / 40.0) - segment.tangent(k / 40.0).perpVector() * distance;
                if (index.isNearerThan(point, size * (1.0 - 1e-9)))
                    continue;
                ++m_parallelPoints;
                const auto isAt = [&](const host::PathIndex& result) {
                    return result.distanceTo(point) < 1e-6 * size;
                };
                missing += std::none_of(results.begin(), results.end(), isAt);
            }
        }
        m_missing += missing;
    }

    int m_parallelPoints = 0;
    int m_missing = 0;
};

TEST_F(OffsetProperties, HoldForPathsOfManyKinds) {
    RandomPaths random(41);
    for (int i = 0; i < 1500; ++i) {
        SCOPED_TRACE(i);
        const BulgePath path = i % 3 == 0 ? random.tangle() : i % 3 == 1 ? random.walk() : random.ring();
        check(path, (random.below(2) ? 1.0 : -1.0) * random.number(0.05, 4.0));
        if (HasFailure())
            break;
    }
    // Only the areas of extended corners, which are few, take something away.
    EXPECT_GT(m_parallelPoints, 100000);
    EXPECT_LT(m_missing, m_parallelPoints / 100);
}

// Whole coordinates make results touch, coincide and fold up exactly.
TEST_F(OffsetProperties, NothingIsTooNearInDegeneratePositions) {
    RandomPaths random(43);
    for (int i = 0; i < 1500; ++i) {
        const BulgePath path = random.grid();
        const double distance = (random.below(2) ? 1.0 : -1.0) * (1 + random.below(4)) * 0.5;
        const host::PathIndex index(path);
        const bool isSimple = path.closed && selfIntersections(path).empty();
        for (const BulgePath& result : offsetPath(path, distance)) {
            EXPECT_TRUE(result.closed || !isSimple) << i;
            for (double parameter = 0.0; parameter <= result.endParameter(); parameter += 0.125)
                EXPECT_FALSE(
                    index.isNearerThan(pointAt(result, parameter), std::fabs(distance) * (1.0 - 1e-6)))
                    << i;
        }
    }
}

// A long path with many bends in one piece: joined from end to end, and even.
TEST(Offset, LongPathsStayInOnePiece) {
    BulgePath path;
    for (int i = 0; i < 6000; ++i)
        path.add({i * 1.0, 20.0 * std::sin(i * 0.05)}, 0.2 * std::sin(i * 0.7));
    for (const double distance : {-3.0, 3.0}) {
        const auto results = offsetPath(path, distance);
        ASSERT_EQ(results.size(), 1u);
        EXPECT_NEAR(results[0].vertices.front().point.distanceTo(path.vertices.front().point), 3.0, 1e-9);
        EXPECT_NEAR(results[0].vertices.back().point.distanceTo(path.vertices.back().point), 3.0, 1e-9);
    }
}

} // namespace
