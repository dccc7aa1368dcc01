// How a polyline with vertex entities is smoothed: what the drawing's variables ask for, and the exchange of
// its fitted vertices.
#pragma once

#include "host/db/dbdatabase.h"

#include <algorithm>
#include <cstdlib>

namespace host {

struct SplineFitting {
    int degree = 3;   ///< 2 or 3
    int segments = 8; ///< chords a span; negative: the chords are turned into arcs
};

/// Of SPLINETYPE and SPLINESEGS; the usual values without a database.
SplineFitting splineFittingOf(const AcDbDatabase* database);

} // namespace host
