// The tables, sorted by subclass.
#include "host/formats/dxf/versionrules.h"

#include <algorithm>
#include <array>

namespace host::dxf {
namespace {

using AcDb::kDHL_1021;
using AcDb::kDHL_1024;
using AcDb::kDHL_1027;
using AcDb::kDHL_1032;
using AcDb::kDHL_1800;

constexpr double any = std::numeric_limits<double>::quiet_NaN();

constexpr VersionRule rules[] = {
    {"AcDbAttribute", 71, 71, kDHL_1032},
    {"AcDbAttribute", 101, 101, kDHL_1032, Loss::multilineAttribute},
    {"AcDbAttribute", 280, 280, kDHL_1021, Loss::lockedPosition, 0, 2},
    {"AcDbAttribute", 280, 280, kDHL_1024, Loss::none, any, 1},
    {"AcDbAttributeDefinition", 71, 71, kDHL_1032},
    {"AcDbAttributeDefinition", 101, 101, kDHL_1032, Loss::multilineAttribute},
    {"AcDbAttributeDefinition", 280, 280, kDHL_1021, Loss::lockedPosition, 0, 2},
    {"AcDbAttributeDefinition", 280, 280, kDHL_1024, Loss::none, any, 1},
    {"AcDbBlockTableRecord", 70, 70, kDHL_1021, Loss::blockUnits, 0},
    {"AcDbBlockTableRecord", 280, 281, kDHL_1021},
    {"AcDbDimStyleTableRecord", 49, 49, kDHL_1021, Loss::dimensionFormat, 1},
    {"AcDbDimStyleTableRecord", 50, 50, kDHL_1021, Loss::dimensionFormat, 44.999999999999986},
    {"AcDbDimStyleTableRecord", 69, 69, kDHL_1021, Loss::dimensionFormat, 0},
    {"AcDbDimStyleTableRecord", 70, 70, kDHL_1021, Loss::dimensionFormat, 0, 2},
    {"AcDbDimStyleTableRecord", 90, 90, kDHL_1021, Loss::dimensionFormat, 0},
    {"AcDbDimStyleTableRecord", 290, 290, kDHL_1021, Loss::dimensionFormat, 0},
    {"AcDbDimStyleTableRecord", 294, 295, kDHL_1024, Loss::dimensionFormat, 0},
    {"AcDbDimStyleTableRecord", 345, 347, kDHL_1021, Loss::dimensionFormat},
    {"AcDbDimension", 73, 73, kDHL_1021},
    {"AcDbDimension", 74, 75, kDHL_1021, Loss::dimensionFormat, 0},
    {"AcDbDimension", 280, 280, kDHL_1024},
    {"AcDbEntity", 160, 160, kDHL_1024, Loss::none, any, 0, 92},
    {"AcDbEntity", 284, 284, kDHL_1021, Loss::shadow, 0},
    {"AcDbEntity", 347, 347, kDHL_1021, Loss::material},
    {"AcDbEntity", 348, 348, kDHL_1021, Loss::visualStyle},
    {"AcDbEntity", 420, 439, kDHL_1800, Loss::trueColor},
    {"AcDbEntity", 440, 449, kDHL_1800, Loss::transparency, 0},
    {"AcDbHatch", 63, 63, kDHL_1800, Loss::gradient},
    {"AcDbHatch", 421, 439, kDHL_1800, Loss::gradient},
    {"AcDbHatch", 450, 450, kDHL_1800, Loss::gradient, 0},
    {"AcDbHatch", 451, 479, kDHL_1800},
    {"AcDbLayerTableRecord", 347, 348, kDHL_1021},
    {"AcDbLayerTableRecord", 348, 348, kDHL_1027},
    {"AcDbLayerTableRecord", 420, 439, kDHL_1800, Loss::trueColor},
    {"AcDbMLeader", 270, 273, kDHL_1024, Loss::leaderFormat},
    {"AcDbMLeader", 295, 295, kDHL_1027, Loss::leaderFormat, 0, 2},
    {"AcDbMLeaderStyle", 179, 179, kDHL_1024},
    {"AcDbMLeaderStyle", 271, 273, kDHL_1024, Loss::leaderFormat},
    {"AcDbMLeaderStyle", 298, 298, kDHL_1027, Loss::leaderFormat, 0},
    {"AcDbMText", 45, 45, kDHL_1800, Loss::textBackground},
    {"AcDbMText", 46, 46, kDHL_1021},
    {"AcDbMText", 63, 63, kDHL_1800, Loss::textBackground},
    {"AcDbMText", 90, 90, kDHL_1800, Loss::textBackground, 0},
    {"AcDbMText", 101, 101, kDHL_1032, Loss::textColumns},
    {"AcDbMText", 421, 449, kDHL_1800, Loss::textBackground},
    {"AcDbModelDocViewStyle", 90, 90, kDHL_1032},
    {"AcDbModelDocViewStyle", 300, 300, kDHL_1032},
    {"AcDbPlotSettings", 76, 78, kDHL_1800},
    {"AcDbPlotSettings", 333, 333, kDHL_1021, Loss::visualStyle},
    {"AcDbPolyline", 91, 91, kDHL_1024},
    {"AcDbRasterImage", 290, 290, kDHL_1024, Loss::clipInside, 0},
    {"AcDbViewTableRecord", 73, 73, kDHL_1021},
    {"AcDbViewTableRecord", 332, 334, kDHL_1021, Loss::lighting},
    {"AcDbViewTableRecord", 348, 348, kDHL_1021, Loss::visualStyle},
    {"AcDbViewTableRecord", 361, 361, kDHL_1024, Loss::lighting},
    {"AcDbViewport", 61, 61, kDHL_1021},
    {"AcDbViewport", 63, 63, kDHL_1021},
    {"AcDbViewport", 91, 91, kDHL_1021},
    {"AcDbViewport", 141, 142, kDHL_1021, Loss::lighting, 0},
    {"AcDbViewport", 170, 170, kDHL_1800},
    {"AcDbViewport", 282, 282, kDHL_1021, Loss::lighting, 1},
    {"AcDbViewport", 292, 292, kDHL_1021, Loss::lighting, 1},
    {"AcDbViewport", 332, 335, kDHL_1021, Loss::lighting},
    {"AcDbViewport", 348, 348, kDHL_1021, Loss::visualStyle},
    {"AcDbViewport", 361, 361, kDHL_1021, Loss::lighting},
    {"AcDbViewport", 421, 439, kDHL_1021},
    {"AcDbViewportTableRecord", 60, 63, kDHL_1021},
    {"AcDbViewportTableRecord", 141, 142, kDHL_1021, Loss::lighting, 0},
    {"AcDbViewportTableRecord", 170, 170, kDHL_1021},
    {"AcDbViewportTableRecord", 282, 282, kDHL_1021, Loss::lighting, 1},
    {"AcDbViewportTableRecord", 292, 292, kDHL_1021, Loss::lighting, 1},
    {"AcDbViewportTableRecord", 332, 335, kDHL_1021, Loss::lighting},
    {"AcDbViewportTableRecord", 348, 348, kDHL_1021, Loss::visualStyle},
    {"AcDbViewportTableRecord", 361, 361, kDHL_1021, Loss::lighting},
    {"AcDbViewportTableRecord", 421, 439, kDHL_1021},
    {"AcDbWipeout", 290, 290, kDHL_1024, Loss::clipInside, 0},
};

struct BySubclass {
    constexpr bool operator()(const VersionRule& a, const VersionRule& b) const {
        return a.subclass < b.subclass;
    }
};
static_assert(std::is_sorted(std::begin(rules), std::end(rules), BySubclass()));

constexpr std::string_view since1800[] = {
    "DIMASSOC",    "HALOGAP",  "HIDETEXT", "INDEXCTL",    "INTERSECTIONCOLOR", "INTERSECTIONDISPLAY",
    "LASTSAVEDBY", "OBSCOLOR", "OBSLTYPE", "PROJECTNAME", "SORTENTS",          "XCLIPFRAME"};
constexpr std::string_view since1021[] = {"3DDWFPREC",
                                          "CAMERADISPLAY",
                                          "CAMERAHEIGHT",
                                          "CMATERIAL",
                                          "CSHADOW",
                                          "DGNFRAME",
                                          "DIMARCSYM",
                                          "DIMFXL",
                                          "DIMFXLON",
                                          "DIMJOGANG",
                                          "DIMLTEX1",
                                          "DIMLTEX2",
                                          "DIMLTYPE",
                                          "DIMTFILL",
                                          "DIMTFILLCLR",
                                          "DWFFRAME",
                                          "INTERFERECOLOR",
                                          "INTERFEREOBJVS",
                                          "INTERFEREVPVS",
                                          "LATITUDE",
                                          "LENSLENGTH",
                                          "LIGHTGLYPHDISPLAY",
                                          "LOFTANG1",
                                          "LOFTANG2",
                                          "LOFTMAG1",
                                          "LOFTMAG2",
                                          "LOFTNORMALS",
                                          "LOFTPARAM",
                                          "LONGITUDE",
                                          "NORTHDIRECTION",
                                          "PSOLHEIGHT",
                                          "PSOLWIDTH",
                                          "REALWORLDSCALE",
                                          "SHADOWPLANELOCATION",
                                          "SHOWHIST",
                                          "SOLIDHIST",
                                          "STEPSIZE",
                                          "STEPSPERSEC",
                                          "TILEMODELIGHTSYNCH",
                                          "TIMEZONE"};
static_assert(std::ranges::is_sorted(since1800) && std::ranges::is_sorted(since1021));

} // namespace

std::span<const VersionRule> versionRules(std::string_view subclass) {
    VersionRule wanted{};
    wanted.subclass = subclass;
    const auto [first, last] = std::equal_range(std::begin(rules), std::end(rules), wanted, BySubclass());
    return {first, last};
}

AcDb::AcDbDwgVersion variableSince(std::string_view name) {
    if (std::ranges::binary_search(since1800, name)) {
        return kDHL_1800;
    }
    if (std::ranges::binary_search(since1021, name)) {
        return kDHL_1021;
    }
    if (name == "DIMTXTDIRECTION") {
        return kDHL_1024;
    }
    return name == "REQUIREDVERSIONS" ? kDHL_1027 : AcDb::kDHL_1009;
}

} // namespace host::dxf
