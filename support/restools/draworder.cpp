// The order in which the entities of a block are drawn.
#include "restools/draworder.h"

#include "restools/arxobject.h"

Acad::ErrorStatus CDrawOrder::MoveToTop(AcDbObjectId entity) {
    AcDbObjectId owner;
    {
        const CArxEntity opened(entity, false);
        if (!opened) {
            return Acad::eNotOpenForRead;
        }
        owner = opened->ownerId();
    }
    const CArxObjTemplate<AcDbBlockTableRecord> block(owner, true); // a first table becomes its own
    if (!block) {
        return Acad::eNotOpenForRead;
    }
    AcDbSortentsTable* table = nullptr;
    if (const Acad::ErrorStatus status = block->getSortentsTable(table, AcDb::kForWrite, true);
        status != Acad::eOk) {
        return status;
    }
    AcDbObjectIdArray ids;
    ids.append(entity);
    const Acad::ErrorStatus status = table->moveToTop(ids);
    table->close();
    return status;
}
