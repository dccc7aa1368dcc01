// The tables that the families of commands register themselves with.
#pragma once

#include "host/ed/ed.h"

#include <span>

namespace host {

struct CommandRow {
    const wchar_t* globalName;
    const wchar_t* localName;
    Adesk::Int32 flags;
    void (*handler)();
};

std::span<const CommandRow> fileCommands();
std::span<const CommandRow> drawCommands();
std::span<const CommandRow> polylineCommands();
std::span<const CommandRow> textCommands();
std::span<const CommandRow> insertCommands();
std::span<const CommandRow> modifyCommands();
std::span<const CommandRow> undoCommands();
std::span<const CommandRow> layerCommands();
std::span<const CommandRow> linetypeCommands();
std::span<const CommandRow> viewCommands();
std::span<const CommandRow> variableCommands();
std::span<const CommandRow> ucsCommands();

} // namespace host
