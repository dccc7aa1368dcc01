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
void addNamespaceFunctions(LispInterpreter& lisp);
void addDataFunctions(LispInterpreter& lisp);
void addRegistryFunctions(LispInterpreter& lisp);

/// Sets ERRNO to the reason why a function gave nil.
void setErrorNumber(int number);

/// The interpreters of the open drawings that have one.
void forEachInterpreter(const std::function<void(LispInterpreter&)>& visit);
/// Sets what vl-propagate gives to every drawing.
void takePropagatedValues(LispInterpreter& lisp);

} // namespace host::lisp
