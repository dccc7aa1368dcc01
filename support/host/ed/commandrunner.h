// Running commands: by name from the command line and as a sequence of answers from acedCommandS and LISP.
// What every command needs around it is here: undo step, exceptions, CMDNAMES, flags, reactors, module.
#pragma once

#include "host/ed/accmd.h"

#include <functional>
#include <string>
#include <string_view>

class AcApDocument;

namespace host {

enum class CommandResult { done, cancelled, failed, unknown, refused };

/// Runs a command by its name as typed: `_` asks for the global name, `.` for the host's own command, `'` for
/// a transparent one. Commands of the stack come first, then functions C:name of modules and of LISP, then
/// aliases. Unknown names and refusals are told.
CommandResult runCommand(std::wstring_view typedName);
/// Runs a command found before.
CommandResult runCommand(AcEdCommand& command, bool transparently = false);

/// Asks for the new value of the system variable whose name was typed as a command; hung in by SETVAR.
std::function<void(const std::wstring& name)>& variableCommand();

/// A typed name is that of a variable, and no command's.
bool isVariableCommand(std::wstring_view typedName);

/// The command a typed name means; null when there is none on the stack.
AcEdCommand* findCommand(std::wstring_view typedName);
/// True for anything runCommand would find.
bool isCommandName(std::wstring_view typedName);

/// Feeds answers to commands: the first names a command (or answers the one left over from the call before),
/// then come its answers, then perhaps another command. RTSTR texts are whole answers ("" is Enter, "\\"
/// takes an answer from the user). When the list ends and the command still asks, it stays waiting and goes
/// on with the next call, or with what the user types. An empty list cancels it. RTNORM, RTERROR (unknown
/// command) or RTCAN.
int driveCommands(const resbuf* list);

/// Runs a command as the user typed it. While it asks, the call returns and it waits for the user's answers.
void startTypedCommand(const std::wstring& name);
/// Puts the question of the innermost waiting command of the current document to the user and gives it the
/// answer. LISP that he types may drive the command instead. False when none waits.
bool askForWaitingCommand();
/// Cancels every waiting command of the document.
void cancelWaitingCommands(AcApDocument& document);
/// Cancels what programs have left waiting, up to a command that the user runs.
void cancelLeftCommands(AcApDocument& document);

/// Names of the running commands, outermost first, joined by apostrophes, and their kind, as CMDNAMES and
/// CMDACTIVE tell.
std::wstring activeCommandNames(const AcApDocument& document);
int activeCommandBits(const AcApDocument& document);
/// Marks the running command as cancelled by the user.
void noteCancelled();
/// While in scope the dialogue belongs to a script or a dialog (bits 4 and 8 of CMDACTIVE).
class ActiveBitScope {
public:
    ActiveBitScope(AcApDocument* document, int bit);
    ~ActiveBitScope();
    ActiveBitScope(const ActiveBitScope&) = delete;
    ActiveBitScope& operator=(const ActiveBitScope&) = delete;

private:
    AcApDocument* mDocument;
    int mBit;
};

/// Around LISP that runs from the command line: what it changes itself is one undo step, each command it
/// drives another.
class LispUndoScope {
public:
    explicit LispUndoScope(AcApDocument* document);
    ~LispUndoScope();
    LispUndoScope(const LispUndoScope&) = delete;
    LispUndoScope& operator=(const LispUndoScope&) = delete;

private:
    AcApDocument* mDocument;
};

/// Evaluates typed LISP at the command prompt with its undo step, shows value or error. False on an error.
bool runLispLine(const std::wstring& expression);

/// Other names of commands, in any case; a later one replaces an earlier.
void setCommandAlias(std::wstring_view alias, std::wstring_view command);

} // namespace host
