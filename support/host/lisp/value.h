// Values of the LISP language: a small tagged word that is copied freely. Numbers and nil are held in place,
// symbols belong to the interpreter, everything else is an object counted by its references. Lists can't be
// changed once made, so no cycles arise and counting frees everything.
#pragma once

#include "host/rx/rx.h"

#include <cassert>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {
class LispInterpreter;
}

namespace host::lisp {

class Value;
struct Symbol;
struct Cons;
struct Text;
struct Subr;
struct UserFunction;
struct External;
struct EntityName;
struct SelectionSet;
struct FileHandle;
struct CaughtError;

enum class Kind : std::uint8_t {
    nil,
    integer,
    real,
    symbol,
    // Counted objects from here on.
    text,
    cons,
    subr,
    userFunction,
    external,
    entityName,
    selectionSet,
    file,
    caughtError,
};

/// What counted objects begin with.
struct Object {
    explicit Object(Kind objectKind) : kind(objectKind) {}
    std::uint32_t references = 0;
    Kind kind;
};

/// Objects alive and the most bytes there may be; beyond it making objects raises an error. The language runs
/// on one thread at a time, so plain counters do.
struct HeapUse {
    std::size_t objects = 0;
    std::size_t bytes = 0;
    std::size_t mostBytes = std::size_t{4} << 30;
};
HeapUse& heapUse();

class Value {
public:
    Value() noexcept : mBits{}, mKind(Kind::nil) {}
    Value(std::int32_t integer) noexcept : mKind(Kind::integer) { mBits.integer = integer; }
    Value(double real) noexcept : mKind(Kind::real) { mBits.real = real; }
    Value(Symbol* symbol) noexcept : mKind(Kind::symbol) { mBits.symbol = symbol; }
    /// Shares the object.
    explicit Value(Object* object) noexcept : mKind(object->kind) {
        mBits.object = object;
        ++object->references;
    }
    explicit Value(bool) = delete;
    Value(const Value& other) noexcept : mBits(other.mBits), mKind(other.mKind) {
        if (mKind >= Kind::text) {
            ++mBits.object->references;
        }
    }
    Value(Value&& other) noexcept : mBits(other.mBits), mKind(std::exchange(other.mKind, Kind::nil)) {}
    Value& operator=(const Value& other) noexcept {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Value moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~Value() {
        if (mKind >= Kind::text && --mBits.object->references == 0) {
            destroy(mBits.object);
        }
    }
    void swap(Value& other) noexcept {
        std::swap(mBits, other.mBits);
        std::swap(mKind, other.mKind);
    }

    Kind kind() const noexcept { return mKind; }
    explicit operator bool() const noexcept { return mKind != Kind::nil; }
    bool isNil() const noexcept { return mKind == Kind::nil; }
    bool isInteger() const noexcept { return mKind == Kind::integer; }
    bool isReal() const noexcept { return mKind == Kind::real; }
    bool isNumber() const noexcept { return mKind == Kind::integer || mKind == Kind::real; }
    bool isSymbol() const noexcept { return mKind == Kind::symbol; }
    bool isText() const noexcept { return mKind == Kind::text; }
    bool isCons() const noexcept { return mKind == Kind::cons; }
    bool isList() const noexcept { return isNil() || isCons(); }

    // The caller has checked the kind.
    std::int32_t integer() const noexcept { return mBits.integer; }
    double real() const noexcept { return mBits.real; }
    /// An integer or real as a real.
    double number() const noexcept { return isInteger() ? mBits.integer : mBits.real; }
    Symbol* symbol() const noexcept { return mBits.symbol; }
    Object* object() const noexcept { return mBits.object; }
    const std::wstring& text() const noexcept;
    const Cons& cons() const noexcept;
    template <class T>
    T& as() const noexcept {
        assert(mKind >= Kind::text);
        return *static_cast<T*>(mBits.object);
    }
    /// First element and rest; nil for nil. The caller has checked that it is a list.
    const Value& head() const noexcept;
    const Value& tail() const noexcept;

private:
    union Bits {
        std::int32_t integer;
        double real;
        Symbol* symbol;
        Object* object;
    };
    static void destroy(Object* object) noexcept;

    Bits mBits;
    Kind mKind;
};

/// The values a function is called with.
using Arguments = std::span<const Value>;

inline const Value nil;

/// A name with its one value, which is its function too. Lives as long as the interpreter.
struct Symbol {
    std::wstring name; ///< upper case; empty for the value that prints as nothing
    Value value;
    bool constant = false; ///< T and nil may not be set
};

struct Cons : Object {
    Cons(Value first, Value rest) : Object(Kind::cons), head(std::move(first)), tail(std::move(rest)) {}
    Value head;
    Value tail;
};

struct Text : Object {
    explicit Text(std::wstring content) : Object(Kind::text), text(std::move(content)) {}
    std::wstring text;
};

using Function = Value (*)(LispInterpreter&, Arguments);
using SpecialForm = Value (*)(LispInterpreter&, const Value& forms);
/// Runs a form up to the part whose value is its own: that part, still to be evaluated, or null with `result`
/// set.
using BranchForm = const Value* (*)(LispInterpreter&, const Value& forms, Value& result);

/// A function of the language itself. Special and branching forms get their arguments unevaluated.
struct Subr : Object {
    Subr(std::wstring_view subrName, Function call, int least, int most)
        : Object(Kind::subr), name(subrName), function(call), minimum(least), maximum(most) {}
    Subr(std::wstring_view subrName, SpecialForm form, BranchForm branchForm)
        : Object(Kind::subr), name(subrName), special(form), branch(branchForm) {}
    bool evaluatesArguments() const { return function != nullptr; }

    std::wstring name;
    Function function = nullptr;
    SpecialForm special = nullptr;
    BranchForm branch = nullptr;
    int minimum = 0;
    int maximum = -1; ///< -1: any number
    bool traced = false;
};

/// A function written in the language.
struct UserFunction : Object {
    UserFunction() : Object(Kind::userFunction) {}
    std::wstring name;              ///< empty for a lambda
    std::vector<Symbol*> variables; ///< parameters, then locals
    std::size_t parameters = 0;
    Value body;
    Value definition; ///< parameter list as written, for printing it back
    bool traced = false;
};

/// A function that a module has defined.
struct External : Object {
    explicit External(std::wstring functionName) : Object(Kind::external), name(std::move(functionName)) {}
    std::wstring name;
};

struct EntityName : Object {
    explicit EntityName(const ads_name from) : Object(Kind::entityName) { ads_name_set(from, name); }
    ads_name name;
};

/// Frees the set with its last reference.
struct SelectionSet : Object {
    using Release = void (*)(ads_name);
    SelectionSet(const ads_name from, Release releaseSet) : Object(Kind::selectionSet), release(releaseSet) {
        ads_name_set(from, name);
    }
    ~SelectionSet();
    ads_name name;
    Release release;
};

/// What vl-catch-all-apply gives for an error.
struct CaughtError : Object {
    explicit CaughtError(std::wstring text) : Object(Kind::caughtError), message(std::move(text)) {}
    std::wstring message;
};

/// An object on the heap.
template <class T, class... Parts>
Value make(Parts&&... parts);

void countObject(std::size_t bytes);
template <class T, class... Parts>
Value make(Parts&&... parts) {
    countObject(sizeof(T));
    return Value(static_cast<Object*>(new T(std::forward<Parts>(parts)...)));
}

Value makeText(std::wstring text);
inline Value cons(Value head, Value tail) {
    return make<Cons>(std::move(head), std::move(tail));
}

inline const std::wstring& Value::text() const noexcept {
    return as<Text>().text;
}
inline const Cons& Value::cons() const noexcept {
    return as<Cons>();
}
inline const Value& Value::head() const noexcept {
    return isCons() ? cons().head : nil;
}
inline const Value& Value::tail() const noexcept {
    return isCons() ? cons().tail : nil;
}

/// Makes a list from front to back.
class ListBuilder {
public:
    void add(Value value) {
        Value cell = lisp::cons(std::move(value), nil);
        Cons* added = &cell.as<Cons>();
        if (mLast == nullptr) {
            mFirst = std::move(cell);
        } else {
            mLast->tail = std::move(cell);
        }
        mLast = added;
    }
    /// Puts a value in the place of the closing nil. Nothing may be added after.
    void end(Value tail) {
        if (mLast == nullptr) {
            mFirst = std::move(tail);
        } else {
            mLast->tail = std::move(tail);
        }
    }
    Value take() {
        mLast = nullptr;
        return std::move(mFirst);
    }
    bool empty() const { return mLast == nullptr; }

private:
    Value mFirst;
    Cons* mLast = nullptr;
};

template <class... Values>
Value list(Values&&... values) {
    ListBuilder builder;
    (builder.add(Value(std::forward<Values>(values))), ...);
    return builder.take();
}

/// Walks the elements of a list, for range loops; stops at the closing nil or dotted tail.
class Elements {
public:
    explicit Elements(const Value& list) : mList(list) {}
    class Iterator {
    public:
        explicit Iterator(const Value* at) : mAt(at) {}
        const Value& operator*() const { return mAt->cons().head; }
        Iterator& operator++() {
            mAt = &mAt->cons().tail;
            return *this;
        }
        bool operator!=(std::nullptr_t) const { return mAt->isCons(); }

    private:
        const Value* mAt;
    };
    Iterator begin() const { return Iterator(&mList); }
    std::nullptr_t end() const { return nullptr; }

private:
    const Value& mList;
};

/// Same value: numbers by value and kind, texts by content, all else by identity.
bool eq(const Value& left, const Value& right);
/// Equal in structure; numbers by value, within `fuzz`.
bool equal(const Value& left, const Value& right, double fuzz = 0.0);

} // namespace host::lisp
