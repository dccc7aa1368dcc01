// How many evaluations a second the LISP interpreter makes, and how its lists grow with their length.
#include "host/lisp/interpreter.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

/// Runs a call once before and then over and over; `evaluations` is how many forms with brackets one run
/// evaluates.
void measure(benchmark::State& state, std::wstring_view definitions, std::wstring_view call,
             double evaluations) {
    host::LispInterpreter lisp;
    lisp.evaluate(definitions);
    if (const host::LispEvaluation first = lisp.evaluate(call); !first.ok) {
        state.SkipWithError("the program fails");
        return;
    }
    for (auto step : state) {
        benchmark::DoNotOptimize(lisp.evaluate(call).ok);
    }
    state.counters["evaluations"] = benchmark::Counter(evaluations * static_cast<double>(state.iterations()),
                                                       benchmark::Counter::kIsRate);
}

void countingLoop(benchmark::State& state) {
    measure(state, L"(defun f (n / i) (setq i 0) (while (< i n) (setq i (1+ i))) i)", L"(f 1000000)", 3e6);
}
BENCHMARK(countingLoop)->Unit(benchmark::kMillisecond);

void arithmeticLoop(benchmark::State& state) {
    measure(state,
            L"(defun f (n / s) (setq s 0.0) (repeat n (setq s (+ (* s 0.5) (if (> s 1.0) 1.0 2.0)))) s)",
            L"(f 1000000)", 5e6);
}
BENCHMARK(arithmeticLoop)->Unit(benchmark::kMillisecond);

void recursiveCalls(benchmark::State& state) {
    measure(state, L"(defun fib (n) (if (< n 2) n (+ (fib (1- n)) (fib (- n 2)))))", L"(fib 22)",
            28656.0 * 6);
}
BENCHMARK(recursiveCalls)->Unit(benchmark::kMillisecond);

void tailCalls(benchmark::State& state) {
    measure(state, L"(defun f (n) (if (> n 0) (f (1- n)) n))", L"(f 1000000)", 4e6);
}
BENCHMARK(tailCalls)->Unit(benchmark::kMillisecond);

void mappedLists(benchmark::State& state) {
    measure(state, L"(setq l nil) (repeat 100000 (setq l (cons (list 1 2.0 \"a\") l)))",
            L"(length (mapcar '(lambda (p) (cons (car p) (cadr p))) l))", 3e5);
}
BENCHMARK(mappedLists)->Unit(benchmark::kMillisecond);

void sortedLists(benchmark::State& state) {
    const std::wstring count = std::to_wstring(state.range(0));
    measure(state,
            L"(setq l nil k 1.0) (repeat " + count +
                L" (setq k (rem (+ (* k 25173.0) 13849.0) 65536.0) l (cons k l)))",
            L"(length (vl-sort l '<))", static_cast<double>(state.range(0)));
}
BENCHMARK(sortedLists)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
