#include "host/lisp/value.h"

#include "host/lisp/error.h"
#include "host/lisp/file.h"
#include "host/lisp/stack.h"

#include <cmath>

namespace host::lisp {

HeapUse& heapUse() {
    static HeapUse use;
    return use;
}

void countObject(std::size_t bytes) {
    HeapUse& use = heapUse();
    if (use.bytes + bytes > use.mostBytes) {
        throw Error(L"LISP 内存不足");
    }
    ++use.objects;
    use.bytes += bytes;
}

SelectionSet::~SelectionSet() {
    if (release != nullptr) {
        release(name);
    }
}

Value makeText(std::wstring text) {
    countObject(sizeof(Text) + text.size() * sizeof(wchar_t));
    return Value(static_cast<Object*>(new Text(std::move(text))));
}

namespace {

template <class T>
void dispose(Object* object, std::size_t extra = 0) noexcept {
    HeapUse& use = heapUse();
    --use.objects;
    use.bytes -= sizeof(T) + extra;
    delete static_cast<T*>(object);
}

} // namespace

// A list is freed along its tail without recursion; deep nesting of heads is put on a list of its own.
void Value::destroy(Object* object) noexcept {
    switch (object->kind) {
    case Kind::cons: {
        std::vector<Value> nested;
        Value current;
        current.mBits.object = object;
        current.mKind = Kind::cons;
        object->references = 1;
        for (;;) {
            while (current.isCons() && current.mBits.object->references == 1) {
                Cons& cell = current.as<Cons>();
                if (cell.head.isCons() && cell.head.object()->references == 1) {
                    nested.push_back(std::move(cell.head));
                }
                Value rest = std::move(cell.tail);
                cell.references = 0;
                current.mKind = Kind::nil;
                dispose<Cons>(&cell);
                current = std::move(rest);
            }
            if (nested.empty()) {
                return;
            }
            current = std::move(nested.back());
            nested.pop_back();
        }
    }
    case Kind::text:
        dispose<Text>(object, static_cast<Text*>(object)->text.size() * sizeof(wchar_t));
        return;
    case Kind::subr:
        dispose<Subr>(object);
        return;
    case Kind::userFunction:
        dispose<UserFunction>(object);
        return;
    case Kind::external:
        dispose<External>(object);
        return;
    case Kind::entityName:
        dispose<EntityName>(object);
        return;
    case Kind::selectionSet:
        dispose<SelectionSet>(object);
        return;
    case Kind::file:
        dispose<FileHandle>(object);
        return;
    case Kind::caughtError:
        dispose<CaughtError>(object);
        return;
    case Kind::nil:
    case Kind::integer:
    case Kind::real:
    case Kind::symbol:
        return;
    }
}

bool eq(const Value& left, const Value& right) {
    if (left.kind() != right.kind()) {
        return false;
    }
    switch (left.kind()) {
    case Kind::nil:
        return true;
    case Kind::integer:
        return left.integer() == right.integer();
    case Kind::real:
        return left.real() == right.real();
    case Kind::symbol:
        return left.symbol() == right.symbol();
    case Kind::text:
        return left.object() == right.object() || left.text() == right.text();
    case Kind::entityName:
        return ads_name_equal(left.as<EntityName>().name, right.as<EntityName>().name);
    case Kind::selectionSet:
        return ads_name_equal(left.as<SelectionSet>().name, right.as<SelectionSet>().name);
    default:
        return left.object() == right.object();
    }
}

bool equal(const Value& left, const Value& right, double fuzz) {
    ensureStack();
    const Value* a = &left;
    const Value* b = &right;
    while (a->isCons() && b->isCons()) {
        if (a->object() == b->object()) {
            return true;
        }
        if (!equal(a->cons().head, b->cons().head, fuzz)) {
            return false;
        }
        a = &a->cons().tail;
        b = &b->cons().tail;
    }
    if (a->isNumber() && b->isNumber()) {
        const double x = a->number();
        const double y = b->number();
        return x == y || std::abs(x - y) <= fuzz;
    }
    return eq(*a, *b);
}

} // namespace host::lisp
