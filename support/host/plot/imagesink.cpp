#include "host/plot/imagesink.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double farthest = 1e5; // pixels; beyond it the rasteriser of areas loses precision

// The part of a line within the given distance of the origin along both axes; false when there is none.
bool cutAtBox(QPointF& start, QPointF& end, double distance) {
    const QPointF origin = start, along = end - start;
    double from = 0, to = 1;
    const auto cut = [&](double at, double step) {
        if (step == 0) {
            from = std::abs(at) > distance ? 2 : from;
            return;
        }
        const double a = (-distance - at) / step, b = (distance - at) / step;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    };
    cut(origin.x(), along.x());
    cut(origin.y(), along.y());
    start = origin + along * from;
    end = origin + along * to;
    return from <= to && std::isfinite(start.x() + start.y() + end.x() + end.y());
}

QImage blank(const Sheet& sheet, double pixelsPerMillimetre) {
    const auto pixels = [&](double millimetres) {
        return std::max(1, static_cast<int>(std::lround(millimetres * pixelsPerMillimetre)));
    };
    QImage image(pixels(sheet.width), pixels(sheet.height), QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

} // namespace

ImageSink::ImageSink(const Sheet& sheet, int longSide, const PaperLook& look)
    : mImage(blank(sheet, longSide / std::max(sheet.width, sheet.height))),
      mRaster(mImage.isNull() ? nullptr : reinterpret_cast<std::uint32_t*>(mImage.bits()),
              static_cast<std::size_t>(mImage.bytesPerLine()) / sizeof(std::uint32_t),
              {0, 0, mImage.width(), mImage.height()}),
      mPainter(&mImage), mMap(sheet, longSide / std::max(sheet.width, sheet.height), true),
      mPixelsPerMillimetre(longSide / std::max(sheet.width, sheet.height)), mLook(look) {
    mPainter.setRenderHint(QPainter::Antialiasing);
}

ImageSink::~ImageSink() {
    mPainter.end();
}

QPointF ImageSink::at(const AcGePoint3d& point) const {
    return {std::clamp(mMap.x(point.x), -farthest, farthest),
            std::clamp(mMap.y(point.y), -farthest, farthest)};
}

void ImageSink::setPen(const Pen& pen) {
    const double width = std::max(paperWidth(pen, mLook) * mPixelsPerMillimetre, 1.0);
    mRaster.setPen(paperColor(pen, mLook), width);
    if (mOddClips > 0)
        mPainter.setPen(
            QPen(QColor::fromRgb(paperColor(pen, mLook)), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void ImageSink::line(const AcGePoint3d& from, const AcGePoint3d& to) {
    if (mOddClips > 0) {
        QPointF start(mMap.x(from.x), mMap.y(from.y)), end(mMap.x(to.x), mMap.y(to.y));
        if (cutAtBox(start, end, farthest))
            mPainter.drawLine(start, end);
    } else {
        mRaster.line(mMap.x(from.x), mMap.y(from.y), mMap.x(to.x), mMap.y(to.y));
    }
}

void ImageSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setPen(pen);
    // Points closer than a tenth of a pixel to the one before are left out.
    const double nearest = 0.1 / mMap.scale();
    const AcGePoint3d* last = &points.front();
    for (const AcGePoint3d& point : points.subspan(1)) {
        if (&point != &points.back() && std::abs(point.x - last->x) + std::abs(point.y - last->y) < nearest)
            continue;
        line(*last, point);
        last = &point;
    }
}

void ImageSink::area(const Area& area, const Pen& pen) {
    QPainterPath path;
    path.setFillRule(area.rule == FillRule::evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        for (std::size_t i = start; i < end; ++i)
            i == start ? path.moveTo(at(area.points[i])) : path.lineTo(at(area.points[i]));
        path.closeSubpath();
        start = end;
    }
    mPainter.fillPath(path, QColor::fromRgb(paperColor(pen, mLook)));
}

void ImageSink::dot(const AcGePoint3d& point, const Pen& pen) {
    setPen(pen);
    line(point, point);
}

// A rectangle along the axes bounds the lines' raster as well; lines in other shapes go through the painter.
void ImageSink::pushClip(std::span<const AcGePoint3d> polygon) {
    QPolygonF corners;
    for (const AcGePoint3d& corner : polygon)
        corners.append(at(corner));
    const QRectF box = corners.boundingRect();
    const bool isBox = corners.size() == 4 && std::ranges::all_of(corners, [&](const QPointF& corner) {
                           return (corner.x() == box.left() || corner.x() == box.right()) &&
                                  (corner.y() == box.top() || corner.y() == box.bottom());
                       });
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    mPainter.save();
    mPainter.setClipPath(path, Qt::IntersectClip);
    mClips.push_back({mRaster.bounds(), isBox});
    if (!isBox) {
        ++mOddClips;
        return;
    }
    PixelBox bounds = mRaster.bounds();
    bounds.left = std::max(bounds.left, static_cast<int>(std::floor(box.left())));
    bounds.top = std::max(bounds.top, static_cast<int>(std::floor(box.top())));
    bounds.right = std::min(bounds.right, static_cast<int>(std::ceil(box.right())));
    bounds.bottom = std::min(bounds.bottom, static_cast<int>(std::ceil(box.bottom())));
    mRaster.setBounds(bounds);
}

void ImageSink::popClip() {
    if (mClips.empty())
        return;
    mPainter.restore();
    mRaster.setBounds(mClips.back().outer);
    mOddClips -= mClips.back().isBox ? 0 : 1;
    mClips.pop_back();
}

} // namespace host
