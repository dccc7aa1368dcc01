// The faces and glyphs of every font asked for: found once, kept as long as the process lives.
#pragma once

#include "host/font/font.h"
#include "host/font/outlineface.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>

namespace host {

// The faces that serve one FontSpec: the font itself, its big font, and what is looked up for characters that
// neither has. The faces belong to the store.
struct FontStack {
    FontFace* primary = nullptr;
    FontFace* ideographs = nullptr; // the big font, asked first for what is not ASCII; may be null
    bool isAvailable = false;

    std::array<const Glyph*, 256> latin{};
    std::unordered_map<char32_t, const Glyph*> others;
};

// Not safe to use from several threads: the engine holds its lock.
class FontStore {
public:
    FontStore();
    ~FontStore();

    FontStack& stack(const FontSpec& font);
    // Never null: a character that no font has is an open square.
    const Glyph* glyph(FontStack& fonts, char32_t character) {
        if (character < fonts.latin.size()) {
            const Glyph*& latin = fonts.latin[character];
            return latin ? latin : latin = lookUp(fonts, character);
        }
        const auto [entry, isNew] = fonts.others.try_emplace(character);
        if (isNew)
            entry->second = lookUp(fonts, character);
        return entry->second;
    }
    // The font's own drawing for vertical text, if it has one.
    const Glyph* verticalGlyph(FontStack& fonts, char32_t character);
    // The face of a shape font's name: its file where there is one, else what stands for a standard name,
    // else null.
    FontFace* shapeFace(std::wstring_view name);

    std::vector<FontSubstitution> takeSubstitutions() { return std::move(mSubstitutions); }
    const std::vector<std::filesystem::path>& searchFolders() const { return mSearchFolders; }
    void setSearchFolders(std::vector<std::filesystem::path> folders);

private:
    using FaceKey = std::tuple<std::filesystem::path, int, bool, bool, bool, OutlineScale>;

    FontStack makeStack(const FontSpec& font);
    bool takeOutlines(const FontSpec& font, FontStack& stack);
    const Glyph* lookUp(FontStack& fonts, char32_t character);
    const Glyph* lookUpElsewhere(FontStack& fonts, char32_t character);
    FontFace* outlineFace(const FontFile& file, OutlineScale scale);
    FontFace* plainFace();
    std::optional<std::filesystem::path> inSearchFolders(std::wstring_view name) const;
    std::optional<std::filesystem::path> shapeFile(std::wstring_view name) const;
    std::optional<FontFile> outlineFile(const FontSpec& font) const;
    void noteSubstitution(std::wstring_view wanted, std::wstring_view used);

    std::vector<std::filesystem::path> mSearchFolders;
    std::map<FaceKey, std::unique_ptr<FontFace>> mOutlineFaces;
    std::map<std::wstring, std::unique_ptr<FontFace>> mStrokeFaces; // by folded name
    std::vector<std::unique_ptr<FontFace>> mRetiredFaces;
    std::map<std::tuple<std::wstring, std::wstring, std::wstring, bool, bool>, FontStack> mStacks;
    FontSpec mLastFont; // texts of one style follow each other
    FontStack* mLastStack = nullptr;
    std::unique_ptr<Glyph> mMissing, mInvisible;
    std::set<std::wstring> mSubstituted; // folded names told already
    std::vector<FontSubstitution> mSubstitutions;
};

} // namespace host
