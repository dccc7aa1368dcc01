// An interpreter without a host, its output caught, for tests of the language itself.
#pragma once

#include "host/lisp/interpreter.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"

#include <gtest/gtest.h>

namespace host {

class LispTest : public testing::Test {
protected:
    LispTest() : lisp(LispSurroundings{}) {
        lisp.surroundings().print = [this](std::wstring_view text) { output += text; };
    }

    /// The value as printed; for an error its message after "!".
    std::string run(std::wstring_view source) {
        const LispEvaluation result = lisp.evaluate(source);
        return result.ok ? toUtf8(lisp.displayed(result.value)) : "!" + toUtf8(result.message);
    }
    std::string run(std::string_view utf8) { return run(fromUtf8(utf8)); }
    /// What was printed since the last call.
    std::string printed() { return toUtf8(std::exchange(output, {})); }

    struct Case {
        const char* source;
        const char* expected;
    };
    void check(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            EXPECT_EQ(run(std::string_view(c.source)), c.expected) << c.source;
        }
    }

    std::wstring output;
    LispInterpreter lisp;
};

} // namespace host
