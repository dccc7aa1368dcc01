// The place where the interpreter hangs itself in, and what the editor must know of LISP text itself.
#include "host/ed/lisphook.h"

namespace host {
namespace {

bool isLineEnd(wchar_t c) {
    return c == L'\n' || c == L'\r';
}

} // namespace

LispHook& lispHook() {
    static LispHook hook;
    return hook;
}

bool LispTextScanner::feed(wchar_t c) {
    switch (mState) {
    case State::string:
        mState = c == L'\\' ? State::escaped : c == L'"' ? State::code : State::string;
        return false;
    case State::escaped:
        mState = State::string;
        return false;
    case State::lineComment:
        mState = isLineEnd(c) ? State::code : State::lineComment;
        return false;
    case State::blockComment:
        mState = c == L'|' ? State::blockBar : State::blockComment;
        return false;
    case State::blockBar:
        mState = c == L';' ? State::code : c == L'|' ? State::blockBar : State::blockComment;
        return false;
    case State::semicolon:
        mState = c == L'|' ? State::blockComment : isLineEnd(c) ? State::code : State::lineComment;
        return false;
    case State::code:
        break;
    }
    if (c == L'"') {
        mState = State::string;
    } else if (c == L';') {
        mState = State::semicolon;
    } else if (c == L'(') {
        ++mDepth;
    } else if (c == L')') {
        return --mDepth <= 0;
    }
    return false;
}

} // namespace host
