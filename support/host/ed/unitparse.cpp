// Reading distances, angles and points as people type them.
#include "host/ed/units.h"
#include "host/rx/text.h"

#include <charconv>
#include <cmath>

namespace host {
namespace {

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

/// Reads forward over a text.
class Scanner {
public:
    explicit Scanner(std::wstring_view text) : mRest(text) {}

    bool atEnd() const { return mRest.empty(); }
    wchar_t peek() const { return mRest.empty() ? L'\0' : mRest.front(); }
    bool take(wchar_t c) {
        if (mRest.empty() || toLower(mRest.front()) != c) {
            return false;
        }
        mRest.remove_prefix(1);
        return true;
    }
    /// An optional sign; -1 or 1.
    double sign() {
        if (take(L'-')) {
            return -1.0;
        }
        take(L'+');
        return 1.0;
    }
    /// Digits with a point and an exponent, without sign.
    std::optional<double> number() {
        std::string digits;
        std::size_t at = 0;
        const auto copyDigits = [&] {
            const std::size_t begin = at;
            while (at < mRest.size() && isDigit(mRest[at])) {
                digits.push_back(static_cast<char>(mRest[at++]));
            }
            return at > begin;
        };
        bool any = copyDigits();
        if (at < mRest.size() && mRest[at] == L'.') {
            digits.push_back('.');
            ++at;
            any = copyDigits() || any;
        }
        if (!any) {
            return std::nullopt;
        }
        copyExponent(digits, at);
        double value = 0.0;
        const std::from_chars_result result =
            std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (result.ec != std::errc() || !std::isfinite(value)) {
            return std::nullopt;
        }
        mRest.remove_prefix(at);
        return value;
    }

private:
    void copyExponent(std::string& digits, std::size_t& at) const {
        std::size_t end = at;
        if (end >= mRest.size() || toLower(mRest[end]) != L'e') {
            return;
        }
        ++end;
        std::string exponent = "e";
        if (end < mRest.size() && (mRest[end] == L'+' || mRest[end] == L'-')) {
            exponent.push_back(static_cast<char>(mRest[end++]));
        }
        const std::size_t first = end;
        while (end < mRest.size() && isDigit(mRest[end])) {
            exponent.push_back(static_cast<char>(mRest[end++]));
        }
        if (end > first) {
            digits += exponent;
            at = end;
        }
    }

    std::wstring_view mRest;
};

/// "7", "7.5", "1/2", "3-1/2", "3 1/2": without sign.
std::optional<double> mixedNumber(Scanner& scanner) {
    const std::optional<double> first = scanner.number();
    if (!first) {
        return std::nullopt;
    }
    const auto denominator = [&](double numerator) -> std::optional<double> {
        const std::optional<double> under = scanner.number();
        return under && *under != 0.0 ? std::optional(numerator / *under) : std::nullopt;
    };
    if (scanner.take(L'/')) {
        return denominator(*first);
    }
    Scanner ahead = scanner;
    if (ahead.take(L'-') || ahead.take(L' ')) {
        const std::optional<double> numerator = ahead.number();
        if (numerator && ahead.take(L'/')) {
            scanner = ahead;
            const std::optional<double> part = denominator(*numerator);
            return part ? std::optional(*first + *part) : std::nullopt;
        }
    }
    return first;
}

/// Feet, inches or both: 5'6-1/2", 5'-6", 6", 5'.
std::optional<double> feetAndInches(Scanner& scanner) {
    std::optional<double> value = mixedNumber(scanner);
    if (!value || !scanner.take(L'\'')) {
        if (value) {
            scanner.take(L'"');
        }
        return value;
    }
    const double feet = *value * 12.0;
    if (scanner.atEnd()) {
        return feet;
    }
    if (!scanner.take(L'-')) {
        scanner.take(L' ');
    }
    const std::optional<double> inches = mixedNumber(scanner);
    if (!inches) {
        return std::nullopt;
    }
    scanner.take(L'"');
    return feet + *inches;
}

/// Degrees with optional minutes and seconds behind a number already read; the number alone when no mark
/// follows.
std::optional<double> sexagesimalRest(Scanner& scanner, double degrees) {
    if (!scanner.take(L'd') && !scanner.take(L'\u00B0')) {
        return std::nullopt;
    }
    const std::optional<double> minutes = scanner.number();
    if (!minutes) {
        return degrees;
    }
    if (scanner.take(L'"')) {
        return degrees + *minutes / 3600.0;
    }
    scanner.take(L'\'');
    const std::optional<double> seconds = scanner.number();
    scanner.take(L'"');
    return degrees + *minutes / 60.0 + seconds.value_or(0.0) / 3600.0;
}

/// A bearing as an angle from east in degrees.
std::optional<double> surveyorDegrees(Scanner& scanner) {
    if (scanner.take(L'e')) {
        return scanner.atEnd() ? std::optional(0.0) : std::nullopt;
    }
    if (scanner.take(L'w')) {
        return scanner.atEnd() ? std::optional(180.0) : std::nullopt;
    }
    const bool north = scanner.take(L'n');
    if (!north && !scanner.take(L's')) {
        return std::nullopt;
    }
    const double meridian = north ? 90.0 : 270.0;
    if (scanner.atEnd()) {
        return meridian;
    }
    scanner.take(L' ');
    const std::optional<double> number = scanner.number();
    if (!number) {
        return std::nullopt;
    }
    const double angle = sexagesimalRest(scanner, *number).value_or(*number);
    scanner.take(L' ');
    const bool east = scanner.take(L'e');
    if ((!east && !scanner.take(L'w')) || !scanner.atEnd() || angle > 90.0) {
        return std::nullopt;
    }
    return north == east ? meridian - angle : meridian + angle;
}

std::optional<double> inRadians(double number, AngularUnits units) {
    switch (units) {
    case AngularUnits::gradians:
        return number * pi / 200.0;
    case AngularUnits::radians:
        return number;
    default:
        return number * pi / 180.0;
    }
}

/// An angle with its own or the given unit, without direction and base.
std::optional<double> plainAngle(std::wstring_view text, AngularUnits units) {
    Scanner scanner(text);
    const double sign = scanner.sign();
    const std::optional<double> number = mixedNumber(scanner);
    if (!number) {
        return std::nullopt;
    }
    std::optional<double> value;
    if (scanner.take(L'g')) {
        value = inRadians(*number, AngularUnits::gradians);
    } else if (scanner.take(L'r')) {
        value = *number;
    } else if (const std::optional<double> degrees = sexagesimalRest(scanner, *number)) {
        value = *degrees * pi / 180.0;
    } else {
        value = inRadians(*number, units);
    }
    return scanner.atEnd() && value ? std::optional(sign * *value) : std::nullopt;
}

/// The angle behind `<`: `<<` ignores base and direction, `<<<` the units too.
std::optional<double> pointAngle(std::wstring_view text, const UnitFormat& format) {
    UnitFormat plain = format;
    if (!text.empty() && text.front() == L'<') {
        text.remove_prefix(1);
        plain.angleBase = 0.0;
        plain.clockwise = false;
        if (!text.empty() && text.front() == L'<') {
            text.remove_prefix(1);
            plain.angular = AngularUnits::degrees;
        }
    }
    return parseAngle(text, plain, true);
}

std::optional<TypedPoint> parsePolar(std::wstring_view text, std::size_t less, TypedPoint point,
                                     const UnitFormat& format) {
    const std::optional<double> distance = parseDistance(text.substr(0, less), format.linear);
    std::wstring_view rest = text.substr(less + 1);
    const std::size_t skip = rest.find_first_not_of(L'<');
    const std::size_t next = rest.find_first_of(L",<", skip == std::wstring_view::npos ? rest.size() : skip);
    const std::optional<double> angle = pointAngle(rest.substr(0, next), format);
    if (!distance || !angle) {
        return std::nullopt;
    }
    point.form = TypedPoint::Form::polar;
    point.first = *distance;
    point.second = *angle;
    if (next == std::wstring_view::npos) {
        return point;
    }
    const std::wstring_view last = rest.substr(next + 1);
    const bool spherical = rest[next] == L'<';
    const std::optional<double> third =
        spherical ? plainAngle(last, format.angular) : parseDistance(last, format.linear);
    if (!third) {
        return std::nullopt;
    }
    point.form = spherical ? TypedPoint::Form::spherical : TypedPoint::Form::cylindrical;
    point.hasZ = true;
    point.third = *third;
    return point;
}

std::optional<TypedPoint> parseCartesian(std::wstring_view text, TypedPoint point, const UnitFormat& format) {
    double values[3] = {};
    std::size_t count = 0;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(L',', at), text.size());
        const std::optional<double> value = parseDistance(text.substr(at, comma - at), format.linear);
        if (!value || count == 3) {
            return std::nullopt;
        }
        values[count++] = *value;
        at = comma + 1;
    }
    if (count < 2) {
        return std::nullopt;
    }
    point.first = values[0];
    point.second = values[1];
    point.third = values[2];
    point.hasZ = count == 3;
    return point;
}

} // namespace

std::optional<double> parseDistance(std::wstring_view text, LinearUnits units) {
    Scanner scanner(text);
    const double sign = scanner.sign();
    const bool feet = units == LinearUnits::engineering || units == LinearUnits::architectural;
    const std::optional<double> value = feet ? feetAndInches(scanner) : mixedNumber(scanner);
    return value && scanner.atEnd() ? std::optional(sign * *value) : std::nullopt;
}

std::optional<double> parseReal(std::wstring_view text) {
    return parseDistance(text, LinearUnits::decimal);
}

std::optional<long long> parseInteger(std::wstring_view text) {
    const bool negative = !text.empty() && text.front() == L'-';
    if (!text.empty() && (text.front() == L'-' || text.front() == L'+')) {
        text.remove_prefix(1);
    }
    if (text.empty() || text.size() > 18) {
        return std::nullopt;
    }
    long long value = 0;
    for (const wchar_t c : text) {
        if (!isDigit(c)) {
            return std::nullopt;
        }
        value = value * 10 + (c - L'0');
    }
    return negative ? -value : value;
}

std::optional<double> parseAngle(std::wstring_view text, const UnitFormat& format, bool relativeToBase) {
    Scanner scanner(text);
    if (const std::optional<double> degrees = surveyorDegrees(scanner)) {
        return *degrees * pi / 180.0 - (relativeToBase ? 0.0 : format.angleBase);
    }
    const std::optional<double> angle = plainAngle(text, format.angular);
    if (!angle) {
        return std::nullopt;
    }
    const double turned = format.clockwise ? -*angle : *angle;
    return relativeToBase ? format.angleBase + turned : turned;
}

std::optional<TypedPoint> parsePoint(std::wstring_view text, const UnitFormat& format) {
    TypedPoint point;
    while (!text.empty() && (text.front() == L'@' || text.front() == L'*' || text.front() == L'#')) {
        point.relative = point.relative || text.front() == L'@';
        point.world = point.world || text.front() == L'*';
        text.remove_prefix(1);
    }
    if (text.empty()) {
        point.form = TypedPoint::Form::lastPoint;
        return point.relative ? std::optional(point) : std::nullopt;
    }
    const std::size_t less = text.find(L'<');
    return less == std::wstring_view::npos ? parseCartesian(text, point, format)
                                           : parsePolar(text, less, point, format);
}

AcGePoint3d resolvePoint(const TypedPoint& typed, const AcGePoint3d& last, double elevation) {
    AcGeVector3d offset;
    switch (typed.form) {
    case TypedPoint::Form::lastPoint:
        return last;
    case TypedPoint::Form::cartesian:
        offset = {typed.first, typed.second, typed.third};
        break;
    case TypedPoint::Form::polar:
    case TypedPoint::Form::cylindrical:
        offset = {typed.first * std::cos(typed.second), typed.first * std::sin(typed.second), typed.third};
        break;
    case TypedPoint::Form::spherical: {
        const double inPlane = typed.first * std::cos(typed.third);
        offset = {inPlane * std::cos(typed.second), inPlane * std::sin(typed.second),
                  typed.first * std::sin(typed.third)};
        break;
    }
    }
    if (typed.relative) {
        return last + offset;
    }
    return {offset.x, offset.y, typed.hasZ ? offset.z : elevation};
}

} // namespace host
