// The parts of a river apart from its command: banks from lines, distances inside, the arrow.
#include "drawing/river.h"
#include "tests/module/sessionfixture.h"

#include <cmath>

namespace {

class RiverTest : public SessionTest {
protected:
    static std::vector<std::unique_ptr<AcDbEntity>> lines(std::initializer_list<std::array<double, 4>> ends) {
        std::vector<std::unique_ptr<AcDbEntity>> made;
        for (const std::array<double, 4>& e : ends) {
            made.push_back(
                std::make_unique<AcDbLine>(AcGePoint3d(e[0], e[1], 0), AcGePoint3d(e[2], e[3], 0)));
        }
        return made;
    }
    static std::vector<AcGePoint2d> verticesOf(const AcDbPolyline& polyline) {
        std::vector<AcGePoint2d> points(polyline.numVerts());
        for (unsigned i = 0; i < polyline.numVerts(); ++i) {
            polyline.getPointAt(i, points[i]);
        }
        return points;
    }
};

} // namespace

TEST_F(RiverTest, LinesOfTwoBanksAreJoinedInTheirOrder) {
    std::vector<std::unique_ptr<AcDbEntity>> pieces = lines(
        {{0, 0, 10, 0}, {0, 5, 10, 5}, {10, 0, 20, 10}, {10, 5, 18, 12}, {20, 10, 20, 30}, {18, 12, 18, 30}});
    pieces.push_back(std::make_unique<AcDbCircle>(AcGePoint3d(), AcGeVector3d::kZAxis, 1.0));
    const river::Polylines banks = river::JoinLines(river::LinesOf(pieces));
    ASSERT_EQ(banks.size(), 2U);
    EXPECT_EQ(verticesOf(*banks[0]), (std::vector<AcGePoint2d>{{0, 0}, {10, 0}, {20, 10}, {20, 30}}));
    EXPECT_EQ(verticesOf(*banks[1]), (std::vector<AcGePoint2d>{{0, 5}, {10, 5}, {18, 12}, {18, 30}}));
    // Lines that only meet at their starts stay apart; others are turned round or put in front.
    EXPECT_EQ(river::JoinLines(river::LinesOf(lines({{0, 0, 10, 0}, {0, 0, 0, 10}}))).size(), 2U);
    const river::Polylines turned =
        river::JoinLines(river::LinesOf(lines({{0, 0, 10, 0}, {20, 0, 10, 0}, {-5, 0, 0, 0}})));
    ASSERT_EQ(turned.size(), 1U);
    EXPECT_EQ(turned[0]->numVerts(), 4U);
    EXPECT_TRUE(river::JoinLines({}).empty());
}

TEST_F(RiverTest, InnerLinesStandFiveApartInTheMiddle) {
    using Distances = std::vector<double>;
    const struct {
        double width;
        Distances distances;
    } cases[] = {{7, {3.5, 7}}, {23, {6.5, 11.5, 16.5, 23}}, {5, {2.5, 5}}, {2, {1, 2}},
                 {10, {5, 10}}, {9.99999, {5.0, 9.99999}},   {14, {7, 14}}, {15, {5, 10, 15}}};
    for (const auto& c : cases) {
        const Distances distances = river::InnerLineDistances(c.width);
        ASSERT_EQ(distances.size(), c.distances.size()) << c.width;
        for (std::size_t i = 0; i < distances.size(); ++i) {
            EXPECT_NEAR(distances[i], c.distances[i], 1e-4) << c.width;
        }
    }
}

TEST_F(RiverTest, TheArrowPointsAlongX) {
    const auto arrow = river::NewFlowArrow();
    EXPECT_TRUE(arrow[0]->startPoint().isEqualTo({0, 0, 0}));
    for (const auto& line : arrow) {
        EXPECT_TRUE(line->endPoint().isEqualTo({20, 0, 0}));
    }
    EXPECT_TRUE(arrow[1]->startPoint().isEqualTo({16.5, 2, 0}));
    EXPECT_TRUE(arrow[2]->startPoint().isEqualTo({16.5, -2, 0}));
}

TEST_F(RiverTest, DecorationsStandWhereTheWidthSays) {
    const auto banksOf = [&](double width) {
        CreateNewLayer(river::layerName, L"CONTINUOUS", river::layerColor);
        return river::LeaveBanks(river::JoinLines(river::LinesOf(lines({{0, 0, 50, 0},
                                                                        {50, 0, 100, 0},
                                                                        {100, 0, 150, 0},
                                                                        {0, -width, 50, -width},
                                                                        {50, -width, 100, -width},
                                                                        {100, -width, 150, -width}}))));
    };
    river::Banks banks = banksOf(23);
    ASSERT_TRUE(banks.AreThere());
    river::Decorate(banks, river::Style::dashedLines, 23);
    // All that is left runs parallel to the first bank.
    std::vector<std::pair<double, AcString>> levels;
    AcDbBlockTableRecordIterator* started = nullptr;
    const CArxObjTemplate<AcDbBlockTableRecord> space(database().modelSpaceId(), false);
    ASSERT_EQ(space->newIterator(started), Acad::eOk);
    for (const std::unique_ptr<AcDbBlockTableRecordIterator> it(started); !it->done(); it->step()) {
        AcDbObjectId id;
        it->getEntityId(id);
        const CArxObjTemplate<AcDbCurve> curve(id, false);
        AcGePoint3d start;
        ASSERT_TRUE(curve);
        curve->getStartPoint(start);
        ACHAR* linetype = curve->linetype();
        levels.emplace_back(start.y, linetype);
        acutDelString(linetype);
    }
    std::ranges::sort(levels, [](const auto& a, const auto& b) { return a.first > b.first; });
    ASSERT_EQ(levels.size(), 5U);
    const double expected[] = {0, -6.5, -11.5, -16.5, -23};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        EXPECT_NEAR(levels[i].first, expected[i], 1e-6);
        EXPECT_EQ(levels[i].second == L"HIDDEN", i > 0 && i < 4) << i;
    }
}

TEST_F(RiverTest, AHatchFillsTheBendsAndNothingElse) {
    CreateNewLayer(river::layerName, L"CONTINUOUS", river::layerColor);
    // One bank is the other one moved.
    const river::Banks banks = river::LeaveBanks(river::JoinLines(
        river::LinesOf(lines({{0, 0, 50, 30}, {50, 30, 100, 0}, {0, -20, 50, 10}, {50, 10, 100, -20}}))));
    ASSERT_TRUE(banks.AreThere());
    river::Decorate(banks, river::Style::hatch, 20);
    AcDbBlockTableRecordIterator* started = nullptr;
    const CArxObjTemplate<AcDbBlockTableRecord> space(database().modelSpaceId(), false);
    ASSERT_EQ(space->newIterator(started), Acad::eOk);
    int hatches = 0;
    for (const std::unique_ptr<AcDbBlockTableRecordIterator> it(started); !it->done(); it->step()) {
        AcDbObjectId id;
        it->getEntityId(id);
        const CArxObjTemplate<AcDbHatch> hatch(id, false);
        if (hatch) {
            ++hatches;
            double area = 0.0;
            EXPECT_EQ(hatch->getArea(area), Acad::eOk);
            EXPECT_NEAR(area, 2000, 1e-6);
            EXPECT_EQ(hatch->patternScale(), 15.0);
            EXPECT_STREQ(hatch->patternName().constPtr(), L"HL1");
        }
    }
    EXPECT_EQ(hatches, 1);
}
