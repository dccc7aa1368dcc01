// Which loaded library an instance handle stands for. The handle that a module's DllMain gets (with the
// reasons of types.h) is the one the loader of modules keeps for it.
#pragma once

#include "host/win/types.h"

#include <filesystem>

// What a module exports under the name DllMain.
using DllMainFunction = BOOL (*)(HINSTANCE instance, DWORD reason, LPVOID reserved);

// The Windows path of a module's file; of the program for null. The length, or size when it was cut off.
DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);
// A module by its file name (with or without path and extension .dll); null for the program and when not
// loaded.
HMODULE GetModuleHandleW(LPCWSTR name);
inline constexpr auto GetModuleFileName = GetModuleFileNameW;
inline constexpr auto GetModuleHandle = GetModuleHandleW;

namespace host {

// The file of a module; of the program for null; empty for a handle of none.
std::filesystem::path moduleFile(HINSTANCE instance);
// The module whose library holds the address (of one of its functions or variables); null when none does.
HINSTANCE moduleOfAddress(const void* address);

} // namespace host
