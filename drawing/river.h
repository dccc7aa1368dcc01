// What a river is drawn with: its banks, joined from the lines of a multiline, and the decorations between
// them.
#pragma once

#include "restools/drawing.h"

#include <array>
#include <memory>
#include <vector>

namespace river {

constexpr const ACHAR* layerName = L"$HLX";
constexpr Adesk::UInt16 layerColor = 4;

/// As the items of the picture list are numbered.
enum class Style { hatchWithSlopes, hatch, dashedLines, flowArrows };

using Polylines = std::vector<std::unique_ptr<AcDbPolyline>>;

/// A polyline of two vertices for each line; other entities are left out.
Polylines LinesOf(const std::vector<std::unique_ptr<AcDbEntity>>& pieces);
/// Joins lines end to end, each result growing from the first line that is left, by LinkTwoPolyline.
Polylines JoinLines(Polylines lines);

/// Distances of the lines inside a river from its first bank, ascending; the last one is the other bank's.
std::vector<double> InnerLineDistances(double width);

/// An arrow 20 long along the X axis from the origin: shaft and two barbs.
std::array<std::unique_ptr<AcDbLine>, 3> NewFlowArrow();

/// The banks in the drawing; null where there is none.
struct Banks {
    std::array<AcDbObjectId, 2> ids;
    bool AreThere() const { return !ids[0].isNull() && !ids[1].isNull(); }
};
/// Appends the first two lines as smooth polylines.
Banks LeaveBanks(const Polylines& lines);

/// Draws what the style asks for between the banks; arrows are placed by the user.
void Decorate(const Banks& banks, Style style, double width);

} // namespace river
