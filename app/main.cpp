// qdvhost: starts the host and opens the window, or runs a script on a drawing and writes what was asked for.
#include "app/options.h"
#include "app/startup.h"
#include "app/window.h"

#include "host/ed/ed.h"
#include "host/formats/formats.h"
#include "host/plot/plot.h"
#include "host/rx/text.h"

#include <fstream>
#include <iostream>

namespace {

enum ExitCode { success = 0, failed = 1, usageError = 2 };

void tell(const std::string& line) {
    std::cerr << "qdvhost: " << line << '\n';
}
void tell(const std::wstring& line) {
    tell(host::toUtf8(line));
}

bool runScript(host::Session& session, const std::string& script) {
    if (script == "-") {
        return session.runScript(std::cin);
    }
    std::ifstream file(script, std::ios::binary);
    if (!file) {
        tell("无法打开脚本文件: " + script);
        return false;
    }
    return session.runScript(file);
}

bool writeDump(AcDbDatabase& database, const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    file << host::dumpDrawing(database);
    file.close();
    if (!file) {
        tell("无法写入文件: " + path.string());
        return false;
    }
    return true;
}

/// Writes every file that was asked for, going on after one that fails.
bool writeResults(const app::Options& options) {
    AcApDocument* document = curDoc();
    if (document == nullptr) {
        tell("没有打开的图形");
        return false;
    }
    AcDbDatabase& database = *document->database();
    bool written = true;
    if (!options.saves.empty()) {
        database.keepExtents();
    }
    for (const std::filesystem::path& path : options.saves) {
        std::wstring message;
        if (host::fileFormats().write(database, host::fromUtf8(path.string()), {}, message) != Acad::eOk) {
            tell(message);
            written = false;
        }
    }
    for (const std::filesystem::path& path : options.plots) {
        if (const std::wstring message = host::plotExtents(&database, path); !message.empty()) {
            tell(message);
            written = false;
        }
    }
    for (const std::filesystem::path& path : options.dumps) {
        written = writeDump(database, path) && written;
    }
    return written;
}

int run(const app::Options& options) {
    app::initializeHost(options.settings);
    bool good = true;
    {
        host::Session session;
        if (options.drawing) {
            if (session.openDrawing(*options.drawing) == nullptr) {
                return failed;
            }
        } else {
            session.newDrawing();
        }
        good = app::loadModules(options);
        good = runScript(session, *options.script) && good;
        std::cout.flush();
        good = writeResults(options) && good;
        host::unloadAllModules();
    }
    return good ? success : failed;
}

} // namespace

int main(int argc, char** argv) {
    std::string error;
    const std::optional<app::Options> options = app::parseOptions({argv + 1, argv + argc}, error);
    if (!options) {
        tell(error);
        std::cerr << app::helpText();
        return usageError;
    }
    if (options->help) {
        std::cout << app::helpText();
        return success;
    }
    if (options->version) {
        std::cout << "qdvhost " QDV_VERSION "\n";
        return success;
    }
    if (!options->script) {
        app::initializeHost(options->settings);
        return app::runWindow(*options);
    }
    return run(*options);
}
