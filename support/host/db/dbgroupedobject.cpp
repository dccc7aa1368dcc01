// Reading of objects group by group.
#include "host/db/dbgroupedobject.h"

Acad::ErrorStatus host::GroupedObject::readDxfGroups(AcDbDxfFiler* filer) {
    AcDbObject::dxfInFields(filer);
    std::string_view subclass;
    while (const DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100) {
            const std::string_view own = dxfSubclass(group->text);
            if (own.empty()) {
                filer->pushBackItem();
                break;
            }
            subclass = own;
            continue;
        }
        // Before the first marker stand the groups that all objects have.
        const bool common = subclass.empty() || group->code >= 1000;
        if ((common && takeObjectGroup(filer, *group)) || takeDxfGroup(filer, *group, subclass)) {
            continue;
        }
        keepGroup(subclass, *group);
    }
    return filer->filerStatus() == Acad::eOk ? dxfGroupsRead(filer) : filer->filerStatus();
}
