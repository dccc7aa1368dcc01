// Names of files to records of symbol tables, and back.
#pragma once

#include "host/db/dbdatabase.h"

namespace host {

/// The record of a name in a table; null when there is none.
template <class Table>
AcDbStub* findRecord(AcDbObjectId tableId, const ACHAR* name) {
    AcDbObjectId id;
    if (const Table* table = peek<Table>(tableId)) {
        const ReadAccess access(*table);
        table->getAt(name, id);
    }
    return id.stub();
}

/// The record that a group names: by its id when a file was read, else by its name in a table of the database
/// (which may be null).
template <class Table>
AcDbStub* namedRecord(const DxfGroup& group, const AcDbDatabase* database,
                      AcDbObjectId (AcDbDatabase::*table)() const) {
    return group.id != nullptr || database == nullptr
               ? group.id
               : findRecord<Table>((database->*table)(), group.string().kwszPtr());
}

/// Name of a record, erased or not; empty when there is none.
inline AcString recordName(AcDbObjectId record) {
    const auto* found = peek<AcDbSymbolTableRecord>(record, true);
    return found != nullptr ? found->name() : AcString();
}

} // namespace host
