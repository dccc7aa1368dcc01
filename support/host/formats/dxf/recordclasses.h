// Which class reads a record of a DXF file: by the record's name, and where one name stands for several
// classes, by its groups.
#pragma once

#include "host/formats/dxf/filefiler.h"

#include <map>
#include <string>

namespace host::dxf {

class RecordClasses {
public:
    /// Takes the classes of the host, and those of loaded modules that the file's CLASSES section names.
    explicit RecordClasses(const AcDbDatabase& database);
    /// Called when the CLASSES section has been read.
    void addCustomClasses();

    /// The class of the record the filer stands at; null for a kind the host has no code for.
    AcRxClass* classOf(FileFiler& filer) const;
    /// The class of a part that follows `parent`; null when parts of that parent are only kept.
    AcRxClass* partClass(const std::string& name, const AcDbEntity& parent) const;

private:
    void add(const std::string& name, const ACHAR* className);

    const AcDbDatabase& mDatabase;
    std::map<std::string, AcRxClass*, std::less<>> mClasses;
};

/// The host's own name of a record kind for the CLASSES section: class name and whether it is an entity.
struct KnownClass {
    const wchar_t* dxfName;
    const wchar_t* className;
    const wchar_t* appName;
    Adesk::Int32 proxyFlags;
    bool isEntity;
};
/// Built-in kinds that files list among their classes although every host has them; null for others.
const KnownClass* knownClass(std::wstring_view dxfName);

} // namespace host::dxf
