// Choosing between UTF-8 and the code page, and resolving escapes.
#include "host/formats/dxf/textdecoder.h"

#include "host/rx/text.h"

#include <cstdint>
#include <cstring>

namespace host::dxf {

void encodeLineEnds(std::string& text) {
    for (std::size_t at = text.find_first_of("\n\r"); at != text.npos; at = text.find_first_of("\n\r", at)) {
        text.replace(at, 1, text[at] == '\n' ? "^J" : "^M");
    }
}

void TextDecoder::setCodePage(CodePage page) {
    mMode = page == CodePage::utf8 ? Mode::utf8 : Mode::codePage;
    if (page != CodePage::utf8) {
        mPage = page;
    }
}

/// ASCII without a backslash before U+ or M+.
bool TextDecoder::isPlain(std::string_view raw) {
    const char* at = raw.data();
    const char* const end = at + raw.size();
    bool backslash = false;
    for (; end - at >= 8; at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, sizeof word);
        constexpr std::uint64_t ones = 0x0101010101010101;
        if ((word & (ones * 0x80)) != 0) {
            return false;
        }
        const std::uint64_t difference = word ^ (ones * '\\');
        backslash = backslash || ((difference - ones) & ~difference & (ones * 0x80)) != 0;
    }
    for (; at != end; ++at) {
        if ((static_cast<unsigned char>(*at) & 0x80) != 0) {
            return false;
        }
        backslash = backslash || *at == '\\';
    }
    if (!backslash) {
        return true;
    }
    for (std::size_t found = raw.find('\\'); found != raw.npos; found = raw.find('\\', found + 1)) {
        if (found + 2 < raw.size() && raw[found + 2] == '+' &&
            std::strchr("UuMm", raw[found + 1]) != nullptr) {
            return false;
        }
    }
    return true;
}

std::string_view TextDecoder::decoded(std::string_view raw) {
    const bool escapes = raw.find('\\') != raw.npos;
    if (mMode != Mode::codePage) {
        if (isValidUtf8(raw)) {
            if (!escapes) {
                return raw;
            }
            mBuffer = toUtf8(resolveEscapes(fromUtf8(raw)));
            encodeLineEnds(mBuffer);
            return mBuffer;
        }
        mWrongEncoding = mWrongEncoding || mMode == Mode::utf8;
    }
    mBuffer = toUtf8(decodeText(raw, mPage));
    encodeLineEnds(mBuffer);
    return mBuffer;
}

std::string_view TextDecoder::remembered(std::string_view raw) {
    if (mMode != Mode::codePage) {
        return decoded(raw);
    }
    const auto [found, added] = mNames.try_emplace(raw);
    if (added) {
        found->second = decoded(raw);
    }
    return found->second;
}

} // namespace host::dxf
