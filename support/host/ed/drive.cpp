// Driving commands with a sequence of answers.
#include "host/ed/drive.h"

#include "host/ed/acdocman.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/sysvars.h"

#include <algorithm>

namespace host {
namespace {

constexpr int deepestDrive = 60;
int driveDepth = 0;

bool commandsAreSilent() {
    return systemVariableInteger(L"CMDECHO") == 0 || systemVariableInteger(L"NOMUTT") != 0;
}

} // namespace

RunContext& runContext() {
    static RunContext context;
    return context;
}

std::deque<InputItem> answersOf(const resbuf* list) {
    std::deque<InputItem> answers;
    for (const resbuf* at = list; at != nullptr && at->restype != RTNONE && at->restype != 0;
         at = at->rbnext) {
        if (at->restype == RTSTR) {
            answers.push_back(InputItem::ofText(at->resval.rstring != nullptr ? at->resval.rstring : L""));
            continue;
        }
        if (at->restype == RTNIL || at->restype == RTVOID) {
            answers.push_back(InputItem::of(InputItem::Kind::cancel));
            continue;
        }
        ResbufBuilder builder;
        builder.take(copyResbuf(*at).release());
        int depth = at->restype == RTLB ? 1 : 0;
        while (depth > 0 && at->rbnext != nullptr) {
            at = at->rbnext;
            depth += at->restype == RTLB ? 1 : at->restype == RTLE || at->restype == RTDOTE ? -1 : 0;
            builder.take(copyResbuf(*at).release());
        }
        answers.push_back(InputItem::ofValue(builder.release()));
    }
    return answers;
}

Drive::Drive() : mFiber([this] { run(); }) {
    mContext.drive = this;
    mContext.module = currentModule();
}

void Drive::resume(bool muted) {
    const std::shared_ptr<Drive> keep = shared_from_this();
    const RunContext outer = runContext();
    const int outerMute = console().muteDepth();
    ++driveDepth;
    {
        const CurrentModuleScope module(mContext.module);
        runContext() = mContext;
        console().setMuteDepth(muted ? outerMute + 1 : outerMute);
        mFiber.resume();
        mContext = runContext();
        mContext.module = currentModule();
    }
    --driveDepth;
    runContext() = outer;
    console().setMuteDepth(outerMute);
}

void Drive::runTyped(const std::wstring& name) {
    mTyped = name;
    mUsers = true;
    resume(false);
}

void Drive::feed(const resbuf* answers) {
    if (driveDepth >= deepestDrive) {
        reportFailure(L"命令嵌套过深");
        mStatus = RTERROR;
        return;
    }
    for (InputItem& item : answersOf(answers)) {
        mAnswers.push_back(std::move(item));
    }
    mUsers = false;
    resume(commandsAreSilent());
}

void Drive::answer(InputItem item) {
    mAnswers.push_back(std::move(item));
    mUsers = true;
    resume(false);
}

void Drive::cancel() {
    mCancelling = true;
    mAnswers.clear();
    resume(commandsAreSilent());
}

InputItem Drive::takeAnswer() {
    InputItem item = std::move(mAnswers.front());
    mAnswers.pop_front();
    return item;
}

void Drive::wait(std::wstring_view prompt, const InputRequest& request) {
    mQuestion = {std::wstring(prompt), request};
    ++mQuestionNumber;
    while (mAnswers.empty() && !mCancelling) {
        AcApDocument* document = curDoc();
        if (document == nullptr) {
            mCancelling = true; // nobody could answer any more
            return;
        }
        document->state().waiting.push_back(shared_from_this());
        mFiber.suspend();
    }
}

/// The fiber's body.
void Drive::run() {
    if (!mTyped.empty()) {
        runCommand(mTyped);
    } else {
        runFed();
    }
    mAnswers.clear();
}

/// One command after the other, until the answers end between two.
void Drive::runFed() {
    while (!mAnswers.empty() && !mCancelling) {
        const InputItem item = takeAnswer();
        if (item.isCancel() || item.isEnter()) {
            continue;
        }
        if (item.kind != InputItem::Kind::text) {
            reportFailure(L"应为命令名，而不是: " + (item.value != nullptr ? inputText(*item.value) : L""));
            mStatus = RTERROR;
            return;
        }
        console().write(L"\n命令: ");
        console().echo(item.text);
        const CommandResult result = runCommand(item.text);
        if (result != CommandResult::done) {
            mStatus = result == CommandResult::cancelled ? RTCAN : RTERROR;
            return;
        }
    }
}

std::shared_ptr<Drive> waitingDrive() {
    const AcApDocument* document = curDoc();
    return document != nullptr && !document->state().waiting.empty() ? document->state().waiting.back()
                                                                     : nullptr;
}

int driveCommands(const resbuf* list) {
    AcApDocument* document = curDoc();
    if (document == nullptr) {
        return RTERROR;
    }
    std::vector<std::shared_ptr<Drive>>& waiting = document->state().waiting;
    const bool isEmpty = list == nullptr || list->restype == RTNONE || list->restype == 0;
    std::shared_ptr<Drive> drive;
    if (!waiting.empty()) {
        drive = waiting.back();
        waiting.pop_back();
    }
    if (isEmpty) {
        if (drive != nullptr) {
            drive->cancel();
        }
        return RTNORM;
    }
    if (drive == nullptr) {
        drive = std::make_shared<Drive>();
    }
    drive->feed(list);
    return drive->status();
}

void startTypedCommand(const std::wstring& name) {
    std::make_shared<Drive>()->runTyped(name);
}

bool askForWaitingCommand() {
    const std::shared_ptr<Drive> drive = waitingDrive();
    if (drive == nullptr) {
        return false;
    }
    const unsigned number = drive->questionNumber();
    InputItem item = inputStream().askUser(drive->question().prompt, drive->question().request);
    if (item.kind == InputItem::Kind::lisp && !inputStream().evaluate(item)) {
        return true;
    }
    // What was evaluated may have answered or cancelled the command itself.
    if (waitingDrive() == drive && drive->questionNumber() == number) {
        curDoc()->state().waiting.pop_back();
        drive->answer(std::move(item));
    }
    return true;
}

namespace {

void cancelWhile(AcApDocument& document, bool (*condition)(const Drive&)) {
    std::vector<std::shared_ptr<Drive>>& waiting = document.state().waiting;
    while (!waiting.empty() && condition(*waiting.back())) {
        const std::shared_ptr<Drive> drive = waiting.back();
        waiting.pop_back();
        drive->cancel();
    }
}

} // namespace

void cancelWaitingCommands(AcApDocument& document) {
    cancelWhile(document, [](const Drive&) { return true; });
}

void cancelLeftCommands(AcApDocument& document) {
    cancelWhile(document, [](const Drive& drive) { return !drive.isUsers(); });
}

} // namespace host
