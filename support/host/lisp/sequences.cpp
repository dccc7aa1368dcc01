// Sorting of lists, and lists of character codes.
#include "host/lisp/builtins.h"
#include "host/rx/text.h"

#include <algorithm>
#include <numeric>

namespace host::lisp {

namespace {

// Merges runs of growing length. The comparison is the user's and may contradict itself: whatever it says,
// every position comes out exactly once. Equal elements keep their order.
template <class Before>
std::vector<std::size_t> sortedOrder(std::size_t count, Before before) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> merged(count);
    for (std::size_t run = 1; run < count; run *= 2) {
        for (std::size_t begin = 0; begin < count; begin += 2 * run) {
            const std::size_t middle = std::min(begin + run, count);
            const std::size_t end = std::min(begin + 2 * run, count);
            std::size_t left = begin;
            std::size_t right = middle;
            for (std::size_t at = begin; at < end; ++at) {
                const bool takeRight = left >= middle || (right < end && before(order[right], order[left]));
                merged[at] = takeRight ? order[right++] : order[left++];
            }
        }
        order.swap(merged);
    }
    return order;
}

std::vector<std::size_t> sortedBy(LispInterpreter& lisp, const std::vector<Value>& values,
                                  const Value& comparison) {
    const Value function = lisp.resolveFunction(comparison);
    return sortedOrder(values.size(), [&](std::size_t left, std::size_t right) {
        const Value pair[] = {values[left], values[right]};
        return static_cast<bool>(lisp.apply(function, pair));
    });
}

Value sort(LispInterpreter& lisp, Arguments arguments) {
    const std::vector<Value> values = elementsOf(arguments[0]);
    ListBuilder builder;
    for (const std::size_t index : sortedBy(lisp, values, arguments[1])) {
        builder.add(values[index]);
    }
    return builder.take();
}

Value sortIndices(LispInterpreter& lisp, Arguments arguments) {
    const std::vector<Value> values = elementsOf(arguments[0]);
    ListBuilder builder;
    for (const std::size_t index : sortedBy(lisp, values, arguments[1])) {
        builder.add(static_cast<std::int32_t>(index));
    }
    return builder.take();
}

Value sortTexts(LispInterpreter&, Arguments arguments) {
    std::vector<Value> values = elementsOf(arguments[0]);
    std::ranges::for_each(values, textOf);
    std::ranges::stable_sort(values, {}, [](const Value& value) { return toUpper(value.text()); });
    return listFrom(values);
}

Value toCodes(LispInterpreter&, Arguments arguments) {
    ListBuilder builder;
    for (const wchar_t character : textOf(arguments[0])) {
        builder.add(static_cast<std::int32_t>(character));
    }
    return builder.take();
}

Value fromCodes(LispInterpreter&, Arguments arguments) {
    std::wstring text;
    for (const Value& code : Elements(listOf(arguments[0]))) {
        const std::int32_t number = integerOf(code);
        if (number <= 0 || number > 0x10FFFF) {
            valueError(L"字符代码", code);
        }
        text += static_cast<wchar_t>(number);
    }
    return makeText(std::move(text));
}

constexpr FunctionRow rows[] = {
    {L"VL-SORT", sort, 2, 2},
    {L"VL-SORT-I", sortIndices, 2, 2},
    {L"ACAD_STRLSORT", sortTexts, 1, 1},
    {L"VL-STRING->LIST", toCodes, 1, 1},
    {L"VL-LIST->STRING", fromCodes, 1, 1},
};

} // namespace

void addSequenceFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
