// Block references in rows and columns.
#include "host/db/entities/minsertblock.h"

#include "host/db/entities/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        INSERT, ObjectDBX Classes)

namespace {

Adesk::Int16 counted(Adesk::UInt16 value) {
    return static_cast<Adesk::Int16>(std::clamp<int>(value, 1, 32767));
}

} // namespace

AcDbMInsertBlock::AcDbMInsertBlock(const AcGePoint3d& position, AcDbObjectId block, Adesk::UInt16 columns,
                                   Adesk::UInt16 rows, double columnSpacing, double rowSpacing)
    : AcDbBlockReference(position, block), mArray{counted(columns), counted(rows), columnSpacing,
                                                  rowSpacing} {}

Adesk::UInt16 AcDbMInsertBlock::columns() const {
    assertReadEnabled();
    return static_cast<Adesk::UInt16>(mArray.columns);
}
Acad::ErrorStatus AcDbMInsertBlock::setColumns(Adesk::UInt16 columns) {
    assertWriteEnabled();
    mArray.columns = counted(columns);
    return Acad::eOk;
}
Adesk::UInt16 AcDbMInsertBlock::rows() const {
    assertReadEnabled();
    return static_cast<Adesk::UInt16>(mArray.rows);
}
Acad::ErrorStatus AcDbMInsertBlock::setRows(Adesk::UInt16 rows) {
    assertWriteEnabled();
    mArray.rows = counted(rows);
    return Acad::eOk;
}
double AcDbMInsertBlock::columnSpacing() const {
    assertReadEnabled();
    return mArray.columnSpacing;
}
Acad::ErrorStatus AcDbMInsertBlock::setColumnSpacing(double spacing) {
    if (!std::isfinite(spacing)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mArray.columnSpacing = spacing;
    return Acad::eOk;
}
double AcDbMInsertBlock::rowSpacing() const {
    assertReadEnabled();
    return mArray.rowSpacing;
}
Acad::ErrorStatus AcDbMInsertBlock::setRowSpacing(double spacing) {
    if (!std::isfinite(spacing)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mArray.rowSpacing = spacing;
    return Acad::eOk;
}

void AcDbMInsertBlock::forShowings(Showings which,
                                   const std::function<void(const AcGeVector3d&)>& visit) const {
    const AcGeVector2d x = host::direction(data().rotation);
    const AcGeVector3d column = host::toWorld(data().normal, host::to3d(x * mArray.columnSpacing));
    const AcGeVector3d row = host::toWorld(data().normal, host::to3d(x.perpVector() * mArray.rowSpacing));
    const int rows = std::max<int>(mArray.rows, 1);
    const int columns = std::max<int>(mArray.columns, 1);
    const bool all = which == Showings::all;
    constexpr int most = 1'000'000; // what a damaged file may ask for has no end
    int shown = 0;
    for (int rowIndex = 0; rowIndex < rows && shown < most; rowIndex += all ? 1 : std::max(rows - 1, 1)) {
        for (int columnIndex = 0; columnIndex < columns; columnIndex += all ? 1 : std::max(columns - 1, 1)) {
            visit(column * columnIndex + row * rowIndex);
            ++shown;
        }
    }
}

Acad::ErrorStatus AcDbMInsertBlock::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector2d along = host::direction(data().rotation);
    const AcGeVector3d x = host::toWorld(data().normal, host::to3d(along));
    const AcGeVector3d y = host::toWorld(data().normal, host::to3d(along.perpVector()));
    const AcGeVector3d newX = transform * x;
    const AcGeVector3d newY = transform * y;
    if (const Acad::ErrorStatus status = AcDbBlockReference::subTransformBy(transform); status != Acad::eOk) {
        return status;
    }
    // A spacing keeps its sign where the new axis goes the mapped way.
    const AcGeVector2d turned = host::direction(data().rotation);
    const auto factor = [&](const AcGeVector3d& mapped, const AcGeVector2d& axis) {
        const double value = mapped.dotProduct(host::toWorld(data().normal, host::to3d(axis)));
        return std::fabs(std::fabs(value) - 1.0) <= 1e-14 ? std::copysign(1.0, value) : value;
    };
    mArray.columnSpacing *= factor(newX, turned);
    mArray.rowSpacing *= factor(newY, turned.perpVector());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbBlockReference::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, mArray) : status;
}

Acad::ErrorStatus AcDbMInsertBlock::dwgInFields(AcDbDwgFiler* filer) {
    // The reference's own fields are taken before those of the array are known to be good.
    host::MemoryDwgFiler before(AcDb::kUndoFiler, database());
    AcDbBlockReference::dwgOutFields(&before);
    Acad::ErrorStatus status = AcDbBlockReference::dwgInFields(filer);
    if (status == Acad::eOk) {
        status = host::readFields(filer, mArray);
        if (status != Acad::eOk) {
            before.rewind();
            AcDbBlockReference::dwgInFields(&before);
        }
    }
    return status;
}

Acad::ErrorStatus AcDbMInsertBlock::dxfInFields(AcDbDxfFiler* filer) {
    mArray = {};
    return AcDbBlockReference::dxfInFields(filer);
}

std::string_view AcDbMInsertBlock::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbMInsertBlock" || marker == "AcDbBlockReference"
               ? "AcDbMInsertBlock"
               : std::string_view();
}

bool AcDbMInsertBlock::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group,
                                    std::string_view subclass) {
    const auto count = [&] {
        return static_cast<Adesk::Int16>(std::clamp<Adesk::Int64>(group.integer, 1, 32767));
    };
    switch (group.code) {
    case 70:
        mArray.columns = count();
        return true;
    case 71:
        mArray.rows = count();
        return true;
    case 44:
    case 45:
        (group.code == 44 ? mArray.columnSpacing : mArray.rowSpacing) =
            std::isfinite(group.real) ? group.real : 0.0;
        return true;
    default:
        return AcDbBlockReference::takeDxfGroup(filer, group, subclass);
    }
}

void AcDbMInsertBlock::writeArrayGroups(AcDbDxfFiler* filer) const {
    filer->writeInteger(70, mArray.columns);
    filer->writeInteger(71, mArray.rows);
    filer->writeReal(44, mArray.columnSpacing);
    filer->writeReal(45, mArray.rowSpacing);
}
