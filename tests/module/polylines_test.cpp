// Joining of polylines, and curves turned into polylines.
#include "restools/entpicks.h"
#include "services/curvetopolyline.h"
#include "services/linktwopolyline.h"
#include "tests/module/sessionfixture.h"

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

struct Vertex {
    AcGePoint2d point;
    double bulge = 0.0;
};

std::unique_ptr<AcDbPolyline> newPolyline(const std::vector<Vertex>& vertices) {
    auto polyline = std::make_unique<AcDbPolyline>();
    for (const Vertex& vertex : vertices) {
        polyline->addVertexAt(polyline->numVerts(), vertex.point, vertex.bulge);
    }
    return polyline;
}

std::vector<AcGePoint2d> pointsOf(const AcDbPolyline& polyline) {
    std::vector<AcGePoint2d> points(polyline.numVerts());
    for (unsigned i = 0; i < polyline.numVerts(); ++i) {
        polyline.getPointAt(i, points[i]);
    }
    return points;
}

double lengthOf(const AcDbCurve& curve) {
    double end = 0.0;
    double length = 0.0;
    curve.getEndParam(end);
    curve.getDistAtParam(end, length);
    return length;
}

class Linking : public SessionTest {};
class Conversion : public SessionTest {
protected:
    /// The polyline that a curve in the drawing becomes, or the curve itself.
    static AcDbObjectId convert(AcDbEntity* curve, double width, AcArray<AcDbObjectId>& ellipses) {
        AcDbObjectId id;
        AppendEnt(curve, id);
        CArxEntity entity(id, true);
        MultiplePEDIT(ellipses, entity, width);
        entity.Close();
        ads_name last;
        acdbEntLast(last);
        acdbGetObjectId(id, last);
        return id;
    }
    static AcDbObjectId convert(AcDbEntity* curve, double width) {
        AcArray<AcDbObjectId> ellipses;
        return convert(curve, width, ellipses);
    }
};

} // namespace

TEST_F(Linking, EndsThatTouchDecideTheOrder) {
    const struct {
        std::vector<Vertex> first, second;
        int how, result;
        std::vector<AcGePoint2d> joined;
    } cases[] = {
        {{{{0, 0}}, {{10, 0}}}, {{{10, 0}}, {{10, 5}}}, 3, 1, {{0, 0}, {10, 0}, {10, 5}}},
        {{{{0, 0}}, {{10, 0}}}, {{{10, 5}}, {{10, 0}}}, 2, 1, {{0, 0}, {10, 0}, {10, 5}}},
        {{{{0, 0}}, {{10, 0}}}, {{{0, 0}}, {{0, 5}}}, 0, 0, {{0, 5}, {0, 0}, {10, 0}}},
        {{{{0, 0}}, {{10, 0}}}, {{{0, 5}}, {{0, 0}}}, 1, 1, {{0, 5}, {0, 0}, {10, 0}}},
        {{{{0, 0}}, {{10, 0}}}, {{{10, 1}}, {{10, 5}}}, -1, 0, {{7, 7}}},
        // A loop, both ways.
        {{{{0, 0}}, {{5, 5}}, {{10, 0}}}, {{{10, 0}}, {{0, 0}}}, 1, 1, {{10, 0}, {0, 0}, {5, 5}, {10, 0}}},
        {{{{0, 0}}, {{5, 5}}, {{10, 0}}}, {{{0, 0}}, {{10, 0}}}, 2, 1, {{0, 0}, {5, 5}, {10, 0}, {0, 0}}},
    };
    for (const auto& c : cases) {
        const std::unique_ptr<AcDbPolyline> result = newPolyline({{{7, 7}}});
        int how = 99;
        EXPECT_EQ(LinkTwoPolyline(*result, *newPolyline(c.first), *newPolyline(c.second), how), c.result);
        EXPECT_EQ(how, c.how);
        EXPECT_EQ(pointsOf(*result), c.joined) << "kind " << c.how;
    }
}

TEST_F(Linking, ShapesOfRandomLinesAreKept) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-100.0, 100.0);
    std::uniform_real_distribution<double> bend(-1.0, 1.0);
    const AcGePoint2d meeting(0.0, 0.0);
    for (int round = 0; round < 5000; ++round) {
        // Both lines end or begin where they meet, by the kind of join; with the last kind they do not meet.
        const int kind = round % 5 == 4 ? -1 : round % 5;
        const auto line = [&](bool beginsThere) {
            std::vector<Vertex> vertices(2 + random() % 5);
            for (Vertex& vertex : vertices) {
                vertex = {{place(random), place(random)}, bend(random)};
            }
            (beginsThere ? vertices.front() : vertices.back()).point = meeting;
            vertices.back().bulge = 0.0;
            return newPolyline(vertices);
        };
        const std::unique_ptr<AcDbPolyline> first = line(kind == 0 || kind == 1);
        const std::unique_ptr<AcDbPolyline> second = line(kind == 0 || kind == 3);
        if (kind == -1) {
            second->transformBy(AcGeMatrix3d::translation({1e-3, 0, 0}));
        }
        AcDbPolyline result;
        int how = 99;
        EXPECT_EQ(LinkTwoPolyline(result, *first, *second, how), kind > 0 ? 1 : 0);
        ASSERT_EQ(how, kind);
        if (kind == -1) {
            EXPECT_EQ(result.numVerts(), 0U);
            continue;
        }
        EXPECT_EQ(result.numVerts(), first->numVerts() + second->numVerts() - 1);
        EXPECT_NEAR(lengthOf(result), lengthOf(*first) + lengthOf(*second), 1e-6);
        // Points of the parts lie on the whole.
        for (const AcDbPolyline* part : {first.get(), second.get()}) {
            for (double share : {0.13, 0.5, 0.77}) {
                AcGePoint3d point;
                AcGePoint3d closest;
                ASSERT_EQ(part->getPointAtDist(share * lengthOf(*part), point), Acad::eOk);
                result.getClosestPointTo(point, closest);
                EXPECT_LT(point.distanceTo(closest), 1e-6);
            }
        }
    }
}

TEST_F(Conversion, CurvesBecomePolylinesOfOneWidth) {
    const double half = std::tan(std::numbers::pi / 4.0);
    const struct {
        AcDbEntity* curve;
        std::vector<AcGePoint2d> points;
        double bulge;
        bool isClosed;
    } cases[] = {
        {new AcDbLine({1, 2, 3}, {4, 5, 6}), {{1, 2}, {4, 5}}, 0.0, false},
        {new AcDbCircle({5, 5, 0}, AcGeVector3d::kZAxis, 2.0), {{3, 5}, {7, 5}}, half, true},
        {new AcDbArc({0, 0, 0}, 1.0, 1.5 * std::numbers::pi, 0.0),
         {{0, -1}, {1, 0}},
         std::tan(std::numbers::pi / 8),
         false},
    };
    for (const auto& c : cases) {
        c.curve->setColorIndex(3);
        const CArxObjTemplate<AcDbPolyline> polyline(convert(c.curve, 0.7), false);
        ASSERT_TRUE(polyline);
        const std::vector<AcGePoint2d> points = pointsOf(*polyline);
        ASSERT_EQ(points.size(), c.points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_TRUE(points[i].isEqualTo(c.points[i]));
        }
        double bulge = 0.0;
        polyline->getBulgeAt(0, bulge);
        EXPECT_NEAR(bulge, c.bulge, 1e-12);
        double width = 0.0;
        polyline->getConstantWidth(width);
        EXPECT_EQ(width, 0.7);
        EXPECT_EQ(polyline->isClosed(), c.isClosed);
        EXPECT_EQ(polyline->colorIndex(), 3);
    }
    // Polylines stay what they are and only take the width.
    AcDbPolyline* light = newPolyline({{{0, 0}}, {{5, 0}}}).release();
    AcDbObjectId id;
    AppendEnt(light, id);
    CArxEntity entity(id, true);
    AcArray<AcDbObjectId> ellipses;
    MultiplePEDIT(ellipses, entity, 1.25);
    double width = 0.0;
    entity.As<AcDbPolyline>()->getConstantWidth(width);
    EXPECT_EQ(width, 1.25);
    EXPECT_TRUE(ellipses.isEmpty());
}

TEST_F(Conversion, EllipsesAreSteppedByTheirAngle) {
    AcArray<AcDbObjectId> ellipses;
    const AcGeVector3d major(20, 0, 0);
    const CArxObjTemplate<AcDbPolyline> whole(
        convert(new AcDbEllipse({5, 5, 0}, AcGeVector3d::kZAxis, major, 0.5), 0.4, ellipses), false);
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->numVerts(), 73U);
    EXPECT_TRUE(whole->isClosed());
    ASSERT_EQ(ellipses.length(), 1);
    EXPECT_EQ(ellipses[0], whole->objectId());
    for (unsigned i = 0; i < whole->numVerts(); ++i) {
        AcGePoint2d vertex;
        whole->getPointAt(i, vertex);
        const double x = (vertex.x - 5.0) / 20.0;
        const double y = (vertex.y - 5.0) / 10.0;
        EXPECT_NEAR(x * x + y * y, 1.0, 1e-9);
        const double angle = std::atan2(vertex.y - 5.0, vertex.x - 5.0);
        EXPECT_NEAR(std::remainder(angle - i * 5.0 * std::numbers::pi / 180.0, 2.0 * std::numbers::pi), 0.0,
                    1e-9);
    }
    const double degrees = std::numbers::pi / 180.0;
    const CArxObjTemplate<AcDbPolyline> arc(
        convert(new AcDbEllipse({0, 0, 0}, AcGeVector3d::kZAxis, AcGeVector3d(10, 0, 0), 1.0, 350 * degrees,
                                380 * degrees),
                0.4, ellipses),
        false);
    ASSERT_TRUE(arc);
    EXPECT_EQ(arc->numVerts(), 7U);
    // Without a width ellipses stay.
    const CArxEntity kept(
        convert(new AcDbEllipse({0, 0, 0}, AcGeVector3d::kZAxis, major, 0.5), 0.0, ellipses), false);
    EXPECT_NE(kept.As<AcDbEllipse>(), nullptr);
    EXPECT_EQ(ellipses.length(), 2);
}
