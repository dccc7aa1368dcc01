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
    explicit RecordCore(DrawingSource& source) : mSource(source), mTraits(source.makeTraits()) {
        mTraits->setRegenType(kAcGiSaveWorldDrawForProxy);
    }

    DrawTraits& traits() const { return *mTraits; }
    DrawingSource& source() const { return mSource; }
    ProxyWriter& writer() { return mWriter; }
    void setWorldDraw(AcGiWorldDraw& draw) { mDraw = &draw; }
    // The state that a reader starts with: the entity's own.
    void begin(AcGiDrawable& drawable) {
        drawable.setAttributes(mTraits.get());
        mRecorded = mTraits->state();
    }

    const AcGeMatrix3d& transform() const { return mTransforms.back(); }
    void pushTransform(const AcGeMatrix3d& matrix) {
        mTransforms.push_back(transform() * matrix);
        mWriter.begin(ProxyChunk::pushTransform);
        mWriter.matrix(matrix);
        mWriter.end();
    }
    bool popTransform() {
        if (mTransforms.size() < 2)
            return false;
        mTransforms.pop_back();
        mWriter.begin(ProxyChunk::popTransform);
        mWriter.end();
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
        mWriter.point(arc.center);
        mWriter.number(radius);
        mWriter.vector(arc.u.crossProduct(arc.v).normal());
        if (!isWhole) {
            mWriter.vector((arc.startPoint() - arc.center).normal());
            mWriter.number(arc.sweep);
            mWriter.integer(type);
        }
        mWriter.end();
    }

    void polyline(std::span<const AcGePoint3d> points, Adesk::LongPtr, const AcGeVector3d* normal = nullptr) {
        begin(normal ? ProxyChunk::polylineWithNormal : ProxyChunk::polyline);
        writePoints(points);
        if (normal)
            mWriter.vector(*normal);
        mWriter.end();
    }

    void polygon(std::span<const AcGePoint3d> points) {
        begin(ProxyChunk::polygon);
        writePoints(points);
        mWriter.end();
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
        mSource.readLightPolyline(polyline, mLightPolyline);
        const auto& vertices = mLightPolyline.vertices;
        if (vertices.empty())
            return;
        const std::size_t all = mLightPolyline.isClosed ? vertices.size() : vertices.size() - 1;
        const std::size_t from = std::min<std::size_t>(fromIndex, all);
        const std::size_t to = segmentCount == 0 ? all : std::min<std::size_t>(from + segmentCount, all);
        const bool isTurned = !(mLightPolyline.normal == AcGeVector3d::kZAxis);
        if (isTurned)
            pushTransform(arbitraryAxes(mLightPolyline.normal));
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
        mWriter.integer(static_cast<std::int32_t>(rows));
        mWriter.integer(static_cast<std::int32_t>(columns));
        for (std::size_t i = 0; i < rows * columns; ++i)
            mWriter.point(points[i]);
        noFaceData();
        mWriter.end();
    }

    void shell(std::span<const AcGePoint3d> points, std::span<const Adesk::Int32> faceList,
               const AcGiEdgeData*, const AcGiFaceData*) {
        begin(ProxyChunk::shell);
        writePoints(points);
        mWriter.integer(static_cast<std::int32_t>(faceList.size()));
        for (const Adesk::Int32 entry : faceList)
            mWriter.integer(entry);
        noFaceData();
        mWriter.end();
    }

    void simpleText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    double height, double width, double oblique, std::wstring_view text) {
        begin(ProxyChunk::unicodeText);
        mWriter.point(position);
        mWriter.vector(normal);
        mWriter.vector(direction);
        mWriter.number(height);
        mWriter.number(width);
        mWriter.number(oblique);
        mWriter.text(text);
        mWriter.end();
    }

    void styledText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    std::wstring_view text, bool raw, const AcGiTextStyle& style) {
        begin(ProxyChunk::unicodeStyledText);
        mWriter.point(position);
        mWriter.vector(normal);
        mWriter.vector(direction);
        mWriter.text(text);
        mWriter.integer(static_cast<std::int32_t>(toUtf16(text).size()));
        mWriter.integer(raw);
        mWriter.number(style.textSize());
        mWriter.number(style.xScale());
        mWriter.number(style.obliquingAngle());
        mWriter.number(style.trackingPercent());
        for (const bool flag : {style.isBackward(), style.isUpsideDown(), style.isVertical(),
                                style.isUnderlined(), style.isOverlined()})
            mWriter.integer(flag);
        AcString typeface;
        Adesk::Boolean bold = false, italic = false;
        int charset = 0, pitchAndFamily = 0;
        style.font(typeface, bold, italic, charset, pitchAndFamily);
        for (const int value : {bold ? 1 : 0, italic ? 1 : 0, charset, pitchAndFamily})
            mWriter.integer(value);
        mWriter.text(typeface.kwszPtr());
        mWriter.text(style.fileName());
        mWriter.text(style.bigFontFileName());
        mWriter.end();
    }

    void infiniteLine(const AcGePoint3d& first, const AcGePoint3d& second, bool isBothWays) {
        begin(isBothWays ? ProxyChunk::xline : ProxyChunk::ray);
        mWriter.point(first);
        mWriter.point(second);
        mWriter.end();
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
        mWriter.begin(type);
    }

    // Some readers take filling as told for the next polygon only: it is told before each one.
    void writeFill() {
        const AcGiFillType fillType = mTraits->state().fillType;
        if (fillType == kAcGiFillAlways)
            writeInteger(ProxyChunk::fill, kAcGiFillAlways);
        else if (mRecorded.fillType == kAcGiFillAlways)
            writeInteger(ProxyChunk::fill, 0);
        mRecorded.fillType = fillType;
    }

    void writeInteger(ProxyChunk type, std::int32_t value) {
        mWriter.begin(type);
        mWriter.integer(value);
        mWriter.end();
    }
    void writeNumber(ProxyChunk type, double value) {
        mWriter.begin(type);
        mWriter.number(value);
        mWriter.end();
    }

    void writeTraits() {
        const TraitsState& state = mTraits->state();
        if (state.layer != mRecorded.layer)
            writeInteger(ProxyChunk::layer, state.layer->tableIndex);
        if (!(state.color == mRecorded.color)) {
            if (state.color.isByColor())
                writeInteger(ProxyChunk::trueColor, static_cast<std::int32_t>(state.color.color()));
            else
                writeInteger(ProxyChunk::color, state.color.colorIndex());
        }
        if (state.linetype != mRecorded.linetype)
            writeInteger(ProxyChunk::linetype, linetypeNumber(*state.linetype));
        if (state.linetypeScale != mRecorded.linetypeScale)
            writeNumber(ProxyChunk::linetypeScale, state.linetypeScale);
        if (state.lineWeight != mRecorded.lineWeight)
            writeInteger(ProxyChunk::lineWeight, state.lineWeight);
        if (state.thickness != mRecorded.thickness)
            writeNumber(ProxyChunk::thickness, state.thickness);
        const AcGiFillType fillType = mRecorded.fillType;
        mRecorded = state;
        mRecorded.fillType = fillType;
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
        mWriter.integer(static_cast<std::int32_t>(points.size()));
        for (const AcGePoint3d& point : points)
            mWriter.point(point);
    }

    void noFaceData() // of edges, faces and vertices
    {
        for (int i = 0; i < 3; ++i)
            mWriter.integer(0);
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
        const AcGiFillType before = mTraits->state().fillType;
        mTraits->state().fillType = kAcGiFillAlways;
        polygon(points);
        mTraits->state().fillType = before;
    }

    const LightPolyline::Vertex& after(std::size_t index) const {
        const auto& vertices = mLightPolyline.vertices;
        return vertices[index + 1 < vertices.size() ? index + 1 : 0];
    }
    AcGePoint3d place(const LightPolyline::Vertex& vertex) const {
        return {vertex.x, vertex.y, mLightPolyline.elevation};
    }
    Arc segmentArc(std::size_t index) const {
        const LightPolyline::Vertex &from = mLightPolyline.vertices[index], &to = after(index);
        return arcOfBulge(from.x, from.y, to.x, to.y, mLightPolyline.elevation, from.bulge);
    }

    std::size_t straightStretch(std::size_t start, std::size_t to) {
        std::vector<AcGePoint3d> points{place(mLightPolyline.vertices[start])};
        for (; start < to; ++start) {
            const LightPolyline::Vertex& vertex = mLightPolyline.vertices[start];
            if (vertex.bulge != 0 || vertex.startWidth > 0 || vertex.endWidth > 0)
                break;
            points.push_back(place(after(start)));
        }
        polyline(points, -1, &AcGeVector3d::kZAxis);
        return start;
    }

    std::size_t wideStretch(std::size_t start, std::size_t to) {
        const auto& vertices = mLightPolyline.vertices;
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
        const LightPolyline::Vertex& vertex = mLightPolyline.vertices[index];
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

    DrawingSource& mSource;
    std::unique_ptr<DrawTraits> mTraits;
    TraitsState mRecorded;
    ProxyWriter mWriter;
    std::vector<AcGeMatrix3d> mTransforms{AcGeMatrix3d()};
    LightPolyline mLightPolyline;
    AcGiWorldDraw* mDraw = nullptr;
    int mDepth = 0;
};

// What a nested drawable leaves by block takes its parent's traits; the parent's hold again after it.
void RecordCore::drawChild(AcGiDrawable& drawable) {
    if (mDepth >= deepestNesting)
        return;
    const TraitsState outer = mTraits->state();
    const std::size_t outerTransforms = mTransforms.size();
    const Adesk::UInt32 flags = drawable.setAttributes(mTraits.get());
    TraitsState& state = mTraits->state();
    if (state.color.isByBlock())
        state.color = outer.color;
    if (state.linetype->kind == LinetypeLook::Kind::byBlock)
        state.linetype = outer.linetype;
    if (state.lineWeight == AcDb::kLnWtByBlock)
        state.lineWeight = outer.lineWeight;
    if (state.layer->isZero)
        state.layer = outer.layer;
    if ((flags & AcGiDrawable::kDrawableIsInvisible) == 0) {
        ++mDepth;
        drawable.worldDraw(mDraw);
        --mDepth;
    }
    while (mTransforms.size() > outerTransforms)
        popTransform();
    mTraits->state() = outer;
}

class RecordContext final : public AcGiContext {
public:
    explicit RecordContext(DrawingSource& source) : mSource(source) {}
    AcDbDatabase* database() const override { return mSource.database(); }

private:
    DrawingSource& mSource;
};

class RecordWorldDraw final : public AcGiWorldDraw {
public:
    explicit RecordWorldDraw(RecordCore& core) : mCore(core), mGeometry(core), mContext(core.source()) {}
    AcGiRegenType regenType() const override { return kAcGiSaveWorldDrawForProxy; }
    Adesk::Boolean regenAbort() const override { return false; }
    AcGiSubEntityTraits& subEntityTraits() const override { return mCore.traits(); }
    AcGiGeometry* rawGeometry() const override { return &mGeometry; }
    AcGiWorldGeometry& geometry() const override { return mGeometry; }
    Adesk::Boolean isDragging() const override { return false; }
    double deviation(const AcGiDeviationType, const AcGePoint3d&) const override { return 0.01; }
    Adesk::UInt32 numberOfIsolines() const override { return 4; }
    AcGiContext* context() override { return &mContext; }

private:
    RecordCore& mCore;
    mutable WorldGeometryAdapter<RecordCore> mGeometry;
    RecordContext mContext;
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
