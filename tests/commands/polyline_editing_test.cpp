// Joining and fitting of polylines as geometry, and PEDIT over them.
#include "commandtest.h"
#include "tests/ge/random_paths.h"

#include "host/commands/edit/pathjoin.h"
#include "host/commands/peditvertex.h"

#include <random>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

host::WidePath line(double x1, double y1, double x2, double y2) {
    host::WidePath path;
    path.path.add({x1, y1});
    path.path.add({x2, y2});
    return path;
}

double totalLength(const std::vector<host::WidePath>& paths) {
    double sum = 0.0;
    for (const host::WidePath& path : paths) {
        sum += host::length(path.path);
    }
    return sum;
}

TEST(PathJoin, PiecesOfAPathInAnyOrderAndDirectionGiveThePathBack) {
    test::RandomPaths random(7);
    std::mt19937 shuffle(11);
    for (int round = 0; round < 2000; ++round) {
        const host::BulgePath whole = host::withoutRepeatedVertices(random.walk(), 1e-6);
        std::vector<host::WidePath> pieces;
        for (int i = 0; i < whole.segmentCount(); ++i) {
            const host::PathSegment segment = whole.segment(i);
            host::WidePath& piece = pieces.emplace_back();
            const bool turned = random.below(2) == 0;
            piece.path.add(turned ? segment.end : segment.start, turned ? -segment.bulge : segment.bulge);
            piece.path.add(turned ? segment.start : segment.end);
        }
        std::shuffle(pieces.begin(), pieces.end(), shuffle);
        const double before = totalLength(pieces);
        const std::vector<host::JoinedPath> joined = host::joinPaths(pieces, {});
        double after = 0.0;
        std::size_t sources = 0;
        for (const host::JoinedPath& path : joined) {
            after += host::length(path.shape.path);
            sources += path.sources.size();
        }
        EXPECT_EQ(sources, pieces.size());
        EXPECT_NEAR(after, before, 1e-9 * (1.0 + before));
        if (host::selfIntersections(whole).empty()) {
            EXPECT_EQ(joined.size(), 1u) << "round " << round;
        }
    }
}

TEST(PathJoin, TenThousandTouchingSegmentsAreOnePath) {
    std::vector<host::WidePath> pieces;
    for (int i = 0; i < 10000; ++i) {
        pieces.push_back(line(i, i % 7, i + 1, (i + 1) % 7));
    }
    std::shuffle(pieces.begin(), pieces.end(), std::mt19937(3));
    const std::vector<host::JoinedPath> joined = host::joinPaths(std::move(pieces), {});
    ASSERT_EQ(joined.size(), 1u);
    EXPECT_EQ(joined.front().shape.path.vertexCount(), 10001);
}

TEST(PathJoin, GapsWithinTheFuzzAreClosedAsAskedFor) {
    const std::vector<host::WidePath> corner{line(0, 0, 9.9, 0), line(10, 0.1, 10, 5)};
    EXPECT_EQ(host::joinPaths(corner, {}).size(), 2u);
    EXPECT_EQ(host::joinPaths(corner, {0.1, host::JoinType::both}).size(), 2u);
    const auto extended = host::joinPaths(corner, {0.2, host::JoinType::extend});
    ASSERT_EQ(extended.size(), 1u);
    ASSERT_EQ(extended[0].shape.path.vertexCount(), 3);
    EXPECT_EQ(extended[0].shape.path.vertices[1].point, AcGePoint2d(10, 0));
    const auto added = host::joinPaths(corner, {0.2, host::JoinType::add});
    ASSERT_EQ(added.size(), 1u);
    EXPECT_EQ(added[0].shape.path.vertexCount(), 4);
    // Parallel lines have no corner to be extended to.
    const std::vector<host::WidePath> parallel{line(0, 0, 5, 0), line(5, 0.1, 9, 0.1)};
    EXPECT_EQ(host::joinPaths(parallel, {0.2, host::JoinType::extend}).size(), 2u);
    const auto both = host::joinPaths(parallel, {0.2, host::JoinType::both});
    ASSERT_EQ(both.size(), 1u);
    EXPECT_EQ(both[0].shape.path.vertexCount(), 4);
}

TEST(PathJoin, WidthsStayWithTheirSegmentsAndARingCloses) {
    host::WidePath wide = line(0, 0, 4, 0);
    wide.widths = {{1.0, 2.0}};
    host::WidePath backwards = line(4, 4, 4, 0);
    backwards.widths = {{5.0, 3.0}};
    const auto joined = host::joinPaths({wide, backwards, line(4, 4, 0, 0)}, {});
    ASSERT_EQ(joined.size(), 1u);
    const host::WidePath& shape = joined[0].shape;
    EXPECT_TRUE(shape.path.closed);
    ASSERT_EQ(shape.widths.size(), 3u);
    EXPECT_EQ(shape.widths[0], (host::SegmentWidths{1.0, 2.0}));
    EXPECT_EQ(shape.widths[1], (host::SegmentWidths{3.0, 5.0}));
    EXPECT_EQ(shape.widths[2], host::SegmentWidths());
}

host::EditPolyline randomPolyline(test::RandomPaths& random, bool closed) {
    host::EditPolyline polyline;
    polyline.setPath({host::withoutRepeatedVertices(random.ring(), 1e-6), {}});
    polyline.closed = closed;
    return polyline;
}

TEST(EditPolyline, ReversingTwiceChangesNothingAndOnceKeepsTheShape) {
    test::RandomPaths random(31);
    for (int round = 0; round < 20; ++round) {
        host::EditPolyline polyline = randomPolyline(random, round % 2 == 0);
        for (host::EditVertex& vertex : polyline.vertices) {
            vertex.widths = {random.number(0, 1), random.number(0, 1)};
        }
        const host::EditPolyline before = polyline;
        polyline.reverse();
        EXPECT_NEAR(host::length(polyline.path().path), host::length(before.path().path), 1e-9);
        polyline.reverse();
        EXPECT_EQ(polyline.path().path.vertexCount(), before.path().path.vertexCount());
        for (int i = 0; i < before.segmentCount(); ++i) {
            const auto at = static_cast<std::size_t>(i);
            EXPECT_EQ(polyline.vertices[at].bulge, before.vertices[at].bulge);
            EXPECT_EQ(polyline.vertices[at].widths, before.vertices[at].widths);
        }
    }
}

TEST(EditPolyline, BreakingGivesTwoPartsOrOpensARing) {
    host::EditPolyline polyline;
    for (int i = 0; i < 5; ++i) {
        polyline.vertices.push_back({{static_cast<double>(i), 0.0}, 0.0, {}, std::nullopt});
    }
    host::EditPolyline open = polyline;
    const std::optional<host::EditPolyline> tail = host::breakBetween(open, 3, 1);
    ASSERT_TRUE(tail);
    EXPECT_EQ(open.vertices.size(), 2u);
    EXPECT_EQ(tail->vertices.size(), 2u);
    EXPECT_EQ(tail->vertices.front().point, AcGePoint2d(3, 0));
    host::EditPolyline ring = polyline;
    ring.closed = true;
    EXPECT_FALSE(host::breakBetween(ring, 1, 3));
    EXPECT_FALSE(ring.closed);
    ASSERT_EQ(ring.vertices.size(), 4u);
    EXPECT_EQ(ring.vertices.front().point, AcGePoint2d(3, 0));
    EXPECT_EQ(ring.vertices.back().point, AcGePoint2d(1, 0));
    host::straighten(polyline, 4, 1);
    EXPECT_EQ(polyline.vertices.size(), 3u);
}

class Pedit : public CommandTest {};

TEST_F(Pedit, SegmentsDrawnOneByOneAreJoinedAndFittedByProgramsAsTheyDo) {
    EXPECT_TRUE(run("PLINETYPE 0\nPLINE 0,0 10,0\n\nPLINE 10,0 10,10\n\nPLINE 10,10 0,10\n\n"));
    ads_name set;
    ASSERT_EQ(acedSSGet(L"X", nullptr, nullptr, nullptr, set), RTNORM);
    EXPECT_EQ(acedCommandS(RTSTR, L"_.pedit", RTPICKS, set, RTSTR, L"_j", RTPICKS, set, RTSTR, L"", RTSTR,
                           L"", RTNONE),
              RTNORM);
    acedSSFree(set);
    ASSERT_EQ(entities<AcDb2dPolyline>().size(), 1u) << host::toUtf8(transcript.shown);
    EXPECT_NEAR(commandtest::lengthOf(*entities<AcDb2dPolyline>()[0]), 30.0, 1e-9);
    ads_name last;
    acdbEntLast(last);
    EXPECT_EQ(acedCommandS(RTSTR, L"_.pedit", RTENAME, last, RTSTR, L"_s", RTSTR, L"_L", RTSTR, L"_ON", RTSTR,
                           L"", RTNONE),
              RTNORM);
    const Read fitted(entities<AcDb2dPolyline>()[0]);
    EXPECT_EQ(fitted->polyType(), AcDb::k2dCubicSplinePoly);
    EXPECT_TRUE(fitted->isLinetypeGenerationOn());
    run("PLINETYPE 2\n"); // no setting of the drawing
}

TEST_F(Pedit, FittingALightPolylineAndBackKeepsItsHandleAndUndoesInOneStep) {
    run("PLINE 0,0 10,0 10,10\n\n");
    const AcDbHandle handle = Read(entities()[0])->handle();
    run("PEDIT 5,0 F\n\n");
    ASSERT_EQ(entities<AcDb2dPolyline>().size(), 1u);
    EXPECT_EQ(Read(entities()[0])->handle(), handle);
    run("U\n");
    ASSERT_EQ(entities<AcDbPolyline>().size(), 1u);
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->numVerts(), 3u);
    run("PEDIT 5,0 S D C W 2 U U\n\n");
    ASSERT_EQ(entities<AcDbPolyline>().size(), 1u);
    EXPECT_FALSE(Read(entities<AcDbPolyline>()[0])->isClosed());
    EXPECT_FALSE(Read(entities<AcDbPolyline>()[0])->hasWidth());
}

TEST_F(Pedit, LinesAndArcsBecomeOnePolylineWithManyAndFuzz) {
    run("LINE 0,0 10,0\n\nLINE 10.05,0 10.05,10\n\nARC 10.05,10 5,15 0,10\n");
    run("PEDIT M ALL\n\nY J 0.1 W 0.5\n\n");
    ASSERT_EQ(entities().size(), 1u) << host::toUtf8(transcript.shown);
    double width = 0.0;
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.5);
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->numVerts(), 4u);
    run("U\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 2u);
    EXPECT_EQ(entities<AcDbArc>().size(), 1u);
}

TEST_F(Pedit, VerticesAreInsertedMovedAndBrokenOff) {
    run("PLINE 0,0 10,0 20,0 30,0\n\nPEDIT 5,0 E I 5,5 N N M 12,1 X\n\n");
    AcGePoint3d point;
    Read(entities<AcDbPolyline>()[0])->getPointAt(1, point);
    EXPECT_EQ(point, AcGePoint3d(5, 5, 0));
    Read(entities<AcDbPolyline>()[0])->getPointAt(2, point);
    EXPECT_EQ(point, AcGePoint3d(12, 1, 0));
    run("PEDIT L E N B N G X\n\n");
    EXPECT_EQ(entities<AcDbPolyline>().size(), 2u) << host::toUtf8(transcript.shown);
}

} // namespace
