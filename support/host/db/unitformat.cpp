// Distances, angles and points as text.
#include "host/db/unitformat.h"

#include "host/db/db.h"
#include "host/rx/format.h"

#include <cmath>

namespace host {
namespace {

constexpr double degree = pi / 180.0;
constexpr double inchesPerFoot = 12.0;

// DIMZIN: the lowest two bits say which of zero feet and zero inches are shown.
constexpr int suppressLeadingZero = 4;
constexpr int suppressTrailingZeros = 8;
bool showsZeroFeet(int zeroSuppression) {
    return (zeroSuppression & 3) == 1 || (zeroSuppression & 3) == 2;
}
bool showsZeroInches(int zeroSuppression) {
    return (zeroSuppression & 3) == 1 || (zeroSuppression & 3) == 3;
}

int clampPrecision(int precision) {
    return std::clamp(precision, 0, 15);
}

bool isZeroText(std::wstring_view digits) {
    return digits.find_first_of(L"123456789") == std::wstring_view::npos;
}

std::wstring decimal(double value, int precision, int zeroSuppression) {
    std::wstring text = formatted(L"%.*f", clampPrecision(precision), std::fabs(value));
    const bool negative = value < 0.0 && !isZeroText(text);
    if ((zeroSuppression & suppressTrailingZeros) != 0 && text.find(L'.') != std::wstring::npos) {
        text.erase(text.find_last_not_of(L'0') + 1);
        if (text.back() == L'.') {
            text.pop_back();
        }
    }
    if ((zeroSuppression & suppressLeadingZero) != 0 && text.size() > 1 && text.starts_with(L"0.")) {
        text.erase(0, 1);
    }
    return negative ? L"-" + text : text;
}

/// A number of units and sixteenths (or whatever 2^precision says): "3", "1/2", "3 1/2".
struct Fraction {
    double whole = 0.0;
    int numerator = 0;
    int denominator = 1;

    Fraction(double value, int precision) {
        denominator = 1 << std::clamp(precision, 0, 8);
        const double parts = std::round(value * denominator);
        whole = std::floor(parts / denominator);
        numerator = static_cast<int>(parts - whole * denominator);
        while (numerator != 0 && numerator % 2 == 0) {
            numerator /= 2;
            denominator /= 2;
        }
    }
    bool isZero() const { return whole == 0.0 && numerator == 0; }
    /// `withZero`: a zero is shown in front of a fraction alone, as behind feet.
    std::wstring text(bool inputStyle, bool withZero = false) const {
        if (numerator == 0) {
            return formatted(L"%.0f", whole);
        }
        const std::wstring part = formatted(L"%d/%d", numerator, denominator);
        return whole == 0.0 && !withZero ? part
                                         : formatted(L"%.0f", whole) + (inputStyle ? L"-" : L" ") + part;
    }
};

std::wstring joinFeetAndInches(double feet, bool inchesAreZero, const std::wstring& inches,
                               const UnitFormat& format) {
    const bool withFeet = feet != 0.0 || showsZeroFeet(format.zeroSuppression);
    const bool withInches = !inchesAreZero || !withFeet || showsZeroInches(format.zeroSuppression);
    std::wstring text;
    if (withFeet) {
        text = formatted(L"%.0f'", feet);
    }
    if (withInches) {
        text += (withFeet && !format.inputStyle ? L"-" : L"") + inches + L"\"";
    }
    return text;
}

std::wstring engineering(double value, const UnitFormat& format) {
    const double scale = std::pow(10.0, clampPrecision(format.linearPrecision));
    double feet = std::floor(value / inchesPerFoot);
    double inches = std::round((value - feet * inchesPerFoot) * scale) / scale;
    if (inches >= inchesPerFoot) {
        feet += 1.0;
        inches = 0.0;
    }
    return joinFeetAndInches(feet, inches == 0.0,
                             decimal(inches, format.linearPrecision, format.zeroSuppression), format);
}

std::wstring architectural(double value, const UnitFormat& format) {
    Fraction inches(value, format.linearPrecision);
    const double feet = std::floor(inches.whole / inchesPerFoot);
    inches.whole -= feet * inchesPerFoot;
    const bool behindFeet = feet != 0.0 || showsZeroFeet(format.zeroSuppression);
    return joinFeetAndInches(feet, inches.isZero(), inches.text(format.inputStyle, behindFeet), format);
}

std::wstring sexagesimal(double degrees, int precision) {
    const double secondsPrecision = precision > 4 ? std::pow(10.0, clampPrecision(precision - 4)) : 1.0;
    if (precision <= 0) {
        const double rounded = std::round(degrees);
        return formatted(L"%.0fd", rounded >= 360.0 ? 0.0 : rounded);
    }
    if (precision <= 2) {
        double minutes = std::round(degrees * 60.0);
        minutes = minutes >= 21600.0 ? 0.0 : minutes;
        return formatted(L"%.0fd%.0f'", std::floor(minutes / 60.0), std::fmod(minutes, 60.0));
    }
    double seconds = std::round(degrees * 3600.0 * secondsPrecision) / secondsPrecision;
    seconds = seconds >= 1296000.0 ? 0.0 : seconds;
    const double wholeMinutes = std::floor(seconds / 60.0 + 1e-12);
    return formatted(L"%.0fd%.0f'%.*f\"", std::floor(wholeMinutes / 60.0), std::fmod(wholeMinutes, 60.0),
                     std::max(0, precision - 4), std::fabs(seconds - wholeMinutes * 60.0));
}

/// A bearing: the angle from north or south towards east or west. `degrees` is counterclockwise from east.
std::wstring bearing(double degrees, int precision, bool inputStyle) {
    const bool north = degrees <= 180.0;
    const bool east = degrees <= 90.0 || degrees >= 270.0;
    const double fromMeridian = std::fabs((north ? 90.0 : 270.0) - degrees);
    const std::wstring angle = sexagesimal(fromMeridian, precision);
    if (isZeroText(angle)) {
        return north ? L"N" : L"S";
    }
    if (angle == sexagesimal(90.0, precision)) {
        return east ? L"E" : L"W";
    }
    const wchar_t* gap = inputStyle ? L"" : L" ";
    return (north ? L"N" : L"S") + (gap + angle) + gap + (east ? L"E" : L"W");
}

std::wstring angleNumber(double value, double fullTurn, const UnitFormat& format) {
    const double scale = std::pow(10.0, clampPrecision(format.angularPrecision));
    if (std::round(value * scale) / scale >= fullTurn - 0.5 / scale && fullTurn - value < 0.5 / scale) {
        value = 0.0;
    }
    return decimal(value, format.angularPrecision, format.zeroSuppression);
}

} // namespace

UnitFormat UnitFormat::of(const AcDbDatabase* database) {
    UnitFormat format;
    if (database == nullptr) {
        return format;
    }
    format.linear = static_cast<LinearUnits>(std::clamp<int>(database->lunits(), 1, 5));
    format.linearPrecision = database->luprec();
    format.angular = static_cast<AngularUnits>(std::clamp<int>(database->aunits(), 0, 4));
    format.angularPrecision = database->auprec();
    format.angleBase = database->angbase();
    format.clockwise = database->angdir();
    const auto integer = [&](const char* name) {
        const std::optional<HeaderIndex> index = findHeaderVariable(name);
        if (!index) {
            return 0;
        }
        const HeaderValue value = database->variable(*index);
        const auto* number = std::get_if<Adesk::Int16>(&value);
        return number != nullptr ? static_cast<int>(*number) : 0;
    };
    format.inputStyle = integer("UNITMODE") != 0;
    format.zeroSuppression = integer("DIMZIN");
    return format;
}

std::wstring formatDistance(double value, const UnitFormat& format) {
    if (!std::isfinite(value)) {
        return L"0";
    }
    if (format.linear == LinearUnits::decimal) {
        return decimal(value, format.linearPrecision, format.zeroSuppression);
    }
    if (format.linear == LinearUnits::scientific) {
        return formatted(L"%.*E", clampPrecision(format.linearPrecision), value == 0.0 ? 0.0 : value);
    }
    const double size = std::fabs(value);
    std::wstring text;
    if (format.linear == LinearUnits::engineering) {
        text = engineering(size, format);
    } else if (format.linear == LinearUnits::architectural) {
        text = architectural(size, format);
    } else {
        text = Fraction(size, format.linearPrecision).text(format.inputStyle);
    }
    return value < 0.0 && !isZeroText(text) ? L"-" + text : text;
}

std::wstring formatAngle(double radians, const UnitFormat& format) {
    double angle =
        std::fmod(format.clockwise ? format.angleBase - radians : radians - format.angleBase, 2.0 * pi);
    if (!std::isfinite(angle)) {
        return L"0";
    }
    if (angle < 0.0) {
        angle += 2.0 * pi;
    }
    switch (format.angular) {
    case AngularUnits::degreesMinutesSeconds:
        return sexagesimal(angle / degree, format.angularPrecision);
    case AngularUnits::gradians:
        return angleNumber(angle / pi * 200.0, 400.0, format) + L"g";
    case AngularUnits::radians:
        return angleNumber(angle, 2.0 * pi, format) + L"r";
    case AngularUnits::surveyor:
        return bearing(angle / degree, format.angularPrecision, format.inputStyle);
    case AngularUnits::degrees:
        break;
    }
    return angleNumber(angle / degree, 360.0, format);
}

std::wstring formatPoint(const AcGePoint3d& point, const UnitFormat& format, bool withZ) {
    std::wstring text = formatDistance(point.x, format) + L"," + formatDistance(point.y, format);
    return withZ ? text + L"," + formatDistance(point.z, format) : text;
}

} // namespace host
