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
    return mOptions.deviation / std::max(mTransforms.back().scale, 1e-12);
}

bool FlattenCore::toWorld(std::span<const AcGePoint3d> points) {
    const Transform& transform = mTransforms.back();
    mWorld.resize(points.size());
    if (transform.isIdentity)
        std::ranges::copy(points, mWorld.begin());
    else
        std::ranges::transform(points, mWorld.begin(),
                               [&](const AcGePoint3d& point) { return transform.matrix * point; });
    return std::ranges::all_of(mWorld, isFinite);
}

void FlattenCore::strokeContinuous(std::span<const AcGePoint3d> points) {
    if (points.size() > 1 && toWorld(points))
        mSink.polyline(mWorld, mPen);
}

void FlattenCore::stroke(std::span<const AcGePoint3d> points) {
    if (mLinetype->isContinuous())
        strokeContinuous(points);
    else
        strokeDashed(points);
}

void FlattenCore::strokeDashed(std::span<const AcGePoint3d> points) {
    if (std::isinf(mOptions.dashResolution)) {
        strokeContinuous(points);
        return;
    }
    mRun.clear();
    for (const AcGePoint3d& point : points)
        mRun.push_back({point, 0, 0});
    RunCutter run(mRun);
    const double resolution = mOptions.dashResolution / std::max(mTransforms.back().scale, 1e-12);
    const DashLayout layout(*mLinetype, mLinetypeScale, run.length(), resolution);
    if (layout.isContinuous()) {
        strokeContinuous(points);
        return;
    }
    mPrimitiveCount += layout.pieces().size();
    std::vector<AcGePoint3d> piecePoints;
    for (const DashLayout::Piece& piece : layout.pieces()) {
        run.cut(piece.start, piece.end, mPiece);
        if (piece.start == piece.end) {
            if (toWorld(std::array{mPiece.front().point}))
                mSink.dot(mWorld.front(), mPen);
            continue;
        }
        piecePoints.clear();
        for (const RunPoint& point : mPiece)
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
    AcGePoint3d origin = point + (along * element.offsetX + across * element.offsetY) * mLinetypeScale;
    const AcGeVector3d start = element.isAbsolute ? AcGeVector3d::kXAxis : along;
    AcGeVector3d direction = AcGeVector3d(start).rotateBy(element.rotation, AcGeVector3d::kZAxis);
    TextFormat format = element.format;
    format.height *= mLinetypeScale;
    ShapedText shaped;
    if (element.inset == LinetypeLook::Element::Inset::text)
        shaped = FontEngine::instance().shape(element.text, format);
    else if (const Glyph* shape = FontEngine::instance().shapeGlyph(format.font.file, element.shapeNumber))
        shaped = ShapedText::single(*shape, format.height);
    if (element.isUpright && (transform() * direction).x < -1e-9) {
        const AcGeVector3d up{-direction.y, direction.x, 0};
        origin +=
            direction * (shaped.ink.left + shaped.ink.right) + up * (shaped.ink.bottom + shaped.ink.top);
        direction.negate();
    }
    glyphs(origin, AcGeVector3d::kZAxis, direction, shaped);
}

void FlattenCore::strokeArc(const Arc& arc) {
    if (mSink.wantsCurves() && mLinetype->isContinuous()) {
        const Transform& transform = mTransforms.back();
        mPath.clear();
        const Arc world = transform.isIdentity ? arc : arc.transformed(transform.matrix);
        mPath.move(world.startPoint());
        appendCurves(world, mPath, mOptions.curveDeviation);
        if (std::ranges::all_of(mPath.points, isFinite))
            mSink.path(mPath, mPen);
        return;
    }
    mChords.assign(1, arc.startPoint());
    appendChords(arc, localDeviation(), mChords);
    stroke(mChords);
}

void FlattenCore::arc(const Arc& arc, AcGiArcType type, bool isWhole) {
    if (!prepare())
        return;
    const bool isArea = mTraits->state().fillType == kAcGiFillAlways && (isWhole || type != kAcGiArcSimple);
    if (type == kAcGiArcSimple && !isArea) {
        strokeArc(arc);
        return;
    }
    mChords.assign(1, arc.startPoint());
    appendChords(arc, localDeviation(), mChords);
    if (!isWhole) {
        if (type == kAcGiArcSector)
            mChords.push_back(arc.center);
        mChords.push_back(arc.startPoint());
    }
    if (isArea)
        fill(mChords, std::array{static_cast<std::uint32_t>(mChords.size())}, FillRule::nonZero);
    else
        stroke(mChords);
}

void FlattenCore::polyline(std::span<const AcGePoint3d> points, Adesk::LongPtr marker,
                           const AcGeVector3d* normal) {
    if (!prepare())
        return;
    if (marker != -1)
        mPen.marker = marker;
    if (points.size() == 1) {
        if (toWorld(points))
            mSink.dot(mWorld.front(), mPen);
        return;
    }
    stroke(points);
    const double thickness = mTraits->state().thickness;
    if (thickness != 0 && mOptions.drawsThickness)
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
    mTransforms.emplace_back();
    polyline(points, -1);
    mTransforms.pop_back();
}

const LightPolyline::Vertex& FlattenCore::vertexAfter(std::size_t index) const {
    const auto& vertices = mLightPolyline.vertices;
    return vertices[index + 1 < vertices.size() ? index + 1 : 0];
}

void FlattenCore::lightPolyline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex,
                                Adesk::UInt32 segmentCount) {
    if (!prepare())
        return;
    mSource.readLightPolyline(polyline, mLightPolyline);
    const auto& vertices = mLightPolyline.vertices;
    if (vertices.empty())
        return;
    const std::size_t all = mLightPolyline.isClosed ? vertices.size() : vertices.size() - 1;
    const std::size_t from = std::min<std::size_t>(fromIndex, all);
    const std::size_t count =
        segmentCount == 0 ? all - from : std::min<std::size_t>(segmentCount, all - from);
    const bool isTurned = !(mLightPolyline.normal == AcGeVector3d::kZAxis);
    if (isTurned)
        pushTransform(arbitraryAxes(mLightPolyline.normal));
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
    const LightPolyline::Vertex &from = mLightPolyline.vertices[index], &to = vertexAfter(index);
    run.back().widthOut = from.startWidth;
    if (!isBulge(from.bulge)) {
        run.push_back({{to.x, to.y, mLightPolyline.elevation}, from.endWidth, from.endWidth});
        return;
    }
    std::vector<AcGePoint3d> chords;
    appendChords(arcOfBulge(from.x, from.y, to.x, to.y, mLightPolyline.elevation, from.bulge),
                 localDeviation(), chords);
    for (std::size_t i = 0; i < chords.size(); ++i) {
        const double share = static_cast<double>(i + 1) / static_cast<double>(chords.size());
        const double width = from.startWidth + (from.endWidth - from.startWidth) * share;
        run.push_back({chords[i], width, width});
    }
}

void FlattenCore::narrowPolyline(std::size_t from, std::size_t count) {
    if (mLinetype->isContinuous() || mLightPolyline.generatesLinetype) {
        plainPolyline(from, count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) // every segment begins the pattern anew
        plainPolyline(from + i, 1);
}

void FlattenCore::plainPolyline(std::size_t from, std::size_t count) {
    const auto& vertices = mLightPolyline.vertices;
    const double z = mLightPolyline.elevation;
    const auto first = vertices.begin() + static_cast<std::ptrdiff_t>(from);
    const bool hasArcs =
        std::any_of(first, first + static_cast<std::ptrdiff_t>(count),
                    [](const LightPolyline::Vertex& vertex) { return isBulge(vertex.bulge); });
    if (hasArcs && mLinetype->isContinuous() && mSink.wantsCurves()) {
        const AcGeMatrix3d& matrix = transform();
        mPath.clear();
        mPath.move(matrix * AcGePoint3d{first->x, first->y, z});
        for (std::size_t i = from; i < from + count; ++i) {
            const LightPolyline::Vertex &start = vertices[i], &end = vertexAfter(i);
            if (isBulge(start.bulge))
                appendCurves(arcOfBulge(start.x, start.y, end.x, end.y, z, start.bulge).transformed(matrix),
                             mPath, mOptions.curveDeviation);
            else
                mPath.line(matrix * AcGePoint3d{end.x, end.y, z});
        }
        if (std::ranges::all_of(mPath.points, isFinite))
            mSink.path(mPath, mPen);
        return;
    }
    mChords.assign(1, {first->x, first->y, z});
    for (std::size_t i = from; i < from + count; ++i) {
        const LightPolyline::Vertex &start = vertices[i], &end = vertexAfter(i);
        if (isBulge(start.bulge))
            appendChords(arcOfBulge(start.x, start.y, end.x, end.y, z, start.bulge), localDeviation(),
                         mChords);
        else
            mChords.push_back({end.x, end.y, z});
    }
    stroke(mChords);
}

void FlattenCore::widePolyline(std::size_t from, std::size_t count) {
    const LightPolyline::Vertex& first = mLightPolyline.vertices[from];
    const auto start = [&](const LightPolyline::Vertex& vertex) {
        mRun.assign(1,
                    {{vertex.x, vertex.y, mLightPolyline.elevation}, vertex.startWidth, vertex.startWidth});
    };
    if (mLinetype->isContinuous() || mLightPolyline.generatesLinetype) {
        start(first);
        for (std::size_t i = from; i < from + count; ++i)
            appendSegment(i, mRun);
        wideRun(mRun, mLightPolyline.isClosed && count == mLightPolyline.vertices.size());
        return;
    }
    for (std::size_t i = from; i < from + count; ++i) {
        start(mLightPolyline.vertices[i]);
        appendSegment(i, mRun);
        wideRun(mRun, false);
    }
}

void FlattenCore::wideRun(std::span<const RunPoint> run, bool isClosed) {
    if (!mLinetype->isContinuous() && std::isfinite(mOptions.dashResolution)) {
        RunCutter cutter(run);
        const double resolution = mOptions.dashResolution / std::max(mTransforms.back().scale, 1e-12);
        const DashLayout layout(*mLinetype, mLinetypeScale, cutter.length(), resolution);
        if (!layout.isContinuous()) {
            mPrimitiveCount += layout.pieces().size();
            for (const DashLayout::Piece& piece : layout.pieces()) {
                cutter.cut(piece.start, piece.end, mPiece);
                strip(mPiece, false);
            }
            for (const DashLayout::InsetPlace& place : layout.insets())
                inset(cutter, place);
            return;
        }
    }
    strip(run, isClosed);
}

void FlattenCore::strip(std::span<const RunPoint> run, bool isClosed) {
    mChords.clear();
    mContourEnds.clear();
    appendStrip(run, isClosed, mChords, mContourEnds);
    if (mSource.fillMode()) {
        fill(mChords, mContourEnds, FillRule::nonZero);
        return;
    }
    std::size_t start = 0;
    std::vector<AcGePoint3d> outline;
    for (const std::size_t end : mContourEnds) {
        outline.assign(mChords.begin() + static_cast<std::ptrdiff_t>(start),
                       mChords.begin() + static_cast<std::ptrdiff_t>(end));
        outline.push_back(outline.front());
        strokeContinuous(outline);
        start = end;
    }
}

void FlattenCore::fill(std::span<const AcGePoint3d> points, std::span<const std::uint32_t> contourEnds,
                       FillRule rule) {
    if (points.size() > 2 && toWorld(points))
        mSink.area({mWorld, contourEnds, rule}, mPen);
}

} // namespace host
