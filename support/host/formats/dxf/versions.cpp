// The table of releases.
#include "host/formats/dxf/versions.h"

#include <algorithm>
#include <iterator>

namespace host::dxf {
namespace {

struct VersionName {
    std::string_view name;
    AcDb::AcDbDwgVersion version;
};

constexpr VersionName versionNames[] = {
    {"AC1004", AcDb::kDHL_1004}, {"AC1006", AcDb::kDHL_1006}, {"AC1009", AcDb::kDHL_1009},
    {"AC1012", AcDb::kDHL_1012}, {"AC1014", AcDb::kDHL_1014}, {"AC1015", AcDb::kDHL_1015},
    {"AC1018", AcDb::kDHL_1800}, {"AC1021", AcDb::kDHL_1021}, {"AC1024", AcDb::kDHL_1024},
    {"AC1027", AcDb::kDHL_1027}, {"AC1032", AcDb::kDHL_1032},
};

} // namespace

std::string_view versionName(AcDb::AcDbDwgVersion version) {
    std::string_view name = versionNames[0].name;
    for (const VersionName& known : versionNames) {
        name = known.version <= version ? known.name : name;
    }
    return name;
}

std::optional<AcDb::AcDbDwgVersion> versionByName(std::string_view name) {
    const auto* const found = std::find_if(std::begin(versionNames), std::end(versionNames),
                                           [&](const VersionName& known) { return known.name == name; });
    return found != std::end(versionNames) ? std::optional(found->version) : std::nullopt;
}

} // namespace host::dxf
