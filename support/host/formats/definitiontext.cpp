// Reading of definition files as text.
#include "host/formats/definitiontext.h"

#include "host/db/dbdatabase.h"
#include "host/rx/codepage.h"
#include "host/rx/text.h"
#include "host/win/paths.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace host {

std::wstring definitionText(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        return fromUtf16Le(bytes.substr(2));
    }
    if (bytes.starts_with("\xFE\xFF")) {
        std::string swapped;
        for (std::size_t at = 2; at + 1 < bytes.size(); at += 2) {
            swapped.push_back(bytes[at + 1]);
            swapped.push_back(bytes[at]);
        }
        return fromUtf16Le(swapped);
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
    }
    return isValidUtf8(bytes) ? fromUtf8(bytes) : decode(bytes, CodePage::ansi936);
}

std::optional<double> definitionNumber(std::wstring_view text) {
    const std::string ascii = toUtf8(trim(text));
    const char* begin = ascii.data();
    const char* const end = begin + ascii.size();
    begin += begin != end && *begin == '+' ? 1 : 0;
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(begin, end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value) ? std::optional(value)
                                                                                 : std::nullopt;
}

std::vector<DefinitionLine> definitionLines(std::wstring_view text) {
    std::vector<DefinitionLine> lines;
    for (std::size_t start = 0, line = 1; start < text.size(); ++line) {
        const std::size_t end = std::min(text.find(L'\n', start), text.size());
        const std::wstring_view content = trim(text.substr(start, end - start));
        if (!content.empty() && content.front() != L';') {
            lines.push_back({content, line});
        }
        start = end + 1;
    }
    return lines;
}

std::filesystem::path findDefinitionFile(const std::wstring& file, AcDbDatabase* database) {
    std::error_code error;
    const std::filesystem::path given = toNativePath(file);
    if (std::filesystem::is_regular_file(given, error)) {
        return given;
    }
    constexpr int maximum = 4096;
    std::vector<ACHAR> found(maximum);
    AcDbHostApplicationServices* services = acdbHostApplicationServices();
    if (services != nullptr &&
        services->findFile(found.data(), maximum, file.c_str(), database) == Acad::eOk) {
        return toNativePath(found.data());
    }
    return {};
}

} // namespace host
