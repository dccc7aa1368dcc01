// Making block polylines of other curves.
#include "entities/blockpline.h"
#include "tests/module/sessionfixture.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double degrees = std::numbers::pi / 180.0;

struct Shape {
    std::wstring source;
    bool isClosed = false;
    std::vector<AcGePoint2d> points;
    std::vector<double> bulges;
};

Shape shapeOf(const CQDVBlockPline& polyline) {
    Shape shape{polyline.sourceClassName().constPtr(), polyline.isClosed(), {}, {}};
    for (unsigned i = 0; i < polyline.numVerts(); ++i) {
        AcGePoint2d point;
        double bulge = 0.0;
        polyline.getPointAt(i, point);
        polyline.getBulgeAt(i, bulge);
        shape.points.push_back(point);
        shape.bulges.push_back(bulge);
    }
    return shape;
}

void expectShape(const Shape& shape, const Shape& expected) {
    EXPECT_EQ(shape.source, expected.source);
    EXPECT_EQ(shape.isClosed, expected.isClosed);
    EXPECT_EQ(shape.bulges, expected.bulges);
    ASSERT_EQ(shape.points.size(), expected.points.size());
    for (std::size_t i = 0; i < shape.points.size(); ++i) {
        EXPECT_TRUE(shape.points[i].isEqualTo(expected.points[i]))
            << i << ": " << shape.points[i].x << ',' << shape.points[i].y;
    }
}

/// A curve, and what becomes of it.
struct Case {
    std::unique_ptr<AcDbEntity> curve;
    Shape shape;
};

AcDbPolyline* newLightPolyline() {
    auto* light = new AcDbPolyline;
    light->addVertexAt(0, {0, 0}, 0.5, 1.0, 2.0);
    light->addVertexAt(1, {10, 0}, 0.0, 2.0, 0.0);
    light->addVertexAt(2, {10, 10});
    light->setClosed(true);
    return light;
}

AcDb2dPolyline* newHeavyPolyline() {
    const std::unique_ptr<AcDbPolyline> light(newLightPolyline());
    AcDb2dPolyline* heavy = nullptr;
    EXPECT_EQ(light->convertTo(heavy, false), Acad::eOk);
    return heavy;
}

std::vector<Case> cases() {
    const double half = std::tan(std::numbers::pi / 4.0);
    const Shape polygon{L"", true, {{0, 0}, {10, 0}, {10, 10}}, {0.5, 0.0, 0.0}};
    std::vector<Case> made;
    const auto add = [&](AcDbEntity* curve, const wchar_t* source, Shape shape) {
        shape.source = source;
        made.push_back({std::unique_ptr<AcDbEntity>(curve), std::move(shape)});
    };
    add(new AcDbLine({0, 0, 3}, {10, 0, 4}), L"AcDbLine", {L"", false, {{0, 0}, {10, 0}}, {0.0, 0.0}});
    add(new AcDbCircle({5, 5, 0}, AcGeVector3d::kZAxis, 2.0), L"AcDbCircle",
        {L"", true, {{3, 5}, {7, 5}}, {half, half}});
    const auto onCircle = [](double angle) {
        return AcGePoint2d(std::cos(angle * degrees), std::sin(angle * degrees));
    };
    add(new AcDbArc({0, 0, 0}, 1.0, 350.0 * degrees, 10.0 * degrees), L"AcDbArc",
        {L"",
         false,
         {onCircle(350.0), onCircle(10.0)},
         {std::tan((10.0 * degrees + 2.0 * std::numbers::pi - 350.0 * degrees) * 0.25), 0.0}});
    add(newHeavyPolyline(), L"AcDb2dPolyline", polygon);
    add(newLightPolyline(), L"AcDbPolyline", polygon);
    return made;
}

class BlockPlineTest : public SessionTest {
protected:
    static AcDbObjectId add(AcDbEntity* entity) {
        CreateNewLayer(L"测试", L"CONTINUOUS", 3, &database());
        entity->setLayer(L"测试");
        AcDbObjectId id;
        EXPECT_EQ(AppendEnt(entity, id, &database()), Acad::eOk);
        return id;
    }
    static AcDbObjectId lastEntity() {
        ads_name name;
        AcDbObjectId id;
        EXPECT_EQ(acdbEntLast(name), RTNORM);
        EXPECT_EQ(acdbGetObjectId(id, name), Acad::eOk);
        return id;
    }
};

} // namespace

TEST_F(BlockPlineTest, CopiesHaveTheShapeOfTheirSource) {
    EXPECT_EQ(std::tan(std::numbers::pi / 4.0), 0.9999999999999999); // not 1
    for (Case& c : cases()) {
        const AcDbObjectId id = add(c.curve.release());
        const CArxEntity source(id, false);
        const std::unique_ptr<CQDVBlockPline> copy(QDVB_CopyFrom(source.Get()));
        ASSERT_NE(copy, nullptr) << host::toUtf8(c.shape.source);
        expectShape(shapeOf(*copy), c.shape);
        EXPECT_EQ(copy->layerId(), source->layerId());
        EXPECT_TRUE(copy->objectId().isNull());
        EXPECT_EQ(QDVB_CopyFrom(copy.get()), nullptr);
    }
    const AcDbPoint point({1, 2, 3});
    const std::unique_ptr<CQDVBlockPline> empty(QDVB_CopyFrom(&point));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->numVerts(), 0U);
    EXPECT_EQ(QDVB_CopyFrom(nullptr), nullptr);
}

TEST_F(BlockPlineTest, WidthsOfPolylinesAreKept) {
    const std::unique_ptr<AcDbPolyline> light(newLightPolyline());
    const std::unique_ptr<CQDVBlockPline> copy(QDVB_CopyFrom(light.get()));
    double start = 0.0;
    double end = 0.0;
    copy->getWidthsAt(0, start, end);
    EXPECT_EQ(start, 1.0);
    EXPECT_EQ(end, 2.0);
}

TEST_F(BlockPlineTest, PolylinesKeepTheirHandleOthersGetANewOne) {
    for (Case& c : cases()) {
        const bool keepsHandle =
            c.curve->isKindOf(AcDbPolyline::desc()) || c.curve->isKindOf(AcDb2dPolyline::desc());
        if (keepsHandle) {
            c.shape.source = L"AcDb2dPolyline"; // light ones come this way too
        }
        const AcDbObjectId before = add(c.curve.release());
        CArxEntity entity(before, true);
        QDVB_ConvertOneEnt(entity);
        entity.Close();
        const AcDbObjectId after = lastEntity();
        EXPECT_EQ(after == before, keepsHandle) << host::toUtf8(c.shape.source);
        EXPECT_EQ(before.isErased(), !keepsHandle);
        const CArxObjTemplate<CQDVBlockPline> converted(after, false);
        ASSERT_TRUE(converted) << host::toUtf8(c.shape.source);
        expectShape(shapeOf(*converted), c.shape);
        AcString layer;
        converted->layer(layer);
        EXPECT_EQ(layer, L"测试");
        EXPECT_EQ(converted->ownerId(), database().modelSpaceId());
    }
}

TEST_F(BlockPlineTest, ConversionLeavesAloneWhatItDoesNotKnow) {
    const AcDbObjectId polyline = add(QDVB_CreatePolyline());
    const AcDbObjectId point = add(new AcDbPoint({1, 2, 0}));
    for (const AcDbObjectId id : {polyline, point}) {
        CArxEntity entity(id, true);
        QDVB_ConvertOneEnt(entity);
        EXPECT_EQ(entity->objectId(), id);
        EXPECT_FALSE(entity->isErased());
    }
    EXPECT_EQ(lastEntity(), point);
    // In no database there is no owner to put the new entity into.
    CArxEntity loose(new AcDbLine({0, 0, 0}, {1, 0, 0}));
    QDVB_ConvertOneEnt(loose);
    EXPECT_NE(loose.As<AcDbLine>(), nullptr);
}

TEST_F(BlockPlineTest, GivenSpaceTakesTheConverted) {
    CArxEntity entity(add(new AcDbLine({0, 0, 0}, {1, 0, 0})), true);
    CArxObjTemplate<AcDbBlockTableRecord> space(database().paperSpaceId(), true);
    QDVB_ConvertOneEnt(entity, space);
    ASSERT_FALSE(space->entities().empty());
    const CArxObjTemplate<CQDVBlockPline> converted(AcDbObjectId(space->entities().back()), false);
    EXPECT_TRUE(converted);
}
