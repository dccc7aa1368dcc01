// Keyword lists as acedInitGet takes them, and what a typed answer means in one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// One keyword: shown and typed in its local form, given to the program in its global one.
struct Keyword {
    std::wstring local;
    std::wstring localShort; ///< the least that must be typed; empty: the whole word
    std::wstring global;
    std::wstring globalShort;
};

/// "Close Undo", "LTYPE,LT", "闭合 放弃 _Close Undo": words between blanks, their capitals (or what follows a
/// comma) the least to be typed; after an underscore the words given to the program, in the same order.
class KeywordList {
public:
    KeywordList() = default;
    explicit KeywordList(std::wstring_view list);

    bool empty() const { return mKeywords.empty(); }
    std::size_t size() const { return mKeywords.size(); }
    const Keyword& operator[](std::size_t index) const { return mKeywords[index]; }
    /// Index of the keyword that the answer means, in any case; an underscore in front asks for the global
    /// form.
    std::optional<std::size_t> match(std::wstring_view answer) const;
    /// The answer as the program is told it: the global word as the list has it.
    std::optional<std::wstring> matchGlobal(std::wstring_view answer) const;

private:
    std::vector<Keyword> mKeywords;
};

} // namespace host
