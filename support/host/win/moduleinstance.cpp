// Instance handles are the loader's library handles.
#include "host/win/moduleinstance.h"

#include "host/rx/acrx.h"
#include "host/rx/text.h"
#include "host/win/paths.h"

#include <algorithm>
#include <dlfcn.h>
#include <string>

namespace {

HINSTANCE instanceOf(const host::LoadedModule& module) {
    return static_cast<HINSTANCE>(module.library);
}

template <class Fits>
const host::LoadedModule* findModule(Fits fits) {
    for (const auto& module : host::loadedModules())
        if (fits(*module))
            return module.get();
    return nullptr;
}

} // namespace

namespace host {

std::filesystem::path moduleFile(HINSTANCE instance) {
    std::error_code error;
    if (instance == nullptr)
        return std::filesystem::read_symlink("/proc/self/exe", error);
    const auto* const module = findModule([&](const LoadedModule& m) { return instanceOf(m) == instance; });
    return module != nullptr ? module->file : std::filesystem::path();
}

HINSTANCE moduleOfAddress(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return nullptr;
    const auto* const module = findModule([&](const LoadedModule& m) {
        std::error_code error;
        return m.file == info.dli_fname || std::filesystem::equivalent(m.file, info.dli_fname, error);
    });
    return module != nullptr ? instanceOf(*module) : nullptr;
}

} // namespace host

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size) {
    const std::wstring text = host::toWindowsPath(host::moduleFile(module));
    if (path == nullptr || size == 0)
        return 0;
    if (text.empty()) {
        *path = 0;
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.begin(), length, path);
    path[length] = 0;
    if (length == text.size())
        return static_cast<DWORD>(length);
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    if (name == nullptr)
        return nullptr;
    const std::wstring wanted(host::fileNameOf(name));
    const auto* const module = findModule([&](const host::LoadedModule& m) {
        return host::equalNoCase(m.name, wanted) || host::equalNoCase(m.name, wanted + L".dll");
    });
    if (module == nullptr)
        SetLastError(ERROR_FILE_NOT_FOUND);
    return module != nullptr ? instanceOf(*module) : nullptr;
}
