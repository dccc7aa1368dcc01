// Entities by name: their ids and groups.
#include "restools/entity.h"

#include "restools/resbuf.h"

CEntity::CEntity(AcDbObjectId id) {
    if (acdbGetAdsName(mName, id) != Acad::eOk) {
        ads_name_clear(mName);
    }
}

CEntity CEntity::Last() {
    ads_name last = {0, 0};
    return acdbEntLast(last) == RTNORM ? CEntity(last) : CEntity();
}

AcDbObjectId CEntity::ObjectId() const {
    AcDbObjectId id;
    return acdbGetObjectId(id, mName) == Acad::eOk ? id : AcDbObjectId::kNull;
}

bool CEntity::GetPoint(int groupCode, AcGePoint3d& point) const {
    const CResbuf data(acdbEntGet(mName));
    const resbuf* group = data.Find(groupCode);
    if (group == nullptr) {
        return false;
    }
    point.set(group->resval.rpoint[X], group->resval.rpoint[Y], group->resval.rpoint[Z]);
    return true;
}

bool CEntity::GetReal(int groupCode, double& value) const {
    const CResbuf data(acdbEntGet(mName));
    const resbuf* group = data.Find(groupCode);
    if (group == nullptr) {
        return false;
    }
    value = group->resval.rreal;
    return true;
}

bool CEntity::GetText(int groupCode, AcString& text) const {
    const CResbuf data(acdbEntGet(mName));
    const resbuf* group = data.Find(groupCode);
    if (group == nullptr) {
        return false;
    }
    text = group->resval.rstring;
    return true;
}
