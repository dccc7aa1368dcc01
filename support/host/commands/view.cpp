// ZOOM, PAN, REGEN and REDRAW. The view is kept in VIEWCTR and VIEWSIZE; a window shows it.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/viewing.h"
#include "host/ed/documentstate.h"
#include "host/ed/viewports.h"

#include <cmath>

namespace host {

namespace {

/// The active viewport of a layout; null on the sheet and in the model tab.
const AcDbViewport* activeViewport() {
    return peek<AcDbViewport>(currentDatabase().activeViewportId());
}

bool isViewLocked() {
    const AcDbViewport* viewport = activeViewport();
    if (viewport == nullptr) {
        return false;
    }
    const ReadAccess access(*viewport);
    return viewport->isLocked();
}

} // namespace

void setView(const AcGePoint3d& centre, double height) {
    if (!(height > 0.0) || !std::isfinite(height)) {
        return;
    }
    if (isViewLocked()) {
        acutPrintf(L"\n视口的视图已锁定，没有改变。");
        return;
    }
    rememberView();
    showView({centre, height});
    keepViewportView();
}

double screenRatio() {
    constexpr double usual = 4.0 / 3.0;
    if (const AcDbViewport* viewport = activeViewport()) {
        const ReadAccess access(*viewport);
        return viewport->width() / viewport->height();
    }
    const ResbufList screen = editorView().isShown() ? systemVariable(L"SCREENSIZE") : nullptr;
    return screen != nullptr && screen->resval.rpoint[1] > 0.0
               ? screen->resval.rpoint[0] / screen->resval.rpoint[1]
               : usual;
}

void setWindow(const AcGePoint3d& a, const AcGePoint3d& b, double margin) {
    const double width = std::abs(b.x - a.x);
    const double height = std::abs(b.y - a.y);
    setView(a + (b - a) * 0.5, std::max(height, width / screenRatio()) * (1.0 + margin));
}

namespace {

double extentsMargin() {
    return editorView().isShown() ? 0.04 : 0.0; // what lies on the border is seen
}

/// Of what the current space shows.
AcDbExtents shownExtents() {
    AcDbDatabase& database = currentDatabase();
    if (database.currentSpaceId() != database.modelSpaceId()) {
        return database.impl().places.of(database.currentSpaceId()).extents({});
    }
    AcDbExtents extents;
    if (database.updateExt() == Acad::eOk && database.extmin().x <= database.extmax().x) {
        extents.set(database.extmin(), database.extmax());
    }
    return extents;
}

void zoomExtents(bool withLimits) {
    if (const AcDbExtents extents = shownExtents(); !extents.isEmpty()) {
        setWindow(extents.minPoint(), extents.maxPoint(), extentsMargin());
    } else if (withLimits || editorView().isShown()) {
        const ResbufList low = systemVariable(L"LIMMIN");
        const ResbufList high = systemVariable(L"LIMMAX");
        if (low != nullptr && high != nullptr) {
            const double* a = low->resval.rpoint;
            const double* b = high->resval.rpoint;
            setWindow({a[0], a[1], 0.0}, {b[0], b[1], 0.0});
        }
    }
}

void zoomCentre() {
    const PointAnswer centre = askPoint(L"\n指定中心点: ", nullptr, nullptr, 1);
    const RealAnswer height =
        centre.isValue()
            ? askDistance(L"\n输入比例或高度 <" + shown(systemVariableReal(L"VIEWSIZE")) + L">: ", nullptr,
                          &centre.ucs, 6)
            : RealAnswer();
    if (height.isValue()) {
        setView(ucsToWorld(centre.ucs), height.value);
    }
}

void zoomWindow(const PointAnswer& first) {
    const PointAnswer corner = first.isValue() ? first : askPoint(L"\n指定第一个角点: ", nullptr, nullptr, 1);
    if (!corner.isValue()) {
        return;
    }
    if (const std::optional<AcGePoint3d> opposite = askOppositeCorner(L"\n指定对角点: ", corner.ucs)) {
        setWindow(ucsToWorld(corner.ucs), *opposite);
    }
}

void zoomObjects() {
    const Selection selection = Selection::ask();
    AcDbExtents extents;
    for (const AcDbObjectId id : selection.ids()) {
        AcDbExtents own;
        const Opened<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity && entity->getGeomExtents(own) == Acad::eOk) {
            extents.addExt(own);
        }
    }
    if (!extents.isEmpty()) {
        setWindow(extents.minPoint(), extents.maxPoint(), extentsMargin());
    }
}

void zoomPrevious() {
    if (const std::optional<ShownView> view = takeEarlierView()) {
        showView(*view);
    } else {
        acutPrintf(L"\n没有上一个视图。");
    }
}

/// "2", "1/500": a positive number at the start of the text, which becomes what follows; 0 for none.
double scaleFactor(std::wstring& text) {
    wchar_t* end = nullptr;
    double factor = std::wcstod(text.c_str(), &end);
    if (end != text.c_str() && *end == L'/') {
        const wchar_t* divisor = end + 1;
        factor /= std::wcstod(divisor, &end);
    }
    text = end;
    return factor > 0.0 && std::isfinite(factor) ? factor : 0.0;
}

/// nXP: n units of the sheet for a unit of the model in the active viewport.
void zoomScale(std::wstring text) {
    const double factor = scaleFactor(text);
    const AcDbViewport* viewport = equalNoCase(text, L"XP") ? activeViewport() : nullptr;
    if (factor > 0.0 && viewport != nullptr) {
        const ReadAccess access(*viewport);
        setView(shownView().centre, viewport->height() / factor);
    } else if (factor > 0.0) {
        setView(shownView().centre, shownView().height / factor);
    } else {
        acutPrintf(L"\n需要比例因子或选项关键字。");
    }
}

void runZoom() {
    const PointAnswer first =
        askPoint(L"\n指定窗口的角点，输入比例因子 (nX 或 "
                 L"nXP)，或者\n[全部(A)/中心(C)/动态(D)/范围(E)/上一个(P)/比例(S)/"
                 L"窗口(W)/对象(O)] <实时>: ",
                 L"All Center Dynamic Extents Previous Scale Window Object", nullptr, RSG_OTHER);
    if (first.isKeyword(L"Extents") || first.isKeyword(L"All")) {
        zoomExtents(first.isKeyword(L"All"));
    } else if (first.isKeyword(L"Center")) {
        zoomCentre();
    } else if (first.isKeyword(L"Window") || first.isValue()) {
        zoomWindow(first);
    } else if (first.isKeyword(L"Object")) {
        zoomObjects();
    } else if (first.isKeyword(L"Previous")) {
        zoomPrevious();
    } else if (first.isKeyword(L"Scale")) {
        zoomScale(askText(L"\n输入比例因子 (nX 或 nXP): ").text);
    } else if (first.kind == Answer::Kind::keyword) {
        zoomScale(first.keyword);
    }
}

/// By a displacement, given by two points or by one from the origin.
void runPan() {
    const PointAnswer from = askPoint(L"\n指定基点或位移: ", nullptr, nullptr, 1);
    if (!from.isValue()) {
        return;
    }
    const PointAnswer to = askPoint(L"\n指定第二点: ", nullptr, &from.ucs);
    if (to.isCancelled()) {
        return;
    }
    const AcGePoint3d origin = to.isValue() ? from.ucs : AcGePoint3d::kOrigin;
    const AcGeVector3d moved = ucsToWorld(to.isValue() ? to.ucs : from.ucs) - ucsToWorld(origin);
    setView(shownView().centre - moved, shownView().height);
}

void runRegen() {
    curDoc()->state().shownSlide.reset();
    acutPrintf(L"\n正在重生成模型。");
    currentDatabase().updateExt();
    editorView().regenerate();
}

void runRedraw() {
    curDoc()->state().shownSlide.reset();
    acedUpdateDisplay();
}

constexpr Adesk::Int32 flags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {{L"ZOOM", L"缩放", flags, runZoom},
                               {L"PAN", L"平移", flags, runPan},
                               {L"-PAN", L"-平移", flags, runPan},
                               {L"REGEN", L"重生成", flags, runRegen},
                               {L"REGENALL", L"全部重生成", flags, runRegen},
                               {L"REDRAW", L"重画", flags, runRedraw},
                               {L"REDRAWALL", L"全部重画", flags, runRedraw}};

} // namespace

std::span<const CommandRow> viewCommands() {
    return rows;
}

} // namespace host
