// A second line of execution on its own stack, so that a command that waits for input can stand still while
// the one who drives it goes on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace host {

/// The lowest address of the stack that runs now when it is a fiber's; 0 on the thread's own stack.
std::uintptr_t fiberStackBottom();

/// Runs on the thread that resumes it, one at a time. The body must not let exceptions escape.
class Fiber {
public:
    explicit Fiber(std::function<void()> body);
    /// The body must have ended (or never begun).
    ~Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    /// Runs the body until it suspends or ends. Not from inside itself.
    void resume();
    /// Gives control back to who resumed this fiber; called from inside it.
    void suspend();
    bool hasEnded() const;
    /// The fiber that runs now; null on the thread's own stack.
    static Fiber* current();

private:
    friend std::uintptr_t fiberStackBottom();
    struct Insides;
    static void run(unsigned high, unsigned low);
    std::unique_ptr<Insides> mInsides;
};

} // namespace host
