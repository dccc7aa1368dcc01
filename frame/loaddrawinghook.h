// The hook by which a sibling module takes part in the opening of drawings.
#pragma once

#include "host/arx.h"

/// The hook is called for each drawing before the module's functions are defined in it, with the number of
/// calls made before; when it gives 0 none is defined. Replaces the hook before; null removes it.
QDV_EXPORT void SetLoadDWGFun(int (*hook)(int));

/// Calls the hook. True when there is none or it lets the opening go on.
bool RunLoadDrawingHook();
