#include "host/plot/sheet.h"

#include <algorithm>
#include <array>
#include <numbers>

namespace host {

namespace {

void centre(Sheet& sheet, const PlotWindow& window) {
    sheet.originX = (window.left + window.right) / 2 - sheet.width / 2 / sheet.scale;
    sheet.originY = (window.bottom + window.top) / 2 - sheet.height / 2 / sheet.scale;
}

void place(Sheet& sheet, const PlotWindow& window, double margin) {
    const double width = window.right - window.left, height = window.top - window.bottom;
    const double across = sheet.width - 2 * margin, up = sheet.height - 2 * margin;
    const double scaleX = width > 0 ? across / width : HUGE_VAL, scaleY = height > 0 ? up / height : HUGE_VAL;
    sheet.scale = std::min(scaleX, scaleY);
    if (!std::isfinite(sheet.scale) || sheet.scale <= 0)
        sheet.scale = 1;
    centre(sheet, window);
}

} // namespace

Sheet Sheet::scaled(const PlotWindow& window, double width, double height, double scale) {
    Sheet sheet{width, height, 0, 0, scale};
    centre(sheet, window);
    return sheet;
}

Sheet Sheet::filled(const PlotWindow& window, double margin, double width, double height) {
    Sheet sheet{width, height, 0, 0, 1};
    place(sheet, window, margin);
    return sheet;
}

Sheet Sheet::standard(const PlotWindow& window, double margin, double longSide) {
    const double shortSide = std::round(longSide / std::numbers::sqrt2);
    const bool isUpright = window.top - window.bottom > window.right - window.left;
    return isUpright ? filled(window, margin, shortSide, longSide)
                     : filled(window, margin, longSide, shortSide);
}

Sheet Sheet::fitted(const PlotWindow& window, double margin, double longSide) {
    constexpr double mostProportion = 10;
    const double width = window.right - window.left, height = window.top - window.bottom;
    const double inner = longSide - 2 * margin;
    const auto shorter = [&](double part, double whole) {
        const double share = whole > 0 ? std::clamp(part / whole, 1 / mostProportion, 1.0) : 1.0;
        return inner * share + 2 * margin;
    };
    Sheet sheet;
    sheet.width = height > width ? shorter(width, height) : longSide;
    sheet.height = height > width ? longSide : shorter(height, width);
    place(sheet, window, margin);
    return sheet;
}

double readableLongSide(const PlotWindow& window, double margin, double textHeight) {
    constexpr std::array longSides{420.0, 594.0, 841.0, 1189.0};
    constexpr double readable = 1.8; // millimetres
    const auto* side = std::ranges::find_if(longSides, [&](double longSide) {
        return textHeight * Sheet::standard(window, margin, longSide).scale >= readable;
    });
    return textHeight > 0 && side != longSides.end() ? *side
           : textHeight > 0                          ? longSides.back()
                                                     : longSides[0];
}

std::uint32_t paperColor(const Pen& pen, const PaperLook& look) {
    if (pen.color.isNone())
        return 0xFFFFFF; // what hides others has the colour of the paper
    return look.isMonochrome || pen.color.isForeground() ? 0 : pen.color.trueColor();
}

double paperWidth(const Pen& pen, const PaperLook& look) {
    constexpr double thinnest = 0.05, uniform = 0.13;
    return look.hasLineWeights ? std::max(static_cast<int>(pen.lineWeight) / 100.0, thinnest) : uniform;
}

} // namespace host
