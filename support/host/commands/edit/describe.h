// What an entity is and where, as lines of text.
#pragma once

#include "host/db/db.h"

#include <string>
#include <vector>

namespace host {

/// Lines for LIST, without line ends. Points and angles are told in the UCS and the drawing's units.
std::vector<std::wstring> describeEntity(const AcDbEntity& entity);

/// Area of a closed curve, or of one closed by a straight line, and its length; nothing for what encloses
/// none.
struct Measures {
    double area = 0.0;
    double length = 0.0;
};
std::optional<Measures> measuresOf(const AcDbEntity& entity);

} // namespace host
