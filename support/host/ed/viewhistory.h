// The views of the current drawing that ZOOM Previous goes back to.
#pragma once

#include "host/ge/ge.h"

#include <optional>

namespace host {

/// What is shown: centre in world coordinates, height in drawing units.
struct ShownView {
    AcGePoint3d centre;
    double height = 0.0;
};

/// By VIEWCTR and VIEWSIZE.
ShownView shownView();
/// Sets both, for a picture that shows it already.
void keepShownView(const ShownView& view);
/// Sets both; the picture follows.
void showView(const ShownView& view);
/// Notes what is shown now, which is about to change.
void rememberView();
/// Takes back the view noted last.
std::optional<ShownView> takeEarlierView();

} // namespace host
