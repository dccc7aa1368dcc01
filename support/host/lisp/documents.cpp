// An interpreter for each document, and the editor's hooks into it.
#include "host/ed/codefolders.h"
#include "host/ed/ed.h"
#include "host/ed/fiber.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/fileaccess.h"
#include "host/lisp/lisp.h"
#include "host/lisp/printer.h"
#include "host/lisp/stack.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <set>

namespace host {

using namespace lisp;
namespace fs = std::filesystem;

namespace {

/// The interpreter with what it knows of the document's functions from modules.
struct DocumentLisp {
    explicit DocumentLisp(LispSurroundings surroundings) : interpreter(std::move(surroundings)) {}
    LispInterpreter interpreter;
    std::set<std::wstring> externals; ///< names whose definition was taken over, upper case
    bool hasStarted = false;          ///< the start-up program was looked for
    /// Of the expression typed last: a selection set among it lives until the question it answers has taken
    /// it.
    Value typed;
};

/// A program may close its own document, so whoever runs one holds the interpreter too.
std::map<AcApDocument*, std::shared_ptr<DocumentLisp>>& interpreters() {
    static auto& map = *new std::map<AcApDocument*, std::shared_ptr<DocumentLisp>>; // documents end first
    return map;
}

// Calls of modules.

Value callExternal(LispInterpreter& lisp, const std::wstring& name, Arguments arguments) {
    const ExternalFunction* const function = findExternalFunction(name);
    if (function == nullptr) {
        throw Error(L"没有函数定义: " + name);
    }
    ResbufBuilder builder;
    for (const Value& argument : arguments) {
        appendValue(builder, argument, PointRule::reals);
    }
    const ResbufList list = builder.release();
    ResbufList result;
    if (!invokeExternal(*function, list.get(), result)) {
        throw Error(L"外部函数请求错误: " + name);
    }
    return valueFrom(lisp, result.get()).value_or(lisp.quiet());
}

/// Brings the symbols of functions from modules up to date: a definition replaces the symbol's value, and the
/// end of the function takes away what is still its own.
void takeOverExternals(DocumentLisp& lisp, AcApDocument& document) {
    std::set<std::wstring> names;
    for (const std::wstring& name : externalFunctionNames(&document)) {
        names.insert(toUpper(std::wstring_view(name)));
    }
    if (names == lisp.externals) {
        return;
    }
    for (const std::wstring& name : names) {
        if (!lisp.externals.contains(name)) {
            lisp.interpreter.setValue(name, make<External>(name));
        }
    }
    for (const std::wstring& name : lisp.externals) {
        if (!names.contains(name) && lisp.interpreter.valueOf(name).kind() == Kind::external) {
            lisp.interpreter.setValue(name, Value());
        }
    }
    lisp.externals = std::move(names);
}

// Folders.

std::vector<fs::path> dataFolders(AcApDocument* document) {
    std::vector<fs::path> folders;
    std::error_code error;
    if (acDocManagerPtr()->isOpen(document) && document->isNamedDrawing()) {
        folders.push_back(toNativePath(document->fileName()).parent_path());
    }
    folders.push_back(fs::current_path(error));
    folders.push_back(settingsFolder());
    folders.push_back(fs::temp_directory_path(error));
    for (fs::path& folder : foldersIn(L"LISPFOLDERS")) {
        folders.push_back(std::move(folder));
    }
    return folders;
}

std::shared_ptr<DocumentLisp> documentLisp(AcApDocument& document) {
    std::shared_ptr<DocumentLisp>& entry = interpreters()[&document];
    if (entry == nullptr) {
        LispSurroundings surroundings;
        surroundings.print = [](std::wstring_view text) { console().write(text); };
        surroundings.userBreak = [] { return acedUsrBrk() != 0; };
        surroundings.dataFolders = [&document] { return dataFolders(&document); };
        surroundings.codeFolders = [&document] { return codeFolders(&document); };
        entry = std::make_shared<DocumentLisp>(std::move(surroundings));
        LispInterpreter& lisp = entry->interpreter;
        lisp.surroundings().callExternal = [&lisp](const std::wstring& name, Arguments arguments) {
            return callExternal(lisp, name, arguments);
        };
        lisp.surroundings().afterError = [&document] {
            if (acDocManagerPtr()->isOpen(&document)) {
                cancelLeftCommands(document);
            }
        };
        addInputFunctions(lisp);
        addEntityFunctions(lisp);
        addSelectionFunctions(lisp);
        addTableFunctions(lisp);
        addCommandFunctions(lisp);
        addSystemFunctions(lisp);
        addUnitFunctions(lisp);
        addCurveFunctions(lisp);
        addNamespaceFunctions(lisp);
        addDataFunctions(lisp);
        addRegistryFunctions(lisp);
        takePropagatedValues(lisp);
    }
    takeOverExternals(*entry, document);
    return entry;
}

std::shared_ptr<LispInterpreter> currentLisp() {
    AcApDocument* const document = curDoc();
    if (document == nullptr) {
        return nullptr;
    }
    const std::shared_ptr<DocumentLisp> lisp = documentLisp(*document);
    return {lisp, &lisp->interpreter};
}

// Hooks.

ResbufList resultOf(LispInterpreter& lisp, const Value& value) {
    if (eq(value, lisp.quiet())) {
        return nullptr;
    }
    ResbufBuilder builder;
    appendValue(builder, value, PointRule::numbers);
    return builder.release();
}

LispOutcome outcomeOf(LispInterpreter& lisp, const LispEvaluation& evaluation) {
    LispOutcome outcome;
    if (!evaluation.ok) {
        // *error* has said what there was to say; who leaves on purpose has not failed.
        const bool left = evaluation.message == cancelledMessage || evaluation.message == exitMessage;
        if (left && !evaluation.line.empty()) {
            console().line(evaluation.line);
        }
        const bool told = left || evaluation.line.empty();
        outcome.status = told ? LispOutcome::Status::cancelled : LispOutcome::Status::error;
        outcome.error = evaluation.line;
        return outcome;
    }
    try {
        outcome.value = resultOf(lisp, evaluation.value);
        outcome.printed = lisp.displayed(evaluation.value);
    } catch (const Error& error) { // nested too deep to be shown
        outcome.status = LispOutcome::Status::error;
        outcome.error = L"; 错误: " + error.message;
    }
    return outcome;
}

LispOutcome noDocument() {
    LispOutcome outcome;
    outcome.status = LispOutcome::Status::error;
    outcome.error = L"; 错误: 没有打开的图形";
    return outcome;
}

LispOutcome evaluate(const std::wstring& expression) {
    const std::shared_ptr<LispInterpreter> lisp = currentLisp();
    if (lisp == nullptr) {
        return noDocument();
    }
    const std::wstring_view text = trim(std::wstring_view(expression));
    LispEvaluation evaluation = lisp->evaluate(text.starts_with(L'!') ? text.substr(1) : text);
    LispOutcome outcome = outcomeOf(*lisp, evaluation);
    if (const auto own = interpreters().find(curDoc()); own != interpreters().end()) {
        own->second->typed = std::move(evaluation.value);
    }
    return outcome;
}

LispOutcome runCommandFunction(const std::wstring& name) {
    const std::shared_ptr<LispInterpreter> lisp = currentLisp();
    if (lisp == nullptr) {
        return noDocument();
    }
    return outcomeOf(*lisp, lisp->call(L"C:" + name, {}));
}

// A function written in LISP; those of modules are found by the editor itself.
bool isCommandFunction(const std::wstring& name) {
    const auto found = interpreters().find(curDoc());
    if (found == interpreters().end()) {
        return false;
    }
    const LispInterpreter& lisp = found->second->interpreter;
    return lisp.isFunction(L"C:" + name) && lisp.valueOf(L"C:" + name).kind() != Kind::external;
}

bool getSymbol(const std::wstring& symbol, ResbufList& value) {
    const std::shared_ptr<LispInterpreter> lisp = currentLisp();
    if (lisp == nullptr) {
        return false;
    }
    ResbufBuilder builder;
    try {
        appendValue(builder, lisp->valueOf(symbol), PointRule::reals);
    } catch (const Error&) {
        return false;
    }
    value = builder.release();
    return true;
}

bool putSymbol(const std::wstring& symbol, const resbuf* value) {
    const std::shared_ptr<LispInterpreter> lisp = currentLisp();
    if (lisp == nullptr) {
        return false;
    }
    try {
        lisp->assign(*lisp->intern(symbol), valueFrom(*lisp, value).value_or(Value()));
        return true;
    } catch (const Error&) {
        return false;
    }
}

bool invoke(const resbuf* call, ResbufList& result) {
    const std::shared_ptr<LispInterpreter> lisp = currentLisp();
    if (lisp == nullptr || call == nullptr || call->restype != RTSTR || call->resval.rstring == nullptr) {
        return false;
    }
    std::vector<Value> arguments;
    try {
        arguments = valuesFrom(*lisp, call->rbnext);
    } catch (const Error&) {
        return false;
    }
    const LispEvaluation evaluation = lisp->call(call->resval.rstring, arguments);
    if (!evaluation.ok) {
        if (!evaluation.line.empty()) {
            reportFailure(evaluation.line);
        }
        return false;
    }
    try {
        result = resultOf(*lisp, evaluation.value);
    } catch (const Error&) {
        return false;
    }
    return true;
}

// The program acaddoc.lsp, from the folders for programs only, and then the function S::STARTUP.
void loadStartupProgram(AcApDocument& document) {
    const std::shared_ptr<DocumentLisp> lisp = documentLisp(document);
    if (!std::exchange(lisp->hasStarted, true) && programFile(lisp->interpreter, L"acaddoc.lsp")) {
        runLispLine(L"(progn (load \"acaddoc.lsp\") (if S::STARTUP (S::STARTUP)) (princ))");
    }
}

} // namespace

void lisp::forEachInterpreter(const std::function<void(LispInterpreter&)>& visit) {
    for (const auto& [document, lisp] : interpreters()) {
        visit(lisp->interpreter);
    }
}

LispInterpreter& lispOf(AcApDocument& document) {
    return documentLisp(document)->interpreter;
}

void initializeLisp() {
    setStackFinder(fiberStackBottom);
    LispHook& hook = lispHook();
    hook.evaluate = evaluate;
    hook.isCommand = isCommandFunction;
    hook.runCommand = runCommandFunction;
    hook.getSymbol = getSymbol;
    hook.putSymbol = putSymbol;
    hook.invoke = invoke;
    hook.beforePrompt = loadStartupProgram;
    hook.documentClosed = [](AcApDocument& document) { interpreters().erase(&document); };
}

} // namespace host
