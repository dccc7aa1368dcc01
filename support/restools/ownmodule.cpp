// The module's own handles and folder.
#include "restools/ownmodule.h"

#include <string>

OwnModule& GetOwnModule() {
    static OwnModule module;
    return module;
}

AcString GetOwnDirectory(bool withSeparator) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    // A path that fills the buffer was cut off.
    while ((length = GetModuleFileNameW(GetOwnModule().instance, path.data(),
                                        static_cast<DWORD>(path.size()))) >= path.size()) {
        path.resize(path.size() * 2);
    }
    path.resize(length);
    const std::size_t separator = path.rfind(L'\\');
    AcString folder(path.substr(0, separator == std::wstring::npos ? 0 : separator).c_str());
    return withSeparator ? folder + L'\\' : folder;
}
