// The CLASSES section of a drawing that is written: what the file it came from listed, with what has come
// since. Proxies name their class by its place in it.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace host::dxf {

class ClassList {
public:
    using Chosen = std::function<bool(const AcDbObject&)>;
    /// Looks at every object once; counts those that are written.
    ClassList(const AcDbDatabase& database, const Chosen& isWritten);

    const std::vector<DatabaseImpl::FileClass>& classes() const { return mClasses; }
    /// The number by which group 91 of a proxy names the class of the object.
    int classNumber(const AcDbObject& object) const;

private:
    static constexpr int none = -1;
    int find(const AcString& className, const AcString& dxfName) const;
    int add(DatabaseImpl::FileClass listed);
    int indexFor(const AcDbObject& object);
    int indexForClass(const AcRxClass& objectClass);
    int indexForRecord(const std::string& recordName, bool isEntity);
    int indexForProxy(const ProxyData& proxy, bool isEntity);

    std::vector<DatabaseImpl::FileClass> mClasses;
    std::unordered_map<const AcRxClass*, int> mByClass;
    std::map<std::string, int, std::less<>> mByRecord;
    const AcRxClass* mLastClass = nullptr; ///< objects of one class come in rows
    int mLastIndex = none;
};

} // namespace host::dxf
