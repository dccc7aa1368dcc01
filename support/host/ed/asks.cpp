// The C-style questions.
#include "host/ed/aced.h"
#include "host/ed/console.h"
#include "host/ed/question.h"
#include "host/ed/sysvars.h"
#include "host/ed/units.h"

#include <cstring>

namespace host {
namespace {

std::optional<AcGePoint3d> basePoint(const ads_point base) {
    return base != nullptr ? std::optional(asPoint3d(base)) : std::nullopt;
}

std::wstring promptOr(const ACHAR* prompt, const wchar_t* standard = L"") {
    return prompt != nullptr ? prompt : standard;
}

/// False when the text had to be cut.
bool copyText(std::wstring_view text, ACHAR* result, std::size_t size) {
    if (result == nullptr || size == 0) {
        return false;
    }
    const std::size_t count = std::min(text.size(), size - 1);
    std::copy_n(text.data(), count, result);
    result[count] = L'\0';
    return count == text.size();
}

int copied(int code, std::wstring_view text, ACHAR* result, std::size_t size) {
    const bool whole = copyText(code == RTNORM ? text : std::wstring_view(), result, size);
    return code == RTNORM && !whole ? RTINPUTTRUNCATED : code;
}

int askKeyword(const ACHAR* prompt, std::wstring& result) {
    InitGet init = takeInitGet();
    if (init.keywords.empty() && !init.allowsOther()) {
        return RTERROR;
    }
    const int code =
        askValue(init, {promptOr(prompt), {}, L"无效的选项关键字。", [](const InputItem&) { return false; }});
    if (code != RTKWORD) {
        return code;
    }
    result = lastInput();
    return RTNORM;
}

int askString(int wholeLine, const ACHAR* prompt, std::wstring& result) {
    const InitGet init = takeInitGet();
    AskOptions options;
    const bool evaluates = systemVariableInteger(L"TEXTEVAL") != 0;
    options.mode = wholeLine != 0 && !evaluates ? ReadMode::line : ReadMode::token;
    const InputItem item = inputStream().ask(promptOr(prompt), options);
    if (item.isCancel()) {
        return RTCAN;
    }
    result = item.kind == InputItem::Kind::text ? item.text
             : item.value != nullptr            ? inputText(*item.value)
                                                : L"";
    if (!init.keywords.empty()) {
        if (const std::optional<std::wstring> keyword = init.keywords.matchGlobal(result)) {
            lastInput() = *keyword;
            return RTKWORD;
        }
    }
    return RTNORM;
}

} // namespace
} // namespace host

int acedInitGet(int flags, const ACHAR* keywords) {
    host::setInitGet(flags, keywords != nullptr ? keywords : L"");
    return RTNORM;
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
    if (result == nullptr) {
        return RTERROR;
    }
    AcGePoint3d point;
    const int code =
        host::askPoint(host::takeInitGet(), host::promptOr(prompt), host::basePoint(base), point);
    if (code == RTNORM) {
        host::setPoint(result, point);
    }
    return code;
}

int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point result) {
    if (base == nullptr || result == nullptr) {
        return RTERROR;
    }
    AcGePoint3d point;
    const int code = host::askCorner(host::takeInitGet(), host::promptOr(prompt), host::asPoint3d(base),
                                     host::Aim::Band::rectangle, point);
    if (code == RTNORM) {
        host::setPoint(result, point);
    }
    return code;
}

int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result) {
    if (result == nullptr) {
        return RTERROR;
    }
    return host::askDistance(host::takeInitGet(), host::promptOr(prompt), host::basePoint(base), *result);
}

int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* result) {
    if (result == nullptr) {
        return RTERROR;
    }
    return host::askAngle(host::takeInitGet(), host::promptOr(prompt), host::basePoint(base), false, *result);
}

int acedGetOrient(const ads_point base, const ACHAR* prompt, ads_real* result) {
    if (result == nullptr) {
        return RTERROR;
    }
    return host::askAngle(host::takeInitGet(), host::promptOr(prompt), host::basePoint(base), true, *result);
}

int acedGetReal(const ACHAR* prompt, ads_real* result) {
    if (result == nullptr) {
        return RTERROR;
    }
    const host::InitGet init = host::takeInitGet();
    host::ValueQuestion question{host::promptOr(prompt), {}, {}, {}};
    question.take = [&](const host::InputItem& item) {
        const std::optional<double> value = host::numberIn(item);
        question.refusal = init.keywords.empty() ? L"需要数值。" : L"需要数值或选项关键字。";
        const std::wstring notAllowed = value ? host::numberRefusal(init, *value) : std::wstring();
        if (!notAllowed.empty()) {
            question.refusal = notAllowed;
        } else if (value) {
            *result = *value;
        }
        return value && notAllowed.empty();
    };
    question.refusal = L"需要数值。";
    return host::askValue(init, question);
}

int acedGetInt(const ACHAR* prompt, int* result) {
    if (result == nullptr) {
        return RTERROR;
    }
    const host::InitGet init = host::takeInitGet();
    host::ValueQuestion question{host::promptOr(prompt), {}, L"需要整数。", {}};
    question.take = [&](const host::InputItem& item) {
        question.refusal = init.keywords.empty() ? L"需要整数。" : L"需要整数或选项关键字。";
        std::optional<long long> value;
        if (item.kind == host::InputItem::Kind::text) {
            value = host::parseInteger(item.text);
        } else if (item.value != nullptr && item.value->restype != RTREAL) {
            if (const std::optional<double> number = host::numberIn(item)) {
                value = static_cast<long long>(*number);
            }
        }
        if (!value) {
            return false;
        }
        if (*value < -32768 || *value > 32767) {
            question.refusal = L"需要 -32768 到 32767 之间的整数。";
            return false;
        }
        if (const std::wstring notAllowed = host::numberRefusal(init, static_cast<double>(*value));
            !notAllowed.empty()) {
            question.refusal = notAllowed;
            return false;
        }
        *result = static_cast<int>(*value);
        return true;
    };
    return host::askValue(init, question);
}

int acedGetKword(const ACHAR* prompt, ACHAR* result, std::size_t size) {
    std::wstring text;
    const int code = host::askKeyword(prompt, text);
    return host::copied(code, text, result, size);
}

int acedGetKword(const ACHAR* prompt, AcString& result) {
    std::wstring text;
    const int code = host::askKeyword(prompt, text);
    result = text.c_str();
    return code;
}

int acedGetString(int wholeLine, const ACHAR* prompt, ACHAR* result, std::size_t size) {
    std::wstring text;
    const int code = host::askString(wholeLine, prompt, text);
    return host::copied(code, text, result, size);
}

int acedGetString(int wholeLine, const ACHAR* prompt, AcString& result) {
    std::wstring text;
    const int code = host::askString(wholeLine, prompt, text);
    result = text.c_str();
    return code;
}

int acedGetInput(ACHAR* result, std::size_t size) {
    return host::copied(RTNORM, host::lastInput(), result, size);
}

int acedGetInput(AcString& result) {
    result = host::lastInput().c_str();
    return RTNORM;
}

int acedUsrBrk() {
    return acdbHostApplicationServices()->userBreak() ? 1 : 0;
}
