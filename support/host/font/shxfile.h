// Compiled shape files (.shx): shapes and shape fonts, Unicode fonts and big fonts, taken apart into their
// entries. Numbers are little-endian.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

class ShxFile {
public:
    enum class Kind { shapes, unicodeFont, bigFont };

    // Nothing when the bytes are no shape file, or hold no whole entry.
    static std::optional<ShxFile> parse(std::string bytes);

    Kind kind() const { return mKind; }
    // A font says how far letters go above and below the base line; plain shapes do not.
    bool isFont() const { return mAbove > 0; }
    int above() const { return mAbove; }
    int below() const { return mBelow; }
    // The font has drawings for vertical text as well: special code 14 counts there.
    bool isDual() const { return mIsDual; }
    // A big font whose characters are put together of parts with a width and a height of their own.
    bool isExtended() const { return mIsExtended; }
    // The drawing bytes of an entry, after its name; empty when there is none.
    std::string_view drawing(std::uint32_t code) const;
    bool has(std::uint32_t code) const { return mEntries.contains(code); }

private:
    struct Entry {
        std::size_t offset, length;
    };

    bool parseShapes(std::size_t at);
    bool parseUnicodeFont(std::size_t at);
    bool parseBigFont(std::size_t at);
    bool addEntry(std::uint32_t code, std::size_t offset, std::size_t length);
    void readFontInfo();
    std::uint32_t number(std::size_t at, std::size_t bytes) const; // 0 past the end

    std::string mBytes;
    Kind mKind = Kind::shapes;
    int mAbove = 0, mBelow = 0;
    bool mIsDual = false, mIsExtended = false;
    std::unordered_map<std::uint32_t, Entry> mEntries;
};

} // namespace host
