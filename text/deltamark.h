// Numbered labels, one after another: command V7_DeltaMark.
#pragma once

#include "host/arx.h"

/// Asks for the series in a dialog and places its labels.
void PlaceDeltaMarks();

namespace deltamark {

/// What the labels of a series say, and how they are aligned.
struct Series {
    CString prefix;
    CString postfix;
    int number = 1; ///< of the next label
    int step = 1;
    bool countsDown = false;
    int alignment = 0; ///< index in the list of alignments
};

CString LabelOf(const Series& series);
void GoOn(Series& series);

struct TextModes {
    AcDb::TextHorzMode horizontal = AcDb::kTextLeft;
    AcDb::TextVertMode vertical = AcDb::kTextBase;
};

constexpr int alignmentCount = 15;
constexpr int leftAligned = 0, alignedBetween = 3, middleOfText = 4, fittedBetween = 5;
/// As the dialog lists it.
const ACHAR* AlignmentName(int alignment);
TextModes ModesOf(int alignment);
/// Whether a text so aligned stands between two points.
bool IsBetweenPoints(int alignment);

/// Places labels where the user points until he leaves; `text` is what they look like and is changed. The
/// series goes on with the next number. Labels already placed stay whatever ends it.
void PlaceLabels(Series& series, AcDbText& text);

} // namespace deltamark
