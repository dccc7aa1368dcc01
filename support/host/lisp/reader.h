// Reads expressions from text: comments, numbers, texts with escapes, symbols, lists, dotted pairs, quotes.
#pragma once

#include "host/lisp/value.h"

#include <functional>
#include <optional>
#include <string_view>

namespace host::lisp {

/// Gives the symbol of a name in any case.
using Interner = std::function<Value(std::wstring_view name)>;

class Reader {
public:
    Reader(std::wstring_view source, Interner intern) : mSource(source), mIntern(std::move(intern)) {}

    /// The next expression; nothing at the end of the text. Raises an Error for what can't be read.
    std::optional<Value> next();
    /// The line, from 1, of what could not be read: for a list or text that does not end, where it begins.
    std::size_t faultLine() const;

private:
    [[noreturn]] void fail(std::wstring_view message, std::size_t position);
    void skipBlanks();
    Value read();
    Value readList();
    Value readText();
    wchar_t readEscape();
    Value readAtom();

    std::wstring_view mSource;
    std::size_t mAt = 0;
    std::size_t mFormBegin = 0;
    std::size_t mFault = 0;
    Interner mIntern;
};

/// A number as the reader takes it ("12", "-1.5", "1e3"); an integer beyond 32 bits becomes a real.
std::optional<Value> parseNumber(std::wstring_view text);
} // namespace host::lisp
