// Lists: making, taking apart, searching, mapping.
#include "host/lisp/builtins.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host::lisp {

namespace {

// c[ad]+r: the letters between c and r as path bits, read from the right; 'd' is 1.
template <unsigned path, int steps>
Value access(LispInterpreter&, Arguments arguments) {
    const Value* at = &arguments[0];
    for (int step = 0; step < steps; ++step) {
        if (!at->isList()) {
            typeError(L"consp", *at);
        }
        at = ((path >> step) & 1u) != 0 ? &at->tail() : &at->head();
    }
    return *at;
}

template <int steps, unsigned path = 0>
void defineAccess(LispInterpreter& lisp) {
    if constexpr (path < (1u << steps)) {
        std::wstring name = L"R";
        for (int step = 0; step < steps; ++step) {
            name += ((path >> step) & 1u) != 0 ? L'D' : L'A';
        }
        name += L'C';
        std::ranges::reverse(name);
        lisp.define(name, access<path, steps>, 1, 1);
        defineAccess<steps, path + 1>(lisp);
    }
}

Value makeList(LispInterpreter&, Arguments arguments) {
    return listFrom(arguments);
}

Value makeListStar(LispInterpreter&, Arguments arguments) {
    ListBuilder builder;
    for (const Value& value : arguments.first(arguments.size() - 1)) {
        builder.add(value);
    }
    builder.end(arguments.back());
    return builder.take();
}

Value makeCons(LispInterpreter&, Arguments arguments) {
    return cons(arguments[0], arguments[1]);
}

Value isAtom(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(!arguments[0].isCons());
}

Value isListFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isList());
}

Value isConsFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isCons());
}

Value length(LispInterpreter&, Arguments arguments) {
    return lengthOf(listOf(arguments[0]));
}

// The number of elements, or nil when the list is dotted or none.
Value listLength(LispInterpreter&, Arguments arguments) {
    std::int32_t count = 0;
    const Value* at = &arguments[0];
    for (; at->isCons(); at = &at->cons().tail) {
        ++count;
    }
    return at->isNil() ? Value(count) : Value();
}

Value nth(LispInterpreter&, Arguments arguments) {
    const std::int32_t index = integerOf(arguments[0]);
    if (index < 0) {
        valueError(L"非负数", arguments[0]);
    }
    const Value* at = &listOf(arguments[1]);
    for (std::int32_t skipped = 0; skipped < index && at->isCons(); ++skipped) {
        at = &at->cons().tail;
    }
    return at->head();
}

Value last(LispInterpreter&, Arguments arguments) {
    const Value* at = &listOf(arguments[0]);
    while (at->isCons() && at->cons().tail.isCons()) {
        at = &at->cons().tail;
    }
    return at->head();
}

Value append(LispInterpreter&, Arguments arguments) {
    ListBuilder builder;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        if (index + 1 == arguments.size()) {
            builder.end(arguments[index]); // shared: lists never change
            break;
        }
        const Value* at = &listOf(arguments[index]);
        for (; at->isCons(); at = &at->cons().tail) {
            builder.add(at->cons().head);
        }
        if (!at->isNil()) {
            typeError(L"listp", arguments[index]);
        }
    }
    return builder.take();
}

Value reverse(LispInterpreter&, Arguments arguments) {
    Value result;
    const Value* at = &listOf(arguments[0]);
    for (; at->isCons(); at = &at->cons().tail) {
        result = cons(at->cons().head, std::move(result));
    }
    if (!at->isNil()) {
        typeError(L"listp", arguments[0]);
    }
    return result;
}

Value assoc(LispInterpreter&, Arguments arguments) {
    for (const Value& entry : Elements(listOf(arguments[1]))) {
        if (!entry.isList()) {
            throw Error(L"关联表有缺陷: " + printedShort(arguments[1]));
        }
        if (entry.isCons() && equal(entry.cons().head, arguments[0])) {
            return entry;
        }
    }
    return {};
}

Value substitute(LispInterpreter&, Arguments arguments) {
    ListBuilder builder;
    for (const Value& element : Elements(listOf(arguments[2]))) {
        builder.add(equal(element, arguments[1]) ? arguments[0] : element);
    }
    return builder.take();
}

Value member(LispInterpreter&, Arguments arguments) {
    const Value* at = &listOf(arguments[1]);
    for (; at->isCons(); at = &at->cons().tail) {
        if (equal(at->cons().head, arguments[0])) {
            return *at;
        }
    }
    return {};
}

// Walks several lists side by side until the shortest ends.
class SideBySide {
public:
    explicit SideBySide(Arguments lists) : mCurrent(lists.size()) {
        for (const Value& list : lists) {
            mLists.push_back(&listOf(list));
        }
    }
    bool next() {
        for (std::size_t at = 0; at < mLists.size(); ++at) {
            if (!mLists[at]->isCons()) {
                return false;
            }
            mCurrent[at] = mLists[at]->cons().head;
            mLists[at] = &mLists[at]->cons().tail;
        }
        return true;
    }
    Arguments current() const { return mCurrent; }

private:
    std::vector<const Value*> mLists;
    std::vector<Value> mCurrent;
};

Value map(LispInterpreter& lisp, Arguments arguments) {
    const Value function = lisp.resolveFunction(arguments[0]);
    SideBySide lists(arguments.subspan(1));
    ListBuilder builder;
    while (lists.next()) {
        builder.add(lisp.apply(function, lists.current()));
    }
    return builder.take();
}

Value some(LispInterpreter& lisp, Arguments arguments) {
    const Value function = lisp.resolveFunction(arguments[0]);
    SideBySide lists(arguments.subspan(1));
    while (lists.next()) {
        if (Value result = lisp.apply(function, lists.current())) {
            return result;
        }
    }
    return {};
}

Value every(LispInterpreter& lisp, Arguments arguments) {
    const Value function = lisp.resolveFunction(arguments[0]);
    SideBySide lists(arguments.subspan(1));
    while (lists.next()) {
        if (!lisp.apply(function, lists.current())) {
            return {};
        }
    }
    return lisp.truth();
}

Value removeEqual(LispInterpreter&, Arguments arguments) {
    ListBuilder builder;
    for (const Value& element : Elements(listOf(arguments[1]))) {
        if (!equal(element, arguments[0])) {
            builder.add(element);
        }
    }
    return builder.take();
}

template <bool removes>
Value filter(LispInterpreter& lisp, Arguments arguments) {
    const Value function = lisp.resolveFunction(arguments[0]);
    ListBuilder builder;
    for (const Value& element : Elements(listOf(arguments[1]))) {
        if (static_cast<bool>(lisp.apply(function, Arguments(&element, 1))) != removes) {
            builder.add(element);
        }
    }
    return builder.take();
}

template <bool wanted>
Value memberIf(LispInterpreter& lisp, Arguments arguments) {
    const Value function = lisp.resolveFunction(arguments[0]);
    const Value* at = &listOf(arguments[1]);
    for (; at->isCons(); at = &at->cons().tail) {
        if (static_cast<bool>(lisp.apply(function, Arguments(&at->cons().head, 1))) == wanted) {
            return *at;
        }
    }
    return {};
}

Value position(LispInterpreter&, Arguments arguments) {
    std::int32_t index = 0;
    for (const Value& element : Elements(listOf(arguments[1]))) {
        if (equal(element, arguments[0])) {
            return index;
        }
        ++index;
    }
    return {};
}

constexpr FunctionRow rows[] = {
    {L"LIST", makeList, 0, any},
    {L"VL-LIST*", makeListStar, 1, any},
    {L"CONS", makeCons, 2, 2},
    {L"ATOM", isAtom, 1, 1},
    {L"LISTP", isListFunction, 1, 1},
    {L"VL-CONSP", isConsFunction, 1, 1},
    {L"LENGTH", length, 1, 1},
    {L"VL-LIST-LENGTH", listLength, 1, 1},
    {L"NTH", nth, 2, 2},
    {L"LAST", last, 1, 1},
    {L"APPEND", append, 0, any},
    {L"REVERSE", reverse, 1, 1},
    {L"ASSOC", assoc, 2, 2},
    {L"SUBST", substitute, 3, 3},
    {L"MEMBER", member, 2, 2},
    {L"MAPCAR", map, 2, any},
    {L"VL-SOME", some, 2, any},
    {L"VL-EVERY", every, 2, any},
    {L"VL-REMOVE", removeEqual, 2, 2},
    {L"VL-REMOVE-IF", filter<true>, 2, 2},
    {L"VL-REMOVE-IF-NOT", filter<false>, 2, 2},
    {L"VL-MEMBER-IF", memberIf<true>, 2, 2},
    {L"VL-MEMBER-IF-NOT", memberIf<false>, 2, 2},
    {L"VL-POSITION", position, 2, 2},
};

} // namespace

void addListFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
    defineAccess<1>(lisp);
    defineAccess<2>(lisp);
    defineAccess<3>(lisp);
    defineAccess<4>(lisp);
}

} // namespace host::lisp
