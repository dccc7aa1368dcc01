// Values kept in the drawing by name: the vlax-ldata- functions. A dictionary is one of the drawing's, by its
// name, or the extension dictionary of an object. Each value is a record of groups: 90 integer, 40 real,
// 1 text, 300 symbol, 340 entity, 290 nil, and lists between 102 "{" and "}" with "." before a dotted end.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/stack.h"

namespace host::lisp {

namespace {

constexpr const wchar_t* objectDictionary = L"LISP_DATA"; ///< in an object's extension dictionary

constexpr int integerCode = 90;
constexpr int realCode = 40;
constexpr int textCode = 1;
constexpr int symbolCode = 300;
constexpr int entityCode = 340;
constexpr int nilCode = 290;
constexpr int markCode = 102;

/// False for values that can't be kept: functions, files, selection sets.
bool appendKept(ResbufBuilder& builder, const Value& value) {
    ensureStack();
    switch (value.kind()) {
    case Kind::nil:
        builder.integer(nilCode, 0);
        return true;
    case Kind::integer:
        builder.integer(integerCode, value.integer());
        return true;
    case Kind::real:
        builder.real(realCode, value.real());
        return true;
    case Kind::symbol:
        builder.string(symbolCode, value.symbol()->name);
        return true;
    case Kind::text:
        builder.string(textCode, value.text());
        return true;
    case Kind::entityName:
        builder.name(entityCode, value.as<EntityName>().name);
        return true;
    case Kind::cons:
        break;
    default:
        return false;
    }
    builder.string(markCode, L"{");
    const Value* at = &value;
    for (; at->isCons(); at = &at->cons().tail) {
        if (!appendKept(builder, at->cons().head)) {
            return false;
        }
    }
    if (!at->isNil()) {
        builder.string(markCode, L".");
        if (!appendKept(builder, *at)) {
            return false;
        }
    }
    builder.string(markCode, L"}");
    return true;
}

std::wstring_view markOf(const resbuf* group) {
    return group != nullptr && group->restype == markCode && group->resval.rstring != nullptr
               ? group->resval.rstring
               : std::wstring_view();
}

// Reads one value; `at` is left behind it. A damaged record ends where it is damaged.
Value keptValue(LispInterpreter& lisp, const resbuf*& at) {
    ensureStack();
    const resbuf& group = *std::exchange(at, at->rbnext);
    switch (group.restype) {
    case integerCode:
        return group.resval.rlong;
    case realCode:
        return group.resval.rreal;
    case textCode:
        return makeText(group.resval.rstring != nullptr ? group.resval.rstring : L"");
    case symbolCode:
        return group.resval.rstring != nullptr ? Value(lisp.intern(group.resval.rstring)) : Value();
    case entityCode:
        return entityValue(group.resval.rlname);
    case markCode:
        break;
    default:
        return {};
    }
    ListBuilder builder;
    while (at != nullptr && markOf(at) != L"}") {
        if (markOf(at) == L"." && !builder.empty() && at->rbnext != nullptr) {
            at = at->rbnext;
            builder.end(keptValue(lisp, at));
            break;
        }
        builder.add(keptValue(lisp, at));
    }
    at = at != nullptr ? at->rbnext : nullptr;
    return builder.take();
}

/// The dictionary below another one, made when it is missing and wanted.
AcDbObjectId dictionaryIn(AcDbObjectId parent, const std::wstring& name, bool wanted) {
    const Opened<AcDbDictionary> dictionary(parent, wanted ? AcDb::kForWrite : AcDb::kForRead);
    AcDbObjectId id;
    if (!dictionary || dictionary->getAt(name.c_str(), id) == Acad::eOk || !wanted) {
        return id;
    }
    auto made = std::make_unique<AcDbDictionary>();
    if (dictionary->setAt(name.c_str(), made.get(), id) == Acad::eOk) {
        made.release()->close();
    }
    return id;
}

/// The dictionary that an argument names: a text, or an entity name. Null when there is none.
AcDbObjectId dictionaryOf(const Value& argument, bool wanted) {
    const AcDbDatabase* const database = acdbCurDwg();
    if (database == nullptr) {
        return {};
    }
    if (argument.isText()) {
        return dictionaryIn(database->namedObjectsDictionaryId(), argument.text(), wanted);
    }
    AcDbObjectId id;
    if (acdbGetObjectId(id, entityOf(argument).name) != Acad::eOk) {
        return {};
    }
    AcDbObjectId extension;
    {
        const Opened<AcDbObject> object(id, wanted ? AcDb::kForWrite : AcDb::kForRead);
        if (!object) {
            return {};
        }
        if (object->extensionDictionary().isNull() && wanted) {
            object->createExtensionDictionary();
        }
        extension = object->extensionDictionary();
    }
    return extension.isNull() ? AcDbObjectId() : dictionaryIn(extension, objectDictionary, wanted);
}

Value valueIn(LispInterpreter& lisp, AcDbObjectId id) {
    const Opened<AcDbXrecord> record(id, AcDb::kForRead);
    resbuf* groups = nullptr;
    if (!record || record->rbChain(&groups) != Acad::eOk) {
        return {};
    }
    const ResbufList owned(groups);
    const resbuf* at = groups;
    return at != nullptr ? keptValue(lisp, at) : Value();
}

Value put(LispInterpreter&, Arguments arguments) {
    const std::wstring& key = textOf(arguments[1]);
    ResbufBuilder builder;
    if (!appendKept(builder, arguments[2])) {
        typeError(L"可保存的值:", arguments[2]);
    }
    const ResbufList groups = builder.release();
    const Opened<AcDbDictionary> dictionary(dictionaryOf(arguments[0], true), AcDb::kForWrite);
    auto record = std::make_unique<AcDbXrecord>();
    AcDbObjectId id;
    if (!dictionary || record->setFromRbChain(*groups, acdbCurDwg()) != Acad::eOk) {
        throw Error(L"不能在图形中保存数据: \"" + key + L"\"");
    }
    if (dictionary->getAt(key.c_str(), id) == Acad::eOk) {
        if (peek<AcDbXrecord>(id) == nullptr) {
            throw Error(L"不能在图形中保存数据: \"" + key + L"\"");
        }
        dictionary->remove(key.c_str());
        if (const Opened<AcDbXrecord> old(id, AcDb::kForWrite); old) {
            old->erase();
        }
    }
    if (dictionary->setAt(key.c_str(), record.get(), id) != Acad::eOk) {
        throw Error(L"不能在图形中保存数据: \"" + key + L"\"");
    }
    record.release()->close();
    return arguments[2];
}

// (vlax-ldata-get dictionary key [default]).
Value get(LispInterpreter& lisp, Arguments arguments) {
    const Value otherwise = arguments.size() > 2 ? arguments[2] : Value();
    const std::wstring& key = textOf(arguments[1]);
    AcDbObjectId id;
    const Opened<AcDbDictionary> dictionary(dictionaryOf(arguments[0], false), AcDb::kForRead);
    if (!dictionary || dictionary->getAt(key.c_str(), id) != Acad::eOk || peek<AcDbXrecord>(id) == nullptr) {
        return otherwise;
    }
    return valueIn(lisp, id);
}

Value remove(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& key = textOf(arguments[1]);
    AcDbObjectId id;
    const Opened<AcDbDictionary> dictionary(dictionaryOf(arguments[0], false), AcDb::kForWrite);
    if (!dictionary || dictionary->getAt(key.c_str(), id) != Acad::eOk || peek<AcDbXrecord>(id) == nullptr) {
        return {};
    }
    dictionary->remove(key.c_str());
    if (const Opened<AcDbXrecord> record(id, AcDb::kForWrite); record) {
        record->erase();
    }
    return lisp.truth();
}

// ((key . value) ...).
Value entries(LispInterpreter& lisp, Arguments arguments) {
    const auto* const dictionary = peek<AcDbDictionary>(dictionaryOf(arguments[0], false));
    ListBuilder builder;
    if (dictionary == nullptr) {
        return {};
    }
    for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
        if (peek<AcDbXrecord>(entry.id) != nullptr) {
            builder.add(cons(makeText(entry.name.kwszPtr()), valueIn(lisp, entry.id)));
        }
    }
    return builder.take();
}

Value canBeKept(LispInterpreter& lisp, Arguments arguments) {
    ResbufBuilder builder;
    return lisp.boolean(appendKept(builder, arguments[0]));
}

constexpr FunctionRow rows[] = {
    {L"VLAX-LDATA-PUT", put, 3, 4},        {L"VLAX-LDATA-GET", get, 2, 4},
    {L"VLAX-LDATA-DELETE", remove, 2, 3},  {L"VLAX-LDATA-LIST", entries, 1, 2},
    {L"VLAX-LDATA-TEST", canBeKept, 1, 1},
};

} // namespace

void addDataFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
