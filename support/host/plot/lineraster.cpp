#include "host/plot/lineraster.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

// Shortens a line to where it passes a box; false when it does not.
bool cutToBox(double& x0, double& y0, double& x1, double& y1, double left, double top, double right,
              double bottom) {
    const double dx = x1 - x0, dy = y1 - y0;
    double from = 0, to = 1;
    const auto cut = [&](double start, double step, double low, double high) {
        if (step == 0)
            return start >= low && start <= high;
        const double a = (low - start) / step, b = (high - start) / step;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
        return from <= to;
    };
    if (!cut(x0, dx, left, right) || !cut(y0, dy, top, bottom))
        return false;
    x1 = x0 + dx * to;
    y1 = y0 + dy * to;
    x0 += dx * from;
    y0 += dy * from;
    return true;
}

} // namespace

void LineRaster::line(double x0, double y0, double x1, double y1) {
    constexpr double farthest = 1e12;
    for (double* coordinate : {&x0, &y0, &x1, &y1})
        *coordinate = std::clamp(*coordinate, -farthest, farthest);
    const double around = mHalfWidth + 2; // what lies farther outside does not show
    if (!cutToBox(x0, y0, x1, y1, mBounds.left - around, mBounds.top - around, mBounds.right + around,
                  mBounds.bottom + around))
        return;
    const double dx = x1 - x0, dy = y1 - y0, length = std::hypot(dx, dy);
    if (std::abs(dx) >= std::abs(dy))
        draw<false>({x0, y0, dx, dy, length});
    else
        draw<true>({y0, x0, dy, dx, length});
}

template <bool isSteep>
void LineRaster::draw(const Segment& s) {
    const int lowU = isSteep ? mBounds.top : mBounds.left, highU = isSteep ? mBounds.bottom : mBounds.right;
    const int lowV = isSteep ? mBounds.left : mBounds.top, highV = isSteep ? mBounds.right : mBounds.bottom;
    const double reach = mHalfWidth + 0.5;
    const double spread =
        s.du != 0 ? reach * s.length / std::abs(s.du) : reach; // across, along the second axis
    const double inverse = s.length > 0 ? 1 / s.length : 0;
    const double alongU = s.du * inverse, alongV = s.dv * inverse; // the direction
    const double slope = s.du != 0 ? s.dv / s.du : 0;
    const int firstU = std::max(lowU, static_cast<int>(std::floor(std::min(s.u0, s.u0 + s.du) - reach)));
    const int lastU = std::min(highU - 1, static_cast<int>(std::floor(std::max(s.u0, s.u0 + s.du) + reach)));
    for (int u = firstU; u <= lastU; ++u) {
        const double ru = u + 0.5 - s.u0;
        const double onLine =
            s.du == 0 ? 0 : std::clamp(ru, std::min(0.0, s.du), std::max(0.0, s.du)) * slope;
        const double middle = s.v0 + onLine;
        const int firstV = std::max(lowV, static_cast<int>(std::floor(middle - spread)));
        const int lastV = std::min(highV - 1, static_cast<int>(std::floor(middle + spread)));
        for (int v = firstV; v <= lastV; ++v) {
            const double rv = v + 0.5 - s.v0;
            const double along = ru * alongU + rv * alongV;
            double distance = std::abs(rv * alongU - ru * alongV);
            if (along < 0)
                distance = std::hypot(ru, rv);
            else if (along > s.length)
                distance = std::hypot(ru - s.du, rv - s.dv);
            else if (s.length == 0)
                distance = std::hypot(ru, rv);
            if (distance < reach)
                cover(isSteep
                          ? mPixels[static_cast<std::size_t>(u) * mRowLength + static_cast<std::size_t>(v)]
                          : mPixels[static_cast<std::size_t>(v) * mRowLength + static_cast<std::size_t>(u)],
                      reach - distance);
        }
    }
}

void LineRaster::cover(std::uint32_t& pixel, double coverage) const {
    const auto share = static_cast<std::uint32_t>(std::min(coverage, 1.0) * 256);
    const auto mix = [&](std::uint32_t mask) { // of 256 parts each; two channels at a time do not touch
        const std::uint32_t old = pixel & mask, drawn = mColor & mask;
        return (old * (256 - share) + drawn * share) >> 8 & mask;
    };
    pixel = 0xFF000000 | mix(0xFF00FF) | mix(0x00FF00);
}

} // namespace host
