// Starting the editor, finding files, and the loop of the command prompt.
#include "host/ed/session.h"

#include "host/ed/accmd.h"
#include "host/ed/acdocman.h"
#include "host/ed/acedinpt.h"
#include "host/ed/acedreactor.h"
#include "host/ed/acjig.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/editorview.h"
#include "host/ed/externalfunctions.h"
#include "host/ed/lisphook.h"
#include "host/ed/runcontext.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"
#include "host/formats/formats.h"
#include "host/rx/text.h"
#include "host/win/win.h"

namespace host {
namespace {

constexpr std::wstring_view idlePrompt = L"\n命令: ";
bool quitRequested = false;

void registerClasses() {
    AcEdCommand::rxInit();
    AcEdCommandStack::rxInit();
    AcApDocument::rxInit();
    AcApDocManager::rxInit();
    AcApDocManagerReactor::rxInit();
    AcEditor::rxInit();
    AcEditorReactor::rxInit();
    AcEdInputPointFilter::rxInit();
    AcEdInputPointMonitor::rxInit();
    AcEdJig::rxInit();
    AcEdSSGetFilter::rxInit();
    acrxBuildClassHierarchy();
}

/// Calls for each open document while it is the current one.
template <class Call>
void forEachDocument(Call call) {
    AcApDocManager& manager = *acDocManagerPtr();
    AcApDocument* before = manager.curDocument();
    for (std::size_t i = 0; i < manager.documents().size(); ++i) {
        manager.activateDocument(manager.documents()[i].get());
        call();
    }
    if (before != nullptr) {
        manager.activateDocument(before);
    }
}

void moduleUnloading(LoadedModule& module) {
    forEachDocument([&] { sendMessage(module, AcRx::kUnloadDwgMsg); });
}

void hangIntoModules() {
    ModuleEvents& events = moduleEvents();
    events.loaded = [](LoadedModule& module) {
        forEachDocument([&] { sendMessage(module, AcRx::kLoadDwgMsg); });
    };
    events.unloading = moduleUnloading;
    events.unloaded = [](LoadedModule& module) {
        acedCommandStack()->removeCommandsOf(module);
        removeExternalFunctionsOf(module);
    };
    events.locate = [](const std::wstring& name) {
        const std::filesystem::path file = findSupportFile(name);
        return file.empty() && extensionOf(name).empty() ? findSupportFile(name + L".arx") : file;
    };
    events.report = [](const std::wstring& line) { reportFailure(line); };
}

/// Answers the database's questions to its surroundings.
class EditorServices : public AcDbHostApplicationServices {
public:
    Acad::ErrorStatus findFile(ACHAR* path, int maximum, const ACHAR* name, AcDbDatabase*, int) override {
        const std::filesystem::path found = findSupportFile(name != nullptr ? name : L"");
        if (found.empty()) {
            return Acad::eFileNotFound;
        }
        const std::wstring text = toWindowsPath(found);
        if (text.size() >= static_cast<std::size_t>(maximum)) {
            return Acad::eBufferTooSmall;
        }
        std::copy_n(text.c_str(), text.size() + 1, path);
        return Acad::eOk;
    }
    bool userBreak(bool) const override { return editorView().isBreakAsked(); }
};

bool fileExists(const std::filesystem::path& file) {
    std::error_code error;
    return !file.empty() && std::filesystem::exists(file, error);
}

} // namespace

void initializeEditor() {
    static bool done = false;
    if (done) {
        return;
    }
    done = true;
    if (acrxFindAcRxClass(L"AcRxObject") == nullptr) {
        initializeRuntime();
    }
    if (acrxFindAcRxClass(L"AcDbObject") == nullptr) {
        initializeDatabaseClasses();
    }
    initializeFormats();
    registerClasses();
    acrxSysRegistry()->atPut(L"ACAD_REGISTERED_COMMANDS", acedCommandStack());
    acrxSysRegistry()->atPut(L"AcApDocManager", acDocManagerPtr());
    hangIntoModules();
    static EditorServices services;
    acdbSetHostApplicationServices(&services);
}

std::vector<std::filesystem::path>& supportFolders() {
    static std::vector<std::filesystem::path> folders;
    return folders;
}

std::filesystem::path findSupportFile(std::wstring_view name) {
    if (name.empty()) {
        return {};
    }
    if (isAbsoluteWindowsPath(name)) {
        const std::filesystem::path file = toNativePath(name);
        return fileExists(file) ? file : std::filesystem::path();
    }
    std::vector<std::filesystem::path> folders{std::filesystem::path(".")};
    if (const AcApDocument* document = curDoc(); document != nullptr && document->isNamedDrawing()) {
        folders.push_back(toNativePath(document->fileName()).parent_path());
    }
    folders.insert(folders.end(), supportFolders().begin(), supportFolders().end());
    for (const std::filesystem::path& folder : folders) {
        const std::filesystem::path file = toNativePath(name, folder);
        if (fileExists(file)) {
            std::error_code error;
            const std::filesystem::path absolute = std::filesystem::absolute(file, error).lexically_normal();
            return error ? file : absolute;
        }
    }
    return {};
}

Session::Session() {
    initializeEditor();
}

Session::~Session() {
    inputStream().setUser(nullptr);
    saveVariables();
    while (AcApDocument* document = curDoc()) {
        acDocManagerPtr()->closeDocument(document);
    }
    console().endLine();
}

AcApDocument* Session::newDrawing() {
    acDocManagerPtr()->appContextNewDocument(nullptr);
    return curDoc();
}

AcApDocument* Session::openDrawing(const std::filesystem::path& file) {
    const std::wstring path = toWindowsPath(std::filesystem::absolute(file));
    const Acad::ErrorStatus status = acDocManagerPtr()->appContextOpenDocument(path.c_str());
    return status == Acad::eOk ? curDoc() : nullptr;
}

void Session::requestQuit() {
    quitRequested = true;
}

namespace {

void cancelEverything() {
    if (AcApDocument* document = curDoc()) {
        cancelWaitingCommands(*document);
        document->state().implied.clear();
    }
}

void runTypedCommand(const std::wstring& typed) {
    AcApDocument* document = curDoc();
    std::wstring name = typed;
    if (name.empty()) {
        name = document->state().lastCommand;
        if (name.empty()) {
            return;
        }
        console().write(L"\n" + name);
    }
    const AcEdCommand* command = findCommand(name);
    const bool isRepeated = command == nullptr || (command->commandFlags() & ACRX_CMD_NOHISTORY) == 0;
    if (name.front() != L'\'' && isRepeated && isCommandName(name)) {
        document->state().lastCommand = name;
    }
    startTypedCommand(name);
}

/// One turn of the command prompt; false when there is nothing more to do.
bool turn() {
    if (askForWaitingCommand()) {
        return true;
    }
    if (lispHook().beforePrompt) {
        lispHook().beforePrompt(*curDoc());
    }
    const InputItem item = inputStream().readCommand(idlePrompt);
    switch (item.kind) {
    case InputItem::Kind::end:
        return false;
    case InputItem::Kind::cancel:
        cancelEverything();
        break;
    case InputItem::Kind::lisp:
        runLispLine(item.text);
        break;
    case InputItem::Kind::text:
        runTypedCommand(item.text);
        break;
    case InputItem::Kind::value:
    case InputItem::Kind::motion:
        break;
    }
    return true;
}

} // namespace

bool Session::run(UserInput& user) {
    const int failuresBefore = failureCount();
    UserInput* before = inputStream().user();
    inputStream().setUser(&user);
    quitRequested = false;
    while (!quitRequested && curDoc() != nullptr && turn()) {
    }
    cancelEverything();
    inputStream().setUser(before);
    saveVariables();
    console().endLine();
    return failureCount() == failuresBefore;
}

bool Session::runScript(std::istream& script) {
    TypedInput input(script);
    return run(input);
}

} // namespace host
