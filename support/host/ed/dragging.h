// Entities that follow the cursor while a command asks where they go.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <memory>
#include <vector>

namespace host {

/// While in scope, questions of this line of execution that have a base show copies of the entities,
/// transformed by what the base and the place of the cursor mean. A script moves no cursor and pays nothing.
class Dragging {
public:
    /// Both points in world coordinates.
    using Transform = std::function<AcGeMatrix3d(const AcGePoint3d& base, const AcGePoint3d& point)>;

    Dragging(const AcDbObjectIdArray& ids, Transform transform);
    ~Dragging();
    Dragging(const Dragging&) = delete;
    Dragging& operator=(const Dragging&) = delete;

    /// The copies as they stand then; they live until the next call.
    std::vector<AcDbEntity*> at(const AcGePoint3d& base, const AcGePoint3d& point);

private:
    AcDbObjectIdArray mIds;
    Transform mTransform;
    Dragging* mOuter;
    std::vector<std::unique_ptr<AcDbEntity>> mShown;
};

} // namespace host
