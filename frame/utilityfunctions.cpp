// The handlers of the small LISP functions.
#include "frame/utilityfunctions.h"

#include "restools/resbuf.h"
#include "restools/sysvar.h"

#include <numbers>
#include <optional>

namespace {

/// The first argument as a number.
std::optional<double> numberArgument() {
    const resbuf* argument = acedGetArgs();
    if (argument == nullptr) {
        return std::nullopt;
    }
    switch (argument->restype) {
    case RTREAL:
        return argument->resval.rreal;
    case RTSHORT:
        return argument->resval.rint;
    default:
        return std::nullopt;
    }
}

void runUndo(const ACHAR* option) {
    acedCommandS(RTSTR, L"_.UNDO", RTSTR, option, RTNONE);
}

} // namespace

int GetEntityList() {
    ads_name entity;
    ads_point picked;
    if (acedEntSel(L"选择需要EntGet的对象:", entity, picked) != RTNORM) {
        acedRetNil();
        return RTNONE;
    }
    const CResbuf data(acdbEntGet(entity));
    acedRetList(data);
    return RTNORM;
}

int RadiansToDegrees() {
    if (const std::optional<double> radians = numberArgument()) {
        acedRetReal(*radians / std::numbers::pi * 180.0);
    }
    return RTNORM;
}

int DegreesToRadians() {
    if (const std::optional<double> degrees = numberArgument()) {
        acedRetReal(*degrees * std::numbers::pi / 180.0);
    }
    return RTNORM;
}

int BeginUndoGroup() {
    runUndo(L"_Begin");
    SetVar(L"PLINETYPE", 0);
    return RTNORM;
}

int EndUndoGroup() {
    SetVar(L"PLINETYPE", 2);
    runUndo(L"_End");
    return RTNORM;
}

int RestoreAfterError() {
    SetVar(L"OSMODE", 0);
    SetVar(L"CLAYER", L"0");
    SetVar(L"CECOLOR", L"BYLAYER");
    SetVar(L"CELTYPE", L"CONTINUOUS");
    SetVar(L"PLINETYPE", 2);
    runUndo(L"_End");
    return RTNORM;
}
