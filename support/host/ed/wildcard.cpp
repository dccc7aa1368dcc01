// Wildcard patterns: alternatives between commas, ~ for "not", # a digit, @ a letter, . anything else, * any
// run, ? any character, [...] and [~...] one of a set, ` the next character as it stands.
#include "host/ed/aced.h"
#include "host/rx/text.h"

namespace host {
namespace {

bool isWildLetter(wchar_t c) {
    return toLower(c) != toUpper(c) || (c > 0x7F && !isSpace(c));
}
bool isWildDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

/// One element of a pattern that stands for a single character, and where the next begins.
struct Element {
    std::wstring_view pattern;
    std::size_t at;

    bool isRun() const { return pattern[at] == L'*'; }

    std::size_t next() const {
        if (pattern[at] == L'`' && at + 1 < pattern.size()) {
            return at + 2;
        }
        if (pattern[at] == L'[') {
            const std::size_t close = closing();
            return close == std::wstring_view::npos ? at + 1 : close + 1;
        }
        return at + 1;
    }
    bool fits(wchar_t c) const {
        switch (pattern[at]) {
        case L'?':
            return true;
        case L'#':
            return isWildDigit(c);
        case L'@':
            return isWildLetter(c);
        case L'.':
            return !isWildDigit(c) && !isWildLetter(c);
        case L'`':
            return at + 1 < pattern.size() ? pattern[at + 1] == c : c == L'`';
        case L'[':
            return closing() == std::wstring_view::npos ? c == L'[' : inSet(c);
        default:
            return pattern[at] == c;
        }
    }

private:
    std::size_t closing() const {
        std::size_t from = at + 1;
        from += from < pattern.size() && pattern[from] == L'~' ? 1 : 0;
        return pattern.find(L']', from + 1);
    }
    bool inSet(wchar_t c) const {
        const std::size_t close = closing();
        std::size_t i = at + 1;
        const bool inverted = pattern[i] == L'~';
        i += inverted ? 1 : 0;
        bool found = false;
        for (; i < close; ++i) {
            if (pattern[i] == L'`' && i + 1 < close) {
                ++i;
            }
            if (i + 2 < close && pattern[i + 1] == L'-') {
                found = found || (pattern[i] <= c && c <= pattern[i + 2]);
                i += 2;
            } else {
                found = found || pattern[i] == c;
            }
        }
        return found != inverted;
    }
};

/// Time at most the product of the lengths: only the last run needs to be tried again.
bool matchOne(std::wstring_view text, std::wstring_view pattern) {
    const bool inverted = !pattern.empty() && pattern.front() == L'~';
    if (inverted) {
        pattern.remove_prefix(1);
    }
    constexpr std::size_t none = std::wstring_view::npos;
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t runPattern = none;
    std::size_t runText = 0;
    while (t < text.size()) {
        if (p < pattern.size()) {
            const Element element{pattern, p};
            if (element.isRun()) {
                runPattern = ++p;
                runText = t;
                continue;
            }
            if (element.fits(text[t])) {
                p = element.next();
                ++t;
                continue;
            }
        }
        if (runPattern == none) {
            return inverted;
        }
        p = runPattern;
        t = ++runText;
    }
    while (p < pattern.size() && pattern[p] == L'*') {
        ++p;
    }
    return (p == pattern.size()) != inverted;
}

std::size_t alternativeEnd(std::wstring_view pattern, std::size_t from) {
    bool inSet = false;
    for (std::size_t i = from; i < pattern.size(); ++i) {
        if (pattern[i] == L'`') {
            ++i;
        } else if (pattern[i] == L'[' && pattern.find(L']', i) != std::wstring_view::npos) {
            inSet = true;
        } else if (pattern[i] == L']') {
            inSet = false;
        } else if (pattern[i] == L',' && !inSet) {
            return i;
        }
    }
    return pattern.size();
}

} // namespace

bool wildcardMatch(std::wstring_view text, std::wstring_view pattern, bool ignoreCase) {
    std::wstring foldedText;
    std::wstring foldedPattern;
    if (ignoreCase) {
        foldedText = fold(text);
        foldedPattern = fold(pattern);
        text = foldedText;
        pattern = foldedPattern;
    }
    for (std::size_t at = 0; at <= pattern.size();) {
        const std::size_t end = alternativeEnd(pattern, at);
        if (matchOne(text, pattern.substr(at, end - at))) {
            return true;
        }
        at = end + 1;
    }
    return false;
}

} // namespace host

int acutWcMatch(const ACHAR* text, const ACHAR* pattern) {
    if (text == nullptr || pattern == nullptr) {
        return RTERROR;
    }
    return host::wildcardMatch(text, pattern, false) ? RTNORM : RTERROR;
}
