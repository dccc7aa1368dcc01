// Entities, and segments of polylines, as curves of the geometry interface.
#include "host/db/entities/circle.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/line.h"
#include "host/db/entities/polyline.h"

namespace {

AcGeCircArc3d circularArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double start,
                          double sweep) {
    const AcGeVector3d reference = host::toWorld(normal, AcGeVector3d(std::cos(start), std::sin(start), 0.0));
    return {center, normal, reference, radius, 0.0, sweep};
}

} // namespace

Acad::ErrorStatus AcDbLine::getAcGeCurve(AcGeCurve3d*& curve) const {
    assertReadEnabled();
    curve = new AcGeLineSeg3d(m.start, m.end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getAcGeCurve(AcGeCurve3d*& curve) const {
    curve = new AcGeCircArc3d(circularArc(center(), m.normal, m.radius, 0.0, host::twoPi));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getAcGeCurve(AcGeCurve3d*& curve) const {
    curve = new AcGeCircArc3d(circularArc(center(), m.normal, m.radius, m.startAngle, m.sweep()));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg3d& line) const {
    AcGeLineSeg2d flat;
    const Acad::ErrorStatus status = getLineSegAt(index, flat);
    if (status == Acad::eOk) {
        line.set(toWorldPoint(flat.startPoint()), toWorldPoint(flat.endPoint()));
    }
    return status;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg2d& line) const {
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (segType(index) != kLine) {
        return Acad::eInvalidInput;
    }
    const host::PathSegment segment = m.path->segment(static_cast<int>(index));
    line.set(segment.start, segment.end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const {
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (segType(index) != kArc) {
        return Acad::eInvalidInput;
    }
    // A clockwise arc runs counterclockwise about the opposite normal.
    const host::PathSegment segment = m.path->segment(static_cast<int>(index));
    const AcGePoint3d center = toWorldPoint(segment.center());
    const AcGeVector3d normal = segment.bulge > 0.0 ? m.rest->normal : -m.rest->normal;
    arc.set(center, normal, (toWorldPoint(segment.start) - center).normal(), segment.radius(), 0.0,
            std::fabs(segment.sweep()));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc2d& arc) const {
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (segType(index) != kArc) {
        return Acad::eInvalidInput;
    }
    const host::PathSegment segment = m.path->segment(static_cast<int>(index));
    arc.set(segment.start, segment.end, segment.bulge);
    return Acad::eOk;
}
