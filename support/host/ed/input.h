// The one stream of input that everything that asks takes its answers from: what the user types (or a script
// file, or text sent to the document), and, below acedCommandS and LISP's `command`, their arguments.
#pragma once

#include "host/ge/ge.h"
#include "host/rx/rx.h"

#include <exception>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AcApDocument;
class AcDbEntity;

namespace host {

/// How much of what is typed one answer takes.
enum class ReadMode {
    /// Up to a blank outside of quotes or the end of the line; a parenthesis begins a LISP expression.
    token,
    line, ///< up to the end of the line, taken literally
};

/// What the cursor may do for an answer, and how that shows.
struct Aim {
    enum class Band {
        line,      ///< from the base to the cursor
        rectangle, ///< with the base as a corner
        selection, ///< a rectangle that selects: a window to the right of the base, a crossing to the left
        none,
    };
    /// A point is asked for: the cursor may answer.
    bool wantsPoint = false;
    /// Movements of the cursor are wanted too, as items of kind motion.
    bool wantsMotion = false;
    /// The point says which object is meant: the cursor is a pick box and no object snap applies.
    bool picksObjects = false;
    /// A rubber band's start, in world coordinates.
    std::optional<AcGePoint3d> base;
    Band band = Band::line;
    /// A number typed for the point is a distance from the base towards the cursor.
    bool takesDistance = false;
    /// Object snap for this point instead of the running one (bits of OSMODE).
    std::optional<int> snapModes;
    /// Entities that follow the cursor; they stay their owner's, and as they are until the answer.
    std::vector<AcDbEntity*> dragged;
};

struct InputRequest : Aim {
    ReadMode mode = ReadMode::token;
    /// At the command prompt, where a word is a command's name.
    bool atCommandPrompt = false;
};

struct InputItem {
    enum class Kind {
        text,   ///< typed or given text; empty: Enter
        lisp,   ///< an expression, still to be evaluated
        value,  ///< values: of an expression, an argument or a pick
        motion, ///< the cursor stands at the point in `value`
        cancel, ///< Escape
        end     ///< nothing more will come
    };
    Kind kind = Kind::end;
    std::wstring text;
    ResbufList value;
    bool fromCursor = false; ///< a point picked in the window: object snap applies
    bool isAimed = false;    ///< and was tried: the point stands as it is

    static InputItem ofText(std::wstring text);
    static InputItem ofValue(ResbufList value);
    static InputItem of(Kind kind) {
        InputItem item;
        item.kind = kind;
        return item;
    }
    bool isEnter() const { return kind == Kind::text && text.empty(); }
    bool isCancel() const { return kind == Kind::cancel || kind == Kind::end; }
};

/// The user: a script, the console, a window. read() blocks until there is an answer (a window runs an event
/// loop meanwhile).
class UserInput {
public:
    virtual ~UserInput() = default;
    virtual InputItem read(const InputRequest& request) = 0;
    /// Nothing more will come. May look ahead, must not wait for more than the next line.
    virtual bool atEnd() = 0;
    /// What was typed is already visible with its line end (a terminal).
    virtual bool echoesItself() const { return false; }
    /// Where the last answer came from ("第 12 行"); empty when that says nothing.
    virtual std::wstring position() const { return {}; }
    /// The next line when it begins with `@` and a letter, the language that drives dialogs; besides comments
    /// before it nothing else is consumed.
    virtual std::optional<std::wstring> takeDialogLine() { return std::nullopt; }
    /// Dialogs are seen and worked by hand; they need no lines.
    virtual bool worksDialogs() const { return false; }
    /// Nothing more is read: what comes next was meant for something that is not there.
    virtual void close() {}
    /// Puts text behind what was typed and not yet read.
    virtual void post(std::wstring_view text) = 0;
    /// Takes posted text that was not read back.
    virtual std::wstring takePosted() = 0;
};

/// Characters as they are typed, cut into answers by the rules of the command line: a blank or the end of the
/// line ends an answer, an empty one is Enter; a line `^C` is Escape, as are the characters 3 and 27; a line
/// that begins with `;` is a comment; `(...)` and `!name` are LISP and go on over lines until the parentheses
/// balance.
class TypedInput : public UserInput {
public:
    TypedInput() = default;
    /// Lines in UTF-8, with or without carriage returns; a byte order mark is passed over.
    explicit TypedInput(std::istream& stream) : mStream(&stream) {}

    InputItem read(const InputRequest& request) override;
    bool atEnd() override;
    std::wstring position() const override;
    std::optional<std::wstring> takeDialogLine() override;
    void close() override;
    void post(std::wstring_view text) override;
    /// True after an answer that came from a terminal.
    bool echoesItself() const override { return mInteractive && mFromStream; }
    /// The stream is a terminal.
    void setInteractive(bool interactive) { mInteractive = interactive; }
    std::wstring takePosted() override;

protected:
    /// The next line without its end; false when there is none.
    virtual bool nextLine(std::wstring& line);

private:
    static constexpr int none = -1;
    int peek();
    /// There is more without waiting for a line.
    bool hasTyped() const;
    void advance();
    bool loadLine();
    bool skipCommentOrEscape(bool& escape);
    InputItem readLisp();
    InputItem readText(ReadMode mode);

    std::istream* mStream = nullptr;
    std::wstring mPosted;      ///< read before the next line, after the rest of a line begun
    std::size_t mPostedAt = 0; ///< first unread character of it
    std::wstring mLine;        ///< with its \n
    std::size_t mLineAt = 0;
    bool mLineBegun = false;
    bool mFromStream = false;
    bool mInteractive = false;
    int mLineNumber = 0;
};

/// How a question is put.
struct AskOptions : Aim {
    ReadMode mode = ReadMode::token;
    bool allowTransparent = true; ///< 'ZOOM may be typed instead of an answer
};

/// The stream. Items that arrive are final: expressions are evaluated, transparent commands were run, cancel
/// was told.
class InputStream {
public:
    /// Who answers when no arguments do. Null: nobody, every question ends in cancel.
    void setUser(UserInput* user);
    UserInput* user() const { return mUser; }

    /// Shows the prompt, takes the answer, shows it. Cancel marks the running command as cancelled.
    InputItem ask(std::wstring_view prompt, const AskOptions& options = {});
    /// The next input of the command prompt.
    InputItem readCommand(std::wstring_view prompt);
    /// A prompt for the user and his answer, shown also where commands run silently. LISP comes back
    /// unevaluated.
    InputItem askUser(std::wstring_view prompt, const InputRequest& request);
    /// Evaluates typed LISP as an answer; false when it is none, and an error was told.
    bool evaluate(InputItem& item) const;
    /// Text for a document, as if typed.
    void post(AcApDocument& document, std::wstring_view text);
    /// The last prompt with its answer, as LASTPROMPT tells.
    const std::wstring& lastPrompt() const { return mLastPrompt; }
    std::wstring position() const { return mUser != nullptr ? mUser->position() : std::wstring(); }
    /// For open dialogs: see UserInput::takeDialogLine.
    std::optional<std::wstring> takeDialogLine();

private:
    InputItem question(std::wstring_view prompt, const InputRequest& request);
    /// False: the item was dealt with (a transparent command, an error told) and the question is put again.
    bool settle(InputItem& item, const AskOptions& options);
    void countEnds(const InputItem& item);

    UserInput* mUser = nullptr;
    TypedInput mNobody; ///< text posted while there is no user
    std::wstring mLastPrompt;
    int mEnds = 0; ///< questions in a row that got no answer any more
};

/// Dialogs beside the drawing take the user's `@` lines wherever a question is asked. Hung in by the dialogs.
struct DialogHook {
    std::function<bool()> isOpen;
    std::function<void(const std::wstring& line)> drive;
};
DialogHook& dialogHook();

/// Thrown into a command that goes on asking when there is nobody left to answer; ends at its boundary.
class InputEnded : public std::exception {};

InputStream& inputStream();

/// The value as an answer to a question, as the dialogue shows it.
std::wstring inputText(const resbuf& value);

} // namespace host
