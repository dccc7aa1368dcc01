// The wrappers and helpers that commands are written with.
#include "restools/entity.h"
#include "restools/entpicks.h"
#include "restools/sysvar.h"
#include "tests/module/sessionfixture.h"

#include <numbers>

namespace {

class ResToolsTest : public SessionTest {
protected:
    static AcDbObjectId addLine(double y) {
        AcDbObjectId id;
        EXPECT_EQ(AppendEnt(new AcDbLine({0, y, 0}, {10, y, 0}), id), Acad::eOk);
        return id;
    }
};

} // namespace

TEST_F(ResToolsTest, ObjectsAreClosedOrDeletedByTheirHolder) {
    const AcDbObjectId id = addLine(0.0);
    {
        CArxEntity first(id, true);
        ASSERT_TRUE(first);
        EXPECT_FALSE(CArxEntity(id, false)); // open for write elsewhere
        CArxEntity second(std::move(first));
        EXPECT_TRUE(first.IsNull());
        EXPECT_EQ(second->objectId(), id);
        second = CArxEntity(new AcDbLine);
        EXPECT_TRUE(CArxEntity(id, true)); // closed when another came into its place
    }
    EXPECT_FALSE(CArxObjTemplate<AcDbCircle>(id, false));
    EXPECT_TRUE(CArxEntity(id, true)); // closed though it was of another class
    EXPECT_FALSE(CArxEntity(AcDbObjectId::kNull, false));
    EXPECT_EQ(EraseEnt(id), Acad::eOk);
    EXPECT_FALSE(CArxEntity(id, false));
    EXPECT_TRUE(CArxEntity(id, false, true));
}

TEST_F(ResToolsTest, VariablesAreReadByKindAndPutBack) {
    int number = -1;
    double real = -1.0;
    AcString text = L"-";
    AcGePoint2d point;
    EXPECT_TRUE(GetVar(L"OSMODE", number));
    EXPECT_FALSE(GetVar(L"OSMODE", real));
    EXPECT_FALSE(GetVar(L"CLAYER", number));
    EXPECT_FALSE(GetVar(L"NO_SUCH_VARIABLE", text));
    EXPECT_EQ(text, L"-");
    EXPECT_EQ(GetVar(L"CLAYER"), L"0");
    {
        const CSysVar snaps(L"OSMODE", number + 1);
        const CSysVar scale(L"LTSCALE", 25.0);
        const CSysVar unit(L"SNAPUNIT", AcGePoint2d(3, 4));
        const CSysVar color(L"CECOLOR", L"3");
        int changed = 0;
        EXPECT_TRUE(GetVar(L"OSMODE", changed) && changed == number + 1);
        EXPECT_TRUE(GetVar(L"LTSCALE", real) && real == 25.0);
        EXPECT_TRUE(GetVar(L"SNAPUNIT", point) && point == AcGePoint2d(3, 4));
        EXPECT_EQ(GetVar(L"CECOLOR"), L"3");
    }
    int after = -1;
    EXPECT_TRUE(GetVar(L"OSMODE", after) && after == number);
    EXPECT_TRUE(GetVar(L"LTSCALE", real) && real == 1.0);
    EXPECT_EQ(GetVar(L"CECOLOR"), L"BYLAYER");
    EXPECT_FALSE(SetVar(L"LTSCALE", -1.0));
}

TEST_F(ResToolsTest, PicksHoldEntitiesOnceAndFreeTheirSet) {
    const std::size_t before = host::pickSetCount();
    const AcDbObjectId first = addLine(0.0);
    const AcDbObjectId second = addLine(5.0);
    AppendEnt(new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 3.0));
    {
        CEntPicks picks;
        EXPECT_FALSE(picks.Add(first)); // no set yet
        ASSERT_TRUE(picks.CreateNullEntPicks());
        EXPECT_TRUE(picks.Add(second));
        EXPECT_TRUE(picks.Add(first));
        EXPECT_FALSE(picks.Add(second));
        EXPECT_EQ(picks.GetLength(), 2);
        EXPECT_EQ(picks[0], second);
        EXPECT_TRUE(picks[2].isNull());

        CEntPicks lines;
        EXPECT_TRUE(lines.SelectAll(CResbuf(AcDbLine::desc())));
        EXPECT_EQ(lines.GetLength(), 2);
        picks = std::move(lines);
        AcDbObjectIdArray ids;
        picks.IntoArray(ids);
        EXPECT_EQ(ids.length(), 2);
        EXPECT_EQ(lines.GetLength(), 0);
        EXPECT_FALSE(lines.SelectAll(CResbuf(AcDbText::desc())));
    }
    EXPECT_EQ(host::pickSetCount(), before);
}

TEST_F(ResToolsTest, EntitiesGiveTheirGroups) {
    EXPECT_TRUE(CEntity::Last().IsNull());
    const AcDbObjectId id = addLine(5.0);
    const CEntity line = CEntity::Last();
    EXPECT_EQ(line.ObjectId(), id);
    AcGePoint3d point;
    EXPECT_TRUE(line.GetPoint(11, point));
    EXPECT_EQ(point, AcGePoint3d(10, 5, 0));
    EXPECT_FALSE(line.GetPoint(13, point));
    AcString layer;
    EXPECT_TRUE(line.GetText(8, layer));
    EXPECT_EQ(layer, L"0");
}

TEST_F(ResToolsTest, LayersAreMadeOnce) {
    const AcDbObjectId made = CreateNewLayer(L"道路", L"NO_SUCH_LINETYPE", 3);
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(CreateNewLayer(L"道路", L"CONTINUOUS", 5), made);
    const CArxObjTemplate<AcDbLayerTableRecord> layer(made, false);
    EXPECT_EQ(layer->color().colorIndex(), 3);
    EXPECT_EQ(layer->linetypeObjectId(), database().continuousLinetype());
    EXPECT_TRUE(CreateNewLayer(L"a|b<c", L"CONTINUOUS", 5).isNull());
}

TEST_F(ResToolsTest, InsertedBlockTakesTextsForItsAttributes) {
    AcDbObjectId block;
    {
        CArxObjTemplate<AcDbBlockTable> blocks(database().blockTableId(), true);
        CArxObjTemplate<AcDbBlockTableRecord> record;
        record.New()->setName(L"塔");
        ASSERT_EQ(blocks->add(block, record.Get()), Acad::eOk);
        for (const wchar_t* tag : {L"NAME", L"HEIGHT", L"FIXED"}) {
            auto* definition = new AcDbAttributeDefinition({1, 0, 0}, L"standard", tag, L"?");
            definition->setConstant(std::wstring_view(tag) == L"FIXED");
            CArxEntity held(definition);
            ASSERT_EQ(record->appendAcDbEntity(definition), Acad::eOk);
        }
    }
    CreateNewLayer(L"塔", L"CONTINUOUS", 1);
    const AcDbObjectId id =
        InsertBlock(block, {10, 20, 0}, {2, 2, 2}, L"塔", std::numbers::pi / 2, {{L"name", L"N12"}});
    const CArxObjTemplate<AcDbBlockReference> reference(id, false);
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->rotation(), std::numbers::pi / 2);
    std::vector<std::wstring> texts;
    const std::unique_ptr<AcDbObjectIterator> attributes(reference->attributeIterator());
    for (; !attributes->done(); attributes->step()) {
        const CArxObjTemplate<AcDbAttribute> attribute(attributes->objectId(), false);
        texts.emplace_back(attribute->textStringConst());
        EXPECT_TRUE(attribute->position().isEqualTo({10, 22, 0}));
    }
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"N12", L"standard"}));
    EXPECT_TRUE(InsertBlock(AcDbObjectId::kNull, {0, 0, 0}, {1, 1, 1}, L"0", 0.0).isNull());
}
