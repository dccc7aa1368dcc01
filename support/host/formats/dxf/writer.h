// The upper floors of the DXF writer: which sections a drawing has and which objects go where.
#pragma once

#include "host/db/drawingsource.h"
#include "host/formats/dxf/classlist.h"
#include "host/formats/dxf/versionfilter.h"

namespace host::dxf {

class Writer {
public:
    /// With a filter, which then writes to `out` itself, for releases that lack things.
    Writer(AcDbDatabase& database, GroupWriter& out, VersionFilter* filter);

    void write();

private:
    void completeBlocks();
    void writeHeader();
    void writeHeaderVariable(const HeaderVariable& variable, const HeaderValue& value);
    void writeClasses();
    void writeTables();
    void writeTable(AcDbObjectId id, std::string_view name);
    void writeDimensionStyleList(const AcDbSymbolTable& table);
    void writeBlocks();
    void writeBlockBegin(const AcDbBlockTableRecord& block);
    void writeEntities();
    void writeEntitiesOf(const AcDbBlockTableRecord& block);
    void writeEntity(const AcDbEntity& entity);
    void writeObjects();
    void writeUnknownSections();
    void writeSectionGroups(const GroupList& section);

    void writeObject(const AcDbObject& object);
    /// An object of a loaded module, as a proxy with its picture.
    void writeCustom(const AcDbObject& object);
    void writeProxy(const AcDbObject& object, const ProxyData& proxy);
    void beginSection(std::string_view name);
    void endSection();
    void record(std::string_view name) { mOut.beginRecord(name); }
    void writeUnknownVariables();
    bool leavesOut(const AcDbObject& object) const {
        return mFilter != nullptr && mFilter->leavesOut(object);
    }

    AcDbDatabase& mDatabase;
    DatabaseImpl& mImpl;
    VersionFilter* mFilter;
    GroupWriter& mOut;
    AcDb::AcDbDwgVersion mVersion;
    ClassList mClasses;
    std::unique_ptr<DrawingSource> mSource; ///< for pictures of custom entities
};

} // namespace host::dxf
