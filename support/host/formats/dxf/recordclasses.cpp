// The table of record names, and the names with several classes.
#include "host/formats/dxf/recordclasses.h"

#include "host/db/entities/dimension.h"
#include "host/db/entities/subentities.h"
#include "host/rx/text.h"

#include <algorithm>
#include <iterator>

namespace host::dxf {
namespace {

struct NamedClass {
    const char* name;
    const wchar_t* className;
};

/// Records whose name tells the class. Classes that are not registered are passed over: their records are
/// kept as they are.
constexpr NamedClass namedClasses[] = {
    {"LINE", L"AcDbLine"},
    {"POINT", L"AcDbPoint"},
    {"CIRCLE", L"AcDbCircle"},
    {"ARC", L"AcDbArc"},
    {"LWPOLYLINE", L"AcDbPolyline"},
    {"TEXT", L"AcDbText"},
    {"ATTDEF", L"AcDbAttributeDefinition"},
    {"ATTRIB", L"AcDbAttribute"},
    {"SOLID", L"AcDbSolid"},
    {"TRACE", L"AcDbTrace"},
    {"3DFACE", L"AcDbFace"},
    {"ELLIPSE", L"AcDbEllipse"},
    {"SPLINE", L"AcDbSpline"},
    {"RAY", L"AcDbRay"},
    {"XLINE", L"AcDbXline"},
    {"MTEXT", L"AcDbMText"},
    {"HATCH", L"AcDbHatch"},
    {"MLINE", L"AcDbMline"},
    {"LEADER", L"AcDbLeader"},
    {"TOLERANCE", L"AcDbFcf"},
    {"SHAPE", L"AcDbShape"},
    {"VIEWPORT", L"AcDbViewport"},
    {"WIPEOUT", L"AcDbWipeout"},
    {"IMAGE", L"AcDbRasterImage"},
    {"SEQEND", L"AcDbSequenceEnd"},
    {"ACAD_PROXY_ENTITY", L"AcDbProxyEntity"},
    {"ACAD_PROXY_OBJECT", L"AcDbProxyObject"},
    {"DICTIONARY", L"AcDbDictionary"},
    {"ACDBDICTIONARYWDFLT", L"AcDbDictionaryWithDefault"},
    {"XRECORD", L"AcDbXrecord"},
    {"LAYOUT", L"AcDbLayout"},
    {"ACDBPLACEHOLDER", L"AcDbPlaceHolder"},
    {"GROUP", L"AcDbGroup"},
    {"MLINESTYLE", L"AcDbMlineStyle"},
    {"IMAGEDEF", L"AcDbRasterImageDef"},
    {"SORTENTSTABLE", L"AcDbSortentsTable"},
};

AcRxClass* creatable(const ACHAR* className) {
    AcRxClass* found = acrxFindAcRxClass(className);
    return found != nullptr && found->constructor() != nullptr && found->isDerivedFrom(AcDbObject::desc())
               ? found
               : nullptr;
}

const ACHAR* polylineClass(std::int64_t flags) {
    if ((flags & 8) != 0) {
        return L"AcDb3dPolyline";
    }
    if ((flags & 16) != 0) {
        return L"AcDbPolygonMesh";
    }
    return (flags & 64) != 0 ? L"AcDbPolyFaceMesh" : L"AcDb2dPolyline";
}

constexpr KnownClass knownClasses[] = {
    {L"ACDBDICTIONARYWDFLT", L"AcDbDictionaryWithDefault", L"ObjectDBX Classes", 0, false},
    {L"DICTIONARYVAR", L"AcDbDictionaryVar", L"ObjectDBX Classes", 0, false},
    {L"MATERIAL", L"AcDbMaterial", L"ObjectDBX Classes", 1153, false},
    {L"VISUALSTYLE", L"AcDbVisualStyle", L"ObjectDBX Classes", 4095, false},
    {L"SCALE", L"AcDbScale", L"ObjectDBX Classes", 1153, false},
    {L"TABLESTYLE", L"AcDbTableStyle", L"ObjectDBX Classes", 4095, false},
    {L"MLEADERSTYLE", L"AcDbMLeaderStyle", L"ACDB_MLEADERSTYLE_CLASS", 4095, false},
    {L"SORTENTSTABLE", L"AcDbSortentsTable", L"ObjectDBX Classes", 0, false},
    {L"WIPEOUT", L"AcDbWipeout", L"WipeOut", 127, true},
    {L"WIPEOUTVARIABLES", L"AcDbWipeoutVariables", L"WipeOut", 0, false},
    {L"IMAGE", L"AcDbRasterImage", L"ISM", 2175, true},
    {L"IMAGEDEF", L"AcDbRasterImageDef", L"ISM", 0, false},
    {L"IMAGEDEF_REACTOR", L"AcDbRasterImageDefReactor", L"ISM", 1, false},
    {L"RASTERVARIABLES", L"AcDbRasterVariables", L"ISM", 0, false},
};

} // namespace

const KnownClass* knownClass(std::wstring_view dxfName) {
    const auto* const found = std::find_if(std::begin(knownClasses), std::end(knownClasses),
                                           [&](const KnownClass& known) { return known.dxfName == dxfName; });
    return found != std::end(knownClasses) ? found : nullptr;
}

RecordClasses::RecordClasses(const AcDbDatabase& database) : mDatabase(database) {
    for (const NamedClass& named : namedClasses) {
        add(named.name, named.className);
    }
}

void RecordClasses::add(const std::string& name, const ACHAR* className) {
    if (AcRxClass* found = creatable(className)) {
        mClasses.emplace(name, found);
    }
}

void RecordClasses::addCustomClasses() {
    for (const DatabaseImpl::FileClass& listed : mDatabase.impl().classes) {
        const AcRxClass* registered = acrxFindAcRxClass(listed.className.kwszPtr());
        if (registered != nullptr && registered->isCustom() && registered->isInHierarchy() &&
            registered->dxfName() != nullptr && listed.dxfName == registered->dxfName()) {
            add(toUtf8(listed.dxfName.view()), registered->name());
        }
    }
}

AcRxClass* RecordClasses::classOf(FileFiler& filer) const {
    const std::string& name = filer.recordName();
    if (const auto found = mClasses.find(name); found != mClasses.end()) {
        return found->second;
    }
    if (name == "POLYLINE") {
        return creatable(polylineClass(filer.peekInteger(70, 0)));
    }
    if (name == "DIMENSION") {
        return creatable(dimensionClassName(filer.peekInteger(70, 0)));
    }
    if (name == "INSERT") {
        const bool several =
            filer.peekInteger(70, 71, [](std::int64_t count) { return count > 1; }).has_value();
        AcRxClass* multiple = several ? creatable(L"AcDbMInsertBlock") : nullptr;
        return multiple != nullptr ? multiple : creatable(L"AcDbBlockReference");
    }
    return nullptr;
}

AcRxClass* RecordClasses::partClass(const std::string& name, const AcDbEntity& parent) const {
    if (name == "ATTRIB") {
        return creatable(L"AcDbAttribute");
    }
    const AcRxClass* owner = parent.isA();
    constexpr std::pair<const wchar_t*, const wchar_t*> vertexClasses[] = {
        {L"AcDb2dPolyline", L"AcDb2dVertex"},
        {L"AcDb3dPolyline", L"AcDb3dPolylineVertex"},
        {L"AcDbPolygonMesh", L"AcDbPolygonMeshVertex"},
    };
    for (const auto& [polyline, vertex] : vertexClasses) {
        if (std::wstring_view(owner->name()) == polyline) {
            return creatable(vertex);
        }
    }
    return nullptr;
}

} // namespace host::dxf
