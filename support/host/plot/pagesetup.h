// How a tab of a drawing is put on paper: what its layout keeps and PLOT asks for.
#pragma once

#include "host/plot/plot.h"

class AcDbLayout;

namespace host {

inline constexpr double millimetresAnInch = 25.4;

struct PageSetup {
    enum class Area { display, extents, limits, view, window, layout };
    struct Margins { // millimetres, that the device cannot print on
        double left = 0, bottom = 0, right = 0, top = 0;
    };

    Paper paper; // as the device takes it in; nothing: a sheet of the A series that suits the drawing
    Margins margins;
    bool isInches = false;
    int quarterTurns = 0; // of the drawing on the paper: odd ones across, 2 and 3 upside down
    Area area = Area::extents;
    PlotWindow window; // for Area::window
    std::wstring view; // for Area::view
    double scale = 0;  // millimetres a drawing unit; 0: as large as it fits
    bool isCentred = true;
    double offsetX = 0, offsetY = 0; // millimetres, from the corner of what can be printed
    bool usesStyles = true;
    std::wstring styleSheet; // "monochrome.ctb" makes all black
    bool hasLineWeights = true;

    bool isAcross() const { return paper.width > paper.height; }
    PaperLook look() const;
};

// Coordinates are drawing units, lengths on paper millimetres.
struct PagePlacement {
    Sheet sheet;
    PlotWindow window;                              // the part to draw
    double printableWidth = 0, printableHeight = 0; // as the sheet is seen
};

PageSetup pageSetupOf(const AcDbLayout& layout);
// Keeps the setup as the layout's own.
void storePageSetup(const PageSetup& setup, const std::wstring& device, AcDbLayout& layout);

// Where the tab's content lies on the sheet; a named view that is not there gives the extents.
PagePlacement placementOf(const PageSetup& setup, const AcDbLayout& layout);

// Plots one tab, a layout with what its viewports show. The result is empty or one line that says what went
// wrong.
std::wstring plotTab(const AcDbLayout& layout, const PageSetup& setup, const std::filesystem::path& path,
                     int longSide);

} // namespace host
