// Tables of the language's functions, a file a family. Each adds its functions to an interpreter.
#pragma once

#include "host/lisp/interpreter.h"

namespace host::lisp {

struct FunctionRow {
    const wchar_t* name;
    Function function;
    int minimum;
    int maximum; ///< -1: any number
};

inline constexpr int any = -1;

void addControlFunctions(LispInterpreter& lisp);
void addArithmeticFunctions(LispInterpreter& lisp);
void addListFunctions(LispInterpreter& lisp);
void addStringFunctions(LispInterpreter& lisp);
void addSequenceFunctions(LispInterpreter& lisp);
void addGeometryFunctions(LispInterpreter& lisp);
void addOutputFunctions(LispInterpreter& lisp);
void addFileFunctions(LispInterpreter& lisp);
void addFolderFunctions(LispInterpreter& lisp);

inline void addFunctions(LispInterpreter& lisp, std::span<const FunctionRow> rows) {
    for (const FunctionRow& row : rows) {
        lisp.define(row.name, row.function, row.minimum, row.maximum);
    }
}

} // namespace host::lisp
