#include "host/font/glyph.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace host {

namespace {

constexpr double flatness = 0.004; // text heights

// Number of chords that keep a Bezier curve of the given degree within the flatness: from the bound
// n(n-1)/8 * max|second difference| / chords^2.
int chordCount(double secondDifference, int degree) {
    const double factor = degree * (degree - 1) / 8.0;
    const double count = std::ceil(std::sqrt(factor * secondDifference / flatness));
    return static_cast<int>(std::clamp(count, 1.0, 32.0));
}

double secondDifference(GlyphPoint a, GlyphPoint b, GlyphPoint c) {
    return std::hypot(a.x - 2.0 * b.x + c.x, a.y - 2.0 * b.y + c.y);
}

void flattenQuadratic(GlyphPoint a, GlyphPoint b, GlyphPoint c, std::vector<GlyphPoint>& out) {
    const int count = chordCount(secondDifference(a, b, c), 2);
    for (int i = 1; i <= count; ++i) {
        const auto t = static_cast<float>(i) / static_cast<float>(count), s = 1 - t;
        out.push_back(
            {s * s * a.x + 2 * s * t * b.x + t * t * c.x, s * s * a.y + 2 * s * t * b.y + t * t * c.y});
    }
}

void flattenCubic(GlyphPoint a, GlyphPoint b, GlyphPoint c, GlyphPoint d, std::vector<GlyphPoint>& out) {
    const int count = chordCount(std::max(secondDifference(a, b, c), secondDifference(b, c, d)), 3);
    for (int i = 1; i <= count; ++i) {
        const auto t = static_cast<float>(i) / static_cast<float>(count), s = 1 - t;
        const float ka = s * s * s, kb = 3 * s * s * t, kc = 3 * s * t * t, kd = t * t * t;
        out.push_back({ka * a.x + kb * b.x + kc * c.x + kd * d.x, ka * a.y + kb * b.y + kc * c.y + kd * d.y});
    }
}

} // namespace

void GlyphBox::add(double x, double y) noexcept {
    if (empty) {
        left = right = x;
        bottom = top = y;
        empty = false;
        return;
    }
    left = std::min(left, x);
    right = std::max(right, x);
    bottom = std::min(bottom, y);
    top = std::max(top, y);
}

void GlyphBox::add(const GlyphBox& other) noexcept {
    if (!other.empty) {
        add(other.left, other.bottom);
        add(other.right, other.top);
    }
}

void Glyph::add(Verb verb, std::initializer_list<GlyphPoint> points) {
    mVerbs.push_back(verb);
    mPoints.insert(mPoints.end(), points);
}

void Glyph::append(const Glyph& other, double scale, double dx, double dy) {
    mVerbs.insert(mVerbs.end(), other.mVerbs.begin(), other.mVerbs.end());
    for (const GlyphPoint& point : other.mPoints)
        mPoints.push_back(
            {static_cast<float>(scale * point.x + dx), static_cast<float>(scale * point.y + dy)});
}

void Glyph::finish() {
    mPolyline.clear();
    mContourEnds.clear();
    const GlyphPoint* next = mPoints.data();
    for (const Verb verb : mVerbs) {
        const GlyphPoint from = mPolyline.empty() ? GlyphPoint{} : mPolyline.back();
        switch (verb) {
        case Verb::Move:
            if (!mPolyline.empty())
                mContourEnds.push_back(static_cast<std::uint32_t>(mPolyline.size()));
            mPolyline.push_back(next[0]);
            next += 1;
            break;
        case Verb::Line:
            mPolyline.push_back(next[0]);
            next += 1;
            break;
        case Verb::Quadratic:
            flattenQuadratic(from, next[0], next[1], mPolyline);
            next += 2;
            break;
        case Verb::Cubic:
            flattenCubic(from, next[0], next[1], next[2], mPolyline);
            next += 3;
            break;
        }
    }
    if (!mPolyline.empty())
        mContourEnds.push_back(static_cast<std::uint32_t>(mPolyline.size()));
    mBox = {};
    for (const GlyphPoint& point : mPolyline)
        mBox.add(point.x, point.y);
}

} // namespace host
