// Flattening of areas, faces, points, text and infinite lines.
#include "host/gi/flattencore.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {

void FlattenCore::polygon(std::span<const AcGePoint3d> points) {
    if (!prepare())
        return;
    if (mTraits->state().fillType == kAcGiFillAlways && mSource.fillMode()) {
        fill(points, std::array{static_cast<std::uint32_t>(points.size())}, FillRule::evenOdd);
        return;
    }
    mChords.assign(points.begin(), points.end());
    mChords.push_back(points.front());
    stroke(mChords);
}

void FlattenCore::polyPolygon(std::span<const Adesk::UInt32> counts, const AcGePoint3d* points,
                              const AcCmEntityColor* fillColors) {
    if (!prepare())
        return;
    if (fillColors && mSource.fillMode()) { // each polygon has its own colour
        for (std::size_t i = 0; i < counts.size(); points += counts[i++]) {
            mPen.color = fillColors[i];
            fill({points, counts[i]}, std::array{counts[i]}, FillRule::evenOdd);
        }
        return;
    }
    if (!mSource.fillMode())
        return;
    mContourEnds.clear();
    std::uint32_t end = 0;
    for (const Adesk::UInt32 count : counts)
        mContourEnds.push_back(end += count);
    fill({points, end}, mContourEnds, FillRule::evenOdd);
}

void FlattenCore::points(std::span<const AcGePoint3d> points) {
    if (!prepare() || !toWorld(points))
        return;
    for (const AcGePoint3d& point : mWorld)
        mSink.dot(point, mPen);
}

// A face of a mesh or shell: filled when filling is on, else its visible edges.
void FlattenCore::face(std::span<const AcGePoint3d> points, const AcCmEntityColor* color,
                       const std::function<bool(std::size_t)>& isEdgeShown) {
    if (color)
        mPen.color = *color;
    if (mTraits->state().fillType == kAcGiFillAlways) {
        fill(points, std::array{static_cast<std::uint32_t>(points.size())}, FillRule::evenOdd);
        return;
    }
    for (std::size_t i = 0; i < points.size(); ++i)
        if (isEdgeShown(i))
            stroke(std::array{points[i], points[(i + 1) % points.size()]});
}

void FlattenCore::mesh(std::size_t rows, std::size_t columns, const AcGePoint3d* points, const AcGiEdgeData*,
                       const AcGiFaceData* faces) {
    if (!prepare())
        return;
    std::size_t index = 0;
    for (std::size_t row = 0; row + 1 < rows; ++row)
        for (std::size_t column = 0; column + 1 < columns; ++column, ++index) {
            const AcGePoint3d* corner = points + row * columns + column;
            const std::array corners{corner[0], corner[1], corner[columns + 1], corner[columns]};
            if (faces && faces->visibility() && faces->visibility()[index] == kAcGiInvisible)
                continue;
            const AcCmEntityColor* colors = faces ? faces->trueColors() : nullptr;
            face(corners, colors ? &colors[index] : nullptr, [](std::size_t) { return true; });
        }
}

void FlattenCore::shell(std::span<const AcGePoint3d> points, std::span<const Adesk::Int32> faceList,
                        const AcGiEdgeData* edges, const AcGiFaceData* faces) {
    if (!prepare())
        return;
    const Adesk::UInt8* edgeVisibilities = edges ? edges->visibility() : nullptr;
    const AcCmEntityColor* colors = faces ? faces->trueColors() : nullptr;
    std::vector<AcGePoint3d> corners;
    std::size_t faceIndex = 0, edgeIndex = 0;
    for (std::size_t i = 0; i < faceList.size();) {
        const auto count = static_cast<std::size_t>(std::abs(static_cast<long>(faceList[i++])));
        if (count > faceList.size() - i)
            return;
        corners.clear();
        for (const Adesk::Int32 index : faceList.subspan(i, count))
            if (index >= 0 && static_cast<std::size_t>(index) < points.size())
                corners.push_back(points[static_cast<std::size_t>(index)]);
        i += count;
        if (corners.size() > 1 &&
            !(faces && faces->visibility() && faces->visibility()[faceIndex] == kAcGiInvisible))
            face(corners, colors ? &colors[faceIndex] : nullptr, [&](std::size_t edge) {
                return !edgeVisibilities || edgeVisibilities[edgeIndex + edge] != kAcGiInvisible;
            });
        ++faceIndex;
        edgeIndex += count;
    }
}

void FlattenCore::simpleText(const AcGePoint3d& position, const AcGeVector3d& normal,
                             const AcGeVector3d& direction, double height, double width, double oblique,
                             std::wstring_view text) {
    if (!prepare())
        return;
    TextFormat format;
    format.height = height;
    format.widthFactor = width;
    format.oblique = oblique;
    glyphs(position, normal, direction, FontEngine::instance().shape(text, format));
}

void FlattenCore::styledText(const AcGePoint3d& position, const AcGeVector3d& normal,
                             const AcGeVector3d& direction, std::wstring_view text, bool raw,
                             const AcGiTextStyle& style) {
    if (prepare())
        glyphs(position, normal, direction, FontEngine::instance().shape(text, style.format(), raw));
}

void FlattenCore::glyphs(const AcGePoint3d& position, const AcGeVector3d& normal,
                         const AcGeVector3d& direction, const ShapedText& text) {
    if (text.glyphs.empty() && text.rules.empty())
        return;
    mPrimitiveCount += text.glyphs.size();
    const AcGeVector3d axis = normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    AcGeVector3d along = (direction - axis * axis.dotProduct(direction)).normal();
    if (along.isZeroLength())
        along = axis.perpVector();
    const AcGeMatrix3d& matrix = transform();
    const GlyphRun run{text, matrix * position, matrix * along, matrix * axis.crossProduct(along)};
    const double check = run.at(text.ink.left, text.ink.bottom).asVector().lengthSqrd() +
                         run.at(text.ink.right, text.ink.top).asVector().lengthSqrd();
    if (std::isfinite(check))
        mSink.glyphs(run, mPen);
}

void FlattenCore::infiniteLine(const AcGePoint3d& first, const AcGePoint3d& second, bool isBothWays) {
    if (!mOptions.view || !prepare())
        return;
    const AcGePoint3d start = transform() * first;
    const AcGeVector3d direction = transform() * second - start;
    // The share of the line inside the box, seen from above.
    double from = isBothWays ? -HUGE_VAL : 0, to = HUGE_VAL;
    const auto clip = [&](double origin, double step, double low, double high) {
        if (step == 0) {
            if (origin < low || origin > high)
                to = -HUGE_VAL;
            return;
        }
        const double a = (low - origin) / step, b = (high - origin) / step;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    };
    clip(start.x, direction.x, mOptions.view->min.x, mOptions.view->max.x);
    clip(start.y, direction.y, mOptions.view->min.y, mOptions.view->max.y);
    if (!(from < to) || !std::isfinite(from) || !std::isfinite(to))
        return;
    mLinetypeScale *= mTransforms.back().scale;
    mTransforms.emplace_back();
    stroke(std::array{start + direction * from, start + direction * to});
    mTransforms.pop_back();
}

} // namespace host
