// A growing text into which numbers are written fast.
#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>
#include <utility>

namespace host {

class TextBuffer {
public:
    TextBuffer& operator<<(std::string_view text) {
        mText += text;
        return *this;
    }
    TextBuffer& operator<<(char character) {
        mText += character;
        return *this;
    }
    template <std::integral Integer>
    TextBuffer& operator<<(Integer number) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        mText.append(digits, end);
        return *this;
    }
    // Up to six decimals, without trailing zeros.
    TextBuffer& operator<<(double number) {
        char digits[400];
        const auto result =
            std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 6);
        std::string_view text(digits, result.ptr);
        text = text.substr(0, text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.remove_suffix(1);
        return *this << (text == "-0" ? std::string_view("0") : text);
    }

    std::size_t size() const { return mText.size(); }
    const std::string& text() const { return mText; }
    void clear() { mText.clear(); }
    // The text, leaving the buffer empty.
    std::string take() { return std::exchange(mText, {}); }

private:
    std::string mText;
};

} // namespace host
