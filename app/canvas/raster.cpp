#include "app/canvas/raster.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double thin = 1.2;
constexpr double farthest = 1e9;

/// share: of 256 parts.
inline std::uint32_t mixed(std::uint32_t below, std::uint32_t color, std::uint32_t share) {
    const std::uint32_t rest = 256 - share;
    const std::uint32_t redBlue = ((below & 0xFF00FF) * rest + (color & 0xFF00FF) * share) >> 8 & 0xFF00FF;
    const std::uint32_t green = ((below & 0x00FF00) * rest + (color & 0x00FF00) * share) >> 8 & 0x00FF00;
    return 0xFF000000 | redBlue | green;
}

} // namespace

Raster::Raster(QImage& image, const QRect& clip)
    : mImage(image), mPixels(reinterpret_cast<std::uint32_t*>(image.bits())),
      mRow(static_cast<std::size_t>(image.bytesPerLine()) / sizeof(std::uint32_t)),
      mClip(clip.intersected(image.rect())),
      mWide(mPixels, mRow, {mClip.left(), mClip.top(), mClip.right() + 1, mClip.bottom() + 1}) {}

Raster::~Raster() = default;

void Raster::setWidth(double width) {
    mWidth = width;
}

QPainter& Raster::painter() {
    if (mPainter == nullptr) {
        mPainter = std::make_unique<QPainter>(&mImage);
        mPainter->setRenderHint(QPainter::Antialiasing);
        mPainter->setClipRect(mClip);
        mPainter->setPen(Qt::NoPen);
    }
    return *mPainter;
}

/// Shortens a line to where it passes a box; false when it does not.
bool Raster::cut(PixelPoint& from, PixelPoint& to, double left, double top, double right, double bottom) {
    const auto isInside = [&](const PixelPoint& point) {
        return point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
    };
    if (isInside(from) && isInside(to)) {
        return true; // most are
    }
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    double start = 0;
    double end = 1;
    const auto within = [&](double at, double step, double low, double high) {
        if (step == 0) {
            return at >= low && at <= high;
        }
        const double a = (low - at) / step;
        const double b = (high - at) / step;
        start = std::max(start, std::min(a, b));
        end = std::min(end, std::max(a, b));
        return start <= end;
    };
    if (!within(from.x, dx, left, right) || !within(from.y, dy, top, bottom)) {
        return false;
    }
    if (end < 1) {
        to = {from.x + dx * end, from.y + dy * end};
    }
    if (start > 0) {
        from = {from.x + dx * start, from.y + dy * start};
    }
    return true;
}

void Raster::line(PixelPoint from, PixelPoint to) {
    if (mDash <= 0) {
        whole(from, to);
        return;
    }
    if (!cut(from, to, mClip.left() - 2, mClip.top() - 2, mClip.right() + 3, mClip.bottom() + 3)) {
        return;
    }
    // Drawn and left out in turn, going on from line to line.
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    double at = 0;
    while (at < length) {
        const double phase = std::fmod(mDashAt, 2 * mDash);
        const double step = std::min((phase < mDash ? mDash : 2 * mDash) - phase + 1e-6, length - at);
        if (phase < mDash) {
            const double a = at / length;
            const double b = (at + step) / length;
            whole({from.x + (to.x - from.x) * a, from.y + (to.y - from.y) * a},
                  {from.x + (to.x - from.x) * b, from.y + (to.y - from.y) * b});
        }
        at += step;
        mDashAt += step;
    }
}

void Raster::whole(PixelPoint from, PixelPoint to) {
    if (mWidth > thin) {
        mWide.setPen(mColor, mWidth);
        mWide.line(from.x, from.y, to.x, to.y);
        return;
    }
    if (!mIsSmooth && isInside(from) && isInside(to)) {
        plainInside(from, to);
        return;
    }
    // Lines along the axes stand on whole pixels and need no smoothing.
    const bool straight = std::abs(from.x - to.x) < 0.5 || std::abs(from.y - to.y) < 0.5;
    if (!cut(from, to, mClip.left() - 1, mClip.top() - 1, mClip.right() + 2, mClip.bottom() + 2)) {
        return;
    }
    mIsSmooth && !straight ? smooth(from, to) : plain(from, to);
}

void Raster::plain(PixelPoint from, PixelPoint to) {
    const int x0 = static_cast<int>(std::floor(from.x));
    const int y0 = static_cast<int>(std::floor(from.y));
    const int x1 = static_cast<int>(std::floor(to.x));
    const int y1 = static_cast<int>(std::floor(to.y));
    const int dx = std::abs(x1 - x0);
    const int dy = std::abs(y1 - y0);
    const int steps = std::max(dx, dy);
    if (steps == 0) {
        pixel(x0, y0);
        return;
    }
    constexpr int fraction = 16;
    const std::int64_t stepX = (std::int64_t{x1 - x0} << fraction) / steps;
    const std::int64_t stepY = (std::int64_t{y1 - y0} << fraction) / steps;
    constexpr std::int64_t half = std::int64_t{1} << (fraction - 1);
    std::int64_t x = (std::int64_t{x0} << fraction) + half;
    std::int64_t y = (std::int64_t{y0} << fraction) + half;
    for (int i = 0; i <= steps; ++i, x += stepX, y += stepY) {
        pixel(static_cast<int>(x >> fraction), static_cast<int>(y >> fraction));
    }
}

/// The same pixels as plain() sets, where no pixel can lie outside: most lines of a full picture are such,
/// and only a few pixels long.
void Raster::plainInside(PixelPoint from, PixelPoint to) {
    const int x0 = static_cast<int>(from.x);
    const int y0 = static_cast<int>(from.y);
    const int x1 = static_cast<int>(to.x);
    const int y1 = static_cast<int>(to.y);
    const auto row = static_cast<std::ptrdiff_t>(mRow);
    std::uint32_t* const first = mPixels + y0 * row + x0;
    *first = mColor;
    const int dx = std::abs(x1 - x0);
    const int dy = std::abs(y1 - y0);
    const int steps = std::max(dx, dy);
    if (steps <= 1) {
        mPixels[y1 * row + x1] = mColor;
        return;
    }
    if (dy == 0) {
        std::fill_n(x1 > x0 ? first : first - dx, dx + 1, mColor);
        return;
    }
    constexpr int fraction = 16; // pictures are narrower than 2^15 pixels
    const int stepX = (x1 - x0) * (1 << fraction) / steps;
    const int stepY = (y1 - y0) * (1 << fraction) / steps;
    int x = (1 << (fraction - 1)) + stepX;
    int y = (1 << (fraction - 1)) + stepY;
    for (int i = 1; i <= steps; ++i, x += stepX, y += stepY) {
        first[(y >> fraction) * row + (x >> fraction)] = mColor;
    }
}

/// Two pixels across the line at each step along it, weighted by how near they are.
void Raster::smooth(PixelPoint from, PixelPoint to) {
    const bool steep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
    if (steep) {
        std::swap(from.x, from.y);
        std::swap(to.x, to.y);
    }
    if (from.x > to.x) {
        std::swap(from, to);
    }
    const double slope = (to.y - from.y) / (to.x - from.x);
    const int lowU = steep ? mClip.top() : mClip.left();
    const int highU = steep ? mClip.bottom() : mClip.right();
    const int lowV = steep ? mClip.left() : mClip.top();
    const int highV = steep ? mClip.right() : mClip.bottom();
    const int first = std::max(lowU, static_cast<int>(std::floor(from.x)));
    const int last = std::min(highU, static_cast<int>(std::floor(to.x)));
    constexpr double one = 65536;
    auto v = static_cast<std::int64_t>((from.y + (first + 0.5 - from.x) * slope - 0.5) * one);
    const auto step = static_cast<std::int64_t>(slope * one);
    const std::size_t strideU = steep ? mRow : 1;
    const std::size_t strideV = steep ? 1 : mRow;
    const auto end = v + step * (last - first);
    if (std::min(v, end) >> 16 >= lowV && (std::max(v, end) >> 16) + 1 <= highV) {
        const std::uint32_t color = mColor;
        std::uint32_t* column = mPixels + static_cast<std::size_t>(first) * strideU;
        for (int u = first; u <= last; ++u, v += step, column += strideU) {
            const auto share = static_cast<std::uint32_t>(v >> 8 & 0xFF);
            std::uint32_t* const pixel = column + static_cast<std::size_t>(v >> 16) * strideV;
            *pixel = mixed(*pixel, color, 256 - share);
            pixel[strideV] = mixed(pixel[strideV], color, share);
        }
        return;
    }
    for (int u = first; u <= last; ++u, v += step) {
        const int row = static_cast<int>(v >> 16);
        const auto share = static_cast<std::uint32_t>(v >> 8 & 0xFF);
        const std::size_t at =
            static_cast<std::size_t>(u) * strideU + static_cast<std::size_t>(std::max(row, 0)) * strideV;
        if (row >= lowV && row <= highV) {
            mPixels[at] = mixed(mPixels[at], mColor, 256 - share);
        }
        if (row + 1 >= lowV && row + 1 <= highV) {
            std::uint32_t& below = mPixels[row < 0 ? at : at + strideV];
            below = mixed(below, mColor, share);
        }
    }
}

void Raster::spot(double x, double y, int size) {
    const QRect square = QRect(static_cast<int>(std::floor(x)) - size / 2,
                               static_cast<int>(std::floor(y)) - size / 2, size, size)
                             .intersected(mClip);
    for (int row = square.top(); row <= square.bottom(); ++row) {
        for (int column = square.left(); column <= square.right(); ++column) {
            mPixels[static_cast<std::size_t>(row) * mRow + static_cast<std::size_t>(column)] = mColor;
        }
    }
}

void Raster::fill(std::span<const PixelPoint> points, std::span<const std::uint32_t> ends, bool nonZero) {
    mPath.clear();
    mPath.setFillRule(nonZero ? Qt::WindingFill : Qt::OddEvenFill);
    // The painter loses its precision far outside; there a corner's place does not matter much.
    constexpr double around = 20000;
    const auto at = [&](const PixelPoint& point) {
        return QPointF(std::clamp(point.x, -around, around), std::clamp(point.y, -around, around));
    };
    std::size_t start = 0;
    for (const std::size_t end : ends) {
        for (std::size_t i = start; i < end; ++i) {
            i == start ? mPath.moveTo(at(points[i])) : mPath.lineTo(at(points[i]));
        }
        mPath.closeSubpath();
        start = end;
    }
    painter().fillPath(mPath, QColor::fromRgb(mColor));
}

/// Cut at the polygon's box: slanted borders are left to what the drawing shows beside them.
void Raster::pushClip(std::span<const PixelPoint> polygon) {
    mOuterClips.push_back(mClip);
    double left = farthest;
    double top = farthest;
    double right = -farthest;
    double bottom = -farthest;
    for (const PixelPoint& point : polygon) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
        top = std::min(top, point.y);
        bottom = std::max(bottom, point.y);
    }
    const auto whole = [&](double value) { return static_cast<int>(std::clamp(value, -1e6, 1e6)); };
    mClip = mClip.intersected(QRect(QPoint(whole(std::floor(left)), whole(std::floor(top))),
                                    QPoint(whole(std::ceil(right)) - 1, whole(std::ceil(bottom)) - 1)));
    mWide.setBounds({mClip.left(), mClip.top(), mClip.right() + 1, mClip.bottom() + 1});
    painter().setClipRect(mClip);
}

void Raster::popClip() {
    if (mOuterClips.empty()) {
        return;
    }
    mClip = mOuterClips.back();
    mOuterClips.pop_back();
    mWide.setBounds({mClip.left(), mClip.top(), mClip.right() + 1, mClip.bottom() + 1});
    painter().setClipRect(mClip);
}

} // namespace app
