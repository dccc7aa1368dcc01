// The variables of a drawing's header, in one table: name, group codes, kind, default. Files, undo and the
// system variables of the command line all go through it.
#pragma once

#include "host/db/dbfiler.h"
#include "host/db/dbid.h"

#include <optional>
#include <variant>

namespace host {

using HeaderValue =
    std::variant<Adesk::Int16, Adesk::Int32, double, AcString, AcGePoint2d, AcGePoint3d, AcDbObjectId>;

enum class HeaderKind {
    int16,
    int32,
    real,
    string,
    point2d,
    point3d,
    layer,
    linetype,
    textStyle,
    dimStyle,
    handle,
    color,
    date
};

/// One known variable. `name` is without the dollar sign.
struct HeaderVariable {
    const char* name;
    short code; ///< group code of the (first) value
    HeaderKind kind;
    const char* initial;  ///< initial value as DXF text; points as "x,y,z"
    bool systemVariable;  ///< may be read and set by that name on the command line
    double minimum = 0.0; ///< range of a number; no check when minimum > maximum
    double maximum = -1.0;
};

/// Position in the table; stable for the life of the program.
using HeaderIndex = std::size_t;

std::span<const HeaderVariable> headerVariables();
/// What the variable has in a new drawing.
HeaderValue initialHeaderValue(HeaderIndex index);
/// Case-insensitive look-up.
std::optional<HeaderIndex> findHeaderVariable(std::string_view name);

} // namespace host
