// Reading keyword lists and matching answers against them.
#include "host/ed/keywords.h"

#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

bool isRequired(wchar_t c) {
    return toLower(c) != c || (c >= L'0' && c <= L'9');
}

/// The run of capitals and digits that must be typed; empty for a word that has no capitals, or nothing but.
std::wstring requiredPart(std::wstring_view word) {
    const auto begin = std::find_if(word.begin(), word.end(), isRequired);
    const auto end = std::find_if_not(begin, word.end(), isRequired);
    if (begin == end || static_cast<std::size_t>(end - begin) == word.size()) {
        return {};
    }
    return std::wstring(begin, end);
}

struct Form {
    std::wstring whole;
    std::wstring least;
};

Form readForm(std::wstring_view word) {
    const std::size_t comma = word.find(L',');
    if (comma == std::wstring_view::npos || comma == 0) {
        return {std::wstring(word), requiredPart(word)};
    }
    return {std::wstring(word.substr(0, comma)), std::wstring(word.substr(comma + 1))};
}

std::vector<Form> readForms(std::wstring_view list) {
    std::vector<Form> forms;
    for (std::size_t at = 0; at < list.size();) {
        if (isSpace(list[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < list.size() && !isSpace(list[end])) {
            ++end;
        }
        forms.push_back(readForm(list.substr(at, end - at)));
        at = end;
    }
    return forms;
}

/// Where the words of the program begin: behind an underscore that begins a word.
std::size_t globalPart(std::wstring_view list) {
    for (std::size_t at = 0; at < list.size(); ++at) {
        if (list[at] == L'_' && (at == 0 || isSpace(list[at - 1]))) {
            return at;
        }
    }
    return std::wstring_view::npos;
}

/// Whether the answer is a beginning of the word (or of the word from its required part on) that holds the
/// required part.
bool abbreviates(std::wstring_view answer, std::wstring_view whole, std::wstring_view least) {
    if (equalNoCase(answer, whole)) {
        return true;
    }
    if (least.empty() || answer.size() < least.size()) {
        return false;
    }
    const std::wstring folded = fold(whole);
    std::size_t at = whole.find(least);
    if (at == std::wstring_view::npos) {
        at = folded.find(fold(least));
    }
    if (at == std::wstring::npos) {
        return equalNoCase(answer, least);
    }
    const bool fromStart = answer.size() >= at + least.size() && startsWithNoCase(whole, answer);
    return fromStart || startsWithNoCase(whole.substr(at), answer);
}

} // namespace

KeywordList::KeywordList(std::wstring_view list) {
    const std::size_t split = globalPart(list);
    const std::vector<Form> local = readForms(list.substr(0, std::min(split, list.size())));
    std::vector<Form> global;
    if (split != std::wstring_view::npos) {
        global = readForms(list.substr(split + 1));
    }
    const std::size_t count = local.empty() ? global.size() : local.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Form& shown = local.empty() ? global[i] : local[i];
        const Form& told = i < global.size() ? global[i] : shown;
        mKeywords.push_back({shown.whole, shown.least, told.whole, told.least});
    }
}

std::optional<std::size_t> KeywordList::match(std::wstring_view answer) const {
    const bool globalOnly = answer.size() > 1 && answer.front() == L'_';
    if (globalOnly) {
        answer.remove_prefix(1);
    }
    if (answer.empty()) {
        return std::nullopt;
    }
    const auto find = [&](auto fits) -> std::optional<std::size_t> {
        const auto found = std::find_if(mKeywords.begin(), mKeywords.end(), fits);
        if (found == mKeywords.end()) {
            return std::nullopt;
        }
        return static_cast<std::size_t>(found - mKeywords.begin());
    };
    const auto exact = find([&](const Keyword& keyword) {
        return equalNoCase(answer, globalOnly ? keyword.global : keyword.local) ||
               (!globalOnly && !keyword.localShort.empty() && equalNoCase(answer, keyword.localShort)) ||
               (globalOnly && !keyword.globalShort.empty() && equalNoCase(answer, keyword.globalShort));
    });
    if (exact) {
        return exact;
    }
    return find([&](const Keyword& keyword) {
        return globalOnly ? abbreviates(answer, keyword.global, keyword.globalShort)
                          : abbreviates(answer, keyword.local, keyword.localShort);
    });
}

std::optional<std::wstring> KeywordList::matchGlobal(std::wstring_view answer) const {
    const std::optional<std::size_t> index = match(answer);
    return index ? std::optional(mKeywords[*index].global) : std::nullopt;
}

} // namespace host
