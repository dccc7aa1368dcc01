// How far a reader is, told to whoever reads a drawing with somebody waiting.
#pragma once

#include <functional>
#include <utility>

namespace host {

/// While in scope, readers on this thread tell the share that is read, now and then; false ends the reading
/// with eUserBreak.
class ReadProgress {
public:
    explicit ReadProgress(std::function<bool(double)> tell) : mTell(std::move(tell)), mOuter(current()) {
        current() = this;
    }
    ~ReadProgress() { current() = mOuter; }
    ReadProgress(const ReadProgress&) = delete;
    ReadProgress& operator=(const ReadProgress&) = delete;

    /// For readers; true without anybody to tell.
    static bool tell(double share) { return current() == nullptr || current()->mTell(share); }

private:
    static ReadProgress*& current() {
        thread_local ReadProgress* progress = nullptr;
        return progress;
    }
    std::function<bool(double)> mTell;
    ReadProgress* mOuter;
};

} // namespace host
