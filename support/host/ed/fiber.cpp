// Fibers over ucontext, with the switches told to the address sanitizer.
#include "host/ed/fiber.h"

#include <array>
#include <cassert>
#include <cstring>
#include <cxxabi.h>
#include <new>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>
#include <utility>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace host {
namespace {

// Reserved address space; only what is touched takes memory.
constexpr std::size_t stackSize = std::size_t{16} << 20;

/// Stacks with a guard page below, kept for the next fiber.
class StackPool {
public:
    ~StackPool() {
        for (void* stack : mFree) {
            munmap(stack, stackSize);
        }
    }
    void* take() {
        if (!mFree.empty()) {
            void* stack = mFree.back();
            mFree.pop_back();
            return stack;
        }
        void* stack = mmap(nullptr, stackSize, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
        if (stack == MAP_FAILED) {
            throw std::bad_alloc();
        }
        mprotect(stack, static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), PROT_NONE);
        return stack;
    }
    void give(void* stack) { mFree.push_back(stack); }

private:
    std::vector<void*> mFree;
};

StackPool& stackPool() {
    static StackPool pool;
    return pool;
}

Fiber*& currentFiber() {
    thread_local Fiber* fiber = nullptr;
    return fiber;
}

/// The exceptions being handled belong to a stack and change with it.
using HandledExceptions = std::array<void*, 2>;

HandledExceptions exchangeHandled(const HandledExceptions& other) {
    HandledExceptions mine;
    void* globals = abi::__cxa_get_globals();
    std::memcpy(mine.data(), globals, sizeof mine);
    std::memcpy(globals, other.data(), sizeof mine);
    return mine;
}

} // namespace

struct Fiber::Insides {
    std::function<void()> body;
    void* stack = nullptr;
    ucontext_t inside{};
    ucontext_t outside{};
    Fiber* resumer = nullptr;
    HandledExceptions handled{};
    bool started = false;
    bool ended = false;
    const void* outsideStack = nullptr;
    std::size_t outsideSize = 0;
    void* insideFake = nullptr;
};

Fiber::Fiber(std::function<void()> body) : mInsides(std::make_unique<Insides>()) {
    mInsides->body = std::move(body);
}

Fiber::~Fiber() {
    assert(!mInsides->started || mInsides->ended);
    if (mInsides->stack != nullptr) {
        stackPool().give(mInsides->stack);
    }
}

bool Fiber::hasEnded() const {
    return mInsides->ended;
}

Fiber* Fiber::current() {
    return currentFiber();
}

void Fiber::run(unsigned high, unsigned low) {
    auto* fiber = reinterpret_cast<Fiber*>((static_cast<std::uintptr_t>(high) << 32) | low);
    Insides& insides = *fiber->mInsides;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(nullptr, &insides.outsideStack, &insides.outsideSize);
#endif
    insides.body();
    insides.body = nullptr;
    insides.ended = true;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(nullptr, insides.outsideStack, insides.outsideSize);
#endif
    swapcontext(&insides.inside, &insides.outside);
}

void Fiber::resume() {
    Insides& insides = *mInsides;
    assert(!insides.ended && currentFiber() != this);
    if (!insides.started) {
        insides.started = true;
        insides.stack = stackPool().take();
        getcontext(&insides.inside);
        insides.inside.uc_stack.ss_sp = insides.stack;
        insides.inside.uc_stack.ss_size = stackSize;
        insides.inside.uc_link = nullptr;
        const auto address = reinterpret_cast<std::uintptr_t>(this);
        makecontext(&insides.inside, reinterpret_cast<void (*)()>(&Fiber::run), 2,
                    static_cast<unsigned>(address >> 32), static_cast<unsigned>(address));
    }
    insides.resumer = std::exchange(currentFiber(), this);
    insides.handled = exchangeHandled(insides.handled);
#if defined(__SANITIZE_ADDRESS__)
    void* fake = nullptr;
    __sanitizer_start_switch_fiber(&fake, insides.stack, stackSize);
#endif
    swapcontext(&insides.outside, &insides.inside);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(fake, nullptr, nullptr);
#endif
    insides.handled = exchangeHandled(insides.handled);
    currentFiber() = insides.resumer;
}

void Fiber::suspend() {
    Insides& insides = *mInsides;
    assert(currentFiber() == this);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(&insides.insideFake, insides.outsideStack, insides.outsideSize);
#endif
    swapcontext(&insides.inside, &insides.outside);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(insides.insideFake, &insides.outsideStack, &insides.outsideSize);
#endif
}

std::uintptr_t fiberStackBottom() {
    const Fiber* fiber = currentFiber();
    return fiber != nullptr ? reinterpret_cast<std::uintptr_t>(fiber->mInsides->stack) : 0;
}

} // namespace host
