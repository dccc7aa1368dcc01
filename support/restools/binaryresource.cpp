// Files that are kept in the resources of a module.
#include "restools/binaryresource.h"

std::string GetBinaryResourceToMem(HINSTANCE module, const ACHAR* type, UINT id) {
    const HRSRC found = FindResource(module, MAKEINTRESOURCE(id), type);
    const HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    const auto* bytes = static_cast<const char*>(LockResource(loaded));
    return bytes != nullptr ? std::string(bytes, SizeofResource(module, found)) : std::string();
}
