// Blocks: extents of references, uneven scales, blocks that would hold themselves, drawing order.
#include "entitysamples.h"

#include <algorithm>
#include <cmath>

using namespace testing_entities;

namespace {

class BlocksTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }

    AcDbObjectId block(const wchar_t* name, const std::vector<AcDbEntity*>& entities) {
        const host::Opened<AcDbBlockTable> blocks(drawing.database.blockTableId(), AcDb::kForWrite);
        AcDbObjectId id;
        auto* record = new AcDbBlockTableRecord;
        record->setName(name);
        blocks->add(id, record);
        for (AcDbEntity* entity : entities) {
            EXPECT_EQ(record->appendAcDbEntity(entity), Acad::eOk);
            entity->close();
        }
        record->close();
        return id;
    }
    static AcDbBlockReference* reference(AcDbObjectId id, const AcGePoint3d& at = {},
                                         const AcGeScale3d& scale = {}, double rotation = 0) {
        auto* made = new AcDbBlockReference(at, id);
        made->setScaleFactors(scale);
        made->setRotation(rotation);
        return made;
    }
    static AcDbExtents extentsOf(const AcDbEntity& entity) {
        AcDbExtents box;
        const host::ReadAccess access(entity);
        EXPECT_EQ(entity.getGeomExtents(box), Acad::eOk);
        return box;
    }
    AcDbCircle* circle(double radius = 1) const {
        return new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, radius);
    }
    Drawing drawing;
};

TEST_F(BlocksTest, ExtentsAreTightUnderTurnsAndUnevenScales) {
    const AcDbObjectId round = block(L"ROUND", {circle()});
    const std::unique_ptr<AcDbBlockReference> turned(reference(round, {10, 0, 0}, {3, 1, 1}, 0.6));
    const AcDbExtents box = extentsOf(*turned);
    // Of an ellipse: the square root of the sums of squares of the half axes' parts.
    EXPECT_NEAR(box.maxPoint().x, 10 + std::hypot(3 * std::cos(0.6), std::sin(0.6)), 1e-9);
    EXPECT_NEAR(box.maxPoint().y, std::hypot(3 * std::sin(0.6), std::cos(0.6)), 1e-9);
    const AcDbObjectId outer = block(L"OUTER2", {reference(round, {1, 2, 0}, {2, 2, 2}, host::pi / 4)});
    const std::unique_ptr<AcDbBlockReference> nested(reference(outer, {}, {1, 4, 1}));
    EXPECT_NEAR(extentsOf(*nested).maxPoint().y, 4 * (2 + 2), 1e-9);
}

TEST_F(BlocksTest, MeasuredExtentsFollowEveryChange) {
    AcDbCircle* round = circle();
    const AcDbObjectId inner = block(L"IN", {round});
    const AcDbObjectId id = drawing.append(reference(block(L"OUT", {reference(inner)})));
    const auto width = [&] { return extentsOf(*host::peek<AcDbBlockReference>(id)).maxPoint().x; };
    EXPECT_NEAR(width(), 1, 1e-9);
    host::UndoLog& undo = drawing.database.undoLog();
    undo.beginCommand(L"EDIT");
    {
        const host::Opened<AcDbCircle> open(round->objectId(), AcDb::kForWrite);
        open->setRadius(5);
        EXPECT_NEAR(width(), 5, 1e-9);
        open->setRadius(6);
        EXPECT_NEAR(width(), 6, 1e-9);
    }
    undo.endCommand();
    undo.undo(1);
    EXPECT_NEAR(width(), 1, 1e-9);
    undo.beginCommand(L"ERASE");
    host::Opened<AcDbCircle>(round->objectId(), AcDb::kForWrite)->erase();
    undo.endCommand();
    AcDbExtents box;
    const auto* shown = host::peek<AcDbBlockReference>(id);
    const host::ReadAccess access(*shown);
    EXPECT_EQ(shown->getGeomExtents(box), Acad::eInvalidExtents);
    undo.undo(1);
    EXPECT_NEAR(width(), 1, 1e-9);
}

TEST_F(BlocksTest, ExplodingNestedUnevenReferencesIsTheDirectMap) {
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, {0, 0}, 0.7);
    polyline->addVertexAt(1, {4, 1});
    polyline->addVertexAt(2, {2, 5}, -0.4);
    polyline->setClosed(true);
    const AcDbObjectId inner = block(L"IN", {circle(2), polyline, new AcDbLine({-3, 0, 0}, {0, 7, 0})});
    const AcDbObjectId middle = block(L"MID", {reference(inner, {5, 1, 0}, {1, 2, 1}, 0.5)});
    const std::unique_ptr<AcDbBlockReference> outer(reference(middle, {1, -2, 0}, {3, 1, 1}, 0.3));
    const AcDbExtents expected = extentsOf(*outer);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(outer->explode(parts), Acad::eOk);
    AcDbExtents sum;
    double length = 0;
    int ellipses = 0;
    for (void* part : parts) {
        const std::unique_ptr<AcDbEntity> owned(static_cast<AcDbEntity*>(part));
        EXPECT_FALSE(owned->isKindOf(AcDbBlockReference::desc())) << "a sheared reference comes in parts";
        sum.addExt(extentsOf(*owned));
        ellipses += owned->isKindOf(AcDbEllipse::desc()) ? 1 : 0;
        if (const auto* line = AcDbLine::cast(owned.get())) {
            length = std::max(length, line->startPoint().distanceTo(line->endPoint()));
        }
    }
    EXPECT_EQ(ellipses, 3) << "the circle and two arcs of the polyline";
    const double slack = 1e-9;
    EXPECT_NEAR(sum.minPoint().x, expected.minPoint().x, slack);
    EXPECT_NEAR(sum.minPoint().y, expected.minPoint().y, slack);
    EXPECT_NEAR(sum.maxPoint().x, expected.maxPoint().x, slack);
    EXPECT_NEAR(sum.maxPoint().y, expected.maxPoint().y, slack);
    // The line is not chopped: it is the direct image of its ends.
    const auto* shown =
        host::peek<AcDbBlockReference>(AcDbObjectId(host::peek<AcDbBlockTableRecord>(middle)->entities()[0]));
    const host::ReadAccess access(*shown);
    const AcGeMatrix3d whole = outer->blockTransform() * shown->blockTransform();
    EXPECT_NEAR(length, (whole * AcGePoint3d(-3, 0, 0)).distanceTo(whole * AcGePoint3d(0, 7, 0)), 1e-9);
}

TEST_F(BlocksTest, ABlockCannotComeToHoldItself) {
    const AcDbObjectId a = block(L"A", {circle()});
    const AcDbObjectId b = block(L"B", {reference(a)});
    const AcDbObjectId c = block(L"C", {reference(b)});
    for (const AcDbObjectId shown : {a, b, c}) {
        const host::Opened<AcDbBlockTableRecord> open(a, AcDb::kForWrite);
        const std::unique_ptr<AcDbBlockReference> bad(reference(shown));
        EXPECT_EQ(open->appendAcDbEntity(bad.get()), Acad::eSelfReference);
        EXPECT_TRUE(bad->objectId().isNull());
        EXPECT_EQ(open->entities().size(), 1U);
    }
    const AcDbObjectId good = drawing.append(reference(c));
    EXPECT_TRUE(good.isValid());
    // A drawing whose model space shows "A" cannot become the block "A" here.
    AcDbDatabase other;
    {
        const host::Opened<AcDbBlockTable> blocks(other.blockTableId(), AcDb::kForWrite);
        AcDbObjectId id;
        auto* record = new AcDbBlockTableRecord;
        record->setName(L"A");
        blocks->add(id, record);
        record->close();
        const host::Opened<AcDbBlockTableRecord> space(other.modelSpaceId(), AcDb::kForWrite);
        auto* shown = new AcDbBlockReference({}, id);
        space->appendAcDbEntity(shown);
        shown->close();
    }
    AcDbObjectId made;
    EXPECT_EQ(drawing.database.insert(made, L"A", &other), Acad::eSelfReference);
    EXPECT_EQ(drawing.database.insert(made, L"FRESH", &other), Acad::eOk);
}

TEST_F(BlocksTest, ArraysOfBlocksCoverAllTheirPlaces) {
    const AcDbObjectId round = block(L"ROUND", {circle()});
    AcDbMInsertBlock array({0, 0, 0}, round, 3, 2, 10, 20);
    EXPECT_NEAR(extentsOf(array).maxPoint().x, 21, 1e-9);
    EXPECT_NEAR(extentsOf(array).maxPoint().y, 21, 1e-9);
    ASSERT_EQ(array.transformBy(AcGeMatrix3d::mirroring(AcGePlane({0, 0, 0}, AcGeVector3d::kXAxis))),
              Acad::eOk);
    EXPECT_NEAR(extentsOf(array).minPoint().x, -21, 1e-9);
    EXPECT_NEAR(extentsOf(array).maxPoint().y, 21, 1e-9);
    array.setColumns(32767);
    array.setRows(32767);
    EXPECT_NEAR(extentsOf(array).minPoint().x, -32766.0 * 10 - 1, 1e-6);
    AcDbVoidPtrArray parts;
    EXPECT_EQ(array.explode(parts), Acad::eCannotExplodeEntity);
}

TEST_F(BlocksTest, WhatComesBackBringsOnlyWhatWentWithIt) {
    const auto erase = [](AcDbObjectId id, bool erasing) {
        const host::Opened<AcDbObject> object(id, AcDb::kForWrite, true);
        EXPECT_EQ(object->erase(erasing), Acad::eOk);
    };
    host::UndoLog& undo = drawing.database.undoLog();
    const auto eraseAsStep = [&](AcDbObjectId id, bool erasing) {
        undo.beginCommand(L"ERASE");
        erase(id, erasing);
        undo.endCommand();
    };
    AcDbCircle* gone = circle(1);
    AcDbCircle* kept = circle(2);
    const AcDbObjectId name = block(L"KREIS", {gone, kept});
    const AcDbObjectId reference = drawing.append(this->reference(name));
    std::vector<AcDbObjectId> attributes(3);
    {
        const host::Opened<AcDbBlockReference> open(reference, AcDb::kForWrite);
        for (AcDbObjectId& id : attributes) {
            auto* attribute = new AcDbAttribute({0, 0, 0}, L"1", L"TAG");
            ASSERT_EQ(open->appendAttribute(id, attribute), Acad::eOk);
            attribute->close();
        }
    }
    eraseAsStep(attributes[1], true);
    eraseAsStep(gone->objectId(), true);
    for (const AcDbObjectId owner : {reference, name}) {
        eraseAsStep(owner, true);
        EXPECT_TRUE((owner == name ? kept->objectId() : attributes[0]).isErased());
        eraseAsStep(owner, false);
        EXPECT_FALSE(attributes[0].isErased() || attributes[2].isErased() || kept->isErased());
        EXPECT_TRUE(attributes[1].isErased() && gone->isErased());
    }
    // The same after steps were taken back that told a part otherwise.
    eraseAsStep(name, true);
    eraseAsStep(name, false);
    eraseAsStep(kept->objectId(), true);
    eraseAsStep(name, true);
    EXPECT_EQ(undo.undo(3), 3);
    EXPECT_TRUE(name.isErased() && kept->isErased());
    eraseAsStep(name, false);
    EXPECT_FALSE(kept->isErased());
    EXPECT_TRUE(gone->isErased());
}

TEST_F(BlocksTest, DrawingOrder) {
    AcDbObjectIdArray ids;
    for (int index = 0; index < 5; ++index) {
        ids.append(drawing.append(new AcDbLine({0, 0, 0}, {1.0 + index, 0, 0})));
    }
    const auto told = [&] {
        std::string text;
        for (AcDbStub* stub :
             host::drawOrder(*host::peek<AcDbBlockTableRecord>(drawing.database.modelSpaceId()))) {
            text += static_cast<char>('0' + ids.find(AcDbObjectId(stub)));
        }
        return text;
    };
    const auto pick = [&](std::initializer_list<int> which) {
        AcDbObjectIdArray some;
        for (const int index : which) {
            some.append(ids[index]);
        }
        return some;
    };
    EXPECT_EQ(told(), "01234");
    AcDbSortentsTable* table = nullptr;
    {
        const host::Opened<AcDbBlockTableRecord> space(drawing.database.modelSpaceId(), AcDb::kForWrite);
        EXPECT_EQ(space->getSortentsTable(table, AcDb::kForWrite), Acad::eKeyNotFound);
        ASSERT_EQ(space->getSortentsTable(table, AcDb::kForWrite, true), Acad::eOk);
    }
    EXPECT_EQ(table->moveToTop(pick({1, 0})), Acad::eOk);
    EXPECT_EQ(told(), "23401");
    EXPECT_EQ(table->moveToBottom(pick({4})), Acad::eOk);
    EXPECT_EQ(told(), "42301");
    EXPECT_EQ(table->moveAbove(pick({4, 3}), ids[0]), Acad::eOk);
    EXPECT_EQ(told(), "20431");
    EXPECT_EQ(table->moveBelow(pick({1}), ids[2]), Acad::eOk);
    EXPECT_EQ(told(), "12043");
    EXPECT_EQ(table->swapOrder(ids[1], ids[3]), Acad::eOk);
    EXPECT_EQ(told(), "32041");
    EXPECT_EQ(table->setRelativeDrawOrder(pick({1, 2, 3})), Acad::eOk);
    EXPECT_EQ(told(), "12043");
    EXPECT_EQ(table->setRelativeDrawOrder(pick({1, 1})), Acad::eInvalidInput);
    EXPECT_EQ(table->moveAbove(pick({1}), ids[1]), Acad::eInvalidInput);
    for (int round = 0; round < 200; ++round) { // however often, it stays an order
        EXPECT_EQ(table->moveToBottom(pick({round % 5})), Acad::eOk);
    }
    EXPECT_EQ(told(), "43210");
    bool before = false;
    EXPECT_EQ(table->firstEntityIsDrawnBeforeSecond(ids[4], ids[0], before), Acad::eOk);
    EXPECT_TRUE(before);
    table->close();
    const AcDbObjectId late = drawing.append(new AcDbLine({0, 0, 0}, {9, 0, 0}));
    ids.append(late);
    EXPECT_EQ(told(), "432105") << "what comes later is drawn later";
}

} // namespace
