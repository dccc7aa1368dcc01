#include "host/gi/extentssink.h"

#include <algorithm>
#include <cmath>

namespace host {

void ExtentsSink::add(const AcGePoint3d& point) {
    mMin.set(std::min(mMin.x, point.x), std::min(mMin.y, point.y), std::min(mMin.z, point.z));
    mMax.set(std::max(mMax.x, point.x), std::max(mMax.y, point.y), std::max(mMax.z, point.z));
}

void ExtentsSink::polyline(std::span<const AcGePoint3d> points, const Pen&) {
    for (const AcGePoint3d& point : points)
        add(point);
}

// A cubic curve reaches farthest at its ends and where a coordinate's derivative, a quadratic, is zero.
void ExtentsSink::addCurve(const AcGePoint3d& start, const AcGePoint3d* controls) {
    // The curve lies within its control points.
    const auto isInside = [&](const AcGePoint3d& point) {
        return point.x >= mMin.x && point.x <= mMax.x && point.y >= mMin.y && point.y <= mMax.y &&
               point.z >= mMin.z && point.z <= mMax.z;
    };
    if (isInside(controls[0]) && isInside(controls[1]) && isInside(controls[2]))
        return;
    add(controls[2]);
    const auto at = [&](double t) {
        const double s = 1 - t;
        return AcGePoint3d(start * (s * s * s) + controls[0].asVector() * (3 * s * s * t) +
                           controls[1].asVector() * (3 * s * t * t) + controls[2].asVector() * (t * t * t));
    };
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double d0 = controls[0][axis] - start[axis], d1 = controls[1][axis] - controls[0][axis],
                     d2 = controls[2][axis] - controls[1][axis];
        const double a = d0 - 2 * d1 + d2, b = d1 - d0;
        const double root = std::sqrt(std::max(b * b - a * d0, 0.0));
        for (const double t : {(-b - root) / a, (-b + root) / a, -d0 / (2 * b)})
            if (t > 0 && t < 1)
                add(at(t));
    }
}

void ExtentsSink::path(const WorldPath& path, const Pen&) {
    const AcGePoint3d* next = path.points.data();
    AcGePoint3d last;
    for (const WorldPath::Verb verb : path.verbs) {
        if (verb == WorldPath::Verb::curve) {
            addCurve(last, next);
            next += 3;
        } else {
            add(*next++);
        }
        last = next[-1];
    }
}

void ExtentsSink::area(const Area& area, const Pen& pen) {
    polyline(area.points, pen);
}

void ExtentsSink::glyphs(const GlyphRun& run, const Pen&) {
    const GlyphBox& ink = run.text.ink;
    if (ink.empty)
        return;
    for (const double x : {ink.left, ink.right})
        for (const double y : {ink.bottom, ink.top})
            add(run.at(x, y));
}

} // namespace host
