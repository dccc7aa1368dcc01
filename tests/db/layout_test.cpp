// Layouts and viewports: switching, making, copying and deleting sheets, page setups, what viewports show.
#include "entitysamples.h"

#include "host/db/drawingsource.h"
#include "host/gi/flatten.h"

#include <algorithm>
#include <cmath>

using namespace testing_entities;

namespace {

class LayoutTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }

    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const AcString& name : layouts->layoutNames(&database)) {
            all.push_back(host::toUtf8(name.view()));
        }
        return all;
    }
    std::string current() const { return host::toUtf8(layouts->findActiveLayout(true, &database).view()); }
    AcDbObjectId add(AcDbEntity* entity, AcDbObjectId space) {
        const host::Opened<AcDbBlockTableRecord> block(space, AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(block->appendAcDbEntity(id, entity), Acad::eOk);
        entity->close();
        return id;
    }
    AcDbObjectId blockOf(const wchar_t* name) const {
        const auto* layout = host::peek<AcDbLayout>(layouts->findLayoutNamed(name, &database));
        return layout != nullptr ? layout->getBlockTableRecordId() : AcDbObjectId();
    }

    AcDbDatabase database;
    AcDbLayoutManager* layouts = acdbHostApplicationServices()->layoutManager();
};

using Names = std::vector<std::string>;

TEST_F(LayoutTest, SwitchingGivesTheBlockItsNameAndBack) {
    EXPECT_EQ(names(), (Names{"Model", "布局1"}));
    AcDbObjectId layout, block;
    ASSERT_EQ(layouts->createLayout(L"A1 图幅", layout, block, &database), Acad::eOk);
    EXPECT_EQ(names(), (Names{"Model", "布局1", "A1 图幅"}));
    EXPECT_EQ(current(), "Model");
    const AcDbObjectId first = database.paperSpaceId();
    host::UndoLog& undo = database.undoLog();
    undo.beginCommand(L"LAYOUT");
    ASSERT_EQ(layouts->setCurrentLayout(L"a1 图幅", &database), Acad::eOk);
    undo.endCommand();
    EXPECT_EQ(database.paperSpaceId(), block);
    EXPECT_EQ(database.currentSpaceId(), block);
    EXPECT_EQ(current(), "A1 图幅");
    const auto* space = host::peek<AcDbBlockTableRecord>(block);
    EXPECT_TRUE(space->isPaperSpace());
    EXPECT_EQ(host::toUtf8(space->name().view()), "*Paper_Space");
    EXPECT_EQ(host::toUtf8(host::peek<AcDbBlockTableRecord>(first)->name().view()), "*Paper_Space0");
    undo.undo(1);
    EXPECT_EQ(database.paperSpaceId(), first);
    EXPECT_EQ(current(), "Model");
    undo.redo(1);
    EXPECT_EQ(database.paperSpaceId(), block);
    EXPECT_EQ(layouts->setCurrentLayout(L"Model", &database), Acad::eOk);
    EXPECT_EQ(database.currentSpaceId(), database.modelSpaceId());
    EXPECT_EQ(layouts->setCurrentLayout(L"没有", &database), Acad::eKeyNotFound);
}

TEST_F(LayoutTest, NamesAreCheckedAndTheModelTabStays) {
    AcDbObjectId layout, block;
    EXPECT_EQ(layouts->createLayout(L"", layout, block, &database), Acad::eInvalidInput);
    EXPECT_EQ(layouts->createLayout(L"a/b", layout, block, &database), Acad::eInvalidInput);
    EXPECT_EQ(layouts->createLayout(L"布局1", layout, block, &database), Acad::eDuplicateKey);
    EXPECT_EQ(layouts->renameLayout(L"Model", L"X", &database), Acad::eInvalidInput);
    EXPECT_EQ(layouts->deleteLayout(L"Model", &database), Acad::eInvalidInput);
    EXPECT_EQ(layouts->renameLayout(L"布局1", L"总图", &database), Acad::eOk);
    EXPECT_EQ(names(), (Names{"Model", "总图"}));
    EXPECT_EQ(layouts->renameLayout(L"布局1", L"Y", &database), Acad::eKeyNotFound);
}

TEST_F(LayoutTest, CopiesTakeSettingsAndEntities) {
    {
        const host::Opened<AcDbLayout> sheet(layouts->findLayoutNamed(L"布局1", &database), AcDb::kForWrite);
        EXPECT_EQ(sheet->setPlotPaperSize(594, 420), Acad::eOk);
        EXPECT_EQ(sheet->setPlotPaperMargins(5, 6, 7, 8), Acad::eOk);
        EXPECT_EQ(sheet->setCustomPrintScale(1, 500), Acad::eOk);
        EXPECT_EQ(sheet->setCustomPrintScale(0, 500), Acad::eInvalidInput);
        EXPECT_EQ(sheet->setPlotCfgName(L"打印机 ^1"), Acad::eOk);
        sheet->setPlotRotation(AcDbPlotSettings::k90degrees);
        sheet->setPlotCentered(true);
    }
    add(new AcDbLine({0, 0, 0}, {10, 0, 0}), database.paperSpaceId());
    ASSERT_EQ(layouts->copyLayout(L"布局1", L"副本", &database), Acad::eOk);
    const auto* copy = host::peek<AcDbLayout>(layouts->findLayoutNamed(L"副本", &database));
    ASSERT_NE(copy, nullptr);
    const host::ReadAccess access(*copy);
    double a = 0, b = 0, c = 0, d = 0;
    copy->getPlotPaperSize(a, b);
    EXPECT_EQ(std::pair(a, b), std::pair(594.0, 420.0));
    copy->getPlotPaperMargins(a, b, c, d);
    EXPECT_EQ(d, 8);
    copy->getCustomPrintScale(a, b);
    EXPECT_EQ(b, 500);
    AcString device;
    copy->getPlotCfgName(device);
    EXPECT_EQ(host::toUtf8(device.view()), "打印机 ^1");
    EXPECT_EQ(copy->plotRotation(), AcDbPlotSettings::k90degrees);
    EXPECT_TRUE(copy->plotCentered());
    const auto* block = host::peek<AcDbBlockTableRecord>(copy->getBlockTableRecordId());
    ASSERT_EQ(block->entities().size(), 1U);
    EXPECT_EQ(block->getLayoutId(), copy->objectId());
}

TEST_F(LayoutTest, DeletingTheCurrentSheetMakesAnotherCurrent) {
    AcDbObjectId layout, block;
    ASSERT_EQ(layouts->createLayout(L"B", layout, block, &database), Acad::eOk);
    const AcDbObjectId line = add(new AcDbLine({0, 0, 0}, {10, 0, 0}), database.paperSpaceId());
    layouts->setCurrentLayout(L"布局1", &database);
    ASSERT_EQ(layouts->deleteLayout(L"布局1", &database), Acad::eOk);
    EXPECT_EQ(names(), (Names{"Model", "B"}));
    EXPECT_EQ(database.paperSpaceId(), block);
    EXPECT_EQ(current(), "B");
    EXPECT_TRUE(line.isErased());
    ASSERT_EQ(layouts->deleteLayout(L"B", &database), Acad::eOk);
    EXPECT_EQ(names(), (Names{"Model", "布局1"})) << "a drawing keeps one sheet";
    EXPECT_TRUE(database.paperSpaceId().isValid());
    EXPECT_FALSE(database.paperSpaceId().isErased());
}

/// Lines and clips as they are drawn.
class Recorder : public host::PrimitiveSink {
public:
    void polyline(std::span<const AcGePoint3d> points, const host::Pen&) override {
        lines.emplace_back(points.front(), points.back());
    }
    void area(const host::Area& area, const host::Pen& pen) override {
        areas.push_back(pen.color);
        corners += area.points.size();
    }
    void pushClip(std::span<const AcGePoint3d> polygon) override {
        clips.emplace_back(polygon[0], polygon[2]);
    }
    std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines, clips;
    std::vector<AcCmEntityColor> areas;
    std::size_t corners = 0;
};

void drawInto(AcDbDatabase& database, AcDbEntity& entity, Recorder& recorder,
              AcGiRegenType type = kAcGiStandardDisplay) {
    const std::unique_ptr<host::DrawingSource> source = host::drawingSource(database);
    host::FlattenOptions options;
    options.regenType = type;
    host::Flattener flattener(*source, recorder, options);
    const host::ReadAccess access(entity);
    flattener.draw(entity);
}

AcDbViewport* viewport() {
    auto* made = new AcDbViewport;
    made->setCenterPoint({100, 50, 0});
    made->setWidth(80);
    made->setHeight(40);
    made->setViewHeight(400);
    made->setViewCenter({1000, 500});
    return made;
}

TEST_F(LayoutTest, ViewportsShowTheModelToScale) {
    add(new AcDbLine({1000, 500, 0}, {1100, 500, 0}), database.modelSpaceId());
    AcDbViewport* made = viewport();
    EXPECT_NEAR(made->customScale(), 0.1, 1e-12);
    add(made, database.paperSpaceId());
    Recorder recorder;
    drawInto(database, *made, recorder);
    ASSERT_EQ(recorder.lines.size(), 2U) << "frame and line";
    EXPECT_TRUE(recorder.lines[1].first.isEqualTo({100, 50, 0}));
    EXPECT_TRUE(recorder.lines[1].second.isEqualTo({110, 50, 0}));
    ASSERT_EQ(recorder.clips.size(), 1U);
    EXPECT_TRUE(recorder.clips[0].first.isEqualTo({60, 30, 0}));
    EXPECT_TRUE(recorder.clips[0].second.isEqualTo({140, 70, 0}));
    {
        const host::Opened<AcDbViewport> open(made->objectId(), AcDb::kForWrite);
        open->setTwistAngle(host::halfPi);
        open->setViewCenter({-500, 1000});
    }
    Recorder turned;
    drawInto(database, *made, turned);
    EXPECT_TRUE(turned.lines[1].second.isEqualTo({100, 60, 0}));
    {
        const host::Opened<AcDbViewport> open(made->objectId(), AcDb::kForWrite);
        AcDbObjectIdArray frozen;
        frozen.append(database.layerZero());
        open->freezeLayersInViewport(frozen);
    }
    Recorder without;
    drawInto(database, *made, without);
    EXPECT_EQ(without.lines.size(), 1U);
    Recorder measured;
    drawInto(database, *made, measured, kAcGiForExtents);
    EXPECT_EQ(measured.lines.size(), 1U) << "the model does not widen the sheet";
}

TEST_F(LayoutTest, DrawingGoesToTheModelWhileAViewportIsActive) {
    AcDbViewport* made = viewport();
    add(made, database.paperSpaceId());
    EXPECT_EQ(database.setActiveViewport(made->objectId()), Acad::eInvalidInput) << "in the model tab";
    database.setTilemode(false);
    host::UndoLog& undo = database.undoLog();
    undo.beginCommand(L"MSPACE");
    EXPECT_EQ(database.setActiveViewport(made->objectId()), Acad::eOk);
    undo.endCommand();
    EXPECT_EQ(database.activeViewportId(), made->objectId());
    EXPECT_EQ(database.currentSpaceId(), database.modelSpaceId());
    EXPECT_EQ(current(), "布局1");
    undo.undo(1);
    EXPECT_EQ(database.currentSpaceId(), database.paperSpaceId());
    undo.redo(1);
    EXPECT_EQ(database.currentSpaceId(), database.modelSpaceId());
    host::Opened<AcDbViewport>(made->objectId(), AcDb::kForWrite)->setOff();
    EXPECT_TRUE(database.activeViewportId().isNull()) << "one that is off cannot be";
    EXPECT_EQ(database.setActiveViewport(made->objectId()), Acad::eInvalidInput);
    host::Opened<AcDbViewport>(made->objectId(), AcDb::kForWrite)->setOn();
    layouts->setCurrentLayout(L"Model", &database);
    layouts->setCurrentLayout(L"布局1", &database);
    EXPECT_EQ(database.currentSpaceId(), database.paperSpaceId()) << "layouts are entered by the sheet";
    AcDbViewport* sheet = viewport();
    sheet->setNumber(1);
    add(sheet, database.paperSpaceId());
    database.setActiveViewport(made->objectId());
    database.setActiveViewport({});
    const auto* layout = host::peek<AcDbLayout>(layouts->findLayoutNamed(L"布局1", &database));
    EXPECT_EQ(layout->activeViewportId(), sheet->objectId()) << "files name the sheet's own";
    EXPECT_TRUE(database.activeViewportId().isNull());
}

// Files number only the viewports of the layout that was shown last.
TEST_F(LayoutTest, TheFirstUnnumberedViewportIsTheSheets) {
    AcDbViewport* sheet = viewport();
    AcDbViewport* shown = viewport();
    for (AcDbViewport* one : {sheet, shown}) {
        one->setNumber(0);
        add(one, database.paperSpaceId());
    }
    const host::ReadAccess first(*sheet), second(*shown);
    EXPECT_TRUE(sheet->isSheet());
    EXPECT_FALSE(shown->isSheet());
    EXPECT_TRUE(shown->isOn());
}

TEST_F(LayoutTest, ViewportsKeepTheirFields) {
    const std::unique_ptr<AcDbViewport> made(viewport());
    made->setLayer(database.layerZero());
    made->setLinetype(database.byLayerLinetype());
    made->setTwistAngle(0.25);
    made->setViewDirection({1, 1, 1});
    made->setViewTarget({5, 6, 7});
    made->setLocked();
    AcDbObjectIdArray frozen;
    frozen.append(database.layerZero());
    made->freezeLayersInViewport(frozen);
    const std::unique_ptr<AcDbEntity> copy(AcDbEntity::cast(made->clone()));
    EXPECT_EQ(bytesOf(*copy), bytesOf(*made));
    const host::ResbufList list = resbufOf(*made);
    host::ResbufDxfReader reader(&database, list.get());
    AcDbViewport back;
    ASSERT_EQ(back.dxfIn(&reader), Acad::eOk);
    EXPECT_EQ(back.linetypeId(), database.byLayerLinetype());
    EXPECT_EQ(groupsOf(back), groupsOf(*made));
    EXPECT_TRUE(back.isLocked());
    EXPECT_TRUE(back.isLayerFrozenInViewport(database.layerZero()));
    const std::string bytes = bytesOf(*made);
    AcDbViewport target;
    const std::string before = bytesOf(target);
    for (std::size_t size = 0; size < bytes.size(); size += 5) {
        host::MemoryDwgFiler filer(AcDb::kCopyFiler, nullptr, std::string_view(bytes).substr(0, size));
        ASSERT_NE(target.dwgIn(&filer), Acad::eOk);
        EXPECT_EQ(target.data().width, 0.0);
    }
    // Dragging a corner leaves what is seen in its place.
    const AcGePoint3d shown = made->modelToPaper() * AcGePoint3d(3, 4, 5);
    AcDbIntArray corner;
    corner.append(3);
    ASSERT_EQ(made->moveGripPointsAt(corner, {10, 20, 0}), Acad::eOk);
    EXPECT_NEAR(made->width(), 90, 1e-12);
    EXPECT_TRUE((made->modelToPaper() * AcGePoint3d(3, 4, 5)).isEqualTo(shown));
    EXPECT_EQ(made->moveGripPointsAt(corner, {-100, 0, 0}), Acad::eInvalidInput);
}

TEST_F(LayoutTest, FillingsAreDrawn) {
    auto* hatch = new AcDbHatch;
    AcGePoint2dArray corners;
    for (const AcGePoint2d& point :
         {AcGePoint2d(0, 0), AcGePoint2d(10, 0), AcGePoint2d(10, 10), AcGePoint2d(0, 10)}) {
        corners.append(point);
    }
    hatch->appendLoop(AcDbHatch::kExternal, corners, AcGeDoubleArray());
    for (AcGePoint2d& point : corners) {
        point = AcGePoint2d(2, 2) + point.asVector() * 0.5;
    }
    hatch->appendLoop(AcDbHatch::kDefault, corners, AcGeDoubleArray());
    add(hatch, database.modelSpaceId());
    Recorder solid;
    drawInto(database, *hatch, solid);
    EXPECT_EQ(solid.areas.size(), 1U) << "one area with its hole";
    EXPECT_EQ(solid.corners, 8U);
    {
        const host::Opened<AcDbHatch> open(hatch->objectId(), AcDb::kForWrite);
        open->setPatternSpace(1e-8);
        open->setPattern(AcDbHatch::kUserDefined, L"_USER");
    }
    Recorder dense;
    drawInto(database, *hatch, dense);
    EXPECT_EQ(dense.areas.size(), 1U) << "lines without number look solid";
    {
        const host::Opened<AcDbHatch> open(hatch->objectId(), AcDb::kForWrite);
        open->setPatternSpace(2.5);
    }
    Recorder lines;
    drawInto(database, *hatch, lines);
    EXPECT_EQ(lines.lines.size(), 6U);
    auto* wipeout = new AcDbWipeout;
    AcGePoint3dArray outline;
    outline.append({0, 0, 0});
    outline.append({4, 0, 0});
    outline.append({0, 4, 0});
    ASSERT_EQ(wipeout->setOutline(outline), Acad::eOk);
    add(wipeout, database.modelSpaceId());
    Recorder hidden;
    drawInto(database, *wipeout, hidden);
    ASSERT_EQ(hidden.areas.size(), 1U);
    EXPECT_TRUE(hidden.areas[0].isNone()) << "the colour of the background";
    EXPECT_EQ(hidden.corners, 3U);
}

} // namespace
