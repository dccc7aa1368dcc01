// The order in which the entities of a block are drawn.
#pragma once

#include "host/arx.h"

class QDV_EXPORT CDrawOrder {
public:
    /// Above all others of its block.
    static Acad::ErrorStatus MoveToTop(AcDbObjectId entity);
};
