// AcDbMInsertBlock: a block shown in rows and columns.
#pragma once

#include "host/db/entities/blockreference.h"

namespace host {

struct MInsertData {
    Adesk::Int16 columns = 1;
    Adesk::Int16 rows = 1;
    double columnSpacing = 0.0; ///< along the reference's own X axis
    double rowSpacing = 0.0;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.columns, data.rows, data.columnSpacing, data.rowSpacing);
    }
};

} // namespace host

/// Rows and columns lie along the reference's rotated axes and are not scaled. It cannot be exploded.
class AcDbMInsertBlock : public AcDbBlockReference {
    ACRX_DECLARE_MEMBERS(AcDbMInsertBlock);

public:
    AcDbMInsertBlock() = default;
    AcDbMInsertBlock(const AcGePoint3d& position, AcDbObjectId block, Adesk::UInt16 columns,
                     Adesk::UInt16 rows, double columnSpacing, double rowSpacing);

    Adesk::UInt16 columns() const;
    Acad::ErrorStatus setColumns(Adesk::UInt16 columns);
    Adesk::UInt16 rows() const;
    Acad::ErrorStatus setRows(Adesk::UInt16 rows);
    double columnSpacing() const;
    Acad::ErrorStatus setColumnSpacing(double spacing);
    double rowSpacing() const;
    Acad::ErrorStatus setRowSpacing(double spacing);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray&) const override { return Acad::eCannotExplodeEntity; }
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    std::string_view referenceSubclass() const override { return "AcDbMInsertBlock"; }
    void writeArrayGroups(AcDbDxfFiler* filer) const override;
    void forShowings(Showings which, const std::function<void(const AcGeVector3d&)>& visit) const override;

private:
    host::MInsertData mArray;
};
