// The table of LISP functions, their definition in a document and their dispatch.
#include "frame/lispfunctiontable.h"

#include "drawing/widthpolyline.h"
#include "frame/drawingfunctions.h"
#include "frame/mapsymbols.h"
#include "frame/utilityfunctions.h"

#include <string_view>

namespace {

using Handler = int (*)();
constexpr Handler notProvided = nullptr;

constexpr LispFunctionRow functions[] = {
    {L"", nullptr, false},
    {L"c:jqx", DrawSymbol<LineSymbol::jqx>, false},
    {L"c:dgx", DrawSymbol<LineSymbol::dgx>, false},
    {L"c:hdx", DrawSymbol<LineSymbol::hdx>, false},
    {L"c:hxx", DrawSymbol<LineSymbol::hxx>, false},
    {L"c:xpw", DrawSymbol<LineSymbol::xpw>, false},
    {L"c:xpj", DrawSymbol<LineSymbol::xpj>, false},
    {L"c:dpw", DrawSymbol<LineSymbol::dpw>, false},
    {L"c:dpj", DrawSymbol<LineSymbol::dpj>, false},
    {L"c:substation", DrawSymbol<LineSymbol::substation>, false},
    {L"c:county", DrawSymbol<LineSymbol::county>, false},
    {L"c:country", DrawSymbol<LineSymbol::country>, false},
    {L"c:province", DrawSymbol<LineSymbol::province>, false},
    {L"c:city", DrawSymbol<LineSymbol::city>, false},
    {L"c:eline", DrawSymbol<LineSymbol::eline>, false},
    {L"c:railroad", DrawSymbol<LineSymbol::railroad>, false},
    {L"c:drailroad", DrawSymbol<LineSymbol::drailroad>, false},
    {L"c:hoverb", PlaceMarks<BridgeMark::hoverb>, false},
    {L"c:voverb", PlaceMarks<BridgeMark::voverb>, false},
    {L"c:hnoverb", PlaceMarks<BridgeMark::hnoverb>, false},
    {L"c:hnoverb1", PlaceMarks<BridgeMark::hnoverb1>, false},
    {L"c:mxd", GetEntityList, false},
    {L"_fid", FindByHandle, false},
    {L"_midp", MidPoint, false},
    {L"_getsp", CurveStartPoint, false},
    {L"dhatch", MakeHatch, false},
    {L"rad2ang", RadiansToDegrees, false},
    {L"ang2rad", DegreesToRadians, false},
    {L"_setsh", SetTextStyle, false},
    {L"dodrag", DragSelection, false},
    {L"_strchg", ReplaceText, false},
    {L"_ubegin", BeginUndoGroup, false},
    {L"_uend", EndUndoGroup, false},
    {L"*error*", RestoreAfterError, false},
    {L"_errdo", RestoreAfterError, false},
    {L"mkngroup", MakeGroup, false},
    {L"gcpoint", CentrePoint, false},
    {L"_glpoint", CurveLastPoint, false},
    {L"c:V7_HLGX", notProvided, false},
    {L"ssgetex", SelectWithPrompt, false},
    {L"c:mpedit", EditPolylines, false},
    {L"c:V7_SPline", DrawWidthPolyline, false},
    {L"c:V7_DFreeWay", notProvided, false},
    {L"c:V7_DrRoad", notProvided, false},
    {L"c:V7_MarkBSign", notProvided, false},
    {L"IMGCommand", notProvided, false},
    {L"KRB_NetLoad", notProvided, false},
};

constexpr int firstCode = 1;
constexpr int lastCode = static_cast<int>(std::size(functions)) - 1;
static_assert(lastCode == 46);
/// Codes up to this one are calls; the one beyond the table is a call that fails.
constexpr int lastAcceptedCode = lastCode + 1;

int tellNotProvided(std::wstring_view name) {
    const bool isCommand = name.starts_with(L"c:");
    acutPrintf(L"\n%s %s 尚未提供。", isCommand ? L"命令" : L"函数", name.data() + (isCommand ? 2 : 0));
    return RTNORM;
}

} // namespace

std::span<const LispFunctionRow> LispFunctionTable() {
    return functions;
}

void DefineLispFunctions() {
    for (int code = firstCode; code <= lastCode; ++code) {
        const LispFunctionRow& row = functions[code];
        if (acedDefun(row.name, code) == 0) {
            return;
        }
        if (row.isRegistered) {
            acedRegFunc(row.handler, code);
        }
    }
}

void UndefineLispFunctions() {
    for (int code = firstCode; code <= lastCode; ++code) {
        acedUndef(functions[code].name, code);
    }
}

int DispatchLispFunction() {
    acedRetVoid();
    return InvokeLispFunction(acedGetFunCode());
}

int InvokeLispFunction(int code) {
    if (code < firstCode || code > lastAcceptedCode) {
        return RTERROR;
    }
    if (code > lastCode) {
        return RSERR;
    }
    try {
        const LispFunctionRow& row = functions[code];
        return (row.handler != nullptr ? row.handler() : tellNotProvided(row.name)) == RTNORM ? RSRSLT
                                                                                              : RSERR;
    } catch (...) {
        return RSERR;
    }
}
