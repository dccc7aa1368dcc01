// Fitted polylines: arcs and splines over the vertices of 2D and 3D polylines.
#include "entitysamples.h"

#include <cmath>

using namespace testing_entities;

namespace {

class FitTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
};

double lengthOf(const AcDbCurve& curve) {
    double end = 0.0, length = 0.0;
    EXPECT_EQ(curve.getEndParam(end), Acad::eOk);
    EXPECT_EQ(curve.getDistAtParam(end, length), Acad::eOk);
    return length;
}

std::vector<int> flagsOf(const AcDb2dPolyline& polyline) {
    std::vector<int> flags;
    for (const std::unique_ptr<AcDbObjectIterator> at(polyline.vertexIterator()); !at->done(); at->step()) {
        const auto* vertex = at->entity() != nullptr ? AcDb2dVertex::cast(at->entity())
                                                     : host::peek<AcDb2dVertex>(at->objectId());
        flags.push_back(vertex->data().flags);
    }
    return flags;
}

TEST_F(FitTest, PolylinesAreFittedAndStraightened) {
    Drawing drawing;
    for (const bool resident : {false, true}) {
        const AcGePoint3dArray points{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {-5, 20, 0}};
        auto* polyline = new AcDb2dPolyline(AcDb::k2dSimplePoly, points, 2, false, 1, 2);
        std::unique_ptr<AcDb2dPolyline> owner(polyline);
        AcDbObjectId id;
        if (resident) {
            id = drawing.append(owner.release());
        }
        const host::Opened<AcDb2dPolyline> opened(id, AcDb::kForWrite);
        ASSERT_EQ(polyline->curveFit(), Acad::eOk);
        EXPECT_EQ(polyline->polyType(), AcDb::k2dFitCurvePoly);
        EXPECT_EQ(flagsOf(*polyline), (std::vector<int>{0, 1, 0, 1, 0, 1, 0, 1, 0}));
        double parameter = 0.0, width = 0.0;
        for (const AcGePoint3d& point : points) {
            EXPECT_EQ(polyline->getParamAtPoint({point.x, point.y, 2}, parameter), Acad::eOk);
        }
        ASSERT_EQ(polyline->splineFit(AcDb::k2dCubicSplinePoly, 8), Acad::eOk);
        const std::vector<int> flags = flagsOf(*polyline);
        EXPECT_EQ(std::count(flags.begin(), flags.end(), 16), 5);
        EXPECT_EQ(std::count(flags.begin(), flags.end(), 8), 4 * 8 + 1);
        EXPECT_EQ(flags.size(), 38u);
        AcGePoint3d end;
        polyline->getEndPoint(end);
        EXPECT_EQ(end, AcGePoint3d(-5, 20, 2));
        EXPECT_EQ(polyline->constantWidth(width), Acad::eInvalidInput);
        // Its grips are those of the frame, and it follows them.
        AcGePoint3dArray grips;
        AcDbIntArray modes, ids;
        polyline->getGripPoints(grips, modes, ids);
        EXPECT_EQ(grips.length(), 5);
        ASSERT_EQ(polyline->moveGripPointsAt({4}, {0, 5, 0}), Acad::eOk);
        polyline->getEndPoint(end);
        EXPECT_EQ(end, AcGePoint3d(-5, 25, 2));
        EXPECT_EQ(flagsOf(*polyline).size(), 38u);
        ASSERT_EQ(polyline->convertToPolyType(AcDb::k2dQuadSplinePoly), Acad::eOk);
        EXPECT_EQ(flagsOf(*polyline).size(), 5u + 4 * 8 + 1);
        const double length = lengthOf(*polyline);
        ASSERT_EQ(polyline->reverseCurve(), Acad::eOk);
        polyline->getStartPoint(end);
        EXPECT_EQ(end, AcGePoint3d(-5, 25, 2));
        EXPECT_NEAR(lengthOf(*polyline), length, 1e-9);
        ASSERT_EQ(polyline->splineFit(AcDb::k2dQuadSplinePoly, -8), Acad::eOk);
        EXPECT_LT(std::fabs(lengthOf(*polyline) - length), 0.05);
        ASSERT_EQ(polyline->straighten(), Acad::eOk);
        EXPECT_EQ(flagsOf(*polyline), std::vector<int>(5, 0));
        EXPECT_EQ(polyline->polyType(), AcDb::k2dSimplePoly);
    }
}

TEST_F(FitTest, DrawingsSayHowSplinesAreFitted) {
    Drawing drawing;
    const auto set = [&](const char* name, Adesk::Int16 value) {
        ASSERT_EQ(drawing.database.setVariable(*host::findHeaderVariable(name), value), Acad::eOk);
    };
    set("SPLINETYPE", 5);
    set("SPLINESEGS", 3);
    auto* polyline =
        new AcDb3dPolyline(AcDb::k3dSimplePoly, {{0, 0, 0}, {10, 0, 4}, {12, 7, -3}, {3, 9, 1}}, true);
    const AcDbObjectId id = drawing.append(polyline);
    const host::Opened<AcDb3dPolyline> opened(id, AcDb::kForWrite);
    ASSERT_EQ(polyline->splineFit(), Acad::eOk);
    EXPECT_EQ(polyline->polyType(), AcDb::k3dQuadSplinePoly);
    std::vector<host::CurvePiece> pieces;
    polyline->curvePieces(pieces);
    EXPECT_EQ(pieces.size(), 12u);
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    polyline->getGripPoints(grips, modes, ids);
    EXPECT_EQ(grips.length(), 4);
    ASSERT_EQ(polyline->moveGripPointsAt({0}, {1, 1, 1}), Acad::eOk);
    pieces.clear();
    polyline->curvePieces(pieces);
    EXPECT_EQ(pieces.size(), 12u);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(polyline->explode(parts), Acad::eOk);
    EXPECT_EQ(parts.length(), 12);
    for (void* part : parts) {
        delete static_cast<AcDbEntity*>(part);
    }
    ASSERT_EQ(polyline->straighten(), Acad::eOk);
    pieces.clear();
    polyline->curvePieces(pieces);
    EXPECT_EQ(pieces.size(), 4u);
    EXPECT_EQ(AcDb3dPolyline(AcDb::k3dSimplePoly, AcGePoint3dArray{{0, 0, 0}}).splineFit(),
              Acad::eDegenerateGeometry);
}

} // namespace
