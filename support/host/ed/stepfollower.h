// Who sees what a command changes and adds to it before the command's undo step ends: objects that follow
// others.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <memory>

namespace host {

class StepFollower {
public:
    StepFollower() = default;
    virtual ~StepFollower() = default;
    StepFollower(const StepFollower&) = delete;
    StepFollower& operator=(const StepFollower&) = delete;

    /// False when it was made for another database, or that one is gone.
    virtual bool follows(const AcDbDatabase& database) const = 0;
    /// The step is about to end; what is changed now belongs to it.
    virtual void stepEnds() = 0;
};

/// Makes the follower of a document's database; hung in by the commands.
std::function<std::unique_ptr<StepFollower>(AcDbDatabase&)>& stepFollowerMaker();

} // namespace host
