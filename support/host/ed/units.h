// Typed numbers, angles and points in the units of a drawing.
#pragma once

#include "host/db/unitformat.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A distance in any of the forms: 12.5, 1.2E3, 3/4, 1-3/4, and with feet units 5'6-1/2". Nothing for other
/// text.
std::optional<double> parseDistance(std::wstring_view text, LinearUnits units);
/// A plain number: decimal, scientific or a fraction.
std::optional<double> parseReal(std::wstring_view text);
std::optional<long long> parseInteger(std::wstring_view text);
/// The size of an angle in radians: 45, 45d30'15", 50g, 1.57r, N45dE; a bare number is in `units`. With
/// `relativeToBase` false ANGBASE is not added.
std::optional<double> parseAngle(std::wstring_view text, const UnitFormat& format, bool relativeToBase);

/// Typed coordinates before the surroundings (last point, UCS, direction) are known.
struct TypedPoint {
    enum class Form { cartesian, polar, cylindrical, spherical, lastPoint };
    Form form = Form::cartesian;
    bool relative = false; ///< @
    bool world = false;    ///< *
    bool hasZ = false;
    double first = 0.0;  ///< x, or the distance
    double second = 0.0; ///< y, or the angle in radians from X
    double third = 0.0;  ///< z, or the angle from the plane
};
/// Nothing when the text is no point.
std::optional<TypedPoint> parsePoint(std::wstring_view text, const UnitFormat& format);
/// The point in UCS coordinates; `last` is in UCS coordinates too. A world point is returned as typed.
AcGePoint3d resolvePoint(const TypedPoint& typed, const AcGePoint3d& last, double elevation);

} // namespace host
