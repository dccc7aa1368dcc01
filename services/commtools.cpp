// Scale, folder and splitting of texts.
#include "services/commtools.h"

#include "restools/ownmodule.h"

#include <cwctype>
#include <string_view>

namespace {

double systemScale = 1.0;

std::wstring_view trimLeft(std::wstring_view text) {
    while (!text.empty() && std::iswspace(static_cast<std::wint_t>(text.front())) != 0) {
        text.remove_prefix(1);
    }
    return text;
}

std::wstring_view trimRight(std::wstring_view text) {
    while (!text.empty() && std::iswspace(static_cast<std::wint_t>(text.back())) != 0) {
        text.remove_suffix(1);
    }
    return text;
}

CString toString(std::wstring_view text) {
    return CString(text.data(), static_cast<int>(text.size()));
}

} // namespace

double GetCOMMTOOLSSystemScale() {
    return systemScale;
}

void SetCOMMTOOLSSystemScale(double scale) {
    systemScale = scale;
}

AcString GetMySoftPath(bool withSeparator) {
    return GetOwnDirectory(withSeparator);
}

void SplitString(AcArray<CString>& pieces, const wchar_t* text, const wchar_t* separators, int keepEmpty,
                 int noTrim) {
    pieces.setLogicalLength(0);
    std::wstring_view rest = text != nullptr ? text : L"";
    const std::wstring_view ends = separators != nullptr ? separators : L"";
    if (noTrim == 0) {
        rest = trimRight(trimLeft(rest));
    }
    while (!rest.empty()) {
        const std::size_t end = rest.find_first_of(ends);
        if (end == std::wstring_view::npos) {
            pieces.append(toString(rest));
            return;
        }
        std::wstring_view piece = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        // A piece dropped here leaves the blanks after it to the next one.
        if (keepEmpty == 0 && piece.empty()) {
            continue;
        }
        if (noTrim == 0) {
            rest = trimLeft(rest);
            piece = trimRight(piece);
            if (piece.empty()) {
                continue;
            }
        }
        pieces.append(toString(piece));
    }
}
