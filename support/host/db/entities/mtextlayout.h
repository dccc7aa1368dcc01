// Layout of multi-line texts: pieces of text broken into lines and columns and put in their places. What is
// measured and what is drawn both come from here.
#pragma once

#include "host/db/entities/mtextcontent.h"

namespace host {

/// Text coordinates: drawing units, origin at the insertion point, x along the base lines, y up. The lines of
/// vertical text run down, the first at the right.
struct MTextRun {
    std::wstring text;
    TextFormat format;
    bool hasColor = false;
    AcCmEntityColor color;
    double x = 0.0; ///< start of the base line; of vertical text top of the line's middle
    double y = 0.0;
    double advance = 0.0;
};
/// The bar of a fraction.
struct MTextBar {
    AcGePoint2d start, end;
    bool hasColor = false;
    AcCmEntityColor color;
};

struct MTextColumns {
    double width = 0.0;
    double gutter = 0.0;
    int count = 0;               ///< 0: as many as it takes
    double height = 0.0;         ///< of every column without one of its own; 0: no limit
    std::vector<double> heights; ///< of single columns
    bool rightToLeft = false;
};

struct MTextSettings {
    MTextLook look;     ///< the format tells whether the text is vertical: it has no columns then
    double width = 0.0; ///< of the text's frame, along its lines; 0: lines end only where paragraphs do
    int attachment = 1; ///< 1 to 9: top left to bottom right
    double spacingFactor = 1.0;
    bool exactSpacing = false;
    MTextColumns columns; ///< with a width of 0 there are none
};

struct MTextLayout {
    std::vector<MTextRun> runs;
    std::vector<MTextBar> bars;
    AcGePoint2d lowerLeft, upperRight; ///< frame: the given width, or that of the longest line
    double actualWidth = 0.0;          ///< of the longest line, blanks at its end aside
    double actualHeight = 0.0;         ///< from the top of the first line to the base of the last
    GlyphBox ink;                      ///< of everything drawn
    int lineCount = 0;
    /// Base line below which what follows \X stands; nothing when there is no \X.
    bool isSplit = false;
    double splitTop = 0.0;    ///< base of the last line above the split
    double splitBottom = 0.0; ///< top of the first line below it
};

MTextLayout layOutMText(std::wstring_view contents, const MTextSettings& settings);

/// Whether a line may end between two characters, neither of them a blank.
bool mayBreakBetween(wchar_t before, wchar_t after);

} // namespace host
