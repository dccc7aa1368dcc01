// Patterns of hatches: families of dashed parallel lines, and their lines within a boundary.
#pragma once

#include "host/db/entities/hatchboundary.h"

#include <functional>
#include <string>

class AcDbDatabase;

namespace host {

/// A family of parallel lines. Dashes are positive, gaps negative, a dot is zero; without any the lines are
/// continuous. The pattern of a line begins at its own base: the family's base plus a whole number of
/// offsets.
struct HatchPatternLine {
    double angle = 0.0; ///< radians
    AcGePoint2d base;
    AcGeVector2d offset; ///< from one line to the next, in the plane of the hatch
    std::vector<double> dashes;
};

/// Turns (radians), then scales a pattern about a point.
void transformPattern(std::vector<HatchPatternLine>& pattern, double angle, double scale,
                      const AcGePoint2d& center = {});
/// Maps a pattern by any affine map of the plane.
void transformPattern(std::vector<HatchPatternLine>& pattern, const AcGeMatrix2d& transform);
/// The lines of a user-defined pattern, with the second set at right angles if there is to be one.
std::vector<HatchPatternLine> userPattern(double angle, double spacing, bool crossed);

enum class HatchStyleKind : Adesk::UInt8 { normal = 0, outer = 1, ignore = 2 };

/// Whether what lies in so many loops is hatched.
constexpr bool isHatched(HatchStyleKind style, int depth) {
    switch (style) {
    case HatchStyleKind::outer:
        return depth == 1;
    case HatchStyleKind::ignore:
        return depth >= 1;
    case HatchStyleKind::normal:
        break;
    }
    return depth % 2 == 1;
}

struct HatchLine {
    AcGePoint2d start;
    AcGePoint2d end; ///< the start once more for a dot
};

/// The most lines a hatch may come to; dashes and dots count.
constexpr std::size_t mostHatchLines = 1'000'000;

/// The pattern's lines within the loops. A sweep: n log n for n crossings of lines and boundary. False, and
/// nothing in `lines`, when there would be more than `most`.
bool hatchLines(std::span<const std::vector<BoundaryPiece>> loops, HatchStyleKind style,
                std::span<const HatchPatternLine> pattern, std::vector<HatchLine>& lines,
                std::size_t most = mostHatchLines);

/// Gives the lines of a pattern by name, at scale 1 and angle 0; hung in by formats. The message is one line
/// on why there are none.
using HatchPatternLoader =
    std::function<Acad::ErrorStatus(const std::wstring& name, AcDbDatabase* database,
                                    std::vector<HatchPatternLine>& lines, std::wstring& message)>;
HatchPatternLoader& hatchPatternLoader();

} // namespace host
