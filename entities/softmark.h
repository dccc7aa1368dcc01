// CQDVAcDbSoftMark: a mark without data, registered so that drawings which hold such marks keep them.
#pragma once

#include "host/arx.h"

class QDV_EXPORT CQDVAcDbSoftMark : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(CQDVAcDbSoftMark);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
};
