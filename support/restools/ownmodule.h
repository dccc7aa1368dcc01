// The library that this code is part of: its handles and its folder.
#pragma once

#include "host/arx.h"

/// Set when the library is attached; empty while it is not.
struct OwnModule {
    HINSTANCE instance = nullptr;         ///< of the library, whose resources are found by it
    HINSTANCE programResources = nullptr; ///< where resources were looked for when it was attached
};
OwnModule& GetOwnModule();

/// The folder that holds the module's file, without or with a backslash at its end.
AcString GetOwnDirectory(bool withSeparator = false);
