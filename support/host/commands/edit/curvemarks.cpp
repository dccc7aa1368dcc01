// Points at distances along a curve.
#include "host/commands/edit/curvemarks.h"

#include "host/commands/edit/editing.h"
#include "host/db/entities/fields.h"

#include <cmath>
#include <optional>

namespace host {

std::optional<double> curveLength(const AcDbCurve& curve) {
    double start = 0.0;
    double end = 0.0;
    double from = 0.0;
    double to = 0.0;
    const bool known = curve.getStartParam(start) == Acad::eOk && curve.getEndParam(end) == Acad::eOk &&
                       curve.getDistAtParam(start, from) == Acad::eOk &&
                       curve.getDistAtParam(end, to) == Acad::eOk && std::isfinite(to - from);
    return known ? std::optional(to - from) : std::nullopt;
}

std::vector<CurveMark> marksAlong(const AcDbCurve& curve, std::span<const double> distances) {
    std::vector<CurveMark> marks;
    marks.reserve(distances.size());
    if (const std::optional<FlatPath> flat = flatPathOf(curve)) {
        const BulgePath& path = flat->shape.path;
        const PathMeasure measure(path);
        for (const double distance : distances) {
            if (const std::optional<double> parameter = measure.parameterAtDistance(distance)) {
                const AcGeVector2d direction = firstDerivativeAt(path, *parameter);
                marks.push_back({flat->toWorld(pointAt(path, *parameter)),
                                 toWorld(flat->normal, to3d(direction)).normal()});
            }
        }
        return marks;
    }
    for (const double distance : distances) {
        double parameter = 0.0;
        CurveMark mark;
        if (curve.getParamAtDist(distance, parameter) == Acad::eOk &&
            curve.getPointAtParam(parameter, mark.point) == Acad::eOk &&
            curve.getFirstDeriv(parameter, mark.tangent) == Acad::eOk) {
            mark.tangent.normalize();
            marks.push_back(mark);
        }
    }
    return marks;
}

} // namespace host
