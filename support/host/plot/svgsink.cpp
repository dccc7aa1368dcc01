#include "host/plot/svgsink.h"

#include "host/gi/looks.h"
#include "host/rx/text.h"

#include <array>
#include <cmath>

namespace host {

namespace {

constexpr double stepsPerMillimetre = 200;
constexpr double glyphUnits = 1000; // a text height
constexpr std::size_t longestPath = 2000, bufferSize = 256 * 1024;

} // namespace

SvgSink::SvgSink(const std::filesystem::path& path, const Sheet& sheet, const PaperLook& look)
    : mMap(sheet, stepsPerMillimetre, true), mLook(look), mFile(path, AtomicFile::Backup::none) {
    const std::int64_t width = std::llround(sheet.width * stepsPerMillimetre);
    const std::int64_t height = std::llround(sheet.height * stepsPerMillimetre);
    mText << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
             "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\""
          << sheet.width << "mm\" height=\"" << sheet.height << "mm\" viewBox=\"0 0 " << width << ' '
          << height << "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n<rect width=\"" << width
          << "\" height=\"" << height << "\" fill=\"#fff\"/>\n";
}

void SvgSink::color(std::uint32_t rgb) {
    constexpr std::string_view digits = "0123456789abcdef";
    mText << '#';
    for (int shift = 20; shift >= 0; shift -= 4)
        mText << digits[rgb >> shift & 15];
}

void SvgSink::point(char command, const SheetPoint& point) {
    mText << command << point.x << ' ' << point.y;
}

void SvgSink::endGroups() {
    endPath();
    for (; mOpenGroups > 0; --mOpenGroups)
        mText << "</g>\n";
    mLayer.reset();
}

// A layer's group is outermost, so that programs find it; what cuts its content stands inside.
void SvgSink::setLayer(const Pen& pen) {
    const std::wstring& name = pen.layer ? pen.layer->name : LayerLook::zero().name;
    if (mLayer == name)
        return;
    endGroups();
    mLayer = name;
    mText << "<g inkscape:groupmode=\"layer\" inkscape:label=\"";
    for (const char character : toUtf8(name)) {
        constexpr std::string_view special = "&<\"";
        constexpr std::array<std::string_view, special.size()> written{"&amp;", "&lt;", "&quot;"};
        const std::size_t index = special.find(character);
        if (index != special.npos)
            mText << written[index];
        else if (static_cast<unsigned char>(character) >= ' ')
            mText << character;
    }
    mText << "\">\n";
    for (const int clip : mOpenClips)
        mText << "<g clip-path=\"url(#c" << clip << ")\">\n";
    mOpenGroups = 1 + mOpenClips.size();
}

void SvgSink::setStroke(const Pen& pen) {
    setLayer(pen);
    const std::uint32_t rgb = paperColor(pen, mLook);
    const std::int64_t width = std::llround(paperWidth(pen, mLook) * stepsPerMillimetre);
    if (mPathPoints > 0 && rgb == mStrokeColor && width == mStrokeWidth && mPathPoints < longestPath)
        return;
    endPath();
    mText << "<path fill=\"none\" stroke=\"";
    color(rgb);
    mText << "\" stroke-width=\"" << width << "\" d=\"";
    mStrokeColor = rgb;
    mStrokeWidth = width;
}

void SvgSink::endPath() {
    if (mPathPoints > 0)
        mText << "\"/>\n";
    mPathPoints = 0;
    spill();
}

void SvgSink::spill() {
    if (mText.size() < bufferSize)
        return;
    mFile.write(mText.text());
    mText.clear();
}

void SvgSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setStroke(pen);
    SheetPoint last = mMap(points.front());
    point('M', last);
    bool isDot = true;
    for (const AcGePoint3d& world : points.subspan(1)) {
        const SheetPoint next = mMap(world);
        if (next == last)
            continue;
        point('L', next);
        last = next;
        isDot = false;
    }
    if (isDot)
        mText << "h1"; // some viewers leave a line without length out
    mPathPoints += points.size();
}

void SvgSink::path(const WorldPath& path, const Pen& pen) {
    setStroke(pen);
    const AcGePoint3d* next = path.points.data();
    for (const WorldPath::Verb verb : path.verbs) {
        if (verb == WorldPath::Verb::curve) {
            point('C', mMap(*next++));
            point(' ', mMap(*next++));
            point(' ', mMap(*next++));
        } else {
            point(verb == WorldPath::Verb::move ? 'M' : 'L', mMap(*next++));
        }
    }
    mPathPoints += path.points.size();
}

void SvgSink::area(const Area& area, const Pen& pen) {
    setLayer(pen);
    endPath();
    mText << "<path fill=\"";
    color(paperColor(pen, mLook));
    mText << (area.rule == FillRule::evenOdd ? "\" fill-rule=\"evenodd\" d=\"" : "\" d=\"");
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        for (std::size_t i = start; i < end; ++i)
            point(i == start ? 'M' : 'L', mMap(area.points[i]));
        mText << 'z';
        start = end;
    }
    mText << "\"/>\n";
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
                point(i == start ? 'M' : 'L', mMap(run.at(placed, points[i])));
            if (end - start == 1)
                mText << "h1";
            mPathPoints += end - start;
            start = end;
        }
    }
    for (const TextRule& rule : run.text.rules)
        polyline(std::array{run.at(rule.startX, rule.startY), run.at(rule.endX, rule.endY)}, pen);
    if (!hasFill)
        return;
    setLayer(pen);
    endPath();
    for (const PlacedGlyph& placed : run.text.glyphs)
        if (placed.glyph->filled && !placed.glyph->box().empty)
            symbol(*placed.glyph);
    mText << "<g fill=\"";
    color(paperColor(pen, mLook));
    mText << "\">";
    for (const PlacedGlyph& placed : run.text.glyphs)
        if (placed.glyph->filled && !placed.glyph->box().empty)
            filledGlyph(run, placed);
    mText << "</g>\n";
    spill();
}

void SvgSink::filledGlyph(const GlyphRun& run, const PlacedGlyph& placed) {
    const double scale = mMap.scale() / glyphUnits, sign = mMap.sign();
    const AcGeVector3d across = run.xAxis * (run.text.xx * scale);
    const AcGeVector3d up = (run.xAxis * run.text.xy + run.yAxis * run.text.yy) * scale;
    const SheetPoint origin = mMap(run.at(placed.x, placed.y));
    if (!std::isfinite(across.lengthSqrd() + up.lengthSqrd()))
        return;
    mText << "<use href=\"#g" << placed.glyph->fontId << '_' << placed.glyph->glyphId
          << "\" transform=\"matrix(" << across.x << ' ' << across.y * sign << ' ' << up.x << ' '
          << up.y * sign << ' ' << origin.x << ' ' << origin.y << ")\"/>";
}

void SvgSink::symbol(const Glyph& glyph) {
    if (!mSymbols.insert(&glyph).second)
        return;
    mText << "<defs><path id=\"g" << glyph.fontId << '_' << glyph.glyphId << "\" d=\"";
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
    mText << "z\"/></defs>\n";
}

void SvgSink::pushClip(std::span<const AcGePoint3d> polygon) {
    endGroups();
    mText << "<clipPath id=\"c" << ++mClips << "\"><path clip-rule=\"evenodd\" d=\"";
    for (std::size_t i = 0; i < polygon.size(); ++i)
        point(i == 0 ? 'M' : 'L', mMap(polygon[i]));
    mText << "\"/></clipPath>\n";
    mOpenClips.push_back(mClips);
}

void SvgSink::popClip() {
    if (mOpenClips.empty())
        return;
    endGroups();
    mOpenClips.pop_back();
}

bool SvgSink::finish() {
    endGroups();
    mText << "</svg>\n";
    mFile.write(mText.text());
    mText.clear();
    return mFile.commit();
}

} // namespace host
