// The parts of a wall's picture, apart from the command; and the shared questions about curves.
#include "drawing/enclose.h"
#include "restools/curves.h"
#include "tests/module/sessionfixture.h"

#include <cmath>
#include <numbers>

namespace {

AcDbPolyline& addPoints(AcDbPolyline& polyline, std::initializer_list<AcGePoint2d> points) {
    for (const AcGePoint2d& point : points) {
        polyline.addVertexAt(polyline.numVerts(), point);
    }
    return polyline;
}

std::vector<AcGePoint2d> verticesOf(const AcDbPolyline& polyline) {
    std::vector<AcGePoint2d> points(polyline.numVerts());
    for (unsigned i = 0; i < polyline.numVerts(); ++i) {
        polyline.getPointAt(i, points[i]);
    }
    return points;
}

class EncloseTest : public SessionTest {};

} // namespace

TEST_F(EncloseTest, SideIsToldByTheNearestPieceOfTheCurve) {
    AcDbPolyline corner;
    addPoints(corner, {{0, 0}, {10, 0}, {10, 10}});
    const struct {
        AcGePoint3d point;
        bool isRight;
    } cases[] = {
        {{5, -1, 0}, true},  {{5, 1, 0}, false},  {{11, 5, 0}, true},  {{9, 5, 0}, false},
        {{5, 0, 0}, true}, // on the line
        {{-5, -1, 0}, true}, {{-5, 1, 0}, false}, {{11, 20, 0}, true}, {{9, 20, 0}, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsRightOfCurve(corner, c.point), c.isRight) << c.point.x << ',' << c.point.y;
    }
    AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 5.0);
    EXPECT_TRUE(IsRightOfCurve(circle, {8, 0, 0}));
    EXPECT_FALSE(IsRightOfCurve(circle, {2, 0, 0}));
    const AcDbPolyline empty;
    EXPECT_FALSE(IsRightOfCurve(empty, {0, 0, 0}));
}

TEST_F(EncloseTest, PlacesFollowTheCurveToItsEnd) {
    AcDbPolyline wall;
    addPoints(wall, {{35, 0}, {0, 0}});
    const std::vector<CurvePlacement> places = PlacementsAlongCurve(wall, 10.0);
    ASSERT_EQ(places.size(), 4U);
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_TRUE(places[i].position.isEqualTo({35.0 - 10.0 * static_cast<double>(i), 0, 0}));
        EXPECT_DOUBLE_EQ(places[i].rotation, std::numbers::pi);
    }
    // Rotation is the direction in all quarters.
    for (const double angle : {0.3, 2.0, 3.5, 5.5}) {
        AcDbPolyline line;
        addPoints(line, {{0, 0}, {std::cos(angle), std::sin(angle)}});
        EXPECT_NEAR(PlacementsAlongCurve(line, 2.0).at(0).rotation, angle, 1e-12);
    }
    // A place at the very end counts; around a corner distances go on.
    AcDbPolyline corner;
    addPoints(corner, {{0, 0}, {15, 0}, {15, 5}});
    EXPECT_EQ(PlacementsAlongCurve(corner, 10.0).size(), 3U);
    EXPECT_TRUE(PlacementsAlongCurve(corner, 10.0).back().position.isEqualTo({15, 5, 0}));
    EXPECT_TRUE(PlacementsAlongCurve(corner, 0.0).empty());
    EXPECT_TRUE(PlacementsAlongCurve(AcDbPolyline(), 1.0).empty());
}

TEST_F(EncloseTest, TicksPointFromTheWallToTheirSide) {
    const std::unique_ptr<CQDVBlockPline> tick = enclose::NewTick();
    EXPECT_EQ(verticesOf(*tick), (std::vector<AcGePoint2d>{{0, 1}, {0, 0}}));
    double width = 0.0;
    EXPECT_EQ(tick->getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.4);
    // The base point is one end of the tick; the other lies left of the wall's direction for R, right for L.
    EXPECT_STREQ(enclose::TickBlockName(true), L"$_围墙L");
    EXPECT_EQ(enclose::TickOrigin(true), AcGePoint3d(0, 1, 0));
    EXPECT_STREQ(enclose::TickBlockName(false), L"$_围墙R");
    EXPECT_EQ(enclose::TickOrigin(false), AcGePoint3d(0, 0, 0));
}

TEST_F(EncloseTest, SideLineStandsOneUnitOff) {
    AcDbPolyline wall;
    addPoints(wall, {{0, 0}, {20, 0}, {20, 20}});
    wall.setConstantWidth(0.4);
    const std::unique_ptr<CQDVBlockPline> right = enclose::NewSideLine(wall, true);
    const std::unique_ptr<CQDVBlockPline> left = enclose::NewSideLine(wall, false);
    ASSERT_TRUE(right && left);
    const std::vector<AcGePoint2d> outer = {{0, -1}, {21, -1}, {21, 20}};
    const std::vector<AcGePoint2d> inner = {{0, 1}, {19, 1}, {19, 20}};
    EXPECT_EQ(verticesOf(*right), outer);
    EXPECT_EQ(verticesOf(*left), inner);
    EXPECT_FALSE(right->hasWidth());
    EXPECT_EQ(enclose::NewSideLine(AcDbPolyline(), true), nullptr);
}

TEST_F(EncloseTest, FirstSegmentDecidesTheLength) {
    const struct {
        AcGePoint2d second;
        bool isLongEnough;
    } cases[] = {{{10, 0}, false}, {{10.01, 0}, true}, {{0, 0}, false}, {{6, 8}, false}, {{6, 8.1}, true}};
    for (const auto& c : cases) {
        AcDbPolyline wall;
        addPoints(wall, {{0, 0}, c.second, {500, 500}});
        EXPECT_EQ(enclose::IsLongEnough(wall), c.isLongEnough) << c.second.x << ',' << c.second.y;
    }
    AcDbPolyline point;
    EXPECT_FALSE(enclose::IsLongEnough(addPoints(point, {{0, 0}})));
}

TEST_F(EncloseTest, LockedLayerEndsTheWallWithAMessage) {
    type("-LAYER\nN\n$Enclose\nLO\n$Enclose\n\n");
    EXPECT_NE(type("V7_Enclose\n0,0\n20,0\n^C\n").find(L"***无法修改围墙，请检查图层 $Enclose!"),
              std::wstring::npos);
}
