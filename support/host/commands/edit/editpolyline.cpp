// Polylines between their entities and the form in which they are edited.
#include "host/commands/edit/editpolyline.h"

#include "host/commands/edit/editing.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <cmath>

namespace host {

WidePath EditPolyline::path() const {
    WidePath result;
    result.path.closed = closed;
    bool wide = false;
    for (const EditVertex& vertex : vertices) {
        result.path.add(vertex.point, vertex.bulge);
        result.widths.push_back(vertex.widths);
        wide = wide || vertex.widths != SegmentWidths();
    }
    result.widths.resize(wide ? static_cast<std::size_t>(segmentCount()) : 0);
    return result;
}

void EditPolyline::setPath(const WidePath& path) {
    vertices.clear();
    closed = path.path.closed;
    for (std::size_t i = 0; i < path.path.vertices.size(); ++i) {
        EditVertex& vertex = vertices.emplace_back();
        vertex.point = path.path.vertices[i].point;
        vertex.bulge = path.path.vertices[i].bulge;
        if (!path.widths.empty()) {
            vertex.widths = path.widths[std::min(i, path.widths.size() - 1)];
        }
    }
}

void EditPolyline::reverse() {
    std::vector<EditVertex> turned(vertices.rbegin(), vertices.rend());
    const std::size_t count = vertices.size();
    for (std::size_t i = 0; i < count; ++i) {
        const EditVertex& segment = vertices[(2 * count - 2 - i) % count];
        turned[i].bulge = 0.0 - segment.bulge; // never -0
        turned[i].widths = {segment.widths.end, segment.widths.start};
        if (turned[i].tangent) {
            *turned[i].tangent = normalizedAngle(*turned[i].tangent + pi);
        }
    }
    if (closed && count > 0) {
        std::rotate(turned.begin(), turned.end() - 1, turned.end());
        // Each vertex keeps the segment that follows it.
    }
    vertices = std::move(turned);
}

void EditPolyline::setWidth(double width) {
    for (EditVertex& vertex : vertices) {
        vertex.widths = {width, width};
    }
}

void EditPolyline::decurve() {
    fit = AcDb::k2dSimplePoly;
    for (EditVertex& vertex : vertices) {
        vertex.bulge = 0.0;
    }
}

namespace {

EditPolyline loadLight(const AcDbPolyline& light) {
    EditPolyline polyline;
    polyline.setPath(flatPathOf(light)->shape);
    polyline.linetypeGeneration = light.hasPlinegen();
    return polyline;
}

EditPolyline loadHeavy(const AcDb2dPolyline& heavy) {
    EditPolyline polyline;
    polyline.closed = heavy.isClosed();
    polyline.linetypeGeneration = heavy.isLinetypeGenerationOn();
    polyline.fit = heavy.polyType();
    const auto width = [](double own, double standard) {
        return own == Vertex2dData::widthNotGiven ? standard : own;
    };
    static_cast<const AcDbEntity&>(heavy).subentities()->forEach<AcDb2dVertex>(
        [&](const AcDb2dVertex& entity) {
            const Vertex2dData& data = entity.data();
            const bool added = polyline.isSpline() ? (data.flags & Vertex2dData::splineControl) == 0
                                                   : (data.flags & Vertex2dData::curveFit) != 0;
            if (added && polyline.isFitted()) {
                // The segment to the joint ends with the joint's own.
                if (!polyline.isSpline() && !polyline.vertices.empty()) {
                    polyline.vertices.back().widths.end = width(data.endWidth, heavy.defaultEndWidth());
                }
                return;
            }
            EditVertex& vertex = polyline.vertices.emplace_back();
            vertex.point = to2d(data.position);
            vertex.bulge = polyline.isFitted() ? 0.0 : data.bulge;
            vertex.widths = {width(data.startWidth, heavy.defaultStartWidth()),
                             width(data.endWidth, heavy.defaultEndWidth())};
            if ((data.flags & Vertex2dData::tangentUsed) != 0) {
                vertex.tangent = data.tangent;
            }
        });
    return polyline;
}

Vertex2dData vertexData(const EditVertex& vertex, double elevation) {
    Vertex2dData data;
    data.position = to3d(vertex.point, elevation);
    data.bulge = vertex.bulge;
    data.startWidth = vertex.widths.start;
    data.endWidth = vertex.widths.end;
    if (vertex.tangent) {
        data.tangent = *vertex.tangent;
        data.flags = Vertex2dData::tangentUsed;
    }
    return data;
}

void fillHeavy(AcDb2dPolyline& heavy, const EditPolyline& polyline) {
    heavy.subentities()->clear(heavy);
    heavy.setPolyType(AcDb::k2dSimplePoly);
    polyline.closed ? heavy.makeClosed() : heavy.makeOpen();
    polyline.linetypeGeneration ? heavy.setLinetypeGenerationOn() : heavy.setLinetypeGenerationOff();
    const std::vector<EditVertex>& own = polyline.vertices;
    const bool constant = std::all_of(own.begin(), own.end(), [&](const EditVertex& vertex) {
        return vertex.widths == SegmentWidths{own.front().widths.start, own.front().widths.start};
    });
    const double width = constant && !own.empty() ? own.front().widths.start : 0.0;
    heavy.setDefaultStartWidth(width);
    heavy.setDefaultEndWidth(width);
    for (const EditVertex& data : own) {
        auto* vertex = new AcDb2dVertex;
        vertex->setData(vertexData(data, heavy.elevation()));
        AcDbObjectId id;
        heavy.appendVertex(id, vertex);
        if (!id.isNull()) {
            vertex->close();
        }
    }
    if (polyline.isSpline()) {
        const int segments = std::clamp(polyline.splineSegments, -32767, 32767);
        heavy.splineFit(polyline.fit, static_cast<Adesk::Int16>(segments != 0 ? segments : 1));
    } else if (polyline.isFitted()) {
        heavy.curveFit();
    }
}

void fillLight(AcDbPolyline& light, const EditPolyline& polyline) {
    setFlatPath(light, polyline.path());
    light.setPlinegen(polyline.linetypeGeneration);
}

template <class To, class From>
std::unique_ptr<To> changedKind(const From& from) {
    auto made = newLike<To>(from);
    made->setNormal(from.normal());
    made->setElevation(from.elevation());
    made->setThickness(from.thickness());
    return made;
}

} // namespace

std::optional<EditPolyline> loadPolyline(const AcDbEntity& entity) {
    if (const auto* light = AcDbPolyline::cast(&entity)) {
        return loadLight(*light);
    }
    const auto* heavy = AcDb2dPolyline::cast(&entity);
    return heavy != nullptr ? std::optional(loadHeavy(*heavy)) : std::nullopt;
}

bool storePolyline(AcDbObjectId id, const EditPolyline& polyline, bool lightWhenPlain) {
    std::unique_ptr<AcDbEntity> replacement;
    {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (!entity) {
            return false;
        }
        if (auto* light = AcDbPolyline::cast(entity.get())) {
            if (!polyline.isFitted()) {
                fillLight(*light, polyline);
                return true;
            }
            auto fitted = changedKind<AcDb2dPolyline>(*light);
            fillHeavy(*fitted, polyline);
            replacement = std::move(fitted);
        } else if (auto* heavy = AcDb2dPolyline::cast(entity.get())) {
            if (polyline.isFitted() || !lightWhenPlain) {
                fillHeavy(*heavy, polyline);
                return true;
            }
            auto plain = changedKind<AcDbPolyline>(*heavy);
            fillLight(*plain, polyline);
            replacement = std::move(plain);
        } else {
            return false;
        }
    }
    return replaceEntity(id, std::move(replacement));
}

} // namespace host
