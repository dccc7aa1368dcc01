// Walks up to the first owner that is known and remembers the answer for the way there.
#include "host/formats/ownerchain.h"

namespace host {

bool OwnerChain::reachesMarked(const AcDbStub& stub) {
    if (mMarked(stub)) {
        return true;
    }
    mPath.clear();
    bool marked = false;
    const AcDbStub* at = &stub;
    while (!marked && at->object != nullptr && (at = at->object->ownerId().stub()) != nullptr) {
        // While an owner's answer is looked for it counts as no: a circle ends.
        const auto [found, added] = mKnown.try_emplace(at, false);
        if (!added) {
            marked = found->second;
            break;
        }
        mPath.push_back(at);
        marked = mMarked(*at);
    }
    for (const AcDbStub* owner : mPath) {
        mKnown[owner] = marked;
    }
    return marked;
}

OwnerChain erasedOwners() {
    return OwnerChain([](const AcDbStub& stub) { return stub.erased || stub.object == nullptr; });
}

} // namespace host
