#include "host/plot/svgsink.h"

#include <array>
#include <cmath>

namespace host {

namespace {

constexpr double stepsPerMillimetre = 200;
constexpr double glyphUnits = 1000; // a text height
constexpr std::size_t longestPath = 2000, bufferSize = 256 * 1024;

} // namespace

SvgSink::SvgSink(const std::filesystem::path& path, const Sheet& sheet, bool hasLineWeights)
    : m_map(sheet, stepsPerMillimetre, true), m_hasLineWeights(hasLineWeights),
      m_file(path, AtomicFile::Backup::none) {
    const std::int64_t width = std::llround(sheet.width * stepsPerMillimetre);
    const std::int64_t height = std::llround(sheet.height * stepsPerMillimetre);
    m_text << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\""
           << sheet.width << "mm\" height=\"" << sheet.height << "mm\" viewBox=\"0 0 " << width << ' '
           << height << "\">\n<rect width=\"" << width << "\" height=\"" << height
           << "\" fill=\"#fff\"/>\n<g stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
}

void SvgSink::color(std::uint32_t rgb) {
    constexpr std::string_view digits = "0123456789abcdef";
    m_text << '#';
    for (int shift = 20; shift >= 0; shift -= 4)
        m_text << digits[rgb >> shift & 15];
}

void SvgSink::point(char command, const SheetPoint& point) {
    m_text << command << point.x << ' ' << point.y;
}

void SvgSink::setStroke(const Pen& pen) {
    const std::uint32_t rgb = paperColor(pen);
    const std::int64_t width = std::llround(paperWidth(pen, m_hasLineWeights) * stepsPerMillimetre);
    if (m_pathPoints > 0 && rgb == m_strokeColor && width == m_strokeWidth && m_pathPoints < longestPath)
        return;
    endPath();
    m_text << "<path fill=\"none\" stroke=\"";
    color(rgb);
    m_text << "\" stroke-width=\"" << width << "\" d=\"";
    m_strokeColor = rgb;
    m_strokeWidth = width;
}

void SvgSink::endPath() {
    if (m_pathPoints > 0)
        m_text << "\"/>\n";
    m_pathPoints = 0;
    spill();
}

void SvgSink::spill() {
    if (m_text.size() < bufferSize)
        return;
    m_file.write(std::string_view(m_text.text()));
    m_text.clear();
}

void SvgSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setStroke(pen);
    SheetPoint last = m_map(points.front());
    point('M', last);
    bool isDot = true;
    for (const AcGePoint3d& world : points.subspan(1)) {
        const SheetPoint next = m_map(world);
        if (next == last)
            continue;
        point('L', next);
        last = next;
        isDot = false;
    }
    if (isDot)
        m_text << "h1"; // some viewers leave a line without length out
    m_pathPoints += points.size();
}

void SvgSink::path(const WorldPath& path, const Pen& pen) {
    setStroke(pen);
    const AcGePoint3d* next = path.points.data();
    for (const WorldPath::Verb verb : path.verbs) {
        if (verb == WorldPath::Verb::curve) {
            point('C', m_map(*next++));
            point(' ', m_map(*next++));
            point(' ', m_map(*next++));
        } else {
            point(verb == WorldPath::Verb::move ? 'M' : 'L', m_map(*next++));
        }
    }
    m_pathPoints += path.points.size();
}

void SvgSink::area(const Area& area, const Pen& pen) {
    endPath();
    m_text << "<path fill=\"";
    color(paperColor(pen));
    m_text << (area.rule == FillRule::evenOdd ? "\" fill-rule=\"evenodd\" d=\"" : "\" d=\"");
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        for (std::size_t i = start; i < end; ++i)
            point(i == start ? 'M' : 'L', m_map(area.points[i]));
        m_text << 'z';
        start = end;
    }
    m_text << "\"/>\n";
    spill();
}

void SvgSink::glyphs(const GlyphRun& run, const Pen& pen) {
    bool hasFill = false;
    for (const PlacedGlyph& placed : run.text.glyphs) {
        if (placed.glyph->filled) {
            hasFill |= !placed.glyph->box().empty;
            continue;
        }
        const auto points = placed.glyph->polylinePoints();
        std::size_t start = 0;
        for (const std::size_t end : placed.glyph->contourEnds()) {
            setStroke(pen);
            for (std::size_t i = start; i < end; ++i)
                point(i == start ? 'M' : 'L', m_map(run.at(placed, points[i])));
            if (end - start == 1)
                m_text << "h1";
            m_pathPoints += end - start;
            start = end;
        }
    }
    for (const TextRule& rule : run.text.rules)
        polyline(std::array{run.at(rule.startX, rule.startY), run.at(rule.endX, rule.endY)}, pen);
    if (!hasFill)
        return;
    endPath();
    for (const PlacedGlyph& placed : run.text.glyphs)
        if (placed.glyph->filled && !placed.glyph->box().empty)
            symbol(*placed.glyph);
    m_text << "<g fill=\"";
    color(paperColor(pen));
    m_text << "\">";
    for (const PlacedGlyph& placed : run.text.glyphs)
        if (placed.glyph->filled && !placed.glyph->box().empty)
            filledGlyph(run, placed);
    m_text << "</g>\n";
    spill();
}

void SvgSink::filledGlyph(const GlyphRun& run, const PlacedGlyph& placed) {
    const double scale = m_map.scale() / glyphUnits, sign = m_map.sign();
    const AcGeVector3d across = run.xAxis * (run.text.xx * scale);
    const AcGeVector3d up = (run.xAxis * run.text.xy + run.yAxis * run.text.yy) * scale;
    const SheetPoint origin = m_map(run.at(placed.x, placed.y));
    if (!std::isfinite(across.lengthSqrd() + up.lengthSqrd()))
        return;
    m_text << "<use href=\"#g" << placed.glyph->fontId << '_' << placed.glyph->glyphId
           << "\" transform=\"matrix(" << across.x << ' ' << across.y * sign << ' ' << up.x << ' '
           << up.y * sign << ' ' << origin.x << ' ' << origin.y << ")\"/>";
}

void SvgSink::symbol(const Glyph& glyph) {
    if (!m_symbols.insert(&glyph).second)
        return;
    m_text << "<defs><path id=\"g" << glyph.fontId << '_' << glyph.glyphId << "\" d=\"";
    const GlyphPoint* next = glyph.points().data();
    const auto put = [&](char command, int count) {
        for (int i = 0; i < count; ++i, ++next)
            point(i == 0 ? command : ' ',
                  {std::llround(next->x * glyphUnits), std::llround(next->y * glyphUnits)});
    };
    for (const Glyph::Verb verb : glyph.verbs()) {
        switch (verb) {
        case Glyph::Verb::Move:
            put('M', 1);
            break;
        case Glyph::Verb::Line:
            put('L', 1);
            break;
        case Glyph::Verb::Quadratic:
            put('Q', 2);
            break;
        case Glyph::Verb::Cubic:
            put('C', 3);
            break;
        }
    }
    m_text << "z\"/></defs>\n";
}

void SvgSink::pushClip(std::span<const AcGePoint3d> polygon) {
    endPath();
    m_text << "<clipPath id=\"c" << ++m_clips << "\"><path clip-rule=\"evenodd\" d=\"";
    for (std::size_t i = 0; i < polygon.size(); ++i)
        point(i == 0 ? 'M' : 'L', m_map(polygon[i]));
    m_text << "\"/></clipPath><g clip-path=\"url(#c" << m_clips << ")\">\n";
    ++m_openClips;
}

void SvgSink::popClip() {
    if (m_openClips == 0)
        return;
    endPath();
    m_text << "</g>\n";
    --m_openClips;
}

bool SvgSink::finish() {
    endPath();
    while (m_openClips > 0)
        popClip();
    m_text << "</g>\n</svg>\n";
    m_file.write(std::string_view(m_text.text()));
    m_text.clear();
    return m_file.commit();
}

} // namespace host
