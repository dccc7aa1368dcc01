// Entities that are like others in what the user compares.
#pragma once

#include "host/db/db.h"

#include <vector>

namespace host {

/// Bits of SELECTSIMILARMODE. The kind of object always counts.
struct Likeness {
    enum Bit : int {
        color = 1,
        layer = 2,
        linetype = 4,
        linetypeScale = 8,
        lineWeight = 16,
        plotStyle = 32,
        style = 64, ///< of texts, dimensions and multilines
        name = 128, ///< of blocks
    };
};

/// Entities of the block, in drawing order, that are like one of the samples in all that the bits say. One
/// pass.
std::vector<AcDbObjectId> entitiesLike(const AcDbObjectIdArray& samples, AcDbObjectId block, int bits);

} // namespace host
