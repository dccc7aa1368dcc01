// Extents of blocks as their references need them, kept until something in the drawing changes: a million
// references of a block measure it once for every way it is turned and scaled.
#pragma once

#include "host/db/dbentity.h"

#include <array>
#include <map>
#include <optional>

class AcDbBlockTableRecord;

namespace host {

class BlockExtents {
public:
    /// The extents of the block under the linear part of a transform (its translation is not regarded);
    /// nothing for an empty block. Computed by `measure`, which gives the same kind of value.
    template <class Measure>
    std::optional<AcDbExtents> under(const AcGeMatrix3d& transform, Adesk::UInt64 stamp, Measure&& measure) {
        std::array<double, 9> key;
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column) {
                key[3 * row + column] = transform.entry[row][column];
            }
        }
        if (stamp != mStamp || mKnown.size() >= most) {
            mKnown.clear();
            mStamp = stamp;
        }
        if (const auto found = mKnown.find(key); found != mKnown.end()) {
            return found->second;
        }
        AcGeMatrix3d linear = transform;
        linear.setTranslation(AcGeVector3d::kIdentity);
        std::optional<AcDbExtents> box = measure(linear);
        mKnown.emplace(key, box);
        return box;
    }

private:
    static constexpr std::size_t most = 1024;
    std::map<std::array<double, 9>, std::optional<AcDbExtents>> mKnown;
    Adesk::UInt64 mStamp = 0;
};

} // namespace host
