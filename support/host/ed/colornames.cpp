// Colour names.
#include "host/ed/colornames.h"

#include "host/ed/units.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host {
namespace {

struct NamedColor {
    const wchar_t* name;
    const wchar_t* local;
    int index;
};

constexpr NamedColor namedColors[] = {
    {L"BYBLOCK", L"随块", 0}, {L"RED", L"红", 1},   {L"YELLOW", L"黄", 2},
    {L"GREEN", L"绿", 3},     {L"CYAN", L"青", 4},  {L"BLUE", L"蓝", 5},
    {L"MAGENTA", L"洋红", 6}, {L"WHITE", L"白", 7}, {L"BYLAYER", L"随层", 256},
};

AcCmEntityColor colorOf(int index) {
    AcCmEntityColor color;
    color.setColorIndex(static_cast<Adesk::Int16>(index));
    return color;
}

std::optional<AcCmEntityColor> parseTrueColor(std::wstring_view text) {
    Adesk::UInt8 parts[3] = {};
    for (int i = 0; i < 3; ++i) {
        const std::size_t comma = std::min(text.find(L','), text.size());
        const std::optional<long long> number = parseInteger(trim(text.substr(0, comma)));
        const bool last = i == 2;
        if (!number || *number < 0 || *number > 255 || (comma == text.size()) != last) {
            return std::nullopt;
        }
        parts[i] = static_cast<Adesk::UInt8>(*number);
        text.remove_prefix(last ? comma : comma + 1);
    }
    return AcCmEntityColor(parts[0], parts[1], parts[2]);
}

} // namespace

std::optional<AcCmEntityColor> parseColor(std::wstring_view text) {
    text = trim(text);
    if (!text.empty() && text.front() == L'_') {
        text.remove_prefix(1);
    }
    std::wstring_view local = text; // 红 and 红色 are the same
    if (local.size() > 1 && local.back() == L'色') {
        local.remove_suffix(1);
    }
    for (const NamedColor& color : namedColors) {
        if (equalNoCase(text, color.name) || local == color.local) {
            return colorOf(color.index);
        }
    }
    if (const std::optional<long long> number = parseInteger(text)) {
        return *number >= 0 && *number <= 256 ? std::optional(colorOf(static_cast<int>(*number)))
                                              : std::nullopt;
    }
    if (startsWithNoCase(text, L"RGB:")) {
        text.remove_prefix(4);
    }
    return parseTrueColor(text);
}

std::wstring colorText(int index) {
    return index == 256 ? L"BYLAYER" : index == 0 ? L"BYBLOCK" : formatted(L"%d", index);
}

std::wstring colorText(const AcCmEntityColor& color) {
    return color.isByColor() ? formatted(L"RGB:%d,%d,%d", color.red(), color.green(), color.blue())
                             : colorText(static_cast<int>(color.colorIndex()));
}

} // namespace host
