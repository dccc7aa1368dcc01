// ZOOM, REGEN and REDRAW. Without a window the view is kept in VIEWCTR and VIEWSIZE.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/ed/documentstate.h"

namespace host {
namespace {

void setView(const AcGePoint3d& centre, double height) {
    if (!(height > 0.0)) {
        return;
    }
    resbuf value{};
    value.restype = RT3DPOINT;
    setPoint(value.resval.rpoint, centre);
    putSystemVariable(L"VIEWCTR", value);
    value = {};
    value.restype = RTREAL;
    value.resval.rreal = height;
    putSystemVariable(L"VIEWSIZE", value);
}

AcGePoint3d viewCentre() {
    const ResbufList value = systemVariable(L"VIEWCTR");
    return value != nullptr ? asPoint3d(value->resval.rpoint) : AcGePoint3d();
}

void setWindow(const AcGePoint3d& a, const AcGePoint3d& b) {
    const double width = std::abs(b.x - a.x);
    const double height = std::abs(b.y - a.y);
    constexpr double screenRatio = 4.0 / 3.0;
    setView(a + (b - a) * 0.5, std::max(height, width / screenRatio));
}

void zoomExtents() {
    AcDbDatabase& database = currentDatabase();
    if (database.updateExt() == Acad::eOk) {
        setWindow(database.extmin(), database.extmax());
    }
}

void runZoom() {
    const PointAnswer first =
        askPoint(L"\n指定窗口的角点，输入比例因子 (nX 或 "
                 L"nXP)，或者\n[全部(A)/中心(C)/动态(D)/范围(E)/上一个(P)/比例(S)/"
                 L"窗口(W)/对象(O)] <实时>: ",
                 L"All Center Dynamic Extents Previous Scale Window Object", nullptr, RSG_OTHER);
    if (first.isKeyword(L"Extents") || first.isKeyword(L"All")) {
        zoomExtents();
    } else if (first.isKeyword(L"Center")) {
        const PointAnswer centre = askPoint(L"\n指定中心点: ", nullptr, nullptr, 1);
        const RealAnswer height =
            centre.isValue()
                ? askDistance(L"\n输入比例或高度 <" + shown(systemVariableReal(L"VIEWSIZE")) + L">: ",
                              nullptr, &centre.ucs, 6)
                : RealAnswer();
        if (height.isValue()) {
            setView(centre.ucs, height.value);
        }
    } else if (first.isKeyword(L"Window") || first.isValue()) {
        const PointAnswer corner =
            first.isValue() ? first : askPoint(L"\n指定第一个角点: ", nullptr, nullptr, 1);
        if (!corner.isValue()) {
            return;
        }
        ads_point base;
        ads_point opposite;
        setPoint(base, corner.ucs);
        acedInitGet(1, nullptr);
        if (acedGetCorner(base, L"\n指定对角点: ", opposite) == RTNORM) {
            setWindow(corner.ucs, asPoint3d(opposite));
        }
    } else if (first.isKeyword(L"Object")) {
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
            setWindow(extents.minPoint(), extents.maxPoint());
        }
    } else if (first.isKeyword(L"Scale") || first.kind == Answer::Kind::keyword) {
        std::wstring text = first.keyword;
        if (first.isKeyword(L"Scale")) {
            text = askText(L"\n输入比例因子 (nX 或 nXP): ").text;
        }
        const double factor = std::wcstod(text.c_str(), nullptr);
        if (factor > 0.0) {
            setView(viewCentre(), systemVariableReal(L"VIEWSIZE") / factor);
        } else {
            acutPrintf(L"\n需要比例因子或选项关键字。");
        }
    }
}

void runRegen() {
    curDoc()->state().shownSlide.reset();
    acutPrintf(L"\n正在重生成模型。");
    currentDatabase().updateExt();
    acedUpdateDisplay();
}

void runRedraw() {
    curDoc()->state().shownSlide.reset();
    acedUpdateDisplay();
}

constexpr Adesk::Int32 flags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {{L"ZOOM", L"缩放", flags, runZoom},
                               {L"REGEN", L"重生成", flags, runRegen},
                               {L"REGENALL", L"全部重生成", flags, runRegen},
                               {L"REDRAW", L"重画", flags, runRedraw},
                               {L"REDRAWALL", L"全部重画", flags, runRedraw}};

} // namespace

std::span<const CommandRow> viewCommands() {
    return rows;
}

} // namespace host
