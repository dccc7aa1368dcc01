// CEntity: an entity by the name that the C-style functions use, and its data by DXF group.
#pragma once

#include "host/arx.h"

class QDV_EXPORT CEntity {
public:
    CEntity() = default;
    explicit CEntity(const ads_name name) { ads_name_set(name, mName); }
    explicit CEntity(AcDbObjectId id);

    /// The last entity of the drawing; a null one when there is none.
    static CEntity Last();

    bool IsNull() const { return ads_name_nil(mName); }
    const ads_name& Name() const { return mName; }
    AcDbObjectId ObjectId() const;
    /// False, and the value as it was, when the entity has no such group.
    bool GetPoint(int groupCode, AcGePoint3d& point) const;
    bool GetReal(int groupCode, double& value) const;
    bool GetText(int groupCode, AcString& text) const;

private:
    ads_name mName = {0, 0};
};
