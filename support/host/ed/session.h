// The program's run: starts the editor, finds files, opens drawings, runs scripts.
#pragma once

#include "host/ed/input.h"

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

class AcApDocument;
class AcDbDatabase;

namespace host {

/// Registers the editor's classes and services and hangs the editor into loading and unloading of modules.
/// Registers the areas below when that was not done. May be called again.
void initializeEditor();

/// Folders that drawings, linetypes, fonts, LISP files and modules are looked for in, after the drawing's own
/// folder and the working folder.
std::vector<std::filesystem::path>& supportFolders();
/// The file as given, beside the current drawing, or in the support folders, without regard to case. Empty
/// when there is none.
std::filesystem::path findSupportFile(std::wstring_view name);

class Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// A new drawing, made current.
    AcApDocument* newDrawing();
    /// Reads a drawing (native path) and makes it current; null with a line told when it can't be read.
    AcApDocument* openDrawing(const std::filesystem::path& file);
    /// Runs everything the user gives until it ends; what still asks then gets Escape. False when a line
    /// failed (an unknown command, a LISP error, a file); each failure was told on the diagnostic output.
    bool run(UserInput& user);
    /// The same for a script in UTF-8.
    bool runScript(std::istream& script);
    /// Asked for by QUIT: run() returns before the next command.
    static void requestQuit();
};

} // namespace host
