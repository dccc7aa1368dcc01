// Functions that modules define for LISP, by document, and their invocation.
#pragma once

#include "host/rx/rx.h"

#include <map>
#include <string>
#include <string_view>

class AcApDocument;

namespace host {

struct ExternalFunction {
    std::wstring name; ///< as defined; "C:..." makes a command of it
    LoadedModule* module = nullptr;
    int code = 0;
    int (*handler)() = nullptr; ///< registered with acedRegFunc: called instead of the module's entry point
};

/// Null when the document (null: the current one) has none of that name, in any case. The pointer holds until
/// the function is undefined.
const ExternalFunction* findExternalFunction(std::wstring_view name, AcApDocument* document = nullptr);
/// Names in alphabetical order.
std::vector<std::wstring> externalFunctionNames(AcApDocument* document = nullptr);

/// Calls the function with a list of arguments; false when it told an error. A result is always there: RTVOID
/// when the function gave none and RTNIL when it failed. Exceptions end here with one line for the user.
bool invokeExternal(const ExternalFunction& function, const resbuf* arguments, ResbufList& result);

/// Takes away what an unloaded module has left in any document.
void removeExternalFunctionsOf(const LoadedModule& module);

} // namespace host
