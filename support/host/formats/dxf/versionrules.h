// What came into DXF with which release: groups by the subclass they stand in, and header variables. What an
// older release does not have is left out, or goes under another code.
#pragma once

#include "host/db/dbid.h"

#include <limits>
#include <span>
#include <string_view>

namespace host::dxf {

/// What is lost with a group, as told to the user; `none`: nothing the drawing shows or needs.
enum class Loss {
    none,
    trueColor,
    transparency,
    shadow,
    material,
    visualStyle,
    lighting,
    blockUnits,
    dimensionFormat,
    textBackground,
    textColumns,
    multilineAttribute,
    lockedPosition,
    gradient,
    clipInside,
    leaderFormat,
    solid,
};

struct VersionRule {
    std::string_view subclass;
    short first;
    short last;
    AcDb::AcDbDwgVersion since;
    Loss loss = Loss::none;
    /// A value with which nothing is lost.
    double standard = std::numeric_limits<double>::quiet_NaN();
    int occurrence = 0; ///< the rule is for the first, second, ... such group of its subclass; 0: for all
    short instead = -1; ///< the code older releases have; -1: none
};

/// Rules of a subclass for files of a release; all of the subclass, so look at `since`.
std::span<const VersionRule> versionRules(std::string_view subclass);
/// The release a header variable came with; kDHL_1009 for all that every written release has.
AcDb::AcDbDwgVersion variableSince(std::string_view name);

} // namespace host::dxf
