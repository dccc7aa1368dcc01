// Draws primitives into an SVG file: one path element for each stretch of lines with the same pen, filled
// glyphs as uses of symbols that are defined once.
#pragma once

#include "host/plot/sheet.h"
#include "host/plot/textbuffer.h"
#include "host/win/fileio.h"

#include <filesystem>
#include <unordered_set>
#include <vector>

namespace host {

class SvgSink final : public PrimitiveSink {
public:
    SvgSink(const std::filesystem::path& path, const Sheet& sheet, bool hasLineWeights);

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void glyphs(const GlyphRun& run, const Pen& pen) override;
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

    bool finish();
    std::wstring errorText() const { return m_file.errorText(); }

private:
    void setStroke(const Pen& pen);
    void endPath();
    void color(std::uint32_t rgb);
    void point(char command, const SheetPoint& point);
    void filledGlyph(const GlyphRun& run, const PlacedGlyph& placed);
    void symbol(const Glyph& glyph);
    void spill();

    SheetMap m_map;
    bool m_hasLineWeights;
    AtomicFile m_file;
    TextBuffer m_text;
    std::unordered_set<const Glyph*> m_symbols; // defined already
    std::size_t m_pathPoints = 0;               // of the path element being written; 0: none is
    std::uint32_t m_strokeColor = 0;
    std::int64_t m_strokeWidth = 0;
    int m_clips = 0, m_openClips = 0;
};

} // namespace host
