// OVERKILL: takes out what lies there twice.
#include "host/commands/edit/overkill.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

namespace host {
namespace {

struct Ignorable {
    const wchar_t* keyword;
    const wchar_t* name;
    OverkillOptions::Property property;
};
constexpr Ignorable ignorables[] = {{L"Color", L"颜色", OverkillOptions::color},
                                    {L"LAyer", L"图层", OverkillOptions::layer},
                                    {L"Linetype", L"线型", OverkillOptions::linetype},
                                    {L"Scale", L"线型比例", OverkillOptions::linetypeScale},
                                    {L"LWeight", L"线宽", OverkillOptions::lineWeight}};

std::wstring ignoredNames(const OverkillOptions& options) {
    std::wstring names;
    for (const Ignorable& one : ignorables) {
        if ((options.ignored & one.property) != 0) {
            names += (names.empty() ? L"" : L",") + std::wstring(one.name);
        }
    }
    return names.empty() ? L"无" : names;
}

/// Each word turns ignoring of its property on or off; Enter ends it. False for Escape.
bool askIgnored(OverkillOptions& options) {
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入要忽略的特性 [颜色(C)/图层(LA)/线型(L)/线型比例(S)/线宽(LW)/全部(A)/无(N)] <" +
                           ignoredNames(options) + L">: ",
                       L"Color LAyer Linetype Scale LWeight All None");
        if (answer.kind != Answer::Kind::keyword) {
            return answer.isNone();
        }
        if (answer.isKeyword(L"All") || answer.isKeyword(L"None")) {
            options.ignored = answer.isKeyword(L"All") ? ~0U : 0U;
        }
        for (const Ignorable& one : ignorables) {
            if (answer.isKeyword(one.keyword)) {
                options.ignored ^= one.property;
            }
        }
    }
}

const wchar_t* yesNo(bool value) {
    return value ? L"是" : L"否";
}

std::wstring toleranceText(double value) {
    AcString text;
    acdbRToS(value, 2, 8, text);
    std::wstring digits = text.kwszPtr();
    while (digits.find(L'.') != std::wstring::npos && (digits.back() == L'0' || digits.back() == L'.')) {
        const bool isPoint = digits.back() == L'.';
        digits.pop_back();
        if (isPoint) {
            break;
        }
    }
    return digits;
}

/// False for Escape.
bool askOptions(OverkillOptions& options) {
    for (;;) {
        acutPrintf(L"\n当前设置: 忽略=%s, 公差=%s, 合并重叠=%s, 合并端点对齐=%s",
                   ignoredNames(options).c_str(), toleranceText(options.tolerance).c_str(),
                   yesNo(options.mergesOverlaps), yesNo(options.mergesEnds));
        const Answer answer = askKeyword(
            L"\n输入要修改的设置 [忽略(I)/公差(T)/合并重叠的对象(O)/合并端点对齐的对象(E)] <完成>: ",
            L"Ignore Tolerance Overlap End");
        if (answer.kind != Answer::Kind::keyword) {
            return answer.isNone();
        }
        bool goesOn = true;
        if (answer.isKeyword(L"Ignore")) {
            goesOn = askIgnored(options);
        } else if (answer.isKeyword(L"Tolerance")) {
            const RealAnswer tolerance =
                askReal(L"\n输入公差 <" + toleranceText(options.tolerance) + L">: ", nullptr, RSG_NONEG);
            options.tolerance = tolerance.isValue() ? tolerance.value : options.tolerance;
            goesOn = !tolerance.isCancelled();
        } else {
            bool& value = answer.isKeyword(L"Overlap") ? options.mergesOverlaps : options.mergesEnds;
            const std::optional<bool> wanted = askYesNo(
                answer.isKeyword(L"Overlap") ? L"\n合并部分重叠的共线对象?" : L"\n合并端点对齐的共线对象?",
                value);
            value = wanted.value_or(value);
            goesOn = wanted.has_value();
        }
        if (!goesOn) {
            return false;
        }
    }
}

void runOverkill() {
    const Selection selection = Selection::askEditable();
    OverkillOptions options;
    if (selection.empty() || !askOptions(options)) {
        return;
    }
    const OverkillResult result = removeDuplicates(selection.ids(), options);
    acutPrintf(L"\n已删除 %d 个重复项。\n已删除 %d 个重叠的对象。", result.duplicates, result.overlaps);
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {{L"OVERKILL", L"删除重复对象", flags, runOverkill},
                               {L"-OVERKILL", L"-删除重复对象", flags, runOverkill}};

} // namespace

std::span<const CommandRow> overkillCommands() {
    return rows;
}

} // namespace host
