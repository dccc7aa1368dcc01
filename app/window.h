// The program with a window.
#pragma once

#include "app/options.h"

namespace app {

/// Runs until the window is closed; the exit code of the program. The host is initialized.
int runWindow(const Options& options);
/// Loads the modules that were asked for. False when one could not be loaded; the reason was told.
bool loadModules(const Options& options);

} // namespace app
