// Text of the C-style interface: the console, numbers as text, characters.
#include "host/ed/aced.h"
#include "host/ed/console.h"
#include "host/ed/units.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <cwctype>

namespace host {
namespace {

AlertFunction& alertFunction() {
    static AlertFunction function = nullptr;
    return function;
}

UnitFormat formatFor(int linear, int linearPrecision, int angular, int angularPrecision) {
    UnitFormat format = UnitFormat::of(acdbCurDwg());
    if (linear >= 1 && linear <= 5) {
        format.linear = static_cast<LinearUnits>(linear);
    }
    if (linearPrecision >= 0) {
        format.linearPrecision = linearPrecision;
    }
    if (angular >= 0 && angular <= 4) {
        format.angular = static_cast<AngularUnits>(angular);
    }
    if (angularPrecision >= 0) {
        format.angularPrecision = angularPrecision;
    }
    return format;
}

int giveText(const std::wstring& text, ACHAR* result, std::size_t size) {
    if (result == nullptr || text.size() >= size) {
        return RTERROR;
    }
    std::copy_n(text.c_str(), text.size() + 1, result);
    return RTNORM;
}

} // namespace
} // namespace host

int acutPrintf(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::wstring text = host::formatWide(format, arguments);
    va_end(arguments);
    host::console().write(text);
    return RTNORM;
}

int acedPrompt(const ACHAR* text) {
    if (text == nullptr) {
        return RTERROR;
    }
    host::console().write(text);
    return RTNORM;
}

int acedAlert(const ACHAR* text) {
    if (text == nullptr) {
        return RTERROR;
    }
    if (host::alertFunction() != nullptr) {
        host::alertFunction()(text);
    } else {
        host::console().line(text);
    }
    return RTNORM;
}

void acedSetAlertFunction(AlertFunction function) {
    host::alertFunction() = function;
}

void acutFail(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::wstring text = host::formatWide(format, arguments);
    va_end(arguments);
    host::reportFailure(text);
}

int acdbRToS(ads_real value, int units, int precision, ACHAR* text, std::size_t size) {
    return host::giveText(host::formatDistance(value, host::formatFor(units, precision, -1, -1)), text, size);
}

int acdbRToS(ads_real value, int units, int precision, AcString& text) {
    text = host::formatDistance(value, host::formatFor(units, precision, -1, -1)).c_str();
    return RTNORM;
}

int acdbAngToS(ads_real value, int units, int precision, ACHAR* text, std::size_t size) {
    return host::giveText(host::formatAngle(value, host::formatFor(-1, -1, units, precision)), text, size);
}

int acdbAngToS(ads_real value, int units, int precision, AcString& text) {
    text = host::formatAngle(value, host::formatFor(-1, -1, units, precision)).c_str();
    return RTNORM;
}

int acdbDisToF(const ACHAR* text, int units, ads_real* value) {
    if (text == nullptr || value == nullptr) {
        return RTERROR;
    }
    const auto parsed =
        host::parseDistance(host::trim(std::wstring_view(text)), host::formatFor(units, -1, -1, -1).linear);
    if (!parsed) {
        return RTERROR;
    }
    *value = *parsed;
    return RTNORM;
}

int acdbAngToF(const ACHAR* text, int units, ads_real* value) {
    if (text == nullptr || value == nullptr) {
        return RTERROR;
    }
    const auto parsed =
        host::parseAngle(host::trim(std::wstring_view(text)), host::formatFor(-1, -1, units, -1), true);
    if (!parsed) {
        return RTERROR;
    }
    *value = host::normalizedAngle(*parsed);
    return RTNORM;
}

namespace {

wchar_t character(int code) {
    return static_cast<wchar_t>(code);
}
bool isAsciiCharacter(int code) {
    return code >= 0 && code < 0x80;
}

} // namespace

int acutToUpper(int code) {
    return host::toUpper(character(code));
}
int acutToLower(int code) {
    return host::toLower(character(code));
}
bool acutIsUpper(int code) {
    return host::toLower(character(code)) != character(code);
}
bool acutIsLower(int code) {
    return host::toUpper(character(code)) != character(code);
}
bool acutIsAlpha(int code) {
    return acutIsUpper(code) || acutIsLower(code) ||
           (!isAsciiCharacter(code) && std::iswalpha(static_cast<wint_t>(code)) != 0);
}
bool acutIsDigit(int code) {
    return code >= '0' && code <= '9';
}
bool acutIsXDigit(int code) {
    return acutIsDigit(code) || (code >= 'a' && code <= 'f') || (code >= 'A' && code <= 'F');
}
bool acutIsSpace(int code) {
    return host::isSpace(character(code));
}
bool acutIsAlNum(int code) {
    return acutIsAlpha(code) || acutIsDigit(code);
}
bool acutIsCntrl(int code) {
    return (code >= 0 && code < 0x20) || code == 0x7F;
}
bool acutIsPrint(int code) {
    return code >= 0x20 && code != 0x7F;
}
bool acutIsGraph(int code) {
    return acutIsPrint(code) && !acutIsSpace(code);
}
bool acutIsPunct(int code) {
    return isAsciiCharacter(code) && acutIsGraph(code) && !acutIsAlNum(code);
}
