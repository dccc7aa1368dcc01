// Settings below the current profile.
#include "restools/profilesection.h"

#include "restools/sysvar.h"

#include <cwchar>

CProfileSection::CProfileSection(const ACHAR* name) {
    mSection.Format(L"Profiles\\%s\\Dialogs\\沐岚川软件\\CommonTools\\%s", GetVar(L"CPROFILE").constPtr(),
                    name);
}

int CProfileSection::GetInt(const ACHAR* value, int fallback) const {
    return static_cast<int>(acedGetAcadWinApp()->GetProfileInt(mSection, value, fallback));
}

CString CProfileSection::GetText(const ACHAR* value, const ACHAR* fallback) const {
    return acedGetAcadWinApp()->GetProfileString(mSection, value, fallback);
}

double CProfileSection::GetReal(const ACHAR* value, const ACHAR* fallback) const {
    return std::wcstod(GetText(value, fallback), nullptr);
}

void CProfileSection::SetInt(const ACHAR* value, int number) const {
    acedGetAcadWinApp()->WriteProfileInt(mSection, value, number);
}

void CProfileSection::SetReal(const ACHAR* value, double number, int decimals) const {
    CString text;
    text.Format(L"%.*lf", decimals, number);
    SetText(value, text);
}

void CProfileSection::SetText(const ACHAR* value, const ACHAR* text) const {
    acedGetAcadWinApp()->WriteProfileString(mSection, value, text);
}
