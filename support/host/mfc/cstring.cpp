// CStringT for wide and for narrow (UTF-8) text.
#include "host/mfc/cstring.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>

namespace {

std::wstring widen(const char* text) {
    return text == nullptr ? std::wstring() : host::fromUtf8(text);
}
std::string narrowed(const wchar_t* text) {
    return text == nullptr ? std::string() : host::toUtf8(text);
}

// What differs between wide and narrow characters.
std::string converted(const wchar_t* text) {
    return narrowed(text);
}
std::wstring converted(const char* text) {
    return widen(text);
}

std::wstring formatted(const wchar_t* format, std::va_list arguments) {
    return host::formatWide(format, arguments);
}
std::string formatted(const char* format, std::va_list arguments) {
    return host::formatNarrow(format, arguments);
}

std::wstring upper(std::wstring_view text) {
    return host::toUpper(text);
}
std::string upper(std::string_view text) {
    return host::toUtf8(host::toUpper(host::fromUtf8(text)));
}
std::wstring lower(std::wstring_view text) {
    return host::toLower(text);
}
std::string lower(std::string_view text) {
    return host::toUtf8(host::toLower(host::fromUtf8(text)));
}

int compareNoCase(std::wstring_view left, std::wstring_view right) {
    return host::compareNoCase(left, right);
}
int compareNoCase(std::string_view left, std::string_view right) {
    return host::compareNoCase(host::fromUtf8(left), host::fromUtf8(right));
}

std::wstring_view trimmedLeft(std::wstring_view text) {
    return host::trimLeft(text);
}
std::wstring_view trimmedRight(std::wstring_view text) {
    return host::trimRight(text);
}
std::string_view trimmedLeft(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
}
std::string_view trimmedRight(std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \t\n\v\f\r") + 1);
}

int indexOf(std::size_t position) {
    return position == std::string::npos ? -1 : static_cast<int>(position);
}

} // namespace

template <class Character>
CStringT<Character>::CStringT(PCYSTR text) : text_(converted(text)) {}

template <class Character>
CStringT<Character>::CStringT(const AcString& other) {
    if constexpr (std::is_same_v<Character, wchar_t>)
        text_ = other.view();
    else
        text_ = other.utf8Ptr();
}

template <class Character>
Character CStringT<Character>::GetAt(int index) const noexcept {
    return clamped(index) < text_.size() && index >= 0 ? text_[clamped(index)] : Character();
}

template <class Character>
void CStringT<Character>::SetAt(int index, Character character) noexcept {
    if (index >= 0 && clamped(index) < text_.size())
        text_[clamped(index)] = character;
}

template <class Character>
Character* CStringT<Character>::GetBuffer(int least) {
    text_.resize(std::max(text_.size(), clamped(least)));
    return text_.data();
}

template <class Character>
Character* CStringT<Character>::GetBufferSetLength(int length) {
    text_.resize(clamped(length));
    return text_.data();
}

template <class Character>
void CStringT<Character>::ReleaseBuffer(int length) {
    text_.resize(std::min(text_.size(), length < 0 ? viewOf(text_.c_str()).size() : clamped(length)));
}

template <class Character>
void CStringT<Character>::Format(PCXSTR format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}

// The arguments may point into this string: it changes only when the new text is there.
template <class Character>
void CStringT<Character>::FormatV(PCXSTR format, std::va_list arguments) {
    text_ = formatted(format, arguments);
}

template <class Character>
void CStringT<Character>::AppendFormat(PCXSTR format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    AppendFormatV(format, arguments);
    va_end(arguments);
}

template <class Character>
void CStringT<Character>::AppendFormatV(PCXSTR format, std::va_list arguments) {
    text_ += formatted(format, arguments);
}

template <class Character>
CStringT<Character> CStringT<Character>::Mid(int first, int count) const {
    CStringT part;
    part.text_ = text_.substr(std::min(clamped(first), text_.size()), clamped(count));
    return part;
}

template <class Character>
CStringT<Character> CStringT<Character>::Right(int count) const {
    const std::size_t length = std::min(clamped(count), text_.size());
    return Mid(static_cast<int>(text_.size() - length), static_cast<int>(length));
}

template <class Character>
CStringT<Character> CStringT<Character>::SpanIncluding(PCXSTR set) const {
    const std::size_t end = text_.find_first_not_of(viewOf(set));
    return Left(static_cast<int>(std::min(end, text_.size())));
}

template <class Character>
CStringT<Character> CStringT<Character>::SpanExcluding(PCXSTR set) const {
    const std::size_t end = text_.find_first_of(viewOf(set));
    return Left(static_cast<int>(std::min(end, text_.size())));
}

template <class Character>
CStringT<Character> CStringT<Character>::Tokenize(PCXSTR delimiters, int& start) const {
    const View set = viewOf(delimiters);
    if (start >= 0 && start < GetLength()) {
        if (set.empty())
            return Mid(start);
        const std::size_t from = text_.find_first_not_of(set, clamped(start));
        if (from != text_.npos) {
            const std::size_t end = std::min(text_.find_first_of(set, from), text_.size());
            start = static_cast<int>(end) + 1;
            return Mid(static_cast<int>(from), static_cast<int>(end - from));
        }
    }
    start = -1;
    return {};
}

template <class Character>
int CStringT<Character>::Find(Character character, int start) const noexcept {
    return indexOf(text_.find(character, clamped(start)));
}

template <class Character>
int CStringT<Character>::Find(PCXSTR text, int start) const noexcept {
    return text == nullptr ? -1 : indexOf(text_.find(text, clamped(start)));
}

template <class Character>
int CStringT<Character>::ReverseFind(Character character) const noexcept {
    return indexOf(text_.rfind(character));
}

template <class Character>
int CStringT<Character>::FindOneOf(PCXSTR set) const noexcept {
    return indexOf(text_.find_first_of(viewOf(set)));
}

template <class Character>
int CStringT<Character>::Replace(Character old, Character replacement) {
    if (old == replacement)
        return 0;
    const auto count = std::ranges::count(text_, old);
    std::ranges::replace(text_, old, replacement);
    return static_cast<int>(count);
}

template <class Character>
int CStringT<Character>::Replace(PCXSTR old, PCXSTR replacement) {
    const View what = viewOf(old), with = viewOf(replacement);
    if (what.empty())
        return 0;
    std::basic_string<Character> result;
    int count = 0;
    std::size_t from = 0;
    for (std::size_t at = text_.find(what); at != text_.npos; at = text_.find(what, from), ++count) {
        result.append(text_, from, at - from).append(with);
        from = at + what.size();
    }
    if (count > 0)
        text_ = result.append(text_, from);
    return count;
}

template <class Character>
int CStringT<Character>::Remove(Character character) {
    return static_cast<int>(std::erase(text_, character));
}

template <class Character>
int CStringT<Character>::Insert(int index, PCXSTR text) {
    text_.insert(std::min(clamped(index), text_.size()), std::basic_string<Character>(viewOf(text)));
    return GetLength();
}

template <class Character>
int CStringT<Character>::Delete(int index, int count) {
    if (clamped(index) < text_.size())
        text_.erase(clamped(index), clamped(count));
    return GetLength();
}

template <class Character>
CStringT<Character>& CStringT<Character>::TrimLeft() {
    text_.erase(0, text_.size() - trimmedLeft(View(text_)).size());
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::TrimLeft(Character character) {
    text_.erase(0, text_.find_first_not_of(character));
    return *this;
}

// An empty set means white space, as it does there.
template <class Character>
CStringT<Character>& CStringT<Character>::TrimLeft(PCXSTR set) {
    if (viewOf(set).empty())
        return TrimLeft();
    text_.erase(0, text_.find_first_not_of(set));
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::TrimRight() {
    text_.resize(trimmedRight(View(text_)).size());
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::TrimRight(Character character) {
    text_.resize(text_.find_last_not_of(character) + 1);
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::TrimRight(PCXSTR set) {
    if (viewOf(set).empty())
        return TrimRight();
    text_.resize(text_.find_last_not_of(set) + 1);
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::MakeUpper() {
    text_ = upper(View(text_));
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::MakeLower() {
    text_ = lower(View(text_));
    return *this;
}

template <class Character>
CStringT<Character>& CStringT<Character>::MakeReverse() {
    std::ranges::reverse(text_);
    return *this;
}

template <class Character>
int CStringT<Character>::CompareNoCase(PCXSTR text) const noexcept {
    return compareNoCase(View(text_), viewOf(text));
}

template class CStringT<wchar_t>;
template class CStringT<char>;
