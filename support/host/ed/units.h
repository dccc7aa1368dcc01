// Numbers, angles and points as text in the units of a drawing, in both directions.
#pragma once

#include "host/ge/ge.h"

#include <optional>
#include <string>
#include <string_view>

class AcDbDatabase;

namespace host {

enum class LinearUnits { scientific = 1, decimal, engineering, architectural, fractional };
enum class AngularUnits { degrees = 0, degreesMinutesSeconds, gradians, radians, surveyor };

/// Bits of UNITMODE and DIMZIN that matter for text.
struct UnitFormat {
    LinearUnits linear = LinearUnits::decimal;
    int linearPrecision = 4;
    AngularUnits angular = AngularUnits::degrees;
    int angularPrecision = 0;
    double angleBase = 0.0;  ///< direction of angle 0, radians counterclockwise from X
    bool clockwise = false;  ///< angles grow clockwise
    bool inputStyle = false; ///< UNITMODE 1: feet, inches and surveyor's angles without blanks
    int zeroSuppression = 0; ///< DIMZIN

    /// As the drawing has them; defaults without one.
    static UnitFormat of(const AcDbDatabase* database);
};

std::wstring formatDistance(double value, const UnitFormat& format);
/// An angle in radians from the X axis.
std::wstring formatAngle(double radians, const UnitFormat& format);
/// x,y or x,y,z in the drawing's units.
std::wstring formatPoint(const AcGePoint3d& point, const UnitFormat& format, bool withZ = true);

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
