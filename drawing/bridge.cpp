// The bridge: its questions, and its two parapets.
#include "drawing/bridge.h"

#include "restools/drawing.h"
#include "restools/polylineshape.h"
#include "restools/sysvar.h"

#include <numbers>
#include <optional>

namespace bridge {

std::array<AcGePoint3d, 4> ParapetCorners(const AcGePoint3d& axisStart, const AcGePoint3d& axisEnd,
                                          double width) {
    constexpr double eighth = std::numbers::pi / 4.0;
    const double half = width * 0.5;
    AcGeVector3d along = axisEnd - axisStart;
    along.normalize();
    const AcGeVector3d out = half * along.perpVector();
    AcGeVector3d startWing = along;
    startWing.rotateBy(3.0 * eighth, AcGeVector3d::kZAxis);
    AcGeVector3d endWing = along;
    endWing.rotateBy(eighth, AcGeVector3d::kZAxis);
    const AcGePoint3d start = axisStart + out;
    const AcGePoint3d end = axisEnd + out;
    return {start + half * startWing, start, end, end + half * endWing};
}

namespace {

constexpr const ACHAR* layerName = L"$QLine";
constexpr Adesk::UInt16 layerColor = 4;

struct Axis {
    AcGePoint3d start;
    AcGePoint3d end;
};

std::optional<Axis> askAxis() {
    ads_point start;
    ads_point end;
    if (acedGetPoint(nullptr, L"\n请点取桥梁绘制的第一点 <退出>:", start) != RTNORM ||
        acedGetPoint(start, L"\n请点取桥梁绘制的第二点 <退出>:", end) != RTNORM) {
        return std::nullopt;
    }
    return Axis{asPnt3d(start), asPnt3d(end)};
}

std::optional<double> askWidth() {
    double width = 0.0;
    acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
    if (acedGetDist(nullptr, L"\n鼠标点两点确定桥梁宽度 <退出>:", &width) != RTNORM) {
        return std::nullopt;
    }
    return width;
}

std::unique_ptr<AcDbPolyline> newParapet(const Axis& axis, double width) {
    const std::array<AcGePoint3d, 4> corners = ParapetCorners(axis.start, axis.end, width);
    auto parapet = std::make_unique<AcDbPolyline>(static_cast<unsigned>(corners.size()));
    for (const AcGePoint3d& corner : corners) {
        AddVertex(*parapet, corner);
    }
    parapet->setLayer(layerName);
    return parapet;
}

void drawParapets(const Axis& axis, double width) {
    CArxObject left(newParapet(axis, width).release());
    AppendEnt(left);
    std::unique_ptr<AcDbEntity> right(AcDbEntity::cast(left->clone()));
    right->transformBy(AcGeMatrix3d::mirroring(AcGeLine3d(axis.start, axis.end)));
    AppendEnt(right.release());
}

} // namespace
} // namespace bridge

void DrawBridge() {
    using namespace bridge;
    const CSysVar blips(L"BLIPMODE", 1);
    const std::optional<Axis> axis = askAxis();
    if (!axis) {
        return;
    }
    const std::optional<double> width = askWidth();
    if (!width) {
        return;
    }
    CreateNewLayer(layerName, L"CONTINUOUS", layerColor);
    drawParapets(*axis, *width);
    acedRedraw(nullptr, 0);
}
