// Setting layers apart, and taking layers out of a drawing with all that stands on them.
#include "commandtest.h"

#include "host/commands/edit/audit.h"
#include "host/commands/edit/layertools.h"
#include "host/formats/formats.h"

namespace {

using commandtest::CommandTest;
using commandtest::Read;

class LayerTools : public CommandTest {
protected:
    const AcDbLayerTableRecord& layer(const wchar_t* name) {
        AcDbObjectId id;
        host::peek<AcDbLayerTable>(database().layerTableId())->getAt(name, id);
        EXPECT_FALSE(id.isNull()) << host::toUtf8(name);
        return *host::peek<AcDbLayerTableRecord>(id);
    }
    bool hasLayer(const wchar_t* name) {
        return host::peek<AcDbLayerTable>(database().layerTableId())->has(name);
    }
    void setLayer(AcDbObjectId entity, const wchar_t* name) {
        const host::Opened<AcDbEntity> opened(entity, AcDb::kForWrite);
        ASSERT_TRUE(opened);
        EXPECT_EQ(opened->setLayer(name, false), Acad::eOk);
    }
    void lock(const wchar_t* name) {
        const host::Opened<AcDbLayerTableRecord> opened(layer(name).objectId(), AcDb::kForWrite);
        opened->setIsLocked(true);
    }
    template <class T>
    std::vector<AcDbObjectId> all() {
        std::vector<AcDbObjectId> found;
        database().impl().forEachStub([&](AcDbStub& stub) {
            if (host::peek<T>(AcDbObjectId(&stub)) != nullptr) {
                found.emplace_back(&stub);
            }
        });
        return found;
    }

    /// A block with a line on A and an attribute on B, referred to from layer C; a polyline of the heavy kind
    /// on C with vertices on A; a line on the locked layer D whose extended data name A.
    void draw() {
        for (const wchar_t* name : {L"A", L"B", L"C", L"D"}) {
            addLayer(name);
        }
        addLine(0, 0, 1, 0, L"A");
        run("-BLOCK\nSYMBOL\n0,0\nL\n\n");
        addLine(5, 5, 6, 6, L"A");
        {
            AcDbObjectId block;
            host::peek<AcDbBlockTable>(database().blockTableId())->getAt(L"SYMBOL", block);
            auto* reference = new AcDbBlockReference(AcGePoint3d(10, 10, 0), block);
            const AcDbObjectId id = add(reference, L"C");
            const host::Opened<AcDbBlockReference> opened(id, AcDb::kForWrite);
            auto* attribute = new AcDbAttribute(AcGePoint3d(10, 10, 0), L"12", L"NUMBER");
            AcDbObjectId attributeId;
            opened->appendAttribute(attributeId, attribute);
            attribute->setLayer(L"B");
            attribute->close();
        }
        heavy = add(new AcDb2dPolyline, L"C");
        {
            const host::Opened<AcDb2dPolyline> opened(heavy, AcDb::kForWrite);
            for (const double x : {0.0, 3.0}) {
                auto* vertex = new AcDb2dVertex(AcGePoint3d(x, 0, 0));
                AcDbObjectId id;
                opened->appendVertex(id, vertex);
                vertex->setLayer(L"A");
                vertex->close();
            }
        }
        acdbRegApp(L"QDVTEST");
        marked = addLine(20, 20, 30, 20, L"D");
        const host::Opened<AcDbEntity> line(marked, AcDb::kForWrite);
        resbuf* data = acutBuildList(1001, L"QDVTEST", 1003, L"a", 1000, L"a", RTNONE);
        line->setXData(data);
        acutRelRb(data);
    }
    std::wstring namedByData() {
        const Read<AcDbEntity> line(host::peek<AcDbEntity>(marked));
        resbuf* data = line->xData(L"QDVTEST");
        const std::wstring name = data->rbnext->resval.rstring;
        EXPECT_STREQ(data->rbnext->rbnext->resval.rstring, L"a") << "a plain text is no layer";
        acutRelRb(data);
        return name;
    }

    AcDbObjectId heavy;
    AcDbObjectId marked;
};

TEST_F(LayerTools, DeletingTakesEverythingOnTheLayerAndNothingElse) {
    draw();
    lock(L"A");
    lock(L"D");
    const std::string before = host::dumpDrawing(database());
    EXPECT_TRUE(run("LAYDEL\nN\nA,B\n\nY\n")) << host::toUtf8(transcript.shown);
    EXPECT_FALSE(hasLayer(L"A"));
    EXPECT_FALSE(hasLayer(L"B"));
    EXPECT_TRUE(layer(L"D").isLocked());
    const auto lines = all<AcDbLine>();
    ASSERT_EQ(lines.size(), 1U) << "those on A, in the block too, went";
    EXPECT_EQ(lines.front(), marked);
    EXPECT_EQ(namedByData(), L"0");
    EXPECT_TRUE(all<AcDbAttribute>().empty());
    EXPECT_EQ(all<AcDbBlockReference>().size(), 1U);
    ASSERT_EQ(all<AcDb2dVertex>().size(), 2U) << "vertices stay with their polyline";
    EXPECT_EQ(host::peek<AcDb2dVertex>(all<AcDb2dVertex>()[0])->layerId(), layer(L"C").objectId());
    EXPECT_TRUE(host::auditDrawing(database(), false).findings.empty());
    run("U\n");
    EXPECT_EQ(host::dumpDrawing(database()), before);
}

TEST_F(LayerTools, MergingMovesEverythingToTheTarget) {
    draw();
    lock(L"A");
    lock(L"D");
    const std::string before = host::dumpDrawing(database());
    EXPECT_TRUE(run("LAYMRG\nN\nA\nN\nB\n\nN\nNEW\nY\nY\n")) << host::toUtf8(transcript.shown);
    EXPECT_FALSE(hasLayer(L"A"));
    EXPECT_FALSE(hasLayer(L"B"));
    const AcDbObjectId target = layer(L"NEW").objectId();
    int moved = 0;
    for (const AcDbObjectId id : all<AcDbEntity>()) {
        moved += host::peek<AcDbEntity>(id)->layerId() == target ? 1 : 0;
    }
    EXPECT_EQ(moved, 5) << "two lines, two vertices, an attribute";
    EXPECT_EQ(namedByData(), L"NEW");
    EXPECT_TRUE(layer(L"D").isLocked());
    EXPECT_TRUE(host::auditDrawing(database(), false).findings.empty());
    // What was written reads back without a word.
    AcDbDatabase again(false);
    const host::ReadResult result = host::readDxfText(again, host::writeDxfText(database()));
    EXPECT_TRUE(result.report.empty()) << host::toUtf8(result.report.text());
    run("U\n");
    EXPECT_EQ(host::dumpDrawing(database()), before);
}

TEST_F(LayerTools, ViewportsAndBlocksForgetTheLayer) {
    addLayer(L"A");
    addLayer(L"B");
    AcDbObjectId viewport;
    {
        const host::Opened<AcDbBlockTableRecord> sheet(database().paperSpaceId(), AcDb::kForWrite);
        auto* made = new AcDbViewport;
        made->setDatabaseDefaults(&database());
        sheet->appendAcDbEntity(viewport, made);
        AcDbObjectIdArray frozen;
        frozen.append(layer(L"A").objectId());
        frozen.append(layer(L"B").objectId());
        made->freezeLayersInViewport(frozen);
        made->close();
    }
    const auto* model = host::peek<AcDbBlockTableRecord>(database().modelSpaceId());
    setLayer(model->blockBeginId(), L"A");
    host::removeLayers(database(), {layer(L"A").objectId().stub()});
    EXPECT_EQ(host::peek<AcDbEntity>(model->blockBeginId())->layerId(), database().layerZero());
    const auto* left = host::peek<AcDbViewport>(viewport);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(left->data().frozenLayers, std::vector<AcDbObjectId>{layer(L"B").objectId()});
}

TEST_F(LayerTools, WhatEveryDrawingNeedsCantBeTakenOut) {
    addLayer(L"A");
    addLayer(L"Defpoints");
    run("-LAYER S\nA\n\n");
    run("LAYDEL N\n*\n\n");
    EXPECT_TRUE(showed(L"不能删除图层 \"0\"。"));
    EXPECT_TRUE(showed(L"不能删除当前图层。"));
    EXPECT_TRUE(showed(L"Defpoints"));
    // Escape and No leave everything, a target that was only named too.
    addLayer(L"B");
    run("LAYMRG N\nB\n\nN\nC\nY\nN\nLAYMRG N\nB\n\nN\nC\nY\n^C\nLAYMRG N\nB\n\nN\nB\n^C\n");
    EXPECT_TRUE(showed(L"目标图层不能是要合并的图层。"));
    EXPECT_TRUE(hasLayer(L"B"));
    EXPECT_FALSE(hasLayer(L"C"));
}

TEST_F(LayerTools, IsolationIsTakenBackAsFarAsNothingElseChangedIt) {
    for (const wchar_t* name : {L"A", L"B", L"C"}) {
        addLayer(name);
    }
    addLine(0, 0, 1, 0, L"A");
    lock(L"C");
    run("LAYISO 0.5,0\n\n");
    EXPECT_FALSE(layer(L"A").isLocked());
    EXPECT_TRUE(layer(L"B").isLocked());
    EXPECT_TRUE(layer(L"0").isLocked());
    EXPECT_EQ(database().clayer(), layer(L"A").objectId());
    run("-LAYER U\nB\nLO\nB\n\nLAYUNISO\n");
    EXPECT_FALSE(layer(L"B").isLocked());
    EXPECT_FALSE(layer(L"0").isLocked());
    EXPECT_TRUE(layer(L"C").isLocked()) << "it was locked before";
    run("LAYUNISO\n");
    EXPECT_TRUE(showed(L"没有可恢复的图层"));
    run("LAYISO S\nO\n0.5,0\n\n");
    EXPECT_TRUE(layer(L"B").isOff());
    EXPECT_FALSE(layer(L"B").isLocked());
    run("-LAYER ON\nB\n\nU\nU\n");
    EXPECT_FALSE(layer(L"0").isOff()) << "undone";
    run("LAYISO S\nL\n30\n0.5,0\n\n");
    EXPECT_TRUE(layer(L"B").isLocked()) << "the setting is kept";
    EXPECT_EQ(host::systemVariableInteger(L"LAYLOCKFADECTL"), 30);
}

} // namespace
