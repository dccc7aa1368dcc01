// What belongs to the line of execution that runs now: the command around it, where its answers come from,
// the module, silence. Each driven command has its own and gives it up while it waits.
#pragma once

#include "host/rx/rx.h"

#include <string>

class AcApDocument;

namespace host {

class Dragging;
class Drive;

/// A running command; one inside another.
struct CommandFrame {
    CommandFrame* outer = nullptr;
    std::wstring name;
    bool cancelled = false;
    bool usesPickSet = false;
};

/// A running function of a module called from LISP.
struct Invocation {
    Invocation* outer = nullptr;
    int code = 0;
    const resbuf* arguments = nullptr;
    ResbufList ownArguments;
    ResbufList result;
};

struct RunContext {
    CommandFrame* frame = nullptr;
    Drive* drive = nullptr; ///< null: answers come from the user
    Invocation* invocation = nullptr;
    Dragging* dragging = nullptr;   ///< what follows the cursor in questions with a base
    LoadedModule* module = nullptr; ///< kept here only while the context does not run
    int muteDepth = 0;              ///< likewise
};
RunContext& runContext();

} // namespace host
