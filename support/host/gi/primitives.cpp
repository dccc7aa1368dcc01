#include "host/gi/primitives.h"

#include <array>

namespace host {

void PrimitiveSink::dot(const AcGePoint3d& point, const Pen& pen) {
    polyline(std::array{point, point}, pen);
}

void PrimitiveSink::glyphs(const GlyphRun& run, const Pen& pen) {
    std::vector<AcGePoint3d> points;
    for (const PlacedGlyph& placed : run.text.glyphs) {
        points.clear();
        for (const GlyphPoint& point : placed.glyph->polylinePoints())
            points.push_back(run.at(placed, point));
        const auto ends = placed.glyph->contourEnds();
        if (placed.glyph->filled) {
            if (!points.empty())
                area({points, ends, FillRule::nonZero}, pen);
            continue;
        }
        std::size_t start = 0;
        for (const std::size_t end : ends) {
            if (end - start > 1)
                polyline(std::span(points).subspan(start, end - start), pen);
            else
                dot(points[start], pen);
            start = end;
        }
    }
    for (const TextRule& rule : run.text.rules)
        polyline(std::array{run.at(rule.startX, rule.startY), run.at(rule.endX, rule.endY)}, pen);
}

} // namespace host
