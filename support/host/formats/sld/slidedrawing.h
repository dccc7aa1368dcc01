// Slides of drawings: what a view of a drawing shows, as MSLIDE writes it and previews show it.
#pragma once

#include "host/db/db.h"
#include "host/formats/sld/slide.h"

namespace host {

/// A part of the world seen from above.
struct SlideView {
    AcGePoint2d centre;
    double height = 1.0; ///< drawing units
    int dotsAcross = 0;
    int dotsUp = 0;
};

/// The current space of a drawing. Texts are drawn as filled outlines, wide lines and hatches as they show.
Slide slideOfView(AcDbDatabase& database, const SlideView& view);
/// All that is drawn in model space, as large as it fits. An empty drawing gives an empty slide.
Slide slideOfExtents(AcDbDatabase& database, int dotsAcross, int dotsUp);

/// The picture of a file by its extension: a slide (.sld, or .slb(NAME)), or a drawing, which is read and
/// drawn. Without one, `message` is one line that says why.
std::optional<Slide> previewOf(const std::wstring& path, int dotsAcross, int dotsUp, std::wstring& message);

} // namespace host
