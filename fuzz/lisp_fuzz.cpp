// Any text as a LISP program, without a drawing: it ends in a value or in one line, soon after Escape, and a
// value that was printed reads as what prints the same.
#include "fuzz/target.h"

#include "host/lisp/interpreter.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"

#include <sys/resource.h>

namespace {

constexpr int breaksBeforeEscape = 20;

/// Whether the printed form is one that is read again: no functions, files or entities within.
bool isReadable(std::wstring_view printed) {
    return printed.find(L'#') == printed.npos && printed.find(L'<') == printed.npos && printed.size() < 10000;
}

/// Recursion goes as deep as the stack; leaving a deep one takes the sanitizer seconds.
void keepStackSmall() {
    rlimit limit{};
    getrlimit(RLIMIT_STACK, &limit);
    limit.rlim_cur = rlim_t{1} << 20;
    setrlimit(RLIMIT_STACK, &limit);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool prepared = (keepStackSmall(), true);
    (void)prepared;
    const std::wstring source = host::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    int breaks = 0;
    host::LispSurroundings surroundings;
    surroundings.userBreak = [&breaks] { return ++breaks > breaksBeforeEscape; };
    host::LispInterpreter lisp(std::move(surroundings));
    const host::LispEvaluation result = lisp.evaluate(source);
    require(result.ok || !result.message.empty(), "no message");
    require(result.line.find(L'\n') == std::wstring::npos, "several lines");
    if (!result.ok) {
        return 0;
    }
    lisp.displayed(result.value);
    const std::wstring printed = host::lisp::printed(result.value);
    if (isReadable(printed)) {
        host::LispInterpreter fresh;
        const host::LispEvaluation again = fresh.evaluate(L"(quote " + printed + L")");
        require(again.ok && host::lisp::printed(again.value) == printed,
                "printed, the value reads as another");
    }
    return 0;
}
