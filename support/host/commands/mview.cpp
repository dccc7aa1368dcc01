// MVIEW: viewports on the sheet of a layout.
#include "host/commands/ask.h"
#include "host/commands/edit/viewports.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

/// The viewports among what is selected; the sheet itself is none.
std::vector<AcDbObjectId> askViewports() {
    std::vector<AcDbObjectId> found;
    const Selection selection = Selection::askEditable();
    for (const AcDbObjectId id : selection.ids()) {
        const auto* viewport = peek<AcDbViewport>(id);
        if (viewport != nullptr && viewport->data().number != 1) {
            found.push_back(id);
        }
    }
    if (found.empty() && !selection.empty()) {
        acutPrintf(L"\n没有选中视口。");
    }
    return found;
}

void change(const std::vector<AcDbObjectId>& viewports, const std::function<void(AcDbViewport&)>& apply) {
    for (const AcDbObjectId id : viewports) {
        if (const Opened<AcDbViewport> viewport(id, AcDb::kForWrite); viewport) {
            apply(*viewport.get());
        }
    }
}

void lock() {
    const Answer answer = askKeyword(L"\n视口视图锁定 [开(ON)/关(OFF)] <开>: ", L"ON OFF");
    if (!answer.isCancelled()) {
        const bool locks = !answer.isKeyword(L"OFF");
        change(askViewports(), [&](AcDbViewport& viewport) { viewport.setLocked(locks); });
    }
}

/// "2", or paper units to drawing units "1:500".
std::optional<double> parseScale(const std::wstring& text) {
    const std::size_t colon = text.find(L':');
    const std::optional<double> paper = parseReal(text.substr(0, colon));
    const std::optional<double> model =
        colon == std::wstring::npos ? std::optional(1.0) : parseReal(text.substr(colon + 1));
    const bool isGood = paper && model && *paper > 0.0 && *model > 0.0 && std::isfinite(*paper / *model);
    return isGood ? std::optional(*paper / *model) : std::nullopt;
}

/// The centre of what is seen stays.
void scale() {
    const std::vector<AcDbObjectId> viewports = askViewports();
    while (!viewports.empty()) {
        const TextAnswer answer = askText(L"\n输入比例 (图纸单位:图形单位) <布满>: ");
        const std::optional<double> scale = answer.isValue() ? parseScale(answer.text) : std::nullopt;
        if (answer.isValue() && !scale) {
            acutPrintf(L"\n需要正数，或两个正数的比，例如 1:500。");
            continue;
        }
        if (!answer.isCancelled()) {
            change(viewports, [&](AcDbViewport& viewport) {
                scale ? static_cast<void>(viewport.setCustomScale(*scale))
                      : showWholeModel(viewport, currentDatabase());
            });
        }
        return;
    }
}

/// The frame from a first corner, or the printable area for Fit and Enter; nothing for Escape.
std::optional<Box2d> frameFrom(const PointAnswer& first) {
    if (!first.isValue()) {
        return first.isCancelled() ? std::nullopt : std::optional(printableArea(currentDatabase()));
    }
    for (;;) {
        ads_point base;
        ads_point opposite;
        setPoint(base, first.ucs);
        acedInitGet(RSG_NONULL, nullptr);
        if (acedGetCorner(base, L"\n指定对角点: ", opposite) != RTNORM) {
            return std::nullopt;
        }
        const AcGePoint3d other = ucsToWorld(asPoint3d(opposite));
        Box2d frame;
        frame.add(AcGePoint2d(first.world.x, first.world.y));
        frame.add(AcGePoint2d(other.x, other.y));
        if (frame.width() > 0.0 && frame.height() > 0.0) {
            return frame;
        }
        acutPrintf(L"\n视口没有大小。");
    }
}

void addSeveral(int count) {
    int rows = 2;
    int columns = 2;
    if (count < 4) {
        const Answer answer =
            askKeyword(L"\n输入视口排列方式 [水平(H)/垂直(V)] <垂直>: ", L"Horizontal Vertical");
        if (answer.isCancelled()) {
            return;
        }
        const bool above = answer.isKeyword(L"Horizontal"); // cut by horizontal lines
        rows = above ? count : 1;
        columns = above ? 1 : count;
    }
    const std::optional<Box2d> area = frameFrom(askPoint(L"\n指定第一个角点或 [布满(F)] <布满>: ", L"Fit"));
    for (const Box2d& frame : area ? splitFrame(*area, rows, columns) : std::vector<Box2d>()) {
        addViewport(currentDatabase(), frame);
    }
}

void runMview() {
    const PointAnswer first =
        askPoint(L"\n指定视口的角点或 [开(ON)/关(OFF)/布满(F)/锁定(L)/比例(S)/2/3/4] <布满>: ",
                 L"ON OFF Fit Lock Scale 2 3 4");
    if (first.isKeyword(L"ON")) {
        change(askViewports(), [](AcDbViewport& viewport) { viewport.setOn(); });
    } else if (first.isKeyword(L"OFF")) {
        change(askViewports(), [](AcDbViewport& viewport) { viewport.setOff(); });
    } else if (first.isKeyword(L"Lock")) {
        lock();
    } else if (first.isKeyword(L"Scale")) {
        scale();
    } else if (first.isKeyword(L"2") || first.isKeyword(L"3") || first.isKeyword(L"4")) {
        addSeveral(std::stoi(first.keyword));
    } else if (const std::optional<Box2d> frame = frameFrom(first)) {
        addViewport(currentDatabase(), *frame);
    }
}

constexpr CommandRow rows[] = {{L"MVIEW", L"视口", ACRX_CMD_NOTILEMODE, runMview}};

} // namespace

std::span<const CommandRow> viewportCommands() {
    return rows;
}

} // namespace host
