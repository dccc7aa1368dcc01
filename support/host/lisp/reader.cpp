#include "host/lisp/reader.h"

#include "host/lisp/error.h"
#include "host/lisp/stack.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace host::lisp {

namespace {

bool isDelimiter(wchar_t character) {
    return character == L'(' || character == L')' || character == L'\'' || character == L'"' ||
           character == L';' || isSpace(character) || character < L' ';
}

bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

// Position after the comment that begins here; the end of the text for an open one.
std::size_t afterComment(std::wstring_view source, std::size_t at) {
    const bool block = at + 1 < source.size() && source[at + 1] == L'|';
    const std::size_t end = block ? source.find(L"|;", at + 2) : source.find(L'\n', at);
    if (end == std::wstring_view::npos) {
        return source.size();
    }
    return end + (block ? 2 : 1);
}

} // namespace

void Reader::skipBlanks() {
    while (mAt < mSource.size()) {
        const wchar_t character = mSource[mAt];
        if (character == L';') {
            mAt = afterComment(mSource, mAt);
        } else if (isSpace(character) || character < L' ' || character == L'\xFEFF') {
            ++mAt;
        } else {
            return;
        }
    }
}

void Reader::fail(std::wstring_view message, std::size_t position) {
    mFault = position;
    throw Error(std::wstring(message));
}

std::size_t Reader::faultLine() const {
    const std::wstring_view before = mSource.substr(0, std::min(mFault, mSource.size()));
    return static_cast<std::size_t>(std::ranges::count(before, L'\n')) + 1;
}

std::optional<Value> Reader::next() {
    skipBlanks();
    mFormBegin = mFault = mAt;
    if (mAt >= mSource.size()) {
        return std::nullopt;
    }
    return read();
}

Value Reader::read() {
    ensureStack();
    skipBlanks();
    if (mAt >= mSource.size()) {
        fail(L"输入的列表有缺陷", mFormBegin);
    }
    switch (mSource[mAt]) {
    case L'(':
        ++mAt;
        return readList();
    case L')':
        fail(L"输入了多余的右括号", mAt++);
    case L'\'':
        ++mAt;
        return list(mIntern(L"QUOTE"), read());
    case L'"':
        ++mAt;
        return readText();
    default:
        return readAtom();
    }
}

Value Reader::readList() {
    ListBuilder builder;
    for (;;) {
        skipBlanks();
        if (mAt >= mSource.size()) {
            fail(L"输入的列表有缺陷", mFormBegin);
        }
        if (mSource[mAt] == L')') {
            ++mAt;
            return builder.take();
        }
        const bool dot = mSource[mAt] == L'.' && mAt + 1 < mSource.size() && isDelimiter(mSource[mAt + 1]);
        if (!dot) {
            builder.add(read());
            continue;
        }
        ++mAt;
        if (builder.empty()) {
            fail(L"输入中的点位置不对", mAt);
        }
        builder.end(read());
        skipBlanks();
        if (mAt >= mSource.size()) {
            fail(L"输入的列表有缺陷", mFormBegin);
        }
        if (mSource[mAt] != L')') {
            fail(L"输入中的点位置不对", mAt);
        }
        ++mAt;
        return builder.take();
    }
}

wchar_t Reader::readEscape() {
    const auto numberOfBase = [this](unsigned base, int most) {
        unsigned value = 0;
        for (int count = 0; count < most && mAt < mSource.size(); ++count, ++mAt) {
            const wchar_t c = mSource[mAt];
            const unsigned digit = isDigit(c)               ? static_cast<unsigned>(c - L'0')
                                   : c >= L'a' && c <= L'f' ? static_cast<unsigned>(c - L'a' + 10)
                                   : c >= L'A' && c <= L'F' ? static_cast<unsigned>(c - L'A' + 10)
                                                            : base;
            if (digit >= base) {
                break;
            }
            value = value * base + digit;
        }
        return static_cast<wchar_t>(value);
    };
    const wchar_t character = mSource[mAt++];
    switch (character) {
    case L'n':
        return L'\n';
    case L't':
        return L'\t';
    case L'r':
        return L'\r';
    case L'e':
        return L'\x1B';
    case L'U':
        if (mAt + 4 < mSource.size() && mSource[mAt] == L'+') {
            ++mAt;
            return numberOfBase(16, 4);
        }
        return character;
    default:
        if (isDigit(character) && character < L'8') {
            --mAt;
            return numberOfBase(8, 3);
        }
        return character;
    }
}

Value Reader::readText() {
    const std::size_t begin = mAt;
    std::wstring text;
    while (mAt < mSource.size()) {
        const wchar_t character = mSource[mAt++];
        if (character == L'"') {
            return makeText(std::move(text));
        }
        if (character != L'\\' || mAt >= mSource.size()) {
            text += character;
        } else {
            text += readEscape();
        }
    }
    fail(L"输入的字符串有缺陷", begin);
}

Value Reader::readAtom() {
    const std::size_t begin = mAt;
    while (mAt < mSource.size() && !isDelimiter(mSource[mAt])) {
        ++mAt;
    }
    const std::wstring_view word = mSource.substr(begin, mAt - begin);
    if (word == L".") {
        fail(L"输入中的点位置不对", mAt);
    }
    if (std::optional<Value> number = parseNumber(word)) {
        return *number;
    }
    return mIntern(word);
}

std::optional<Value> parseNumber(std::wstring_view text) {
    const std::size_t sign = !text.empty() && (text[0] == L'+' || text[0] == L'-') ? 1 : 0;
    const bool begins =
        text.size() > sign &&
        (isDigit(text[sign]) || (text[sign] == L'.' && text.size() > sign + 1 && isDigit(text[sign + 1])));
    if (!begins || text.size() > 400) {
        return std::nullopt;
    }
    std::string digits;
    bool integral = true;
    for (const wchar_t character : text.substr(text[0] == L'+' ? 1 : 0)) {
        if (character > L'z') {
            return std::nullopt;
        }
        integral = integral && (isDigit(character) || character == L'-');
        digits += static_cast<char>(character);
    }
    const char* const last = digits.data() + digits.size();
    if (integral) {
        std::int64_t value = 0;
        const auto result = std::from_chars(digits.data(), last, value);
        if (result.ptr == last && result.ec == std::errc()) {
            return integerOrReal(value);
        }
    }
    double value = 0.0;
    const auto result = std::from_chars(digits.data(), last, value);
    if (result.ptr != last || (result.ec != std::errc() && result.ec != std::errc::result_out_of_range)) {
        return std::nullopt;
    }
    if (result.ec == std::errc::result_out_of_range) {
        return std::nullopt;
    }
    return value;
}

} // namespace host::lisp
