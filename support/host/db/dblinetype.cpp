// Linetype records: dashes with the texts and shapes set between them.
#include "host/db/dbdatabase.h"

#include <cmath>

Acad::ErrorStatus AcDbLinetypeTableRecord::comments(AcString& text) const {
    text = mComments;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* text) {
    assertWriteEnabled();
    mComments = text;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setPatternLength(double length) {
    assertWriteEnabled();
    mPatternLength = length;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setNumDashes(int count) {
    if (count < 0) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mDashes.resize(static_cast<std::size_t>(count));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setDashLengthAt(int index, double length) {
    if (index < 0 || index >= numDashes()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    mDashes[static_cast<std::size_t>(index)].length = length;
    return Acad::eOk;
}
void AcDbLinetypeTableRecord::setDashes(std::vector<Dash> dashes) {
    assertWriteEnabled();
    mDashes = std::move(dashes);
}
void AcDbLinetypeTableRecord::setIsScaledToFit(bool scaled) {
    assertWriteEnabled();
    mScaledToFit = scaled;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeString(mComments);
    filer->writeDouble(mPatternLength);
    filer->writeBool(mScaledToFit);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mDashes.size()));
    for (const Dash& dash : mDashes) {
        filer->writeDouble(dash.length);
        filer->writeInt16(dash.shapeNumber);
        filer->writeString(dash.text);
        filer->writeBool(dash.hasText);
        filer->writeBool(dash.hasShape);
        filer->writeBool(dash.absoluteRotation);
        filer->writeBool(dash.uprightRotation);
        filer->writeDouble(dash.scale);
        filer->writeDouble(dash.rotation);
        filer->writeVector2d(dash.offset);
        filer->writeHardPointerId(dash.style);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readString(mComments);
    filer->readDouble(&mPatternLength);
    filer->readBool(&mScaledToFit);
    Adesk::UInt32 count = 0;
    filer->readUInt32(&count);
    mDashes.clear();
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        Dash& dash = mDashes.emplace_back();
        filer->readDouble(&dash.length);
        filer->readInt16(&dash.shapeNumber);
        filer->readString(dash.text);
        filer->readBool(&dash.hasText);
        filer->readBool(&dash.hasShape);
        filer->readBool(&dash.absoluteRotation);
        filer->readBool(&dash.uprightRotation);
        filer->readDouble(&dash.scale);
        filer->readDouble(&dash.rotation);
        filer->readVector2d(&dash.offset);
        AcDbHardPointerId style;
        filer->readHardPointerId(&style);
        dash.style = style;
    }
    return filer->filerStatus();
}

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

enum ElementFlags : Adesk::Int16 {
    absoluteElement = 1,
    textElement = 2,
    shapeElement = 4,
    uprightElement = 8
};

} // namespace

bool AcDbLinetypeTableRecord::takeRecordGroup(AcDbDxfFiler*, const host::DxfGroup& group) {
    switch (group.code) {
    case 3:
        mComments = group.string();
        return true;
    case 72: // alignment, always 'A'
    case 73: // the number of elements follows from the elements
        return true;
    case 40:
        mPatternLength = group.real;
        return true;
    case 49:
        mDashes.emplace_back().length = group.real;
        return true;
    default:
        break;
    }
    Dash none; // before the first element there is nothing to describe
    Dash& dash = mDashes.empty() ? none : mDashes.back();
    switch (group.code) {
    case 74:
        dash.absoluteRotation = (group.integer & absoluteElement) != 0;
        dash.uprightRotation = (group.integer & uprightElement) != 0;
        dash.hasText = (group.integer & textElement) != 0;
        dash.hasShape = (group.integer & shapeElement) != 0;
        return true;
    case 75:
        dash.shapeNumber = group.int16();
        return true;
    case 340:
        dash.style = AcDbObjectId(group.id);
        return true;
    case 46:
        dash.scale = group.real;
        return true;
    case 50:
        dash.rotation = group.real * degree;
        return true;
    case 44:
        dash.offset.x = group.real;
        return true;
    case 45:
        dash.offset.y = group.real;
        return true;
    case 9:
        dash.text = group.string();
        return true;
    default:
        return false;
    }
}

void AcDbLinetypeTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    filer->writeString(3, mComments);
    filer->writeInt16(72, 65);
    filer->writeInt16(73, static_cast<Adesk::Int16>(mDashes.size()));
    filer->writeDouble(40, mPatternLength);
    for (const Dash& dash : mDashes) {
        filer->writeDouble(49, dash.length);
        const int flags = (dash.absoluteRotation ? absoluteElement : 0) | (dash.hasText ? textElement : 0) |
                          (dash.hasShape ? shapeElement : 0) | (dash.uprightRotation ? uprightElement : 0);
        filer->writeInt16(74, static_cast<Adesk::Int16>(flags));
        if (!dash.hasText && !dash.hasShape) {
            continue;
        }
        filer->writeInt16(75, dash.shapeNumber);
        filer->writeObjectId(340, dash.style);
        filer->writeDouble(46, dash.scale);
        filer->writeAngle(50, dash.rotation);
        filer->writeDouble(44, dash.offset.x);
        filer->writeDouble(45, dash.offset.y);
        if (dash.hasText) {
            filer->writeString(9, dash.text);
        }
    }
}
