// What drawing comes down to: lines, curves, filled areas and glyphs in world coordinates, each with the pen
// it is drawn with.
#pragma once

#include "host/font/font.h"
#include "host/ge/ge.h"
#include "host/gi/color.h"
#include "host/gi/lineweight.h"

#include <cstdint>
#include <span>
#include <vector>

class AcGiDrawable;

namespace host {

struct Pen {
    AcCmEntityColor color; // an index or a true colour; index 7 shows against any background
    AcDb::LineWeight lineWeight = AcDb::kLnWt025; // a real width, hundredths of a millimetre
    bool isPlottable = true;
    Adesk::LongPtr marker = 0;               // the selection marker that was set
    const struct LayerLook* layer = nullptr; // it is drawn on, as long as the drawing's source lives

    bool operator==(const Pen&) const = default;
};

// A path of straight lines and cubic Bezier curves. Each verb takes its points in order: a move and a line
// one, a curve three.
struct WorldPath {
    enum class Verb : std::uint8_t { move, line, curve };
    std::vector<Verb> verbs;
    std::vector<AcGePoint3d> points;

    void clear() {
        verbs.clear();
        points.clear();
    }
    void move(const AcGePoint3d& point) { add(Verb::move, point); }
    void line(const AcGePoint3d& point) { add(Verb::line, point); }
    void curve(const AcGePoint3d& control1, const AcGePoint3d& control2, const AcGePoint3d& end) {
        verbs.push_back(Verb::curve);
        points.insert(points.end(), {control1, control2, end});
    }

private:
    void add(Verb verb, const AcGePoint3d& point) {
        verbs.push_back(verb);
        points.push_back(point);
    }
};

enum class FillRule { evenOdd, nonZero };

// Closed contours; contour i ends before contourEnds[i]. The last point need not repeat the first.
struct Area {
    std::span<const AcGePoint3d> points;
    std::span<const std::uint32_t> contourEnds;
    FillRule rule = FillRule::evenOdd;
};

// A line of text: text coordinates (x, y) lie at origin + x xAxis + y yAxis.
struct GlyphRun {
    const ShapedText& text;
    AcGePoint3d origin;
    AcGeVector3d xAxis, yAxis;

    AcGePoint3d at(double x, double y) const { return origin + xAxis * x + yAxis * y; }
    // A point of a glyph's own drawing.
    AcGePoint3d at(const PlacedGlyph& placed, GlyphPoint point) const {
        return at(placed.x + text.xx * point.x + text.xy * point.y, placed.y + text.yy * point.y);
    }
};

// Receives primitives. Coordinates are finite numbers. Only lines and areas must be taken; the others are
// reduced to them unless overridden.
class PrimitiveSink {
public:
    virtual ~PrimitiveSink() = default;

    // Two or more points.
    virtual void polyline(std::span<const AcGePoint3d> points, const Pen& pen) = 0;
    virtual void area(const Area& area, const Pen& pen) = 0;
    // A dot as wide as the pen.
    virtual void dot(const AcGePoint3d& point, const Pen& pen);
    virtual void glyphs(const GlyphRun& run, const Pen& pen);

    // Only called when wantsCurves(): continuous lines with arcs come as paths instead of polylines.
    virtual bool wantsCurves() const { return false; }
    virtual void path(const WorldPath&, const Pen&) {}

    // What is drawn between the two is cut at a closed polygon seen along the view.
    virtual void pushClip(std::span<const AcGePoint3d>) {}
    virtual void popClip() {}

    // Around everything an outermost drawable draws.
    virtual void beginDrawable(const AcGiDrawable&) {}
    virtual void endDrawable() {}
};

} // namespace host
