// Joining of two light polylines: which ends touch, and the vertices of the other line in their order.
#include "services/linktwopolyline.h"

namespace {

/// A vertex width that is not given.
constexpr double noWidth = -1.0;

AcGePoint2d vertexOf(const AcDbPolyline& polyline, unsigned index) {
    AcGePoint2d vertex;
    polyline.getPointAt(index, vertex);
    return vertex;
}

double bulgeOf(const AcDbPolyline& polyline, unsigned index) {
    double bulge = 0.0;
    polyline.getBulgeAt(index, bulge);
    return bulge;
}

struct Ends {
    AcGePoint3d start;
    AcGePoint3d end;
};

Ends endsOf(const AcDbPolyline& polyline) {
    Ends ends;
    polyline.getStartPoint(ends.start);
    polyline.getEndPoint(ends.end);
    return ends;
}

bool touch(const AcGePoint3d& one, const AcGePoint3d& other) {
    return one.isEqualTo(other, AcGeContext::gTol);
}

/// Puts the vertices of `added` behind those of the result; its first one is there already.
void append(AcDbPolyline& result, const AcDbPolyline& added) {
    for (unsigned i = 0; i < added.numVerts(); ++i) {
        if (i == 0) {
            result.setBulgeAt(result.numVerts() - 1, bulgeOf(added, 0));
        } else {
            result.addVertexAt(result.numVerts(), vertexOf(added, i), bulgeOf(added, i), noWidth, noWidth);
        }
    }
}

// Backwards an arc bends the other way, and its bulge moves to its other vertex.

void prependReversed(AcDbPolyline& result, const AcDbPolyline& added) {
    for (unsigned i = 1; i < added.numVerts(); ++i) {
        result.addVertexAt(0, vertexOf(added, i), -bulgeOf(added, i - 1), noWidth, noWidth);
    }
}

void appendReversed(AcDbPolyline& result, const AcDbPolyline& added) {
    for (unsigned i = added.numVerts(); i-- > 1;) {
        result.addVertexAt(result.numVerts(), vertexOf(added, i - 1), 0.0, noWidth, noWidth);
        result.setBulgeAt(result.numVerts() - 2, -bulgeOf(added, i - 1));
    }
}

} // namespace

int LinkTwoPolyline(AcDbPolyline& result, const AcDbPolyline& first, const AcDbPolyline& second, int& how) {
    how = -1;
    const Ends one = endsOf(first);
    const Ends other = endsOf(second);
    // A later kind that fits too takes the place of the one before.
    if (touch(one.start, other.start)) {
        how = 0;
        result.copyFrom(&first);
        prependReversed(result, second);
    }
    if (touch(one.start, other.end)) {
        how = 1;
        result.copyFrom(&second);
        append(result, first);
        return 1;
    }
    if (touch(one.end, other.end)) {
        how = 2;
        result.copyFrom(&first);
        appendReversed(result, second);
    }
    if (touch(one.end, other.start)) {
        how = 3;
        result.copyFrom(&first);
        append(result, second);
    }
    return how > 0 ? 1 : 0;
}
