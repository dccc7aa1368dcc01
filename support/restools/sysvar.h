// Typed access to the host's system variables.
#pragma once

#include "restools/resbuf.h"

/// False, and the value as it was, when there is no such variable or it is of another kind. A switch is an
/// integer.
bool GetVar(const ACHAR* name, int& value);
bool GetVar(const ACHAR* name, bool& value);
bool GetVar(const ACHAR* name, double& value);
bool GetVar(const ACHAR* name, AcString& value);
bool GetVar(const ACHAR* name, AcGePoint3d& value);
bool GetVar(const ACHAR* name, AcGePoint2d& value);
/// The text of a variable; empty when there is none.
AcString GetVar(const ACHAR* name);

/// Sets a variable of the value's kind; false when the host refuses it.
bool SetVar(const ACHAR* name, int value);
bool SetVar(const ACHAR* name, bool value);
bool SetVar(const ACHAR* name, double value);
bool SetVar(const ACHAR* name, const ACHAR* value);
bool SetVar(const ACHAR* name, const AcGePoint3d& value);
bool SetVar(const ACHAR* name, const AcGePoint2d& value);

/// Sets a variable for its own lifetime and puts the old value back.
class CSysVar {
public:
    template <class Value>
    CSysVar(const ACHAR* name, const Value& value) : mName(name) {
        Save();
        SetVar(name, value);
    }
    ~CSysVar();
    CSysVar(const CSysVar&) = delete;
    CSysVar& operator=(const CSysVar&) = delete;

private:
    void Save();

    AcString mName;
    CResbuf mOld;
};
