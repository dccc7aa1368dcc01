// Joining of open paths end to end: each end finds its neighbour in a grid of cells, so that any number of
// segments is joined in time proportional to it.
#pragma once

#include "host/db/db.h"

#include <optional>
#include <vector>

namespace host {

/// How a gap between two ends is closed.
enum class JoinType {
    extend, ///< the end segments are lengthened or cut to where they meet
    add,    ///< a straight segment between them
    both,   ///< lengthened where that is possible, else a segment
};

struct JoinOptions {
    double fuzz = 0.0; ///< greatest gap; at zero the ends must be one point to all accuracy
    JoinType type = JoinType::extend;
};

struct JoinedPath {
    WidePath shape;
    std::vector<std::size_t> sources; ///< indices of the paths in it, the first is the one it grew from
};

/// Joins what touches into as few paths as possible. Every path keeps the direction of the one it grew from,
/// the earliest of its sources. Closed paths and such without segments come back as they are. A chain whose
/// ends meet is closed.
std::vector<JoinedPath> joinPaths(std::vector<WidePath> paths, const JoinOptions& options);
/// What the first path grows into alone.
JoinedPath growPath(std::vector<WidePath> paths, const JoinOptions& options);

} // namespace host
