// Arcs as chords and as Bezier curves. An arc here is center + cos(t) u + sin(t) v for t from start to
// start + sweep, which under any affine map stays of that form.
#pragma once

#include "host/gi/primitives.h"

namespace host {

struct Arc {
    AcGePoint3d center;
    AcGeVector3d u, v;
    double start = 0, sweep = 0;

    AcGePoint3d at(double parameter) const {
        return center + u * std::cos(parameter) + v * std::sin(parameter);
    }
    AcGePoint3d startPoint() const { return at(start); }
    AcGePoint3d endPoint() const { return at(start + sweep); }
    Arc transformed(const AcGeMatrix3d& matrix) const {
        return {matrix * center, matrix * u, matrix * v, start, sweep};
    }
};

// The arc from one point to another whose bulge is the tangent of a quarter of its angle, positive when it
// turns counterclockwise; at the height z. The bulge must not be zero.
Arc arcOfBulge(double x1, double y1, double x2, double y2, double z, double bulge);

// Chords that keep an arc of this radius within the deviation; between 1 and 4096.
int chordCount(double radius, double sweep, double deviation);

// Appends the arc's points without its first.
void appendChords(const Arc& arc, double deviation, std::vector<AcGePoint3d>& points);

// Appends the arc to a path whose current point is its start. A small arc that may lie off by the deviation
// has fewer curves; otherwise the relative error of the radius is below 5e-6.
void appendCurves(const Arc& arc, WorldPath& path, double deviation = 0);

} // namespace host
