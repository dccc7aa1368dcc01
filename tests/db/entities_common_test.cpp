// What holds for every kind of entity: registration, copies, filing, damaged data, undo, transformation.
#include "entitysamples.h"

#include <cmath>

using namespace testing_entities;

namespace {

class EntityTest : public testing::TestWithParam<Sample> {
protected:
    static void SetUpTestSuite() { initialize(); }
    std::unique_ptr<AcDbEntity> rich() { return std::unique_ptr<AcDbEntity>(GetParam().rich(drawing)); }
    std::unique_ptr<AcDbEntity> plain() { return std::unique_ptr<AcDbEntity>(GetParam().plain(drawing)); }
    Drawing drawing;
};

/// Without what names or counts records of their own: parts that follow, a dimension's block.
std::vector<std::string> ownGroupsOf(const AcDbEntity& entity) {
    std::vector<std::string> groups = groupsOf(entity);
    std::erase(groups, "66=1");
    std::erase_if(groups, [](const std::string& group) { return group.starts_with("2=*D"); });
    return groups;
}

TEST_P(EntityTest, IsRegistered) {
    AcRxClass* descriptor = acrxFindAcRxClass(GetParam().className);
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(descriptor->dxfNameUtf8(), GetParam().dxfName);
    const std::unique_ptr<AcRxObject> created(descriptor->create());
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->isA(), descriptor);
    EXPECT_EQ(rich()->isA(), descriptor);
    EXPECT_TRUE(descriptor->isDerivedFrom(AcDbEntity::desc()));
}

TEST_P(EntityTest, CloneIsEqualAndIndependent) {
    const auto original = rich();
    const std::string before = bytesOf(*original);
    const std::unique_ptr<AcDbEntity> copy(AcDbEntity::cast(original->clone()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(bytesOf(*copy), before);
    copy->transformBy(AcGeMatrix3d::translation({1, 2, 3}));
    EXPECT_EQ(bytesOf(*original), before);
}

TEST_P(EntityTest, FieldsAreFiledWholeAndReplaceWhatWasThere) {
    for (const bool richIntoPlain : {true, false}) {
        const auto source = richIntoPlain ? rich() : plain();
        const auto target = richIntoPlain ? plain() : rich();
        const std::string bytes = bytesOf(*source);
        host::MemoryDwgFiler filer(AcDb::kCopyFiler, nullptr, bytes);
        ASSERT_EQ(target->dwgIn(&filer), Acad::eOk);
        EXPECT_EQ(static_cast<std::size_t>(filer.tell()), bytes.size());
        EXPECT_EQ(bytesOf(*target), bytes);
    }
}

TEST_P(EntityTest, DamagedDataLeavesTheEntityAsItWas) {
    const auto entity = rich();
    const auto other = plain();
    other->setPropertiesFrom(entity.get());
    entity->setXdataGroups({});
    const std::string before = bytesOf(*entity);
    const std::string bytes = bytesOf(*other);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        host::MemoryDwgFiler filer(AcDb::kCopyFiler, nullptr, std::string_view(bytes).substr(0, size));
        ASSERT_NE(entity->dwgIn(&filer), Acad::eOk) << size;
        ASSERT_EQ(bytesOf(*entity), before) << size;
    }
}

TEST_P(EntityTest, NumbersThatAreNoneAreRefusedFromFiles) {
    const auto entity = rich();
    host::MemoryDwgFiler writer(AcDb::kFileFiler);
    ASSERT_EQ(entity->dwgOut(&writer), Acad::eOk);
    std::string bytes = writer.takeBytes();
    const double none = std::nan("");
    int refused = 0;
    for (std::size_t at = 0; at + sizeof none <= bytes.size(); ++at) {
        std::string damaged = bytes;
        damaged.replace(at, sizeof none, reinterpret_cast<const char*>(&none), sizeof none);
        host::MemoryDwgFiler reader(AcDb::kFileFiler, nullptr, damaged);
        const auto target = plain();
        refused += target->dwgIn(&reader) == Acad::eInvalidInput ? 1 : 0;
    }
    // A 3D polyline leaves all numbers to its vertices.
    EXPECT_EQ(refused > 0, AcDb3dPolyline::cast(entity.get()) == nullptr);
}

TEST_P(EntityTest, DxfGroupsComeBack) {
    for (const bool isRich : {true, false}) {
        AcDbEntity* source = isRich ? GetParam().rich(drawing) : GetParam().plain(drawing);
        drawing.append(source);
        const host::ResbufList list = resbufOf(*source);
        host::ResbufDxfReader reader(&drawing.database, list.get());
        const std::unique_ptr<AcDbEntity> target(isRich ? plain() : rich());
        target->setXdataGroups({}); // readers make a new object; extended data is added to what there is
        ASSERT_EQ(target->dxfIn(&reader), Acad::eOk);
        AcDbEntity* resident = AcDbEntity::cast(target->clone());
        drawing.append(resident);
        EXPECT_EQ(ownGroupsOf(*resident), ownGroupsOf(*source));
    }
}

TEST_P(EntityTest, GroupsWithoutMarkersAreUnderstood) {
    AcDbEntity* source = GetParam().rich(drawing);
    drawing.append(source);
    const host::ResbufList list = resbufOf(*source);
    // As old files have it; their texts have one group 73 or 74 for the vertical mode.
    host::ResbufBuilder builder;
    for (const resbuf* at = list.get(); at != nullptr; at = at->rbnext) {
        if (at->restype != 100) {
            builder.take(host::copyResbuf(*at).release());
        }
    }
    const host::ResbufList stripped = builder.release();
    host::ResbufDxfReader reader(&drawing.database, stripped.get());
    const auto target = plain();
    ASSERT_EQ(target->dxfIn(&reader), Acad::eOk);
    AcDbEntity* resident = AcDbEntity::cast(target->clone());
    drawing.append(resident);
    EXPECT_EQ(ownGroupsOf(*resident), ownGroupsOf(*source));
}

TEST_P(EntityTest, UnknownGroupsAndSubclassesAreKept) {
    AcDbEntity* source = GetParam().plain(drawing);
    drawing.append(source);
    host::ResbufBuilder builder;
    const host::ResbufList list = resbufOf(*source);
    builder.take(host::copyResbufList(list.get()).release());
    builder.integer(298, 1).string(100, L"AcDbSomethingElse").real(40, 4.5).string(2, L"kept");
    const host::ResbufList more = builder.release();
    host::ResbufDxfReader reader(&drawing.database, more.get());
    const auto target = plain();
    ASSERT_EQ(target->dxfIn(&reader), Acad::eOk);
    const std::vector<std::string> groups = groupsOf(*target);
    const std::vector<std::string> tail(groups.end() - 3, groups.end());
    EXPECT_EQ(tail, (std::vector<std::string>{"100=AcDbSomethingElse", "40=4.5", "2=kept"}));
    EXPECT_NE(std::find(groups.begin(), groups.end(), "298=1"), groups.end());
    const std::unique_ptr<AcDbEntity> copy(AcDbEntity::cast(target->clone()));
    EXPECT_EQ(groupsOf(*copy), groups);
}

TEST_P(EntityTest, UndoRestores) {
    host::UndoLog& undo = drawing.database.undoLog();
    undo.beginCommand(L"ADD");
    AcDbEntity* entity = GetParam().rich(drawing);
    const AcDbObjectId id = drawing.append(entity);
    undo.endCommand();
    const std::string before = bytesOf(*entity);
    undo.beginCommand(L"MOVE");
    {
        const host::Opened<AcDbEntity> open(id, AcDb::kForWrite);
        open->transformBy(AcGeMatrix3d::translation({10, 20, 0}));
        open->setColorIndex(3);
    }
    undo.endCommand();
    const std::string after = bytesOf(*entity);
    undo.undo(1);
    EXPECT_EQ(bytesOf(*entity), before);
    undo.redo(1);
    EXPECT_EQ(bytesOf(*entity), after);
    undo.undo(2);
    EXPECT_TRUE(id.isErased());
    for (AcDbStub* part :
         entity->subentities() != nullptr ? entity->subentities()->ids() : std::vector<AcDbStub*>()) {
        EXPECT_TRUE(part->erased);
    }
    undo.redo(2);
    EXPECT_EQ(bytesOf(*entity), after);
}

void expectNear(const AcGePoint3d& a, const AcGePoint3d& b) {
    EXPECT_NEAR(a.x, b.x, 1e-7);
    EXPECT_NEAR(a.y, b.y, 1e-7);
    EXPECT_NEAR(a.z, b.z, 1e-7);
}

std::vector<AcGeMatrix3d> transforms() {
    const AcGeMatrix3d move = AcGeMatrix3d::translation({5, -3, 2});
    return {move,
            AcGeMatrix3d::rotation(0.6, AcGeVector3d::kZAxis, {1, 2, 0}),
            AcGeMatrix3d::rotation(1.2, AcGeVector3d(1, 2, 3).normal(), {1, 2, 0}) * move,
            AcGeMatrix3d::scaling(2.5, {4, 4, 0}),
            AcGeMatrix3d::mirroring(AcGePlane({1, 1, 0}, AcGeVector3d(1, 0.5, 0).normal())),
            AcGeMatrix3d::mirroring(AcGePlane({1, 1, 0}, AcGeVector3d::kZAxis)) * move};
}

TEST_P(EntityTest, ATransformedCopyCoversWhatTheTransformSays) {
    for (const auto& entity : {rich(), plain()}) {
        AcDbExtents box;
        if (!GetParam().keepsPicture || entity->getGeomExtents(box) != Acad::eOk) {
            continue; // vertices, empty polylines
        }
        for (const AcGeMatrix3d& transform : transforms()) {
            AcDbExtents expected;
            ASSERT_EQ(entity->getExtentsUnder(transform, expected), Acad::eOk);
            AcDbEntity* moved = nullptr;
            ASSERT_EQ(entity->getTransformedCopy(transform, moved), Acad::eOk);
            const std::unique_ptr<AcDbEntity> owned(moved);
            AcDbExtents actual;
            ASSERT_EQ(moved->getGeomExtents(actual), Acad::eOk);
            expectNear(actual.minPoint(), expected.minPoint());
            expectNear(actual.maxPoint(), expected.maxPoint());
        }
    }
}

TEST_P(EntityTest, MovingAllGripsMovesTheEntity) {
    const AcGeVector3d offset(3, 4, 0);
    const auto entity = plain();
    AcGePoint3dArray grips;
    AcDbIntArray modes;
    AcDbIntArray ids;
    if (entity->getGripPoints(grips, modes, ids) != Acad::eOk || grips.isEmpty()) {
        return;
    }
    AcDbIntArray all;
    for (int index = 0; index < grips.length(); ++index) {
        all.append(index);
    }
    AcDbEntity* moved = nullptr;
    ASSERT_EQ(entity->getTransformedCopy(AcGeMatrix3d::translation(offset), moved), Acad::eOk);
    const std::unique_ptr<AcDbEntity> owned(moved);
    ASSERT_EQ(entity->moveGripPointsAt(all, offset), Acad::eOk);
    EXPECT_EQ(groupsOf(*entity), groupsOf(*moved));
    all.append(grips.length());
    EXPECT_EQ(entity->moveGripPointsAt(all, offset), Acad::eInvalidIndex);
    EXPECT_EQ(groupsOf(*entity), groupsOf(*moved));
}

INSTANTIATE_TEST_SUITE_P(All, EntityTest, testing::ValuesIn(samples()), sampleName);

TEST(EntityMemory, StaysSmall) {
    EXPECT_LE(sizeof(AcDbLine), 200U);
    EXPECT_LE(sizeof(AcDbPolyline), sizeof(AcDbEntity) + 110U);
    EXPECT_EQ(sizeof(host::BulgeVertex), 24U);
}

} // namespace
