// Installed families by fontconfig.
#include "host/font/fontenumeration.h"

#include "host/rx/text.h"

#include <algorithm>
#include <fontconfig/fontconfig.h>
#include <memory>
#include <set>
#include <string>

namespace {

struct FontSetDeleter {
    void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
};
struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};

/// Whether the face has the characters that are also set from top to bottom.
bool isEastAsian(FcPattern* font) {
    FcLangSet* languages = nullptr;
    if (FcPatternGetLangSet(font, FC_LANG, 0, &languages) != FcResultMatch) {
        return false;
    }
    constexpr const char* eastAsian[] = {"zh-cn", "zh-tw", "ja", "ko"};
    return std::any_of(std::begin(eastAsian), std::end(eastAsian), [&](const char* language) {
        return FcLangSetHasLang(languages, reinterpret_cast<const FcChar8*>(language)) != FcLangDifferentLang;
    });
}

/// Every name of every family; with @ in front the turned faces for texts that run downwards.
std::set<std::wstring> familyNames() {
    std::set<std::wstring> names;
    const std::unique_ptr<FcPattern, PatternDeleter> all(FcPatternCreate());
    FcObjectSet* const properties = FcObjectSetBuild(FC_FAMILY, FC_LANG, nullptr);
    const std::unique_ptr<FcFontSet, FontSetDeleter> fonts(FcFontList(nullptr, all.get(), properties));
    FcObjectSetDestroy(properties);
    for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
        FcChar8* name = nullptr;
        for (int n = 0; FcPatternGetString(fonts->fonts[i], FC_FAMILY, n, &name) == FcResultMatch; ++n) {
            const std::wstring family = host::fromUtf8(reinterpret_cast<const char*>(name));
            names.insert(family);
            if (isEastAsian(fonts->fonts[i])) {
                names.insert(L"@" + family);
            }
        }
    }
    return names;
}

template <std::size_t size>
void copyName(const std::wstring& name, wchar_t (&to)[size]) {
    to[name.copy(to, size - 1)] = L'\0';
}

} // namespace

int EnumFontFamiliesExW(HDC, LOGFONTW* font, FONTENUMPROCW function, LPARAM parameter, DWORD) {
    const std::wstring wanted = font != nullptr ? font->lfFaceName : L"";
    int result = 1;
    for (const std::wstring& name : familyNames()) {
        if (!wanted.empty() && !host::equalNoCase(name, wanted)) {
            continue;
        }
        ENUMLOGFONTEXW face = {};
        face.elfLogFont.lfCharSet = DEFAULT_CHARSET;
        copyName(name, face.elfLogFont.lfFaceName);
        copyName(name, face.elfFullName);
        const TEXTMETRICW metric = {};
        result = function(&face.elfLogFont, &metric, TRUETYPE_FONTTYPE, parameter);
        if (result == 0) {
            break;
        }
    }
    return result;
}
