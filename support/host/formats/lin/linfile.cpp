// Lines of a linetype file: comments, a name line with an asterisk, and the pattern below it.
#include "host/formats/lin/linfile.h"

#include "host/formats/definitiontext.h"
#include "host/ge/ge.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <optional>

namespace host::lin {
namespace {

/// Degrees, or with a letter behind them radians (r) or gradians (g).
std::optional<double> angle(std::wstring_view text) {
    text = trim(text);
    double unit = pi / 180.0;
    if (!text.empty() && (text.back() | 0x20) == L'r') {
        unit = 1.0;
        text.remove_suffix(1);
    } else if (!text.empty() && (text.back() | 0x20) == L'g') {
        unit = pi / 200.0;
        text.remove_suffix(1);
    } else if (!text.empty() && (text.back() | 0x20) == L'd') {
        text.remove_suffix(1);
    }
    const std::optional<double> value = definitionNumber(text);
    return value.has_value() ? std::optional(*value * unit) : std::nullopt;
}

/// Splits at commas outside of quotes and brackets.
std::vector<std::wstring_view> fieldsOf(std::wstring_view text) {
    std::vector<std::wstring_view> fields;
    bool quoted = false;
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const wchar_t c = text[at];
        if (c == L'"') {
            quoted = !quoted;
        } else if (!quoted && c == L'[') {
            ++depth;
        } else if (!quoted && c == L']') {
            --depth;
        } else if (!quoted && depth == 0 && c == L',') {
            fields.push_back(trim(text.substr(start, at - start)));
            start = at + 1;
        }
    }
    fields.push_back(trim(text.substr(start)));
    return fields;
}

/// One of the settings behind a text or shape: R=, A=, U=, S=, X=, Y=.
bool takeSetting(std::wstring_view field, Element& element) {
    const std::size_t equals = field.find(L'=');
    const std::wstring_view name = trim(field.substr(0, equals));
    if (equals == field.npos || name.size() != 1) {
        return false;
    }
    const std::wstring_view value = field.substr(equals + 1);
    const wchar_t key = toUpper(name.front());
    if (key == L'R' || key == L'A' || key == L'U') {
        const std::optional<double> given = angle(value);
        element.absoluteRotation = key == L'A';
        element.uprightRotation = key == L'U';
        element.rotation = given.value_or(0.0);
        return given.has_value();
    }
    const std::optional<double> given = definitionNumber(value);
    switch (key) {
    case L'S':
        element.scale = given.value_or(1.0);
        return given.has_value() && *given != 0.0;
    case L'X':
        element.x = given.value_or(0.0);
        return given.has_value();
    case L'Y':
        element.y = given.value_or(0.0);
        return given.has_value();
    default:
        return false;
    }
}

/// A text or shape in brackets, which belongs to the element before it.
bool takeInset(std::wstring_view inner, Element& element) {
    const std::vector<std::wstring_view> fields = fieldsOf(inner);
    if (fields.size() < 2 || fields[0].empty() || fields[1].empty()) {
        return false;
    }
    const bool isText = fields[0].front() == L'"';
    if (isText && (fields[0].size() < 2 || fields[0].back() != L'"')) {
        return false;
    }
    element.inset = isText ? Element::Inset::text : Element::Inset::shape;
    element.text = isText ? fields[0].substr(1, fields[0].size() - 2) : fields[0];
    element.style = fields[1];
    for (std::size_t index = 2; index < fields.size(); ++index) {
        if (!fields[index].empty() && !takeSetting(fields[index], element)) {
            return false;
        }
    }
    return true;
}

/// Takes a pattern; gives what is wrong with it, or nothing.
std::wstring takePattern(std::wstring_view text, std::vector<Element>& elements) {
    const std::vector<std::wstring_view> fields = fieldsOf(text);
    if (fields.size() < 2 || !equalNoCase(fields[0], std::wstring_view(L"A"))) {
        return L"图案应以 \"A,\" 开头";
    }
    for (std::size_t index = 1; index < fields.size(); ++index) {
        const std::wstring_view field = fields[index];
        if (field.empty()) {
            continue;
        }
        if (field.front() == L'[') {
            if (field.back() != L']' || elements.empty() || elements.back().inset != Element::Inset::none ||
                !takeInset(field.substr(1, field.size() - 2), elements.back())) {
                return L"嵌入的文字或形 \"" + std::wstring(field) + L"\" 有错";
            }
            continue;
        }
        const std::optional<double> length = definitionNumber(field);
        if (!length.has_value()) {
            return L"\"" + std::wstring(field) + L"\" 不是数";
        }
        elements.push_back({});
        elements.back().length = *length;
    }
    return elements.empty() ? L"图案没有元素" : L"";
}

} // namespace

std::vector<Definition> parse(std::string_view bytes) {
    const std::wstring text = definitionText(bytes);
    const std::vector<DefinitionLine> lines = definitionLines(text);
    std::vector<Definition> definitions;
    for (std::size_t index = 0; index < lines.size();) {
        const DefinitionLine& head = lines[index++];
        if (head.text.front() != L'*') {
            continue; // a pattern without a name, or stray text
        }
        Definition definition;
        const std::size_t comma = head.text.find(L',');
        definition.name = trim(head.text.substr(1, comma == head.text.npos ? comma : comma - 1));
        definition.description =
            comma == head.text.npos ? std::wstring_view() : trim(head.text.substr(comma + 1));
        definition.line = head.number;
        // A pattern that ends with a comma or a backslash goes on in the next line.
        std::wstring pattern;
        std::size_t patternLine = head.number;
        while (index < lines.size() && lines[index].text.front() != L'*') {
            std::wstring_view piece = lines[index].text;
            patternLine = lines[index++].number;
            const bool escaped = piece.back() == L'\\';
            pattern += escaped ? piece.substr(0, piece.size() - 1) : piece;
            if (!escaped && piece.back() != L',') {
                break;
            }
        }
        definition.fault =
            definition.name.empty() ? L"线型没有名称" : takePattern(pattern, definition.elements);
        if (!definition.fault.empty()) {
            definition.fault = formatted(L"第 %I64d 行: ", static_cast<long long>(patternLine)) + L"线型 \"" +
                               definition.name + L"\": " + definition.fault;
        }
        definitions.push_back(std::move(definition));
    }
    return definitions;
}

} // namespace host::lin
