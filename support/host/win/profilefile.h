// Private profile files: sections of key=value lines. Files in UTF-8, UTF-16 or the Simplified Chinese code
// page are read, and written back in the form they came in; comments, order, blank lines and line ends of
// what is not changed stay. A file name without a folder is one in the settings folder.
#pragma once

#include "host/win/types.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The Windows functions. A null section or key asks for the names of all, each closed by a zero and all by
// another; a null key or value of a writing function deletes the section or the key.
DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR fallback, LPWSTR value, DWORD size,
                               LPCWSTR file);
UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT fallback, LPCWSTR file);
DWORD GetPrivateProfileSectionW(LPCWSTR section, LPWSTR lines, DWORD size, LPCWSTR file);
DWORD GetPrivateProfileSectionNamesW(LPWSTR names, DWORD size, LPCWSTR file);
BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file);
BOOL WritePrivateProfileSectionW(LPCWSTR section, LPCWSTR lines, LPCWSTR file);

inline constexpr auto GetPrivateProfileString = GetPrivateProfileStringW;
inline constexpr auto GetPrivateProfileInt = GetPrivateProfileIntW;
inline constexpr auto GetPrivateProfileSection = GetPrivateProfileSectionW;
inline constexpr auto GetPrivateProfileSectionNames = GetPrivateProfileSectionNamesW;
inline constexpr auto WritePrivateProfileString = WritePrivateProfileStringW;
inline constexpr auto WritePrivateProfileSection = WritePrivateProfileSectionW;

namespace host {

// How a text file is stored.
enum class TextForm { utf8, utf8WithMark, utf16, gbk };

struct DecodedText {
    std::wstring text;
    TextForm form;
};

// A text file's bytes by its byte order mark, else as UTF-8 when they are that, else in the Simplified
// Chinese page.
DecodedText decodeTextFile(std::string_view bytes);
// The bytes in a form; UTF-8 instead where the Chinese page lacks a character.
std::string encodeTextFile(std::wstring_view text, TextForm form);

// A profile file in memory, as lines.
class ProfileFile {
public:
    ProfileFile() = default;
    explicit ProfileFile(std::string_view bytes);

    std::optional<std::wstring> value(std::wstring_view section, std::wstring_view key) const;
    std::vector<std::wstring> sections() const;
    std::vector<std::wstring> keys(std::wstring_view section) const;
    std::vector<std::wstring> lines(std::wstring_view section) const; // without comments and blank lines
    void setValue(std::wstring_view section, std::wstring_view key, std::wstring_view value);
    void setLines(std::wstring_view section, const std::vector<std::wstring>& lines);
    void removeKey(std::wstring_view section, std::wstring_view key);
    void removeSection(std::wstring_view section);

    std::string bytes() const;

private:
    // The lines of a section: from the one after its head to the next head. first == npos without the
    // section.
    struct Range {
        std::size_t first, last;
    };
    Range rangeOf(std::wstring_view section) const;
    std::optional<std::size_t> lineOf(Range range, std::wstring_view key) const;
    std::size_t endOf(Range range) const; // after the last line that is not blank

    std::vector<std::wstring> lines_;
    std::wstring lineEnd_ = L"\r\n";
    TextForm form_ = TextForm::utf8;
};

} // namespace host
