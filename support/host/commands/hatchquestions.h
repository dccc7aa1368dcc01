// What HATCH and HATCHEDIT ask alike: pattern, style, drawing order, origin, boundaries.
#pragma once

#include "host/commands/edit/hatchoutline.h"

#include <string>

namespace host {

struct HatchSettings {
    std::wstring pattern; ///< a name, SOLID, or "U" for lines by angle and spacing
    double scale = 1.0;
    double angle = 0.0; ///< radians
    double spacing = 1.0;
    bool crossed = false;

    bool isUserDefined() const { return pattern == L"U" || pattern == L"_U"; }
};

/// The settings for new hatches, from and to their variables.
HatchSettings currentHatchSettings();
void storeHatchSettings(const HatchSettings& settings);
/// False for Escape.
bool askHatchProperties(HatchSettings& settings);
/// Pattern, angle and scale; tells when there is no such pattern or its lines are too many.
bool applyHatchSettings(AcDbHatch& hatch, const HatchSettings& settings);

/// Nothing for Escape.
std::optional<AcDbHatch::HatchStyle> askHatchStyle(AcDbHatch::HatchStyle standard);
/// As HPDRAWORDER: 0 as it is, 1 to the back, 2 to the front, 3 behind the boundary, 4 before it.
std::optional<int> askHatchOrder(int standard);
void putInHatchOrder(AcDbObjectId hatch, int order);

/// Appends a closed polyline in the plane with this elevation.
AcDbObjectId appendOutlinePolyline(const BulgePath& path, const AcGeVector3d& normal, double elevation);

/// Outlines around a place, in the UCS plane; tells when there are none.
std::vector<HatchOutline> outlinesAround(const AcGePoint3d& world);
/// Outlines of objects that are selected now; tells how many are part of none.
std::vector<HatchOutline> selectedOutlines(const AcGeVector3d& normal);

} // namespace host
