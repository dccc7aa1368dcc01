// Where the cursor aims when a point is asked for: object snap, ortho and grid snap applied to where it
// stands.
#pragma once

#include "app/canvas/scene.h"
#include "app/canvas/viewmap.h"

#include "host/ed/input.h"

#include <QString>

namespace app {

struct Aimed {
    AcGePoint3d point; ///< world
    AcGePoint3d place; ///< where the cursor stands, world
    int snapKind = 0;  ///< bit of OSMODE of the snap that was found; 0: none
};

/// `place`: where the cursor stands, world coordinates.
Aimed aimAt(Scene& scene, const ViewMap& view, const host::InputRequest& request, const AcGePoint2d& place);
/// The point of the current coordinate system's plane that is seen at a place of the plan.
AcGePoint3d onPlane(const AcGePoint2d& place);
/// "端点" and the like.
QString snapName(int kind);

} // namespace app
