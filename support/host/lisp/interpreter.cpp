#include "host/lisp/interpreter.h"

#include "host/lisp/builtins.h"
#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/lisp/stack.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {

using namespace lisp;

namespace {

constexpr std::size_t stackValues = std::size_t{1} << 18;
constexpr int ticksBetweenBreaks = 20000;

} // namespace

/// A line of execution from the host's call on. Programs of the host stand still while a command waits for
/// more input and others run meanwhile, so what belongs to one run is kept together, its value stack above
/// all.
struct LispInterpreter::Line {
    Line()
        : memory(new std::byte[stackValues * sizeof(Value)]), top(reinterpret_cast<Value*>(memory.get())),
          end(top + stackValues) {}

    std::unique_ptr<std::byte[]> memory; ///< arguments and saved values of running calls
    Value* top;
    Value* end;
    int catchDepth = 0;
    bool inErrorHandler = false;
    std::wstring outermost; ///< the expression that was typed, printed
};

/// A line of its own for the scope, then the one before again.
class LispInterpreter::LineScope {
public:
    explicit LineScope(LispInterpreter& lisp) : mLisp(lisp), mBefore(lisp.mLine) {
        if (lisp.mFreeLines.empty()) {
            mOwn = std::make_unique<Line>();
        } else {
            mOwn = std::move(lisp.mFreeLines.back());
            lisp.mFreeLines.pop_back();
        }
        lisp.mLine = mOwn.get();
    }
    ~LineScope() {
        mOwn->catchDepth = 0;
        mOwn->inErrorHandler = false;
        mOwn->outermost.clear();
        mLisp.mFreeLines.push_back(std::move(mOwn));
        mLisp.mLine = mBefore;
    }
    LineScope(const LineScope&) = delete;
    LineScope& operator=(const LineScope&) = delete;

private:
    LispInterpreter& mLisp;
    Line* mBefore;
    std::unique_ptr<Line> mOwn;
};

/// Around calls of the host: they may run commands, and while those wait other lines run. Afterwards this
/// line goes on with itself.
class LispInterpreter::KeepLine {
public:
    explicit KeepLine(LispInterpreter& lisp) : mLisp(lisp), mLine(lisp.mLine) {}
    ~KeepLine() { mLisp.mLine = mLine; }
    KeepLine(const KeepLine&) = delete;
    KeepLine& operator=(const KeepLine&) = delete;

private:
    LispInterpreter& mLisp;
    Line* mLine;
};

/// A stretch of the value stack, given back at the end of the scope.
class LispInterpreter::Frame {
public:
    explicit Frame(LispInterpreter& lisp) : mLine(*lisp.mLine), mBase(mLine.top) {}
    ~Frame() {
        while (mLine.top != mBase) {
            (--mLine.top)->~Value();
        }
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    void push(Value value) {
        if (mLine.top == mLine.end) {
            throw Error(L"已达到 LISP 堆栈的极限");
        }
        new (mLine.top) Value(std::move(value));
        ++mLine.top;
    }
    Value* base() const { return mBase; }
    std::size_t size() const { return static_cast<std::size_t>(mLine.top - mBase); }
    Arguments arguments() const { return {mBase, size()}; }

private:
    Line& mLine;
    Value* mBase;
};

/// Exchanges the values of symbols with those in a frame, and back at the end of the scope.
class LispInterpreter::Bindings {
public:
    Bindings(const std::vector<Symbol*>& variables, Value* values) : mVariables(variables), mValues(values) {
        for (std::size_t at = 0; at < mVariables.size(); ++at) {
            mVariables[at]->value.swap(mValues[at]);
        }
    }
    ~Bindings() {
        for (std::size_t at = mVariables.size(); at-- > 0;) {
            mVariables[at]->value.swap(mValues[at]);
        }
    }
    Bindings(const Bindings&) = delete;
    Bindings& operator=(const Bindings&) = delete;

private:
    const std::vector<Symbol*>& mVariables;
    Value* mValues;
};

LispInterpreter::LispInterpreter(LispSurroundings surroundings)
    : mSurroundings(std::move(surroundings)), mQuiet(std::make_unique<Symbol>()),
      mTicksLeft(ticksBetweenBreaks) {
    allowDeepStack();
    Symbol* const truth = intern(L"T");
    mTruth = Value(truth);
    truth->value = mTruth;
    truth->constant = true;
    mQuiet->value = Value(mQuiet.get());
    mLambda = intern(L"LAMBDA");
    mErrorHandler = intern(L"*ERROR*");
    addControlFunctions(*this);
    addArithmeticFunctions(*this);
    addListFunctions(*this);
    addStringFunctions(*this);
    addSequenceFunctions(*this);
    addGeometryFunctions(*this);
    addOutputFunctions(*this);
    addFileFunctions(*this);
}

LispInterpreter::~LispInterpreter() {
    // Functions refer to symbols, so all values go before the first symbol does.
    for (auto& [name, symbol] : mSymbols) {
        symbol->value = Value();
    }
}

Symbol* LispInterpreter::intern(std::wstring_view name) {
    std::wstring key = toUpper(name);
    if (const auto found = mSymbols.find(key); found != mSymbols.end()) {
        return found->second.get();
    }
    auto symbol = std::make_unique<Symbol>();
    symbol->name = key;
    return mSymbols.emplace(std::move(key), std::move(symbol)).first->second.get();
}

Value LispInterpreter::valueOf(std::wstring_view name) const {
    const auto found = mSymbols.find(toUpper(name));
    return found == mSymbols.end() ? Value() : found->second->value;
}

void LispInterpreter::setValue(std::wstring_view name, Value value) {
    intern(name)->value = std::move(value);
}

bool LispInterpreter::isFunction(std::wstring_view name) const {
    const Value value = valueOf(name);
    switch (value.kind()) {
    case Kind::subr:
    case Kind::userFunction:
    case Kind::external:
        return true;
    case Kind::cons:
        return value.head().isSymbol() ? value.head().symbol() == mLambda : value.head().isList();
    default:
        return false;
    }
}

void LispInterpreter::forEachSymbol(const std::function<void(Symbol&)>& visit) const {
    for (const auto& [name, symbol] : mSymbols) {
        visit(*symbol);
    }
}

void LispInterpreter::assign(Symbol& symbol, Value value) {
    if (symbol.constant) [[unlikely]] {
        throw Error(L"不能给受保护的符号赋值: " + symbol.name);
    }
    symbol.value = std::move(value);
}

void LispInterpreter::define(std::wstring_view name, Function function, int minimum, int maximum) {
    Symbol* const symbol = intern(name);
    symbol->value = make<Subr>(symbol->name, function, nullptr, minimum, maximum);
}

void LispInterpreter::defineSpecial(std::wstring_view name, SpecialForm form) {
    Symbol* const symbol = intern(name);
    symbol->value = make<Subr>(symbol->name, nullptr, form, 0, any);
}

Value LispInterpreter::evalSequence(const Value& forms) {
    Value result;
    for (const Value* at = &forms; at->isCons(); at = &at->cons().tail) {
        result = eval(at->cons().head);
    }
    return result;
}

Value LispInterpreter::evalCall(const Value& form) {
    ensureStack();
    tick();
    const Value& head = form.cons().head;
    const Value& rest = form.cons().tail;
    try {
        // A copy, so that a function which replaces itself goes on living while it runs.
        const Value function = head.isSymbol() ? head.symbol()->value : head;
        if (function.kind() == Kind::subr) {
            const Subr& subr = function.as<Subr>();
            if (subr.special != nullptr) {
                return subr.special(*this, rest);
            }
        }
        Frame frame(*this);
        const Value* at = &rest;
        for (; at->isCons(); at = &at->cons().tail) {
            frame.push(eval(at->cons().head));
        }
        if (!at->isNil()) {
            throw Error(L"调用的参数表有缺陷");
        }
        if (function.isNil() && head.isSymbol()) {
            throw Error(L"没有函数定义: " + head.symbol()->name);
        }
        return callFrame(function, frame);
    } catch (Error& error) {
        if (error.expression.empty()) {
            StackReserve reserve;
            error.expression = printedShort(form);
        }
        throw;
    }
}

Value LispInterpreter::callFrame(const Value& function, Frame& frame) {
    switch (function.kind()) {
    case Kind::subr:
        return callSubr(function.as<Subr>(), frame.arguments());
    case Kind::userFunction:
        return runFunction(function.as<UserFunction>(), frame);
    case Kind::external:
        if (!mSurroundings.callExternal) {
            throw Error(L"没有函数定义: " + function.as<External>().name);
        }
        {
            const KeepLine keep(*this);
            return mSurroundings.callExternal(function.as<External>().name, frame.arguments());
        }
    default: {
        const Value resolved = resolveFunction(function);
        return callFrame(resolved, frame);
    }
    }
}

Value LispInterpreter::callSubr(const Subr& subr, Arguments arguments) {
    const int count = static_cast<int>(arguments.size());
    if (count < subr.minimum) {
        tooFewArguments();
    }
    if (subr.maximum >= 0 && count > subr.maximum) {
        tooManyArguments();
    }
    const KeepLine keep(*this);
    try {
        return subr.function(*this, arguments);
    } catch (const Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw Error(L"LISP 内存不足");
    } catch (const std::logic_error& failure) { // faults of the host's, told like any error
        throw Error(subr.name + L": " + fromUtf8(failure.what()));
    } catch (const std::runtime_error& failure) {
        throw Error(subr.name + L": " + fromUtf8(failure.what()));
    }
}

Value LispInterpreter::runFunction(const UserFunction& function, Frame& frame) {
    if (frame.size() < function.parameters) {
        tooFewArguments();
    }
    if (frame.size() > function.parameters) {
        tooManyArguments();
    }
    for (std::size_t at = function.parameters; at < function.variables.size(); ++at) {
        frame.push(Value());
    }
    const Bindings bindings(function.variables, frame.base());
    try {
        return evalSequence(function.body);
    } catch (Error& error) {
        onError(error); // the locals are still bound, *error* among them
        throw;
    }
}

Value LispInterpreter::resolveFunction(const Value& function) {
    switch (function.kind()) {
    case Kind::subr:
        if (function.as<Subr>().special != nullptr) {
            throw Error(L"函数错误: " + function.as<Subr>().name);
        }
        return function;
    case Kind::userFunction:
    case Kind::external:
        return function;
    case Kind::symbol: {
        const Value& value = function.symbol()->value;
        if (value.isNil()) {
            throw Error(L"没有函数定义: " + function.symbol()->name);
        }
        if (value.isSymbol()) {
            throw Error(L"函数错误: " + printedShort(value));
        }
        return resolveFunction(value);
    }
    case Kind::cons: {
        const Value& head = function.head();
        if (head.isSymbol() && head.symbol() == mLambda && function.tail().isCons()) {
            return makeFunction({}, function.tail().head(), function.tail().tail());
        }
        if (head.isList()) { // a function kept as a list, by defun-q
            return makeFunction({}, head, function.tail());
        }
        break;
    }
    default:
        break;
    }
    throw Error(L"函数错误: " + printedShort(function));
}

Value LispInterpreter::apply(const Value& function, Arguments arguments) {
    ensureStack();
    tick();
    const Value resolved = resolveFunction(function);
    if (resolved.kind() == Kind::subr) {
        return callSubr(resolved.as<Subr>(), arguments);
    }
    Frame frame(*this);
    for (const Value& argument : arguments) {
        frame.push(argument);
    }
    return callFrame(resolved, frame);
}

Value LispInterpreter::makeFunction(std::wstring name, const Value& parameters, const Value& body) {
    Value result = make<UserFunction>();
    UserFunction& function = result.as<UserFunction>();
    function.name = std::move(name);
    function.body = body;
    function.definition = parameters;
    bool locals = false;
    for (const Value& parameter : Elements(listOf(parameters))) {
        Symbol* const symbol = symbolOf(parameter);
        if (symbol->name == L"/") {
            locals = true;
            continue;
        }
        if (symbol->constant) {
            throw Error(L"不能给受保护的符号赋值: " + symbol->name);
        }
        function.variables.push_back(symbol);
        function.parameters += locals ? 0 : 1;
    }
    return result;
}

Value LispInterpreter::catchAll(const Value& function, Arguments arguments) {
    struct Catching {
        explicit Catching(Line& catching) : line(catching) { ++line.catchDepth; }
        ~Catching() { --line.catchDepth; }
        Line& line;
    } const catching(*mLine);
    try {
        return apply(function, arguments);
    } catch (const Error& error) {
        return make<CaughtError>(error.message);
    }
}

Value LispInterpreter::readText(std::wstring_view source) {
    Reader reader(source, [this](std::wstring_view name) {
        Symbol* const symbol = intern(name);
        return symbol->name == L"NIL" ? Value() : Value(symbol);
    });
    return reader.next().value_or(Value());
}

Value LispInterpreter::runProgram(std::wstring_view source) {
    return runForms(source, false);
}

Value LispInterpreter::runForms(std::wstring_view source, bool typed) {
    Reader reader(source, [this](std::wstring_view name) {
        Symbol* const symbol = intern(name);
        return symbol->name == L"NIL" ? Value() : Value(symbol);
    });
    Value result;
    while (const std::optional<Value> form = reader.next()) {
        if (typed) {
            mLine->outermost = form->isCons() ? printedShort(*form) : std::wstring();
        }
        result = eval(*form);
    }
    return result;
}

void LispInterpreter::checkBreak() {
    mTicksLeft = ticksBetweenBreaks;
    if (mSurroundings.userBreak && mSurroundings.userBreak()) {
        cancelled();
    }
}

LispEvaluation LispInterpreter::guarded(const std::function<Value()>& work) {
    LispEvaluation evaluation;
    const LineScope line(*this);
    struct Depth {
        explicit Depth(int& depth) : count(depth) { ++count; }
        ~Depth() { --count; }
        int& count;
    } const depth(mDepth);
    try {
        evaluation.value = work();
    } catch (Error& error) {
        onError(error);
        evaluation.ok = false;
        evaluation.message = std::move(error.message);
        evaluation.expression = std::move(error.expression);
        evaluation.line = std::move(error.line);
        if (mDepth == 1 && mSurroundings.afterError) {
            mSurroundings.afterError();
        }
    }
    return evaluation;
}

LispEvaluation LispInterpreter::evaluate(std::wstring_view source) {
    return guarded([&] { return runForms(source, true); });
}

LispEvaluation LispInterpreter::call(std::wstring_view functionName, Arguments arguments) {
    return guarded([&] { return apply(Value(intern(functionName)), arguments); });
}

std::wstring LispInterpreter::displayed(const Value& value) const {
    return printed(value);
}

void LispInterpreter::onError(Error& error) {
    if (error.handled || mLine->catchDepth > 0) {
        return;
    }
    error.handled = true;
    const StackReserve reserve;
    const Value handler = mErrorHandler->value;
    if (handler.isNil() || mLine->inErrorHandler) {
        error.line = errorLine(error);
    } else {
        mLine->inErrorHandler = true;
        try {
            const Value message = makeText(error.message);
            apply(handler, Arguments(&message, 1));
        } catch (Error& nested) {
            error.line = nested.handled ? nested.line : errorLine(nested);
        }
        mLine->inErrorHandler = false;
        // A module's handler restores settings; the message is still the user's to know.
        if (handler.kind() == Kind::external && error.line.empty()) {
            error.line = errorLine(error);
        }
    }
}

std::wstring LispInterpreter::errorLine(const Error& error) const {
    std::wstring line = L"; 错误: " + error.message;
    // The place is told where the user does not see it: inside a function, not in what was typed.
    if (!error.expression.empty() && error.expression != mLine->outermost) {
        line += L"，位于 " + error.expression;
    }
    return line;
}

} // namespace host
