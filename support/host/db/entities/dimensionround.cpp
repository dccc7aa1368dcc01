// Angular, radial and diametric dimensions.
#include "host/db/entities/dimensionpainter.h"
#include "host/db/entities/fields.h"

ACRX_DXF_DEFINE_MEMBERS(AcDb2LineAngularDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        0, DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDb3PointAngularDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent,
                        0, DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbRadialDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbDiametricDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DIMENSION, ObjectDBX Classes)

AcDb2LineAngularDimension::AcDb2LineAngularDimension(
    const AcGePoint3d& xLine1Start, const AcGePoint3d& xLine1End, const AcGePoint3d& xLine2Start,
    const AcGePoint3d& xLine2End, const AcGePoint3d& arcPoint, const ACHAR* text, AcDbObjectId style) {
    m.points = {xLine2End, xLine1Start, xLine1End, xLine2Start, arcPoint};
    m.text = text;
    m.style = style;
}

AcDb3PointAngularDimension::AcDb3PointAngularDimension(const AcGePoint3d& centerPoint,
                                                       const AcGePoint3d& xLine1Point,
                                                       const AcGePoint3d& xLine2Point,
                                                       const AcGePoint3d& arcPoint, const ACHAR* text,
                                                       AcDbObjectId style) {
    m.points = {arcPoint, xLine1Point, xLine2Point, centerPoint, AcGePoint3d::kOrigin};
    m.text = text;
    m.style = style;
}

std::vector<AcDbDimension::FileSubclass> AcDb2LineAngularDimension::fileSubclasses() const {
    return {{"AcDb2LineAngularDimension", {13, 14, 15, 16}}};
}
std::vector<AcDbDimension::FileSubclass> AcDb3PointAngularDimension::fileSubclasses() const {
    return {{"AcDb3PointAngularDimension", {13, 14, 15}}};
}

namespace {

/// Of the points of a line the one farther from the vertex on the side of the direction; else the nearer one
/// of all.
AcGePoint2d pointOnSide(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& vertex, double angle) {
    const AcGeVector2d towards = host::direction(angle);
    const double reachA = (a - vertex).dotProduct(towards);
    const double reachB = (b - vertex).dotProduct(towards);
    return reachA >= reachB ? a : b;
}

} // namespace

host::AngularDimension::Sector AcDb2LineAngularDimension::sector() const {
    Sector found;
    const AcGePoint2d a = flat(Point::second);
    const AcGePoint2d b = flat(Point::third);
    const AcGePoint2d c = flat(Point::fourth);
    const AcGePoint2d d = flat(Point::first);
    const AcGePoint2d arc = flat(Point::arc);
    const AcGeVector2d u = b - a;
    const AcGeVector2d w = d - c;
    const double cross = u.crossProduct(w);
    if (!(std::fabs(cross) > 1e-10 * u.length() * w.length())) {
        return found;
    }
    found.vertex = a + u * ((c - a).crossProduct(w) / cross);
    found.radius = found.vertex.distanceTo(arc);
    // The lines make four sectors; the one that holds the arc point is meant.
    const double at = (arc - found.vertex).angle();
    const double first = u.angle();
    const double second = w.angle();
    double angles[] = {first, first + host::pi, second, second + host::pi};
    double before = host::twoPi;
    double after = host::twoPi;
    int startLine = 0;
    for (int index = 0; index < 4; ++index) {
        const double back = host::normalizedAngle(at - angles[index]);
        const double ahead = host::normalizedAngle(angles[index] - at);
        if (back < before) {
            before = back;
            found.start = host::normalizedAngle(angles[index]);
            startLine = index / 2;
        }
        after = std::min(after, ahead > 0.0 ? ahead : host::twoPi);
    }
    found.sweep = before + after;
    const double end = found.start + found.sweep;
    found.startPoint = startLine == 0 ? pointOnSide(a, b, found.vertex, found.start)
                                      : pointOnSide(c, d, found.vertex, found.start);
    found.endPoint =
        startLine == 0 ? pointOnSide(c, d, found.vertex, end) : pointOnSide(a, b, found.vertex, end);
    found.isValid = found.radius > 0.0;
    return found;
}

host::AngularDimension::Sector AcDb3PointAngularDimension::sector() const {
    Sector found;
    found.vertex = flat(Point::fourth);
    found.startPoint = flat(Point::second);
    found.endPoint = flat(Point::third);
    const AcGeVector2d arm = flat(Point::first) - found.vertex;
    const AcGeVector2d first = found.startPoint - found.vertex;
    const AcGeVector2d second = found.endPoint - found.vertex;
    found.radius = arm.length();
    found.isValid = found.radius > 0.0 && first.length() > 0.0 && second.length() > 0.0;
    found.start = first.angle();
    found.sweep = host::normalizedAngle(second.angle() - found.start);
    if (host::normalizedAngle(arm.angle() - found.start) > found.sweep) {
        found.start = second.angle();
        found.sweep = host::twoPi - found.sweep;
        std::swap(found.startPoint, found.endPoint);
    }
    return found;
}

namespace host {

namespace {

/// What of an angular dimension stands between its extension lines, and where its text goes.
struct ArcFit {
    bool textInside = true;
    bool arrowsInside = true;
    double where = 0.0; ///< direction of the text from the vertex
    double textAngle = 0.0;
    AcGeVector2d half; ///< half the text along and across the arc
    double lift = 0.0; ///< of the text's middle from the arc, outwards
    bool breaks = false;
};

ArcFit fitOnArc(const DimensionPainter& painter, double radius, double start, double sweep) {
    const DimVariables& v = painter.v;
    const double arrow = painter.arrowSize();
    ArcFit fit;
    fit.where = start + 0.5 * sweep;
    fit.textAngle = painter.textAngle(fit.where + halfPi, v.tih != 0);
    fit.half = painter.textHalfExtent(fit.textAngle, fit.where + halfPi);
    const double chord = 2.0 * radius * std::sin(0.5 * std::min(sweep, pi));
    const double wanted = painter.hasText() ? 2.0 * (fit.half.x + painter.gap()) : 0.0;
    const bool bothFit = wanted + 2.0 * arrow <= chord + 1e-9;
    fit.textInside = bothFit || v.tix != 0 || (v.atfit != 0 && v.atfit != 2 && wanted <= chord);
    fit.arrowsInside = bothFit || (!fit.textInside && v.atfit >= 2 && 2.0 * arrow <= radius * sweep);
    if (!fit.textInside && v.tmove == 0) {
        const double beyond = (fit.arrowsInside ? 1.0 : 2.0) * arrow + painter.gap() + fit.half.x;
        fit.where = start + sweep + beyond / radius;
        fit.textAngle = painter.textAngle(fit.where + halfPi, v.toh != 0);
        fit.half = painter.textHalfExtent(fit.textAngle, fit.where + halfPi);
    }
    const bool liesAcross =
        std::fabs(std::sin(fit.textAngle - fit.where - halfPi)) > 1e-6 && !painter.data().hasTextRotation;
    fit.breaks = v.tad == 0 || (liesAcross && fit.textInside && v.tad != 2);
    const AcGeVector2d readableUp = direction(painter.readable(fit.where + halfPi)).perpVector();
    const double up = v.tad == 2 || readableUp.dotProduct(direction(fit.where)) > 0.0 ? 1.0 : -1.0;
    fit.lift = fit.breaks ? up * v.tvp * painter.scaled(v.txt)
                          : (v.tad == 4 ? -up : up) * (painter.gap() + fit.half.y);
    return fit;
}

} // namespace

void AngularDimension::paint(DimensionPainter& painter) const {
    for (const Point which : usedPoints()) {
        painter.definitionPoint(which == Point::arc ? m.points[which] : toObject(m.normal, m.points[which]));
    }
    const Sector at = sector();
    if (!at.isValid) {
        return;
    }
    const DimVariables& v = painter.v;
    const ArcFit fit = fitOnArc(painter, at.radius, at.start, at.sweep);
    if (painter.hasText()) {
        const std::optional<AcGePoint2d> given = painter.givenTextPlace();
        painter.placeText(given ? *given : polar(at.vertex, fit.where, at.radius + fit.lift), fit.textAngle,
                          given || fit.breaks);
    }
    const double end = at.start + at.sweep;
    paintExtensionLine(painter, at, at.startPoint, at.start, false);
    paintExtensionLine(painter, at, at.endPoint, end, true);
    // The arc, its arrows turned so that their chord lies on it.
    const double size = std::min(painter.scaled(v.asz) / at.radius, at.sweep);
    const double turn = painter.hasTicks() ? 0.0 : 0.5 * size;
    const double inward = fit.arrowsInside ? 1.0 : -1.0;
    const double cutFirst = painter.arrowCut(false) > 0.0 ? size : 0.0;
    const double cutSecond = painter.arrowCut(true) > 0.0 ? size : 0.0;
    if (fit.arrowsInside) {
        painter.brokenArc(at.vertex, at.radius, at.start + cutFirst, at.sweep - cutFirst - cutSecond);
    } else {
        if (v.tofl != 0) {
            painter.brokenArc(at.vertex, at.radius, at.start, at.sweep);
        }
        painter.dimensionArc(at.vertex, at.radius, at.start - 2.0 * size, 2.0 * size - cutFirst);
        const bool reachesText = !fit.textInside && v.tmove == 0 && painter.hasText() && !fit.breaks;
        const double beyond = reachesText ? fit.where - end + fit.half.x / at.radius : 2.0 * size;
        painter.dimensionArc(at.vertex, at.radius, end + cutSecond, beyond - cutSecond);
    }
    if (v.sd1 == 0) {
        painter.arrow(polar(at.vertex, at.start, at.radius), at.start - inward * (halfPi - turn), false);
    }
    if (v.sd2 == 0) {
        painter.arrow(polar(at.vertex, end, at.radius), end + inward * (halfPi - turn), true);
    }
}

void AngularDimension::paintExtensionLine(DimensionPainter& painter, const Sector& at,
                                          const AcGePoint2d& origin, double angle, bool second) const {
    if ((second ? painter.v.se2 : painter.v.se1) != 0) {
        return;
    }
    const double from = (origin - at.vertex).dotProduct(direction(angle));
    const double side = from <= at.radius ? 1.0 : -1.0;
    const double start = from + side * painter.scaled(painter.v.exo);
    const double end = at.radius + side * painter.scaled(painter.v.exe);
    if ((end - start) * side > 0.0) {
        painter.extensionLine(polar(at.vertex, angle, start), polar(at.vertex, angle, end), second);
    }
}

double CircleDimension::leaderLength() const {
    assertReadEnabled();
    return m.leaderLength;
}
Acad::ErrorStatus CircleDimension::setLeaderLength(double length) {
    return setAngle(&DimensionData::leaderLength, length);
}

void CircleDimension::paint(DimensionPainter& painter) const {
    const DimVariables& v = painter.v;
    const AcGePoint2d chord = flat(Point::fourth);
    const AcGePoint2d other = flat(Point::first); // the centre, or the far end of the diameter
    const double length = chord.distanceTo(other);
    painter.definitionPoint(toObject(m.normal, m.points[Point::first]));
    painter.definitionPoint(toObject(m.normal, m.points[Point::fourth]));
    if (!(length > 0.0)) {
        return;
    }
    const AcGeVector2d out = (chord - other) / length;
    const double radius = isDiametric() ? 0.5 * length : length;
    const AcGePoint2d center = chord - out * radius;
    const AcGeVector2d half = painter.textHalfExtent(painter.textAngle(out.angle(), v.tih != 0), out.angle());
    const double wanted =
        2.0 * half.x + 2.0 * painter.gap() + painter.arrowSize() * (isDiametric() ? 2.0 : 1.0);
    const std::optional<AcGePoint2d> given = painter.givenTextPlace();
    const bool fits = v.tix != 0 || (m.leaderLength <= 0.0 && painter.hasText() && wanted <= length);
    if (given ? given->distanceTo(center) < radius : fits) {
        return paintInside(painter, chord, other);
    }
    paintLeader(painter, chord, out);
    if (v.tofl != 0) {
        painter.dimensionLine(other, chord);
    }
    painter.centerMark(center, radius);
}

void CircleDimension::paintInside(DimensionPainter& painter, const AcGePoint2d& chord,
                                  const AcGePoint2d& other) const {
    const DimVariables& v = painter.v;
    const AcGeVector2d out = (chord - other).normal();
    const double lineAngle = out.angle();
    const double angle = painter.textAngle(lineAngle, v.tih != 0);
    const AcGeVector2d up = direction(painter.readable(lineAngle)).perpVector();
    const bool liesAcross = std::fabs(std::sin(angle - lineAngle)) > 1e-6;
    const double clear = painter.gap() + painter.textHalfExtent(angle, lineAngle).y;
    const double lift = v.tad == 0 || liesAcross ? 0.0 : (v.tad == 4 ? -clear : clear);
    if (painter.hasText()) {
        const std::optional<AcGePoint2d> given = painter.givenTextPlace();
        const AcGePoint2d middle = other + (chord - other) * 0.5;
        painter.placeText(given ? *given : middle + up * lift, angle, given || lift == 0.0);
    }
    const AcGePoint2d start = isDiametric() ? other + out * painter.arrowCut(false) : other;
    painter.brokenLine(start, chord - out * painter.arrowCut(true));
    if (isDiametric()) {
        painter.arrow(other, lineAngle + pi, false);
    }
    painter.arrow(chord, lineAngle, true);
}

/// Beyond the chord point, with a landing for a level text.
void CircleDimension::paintLeader(DimensionPainter& painter, const AcGePoint2d& chord,
                                  const AcGeVector2d& out) const {
    const DimVariables& v = painter.v;
    const double arrow = painter.arrowSize();
    const bool level = v.toh != 0 && !m.hasTextRotation;
    const double angle = painter.textAngle(out.angle(), v.toh != 0);
    const AcGeVector2d half = painter.textHalfExtent(angle, angle);
    const AcGeVector2d x = direction(m.horizontalRotation);
    const std::optional<AcGePoint2d> given = painter.givenTextPlace();
    AcGePoint2d elbow = chord + out * std::max(m.leaderLength, 2.0 * arrow + painter.gap());
    AcGeVector2d along = level ? x * (out.dotProduct(x) < -1e-9 ? -1.0 : 1.0) : out;
    if (given) {
        along = level ? x * ((*given - chord).dotProduct(x) < 0.0 ? -1.0 : 1.0) : out;
        elbow = level ? *given - along * (half.x + painter.gap() + arrow) : *given - out * half.x;
    }
    const bool above = v.tad != 0 && !given;
    const AcGeVector2d up = direction(painter.readable(along.angle())).perpVector();
    const double lift = above ? (v.tad == 4 ? -1.0 : 1.0) * (painter.gap() + half.y) : 0.0;
    AcGePoint2d last = elbow + along * (level ? arrow : 0.0);
    if (painter.hasText()) {
        const AcGePoint2d middle = last + along * (painter.gap() + half.x) + up * lift;
        painter.placeText(given ? *given : middle, angle, false);
        last = above ? last + along * (painter.gap() + 2.0 * half.x) : last;
    }
    painter.dimensionLine(chord + out * painter.arrowCut(true), elbow);
    painter.dimensionLine(elbow, last);
    painter.arrow(chord, out.angle() + pi, true);
}

} // namespace host

AcDbRadialDimension::AcDbRadialDimension(const AcGePoint3d& center, const AcGePoint3d& chordPoint,
                                         double leaderLength, const ACHAR* text, AcDbObjectId style) {
    m.points[Point::first] = center;
    m.points[Point::fourth] = chordPoint;
    m.leaderLength = leaderLength;
    m.text = text;
    m.style = style;
}
std::vector<AcDbDimension::FileSubclass> AcDbRadialDimension::fileSubclasses() const {
    return {{"AcDbRadialDimension", {15, 40}}};
}

AcDbDiametricDimension::AcDbDiametricDimension(const AcGePoint3d& chordPoint,
                                               const AcGePoint3d& farChordPoint, double leaderLength,
                                               const ACHAR* text, AcDbObjectId style) {
    m.points[Point::first] = farChordPoint;
    m.points[Point::fourth] = chordPoint;
    m.leaderLength = leaderLength;
    m.text = text;
    m.style = style;
}
std::vector<AcDbDimension::FileSubclass> AcDbDiametricDimension::fileSubclasses() const {
    return {{"AcDbDiametricDimension", {15, 40}}};
}
