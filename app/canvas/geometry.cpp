#include "app/canvas/geometry.h"

#include <algorithm>

namespace app {

std::uint32_t PenTable::numberOf(const host::Pen& pen) {
    ScreenPen screen;
    screen.isBackground = pen.color.isNone();
    screen.isForeground = !screen.isBackground && pen.color.isForeground();
    screen.color = screen.isForeground || screen.isBackground ? 0 : pen.color.trueColor();
    screen.lineWeight = static_cast<std::int16_t>(pen.lineWeight);
    if (!mPens.empty() && mPens[mLast] == screen) {
        return mLast;
    }
    const std::uint64_t key = screen.color | std::uint64_t{screen.isForeground} << 24 |
                              std::uint64_t{screen.isBackground} << 25 |
                              std::uint64_t{static_cast<std::uint16_t>(screen.lineWeight)} << 32;
    const auto [found, added] = mNumbers.try_emplace(key, static_cast<std::uint32_t>(mPens.size()));
    if (added) {
        mPens.push_back(screen);
    }
    return mLast = found->second;
}

AcGePoint2d Geometry::origin() const {
    double values[2];
    std::memcpy(values, mWords.get(), sizeof values);
    return {values[0], values[1]};
}

std::size_t Geometry::bytes() const {
    constexpr std::size_t allocation = 8;
    return mWords == nullptr ? 0 : (headSize + mWords[sizeAt]) * sizeof(std::uint32_t) + allocation;
}

void GeometrySink::start(const AcGePoint2d& origin) {
    mOrigin = origin;
    mWords.clear();
}

Geometry GeometrySink::finish(int level, bool isScaled) {
    Geometry geometry;
    geometry.mWords = std::make_unique_for_overwrite<std::uint32_t[]>(Geometry::headSize + mWords.size());
    const double origin[2] = {mOrigin.x, mOrigin.y};
    std::memcpy(geometry.mWords.get(), origin, sizeof origin);
    geometry.mWords[Geometry::flagsAt] =
        (isScaled ? 0U : 1U) | static_cast<std::uint32_t>(static_cast<std::uint8_t>(level)) << 8;
    geometry.mWords[Geometry::sizeAt] = static_cast<std::uint32_t>(mWords.size());
    std::copy(mWords.begin(), mWords.end(), geometry.mWords.get() + Geometry::headSize);
    return geometry;
}

void GeometrySink::head(Primitive kind, std::size_t count, const host::Pen& pen) {
    constexpr std::uint32_t kindBits = 4;
    mHead = mWords.size();
    mWords.push_back(static_cast<std::uint32_t>(kind) | static_cast<std::uint32_t>(count) << kindBits);
    mWords.push_back(mPens.numberOf(pen));
    mWords.push_back(0);
}

void GeometrySink::close() {
    mWords[mHead + 2] = static_cast<std::uint32_t>(mWords.size() - mHead - 3);
}

void GeometrySink::polyline(std::span<const AcGePoint3d> points, const host::Pen& pen) {
    head(Primitive::polyline, points.size(), pen);
    for (const AcGePoint3d& point : points) {
        put(point);
    }
    close();
}

void GeometrySink::dot(const AcGePoint3d& point, const host::Pen& pen) {
    head(Primitive::dot, 1, pen);
    put(point);
    close();
}

void GeometrySink::area(const host::Area& area, const host::Pen& pen) {
    head(Primitive::area, area.contourEnds.size(), pen);
    mWords.push_back(area.rule == host::FillRule::nonZero ? 1 : 0);
    mWords.insert(mWords.end(), area.contourEnds.begin(), area.contourEnds.end());
    for (const AcGePoint3d& point : area.points) {
        put(point);
    }
    close();
}

void GeometrySink::path(const host::WorldPath& path, const host::Pen& pen) {
    constexpr std::size_t verbsAWord = 16;
    head(Primitive::path, path.verbs.size(), pen);
    for (std::size_t i = 0; i < path.verbs.size(); ++i) {
        if (i % verbsAWord == 0) {
            mWords.push_back(0);
        }
        mWords.back() |= static_cast<std::uint32_t>(path.verbs[i]) << (2 * (i % verbsAWord));
    }
    for (const AcGePoint3d& point : path.points) {
        put(point);
    }
    close();
}

void GeometrySink::glyphs(const host::GlyphRun& run, const host::Pen& pen) {
    for (const host::PlacedGlyph& placed : run.text.glyphs) {
        if (placed.glyph == nullptr || placed.glyph->polylinePoints().empty()) {
            continue;
        }
        head(Primitive::glyph, 1, pen);
        const auto address = std::bit_cast<std::uint64_t>(placed.glyph);
        mWords.push_back(static_cast<std::uint32_t>(address));
        mWords.push_back(static_cast<std::uint32_t>(address >> 32));
        put(run.at(placed.x, placed.y));
        const AcGeVector3d u = run.xAxis * run.text.xx;
        const AcGeVector3d v = run.xAxis * run.text.xy + run.yAxis * run.text.yy;
        for (const double part : {u.x, u.y, v.x, v.y}) {
            put(part);
        }
        close();
    }
    for (const host::TextRule& rule : run.text.rules) {
        const AcGePoint3d ends[2] = {run.at(rule.startX, rule.startY), run.at(rule.endX, rule.endY)};
        polyline(ends, pen);
    }
}

void GeometrySink::pushClip(std::span<const AcGePoint3d> polygon) {
    head(Primitive::clip, polygon.size(), host::Pen());
    for (const AcGePoint3d& point : polygon) {
        put(point);
    }
    close();
}

void GeometrySink::popClip() {
    head(Primitive::unclip, 0, host::Pen());
    close();
}

} // namespace app
