// Flattening of lines: dashes, arcs, light polylines and their widths.
#include "host/gi/flattencore.h"
#include "host/gi/strips.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {

namespace {

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

bool isBulge(double bulge) {
    return std::abs(bulge) > 1e-9 && std::isfinite(bulge);
}

} // namespace

double FlattenCore::localDeviation() const {
    return m_options.deviation / std::max(m_transforms.back().scale, 1e-12);
}

bool FlattenCore::toWorld(std::span<const AcGePoint3d> points) {
    const Transform& transform = m_transforms.back();
    m_world.resize(points.size());
    if (transform.isIdentity)
        std::ranges::copy(points, m_world.begin());
    else
        std::ranges::transform(points, m_world.begin(),
                               [&](const AcGePoint3d& point) { return transform.matrix * point; });
    return std::ranges::all_of(m_world, isFinite);
}

void FlattenCore::strokeContinuous(std::span<const AcGePoint3d> points) {
    if (points.size() > 1 && toWorld(points))
        m_sink.polyline(m_world, m_pen);
}

void FlattenCore::stroke(std::span<const AcGePoint3d> points) {
    if (m_linetype->isContinuous())
        strokeContinuous(points);
    else
        strokeDashed(points);
}

void FlattenCore::strokeDashed(std::span<const AcGePoint3d> points) {
    m_run.clear();
    for (const AcGePoint3d& point : points)
        m_run.push_back({point, 0, 0});
    RunCutter run(m_run);
    const double resolution = m_options.dashResolution / std::max(m_transforms.back().scale, 1e-12);
    const DashLayout layout(*m_linetype, m_linetypeScale, run.length(), resolution);
    if (layout.isContinuous()) {
        strokeContinuous(points);
        return;
    }
    m_primitiveCount += layout.pieces().size();
    std::vector<AcGePoint3d> piecePoints;
    for (const DashLayout::Piece& piece : layout.pieces()) {
        run.cut(piece.start, piece.end, m_piece);
        if (piece.start == piece.end) {
            if (toWorld(std::array{m_piece.front().point}))
                m_sink.dot(m_world.front(), m_pen);
            continue;
        }
        piecePoints.clear();
        for (const RunPoint& point : m_piece)
            piecePoints.push_back(point.point);
        strokeContinuous(piecePoints);
    }
    for (const DashLayout::InsetPlace& place : layout.insets())
        inset(run, place);
}

// The text or shape set into a line of a complex linetype.
void FlattenCore::inset(const RunCutter& run, const DashLayout::InsetPlace& place) {
    const LinetypeLook::Element& element = *place.element;
    AcGePoint3d point;
    AcGeVector3d along;
    run.locate(place.distance, point, along);
    const AcGeVector3d across{-along.y, along.x, 0};
    const AcGePoint3d origin = point + (along * element.offsetX + across * element.offsetY) * m_linetypeScale;
    const AcGeVector3d start = element.isAbsolute ? AcGeVector3d::kXAxis : along;
    const AcGeVector3d direction = AcGeVector3d(start).rotateBy(element.rotation, AcGeVector3d::kZAxis);
    TextFormat format = element.format;
    format.height *= m_linetypeScale;
    if (element.inset == LinetypeLook::Element::Inset::text) {
        glyphs(origin, AcGeVector3d::kZAxis, direction, FontEngine::instance().shape(element.text, format));
        return;
    }
    if (const Glyph* shape = FontEngine::instance().shapeGlyph(format.font.file, element.shapeNumber))
        glyphs(origin, AcGeVector3d::kZAxis, direction, ShapedText::single(*shape, format.height));
}

void FlattenCore::strokeArc(const Arc& arc) {
    if (m_sink.wantsCurves() && m_linetype->isContinuous()) {
        const Transform& transform = m_transforms.back();
        m_path.clear();
        const Arc world = transform.isIdentity ? arc : arc.transformed(transform.matrix);
        m_path.move(world.startPoint());
        appendCurves(world, m_path);
        if (std::ranges::all_of(m_path.points, isFinite))
            m_sink.path(m_path, m_pen);
        return;
    }
    m_chords.assign(1, arc.startPoint());
    appendChords(arc, localDeviation(), m_chords);
    stroke(m_chords);
}

void FlattenCore::arc(const Arc& arc, AcGiArcType type, bool isWhole) {
    if (!prepare())
        return;
    const bool isArea = m_traits->state().fillType == kAcGiFillAlways && (isWhole || type != kAcGiArcSimple);
    if (type == kAcGiArcSimple && !isArea) {
        strokeArc(arc);
        return;
    }
    m_chords.assign(1, arc.startPoint());
    appendChords(arc, localDeviation(), m_chords);
    if (!isWhole) {
        if (type == kAcGiArcSector)
            m_chords.push_back(arc.center);
        m_chords.push_back(arc.startPoint());
    }
    if (isArea)
        fill(m_chords, std::array{static_cast<std::uint32_t>(m_chords.size())}, FillRule::nonZero);
    else
        stroke(m_chords);
}

void FlattenCore::polyline(std::span<const AcGePoint3d> points, Adesk::LongPtr marker,
                           const AcGeVector3d* normal) {
    if (!prepare())
        return;
    if (marker != -1)
        m_pen.marker = marker;
    if (points.size() == 1) {
        if (toWorld(points))
            m_sink.dot(m_world.front(), m_pen);
        return;
    }
    stroke(points);
    const double thickness = m_traits->state().thickness;
    if (thickness != 0 && m_options.drawsThickness)
        extrude(points, normal ? *normal : AcGeVector3d::kZAxis, thickness);
}

void FlattenCore::extrude(std::span<const AcGePoint3d> points, const AcGeVector3d& normal, double thickness) {
    const AcGeVector3d rise = normal.normal() * thickness;
    std::vector<AcGePoint3d> top(points.begin(), points.end());
    for (AcGePoint3d& point : top)
        point += rise;
    stroke(top);
    for (std::size_t i = 0; i < points.size(); ++i)
        stroke(std::array{points[i], top[i]});
}

void FlattenCore::worldLine(std::span<const AcGePoint3d> points) {
    m_transforms.emplace_back();
    polyline(points, -1);
    m_transforms.pop_back();
}

const LightPolyline::Vertex& FlattenCore::vertexAfter(std::size_t index) const {
    const auto& vertices = m_lightPolyline.vertices;
    return vertices[index + 1 < vertices.size() ? index + 1 : 0];
}

void FlattenCore::lightPolyline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex,
                                Adesk::UInt32 segmentCount) {
    if (!prepare())
        return;
    m_source.readLightPolyline(polyline, m_lightPolyline);
    const auto& vertices = m_lightPolyline.vertices;
    if (vertices.empty())
        return;
    const std::size_t all = m_lightPolyline.isClosed ? vertices.size() : vertices.size() - 1;
    const std::size_t from = std::min<std::size_t>(fromIndex, all);
    const std::size_t count =
        segmentCount == 0 ? all - from : std::min<std::size_t>(segmentCount, all - from);
    const bool isTurned = !(m_lightPolyline.normal == AcGeVector3d::kZAxis);
    if (isTurned)
        pushTransform(arbitraryAxes(m_lightPolyline.normal));
    const double narrow = localDeviation();
    const auto isWide = [&](std::size_t index) {
        const LightPolyline::Vertex& vertex = vertices[index];
        return vertex.startWidth > narrow || vertex.endWidth > narrow;
    };
    // Stretches of wide and of narrow segments, one after the other.
    for (std::size_t start = from; start < from + count;) {
        const bool wide = isWide(start);
        std::size_t end = start + 1;
        while (end < from + count && isWide(end) == wide)
            ++end;
        wide ? widePolyline(start, end - start) : narrowPolyline(start, end - start);
        start = end;
    }
    if (isTurned)
        popTransform();
}

// Appends a segment's points without its first; widths run evenly along it.
void FlattenCore::appendSegment(std::size_t index, std::vector<RunPoint>& run) const {
    const LightPolyline::Vertex &from = m_lightPolyline.vertices[index], &to = vertexAfter(index);
    run.back().widthOut = from.startWidth;
    if (!isBulge(from.bulge)) {
        run.push_back({{to.x, to.y, m_lightPolyline.elevation}, from.endWidth, from.endWidth});
        return;
    }
    std::vector<AcGePoint3d> chords;
    appendChords(arcOfBulge(from.x, from.y, to.x, to.y, m_lightPolyline.elevation, from.bulge),
                 localDeviation(), chords);
    for (std::size_t i = 0; i < chords.size(); ++i) {
        const double share = static_cast<double>(i + 1) / static_cast<double>(chords.size());
        const double width = from.startWidth + (from.endWidth - from.startWidth) * share;
        run.push_back({chords[i], width, width});
    }
}

void FlattenCore::narrowPolyline(std::size_t from, std::size_t count) {
    if (m_linetype->isContinuous() || m_lightPolyline.generatesLinetype) {
        plainPolyline(from, count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) // every segment begins the pattern anew
        plainPolyline(from + i, 1);
}

void FlattenCore::plainPolyline(std::size_t from, std::size_t count) {
    const auto& vertices = m_lightPolyline.vertices;
    const double z = m_lightPolyline.elevation;
    const auto first = vertices.begin() + static_cast<std::ptrdiff_t>(from);
    const bool hasArcs =
        std::any_of(first, first + static_cast<std::ptrdiff_t>(count),
                    [](const LightPolyline::Vertex& vertex) { return isBulge(vertex.bulge); });
    if (hasArcs && m_linetype->isContinuous() && m_sink.wantsCurves()) {
        const AcGeMatrix3d& matrix = transform();
        m_path.clear();
        m_path.move(matrix * AcGePoint3d{first->x, first->y, z});
        for (std::size_t i = from; i < from + count; ++i) {
            const LightPolyline::Vertex &start = vertices[i], &end = vertexAfter(i);
            if (isBulge(start.bulge))
                appendCurves(arcOfBulge(start.x, start.y, end.x, end.y, z, start.bulge).transformed(matrix),
                             m_path);
            else
                m_path.line(matrix * AcGePoint3d{end.x, end.y, z});
        }
        if (std::ranges::all_of(m_path.points, isFinite))
            m_sink.path(m_path, m_pen);
        return;
    }
    m_chords.assign(1, {first->x, first->y, z});
    for (std::size_t i = from; i < from + count; ++i) {
        const LightPolyline::Vertex &start = vertices[i], &end = vertexAfter(i);
        if (isBulge(start.bulge))
            appendChords(arcOfBulge(start.x, start.y, end.x, end.y, z, start.bulge), localDeviation(),
                         m_chords);
        else
            m_chords.push_back({end.x, end.y, z});
    }
    stroke(m_chords);
}

void FlattenCore::widePolyline(std::size_t from, std::size_t count) {
    const LightPolyline::Vertex& first = m_lightPolyline.vertices[from];
    const auto start = [&](const LightPolyline::Vertex& vertex) {
        m_run.assign(1,
                     {{vertex.x, vertex.y, m_lightPolyline.elevation}, vertex.startWidth, vertex.startWidth});
    };
    if (m_linetype->isContinuous() || m_lightPolyline.generatesLinetype) {
        start(first);
        for (std::size_t i = from; i < from + count; ++i)
            appendSegment(i, m_run);
        wideRun(m_run, m_lightPolyline.isClosed && count == m_lightPolyline.vertices.size());
        return;
    }
    for (std::size_t i = from; i < from + count; ++i) {
        start(m_lightPolyline.vertices[i]);
        appendSegment(i, m_run);
        wideRun(m_run, false);
    }
}

void FlattenCore::wideRun(std::span<const RunPoint> run, bool isClosed) {
    if (!m_linetype->isContinuous()) {
        RunCutter cutter(run);
        const double resolution = m_options.dashResolution / std::max(m_transforms.back().scale, 1e-12);
        const DashLayout layout(*m_linetype, m_linetypeScale, cutter.length(), resolution);
        if (!layout.isContinuous()) {
            m_primitiveCount += layout.pieces().size();
            for (const DashLayout::Piece& piece : layout.pieces()) {
                cutter.cut(piece.start, piece.end, m_piece);
                strip(m_piece, false);
            }
            return;
        }
    }
    strip(run, isClosed);
}

void FlattenCore::strip(std::span<const RunPoint> run, bool isClosed) {
    m_chords.clear();
    m_contourEnds.clear();
    appendStrip(run, isClosed, m_chords, m_contourEnds);
    if (m_source.fillMode()) {
        fill(m_chords, m_contourEnds, FillRule::nonZero);
        return;
    }
    std::size_t start = 0;
    std::vector<AcGePoint3d> outline;
    for (const std::size_t end : m_contourEnds) {
        outline.assign(m_chords.begin() + static_cast<std::ptrdiff_t>(start),
                       m_chords.begin() + static_cast<std::ptrdiff_t>(end));
        outline.push_back(outline.front());
        strokeContinuous(outline);
        start = end;
    }
}

void FlattenCore::fill(std::span<const AcGePoint3d> points, std::span<const std::uint32_t> contourEnds,
                       FillRule rule) {
    if (points.size() > 2 && toWorld(points))
        m_sink.area({m_world, contourEnds, rule}, m_pen);
}

} // namespace host
