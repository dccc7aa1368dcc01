// Plane tests for selection.
#include "host/ed/plansink.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

double turn(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// c lies on the line through a and b; whether it is between them.
bool between(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return std::min(a.x, b.x) <= c.x && c.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= c.y &&
           c.y <= std::max(a.y, b.y);
}

int sign(double value) {
    return value > 0.0 ? 1 : value < 0.0 ? -1 : 0;
}

} // namespace

CurvePiece flattened(const CurvePiece& piece) {
    CurvePiece flat = piece;
    flat.origin.z = flat.u.z = flat.v.z = 0.0;
    return flat;
}

std::vector<double> meetings(const CurvePiece& flat, const AcGePoint2d& from, const AcGePoint2d& to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double square = dx * dx + dy * dy;
    std::vector<double> found;
    if (square == 0.0) {
        return found;
    }
    // Height over the segment's line, by its length: at t of a line c + a t, of an arc c + a cos t + b sin t.
    const double a = dx * flat.u.y - dy * flat.u.x;
    const double b = dx * flat.v.y - dy * flat.v.x;
    const double c = dx * (flat.origin.y - from.y) - dy * (flat.origin.x - from.x);
    constexpr double slack = 1e-12;
    const auto take = [&](double t) {
        if (!flat.contains(t, slack)) {
            return;
        }
        const AcGePoint3d point = flat.pointAt(t);
        const double along = ((point.x - from.x) * dx + (point.y - from.y) * dy) / square;
        if (along >= -slack && along <= 1.0 + slack) {
            found.push_back(t);
        }
    };
    if (!flat.isArc()) {
        if (a != 0.0) {
            take(-c / a);
        }
        return found;
    }
    const double reach = std::hypot(a, b);
    if (reach == 0.0 || std::fabs(c) > reach * (1.0 + slack)) {
        return found;
    }
    const double middle = std::atan2(b, a);
    const double half = std::acos(std::clamp(-c / reach, -1.0, 1.0));
    take(middle + half);
    take(middle - half);
    return found;
}

bool segmentsCross(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c, const AcGePoint2d& d) {
    const int c1 = sign(turn(a, b, c));
    const int d1 = sign(turn(a, b, d));
    const int a1 = sign(turn(c, d, a));
    const int b1 = sign(turn(c, d, b));
    if (c1 * d1 < 0 && a1 * b1 < 0) {
        return true;
    }
    return (c1 == 0 && between(a, b, c)) || (d1 == 0 && between(a, b, d)) || (a1 == 0 && between(c, d, a)) ||
           (b1 == 0 && between(c, d, b));
}

bool insidePolygon(const AcGePoint2d& point, std::span<const AcGePoint2d> polygon) {
    bool inside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const AcGePoint2d& a = polygon[i];
        const AcGePoint2d& b = polygon[j];
        if (turn(a, b, point) == 0.0 && between(a, b, point)) {
            return true;
        }
        if ((a.y > point.y) != (b.y > point.y) &&
            point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

double distanceToSegment(const AcGePoint2d& point, const AcGePoint2d& from, const AcGePoint2d& to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = dx * dx + dy * dy;
    const double t = length > 0.0
                         ? std::clamp(((point.x - from.x) * dx + (point.y - from.y) * dy) / length, 0.0, 1.0)
                         : 0.0;
    return std::hypot(point.x - from.x - t * dx, point.y - from.y - t * dy);
}

void PlanSink::polyline(std::span<const AcGePoint3d> points, const Pen&) {
    for (std::size_t i = 1; i < points.size(); ++i) {
        segment(to2d(points[i - 1]), to2d(points[i]));
    }
}

void PlanSink::area(const Area& area, const Pen&) {
    std::vector<AcGePoint2d> contour;
    std::size_t begin = 0;
    for (const std::uint32_t end : area.contourEnds) {
        contour.clear();
        for (std::size_t i = begin; i < end; ++i) {
            contour.push_back(to2d(area.points[i]));
        }
        for (std::size_t i = 0; i < contour.size(); ++i) {
            segment(contour[i], contour[(i + 1) % contour.size()]);
        }
        if (contour.size() > 2) {
            filled(contour);
        }
        begin = end;
    }
}

void PlanSink::glyphs(const GlyphRun& run, const Pen&) {
    const GlyphBox& ink = run.text.ink;
    if (ink.empty) {
        return;
    }
    // The base line's start is part of what people pick a text by.
    const double left = std::min(0.0, ink.left);
    const double bottom = std::min(0.0, ink.bottom);
    const AcGePoint2d corners[] = {to2d(run.at(left, bottom)), to2d(run.at(ink.right, bottom)),
                                   to2d(run.at(ink.right, ink.top)), to2d(run.at(left, ink.top))};
    for (std::size_t i = 0; i < std::size(corners); ++i) {
        segment(corners[i], corners[(i + 1) % std::size(corners)]);
    }
    filled(corners);
}

ShapeSink::ShapeSink(const SelectionShape& shape) : mShape(shape) {
    double magnitude = 0.0;
    for (const AcGePoint2d& point : shape.points) {
        magnitude = std::max({magnitude, std::fabs(point.x), std::fabs(point.y)});
    }
    mTolerance = 1e-12 * magnitude;
}

std::size_t ShapeSink::edgeCount() const {
    return mShape.kind == SelectionShape::Kind::fence ? mShape.points.size() - 1 : mShape.points.size();
}

bool ShapeSink::crossesShape(const AcGePoint2d& from, const AcGePoint2d& to) const {
    const std::vector<AcGePoint2d>& points = mShape.points;
    for (std::size_t i = 0; i < edgeCount(); ++i) {
        if (segmentsCross(points[i], points[(i + 1) % points.size()], from, to)) {
            return true;
        }
    }
    return false;
}

std::vector<double> ShapeSink::crossings(const CurvePiece& flat) const {
    const std::vector<AcGePoint2d>& points = mShape.points;
    std::vector<double> all;
    for (std::size_t i = 0; i < edgeCount(); ++i) {
        const std::vector<double> some = meetings(flat, points[i], points[(i + 1) % points.size()]);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

bool ShapeSink::isInside(const AcGePoint2d& point) const {
    if (insidePolygon(point, mShape.points)) {
        return true;
    }
    for (std::size_t i = 0; i < mShape.points.size(); ++i) {
        const AcGePoint2d& next = mShape.points[(i + 1) % mShape.points.size()];
        if (distanceToSegment(point, mShape.points[i], next) <= mTolerance) {
            return true;
        }
    }
    return false;
}

/// Between two crossings of the edge a curve is on one side: its middle there tells on which.
bool ShapeSink::staysInside(const CurvePiece& flat) const {
    std::vector<double> parameters = crossings(flat);
    parameters.push_back(flat.from);
    parameters.push_back(flat.to);
    std::sort(parameters.begin(), parameters.end());
    double before = flat.from;
    for (const double parameter : parameters) {
        if (!isInside(to2d(flat.pointAt(0.5 * (before + parameter))))) {
            return false;
        }
        before = parameter;
    }
    return isInside(to2d(flat.start())) && isInside(to2d(flat.end()));
}

void ShapeSink::piece(const CurvePiece& flat) {
    if (!flat.isArc()) {
        segment(to2d(flat.start()), to2d(flat.end()));
        return;
    }
    mAny = true;
    if (isDecided()) {
        return;
    }
    if (mShape.kind == SelectionShape::Kind::window) {
        mInside = staysInside(flat);
    } else {
        const bool crossing = mShape.kind == SelectionShape::Kind::crossing;
        mTouches = (crossing && insidePolygon(to2d(flat.start()), mShape.points)) || !crossings(flat).empty();
    }
}

void ShapeSink::segment(const AcGePoint2d& from, const AcGePoint2d& to) {
    mAny = true;
    if (isDecided()) {
        return;
    }
    switch (mShape.kind) {
    case SelectionShape::Kind::fence:
        mTouches = crossesShape(from, to);
        break;
    case SelectionShape::Kind::crossing:
        mTouches = insidePolygon(from, mShape.points) || crossesShape(from, to);
        break;
    case SelectionShape::Kind::window:
        mInside = staysInside(CurvePiece::line({from.x, from.y, 0.0}, {to.x, to.y, 0.0}));
        break;
    }
}

void ShapeSink::filled(std::span<const AcGePoint2d> contour) {
    if (mShape.kind == SelectionShape::Kind::crossing && !mTouches) {
        mTouches = insidePolygon(mShape.points.front(), contour);
    } else if (mShape.kind == SelectionShape::Kind::fence && !mTouches) {
        mTouches = insidePolygon(mShape.points.front(), contour);
    }
}

void DistanceSink::piece(const CurvePiece& flat) {
    const AcGePoint3d point(mPoint.x, mPoint.y, 0.0);
    mDistance = std::min(mDistance, point.distanceTo(flat.pointAt(flat.closestParameter(point))));
}

void DistanceSink::segment(const AcGePoint2d& from, const AcGePoint2d& to) {
    mDistance = std::min(mDistance, distanceToSegment(mPoint, from, to));
}

void DistanceSink::filled(std::span<const AcGePoint2d> contour) {
    if (mDistance > mInsideArea && insidePolygon(mPoint, contour)) {
        mDistance = mInsideArea;
    }
}

} // namespace host
