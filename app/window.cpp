#include "app/window.h"

#include "app/chrome/mainwindow.h"
#include "app/startup.h"

#include "host/ed/ed.h"
#include "host/mfc/appwindow.h"

#include <cstdlib>
#include <iostream>

namespace app {
namespace {

/// A platform that needs no display, or one that has its display.
bool hasDisplay() {
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value != nullptr && *value != '\0';
    };
    return (platform != nullptr && *platform != '\0' && std::string_view(platform) != "xcb") ||
           isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

} // namespace

bool loadModules(const Options& options) {
    bool loaded = true;
    if (options.loadsDefaultModule) {
        loaded = host::loadModule(programFolder() / "QDVCommonTools.arx");
    }
    for (const std::filesystem::path& module : options.modules) {
        loaded = host::loadModule(module) && loaded;
    }
    return loaded;
}

int runWindow(const Options& options) {
    if (!hasDisplay()) {
        std::cerr << "qdvhost: 没有图形显示 (DISPLAY 未设置)，无法打开窗口；运行脚本请用 --script\n";
        return 1;
    }
    host::application();
    {
        host::Session session;
        MainWindow window;
        window.show();
        window.begin(options);
        session.run(window.input());
        window.end();
        host::unloadAllModules();
    }
    return 0;
}

} // namespace app
