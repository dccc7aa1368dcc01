// Draws primitives into a one-page PDF file: lines and areas as paths, filled glyphs as characters of fonts
// made of their outlines, so that each outline is stored once and texts can be searched. Layers are optional
// content: viewers can switch them off.
#pragma once

#include "host/plot/pdffile.h"
#include "host/plot/pdffonts.h"
#include "host/plot/sheet.h"
#include "host/plot/textbuffer.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace host {

class PdfSink final : public PrimitiveSink {
public:
    PdfSink(const std::filesystem::path& path, const Sheet& sheet, const PaperLook& look);

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void glyphs(const GlyphRun& run, const Pen& pen) override;
    bool wantsCurves() const override { return true; }
    void path(const WorldPath& path, const Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

    // Writes the rest of the file; false on a write error, told by errorText.
    bool finish();
    std::wstring errorText() const { return mFile.errorText(); }

private:
    void setLayer(const Pen& pen);
    void endLayer();
    std::string writeLayers(); // the catalog's entry for them
    void setStroke(const Pen& pen);
    void setFill(const Pen& pen);
    void color(std::uint32_t rgb, std::string_view operation);
    void strokePath(); // strokes what has been collected
    void spill();      // writes the content so far as a stream when it is long
    void point(const SheetPoint& point, char operation);
    // Where the coordinates of a path with so many points begin, from here to the end: the place or the
    // sheet's corner.
    SheetPoint beginMoved(const SheetPoint& place, std::size_t count);
    void endMoved();
    void filledGlyphs(const GlyphRun& run);
    void strokedGlyphs(const GlyphRun& run);
    template <class At>
    void strokedGlyph(const Glyph& glyph, const At& at);

    Sheet mSheet;
    SheetMap mMap;
    PaperLook mLook;
    PdfFile mFile;
    PdfFonts mFonts;
    TextBuffer mContent;
    std::vector<int> mContents;  // streams written
    std::size_t mPathPoints = 0; // collected and not yet stroked
    bool mIsMoved = false;
    std::optional<std::uint32_t> mStrokeColor, mFillColor;
    std::optional<std::int64_t> mStrokeWidth;
    std::unordered_map<std::wstring, std::size_t> mLayerNumbers; // by name
    std::vector<int> mLayerObjects;                              // in the order of their numbers
    const LayerLook* mLayer = nullptr;                           // whose content is being written
};

} // namespace host
