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
};

// Maps the drawing to steps on a sheet, from its lower left corner, or from its upper left with y downwards.
class SheetMap {
public:
    SheetMap(const Sheet& sheet, double stepsPerMillimetre, bool isDownwards)
        : m_scale(sheet.scale * stepsPerMillimetre), m_originX(sheet.originX), m_originY(sheet.originY),
          m_height(isDownwards ? sheet.height * stepsPerMillimetre : 0), m_sign(isDownwards ? -1 : 1) {}

    double x(double worldX) const { return (worldX - m_originX) * m_scale; }
    double y(double worldY) const { return m_height + m_sign * (worldY - m_originY) * m_scale; }
    double scale() const { return m_scale; } // steps a drawing unit
    double sign() const { return m_sign; }
    SheetPoint operator()(const AcGePoint3d& point) const {
        return {rounded(x(point.x)), rounded(y(point.y))};
    }

    // Far outside any sheet all places look alike.
    static std::int64_t rounded(double value) {
        constexpr double farthest = 1e9;
        return std::llround(std::fmin(std::fmax(value, -farthest), farthest));
    }

private:
    double m_scale, m_originX, m_originY, m_height, m_sign;
};

// A pen's colour on white paper, 0xRRGGBB: the foreground colour is black.
std::uint32_t paperColor(const Pen& pen);
// A pen's width in millimetres; the thinnest weight still shows.
double paperWidth(const Pen& pen, bool hasLineWeights);

} // namespace host
