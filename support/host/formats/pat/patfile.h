// Hatch pattern files (.pat): the text of a file as definitions.
#pragma once

#include "host/db/entities/hatchpattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace host::pat {

struct Definition {
    std::wstring name;
    std::wstring description;
    std::vector<HatchPatternLine> lines; ///< at scale 1 and angle 0
    std::size_t line = 0;                ///< of the name in the file
    std::wstring fault;                  ///< one line with the place; empty when the definition is good
};

/// All definitions in order, faulty ones marked as such. Encodings as of linetype files.
std::vector<Definition> parse(std::string_view bytes);

} // namespace host::pat
