// Object snap: modes as words, and the snap point nearest to a place.
#pragma once

#include "host/db/db.h"

#include <optional>
#include <string_view>

namespace host {

/// Bits of AcDb::OsnapMask of words such as "_end,mid" or "none"; nothing when a word is no mode.
std::optional<int> parseSnapModes(std::wstring_view text);

/// The snap point of one of the modes nearest to a point, among entities within the aperture. World
/// coordinates; the point goes through the document's input point filter.
std::optional<AcGePoint3d> snapPoint(const AcGePoint3d& point, int modes, const AcGePoint3d& lastPoint);

} // namespace host
