// Writes the name of the unnamed profile into the host's settings.
#include "frame/profilereset.h"

#include "host/arx.h"

void ResetProfile() {
    constexpr char16_t unnamedProfile[] = u"<<未命名配置>>"; // texts in the registry are UTF-16
    static_assert(sizeof unnamedProfile == 20);
    try {
        const AcString path = AcString(acrxProductKey()) + L"\\Profiles";
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ | KEY_WRITE, &key) == ERROR_SUCCESS) {
            RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(unnamedProfile),
                           sizeof unnamedProfile);
            RegCloseKey(key);
        }
    } catch (...) {
        // The module works without it.
    }
}
