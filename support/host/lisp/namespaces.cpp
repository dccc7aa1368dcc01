// Variables that documents share: the blackboard, and values that are propagated to every drawing. Values
// that cross over belong to another interpreter, so their symbols are found anew by name.
#include "host/ed/ed.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/stack.h"
#include "host/rx/text.h"

#include <map>
#include <memory>

namespace host::lisp {

namespace {

/// Symbols and values that belong to no drawing.
class Blackboard {
public:
    Symbol* symbol(const std::wstring& name) {
        std::unique_ptr<Symbol>& entry = mSymbols[name];
        if (entry == nullptr) {
            entry = std::make_unique<Symbol>();
            entry->name = name;
        }
        return entry.get();
    }

    std::map<std::wstring, Value> values;     ///< set with vl-bb-set
    std::map<std::wstring, Value> propagated; ///< for drawings that are opened later

private:
    std::map<std::wstring, std::unique_ptr<Symbol>> mSymbols;
};

Blackboard& blackboard() {
    static auto& board = *new Blackboard; // outlives all values
    return board;
}

/// The value with the symbols that `symbolNamed` gives. Functions, files and selection sets belong to their
/// drawing and can't be shared.
template <class SymbolNamed>
Value carried(const Value& value, const SymbolNamed& symbolNamed) {
    ensureStack();
    switch (value.kind()) {
    case Kind::symbol:
        return Value(symbolNamed(value.symbol()->name));
    case Kind::cons: {
        ListBuilder builder;
        const Value* at = &value;
        for (; at->isCons(); at = &at->cons().tail) {
            builder.add(carried(at->cons().head, symbolNamed));
        }
        builder.end(carried(*at, symbolNamed));
        return builder.take();
    }
    case Kind::nil:
    case Kind::integer:
    case Kind::real:
    case Kind::text:
    case Kind::entityName:
        return value;
    default:
        typeError(L"可共享的值:", value);
    }
}

Value toBoard(const Value& value) {
    return carried(value, [](const std::wstring& name) { return blackboard().symbol(name); });
}

Value fromBoard(LispInterpreter& lisp, const Value& value) {
    return carried(value, [&](const std::wstring& name) { return lisp.intern(name); });
}

Value setShared(LispInterpreter&, Arguments arguments) {
    blackboard().values[symbolOf(arguments[0])->name] = toBoard(arguments[1]);
    return arguments[1];
}

Value sharedValue(LispInterpreter& lisp, Arguments arguments) {
    const auto found = blackboard().values.find(symbolOf(arguments[0])->name);
    return found == blackboard().values.end() ? Value() : fromBoard(lisp, found->second);
}

// Every open drawing gets the symbol's value, and so does each that is opened from now on.
Value propagate(LispInterpreter& lisp, Arguments arguments) {
    const Symbol& symbol = *symbolOf(arguments[0]);
    blackboard().propagated[symbol.name] = toBoard(symbol.value);
    forEachInterpreter([&](LispInterpreter& other) {
        if (&other != &lisp) {
            takePropagatedValues(other);
        }
    });
    return {};
}

Value setDocumentValue(LispInterpreter& lisp, Arguments arguments) {
    lisp.assign(*symbolOf(arguments[0]), arguments[1]);
    return arguments[1];
}

Value documentValue(LispInterpreter&, Arguments arguments) {
    return symbolOf(arguments[0])->value;
}

// Programs and drawings share their symbols here, so there is nothing to export.
Value exportFunction(LispInterpreter&, Arguments arguments) {
    symbolOf(arguments[0]);
    return {};
}

constexpr FunctionRow rows[] = {
    {L"VL-BB-SET", setShared, 2, 2},          {L"VL-BB-REF", sharedValue, 1, 1},
    {L"VL-PROPAGATE", propagate, 1, 1},       {L"VL-DOC-SET", setDocumentValue, 2, 2},
    {L"VL-DOC-REF", documentValue, 1, 1},     {L"VL-DOC-EXPORT", exportFunction, 1, 1},
    {L"VL-ACAD-DEFUN", exportFunction, 1, 1}, {L"VL-ACAD-UNDEFUN", exportFunction, 1, 1},
};

} // namespace

void takePropagatedValues(LispInterpreter& lisp) {
    for (const auto& [name, value] : blackboard().propagated) {
        lisp.assign(*lisp.intern(name), fromBoard(lisp, value));
    }
}

void addNamespaceFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
