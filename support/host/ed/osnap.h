// Object snap: the words typed before a point, and the snap point nearest to a place.
#pragma once

#include "host/db/db.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// Bits of AcDb::OsnapMask of words such as "_end,mid", "端点" or "none"; nothing when a word is no mode.
std::optional<int> parseSnapModes(std::wstring_view text);

/// The modes as such words, between commas; "无" for none.
std::wstring snapModesText(int modes);

/// A word typed instead of a point that says how the point will be found.
struct PointWord {
    enum class Kind {
        snap,       ///< by object snap with `modes`; kOsMaskNoneOverride: without any
        filter,     ///< coordinates in `axes` ("xy") from the next point, the others from one after it
        midBetween, ///< half way between two points
        from,       ///< a base point and an offset
    };
    Kind kind = Kind::snap;
    int modes = 0;
    std::string axes;
};
std::optional<PointWord> parsePointWord(std::wstring_view text);

/// A snap point in world coordinates and the entity that has it.
struct Snapped {
    AcGePoint3d point;
    AcDbObjectId entity;
    int modes = 0; ///< that were asked for
    int kind = 0;  ///< the mode it was found by
};

/// The snap point of one of the modes nearest to a place, on entities within the aperture; perpendicular and
/// tangent points as seen from `last`. World coordinates.
std::optional<Snapped> snapPoint(const AcGePoint3d& place, int modes, const AcGePoint3d& last);

/// OSMODE, or 0 while running object snap is switched off.
int runningSnapModes();

/// A point on its way to who asked, after the document's point filter and monitors. `raw` is where it was
/// picked or typed; world coordinates.
AcGePoint3d throughPointFilters(const AcGePoint3d& raw, const std::optional<Snapped>& snapped,
                                const AcGePoint3d& last, bool fromCursor);

} // namespace host
