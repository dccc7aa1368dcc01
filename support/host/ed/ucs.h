// The current user coordinate system of a document and those it had before.
#pragma once

#include "host/ge/ge.h"

#include <string>

namespace host {

/// Origin and axes in world coordinates. `name` is that of a saved one, else empty.
struct UcsFrame {
    AcGePoint3d origin;
    AcGeVector3d x = AcGeVector3d::kXAxis;
    AcGeVector3d y = AcGeVector3d::kYAxis;
    std::wstring name;

    AcGeVector3d z() const { return x.crossProduct(y).normal(); }
    AcGeMatrix3d toWorld() const;
    bool isWorld() const;
};

UcsFrame currentUcs();
/// Makes a coordinate system the current one; LASTPOINT stays where it is in the world. False for axes that
/// are not at right angles.
bool setCurrentUcs(const UcsFrame& ucs);
/// Goes back to the one before; false when there is none.
bool restorePreviousUcs();

} // namespace host
