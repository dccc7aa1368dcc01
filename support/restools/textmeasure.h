// How large a text is when it is drawn.
#pragma once

#include "host/arx.h"

/// Drawing units along the text's base line, and across it.
struct TextExtent {
    double width = 0.0;
    double height = 0.0;
};

/// The extent of a string in the style, width factor and obliquing of a text, at a height.
QDV_EXPORT TextExtent MeasureText(const AcDbText& text, const ACHAR* string, double height);
/// That of the text's own string at its own height.
QDV_EXPORT TextExtent MeasureText(const AcDbText& text);

/// The direction of the text's base line in plan.
AcGeVector3d BaselineDirection(const AcDbText& text);
