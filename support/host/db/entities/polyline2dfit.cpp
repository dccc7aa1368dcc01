// Fitting of 2D polylines: arc pairs and splines, and the grips of fitted polylines.
#include "host/db/entities/fields.h"
#include "host/db/entities/polyline2d.h"
#include "host/db/entities/polylinefit.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

using host::Vertex2dData;

namespace {

constexpr int fittingBits = Vertex2dData::curveFit | Vertex2dData::splineFit | Vertex2dData::splineControl;

Adesk::Int16 withBits(Adesk::Int16 flags, int cleared, int set) {
    return static_cast<Adesk::Int16>((flags & ~cleared) | set);
}

/// Widths given to a vertex, with the polyline's for those that are not.
host::SegmentWidths widthsOf(const Vertex2dData& vertex, double standardStart, double standardEnd) {
    return {vertex.startWidth == Vertex2dData::widthNotGiven ? standardStart : vertex.startWidth,
            vertex.endWidth == Vertex2dData::widthNotGiven ? standardEnd : vertex.endWidth};
}

} // namespace

bool AcDb2dPolyline::isAdded(const AcDb2dVertex& vertex) {
    return (vertex.data().flags & (Vertex2dData::curveFit | Vertex2dData::splineFit)) != 0;
}

std::vector<Vertex2dData> AcDb2dPolyline::frameVertices() const {
    std::vector<Vertex2dData> frame;
    mVertices.forEach<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if (!isAdded(vertex)) {
            frame.push_back(vertex.data());
        }
    });
    return frame;
}

Acad::ErrorStatus AcDb2dPolyline::append(const Vertex2dData& data) {
    auto* vertex = new AcDb2dVertex;
    vertex->setData(data);
    AcDbObjectId id;
    const Acad::ErrorStatus status = appendVertex(id, vertex);
    if (!id.isNull()) {
        vertex->close();
    }
    return status;
}

Acad::ErrorStatus AcDb2dPolyline::straighten() {
    assertWriteEnabled();
    // A vertex that arcs were fitted to has given the second half of its taper to the joint after it.
    std::vector<double> endWidths;
    mVertices.forEach<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if (!isAdded(vertex)) {
            endWidths.push_back(vertex.data().endWidth);
        } else if ((vertex.data().flags & Vertex2dData::curveFit) != 0 && !endWidths.empty()) {
            endWidths.back() = vertex.data().endWidth;
        }
    });
    mVertices.removeIf<AcDb2dVertex>(*this, [](const AcDb2dVertex& vertex) { return isAdded(vertex); });
    setPolyType(AcDb::k2dSimplePoly);
    std::size_t at = 0;
    return mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        Vertex2dData data = vertex.data();
        data.bulge = 0.0;
        data.endWidth = endWidths[at++];
        data.flags = withBits(data.flags, fittingBits, 0);
        vertex.setData(data);
    });
}

Acad::ErrorStatus AcDb2dPolyline::curveFit() {
    assertWriteEnabled();
    if (frameVertices().size() < 2) {
        return Acad::eDegenerateGeometry;
    }
    if (const Acad::ErrorStatus status = straighten(); status != Acad::eOk) {
        return status;
    }
    const std::vector<Vertex2dData> frame = frameVertices();
    std::vector<host::FitVertex> vertices;
    for (const Vertex2dData& vertex : frame) {
        host::FitVertex& made = vertices.emplace_back();
        made.point = host::to2d(vertex.position);
        if ((vertex.flags & Vertex2dData::tangentUsed) != 0) {
            made.tangent = vertex.tangent;
        }
    }
    const host::BulgePath path = host::fitArcs(vertices, isClosed());
    std::vector<Vertex2dData> joints;
    std::vector<std::size_t> order;
    std::size_t place = 0;
    std::size_t index = 0;
    const auto hasJoint = [&](std::size_t at) {
        const bool isLast = !isClosed() && at + 1 == frame.size();
        return !isLast && !vertices[at].point.isEqualTo(vertices[(at + 1) % frame.size()].point);
    };
    mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        const host::SegmentWidths widths = widthsOf(frame[index], m.startWidth, m.endWidth);
        const double middle = 0.5 * (widths.start + widths.end);
        Vertex2dData data = vertex.data();
        data.bulge = path.vertices[place++].bulge;
        order.push_back(index);
        if (hasJoint(index)) {
            data.startWidth = widths.start;
            data.endWidth = middle;
            Vertex2dData joint;
            joint.position = host::to3d(path.vertices[place].point, m.elevation);
            joint.bulge = path.vertices[place++].bulge;
            joint.flags = Vertex2dData::curveFit;
            joint.startWidth = middle;
            joint.endWidth = widths.end;
            order.push_back(frame.size() + joints.size());
            joints.push_back(joint);
        }
        vertex.setData(data);
        ++index;
    });
    for (const Vertex2dData& joint : joints) {
        append(joint);
    }
    mVertices.reorder(*this, order);
    return setPolyType(AcDb::k2dFitCurvePoly);
}

Acad::ErrorStatus AcDb2dPolyline::splineFit() {
    const host::SplineFitting fitting = host::splineFittingOf(database());
    return splineFit(fitting.degree == 2 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly,
                     static_cast<Adesk::Int16>(fitting.segments));
}

Acad::ErrorStatus AcDb2dPolyline::splineFit(AcDb::Poly2dType type, Adesk::Int16 segments) {
    if ((type != AcDb::k2dQuadSplinePoly && type != AcDb::k2dCubicSplinePoly) || segments == 0) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    if (frameVertices().size() < 2) {
        return Acad::eDegenerateGeometry;
    }
    if (const Acad::ErrorStatus status = straighten(); status != Acad::eOk) {
        return status;
    }
    const std::vector<Vertex2dData> frame = frameVertices();
    const double startWidth = widthsOf(frame.front(), m.startWidth, m.endWidth).start;
    const Vertex2dData& last = frame[frame.size() - (isClosed() ? 1 : 2)];
    const double endWidth = widthsOf(last, m.startWidth, m.endWidth).end;
    std::vector<AcGePoint3d> positions;
    for (const Vertex2dData& vertex : frame) {
        positions.push_back(vertex.position);
    }
    mVertices.change<AcDb2dVertex>([](AcDb2dVertex& vertex) {
        Vertex2dData data = vertex.data();
        data.flags = withBits(data.flags, fittingBits, Vertex2dData::splineControl);
        vertex.setData(data);
    });
    const std::vector<AcGePoint3d> points = host::splineVertices(
        positions, isClosed(), type == AcDb::k2dQuadSplinePoly ? 2 : 3, std::abs(segments));
    host::BulgePath path;
    path.closed = isClosed();
    std::vector<host::FitVertex> onSpline;
    for (const AcGePoint3d& point : points) {
        path.add(host::to2d(point));
        onSpline.push_back({host::to2d(point), {}});
    }
    if (segments < 0) {
        path = host::fitArcs(onSpline, isClosed());
    }
    // The width runs evenly from the first vertex to the last.
    const double count = std::max(1, path.segmentCount());
    for (std::size_t index = 0; index < path.vertices.size(); ++index) {
        const auto widthAt = [&](double place) {
            return startWidth + (endWidth - startWidth) * std::min(place / count, 1.0);
        };
        Vertex2dData data;
        data.position = host::to3d(path.vertices[index].point, m.elevation);
        data.bulge = path.vertices[index].bulge;
        data.flags = Vertex2dData::splineFit;
        data.startWidth = widthAt(static_cast<double>(index));
        data.endWidth = widthAt(static_cast<double>(index) + 1.0);
        append(data);
    }
    return setPolyType(type);
}

Acad::ErrorStatus AcDb2dPolyline::convertToPolyType(AcDb::Poly2dType type) {
    switch (type) {
    case AcDb::k2dSimplePoly:
        return straighten();
    case AcDb::k2dFitCurvePoly:
        return curveFit();
    default:
        return splineFit(type, static_cast<Adesk::Int16>(host::splineFittingOf(database()).segments));
    }
}

int AcDb2dPolyline::fittedSegments() const {
    const std::vector<Vertex2dData> drawn = drawnVertices();
    const int frame = host::splineFrameSegments(static_cast<int>(frameVertices().size()), isClosed());
    const bool hasArcs = std::any_of(drawn.begin(), drawn.end(),
                                     [](const Vertex2dData& vertex) { return vertex.bulge != 0.0; });
    const int segments = static_cast<int>(drawn.size()) / (std::max(frame, 1) * (hasArcs ? 2 : 1));
    return std::max(1, segments) * (hasArcs ? -1 : 1);
}

Acad::ErrorStatus AcDb2dPolyline::fitAgain() {
    switch (const AcDb::Poly2dType type = polyType()) {
    case AcDb::k2dSimplePoly:
        return Acad::eOk;
    case AcDb::k2dFitCurvePoly:
        return curveFit();
    default:
        return splineFit(type, static_cast<Adesk::Int16>(fittedSegments()));
    }
}

Acad::ErrorStatus AcDb2dPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    assertReadEnabled();
    for (const Vertex2dData& vertex : frameVertices()) {
        points.append(toWorldPoint(host::to2d(vertex.position)));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<Vertex2dData> vertices = frameVertices();
    const AcGeVector3d move = host::toObject(m.normal, offset);
    const Acad::ErrorStatus status =
        host::forGrips(indices, static_cast<int>(vertices.size()), [&](int index) {
            AcGePoint3d& position = vertices[static_cast<std::size_t>(index)].position;
            position.x += move.x;
            position.y += move.y;
        });
    if (status != Acad::eOk) {
        return status;
    }
    std::size_t at = 0;
    mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        if (!isAdded(vertex) && at < vertices.size()) {
            vertex.setData(vertices[at++]);
        }
    });
    return fitAgain();
}
