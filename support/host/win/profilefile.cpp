// Profile files as lists of lines, and the Windows functions over them.
#include "host/win/profilefile.h"

#include "host/rx/codepage.h"
#include "host/rx/text.h"
#include "host/win/crt.h"
#include "host/win/fileio.h"
#include "host/win/paths.h"
#include "host/win/registry.h"

#include <algorithm>
#include <cwchar>

namespace host {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF", utf16Mark = "\xFF\xFE", utf16BigMark = "\xFE\xFF";

std::string swappedPairs(std::string_view bytes) {
    std::string out(bytes.substr(0, bytes.size() & ~std::size_t{1}));
    for (std::size_t i = 0; i + 1 < out.size(); i += 2)
        std::swap(out[i], out[i + 1]);
    return out;
}

// The name of a section head line; nothing for other lines.
std::optional<std::wstring_view> headOf(std::wstring_view line) {
    line = trim(line);
    if (!line.starts_with(L'['))
        return {};
    const std::size_t end = line.find(L']');
    return trim(line.substr(1, end == line.npos ? end : end - 1));
}

struct Entry {
    std::wstring_view key, value;
};

std::optional<Entry> entryOf(std::wstring_view line) {
    line = trim(line);
    if (line.empty() || line.starts_with(L';') || line.starts_with(L'['))
        return {};
    const std::size_t equals = line.find(L'=');
    if (equals == line.npos)
        return Entry{line, {}};
    return Entry{trimRight(line.substr(0, equals)), trimLeft(line.substr(equals + 1))};
}

std::wstring_view withoutQuotes(std::wstring_view text) {
    const bool quoted =
        text.size() >= 2 && (text.front() == L'"' || text.front() == L'\'') && text.back() == text.front();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

// A value whose ends would be lost is written in quotes.
std::wstring written(std::wstring_view value) {
    const bool guarded = trim(value).size() != value.size() || withoutQuotes(value).size() != value.size();
    std::wstring out = guarded ? L"\"" + std::wstring(value) + L"\"" : std::wstring(value);
    std::erase_if(out, [](wchar_t c) { return c == L'\r' || c == L'\n'; }); // a value is one line
    return out;
}

} // namespace

DecodedText decodeTextFile(std::string_view bytes) {
    if (bytes.starts_with(utf8Mark))
        return {fromUtf8(bytes.substr(utf8Mark.size())), TextForm::utf8WithMark};
    if (bytes.starts_with(utf16Mark))
        return {fromUtf16Le(bytes.substr(2)), TextForm::utf16};
    if (bytes.starts_with(utf16BigMark))
        return {fromUtf16Le(swappedPairs(bytes.substr(2))), TextForm::utf16};
    if (isValidUtf8(bytes))
        return {fromUtf8(bytes), TextForm::utf8};
    return {decode(bytes, CodePage::ansi936), TextForm::gbk};
}

std::string encodeTextFile(std::wstring_view text, TextForm form) {
    switch (form) {
    case TextForm::utf16:
        return std::string(utf16Mark) + toUtf16Le(text);
    case TextForm::utf8WithMark:
        return std::string(utf8Mark) + toUtf8(text);
    case TextForm::gbk:
        if (canEncode(text, CodePage::ansi936))
            return encode(text, CodePage::ansi936);
        return std::string(utf8Mark) + toUtf8(text);
    case TextForm::utf8:
        break;
    }
    return toUtf8(text);
}

ProfileFile::ProfileFile(std::string_view bytes) {
    DecodedText decoded = decodeTextFile(bytes);
    form_ = decoded.form;
    std::wstring_view rest = decoded.text;
    if (rest.find(L'\n') != rest.npos && rest.find(L"\r\n") == rest.npos)
        lineEnd_ = L"\n";
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(L'\n'), rest.size());
        std::wstring_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.ends_with(L'\r'))
            line.remove_suffix(1);
        lines_.emplace_back(line);
    }
}

ProfileFile::Range ProfileFile::rangeOf(std::wstring_view section) const {
    const auto isHead = [](const std::wstring& line) { return headOf(line).has_value(); };
    const auto head = std::ranges::find_if(lines_, [&](const std::wstring& line) {
        const auto name = headOf(line);
        return name && equalNoCase(*name, trim(section));
    });
    if (head == lines_.end())
        return {std::wstring::npos, std::wstring::npos};
    const auto last = std::find_if(head + 1, lines_.end(), isHead);
    return {static_cast<std::size_t>(head - lines_.begin()) + 1,
            static_cast<std::size_t>(last - lines_.begin())};
}

std::optional<std::size_t> ProfileFile::lineOf(Range range, std::wstring_view key) const {
    for (std::size_t i = range.first; i < range.last; ++i)
        if (const auto entry = entryOf(lines_[i]); entry && equalNoCase(entry->key, trim(key)))
            return i;
    return {};
}

std::size_t ProfileFile::endOf(Range range) const {
    while (range.last > range.first && trim(lines_[range.last - 1]).empty())
        --range.last;
    return range.last;
}

std::optional<std::wstring> ProfileFile::value(std::wstring_view section, std::wstring_view key) const {
    const auto line = lineOf(rangeOf(section), key);
    return line ? std::optional<std::wstring>(withoutQuotes(entryOf(lines_[*line])->value)) : std::nullopt;
}

std::vector<std::wstring> ProfileFile::sections() const {
    std::vector<std::wstring> names;
    for (const std::wstring& line : lines_)
        if (const auto name = headOf(line))
            names.emplace_back(*name);
    return names;
}

std::vector<std::wstring> ProfileFile::keys(std::wstring_view section) const {
    std::vector<std::wstring> names;
    const Range range = rangeOf(section);
    for (std::size_t i = range.first; i < range.last; ++i)
        if (const auto entry = entryOf(lines_[i]))
            names.emplace_back(entry->key);
    return names;
}

std::vector<std::wstring> ProfileFile::lines(std::wstring_view section) const {
    std::vector<std::wstring> found;
    const Range range = rangeOf(section);
    for (std::size_t i = range.first; i < range.last; ++i)
        if (entryOf(lines_[i]))
            found.emplace_back(trim(lines_[i]));
    return found;
}

void ProfileFile::setValue(std::wstring_view section, std::wstring_view key, std::wstring_view value) {
    Range range = rangeOf(section);
    const std::wstring entry = written(value);
    if (const auto line = lineOf(range, key)) {
        std::wstring& text = lines_[*line];
        const std::size_t equals = text.find(L'=');
        text = (equals == text.npos ? text : text.substr(0, equals)) + L"=" + entry;
        return;
    }
    if (range.first == std::wstring::npos) {
        lines_.push_back(L"[" + std::wstring(trim(section)) + L"]");
        range = {lines_.size(), lines_.size()};
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(endOf(range)),
                  std::wstring(trim(key)) + L"=" + entry);
}

void ProfileFile::setLines(std::wstring_view section, const std::vector<std::wstring>& lines) {
    Range range = rangeOf(section);
    if (range.first == std::wstring::npos) {
        lines_.push_back(L"[" + std::wstring(trim(section)) + L"]");
        range = {lines_.size(), lines_.size()};
    }
    const auto first = lines_.begin() + static_cast<std::ptrdiff_t>(range.first);
    const auto after = lines_.erase(first, lines_.begin() + static_cast<std::ptrdiff_t>(endOf(range)));
    lines_.insert(after, lines.begin(), lines.end());
}

void ProfileFile::removeKey(std::wstring_view section, std::wstring_view key) {
    if (const auto line = lineOf(rangeOf(section), key))
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*line));
}

void ProfileFile::removeSection(std::wstring_view section) {
    const Range range = rangeOf(section);
    if (range.first != std::wstring::npos)
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(range.first) - 1,
                     lines_.begin() + static_cast<std::ptrdiff_t>(range.last));
}

std::string ProfileFile::bytes() const {
    std::wstring text;
    for (const std::wstring& line : lines_)
        text.append(line).append(lineEnd_);
    return encodeTextFile(text, form_);
}

namespace {

std::wstring_view viewOf(LPCWSTR text) {
    return text == nullptr ? std::wstring_view() : text;
}

std::filesystem::path pathOf(LPCWSTR file) {
    const std::wstring_view name = viewOf(file);
    return name.find_first_of(L"\\/") == name.npos ? toNativePath(name, settingsFolder())
                                                   : toNativePath(name);
}

ProfileFile readProfile(LPCWSTR file) {
    MappedFile in;
    return in.open(pathOf(file)) ? ProfileFile(in.text()) : ProfileFile();
}

// Reads, lets the file be changed and writes it. A file that is there but can not be read is left alone.
template <class Change>
BOOL changeProfile(LPCWSTR file, Change change) {
    const auto path = pathOf(file);
    MappedFile in;
    std::error_code error;
    if (!in.open(path) && std::filesystem::exists(path, error)) {
        SetLastError(static_cast<DWORD>(windowsError(in.systemError())));
        return FALSE;
    }
    ProfileFile profile(in.text());
    change(profile);
    const std::string bytes = profile.bytes();
    if (bytes == in.text())
        return TRUE;
    if (path.parent_path() == settingsFolder())
        std::filesystem::create_directories(path.parent_path(), error);
    AtomicFile out(path, AtomicFile::Backup::none);
    out.write(bytes);
    if (out.commit())
        return TRUE;
    SetLastError(static_cast<DWORD>(windowsError(out.systemError())));
    return FALSE;
}

DWORD giveText(std::wstring_view text, LPWSTR to, DWORD size) {
    if (to == nullptr || size == 0)
        return 0;
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.begin(), length, to);
    to[length] = 0;
    return static_cast<DWORD>(length);
}

// Texts each with a zero, closed by another; cut off they end in two zeros and the size less two is given.
DWORD giveList(const std::vector<std::wstring>& texts, LPWSTR to, DWORD size) {
    if (to == nullptr || size == 0)
        return 0;
    std::wstring all;
    for (const std::wstring& text : texts)
        all.append(text).push_back(L'\0');
    if (all.size() + 1 <= size) {
        std::ranges::copy(all, to);
        to[all.size()] = 0;
        return static_cast<DWORD>(all.size());
    }
    std::fill_n(to, size, L'\0');
    if (size < 2)
        return 0;
    std::copy_n(all.begin(), size - 2, to);
    return size - 2;
}

} // namespace
} // namespace host

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR fallback, LPWSTR value, DWORD size,
                               LPCWSTR file) {
    const host::ProfileFile profile = host::readProfile(file);
    if (section == nullptr)
        return host::giveList(profile.sections(), value, size);
    if (key == nullptr)
        return host::giveList(profile.keys(section), value, size);
    const auto found = profile.value(section, key);
    return host::giveText(found ? *found : host::trimRight(host::viewOf(fallback)), value, size);
}

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT fallback, LPCWSTR file) {
    const auto found = host::readProfile(file).value(host::viewOf(section), host::viewOf(key));
    if (!found || found->empty())
        return static_cast<UINT>(fallback);
    if (host::startsWithNoCase(*found, L"0x"))
        return static_cast<UINT>(std::wcstoul(found->c_str(), nullptr, 16));
    return static_cast<UINT>(_wtoi(found->c_str()));
}

DWORD GetPrivateProfileSectionW(LPCWSTR section, LPWSTR lines, DWORD size, LPCWSTR file) {
    return host::giveList(host::readProfile(file).lines(host::viewOf(section)), lines, size);
}

DWORD GetPrivateProfileSectionNamesW(LPWSTR names, DWORD size, LPCWSTR file) {
    return host::giveList(host::readProfile(file).sections(), names, size);
}

BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    if (section == nullptr)
        return TRUE; // asks for a cache to be written; there is none
    return host::changeProfile(file, [&](host::ProfileFile& profile) {
        if (key == nullptr)
            profile.removeSection(section);
        else if (value == nullptr)
            profile.removeKey(section, key);
        else
            profile.setValue(section, key, value);
    });
}

BOOL WritePrivateProfileSectionW(LPCWSTR section, LPCWSTR lines, LPCWSTR file) {
    return host::changeProfile(file, [&](host::ProfileFile& profile) {
        if (lines == nullptr) {
            profile.removeSection(host::viewOf(section));
            return;
        }
        std::vector<std::wstring> all;
        for (LPCWSTR line = lines; *line != 0; line += all.back().size() + 1)
            all.emplace_back(line);
        profile.setLines(host::viewOf(section), all);
    });
}
