// Whether something holds for an object or for what owns it, asked for every object of a drawing.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <unordered_map>
#include <vector>

namespace host {

/// Remembers what it learned of owners, so that long chains of them are walked once. For the time of one
/// pass.
class OwnerChain {
public:
    using Marked = std::function<bool(const AcDbStub&)>;
    explicit OwnerChain(Marked marked) : mMarked(std::move(marked)) {}

    /// The stub, or one of its owners, is marked.
    bool reachesMarked(const AcDbStub& stub);

private:
    Marked mMarked;
    std::unordered_map<const AcDbStub*, bool> mKnown; ///< by owner
    std::vector<const AcDbStub*> mPath;
};

/// The chain for objects that are gone with what owns them, as AcDbObjectId::isEffectivelyErased tells it.
OwnerChain erasedOwners();

} // namespace host
