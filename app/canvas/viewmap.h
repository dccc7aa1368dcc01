// Where the drawing lies on the screen: seen from above, in device pixels from the upper left corner.
#pragma once

#include "host/ge/box2d.h"
#include "host/ge/ge.h"

namespace app {

struct ViewMap {
    AcGePoint2d centre;         ///< world
    double unitsPerPixel = 1.0; ///< drawing units a device pixel
    int width = 1, height = 1;  ///< device pixels

    double left() const { return centre.x - 0.5 * width * unitsPerPixel; }
    double top() const { return centre.y + 0.5 * height * unitsPerPixel; }
    double x(double worldX) const { return (worldX - centre.x) / unitsPerPixel + 0.5 * width; }
    double y(double worldY) const { return 0.5 * height - (worldY - centre.y) / unitsPerPixel; }
    AcGePoint2d world(double pixelX, double pixelY) const {
        return {centre.x + (pixelX - 0.5 * width) * unitsPerPixel,
                centre.y - (pixelY - 0.5 * height) * unitsPerPixel};
    }
    /// What a rectangle of pixels shows.
    host::Box2d box(double pixelLeft, double pixelTop, double pixelRight, double pixelBottom) const {
        const AcGePoint2d upperLeft = world(pixelLeft, pixelTop);
        const AcGePoint2d lowerRight = world(pixelRight, pixelBottom);
        return {{upperLeft.x, lowerRight.y}, {lowerRight.x, upperLeft.y}};
    }
    host::Box2d box() const { return box(0, 0, width, height); }
    bool operator==(const ViewMap&) const = default;
};

} // namespace app
