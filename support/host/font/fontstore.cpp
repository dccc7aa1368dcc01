#include "host/font/fontstore.h"

#include "host/font/catalog.h"
#include "host/font/shxface.h"
#include "host/font/strokeface.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {

namespace {

bool isOutlineFileName(std::wstring_view name) {
    const std::wstring folded = fold(name);
    return folded.ends_with(L".ttf") || folded.ends_with(L".ttc") || folded.ends_with(L".otf");
}

std::wstring_view baseName(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash == path.npos ? path : path.substr(slash + 1);
}

// Characters that only tell how others are to be set.
bool isInvisible(char32_t character) {
    return character == 0xAD || character == 0xFEFF || (character >= 0x200B && character <= 0x200F) ||
           (character >= 0x202A && character <= 0x202E) || (character >= 0x2060 && character <= 0x2064) ||
           (character >= 0xFE00 && character <= 0xFE0F);
}

// What the places after ASCII mean in fonts that drawings name by numbers (%%127): the signs that shape fonts
// have there. The other character, or 0.
char32_t signOfPlace(char32_t character) {
    switch (character) {
    case 0x7F:
        return 0xB0;
    case 0x80:
        return 0xB1;
    case 0x81:
        return 0x2205;
    default:
        return 0;
    }
}

// An open square, for a character that no font has.
std::unique_ptr<Glyph> missingGlyph() {
    auto glyph = std::make_unique<Glyph>();
    glyph->moveTo({0.1f, 0});
    for (const GlyphPoint point : {GlyphPoint{0.1f, 1}, {0.7f, 1}, {0.7f, 0}, {0.1f, 0}})
        glyph->lineTo(point);
    glyph->advance = 0.8;
    glyph->finish();
    return glyph;
}

} // namespace

FontStore::FontStore() : mMissing(missingGlyph()), mInvisible(std::make_unique<Glyph>()) {}
FontStore::~FontStore() = default;

FontFace* FontStore::outlineFace(const FontFile& file, OutlineScale scale) {
    const FaceKey key{file.path, file.index, file.embolden, file.slant, file.isTurned, scale};
    const auto [entry, isNew] = mOutlineFaces.try_emplace(key);
    if (isNew)
        entry->second = openOutlineFace(file, scale);
    return entry->second.get();
}

FontFace* FontStore::shapeFace(std::wstring_view name) {
    const std::wstring key = fold(baseName(name));
    const auto [entry, isNew] = mStrokeFaces.try_emplace(key);
    if (isNew) {
        if (const auto path = shapeFile(key))
            entry->second = openShapeFace(*path);
        if (!entry->second)
            entry->second = makeStandardShapeFace(key);
        if (!entry->second)
            entry->second = makeStandardStrokeFace(key);
    }
    return entry->second.get();
}

FontFace* FontStore::plainFace() {
    std::unique_ptr<FontFace>& plain = mStrokeFaces[L"txt"];
    if (!plain)
        plain = makePlainStrokeFace();
    return plain.get();
}

std::optional<std::filesystem::path> FontStore::inSearchFolders(std::wstring_view name) const {
    for (const std::filesystem::path& folder : mSearchFolders) {
        std::error_code error;
        for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error))
            if (equalNoCase(fromUtf8(entry->path().filename().string()), baseName(name)))
                return entry->path();
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> FontStore::shapeFile(std::wstring_view name) const {
    const std::wstring key = fold(baseName(name));
    return inSearchFolders(key.ends_with(L".shx") ? key : key + L".shx");
}

std::optional<FontFile> FontStore::outlineFile(const FontSpec& font) const {
    if (!font.typeface.empty())
        return findTypeface(font.typeface, font.bold, font.italic);
    if (auto path = inSearchFolders(font.file)) {
        FontFile file;
        file.path = *path;
        return file;
    }
    return findFontFile(font.file);
}

bool FontStore::takeOutlines(const FontSpec& font, FontStack& stack) {
    const auto file = outlineFile(font);
    if (file)
        stack.primary = outlineFace(*file, OutlineScale::capitals);
    if (!stack.primary)
        return false;
    stack.isAvailable = !file->isSubstitute;
    if (file->isSubstitute)
        noteSubstitution(font.typeface.empty() ? baseName(font.file) : std::wstring_view(font.typeface),
                         file->family);
    return true;
}

FontStack FontStore::makeStack(const FontSpec& font) {
    FontStack stack;
    const bool wantsOutlines = !font.typeface.empty() || isOutlineFileName(font.file);
    if (wantsOutlines && takeOutlines(font, stack))
        return stack;
    stack.primary = shapeFace(font.file.empty() ? L"txt" : std::wstring_view(font.file));
    stack.isAvailable = stack.primary != nullptr;
    if (!stack.primary) {
        stack.primary = plainFace();
        noteSubstitution(baseName(font.file.empty() ? font.typeface : font.file), L"txt.shx");
    }
    if (font.bigFontFile.empty())
        return stack;
    // Without its file a big font's characters come from the system's fonts, as big as it would draw them.
    if (shapeFile(font.bigFontFile))
        stack.ideographs = shapeFace(font.bigFontFile);
    if (!stack.ideographs && !isStandardBigFont(font.bigFontFile)) {
        stack.isAvailable = false;
        const auto chinese = findFontWith(U'\u4E2D');
        noteSubstitution(baseName(font.bigFontFile), chinese ? chinese->family : std::wstring());
    }
    return stack;
}

void FontStore::noteSubstitution(std::wstring_view wanted, std::wstring_view used) {
    if (mSubstituted.insert(fold(wanted)).second)
        mSubstitutions.push_back({std::wstring(wanted), std::wstring(used)});
}

FontStack& FontStore::stack(const FontSpec& font) {
    if (mLastStack && mLastFont == font)
        return *mLastStack;
    const auto key = std::tuple(font.typeface, font.file, font.bigFontFile, font.bold, font.italic);
    auto found = mStacks.find(key);
    if (found == mStacks.end())
        found = mStacks.emplace(key, makeStack(font)).first;
    mLastFont = font;
    mLastStack = &found->second;
    return found->second;
}

const Glyph* FontStore::lookUp(FontStack& fonts, char32_t character) {
    if (isInvisible(character))
        return mInvisible.get();
    if (fonts.ideographs && character >= 0x80)
        if (const Glyph* glyph = fonts.ideographs->glyph(character))
            return glyph;
    if (const Glyph* glyph = fonts.primary->glyph(character))
        return glyph;
    const char32_t sign = signOfPlace(character);
    return sign != 0 ? glyph(fonts, sign) : lookUpElsewhere(fonts, character);
}

const Glyph* FontStore::lookUpElsewhere(FontStack& fonts, char32_t character) {
    // Control characters have a sign at their place in shape fonts only; what an outline font draws there is
    // its own.
    const bool isControl = character >= 0x7F && character <= 0x9F;
    const bool standsByStrokes = fonts.primary->isStroke() && isIdeographic(character);
    if (const auto file = isControl ? std::nullopt : findFontWith(character, standsByStrokes))
        if (FontFace* face =
                outlineFace(*file, standsByStrokes ? OutlineScale::ideographs : OutlineScale::capitals))
            if (const Glyph* glyph = face->glyph(character))
                return glyph;
    if (const Glyph* glyph = plainFace()->glyph(character)) // signs of places that only shape fonts have
        return glyph;
    return mMissing.get();
}

const Glyph* FontStore::verticalGlyph(FontStack& fonts, char32_t character) {
    if (fonts.ideographs && character >= 0x80)
        if (const Glyph* glyph = fonts.ideographs->verticalGlyph(character))
            return glyph;
    return fonts.primary->verticalGlyph(character);
}

void FontStore::setSearchFolders(std::vector<std::filesystem::path> folders) {
    mSearchFolders = std::move(folders);
    mStacks.clear();
    mLastStack = nullptr;
    // Faces already handed out stay: texts already shaped point to their glyphs.
    for (auto& [name, face] : mStrokeFaces)
        mRetiredFaces.push_back(std::move(face));
    mStrokeFaces.clear();
}

} // namespace host
