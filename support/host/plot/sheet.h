// The sheet of paper a picture is drawn on, and where the drawing lies on it.
#pragma once

#include "host/gi/primitives.h"

#include <cmath>
#include <cstdint>

namespace host {

// A part of the drawing seen from above, drawing units.
struct PlotWindow {
    double left = 0, bottom = 0, right = 0, top = 0;
};

// The drawing's point (originX, originY) lies at the sheet's lower left corner.
struct Sheet {
    double width = 420, height = 297; // millimetres
    double originX = 0, originY = 0;
    double scale = 1; // millimetres of the sheet a drawing unit

    // A sheet of the A series with this long side, upright or across as the window suits it better.
    static Sheet standard(const PlotWindow& window, double margin, double longSide);
    // A sheet of this size on which a drawing unit is scale millimetres; the window is centred on it.
    static Sheet scaled(const PlotWindow& window, double width, double height, double scale);
    // The largest scale at which the window fits a sheet of this size.
    static Sheet filled(const PlotWindow& window, double margin, double width, double height);
    // A sheet of the window's own proportions (at most 1 to 10).
    static Sheet fitted(const PlotWindow& window, double margin, double longSide);
};

// The long side of the smallest sheet, A3 to A0, on which texts of this height (drawing units) can be read;
// A3 for a height of 0.
double readableLongSide(const PlotWindow& window, double margin, double textHeight);

// Sheet coordinates in whole steps, so that output is short and repeated points are seen.
struct SheetPoint {
    std::int64_t x = 0, y = 0;
    bool operator==(const SheetPoint&) const = default;
    SheetPoint operator-(const SheetPoint& other) const { return {x - other.x, y - other.y}; }
};

// Maps the drawing to steps on a sheet, from its lower left corner, or from its upper left with y downwards.
class SheetMap {
public:
    SheetMap(const Sheet& sheet, double stepsPerMillimetre, bool isDownwards)
        : mScale(sheet.scale * stepsPerMillimetre), mOriginX(sheet.originX), mOriginY(sheet.originY),
          mHeight(isDownwards ? sheet.height * stepsPerMillimetre : 0), mSign(isDownwards ? -1 : 1) {}

    double x(double worldX) const { return (worldX - mOriginX) * mScale; }
    double y(double worldY) const { return mHeight + mSign * (worldY - mOriginY) * mScale; }
    double scale() const { return mScale; } // steps a drawing unit
    double sign() const { return mSign; }
    SheetPoint operator()(const AcGePoint3d& point) const {
        return {rounded(x(point.x)), rounded(y(point.y))};
    }

    // Far outside any sheet all places look alike.
    static std::int64_t rounded(double value) {
        constexpr double farthest = 1e9;
        value = value > -farthest ? value : -farthest;
        value = value < farthest ? value : farthest;
        return static_cast<std::int64_t>(value < 0 ? value - 0.5 : value + 0.5);
    }

private:
    double mScale, mOriginX, mOriginY, mHeight, mSign;
};

// How pens show on paper.
struct PaperLook {
    bool hasLineWeights = true; // else all lines are equally thin
    bool isMonochrome = false;  // all colours are black
};

// A pen's colour on white paper, 0xRRGGBB: the foreground colour is black.
std::uint32_t paperColor(const Pen& pen, const PaperLook& look);
// A pen's width in millimetres; the thinnest weight still shows.
double paperWidth(const Pen& pen, const PaperLook& look);

} // namespace host
