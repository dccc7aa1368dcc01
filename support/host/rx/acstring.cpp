// AcString over one heap block that holds the wide text and, once asked for, its UTF-8 form.
#include "host/rx/acstring.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <atomic>
#include <utility>

struct AcString::Body {
    Body() = default;
    explicit Body(std::wstring_view given) : wide(given) {}
    ~Body() { delete utf8.load(std::memory_order_relaxed); }
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    const std::string& asUtf8() {
        const std::string* made = utf8.load(std::memory_order_acquire);
        if (made == nullptr) {
            auto* const fresh = new std::string(host::toUtf8(wide));
            if (utf8.compare_exchange_strong(made, fresh, std::memory_order_acq_rel))
                return *fresh;
            delete fresh; // another thread was first
        }
        return *made;
    }

    std::wstring wide;
    std::atomic<const std::string*> utf8{nullptr};
};

const AcString AcString::kEmpty;

namespace {

std::wstring_view viewOf(const ACHAR* text) {
    return text == nullptr ? std::wstring_view() : text;
}
std::string_view viewOf(const char* text) {
    return text == nullptr ? std::string_view() : text;
}

int indexOf(std::size_t position) {
    return position == std::wstring_view::npos ? -1 : static_cast<int>(position);
}

// Value of the digits from the index on. Wraps like the unsigned type it is read into.
std::uint64_t numberAt(std::wstring_view text, int start, unsigned base) {
    std::uint64_t value = 0;
    for (std::size_t i = static_cast<std::size_t>(std::max(start, 0)); i < text.size(); ++i) {
        const wchar_t c = host::toLower(text[i]);
        const unsigned digit = c >= L'0' && c <= L'9'   ? static_cast<unsigned>(c - L'0')
                               : c >= L'a' && c <= L'f' ? static_cast<unsigned>(c - L'a') + 10
                                                        : base;
        if (digit >= base)
            break;
        value = value * base + digit;
    }
    return value;
}

} // namespace

AcString::AcString(const AcString& other) {
    store(other.view());
}
AcString::AcString(AcString&& other) noexcept : body_(std::exchange(other.body_, nullptr)) {}
AcString::AcString(ACHAR character) {
    store({&character, character == 0 ? 0u : 1u});
}
AcString::AcString(const ACHAR* text) {
    store(viewOf(text));
}
AcString::AcString(const ACHAR* text, unsigned length) {
    store(viewOf(text).substr(0, length));
}
AcString::AcString(const char* utf8) {
    store(host::fromUtf8(viewOf(utf8)));
}
AcString::AcString(const char* utf8, Encoding) : AcString(utf8) {}
AcString::AcString(std::wstring_view text) {
    store(text);
}
AcString::~AcString() {
    delete body_;
}

AcString& AcString::operator=(const AcString& other) {
    if (this != &other)
        store(other.view());
    return *this;
}

AcString& AcString::operator=(AcString&& other) noexcept {
    swap(other);
    return *this;
}

AcString& AcString::operator=(ACHAR character) {
    store({&character, character == 0 ? 0u : 1u});
    return *this;
}

AcString& AcString::operator=(const ACHAR* text) {
    store(viewOf(text));
    return *this;
}

AcString& AcString::operator=(const char* utf8) {
    store(host::fromUtf8(viewOf(utf8)));
    return *this;
}

AcString& AcString::assign(const ACHAR* text, unsigned length) {
    store(viewOf(text).substr(0, length));
    return *this;
}

AcString& AcString::setEmpty() noexcept {
    delete std::exchange(body_, nullptr);
    return *this;
}

void AcString::swap(AcString& other) noexcept {
    std::swap(body_, other.body_);
}

const std::wstring& AcString::text() const noexcept {
    static const std::wstring empty;
    return body_ == nullptr ? empty : body_->wide;
}

std::wstring& AcString::edit() {
    if (body_ == nullptr)
        body_ = new Body;
    else
        delete body_->utf8.exchange(nullptr, std::memory_order_relaxed);
    return body_->wide;
}

// The text may lie inside this very string.
void AcString::store(std::wstring_view text) {
    if (text.empty())
        setEmpty();
    else
        edit().assign(text);
}

const char* AcString::utf8Ptr() const {
    return body_ == nullptr ? "" : body_->asUtf8().c_str();
}

const char* AcString::utf8Ptr(unsigned start) const {
    const char* at = utf8Ptr();
    for (; *at != 0; ++at)
        if ((static_cast<unsigned char>(*at) & 0xC0) != 0x80 && start-- == 0)
            break;
    return at;
}

unsigned AcString::utf8Length() const {
    return body_ == nullptr ? 0 : static_cast<unsigned>(body_->asUtf8().size());
}

ACHAR AcString::at(int index) const noexcept {
    return index >= 0 && static_cast<unsigned>(index) < length() ? text()[static_cast<unsigned>(index)]
                                                                 : L'\0';
}

AcString& AcString::setAt(int index, ACHAR character) {
    if (index >= 0 && static_cast<unsigned>(index) < length())
        edit()[static_cast<unsigned>(index)] = character;
    return *this;
}

AcString& AcString::format(const ACHAR* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    formatV(format, arguments);
    va_end(arguments);
    return *this;
}

AcString& AcString::formatV(const ACHAR* format, std::va_list arguments) {
    store(host::formatWide(format, arguments));
    return *this;
}

AcString& AcString::appendFormat(const ACHAR* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    appendFormatV(format, arguments);
    va_end(arguments);
    return *this;
}

AcString& AcString::appendFormatV(const ACHAR* format, std::va_list arguments) {
    const std::wstring more = host::formatWide(format, arguments);
    edit() += more;
    return *this;
}

AcString& AcString::format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    formatV(format, arguments);
    va_end(arguments);
    return *this;
}

AcString& AcString::formatV(const char* format, std::va_list arguments) {
    store(host::fromUtf8(host::formatNarrow(format, arguments)));
    return *this;
}

AcString& AcString::append(ACHAR character) {
    if (character != 0)
        edit() += character;
    return *this;
}

AcString& AcString::append(const ACHAR* text) {
    if (!viewOf(text).empty())
        edit().append(viewOf(text));
    return *this;
}

AcString& AcString::append(const char* utf8) {
    edit() += host::fromUtf8(viewOf(utf8));
    return *this;
}

AcString& AcString::append(const AcString& other) {
    return append(other.constPtr());
}

AcString& AcString::precat(ACHAR character) {
    insert(0, character);
    return *this;
}

AcString& AcString::precat(const ACHAR* text) {
    insert(0, text);
    return *this;
}

AcString& AcString::precat(const AcString& other) {
    return precat(other.constPtr());
}

int AcString::insert(int index, ACHAR character) {
    const ACHAR text[] = {character, 0};
    return insert(index, text);
}

int AcString::insert(int index, const ACHAR* text) {
    const auto at = static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(length())));
    edit().insert(at, std::wstring(viewOf(text)));
    return static_cast<int>(length());
}

int AcString::deleteAtIndex(int index, int count) {
    if (count > 0 && std::max(index, 0) < static_cast<int>(length()))
        edit().erase(static_cast<std::size_t>(std::max(index, 0)), static_cast<std::size_t>(count));
    return static_cast<int>(length());
}

int AcString::replace(const ACHAR* old, const ACHAR* replacement) {
    const std::wstring_view what = viewOf(old), with = viewOf(replacement), whole = view();
    if (what.empty())
        return 0;
    std::wstring result;
    int count = 0;
    std::size_t from = 0;
    for (std::size_t at = whole.find(what); at != whole.npos; at = whole.find(what, from), ++count) {
        result.append(whole, from, at - from).append(with);
        from = at + what.size();
    }
    if (count > 0)
        store(result.append(whole, from));
    return count;
}

int AcString::replace(ACHAR old, ACHAR replacement) {
    const auto count = std::ranges::count(text(), old);
    if (count > 0 && old != replacement)
        std::ranges::replace(edit(), old, replacement);
    return old == replacement ? 0 : static_cast<int>(count);
}

int AcString::remove(ACHAR character) {
    return find(character) < 0 ? 0 : static_cast<int>(std::erase(edit(), character));
}

AcString AcString::mid(int start) const {
    return mid(start, -1);
}

AcString AcString::mid(int start, int count) const {
    const auto from = static_cast<std::size_t>(std::clamp(start, 0, static_cast<int>(length())));
    return AcString(
        view().substr(from, count < 0 ? std::wstring_view::npos : static_cast<std::size_t>(count)));
}

AcString AcString::left(int count) const {
    return mid(0, std::max(count, 0));
}

AcString AcString::right(int count) const {
    return mid(static_cast<int>(length()) - std::clamp(count, 0, static_cast<int>(length())), -1);
}

AcString AcString::spanIncluding(const ACHAR* set) const {
    return AcString(view().substr(0, view().find_first_not_of(viewOf(set))));
}

AcString AcString::spanExcluding(const ACHAR* set) const {
    return AcString(view().substr(0, view().find_first_of(viewOf(set))));
}

AcString AcString::tokenize(const ACHAR* delimiters, int& start) const {
    const std::wstring_view set = viewOf(delimiters);
    if (start >= 0) {
        const std::size_t from = view().find_first_not_of(set, static_cast<std::size_t>(start));
        if (from != std::wstring_view::npos) {
            const std::size_t end = std::min(view().find_first_of(set, from), view().size());
            start = static_cast<int>(std::min(end + 1, view().size()));
            return AcString(view().substr(from, end - from));
        }
    }
    start = -1;
    return {};
}

int AcString::find(ACHAR character, int start) const noexcept {
    return indexOf(view().find(character, static_cast<std::size_t>(std::max(start, 0))));
}

int AcString::find(const ACHAR* text, int start) const noexcept {
    return indexOf(view().find(viewOf(text), static_cast<std::size_t>(std::max(start, 0))));
}

int AcString::findNoCase(const ACHAR* text, int start) const noexcept {
    const std::wstring_view what = viewOf(text), whole = view();
    for (auto at = static_cast<std::size_t>(std::max(start, 0)); at + what.size() <= whole.size(); ++at)
        if (host::equalNoCase(whole.substr(at, what.size()), what))
            return static_cast<int>(at);
    return -1;
}

int AcString::findOneOf(const ACHAR* set, int start) const noexcept {
    return indexOf(view().find_first_of(viewOf(set), static_cast<std::size_t>(std::max(start, 0))));
}

int AcString::findRev(ACHAR character) const noexcept {
    return indexOf(view().rfind(character));
}
int AcString::findRev(const ACHAR* text) const noexcept {
    return indexOf(view().rfind(viewOf(text)));
}
int AcString::findOneOfRev(const ACHAR* set) const noexcept {
    return indexOf(view().find_last_of(viewOf(set)));
}

int AcString::compare(const ACHAR* text) const noexcept {
    return view().compare(viewOf(text));
}
int AcString::compare(const char* utf8) const {
    return view().compare(host::fromUtf8(viewOf(utf8)));
}

int AcString::compare(ACHAR character) const noexcept {
    return view().compare(std::wstring_view(&character, character == 0 ? 0 : 1));
}

int AcString::compareNoCase(const ACHAR* text) const noexcept {
    return host::compareNoCase(view(), viewOf(text));
}

int AcString::compareNoCase(const char* utf8) const {
    return host::compareNoCase(view(), host::fromUtf8(viewOf(utf8)));
}

int AcString::compareNoCase(const AcString& other) const noexcept {
    return host::compareNoCase(view(), other.view());
}

unsigned AcString::match(const ACHAR* text) const noexcept {
    const auto ends = std::ranges::mismatch(view(), viewOf(text));
    return static_cast<unsigned>(ends.in1 - view().begin());
}

unsigned AcString::matchNoCase(const ACHAR* text) const noexcept {
    const auto folded = [](wchar_t c) { return host::fold(c); };
    const auto ends = std::ranges::mismatch(view(), viewOf(text), {}, folded, folded);
    return static_cast<unsigned>(ends.in1 - view().begin());
}

bool AcString::startsWith(const ACHAR* text) const noexcept {
    return view().starts_with(viewOf(text));
}
bool AcString::endsWith(const ACHAR* text) const noexcept {
    return view().ends_with(viewOf(text));
}

AcString& AcString::makeUpper() {
    store(host::toUpper(view()));
    return *this;
}

AcString& AcString::makeLower() {
    store(host::toLower(view()));
    return *this;
}

AcString& AcString::makeReverse() {
    std::ranges::reverse(edit());
    return *this;
}

AcString& AcString::trim() {
    return trimRight().trimLeft();
}

AcString& AcString::trimLeft() {
    store(host::trimLeft(view()));
    return *this;
}

AcString& AcString::trimLeft(ACHAR character) {
    store(view().substr(std::min(view().find_first_not_of(character), view().size())));
    return *this;
}

AcString& AcString::trimLeft(const ACHAR* set) {
    store(view().substr(std::min(view().find_first_not_of(viewOf(set)), view().size())));
    return *this;
}

AcString& AcString::trimRight() {
    store(host::trimRight(view()));
    return *this;
}

AcString& AcString::trimRight(ACHAR character) {
    store(view().substr(0, view().find_last_not_of(character) + 1));
    return *this;
}

AcString& AcString::trimRight(const ACHAR* set) {
    store(view().substr(0, view().find_last_not_of(viewOf(set)) + 1));
    return *this;
}

int AcString::asDeci(int start) const noexcept {
    const ACHAR sign = at(start);
    const auto value =
        static_cast<std::uint32_t>(numberAt(view(), start + (sign == L'-' || sign == L'+' ? 1 : 0), 10));
    return static_cast<int>(sign == L'-' ? 0 - value : value);
}

unsigned AcString::asHex(int start) const noexcept {
    return static_cast<unsigned>(asHex64(start));
}
std::uint64_t AcString::asUint64(int start) const noexcept {
    return numberAt(view(), start, 10);
}
std::uint64_t AcString::asHex64(int start) const noexcept {
    return numberAt(view(), start, 16);
}

bool AcString::isAscii(int start) const noexcept {
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    return from >= view().size() || host::isAscii(view().substr(from));
}

ACHAR* AcString::getBuffer(int least) {
    std::wstring& buffer = edit();
    buffer.resize(std::max(buffer.size(), static_cast<std::size_t>(std::max(least, 0))));
    return buffer.data();
}

void AcString::releaseBuffer(int length) {
    std::wstring& buffer = edit();
    buffer.resize(length < 0 ? viewOf(buffer.c_str()).size()
                             : std::min(buffer.size(), static_cast<std::size_t>(length)));
}

std::size_t AcString::hashNoCase() const noexcept {
    return host::hashNoCase(view());
}

AcString operator+(const AcString& left, const AcString& right) {
    return AcString(left).append(right);
}
AcString operator+(const AcString& left, const ACHAR* right) {
    return AcString(left).append(right);
}
AcString operator+(const ACHAR* left, const AcString& right) {
    return AcString(left).append(right);
}
AcString operator+(const AcString& left, ACHAR right) {
    return AcString(left).append(right);
}
AcString operator+(ACHAR left, const AcString& right) {
    return AcString(left).append(right);
}
