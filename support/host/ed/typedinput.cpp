// What is typed, cut into answers.
#include "host/ed/console.h"
#include "host/ed/input.h"
#include "host/ed/lisphook.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <cwctype>

namespace host {
namespace {

constexpr wchar_t controlC = 3;
constexpr wchar_t escapeCharacter = 27;

bool isCancelCharacter(int c) {
    return c == controlC || c == escapeCharacter;
}
bool isBlank(int c) {
    return c == L' ' || c == L'\t';
}
bool isLineEnd(int c) {
    return c == L'\n' || c == L'\r';
}

} // namespace

InputItem InputItem::ofText(std::wstring text) {
    InputItem item;
    item.kind = Kind::text;
    item.text = std::move(text);
    return item;
}

InputItem InputItem::ofValue(ResbufList value) {
    InputItem item;
    item.kind = Kind::value;
    item.value = std::move(value);
    return item;
}

void TypedInput::post(std::wstring_view text) {
    mPosted.erase(0, mPostedAt);
    mPostedAt = 0;
    mPosted.append(text);
}

std::wstring TypedInput::takePosted() {
    std::wstring rest = mPosted.substr(mPostedAt);
    mPosted.clear();
    mPostedAt = 0;
    return rest;
}

bool TypedInput::nextLine(std::wstring& line) {
    if (mStream == nullptr) {
        return false;
    }
    if (mStream->rdbuf()->in_avail() <= 0) {
        console().flush(); // somebody may be reading the prompt before answering
    }
    std::string bytes;
    if (!std::getline(*mStream, bytes)) {
        return false;
    }
    if (mLineNumber == 0 && bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.erase(0, 3);
    }
    if (!bytes.empty() && bytes.back() == '\r') {
        bytes.pop_back();
    }
    line = fromUtf8(bytes);
    return true;
}

bool TypedInput::loadLine() {
    std::wstring line;
    if (!nextLine(line)) {
        return false;
    }
    ++mLineNumber;
    mLine = std::move(line);
    mLine.push_back(L'\n');
    mLineAt = 0;
    mLineBegun = false;
    return true;
}

/// The next character without taking it.
int TypedInput::peek() {
    if (mLineBegun && mLineAt < mLine.size()) {
        return mLine[mLineAt];
    }
    if (mPostedAt < mPosted.size()) {
        return mPosted[mPostedAt];
    }
    if (mLineAt >= mLine.size() && !loadLine()) {
        return none;
    }
    return mLine[mLineAt];
}

bool TypedInput::hasTyped() const {
    return (mLineBegun && mLineAt < mLine.size()) || mPostedAt < mPosted.size();
}

void TypedInput::advance() {
    const bool fromLine = (mLineBegun && mLineAt < mLine.size()) || mPostedAt >= mPosted.size();
    mFromStream = fromLine;
    if (!fromLine) {
        ++mPostedAt;
        return;
    }
    mLineBegun = true;
    if (++mLineAt >= mLine.size()) {
        mLineBegun = false;
    }
}

bool TypedInput::atEnd() {
    return peek() == none;
}

std::wstring TypedInput::position() const {
    return mLineNumber > 0 ? formatted(L"第 %d 行", mLineNumber) : std::wstring();
}

std::optional<std::wstring> TypedInput::takeDialogLine() {
    bool escape = false;
    while (peek() == L';' && skipCommentOrEscape(escape)) {
    }
    if (peek() != L'@' || mLineBegun || mPostedAt < mPosted.size() || std::iswalpha(mLine[1]) == 0) {
        return std::nullopt; // a relative point goes on with a number
    }
    std::wstring line = mLine.substr(0, mLine.size() - 1);
    mLineAt = mLine.size();
    return line;
}

void TypedInput::close() {
    mStream = nullptr;
    mLine.clear();
    mLineAt = 0;
    mLineBegun = false;
    takePosted();
}

/// Passes over a whole line that is no answer; `escape` when it was ^C.
bool TypedInput::skipCommentOrEscape(bool& escape) {
    escape = false;
    if (mLineBegun || mPostedAt < mPosted.size() || mLineAt >= mLine.size()) {
        return false;
    }
    const std::wstring_view line = trim(std::wstring_view(mLine));
    escape = line == L"^C" || line == L"^c";
    if (!escape && !mLine.starts_with(L';')) {
        return false;
    }
    mLineAt = mLine.size();
    mFromStream = true;
    return true;
}

InputItem TypedInput::read(const InputRequest& request) {
    for (;;) {
        const int next = peek();
        if (next == none) {
            return InputItem::of(InputItem::Kind::end);
        }
        bool escape = false;
        if (skipCommentOrEscape(escape)) {
            if (escape) {
                return InputItem::of(InputItem::Kind::cancel);
            }
            continue;
        }
        if (isCancelCharacter(next)) {
            advance();
            return InputItem::of(InputItem::Kind::cancel);
        }
        const bool lisp = next == L'(' || next == L'!';
        return request.mode == ReadMode::token && lisp ? readLisp() : readText(request.mode);
    }
}

InputItem TypedInput::readText(ReadMode mode) {
    InputItem item = InputItem::ofText({});
    bool quoted = false; // a blank within quotes is part of the answer
    for (int c = peek(); c != none; c = peek()) {
        advance();
        if (isCancelCharacter(c)) {
            return InputItem::of(InputItem::Kind::cancel);
        }
        if (isLineEnd(c) || (mode == ReadMode::token && isBlank(c) && !quoted)) {
            break;
        }
        if (c == L'"' && (quoted || item.text.empty() || item.text.back() == L',')) {
            quoted = !quoted;
        }
        item.text.push_back(static_cast<wchar_t>(c));
    }
    return item;
}

InputItem TypedInput::readLisp() {
    if (peek() == L'!') {
        InputItem item = readText(ReadMode::token);
        if (item.kind == InputItem::Kind::text) {
            item.kind = InputItem::Kind::lisp;
        }
        return item;
    }
    InputItem item = InputItem::of(InputItem::Kind::lisp);
    LispTextScanner scanner;
    for (int c = peek(); c != none; c = peek()) {
        advance();
        if (isCancelCharacter(c)) {
            return InputItem::of(InputItem::Kind::cancel);
        }
        item.text.push_back(c == L'\r' ? L'\n' : static_cast<wchar_t>(c));
        if (scanner.feed(item.text.back())) {
            if (hasTyped() && (isBlank(peek()) || isLineEnd(peek()))) {
                advance();
            }
            return item;
        }
    }
    return item; // incomplete: evaluating it tells so
}

} // namespace host
