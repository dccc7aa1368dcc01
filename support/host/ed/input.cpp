// The input stream: whose turn it is to answer, and what an answer goes through before it is given out.
#include "host/ed/input.h"

#include "host/db/db.h"
#include "host/ed/acdocman.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/drive.h"
#include "host/ed/lisphook.h"
#include "host/ed/selection.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host {
namespace {

constexpr int mostEnds = 100;
constexpr std::wstring_view cancelEcho = L"*取消*";

/// Speaks aloud for the scope: the user must see what he is asked.
class Unmute {
public:
    Unmute() : mDepth(console().muteDepth()) { console().setMuteDepth(0); }
    ~Unmute() { console().setMuteDepth(mDepth); }
    Unmute(const Unmute&) = delete;
    Unmute& operator=(const Unmute&) = delete;

private:
    int mDepth;
};

std::wstring realText(double value) {
    char buffer[40];
    return fromUtf8(formatReal(value, buffer));
}

std::wstring entityText(const ads_name name) {
    AcDbObjectId id;
    return acdbGetObjectId(id, name) == Acad::eOk ? L"<图元名: " + id.handle().toString() + L">" : L"nil";
}

/// Answers and expressions as the dialogue shows them behind their prompt.
std::wstring echoText(const InputItem& item) {
    switch (item.kind) {
    case InputItem::Kind::text:
    case InputItem::Kind::lisp:
        return item.text;
    case InputItem::Kind::value:
        return item.value != nullptr && !item.fromCursor ? inputText(*item.value) : std::wstring();
    case InputItem::Kind::cancel:
    case InputItem::Kind::end:
        return std::wstring(cancelEcho);
    case InputItem::Kind::motion:
        break;
    }
    return {};
}

/// A single text counts as typed.
void unwrapText(InputItem& item) {
    if (item.kind == InputItem::Kind::value && item.value != nullptr && item.value->restype == RTSTR &&
        item.value->rbnext == nullptr) {
        const ACHAR* text = item.value->resval.rstring;
        item = InputItem::ofText(text != nullptr ? text : L"");
    }
}

bool isPause(const InputItem& item) {
    return item.kind == InputItem::Kind::text && item.text == L"\\";
}

} // namespace

DialogHook& dialogHook() {
    static DialogHook hook;
    return hook;
}

InputStream& inputStream() {
    static InputStream stream;
    return stream;
}

std::wstring inputText(const resbuf& value) {
    switch (value.restype) {
    case RTSTR:
        return value.resval.rstring != nullptr ? value.resval.rstring : L"";
    case RTREAL:
    case RTANG:
    case RTORINT:
        return realText(value.resval.rreal);
    case RTSHORT:
        return formatted(L"%d", value.resval.rint);
    case RTLONG:
        return formatted(L"%d", value.resval.rlong);
    case RTPOINT:
    case RT3DPOINT: {
        const double* p = value.resval.rpoint;
        const std::wstring flat = realText(p[0]) + L"," + realText(p[1]);
        return value.restype == RTPOINT ? flat : flat + L"," + realText(p[2]);
    }
    case RTENAME:
        return entityText(value.resval.rlname);
    case RTPICKS: {
        const PickSet* set = pickSetOf(value.resval.rlname);
        return set != nullptr ? formatted(L"<选择集: %zu 个对象>", set->size()) : L"nil";
    }
    case RTLB:
        return value.rbnext != nullptr ? inputText(*value.rbnext) : L"";
    case RTT:
        return L"T";
    case RTNIL:
        return L"nil";
    default:
        return {};
    }
}

void InputStream::setUser(UserInput* user) {
    if (mUser != nullptr && mUser != user) {
        mNobody.post(mUser->takePosted());
    }
    mUser = user;
    mEnds = 0;
    if (user != nullptr) {
        user->post(mNobody.takePosted());
    }
}

void InputStream::post(AcApDocument& document, std::wstring_view text) {
    if (&document != curDoc()) {
        document.state().postedText += text;
    } else if (mUser != nullptr) {
        mUser->post(text);
    } else {
        mNobody.post(text);
    }
}

std::optional<std::wstring> InputStream::takeDialogLine() {
    return mUser != nullptr ? mUser->takeDialogLine() : std::nullopt;
}

/// A prompt for the user and his answer, shown also where commands run silently.
InputItem InputStream::askUser(std::wstring_view prompt, const InputRequest& request) {
    const Unmute unmute;
    console().write(prompt);
    UserInput* user = mUser;
    while (dialogHook().isOpen && dialogHook().isOpen()) {
        const std::optional<std::wstring> line = takeDialogLine();
        if (!line) {
            break;
        }
        dialogHook().drive(*line);
        console().write(prompt);
    }
    InputItem item = user != nullptr ? user->read(request) : mNobody.read(request);
    if (item.kind == InputItem::Kind::motion) {
        return item;
    }
    if (user != nullptr && user->echoesItself() && !item.isCancel()) {
        console().answeredInPlace();
    } else if (item.kind != InputItem::Kind::end || !request.atCommandPrompt) {
        console().echo(echoText(item));
    }
    return item;
}

/// One prompt and what comes back, from whoever's turn it is.
InputItem InputStream::question(std::wstring_view prompt, const InputRequest& request) {
    Drive* drive = runContext().drive;
    if (drive == nullptr) {
        return askUser(prompt, request);
    }
    if (!drive->hasAnswer() && !drive->isCancelling()) {
        drive->wait(prompt, request);
    }
    if (drive->isCancelling()) {
        return InputItem::of(InputItem::Kind::end);
    }
    InputItem item = drive->takeAnswer();
    if (drive->isUsers()) {
        return item; // asked for and shown by who reads the user
    }
    if (isPause(item)) {
        return askUser(prompt, request);
    }
    console().write(prompt);
    console().echo(echoText(item));
    return item;
}

bool InputStream::evaluate(InputItem& item) const {
    if (!lispHook().evaluate) {
        reportFailure(L"没有可用的 LISP 解释器: " + item.text);
        return false;
    }
    LispOutcome outcome = lispHook().evaluate(item.text);
    if (outcome.status == LispOutcome::Status::error) {
        reportFailure(outcome.error);
        return false;
    }
    if (outcome.status == LispOutcome::Status::cancelled) {
        item = InputItem::of(InputItem::Kind::cancel);
        return true;
    }
    if (outcome.value == nullptr || outcome.value->restype == RTNIL || outcome.value->restype == RTVOID) {
        return false;
    }
    item = InputItem::ofValue(std::move(outcome.value));
    return true;
}

void InputStream::countEnds(const InputItem& item) {
    mEnds = item.kind == InputItem::Kind::end ? mEnds + 1 : 0;
    if (mEnds > mostEnds) {
        throw InputEnded();
    }
}

bool InputStream::settle(InputItem& item, const AskOptions& options) {
    if (item.kind == InputItem::Kind::lisp && !evaluate(item)) {
        return false;
    }
    unwrapText(item);
    if (item.isCancel()) {
        noteCancelled();
        return true;
    }
    if (runContext().frame != nullptr) {
        runContext().frame->cancelled = false; // a command that was answered after Escape went on
    }
    if (options.allowTransparent && options.mode == ReadMode::token && item.kind == InputItem::Kind::text &&
        item.text.size() > 1 && item.text.front() == L'\'' &&
        (findCommand(item.text) != nullptr || isVariableCommand(item.text))) {
        runCommand(item.text);
        return false;
    }
    return true;
}

InputItem InputStream::ask(std::wstring_view prompt, const AskOptions& options) {
    InputRequest request;
    static_cast<Aim&>(request) = options;
    request.mode = options.mode;
    for (;;) {
        InputItem item = question(prompt, request);
        mLastPrompt = std::wstring(trim(prompt)) + L" " + echoText(item);
        countEnds(item);
        if (settle(item, options)) {
            return item;
        }
    }
}

InputItem InputStream::readCommand(std::wstring_view prompt) {
    InputRequest request;
    request.atCommandPrompt = true;
    mEnds = 0;
    return askUser(prompt, request);
}

} // namespace host
