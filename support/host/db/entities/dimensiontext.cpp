// Formatting of measurements by the dimension variables.
#include "host/db/entities/dimensiontext.h"

#include "host/db/unitformat.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

/// One way to write lengths: of the measurement, of tolerances, of alternate units.
struct NumberStyle {
    int units = 2; ///< 1 scientific, 2 decimal, 3 engineering, 4 architectural, 5 fractional, 6 as the system
    int digits = 4;
    int zeros = 0;
    bool stacked = false;   ///< fractions one above the other
    wchar_t divider = L'/'; ///< of stacked fractions
    double roundTo = 0.0;
    wchar_t point = L'.';
};

std::wstring number(double value, const NumberStyle& style) {
    if (style.roundTo > 0.0) {
        value = std::round(value / style.roundTo) * style.roundTo;
    }
    UnitFormat format;
    format.linear = static_cast<LinearUnits>(style.units >= 1 && style.units <= 5 ? style.units : 2);
    format.linearPrecision = style.digits;
    format.zeroSuppression = style.zeros;
    std::wstring text = formatDistance(value, format);
    if (style.units == 1 || style.units == 2 || style.units == 6) {
        std::replace(text.begin(), text.end(), L'.', style.point);
    }
    const std::size_t slash = text.find(L'/');
    if (style.stacked && slash != std::wstring::npos) {
        // Digits on both sides of the slash; the blank before them is the stack's own.
        std::size_t begin = slash;
        while (begin > 0 && text[begin - 1] >= L'0' && text[begin - 1] <= L'9') {
            --begin;
        }
        std::size_t end = slash + 1;
        while (end < text.size() && text[end] >= L'0' && text[end] <= L'9') {
            ++end;
        }
        text[slash] = style.divider;
        text.insert(end, L";}");
        text.insert(begin, L"{\\H0.7x;\\S");
        if (begin > 0 && text[begin - 1] == L' ') {
            text.erase(begin - 1, 1);
        }
    }
    return text;
}

NumberStyle mainStyle(const DimVariables& v, double roundTo) {
    NumberStyle style;
    style.units = v.lunit;
    style.digits = v.dec;
    style.zeros = v.zin;
    style.stacked = v.frac != 2;
    style.divider = v.frac == 1 ? L'#' : L'/';
    style.roundTo = roundTo;
    style.point = v.dsep > 0 ? static_cast<wchar_t>(v.dsep) : L'.';
    return style;
}

NumberStyle alternateStyle(const DimVariables& v) {
    // 1 scientific, 2 decimal, 3 engineering, 4 and 5 with stacked fractions, 6 and 7 without, 8 the
    // system's.
    constexpr int units[] = {2, 1, 2, 3, 4, 5, 4, 5, 6};
    NumberStyle style;
    style.units = v.altu >= 1 && v.altu <= 8 ? units[v.altu] : 2;
    style.digits = v.altd;
    style.zeros = v.altz;
    style.stacked = v.altu == 4 || v.altu == 5;
    style.roundTo = v.altrnd;
    style.point = v.dsep > 0 ? static_cast<wchar_t>(v.dsep) : L'.';
    return style;
}

std::wstring angle(double radians, const DimVariables& v, int digits, int zeros) {
    UnitFormat format;
    format.angular = static_cast<AngularUnits>(std::clamp<int>(v.aunit, 0, 3));
    format.angularPrecision = digits;
    format.zeroSuppression = (zeros & 1) * 4 + (zeros & 2) * 4; // leading, trailing
    std::wstring text = formatAngle(radians, format);
    if (const std::size_t sign = text.find(L'd'); sign != std::wstring::npos) {
        text.replace(sign, 1, L"%%d");
    }
    if (format.angular == AngularUnits::degrees) {
        text += L"%%d";
    }
    if (v.dsep > 0) {
        std::replace(text.begin(), text.end(), L'.', static_cast<wchar_t>(v.dsep));
    }
    return text;
}

/// A number with its tolerances or its limits.
template <class Write>
std::wstring withTolerance(const DimVariables& v, double value, double plus, double minus, Write&& write) {
    const std::wstring height = formatted(L"{\\H%gx;", v.tfac);
    const bool shrinks = v.tfac != 1.0;
    const auto stack = [&](const std::wstring& upper, const std::wstring& lower) {
        return (shrinks ? height : std::wstring(L"{")) + L"\\S" + upper + L"^ " + lower + L";}";
    };
    if (v.lim != 0) {
        return stack(write(value + plus, true, true), write(value - minus, true, true));
    }
    const std::wstring main = write(value, false, true);
    if (v.tol == 0) {
        return main;
    }
    const auto justified = [&](const std::wstring& tolerance) {
        return formatted(L"\\A%d;", std::clamp<int>(v.tolj, 0, 2)) + main + tolerance;
    };
    if (plus == minus) {
        const std::wstring part = L"%%p" + write(plus, true, false);
        return main + (shrinks ? height + part + L"}" : part);
    }
    const auto withSign = [&](double tolerance, bool above) {
        const bool negative = above ? tolerance < 0.0 : tolerance >= 0.0;
        return (negative ? L"-" : L"+") + write(std::fabs(tolerance), true, false);
    };
    return justified(stack(withSign(plus, true), withSign(minus, false)));
}

/// The number within DIMPOST or DIMAPOST: around <> (or []), else in front of the pattern.
std::wstring within(std::wstring_view pattern, std::wstring_view mark, const std::wstring& text) {
    const std::size_t at = pattern.find(mark);
    if (at == std::wstring_view::npos) {
        return text + std::wstring(pattern);
    }
    std::wstring result(pattern);
    return result.replace(at, mark.size(), text);
}

void replaceAll(std::wstring& text, std::wstring_view mark, const std::wstring& with) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::wstring::npos; at += with.size()) {
        text.replace(at, mark.size(), with);
    }
}

double lengthFactor(const DimVariables& v, bool inLayout) {
    return v.lfac >= 0.0 ? (v.lfac > 0.0 ? v.lfac : 1.0) : inLayout ? -v.lfac : 1.0;
}

int angleDigits(const DimVariables& v) {
    return v.adec >= 0 ? v.adec : v.dec;
}

} // namespace

std::wstring dimensionNumber(const DimVariables& variables, DimMeasure measure, double value) {
    return measure == DimMeasure::angle ? angle(value, variables, angleDigits(variables), variables.azin)
                                        : number(value, mainStyle(variables, variables.rnd));
}

std::wstring dimensionText(const DimVariables& v, const DimTextRequest& request) {
    if (request.text == L" ") {
        return {};
    }
    constexpr double degree = 3.14159265358979323846 / 180.0;
    const bool isAngle = request.measure == DimMeasure::angle;
    const double value = isAngle ? request.value : request.value * lengthFactor(v, request.inLayout);
    NumberStyle tolerance = mainStyle(v, 0.0);
    tolerance.digits = v.tdec;
    tolerance.zeros = v.tzin;
    std::wstring measured =
        isAngle
            ? withTolerance(v, value, v.tp * degree, v.tm * degree,
                            [&](double one, bool isTolerance, bool) {
                                return isTolerance ? angle(one, v, v.tdec, v.tzin)
                                                   : dimensionNumber(v, DimMeasure::angle, one);
                            })
            : withTolerance(v, value, v.tp, v.tm, [&](double one, bool isTolerance, bool isWhole) {
                  return isTolerance && !isWhole ? number(one, tolerance) : number(one, mainStyle(v, v.rnd));
              });
    const std::wstring_view post = v.post.view();
    const std::size_t mark = post.find(L"<>");
    const bool hasPrefix = mark != std::wstring_view::npos && mark > 0;
    if (!hasPrefix) {
        measured.insert(0, request.sign);
    }
    measured = isAngle ? measured : within(post, L"<>", measured);
    std::wstring alternate;
    if (!isAngle) {
        NumberStyle style = alternateStyle(v);
        NumberStyle small = style;
        small.digits = v.alttd;
        small.zeros = v.alttz;
        small.roundTo = 0.0;
        alternate = withTolerance(v, value * v.altf, v.tp * v.altf, v.tm * v.altf,
                                  [&](double one, bool isTolerance, bool isWhole) {
                                      return number(one, isTolerance && !isWhole ? small : style);
                                  });
        alternate = L"[" + within(v.apost.view(), L"[]", std::wstring(request.sign) + alternate) + L"]";
    }
    std::wstring shown(request.text.empty() ? std::wstring_view(L"<>") : request.text);
    if (shown.find(L"[]") != std::wstring::npos && !isAngle) {
        replaceAll(shown, L"[]", alternate);
        replaceAll(shown, L"<>", measured);
        return shown;
    }
    if (v.alt != 0 && !isAngle) {
        // The alternate follows the number, in the line below when the suffix says so.
        const bool below = measured.ends_with(L"\\X") || measured.ends_with(L"\\P");
        measured += (below ? L"" : L" ") + alternate;
    }
    replaceAll(shown, L"<>", measured);
    return shown;
}

} // namespace host
