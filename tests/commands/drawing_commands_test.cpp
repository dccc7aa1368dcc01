// Commands over definitions and the drawing as a whole: purging, auditing, blocks, names, settings, inquiry.
#include "commandtest.h"

#include "host/commands/edit/audit.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/colornames.h"
#include "host/formats/formats.h"

#include <set>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

class DrawingCommands : public CommandTest {
protected:
    bool hasRecord(AcDbObjectId table, const wchar_t* name) {
        return host::peek<AcDbSymbolTable>(table)->has(name);
    }
    std::string file(const char* name) { return (folder() / name).string(); }
};

TEST_F(DrawingCommands, EveryCommandIsFoundByBothItsNames) {
    for (const auto family :
         {host::fileCommands,      host::drawCommands,     host::polylineCommands,  host::textCommands,
          host::insertCommands,    host::modifyCommands,   host::undoCommands,      host::layerCommands,
          host::layerToolCommands, host::linetypeCommands, host::viewCommands,      host::variableCommands,
          host::transformCommands, host::arrayCommands,    host::markCommands,      host::offsetCommands,
          host::peditCommands,     host::propertyCommands, host::purgeCommands,     host::auditCommands,
          host::blockCommands,     host::inquiryCommands,  host::settingsCommands,  host::renameCommands,
          host::trimCommands,      host::breakCommands,    host::filletCommands,    host::stretchCommands,
          host::shapeCommands,     host::joinCommands,     host::findCommands,      host::clipboardCommands,
          host::selectingCommands, host::overkillCommands, host::namedViewCommands, host::viewportCommands,
          host::scriptCommands,    host::statusCommands}) {
        for (const host::CommandRow& row : family()) {
            const AcEdCommand* byLocal = host::findCommand(row.localName);
            ASSERT_NE(byLocal, nullptr) << host::toUtf8(row.globalName);
            EXPECT_EQ(std::wstring(byLocal->globalName()), row.globalName);
            EXPECT_NE(host::findCommand(std::wstring(L"_") + row.globalName), nullptr);
        }
    }
}

TEST_F(DrawingCommands, PurgeTakesWhatNothingUsesAndThenWhatOnlyThatUsed) {
    run("-LAYER M\nINNER\nM\nFREE\nM\nUSED\nS\n0\n\nLINE 0,0 1,0\n\nCHPROP L\n\nLA\nINNER\n\n-BLOCK "
        "LEAF\n0,0 ALL\n\n");
    run("-INSERT LEAF\n0,0 1 1 0\n-BLOCK TREE\n0,0 ALL\n\nLINE 0,0 5,5\n\nCHPROP L\n\nLA\nUSED\n\n");
    EXPECT_TRUE(run("-PURGE A\n*\nN\n")) << host::toUtf8(transcript.shown);
    EXPECT_FALSE(hasRecord(database().blockTableId(), L"TREE"));
    EXPECT_FALSE(hasRecord(database().blockTableId(), L"LEAF"));
    EXPECT_FALSE(hasRecord(database().layerTableId(), L"INNER"));
    EXPECT_FALSE(hasRecord(database().layerTableId(), L"FREE"));
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"USED"));
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"0"));
    EXPECT_TRUE(hasRecord(database().textStyleTableId(), L"Standard"));
    EXPECT_TRUE(hasRecord(database().regAppTableId(), L"ACAD"));
    run("U\n");
    EXPECT_TRUE(hasRecord(database().blockTableId(), L"TREE"));
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"FREE"));
}

TEST_F(DrawingCommands, PurgeAsksForEachAndKeepsCurrentAndNamedOnes) {
    run("-LAYER N\nA1,A2,A3\nS\nA3\n\n-PURGE LA\nA*\nY N Y\n");
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"A1"));
    EXPECT_FALSE(hasRecord(database().layerTableId(), L"A2"));
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"A3"));
    // Extended data name a layer, and their application.
    run("-LAYER S\n0\n\n");
    addLine(0, 0, 1, 1);
    acdbRegApp(L"QDVTEST");
    acdbRegApp(L"QDVFREE");
    {
        const host::Opened<AcDbEntity> line(entities<AcDbLine>()[0]->objectId(), AcDb::kForWrite);
        resbuf* data = acutBuildList(1001, L"QDVTEST", 1003, L"A1", RTNONE);
        line->setXData(data);
        acutRelRb(data);
    }
    run("-PURGE A\n*\nN\n");
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"A1"));
    EXPECT_FALSE(hasRecord(database().layerTableId(), L"A3"));
    EXPECT_TRUE(hasRecord(database().regAppTableId(), L"QDVTEST"));
    EXPECT_FALSE(hasRecord(database().regAppTableId(), L"QDVFREE"));
}

TEST_F(DrawingCommands, NamesEndWithABlankOutsideOfQuotesAndLayersTakeEveryColour) {
    EXPECT_TRUE(
        run("-LAYER M 道路 C 红色 道路 N \"a b\",cc C T 300,1,1 1,2,3 \"a b\" C purple RGB:9,8,7 cc \n"));
    const auto colorOf = [&](const wchar_t* name) {
        AcDbObjectId id;
        host::peek<AcDbLayerTable>(database().layerTableId())->getAt(name, id);
        const auto* layer = host::peek<AcDbLayerTableRecord>(id);
        return layer != nullptr ? host::colorText(layer->entityColor()) + (layer->isOff() ? L" off" : L"")
                                : std::wstring();
    };
    EXPECT_EQ(colorOf(L"道路"), L"1");
    EXPECT_EQ(colorOf(L"a b"), L"RGB:1,2,3");
    EXPECT_EQ(colorOf(L"cc"), L"RGB:9,8,7");
    EXPECT_TRUE(run("-LAYER C BYLAYER -4 cc S \"a b\" \n"));
    EXPECT_EQ(colorOf(L"cc"), L"4 off");
    EXPECT_EQ(host::recordName(database().clayer()), L"a b");
    // Blocks in one line, as scripts have them.
    EXPECT_TRUE(
        run("LINE 0,0 1,0 \n-BLOCK \"b 1\" 0,0 L \n-INSERT \"b 1\" 5,5 2 3 90\n-INSERT \"*b 1\" 9,9 1 0\n"));
    ASSERT_EQ(entities<AcDbBlockReference>().size(), 1u);
    EXPECT_EQ(Read(entities<AcDbBlockReference>()[0])->scaleFactors().sy, 3.0);
    EXPECT_EQ(entities<AcDbLine>().size(), 1u);
}

TEST_F(DrawingCommands, PurgeOfEmptyGeometry) {
    addLine(3, 3, 3, 3);
    addLine(0, 0, 1, 0);
    run("-PURGE Z\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 1u);
    EXPECT_TRUE(showed(L"已删除 1 个零长度几何图形"));
}

TEST_F(DrawingCommands, OopsBringsBackWhatTheLastEraseTookUnlessItWasUndone) {
    run("-STYLE 式\ntxt\n0\n1\n0\nN\nN\nN\nTEXT 0,0 2 0 杆\n\nTEXTSTYLE Standard\n");
    run("ERASE L\n\n-PURGE ST *\nN\n");
    AcDbTextStyleTable* styles = nullptr;
    database().getSymbolTable(styles, AcDb::kForRead);
    EXPECT_FALSE(styles->has(L"式"));
    run("OOPS\n");
    EXPECT_TRUE(styles->has(L"式")); // the text names it
    styles->close();
    EXPECT_EQ(entities<AcDbText>().size(), 1u);
    run("UNDO 3\nOOPS\n"); // OOPS, PURGE and ERASE
    EXPECT_EQ(entities<AcDbText>().size(), 1u);
    run("UNDO 9\nOOPS\n"); // the text was never drawn
    EXPECT_EQ(entities<AcDbText>().size(), 0u);
}

TEST_F(DrawingCommands, AuditFindsAndFixesDamage) {
    const AcDbObjectId good = addLine(0, 0, 1, 1);
    const AcDbObjectId empty = addLine(2, 2, 2, 2);
    const AcDbObjectId lost = addLine(5, 5, 6, 6);
    auto* space = host::peek<AcDbBlockTableRecord>(database().modelSpaceId());
    std::vector<AcDbStub*>& list = space->entitiesForReaders();
    std::erase(list, lost.stub());
    list.push_back(good.stub());                        // twice
    list.push_back(database().impl().stubFor(0xFFFF0)); // nobody
    {
        const host::Opened<AcDbLine> line(good, AcDb::kForWrite);
        line->setLinetypeScale(1.0);
        line->setOwnerId(database().layerTableId());
    }
    host::AuditResult found = host::auditDrawing(database(), false);
    EXPECT_GE(found.findings.size(), 4u);
    EXPECT_EQ(found.fixedCount(), 0u);
    EXPECT_EQ(host::peek<AcDbLine>(empty) != nullptr, true);
    EXPECT_TRUE(run("AUDIT Y\n"));
    EXPECT_TRUE(showed(L"已更正")) << host::toUtf8(transcript.shown);
    EXPECT_EQ(host::peek<AcDbLine>(empty), nullptr);
    EXPECT_EQ(host::auditDrawing(database(), false).findings.size(), 0u);
    EXPECT_EQ(std::count(list.begin(), list.end(), good.stub()), 1);
    EXPECT_EQ(std::count(list.begin(), list.end(), lost.stub()), 1);
}

TEST_F(DrawingCommands, AuditLeavesAloneWhatIsGoneAndCanBeTakenBack) {
    const AcDbObjectId lost = addLine(5, 5, 6, 6);
    run("LINE 10,10 12,10\n\n-BLOCK GONE\n0,0 L\n\nU\n"); // its beginning and end have no owner that is left
    EXPECT_EQ(host::auditDrawing(database(), false).findings.size(), 0u);
    std::vector<AcDbStub*>& list =
        host::peek<AcDbBlockTableRecord>(database().modelSpaceId())->entitiesForReaders();
    std::erase(list, lost.stub());
    const std::vector<AcDbStub*> damaged = list;
    run("AUDIT Y\n");
    EXPECT_NE(list, damaged);
    run("U\n");
    EXPECT_EQ(list, damaged);
    run("REDO\n");
    EXPECT_EQ(list.back(), lost.stub());
}

TEST_F(DrawingCommands, ANewDrawingAndOneWithEverythingAuditClean) {
    run("PLINE 0,0 10,0 10,10\n\nPEDIT 5,0 S\n\nTEXT 0,20 2 0 A\n\nCIRCLE 5,5 2\n-BLOCK B\n0,0 "
        "L\n\nOOPS\n-INSERT B\n0,0 1 1 0\n");
    const host::AuditResult result = host::auditDrawing(database(), false);
    for (const host::AuditFinding& finding : result.findings) {
        ADD_FAILURE() << host::toUtf8(finding.object + L" " + finding.fault);
    }
    EXPECT_GT(result.objects, 20u);
}

TEST_F(DrawingCommands, BlocksAreMadeRedefinedWrittenAndExploded) {
    run("LINE 10,10 12,10\n\n-BLOCK SIGN\n10,10 L\n\n");
    EXPECT_TRUE(entities().empty());
    run("OOPS\n");
    EXPECT_EQ(entities<AcDbLine>().size(), 1u);
    run("-INSERT SIGN\n20,0 2 2 90\n");
    ASSERT_EQ(entities<AcDbBlockReference>().size(), 1u);
    EXPECT_EQ(acedCommandS(RTSTR, L"_.EXPLODE", RTSTR, L"_L", RTNONE), RTNORM);
    const auto lines = entities<AcDbLine>();
    ASSERT_EQ(lines.size(), 2u) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(Read(lines[1])->endPoint().isEqualTo({20, 4, 0}));
    // A block may not come to hold itself.
    run("-INSERT SIGN\n0,0 1 1 0\n-BLOCK SIGN\nY 0,0 L\n\n");
    EXPECT_NE((transcript.shown + transcript.diagnostics).find(L"不能包含它自身"), std::wstring::npos);
    EXPECT_EQ(entities<AcDbBlockReference>().size(), 1u);
}

TEST_F(DrawingCommands, WblockWritesPartsTheWholeAndBlocks) {
    host::initializeFormats();
    run("LINE 0,0 1,0\n\nLINE 5,5 6,6\n\n-LAYER N\nFREE\n\n-BLOCK B1\n5,5 L\n\n");
    EXPECT_TRUE(run("-WBLOCK " + file("part.dxf") + "\n\n1,1 ALL\n\n"))
        << host::toUtf8(transcript.diagnostics);
    EXPECT_TRUE(entities().empty());
    run("OOPS\n");
    EXPECT_TRUE(run("-WBLOCK " + file("block.dxf") + "\nB1\n"));
    EXPECT_TRUE(run("-WBLOCK " + file("whole.dxf") + "\n*\n"));
    const auto opened = [&](const char* name) {
        auto drawing = std::make_unique<AcDbDatabase>(false);
        std::wstring message;
        EXPECT_EQ(host::fileFormats().read(*drawing, host::fromUtf8(file(name)), message), Acad::eOk);
        return drawing;
    };
    const auto part = opened("part.dxf");
    EXPECT_TRUE(part->insbase().isEqualTo({1, 1, 0}));
    const auto whole = opened("whole.dxf");
    EXPECT_FALSE(host::peek<AcDbSymbolTable>(whole->layerTableId())->has(L"FREE"));
    EXPECT_EQ(host::peek<AcDbBlockTableRecord>(opened("block.dxf")->modelSpaceId())->entities().size(), 1u);
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"FREE"));
    // Inserted again from the file, anew when asked for.
    EXPECT_TRUE(run("-INSERT P1=" + file("block.dxf") + "\n3,3 1 1 0\n"));
    EXPECT_EQ(entities<AcDbBlockReference>().size(), 1u);
    EXPECT_TRUE(run("-INSERT " + file("whole.dxf") + "\n_E _Y 0,0 1\n\n0.0\n"));
    EXPECT_EQ(entities<AcDbLine>().size(), 2u) << host::toUtf8(transcript.shown);
}

TEST_F(DrawingCommands, AnInsertedDrawingBringsWhatItHasByNameAndKeepsWhatIsThere) {
    AcDbDatabase library(true);
    const auto addBlock = [](AcDbDatabase& to, const wchar_t* name, const AcGePoint3d& origin) {
        auto* block = new AcDbBlockTableRecord;
        block->setName(name);
        block->setOrigin(origin);
        AcDbObjectId id;
        const host::Opened<AcDbBlockTable> table(to.blockTableId(), AcDb::kForWrite);
        ASSERT_EQ(table->add(id, block), Acad::eOk);
        AcDbObjectId line;
        auto* entity = new AcDbLine({0, 0, 0}, {0, 1, 0});
        ASSERT_EQ(block->appendAcDbEntity(line, entity), Acad::eOk);
        entity->close();
        block->close();
    };
    addBlock(library, L"TICK", {0, 0, 0});
    addBlock(library, L"OWN", {0, 0, 0});
    addBlock(database(), L"OWN", {7, 0, 0});
    AcDbObjectId id;
    ASSERT_EQ(database().insert(id, L"LIB", &library), Acad::eOk);
    EXPECT_TRUE(hasRecord(database().blockTableId(), L"TICK"));
    EXPECT_TRUE(entities().empty());
    const auto* blocks = host::peek<AcDbBlockTable>(database().blockTableId());
    ASSERT_EQ(blocks->getAt(L"TICK", id), Acad::eOk);
    EXPECT_EQ(host::peek<AcDbBlockTableRecord>(id)->entities().size(), 1u);
    ASSERT_EQ(blocks->getAt(L"OWN", id), Acad::eOk);
    EXPECT_EQ(host::peek<AcDbBlockTableRecord>(id)->origin().x, 7.0);
    const host::AuditResult result = host::auditDrawing(database(), false);
    EXPECT_TRUE(result.findings.empty()) << host::toUtf8(result.findings.front().fault);
}

TEST_F(DrawingCommands, NamesAndSettings) {
    run("-LAYER N\nOLD\n\n-RENAME LA\nNONE\nOLD\n0\nNEW\n");
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"NEW")) << host::toUtf8(transcript.shown);
    run("-RENAME LA\n0\n\n");
    EXPECT_TRUE(showed(L"不能重命名图层"));
    run("-STYLE HZ\ntxt,gbcbig\n3.5 0.8 15\nN N N\n");
    AcDbObjectId id;
    ASSERT_EQ(host::peek<AcDbSymbolTable>(database().textStyleTableId())->getAt(L"HZ", id), Acad::eOk)
        << host::toUtf8(transcript.shown);
    const auto* style = host::peek<AcDbTextStyleTableRecord>(id);
    EXPECT_EQ(style->textSize(), 3.5);
    EXPECT_EQ(style->xScale(), 0.8);
    EXPECT_EQ(std::wstring(style->bigFontName().kwszPtr()), L"gbcbig");
    EXPECT_EQ(database().textstyle(), id);
    run("LIMITS 10,10 0,0 420,297\n");
    EXPECT_TRUE(showed(L"右上角点必须在左下角点的右上方"));
    EXPECT_EQ(host::systemVariable(L"LIMMAX")->resval.rpoint[0], 420.0);
    run("-UNITS 2 3 1 2 0 N\n");
    EXPECT_EQ(database().luprec(), 3);
    EXPECT_EQ(database().aunits(), 1);
    run("CLAYER NEW\nCECOLOR 3\nCELTYPE NOSUCH\n\n");
    EXPECT_EQ(host::systemVariableText(L"CLAYER"), L"NEW");
    EXPECT_EQ(database().cecolor().colorIndex(), 3);
}

TEST_F(DrawingCommands, InquiriesTellMeasures) {
    run("RECTANG 0,0 10,5\nCIRCLE 5,2.5 1\nAREA A O 0,1\n\nS O 6,2.5\n\n\n");
    EXPECT_NEAR(host::systemVariableReal(L"AREA"), 50.0 - host::pi, 1e-9) << host::toUtf8(transcript.shown);
    run("AREA 0,0 4,0 4,3\n\n");
    EXPECT_NEAR(host::systemVariableReal(L"AREA"), 6.0, 1e-12);
    EXPECT_NEAR(host::systemVariableReal(L"PERIMETER"), 12.0, 1e-12);
    run("DIST 0,0 3,4\nLIST ALL\n\n");
    EXPECT_NEAR(host::systemVariableReal(L"DISTANCE"), 5.0, 1e-12);
    EXPECT_TRUE(showed(L"LWPOLYLINE"));
    EXPECT_TRUE(showed(L"半径 1"));
}

TEST_F(DrawingCommands, PropertiesAreChangedAndMatched) {
    run("-LAYER N\nWIRES\n\nLINE 0,0 5,0\n\nLINE 0,1 5,1\n\nCHPROP 2,0\n\nLA\nNOSUCH\nWIRES\nC RED S 2\n\n");
    const auto lines = entities<AcDbLine>();
    EXPECT_EQ(Read(lines[0])->colorIndex(), 1) << host::toUtf8(transcript.shown);
    EXPECT_EQ(Read(lines[0])->linetypeScale(), 2.0);
    run("MATCHPROP 2,0 2,1\n\n");
    EXPECT_EQ(Read(lines[1])->layerId(), Read(lines[0])->layerId());
    EXPECT_EQ(Read(lines[1])->colorIndex(), 1);
    run("CHANGE 2,1\n\n7,4\n");
    EXPECT_EQ(Read(lines[1])->endPoint(), AcGePoint3d(7, 4, 0));
}

} // namespace
