#include "app/canvas/aiming.h"

#include "host/ed/aced.h"
#include "host/ed/osnap.h"
#include "host/ed/question.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

/// In a thicket that nobody can aim in there is no snap: looking for one would take too long.
constexpr std::size_t thicket = 120;

bool isThicket(Scene& scene, const AcGePoint2d& place) {
    const double aperture = host::pickAperture() * std::max(host::systemVariableInteger(L"APERTURE"), 1) /
                            std::max(host::systemVariableInteger(L"PICKBOX"), 1);
    std::size_t count = 0;
    scene.search(host::Box2d{place, place}.grownBy(aperture), 0, [&](std::size_t) { ++count; });
    return count > thicket;
}

AcGePoint3d straightFrom(const AcGePoint3d& base, const AcGePoint3d& point) {
    const AcGePoint3d from = host::worldToUcs(base);
    AcGePoint3d to = host::worldToUcs(point);
    if (std::abs(to.x - from.x) >= std::abs(to.y - from.y)) {
        to.y = from.y;
    } else {
        to.x = from.x;
    }
    return host::ucsToWorld(to);
}

AcGePoint3d onGrid(const AcGePoint3d& point) {
    const host::ResbufList unit = host::systemVariable(L"SNAPUNIT");
    const host::ResbufList base = host::systemVariable(L"SNAPBASE");
    AcGePoint3d ucs = host::worldToUcs(point);
    const auto nearest = [](double value, double from, double step) {
        return step > 0 ? from + std::round((value - from) / step) * step : value;
    };
    if (unit != nullptr && base != nullptr) {
        ucs.x = nearest(ucs.x, base->resval.rpoint[0], unit->resval.rpoint[0]);
        ucs.y = nearest(ucs.y, base->resval.rpoint[1], unit->resval.rpoint[1]);
    }
    return host::ucsToWorld(ucs);
}

} // namespace

AcGePoint3d onPlane(const AcGePoint2d& place) {
    AcGePoint3d ucs = host::worldToUcs({place.x, place.y, 0});
    ucs.z = host::systemVariableReal(L"ELEVATION");
    return host::ucsToWorld(ucs);
}

Aimed aimAt(Scene& scene, const ViewMap&, const host::InputRequest& request, const AcGePoint2d& place) {
    Aimed aimed{onPlane(place), onPlane(place)};
    if (request.picksObjects || !request.wantsPoint) {
        return aimed;
    }
    const int modes =
        request.snapModes.value_or(host::runningSnapModes()) & ~static_cast<int>(AcDb::kOsMaskNoneOverride);
    if (modes != 0 && !isThicket(scene, place)) {
        const AcGePoint3d last = request.base.value_or(host::ucsToWorld(host::lastPoint()));
        if (const std::optional<host::Snapped> snapped = host::snapPoint(aimed.point, modes, last)) {
            return {snapped->point, aimed.place, snapped->kind};
        }
    }
    if (host::systemVariableInteger(L"SNAPMODE") != 0) {
        aimed.point = onGrid(aimed.point);
    }
    if (request.base && request.band == host::Aim::Band::line &&
        host::systemVariableInteger(L"ORTHOMODE") != 0) {
        aimed.point = straightFrom(*request.base, aimed.point);
    }
    return aimed;
}

QString snapName(int kind) {
    struct Name {
        int kind;
        const char* name;
    };
    static constexpr Name names[] = {{AcDb::kOsMaskEnd, QT_TRANSLATE_NOOP("Snap", "端点")},
                                     {AcDb::kOsMaskMid, QT_TRANSLATE_NOOP("Snap", "中点")},
                                     {AcDb::kOsMaskCen, QT_TRANSLATE_NOOP("Snap", "圆心")},
                                     {AcDb::kOsMaskNode, QT_TRANSLATE_NOOP("Snap", "节点")},
                                     {AcDb::kOsMaskQuad, QT_TRANSLATE_NOOP("Snap", "象限点")},
                                     {AcDb::kOsMaskInt, QT_TRANSLATE_NOOP("Snap", "交点")},
                                     {AcDb::kOsMaskIns, QT_TRANSLATE_NOOP("Snap", "插入点")},
                                     {AcDb::kOsMaskPerp, QT_TRANSLATE_NOOP("Snap", "垂足")},
                                     {AcDb::kOsMaskTan, QT_TRANSLATE_NOOP("Snap", "切点")},
                                     {AcDb::kOsMaskNear, QT_TRANSLATE_NOOP("Snap", "最近点")},
                                     {AcDb::kOsMaskApint, QT_TRANSLATE_NOOP("Snap", "外观交点")}};
    const auto* found =
        std::find_if(std::begin(names), std::end(names), [&](const Name& name) { return name.kind == kind; });
    return found != std::end(names) ? QCoreApplication::translate("Snap", found->name) : QString();
}

} // namespace app
