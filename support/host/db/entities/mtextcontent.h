// The contents of a multi-line text: its inline codes read into pieces of one look each, paragraph by
// paragraph. Knows nothing of widths and places.
#pragma once

#include "host/gi/gi.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// How the characters of a piece look. Height in drawing units, oblique angle in radians.
struct MTextLook {
    TextFormat format;
    /// Height of a stack's neighbours on the stack: 0 at its bottom, 1 at its middle, 2 at its top.
    int stackAlignment = 0;
    bool hasColor = false; ///< else the entity's
    AcCmEntityColor color;

    bool operator==(const MTextLook& other) const;
};

enum class MTextJustification { byAttachment, left, center, right, justified, distributed };

struct MTextTab {
    enum class Kind { left, center, right, decimal };
    double position = 0.0; ///< from the left edge of the column
    Kind kind = Kind::left;
};

/// Lengths in drawing units.
struct MTextParagraphFormat {
    double firstIndent = 0.0; ///< of the first line, beyond the left margin
    double left = 0.0;
    double right = 0.0;
    double before = 0.0;
    double after = 0.0;
    MTextJustification justification = MTextJustification::byAttachment;
    std::vector<MTextTab> tabs;
    /// Line spacing of the paragraph; 0: the text's own.
    double spacingFactor = 0.0;
    bool exactSpacing = false;
};

struct MTextPiece {
    enum class Kind { text, stack, tab };
    Kind kind = Kind::text;
    std::wstring text;   ///< of a stack what stands above
    std::wstring below;  ///< of a stack
    wchar_t divider = 0; ///< of a stack: '/' a bar, '#' a slanted bar, '^' none
    MTextLook look;
};

struct MTextParagraph {
    enum class End { paragraph, column, belowDimensionLine };
    MTextParagraphFormat format;
    std::vector<MTextPiece> pieces;
    MTextLook look; ///< where the paragraph ends: the height of an empty one
    End end = End::paragraph;
};

/// Codes that are not understood are left out like those that are; a brace or a backslash after a backslash
/// is itself. There is always at least one paragraph.
std::vector<MTextParagraph> parseMText(std::wstring_view contents, const MTextLook& start);

/// The characters alone: paragraphs end with a line feed, stacks are "a/b".
std::wstring plainMText(std::wstring_view contents);

/// The contents with the heights that its codes give in drawing units multiplied by a factor.
std::wstring scaledMText(std::wstring_view contents, double factor);

} // namespace host
