// Boundaries traced around a point, and the hatches made in them.
#include "commandtest.h"

#include "host/commands/edit/boundarytrace.h"
#include "host/commands/edit/editing.h"

#include <map>
#include <random>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

class Boundary : public CommandTest {
protected:
    host::TracedBoundary at(double x, double y) {
        return host::traceBoundary(database().currentSpaceId(), AcGeVector3d::kZAxis, {x, y});
    }
    /// The areas of the loops by a polygon of many points: the outer one first.
    std::vector<double> areasAt(double x, double y) {
        std::vector<double> areas;
        for (const host::TracedLoop& loop : at(x, y).loops) {
            areas.push_back(areaOf(loop));
        }
        return areas;
    }
    static double areaOf(const host::TracedLoop& loop) {
        constexpr int steps = 2000;
        double twice = 0.0;
        AcGePoint3d last = loop.pieces.back().pointAt(loop.pieces.back().to);
        for (const host::CurvePiece& piece : loop.pieces) {
            EXPECT_LT(last.distanceTo(piece.pointAt(piece.from)), 1e-6) << "pieces follow each other";
            for (int i = 0; i <= (piece.isArc() ? steps : 1); ++i) {
                const double t = piece.from + (piece.to - piece.from) * i / (piece.isArc() ? steps : 1);
                const AcGePoint3d next = piece.pointAt(t);
                twice += last.x * next.y - next.x * last.y;
                last = next;
            }
        }
        return std::fabs(twice) / 2.0;
    }
    void expectAreas(double x, double y, std::vector<double> expected) {
        const std::vector<double> areas = areasAt(x, y);
        ASSERT_EQ(areas.size(), expected.size()) << x << "," << y;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(areas[i], expected[i], 1e-4 * expected[i]) << x << "," << y;
        }
    }
};

TEST_F(Boundary, LinesThatCrossAndEndAnywhere) {
    run("LINE -5,0 20,0\n\nLINE 10,-5 10,20\n\nLINE 20,10 -5,10\n\nLINE 0,20 0,-5\n\n");
    expectAreas(5, 5, {100});
    EXPECT_EQ(at(5, 5).loops.front().sources.size(), 4u);
    // A line that reaches into the face is no boundary; one through it divides it.
    run("LINE 5,-5 5,3\n\n");
    expectAreas(5, 5, {100});
    run("LINE 5,3 5,12\n\n");
    expectAreas(4, 5, {50});
    expectAreas(6, 5, {50});
    expectAreas(5.0001, 9.9999, {50});
    EXPECT_TRUE(at(15, 5).loops.empty());
    EXPECT_TRUE(at(500, 5).loops.empty());
}

TEST_F(Boundary, IslandsOfAnyDepthAndShape) {
    run("RECTANG 0,0 100,50\nCIRCLE 30,25 10\nCIRCLE 30,25 4\nPLINE 60,10 80,10 80,40 C\nLINE 70,10 80,25\n\n"
        "LINE 50,20 55,22\n\nARC 45,40 50,45 55,40\n");
    const double pi = host::pi;
    std::vector<double> areas = areasAt(5, 5);
    ASSERT_EQ(areas.size(), 4u) << "a line that encloses nothing is no island";
    std::ranges::sort(areas);
    EXPECT_NEAR(areas[0], 16 * pi, 1e-3);
    EXPECT_NEAR(areas[1], 300, 1e-6) << "what hangs together is one island";
    EXPECT_NEAR(areas[2], 100 * pi, 1e-3);
    EXPECT_NEAR(areas[3], 5000, 1e-6);
    expectAreas(36, 25, {100 * pi, 16 * pi});
    expectAreas(30, 25, {16 * pi});
    expectAreas(78, 12, {75});
}

TEST_F(Boundary, ArcsEllipsesSplinesAndReferences) {
    run("CIRCLE 0,0 10\nLINE -20,0 20,0\n\n");
    expectAreas(0, 1, {50 * host::pi});
    expectAreas(0, -1, {50 * host::pi});
    run("ELLIPSE C\n100,0 120,0 10\n");
    expectAreas(100, 3, {200 * host::pi});
    run("LINE 100,-20 100,20\n\n");
    expectAreas(101, 3, {100 * host::pi});
    run("SPLINE 200,0 210,10 220,0 230,10\n\n\n\nLINE 200,0 200,30 230,30 230,10\n\n");
    ASSERT_EQ(at(205, 25).loops.size(), 1u);
    EXPECT_NEAR(areasAt(205, 25)[0], 30 * 30 - 150, 10);
    run("RECTANG 300,0 310,10\n-BLOCK BOX\n300,0 L\n\n-INSERT BOX\n400,0 2 3 0\n");
    expectAreas(405, 5, {600});
    run("-LAYER M\nHIDDEN\n\nLINE 405,-5 405,50\n\n-LAYER S\n0\nOFF\nHIDDEN\n\n");
    expectAreas(406, 5, {600});
}

TEST_F(Boundary, WhatIsDrawnTwiceOrTouchesCounts) {
    run("RECTANG 0,0 10,10\nRECTANG 0,0 10,10\nRECTANG 10,2 20,8\n");
    expectAreas(5, 5, {100});
    expectAreas(15, 5, {60});
    // A circle that touches the side from within.
    run("CIRCLE 5,5 5\n");
    expectAreas(5, 5, {25 * host::pi});
    expectAreas(0.5, 0.5, {25 - 25 * host::pi / 4});
    run("RECTANG 100,0 200,100\nARC 100,40 120,50 100,60\n");
    const double sector = 100 * 100;
    EXPECT_LT(areasAt(150, 50).at(0), sector);
    EXPECT_NEAR(areasAt(150, 50).at(0) + areasAt(105, 50).at(0), sector, 0.01);
}

TEST_F(Boundary, GapsAreFoundAndTold) {
    run("LINE 0,0 100,0\n\nLINE 100,0.5 100,50\n\nLINE 100,50 0,50\n\nLINE 0,50 0,0\n\nLINE 50,30 "
        "50,30.2\n\n");
    const host::TracedBoundary boundary = at(10, 10);
    EXPECT_TRUE(boundary.loops.empty());
    ASSERT_TRUE(boundary.gap.has_value());
    EXPECT_NEAR(boundary.gap->from.distanceTo(boundary.gap->to), 0.5, 1e-9);
    EXPECT_NEAR(boundary.gap->from.x, 100, 1e-9);
    run("-HATCH 10,10\n\n");
    EXPECT_TRUE(showed(L"之间有间隙，宽 0.5")) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(entities<AcDbHatch>().empty());
}

TEST_F(Boundary, FacesOfRandomLinesFillTheFrame) {
    std::mt19937 random(17);
    const auto number = [&] { return std::to_string(static_cast<double>(random() % 10000) / 100); };
    for (int round = 0; round < 5; ++round) {
        run("ERASE ALL\n\nRECTANG 0,0 100,100\n");
        for (int line = 0; line < 7; ++line) {
            run("LINE -1," + number() + " 101," + number() + "\n\nLINE " + number() + ",-1 " + number() +
                ",101\n\n");
        }
        std::map<long, double> faces; // by area, which tells them apart
        double sum = 0.0;
        for (int sample = 0; sample < 1500; ++sample) {
            const double x = static_cast<double>(random() % 100000) / 1000;
            const double y = static_cast<double>(random() % 100000) / 1000;
            const std::vector<double> areas = areasAt(x, y);
            ASSERT_EQ(areas.size(), 1u) << x << "," << y;
            if (faces.emplace(std::lround(areas[0] * 1e5), areas[0]).second) {
                sum += areas[0];
            }
        }
        EXPECT_GT(sum, 9900);
        EXPECT_LT(sum, 10000.01);
    }
}

TEST_F(Boundary, AWideRiverOfManyVertices) {
    constexpr int count = 10000;
    const auto bank = [](double shift) {
        auto line = std::make_unique<AcDbPolyline>();
        for (int i = 0; i < count; ++i) {
            line->addVertexAt(static_cast<unsigned>(i),
                              {i * 0.1, shift + 3 * std::sin(i * 0.013) + 0.05 * (i % 3)});
        }
        return line;
    };
    host::appendTo(database().currentSpaceId(), bank(0));
    host::appendTo(database().currentSpaceId(), bank(20));
    run("LINE 0,0 0,20\n\nLINE " + std::to_string((count - 1) * 0.1) + ",-50 " +
        std::to_string((count - 1) * 0.1) + ",80\n\nCIRCLE 400,10 3\n");
    const host::TracedBoundary boundary = at(100, 10);
    ASSERT_EQ(boundary.loops.size(), 2u);
    EXPECT_EQ(boundary.loops[0].pieces.size(), 2 * (count - 1) + 2u);
    EXPECT_NEAR(areaOf(boundary.loops[0]), 20 * (count - 1) * 0.1, 1e-3);
}

TEST_F(Boundary, AHatchKeepsItsScaleAndItsLoops) {
    run("RECTANG 0,0 100,50\nCIRCLE 30,25 10\nELLIPSE C\n70,25 80,25 5\n-HATCH P\nU\n45\n3\nN\n5,5\n\n");
    const std::vector<AcDbHatch*> hatches = entities<AcDbHatch>();
    ASSERT_EQ(hatches.size(), 1u) << host::toUtf8(transcript.shown);
    EXPECT_EQ(Read(hatches[0])->numLoops(), 3);
    EXPECT_EQ(Read(hatches[0])->patternSpace(), 3.0);
    double area = 0.0;
    EXPECT_EQ(Read(hatches[0])->getArea(area), Acad::eOk);
    EXPECT_NEAR(area, 5000 - 100 * host::pi - 50 * host::pi, 0.1);
}

} // namespace
