// Finding what lies in a drawing twice: equal entities, and collinear lines and arcs of one circle that
// overlap or go on from each other.
#pragma once

#include "host/db/db.h"

namespace host {

struct OverkillOptions {
    enum Property : unsigned { color = 1, layer = 2, linetype = 4, linetypeScale = 8, lineWeight = 16 };
    unsigned ignored = 0;    ///< properties in which duplicates may differ
    double tolerance = 1e-6; ///< drawing units; angles in radians
    bool mergesOverlaps = true;
    bool mergesEnds = true; ///< collinear ones that touch end to end too
};

struct OverkillResult {
    int duplicates = 0; ///< erased
    int overlaps = 0;   ///< erased since others cover them now
};

/// The first of equals stays. Costs O(n log n) for n entities as they are in drawings: lines are compared
/// with those whose boxes touch in a system turned into their direction.
OverkillResult removeDuplicates(const AcDbObjectIdArray& entities, const OverkillOptions& options);

} // namespace host
