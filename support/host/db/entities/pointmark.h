// How points are shown: the drawing's PDMODE says the figure, PDSIZE its size.
#pragma once

#include "host/gi/gi.h"

namespace host {

struct PointMark {
    int mode = 0;      ///< 0 a dot, 1 nothing, 2 a plus, 3 a cross, 4 a tick; 32 more a circle, 64 a square
    double size = 0.0; ///< PDSIZE: drawing units, or minus the percentage of the view's height; 0: 5 percent

    /// As the drawing says; a dot without one.
    static PointMark of(const AcDbDatabase* database);

    bool isDot() const { return mode == 0; }
    bool needsView() const { return !isDot() && !(size > 0.0); }
    /// Drawing units in a view of this height.
    double sizeIn(double viewHeight) const;
    /// Draws the mark with this size as the circle's diameter; the arms of a plus and a cross reach as far
    /// again outside it. Parallel to the XY plane, as points are looked at from above.
    void draw(const AcGiGeometry& geometry, const AcGePoint3d& place, double drawnSize) const;
};

} // namespace host
