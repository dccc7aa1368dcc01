// Subclasses of the entities of release 12, and which groups belong to which.
#include "host/formats/dxf/upgrade.h"

#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <span>

namespace host::dxf {
namespace {

struct Subclass {
    std::string_view marker;
    std::span<const short> codes; ///< groups that go under it; empty: all that are left
};

std::int64_t integerOf(const GroupList& groups, short code) {
    std::int64_t value = 0;
    for (const GroupList::Group group : groups) {
        if (group.code == code) {
            std::from_chars(group.text.data(), group.text.data() + group.text.size(), value);
            break;
        }
    }
    return value;
}

constexpr short coordinatesOf13[] = {12, 22, 32, 13, 23, 33, 14, 24, 34, 40, 50};
constexpr short coordinatesOf15[] = {15, 25, 35, 40};
constexpr short coordinatesOfAngles[] = {13, 23, 33, 14, 24, 34, 15, 25, 35, 16, 26, 36, 40};
constexpr short coordinatesOfOrdinate[] = {13, 23, 33, 14, 24, 34};
constexpr short obliqueOnly[] = {52};

/// Subclasses behind AcDbDimension by the kind of dimension; the rotated kind's angle stays with the aligned
/// part in files.
std::vector<Subclass> dimensionSubclasses(std::int64_t type) {
    switch (type & 7) {
    case 0:
        return {{"AcDbAlignedDimension", coordinatesOf13}, {"AcDbRotatedDimension", obliqueOnly}};
    case 1:
        return {{"AcDbAlignedDimension", coordinatesOf13}};
    case 2:
        return {{"AcDb2LineAngularDimension", coordinatesOfAngles}};
    case 3:
        return {{"AcDbDiametricDimension", coordinatesOf15}};
    case 4:
        return {{"AcDbRadialDimension", coordinatesOf15}};
    case 5:
        return {{"AcDb3PointAngularDimension", coordinatesOfAngles}};
    default:
        return {{"AcDbOrdinateDimension", coordinatesOfOrdinate}};
    }
}

std::vector<Subclass> polylineSubclasses(std::int64_t flags) {
    if ((flags & 8) != 0) {
        return {{"AcDb3dPolyline", {}}};
    }
    if ((flags & 16) != 0) {
        return {{"AcDbPolygonMesh", {}}};
    }
    return {{(flags & 64) != 0 ? "AcDbPolyFaceMesh" : "AcDb2dPolyline", {}}};
}

std::vector<Subclass> vertexSubclasses(std::int64_t flags) {
    static constexpr short noCodes[] = {-1};
    if ((flags & 32) != 0) {
        return {{"AcDbVertex", noCodes}, {"AcDb3dPolylineVertex", {}}};
    }
    if ((flags & 128) != 0) {
        return (flags & 64) != 0
                   ? std::vector<Subclass>{{"AcDbVertex", noCodes}, {"AcDbPolyFaceMeshVertex", {}}}
                   : std::vector<Subclass>{{"AcDbFaceRecord", {}}};
    }
    if ((flags & 64) != 0) {
        return {{"AcDbVertex", noCodes}, {"AcDbPolygonMeshVertex", {}}};
    }
    return {{"AcDbVertex", noCodes}, {"AcDb2dVertex", {}}};
}

std::vector<Subclass> subclassesOf(const std::string& name, const GroupList& groups) {
    if (name == "DIMENSION") {
        return dimensionSubclasses(integerOf(groups, 70));
    }
    if (name == "POLYLINE") {
        return polylineSubclasses(integerOf(groups, 70));
    }
    if (name == "VERTEX") {
        return vertexSubclasses(integerOf(groups, 70));
    }
    constexpr std::pair<std::string_view, std::string_view> markers[] = {
        {"3DFACE", "AcDbFace"}, {"SHAPE", "AcDbShape"},       {"TRACE", "AcDbTrace"},
        {"SOLID", "AcDbTrace"}, {"VIEWPORT", "AcDbViewport"}, {"LINE", "AcDbLine"},
        {"POINT", "AcDbPoint"}, {"CIRCLE", "AcDbCircle"},     {"INSERT", "AcDbBlockReference"},
        {"TEXT", "AcDbText"},
    };
    for (const auto& [record, marker] : markers) {
        if (record == name) {
            return {{marker, {}}};
        }
    }
    return {};
}

/// Arrow block names of release 12, by code, and the variables that hold the blocks since.
constexpr std::pair<short, AcDbObjectId DimVariables::*> arrowCodes[] = {
    {5, &DimVariables::blk}, {6, &DimVariables::blk1}, {7, &DimVariables::blk2}};

void upgradeDimensionStyle(AcDbDatabase& database, AcDbDimStyleTableRecord& style) {
    const GroupList* kept = style.keptGroups("AcDbDimStyleTableRecord");
    if (kept == nullptr) {
        return;
    }
    const auto* blocks = peek<AcDbBlockTable>(database.blockTableId());
    const ReadAccess access(*blocks);
    GroupList upgraded;
    for (const GroupList::Group group : *kept) {
        const auto* const arrow = std::find_if(std::begin(arrowCodes), std::end(arrowCodes),
                                               [&](const auto& pair) { return pair.first == group.code; });
        if (arrow == std::end(arrowCodes)) {
            upgraded.add(group.code, group.text);
            continue;
        }
        AcDbObjectId block;
        if (!group.text.empty() &&
            blocks->AcDbSymbolTable::getAt(fromUtf8(group.text).c_str(), block) == Acad::eOk) {
            DimVariables variables = style.dimVariables();
            variables.*(arrow->second) = block;
            const bool open = std::exchange(style.objectId().stub()->openForWrite, true);
            style.setDimVariable(variables, dimVariableIndex(arrow->second));
            style.objectId().stub()->openForWrite = open;
        }
    }
    style.replaceKeptGroups("AcDbDimStyleTableRecord", std::move(upgraded));
}

} // namespace

GroupList withMarkers(const std::string& recordName, const GroupList& groups) {
    bool hasMarkers = false;
    for (const GroupList::Group group : groups) {
        hasMarkers = hasMarkers || group.code == 100;
    }
    const std::vector<Subclass> subclasses = subclassesOf(recordName, groups);
    if (hasMarkers || groups.empty() || subclasses.empty()) {
        return groups;
    }
    const auto subclassOf = [&](short code) {
        for (std::size_t index = 0; index < subclasses.size(); ++index) {
            const std::span<const short> codes = subclasses[index].codes;
            if (codes.empty() || std::find(codes.begin(), codes.end(), code) != codes.end()) {
                return index;
            }
        }
        return subclasses.size();
    };
    GroupList result;
    if (recordName == "DIMENSION") {
        result.add(100, "AcDbDimension");
    }
    for (const GroupList::Group group : groups) {
        if (group.code < 1000 && subclassOf(group.code) == subclasses.size()) {
            result.add(group.code, group.text);
        }
    }
    for (std::size_t index = 0; index < subclasses.size(); ++index) {
        result.add(100, subclasses[index].marker);
        for (const GroupList::Group group : groups) {
            if (group.code < 1000 && subclassOf(group.code) == index) {
                result.add(group.code, group.text);
            }
        }
    }
    for (const GroupList::Group group : groups) {
        if (group.code >= 1000) {
            result.add(group.code, group.text);
        }
    }
    return result;
}

void upgradeFromRelease12(AcDbDatabase& database) {
    database.impl().forEachStub([&](AcDbStub& stub) {
        if (auto* entity = KeptEntity::cast(stub.object)) {
            entity->record.groups = withMarkers(entity->record.recordName, entity->record.groups);
        } else if (auto* style = AcDbDimStyleTableRecord::cast(stub.object)) {
            upgradeDimensionStyle(database, *style);
        }
    });
}

} // namespace host::dxf
