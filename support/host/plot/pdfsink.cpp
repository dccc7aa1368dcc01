#include "host/plot/pdfsink.h"

#include "host/gi/looks.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

namespace host {

namespace {

constexpr double stepsPerMillimetre = 100; // 10 micrometres: short whole numbers, finer than printers
constexpr double pointsPerMillimetre = 72 / 25.4;
constexpr std::size_t longestPath = 2000;      // points; longer ones are slow in some viewers
constexpr std::size_t streamSize = 512 * 1024; // bytes of content kept in memory

} // namespace

PdfSink::PdfSink(const std::filesystem::path& path, const Sheet& sheet, const PaperLook& look)
    : mSheet(sheet), mMap(sheet, stepsPerMillimetre, false), mLook(look), mFile(path) {
    char step[32]; // exact over the longest sheet
    std::snprintf(step, sizeof step, "%.10f", pointsPerMillimetre / stepsPerMillimetre);
    mContent << step << " 0 0 " << step << " 0 0 cm 1 J 1 j\n";
}

void PdfSink::point(const SheetPoint& point, char operation) {
    mContent.putPoint(static_cast<std::int32_t>(point.x), static_cast<std::int32_t>(point.y), operation);
}

void PdfSink::strokePath() {
    if (mPathPoints > 0)
        mContent << "S\n";
    mPathPoints = 0;
}

void PdfSink::spill() {
    if (mContent.size() < streamSize)
        return;
    strokePath();
    endLayer(); // a stream ends the content that it begins
    mContents.push_back(mFile.writeStream(mContent.take()));
    mContent.reuse(mFile.takeMemory());
}

void PdfSink::color(std::uint32_t rgb, std::string_view operation) {
    static const std::array<std::string, 256> shares = [] {
        std::array<std::string, 256> texts;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            TextBuffer text;
            text << std::round(static_cast<double>(i) / 255.0 * 1000) / 1000;
            texts[i] = text.text();
        }
        return texts;
    }();
    mContent << shares[rgb >> 16 & 0xFF] << ' ' << shares[rgb >> 8 & 0xFF] << ' ' << shares[rgb & 0xFF] << ' '
             << operation << '\n';
}

void PdfSink::setLayer(const Pen& pen) {
    if (!pen.layer || mLayer == pen.layer)
        return;
    strokePath();
    endLayer();
    mLayer = pen.layer;
    const auto [entry, isNew] = mLayerNumbers.try_emplace(pen.layer->name, mLayerNumbers.size());
    mContent << "/OC/L" << entry->second << " BDC\n";
}

void PdfSink::endLayer() {
    if (mLayer)
        mContent << "EMC\n";
    mLayer = nullptr;
}

void PdfSink::setStroke(const Pen& pen) {
    setLayer(pen);
    const std::uint32_t rgb = paperColor(pen, mLook);
    const std::int64_t width = std::llround(paperWidth(pen, mLook) * stepsPerMillimetre);
    if (mStrokeColor != rgb) {
        strokePath();
        color(rgb, "RG");
        mStrokeColor = rgb;
    }
    if (mStrokeWidth != width) {
        strokePath();
        mContent << width << " w\n";
        mStrokeWidth = width;
    }
}

void PdfSink::setFill(const Pen& pen) {
    setLayer(pen);
    strokePath();
    const std::uint32_t rgb = paperColor(pen, mLook);
    if (mFillColor != rgb) {
        color(rgb, "rg");
        mFillColor = rgb;
    }
}

// Paths and texts of many points are told from a place of their own: shorter numbers, less to write and to
// pack.
SheetPoint PdfSink::beginMoved(const SheetPoint& place, std::size_t count) {
    constexpr std::size_t manyPoints = 12;
    mIsMoved = count >= manyPoints;
    if (!mIsMoved)
        return {};
    strokePath();
    mContent << "q 1 0 0 1 " << place.x << ' ' << place.y << " cm\n";
    return place;
}

void PdfSink::endMoved() {
    if (mIsMoved) {
        strokePath();
        mContent << "Q\n";
    } else if (mPathPoints > longestPath) {
        strokePath();
    }
    mIsMoved = false;
}

void PdfSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setStroke(pen);
    SheetPoint last = mMap(points.front());
    const SheetPoint place = beginMoved(last, points.size());
    point(last - place, 'm');
    ++mPathPoints;
    bool isDot = true;
    for (const AcGePoint3d& world : points.subspan(1)) {
        const SheetPoint next = mMap(world);
        if (next == last)
            continue;
        point(next - place, 'l');
        ++mPathPoints;
        last = next;
        isDot = false;
    }
    if (isDot) // some viewers leave a line without length out
        point(SheetPoint{last.x + 1, last.y} - place, 'l');
    endMoved();
    spill();
}

void PdfSink::path(const WorldPath& path, const Pen& pen) {
    setStroke(pen);
    const AcGePoint3d* next = path.points.data();
    const SheetPoint place = beginMoved(mMap(*next), path.points.size());
    for (const WorldPath::Verb verb : path.verbs) {
        if (verb == WorldPath::Verb::curve) {
            for (int i = 0; i < 2; ++i) {
                const SheetPoint control = mMap(*next++) - place;
                mContent << control.x << ' ' << control.y << ' ';
            }
            point(mMap(*next++) - place, 'c');
        } else {
            point(mMap(*next++) - place, verb == WorldPath::Verb::move ? 'm' : 'l');
        }
    }
    mPathPoints += path.points.size();
    endMoved();
    spill();
}

void PdfSink::area(const Area& area, const Pen& pen) {
    setFill(pen);
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        SheetPoint last;
        for (std::size_t i = start; i < end; ++i) {
            const SheetPoint next = mMap(area.points[i]);
            if (i > start && next == last)
                continue;
            point(next, i == start ? 'm' : 'l');
            last = next;
        }
        start = end;
    }
    mContent << (area.rule == FillRule::evenOdd ? "f*\n" : "f\n");
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
    if (hasStrokes) {
        setStroke(pen);
        strokedGlyphs(run);
    }
    for (const TextRule& rule : run.text.rules) {
        point(mMap(run.at(rule.startX, rule.startY)), 'm');
        point(mMap(run.at(rule.endX, rule.endY)), 'l');
        mPathPoints += 2;
    }
    spill();
}

// Characters that follow each other as their advances say are shown together; the text matrix is set anew
// where they do not.
void PdfSink::filledGlyphs(const GlyphRun& run) {
    const ShapedText& text = run.text;
    const double scale = mMap.scale();
    const auto across = run.xAxis * (text.xx * scale),
               up = (run.xAxis * text.xy + run.yAxis * text.yy) * scale;
    if (!std::isfinite(across.lengthSqrd() + up.lengthSqrd()))
        return;
    mContent << "BT\n";
    std::size_t font = static_cast<std::size_t>(-1);
    double expected = 0;
    bool isShowing = false;
    const auto endShow = [&] {
        if (isShowing)
            mContent << ">Tj\n";
        isShowing = false;
    };
    for (const PlacedGlyph& placed : text.glyphs) {
        const Glyph& glyph = *placed.glyph;
        if (!glyph.filled || glyph.box().empty)
            continue;
        const PdfFonts::Code code = mFonts.codeOf(glyph);
        if (code.font != font) {
            endShow();
            mContent << "/F" << code.font << " 1 Tf\n";
            font = code.font;
        }
        if (!isShowing || std::abs(placed.x - expected) > 1e-3 * std::abs(text.yy)) {
            endShow();
            const AcGePoint3d origin = run.at(placed.x, placed.y);
            mContent << across.x << ' ' << across.y << ' ' << up.x << ' ' << up.y << ' '
                     << SheetMap::rounded(mMap.x(origin.x)) << ' ' << SheetMap::rounded(mMap.y(origin.y))
                     << " Tm<";
            isShowing = true;
        }
        constexpr std::string_view digits = "0123456789ABCDEF";
        mContent << digits[code.character >> 4] << digits[code.character & 15];
        expected = placed.x + text.xx * glyph.advance;
    }
    endShow();
    mContent << "ET\n";
}

template <class At>
void PdfSink::strokedGlyph(const Glyph& glyph, const At& at) {
    const auto points = glyph.polylinePoints();
    std::size_t start = 0;
    for (const std::size_t end : glyph.contourEnds()) {
        SheetPoint last = at(points[start]);
        point(last, 'm');
        bool isDot = true;
        for (std::size_t i = start + 1; i < end; ++i) {
            const SheetPoint next = at(points[i]);
            if (next == last)
                continue;
            point(next, 'l');
            last = next;
            isDot = false;
        }
        if (isDot) // some viewers leave a line without length out
            point({last.x + 1, last.y}, 'l');
        start = end;
    }
}

void PdfSink::strokedGlyphs(const GlyphRun& run) {
    std::size_t count = 0;
    for (const PlacedGlyph& placed : run.text.glyphs)
        count += placed.glyph->filled ? 0 : placed.glyph->polylinePoints().size();
    const SheetPoint start = mMap(run.origin), place = start - beginMoved(start, count);
    const double scale = mMap.scale();
    const AcGeVector3d along = run.xAxis * scale, up = run.yAxis * scale;
    const AcGeVector3d across = along * run.text.xx, rise = along * run.text.xy + up * run.text.yy;
    for (const PlacedGlyph& placed : run.text.glyphs) {
        if (placed.glyph->filled)
            continue;
        const AcGeVector3d origin = along * placed.x + up * placed.y;
        const auto at = [&](const GlyphPoint& point) {
            return SheetPoint{place.x + SheetMap::rounded(origin.x + across.x * point.x + rise.x * point.y),
                              place.y + SheetMap::rounded(origin.y + across.y * point.x + rise.y * point.y)};
        };
        strokedGlyph(*placed.glyph, at);
    }
    mPathPoints += count;
    endMoved();
}

void PdfSink::pushClip(std::span<const AcGePoint3d> polygon) {
    strokePath();
    endLayer();
    mContent << "q\n";
    bool isFirst = true;
    for (const AcGePoint3d& corner : polygon) {
        point(mMap(corner), isFirst ? 'm' : 'l');
        isFirst = false;
    }
    mContent << (polygon.empty() ? "0 0 0 0 re W n\n" : "W* n\n");
}

void PdfSink::popClip() {
    strokePath();
    endLayer();
    mContent << "Q\n";
    mStrokeColor.reset();
    mFillColor.reset();
    mStrokeWidth.reset();
}

// Writes the layers' groups; in the order of their names, as lists of layers are.
std::string PdfSink::writeLayers() {
    if (mLayerNumbers.empty())
        return {};
    mLayerObjects.resize(mLayerNumbers.size());
    TextBuffer groups;
    for (const auto& [name, number] : std::map(mLayerNumbers.begin(), mLayerNumbers.end())) {
        const int object = mLayerObjects[number] = mFile.reserve();
        TextBuffer text;
        text << "<</Type/OCG/Name<FEFF";
        constexpr std::string_view digits = "0123456789ABCDEF";
        const std::string units = toUtf16Le(name);
        for (std::size_t i = 0; i + 1 < units.size(); i += 2)
            for (const char half : {units[i + 1], units[i]})
                text << digits[static_cast<unsigned char>(half) >> 4] << digits[half & 15];
        text << ">>>";
        mFile.writeObject(object, text.text());
        groups << object << " 0 R ";
    }
    TextBuffer entry;
    entry << "/OCProperties<</OCGs[" << groups.text() << "]/D<</Order[" << groups.text() << "]>>>>";
    return entry.take();
}

bool PdfSink::finish() {
    strokePath();
    endLayer();
    mContents.push_back(mFile.writeStream(mContent.take()));
    const std::string fonts = mFonts.write(mFile), layers = writeLayers();
    const int catalog = mFile.reserve(), pages = mFile.reserve(), page = mFile.reserve();
    TextBuffer text;
    text << "<</Type/Page/Parent " << pages << " 0 R/MediaBox[0 0 " << mSheet.width * pointsPerMillimetre
         << ' ' << mSheet.height * pointsPerMillimetre << "]/Resources<</Font" << fonts << "/Properties<<";
    for (std::size_t i = 0; i < mLayerObjects.size(); ++i)
        text << "/L" << i << ' ' << mLayerObjects[i] << " 0 R";
    text << ">>>>/Contents[";
    for (const int content : mContents)
        text << content << " 0 R ";
    text << "]>>";
    mFile.writeObject(page, text.text());
    text.clear();
    text << "<</Type/Pages/Count 1/Kids[" << page << " 0 R]>>";
    mFile.writeObject(pages, text.text());
    text.clear();
    text << "<</Type/Catalog/Pages " << pages << " 0 R" << layers << ">>";
    mFile.writeObject(catalog, text.text());
    return mFile.commit(catalog);
}

} // namespace host
