// Files that are kept in the resources of a module.
#pragma once

#include "host/arx.h"

#include <string>

/// The bytes of a resource; empty when the module has none of this type and number.
QDV_EXPORT std::string GetBinaryResourceToMem(HINSTANCE module, const ACHAR* type, UINT id);
