// The commands of group QDVCOMMTOOLS.
#pragma once

#include "host/arx.h"

#include <span>

struct CommandRow {
    const ACHAR* globalName;
    const ACHAR* localName;
    Adesk::Int32 flags;
    AcRxFunctionPtr handler; ///< null: not provided yet, which the command tells when it is run
};

/// In the order of registration.
std::span<const CommandRow> CommandTable();

void AddCommands();
void RemoveCommands();
