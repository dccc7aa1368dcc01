// Where a single-line text goes and how large it is, as TEXT asks for it.
#pragma once

#include "host/commands/ask.h"

namespace host {

struct TextJustification {
    const wchar_t* keyword = L"Left";
    AcDb::TextHorzMode horizontal = AcDb::kTextLeft;
    AcDb::TextVertMode vertical = AcDb::kTextBase;
    const wchar_t* prompt = L"\n指定文字的起点: ";

    bool isPlain() const { return horizontal == AcDb::kTextLeft && vertical == AcDb::kTextBase; }
};

/// What is asked before the text itself.
struct TextPlacing {
    TextJustification justification;
    AcGePoint3d point;  ///< UCS
    AcGePoint3d second; ///< aligned and fitted text
    double height = 0.0;
    double rotation = 0.0; ///< radians against the X axis of the UCS

    bool betweenPoints() const {
        return justification.horizontal == AcDb::kTextAlign || justification.horizontal == AcDb::kTextFit;
    }
};

const AcDbTextStyleTableRecord& currentTextStyle();

/// Asks for place, justification and style, then for height and rotation as far as they are open. False when
/// cancelled.
bool askTextPlacing(TextPlacing& placing);

/// Gives a text with its content the current style and the place, and puts it into the current space.
void appendPlaced(std::unique_ptr<AcDbText> text, const TextPlacing& placing);

} // namespace host
