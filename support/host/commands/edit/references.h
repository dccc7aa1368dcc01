// Who refers to whom in a drawing: the counts that tell what can be purged, kept true while things are taken
// out.
#pragma once

#include "host/db/db.h"

#include <set>
#include <unordered_map>
#include <unordered_set>

namespace host {

class ReferenceCounts {
public:
    /// One pass over all objects.
    explicit ReferenceCounts(AcDbDatabase& database);

    /// Something that stays refers to it, by pointer, by name in data that is only kept, or as a current
    /// setting.
    bool isUsed(AcDbObjectId id) const;
    /// An application's name that extended data are kept under.
    bool isApplicationUsed(const std::wstring& name) const { return mNames.count({1001, fold(name)}) > 0; }
    /// Takes out the references of an object and of all it owns: it is about to be erased.
    void remove(AcDbObjectId id);

private:
    static std::wstring fold(const std::wstring& name);
    template <class Visit>
    static void forEachUse(const AcDbObject& object, Visit&& visit);
    void addNames(const AcDbObject& object);
    void addNames(const GroupList& groups, bool isExtendedData);
    void addHeader(AcDbDatabase& database);
    bool isNamed(AcDbObjectId id) const;

    std::unordered_map<AcDbStub*, int> mCounts;
    std::unordered_set<AcDbStub*> mCurrent;
    /// Names by group code: 2 block, 3 dimension style, 6 linetype, 7 text style, 1001 application, 1003
    /// layer.
    std::set<std::pair<int, std::wstring>> mNames;
};

} // namespace host
