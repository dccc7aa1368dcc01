// The evaluator: symbols, dynamic binding, calls, errors. What it knows of the host comes through
// LispSurroundings, so that it runs without a drawing as well.
#pragma once

#include "host/lisp/error.h"
#include "host/lisp/value.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

namespace lisp {
class Reader;
}

/// What the evaluator asks of the program around it. Functions left empty have no effect.
struct LispSurroundings {
    /// Text for the command line; a line begins with \n, as everywhere in the host.
    std::function<void(std::wstring_view text)> print;
    /// Whether the user has pressed Escape since the last call. Asked every few milliseconds.
    std::function<bool()> userBreak;
    /// Calls a function defined by a module.
    std::function<lisp::Value(const std::wstring& name, lisp::Arguments arguments)> callExternal;
    /// After an error has ended the outermost program: leaves half-fed commands.
    std::function<void()> afterError;
    /// Folders that programs are loaded from (with their subfolders). Nothing else loads.
    std::function<std::vector<std::filesystem::path>()> codeFolders;
    /// Folders in which programs may read and write other files (with their subfolders).
    std::function<std::vector<std::filesystem::path>()> dataFolders;
};

/// What became of evaluated text. `value` must not outlive the interpreter.
struct LispEvaluation {
    bool ok = true;
    lisp::Value value;
    std::wstring message;    ///< of the error, as *error* got it
    std::wstring expression; ///< the innermost expression that failed
    /// What the user is to be told of the error, one line; empty when *error* has dealt with it.
    std::wstring line;
};

/// The language of one document. Not for use from several threads.
class LispInterpreter {
public:
    explicit LispInterpreter(LispSurroundings surroundings = {});
    ~LispInterpreter();
    LispInterpreter(const LispInterpreter&) = delete;
    LispInterpreter& operator=(const LispInterpreter&) = delete;

    /// Evaluates every expression of the text; the value is that of the last. An error ends it, after *error*
    /// was called where the program has one.
    LispEvaluation evaluate(std::wstring_view source);
    /// Calls the function that a symbol names, with errors treated as by evaluate.
    LispEvaluation call(std::wstring_view functionName, lisp::Arguments arguments);
    /// Value as the prompt shows it: nothing for the value of (princ).
    std::wstring displayed(const lisp::Value& value) const;

    LispSurroundings& surroundings() { return mSurroundings; }

    // Symbols.

    /// The symbol of a name in any case; made when there is none.
    lisp::Symbol* intern(std::wstring_view name);
    /// The symbol's value; nil for a name never seen.
    lisp::Value valueOf(std::wstring_view name) const;
    void setValue(std::wstring_view name, lisp::Value value);
    /// True when the name has a function as its value.
    bool isFunction(std::wstring_view name) const;
    void forEachSymbol(const std::function<void(lisp::Symbol&)>& visit) const;
    /// Raises an error for constants.
    void assign(lisp::Symbol& symbol, lisp::Value value);
    const lisp::Value& truth() const { return mTruth; }
    lisp::Value boolean(bool condition) const { return condition ? mTruth : lisp::Value(); }
    /// The value that prints as nothing.
    lisp::Value quiet() const { return mQuiet.get(); }

    void define(std::wstring_view name, lisp::Function function, int minimum, int maximum);
    void defineSpecial(std::wstring_view name, lisp::SpecialForm form);
    void defineBranch(std::wstring_view name, lisp::BranchForm form);

    // Evaluation. Errors are thrown as lisp::Error.

    lisp::Value eval(const lisp::Value& form) {
        if (form.isSymbol()) {
            return form.symbol()->value;
        }
        return form.isCons() ? evalCall(form) : form;
    }
    /// Evaluates the forms of a list; the value of the last.
    lisp::Value evalSequence(const lisp::Value& forms);
    /// Evaluates them up to the last one, which is given back; null when there is none.
    const lisp::Value* evalUpToLast(const lisp::Value& forms);
    /// Calls a function value, a symbol that names one, or a lambda list.
    lisp::Value apply(const lisp::Value& function, lisp::Arguments arguments);
    /// The function behind a value, for calling it many times; raises an error when there is none.
    lisp::Value resolveFunction(const lisp::Value& function);
    /// A function from parameters (a list with an optional / and locals) and body.
    lisp::Value makeFunction(std::wstring name, const lisp::Value& parameters, const lisp::Value& body);
    /// Calls with errors kept from *error* and given back as a value.
    lisp::Value catchAll(const lisp::Value& function, lisp::Arguments arguments);
    lisp::Value readText(std::wstring_view source);
    /// Evaluates all expressions of a program's text; errors are thrown. What can't be read is told with the
    /// name and the line.
    lisp::Value runProgram(std::wstring_view source, std::wstring_view fileName);

    /// To be called in loops that run no calls: notices Escape.
    void tick() {
        if (--mTicksLeft <= 0) [[unlikely]] {
            checkBreak();
        }
    }
    void print(std::wstring_view text) const {
        if (mSurroundings.print) {
            mSurroundings.print(text);
        }
    }

    /// Error number of the last failing call of the host (ERRNO).
    int lastErrorNumber = 0;

private:
    class Frame;
    class Bindings;
    class LineScope;
    class KeepLine;
    struct Line;

    lisp::Value evalCall(const lisp::Value& form);
    /// Follows a call through forms that branch to the form that has its value; null when `result` has it.
    const lisp::Value* followBranches(const lisp::Value* form, lisp::Value& result);
    lisp::Value evalPlainCall(const lisp::Value& form);
    lisp::Value callFrame(const lisp::Value& function, Frame& frame);
    lisp::Value callTraced(const lisp::Value& function, Frame& frame);
    lisp::Value callSubr(const lisp::Subr& subr, lisp::Arguments arguments);
    lisp::Value runFunction(const lisp::UserFunction& function, Frame& frame);
    lisp::Value runBody(const lisp::UserFunction& function);
    bool rebindForTailCall(const lisp::UserFunction& function, const lisp::Value& form);
    lisp::Reader readerOf(std::wstring_view source);
    lisp::Value runTyped(std::wstring_view source);
    void checkBreak();
    LispEvaluation guarded(const std::function<lisp::Value()>& work);
    /// Tells *error* or the user, once, unless something catches the error.
    void onError(lisp::Error& error);
    std::wstring errorLine(const lisp::Error& error) const;

    LispSurroundings mSurroundings;
    std::unordered_map<std::wstring, std::unique_ptr<lisp::Symbol>> mSymbols;
    std::unique_ptr<lisp::Symbol> mQuiet;
    lisp::Value mTruth;
    lisp::Symbol* mLambda;
    lisp::Symbol* mErrorHandler;
    std::vector<std::unique_ptr<Line>> mFreeLines;
    Line* mLine = nullptr; ///< the one that runs
    int mTicksLeft;
    int mTraceDepth = 0;
    int mDepth = 0; ///< evaluations begun and not ended, those that stand still included
};

} // namespace host
