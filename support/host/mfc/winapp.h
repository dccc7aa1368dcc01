// CWinApp: the application object, whose profile functions keep settings in the registry.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/object.h"
#include "host/win/types.h"

class CWinThread : public CCmdTarget {
public:
    virtual BOOL InitInstance() { return TRUE; }
    virtual int ExitInstance() { return 0; }
};

class CWinApp : public CWinThread {
public:
    explicit CWinApp(LPCTSTR appName = nullptr);

    // Names of the settings' place: HKEY_CURRENT_USER\Software\<registry key>\<profile name>\<section>.
    // Without a registry key the profile name is that of a private profile file.
    LPCTSTR m_pszAppName;
    LPCTSTR m_pszRegistryKey;
    LPCTSTR m_pszProfileName;
    HINSTANCE m_hInstance = nullptr;

    void SetRegistryKey(LPCTSTR registryKey);

    // Values by section (a path of keys, which may end in a backslash) and entry. A value of another kind
    // than asked for counts as none. A null entry deletes the section, a null text the entry.
    UINT GetProfileInt(LPCTSTR section, LPCTSTR entry, int fallback);
    BOOL WriteProfileInt(LPCTSTR section, LPCTSTR entry, int value);
    CString GetProfileString(LPCTSTR section, LPCTSTR entry, LPCTSTR fallback = nullptr);
    BOOL WriteProfileString(LPCTSTR section, LPCTSTR entry, LPCTSTR value);
    // Allocates the data with new[]; they are the caller's.
    BOOL GetProfileBinary(LPCTSTR section, LPCTSTR entry, LPBYTE* data, UINT* size);
    BOOL WriteProfileBinary(LPCTSTR section, LPCTSTR entry, LPBYTE data, UINT size);

protected:
    // The key of the settings below HKEY_CURRENT_USER.
    CString profileKey() const;

private:
    CString sectionKey(LPCTSTR section) const;

    CString appName_, registryKey_, profileName_;
};

// The host's application object. Its settings live below acrxProductKey().
CWinApp* acedGetAcadWinApp();
