// Objects whose groups in files are taken one by one, as those of entities are.
#pragma once

#include "host/db/dbobject.h"

namespace host {

/// What an object's class has to say for its groups to be read; groups that it does not take are kept.
class GroupedObject : public AcDbObject {
protected:
    /// Reads everything up to the first subclass that is not the class's own. The class has reset its fields.
    Acad::ErrorStatus readDxfGroups(AcDbDxfFiler* filer);
    /// The marker in a lasting form when it is one of the class's subclasses, else empty.
    virtual std::string_view dxfSubclass(std::string_view marker) const = 0;
    virtual bool takeDxfGroup(AcDbDxfFiler* filer, const DxfGroup& group, std::string_view subclass) = 0;
    virtual Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler*) { return Acad::eOk; }
};

} // namespace host
