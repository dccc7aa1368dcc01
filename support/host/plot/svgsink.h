// Draws primitives into an SVG file: one path element for each stretch of lines with the same pen, filled
// glyphs as uses of symbols that are defined once. Neighbours in the drawing order that lie on one layer are
// a group that Inkscape knows as a layer.
#pragma once

#include "host/plot/sheet.h"
#include "host/plot/textbuffer.h"
#include "host/win/fileio.h"

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace host {

class SvgSink final : public PrimitiveSink {
public:
    SvgSink(const std::filesystem::path& path, const Sheet& sheet, const PaperLook& look);

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void glyphs(const GlyphRun& run, const Pen& pen) override;
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

    bool finish();
    std::wstring errorText() const { return mFile.errorText(); }

private:
    void setLayer(const Pen& pen);
    void endGroups();
    void setStroke(const Pen& pen);
    void endPath();
    void color(std::uint32_t rgb);
    void point(char command, const SheetPoint& point);
    void filledGlyph(const GlyphRun& run, const PlacedGlyph& placed);
    void symbol(const Glyph& glyph);
    void spill();

    SheetMap mMap;
    PaperLook mLook;
    AtomicFile mFile;
    TextBuffer mText;
    std::unordered_set<const Glyph*> mSymbols; // defined already
    std::size_t mPathPoints = 0;               // of the path element being written; 0: none is
    std::uint32_t mStrokeColor = 0;
    std::int64_t mStrokeWidth = 0;
    int mClips = 0;              // defined
    std::vector<int> mOpenClips; // their numbers, the outermost first
    std::size_t mOpenGroups = 0; // of the layer and of its clips
    std::optional<std::wstring> mLayer;
};

} // namespace host
