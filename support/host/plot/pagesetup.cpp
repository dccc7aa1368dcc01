#include "host/plot/pagesetup.h"

#include "host/db/dbents.h"
#include "host/db/drawingsource.h"
#include "host/ed/ed.h"
#include "host/ed/viewhistory.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <map>

namespace host {

namespace {

constexpr double longestSide = 1e5; // of paper that can be meant
constexpr double freeMargin = 10;   // where no device says what it can print

AcDbObjectId blockOf(const AcDbLayout& layout) {
    return layout.modelType() ? layout.database()->modelSpaceId() : layout.getBlockTableRecordId();
}

// Draws a tab, the viewports first where the layout wants it.
void drawTab(const AcDbLayout& layout, Flattener& flattener) {
    const auto* space = peek<AcDbBlockTableRecord>(blockOf(layout));
    if (space == nullptr)
        return;
    const ReadAccess layoutAccess(layout);
    const bool isModel = layout.modelType();
    const std::vector<AcDbStub*> order = drawOrder(*space);
    const auto draw = [&](const auto& isDrawn) {
        for (AcDbStub* stub : order) {
            auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            if (entity == nullptr || !isDrawn(*entity))
                continue;
            const ReadAccess access(*entity);
            flattener.draw(*entity);
        }
    };
    const auto isViewport = [](const AcDbEntity& entity) { return entity.isKindOf(AcDbViewport::desc()); };
    if (isModel) {
        draw([](const AcDbEntity&) { return true; });
    } else if (layout.drawViewportsFirst()) {
        draw(isViewport);
        draw([&](const AcDbEntity& entity) { return !isViewport(entity); });
    } else {
        draw([](const AcDbEntity&) { return true; });
    }
}

PlotWindow drawnWindow(const AcDbLayout& layout) {
    const std::unique_ptr<DrawingSource> source = drawingSource(*layout.database());
    return drawnContent(*source, [&](Flattener& flattener) { drawTab(layout, flattener); }).window;
}

// The view on the screen; the extents for a drawing that is on none.
PlotWindow displayedWindow(const AcDbLayout& layout) {
    const AcApDocument* document = curDoc();
    if (document == nullptr || document->database() != layout.database())
        return drawnWindow(layout);
    const ShownView view = shownView();
    const ResbufList screen = systemVariable(L"SCREENSIZE");
    const double ratio = screen != nullptr && screen->resval.rpoint[1] > 0
                             ? screen->resval.rpoint[0] / screen->resval.rpoint[1]
                             : 4.0 / 3;
    const double halfHeight = view.height / 2, halfWidth = halfHeight * ratio;
    return {view.centre.x - halfWidth, view.centre.y - halfHeight, view.centre.x + halfWidth,
            view.centre.y + halfHeight};
}

PlotWindow limitsOf(const AcDbLayout& layout) {
    const std::string prefix = layout.modelType() ? "" : "P";
    const auto corner = [&](const char* name) {
        return std::get<AcGePoint2d>(layout.database()->variable(*findHeaderVariable(prefix + name)));
    };
    const AcGePoint2d low = corner("LIMMIN"), high = corner("LIMMAX");
    return {low.x, low.y, high.x, high.y};
}

// A named view seen from above.
std::optional<PlotWindow> namedView(const AcDbDatabase& database, const std::wstring& name) {
    constexpr short centreX = 10, centreY = 20, targetX = 12, targetY = 22, heightCode = 40, widthCode = 41;
    AcDbObjectId id;
    const auto* table = peek<AcDbViewTable>(database.viewTableId());
    if (table == nullptr || table->getAt(name.c_str(), id) != Acad::eOk)
        return std::nullopt;
    const GroupList* groups = peek<AcDbViewTableRecord>(id)->keptGroups("AcDbViewTableRecord");
    if (groups == nullptr)
        return std::nullopt;
    std::map<short, double> numbers;
    for (const GroupList::Group group : *groups) {
        double value = 0;
        std::from_chars(group.text.data(), group.text.data() + group.text.size(), value);
        numbers.emplace(group.code, value);
    }
    const double x = numbers[centreX] + numbers[targetX], y = numbers[centreY] + numbers[targetY];
    const double halfWidth = numbers[widthCode] / 2, halfHeight = numbers[heightCode] / 2;
    if (!(halfWidth > 0) || !(halfHeight > 0))
        return std::nullopt;
    return PlotWindow{x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight};
}

PlotWindow areaOf(const PageSetup& setup, const AcDbLayout& layout) {
    switch (setup.area) {
    case PageSetup::Area::display:
        return displayedWindow(layout);
    case PageSetup::Area::limits:
        return limitsOf(layout);
    case PageSetup::Area::window:
        return setup.window;
    case PageSetup::Area::view:
        if (const std::optional<PlotWindow> view = namedView(*layout.database(), setup.view))
            return *view;
        break;
    default:
        break;
    }
    return drawnWindow(layout);
}

// Margins as the drawing is seen, turned back upright.
PageSetup::Margins seenMargins(const PageSetup& setup) {
    const PageSetup::Margins& given = setup.margins;
    switch (setup.quarterTurns & 3) {
    case 1:
        return {given.bottom, given.right, given.top, given.left};
    case 2:
        return {given.right, given.top, given.left, given.bottom};
    case 3:
        return {given.top, given.left, given.bottom, given.right};
    default:
        return given;
    }
}

// A sheet of the A series, as it suits the window.
Paper standardPaper(const PlotWindow& window, double scale) {
    constexpr std::array longSides{297.0, 420.0, 594.0, 841.0, 1189.0};
    Paper paper;
    for (const double longSide : longSides) {
        const Sheet sheet = Sheet::standard(window, freeMargin, longSide);
        paper = {sheet.width, sheet.height};
        if (sheet.scale >= scale && (scale > 0 || longSide > longSides[0]))
            break;
    }
    return paper;
}

} // namespace

PaperLook PageSetup::look() const {
    PaperLook look;
    look.hasLineWeights = hasLineWeights;
    look.isMonochrome = usesStyles && fold(styleSheet).starts_with(L"monochrome");
    return look;
}

PageSetup pageSetupOf(const AcDbLayout& layout) {
    using Settings = AcDbPlotSettings;
    const ReadAccess access(layout);
    PageSetup setup;
    layout.getPlotPaperSize(setup.paper.width, setup.paper.height);
    PageSetup::Margins& margins = setup.margins;
    layout.getPlotPaperMargins(margins.left, margins.bottom, margins.right, margins.top);
    if (!(setup.paper.width > margins.left + margins.right) || !(setup.paper.width < longestSide) ||
        !(setup.paper.height > margins.bottom + margins.top) || !(setup.paper.height < longestSide)) {
        setup.paper = {};
        setup.margins = {};
    }
    setup.isInches = layout.plotPaperUnits() == Settings::kInches;
    setup.quarterTurns = layout.plotRotation() & 3;
    constexpr std::array areas{PageSetup::Area::display, PageSetup::Area::extents, PageSetup::Area::limits,
                               PageSetup::Area::view,    PageSetup::Area::window,  PageSetup::Area::layout};
    const auto type = static_cast<std::size_t>(layout.plotType());
    setup.area = type < areas.size() ? areas[type] : PageSetup::Area::extents;
    if (setup.area == PageSetup::Area::layout && (layout.modelType() || !(setup.paper.width > 0)))
        setup.area = PageSetup::Area::extents;
    PlotWindow& window = setup.window;
    layout.getPlotWindowArea(window.left, window.bottom, window.right, window.top);
    AcString text;
    layout.getPlotViewName(text);
    setup.view = text.kwszPtr();
    layout.getCurrentStyleSheet(text);
    setup.styleSheet = text.kwszPtr();
    double numerator = 1, denominator = 1;
    layout.getCustomPrintScale(numerator, denominator);
    const bool isFitted =
        layout.scalesToFit() || !(setup.paper.width > 0) || !(numerator > 0) || !(denominator > 0);
    setup.scale = isFitted ? 0 : numerator / denominator * (setup.isInches ? millimetresAnInch : 1);
    setup.isCentred = layout.plotCentered() || !(setup.paper.width > 0);
    layout.getPlotOrigin(setup.offsetX, setup.offsetY);
    setup.usesStyles = layout.plotPlotStyles();
    setup.hasLineWeights = layout.printLineweights();
    return setup;
}

void storePageSetup(const PageSetup& setup, const std::wstring& device, AcDbLayout& layout) {
    using Settings = AcDbPlotSettings;
    layout.setPlotCfgName(device.c_str());
    const std::wstring medium = formatted(L"ISO_(%.2f_x_%.2f_MM)", setup.paper.width, setup.paper.height);
    layout.setCanonicalMediaName(medium.c_str());
    layout.setPlotPaperSize(setup.paper.width, setup.paper.height);
    layout.setPlotPaperMargins(setup.margins.left, setup.margins.bottom, setup.margins.right,
                               setup.margins.top);
    layout.setPlotPaperUnits(setup.isInches ? Settings::kInches : Settings::kMillimeters);
    layout.setPlotRotation(static_cast<Settings::PlotRotation>(setup.quarterTurns & 3));
    constexpr std::array types{Settings::kDisplay, Settings::kExtents, Settings::kLimits,
                               Settings::kView,    Settings::kWindow,  Settings::kLayout};
    layout.setPlotType(types[static_cast<std::size_t>(setup.area)]);
    layout.setPlotWindowArea(setup.window.left, setup.window.bottom, setup.window.right, setup.window.top);
    layout.setPlotViewName(setup.view.c_str());
    layout.setScalesToFit(!(setup.scale > 0));
    if (setup.scale > 0)
        layout.setCustomPrintScale(setup.scale / (setup.isInches ? millimetresAnInch : 1), 1);
    layout.setPlotCentered(setup.isCentred);
    layout.setPlotOrigin(setup.offsetX, setup.offsetY);
    layout.setPlotPlotStyles(setup.usesStyles);
    layout.setCurrentStyleSheet(setup.styleSheet.c_str());
    layout.setPrintLineweights(setup.hasLineWeights);
}

PagePlacement placementOf(const PageSetup& setup, const AcDbLayout& layout) {
    PagePlacement placed;
    const bool isSheet = setup.area == PageSetup::Area::layout;
    placed.window = isSheet ? PlotWindow() : areaOf(setup, layout);
    const PlotWindow& window = placed.window;
    const bool hasPaper = setup.paper.width > 0 && setup.paper.height > 0;
    Paper paper = hasPaper ? setup.paper : standardPaper(window, setup.scale);
    if (hasPaper && (setup.quarterTurns & 1) != 0)
        std::swap(paper.width, paper.height);
    const PageSetup::Margins margins =
        hasPaper ? seenMargins(setup) : PageSetup::Margins{freeMargin, freeMargin, freeMargin, freeMargin};
    const double width = placed.printableWidth = paper.width - margins.left - margins.right;
    const double height = placed.printableHeight = paper.height - margins.bottom - margins.top;
    const double across = window.right - window.left, up = window.top - window.bottom;
    double scale = setup.scale;
    if (!(scale > 0)) {
        scale = std::min(across > 0 ? width / across : HUGE_VAL, up > 0 ? height / up : HUGE_VAL);
        if (isSheet || !std::isfinite(scale))
            scale = setup.isInches ? millimetresAnInch : 1;
    }
    const bool isCentred = setup.isCentred && !isSheet;
    const double x = margins.left + (isCentred ? (width - across * scale) / 2 : setup.offsetX);
    const double y = margins.bottom + (isCentred ? (height - up * scale) / 2 : setup.offsetY);
    placed.sheet = {paper.width, paper.height, window.left - x / scale, window.bottom - y / scale, scale};
    if (isSheet) {
        const Sheet& sheet = placed.sheet;
        placed.window = {sheet.originX, sheet.originY, sheet.originX + sheet.width / scale,
                         sheet.originY + sheet.height / scale};
    }
    return placed;
}

std::wstring plotTab(const AcDbLayout& layout, const PageSetup& setup, const std::filesystem::path& path,
                     int longSide) {
    const PagePlacement placed = placementOf(setup, layout);
    PlotOptions options;
    options.sheet = placed.sheet;
    options.window = placed.window;
    options.isUpsideDown = (setup.quarterTurns & 2) != 0;
    options.look = setup.look();
    options.longSide = longSide;
    const std::unique_ptr<DrawingSource> source = drawingSource(*layout.database());
    return plotDrawing(
        *source, [&](Flattener& flattener) { drawTab(layout, flattener); }, path, options);
}

} // namespace host
