// The view of model space that a drawing holds: where it was left, and where the next one finds it.
#pragma once

#include "host/db/db.h"

#include <optional>

namespace app {

struct StoredView {
    AcGePoint2d centre;     ///< world
    double height = 0;      ///< drawing units
    double aspect = 4. / 3; ///< width by height
};

/// Nothing when the drawing holds none, or not one straight from above.
std::optional<StoredView> storedView(const AcDbDatabase& database);
/// Puts it in the place of the view that the drawing holds; one that is not from above stays. No step of
/// undo.
void storeView(AcDbDatabase& database, const StoredView& view);

} // namespace app
