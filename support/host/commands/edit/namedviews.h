// Named views: records of the view table, as files hold them.
#pragma once

#include "host/db/db.h"

#include <optional>

namespace host {

struct NamedView {
    AcGePoint3d centre; ///< world
    double height = 0.0;
    double width = 0.0;
    bool isPaper = false; ///< of a layout
};

/// Nothing when it is not seen straight from above, or says nothing sensible.
std::optional<NamedView> namedView(AcDbObjectId record);
/// A view with such a name is replaced. eInvalidInput for a name that can't be.
Acad::ErrorStatus saveNamedView(AcDbDatabase& database, const ACHAR* name, const NamedView& view);

} // namespace host
