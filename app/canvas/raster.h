// Fills an image's pixels with thin lines, dots and areas: what the picture of a drawing consists of. Lines
// one pixel wide have their own fast way, smooth or plain; wider ones and areas go through slower ones.
#pragma once

#include "host/plot/lineraster.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <memory>
#include <span>
#include <vector>

namespace app {

struct PixelPoint {
    double x = 0, y = 0;
};

class Raster {
public:
    /// Draws within the rectangle only. The image (32 bits, no alpha) must outlive it.
    Raster(QImage& image, const QRect& clip);
    ~Raster();
    Raster(const Raster&) = delete;
    Raster& operator=(const Raster&) = delete;

    void setColor(std::uint32_t color) { mColor = color; }
    /// Pixels; up to 1.2 lines are drawn by the fast way.
    void setWidth(double width);
    /// Smooth lines cost twice as much.
    void setSmooth(bool smooth) { mIsSmooth = smooth; }
    /// Lines with gaps of this many pixels; 0: whole.
    void setDash(double length) { mDash = length; }

    void line(PixelPoint from, PixelPoint to);
    void dot(double x, double y) { pixel(static_cast<int>(x), static_cast<int>(y)); }
    /// A square of pixels around a point.
    void spot(double x, double y, int size);
    /// Closed contours, contour i ending before ends[i].
    void fill(std::span<const PixelPoint> points, std::span<const std::uint32_t> ends, bool nonZero);
    void pushClip(std::span<const PixelPoint> polygon);
    void popClip();

    static bool cut(PixelPoint& from, PixelPoint& to, double left, double top, double right, double bottom);

private:
    void pixel(int x, int y) {
        if (x >= mClip.left() && x <= mClip.right() && y >= mClip.top() && y <= mClip.bottom()) {
            mPixels[static_cast<std::size_t>(y) * mRow + static_cast<std::size_t>(x)] = mColor;
        }
    }
    void whole(PixelPoint from, PixelPoint to);
    void plain(PixelPoint from, PixelPoint to);
    void plainInside(PixelPoint from, PixelPoint to);
    bool isInside(const PixelPoint& point) const {
        return point.x >= mClip.left() && point.x < mClip.right() + 1 && point.y >= mClip.top() &&
               point.y < mClip.bottom() + 1;
    }
    void smooth(PixelPoint from, PixelPoint to);
    QPainter& painter();

    QImage& mImage;
    std::uint32_t* mPixels;
    std::size_t mRow;
    QRect mClip;
    std::vector<QRect> mOuterClips;
    std::uint32_t mColor = 0;
    double mWidth = 1;
    double mDash = 0;
    double mDashAt = 0;
    bool mIsSmooth = true;
    host::LineRaster mWide;
    std::unique_ptr<QPainter> mPainter;
    QPainterPath mPath;
};

} // namespace app
