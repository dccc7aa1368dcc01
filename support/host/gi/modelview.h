// How a viewport of a sheet draws the model: a world draw that can do it is a ModelViewDraw as well.
#pragma once

#include "host/ge/ge.h"

#include <span>

namespace host {

class ModelViewDraw {
public:
    virtual ~ModelViewDraw() = default;

    // What is drawn until the end comes from the model: transformed, cut at a closed polygon on the sheet (in
    // the coordinates before), and drawn whatever the layer of the viewport itself is.
    virtual void beginModelView(const AcGeMatrix3d& modelToPaper, std::span<const AcGePoint3d> outline) = 0;
    // The layer that the traits have now is not shown until the end.
    virtual void hideLayer() = 0;
    virtual void endModelView() = 0;
};

} // namespace host
