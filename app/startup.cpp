// Starts the areas of the host in their order.
#include "app/startup.h"

#include "host/commands/commands.h"
#include "host/ed/ed.h"
#include "host/formats/formats.h"
#include "host/lisp/lisp.h"
#include "host/plot/plotcommand.h"
#include "host/win/win.h"

#include <system_error>

namespace app {

std::filesystem::path programFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

void initializeHost(const std::optional<std::filesystem::path>& settings) {
    if (settings) {
        host::setSettingsFolder(*settings);
    }
    host::initializeRuntime();
    host::initializeDatabaseClasses();
    host::initializeFormats();
    host::initializeEditor();
    host::initializeCommands();
    host::initializeLisp();
    host::initializePlotting();
    host::createSettings(std::wstring(acrxProductKey()) + L"\\Profiles");
    const std::filesystem::path folder = programFolder();
    host::supportFolders() = {folder / "library", folder};
}

} // namespace app
