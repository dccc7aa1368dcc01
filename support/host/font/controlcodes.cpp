// The control codes of drawing texts.
#include "host/font/font.h"

#include <optional>

namespace host {

namespace {

constexpr char32_t diameterSign = 0x2205;

std::optional<char32_t> readNumber(std::wstring_view digits, int base) {
    char32_t value = 0;
    for (const wchar_t digit : digits) {
        int number = 0;
        if (digit >= L'0' && digit <= L'9')
            number = digit - L'0';
        else if (digit >= L'a' && digit <= L'f')
            number = digit - L'a' + 10;
        else if (digit >= L'A' && digit <= L'F')
            number = digit - L'A' + 10;
        else
            return std::nullopt;
        if (number >= base)
            return std::nullopt;
        value = value * static_cast<char32_t>(base) + static_cast<char32_t>(number);
    }
    return value;
}

class Decoder {
public:
    explicit Decoder(std::wstring_view text) : m_text(text) {}

    std::vector<DecodedCharacter> run() {
        m_result.reserve(m_text.size());
        while (m_position < m_text.size()) {
            if (!readPercentCode() && !readBackslashCode())
                put(static_cast<char32_t>(m_text[m_position++]));
        }
        return std::move(m_result);
    }

private:
    std::wstring_view rest() const { return m_text.substr(m_position); }

    void put(char32_t character) {
        m_result.push_back({character, m_underlined, m_overlined, m_struckThrough});
    }

    bool readPercentCode() {
        const std::wstring_view code = rest();
        if (code.size() < 3 || !code.starts_with(L"%%"))
            return false;
        if (code.size() >= 5) {
            const auto number = readNumber(code.substr(2, 3), 10);
            if (number && *number < 256) {
                if (*number >= 32) // control characters draw nothing
                    put(*number);
                m_position += 5;
                return true;
            }
        }
        switch (code[2]) {
        case L'd':
        case L'D':
            put(0xB0);
            break;
        case L'p':
        case L'P':
            put(0xB1);
            break;
        case L'c':
        case L'C':
            put(diameterSign);
            break;
        case L'u':
        case L'U':
            m_underlined = !m_underlined;
            break;
        case L'o':
        case L'O':
            m_overlined = !m_overlined;
            break;
        case L'k':
        case L'K':
            m_struckThrough = !m_struckThrough;
            break;
        case L'%':
            put(U'%');
            break;
        default: // an unknown code draws its character
            put(static_cast<char32_t>(code[2]));
            break;
        }
        m_position += 3;
        return true;
    }

    // \U+XXXX is a code point; \M+nXXXX a character of one of the East Asian code pages, which readers of
    // files have translated already: what remains is drawn as it stands.
    bool readBackslashCode() {
        const std::wstring_view code = rest();
        if (code.size() < 7 || !(code.starts_with(L"\\U+") || code.starts_with(L"\\u+")))
            return false;
        const auto number = readNumber(code.substr(3, 4), 16);
        if (!number)
            return false;
        put(*number);
        m_position += 7;
        return true;
    }

    std::wstring_view m_text;
    std::size_t m_position = 0;
    bool m_underlined = false, m_overlined = false, m_struckThrough = false;
    std::vector<DecodedCharacter> m_result;
};

} // namespace

std::vector<DecodedCharacter> decodeControlCodes(std::wstring_view text, bool raw) {
    if (!raw)
        return Decoder(text).run();
    std::vector<DecodedCharacter> result;
    result.reserve(text.size());
    for (const wchar_t character : text)
        result.push_back({static_cast<char32_t>(character), false, false, false});
    return result;
}

} // namespace host
