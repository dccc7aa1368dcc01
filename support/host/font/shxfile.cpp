#include "host/font/shxfile.h"

namespace host {

std::optional<ShxFile> ShxFile::parse(std::string bytes) {
    constexpr std::string_view mark = "AutoCAD-86 ";
    const std::size_t end = bytes.substr(0, 64).find('\x1A');
    if (!bytes.starts_with(mark) || end == bytes.npos)
        return std::nullopt;
    ShxFile file;
    file.mBytes = std::move(bytes);
    const std::string_view kind = std::string_view(file.mBytes).substr(mark.size());
    bool isGood = false;
    if (kind.starts_with("shapes"))
        isGood = file.parseShapes(end + 1);
    else if (kind.starts_with("unifont"))
        isGood = file.parseUnicodeFont(end + 1);
    else if (kind.starts_with("bigfont"))
        isGood = file.parseBigFont(end + 1);
    if (!isGood)
        return std::nullopt;
    file.readFontInfo();
    return file;
}

std::uint32_t ShxFile::number(std::size_t at, std::size_t bytes) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes && at + i < mBytes.size(); ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(mBytes[at + i])) << (8 * i);
    return value;
}

bool ShxFile::addEntry(std::uint32_t code, std::size_t offset, std::size_t length) {
    if (offset > mBytes.size() || length > mBytes.size() - offset)
        return false;
    mEntries.try_emplace(code, Entry{offset, length});
    return true;
}

// First and last code, the count, a code and a length for each shape, then their definitions in that order.
bool ShxFile::parseShapes(std::size_t at) {
    mKind = Kind::shapes;
    const std::size_t count = number(at + 4, 2);
    std::size_t offset = at + 6 + 4 * count;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t length = number(at + 6 + 4 * i + 2, 2);
        if (!addEntry(number(at + 6 + 4 * i, 2), offset, length))
            break; // a file that was cut off keeps what is there
        offset += length;
    }
    return !mEntries.empty();
}

// The count and the length of the font's description, the description, then code, length and definition of
// each character.
bool ShxFile::parseUnicodeFont(std::size_t at) {
    mKind = Kind::unicodeFont;
    const std::size_t length = number(at + 2, 2);
    if (!addEntry(0, at + 4, length))
        return false;
    std::size_t next = at + 4 + length;
    while (next + 4 <= mBytes.size()) {
        const std::size_t size = number(next + 2, 2);
        if (!addEntry(number(next, 2), next + 4, size))
            break;
        next += 4 + size;
    }
    return mEntries.size() > 1;
}

// The size of an index row, the count of rows, the ranges of first bytes, then the rows: code, length, place
// in the file.
bool ShxFile::parseBigFont(std::size_t at) {
    mKind = Kind::bigFont;
    const std::size_t count = number(at + 2, 2), ranges = number(at + 4, 2);
    std::size_t row = at + 6 + 4 * ranges;
    for (std::size_t i = 0; i < count && row + 8 <= mBytes.size(); ++i, row += 8) {
        const std::size_t length = number(row + 2, 2), offset = number(row + 4, 4);
        if (length > 0)
            addEntry(number(row, 2), offset, length);
    }
    return !mEntries.empty();
}

// Entry 0 of a font: its name, above, below, modes; in a big font of the extended kind the height, zero,
// modes, the width. A zero ends both.
void ShxFile::readFontInfo() {
    const std::string_view info = drawing(0);
    if (info.size() < 2)
        return;
    mAbove = static_cast<unsigned char>(info[0]);
    mBelow = static_cast<unsigned char>(info[1]);
    mIsDual = info.size() > 2 && info[2] == 2;
    mIsExtended = mKind == Kind::bigFont && info.size() > 4;
}

std::string_view ShxFile::drawing(std::uint32_t code) const {
    const auto found = mEntries.find(code);
    if (found == mEntries.end())
        return {};
    const std::string_view entry =
        std::string_view(mBytes).substr(found->second.offset, found->second.length);
    const std::size_t nameEnd = entry.find('\0');
    return nameEnd == entry.npos ? std::string_view() : entry.substr(nameEnd + 1);
}

} // namespace host
