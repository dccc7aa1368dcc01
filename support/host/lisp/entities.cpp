// Entities and other objects of the drawing as association lists.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/points.h"

namespace host::lisp {

namespace {

Value listOrNil(resbuf* groups) {
    const ResbufList owned(groups);
    return groups != nullptr ? groupsToList(groups) : Value();
}

// (entget name [applications]): extended data of the applications named, with wildcards.
Value get(LispInterpreter&, Arguments arguments) {
    const EntityName& entity = entityOf(arguments[0]);
    if (arguments.size() < 2 || arguments[1].isNil()) {
        return listOrNil(acdbEntGet(entity.name));
    }
    ResbufBuilder applications;
    for (const Value& application : Elements(listOf(arguments[1]))) {
        applications.string(RTSTR, textOf(application));
    }
    return listOrNil(acdbEntGetX(entity.name, applications.release().get()));
}

Value modify(LispInterpreter&, Arguments arguments) {
    return acdbEntMod(listToGroups(arguments[0]).get()) == RTNORM ? arguments[0] : Value();
}

// What making came to: the end of a block's definition gives its name.
Value madeOrNil(int status, const Value& made) {
    if (status == RTKWORD) {
        AcString name;
        acedGetInput(name);
        return makeText(name.kwszPtr());
    }
    return status == RTNORM ? made : Value();
}

// (entmake [list]): without a list an entity that is being made in parts is given up.
Value makeEntity(LispInterpreter&, Arguments arguments) {
    if (arguments.empty() || arguments[0].isNil()) {
        acdbEntMake(nullptr);
        return {};
    }
    return madeOrNil(acdbEntMake(listToGroups(arguments[0]).get()), arguments[0]);
}

Value makeObject(LispInterpreter&, Arguments arguments) {
    ads_name object{};
    if (arguments.empty() || arguments[0].isNil()) {
        return {};
    }
    const int status = acdbEntMakeX(listToGroups(arguments[0]).get(), object);
    return madeOrNil(status, ads_name_nil(object) ? arguments[0] : entityValue(object));
}

Value erase(LispInterpreter&, Arguments arguments) {
    return acdbEntDel(entityOf(arguments[0]).name) == RTNORM ? arguments[0] : Value();
}

Value last(LispInterpreter&, Arguments) {
    ads_name entity{};
    return acdbEntLast(entity) == RTNORM ? entityValue(entity) : Value();
}

Value next(LispInterpreter&, Arguments arguments) {
    ads_name entity{};
    const bool first = arguments.empty() || arguments[0].isNil();
    return acdbEntNext(first ? nullptr : entityOf(arguments[0]).name, entity) == RTNORM ? entityValue(entity)
                                                                                        : Value();
}

Value byHandle(LispInterpreter&, Arguments arguments) {
    ads_name entity{};
    return acdbHandEnt(textOf(arguments[0]).c_str(), entity) == RTNORM ? entityValue(entity) : Value();
}

Value update(LispInterpreter&, Arguments arguments) {
    return acdbEntUpd(entityOf(arguments[0]).name) == RTNORM ? arguments[0] : Value();
}

Value registerApplication(LispInterpreter&, Arguments arguments) {
    return acdbRegApp(textOf(arguments[0]).c_str()) == RTNORM ? arguments[0] : Value();
}

Value xdataRoom(LispInterpreter&, Arguments arguments) {
    Adesk::Int32 room = 0;
    return acdbXDRoom(entityOf(arguments[0]).name, &room) == RTNORM ? Value(room) : Value();
}

Value xdataSize(LispInterpreter&, Arguments arguments) {
    const ResbufList groups = listToGroups(list(cons(-3, arguments[0])));
    Adesk::Int32 size = 0;
    return acdbXDSize(groups->rbnext, &size) == RTNORM ? Value(size) : Value();
}

Value textBox(LispInterpreter&, Arguments arguments) {
    ads_point first{};
    ads_point second{};
    if (acdbTextBox(listToGroups(arguments[0]).get(), first, second) != RTNORM) {
        return {};
    }
    return list(pointList(asPoint3d(first)), pointList(asPoint3d(second)));
}

constexpr FunctionRow rows[] = {
    {L"ENTGET", get, 1, 2},         {L"ENTMOD", modify, 1, 1},
    {L"ENTMAKE", makeEntity, 0, 1}, {L"ENTMAKEX", makeObject, 0, 1},
    {L"ENTDEL", erase, 1, 1},       {L"ENTLAST", last, 0, 0},
    {L"ENTNEXT", next, 0, 1},       {L"HANDENT", byHandle, 1, 1},
    {L"ENTUPD", update, 1, 1},      {L"REGAPP", registerApplication, 1, 1},
    {L"XDROOM", xdataRoom, 1, 1},   {L"XDSIZE", xdataSize, 1, 1},
    {L"TEXTBOX", textBox, 1, 1},
};

} // namespace

void addEntityFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
