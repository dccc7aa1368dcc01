// The console over its sink: lines, echo and silence.
#include "host/ed/console.h"

#include "host/ed/input.h"
#include "host/rx/text.h"

#include <cstdio>

namespace host {
namespace {

class StandardSink : public ConsoleSink {
public:
    void write(std::wstring_view text) override { put(stdout, toUtf8(text)); }
    void diagnostic(std::wstring_view text) override {
        std::fflush(stdout);
        put(stderr, toUtf8(text) + "\n");
    }
    void flush() override { std::fflush(stdout); }

private:
    static void put(std::FILE* file, const std::string& bytes) {
        std::fwrite(bytes.data(), 1, bytes.size(), file);
    }
};

int failures = 0;

} // namespace

Console::Console() : mDefault(std::make_unique<StandardSink>()), mSink(mDefault.get()) {}
Console::~Console() = default;

void Console::setSink(ConsoleSink* sink) {
    mSink = sink != nullptr ? sink : mDefault.get();
    mLineEnd = LineEnd::written;
    mAtLineStart = true;
}

void Console::put(std::wstring_view text) {
    if (!text.empty()) {
        mSink->write(text);
        mAtLineStart = text.back() == L'\n';
    }
}

void Console::write(std::wstring_view text) {
    if (mMuted > 0 || text.empty()) {
        return;
    }
    if (mLineEnd == LineEnd::pending && text.front() != L'\n') {
        put(L"\n");
    } else if (mLineEnd == LineEnd::written && text.front() == L'\n') {
        text.remove_prefix(1);
    }
    mLineEnd = LineEnd::none;
    put(text);
}

void Console::echo(std::wstring_view answer) {
    if (mMuted > 0) {
        return;
    }
    put(answer);
    mLineEnd = LineEnd::pending;
}

void Console::answeredInPlace() {
    mLineEnd = LineEnd::written;
    mAtLineStart = true;
}

void Console::line(std::wstring_view text) {
    if (mLineEnd == LineEnd::pending || (mLineEnd == LineEnd::none && !mAtLineStart)) {
        put(L"\n");
    }
    put(text);
    mLineEnd = LineEnd::pending;
}

void Console::freshLine() {
    if (mMuted == 0 && mLineEnd == LineEnd::none && !mAtLineStart) {
        put(L"\n");
    }
}

void Console::diagnostic(std::wstring_view text) {
    mSink->diagnostic(text);
}

void Console::flush() {
    mSink->flush();
}

void Console::endLine() {
    if (mLineEnd == LineEnd::pending || (mLineEnd == LineEnd::none && !mAtLineStart)) {
        put(L"\n");
    }
    mLineEnd = LineEnd::written;
    mSink->flush();
}

Console& console() {
    static Console instance;
    return instance;
}

void reportFailure(std::wstring_view line) {
    ++failures;
    console().line(line);
    const UserInput* user = inputStream().user();
    if (user != nullptr && user->echoesItself()) {
        return;
    }
    const std::wstring position = inputStream().position();
    console().diagnostic(position.empty() ? std::wstring(line) : position + L": " + std::wstring(line));
}

int failureCount() {
    return failures;
}

} // namespace host
