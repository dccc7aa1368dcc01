// The text by which the custom entities are shown where they are not to be shown themselves.
#pragma once

#include "host/arx.h"

/// Draws the maker's name at a point of the plan, along the X axis.
inline void drawProxyText(AcGiWorldDraw& draw, const AcGePoint3d& position, double height,
                          double widthFactor) {
    draw.geometry().text(position, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, height, widthFactor, 0.0,
                         L"沐岚川软件");
}
