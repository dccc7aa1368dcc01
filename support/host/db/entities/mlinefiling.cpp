// Multilines in files.
#include "host/db/dbdatabase.h"
#include "host/db/entities/mline.h"

#include <algorithm>

template <class Self, class Walk>
void host::MlineData::fields(Self& data, Walk& walk) {
    walk.hardPointer(data.style);
    walk(data.styleName, data.scale, data.justification, data.flags, data.normal, data.start,
         data.elementCount);
    walkList(walk, data.vertices, [&](auto& vertex) {
        walk(vertex.point, vertex.direction, vertex.miter);
        walkList(walk, vertex.runs, [&](auto& run) {
            walkValues(walk, run.line);
            walkValues(walk, run.fill);
        });
    });
}

Acad::ErrorStatus AcDbMline::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbMline::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbMline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbMline::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbMline" ? "AcDbMline" : std::string_view();
}

void AcDbMline::takeVertexGroup(const host::DxfGroup& group) {
    if (group.code == 11) {
        m.vertices.emplace_back().point = group.point();
        return;
    }
    if (m.vertices.empty()) {
        return;
    }
    host::MlineVertex& vertex = m.vertices.back();
    switch (group.code) {
    case 12:
        vertex.direction = group.vector();
        break;
    case 13:
        vertex.miter = group.vector();
        break;
    case 74:
        vertex.runs.emplace_back();
        break;
    case 41:
        if (!vertex.runs.empty()) {
            vertex.runs.back().line.push_back(group.real);
        }
        break;
    case 42:
        if (!vertex.runs.empty()) {
            vertex.runs.back().fill.push_back(group.real);
        }
        break;
    default: // 75, the number of fill parameters
        break;
    }
}

bool AcDbMline::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 2:
        m.styleName = group.string();
        return true;
    case 340:
        m.style = AcDbObjectId(group.id);
        return true;
    case 40:
        m.scale = group.real;
        return true;
    case 70:
        m.justification = static_cast<Adesk::UInt8>(group.integer);
        return true;
    case 71:
        m.flags = group.int16();
        return true;
    case 72:
        return true; // the number of vertices
    case 73:
        m.elementCount = group.int16();
        return true;
    case 10:
        m.start = group.point();
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    case 11:
    case 12:
    case 13:
    case 41:
    case 42:
    case 74:
    case 75:
        takeVertexGroup(group);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbMline::dxfGroupsRead(AcDbDxfFiler* filer) {
    const AcDbDatabase* database = filer->database();
    if (m.style.isNull() && database != nullptr) {
        const auto* styles = host::peek<AcDbDictionary>(database->mLStyleDictionaryId());
        if (styles != nullptr) {
            styles->getAt(m.styleName.kwszPtr(), m.style);
        }
    }
    for (const host::MlineVertex& vertex : m.vertices) {
        const bool whole = std::ssize(vertex.runs) == m.elementCount &&
                           std::all_of(vertex.runs.begin(), vertex.runs.end(),
                                       [](const host::MlineElementRun& run) { return !run.line.empty(); });
        if (!whole) {
            return Acad::eInvalidInput;
        }
    }
    // Whatever number there is has to be one; the filing knows where they are.
    host::MemoryDwgFiler memory(AcDb::kFileFiler);
    host::writeFields(&memory, m);
    memory.rewind();
    host::MlineData checked;
    return host::readFields(&memory, checked);
}

Acad::ErrorStatus AcDbMline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbMline");
    const auto* style = host::peek<AcDbMlineStyle>(m.style, true);
    filer->writeString(2, style != nullptr ? style->name() : m.styleName);
    filer->writeObjectId(340, m.style);
    filer->writeReal(40, m.scale);
    filer->writeInt16(70, m.justification);
    filer->writeInt16(71, m.flags);
    filer->writeInt16(72, static_cast<Adesk::Int16>(m.vertices.size()));
    filer->writeInt16(73, m.elementCount);
    filer->writePoint3d(10, m.start);
    filer->writeVector3d(210, m.normal);
    for (const host::MlineVertex& vertex : m.vertices) {
        filer->writePoint3d(11, vertex.point);
        filer->writeVector3d(12, vertex.direction);
        filer->writeVector3d(13, vertex.miter);
        for (const host::MlineElementRun& run : vertex.runs) {
            filer->writeInt16(74, static_cast<Adesk::Int16>(run.line.size()));
            for (const double value : run.line) {
                filer->writeReal(41, value);
            }
            filer->writeInt16(75, static_cast<Adesk::Int16>(run.fill.size()));
            for (const double value : run.fill) {
                filer->writeReal(42, value);
            }
        }
    }
    writeKeptGroups(filer, "AcDbMline");
    return filer->filerStatus();
}
