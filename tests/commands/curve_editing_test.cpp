// Cutting, lengthening, offsetting and cornering of curves as geometry, and the commands over them.
#include "commandtest.h"
#include "tests/ge/random_paths.h"

#include "host/commands/edit/corner.h"
#include "host/commands/edit/curvecutting.h"
#include "host/commands/edit/curvemarks.h"
#include "host/commands/edit/parallels.h"

namespace {

using commandtest::CommandTest;
using commandtest::lengthOf;
using commandtest::Read;

std::unique_ptr<AcDbPolyline> polylineOf(const host::BulgePath& path) {
    auto polyline = std::make_unique<AcDbPolyline>();
    polyline->setShape({path, {}});
    return polyline;
}

class CurveCutting : public CommandTest {};
class Parallels : public CommandTest {};
class CurveMarks : public CommandTest {};

const AcGePlane plan(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis);

TEST_F(CurveCutting, WhatIsLeftAndWhatIsTakenOutAddUp) {
    test::RandomPaths random(41);
    for (int round = 0; round < 80; ++round) {
        const host::BulgePath path = host::withoutRepeatedVertices(random.ring(), 1e-6);
        const auto curve = polylineOf(path);
        double from = random.number(0.0, path.endParameter());
        double to = random.number(0.0, path.endParameter());
        if (std::fabs(from - to) < 1e-3) {
            continue;
        }
        const auto left = host::withoutPart(*curve, from, to);
        ASSERT_TRUE(left);
        double sum = 0.0;
        for (const auto& part : *left) {
            sum += lengthOf(*part);
        }
        if (!path.closed && from > to) {
            std::swap(from, to);
        }
        const double taken = host::length(host::subPath(path, from, to));
        EXPECT_NEAR(sum + taken, host::length(path), 1e-7) << "round " << round;
    }
}

TEST_F(CurveCutting, TheNearestCutsBoundWhatGoes) {
    const AcDbLine line({0, 0, 0}, {10, 0, 0});
    const auto middle = host::withoutPartAround(line, 5.0, {2.0, 4.0, 7.0, 9.0});
    ASSERT_TRUE(middle);
    ASSERT_EQ(middle->size(), 2u);
    EXPECT_NEAR(lengthOf(*middle->front()), 4.0, 1e-12);
    EXPECT_NEAR(lengthOf(*middle->back()), 3.0, 1e-12);
    const auto end = host::withoutPartAround(line, 9.5, {2.0, 4.0});
    ASSERT_TRUE(end);
    ASSERT_EQ(end->size(), 1u);
    EXPECT_NEAR(lengthOf(*end->front()), 4.0, 1e-12);
    EXPECT_FALSE(host::withoutPartAround(line, 5.0, {0.0, 10.0}));
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 1.0);
    EXPECT_FALSE(host::withoutPartAround(circle, 1.0, {0.5}));
    const auto arc = host::withoutPartAround(circle, 0.1, {0.5, 6.0});
    ASSERT_TRUE(arc);
    ASSERT_EQ(arc->size(), 1u);
    EXPECT_NEAR(lengthOf(*arc->front()), 5.5, 1e-9);
}

TEST_F(CurveCutting, CurvesReachEdgesBeyondTheirEnds) {
    const AcDbLine line({0, 0, 0}, {10, 0, 0});
    const AcDbLine wall({15, -5, 0}, {15, 5, 0});
    const AcDbLine shortWall({20, 3, 0}, {20, 5, 0});
    EXPECT_EQ(host::meetingBeyond(line, false, wall, false, plan), AcGePoint3d(15, 0, 0));
    EXPECT_FALSE(host::meetingBeyond(line, true, wall, false, plan));
    EXPECT_FALSE(host::meetingBeyond(line, false, shortWall, false, plan));
    EXPECT_EQ(host::meetingBeyond(line, false, shortWall, true, plan), AcGePoint3d(20, 0, 0));
    const AcDbArc arc({0, 0, 0}, 5.0, 0.0, host::halfPi);
    const AcDbLine left({-10, 3, 0}, {-1, 3, 0});
    const auto point = host::meetingBeyond(arc, false, left, false, plan);
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->isEqualTo({-4, 3, 0}));
}

TEST_F(CurveCutting, LengthsAreSetFromEitherEnd) {
    test::RandomPaths random(43);
    for (int round = 0; round < 40; ++round) {
        host::BulgePath path = host::withoutRepeatedVertices(random.walk(), 1e-6);
        path.closed = false;
        std::unique_ptr<AcDbCurve> curve = polylineOf(path);
        const double length = lengthOf(*curve) * (round % 3 == 0 ? 0.6 : 1.05);
        if (host::setCurveLength(curve, round % 2 == 0, length)) {
            EXPECT_NEAR(lengthOf(*curve), length, 1e-7 * length) << "round " << round;
        } else {
            EXPECT_GT(length, host::length(path)); // only an arc that would go all around refuses
        }
    }
}

TEST_F(Parallels, RunThroughTheirPointAtTheDistanceOfThePoint) {
    test::RandomPaths random(47);
    int tried = 0;
    for (int round = 0; round < 80; ++round) {
        host::BulgePath path = host::withoutRepeatedVertices(random.ring(), 1e-6);
        const auto curve = polylineOf(path);
        const AcGePoint2d point(random.number(-12, 12), random.number(-12, 12));
        const double distance = host::PathIndex(path).distanceTo(point);
        const auto parallels = host::parallelsTowards(*curve, distance * 0.5, host::to3d(point));
        for (const auto& parallel : parallels) {
            const auto* made = AcDbPolyline::cast(parallel.get());
            ASSERT_NE(made, nullptr) << host::toUtf8(parallel->isA()->name());
            const host::PathIndex source(path);
            for (int i = 0; i < made->bulgePath().segmentCount(); ++i) {
                const AcGePoint2d middle = made->bulgePath().segment(i).pointAt(0.5);
                EXPECT_GT(source.distanceTo(middle), distance * 0.5 - 1e-6) << "round " << round;
                ++tried;
            }
        }
    }
    EXPECT_GT(tried, 100);
    const AcDbLine line({0, 0, 0}, {10, 0, 0});
    const auto above = host::parallelsThrough(line, {20, 3, 0});
    ASSERT_EQ(above.size(), 1u);
    EXPECT_EQ(AcDbLine::cast(above[0].get())->startPoint(), AcGePoint3d(0, 3, 0));
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 2.0);
    EXPECT_TRUE(host::parallelsTowards(circle, 3.0, {0.5, 0, 0}).empty());
    EXPECT_EQ(host::parallelsTowards(circle, 3.0, {2.5, 0, 0}).size(), 1u);
}

TEST_F(CurveMarks, LieAtTheirDistancesAlongTheCurve) {
    test::RandomPaths random(53);
    for (int round = 0; round < 20; ++round) {
        const auto curve = polylineOf(host::withoutRepeatedVertices(random.walk(), 1e-6));
        const double length = *host::curveLength(*curve);
        const std::vector<double> distances{0.0, length * 0.25, length * 0.9, length, length + 1.0};
        const std::vector<host::CurveMark> marks = host::marksAlong(*curve, distances);
        ASSERT_EQ(marks.size(), 4u);
        for (std::size_t i = 0; i < marks.size(); ++i) {
            AcGePoint3d point;
            ASSERT_EQ(curve->getPointAtDist(distances[i], point), Acad::eOk);
            EXPECT_TRUE(point.isEqualTo(marks[i].point));
            EXPECT_NEAR(marks[i].tangent.length(), 1.0, 1e-12);
        }
    }
    const AcDbEllipse ellipse({1, 2, 0}, AcGeVector3d::kZAxis, {9, 0, 0}, 0.2, 0.3, 5.0);
    const double length = *host::curveLength(ellipse);
    std::vector<double> distances;
    for (int i = 0; i <= 1000; ++i) {
        distances.push_back(length * i / 1000);
    }
    const std::vector<host::CurveMark> marks = host::marksAlong(ellipse, distances);
    ASSERT_EQ(marks.size(), distances.size());
    for (std::size_t i = 0; i < marks.size(); i += 100) {
        AcGePoint3d point;
        ASSERT_EQ(ellipse.getPointAtDist(distances[i], point), Acad::eOk);
        EXPECT_LT(point.distanceTo(marks[i].point), 1e-7);
    }
}

TEST(Corners, ArcsTouchBothSides) {
    test::RandomPaths random(59);
    int made = 0;
    for (int round = 0; round < 300; ++round) {
        const auto side = [&] {
            host::CornerSide one;
            one.segment = {{random.number(-10, 10), random.number(-10, 10)},
                           {random.number(-10, 10), random.number(-10, 10)},
                           random.below(2) == 0 ? 0.0 : random.number(-1, 1)};
            one.pick = one.segment.pointAt(random.number(0.1, 0.9));
            return one;
        };
        const host::CornerSide first = side();
        const host::CornerSide second = side();
        const double radius = random.number(0.1, 3.0);
        const auto corner = host::roundCorner(first, second, radius);
        if (!corner) {
            continue;
        }
        ++made;
        ASSERT_TRUE(corner->between);
        EXPECT_NEAR(corner->between->radius(), radius, 1e-6 * radius) << "round " << round;
        const auto touches = [&](const host::PathSegment& segment, bool end, const AcGePoint2d& at,
                                 double way) {
            EXPECT_LT((end ? segment.end : segment.start).distanceTo(at), 1e-7) << "round " << round;
            const double cross = segment.tangent(end ? 1.0 : 0.0).crossProduct(corner->between->tangent(way));
            EXPECT_NEAR(cross, 0.0, 1e-5) << "round " << round;
        };
        touches(corner->first, corner->firstEndsAtCorner, corner->between->start, 0.0);
        touches(corner->second, corner->secondEndsAtCorner, corner->between->end, 1.0);
    }
    EXPECT_GT(made, 150);
}

TEST(Corners, LinesMeetAreCutAndKeepThePickedParts) {
    const host::CornerSide level{{{0, 0}, {10, 0}}, {2, 0}, false};
    const host::CornerSide upright{{{8, -5}, {8, 5}}, {8, 3}, false};
    const auto sharp = host::roundCorner(level, upright, 0.0);
    ASSERT_TRUE(sharp);
    EXPECT_FALSE(sharp->between);
    EXPECT_EQ(sharp->first.end, AcGePoint2d(8, 0));
    EXPECT_EQ(sharp->second.start, AcGePoint2d(8, 0));
    const auto cut = host::cutCorner(level, upright, 2.0, 1.0);
    ASSERT_TRUE(cut && cut->between);
    EXPECT_EQ(cut->between->start, AcGePoint2d(6, 0));
    EXPECT_EQ(cut->between->end, AcGePoint2d(8, 1));
    const auto half = host::roundCorner(level, {{{0, 4}, {10, 4}}, {9, 4}, false}, 1.0);
    ASSERT_TRUE(half && half->between);
    EXPECT_NEAR(half->between->radius(), 2.0, 1e-12);
}

class CurveCommands : public CommandTest {};

TEST_F(CurveCommands, TrimCutsAtEdgesAndUndoes) {
    run("LINE 0,0 10,0\n\nLINE 3,-5 3,5\n\nLINE 7,-5 7,5\n\nTRIM\n\n5,0\n\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 4u) << host::toUtf8(transcript.shown);
    run("TRIM\n\n1,0 U\n\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 4u);
    run("U\n"); // the trimming that took itself back is no step
    EXPECT_EQ(entities<AcDbLine>().size(), 3u);
    run("TRIM 3,4\n\n5,0 7,2\n\n");
    EXPECT_NEAR(lengthOf(*entities<AcDbLine>()[0]), 3.0, 1e-12);
    EXPECT_TRUE(showed(L"对象未与边相交。"));
}

TEST_F(CurveCommands, ExtendBreakAndLengthen) {
    run("LINE 0,0 4,0\n\nLINE 8,-5 8,5\n\nEXTEND 8,2\n\n3.5,0\n\n");
    EXPECT_NEAR(lengthOf(*entities<AcDbLine>()[0]), 8.0, 1e-12);
    run("BREAK 2,0 5,0\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 3u);
    run("LENGTHEN T 1 0.2,0\n\n");
    EXPECT_NEAR(lengthOf(*entities<AcDbLine>()[0]), 1.0, 1e-12);
    run("CIRCLE 20,20 5\nBREAK 25,20 F 25,20 20,25\n");
    ASSERT_EQ(entities<AcDbArc>().size(), 1u);
    EXPECT_NEAR(Read(entities<AcDbArc>()[0])->totalAngle(), 1.5 * host::pi, 1e-9);
}

TEST_F(CurveCommands, FilletsAndChamfersOfLinesAndPolylines) {
    run("LINE 0,0 10,0\n\nLINE 10,0 10,10\n\nFILLET R 2 5,0 10,5\n");
    ASSERT_EQ(entities<AcDbArc>().size(), 1u) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(Read(entities<AcDbArc>()[0])->center().isEqualTo({8, 2, 0}));
    run("ERASE ALL\n\nRECTANG 0,0 10,10\nFILLET P 5,0\n");
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->numVerts(), 8u);
    EXPECT_NEAR(lengthOf(*entities<AcDbPolyline>()[0]), 24.0 + 4.0 * host::pi, 1e-9);
    run("ERASE ALL\n\nPLINE 0,0 10,0 10,10\n\nCHAMFER D 2 3 5,0 10,5\n");
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->numVerts(), 4u);
}

TEST_F(CurveCommands, StretchMovesWhatLiesInTheWindow) {
    run("LINE 0,0 10,0\n\nRECTANG 8,-2 12,2\nSTRETCH C 13,3 9,-3\n\n0,0 5,0\n");
    EXPECT_EQ(Read(entities<AcDbLine>()[0])->endPoint(), AcGePoint3d(15, 0, 0));
    AcGePoint3d corner;
    Read(entities<AcDbPolyline>()[0])->getPointAt(1, corner);
    EXPECT_EQ(corner, AcGePoint3d(17, -2, 0));
    Read(entities<AcDbPolyline>()[0])->getPointAt(0, corner);
    EXPECT_EQ(corner, AcGePoint3d(8, -2, 0));
}

TEST_F(CurveCommands, MarksStandOnTheCurveAndBlocksTurnWithIt) {
    run("-BLOCK B1\n0,0\n\nPLINE 0,0 10,0 10,10\n\nMEASURE 1,0 B B1\nY 4\n");
    const auto references = entities<AcDbBlockReference>();
    ASSERT_EQ(references.size(), 5u) << host::toUtf8(transcript.shown);
    EXPECT_NEAR(Read(references[0])->rotation(), 0.0, 1e-12);
    EXPECT_NEAR(Read(references[4])->rotation(), host::halfPi, 1e-12);
    EXPECT_TRUE(Read(references[4])->position().isEqualTo({10, 10, 0}));
    run("DIVIDE 1,0 4\n");
    EXPECT_EQ(entities<AcDbPoint>().size(), 3u);
    run("DIVIDE 1,0 1 2\n");
    EXPECT_TRUE(showed(L"需要 2 和 32767 之间的整数。"));
}

TEST_F(CurveCommands, TransformationsAndArrays) {
    run("LINE 1,0 2,0\n\nROTATE L\n\n0,0 90\n");
    EXPECT_TRUE(Read(entities<AcDbLine>()[0])->endPoint().isEqualTo({0, 2, 0}));
    run("SCALE L\n\n0,0 C 2\n");
    ASSERT_EQ(entities<AcDbLine>().size(), 2u) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(Read(entities<AcDbLine>()[1])->endPoint().isEqualTo({0, 4, 0}));
    run("-ARRAY L\n\nR 2 3 10 5\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 7u);
    run("ERASE ALL\n\nCIRCLE 5,0 1\nARRAY L\n\nP 0,0 4 360 Y\n");
    ASSERT_EQ(entities<AcDbCircle>().size(), 4u);
    EXPECT_TRUE(Read(entities<AcDbCircle>()[2])->center().isEqualTo({-5, 0, 0}));
    run("ERASE ALL\n\nTEXT 0,0 2.5 0 ABC\n\nMIRROR L\n\n10,0 10,5 Y\n");
    const auto text = entities<AcDbText>();
    ASSERT_EQ(text.size(), 1u);
    EXPECT_NEAR(Read(text[0])->rotation(), 0.0, 1e-9);
    AcDbExtents extents;
    Read(text[0])->getGeomExtents(extents);
    EXPECT_GT(extents.minPoint().x, 10.0);
    EXPECT_LT(extents.maxPoint().x, 20.0 + 1e-6);
}

TEST_F(CurveCommands, JoinMakesOneOfWhatBelongsTogether) {
    run("LINE 0,0 3,0\n\nLINE 5,0 9,0\n\nJOIN ALL\n\n");
    ASSERT_EQ(entities<AcDbLine>().size(), 1u) << host::toUtf8(transcript.shown);
    EXPECT_NEAR(lengthOf(*entities<AcDbLine>()[0]), 9.0, 1e-12);
    run("LINE 9,0 9,5\n\nARC 9,5 5,9 0,5\nJOIN ALL\n\n");
    ASSERT_EQ(entities().size(), 1u) << host::toUtf8(transcript.shown);
    EXPECT_EQ(Read(entities<AcDbPolyline>()[0])->numVerts(), 4u);
}

TEST_F(CurveCommands, PolylinesTakeEveryKindOfArc) {
    // Quarter circles about known centres, one way each.
    run("PLINE 0,0 A D 0 5,5 CE 0,5 A 90 A 90 CE -5,5 A 90 R 5 -5,0 R 5 A 90 45 S 3,9 5,12\n\n");
    const auto polylines = entities<AcDbPolyline>();
    ASSERT_EQ(polylines.size(), 1u) << host::toUtf8(transcript.shown);
    const Read path(polylines[0]);
    ASSERT_GE(path->numVerts(), 4u) << host::toUtf8(transcript.shown);
    double bulge = 0.0;
    AcGePoint3d point;
    path->getBulgeAt(0, bulge);
    EXPECT_NEAR(bulge, std::tan(host::pi / 8.0), 1e-9);
    path->getPointAt(2, point);
    EXPECT_TRUE(point.isEqualTo({0, 10, 0})) << point.x << " " << point.y;
}

} // namespace
