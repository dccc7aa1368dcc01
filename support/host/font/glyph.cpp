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
    m_verbs.push_back(verb);
    m_points.insert(m_points.end(), points);
}

void Glyph::append(const Glyph& other, double scale, double dx, double dy) {
    m_verbs.insert(m_verbs.end(), other.m_verbs.begin(), other.m_verbs.end());
    for (const GlyphPoint& point : other.m_points)
        m_points.push_back(
            {static_cast<float>(scale * point.x + dx), static_cast<float>(scale * point.y + dy)});
}

void Glyph::finish() {
    m_polyline.clear();
    m_contourEnds.clear();
    const GlyphPoint* next = m_points.data();
    for (const Verb verb : m_verbs) {
        const GlyphPoint from = m_polyline.empty() ? GlyphPoint{} : m_polyline.back();
        switch (verb) {
        case Verb::Move:
            if (!m_polyline.empty())
                m_contourEnds.push_back(static_cast<std::uint32_t>(m_polyline.size()));
            m_polyline.push_back(next[0]);
            next += 1;
            break;
        case Verb::Line:
            m_polyline.push_back(next[0]);
            next += 1;
            break;
        case Verb::Quadratic:
            flattenQuadratic(from, next[0], next[1], m_polyline);
            next += 2;
            break;
        case Verb::Cubic:
            flattenCubic(from, next[0], next[1], next[2], m_polyline);
            next += 3;
            break;
        }
    }
    if (!m_polyline.empty())
        m_contourEnds.push_back(static_cast<std::uint32_t>(m_polyline.size()));
    m_box = {};
    for (const GlyphPoint& point : m_polyline)
        m_box.add(point.x, point.y);
}

} // namespace host
