// Pictures of drawings: PDF, SVG and PNG files, and devices' sheets.
#pragma once

#include "host/gi/flatten.h"
#include "host/plot/sheet.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

class AcDbDatabase;

namespace host {

struct Paper {
    double width = 0, height = 0; // millimetres, as it lies
};

struct PlotOptions {
    std::optional<PlotWindow> window; // the part to draw, cut at its border; without it all that is drawn
    std::optional<Sheet> sheet;       // where it lies, as it is; else paper, scale and margin say so
    bool isUpsideDown = false;        // on the sheet
    std::optional<Paper> paper;       // without it a sheet that suits the drawing
    double scale = 0;                 // millimetres on the paper a drawing unit; 0: as large as it fits
    double margin = 10;               // of white paper where the scale is fitted, millimetres
    int longSide = 2520;              // pixels of an image's longer side
    PaperLook look;
};

// Draws the model space of a drawing, seen from above, as its extension says: .pdf (one sheet), .svg or
// .png. Layers that are off, frozen or not to be plotted are left out. The result is empty, or one line that
// says what went wrong; an existing file is replaced only when the new one is whole.
std::wstring plotExtents(AcDbDatabase* database, const std::filesystem::path& path,
                         const PlotOptions& options = {});

// What drawing gives, without a picture.
struct DrawnContent {
    PlotWindow window;     // its extents; a standard one where there are none
    double textHeight = 0; // the median of its texts'
    bool isWhole = true;   // not stopped for too much to draw
};
DrawnContent drawnContent(DrawingSource& source, const std::function<void(Flattener&)>& draw);

// The same for anything that can be drawn: draw is called once for the extents and once for the
// picture.
std::wstring plotDrawing(DrawingSource& source, const std::function<void(Flattener&)>& draw,
                         const std::filesystem::path& path, const PlotOptions& options = {});

} // namespace host
