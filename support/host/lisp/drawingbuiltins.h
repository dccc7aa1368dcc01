// Tables of the functions that work on drawings and talk to the user, a file a family.
#pragma once

#include "host/lisp/builtins.h"

namespace host::lisp {

void addInputFunctions(LispInterpreter& lisp);
void addEntityFunctions(LispInterpreter& lisp);
void addSelectionFunctions(LispInterpreter& lisp);
void addTableFunctions(LispInterpreter& lisp);
void addCommandFunctions(LispInterpreter& lisp);
void addSystemFunctions(LispInterpreter& lisp);
void addUnitFunctions(LispInterpreter& lisp);
void addCurveFunctions(LispInterpreter& lisp);

/// Sets ERRNO to the reason why a function gave nil.
void setErrorNumber(int number);

} // namespace host::lisp
