// Special forms and the functions about functions: definition, binding, branching, loops, catching errors.
#include "host/lisp/builtins.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host::lisp {

namespace {

Value quoteForm(LispInterpreter&, const Value& forms) {
    if (!forms.isCons()) {
        tooFewArguments();
    }
    return forms.cons().head;
}

Value functionForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons()) {
        tooFewArguments();
    }
    const Value& function = forms.cons().head;
    return function.isCons() ? lisp.resolveFunction(function) : function;
}

Value lambdaForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons()) {
        tooFewArguments();
    }
    return lisp.makeFunction({}, forms.head(), forms.tail());
}

Value defunForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons() || !forms.tail().isCons()) {
        tooFewArguments();
    }
    Symbol* const name = symbolOf(forms.head());
    lisp.assign(*name, lisp.makeFunction(name->name, forms.tail().head(), forms.tail().tail()));
    return Value(name);
}

Value defunQForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons() || !forms.tail().isCons()) {
        tooFewArguments();
    }
    Symbol* const name = symbolOf(forms.head());
    lisp.assign(*name, forms.tail());
    return Value(name);
}

Value setqForm(LispInterpreter& lisp, const Value& forms) {
    Value result;
    const Value* at = &forms;
    while (at->isCons()) {
        Symbol* const symbol = symbolOf(at->cons().head);
        at = &at->cons().tail;
        if (!at->isCons()) {
            tooFewArguments();
        }
        result = lisp.eval(at->cons().head);
        lisp.assign(*symbol, result);
        at = &at->cons().tail;
    }
    return result;
}

const Value* ifForm(LispInterpreter& lisp, const Value& forms, Value&) {
    if (!forms.isCons() || !forms.cons().tail.isCons()) {
        tooFewArguments();
    }
    const Value& branches = forms.cons().tail;
    if (lisp.eval(forms.cons().head)) {
        return &branches.cons().head;
    }
    const Value& otherwise = branches.cons().tail;
    if (!otherwise.isCons()) {
        return nullptr;
    }
    if (otherwise.cons().tail.isCons()) {
        tooManyArguments();
    }
    return &otherwise.cons().head;
}

const Value* condForm(LispInterpreter& lisp, const Value& forms, Value& result) {
    for (const Value& clause : Elements(forms)) {
        if (!clause.isCons()) {
            if (clause.isNil()) {
                continue;
            }
            typeError(L"consp", clause);
        }
        if (Value test = lisp.eval(clause.cons().head)) {
            if (clause.cons().tail.isCons()) {
                return lisp.evalUpToLast(clause.cons().tail);
            }
            result = std::move(test);
            return nullptr;
        }
    }
    return nullptr;
}

const Value* prognForm(LispInterpreter& lisp, const Value& forms, Value&) {
    return lisp.evalUpToLast(forms);
}

Value andForm(LispInterpreter& lisp, const Value& forms) {
    for (const Value& form : Elements(forms)) {
        if (!lisp.eval(form)) {
            return {};
        }
    }
    return lisp.truth();
}

Value orForm(LispInterpreter& lisp, const Value& forms) {
    for (const Value& form : Elements(forms)) {
        if (lisp.eval(form)) {
            return lisp.truth();
        }
    }
    return {};
}

Value whileForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons()) {
        tooFewArguments();
    }
    Value result;
    while (lisp.eval(forms.cons().head)) {
        lisp.tick();
        result = lisp.evalSequence(forms.cons().tail);
    }
    return result;
}

Value repeatForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons()) {
        tooFewArguments();
    }
    const std::int32_t count = integerOf(lisp.eval(forms.cons().head));
    Value result;
    for (std::int32_t done = 0; done < count; ++done) {
        lisp.tick();
        result = lisp.evalSequence(forms.cons().tail);
    }
    return result;
}

// Binds a variable of a loop to its values, and back to its own at the end of the scope.
class LoopVariable {
public:
    explicit LoopVariable(Symbol& symbol) : mSymbol(symbol), mSaved(symbol.value) {}
    ~LoopVariable() { mSymbol.value.swap(mSaved); }
    LoopVariable(const LoopVariable&) = delete;
    LoopVariable& operator=(const LoopVariable&) = delete;

private:
    Symbol& mSymbol;
    Value mSaved;
};

Value foreachForm(LispInterpreter& lisp, const Value& forms) {
    if (!forms.isCons() || !forms.cons().tail.isCons()) {
        tooFewArguments();
    }
    Symbol* const symbol = symbolOf(forms.cons().head);
    const Value& rest = forms.cons().tail;
    const Value elements = lisp.eval(rest.cons().head);
    listOf(elements);
    const LoopVariable variable(*symbol);
    Value result;
    for (const Value& element : Elements(elements)) {
        lisp.tick();
        lisp.assign(*symbol, element);
        result = lisp.evalSequence(rest.cons().tail);
    }
    return result;
}

// (trace f ...) and (untrace f ...) take names of functions; calls of a traced one are told with arguments
// and result. A new definition is not traced.
template <bool traces>
Value traceForm(LispInterpreter&, const Value& forms) {
    Value last;
    for (const Value& name : Elements(forms)) {
        const Value& value = symbolOf(name)->value;
        if (value.kind() == Kind::userFunction) {
            value.as<UserFunction>().traced = traces;
        } else if (value.kind() == Kind::subr && value.as<Subr>().evaluatesArguments()) {
            value.as<Subr>().traced = traces;
        } else {
            throw Error(L"没有函数定义: " + name.symbol()->name);
        }
        last = name;
    }
    return last;
}

Value set(LispInterpreter& lisp, Arguments arguments) {
    lisp.assign(*symbolOf(arguments[0]), arguments[1]);
    return arguments[1];
}

Value evalFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.eval(arguments[0]);
}

Value applyFunction(LispInterpreter& lisp, Arguments arguments) {
    const std::vector<Value> values = elementsOf(arguments[1]);
    return lisp.apply(arguments[0], values);
}

Value notFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isNil());
}

Value boundp(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isSymbol() && arguments[0].symbol()->value);
}

Value typeOf(LispInterpreter& lisp, Arguments arguments) {
    const auto name = [&]() -> const wchar_t* {
        switch (arguments[0].kind()) {
        case Kind::nil:
            return nullptr;
        case Kind::integer:
            return L"INT";
        case Kind::real:
            return L"REAL";
        case Kind::symbol:
            return L"SYM";
        case Kind::text:
            return L"STR";
        case Kind::cons:
            return L"LIST";
        case Kind::subr:
            return L"SUBR";
        case Kind::userFunction:
            return L"USUBR";
        case Kind::external:
            return L"EXRXSUBR";
        case Kind::entityName:
            return L"ENAME";
        case Kind::selectionSet:
            return L"PICKSET";
        case Kind::file:
            return L"FILE";
        case Kind::caughtError:
            return L"VL-CATCH-ALL-APPLY-ERROR";
        }
        return nullptr;
    }();
    return name == nullptr ? Value() : Value(lisp.intern(name));
}

Value exitFunction(LispInterpreter&, Arguments) {
    throw Error(std::wstring(exitMessage));
}

Value catchAllApply(LispInterpreter& lisp, Arguments arguments) {
    const std::vector<Value> values = arguments.size() > 1 ? elementsOf(arguments[1]) : std::vector<Value>();
    return lisp.catchAll(arguments[0], values);
}

Value isCaughtError(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].kind() == Kind::caughtError);
}

Value caughtMessage(LispInterpreter&, Arguments arguments) {
    if (arguments[0].kind() != Kind::caughtError) {
        typeError(L"vl-catch-all-apply-error", arguments[0]);
    }
    return makeText(arguments[0].as<CaughtError>().message);
}

Value exitWithError(LispInterpreter&, Arguments arguments) {
    throw Error(textOf(arguments[0]));
}

Value atomsFamily(LispInterpreter& lisp, Arguments arguments) {
    const bool texts = integerOf(arguments[0]) != 0;
    ListBuilder builder;
    const auto add = [&](Symbol& symbol) { builder.add(texts ? makeText(symbol.name) : Value(&symbol)); };
    if (arguments.size() > 1) {
        for (const Value& name : Elements(listOf(arguments[1]))) {
            Symbol* const symbol = lisp.intern(textOf(name));
            if (symbol->value) {
                add(*symbol);
            } else {
                builder.add(nil);
            }
        }
        return builder.take();
    }
    std::vector<Symbol*> symbols;
    lisp.forEachSymbol([&](Symbol& symbol) {
        if (symbol.value) {
            symbols.push_back(&symbol);
        }
    });
    std::ranges::sort(symbols, {}, &Symbol::name);
    for (Symbol* symbol : symbols) {
        add(*symbol);
    }
    return builder.take();
}

Value symbolName(LispInterpreter&, Arguments arguments) {
    return makeText(symbolOf(arguments[0])->name);
}

Value symbolValue(LispInterpreter&, Arguments arguments) {
    return symbolOf(arguments[0])->value;
}

Value isSymbol(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isSymbol());
}

// The parameter list and body of a function kept as a list.
Value functionList(LispInterpreter&, Arguments arguments) {
    const Value& value = symbolOf(arguments[0])->value;
    if (value.kind() == Kind::userFunction) {
        return cons(value.as<UserFunction>().definition, value.as<UserFunction>().body);
    }
    return value.isCons() ? value : Value();
}

Value functionListSet(LispInterpreter& lisp, Arguments arguments) {
    lisp.assign(*symbolOf(arguments[0]), listOf(arguments[1]));
    return arguments[0];
}

// There is nothing to load for the functions of the vl- family.
Value nothing(LispInterpreter&, Arguments) {
    return {};
}

Value memory(LispInterpreter& lisp, Arguments) {
    const HeapUse& use = heapUse();
    lisp.print(L"\nLISP 对象: " + std::to_wstring(use.objects) + L"，字节: " + std::to_wstring(use.bytes));
    return {};
}

constexpr FunctionRow rows[] = {
    {L"SET", set, 2, 2},
    {L"EVAL", evalFunction, 1, 1},
    {L"APPLY", applyFunction, 2, 2},
    {L"NOT", notFunction, 1, 1},
    {L"NULL", notFunction, 1, 1},
    {L"BOUNDP", boundp, 1, 1},
    {L"TYPE", typeOf, 1, 1},
    {L"EXIT", exitFunction, 0, 0},
    {L"QUIT", exitFunction, 0, 0},
    {L"VL-EXIT-WITH-ERROR", exitWithError, 1, 1},
    {L"VL-CATCH-ALL-APPLY", catchAllApply, 1, 2},
    {L"VL-CATCH-ALL-ERROR-P", isCaughtError, 1, 1},
    {L"VL-CATCH-ALL-ERROR-MESSAGE", caughtMessage, 1, 1},
    {L"ATOMS-FAMILY", atomsFamily, 1, 2},
    {L"VL-SYMBOL-NAME", symbolName, 1, 1},
    {L"VL-SYMBOL-VALUE", symbolValue, 1, 1},
    {L"VL-SYMBOLP", isSymbol, 1, 1},
    {L"DEFUN-Q-LIST-REF", functionList, 1, 1},
    {L"DEFUN-Q-LIST-SET", functionListSet, 2, 2},
    {L"VL-LOAD-COM", nothing, 0, 0},
    {L"VL-LOAD-REACTORS", nothing, 0, 0},
    {L"GC", nothing, 0, 0},
    {L"MEM", memory, 0, 0},
    {L"ALLOC", nothing, 1, 1},
    {L"EXPAND", nothing, 1, 1},
};

} // namespace

void addControlFunctions(LispInterpreter& lisp) {
    constexpr std::pair<const wchar_t*, SpecialForm> forms[] = {
        {L"QUOTE", quoteForm},
        {L"FUNCTION", functionForm},
        {L"LAMBDA", lambdaForm},
        {L"DEFUN", defunForm},
        {L"DEFUN-Q", defunQForm},
        {L"SETQ", setqForm},
        {L"AND", andForm},
        {L"OR", orForm},
        {L"WHILE", whileForm},
        {L"REPEAT", repeatForm},
        {L"FOREACH", foreachForm},
        {L"TRACE", traceForm<true>},
        {L"UNTRACE", traceForm<false>},
    };
    for (const auto& [name, form] : forms) {
        lisp.defineSpecial(name, form);
    }
    constexpr std::pair<const wchar_t*, BranchForm> branches[] = {
        {L"IF", ifForm}, {L"COND", condForm}, {L"PROGN", prognForm}};
    for (const auto& [name, form] : branches) {
        lisp.defineBranch(name, form);
    }
    addFunctions(lisp, rows);
}

} // namespace host::lisp
