// Plays transcripts in real sessions of the host and compares what was shown, asked, answered and drawn.
// Usage: run_transcript FILE. With UPDATE_TRANSCRIPTS=1 in the environment the expected side is renewed.
#include "app/startup.h"
#include "drawinglines.h"
#include "tests/temporaryfolder.h"
#include "transcript.h"

#include "host/ed/ed.h"
#include "host/formats/formats.h"
#include "host/rx/text.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

/// Takes down the dialogue: what is shown through the sink, what is answered through the input.
class Recorder : public host::ConsoleSink {
public:
    void write(std::wstring_view text) override { mLine += host::toUtf8(text); }
    void diagnostic(std::wstring_view) override {}

    void answer(std::wstring_view text) {
        endLine();
        std::string answer = host::toUtf8(text);
        for (const std::string& line : answer.empty() ? std::vector<std::string>(1) : linesOf(answer)) {
            mDialogue += line.empty() ? ">\n" : "> " + line + "\n";
        }
    }
    void endLine() {
        for (const std::string& line : linesOf(mLine)) {
            const bool marked =
                !line.empty() && std::string_view(">=;@\\").find(line[0]) != std::string_view::npos;
            mDialogue += (marked ? "\\" : "") + line + "\n";
        }
        mLine.clear();
    }
    const std::string& dialogue() const { return mDialogue; }

private:
    std::string mLine;
    std::string mDialogue;
};

/// The answers of a transcript, in the order in which they are really read.
class RecordedInput : public host::TypedInput {
public:
    RecordedInput(std::istream& script, Recorder& recorder) : TypedInput(script), mRecorder(recorder) {}

    host::InputItem read(const host::InputRequest& request) override {
        using Kind = host::InputItem::Kind;
        host::InputItem item = TypedInput::read(request);
        if (item.kind == Kind::end && !request.atCommandPrompt) {
            mUnanswered = true;
        } else if (item.kind == Kind::cancel) {
            mRecorder.answer(L"^C");
        } else if (item.kind == Kind::text || item.kind == Kind::lisp) {
            mRecorder.answer(item.text);
        }
        return item;
    }
    std::optional<std::wstring> takeDialogLine() override {
        std::optional<std::wstring> line = TypedInput::takeDialogLine();
        if (line) {
            mRecorder.answer(*line);
        }
        return line;
    }
    /// The recorder shows the answers, as a terminal does.
    bool echoesItself() const override { return true; }
    /// A question was asked when no answer was left.
    bool wasUnanswered() const { return mUnanswered; }

private:
    Recorder& mRecorder;
    bool mUnanswered = false;
};

struct Played {
    std::string dialogue;
    std::string changes;
    std::vector<std::string> faults;
};

std::vector<std::string> currentDrawing() {
    const AcApDocument* document = curDoc();
    return document ? drawingLines(host::dumpDrawing(*document->database())) : std::vector<std::string>();
}

Played play(const Transcript& transcript) {
    Played played;
    Recorder recorder;
    std::istringstream script(transcript.script());
    RecordedInput input(script, recorder);
    host::Session session;
    const bool opened = transcript.drawing.empty()
                            ? session.newDrawing() != nullptr
                            : session.openDrawing(fs::path(QDV_SOURCE_DIR) / transcript.drawing) != nullptr;
    if (!opened) {
        played.faults.push_back("the drawing could not be opened: " + transcript.drawing);
    }
    const std::vector<std::string> modules =
        transcript.modules.empty() ? std::vector<std::string>{"QDVCommonTools.arx"} : transcript.modules;
    for (const std::string& module : modules) {
        if (module != "none" && !host::loadModule(app::programFolder() / module)) {
            played.faults.push_back("the module could not be loaded: " + module);
        }
    }
    if (!played.faults.empty()) {
        return played;
    }
    const std::vector<std::string> before = currentDrawing();
    host::console().setSink(&recorder);
    session.run(input);
    host::console().setSink(nullptr);
    recorder.endLine();
    if (input.wasUnanswered()) {
        played.faults.push_back("a question found no answer");
    }
    if (!input.atEnd()) {
        played.faults.push_back("answers were left over");
    }
    played.dialogue = recorder.dialogue();
    played.changes = changesBetween(before, currentDrawing());
    host::unloadAllModules();
    return played;
}

/// The number of faults told.
int check(const Transcript& transcript, const Played& played) {
    std::vector<std::string> faults = played.faults;
    if (const std::string difference = firstDifference(transcript.dialogue, played.dialogue);
        !difference.empty()) {
        faults.push_back("the dialogue differs:\n" + difference);
    }
    if (const std::string difference = firstDifference(transcript.changes, played.changes);
        !difference.empty()) {
        faults.push_back("the drawing differs:\n" + difference);
    }
    for (const std::string& fault : faults) {
        std::cerr << fault << '\n';
    }
    return static_cast<int>(faults.size());
}

int run(const fs::path& file) {
    const TemporaryFolder settings;
    app::initializeHost(settings.path());
    Transcript transcript = readTranscript(file);
    const Played played = play(transcript);
    const char* update = std::getenv("UPDATE_TRANSCRIPTS");
    if (update && *update == '1') {
        transcript.dialogue = played.dialogue;
        transcript.changes = played.changes;
        std::ofstream(file, std::ios::binary) << transcript.text();
    }
    return check(transcript, played) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: run_transcript FILE\n";
        return 2;
    }
    try {
        return run(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
