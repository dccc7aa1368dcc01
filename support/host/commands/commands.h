// The host's own commands, which scripts, users and modules (acedCommandS) drive alike.
#pragma once

namespace host {

/// Adds all commands of the host to the command stack. Once, after initializeEditor.
void initializeCommands();

} // namespace host
