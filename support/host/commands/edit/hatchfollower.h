// Associative hatches follow the objects of their boundaries when the command ends that changed them.
#pragma once

#include "host/ed/stepfollower.h"

namespace host {

/// Costs nothing for objects that no hatch follows; every hatch is made anew once a step.
std::unique_ptr<StepFollower> followHatches(AcDbDatabase& database);

} // namespace host
