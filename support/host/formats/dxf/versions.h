// Releases of the DXF format by the names files have for them.
#pragma once

#include "host/db/dbid.h"

#include <optional>
#include <string_view>

namespace host::dxf {

/// "AC1032" and so on; the nearest older one for numbers without a name.
std::string_view versionName(AcDb::AcDbDwgVersion version);
std::optional<AcDb::AcDbDwgVersion> versionByName(std::string_view name);
/// The year or number users know the release by: "2018", "R12".
std::string_view releaseName(AcDb::AcDbDwgVersion version);

} // namespace host::dxf
