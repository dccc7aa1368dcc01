// Changing what is shown.
#pragma once

#include "host/ed/viewhistory.h"

namespace host {

/// Centre in world coordinates, height in drawing units. ZOOM Previous goes back from there.
void setView(const AcGePoint3d& centre, double height);
/// Width by height of what is shown.
double screenRatio();
/// Corners in world coordinates; `margin` is a share of the window's size.
void setWindow(const AcGePoint3d& a, const AcGePoint3d& b, double margin = 0.0);

} // namespace host
