// Dimension style records.
#include "host/db/dbents.h"
#include "host/db/entities/fields.h"

Acad::ErrorStatus AcDbDimStyleTableRecord::setDimVariable(const host::DimVariables& values,
                                                          std::size_t index) {
    assertWriteEnabled();
    host::copyDimVariable(mVariables, values, index);
    mGiven.set(index);
    mChanged = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimStyleTableRecord::setDimVariables(const host::DimVariables& values) {
    assertWriteEnabled();
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        if (!host::equalDimVariable(mVariables, values, index)) {
            mGiven.set(index);
        }
    }
    mVariables = values;
    mChanged = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimStyleTableRecord::subClose() {
    if (isWriteEnabled() && std::exchange(mChanged, false)) {
        host::rebuildDimensionsOf(objectId());
    }
    return AcDbSymbolTableRecord::subClose();
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::FieldWriter walk(*filer);
    host::DimVariables::fields(mVariables, walk);
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        filer->writeBool(mGiven[index]);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDimStyleTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    host::DimVariables variables;
    host::DimVariableSet given;
    host::FieldReader walk(*filer);
    host::DimVariables::fields(variables, walk);
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        bool isGiven = false;
        filer->readBool(&isGiven);
        given.set(index, isGiven);
    }
    if (filer->filerStatus() == Acad::eOk) {
        mVariables = std::move(variables);
        mGiven = given;
    }
    return filer->filerStatus();
}

bool AcDbDimStyleTableRecord::takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) {
    AcDb::AcDbDwgVersion version = AcDb::kDHL_CURRENT;
    AcDb::MaintenanceReleaseVersion maintenance = AcDb::kMReleaseCurrent;
    filer->dwgVersion(version, maintenance);
    if (group.code == 5 && version < AcDb::kDHL_1012) {
        keepGroup(recordSubclass(), group); // the name of an arrow block; handles are under 105
        return true;
    }
    return host::takeDimVariable(mVariables, mGiven, group);
}

void AcDbDimStyleTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    host::writeDimVariables(filer, mVariables, mGiven);
}
