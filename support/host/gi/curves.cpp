#include "host/gi/curves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {

Arc arcOfBulge(double x1, double y1, double x2, double y2, double z, double bulge) {
    // The centre lies on the chord's bisector, (1 - b^2) / (4 b) chords to the left of its middle.
    const double dx = x2 - x1, dy = y2 - y1;
    const double lift = (1 - bulge * bulge) / (4 * bulge);
    const AcGePoint3d center{(x1 + x2) / 2 - dy * lift, (y1 + y2) / 2 + dx * lift, z};
    const AcGeVector3d u{x1 - center.x, y1 - center.y, 0};
    return {center, u, {-u.y, u.x, 0}, 0, 4 * std::atan(bulge)};
}

int chordCount(double radius, double sweep, double deviation) {
    constexpr int most = 4096;
    const double angle = std::abs(sweep);
    if (!(angle > 0) || !(radius > 0))
        return 1;
    const double share = std::clamp(1 - deviation / radius, -1.0, 1.0);
    const double step = std::min(2 * std::acos(share), std::numbers::pi / 4);
    if (!(step >= 0) || !std::isfinite(angle))
        return 1; // nothing that can be shown has such a size
    const double count = std::ceil(angle / std::max(step, 1e-9));
    return static_cast<int>(std::clamp(count, 1.0, static_cast<double>(most)));
}

void appendChords(const Arc& arc, double deviation, std::vector<AcGePoint3d>& points) {
    const int count = chordCount(std::max(arc.u.length(), arc.v.length()), arc.sweep, deviation);
    const double step = arc.sweep / count;
    const double cosStep = std::cos(step), sinStep = std::sin(step);
    double c = std::cos(arc.start), s = std::sin(arc.start);
    for (int i = 1; i < count; ++i) {
        const double turned = c * cosStep - s * sinStep;
        s = s * cosStep + c * sinStep;
        c = turned;
        points.push_back(arc.center + arc.u * c + arc.v * s);
    }
    points.push_back(arc.endPoint());
}

namespace {

// How far at most a cubic curve over an angle up to 120 degrees strays from its arc, as a share of the
// radius: 2/27 sin^6 / cos^2 of a quarter of the angle, which its sixth power is near to.
double curveError(double angle) {
    const double square = angle * angle / 16;
    return 2.0 / 27 * 1.02 * square * square * square;
}

int curveCount(const Arc& arc, double deviation) {
    constexpr double widest = 2 * std::numbers::pi / 3, finest = std::numbers::pi / 4;
    const double sweep = std::abs(arc.sweep);
    const auto countOf = [&](double angle) {
        return std::max(1, static_cast<int>(std::ceil(sweep / angle - 1e-9)));
    };
    const int most = countOf(finest);
    if (!(deviation > 0))
        return most;
    const double radius = std::sqrt(std::max(arc.u.lengthSqrd(), arc.v.lengthSqrd()));
    int count = countOf(widest);
    while (count < most && radius * curveError(sweep / count) > deviation)
        ++count;
    return count;
}

} // namespace

void appendCurves(const Arc& arc, WorldPath& path, double deviation) {
    const int count = curveCount(arc, deviation);
    const double step = arc.sweep / count;
    const double reach = 4.0 / 3.0 * std::tan(step / 4); // of the control points along the tangents
    const double cosStep = std::cos(step), sinStep = std::sin(step);
    double c = arc.start == 0 ? 1 : std::cos(arc.start), s = arc.start == 0 ? 0 : std::sin(arc.start);
    AcGePoint3d point = arc.center + arc.u * c + arc.v * s;
    AcGeVector3d control = (arc.v * c - arc.u * s) * reach;
    for (int i = 0; i < count; ++i) {
        const double turned = c * cosStep - s * sinStep;
        s = s * cosStep + c * sinStep;
        c = turned;
        const AcGePoint3d end = arc.center + arc.u * c + arc.v * s;
        const AcGeVector3d endControl = (arc.v * c - arc.u * s) * reach;
        path.curve(point + control, end - endControl, end);
        point = end;
        control = endControl;
    }
}

} // namespace host
