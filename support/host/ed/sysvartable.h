// The table of system variables that are not in the drawing's header.
#pragma once

#include <span>

namespace host {

enum class VariableScope {
    session,  ///< one value while the program runs
    document, ///< one value a document
    settings, ///< kept from run to run
    computed, ///< made when asked for
};

enum class VariableType { shortInteger, longInteger, real, text, point2d, point3d };

struct SessionVariable {
    const wchar_t* name;
    VariableType type;
    VariableScope scope;
    const wchar_t* initial; ///< as text; points "x,y,z"
    double minimum = 0.0;   ///< no range when minimum > maximum
    double maximum = -1.0;
    bool readOnly = false;
};

/// In alphabetical order of the names.
std::span<const SessionVariable> sessionVariables();

/// Header variables that only the host changes.
bool isReadOnlyHeaderVariable(const char* name);

} // namespace host
