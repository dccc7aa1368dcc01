// Numbers, angles and points as text in the units of a drawing.
#pragma once

#include "host/ge/ge.h"

#include <string>

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

} // namespace host
