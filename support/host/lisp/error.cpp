#include "host/lisp/error.h"

#include "host/lisp/printer.h"

#include <limits>

namespace host::lisp {

void typeError(std::wstring_view predicate, const Value& value) {
    throw Error(L"参数类型错误: " + std::wstring(predicate) + L" " + printedShort(value));
}

void valueError(std::wstring_view expected, const Value& value) {
    throw Error(L"参数值错误: " + std::wstring(expected) + L" " + printedShort(value));
}

void tooFewArguments() {
    throw Error(L"参数太少");
}

void tooManyArguments() {
    throw Error(L"参数太多");
}

void cancelled() {
    throw Error(std::wstring(cancelledMessage));
}

double numberOf(const Value& value) {
    if (!value.isNumber()) {
        typeError(L"numberp:", value);
    }
    return value.number();
}

std::int32_t integerOf(const Value& value) {
    if (!value.isInteger()) {
        typeError(L"fixnump:", value);
    }
    return value.integer();
}

const std::wstring& textOf(const Value& value) {
    if (!value.isText()) {
        typeError(L"stringp", value);
    }
    return value.text();
}

Symbol* symbolOf(const Value& value) {
    if (!value.isSymbol()) {
        typeError(L"symbolp", value);
    }
    return value.symbol();
}

const Value& listOf(const Value& value) {
    if (!value.isList()) {
        typeError(L"listp", value);
    }
    return value;
}

std::vector<Value> elementsOf(const Value& list) {
    std::vector<Value> values;
    const Value* at = &list;
    for (; at->isCons(); at = &at->cons().tail) {
        values.push_back(at->cons().head);
    }
    if (!at->isNil()) {
        typeError(L"listp", list);
    }
    return values;
}

Value listFrom(std::span<const Value> values) {
    ListBuilder builder;
    for (const Value& value : values) {
        builder.add(value);
    }
    return builder.take();
}

std::int32_t lengthOf(const Value& list) {
    std::int32_t length = 0;
    const Value* at = &list;
    for (; at->isCons(); at = &at->cons().tail) {
        ++length;
    }
    if (!at->isNil()) {
        typeError(L"listp", list);
    }
    return length;
}

Value integerOrReal(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        return static_cast<double>(value);
    }
    return static_cast<std::int32_t>(value);
}

} // namespace host::lisp
