// System variables, settings, files of the support path, coordinate systems, and the picture.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/points.h"
#include "host/lisp/printer.h"
#include "host/win/win.h"

namespace host::lisp {

namespace {

constexpr std::size_t pathSize = 4096;

// System variables.

Value getVariable(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = arguments[0].isSymbol() ? arguments[0].symbol()->name : textOf(arguments[0]);
    const ResbufList value = systemVariable(name);
    return valueFrom(lisp, value.get()).value_or(Value());
}

Value setVariable(LispInterpreter&, Arguments arguments) {
    const std::wstring& name = arguments[0].isSymbol() ? arguments[0].symbol()->name : textOf(arguments[0]);
    ResbufBuilder builder;
    appendValue(builder, arguments[1], PointRule::numbers);
    const ResbufList value = builder.release();
    if (acedSetVar(name.c_str(), value.get()) != RTNORM) {
        throw Error(L"变量设置被拒绝: \"" + name + L"\" " + printedShort(arguments[1]));
    }
    return arguments[1];
}

Value getEnvironment(LispInterpreter&, Arguments arguments) {
    AcString value;
    const int status = acedGetEnv(textOf(arguments[0]).c_str(), value);
    return status == RTNORM ? makeText(value.kwszPtr()) : Value();
}

Value setEnvironment(LispInterpreter&, Arguments arguments) {
    const int status = acedSetEnv(textOf(arguments[0]).c_str(), textOf(arguments[1]).c_str());
    return status == RTNORM ? arguments[1] : Value();
}

Value getSetting(LispInterpreter&, Arguments arguments) {
    ACHAR value[pathSize];
    const int status = acedGetCfg(textOf(arguments[0]).c_str(), value, pathSize);
    return status == RTNORM ? makeText(value) : Value();
}

Value setSetting(LispInterpreter&, Arguments arguments) {
    const int status = acedSetCfg(textOf(arguments[0]).c_str(), textOf(arguments[1]).c_str());
    return status == RTNORM ? arguments[1] : Value();
}

Value findFile(LispInterpreter&, Arguments arguments) {
    AcString path;
    const int status = acedFindFile(textOf(arguments[0]).c_str(), path);
    return status == RTNORM ? makeText(path.kwszPtr()) : Value();
}

// (getfiled title initial extension flags).
Value askForFile(LispInterpreter&, Arguments arguments) {
    resbuf result{};
    const int status = acedGetFileD(textOf(arguments[0]).c_str(), textOf(arguments[1]).c_str(),
                                    textOf(arguments[2]).c_str(), integerOf(arguments[3]), &result);
    if (status != RTNORM || result.restype != RTSTR || result.resval.rstring == nullptr) {
        return {};
    }
    Value path = makeText(result.resval.rstring);
    acutDelString(result.resval.rstring);
    return path;
}

Value alertUser(LispInterpreter&, Arguments arguments) {
    acedAlert(textOf(arguments[0]).c_str());
    return {};
}

Value version(LispInterpreter&, Arguments) {
    return makeText(L"AutoLISP 24.0 (zh-CN)");
}

Value menuCommand(LispInterpreter&, Arguments arguments) {
    acedMenuCmd(textOf(arguments[0]).c_str());
    return {};
}

// Modules.

Value loadModuleFile(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = textOf(arguments[0]);
    if (acrxLoadModule(name.c_str(), false)) {
        return arguments[0];
    }
    if (arguments.size() > 1) {
        return lisp.eval(arguments[1]);
    }
    throw Error(L"ARXLOAD 失败: \"" + escaped(name) + L"\"");
}

Value unloadModuleFile(LispInterpreter& lisp, Arguments arguments) {
    const std::wstring& name = textOf(arguments[0]);
    if (acrxUnloadModule(name.c_str())) {
        return arguments[0];
    }
    if (arguments.size() > 1) {
        return lisp.eval(arguments[1]);
    }
    throw Error(L"ARXUNLOAD 失败: \"" + escaped(name) + L"\"");
}

Value loadedModuleNames(LispInterpreter&, Arguments) {
    ListBuilder builder;
    for (const auto& module : loadedModules()) {
        builder.add(makeText(module->name));
    }
    return builder.take();
}

// Coordinate systems.

// A coordinate system: 0 world, 1 UCS, 2 display, an entity's, or that of an extrusion direction.
ResbufList systemFrom(const Value& value) {
    ResbufBuilder builder;
    if (value.isInteger() || value.kind() == Kind::entityName) {
        appendValue(builder, value, PointRule::numbers);
    } else {
        const AcGePoint3d direction = pointOf(value).point;
        builder.point(RT3DPOINT, direction.x, direction.y, direction.z);
    }
    return builder.release();
}

Value transform(LispInterpreter&, Arguments arguments) {
    ads_point point{};
    setPoint(point, pointOf(arguments[0]).point);
    const ResbufList from = systemFrom(arguments[1]);
    const ResbufList to = systemFrom(arguments[2]);
    const int displacement = arguments.size() > 3 && arguments[3] ? 1 : 0;
    ads_point result{};
    if (acedTrans(point, from.get(), to.get(), displacement, result) != RTNORM) {
        return {};
    }
    return pointList(asPoint3d(result));
}

Value snap(LispInterpreter&, Arguments arguments) {
    ads_point point{};
    setPoint(point, pointOf(arguments[0]).point);
    ads_point result{};
    const int status = acedOsnap(point, textOf(arguments[1]).c_str(), result);
    return status == RTNORM ? pointList(asPoint3d(result)) : Value();
}

// The picture.

int integerAt(Arguments arguments, std::size_t index, int otherwise) {
    return arguments.size() > index && arguments[index] ? integerOf(arguments[index]) : otherwise;
}

// (grdraw from to colour [highlight]).
Value drawVector(LispInterpreter&, Arguments arguments) {
    ads_point from{};
    ads_point to{};
    setPoint(from, pointOf(arguments[0]).point);
    setPoint(to, pointOf(arguments[1]).point);
    acedGrDraw(from, to, integerOf(arguments[2]), integerAt(arguments, 3, 0));
    return {};
}

Value drawVectors(LispInterpreter&, Arguments arguments) {
    ResbufBuilder builder;
    for (const Value& element : Elements(listOf(arguments[0]))) {
        appendValue(builder, element, PointRule::numbers);
    }
    ads_matrix matrix{};
    const bool hasMatrix = arguments.size() > 1 && arguments[1];
    std::size_t row = 0;
    if (hasMatrix) {
        for (const Value& values : Elements(listOf(arguments[1]))) {
            std::size_t column = 0;
            for (const Value& value : Elements(listOf(values))) {
                if (row < 4 && column < 4) {
                    matrix[row][column++] = numberOf(value);
                }
            }
            ++row;
        }
    }
    acedGrVecs(builder.release().get(), hasMatrix ? matrix : nullptr);
    return {};
}

Value drawText(LispInterpreter&, Arguments arguments) {
    if (arguments.size() >= 2) {
        acedGrText(integerOf(arguments[0]), textOf(arguments[1]).c_str(), integerAt(arguments, 2, 0));
    }
    return {};
}

Value redraw(LispInterpreter&, Arguments arguments) {
    const bool hasEntity = !arguments.empty() && arguments[0];
    acedRedraw(hasEntity ? entityOf(arguments[0]).name : nullptr, integerAt(arguments, 1, 1));
    return {};
}

// Whether the drawing counts as changed, kept and put back around what should not count.
Value pushChanged(LispInterpreter& lisp, Arguments) {
    curDoc()->pushDbmod();
    return lisp.truth();
}

Value popChanged(LispInterpreter& lisp, Arguments) {
    curDoc()->popDbmod();
    return lisp.truth();
}

Value nothing(LispInterpreter&, Arguments) {
    return {};
}

constexpr FunctionRow rows[] = {
    {L"GETVAR", getVariable, 1, 1},
    {L"SETVAR", setVariable, 2, 2},
    {L"GETENV", getEnvironment, 1, 1},
    {L"SETENV", setEnvironment, 2, 2},
    {L"GETCFG", getSetting, 1, 1},
    {L"SETCFG", setSetting, 2, 2},
    {L"FINDFILE", findFile, 1, 1},
    {L"GETFILED", askForFile, 4, 4},
    {L"ALERT", alertUser, 1, 1},
    {L"VER", version, 0, 0},
    {L"MENUCMD", menuCommand, 1, 1},
    {L"ARX", loadedModuleNames, 0, 0},
    {L"ARXLOAD", loadModuleFile, 1, 2},
    {L"ARXUNLOAD", unloadModuleFile, 1, 2},
    {L"TRANS", transform, 3, 4},
    {L"OSNAP", snap, 2, 2},
    {L"GRDRAW", drawVector, 3, 4},
    {L"GRVECS", drawVectors, 1, 2},
    {L"GRTEXT", drawText, 0, 3},
    {L"GRCLEAR", nothing, 0, 0},
    {L"REDRAW", redraw, 0, 2},
    {L"ACAD-PUSH-DBMOD", pushChanged, 0, 0},
    {L"ACAD-POP-DBMOD", popChanged, 0, 0},
    {L"INITDIA", nothing, 0, 1},
    {L"SETFUNHELP", nothing, 1, 4},
};

} // namespace

void setErrorNumber(int number) {
    resbuf value{};
    value.restype = RTSHORT;
    value.resval.rint = static_cast<short>(number);
    putSystemVariable(L"ERRNO", value);
}

void addSystemFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
