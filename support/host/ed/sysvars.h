// System variables: those of the drawing's header and those of the session, in one typed table.
#pragma once

#include "host/rx/rx.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AcDbDatabase;

namespace host {

enum class VariableError { none, unknown, readOnly, wrongType, outOfRange, refused };

/// The variable's value as acedGetVar gives it; null when there is none of that name.
ResbufList systemVariable(std::wstring_view name);
/// Sets a value, converting between integers and reals where nothing is lost. Reactors are told.
VariableError setSystemVariable(std::wstring_view name, const resbuf& value);
/// Sets what only the host changes (LASTPOINT, CMDNAMES, DWGNAME...): read-only is passed over, reactors are
/// told nothing.
void putSystemVariable(std::wstring_view name, const resbuf& value);
/// Sets from text as SETVAR takes it (a number, a point, a word); the error as above.
VariableError setSystemVariableFromText(std::wstring_view name, std::wstring_view text);

// Typed short cuts. Unknown names give zero values.
int systemVariableInteger(std::wstring_view name);
double systemVariableReal(std::wstring_view name);
std::wstring systemVariableText(std::wstring_view name);
void setSystemVariable(std::wstring_view name, int value);
void setSystemVariable(std::wstring_view name, double value);
void setSystemVariable(std::wstring_view name, std::wstring_view value);

/// Where a variable's value is kept.
enum class VariableHome {
    drawing,  ///< in the drawing's file
    settings, ///< from run to run
    session,  ///< while the program, or the document, is open
    nowhere,  ///< made when it is asked for
};

struct VariableInfo {
    std::wstring name;
    bool readOnly = false;
    int type = 0; ///< RTSHORT, RTLONG, RTREAL, RTSTR, RTPOINT or RT3DPOINT
    double minimum = 0.0;
    double maximum = -1.0; ///< below minimum: no range
    VariableHome home = VariableHome::drawing;
};
std::optional<VariableInfo> systemVariableInfo(std::wstring_view name);
/// All names in alphabetical order.
std::vector<std::wstring> systemVariableNames();

/// Writes the variables that are kept from run to run and were set.
void saveVariables();

/// A line for the user about a value that was refused.
std::wstring variableErrorText(VariableError error, std::wstring_view name);

/// Sets a variable for a scope and puts the old value back.
class SystemVariableScope {
public:
    SystemVariableScope(std::wstring_view name, int value);
    ~SystemVariableScope();
    SystemVariableScope(const SystemVariableScope&) = delete;
    SystemVariableScope& operator=(const SystemVariableScope&) = delete;

private:
    std::wstring mName;
    ResbufList mOld;
};

} // namespace host
