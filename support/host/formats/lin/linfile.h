// Linetype definition files (.lin): the text of a file as definitions. Shape and style names are left as they
// stand; they mean something only in a drawing.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host::lin {

/// One element of a pattern: a dash (positive), a gap (negative) or a dot (zero), with an optional text or
/// shape set into the line after it.
struct Element {
    double length = 0.0;
    enum class Inset { none, text, shape } inset = Inset::none;
    std::wstring text;  ///< the text, or the shape's name or number
    std::wstring style; ///< text style, or shape file
    bool absoluteRotation = false;
    bool uprightRotation = false; ///< turned where it would stand on its head
    double rotation = 0.0;        ///< radians
    double scale = 1.0;
    double x = 0.0;
    double y = 0.0;
};

struct Definition {
    std::wstring name;
    std::wstring description;
    std::vector<Element> elements;
    std::size_t line = 0; ///< of the name in the file
    std::wstring fault;   ///< one line with the place; empty when the definition is good
};

/// All definitions in order, faulty ones marked as such. The bytes may be UTF-8, UTF-16 with a mark, or in
/// the Chinese code page.
std::vector<Definition> parse(std::string_view bytes);

} // namespace host::lin
