// Resources that a compiled resource script has put into a module: found by type and name under the Windows
// names, read where they lie.
#pragma once

#include "host/win/types.h"

#include <cstddef>
#include <span>
#include <string>

inline LPCWSTR const RT_CURSOR = MAKEINTRESOURCEW(1), RT_BITMAP = MAKEINTRESOURCEW(2),
                     RT_ICON = MAKEINTRESOURCEW(3), RT_MENU = MAKEINTRESOURCEW(4),
                     RT_DIALOG = MAKEINTRESOURCEW(5), RT_STRING = MAKEINTRESOURCEW(6),
                     RT_RCDATA = MAKEINTRESOURCEW(10), RT_GROUP_ICON = MAKEINTRESOURCEW(14),
                     RT_VERSION = MAKEINTRESOURCEW(16);

// A resource of a module (null: the program). Names are found without regard to case; "#123" is number 123.
// Null when there is none. The handle stays good while the module is loaded.
HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
inline constexpr auto FindResource = FindResourceW;
HGLOBAL LoadResource(HMODULE module, HRSRC resource);
LPVOID LockResource(HGLOBAL data); // read only
DWORD SizeofResource(HMODULE module, HRSRC resource);
inline BOOL FreeResource(HGLOBAL) {
    return FALSE;
}

// A text of a string table, cut to size - 1 characters and closed by a zero: its length, 0 when there is
// none.
int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size);
inline constexpr auto LoadString = LoadStringW;

namespace host {

// A module's resources are the bytes from qdvResourcesBegin to qdvResourcesEnd, which its library exports, in
// the form that resource compilers write (.res). For the program (and tests) they are given here; the bytes
// must stay.
void setProgramResources(std::span<const std::byte> file);

// The bytes of a resource; empty when there is none.
std::span<const std::byte> resource(HINSTANCE module, LPCWSTR type, LPCWSTR name);
// A text of the module's string tables; empty when there is none.
std::wstring resourceString(HINSTANCE module, UINT id);

} // namespace host
