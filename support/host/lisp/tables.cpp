// Symbol tables and dictionaries.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"

#include <map>

namespace host::lisp {

namespace {

Value listOrNil(resbuf* groups) {
    const ResbufList owned(groups);
    return groups != nullptr ? groupsToList(groups) : Value();
}

int flagAt(Arguments arguments, std::size_t index) {
    return arguments.size() > index && arguments[index] ? 1 : 0;
}

Value searchTable(LispInterpreter&, Arguments arguments) {
    return listOrNil(
        acdbTblSearch(textOf(arguments[0]).c_str(), textOf(arguments[1]).c_str(), flagAt(arguments, 2)));
}

Value nextInTable(LispInterpreter&, Arguments arguments) {
    return listOrNil(acdbTblNext(textOf(arguments[0]).c_str(), flagAt(arguments, 1)));
}

Value recordName(LispInterpreter&, Arguments arguments) {
    ads_name record{};
    const int status = acdbTblObjName(textOf(arguments[0]).c_str(), textOf(arguments[1]).c_str(), record);
    return status == RTNORM ? entityValue(record) : Value();
}

// (snvalid name [flag]): whether a table may hold the name.
Value isValidName(LispInterpreter& lisp, Arguments arguments) {
    const int flag = arguments.size() > 1 && arguments[1] ? integerOf(arguments[1]) : 0;
    return lisp.boolean(acdbSNValid(textOf(arguments[0]).c_str(), flag) == RTNORM);
}

Value namedObjects(LispInterpreter&, Arguments) {
    ads_name dictionary{};
    return acdbNamedObjDict(dictionary) == RTNORM ? entityValue(dictionary) : Value();
}

Value searchDictionary(LispInterpreter&, Arguments arguments) {
    return listOrNil(
        acdbDictSearch(entityOf(arguments[0]).name, textOf(arguments[1]).c_str(), flagAt(arguments, 2)));
}

Value nextInDictionary(LispInterpreter&, Arguments arguments) {
    return listOrNil(acdbDictNext(entityOf(arguments[0]).name, flagAt(arguments, 1)));
}

Value addToDictionary(LispInterpreter&, Arguments arguments) {
    const int status =
        acdbDictAdd(entityOf(arguments[0]).name, textOf(arguments[1]).c_str(), entityOf(arguments[2]).name);
    return status == RTNORM ? arguments[2] : Value();
}

Value removeFromDictionary(LispInterpreter& lisp, Arguments arguments) {
    const EntityName& dictionary = entityOf(arguments[0]);
    const std::wstring& key = textOf(arguments[1]);
    // The name of what was removed is the result.
    const Value entry = listOrNil(acdbDictSearch(dictionary.name, key.c_str(), 0));
    if (acdbDictRemove(dictionary.name, key.c_str()) != RTNORM) {
        return {};
    }
    for (const Value& pair : Elements(entry)) {
        if (pair.isCons() && pair.head().isInteger() && pair.head().integer() == -1) {
            return pair.tail();
        }
    }
    return lisp.truth();
}

Value renameInDictionary(LispInterpreter&, Arguments arguments) {
    const int status = acdbDictRename(entityOf(arguments[0]).name, textOf(arguments[1]).c_str(),
                                      textOf(arguments[2]).c_str());
    return status == RTNORM ? arguments[2] : Value();
}

// Names of the layouts in the order of their tabs, without the model's.
Value layoutNames(LispInterpreter&, Arguments) {
    const AcDbDatabase* const database = acdbCurDwg();
    std::multimap<int, std::wstring> names;
    const auto* layouts =
        database != nullptr ? peek<AcDbDictionary>(database->layoutDictionaryId()) : nullptr;
    for (const auto& entry : layouts != nullptr ? layouts->entries() : std::vector<AcDbDictionary::Entry>()) {
        const auto* const layout = peek<AcDbLayout>(entry.id);
        if (layout != nullptr && !layout->modelType()) {
            names.emplace(layout->getTabOrder(), layout->layoutName().kwszPtr());
        }
    }
    ListBuilder builder;
    for (const auto& [order, name] : names) {
        builder.add(makeText(name));
    }
    return builder.take();
}

constexpr FunctionRow rows[] = {
    {L"LAYOUTLIST", layoutNames, 0, 0},        {L"TBLSEARCH", searchTable, 2, 3},
    {L"TBLNEXT", nextInTable, 1, 2},           {L"TBLOBJNAME", recordName, 2, 2},
    {L"SNVALID", isValidName, 1, 2},           {L"NAMEDOBJDICT", namedObjects, 0, 0},
    {L"DICTSEARCH", searchDictionary, 2, 3},   {L"DICTNEXT", nextInDictionary, 1, 2},
    {L"DICTADD", addToDictionary, 3, 3},       {L"DICTREMOVE", removeFromDictionary, 2, 2},
    {L"DICTRENAME", renameInDictionary, 3, 3},
};

} // namespace

void addTableFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
