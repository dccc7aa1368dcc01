#include "host/font/catalog.h"

#include "host/rx/text.h"

#include <algorithm>
#include <fontconfig/fontconfig.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace host {

namespace {

struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternDeleter>;

constexpr const char* serifChinese = "Noto Serif CJK SC";
constexpr const char* sansChinese = "Noto Sans CJK SC";
constexpr const char* kaiChinese = "AR PL UKai CN";

// The family that looks most like a usual typeface or font file (without extension), and the style that a
// file's name implies.
struct Likeness {
    std::wstring_view name;
    const char* family;
    bool bold = false, italic = false;
};

constexpr Likeness likenesses[] = {
    {L"simsun", serifChinese},
    {L"nsimsun", serifChinese},
    {L"simsunb", serifChinese},
    {L"stsong", serifChinese},
    {L"stzhongs", serifChinese},
    {L"fangsong", serifChinese},
    {L"simfang", serifChinese},
    {L"stfangso", serifChinese},
    {L"lisu", serifChinese},
    {L"simli", serifChinese},
    {L"mingliu", serifChinese},
    {L"simhei", sansChinese},
    {L"microsoft yahei", sansChinese},
    {L"msyh", sansChinese},
    {L"msyhbd", sansChinese, true},
    {L"msyhl", sansChinese},
    {L"dengxian", sansChinese},
    {L"deng", sansChinese},
    {L"youyuan", sansChinese},
    {L"simyou", sansChinese},
    {L"stxihei", sansChinese},
    {L"stheiti", sansChinese},
    {L"arial unicode ms", sansChinese},
    {L"kaiti", kaiChinese},
    {L"simkai", kaiChinese},
    {L"stkaiti", kaiChinese},
    {L"stxingka", kaiChinese},
    {L"arial", "Arial"},
    {L"arialbd", "Arial", true},
    {L"ariali", "Arial", false, true},
    {L"arialbi", "Arial", true, true},
    {L"ariblk", "Arial", true},
    {L"arialn", "Arial Narrow"},
    {L"arialnb", "Arial Narrow", true},
    {L"times", "Times New Roman"},
    {L"timesbd", "Times New Roman", true},
    {L"timesi", "Times New Roman", false, true},
    {L"timesbi", "Times New Roman", true, true},
    {L"cour", "Courier New"},
    {L"courbd", "Courier New", true},
    {L"couri", "Courier New", false, true},
    {L"courbi", "Courier New", true, true},
    {L"verdana", "DejaVu Sans"},
    {L"tahoma", "DejaVu Sans"},
    {L"calibri", "Carlito"},
    {L"cambria", "Caladea"},
    {L"consola", "Liberation Mono"},
    {L"consolas", "Liberation Mono"},
    {L"segoeui", "Liberation Sans"},
    {L"swiss", "Arial"},
    {L"swissb", "Arial", true},
    {L"dutch", "Times New Roman"},
    {L"dutchb", "Times New Roman", true},
    {L"monos", "Courier New"},
    {L"romantic", "Times New Roman"},
    {L"isocpeur", "Liberation Sans Narrow"},
    {L"isocteur", "Liberation Sans Narrow"},
};

bool isChinese(std::wstring_view name) {
    return std::any_of(name.begin(), name.end(), [](wchar_t character) { return character >= 0x2E80; });
}

Likeness likenessOf(std::wstring_view name) {
    std::wstring key = fold(trim(name));
    if (key.ends_with(L"_gb2312"))
        key.resize(key.size() - 7);
    const auto found = std::ranges::find(likenesses, key, &Likeness::name);
    if (found != std::end(likenesses))
        return *found;
    if (!isChinese(key))
        return {name, nullptr};
    const auto hasAny = [&](std::wstring_view characters) {
        return key.find_first_of(characters) != key.npos;
    };
    return {name, hasAny(L"楷行") ? kaiChinese : hasAny(L"黑圆线") ? sansChinese : serifChinese};
}

std::string_view text(const FcPattern* pattern, const char* property, int index = 0) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, property, index, &value) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(value);
}

int number(const FcPattern* pattern, const char* property, int otherwise) {
    int value = otherwise;
    FcPatternGetInteger(pattern, property, 0, &value);
    return value;
}

bool hasFamily(const FcPattern* pattern, std::string_view family) {
    const std::wstring wanted = fromUtf8(family);
    for (const char* property : {FC_FAMILY, FC_FULLNAME})
        for (int i = 0;; ++i) {
            const std::string_view name = text(pattern, property, i);
            if (name.empty())
                break;
            if (equalNoCase(fromUtf8(name), wanted))
                return true;
        }
    return false;
}

FontFile fontFile(const FcPattern* pattern, bool bold, bool italic, bool isSubstitute) {
    FontFile file;
    file.path = text(pattern, FC_FILE);
    file.index = number(pattern, FC_INDEX, 0);
    file.embolden = bold && number(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR) < FC_WEIGHT_DEMIBOLD;
    file.slant = italic && number(pattern, FC_SLANT, FC_SLANT_ROMAN) == FC_SLANT_ROMAN;
    file.isSubstitute = isSubstitute;
    file.family = fromUtf8(text(pattern, FC_FAMILY));
    return file;
}

Pattern request(std::string_view family, bool bold, bool italic) {
    Pattern pattern(FcPatternCreate());
    if (!family.empty())
        FcPatternAddString(pattern.get(), FC_FAMILY,
                           reinterpret_cast<const FcChar8*>(std::string(family).c_str()));
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    return pattern;
}

Pattern match(const Pattern& wanted) {
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(nullptr, wanted.get(), &result));
}

std::optional<FontFile> matchTypeface(std::string_view family, bool bold, bool italic, bool isSubstitute) {
    const Pattern found = match(request(family, bold, italic));
    if (!found || text(found.get(), FC_FILE).empty())
        return std::nullopt;
    return fontFile(found.get(), bold, italic, isSubstitute || !hasFamily(found.get(), family));
}

std::wstring_view baseName(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash == path.npos ? path : path.substr(slash + 1);
}

// The installed file of that name, compared without regard to case.
std::optional<FontFile> installedFile(std::wstring_view fileName) {
    const Pattern all(FcPatternCreate());
    FcObjectSet* const properties =
        FcObjectSetBuild(FC_FAMILY, FC_FILE, FC_INDEX, FC_WEIGHT, FC_SLANT, nullptr);
    FcFontSet* const fonts = FcFontList(nullptr, all.get(), properties);
    FcObjectSetDestroy(properties);
    std::optional<FontFile> found;
    for (int i = 0; fonts && i < fonts->nfont && !found; ++i) {
        const std::wstring path = fromUtf8(text(fonts->fonts[i], FC_FILE));
        if (equalNoCase(baseName(path), fileName))
            found = fontFile(fonts->fonts[i], false, false, false);
    }
    if (fonts)
        FcFontSetDestroy(fonts);
    return found;
}

} // namespace

std::optional<FontFile> findTypeface(std::wstring_view typeface, bool bold, bool italic) {
    if (typeface.starts_with(L'@')) { // the turned face for vertical writing
        std::optional<FontFile> turned = findTypeface(typeface.substr(1), bold, italic);
        if (turned)
            turned->isTurned = true;
        return turned;
    }
    std::optional<FontFile> found = matchTypeface(toUtf8(trim(typeface)), bold, italic, false);
    if (found && !found->isSubstitute)
        return found;
    const Likeness likeness = likenessOf(typeface);
    if (!likeness.family)
        return found;
    std::optional<FontFile> like =
        matchTypeface(likeness.family, bold || likeness.bold, italic || likeness.italic, true);
    if (likeness.family == kaiChinese) // where no such face is installed the upright serif comes nearest
        if (const Pattern kai = match(request(kaiChinese, bold, italic));
            !kai || !hasFamily(kai.get(), kaiChinese))
            return matchTypeface(serifChinese, bold, italic, true);
    return like;
}

std::optional<FontFile> findFontFile(std::wstring_view fileName) {
    const std::wstring_view name = baseName(fileName);
    if (auto installed = installedFile(name))
        return installed;
    const std::wstring_view stem = name.substr(0, name.rfind(L'.'));
    const Likeness likeness = likenessOf(stem);
    auto found = findTypeface(stem, likeness.bold, likeness.italic);
    if (found)
        found->isSubstitute = true;
    return found;
}

std::optional<FontFile> findFontWith(char32_t character, bool isLight) {
    const Pattern wanted = request(character >= 0x2E80 ? sansChinese : "", false, false);
    if (isLight) {
        FcPatternDel(wanted.get(), FC_WEIGHT);
        FcPatternAddInteger(wanted.get(), FC_WEIGHT, FC_WEIGHT_LIGHT);
    }
    FcCharSet* const characters = FcCharSetCreate();
    FcCharSetAddChar(characters, character);
    FcPatternAddCharSet(wanted.get(), FC_CHARSET, characters);
    FcCharSetDestroy(characters);
    const Pattern found = match(wanted);
    FcCharSet* available = nullptr;
    if (!found || FcPatternGetCharSet(found.get(), FC_CHARSET, 0, &available) != FcResultMatch ||
        !FcCharSetHasChar(available, character))
        return std::nullopt;
    return fontFile(found.get(), false, false, true);
}

} // namespace host
