// A sink that turns what is drawn into dots: lines are cut at the border, areas cut into trapezoids.
#include "host/formats/sld/slidedrawing.h"

#include "host/db/drawingsource.h"
#include "host/formats/formats.h"
#include "host/formats/sld/trapezoids.h"
#include "host/gi/extentssink.h"
#include "host/gi/flatten.h"
#include "host/rx/text.h"
#include "host/win/paths.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {
namespace {

/// Free space around the extents, a share of their size.
constexpr double extentsMargin = 0.02;

struct Place {
    double x = 0.0;
    double y = 0.0;
};

/// The part of a segment within 0 to width, 0 to height; false when there is none.
bool cutSegment(Place& from, Place& to, double width, double height) {
    double start = 0.0;
    double end = 1.0;
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const auto cut = [&](double direction, double room) {
        if (direction == 0.0) {
            return room >= 0.0;
        }
        const double at = room / direction;
        (direction < 0.0 ? start : end) = direction < 0.0 ? std::max(start, at) : std::min(end, at);
        return start <= end;
    };
    if (!cut(-dx, from.x) || !cut(dx, width - from.x) || !cut(-dy, from.y) || !cut(dy, height - from.y)) {
        return false;
    }
    to = {from.x + end * dx, from.y + end * dy};
    from = {from.x + start * dx, from.y + start * dy};
    return true;
}

/// The part of a closed contour on one side: where `inside` is not negative.
template <class Inside>
void cutContour(std::vector<Place>& contour, std::vector<Place>& kept, Inside inside) {
    kept.clear();
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const Place& from = contour[i];
        const Place& to = contour[(i + 1) % contour.size()];
        const double here = inside(from);
        const double there = inside(to);
        if (here >= 0.0) {
            kept.push_back(from);
        }
        if ((here < 0.0) != (there < 0.0)) {
            const double share = here / (here - there);
            kept.push_back({from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)});
        }
    }
    contour.swap(kept);
}

class SlideSink final : public PrimitiveSink {
public:
    explicit SlideSink(const SlideView& view) : mView(view) {
        mSlide.width = view.dotsAcross;
        mSlide.height = view.dotsUp;
        mSlide.aspect = view.dotsAcross / static_cast<double>(view.dotsUp);
        mScale = view.dotsUp / view.height;
    }

    Slide take() { return std::move(mSlide); }

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;

private:
    using Kind = SlideShape::Kind;

    Place place(const AcGePoint3d& point) const {
        return {(point.x - mView.centre.x) * mScale + mView.dotsAcross / 2.0,
                (point.y - mView.centre.y) * mScale + mView.dotsUp / 2.0};
    }
    SlidePoint dot(const Place& place) const {
        return {std::clamp(static_cast<int>(place.x), 0, mView.dotsAcross - 1),
                std::clamp(static_cast<int>(place.y), 0, mView.dotsUp - 1)};
    }
    std::uint8_t color(const Pen& pen);
    void flushLine(std::uint8_t color);
    void addContour(std::span<const AcGePoint3d> points);

    const SlideView mView;
    double mScale = 1.0;
    Slide mSlide;
    AcCmEntityColor mLastColor;
    std::uint8_t mLastIndex = 7;
    std::vector<SlidePoint> mLine;
    std::vector<SlidePoint> mDots; ///< of an area
    std::vector<std::uint32_t> mEnds;
    std::vector<Place> mContour;
    std::vector<Place> mSpare;
};

std::uint8_t SlideSink::color(const Pen& pen) {
    if (pen.color != mLastColor) {
        mLastColor = pen.color;
        int index = pen.color.isForeground() ? int{AcCmEntityColor::kACIforeground} : pen.color.colorIndex();
        if (pen.color.isNone()) {
            index = 0;
        }
        mLastIndex = static_cast<std::uint8_t>(index >= 0 && index <= 255 ? index : 7);
    }
    return mLastIndex;
}

void SlideSink::flushLine(std::uint8_t color) {
    if (mLine.size() == 1) {
        mLine.push_back(mLine.front());
    }
    if (!mLine.empty()) {
        mSlide.add(Kind::line, color, mLine);
    }
    mLine.clear();
}

void SlideSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    const std::uint8_t index = color(pen);
    for (std::size_t i = 1; i < points.size(); ++i) {
        Place from = place(points[i - 1]);
        Place to = place(points[i]);
        if (!cutSegment(from, to, mView.dotsAcross, mView.dotsUp)) {
            flushLine(index);
            continue;
        }
        const SlidePoint start = dot(from);
        const SlidePoint end = dot(to);
        if (mLine.empty() || mLine.back() != start) {
            flushLine(index);
            mLine.push_back(start);
        }
        if (end != start) {
            mLine.push_back(end);
        }
    }
    flushLine(index);
}

void SlideSink::addContour(std::span<const AcGePoint3d> points) {
    mContour.clear();
    for (const AcGePoint3d& point : points) {
        mContour.push_back(place(point));
    }
    cutContour(mContour, mSpare, [](const Place& at) { return at.x; });
    cutContour(mContour, mSpare, [](const Place& at) { return at.y; });
    cutContour(mContour, mSpare, [this](const Place& at) { return mView.dotsAcross - at.x; });
    cutContour(mContour, mSpare, [this](const Place& at) { return mView.dotsUp - at.y; });
    for (const Place& at : mContour) {
        const SlidePoint point = dot(at);
        if (mDots.size() == (mEnds.empty() ? 0 : mEnds.back()) || mDots.back() != point) {
            mDots.push_back(point);
        }
    }
    mEnds.push_back(static_cast<std::uint32_t>(mDots.size()));
}

void SlideSink::area(const Area& area, const Pen& pen) {
    mDots.clear();
    mEnds.clear();
    std::uint32_t begin = 0;
    for (const std::uint32_t end : area.contourEnds) {
        addContour(area.points.subspan(begin, end - begin));
        begin = end;
    }
    if (mDots.empty()) {
        return;
    }
    const std::uint8_t index = color(pen);
    const auto [left, right] = std::ranges::minmax(mDots, {}, &SlidePoint::x);
    const auto [low, high] = std::ranges::minmax(mDots, {}, &SlidePoint::y);
    // What is at most a dot high or wide still shows.
    if (high.y - low.y <= 1 || right.x - left.x <= 1) {
        const bool isWide = right.x - left.x > high.y - low.y;
        mSlide.add(Kind::line, index, isWide ? std::array{left, right} : std::array{low, high});
        return;
    }
    if (mEnds.size() == 1 && mDots.size() <= 4) {
        if (mDots.size() > 2) {
            mSlide.add(Kind::area, index, mDots);
        }
        return;
    }
    cutIntoTrapezoids(mDots, mEnds, area.rule == FillRule::evenOdd,
                      [&](std::span<const SlidePoint> piece) { mSlide.add(Kind::area, index, piece); });
}

void drawSpace(AcDbDatabase& database, AcDbObjectId spaceId, PrimitiveSink& sink,
               const FlattenOptions& options) {
    auto* const space = peek<AcDbBlockTableRecord>(spaceId);
    if (space == nullptr) {
        return;
    }
    const std::unique_ptr<DrawingSource> source = drawingSource(database);
    Flattener flattener(*source, sink, options);
    const ReadAccess access(*space);
    space->worldDraw(&flattener.worldDraw());
}

Slide slideOf(AcDbDatabase& database, AcDbObjectId space, const SlideView& view) {
    SlideSink sink(view);
    const double dotSize = view.height / view.dotsUp;
    const double halfHeight = view.height / 2;
    const double halfWidth = halfHeight * view.dotsAcross / view.dotsUp;
    FlattenOptions options;
    options.deviation = dotSize / 4;
    options.dashResolution = dotSize * 2;
    options.view = {{view.centre.x - halfWidth, view.centre.y - halfHeight, 0},
                    {view.centre.x + halfWidth, view.centre.y + halfHeight, 0}};
    drawSpace(database, space, sink, options);
    return sink.take();
}

} // namespace

Slide slideOfView(AcDbDatabase& database, const SlideView& view) {
    return slideOf(database, database.currentSpaceId(), view);
}

Slide slideOfExtents(AcDbDatabase& database, int dotsAcross, int dotsUp) {
    ExtentsSink extents;
    FlattenOptions options;
    options.dashResolution = HUGE_VAL; // linetypes do not change the extents
    drawSpace(database, database.modelSpaceId(), extents, options);
    SlideView view{{0.0, 0.0}, 1.0, dotsAcross, dotsUp};
    if (!extents.isEmpty()) {
        const AcGePoint3d& low = extents.min();
        const AcGePoint3d& high = extents.max();
        view.centre.set((low.x + high.x) / 2, (low.y + high.y) / 2);
        const double height = std::max(high.y - low.y, (high.x - low.x) * dotsUp / dotsAcross);
        view.height = height > 0.0 ? height * (1 + 2 * extentsMargin) : 1.0;
    }
    return slideOf(database, database.modelSpaceId(), view);
}

std::optional<Slide> previewOf(const std::wstring& path, int dotsAcross, int dotsUp, std::wstring& message) {
    const std::wstring_view extension = extensionOf(path);
    if (equalNoCase(extension, std::wstring_view(L".sld")) ||
        startsWithNoCase(extension, std::wstring_view(L".slb"))) {
        return readSlide(path, message);
    }
    AcDbDatabase database(false, true);
    if (fileFormats().read(database, path, message) != Acad::eOk) {
        return std::nullopt;
    }
    message.clear();
    return slideOfExtents(database, dotsAcross, dotsUp);
}

} // namespace host
