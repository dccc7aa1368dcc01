// U, UNDO and REDO over the drawing's undo log.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/ed/acdocman.h"
#include "host/ed/documentstate.h"

namespace host {
namespace {

void tellNames(const std::vector<std::wstring>& names) {
    std::wstring line;
    for (const std::wstring& name : names) {
        line += (line.empty() ? L"\n" : L" ") + name;
    }
    if (!line.empty()) {
        acutPrintf(L"%s", line.c_str());
    }
}

/// A command that is still running can't have its work taken from under it.
bool isRefused() {
    if (!currentDatabase().undoLog().inCommand()) {
        return false;
    }
    acutPrintf(L"\n** 命令执行期间不能放弃或重做 **");
    return true;
}

void undoSteps(int steps) {
    if (isRefused()) {
        return;
    }
    std::vector<std::wstring> names;
    const int done = currentDatabase().undoLog().undo(steps, &names);
    tellNames(names);
    if (done < steps) {
        acutPrintf(L"\n已放弃所有操作");
    }
}

void runU() {
    undoSteps(1);
}

void runRedo() {
    if (isRefused()) {
        return;
    }
    std::vector<std::wstring> names;
    if (currentDatabase().undoLog().redoLastUndo(&names) == 0) {
        acutPrintf(L"\n没有操作可重做");
    }
    tellNames(names);
}

void control() {
    UndoLog& log = currentDatabase().undoLog();
    const Answer answer = askKeyword(L"\n输入放弃控制选项 [全部(A)/无(N)/一个(O)/合并(C)/图层(L)] <全部>: ",
                                     L"All None One Combine Layer");
    if (answer.isKeyword(L"None")) {
        log.setRecording(false);
    } else if (answer.isKeyword(L"All") || answer.isNone() || answer.isKeyword(L"One")) {
        log.setRecording(true);
    }
}

void back() {
    std::vector<std::wstring> names;
    UndoLog& log = currentDatabase().undoLog();
    if (isRefused()) {
        return;
    }
    if (!log.hasMark()) {
        const Answer answer = askKeyword(L"\n这将放弃所有操作。确定? [是(Y)/否(N)] <Y>: ", L"Yes No");
        if (answer.isCancelled() || answer.isKeyword(L"No")) {
            return;
        }
    }
    const bool marked = log.undoBack(&names);
    tellNames(names);
    acutPrintf(marked ? L"\n遇到标记" : L"\n已放弃所有操作");
}

void runUndo() {
    UndoLog& log = currentDatabase().undoLog();
    if (!log.isRecording()) {
        control();
        return;
    }
    const IntegerAnswer answer =
        askInteger(L"\n输入要放弃的操作数目或 [自动(A)/控制(C)/开始(BE)/结束(E)/标记(M)/后退(B)] <1>: ",
                   L"Auto Control BEgin End Mark Back Group", 6);
    if (answer.isValue()) {
        undoSteps(answer.value);
    } else if (answer.isNone()) {
        undoSteps(1);
    } else if (answer.isKeyword(L"BEgin") || answer.isKeyword(L"Group")) {
        curDoc()->state().undo.beginGroup(currentDatabase());
    } else if (answer.isKeyword(L"End")) {
        log.endGroup();
    } else if (answer.isKeyword(L"Mark")) {
        log.setMark();
    } else if (answer.isKeyword(L"Back")) {
        back();
    } else if (answer.isKeyword(L"Control")) {
        control();
    } else if (answer.isKeyword(L"Auto")) {
        askKeyword(L"\n输入自动放弃模式 [开(ON)/关(OFF)] <开>: ", L"ON OFF");
    }
}

constexpr Adesk::Int32 flags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {
    {L"U", L"U", flags, runU}, {L"UNDO", L"放弃", flags, runUndo}, {L"REDO", L"重做", flags, runRedo}};

} // namespace

std::span<const CommandRow> undoCommands() {
    return rows;
}

} // namespace host
