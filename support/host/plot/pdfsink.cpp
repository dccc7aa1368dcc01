#include "host/plot/pdfsink.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace host {

namespace {

constexpr double stepsPerMillimetre = 400; // 2.5 micrometres: whole numbers, finer than any printer
constexpr double pointsPerMillimetre = 72 / 25.4;
constexpr std::size_t longestPath = 2000;      // points; longer ones are slow in some viewers
constexpr std::size_t streamSize = 512 * 1024; // bytes of content kept in memory

} // namespace

PdfSink::PdfSink(const std::filesystem::path& path, const Sheet& sheet, bool hasLineWeights)
    : m_sheet(sheet), m_map(sheet, stepsPerMillimetre, false), m_hasLineWeights(hasLineWeights),
      m_file(path) {
    const double step = pointsPerMillimetre / stepsPerMillimetre;
    m_content << step << " 0 0 " << step << " 0 0 cm 1 J 1 j\n";
}

void PdfSink::point(const SheetPoint& point, char operation) {
    m_content << point.x << ' ' << point.y << ' ' << operation << '\n';
}

void PdfSink::strokePath() {
    if (m_pathPoints > 0)
        m_content << "S\n";
    m_pathPoints = 0;
}

void PdfSink::spill() {
    if (m_content.size() < streamSize)
        return;
    strokePath();
    m_contents.push_back(m_file.writeStream(m_content.take()));
}

void PdfSink::color(std::uint32_t rgb, std::string_view operation) {
    const auto part = [&](int shift) { return std::round((rgb >> shift & 0xFF) / 255.0 * 1000) / 1000; };
    m_content << part(16) << ' ' << part(8) << ' ' << part(0) << ' ' << operation << '\n';
}

void PdfSink::setStroke(const Pen& pen) {
    const std::uint32_t rgb = paperColor(pen);
    const std::int64_t width = std::llround(paperWidth(pen, m_hasLineWeights) * stepsPerMillimetre);
    if (m_strokeColor != rgb) {
        strokePath();
        color(rgb, "RG");
        m_strokeColor = rgb;
    }
    if (m_strokeWidth != width) {
        strokePath();
        m_content << width << " w\n";
        m_strokeWidth = width;
    }
}

void PdfSink::setFill(const Pen& pen) {
    strokePath();
    const std::uint32_t rgb = paperColor(pen);
    if (m_fillColor != rgb) {
        color(rgb, "rg");
        m_fillColor = rgb;
    }
}

void PdfSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setStroke(pen);
    SheetPoint last = m_map(points.front());
    point(last, 'm');
    ++m_pathPoints;
    bool isDot = true;
    for (const AcGePoint3d& world : points.subspan(1)) {
        const SheetPoint next = m_map(world);
        if (next == last)
            continue;
        point(next, 'l');
        ++m_pathPoints;
        last = next;
        isDot = false;
    }
    if (isDot) // some viewers leave a line without length out
        point({last.x + 1, last.y}, 'l');
    if (m_pathPoints > longestPath)
        strokePath();
    spill();
}

void PdfSink::path(const WorldPath& path, const Pen& pen) {
    setStroke(pen);
    const AcGePoint3d* next = path.points.data();
    for (const WorldPath::Verb verb : path.verbs) {
        if (verb == WorldPath::Verb::curve) {
            for (int i = 0; i < 2; ++i) {
                const SheetPoint control = m_map(*next++);
                m_content << control.x << ' ' << control.y << ' ';
            }
            point(m_map(*next++), 'c');
        } else {
            point(m_map(*next++), verb == WorldPath::Verb::move ? 'm' : 'l');
        }
    }
    m_pathPoints += path.points.size();
    if (m_pathPoints > longestPath)
        strokePath();
    spill();
}

void PdfSink::area(const Area& area, const Pen& pen) {
    setFill(pen);
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        SheetPoint last;
        for (std::size_t i = start; i < end; ++i) {
            const SheetPoint next = m_map(area.points[i]);
            if (i > start && next == last)
                continue;
            point(next, i == start ? 'm' : 'l');
            last = next;
        }
        start = end;
    }
    m_content << (area.rule == FillRule::evenOdd ? "f*\n" : "f\n");
    spill();
}

void PdfSink::glyphs(const GlyphRun& run, const Pen& pen) {
    const auto& placed = run.text.glyphs;
    if (std::ranges::any_of(placed, [](const PlacedGlyph& glyph) { return glyph.glyph->filled; })) {
        setFill(pen);
        filledGlyphs(run);
    }
    const bool hasStrokes =
        !run.text.rules.empty() || std::ranges::any_of(placed, [](const PlacedGlyph& glyph) {
            return !glyph.glyph->filled && !glyph.glyph->box().empty;
        });
    if (hasStrokes)
        setStroke(pen);
    for (const PlacedGlyph& glyph : placed)
        if (!glyph.glyph->filled)
            strokedGlyph(run, glyph);
    for (const TextRule& rule : run.text.rules) {
        point(m_map(run.at(rule.startX, rule.startY)), 'm');
        point(m_map(run.at(rule.endX, rule.endY)), 'l');
        m_pathPoints += 2;
    }
    spill();
}

// Characters that follow each other as their advances say are shown together; the text matrix is set anew
// where they do not.
void PdfSink::filledGlyphs(const GlyphRun& run) {
    const ShapedText& text = run.text;
    const double scale = m_map.scale();
    const auto across = run.xAxis * (text.xx * scale),
               up = (run.xAxis * text.xy + run.yAxis * text.yy) * scale;
    if (!std::isfinite(across.lengthSqrd() + up.lengthSqrd()))
        return;
    m_content << "BT\n";
    std::size_t font = static_cast<std::size_t>(-1);
    double expected = 0;
    bool isShowing = false;
    const auto endShow = [&] {
        if (isShowing)
            m_content << ">Tj\n";
        isShowing = false;
    };
    for (const PlacedGlyph& placed : text.glyphs) {
        const Glyph& glyph = *placed.glyph;
        if (!glyph.filled || glyph.box().empty)
            continue;
        const PdfFonts::Code code = m_fonts.codeOf(glyph);
        if (code.font != font) {
            endShow();
            m_content << "/F" << code.font << " 1 Tf\n";
            font = code.font;
        }
        if (!isShowing || std::abs(placed.x - expected) > 1e-3 * std::abs(text.yy)) {
            endShow();
            const AcGePoint3d origin = run.at(placed.x, placed.y);
            m_content << across.x << ' ' << across.y << ' ' << up.x << ' ' << up.y << ' '
                      << SheetMap::rounded(m_map.x(origin.x)) << ' ' << SheetMap::rounded(m_map.y(origin.y))
                      << " Tm<";
            isShowing = true;
        }
        constexpr std::string_view digits = "0123456789ABCDEF";
        m_content << digits[code.character >> 4] << digits[code.character & 15];
        expected = placed.x + text.xx * glyph.advance;
    }
    endShow();
    m_content << "ET\n";
}

void PdfSink::strokedGlyph(const GlyphRun& run, const PlacedGlyph& placed) {
    const auto points = placed.glyph->polylinePoints();
    std::size_t start = 0;
    for (const std::size_t end : placed.glyph->contourEnds()) {
        for (std::size_t i = start; i < end; ++i)
            point(m_map(run.at(placed, points[i])), i == start ? 'm' : 'l');
        if (end - start == 1)
            point(m_map(run.at(placed, points[start])), 'l');
        m_pathPoints += end - start;
        start = end;
    }
}

void PdfSink::pushClip(std::span<const AcGePoint3d> polygon) {
    strokePath();
    m_content << "q\n";
    bool isFirst = true;
    for (const AcGePoint3d& corner : polygon) {
        point(m_map(corner), isFirst ? 'm' : 'l');
        isFirst = false;
    }
    m_content << (polygon.empty() ? "0 0 0 0 re W n\n" : "W* n\n");
}

void PdfSink::popClip() {
    strokePath();
    m_content << "Q\n";
    m_strokeColor.reset();
    m_fillColor.reset();
    m_strokeWidth.reset();
}

bool PdfSink::finish() {
    strokePath();
    m_contents.push_back(m_file.writeStream(m_content.take()));
    const std::string fonts = m_fonts.write(m_file);
    const int catalog = m_file.reserve(), pages = m_file.reserve(), page = m_file.reserve();
    TextBuffer text;
    text << "<</Type/Page/Parent " << pages << " 0 R/MediaBox[0 0 " << m_sheet.width * pointsPerMillimetre
         << ' ' << m_sheet.height * pointsPerMillimetre << "]/Resources<</Font" << fonts << ">>/Contents[";
    for (const int content : m_contents)
        text << content << " 0 R ";
    text << "]>>";
    m_file.writeObject(page, text.text());
    text.clear();
    text << "<</Type/Pages/Count 1/Kids[" << page << " 0 R]>>";
    m_file.writeObject(pages, text.text());
    text.clear();
    text << "<</Type/Catalog/Pages " << pages << " 0 R>>";
    m_file.writeObject(catalog, text.text());
    return m_file.commit(catalog);
}

} // namespace host
