// Fitting of polylines.
#include "host/commands/edit/polyfit.h"

#include "host/ge/angles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {
namespace {

/// Direction at `at` of the circle through three points; of the chord when they lie on a line.
double circleTangent(const AcGePoint2d& before, const AcGePoint2d& at, const AcGePoint2d& after) {
    // The circle's tangent turns from the chord behind by the angle that it sees from the chord across.
    const double in = (at - before).angle();
    const double across = (after - before).angle();
    const double out = (after - at).angle();
    const double half = signedAngle(out - across);
    return normalizedAngle(in + half);
}

/// Direction at the start of the arc that ends at `to` with the given direction.
double tangentAtOtherEnd(const AcGePoint2d& from, const AcGePoint2d& to, double tangentAtTo) {
    return normalizedAngle(2.0 * (to - from).angle() - tangentAtTo);
}

std::vector<double> vertexTangents(const EditPolyline& polyline) {
    const std::vector<EditVertex>& vertices = polyline.vertices;
    const std::size_t count = vertices.size();
    std::vector<double> tangents(count);
    const auto inner = [&](std::size_t i) { return polyline.closed ? count > 2 : i > 0 && i + 1 < count; };
    for (std::size_t i = 0; i < count; ++i) {
        if (vertices[i].tangent) {
            tangents[i] = *vertices[i].tangent;
        } else if (inner(i)) {
            tangents[i] = circleTangent(vertices[(i + count - 1) % count].point, vertices[i].point,
                                        vertices[(i + 1) % count].point);
        }
    }
    const auto end = [&](std::size_t i, std::size_t neighbour, bool start) {
        if (inner(i) || vertices[i].tangent) {
            return;
        }
        const AcGePoint2d& a = vertices[start ? i : neighbour].point;
        const AcGePoint2d& b = vertices[start ? neighbour : i].point;
        const bool known = inner(neighbour) || vertices[neighbour].tangent.has_value();
        // Both ways the chord halves the turn between the two ends of an arc.
        tangents[i] = known ? tangentAtOtherEnd(a, b, tangents[neighbour]) : (b - a).angle();
    };
    if (count >= 2) {
        end(0, 1, true);
        end(count - 1, count - 2, false);
    }
    return tangents;
}

struct Biarc {
    AcGePoint2d joint;
    double firstBulge = 0.0;
    double secondBulge = 0.0;
};

/// Bulge of the arc over a chord that leaves the chord's direction by an angle at its start.
double bulgeFor(double startDirection, const AcGeVector2d& chord) {
    return chord.lengthSqrd() == 0.0 ? 0.0 : std::tan(signedAngle(chord.angle() - startDirection) / 2.0);
}

/// Two arcs with the given end directions and equal tangent lengths, which touch at the joint.
Biarc biarc(const AcGePoint2d& from, double fromDirection, const AcGePoint2d& to, double toDirection) {
    const AcGeVector2d t1 = direction(fromDirection);
    const AcGeVector2d t2 = direction(toDirection);
    const AcGeVector2d chord = to - from;
    const double size = chord.length();
    const AcGeVector2d sum = t1 + t2;
    const double a = 2.0 * (1.0 - t1.dotProduct(t2));
    const double b = chord.dotProduct(sum);
    double d = size / 2.0;
    if (a > 1e-12) {
        d = (-b + std::sqrt(b * b + a * size * size)) / a;
    } else if (std::fabs(b) > 1e-12 * size) {
        d = size * size / (2.0 * b);
    }
    if (!(d > 0.0) || d > 100.0 * size) {
        d = size / 2.0; // the directions run against the chord
    }
    Biarc arcs;
    arcs.joint = from + (chord + (t1 - t2) * d) * 0.5;
    arcs.firstBulge = bulgeFor(fromDirection, arcs.joint - from);
    // Seen backwards the second arc starts against the end direction.
    arcs.secondBulge = -bulgeFor(toDirection + pi, arcs.joint - to);
    return arcs;
}

SegmentWidths half(const SegmentWidths& widths, bool first) {
    const double middle = 0.5 * (widths.start + widths.end);
    return first ? SegmentWidths{widths.start, middle} : SegmentWidths{middle, widths.end};
}

/// De Boor's algorithm.
AcGePoint2d splinePoint(const std::vector<AcGePoint2d>& frame, const std::vector<double>& knots, int degree,
                        double t) {
    const auto last = static_cast<std::ptrdiff_t>(frame.size()) - 1;
    auto span = std::upper_bound(knots.begin() + degree, knots.begin() + last + 1, t) - knots.begin() - 1;
    span = std::clamp<std::ptrdiff_t>(span, degree, last);
    std::array<AcGePoint2d, 4> points;
    for (int i = 0; i <= degree; ++i) {
        points[static_cast<std::size_t>(i)] = frame[static_cast<std::size_t>(span - degree + i)];
    }
    for (int level = 1; level <= degree; ++level) {
        for (int i = degree; i >= level; --i) {
            const double low = knots[static_cast<std::size_t>(span - degree + i)];
            const double high = knots[static_cast<std::size_t>(span + 1 + i - level)];
            const double share = high > low ? (t - low) / (high - low) : 0.0;
            AcGePoint2d& point = points[static_cast<std::size_t>(i)];
            const AcGePoint2d& before = points[static_cast<std::size_t>(i - 1)];
            point = before + (point - before) * share;
        }
    }
    return points[static_cast<std::size_t>(degree)];
}

} // namespace

std::vector<FittedVertex> fitArcs(const EditPolyline& polyline) {
    const std::vector<EditVertex>& vertices = polyline.vertices;
    const std::vector<double> tangents = vertexTangents(polyline);
    std::vector<FittedVertex> fitted;
    const auto segments = static_cast<std::size_t>(polyline.segmentCount());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const EditVertex& from = vertices[i];
        FittedVertex& own =
            fitted.emplace_back(FittedVertex{from.point, 0.0, from.widths, tangents[i], true});
        const EditVertex& to = vertices[(i + 1) % vertices.size()];
        if (i >= segments || from.point.isEqualTo(to.point)) {
            continue;
        }
        const Biarc arcs = biarc(from.point, tangents[i], to.point, tangents[(i + 1) % vertices.size()]);
        own.bulge = arcs.firstBulge;
        own.widths = half(from.widths, true);
        fitted.push_back({arcs.joint, arcs.secondBulge, half(from.widths, false), 0.0, false});
    }
    return fitted;
}

std::vector<FittedVertex> fitSpline(const EditPolyline& polyline, int degree, int segments) {
    std::vector<AcGePoint2d> frame;
    for (const EditVertex& vertex : polyline.vertices) {
        frame.push_back(vertex.point);
    }
    const int own = static_cast<int>(frame.size());
    degree = std::min(degree, polyline.closed ? own : own - 1);
    std::vector<FittedVertex> fitted;
    if (own < 2 || degree < 1) {
        return fitted;
    }
    std::vector<double> knots;
    int spans = own - degree;
    if (polyline.closed) {
        for (int i = 0; i < degree; ++i) {
            frame.push_back(frame[static_cast<std::size_t>(i)]);
        }
        spans = own;
        for (int i = 0; i < own + 2 * degree + 1; ++i) {
            knots.push_back(i - degree);
        }
    } else {
        for (int i = 0; i < own + degree + 1; ++i) {
            knots.push_back(std::clamp(i - degree, 0, spans));
        }
    }
    const int count = segments * (polyline.closed ? own : own - 1);
    const auto frameSegments = static_cast<double>(polyline.segmentCount());
    for (int i = 0; i < count + (polyline.closed ? 0 : 1); ++i) {
        FittedVertex& vertex = fitted.emplace_back();
        vertex.isOwn = false;
        vertex.point = splinePoint(frame, knots, degree, static_cast<double>(spans) * i / count);
        // Widths follow the frame's segments at the same share of the way.
        const auto widthAt = [&](double at) {
            const double place = std::min(at * frameSegments / count, frameSegments);
            const auto index = std::min(static_cast<std::size_t>(place), polyline.vertices.size() - 1);
            const SegmentWidths& widths = polyline.vertices[index].widths;
            return widths.start + (widths.end - widths.start) * (place - static_cast<double>(index));
        };
        vertex.widths = {widthAt(i), widthAt(std::min(i + 1, count))};
    }
    return fitted;
}

} // namespace host
