// Guards the machine's stack: recursion of programs and of nested lists ends in an error instead of a crash.
#pragma once

#include <cstdint>

namespace host::lisp {

/// Raises the error of too deep recursion when the stack that runs is nearly used up.
void ensureStack();

/// Lets the main thread's stack grow further than the usual 8 MiB, as deep recursion of programs needs.
void allowDeepStack();

/// Where code runs on stacks of its own: a function that gives the lowest address of the stack that runs now,
/// 0 for the thread's. Told once, before the first program.
void setStackFinder(std::uintptr_t (*lowestAddress)());

/// While in scope the last reserve may be used: error handlers run where the stack has ended.
class StackReserve {
public:
    StackReserve();
    ~StackReserve();
    StackReserve(const StackReserve&) = delete;
    StackReserve& operator=(const StackReserve&) = delete;
};

} // namespace host::lisp
