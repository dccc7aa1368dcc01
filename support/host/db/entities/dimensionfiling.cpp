// Dimensions in files.
#include "host/db/dbents.h"
#include "host/db/entities/dimension.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

const wchar_t* host::dimensionClassName(Adesk::Int64 type) {
    constexpr const wchar_t* names[] = {L"AcDbRotatedDimension",      L"AcDbAlignedDimension",
                                        L"AcDb2LineAngularDimension", L"AcDbDiametricDimension",
                                        L"AcDbRadialDimension",       L"AcDb3PointAngularDimension",
                                        L"AcDbOrdinateDimension"};
    const auto kind = static_cast<std::size_t>(type & 7);
    return kind < std::size(names) ? names[kind] : L"";
}

Acad::ErrorStatus AcDbDimension::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeBool(mStale);
    filer->writeVector3d(mMoved);
    return host::writeFields(filer, m);
}

Acad::ErrorStatus AcDbDimension::dwgInFields(AcDbDwgFiler* filer) {
    Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    bool isStale = false;
    AcGeVector3d moved;
    if (status == Acad::eOk) {
        filer->readBool(&isStale);
        filer->readVector3d(&moved);
        status = host::readFields(filer, m);
    }
    if (status == Acad::eOk) {
        mStale = isStale;
        mMoved = host::isFinite(moved) ? moved : AcGeVector3d();
        mBorrowed = filer->filerType() == AcDb::kCopyFiler || filer->filerType() == AcDb::kDeepCloneFiler;
    }
    return status;
}

Acad::ErrorStatus AcDbDimension::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mStale = mBorrowed = false;
    mMoved = AcGeVector3d();
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbDimension::dxfSubclass(std::string_view marker) const {
    if (marker.empty() || marker == "AcDbDimension") {
        return "AcDbDimension";
    }
    for (const FileSubclass& subclass : fileSubclasses()) {
        if (subclass.marker == marker) {
            return subclass.marker; // markers are literals: they last
        }
    }
    return {};
}

bool AcDbDimension::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 1:
        m.text = group.string();
        return true;
    case 2:
        m.block = AcDbObjectId(
            host::namedRecord<AcDbBlockTable>(group, filer->database(), &AcDbDatabase::blockTableId));
        return true;
    case 3:
        m.style = AcDbObjectId(
            host::namedRecord<AcDbDimStyleTable>(group, filer->database(), &AcDbDatabase::dimStyleTableId));
        return true;
    case 10:
        m.points[Point::first] = group.point();
        return true;
    case 11:
        m.textPosition = group.point();
        return true;
    case 12:
        m.blockPosition = group.point();
        return true;
    case 13:
        m.points[Point::second] = group.point();
        return true;
    case 14:
        m.points[Point::third] = group.point();
        return true;
    case 15:
        m.points[Point::fourth] = group.point();
        return true;
    case 16:
        m.points[Point::arc] = group.point();
        return true;
    case 40:
        m.leaderLength = group.real;
        return true;
    case 41:
        m.textSpacing = group.real;
        return true;
    case 42:
        m.fileMeasurement = group.real;
        m.hasFileMeasurement = true;
        return true;
    case 50:
        m.rotation = host::radiansOf(group.real);
        return true;
    case 51:
        m.horizontalRotation = -host::radiansOf(group.real); // files have the opposite angle
        return true;
    case 52:
        m.oblique = host::radiansOf(group.real);
        return true;
    case 53:
        m.textRotation = host::radiansOf(group.real);
        m.hasTextRotation = true;
        return true;
    case 70:
        m.flags = static_cast<Adesk::Int16>(group.integer & ~7);
        return true;
    case 71:
        m.textAttachment = group.integer >= 1 && group.integer <= 9 ? group.int16() : Adesk::Int16{5};
        return true;
    case 72:
        m.textSpacingStyle = static_cast<Adesk::Int16>(group.integer == 2 ? AcDb::kExactly : AcDb::kAtLeast);
        return true;
    case 74:
        m.flip = static_cast<Adesk::Int16>((m.flip & 2) | (group.boolean() ? 1 : 0));
        return true;
    case 75:
        m.flip = static_cast<Adesk::Int16>((m.flip & 1) | (group.boolean() ? 2 : 0));
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbDimension::dxfGroupsRead(AcDbDxfFiler* filer) {
    const double sum = m.rotation + m.oblique + m.leaderLength + m.horizontalRotation + m.textRotation +
                       m.textSpacing + m.fileMeasurement;
    const bool isGood = std::all_of(m.points.begin(), m.points.end(),
                                    [](const AcGePoint3d& point) { return host::isFinite(point); });
    if (!isGood || !host::isFinite(m.textPosition) || !host::isFinite(m.blockPosition) ||
        !std::isfinite(sum)) {
        return Acad::eInvalidInput;
    }
    if (m.style.isNull() && filer->database() != nullptr) {
        m.style = filer->database()->dimstyle();
    }
    mStale = filer->filerType() == AcDb::kBagFiler; // given as a list, not by a file that has the block too
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbDimension");
    if (const auto* block = host::peek<AcDbBlockTableRecord>(m.block)) {
        filer->writeString(2, block->name());
    }
    filer->writePoint3d(10, m.points[Point::first]);
    filer->writePoint3d(11, m.textPosition);
    if (!(m.blockPosition == AcGePoint3d::kOrigin)) {
        filer->writePoint3d(12, m.blockPosition);
    }
    filer->writeInteger(70, static_cast<int>(kind()) | m.flags);
    filer->writeInteger(71, m.textAttachment);
    host::writeUnlessDefault(filer, 41, m.textSpacing, 1.0);
    if (m.textSpacingStyle != AcDb::kAtLeast) {
        filer->writeInteger(72, m.textSpacingStyle);
    }
    if (m.hasFileMeasurement) {
        filer->writeReal(42, m.fileMeasurement);
    }
    if (!m.text.isEmpty() || filer->includesDefaultValues()) {
        filer->writeString(1, m.text);
    }
    if (m.hasTextRotation) {
        filer->writeAngle(53, m.textRotation);
    }
    host::writeAngleUnlessZero(filer, 51, m.horizontalRotation == 0.0 ? 0.0 : -m.horizontalRotation);
    host::writeUnlessZero(filer, 74, m.flip & 1);
    host::writeUnlessZero(filer, 75, (m.flip >> 1) & 1);
    host::writeNormal(filer, m.normal);
    if (const AcString style = host::recordName(m.style); !style.isEmpty()) {
        filer->writeString(3, style);
    }
    writeKeptGroups(filer, "AcDbDimension");
    writeKindGroups(filer);
    return filer->filerStatus();
}

void AcDbDimension::writeKindGroups(AcDbDxfFiler* filer) const {
    for (const FileSubclass& subclass : fileSubclasses()) {
        filer->writeText(100, subclass.marker);
        for (const short code : subclass.codes) {
            switch (code) {
            case 40:
                filer->writeReal(40, m.leaderLength);
                break;
            case 50:
                filer->writeAngle(50, m.rotation);
                break;
            case 52:
                host::writeAngleUnlessZero(filer, 52, m.oblique);
                break;
            default:
                filer->writePoint3d(code, m.points[static_cast<std::size_t>(code - 12)]);
                break;
            }
        }
        writeKeptGroups(filer, subclass.marker);
    }
}
