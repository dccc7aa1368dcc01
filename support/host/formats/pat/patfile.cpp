// Lines of a hatch pattern file: a name line with an asterisk, below it the families of lines: angle, base
// point, offset along and across the lines, dashes.
#include "host/formats/pat/patfile.h"

#include "host/formats/definitiontext.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host::pat {
namespace {

/// Takes a family of lines; gives what is wrong with it, or nothing.
std::wstring takeFamily(std::wstring_view text, std::vector<HatchPatternLine>& lines) {
    std::vector<double> numbers;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t comma = std::min(text.find(L',', start), text.size());
        const std::wstring_view field = trim(text.substr(start, comma - start));
        start = comma + 1;
        // A comma at the end of the line is common.
        if (field.empty() && start > text.size() && !numbers.empty()) {
            break;
        }
        const std::optional<double> value = definitionNumber(field);
        if (!value.has_value()) {
            return L"\"" + std::wstring(field) + L"\" 不是数";
        }
        numbers.push_back(*value);
    }
    constexpr std::size_t needed = 5;
    if (numbers.size() < needed) {
        return L"图案线应有角度、起点和偏移五个数";
    }
    HatchPatternLine line;
    line.angle = radiansOf(numbers[0]);
    line.base.set(numbers[1], numbers[2]);
    const AcGeVector2d along = direction(line.angle);
    line.offset = along * numbers[3] + along.perpVector() * numbers[4];
    if (numbers[4] == 0.0) {
        return L"平行线的间距不能为零";
    }
    line.dashes.assign(numbers.begin() + needed, numbers.end());
    lines.push_back(std::move(line));
    return {};
}

} // namespace

std::vector<Definition> parse(std::string_view bytes) {
    const std::wstring text = definitionText(bytes);
    std::vector<Definition> definitions;
    for (const DefinitionLine& line : definitionLines(text)) {
        if (line.text.front() == L'*') {
            Definition& definition = definitions.emplace_back();
            const std::size_t comma = line.text.find(L',');
            definition.name = trim(line.text.substr(1, comma == line.text.npos ? comma : comma - 1));
            definition.description =
                comma == line.text.npos ? std::wstring_view() : trim(line.text.substr(comma + 1));
            definition.line = line.number;
            continue;
        }
        if (definitions.empty() || !definitions.back().fault.empty()) {
            continue; // stray text, or the rest of a definition that is no good
        }
        Definition& definition = definitions.back();
        const std::wstring fault = takeFamily(line.text, definition.lines);
        if (!fault.empty()) {
            definition.fault = formatted(L"第 %I64d 行: ", static_cast<long long>(line.number)) + L"图案 \"" +
                               definition.name + L"\": " + fault;
        }
    }
    for (Definition& definition : definitions) {
        if (definition.fault.empty() && (definition.name.empty() || definition.lines.empty())) {
            definition.fault = formatted(L"第 %I64d 行: ", static_cast<long long>(definition.line)) +
                               (definition.name.empty() ? std::wstring(L"图案没有名称")
                                                        : L"图案 \"" + definition.name + L"\": 没有图案线");
        }
    }
    return definitions;
}

} // namespace host::pat
