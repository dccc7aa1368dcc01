// Records the drawing calls of an entity as proxy graphics.
#include "host/gi/extentssink.h"
#include "host/gi/flatten.h"
#include "host/gi/geometryadapter.h"
#include "host/gi/proxychunks.h"
#include "host/gi/proxygraphics.h"
#include "host/gi/strips.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {

namespace {

constexpr int deepestNesting = 16;
constexpr double chordShare = 0.001; // of a curve's size: what is recorded as chords may lie off by so much

// The Core of GeometryAdapter that writes chunks.
class RecordCore {
public:
    explicit RecordCore(DrawingSource& source) : m_source(source), m_traits(source.makeTraits()) {
        m_traits->setRegenType(kAcGiSaveWorldDrawForProxy);
    }

    DrawTraits& traits() const { return *m_traits; }
    DrawingSource& source() const { return m_source; }
    ProxyWriter& writer() { return m_writer; }
    void setWorldDraw(AcGiWorldDraw& draw) { m_draw = &draw; }
    // The state that a reader starts with: the entity's own.
    void begin(AcGiDrawable& drawable) {
        drawable.setAttributes(m_traits.get());
        m_recorded = m_traits->state();
    }

    const AcGeMatrix3d& transform() const { return m_transforms.back(); }
    void pushTransform(const AcGeMatrix3d& matrix) {
        m_transforms.push_back(transform() * matrix);
        m_writer.begin(ProxyChunk::pushTransform);
        m_writer.matrix(matrix);
        m_writer.end();
    }
    bool popTransform() {
        if (m_transforms.size() < 2)
            return false;
        m_transforms.pop_back();
        m_writer.begin(ProxyChunk::popTransform);
        m_writer.end();
        return true;
    }
    bool isAborted() const { return false; }

    void arc(const Arc& arc, AcGiArcType type, bool isWhole) {
        const double radius = arc.u.length();
        const bool isCircular = std::abs(arc.v.length() - radius) <= 1e-9 * radius &&
                                std::abs(arc.u.dotProduct(arc.v)) <= 1e-9 * radius * radius;
        if (!isCircular) {
            chords(arc, type, isWhole);
            return;
        }
        begin(isWhole ? ProxyChunk::circle : ProxyChunk::circularArc);
        m_writer.point(arc.center);
        m_writer.number(radius);
        m_writer.vector(arc.u.crossProduct(arc.v).normal());
        if (!isWhole) {
            m_writer.vector((arc.startPoint() - arc.center).normal());
            m_writer.number(arc.sweep);
            m_writer.integer(type);
        }
        m_writer.end();
    }

    void polyline(std::span<const AcGePoint3d> points, Adesk::LongPtr, const AcGeVector3d* normal = nullptr) {
        begin(normal ? ProxyChunk::polylineWithNormal : ProxyChunk::polyline);
        writePoints(points);
        if (normal)
            m_writer.vector(*normal);
        m_writer.end();
    }

    void polygon(std::span<const AcGePoint3d> points) {
        begin(ProxyChunk::polygon);
        writePoints(points);
        m_writer.end();
    }

    // Polygons with holes become one polygon that goes to every contour and back over the same edge, which
    // fills alike.
    void polyPolygon(std::span<const Adesk::UInt32> counts, const AcGePoint3d* points,
                     const AcCmEntityColor*) {
        std::vector<AcGePoint3d> joined, starts;
        for (const Adesk::UInt32 count : counts) {
            if (count == 0)
                continue;
            joined.insert(joined.end(), points, points + count);
            joined.push_back(*points);
            starts.push_back(*points);
            points += count;
        }
        if (starts.size() > 1)
            joined.insert(joined.end(), starts.rbegin() + 1, starts.rend());
        filledPolygon(joined);
    }

    void lightPolyline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex, Adesk::UInt32 segmentCount) {
        m_source.readLightPolyline(polyline, m_lightPolyline);
        const auto& vertices = m_lightPolyline.vertices;
        if (vertices.empty())
            return;
        const std::size_t all = m_lightPolyline.isClosed ? vertices.size() : vertices.size() - 1;
        const std::size_t from = std::min<std::size_t>(fromIndex, all);
        const std::size_t to = segmentCount == 0 ? all : std::min<std::size_t>(from + segmentCount, all);
        const bool isTurned = !(m_lightPolyline.normal == AcGeVector3d::kZAxis);
        if (isTurned)
            pushTransform(arbitraryAxes(m_lightPolyline.normal));
        for (std::size_t start = from; start < to;) {
            const LightPolyline::Vertex& vertex = vertices[start];
            if (vertex.startWidth > 0 || vertex.endWidth > 0)
                start = wideStretch(start, to);
            else if (vertex.bulge != 0)
                arc(segmentArc(start++), kAcGiArcSimple, false);
            else
                start = straightStretch(start, to);
        }
        if (isTurned)
            popTransform();
    }

    void points(std::span<const AcGePoint3d> points) {
        for (const AcGePoint3d& point : points)
            polyline(std::array{point, point}, -1);
    }

    void mesh(std::size_t rows, std::size_t columns, const AcGePoint3d* points, const AcGiEdgeData*,
              const AcGiFaceData*) {
        begin(ProxyChunk::mesh);
        m_writer.integer(static_cast<std::int32_t>(rows));
        m_writer.integer(static_cast<std::int32_t>(columns));
        for (std::size_t i = 0; i < rows * columns; ++i)
            m_writer.point(points[i]);
        noFaceData();
        m_writer.end();
    }

    void shell(std::span<const AcGePoint3d> points, std::span<const Adesk::Int32> faceList,
               const AcGiEdgeData*, const AcGiFaceData*) {
        begin(ProxyChunk::shell);
        writePoints(points);
        m_writer.integer(static_cast<std::int32_t>(faceList.size()));
        for (const Adesk::Int32 entry : faceList)
            m_writer.integer(entry);
        noFaceData();
        m_writer.end();
    }

    void simpleText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    double height, double width, double oblique, std::wstring_view text) {
        begin(ProxyChunk::unicodeText);
        m_writer.point(position);
        m_writer.vector(normal);
        m_writer.vector(direction);
        m_writer.number(height);
        m_writer.number(width);
        m_writer.number(oblique);
        m_writer.text(text);
        m_writer.end();
    }

    void styledText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    std::wstring_view text, bool raw, const AcGiTextStyle& style) {
        begin(ProxyChunk::unicodeStyledText);
        m_writer.point(position);
        m_writer.vector(normal);
        m_writer.vector(direction);
        m_writer.text(text);
        m_writer.integer(static_cast<std::int32_t>(toUtf16(text).size()));
        m_writer.integer(raw);
        m_writer.number(style.textSize());
        m_writer.number(style.xScale());
        m_writer.number(style.obliquingAngle());
        m_writer.number(style.trackingPercent());
        for (const bool flag : {style.isBackward(), style.isUpsideDown(), style.isVertical(),
                                style.isUnderlined(), style.isOverlined()})
            m_writer.integer(flag);
        AcString typeface;
        Adesk::Boolean bold = false, italic = false;
        int charset = 0, pitchAndFamily = 0;
        style.font(typeface, bold, italic, charset, pitchAndFamily);
        for (const int value : {bold ? 1 : 0, italic ? 1 : 0, charset, pitchAndFamily})
            m_writer.integer(value);
        m_writer.text(typeface.kwszPtr());
        m_writer.text(style.fileName());
        m_writer.text(style.bigFontFileName());
        m_writer.end();
    }

    void infiniteLine(const AcGePoint3d& first, const AcGePoint3d& second, bool isBothWays) {
        begin(isBothWays ? ProxyChunk::xline : ProxyChunk::ray);
        m_writer.point(first);
        m_writer.point(second);
        m_writer.end();
    }

    void drawChild(AcGiDrawable& drawable);

    void pushClip(const AcGiClipBoundary&) {} // the picture is recorded unclipped
    void popClip() {}

    void worldLine(std::span<const AcGePoint3d> points) {
        const AcGeMatrix3d toModel = transform().inverse();
        std::vector<AcGePoint3d> local;
        for (const AcGePoint3d& point : points)
            local.push_back(toModel * point);
        polyline(local, -1);
    }

private:
    // Writes the traits that changed, then the head of a primitive.
    void begin(ProxyChunk type) {
        writeTraits();
        if (type == ProxyChunk::polygon || type == ProxyChunk::circle || type == ProxyChunk::circularArc ||
            type == ProxyChunk::mesh || type == ProxyChunk::shell)
            writeFill();
        m_writer.begin(type);
    }

    // Some readers take filling as told for the next polygon only: it is told before each one.
    void writeFill() {
        const AcGiFillType fillType = m_traits->state().fillType;
        if (fillType == kAcGiFillAlways)
            writeInteger(ProxyChunk::fill, kAcGiFillAlways);
        else if (m_recorded.fillType == kAcGiFillAlways)
            writeInteger(ProxyChunk::fill, 0);
        m_recorded.fillType = fillType;
    }

    void writeInteger(ProxyChunk type, std::int32_t value) {
        m_writer.begin(type);
        m_writer.integer(value);
        m_writer.end();
    }
    void writeNumber(ProxyChunk type, double value) {
        m_writer.begin(type);
        m_writer.number(value);
        m_writer.end();
    }

    void writeTraits() {
        const TraitsState& state = m_traits->state();
        if (state.layer != m_recorded.layer)
            writeInteger(ProxyChunk::layer, state.layer->tableIndex);
        if (!(state.color == m_recorded.color)) {
            if (state.color.isByColor())
                writeInteger(ProxyChunk::trueColor, static_cast<std::int32_t>(state.color.color()));
            else
                writeInteger(ProxyChunk::color, state.color.colorIndex());
        }
        if (state.linetype != m_recorded.linetype)
            writeInteger(ProxyChunk::linetype, linetypeNumber(*state.linetype));
        if (state.linetypeScale != m_recorded.linetypeScale)
            writeNumber(ProxyChunk::linetypeScale, state.linetypeScale);
        if (state.lineWeight != m_recorded.lineWeight)
            writeInteger(ProxyChunk::lineWeight, state.lineWeight);
        if (state.thickness != m_recorded.thickness)
            writeNumber(ProxyChunk::thickness, state.thickness);
        const AcGiFillType fillType = m_recorded.fillType;
        m_recorded = state;
        m_recorded.fillType = fillType;
    }

    static std::int32_t linetypeNumber(const LinetypeLook& look) {
        switch (look.kind) {
        case LinetypeLook::Kind::byLayer:
            return proxyLinetypeByLayer;
        case LinetypeLook::Kind::byBlock:
            return proxyLinetypeByBlock;
        default:
            return look.tableIndex;
        }
    }

    void writePoints(std::span<const AcGePoint3d> points) {
        m_writer.integer(static_cast<std::int32_t>(points.size()));
        for (const AcGePoint3d& point : points)
            m_writer.point(point);
    }

    void noFaceData() // of edges, faces and vertices
    {
        for (int i = 0; i < 3; ++i)
            m_writer.integer(0);
    }

    void chords(const Arc& arc, AcGiArcType type, bool isWhole) {
        std::vector<AcGePoint3d> points{arc.startPoint()};
        appendChords(arc, chordShare * std::max(arc.u.length(), arc.v.length()), points);
        if (type == kAcGiArcSector && !isWhole)
            points.push_back(arc.center);
        if (type != kAcGiArcSimple && !isWhole)
            points.push_back(arc.startPoint());
        polyline(points, -1);
    }

    void filledPolygon(std::span<const AcGePoint3d> points) {
        const AcGiFillType before = m_traits->state().fillType;
        m_traits->state().fillType = kAcGiFillAlways;
        polygon(points);
        m_traits->state().fillType = before;
    }

    const LightPolyline::Vertex& after(std::size_t index) const {
        const auto& vertices = m_lightPolyline.vertices;
        return vertices[index + 1 < vertices.size() ? index + 1 : 0];
    }
    AcGePoint3d place(const LightPolyline::Vertex& vertex) const {
        return {vertex.x, vertex.y, m_lightPolyline.elevation};
    }
    Arc segmentArc(std::size_t index) const {
        const LightPolyline::Vertex &from = m_lightPolyline.vertices[index], &to = after(index);
        return arcOfBulge(from.x, from.y, to.x, to.y, m_lightPolyline.elevation, from.bulge);
    }

    std::size_t straightStretch(std::size_t start, std::size_t to) {
        std::vector<AcGePoint3d> points{place(m_lightPolyline.vertices[start])};
        for (; start < to; ++start) {
            const LightPolyline::Vertex& vertex = m_lightPolyline.vertices[start];
            if (vertex.bulge != 0 || vertex.startWidth > 0 || vertex.endWidth > 0)
                break;
            points.push_back(place(after(start)));
        }
        polyline(points, -1, &AcGeVector3d::kZAxis);
        return start;
    }

    std::size_t wideStretch(std::size_t start, std::size_t to) {
        const auto& vertices = m_lightPolyline.vertices;
        std::vector<RunPoint> run{
            {place(vertices[start]), vertices[start].startWidth, vertices[start].startWidth}};
        for (; start < to && (vertices[start].startWidth > 0 || vertices[start].endWidth > 0); ++start)
            appendWide(start, run);
        std::vector<AcGePoint3d> points;
        std::vector<std::uint32_t> ends;
        appendStrip(run, false, points, ends);
        std::size_t first = 0;
        for (const std::size_t end : ends) {
            filledPolygon(std::span(points).subspan(first, end - first));
            first = end;
        }
        return start;
    }

    void appendWide(std::size_t index, std::vector<RunPoint>& run) const {
        const LightPolyline::Vertex& vertex = m_lightPolyline.vertices[index];
        std::vector<AcGePoint3d> points;
        if (vertex.bulge != 0) {
            const Arc arc = segmentArc(index);
            appendChords(arc, chordShare * arc.u.length(), points);
        } else {
            points.push_back(place(after(index)));
        }
        run.back().widthOut = vertex.startWidth;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double share = static_cast<double>(i + 1) / static_cast<double>(points.size());
            const double width = vertex.startWidth + (vertex.endWidth - vertex.startWidth) * share;
            run.push_back({points[i], width, width});
        }
    }

    DrawingSource& m_source;
    std::unique_ptr<DrawTraits> m_traits;
    TraitsState m_recorded;
    ProxyWriter m_writer;
    std::vector<AcGeMatrix3d> m_transforms{AcGeMatrix3d()};
    LightPolyline m_lightPolyline;
    AcGiWorldDraw* m_draw = nullptr;
    int m_depth = 0;
};

// What a nested drawable leaves by block takes its parent's traits; the parent's hold again after it.
void RecordCore::drawChild(AcGiDrawable& drawable) {
    if (m_depth >= deepestNesting)
        return;
    const TraitsState outer = m_traits->state();
    const std::size_t outerTransforms = m_transforms.size();
    const Adesk::UInt32 flags = drawable.setAttributes(m_traits.get());
    TraitsState& state = m_traits->state();
    if (state.color.isByBlock())
        state.color = outer.color;
    if (state.linetype->kind == LinetypeLook::Kind::byBlock)
        state.linetype = outer.linetype;
    if (state.lineWeight == AcDb::kLnWtByBlock)
        state.lineWeight = outer.lineWeight;
    if (state.layer->isZero)
        state.layer = outer.layer;
    if ((flags & AcGiDrawable::kDrawableIsInvisible) == 0) {
        ++m_depth;
        drawable.worldDraw(m_draw);
        --m_depth;
    }
    while (m_transforms.size() > outerTransforms)
        popTransform();
    m_traits->state() = outer;
}

class RecordContext final : public AcGiContext {
public:
    explicit RecordContext(DrawingSource& source) : m_source(source) {}
    AcDbDatabase* database() const override { return m_source.database(); }

private:
    DrawingSource& m_source;
};

class RecordWorldDraw final : public AcGiWorldDraw {
public:
    explicit RecordWorldDraw(RecordCore& core) : m_core(core), m_geometry(core), m_context(core.source()) {}
    AcGiRegenType regenType() const override { return kAcGiSaveWorldDrawForProxy; }
    Adesk::Boolean regenAbort() const override { return false; }
    AcGiSubEntityTraits& subEntityTraits() const override { return m_core.traits(); }
    AcGiGeometry* rawGeometry() const override { return &m_geometry; }
    AcGiWorldGeometry& geometry() const override { return m_geometry; }
    Adesk::Boolean isDragging() const override { return false; }
    double deviation(const AcGiDeviationType, const AcGePoint3d&) const override { return 0.01; }
    Adesk::UInt32 numberOfIsolines() const override { return 4; }
    AcGiContext* context() override { return &m_context; }

private:
    RecordCore& m_core;
    mutable WorldGeometryAdapter<RecordCore> m_geometry;
    RecordContext m_context;
};

// The extents of what was recorded, as the first chunk.
void writeExtents(const std::string& graphics, DrawingSource& source, ProxyWriter& writer) {
    ExtentsSink extents;
    Flattener flattener(source, extents, {});
    playProxyGraphics(graphics, flattener.worldDraw());
    if (extents.isEmpty())
        return;
    writer.begin(ProxyChunk::extents);
    writer.point(extents.min());
    writer.point(extents.max());
    writer.end();
}

std::string withHead(const ProxyWriter& extents, const ProxyWriter& graphics) {
    const auto size = 8 + extents.bytes().size() + graphics.bytes().size();
    const std::int32_t head[2] = {static_cast<std::int32_t>(size),
                                  static_cast<std::int32_t>(extents.count() + graphics.count())};
    return std::string(reinterpret_cast<const char*>(head), sizeof head) + extents.bytes() + graphics.bytes();
}

} // namespace

std::string recordProxyGraphics(AcGiDrawable& drawable, DrawingSource& source) {
    RecordCore core(source);
    RecordWorldDraw draw(core);
    core.setWorldDraw(draw);
    core.begin(drawable);
    drawable.worldDraw(&draw);
    while (core.popTransform()) {
    }
    if (core.writer().count() == 0)
        return {};
    ProxyWriter extents;
    writeExtents(withHead({}, core.writer()), source, extents);
    return withHead(extents, core.writer());
}

} // namespace host
