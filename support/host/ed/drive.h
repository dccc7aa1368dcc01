// A sequence of answers on its way through the commands it drives.
#pragma once

#include "host/ed/fiber.h"
#include "host/ed/input.h"
#include "host/ed/runcontext.h"

#include <deque>
#include <memory>

namespace host {

/// What a waiting command asks.
struct Question {
    std::wstring prompt;
    InputRequest request;
};

/// Runs commands on a fiber, so that every command can stand still: one that the user typed while he is
/// asked, one that a program drives when the program's answers run out. The document lists standing drives as
/// waiting.
class Drive : public std::enable_shared_from_this<Drive> {
public:
    Drive();

    /// Runs a command for the user until it first asks, or ends.
    void runTyped(const std::wstring& name);
    /// Adds a program's answers and lets the commands run until they wait or end.
    void feed(const resbuf* answers);
    /// Gives the user's answer, already shown, to the question.
    void answer(InputItem item);
    /// Every question gets Escape from now on.
    void cancel();
    bool hasEnded() const { return mFiber.hasEnded(); }
    /// RTNORM, RTERROR or RTCAN.
    int status() const { return mStatus; }
    /// Questions so far; the last one is what is asked while it waits.
    unsigned questionNumber() const { return mQuestionNumber; }
    const Question& question() const { return mQuestion; }

    // For the input stream, on the fiber.

    bool hasAnswer() const { return !mAnswers.empty(); }
    /// The user answers; what he is asked and types is shown where that happens.
    bool isUsers() const { return mUsers; }
    bool isCancelling() const { return mCancelling; }
    InputItem takeAnswer();
    /// Stands still until there is an answer or it is cancelled.
    void wait(std::wstring_view prompt, const InputRequest& request);

private:
    void resume(bool muted);
    void run();
    void runFed();
    std::deque<InputItem> mAnswers;
    std::wstring mTyped; ///< the user's command
    Question mQuestion;
    unsigned mQuestionNumber = 0;
    RunContext mContext;
    Fiber mFiber;
    int mStatus = RTNORM;
    bool mUsers = false;
    bool mCancelling = false;
};

/// The innermost waiting drive of the current document; null when none waits.
std::shared_ptr<Drive> waitingDrive();

/// Answers of a result list: one item a value, a list between RTLB and RTLE together.
std::deque<InputItem> answersOf(const resbuf* list);

} // namespace host
