// The profile functions over the registry, and the host's application object.
#include "host/mfc/winapp.h"

#include "host/mfc/modulestate.h"
#include "host/rx/acrx.h"
#include "host/rx/text.h"
#include "host/win/profilefile.h"
#include "host/win/registry.h"

#include <cstring>
#include <optional>
#include <string>

namespace {

constexpr std::wstring_view software = L"Software\\";

// A value of the registry, if it has the type.
std::optional<std::string> readBytes(LPCWSTR path, LPCWSTR entry, DWORD wantedType) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return {};
    std::string bytes;
    DWORD type = 0, size = 0;
    LONG code = RegQueryValueExW(key, entry, nullptr, &type, nullptr, &size);
    // Another program may write between the two questions.
    while (code == ERROR_SUCCESS || code == ERROR_MORE_DATA) {
        bytes.resize(size);
        code = RegQueryValueExW(key, entry, nullptr, &type, reinterpret_cast<LPBYTE>(bytes.data()), &size);
        if (code == ERROR_SUCCESS)
            break;
    }
    RegCloseKey(key);
    bytes.resize(size);
    return code == ERROR_SUCCESS && type == wantedType ? std::optional(bytes) : std::nullopt;
}

BOOL writeBytes(LPCWSTR path, LPCWSTR entry, DWORD type, std::string_view bytes) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
        return FALSE;
    const LONG code = RegSetValueExW(key, entry, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                     static_cast<DWORD>(bytes.size()));
    RegCloseKey(key);
    return code == ERROR_SUCCESS ? TRUE : FALSE;
}

BOOL deleteValue(LPCWSTR path, LPCWSTR entry) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_WRITE, &key) != ERROR_SUCCESS)
        return TRUE; // nothing there
    const LONG code = RegDeleteValueW(key, entry);
    RegCloseKey(key);
    return code == ERROR_SUCCESS || code == ERROR_FILE_NOT_FOUND ? TRUE : FALSE;
}

// The host's object: the product key, split into the names that lead to it.
class HostApplication : public CWinApp {
public:
    HostApplication() : CWinApp(L"qdvhost") {
        std::wstring key = acrxProductKey();
        if (host::startsWithNoCase(key, software))
            key.erase(0, software.size());
        const std::size_t last = key.rfind(L'\\');
        company_ = CString(key.substr(0, last).c_str());
        product_ = CString(last == key.npos ? L"" : key.substr(last + 1).c_str());
        m_pszRegistryKey = company_;
        m_pszProfileName = product_;
    }

private:
    CString company_, product_;
};

} // namespace

CWinApp::CWinApp(LPCTSTR appName) : appName_(appName), profileName_(CString(appName) + L".INI") {
    m_pszAppName = appName_;
    m_pszRegistryKey = nullptr;
    m_pszProfileName = profileName_;
}

void CWinApp::SetRegistryKey(LPCTSTR registryKey) {
    registryKey_ = registryKey;
    profileName_ = appName_;
    m_pszRegistryKey = registryKey_;
    m_pszProfileName = profileName_;
}

CString CWinApp::profileKey() const {
    CString key(software.data());
    return key + m_pszRegistryKey + L"\\" + m_pszProfileName;
}

CString CWinApp::sectionKey(LPCTSTR section) const {
    return profileKey() + L"\\" + section;
}

UINT CWinApp::GetProfileInt(LPCTSTR section, LPCTSTR entry, int fallback) {
    if (m_pszRegistryKey == nullptr)
        return GetPrivateProfileIntW(section, entry, fallback, m_pszProfileName);
    const auto bytes = readBytes(sectionKey(section), entry, REG_DWORD);
    if (!bytes || bytes->size() != sizeof(UINT))
        return static_cast<UINT>(fallback);
    UINT value = 0;
    std::memcpy(&value, bytes->data(), sizeof value);
    return value;
}

BOOL CWinApp::WriteProfileInt(LPCTSTR section, LPCTSTR entry, int value) {
    if (m_pszRegistryKey == nullptr)
        return WritePrivateProfileStringW(section, entry, std::to_wstring(value).c_str(), m_pszProfileName);
    return writeBytes(sectionKey(section), entry, REG_DWORD,
                      {reinterpret_cast<const char*>(&value), sizeof value});
}

CString CWinApp::GetProfileString(LPCTSTR section, LPCTSTR entry, LPCTSTR fallback) {
    if (m_pszRegistryKey == nullptr) {
        CString text;
        GetPrivateProfileStringW(section, entry, fallback, text.GetBuffer(4096), 4096, m_pszProfileName);
        text.ReleaseBuffer();
        return text;
    }
    const auto bytes = readBytes(sectionKey(section), entry, REG_SZ);
    return bytes ? CString(host::fromUtf16Le(*bytes).c_str()) : CString(fallback);
}

BOOL CWinApp::WriteProfileString(LPCTSTR section, LPCTSTR entry, LPCTSTR value) {
    if (m_pszRegistryKey == nullptr)
        return WritePrivateProfileStringW(section, entry, value, m_pszProfileName);
    if (entry == nullptr)
        return host::deleteSettings(sectionKey(section).GetString()) ? TRUE : FALSE;
    if (value == nullptr)
        return deleteValue(sectionKey(section), entry);
    return writeBytes(sectionKey(section), entry, REG_SZ, host::toUtf16Le(std::wstring(value) + L'\0'));
}

BOOL CWinApp::GetProfileBinary(LPCTSTR section, LPCTSTR entry, LPBYTE* data, UINT* size) {
    *data = nullptr;
    *size = 0;
    if (m_pszRegistryKey == nullptr)
        return FALSE;
    const auto bytes = readBytes(sectionKey(section), entry, REG_BINARY);
    if (!bytes)
        return FALSE;
    *data = new BYTE[bytes->size() + 1];
    *size = static_cast<UINT>(bytes->size());
    std::memcpy(*data, bytes->data(), bytes->size());
    return TRUE;
}

BOOL CWinApp::WriteProfileBinary(LPCTSTR section, LPCTSTR entry, LPBYTE data, UINT size) {
    if (m_pszRegistryKey == nullptr || (data == nullptr && size != 0))
        return FALSE;
    return writeBytes(sectionKey(section), entry, REG_BINARY, {reinterpret_cast<const char*>(data), size});
}

CWinApp* acedGetAcadWinApp() {
    static HostApplication application;
    return &application;
}
