#include "host/plot/plotcommand.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/db/dbents.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <array>
#include <utility>

namespace host {

namespace {

PlotWindows*& plotWindows() {
    static PlotWindows* windows = nullptr;
    return windows;
}

// A question of the configuration: false when the user gave up.
using Question = bool (*)(AcApDocument& document, PlotJob& job);

// Asks for one line until accept takes it; Enter leaves everything as it is. "?" calls list.
template <class Accept, class List>
bool askLine(const std::wstring& prompt, Accept accept, List list, const wchar_t* refusal) {
    for (;;) {
        const TextAnswer answer = askText(prompt, true);
        if (!answer.isValue())
            return answer.isNone();
        const std::wstring text = unquoted(answer.text);
        if (text == L"?")
            list();
        else if (accept(text))
            return true;
        else
            acutPrintf(L"\n%s", refusal);
    }
}

bool askSwitch(const wchar_t* prompt, bool& value) {
    const std::optional<bool> answer = askYesNo(prompt, value);
    value = answer.value_or(value);
    return answer.has_value();
}

std::wstring tabName(const PlotJob& job) {
    AcString name;
    job.tab().getLayoutName(name);
    return equalNoCase(name.kwszPtr(), L"Model") ? L"模型" : name.kwszPtr();
}

bool askLayout(AcApDocument& document, PlotJob& job) {
    return askLine(
        L"\n输入布局名或 [?] <" + tabName(job) + L">: ",
        [&](const std::wstring& text) {
            const std::optional<PlotJob> found = plotJobOf(document, text);
            if (found)
                job = *found;
            return found.has_value();
        },
        [&] {
            for (const AcString& name :
                 acdbHostApplicationServices()->layoutManager()->layoutNames(document.database()))
                acutPrintf(L"\n  %s", equalNoCase(name.kwszPtr(), L"Model") ? L"模型" : name.kwszPtr());
        },
        L"没有这个布局。");
}

bool askDevice(AcApDocument&, PlotJob& job) {
    return askLine(
        L"\n输入输出设备的名称或 [?] <" + std::wstring(job.device->name) + L">: ",
        [&](const std::wstring& text) {
            const PlotDevice* device = plotDeviceNamed(text);
            job.device = device != nullptr ? device : job.device;
            return device != nullptr;
        },
        [] {
            for (const PlotDevice& device : plotDevices())
                acutPrintf(L"\n  %s", device.name);
        },
        L"没有这个设备，可用 PDF、PNG、SVG。");
}

bool askPaper(AcApDocument&, PlotJob& job) {
    return askLine(
        L"\n输入图纸尺寸或 [?] <" + paperText(job.setup.paper) + L">: ",
        [&](const std::wstring& text) {
            const std::optional<Paper> paper = paperNamed(text);
            if (paper && paperText(*paper) != paperText(job.setup.paper)) {
                if (job.setup.isAcross()) // the other way round from now on
                    job.setup.quarterTurns ^= 1;
                job.setup.paper = *paper;
            }
            return paper.has_value();
        },
        [] {
            for (const PaperSize& size : paperSizes())
                acutPrintf(L"\n  %s", paperText(size.paper).c_str());
        },
        L"没有这个图纸尺寸，可以输入 A3 或 420x297（毫米）。");
}

bool askUnits(AcApDocument&, PlotJob& job) {
    const Answer answer = askKeyword(std::wstring(L"\n输入图纸单位 [英寸(I)/毫米(M)] <") +
                                         (job.setup.isInches ? L"英寸" : L"毫米") + L">: ",
                                     L"Inches Millimeters");
    if (answer.kind == Answer::Kind::keyword)
        job.setup.isInches = answer.isKeyword(L"Inches");
    return !answer.isCancelled();
}

bool askOrientation(AcApDocument&, PlotJob& job) {
    PageSetup& setup = job.setup;
    const bool isTurned = (setup.quarterTurns & 1) != 0;
    const bool isLandscape = setup.isAcross() != isTurned;
    const Answer answer = askKeyword(std::wstring(L"\n输入图形方向 [纵向(P)/横向(L)] <") +
                                         (isLandscape ? L"横向" : L"纵向") + L">: ",
                                     L"Portrait Landscape");
    if (answer.kind == Answer::Kind::keyword && answer.isKeyword(L"Landscape") != isLandscape)
        setup.quarterTurns ^= 1;
    return !answer.isCancelled();
}

bool askUpsideDown(AcApDocument&, PlotJob& job) {
    bool isUpsideDown = (job.setup.quarterTurns & 2) != 0;
    const bool answered = askSwitch(L"\n是否上下颠倒打印?", isUpsideDown);
    job.setup.quarterTurns = (job.setup.quarterTurns & 1) | (isUpsideDown ? 2 : 0);
    return answered;
}

bool askWindow(PlotJob& job) {
    const PointAnswer first = askPoint(L"\n输入窗口的第一个角点: ", nullptr, nullptr, 1);
    if (!first.isValue())
        return false;
    for (;;) {
        const std::optional<AcGePoint3d> second = askOppositeCorner(L"\n输入窗口的对角点: ", first.ucs);
        if (!second)
            return false;
        if (second->x != first.world.x && second->y != first.world.y) {
            job.setup.window = {std::min(first.world.x, second->x), std::min(first.world.y, second->y),
                                std::max(first.world.x, second->x), std::max(first.world.y, second->y)};
            return true;
        }
        acutPrintf(L"\n窗口的宽度和高度必须大于零。");
    }
}

bool askView(AcApDocument& document, PlotJob& job) {
    const auto* table = peek<AcDbViewTable>(document.database()->viewTableId());
    return askLine(
        L"\n输入视图名或 [?] <" + job.setup.view + L">: ",
        [&](const std::wstring& text) {
            const bool isThere = table->has(text.c_str());
            job.setup.view = isThere ? text : job.setup.view;
            return isThere;
        },
        [&] {
            for (AcDbStub* stub : table->records())
                if (const auto* view = peek<AcDbViewTableRecord>(AcDbObjectId(stub)))
                    acutPrintf(L"\n  %s", view->name().kwszPtr());
        },
        L"没有这个视图。");
}

bool askArea(AcApDocument& document, PlotJob& job) {
    using Area = PageSetup::Area;
    struct Row {
        Area area;
        const wchar_t* keyword;
        const wchar_t* text;
    };
    static constexpr std::array<Row, 6> rows{{{Area::display, L"Display", L"显示"},
                                              {Area::extents, L"Extents", L"范围"},
                                              {Area::limits, L"Limits", L"图形界限"},
                                              {Area::layout, L"Layout", L"布局"},
                                              {Area::view, L"View", L"视图"},
                                              {Area::window, L"Window", L"窗口"}}};
    const bool isModel = job.tab().modelType();
    const auto now = std::ranges::find(rows, job.setup.area, &Row::area);
    const Answer answer =
        askKeyword(std::wstring(L"\n输入打印区域 [显示(D)/范围(E)/") +
                       (isModel ? L"图形界限(L)" : L"布局(L)") + L"/视图(V)/窗口(W)] <" + now->text + L">: ",
                   isModel ? L"Display Extents Limits View Window" : L"Display Extents Layout View Window");
    if (answer.kind == Answer::Kind::keyword)
        job.setup.area =
            std::ranges::find_if(rows, [&](const Row& row) { return answer.isKeyword(row.keyword); })->area;
    if (answer.isKeyword(L"Window"))
        return askWindow(job);
    return job.setup.area == Area::view && !answer.isCancelled() ? askView(document, job)
                                                                 : !answer.isCancelled();
}

bool askScale(AcApDocument&, PlotJob& job) {
    if (job.setup.area == PageSetup::Area::layout && !(job.setup.scale > 0))
        job.setup.scale = job.setup.isInches ? millimetresAnInch : 1;
    const std::wstring unit = job.setup.isInches ? L"英寸" : L"毫米";
    return askLine(
        L"\n输入打印比例 (图纸" + unit + L"=图形单位) 或 [布满(F)] <" + plotScaleText(job.setup) + L">: ",
        [&](const std::wstring& text) {
            const bool isFitted = equalNoCase(text, L"F") || equalNoCase(text, L"Fit") || text == L"布满";
            const double scale = isFitted ? 0 : plotScale(text);
            if (!isFitted && !(scale > 0))
                return false;
            job.setup.scale = scale * (job.setup.isInches ? millimetresAnInch : 1);
            return true;
        },
        [] { acutPrintf(L"\n例如 1:500、1=500、2:1 或 F。"); }, L"需要比例，例如 1:500，或 F。");
}

bool askOffset(AcApDocument&, PlotJob& job) {
    PageSetup& setup = job.setup;
    if (setup.area == PageSetup::Area::layout)
        setup.isCentred = false;
    const double unit = setup.isInches ? millimetresAnInch : 1;
    const std::wstring now =
        setup.isCentred ? L"居中" : formatted(L"%.2f,%.2f", setup.offsetX / unit, setup.offsetY / unit);
    return askLine(
        L"\n输入打印偏移 (x,y) 或 [居中(C)] <" + now + L">: ",
        [&](const std::wstring& text) {
            if (equalNoCase(text, L"C") || equalNoCase(text, L"Center") || text == L"居中") {
                setup.isCentred = true;
                return setup.area != PageSetup::Area::layout;
            }
            double x = 0, y = 0;
            int length = 0;
            if (std::swscanf(text.c_str(), L"%lf,%lf%n", &x, &y, &length) != 2 ||
                static_cast<std::size_t>(length) != text.size())
                return false;
            setup.isCentred = false;
            setup.offsetX = x * unit;
            setup.offsetY = y * unit;
            return true;
        },
        [] { acutPrintf(L"\n从可打印区域的左下角算起，例如 10,10。"); },
        L"需要偏移 x,y，或 C（布局不能居中）。");
}

bool askStyles(AcApDocument&, PlotJob& job) {
    if (!askSwitch(L"\n是否按样式打印?", job.setup.usesStyles))
        return false;
    if (!job.setup.usesStyles)
        return true;
    const auto list = [] { acutPrintf(L"\n  acad.ctb\n  monochrome.ctb"); };
    return askLine(
        L"\n输入打印样式表名称或 [?] (输入 . 表示无) <" + job.setup.styleSheet + L">: ",
        [&](const std::wstring& text) {
            const std::wstring name = text == L"."                    ? L""
                                      : fold(text).ends_with(L".ctb") ? text
                                                                      : text + L".ctb";
            if (!name.empty() && fold(name) != L"acad.ctb" && fold(name) != L"monochrome.ctb")
                return false;
            job.setup.styleSheet = name;
            return true;
        },
        list, L"没有这个打印样式表，可用 acad.ctb（彩色）、monochrome.ctb（黑白）。");
}

bool askLineWeights(AcApDocument&, PlotJob& job) {
    return askSwitch(L"\n是否打印线宽?", job.setup.hasLineWeights);
}

bool askFile(AcApDocument& document, PlotJob& job) {
    return askLine(
        L"\n输入文件名 <" + plotFileName(document, job) + L">: ",
        [&](const std::wstring& text) {
            job.file = text;
            return true;
        },
        [] {}, L"");
}

bool askKeeping(AcApDocument&, PlotJob& job) {
    return askSwitch(L"\n是否保存对页面设置的修改?", job.keepsSetup);
}

constexpr Question briefly[] = {askLayout, askDevice, askFile, askKeeping};
constexpr Question inDetail[] = {askLayout,      askDevice, askPaper,  askUnits,  askOrientation,
                                 askUpsideDown,  askArea,   askScale,  askOffset, askStyles,
                                 askLineWeights, askFile,   askKeeping};

void plot(AcApDocument& document, const PlotJob& job) {
    const PagePlacement placed = placementOf(job.setup, job.tab());
    acutPrintf(L"\n有效打印区域: %.2f 宽 x %.2f 高（毫米），比例 %s。", placed.printableWidth,
               placed.printableHeight, plotScaleText(job.setup).c_str());
    const std::wstring message = runPlotJob(document, job);
    if (message.empty())
        acutPrintf(L"\n已打印 %s。", displayPath(plotFile(document, job)).c_str());
    else
        acutPrintf(L"\n%s", message.c_str());
}

void runCommandLinePlot() {
    AcApDocument* document = curDoc();
    std::optional<PlotJob> job = document != nullptr ? plotJobOf(*document) : std::nullopt;
    const std::optional<bool> isDetailed = job ? askYesNo(L"\n是否需要详细的打印配置?", false) : std::nullopt;
    if (!isDetailed)
        return;
    const std::span<const Question> questions =
        *isDetailed ? std::span<const Question>(inDetail) : std::span<const Question>(briefly);
    for (const Question question : questions)
        if (!question(*document, *job))
            return;
    const std::optional<bool> goesOn = askYesNo(L"\n是否继续打印?", true);
    if (goesOn && job->keepsSetup)
        keepPageSetup(*job);
    if (goesOn.value_or(false))
        plot(*document, *job);
}

void runPlot() {
    AcApDocument* document = curDoc();
    if (plotWindows() == nullptr || document == nullptr || isProgramAnswering()) {
        runCommandLinePlot();
        return;
    }
    std::optional<PlotJob> job = plotJobOf(*document);
    if (!job || !plotWindows()->ask(*document, *job))
        return;
    if (job->keepsSetup)
        keepPageSetup(*job);
    plot(*document, *job);
}

void runPreview() {
    AcApDocument* document = curDoc();
    const std::optional<PlotJob> job = document != nullptr ? plotJobOf(*document) : std::nullopt;
    if (plotWindows() != nullptr && job)
        plotWindows()->preview(*document, *job);
    else
        acutPrintf(L"\n没有窗口，不能预览。");
}

constexpr CommandRow rows[] = {{L"PLOT", L"打印", ACRX_CMD_MODAL, runPlot},
                               {L"-PLOT", L"-打印", ACRX_CMD_MODAL, runCommandLinePlot},
                               {L"PREVIEW", L"打印预览", ACRX_CMD_MODAL, runPreview}};

} // namespace

void setPlotWindows(PlotWindows* windows) {
    plotWindows() = windows;
}

void initializePlotting() {
    for (const CommandRow& row : rows)
        acedCommandStack()->addCommand(ACED_HOST_GROUP, row.globalName, row.localName, row.flags,
                                       row.handler);
}

} // namespace host
