// One character's drawing in a font: an outline to fill, or strokes to draw with a pen. Units are text
// heights: the base line is y = 0, capital letters reach y = 1, the pen starts at x = 0.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace host {

struct GlyphPoint {
    float x = 0;
    float y = 0;
    bool operator==(const GlyphPoint&) const = default;
};

struct GlyphBox {
    double left = 0, bottom = 0, right = 0, top = 0;
    bool empty = true;

    void add(double x, double y) noexcept;
    void add(const GlyphBox& other) noexcept;
};

class Glyph {
public:
    // Move starts a contour and takes one point, Line one, Quadratic two, Cubic three.
    enum class Verb : std::uint8_t { Move, Line, Quadratic, Cubic };

    void moveTo(GlyphPoint point) { add(Verb::Move, {point}); }
    void lineTo(GlyphPoint point) { add(Verb::Line, {point}); }
    void quadraticTo(GlyphPoint control, GlyphPoint end) { add(Verb::Quadratic, {control, end}); }
    void cubicTo(GlyphPoint control1, GlyphPoint control2, GlyphPoint end) {
        add(Verb::Cubic, {control1, control2, end});
    }
    // Draws another glyph's contours as part of this one, scaled and then moved.
    void append(const Glyph& other, double scale, double dx, double dy);
    // Computes box and polylines; to be called once when all contours are there.
    void finish();

    std::span<const Verb> verbs() const { return mVerbs; }
    std::span<const GlyphPoint> points() const { return mPoints; }
    const GlyphBox& box() const { return mBox; } // of the ink

    // The contours as polylines within 0.004 of the curves; contour i ends before contourEnds()[i].
    std::span<const GlyphPoint> polylinePoints() const { return mPolyline; }
    std::span<const std::uint32_t> contourEnds() const { return mContourEnds; }

    double advance = 0;                    // to the next character's start
    char32_t character = 0;                // the character it was looked up for
    std::uint32_t fontId = 0, glyphId = 0; // the same pair always names the same drawing in this process
    bool filled = false;                   // even contours to fill by the non-zero rule, else strokes

private:
    void add(Verb verb, std::initializer_list<GlyphPoint> points);

    std::vector<Verb> mVerbs;
    std::vector<GlyphPoint> mPoints;
    std::vector<GlyphPoint> mPolyline;
    std::vector<std::uint32_t> mContourEnds;
    GlyphBox mBox;
};

} // namespace host
