// Layouts on paper: what their viewports show of the model, how linetypes are scaled in them, and where page
// setups put a tab's content on the sheet.
#include "tests/temporaryfolder.h"

#include "host/db/db.h"
#include "host/db/dbents.h"
#include "host/plot/plotjob.h"
#include "host/rx/text.h"

#include <QImage>
#include <gtest/gtest.h>
#include <limits>

namespace host {
namespace {

class LayoutPlotTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        initializeRuntime();
        initializeDatabaseClasses();
    }
    LayoutPlotTest() { mDatabase.setTilemode(false); }

    template <class Entity>
    Entity* add(Entity* entity, AcDbObjectId space, const wchar_t* layer = L"0") {
        AcDbObjectId id;
        const Opened<AcDbBlockTableRecord> block(space, AcDb::kForWrite);
        block->appendAcDbEntity(id, entity);
        entity->setLayer(layer);
        entity->close();
        return entity;
    }
    // A filled square of the model around a point.
    void square(double x, double y, double size, int color, const wchar_t* layer = L"0") {
        auto* hatch = new AcDbSolid({x - size, y - size, 0}, {x + size, y - size, 0}, {x - size, y + size, 0},
                                    {x + size, y + size, 0});
        add(hatch, mDatabase.modelSpaceId(), layer);
        Opened<AcDbEntity>(hatch->objectId(), AcDb::kForWrite)
            ->setColorIndex(static_cast<Adesk::UInt16>(color));
    }
    AcDbObjectId addLayer(const wchar_t* name) {
        auto* record = new AcDbLayerTableRecord;
        record->setName(name);
        const Opened<AcDbLayerTable> layers(mDatabase.layerTableId(), AcDb::kForWrite);
        AcDbObjectId id;
        layers->add(id, record);
        record->close();
        return id;
    }
    // Shows the model around the origin, two of its units a millimetre, in a square of 80 in the sheet's
    // middle (100, 50).
    AcDbViewport* viewport(const wchar_t* layer = L"0") {
        auto* made = new AcDbViewport;
        made->setCenterPoint({100, 50, 0});
        made->setWidth(80);
        made->setHeight(80);
        made->setViewHeight(160);
        made->setViewCenter({0, 0});
        return add(made, mDatabase.paperSpaceId(), layer);
    }
    template <class Change>
    void change(AcDbViewport* viewport, Change apply) {
        const Opened<AcDbViewport> open(viewport->objectId(), AcDb::kForWrite);
        apply(*open.get());
    }
    const AcDbLayout& layout() const {
        return *peek<AcDbLayout>(peek<AcDbBlockTableRecord>(mDatabase.paperSpaceId())->getLayoutId());
    }
    PageSetup sheet200x100() const {
        PageSetup setup = pageSetupOf(layout());
        setup.paper = {200, 100};
        setup.margins = {};
        setup.quarterTurns = 0;
        setup.area = PageSetup::Area::layout;
        setup.scale = 1;
        setup.isCentred = false;
        return setup;
    }
    // A pixel a millimetre of the sheet.
    QImage image(const PageSetup& setup) {
        const std::filesystem::path path = mFolder.path() / "sheet.png";
        EXPECT_EQ(toUtf8(plotTab(layout(), setup, path, 200)), "");
        return QImage(QString::fromStdString(path.string()));
    }
    // The colour at a place of the sheet, millimetres from its lower left corner.
    static QRgb at(const QImage& image, int x, int y) { return image.pixel(x, 99 - y) & 0xFFFFFF; }

    static constexpr QRgb white = 0xFFFFFF, red = 0xFF0000, green = 0x00FF00;
    AcDbDatabase mDatabase;
    TemporaryFolder mFolder;
};

TEST_F(LayoutPlotTest, ViewportsShowTheirPartOfTheModelAndNoMore) {
    square(0, 0, 10, 1);
    square(60, 0, 10, 3);
    square(0, 90, 20, 1); // reaches into the frame from above
    AcDbViewport* shown = viewport();
    QImage picture = image(sheet200x100());
    ASSERT_EQ(picture.size(), QSize(200, 100));
    EXPECT_EQ(at(picture, 100, 50), red);
    EXPECT_EQ(at(picture, 130, 50), green);
    EXPECT_EQ(at(picture, 100, 87), red);
    EXPECT_EQ(at(picture, 100, 95), white) << "cut at the frame";
    EXPECT_EQ(at(picture, 110, 50), white);
    change(shown, [](AcDbViewport& open) { open.setTwistAngle(halfPi); });
    picture = image(sheet200x100());
    EXPECT_EQ(at(picture, 100, 80), green) << "turned counterclockwise";
    change(shown, [](AcDbViewport& open) {
        open.setTwistAngle(0);
        open.setViewTarget({60, 0, 0});
    });
    picture = image(sheet200x100());
    EXPECT_EQ(at(picture, 100, 50), green);
    EXPECT_EQ(at(picture, 70, 50), red);
    change(shown, [](AcDbViewport& open) { open.setOff(); });
    EXPECT_EQ(at(image(sheet200x100()), 100, 50), white);
}

TEST_F(LayoutPlotTest, ExtentsOfALayoutAreThoseOfTheSheet) {
    square(0, 0, 5000, 1);
    viewport();
    PageSetup setup = sheet200x100();
    setup.area = PageSetup::Area::extents;
    const PlotWindow window = placementOf(setup, layout()).window;
    EXPECT_EQ(window.left, 60);
    EXPECT_EQ(window.right, 140);
    EXPECT_EQ(window.bottom, 10);
    EXPECT_EQ(window.top, 90);
}

TEST_F(LayoutPlotTest, ViewportsAreCutAtTheirClippingEntity) {
    square(0, 0, 80, 1);
    auto* circle = new AcDbCircle({100, 50, 0}, AcGeVector3d::kZAxis, 40);
    add(circle, mDatabase.paperSpaceId());
    AcDbViewport* shown = viewport();
    change(shown, [&](AcDbViewport& open) { open.setNonRectClipEntityId(circle->objectId()); });
    const QImage picture = image(sheet200x100());
    EXPECT_EQ(at(picture, 75, 50), red);
    EXPECT_EQ(at(picture, 75, 75), red);
    EXPECT_EQ(at(picture, 64, 86), white) << "a corner outside of the circle";
    EXPECT_EQ(at(picture, 60, 12), white) << "without the rectangle's frame";
    // Lines that leave the picture far away keep their direction.
    add(new AcDbLine({-70, 10, 0}, {1e7, 1e6 + 10, 0}), mDatabase.modelSpaceId());
    add(new AcDbLine({-1e7, 5e6, 0}, {5e6, 1e7, 0}), mDatabase.modelSpaceId());
    const QImage lines = image(sheet200x100());
    EXPECT_EQ(at(lines, 80, 50), red);
    EXPECT_NE(at(lines, 100, 58), red) << "10 + 7, halved, above the middle";
}

// What a viewport shows follows the layers of the model, frozen for it or for all, not the frame's own.
TEST_F(LayoutPlotTest, LayersAreFrozenForEachViewport) {
    const AcDbObjectId pipes = addLayer(L"管线"), frames = addLayer(L"视口");
    square(-30, 0, 10, 1, L"管线");
    square(30, 0, 10, 3);
    AcDbViewport* shown = viewport(L"视口");
    EXPECT_EQ(at(image(sheet200x100()), 85, 50), red);
    change(shown, [&](AcDbViewport& open) {
        AcDbObjectIdArray frozen;
        frozen.append(pipes);
        open.freezeLayersInViewport(frozen);
    });
    Opened<AcDbLayerTableRecord>(frames, AcDb::kForWrite)->setIsFrozen(true);
    QImage picture = image(sheet200x100());
    EXPECT_EQ(at(picture, 85, 50), white);
    EXPECT_EQ(at(picture, 115, 50), green);
    EXPECT_EQ(at(picture, 60, 30), white) << "the frame lies on a frozen layer";
}

// Gaps of a dashed line that crosses the picture's middle row.
int gapsOf(const QImage& image) {
    int gaps = 0;
    for (int x = 1; x < image.width(); ++x)
        gaps += qGray(image.pixel(x - 1, 50)) < 200 && qGray(image.pixel(x, 50)) >= 200 ? 1 : 0;
    return gaps;
}

TEST_F(LayoutPlotTest, LinetypesInViewportsAreScaledToThePaperUnlessSwitchedOff) {
    auto* dashed = new AcDbLinetypeTableRecord;
    dashed->setName(L"虚线");
    dashed->setNumDashes(2);
    dashed->setDashLengthAt(0, 6);
    dashed->setDashLengthAt(1, -4);
    dashed->setPatternLength(10);
    AcDbObjectId linetype;
    Opened<AcDbLinetypeTable>(mDatabase.linetypeTableId(), AcDb::kForWrite)->add(linetype, dashed);
    dashed->close();
    auto* line = new AcDbLine({-80, -1, 0}, {80, -1, 0}); // in the middle of a row of pixels
    add(line, mDatabase.modelSpaceId());
    Opened<AcDbEntity>(line->objectId(), AcDb::kForWrite)->setLinetype(linetype);
    viewport();
    const auto scaling = [&](bool toPaper) {
        mDatabase.setVariable(*findHeaderVariable("PSLTSCALE"), Adesk::Int16(toPaper ? 1 : 0));
    };
    scaling(true);
    const int onPaper = gapsOf(image(sheet200x100()));
    scaling(false);
    const int inModel = gapsOf(image(sheet200x100()));
    EXPECT_NEAR(onPaper, 8, 1) << "80 mm of patterns 10 mm long";
    EXPECT_NEAR(inModel, 16, 1) << "patterns of 10 units, 5 mm";
    scaling(true);
    mDatabase.setLtscale(2);
    EXPECT_NEAR(gapsOf(image(sheet200x100())), 4, 1);
}

TEST_F(LayoutPlotTest, SheetsOfLayoutsLieAsTheirSetupSays) {
    PageSetup setup = sheet200x100();
    setup.paper = {210, 297};
    setup.margins = {7.5, 20, 10, 25};
    setup.quarterTurns = 1;
    PagePlacement placed = placementOf(setup, layout());
    EXPECT_EQ(placed.sheet.width, 297);
    EXPECT_EQ(placed.sheet.height, 210);
    EXPECT_EQ(placed.sheet.originX, -20) << "the paper's lower margin";
    EXPECT_EQ(placed.sheet.originY, -10) << "the paper's right margin";
    EXPECT_EQ(placed.printableWidth, 297 - 45);
    setup.quarterTurns = 3;
    placed = placementOf(setup, layout());
    EXPECT_EQ(placed.sheet.originX, -25);
    EXPECT_EQ(placed.sheet.originY, -7.5);
    setup.quarterTurns = 0;
    setup.offsetX = 5;
    placed = placementOf(setup, layout());
    EXPECT_EQ(placed.sheet.width, 210);
    EXPECT_EQ(placed.sheet.originX, -12.5);
    setup.area = PageSetup::Area::window;
    setup.window = {1000, 2000, 1100, 2050};
    setup.scale = 0;
    setup.isCentred = true;
    placed = placementOf(setup, layout());
    EXPECT_DOUBLE_EQ(placed.sheet.scale, 1.925);
    EXPECT_NEAR((1050 - placed.sheet.originX) * placed.sheet.scale, 7.5 + 192.5 / 2, 1e-9);
    EXPECT_NEAR((2025 - placed.sheet.originY) * placed.sheet.scale, 20 + 252.0 / 2, 1e-9);
    setup.scale = 25.4;
    setup.isCentred = false;
    setup.offsetX = 1;
    placed = placementOf(setup, layout());
    EXPECT_NEAR((1000 - placed.sheet.originX) * placed.sheet.scale, 8.5, 1e-9);
}

// What files may hold: views and setups that are none.
TEST_F(LayoutPlotTest, HostileViewportsAndSetupsGiveAWholePicture) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    square(0, 0, 1e200, 1);
    add(new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 30), mDatabase.modelSpaceId());
    for (const double bad : {0.0, none, 1e300, -5.0}) {
        AcDbViewport* shown = viewport();
        change(shown, [&](AcDbViewport& open) {
            open.setViewCenter({bad, 0});
            open.setViewTarget({bad, bad, bad});
            open.setTwistAngle(bad);
            open.setCenterPoint({bad, 50, 0});
        });
    }
    auto* line = new AcDbLine({0, 0, 0}, {10, 10, 0}); // encloses nothing
    add(line, mDatabase.paperSpaceId());
    change(viewport(), [&](AcDbViewport& open) { open.setNonRectClipEntityId(line->objectId()); });
    PageSetup setup = sheet200x100();
    EXPECT_EQ(image(setup).size(), QSize(200, 100));
    setup.area = PageSetup::Area::window;
    setup.window = {none, 0, 1e300, none};
    setup.scale = 0;
    EXPECT_EQ(image(setup).size(), QSize(200, 100));
    {
        const Opened<AcDbLayout> open(layout().objectId(), AcDb::kForWrite);
        open->setPlotPaperSize(1e300, 1e300);
    }
    EXPECT_EQ(pageSetupOf(layout()).paper.width, 0);
}

TEST_F(LayoutPlotTest, UpsideDownIsHalfATurn) {
    square(30, 20, 10, 1);
    viewport();
    PageSetup setup = sheet200x100();
    EXPECT_EQ(at(image(setup), 115, 60), red);
    setup.quarterTurns = 2;
    const QImage picture = image(setup);
    EXPECT_EQ(at(picture, 85, 40), red);
    EXPECT_EQ(at(picture, 115, 60), white);
}

TEST_F(LayoutPlotTest, SetupsAreKeptInTheLayout) {
    PageSetup setup = sheet200x100();
    setup.paper = {297, 420};
    setup.margins = {1, 2, 3, 4};
    setup.quarterTurns = 3;
    setup.area = PageSetup::Area::window;
    setup.window = {1, 2, 30, 40};
    setup.scale = 0.5;
    setup.isCentred = true;
    setup.styleSheet = L"monochrome.ctb";
    setup.hasLineWeights = false;
    {
        const Opened<AcDbLayout> open(layout().objectId(), AcDb::kForWrite);
        storePageSetup(setup, L"PDF", *open.get());
    }
    const PageSetup kept = pageSetupOf(layout());
    EXPECT_EQ(kept.paper.height, 420);
    EXPECT_EQ(kept.margins.top, 4);
    EXPECT_EQ(kept.quarterTurns, 3);
    EXPECT_EQ(kept.area, PageSetup::Area::window);
    EXPECT_EQ(kept.window.top, 40);
    EXPECT_DOUBLE_EQ(kept.scale, 0.5);
    EXPECT_TRUE(kept.isCentred);
    EXPECT_TRUE(kept.look().isMonochrome);
    EXPECT_FALSE(kept.look().hasLineWeights);
}

TEST(PlotAnswers, PapersAndScalesAreUnderstood) {
    const auto paper = [](const wchar_t* text) {
        const std::optional<Paper> found = paperNamed(text);
        return found ? toUtf8(paperText(*found)) : std::string("-");
    };
    EXPECT_EQ(paper(L"A3"), "A3 (297.00 x 420.00 毫米)");
    EXPECT_EQ(paper(L"ISO A3 (420.00 x 297.00 毫米)"), paper(L"a3"));
    EXPECT_EQ(paper(L"ISO_full_bleed_A1_(841.00_x_594.00_MM)"), paper(L"A1"));
    EXPECT_EQ(paper(L"1050×420"), "420.00 x 1050.00 毫米");
    EXPECT_EQ(paper(L"8.5x11 英寸"), "215.90 x 279.40 毫米");
    for (const wchar_t* text : {L"", L"A33", L"A", L"0x100", L"99999x2", L"x", L"420x"})
        EXPECT_EQ(paper(text), "-") << toUtf8(text);
    EXPECT_DOUBLE_EQ(plotScale(L"1:500"), 0.002);
    EXPECT_DOUBLE_EQ(plotScale(L"1 = 500"), 0.002);
    EXPECT_DOUBLE_EQ(plotScale(L"2/1"), 2);
    EXPECT_DOUBLE_EQ(plotScale(L"0.5"), 0.5);
    for (const wchar_t* text : {L"", L"1:0", L"-1:2", L"1:2:3", L"abc", L"1:", L"nan", L"1:-5"})
        EXPECT_EQ(plotScale(text), 0) << toUtf8(text);
}

} // namespace
} // namespace host
