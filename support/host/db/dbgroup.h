// AcDbGroup: a named collection of entities that are selected together. The drawing's groups are in its
// group dictionary, which has their names.
#pragma once

#include "host/db/dbentity.h"

#include <vector>

class AcDbGroup : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbGroup);

public:
    AcDbGroup() = default;
    explicit AcDbGroup(const ACHAR* description, bool selectable = true)
        : mDescription(description), mSelectable(selectable) {}

    const ACHAR* description() const { return mDescription.kwszPtr(); }
    Acad::ErrorStatus setDescription(const ACHAR* description);
    bool isSelectable() const { return mSelectable; }
    Acad::ErrorStatus setSelectable(bool selectable);
    /// Without a name that the user gave.
    bool isAnonymous() const { return mAnonymous; }
    Acad::ErrorStatus setAnonymous();
    /// Its name in the group dictionary.
    Acad::ErrorStatus getName(AcString& name) const;

    /// eDuplicateKey for a member. The entity gets the group as a persistent reactor.
    Acad::ErrorStatus append(AcDbObjectId entity);
    Acad::ErrorStatus append(const AcDbObjectIdArray& entities);
    Acad::ErrorStatus remove(AcDbObjectId entity);
    Acad::ErrorStatus clear();
    bool has(const AcDbEntity* entity) const;
    /// Members that are not erased, in order.
    Adesk::UInt32 allEntityIds(AcDbObjectIdArray& ids) const;
    Adesk::UInt32 numEntities() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

private:
    AcString mDescription;
    std::vector<AcDbStub*> mMembers;
    bool mSelectable = true;
    bool mAnonymous = false;
};
