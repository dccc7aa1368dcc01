// Reads a text's characters one by one, its control codes among them.
#pragma once

#include "host/font/font.h"

#include <optional>

namespace host {

class ControlCodeReader {
public:
    // raw: control codes are characters.
    ControlCodeReader(std::wstring_view text, bool raw) : mText(text), mIsRaw(raw) {}

    bool isAtEnd() const { return mPosition >= mText.size(); }
    // The next character; nothing where a code only switches a line, or draws nothing.
    std::optional<DecodedCharacter> next() {
        const wchar_t first = mText[mPosition];
        if ((first == L'%' || first == L'\\') && !mIsRaw)
            return nextMaybeCode();
        ++mPosition;
        return made(static_cast<char32_t>(first));
    }

private:
    DecodedCharacter made(char32_t character) const {
        return {character, mUnderlined, mOverlined, mStruckThrough};
    }
    std::optional<DecodedCharacter> nextMaybeCode();
    std::optional<DecodedCharacter> percentCode();
    std::optional<DecodedCharacter> numberCode(char32_t number);
    std::optional<char32_t> backslashCode();

    std::wstring_view mText;
    bool mIsRaw;
    std::size_t mPosition = 0;
    bool mUnderlined = false, mOverlined = false, mStruckThrough = false;
};

} // namespace host
