// Settings of one command or dialog that outlast the session, kept with the user's current profile.
#pragma once

#include "host/arx.h"

/// Reads and writes through the host application's profile functions, below the suite's key.
class QDV_EXPORT CProfileSection {
public:
    /// `name` is the section's own, such as L"CPline\\"; the profile is the one current now.
    explicit CProfileSection(const ACHAR* name);

    int GetInt(const ACHAR* value, int fallback) const;
    CString GetText(const ACHAR* value, const ACHAR* fallback) const;
    /// The text as a decimal number; what is none counts as 0.
    double GetReal(const ACHAR* value, const ACHAR* fallback) const;
    void SetInt(const ACHAR* value, int number) const;
    /// Stored as a text with this many decimals.
    void SetReal(const ACHAR* value, double number, int decimals) const;
    void SetText(const ACHAR* value, const ACHAR* text) const;

private:
    CString mSection;
};
