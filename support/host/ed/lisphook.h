// What the editor asks of the LISP interpreter, which stands above it and hangs itself in here.
#pragma once

#include "host/rx/rx.h"

#include <functional>
#include <string>

class AcApDocument;

namespace host {

/// What an expression came to.
struct LispOutcome {
    enum class Status { value, error, cancelled };
    Status status = Status::value;
    /// The value as a result list (a point one RT3DPOINT, a list between RTLB and RTLE, nil RTNIL); null when
    /// the value prints as nothing.
    ResbufList value;
    std::wstring printed; ///< the value as the command line shows it
    std::wstring error;   ///< one line
};

struct LispHook {
    /// Evaluates one complete expression (or !name) in the current document.
    std::function<LispOutcome(const std::wstring& expression)> evaluate;
    /// Whether a function C:name was defined in LISP.
    std::function<bool(const std::wstring& name)> isCommand;
    /// Runs it. The error line of the outcome was not yet shown.
    std::function<LispOutcome(const std::wstring& name)> runCommand;
    /// A symbol's value for acedGetSym, and setting it for acedPutSym; false when that is not possible.
    std::function<bool(const std::wstring& symbol, ResbufList& value)> getSymbol;
    std::function<bool(const std::wstring& symbol, const resbuf* value)> putSymbol;
    /// Calls a LISP function for acedInvoke: name, then arguments. False on an error.
    std::function<bool(const resbuf* call, ResbufList& result)> invoke;
    /// Before every command prompt of a document: what each drawing begins with is loaded the first time.
    std::function<void(AcApDocument&)> beforePrompt;
    /// A document's interpreter is no longer needed.
    std::function<void(AcApDocument&)> documentClosed;
};

LispHook& lispHook();

/// Finds the end of the first expression in LISP text fed to it character by character.
class LispTextScanner {
public:
    /// True when the character completes the expression: its last parenthesis closes outside of strings and
    /// comments.
    bool feed(wchar_t character);

private:
    enum class State { code, string, escaped, semicolon, lineComment, blockComment, blockBar };
    State mState = State::code;
    int mDepth = 0;
};

} // namespace host
