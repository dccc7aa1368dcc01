// The dialogue of the command line. Everything shown goes through here, so that silence, echo and line ends
// are decided in one place.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace host {

/// Where the dialogue and the diagnostics go: standard output and standard error in UTF-8 by default; a
/// window or a test hangs in its own.
class ConsoleSink {
public:
    virtual ~ConsoleSink() = default;
    virtual void write(std::wstring_view text) = 0;
    virtual void diagnostic(std::wstring_view line) = 0;
    virtual void flush() {}
};

class Console {
public:
    Console();
    ~Console();

    /// Null gives back the default. The sink is not owned and must outlive its use.
    void setSink(ConsoleSink* sink);

    /// Shows text as it is; nothing while muted. After an answer the line's end is written when the next text
    /// does not bring it itself.
    void write(std::wstring_view text);
    /// The typed answer after its prompt, which ends the line.
    void echo(std::wstring_view answer);
    /// The user's terminal has shown the answer and its line end itself.
    void answeredInPlace();
    /// A whole line for the user: on a line of its own, shown even while muted.
    void line(std::wstring_view text);
    /// What follows begins on a line of its own.
    void freshLine();
    /// A line on the diagnostic output, without the newline.
    void diagnostic(std::wstring_view text);
    void flush();
    /// Ends the line and flushes: for the end of the dialogue.
    void endLine();

    bool isMuted() const { return mMuted > 0; }
    class Mute {
    public:
        explicit Mute(Console& console, bool mute = true) : mConsole(console), mMute(mute) {
            mConsole.mMuted += mMute ? 1 : 0;
        }
        ~Mute() { mConsole.mMuted -= mMute ? 1 : 0; }
        Mute(const Mute&) = delete;
        Mute& operator=(const Mute&) = delete;

    private:
        Console& mConsole;
        bool mMute;
    };
    /// Muting as a value, for what is suspended and resumed.
    int muteDepth() const { return mMuted; }
    void setMuteDepth(int depth) { mMuted = depth; }

private:
    void put(std::wstring_view text);

    enum class LineEnd { none, pending, written };
    std::unique_ptr<ConsoleSink> mDefault;
    ConsoleSink* mSink;
    LineEnd mLineEnd = LineEnd::written; ///< of the answer last echoed
    bool mAtLineStart = true;
    int mMuted = 0;
};

Console& console();

/// Tells the user of a failure that makes a script count as failed (an unknown command, a file that can't be
/// read, a LISP error): one line on the console and, with the script's line, on the diagnostic output.
void reportFailure(std::wstring_view line);
/// How many failures were reported since the program began.
int failureCount();

} // namespace host
