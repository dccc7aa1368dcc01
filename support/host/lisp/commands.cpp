// Commands of the host driven by programs.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"

namespace host::lisp {

namespace {

// Feeds answers to the command line's stream; nil is Escape, as is a call without arguments. When the user
// cancels a command that waits for him, the program ends too.
int drive(Arguments arguments) {
    ResbufBuilder builder;
    bool asksUser = false;
    for (const Value& argument : arguments) {
        asksUser = asksUser || (argument.isText() && argument.text() == PAUSE);
        appendValue(builder, argument, PointRule::numbers);
    }
    const int status = driveCommands(builder.release().get());
    if (status == RTCAN && asksUser) {
        cancelled();
    }
    return status;
}

Value command(LispInterpreter&, Arguments arguments) {
    drive(arguments);
    return {};
}

Value tryCommand(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(drive(arguments) == RTNORM);
}

// The whole command in one call; it ends with its arguments.
Value wholeCommand(LispInterpreter&, Arguments arguments) {
    ResbufBuilder builder;
    for (const Value& argument : arguments) {
        if (argument.isNil()) {
            throw Error(L"command-s 的参数无效: nil");
        }
        appendValue(builder, argument, PointRule::numbers);
    }
    const ResbufList list = builder.release();
    const int status = list != nullptr ? acedCmdS(list.get()) : RTNORM;
    if (status == RTCAN) {
        cancelled();
    }
    if (status != RTNORM) {
        throw Error(L"命令没有完成");
    }
    return {};
}

Value nothing(LispInterpreter&, Arguments) {
    return {};
}

constexpr FunctionRow rows[] = {
    {L"COMMAND", command, 0, any},
    {L"VL-CMDF", tryCommand, 0, any},
    {L"COMMAND-S", wholeCommand, 0, any},
    // How *error* may use commands; both ways work here.
    {L"*PUSH-ERROR-USING-COMMAND*", nothing, 0, 0},
    {L"*PUSH-ERROR-USING-STACK*", nothing, 0, 0},
    {L"*POP-ERROR-MODE*", nothing, 0, 0},
};

} // namespace

void addCommandFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
    lisp.setValue(L"PAUSE", makeText(PAUSE));
}

} // namespace host::lisp
