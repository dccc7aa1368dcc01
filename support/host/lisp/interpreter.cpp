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

/// The innermost call that fails is the one that is told.
void noteExpression(Error& error, const Value& form) {
    if (error.expression.empty()) {
        const StackReserve reserve;
        error.expression = printedShort(form);
    }
}

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
    symbol->value = make<Subr>(symbol->name, function, minimum, maximum);
}

void LispInterpreter::defineSpecial(std::wstring_view name, SpecialForm form) {
    Symbol* const symbol = intern(name);
    symbol->value = make<Subr>(symbol->name, form, nullptr);
}

void LispInterpreter::defineBranch(std::wstring_view name, BranchForm form) {
    Symbol* const symbol = intern(name);
    symbol->value = make<Subr>(symbol->name, nullptr, form);
}

const Value* LispInterpreter::evalUpToLast(const Value& forms) {
    if (!forms.isCons()) {
        return nullptr;
    }
    const Value* at = &forms;
    while (at->cons().tail.isCons()) {
        eval(at->cons().head);
        at = &at->cons().tail;
    }
    return &at->cons().head;
}

Value LispInterpreter::evalSequence(const Value& forms) {
    const Value* const last = evalUpToLast(forms);
    return last != nullptr ? eval(*last) : Value();
}

const Value* LispInterpreter::followBranches(const Value* form, Value& result) {
    while (form != nullptr && form->isCons()) {
        const Value& head = form->cons().head;
        const Value& function = head.isSymbol() ? head.symbol()->value : head;
        if (function.kind() != Kind::subr) {
            break;
        }
        const BranchForm branch = function.as<Subr>().branch;
        if (branch == nullptr) {
            break;
        }
        try {
            form = branch(*this, form->cons().tail, result);
        } catch (Error& error) {
            noteExpression(error, *form);
            throw;
        }
    }
    return form;
}

Value LispInterpreter::evalCall(const Value& form) {
    ensureStack();
    tick();
    Value result;
    const Value* const last = followBranches(&form, result);
    if (last == nullptr) {
        return result;
    }
    if (!last->isCons()) {
        return eval(*last);
    }
    try {
        return evalPlainCall(*last);
    } catch (Error& error) {
        noteExpression(error, *last);
        throw;
    }
}

Value LispInterpreter::evalPlainCall(const Value& form) {
    const Value& head = form.cons().head;
    const Value& rest = form.cons().tail;
    // A copy, so that a function which replaces itself goes on living while it runs.
    const Value function = head.isSymbol() ? head.symbol()->value : head;
    if (function.kind() == Kind::subr && function.as<Subr>().special != nullptr) {
        return function.as<Subr>().special(*this, rest);
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
}

Value LispInterpreter::callFrame(const Value& function, Frame& frame) {
    switch (function.kind()) {
    case Kind::subr:
        if (function.as<Subr>().traced) [[unlikely]] {
            return callTraced(function, frame);
        }
        return callSubr(function.as<Subr>(), frame.arguments());
    case Kind::userFunction:
        if (function.as<UserFunction>().traced) [[unlikely]] {
            return callTraced(function, frame);
        }
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

Value LispInterpreter::callTraced(const Value& function, Frame& frame) {
    struct Depth {
        explicit Depth(int& depth) : count(depth) { ++count; }
        ~Depth() { --count; }
        int& count;
    } const depth(mTraceDepth);
    const bool isSubr = function.kind() == Kind::subr;
    const std::wstring indent = L"\n" + std::wstring(static_cast<std::size_t>(mTraceDepth) * 2 - 2, L' ');
    std::wstring call = isSubr ? function.as<Subr>().name : function.as<UserFunction>().name;
    for (const Value& argument : frame.arguments()) {
        call += L" " + printedShort(argument);
    }
    print(indent + L"进入 (" + call + L")");
    Value result = isSubr ? callSubr(function.as<Subr>(), frame.arguments())
                          : runFunction(function.as<UserFunction>(), frame);
    print(indent + L"结果: " + printedShort(result));
    return result;
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
        return runBody(function);
    } catch (Error& error) {
        onError(error); // the locals are still bound, *error* among them
        throw;
    }
}

/// Where the value of the body is that of a call of the same function, that call takes the place of the one
/// that runs: it binds every variable anew that the outer one has bound, so nothing can see the outer ones.
Value LispInterpreter::runBody(const UserFunction& function) {
    for (;;) {
        Value result;
        const Value* const last = followBranches(evalUpToLast(function.body), result);
        if (last == nullptr) {
            return result;
        }
        if (!last->isCons() || !rebindForTailCall(function, *last)) {
            return eval(*last);
        }
        tick();
    }
}

/// False, with nothing done, when the form is no well-formed call of the function.
bool LispInterpreter::rebindForTailCall(const UserFunction& function, const Value& form) {
    const Value& head = form.cons().head;
    if (!head.isSymbol() || head.symbol()->value.kind() != Kind::userFunction || function.traced ||
        head.symbol()->value.object() != &function) {
        return false;
    }
    std::size_t count = 0;
    const Value* at = &form.cons().tail;
    for (; at->isCons(); at = &at->cons().tail) {
        ++count;
    }
    if (!at->isNil() || count != function.parameters) {
        return false;
    }
    Frame frame(*this);
    for (const Value& argument : Elements(form.cons().tail)) {
        frame.push(eval(argument));
    }
    for (std::size_t index = 0; index < function.variables.size(); ++index) {
        Value& value = function.variables[index]->value;
        if (index < count) {
            value.swap(frame.base()[index]);
        } else {
            value = Value();
        }
    }
    return true;
}

Value LispInterpreter::resolveFunction(const Value& function) {
    switch (function.kind()) {
    case Kind::subr:
        if (!function.as<Subr>().evaluatesArguments()) {
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
    if (resolved.kind() == Kind::subr && !resolved.as<Subr>().traced) {
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

Reader LispInterpreter::readerOf(std::wstring_view source) {
    return Reader(source, [this](std::wstring_view name) {
        Symbol* const symbol = intern(name);
        return symbol->name == L"NIL" ? Value() : Value(symbol);
    });
}

Value LispInterpreter::readText(std::wstring_view source) {
    return readerOf(source).next().value_or(Value());
}

Value LispInterpreter::runProgram(std::wstring_view source, std::wstring_view fileName) {
    Reader reader = readerOf(source);
    const auto read = [&] {
        try {
            return reader.next();
        } catch (Error& error) {
            error.message +=
                L"，" + std::wstring(fileName) + L" 第 " + std::to_wstring(reader.faultLine()) + L" 行";
            throw;
        }
    };
    Value result;
    while (const std::optional<Value> form = read()) {
        result = eval(*form);
    }
    return result;
}

Value LispInterpreter::runTyped(std::wstring_view source) {
    Reader reader = readerOf(source);
    Value result;
    while (const std::optional<Value> form = reader.next()) {
        mLine->outermost = form->isCons() ? printedShort(*form) : std::wstring();
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
    return guarded([&] { return runTyped(source); });
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
