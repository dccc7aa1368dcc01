// What a dimension says: its measurement as text with units, tolerances, alternate units, prefix and suffix.
#pragma once

#include "host/db/dimvariables.h"

#include <string>

namespace host {

enum class DimMeasure { length, angle };

/// How the measurement of a dimension is made text.
struct DimTextRequest {
    DimMeasure measure = DimMeasure::length;
    double value = 0.0;     ///< in drawing units or radians, before DIMLFAC
    bool inLayout = false;  ///< a negative DIMLFAC counts in layouts only
    std::wstring_view sign; ///< what stands in front when there is no prefix: R, the diameter sign
    std::wstring_view text; ///< the user's: <> is the measurement, [] the alternate; empty: <>
};

/// Contents of a multi-line text; empty when the dimension shows none (a blank as text).
std::wstring dimensionText(const DimVariables& variables, const DimTextRequest& request);
/// The measurement alone: scaled, rounded, in its units.
std::wstring dimensionNumber(const DimVariables& variables, DimMeasure measure, double value);

} // namespace host
