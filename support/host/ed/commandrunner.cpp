// Finding and running commands.
#include "host/ed/commandrunner.h"

#include "host/ed/acdocman.h"
#include "host/ed/acedreactor.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/input.h"
#include "host/ed/lisphook.h"
#include "host/ed/runcontext.h"
#include "host/ed/sysvars.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {

std::wstring commandOfAlias(std::wstring_view alias);

namespace {

/// A name as typed, without the characters in front that say how it is meant.
struct TypedName {
    std::wstring name;
    bool global = false;
    bool hostsOwn = false;
    bool transparent = false;

    explicit TypedName(std::wstring_view typed) {
        typed = trim(typed);
        for (; typed.size() > 1; typed.remove_prefix(1)) {
            const wchar_t c = typed.front();
            if (c == L'\'') {
                transparent = true;
            } else if (c == L'_') {
                global = true;
            } else if (c == L'.') {
                hostsOwn = true;
            } else {
                break;
            }
        }
        name = typed;
    }
};

bool isUndefined(const AcEdCommand& command) {
    return (command.commandFlags() & ACRX_CMD_UNDEFINED) != 0;
}

AcEdCommand* onStack(const std::wstring& name, const TypedName& typed) {
    AcEdCommandStack& stack = *acedCommandStack();
    const auto usable = [&](AcEdCommand* command) {
        return command != nullptr && (typed.hostsOwn || !isUndefined(*command)) ? command : nullptr;
    };
    if (typed.hostsOwn) {
        // The host's own, whatever a module has put above it.
        for (const bool global : {true, false}) {
            if (AcEdCommand* own = stack.lookupCmd(name.c_str(), global, false, ACED_HOST_GROUP)) {
                return own;
            }
        }
    }
    if (!typed.global) {
        if (AcEdCommand* local = usable(stack.lookupLocalCmd(name.c_str()))) {
            return local;
        }
    }
    return usable(stack.lookupGlobalCmd(name.c_str()));
}

/// Dialog commands that the host has in their command line form are found without the hyphen too.
AcEdCommand* onStackOrPlain(const std::wstring& name, const TypedName& typed) {
    AcEdCommand* found = onStack(name, typed);
    return found != nullptr || name.starts_with(L'-') ? found : onStack(L"-" + name, typed);
}

std::wstring upperCase(std::wstring_view text) {
    return toUpper(text);
}

/// Around whatever runs as a command: listed as active, exceptions caught, undo and reactors served.
class CommandBoundary {
public:
    enum class Undo { step, none, lisp };

    CommandBoundary(AcApDocument& document, ActiveCommand record, Undo undo)
        : mDocument(document), mUndo(undo),
          mRecord(document.state().active.insert(document.state().active.end(), std::move(record))) {
        mFrame.outer = runContext().frame;
        mFrame.name = mRecord->name;
        runContext().frame = &mFrame;
        mTransactions = database().transactionManager()->numActiveTransactions();
        beginUndo();
    }
    CommandFrame& frame() { return mFrame; }

    template <class Body>
    CommandResult run(Body body) {
        bool failed = false;
        try {
            body();
        } catch (const InputEnded&) {
            mFrame.cancelled = true;
        } catch (const std::exception& error) {
            failed = true;
            reportFailure(L"命令 " + mFrame.name + L" 出错: " + fromUtf8(error.what()));
        } catch (...) {
            failed = true;
            reportFailure(L"命令 " + mFrame.name + L" 出错: 未知异常");
        }
        finish();
        return failed             ? CommandResult::failed
               : mFrame.cancelled ? CommandResult::cancelled
                                  : CommandResult::done;
    }

private:
    AcDbDatabase& database() { return *mDocument.database(); }

    void beginUndo() {
        UndoSteps& steps = mDocument.state().undo;
        if (mUndo == Undo::step) {
            steps.beginCommand(database(), mFrame.name);
        } else if (mUndo == Undo::none) {
            steps.beginUnrecorded(database());
        } else {
            steps.beginLisp(database());
        }
    }

    void finish() {
        runContext().frame = mFrame.outer;
        if (!acDocManagerPtr()->isOpen(&mDocument)) {
            return; // the command closed its own document
        }
        AcDbTransactionManager& transactions = *database().transactionManager();
        if (transactions.numActiveTransactions() > mTransactions) {
            console().line(L"命令 " + mFrame.name + L" 结束时仍有未结束的事务，已放弃");
            while (transactions.numActiveTransactions() > mTransactions &&
                   transactions.abortTransaction() == Acad::eOk) {
            }
        }
        UndoSteps& steps = mDocument.state().undo;
        if (mUndo == Undo::step) {
            steps.endCommand(database());
        } else if (mUndo == Undo::none) {
            steps.endUnrecorded(database());
        } else {
            steps.endLisp(database());
        }
        mDocument.state().active.erase(mRecord);
    }

    AcApDocument& mDocument;
    Undo mUndo;
    std::list<ActiveCommand>::iterator mRecord;
    CommandFrame mFrame;
    int mTransactions = 0;
};

/// A line why the command may not run now; empty when it may.
std::wstring refusal(const AcEdCommand& command, const AcApDocument& document, bool transparently) {
    const Adesk::Int32 flags = command.commandFlags();
    const AcDbDatabase& database = *document.database();
    const bool paper = database.currentSpaceId() != database.modelSpaceId();
    if (transparently && (flags & ACRX_CMD_TRANSPARENT) == 0) {
        return std::wstring(L"** 命令 ") + command.localName() + L" 不能透明使用 **";
    }
    if ((flags & ACRX_CMD_NOPAPERSPACE) != 0 && paper) {
        return std::wstring(L"** 命令 ") + command.localName() + L" 不能在图纸空间中使用 **";
    }
    if ((flags & ACRX_CMD_NOTILEMODE) != 0 && database.tilemode()) {
        return std::wstring(L"** 命令 ") + command.localName() + L" 不能在模型选项卡中使用 **";
    }
    return {};
}

void clearPickFirst(AcApDocument& document) {
    if (!document.state().implied.empty()) {
        document.state().implied.clear();
        acedEditor->notify([](AcEditorReactor& reactor) { reactor.pickfirstModified(); });
    }
}

void tellEnd(CommandResult result, const std::wstring& name) {
    acedEditor->notify([&](AcEditorReactor& reactor) {
        switch (result) {
        case CommandResult::done:
            reactor.commandEnded(name.c_str());
            break;
        case CommandResult::cancelled:
            reactor.commandCancelled(name.c_str());
            break;
        default:
            reactor.commandFailed(name.c_str());
        }
    });
}

/// A function C:name of LISP or of a module.
CommandResult runLispCommand(AcApDocument& document, const std::wstring& name,
                             const ExternalFunction* external) {
    const std::wstring shown = L"(C:" + upperCase(name) + L")";
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.lispWillStart(shown.c_str()); });
    CommandBoundary boundary(document, {upperCase(name), false, false, true}, CommandBoundary::Undo::lisp);
    boundary.frame().usesPickSet = true;
    bool failed = false;
    const CommandResult result = boundary.run([&] {
        if (external != nullptr) {
            ResbufList value;
            failed = !invokeExternal(ExternalFunction(*external), nullptr, value);
            return;
        }
        const LispOutcome outcome = lispHook().runCommand(name);
        boundary.frame().cancelled = outcome.status == LispOutcome::Status::cancelled;
        if (outcome.status == LispOutcome::Status::error) {
            failed = true;
            reportFailure(outcome.error);
        } else if (!outcome.printed.empty() && outcome.value != nullptr) {
            console().write(L"\n" + outcome.printed);
        }
    });
    acedEditor->notify([&](AcEditorReactor& reactor) {
        result == CommandResult::cancelled ? reactor.lispCancelled() : reactor.lispEnded();
    });
    return failed && result == CommandResult::done ? CommandResult::failed : result;
}

/// The variable that a typed name means; empty when it is none.
std::wstring variableOf(const TypedName& typed) {
    const std::optional<VariableInfo> info =
        variableCommand() && !typed.name.empty() ? systemVariableInfo(typed.name) : std::nullopt;
    return info ? info->name : std::wstring();
}

/// A variable's name typed as a command: SETVAR for it.
CommandResult runVariable(AcApDocument& document, const std::wstring& name, bool transparently) {
    CommandBoundary boundary(document, {L"SETVAR", transparently, false, false}, CommandBoundary::Undo::step);
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.commandWillStart(L"SETVAR"); });
    const CommandResult result = boundary.run([&] { variableCommand()(name); });
    tellEnd(result, L"SETVAR");
    return result;
}

/// The module's function, or null with `inLisp` set when LISP has the command.
const ExternalFunction* lispCommand(const std::wstring& name, bool& inLisp) {
    const ExternalFunction* external = findExternalFunction(L"c:" + name);
    inLisp = external == nullptr && lispHook().isCommand && lispHook().isCommand(name);
    return external;
}

} // namespace

AcEdCommand* findCommand(std::wstring_view typedName) {
    const TypedName typed(typedName);
    if (typed.name.empty()) {
        return nullptr;
    }
    if (AcEdCommand* command = onStackOrPlain(typed.name, typed)) {
        return command;
    }
    const std::wstring target = commandOfAlias(typed.name);
    return target.empty() ? nullptr : onStackOrPlain(target, typed);
}

bool isCommandName(std::wstring_view typedName) {
    bool inLisp = false;
    const TypedName typed(typedName);
    return findCommand(typedName) != nullptr || lispCommand(typed.name, inLisp) != nullptr || inLisp ||
           !variableOf(typed).empty();
}

bool isVariableCommand(std::wstring_view typedName) {
    return findCommand(typedName) == nullptr && !variableOf(TypedName(typedName)).empty();
}

std::function<void(const std::wstring& name)>& variableCommand() {
    static std::function<void(const std::wstring&)> function;
    return function;
}

CommandResult runCommand(AcEdCommand& command, bool transparently) {
    AcApDocument* document = curDoc();
    if (document == nullptr) {
        return CommandResult::refused;
    }
    if (const std::wstring line = refusal(command, *document, transparently); !line.empty()) {
        console().line(line);
        return CommandResult::refused;
    }
    const Adesk::Int32 flags = command.commandFlags();
    const bool usesPickSet = (flags & ACRX_CMD_USEPICKSET) != 0;
    const std::wstring name = upperCase(command.globalName());
    // The command's module may be unloaded by the command itself.
    const AcRxFunctionPtr function = command.functionAddr();
    LoadedModule* module = command.module();
    if (!usesPickSet && !transparently) {
        clearPickFirst(*document);
    }
    const bool marksUndo = (flags & ACRX_CMD_NO_UNDO_MARKER) == 0;
    CommandBoundary boundary(*document, {name, transparently, module != nullptr, false},
                             marksUndo ? CommandBoundary::Undo::step : CommandBoundary::Undo::none);
    boundary.frame().usesPickSet = usesPickSet;
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.commandWillStart(name.c_str()); });
    const CommandResult result = boundary.run([&] {
        const CurrentModuleScope scope(module);
        function();
    });
    if (usesPickSet && (flags & ACRX_CMD_REDRAW) == 0 && acDocManagerPtr()->isOpen(document)) {
        clearPickFirst(*document);
    }
    tellEnd(result, name);
    return result;
}

CommandResult runCommand(std::wstring_view typedName) {
    const TypedName typed(typedName);
    AcApDocument* document = curDoc();
    if (document == nullptr || typed.name.empty()) {
        return CommandResult::refused;
    }
    if (AcEdCommand* command = onStack(typed.name, typed)) {
        return runCommand(*command, typed.transparent);
    }
    if (!typed.hostsOwn) {
        bool inLisp = false;
        const ExternalFunction* external = lispCommand(typed.name, inLisp);
        if (external != nullptr || inLisp) {
            return runLispCommand(*document, typed.name, external);
        }
    }
    if (AcEdCommand* command = findCommand(typedName)) {
        return runCommand(*command, typed.transparent);
    }
    if (const std::wstring variable = variableOf(typed); !variable.empty()) {
        return runVariable(*document, variable, typed.transparent);
    }
    const std::wstring shown = upperCase(typed.name);
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.unknownCommand(shown.c_str()); });
    reportFailure(L"未知命令\"" + shown + L"\"。按 F1 查看帮助。");
    return CommandResult::unknown;
}

bool runLispLine(const std::wstring& expression) {
    AcApDocument* document = curDoc();
    if (!lispHook().evaluate || document == nullptr) {
        reportFailure(L"没有可用的 LISP 解释器: " + expression);
        return false;
    }
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.lispWillStart(expression.c_str()); });
    LispOutcome outcome;
    {
        const LispUndoScope scope(document);
        outcome = lispHook().evaluate(expression);
    }
    const bool cancelled = outcome.status == LispOutcome::Status::cancelled;
    acedEditor->notify(
        [&](AcEditorReactor& reactor) { cancelled ? reactor.lispCancelled() : reactor.lispEnded(); });
    if (outcome.status == LispOutcome::Status::error) {
        reportFailure(outcome.error);
        return false;
    }
    if (!cancelled && outcome.value != nullptr) {
        console().write(L"\n" + outcome.printed);
    }
    return true;
}

std::wstring activeCommandNames(const AcApDocument& document) {
    std::wstring names;
    for (const ActiveCommand& command : document.state().active) {
        if (!command.lisp) {
            names += (names.empty() ? L"" : L"'") + command.name;
        }
    }
    return names;
}

int activeCommandBits(const AcApDocument& document) {
    const DocumentState& state = document.state();
    int bits = (state.scriptDepth > 0 ? 4 : 0) | (state.dialogDepth > 0 ? 8 : 0);
    for (const ActiveCommand& command : state.active) {
        if (!command.lisp) {
            bits |= 1 | (command.transparent ? 2 : 0) | (command.fromModule ? 64 : 0);
        }
    }
    return bits;
}

void noteCancelled() {
    if (runContext().frame != nullptr) {
        runContext().frame->cancelled = true;
    }
}

ActiveBitScope::ActiveBitScope(AcApDocument* document, int bit) : mDocument(document), mBit(bit) {
    if (mDocument != nullptr) {
        ++(mBit == 4 ? mDocument->state().scriptDepth : mDocument->state().dialogDepth);
    }
}

ActiveBitScope::~ActiveBitScope() {
    if (mDocument != nullptr && acDocManagerPtr()->isOpen(mDocument)) {
        --(mBit == 4 ? mDocument->state().scriptDepth : mDocument->state().dialogDepth);
    }
}

LispUndoScope::LispUndoScope(AcApDocument* document) : mDocument(document) {
    if (mDocument != nullptr) {
        mDocument->state().undo.beginLisp(*mDocument->database());
    }
}

LispUndoScope::~LispUndoScope() {
    if (mDocument != nullptr && acDocManagerPtr()->isOpen(mDocument)) {
        mDocument->state().undo.endLisp(*mDocument->database());
    }
}

} // namespace host
