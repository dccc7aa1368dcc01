#include "host/font/controlcodes.h"

#include "host/rx/codepage.h"

namespace host {

namespace {

constexpr char32_t diameterSign = 0x2205;

// The number of a %%nnn at the start of the text.
std::optional<char32_t> percentNumber(std::wstring_view text) {
    if (text.size() < 5 || !text.starts_with(L"%%"))
        return std::nullopt;
    char32_t number = 0;
    for (const wchar_t digit : text.substr(2, 3)) {
        if (digit < L'0' || digit > L'9')
            return std::nullopt;
        number = number * 10 + static_cast<char32_t>(digit - L'0');
    }
    return number < 256 ? std::optional(number) : std::nullopt;
}

std::optional<char32_t> chineseCharacter(char32_t high, char32_t low) {
    const char bytes[] = {static_cast<char>(high), static_cast<char>(low)};
    const std::wstring text = decode({bytes, 2}, CodePage::ansi936);
    if (text.size() != 1 || text[0] == 0xFFFD)
        return std::nullopt;
    return static_cast<char32_t>(text[0]);
}

} // namespace

std::optional<DecodedCharacter> ControlCodeReader::nextMaybeCode() {
    const std::wstring_view rest = mText.substr(mPosition);
    if (rest.size() >= 3 && rest.starts_with(L"%%"))
        return percentCode();
    if (const auto character = backslashCode())
        return made(*character);
    return made(static_cast<char32_t>(mText[mPosition++]));
}

std::optional<DecodedCharacter> ControlCodeReader::percentCode() {
    if (const auto number = percentNumber(mText.substr(mPosition))) {
        mPosition += 5;
        return numberCode(*number);
    }
    const wchar_t code = mText[mPosition + 2];
    mPosition += 3;
    switch (code) {
    case L'd':
    case L'D':
        return made(0xB0);
    case L'p':
    case L'P':
        return made(0xB1);
    case L'c':
    case L'C':
        return made(diameterSign);
    case L'u':
    case L'U':
        mUnderlined = !mUnderlined;
        return std::nullopt;
    case L'o':
    case L'O':
        mOverlined = !mOverlined;
        return std::nullopt;
    case L'k':
    case L'K':
        mStruckThrough = !mStruckThrough;
        return std::nullopt;
    default: // an unknown code draws its character, %%% a percent sign
        return made(static_cast<char32_t>(code));
    }
}

// A number is a place in the font. Two that follow each other can be the two bytes of a Chinese character,
// as programs that know bytes only write it.
std::optional<DecodedCharacter> ControlCodeReader::numberCode(char32_t number) {
    constexpr char32_t firstChineseByte = 0xA1;
    if (number < 32) // control characters draw nothing
        return std::nullopt;
    if (number >= firstChineseByte)
        if (const auto low = percentNumber(mText.substr(mPosition)); low && *low >= firstChineseByte)
            if (const auto character = chineseCharacter(number, *low)) {
                mPosition += 5;
                return made(*character);
            }
    return made(number);
}

// \U+XXXX is a UTF-16 unit, \M+nXXXX a double byte of one of the East Asian code pages.
std::optional<char32_t> ControlCodeReader::backslashCode() {
    constexpr std::size_t lengths[] = {7, 8, 14}; // of a unit, a double byte, a pair of units
    const std::wstring_view rest = mText.substr(mPosition);
    for (const std::size_t length : lengths) {
        if (rest.size() < length)
            break;
        const std::wstring resolved = resolveEscapes(rest.substr(0, length));
        if (resolved.size() == 1) {
            mPosition += length;
            return static_cast<char32_t>(resolved[0]);
        }
    }
    return std::nullopt;
}

std::vector<DecodedCharacter> decodeControlCodes(std::wstring_view text, bool raw) {
    std::vector<DecodedCharacter> result;
    result.reserve(text.size());
    for (ControlCodeReader reader(text, raw); !reader.isAtEnd();)
        if (const auto character = reader.next())
            result.push_back(*character);
    return result;
}

} // namespace host
