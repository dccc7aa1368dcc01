// Points at distances along a curve.
#include "host/commands/edit/curvemarks.h"

#include "host/commands/edit/editing.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/spacecurve.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {
namespace {

/// A curve whose length is an integral, measured once in stretches, so that many places along it cost no more
/// than their own stretches.
class Stretches {
public:
    explicit Stretches(const AcGeCurve3d& curve) : mCurve(curve) {
        constexpr int count = 256;
        const AcGeInterval range = curve.interval();
        const double step = range.length() / count;
        mStarts.push_back({range.lowerBound(), 0.0});
        for (int index = 1; index < count; ++index) {
            const Start& before = mStarts.back();
            const double parameter = range.lowerBound() + step * index;
            mStarts.push_back({parameter, before.distance + curve.length(before.parameter, parameter)});
        }
        mLength = mStarts.back().distance + curve.length(mStarts.back().parameter, range.upperBound());
    }

    std::optional<double> parameterAt(double distance) const {
        if (!(distance >= 0.0) || distance > mLength * (1.0 + 1e-9)) {
            return std::nullopt;
        }
        const auto after =
            std::upper_bound(mStarts.begin() + 1, mStarts.end(), distance,
                             [](double value, const Start& start) { return value < start.distance; });
        const Start& start = *std::prev(after);
        return mCurve.paramAtLength(start.parameter, distance - start.distance);
    }

private:
    struct Start {
        double parameter;
        double distance;
    };
    const AcGeCurve3d& mCurve;
    std::vector<Start> mStarts;
    double mLength = 0.0;
};

} // namespace

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
    std::unique_ptr<AcGeCurve3d> geometry;
    std::optional<Stretches> stretches;
    if (AcGeCurve3d* made = nullptr;
        dynamic_cast<const SpaceCurve*>(&curve) != nullptr && curve.getAcGeCurve(made) == Acad::eOk) {
        geometry.reset(made);
        stretches.emplace(*geometry);
    }
    for (const double distance : distances) {
        double parameter = 0.0;
        CurveMark mark;
        if (stretches.has_value()) {
            const std::optional<double> found = stretches->parameterAt(distance);
            if (!found.has_value()) {
                continue;
            }
            parameter = *found;
        } else if (curve.getParamAtDist(distance, parameter) != Acad::eOk) {
            continue;
        }
        if (curve.getPointAtParam(parameter, mark.point) == Acad::eOk &&
            curve.getFirstDeriv(parameter, mark.tangent) == Acad::eOk) {
            mark.tangent.normalize();
            marks.push_back(mark);
        }
    }
    return marks;
}

} // namespace host
