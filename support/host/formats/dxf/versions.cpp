// The table of releases.
#include "host/formats/dxf/versions.h"

#include <algorithm>
#include <iterator>

namespace host::dxf {
namespace {

struct VersionName {
    std::string_view name;
    std::string_view release;
    AcDb::AcDbDwgVersion version;
};

constexpr VersionName versionNames[] = {
    {"AC1004", "R9", AcDb::kDHL_1004},   {"AC1006", "R10", AcDb::kDHL_1006},
    {"AC1009", "R12", AcDb::kDHL_1009},  {"AC1012", "R13", AcDb::kDHL_1012},
    {"AC1014", "R14", AcDb::kDHL_1014},  {"AC1015", "2000", AcDb::kDHL_1015},
    {"AC1018", "2004", AcDb::kDHL_1800}, {"AC1021", "2007", AcDb::kDHL_1021},
    {"AC1024", "2010", AcDb::kDHL_1024}, {"AC1027", "2013", AcDb::kDHL_1027},
    {"AC1032", "2018", AcDb::kDHL_1032},
};

const VersionName& nearest(AcDb::AcDbDwgVersion version) {
    const VersionName* found = versionNames;
    for (const VersionName& known : versionNames) {
        found = known.version <= version ? &known : found;
    }
    return *found;
}

} // namespace

std::string_view versionName(AcDb::AcDbDwgVersion version) {
    return nearest(version).name;
}

std::string_view releaseName(AcDb::AcDbDwgVersion version) {
    return nearest(version).release;
}

std::optional<AcDb::AcDbDwgVersion> versionByName(std::string_view name) {
    const auto* const found = std::find_if(std::begin(versionNames), std::end(versionNames),
                                           [&](const VersionName& known) { return known.name == name; });
    return found != std::end(versionNames) ? std::optional(found->version) : std::nullopt;
}

} // namespace host::dxf
