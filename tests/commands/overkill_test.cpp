// What lies there twice: equal entities, and lines and arcs that others cover.
#include "commandtest.h"

#include "host/commands/edit/coverings.h"
#include "host/commands/edit/overkill.h"
#include "host/formats/formats.h"

#include <cmath>
#include <numbers>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

class Overkill : public CommandTest {
protected:
    host::OverkillResult clean(const host::OverkillOptions& options = {}) {
        AcDbObjectIdArray ids;
        for (AcDbEntity* entity : entities()) {
            ids.append(entity->objectId());
        }
        return host::removeDuplicates(ids, options);
    }
    std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines() {
        std::vector<std::pair<AcGePoint3d, AcGePoint3d>> found;
        for (AcDbLine* line : entities<AcDbLine>()) {
            const Read<AcDbLine> read(line);
            found.emplace_back(read->startPoint(), read->endPoint());
        }
        return found;
    }
};

TEST_F(Overkill, EqualEntitiesOfEveryKindLeaveTheFirst) {
    run("LINE 0,0 3,4\n\nTEXT 0,10 2 0 A\n\nPLINE 0,20 5,20 5,25\n\nCIRCLE 50,50 3\nPOINT 9,9\n"
        "-BLOCK B\n0,0\nP\n\nLINE 70,0 71,0\n\n-BLOCK B2\n70,0\nL\n\n-INSERT B2\n5,5 1 1 0\n");
    run("LINE 0,0 3,4\n\nTEXT 0,10 2 0 A\n\nPLINE 0,20 5,20 5,25\n\nCIRCLE 50,50 3\nPOINT 9,9\n");
    const std::size_t once = entities().size() / 2;
    run("COPY ALL\n\n0,0 0,0\n\n");
    const std::string before = host::dumpDrawing(database());
    EXPECT_TRUE(run("OVERKILL ALL\n\n\n")) << host::toUtf8(transcript.shown);
    EXPECT_EQ(entities().size(), 6U);
    EXPECT_GT(once, 0U);
    EXPECT_EQ(entities<AcDbText>().size(), 1U);
    EXPECT_EQ(entities<AcDbPolyline>().size(), 1U);
    EXPECT_EQ(entities<AcDbBlockReference>().size(), 1U);
    run("U\n");
    EXPECT_EQ(host::dumpDrawing(database()), before);
}

TEST_F(Overkill, DifferencesKeepBoth) {
    addLayer(L"A");
    addLine(0, 0, 3, 4);
    addLine(0, 0, 3, 4, L"A");
    addLine(3, 4, 0, 0);         // the first one, the other way round
    addLine(0, 0, 3, 4.0000005); // nearly the first one
    addLine(0, 0, 3, 4.01);
    run("TEXT 0,10 2 0 A\n\nTEXT 0,10 2 0 B\n\nPLINE 0,20 5,20\n\nPLINE 0,20 W 1 1 5,20\n\n");
    host::OverkillOptions apart;
    apart.mergesOverlaps = false;
    EXPECT_EQ(clean(apart).duplicates, 2);
    EXPECT_EQ(entities<AcDbLine>().size(), 3U);
    EXPECT_EQ(entities<AcDbText>().size(), 2U);
    apart.ignored = host::OverkillOptions::layer;
    EXPECT_EQ(clean(apart).duplicates, 1);
    apart.tolerance = 0.1;
    EXPECT_EQ(clean(apart).duplicates, 1);
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(Overkill, AttributesTellReferencesApart) {
    run("-ATTDEF\n\nNO\nNO?\n\n0,0\n1\n0\n-BLOCK B\n0,0\nL\n\n");
    for (const char* value : {"1", "2", "1"}) {
        EXPECT_TRUE(run("-INSERT B\n5,5 1 1 0\n" + std::string(value) + "\n"))
            << host::toUtf8(transcript.shown);
    }
    ASSERT_EQ(entities<AcDbBlockReference>().size(), 3U);
    EXPECT_EQ(clean().duplicates, 1);
}

TEST_F(Overkill, LinesThatLieOnEachOtherBecomeOne) {
    addLine(0, 0, 10, 0);
    addLine(15, 0, 5, 0);  // overlaps, the other way
    addLine(15, 0, 20, 0); // goes on
    addLine(21, 0, 30, 0); // does not reach
    addLine(2, 0, 4, 0);   // within
    addLine(0, 1, 10, 1);  // beside
    addLine(0, 0, 10, 0.1);
    EXPECT_EQ(clean().overlaps, 3);
    const auto left = lines();
    ASSERT_EQ(left.size(), 4U);
    EXPECT_EQ(left[0].first, AcGePoint3d(0, 0, 0));
    EXPECT_EQ(left[0].second, AcGePoint3d(20, 0, 0));
}

TEST_F(Overkill, EndToEndOnlyWhenWanted) {
    addLine(0, 0, 10, 10);
    addLine(10, 10, 20, 20);
    host::OverkillOptions options;
    options.mergesEnds = false;
    EXPECT_EQ(clean(options).overlaps, 0);
    options.mergesEnds = true;
    EXPECT_EQ(clean(options).overlaps, 1);
    EXPECT_EQ(lines()[0].second, AcGePoint3d(20, 20, 0));
}

TEST_F(Overkill, ArcsOfACircleBecomeOneOrTheCircle) {
    const double right = std::numbers::pi / 2.0;
    const AcGePoint3d centre(100, 50, 0);
    add(new AcDbArc(centre, 5.0, 0.0, right));
    add(new AcDbArc(centre, 5.0, right / 2.0, 2.0 * right));
    add(new AcDbArc(centre, 6.0, 0.0, right));
    add(new AcDbArc(centre, 5.0, 3.5 * right, 4.0 * right)); // over the zero direction
    EXPECT_EQ(clean().overlaps, 2);
    ASSERT_EQ(entities<AcDbArc>().size(), 2U);
    EXPECT_NEAR(Read(entities<AcDbArc>()[0])->startAngle(), 3.5 * right, 1e-9);
    EXPECT_NEAR(Read(entities<AcDbArc>()[0])->totalAngle(), 2.5 * right, 1e-9);
    const AcDbObjectId first = entities<AcDbArc>()[0]->objectId();
    add(new AcDbArc(centre, 5.0, 1.5 * right, 3.6 * right));
    EXPECT_EQ(clean().overlaps, 1);
    ASSERT_EQ(entities<AcDbCircle>().size(), 1U);
    EXPECT_EQ(entities<AcDbCircle>()[0]->objectId(), first) << "in its place";
    add(new AcDbArc(centre, 5.0, 1.0, 2.0));
    EXPECT_EQ(clean().overlaps, 1) << "the circle covers it";
    EXPECT_EQ(entities<AcDbArc>().size(), 1U);
}

/// Against the definition: pieces of lines in all directions, far from the origin, put back together.
TEST(Coverings, PiecesOfALineInAnyDirectionComeTogether) {
    std::vector<host::Segment> segments;
    constexpr int directions = 97;
    constexpr int pieces = 5;
    for (int i = 0; i < directions; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / directions;
        const AcGePoint3d middle(4e6 + 500.0 * i, 3e6 + 300.0 * (i % 7), 0);
        const AcGeVector3d way(std::cos(angle), std::sin(angle), 0);
        for (int k = 0; k < pieces; ++k) {
            segments.push_back({middle + way * (10.0 * k), middle + way * (10.0 * k + 12.0), 0});
        }
        segments.push_back({middle + way * 10.0, middle + way * 20.0, 1}); // another kind
    }
    const auto covers = host::coverSegments(segments, {1e-6, true});
    ASSERT_EQ(covers.size(), static_cast<std::size_t>(directions));
    for (const host::SegmentCover& cover : covers) {
        EXPECT_EQ(cover.members.size(), static_cast<std::size_t>(pieces));
        EXPECT_NEAR((cover.end - cover.start).length(), 52.0, 1e-6);
        EXPECT_EQ(cover.start, segments[cover.members.front()].start);
    }
}

TEST(Coverings, SmallBendsDoNotAddUp) {
    // Each goes on from the one before within the tolerance, but all together are a curve.
    std::vector<host::Segment> segments;
    AcGePoint3d at;
    for (int i = 0; i < 200; ++i) {
        const AcGePoint3d next = at + AcGeVector3d(std::cos(i * 5e-4), std::sin(i * 5e-4), 0) * 1e-3;
        segments.push_back({at, next, 0});
        at = next;
    }
    for (const host::SegmentCover& cover : host::coverSegments(segments, {1e-6, true})) {
        for (const std::uint32_t member : cover.members) {
            const AcGeVector3d way = (cover.end - cover.start).normal();
            const AcGeVector3d off = segments[member].end - cover.start;
            EXPECT_LE((off - way * off.dotProduct(way)).length(), 1e-6);
        }
    }
}

} // namespace
