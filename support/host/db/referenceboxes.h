// Boxes of block definitions under the turns and scales they are referred to with, so that a drawing full of
// the same symbols is measured without going through each of them.
#pragma once

#include "host/db/dbentity.h"

#include <array>
#include <compare>
#include <map>

class AcDbBlockReference;

namespace host {

/// Holds for as long as no definition changes.
class ReferenceBoxes {
public:
    /// World box of a reference with its attributes; eInvalidExtents when it shows nothing.
    Acad::ErrorStatus extents(const AcDbBlockReference& reference, AcDbExtents& extents);
    void clear() { mBoxes.clear(); }

private:
    struct Key {
        AcDbStub* block;
        std::array<double, 9> axes; ///< of the block in the world
        auto operator<=>(const Key&) const = default;
    };
    std::map<Key, AcDbExtents> mBoxes;
};

} // namespace host
