// The functions that the module gives to LISP, and how the host's calls find their handlers.
#pragma once

#include "host/arx.h"

#include <span>

struct LispFunctionRow {
    const ACHAR* name;
    int (*handler)();  ///< gives RTNORM on success; null: not provided yet, which the call tells
    bool isRegistered; ///< the host calls the handler itself instead of the module's entry point
};

/// A row's index is its function code. Row 0 is an empty sentinel.
std::span<const LispFunctionRow> LispFunctionTable();

/// For the current document. A definition that the host answers with 0 ends the defining.
void DefineLispFunctions();
void UndefineLispFunctions();

/// Runs the function that the host invokes. RSRSLT, RSERR when the handler failed, RTERROR for a code of
/// none.
int DispatchLispFunction();
/// The same for a code, without a result being set first.
int InvokeLispFunction(int code);
