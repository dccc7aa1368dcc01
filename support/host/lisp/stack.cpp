#include "host/lisp/stack.h"

#include "host/lisp/error.h"

#include <algorithm>
#include <pthread.h>
#include <sys/resource.h>

namespace host::lisp {

namespace {

constexpr std::size_t reserve = std::size_t{1} << 20;
constexpr std::size_t lastReserve = std::size_t{1} << 18;
constexpr rlim_t wantedStack = rlim_t{64} << 20;

std::uintptr_t (*stackFinder)() = nullptr;

// The stack that ran when it was last looked at, from `bottom` upwards to `highest`. Addresses outside are
// those of another stack.
struct Stack {
    std::uintptr_t bottom = 0;
    std::uintptr_t lowest = UINTPTR_MAX; ///< below: too deep, or another stack
    std::uintptr_t highest = 0;
    int reserveUsers = 0;
};
thread_local Stack stack;
thread_local std::uintptr_t ownBottom = 0; ///< of the thread's stack, once asked for

std::uintptr_t here() {
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

// The lowest address of the thread's own stack; 0 when the system doesn't tell.
std::uintptr_t threadStackBottom() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return 0;
    }
    void* address = nullptr;
    std::size_t size = 0;
    const int result = pthread_attr_getstack(&attributes, &address, &size);
    pthread_attr_destroy(&attributes);
    return result == 0 ? reinterpret_cast<std::uintptr_t>(address) : 0;
}

void setLowest() {
    stack.lowest = stack.bottom + (stack.reserveUsers > 0 ? lastReserve : reserve);
}

[[gnu::noinline]] void lookAgain(std::uintptr_t address) {
    const std::uintptr_t own = stackFinder != nullptr ? stackFinder() : 0;
    if (own == 0 && ownBottom == 0) {
        ownBottom = threadStackBottom();
    }
    stack.bottom = own != 0 ? own : ownBottom;
    setLowest();
    // Where it ends above is not known: what lies higher than this call is looked at again.
    stack.highest = address;
    if (address < stack.lowest) {
        throw Error(L"已达到 LISP 堆栈的极限");
    }
}

} // namespace

void ensureStack() {
    const std::uintptr_t address = here();
    if (address < stack.lowest || address > stack.highest) [[unlikely]] {
        lookAgain(address);
    }
}

void allowDeepStack() {
    // The kernel reads the limit whenever the main thread's stack grows, so it may be raised while running.
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
        limit.rlim_cur < wantedStack) {
        limit.rlim_cur =
            limit.rlim_max == RLIM_INFINITY ? wantedStack : std::min(limit.rlim_max, wantedStack);
        setrlimit(RLIMIT_STACK, &limit);
    }
    stack.highest = 0;
    ownBottom = 0;
}

void setStackFinder(std::uintptr_t (*lowestAddress)()) {
    stackFinder = lowestAddress;
}

StackReserve::StackReserve() {
    ++stack.reserveUsers;
    setLowest();
}

StackReserve::~StackReserve() {
    --stack.reserveUsers;
    setLowest();
}

} // namespace host::lisp
