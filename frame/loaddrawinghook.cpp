// The hook and its counter.
#include "frame/loaddrawinghook.h"

namespace {

int (*loadDrawingHook)(int) = nullptr;
Adesk::UInt32 hookCalls = 0; ///< over all documents while the module is loaded

} // namespace

void SetLoadDWGFun(int (*hook)(int)) {
    loadDrawingHook = hook;
}

bool RunLoadDrawingHook() {
    if (loadDrawingHook == nullptr) {
        return true;
    }
    const int goOn = loadDrawingHook(static_cast<int>(hookCalls));
    ++hookCalls;
    return goOn != 0;
}
