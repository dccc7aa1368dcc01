// Helpers that put things into drawings. A null database is the working one.
#pragma once

#include "restools/arxobject.h"

#include <memory>
#include <utility>
#include <vector>

AcDbDatabase* WorkingDatabase();

/// Appends an entity to model space and closes it. The entity is owned by this function: one that can't be
/// appended is deleted.
Acad::ErrorStatus AppendEnt(AcDbEntity* entity, AcDbDatabase* database = nullptr);
Acad::ErrorStatus AppendEnt(AcDbEntity* entity, AcDbObjectId& id, AcDbDatabase* database = nullptr);
/// The same for an entity that stays held, open for write.
Acad::ErrorStatus AppendEnt(CArxObject& entity, AcDbDatabase* database = nullptr);

Acad::ErrorStatus EraseEnt(AcDbObjectId id);

/// The id of a layer, which is made with this linetype (Continuous when there is none of the name) and colour
/// index unless it exists. Null when the name can't be a layer's.
AcDbObjectId CreateNewLayer(const ACHAR* name, const ACHAR* linetype, Adesk::UInt16 colorIndex,
                            AcDbDatabase* database = nullptr);

/// The id of a record by name; null when there is none.
template <class Table>
AcDbObjectId FindRecord(const ACHAR* name, AcDbDatabase* database = nullptr) {
    Table* table = nullptr;
    AcDbObjectId id;
    if ((database != nullptr ? database : WorkingDatabase())->getSymbolTable(table, AcDb::kForRead) ==
        Acad::eOk) {
        if (table->getAt(name, id) != Acad::eOk) {
            id.setNull();
        }
        table->close();
    }
    return id;
}

/// The ids of a table's records in the table's order, those that are erased aside.
template <class Table>
std::vector<AcDbObjectId> RecordIds(AcDbDatabase* database = nullptr) {
    std::vector<AcDbObjectId> ids;
    Table* opened = nullptr;
    if ((database != nullptr ? database : WorkingDatabase())->getSymbolTable(opened, AcDb::kForRead) !=
        Acad::eOk) {
        return ids;
    }
    const CArxObjTemplate<Table> table(opened);
    const AcDbSymbolTable& records = *table;
    AcDbSymbolTableIterator* started = nullptr;
    if (records.newIterator(started) != Acad::eOk) {
        return ids;
    }
    for (const std::unique_ptr<AcDbSymbolTableIterator> iterator(started); !iterator->done();
         iterator->step()) {
        iterator->getRecordId(ids.emplace_back());
    }
    return ids;
}

/// Texts of attributes by tag.
using AttributeTexts = std::vector<std::pair<AcString, AcString>>;
/// A reference of a block in model space, with an attribute for each of its definitions that isn't constant:
/// with the text given for its tag, else the definition's. Null when it can't be made. Angles in radians.
AcDbObjectId InsertBlock(AcDbObjectId block, const AcGePoint3d& position, const AcGeScale3d& scale,
                         const ACHAR* layer, double rotation, const AttributeTexts& attributes = {});

/// Asks for a reference point and an offset from it. False, and the point as it was, when the user cancels.
bool GetRelativePoint(AcGePoint3d& point);

/// Regenerates the current drawing.
void RegenDrawing();

/// Owns the new entities of an array as the interface returns them.
std::vector<std::unique_ptr<AcDbEntity>> TakeEntities(AcDbVoidPtrArray& entities);
