// A growing text into which numbers are written fast.
#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace host {

class TextBuffer {
public:
    TextBuffer& operator<<(std::string_view text) {
        std::ranges::copy(text, room(text.size()));
        mSize += text.size();
        return *this;
    }
    TextBuffer& operator<<(char character) {
        *room(1) = character;
        ++mSize;
        return *this;
    }
    template <std::integral Integer>
    TextBuffer& operator<<(Integer number) {
        constexpr std::size_t longest = 24;
        char* const start = room(longest);
        mSize += static_cast<std::size_t>(std::to_chars(start, start + longest, number).ptr - start);
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

    // "x y operation", a line.
    void putPoint(std::int32_t x, std::int32_t y, char operation) {
        constexpr std::size_t longest = 32;
        char* const start = room(longest);
        char* at = std::to_chars(start, start + longest, x).ptr;
        *at++ = ' ';
        at = std::to_chars(at, start + longest, y).ptr;
        *at++ = ' ';
        *at++ = operation;
        *at++ = '\n';
        mSize += static_cast<std::size_t>(at - start);
    }

    std::size_t size() const { return mSize; }
    std::string_view text() const { return std::string_view(mText).substr(0, mSize); }
    void clear() { mSize = 0; }
    // Memory of a text taken before, to be used again; the buffer must be empty.
    void reuse(std::string memory) {
        mText = std::move(memory);
        mText.resize(mText.capacity());
    }
    // The text, leaving the buffer empty.
    std::string take() {
        mText.resize(mSize);
        mSize = 0;
        return std::exchange(mText, {});
    }

private:
    // Where so many characters can be written after the text.
    char* room(std::size_t count) {
        if (mText.size() - mSize < count)
            mText.resize(std::max({mSize + count, 2 * mText.size(), std::size_t(256)}));
        return mText.data() + mSize;
    }

    std::string mText; // the text, and room behind it
    std::size_t mSize = 0;
};

} // namespace host
