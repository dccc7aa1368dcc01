// SCRIPT, RSCRIPT, RESUME and DELAY: answers from a file; MULTIPLE: a command over and over.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/ed/acdocman.h"
#include "host/ed/codefolders.h"
#include "host/ed/console.h"
#include "host/ed/desktop.h"
#include "host/ed/documentstate.h"
#include "host/ed/drive.h"
#include "host/win/win.h"

#include <fstream>

namespace host {
namespace {

/// Stands before the user and answers in his place until its file ends, or he hits Escape.
class ScriptPlayer final : public UserInput {
public:
    /// False when the file can't be read.
    bool play(const std::filesystem::path& file) {
        auto stream = std::make_unique<std::ifstream>(file, std::ios::binary);
        if (!*stream) {
            return false;
        }
        mScript.reset();
        mStream = std::move(stream);
        mScript.emplace(*mStream);
        mFile = file;
        mIsResting = false;
        takePlace();
        return true;
    }
    bool playAgain() { return !mFile.empty() && play(mFile); }
    bool hasFile() const { return !mFile.empty(); }
    bool isPlaying() const { return mScript && !mIsResting; }
    /// The rest waits for RESUME.
    void rest() {
        mIsResting = mScript.has_value();
        giveBack();
    }
    bool resume() {
        if (!mScript || !mIsResting) {
            return false;
        }
        mIsResting = false;
        takePlace();
        return true;
    }

    // UserInput.
    InputItem read(const InputRequest& request) override {
        mIsLastFromFile = false;
        if (isPlaying() && mUser != nullptr && mUser->worksDialogs() && mUser->atEnd()) {
            finish(); // the window was closed
        }
        if (isPlaying()) {
            if (!desktop().wait(std::chrono::milliseconds(0))) {
                rest();
                return InputItem::of(InputItem::Kind::cancel);
            }
            InputItem item = mScript->read(request);
            if (item.kind != InputItem::Kind::end) {
                mIsLastFromFile = true;
                return item;
            }
            finish();
        }
        return mUser != nullptr ? mUser->read(request) : InputItem::of(InputItem::Kind::end);
    }
    bool atEnd() override {
        if (isPlaying() && !mScript->atEnd()) {
            return false;
        }
        return mUser == nullptr || mUser->atEnd();
    }
    bool echoesItself() const override {
        return !mIsLastFromFile && mUser != nullptr && mUser->echoesItself();
    }
    std::wstring position() const override {
        if (isPlaying()) {
            return L"脚本 " + mFile.filename().wstring() + L" " + mScript->position();
        }
        return mUser != nullptr ? mUser->position() : std::wstring();
    }
    std::optional<std::wstring> takeDialogLine() override {
        return isPlaying()        ? mScript->takeDialogLine()
               : mUser != nullptr ? mUser->takeDialogLine()
                                  : std::nullopt;
    }
    bool worksDialogs() const override { return mUser != nullptr && mUser->worksDialogs(); }
    void close() override {
        finish();
        if (mUser != nullptr) {
            mUser->close();
        }
    }
    void post(std::wstring_view text) override {
        if (isPlaying()) {
            mScript->post(text);
        } else if (mUser != nullptr) {
            mUser->post(text);
        }
    }
    std::wstring takePosted() override { return mScript ? mScript->takePosted() : std::wstring(); }

private:
    void takePlace() {
        if (inputStream().user() == this) {
            return;
        }
        mUser = inputStream().user();
        // What the user has typed ahead comes after the script.
        mTypedAhead = mUser != nullptr ? mUser->takePosted() : std::wstring();
        inputStream().setUser(this);
        mMark.emplace(curDoc(), 4);
    }
    void giveBack() {
        if (inputStream().user() != this) {
            return;
        }
        mMark.reset();
        inputStream().setUser(mUser);
        if (mUser != nullptr) {
            mUser->post(std::exchange(mTypedAhead, {}));
        }
    }
    void finish() {
        giveBack();
        mScript.reset();
        mIsResting = false;
    }

    UserInput* mUser = nullptr;
    std::filesystem::path mFile;
    std::unique_ptr<std::ifstream> mStream;
    std::optional<TypedInput> mScript;
    std::optional<ActiveBitScope> mMark; ///< CMDACTIVE tells of the script
    std::wstring mTypedAhead;
    bool mIsResting = false;
    bool mIsLastFromFile = false;
};

ScriptPlayer& player() {
    static ScriptPlayer player;
    return player;
}

void runScript() {
    const TextAnswer answer = askText(L"\n输入脚本文件名: ", true);
    if (!answer.isValue()) {
        return;
    }
    const std::wstring name = unquoted(answer.text);
    const std::optional<std::filesystem::path> file = fileInside(name, L".scr", codeFolders(curDoc()));
    if (!file) {
        const bool exists = !findSupportFile(name).empty() || !findSupportFile(name + L".scr").empty();
        reportFailure(exists ? L"脚本 \"" + name + L"\" 不在支持文件夹和变量 TRUSTEDPATHS 所列的文件夹中"
                             : L"找不到脚本文件 \"" + name + L"\"");
    } else if (!player().play(*file)) {
        reportFailure(L"无法打开脚本文件 \"" + name + L"\"");
    }
}

void runAgain() {
    if (!player().hasFile()) {
        acutPrintf(L"\n没有可重复的脚本。");
    } else if (player().isPlaying() && !editorView().isShown()) {
        // Nobody could end what repeats itself.
        acutPrintf(L"\n没有窗口，脚本不能重复它自身。");
    } else if (!player().playAgain()) {
        reportFailure(L"无法打开脚本文件");
    }
}

void runResume() {
    if (!player().resume()) {
        acutPrintf(L"\n没有中断的脚本。");
    }
}

void runDelay() {
    constexpr int longest = 32767;
    for (;;) {
        const IntegerAnswer time = askInteger(L"\n输入延迟时间 (毫秒): ", nullptr, RSG_NONULL | RSG_NONEG);
        if (!time.isValue()) {
            return;
        }
        if (time.value > longest) {
            acutPrintf(L"\n需要 0 和 32767 之间的整数。");
            continue;
        }
        if (!desktop().wait(std::chrono::milliseconds(time.value))) {
            noteCancelled();
            player().rest();
        }
        return;
    }
}

// MULTIPLE.

/// What changes while a command asks or works.
struct Traces {
    std::wstring prompt = inputStream().lastPrompt();
    Adesk::UInt64 changes = currentDatabase().undoLog().changeCount();
    unsigned questions = runContext().drive != nullptr ? runContext().drive->questionNumber() : 0;
    bool operator==(const Traces&) const = default;
};

void runMultiple() {
    std::wstring name;
    for (;;) {
        const TextAnswer answer = askText(L"\n输入要重复的命令名: ");
        if (!answer.isValue()) {
            return;
        }
        const AcEdCommand* command = findCommand(answer.text);
        if (command != nullptr && findCommand(L"MULTIPLE") != command) {
            name = answer.text;
            break;
        }
        acutPrintf(L"\n\"%s\" 不是可以重复的命令。", answer.text.c_str());
    }
    for (;;) {
        const AcApDocument* document = curDoc();
        const Traces before;
        if (runCommand(name) != CommandResult::done || curDoc() != document || document == nullptr ||
            Traces() == before) {
            return; // a command that asks nothing would go on for ever
        }
    }
}

constexpr Adesk::Int32 flags = ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {{L"SCRIPT", L"脚本", flags, runScript},
                               {L"RSCRIPT", L"重复脚本", flags, runAgain},
                               {L"RESUME", L"继续脚本", flags, runResume},
                               {L"DELAY", L"延迟", flags, runDelay},
                               {L"MULTIPLE", L"重复命令", flags, runMultiple}};

} // namespace

std::span<const CommandRow> scriptCommands() {
    return rows;
}

} // namespace host
