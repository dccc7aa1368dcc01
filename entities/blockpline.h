// CQDVBlockPline: a light polyline that can't be exploded and remembers what it was made from, known in DXF
// files as "QDV块_线实体"; and the exported functions that make such entities.
#pragma once

#include "restools/arxobject.h"

class QDV_EXPORT CQDVBlockPline : public AcDbPolyline {
public:
    ACRX_DECLARE_MEMBERS(CQDVBlockPline);

    CQDVBlockPline() = default;
    ~CQDVBlockPline() override = default;

    /// Name of the class of the entity that this one was made from.
    const AcString& sourceClassName() const;
    void setSourceClassName(const ACHAR* name);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;

private:
    AcString mSourceClassName;
};

/// An empty polyline in no database, owned by the caller.
QDV_EXPORT CQDVBlockPline* QDVB_CreatePolyline();

/// A copy of a curve in no database, owned by the caller; null for a CQDVBlockPline. Other classes than line,
/// polyline, circle and arc give a polyline without vertices. The source must be open for read.
QDV_EXPORT CQDVBlockPline* QDVB_CopyFrom(const AcDbObject* source);

/// Converts a line, polyline, circle or arc, open for write, into a CQDVBlockPline in the same block. A
/// polyline keeps id and handle. What happened to the entity is seen in the wrapper: it is empty, or holds
/// the erased curve. `space` is the block to append to; when it is empty the entity's owner is opened in it.
QDV_EXPORT void QDVB_ConvertOneEnt(CArxEntity& entity,
                                   CArxObjTemplateBase<CArxObject, AcDbBlockTableRecord>& space);
QDV_EXPORT void QDVB_ConvertOneEnt(CArxEntity& entity);
