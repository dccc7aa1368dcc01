// The text of definition files (linetypes, hatch patterns): encodings, lines, numbers.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AcDbDatabase;

namespace host {

/// Bytes in UTF-8, in UTF-16 with a mark, or in the Chinese code page.
std::wstring definitionText(std::string_view bytes);

struct DefinitionLine {
    std::wstring_view text; ///< trimmed
    std::size_t number;     ///< 1 for the first line of the file
};

/// The lines without comments (behind a semicolon at the start) and empty ones. They point into the text.
std::vector<DefinitionLine> definitionLines(std::wstring_view text);
/// A finite number with nothing behind it.
std::optional<double> definitionNumber(std::wstring_view text);
/// The file as given, or where the application finds it; empty when it is nowhere.
std::filesystem::path findDefinitionFile(const std::wstring& file, AcDbDatabase* database);

} // namespace host
