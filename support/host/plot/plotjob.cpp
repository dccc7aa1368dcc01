#include "host/plot/plotjob.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"
#include "host/ed/viewports.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cwchar>
#include <cwctype>

namespace host {

namespace {

constexpr PlotDevice devices[] = {{L"PDF", L".pdf"}, {L"PNG", L".png"}, {L"SVG", L".svg"}};
constexpr PaperSize sizes[] = {{L"A4", {210, 297}}, {L"A3", {297, 420}},  {L"A2", {420, 594}},
                               {L"A1", {594, 841}}, {L"A0", {841, 1189}}, {L"B4", {250, 353}},
                               {L"B5", {176, 250}}};
constexpr const PaperSize& usualSize = sizes[1];
constexpr double longestSide = 20000; // of paper, millimetres

// The number at the start of the text, which is cut off.
std::optional<double> takeNumber(std::wstring_view& text) {
    const std::wstring whole(text);
    wchar_t* end = nullptr;
    const double value = std::wcstod(whole.c_str(), &end);
    if (end == whole.c_str() || !std::isfinite(value))
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - whole.c_str()));
    return value;
}

void skip(std::wstring_view& text, std::wstring_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

// "420.00 x 297.00 毫米" anywhere in a text.
std::optional<Paper> measuredPaper(std::wstring_view text) {
    constexpr std::wstring_view blanks = L" _", digits = L"0123456789";
    const bool isInches = text.find(L"inch") != text.npos || text.find(L"英寸") != text.npos;
    for (std::size_t at = text.find_first_of(digits); at != text.npos; at = text.find_first_of(digits, at)) {
        std::wstring_view rest = text.substr(at);
        const std::optional<double> width = takeNumber(rest);
        if (!width)
            return std::nullopt;
        at = text.size() - rest.size();
        skip(rest, blanks);
        if (rest.empty() || std::wstring_view(L"xX×*").find(rest[0]) == std::wstring_view::npos)
            continue;
        rest.remove_prefix(1);
        skip(rest, blanks);
        const std::optional<double> height = takeNumber(rest);
        const double unit = isInches ? millimetresAnInch : 1;
        if (height && *width > 0 && *height > 0 && std::max(*width, *height) * unit <= longestSide)
            return Paper{std::min(*width, *height) * unit, std::max(*width, *height) * unit};
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::span<const PlotDevice> plotDevices() {
    return devices;
}

const PlotDevice* plotDeviceNamed(std::wstring_view text) {
    const std::wstring folded = fold(text);
    const auto* found = std::ranges::find_if(
        devices, [&](const PlotDevice& device) { return folded.find(fold(device.name)) != folded.npos; });
    return found != std::end(devices) ? found : nullptr;
}

std::span<const PaperSize> paperSizes() {
    return sizes;
}

std::optional<Paper> paperNamed(std::wstring_view text) {
    if (const std::optional<Paper> measured = measuredPaper(text))
        return measured;
    const std::wstring folded = L" " + fold(text) + L" ";
    for (const PaperSize& size : sizes) {
        const std::size_t at = folded.find(fold(size.name));
        if (at != folded.npos && !std::iswalnum(static_cast<std::wint_t>(folded[at - 1])) &&
            !std::iswalnum(static_cast<std::wint_t>(folded[at + std::wcslen(size.name)])))
            return size.paper;
    }
    return std::nullopt;
}

std::wstring paperText(const Paper& paper) {
    constexpr double near = 0.5; // millimetres; devices round
    const double shortSide = std::min(paper.width, paper.height),
                 longSide = std::max(paper.width, paper.height);
    const auto* known = std::ranges::find_if(sizes, [&](const PaperSize& size) {
        return std::abs(size.paper.width - shortSide) < near && std::abs(size.paper.height - longSide) < near;
    });
    const std::wstring measures = formatted(L"%.2f x %.2f 毫米", shortSide, longSide);
    return known != std::end(sizes) ? std::wstring(known->name) + L" (" + measures + L")" : measures;
}

double plotScale(std::wstring_view text) {
    constexpr std::wstring_view blanks = L" ";
    skip(text, blanks);
    const std::optional<double> paper = takeNumber(text);
    double drawing = 1;
    skip(text, blanks);
    if (paper && !text.empty() && std::wstring_view(L":=/：").find(text[0]) != std::wstring_view::npos) {
        text.remove_prefix(1);
        const std::optional<double> given = takeNumber(text);
        drawing = given.value_or(0);
        skip(text, blanks);
    }
    const double scale = paper && text.empty() && drawing > 0 ? *paper / drawing : 0;
    return scale > 0 && std::isfinite(scale) ? scale : 0;
}

std::wstring plotScaleText(const PageSetup& setup) {
    const double scale = setup.scale / (setup.isInches ? millimetresAnInch : 1);
    return !(scale > 0) ? L"布满" : scale < 1 ? formatted(L"1:%g", 1 / scale) : formatted(L"%g:1", scale);
}

const AcDbLayout& PlotJob::tab() const {
    return *peek<AcDbLayout>(layout);
}

std::optional<PlotJob> plotJobOf(AcApDocument& document, const std::wstring& layoutName) {
    const AcDbLayoutManager& layouts = *acdbHostApplicationServices()->layoutManager();
    const AcDbDatabase* database = document.database();
    const std::wstring name =
        layoutName.empty() ? std::wstring(layouts.findActiveLayout(true, database).kwszPtr()) : layoutName;
    const bool isModel = equalNoCase(name, L"模型");
    PlotJob job;
    job.layout = layouts.findLayoutNamed(isModel ? L"Model" : name.c_str(), database);
    if (job.layout.isNull())
        return std::nullopt;
    job.setup = pageSetupOf(job.tab());
    const ReadAccess access(job.tab());
    AcString device;
    job.tab().getPlotCfgName(device);
    job.device = plotDeviceNamed(device.kwszPtr());
    if (job.device == nullptr)
        job.device = &devices[0];
    if (!(job.setup.paper.width > 0)) {
        constexpr double usualMargin = 5;
        job.setup.paper = usualSize.paper;
        job.setup.margins = {usualMargin, usualMargin, usualMargin, usualMargin};
        job.setup.quarterTurns = 1;
        job.setup.isInches = false;
    }
    return job;
}

std::wstring plotFileName(const AcApDocument& document, const PlotJob& job) {
    std::wstring name = document.docTitle();
    name.resize(std::min(name.rfind(L'.'), name.size()));
    AcString tab;
    job.tab().getLayoutName(tab);
    return name + L"-" + tab.kwszPtr() + job.device->extension;
}

std::filesystem::path plotFile(const AcApDocument& document, const PlotJob& job) {
    std::wstring name = job.file.empty() ? plotFileName(document, job) : job.file;
    if (!fold(name).ends_with(job.device->extension))
        name += job.device->extension;
    const std::wstring folder = systemVariableText(L"DWGPREFIX");
    return toNativePath(name, toNativePath(folder));
}

std::wstring runPlotJob(AcApDocument& document, const PlotJob& job) {
    constexpr double pixelsAMillimetre = 200 / millimetresAnInch;
    constexpr int mostPixels = 12000;
    keepViewportView();
    const double longSide = std::max(job.setup.paper.width, job.setup.paper.height);
    const int pixels = std::min(mostPixels, static_cast<int>(std::lround(longSide * pixelsAMillimetre)));
    return plotTab(job.tab(), job.setup, plotFile(document, job), pixels);
}

void keepPageSetup(const PlotJob& job) {
    const Opened<AcDbLayout> layout(job.layout, AcDb::kForWrite);
    if (layout)
        storePageSetup(job.setup, job.device->name, *layout.get());
}

} // namespace host
