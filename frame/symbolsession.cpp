// The layer of the map symbols and their library.
#include "frame/symbolsession.h"

#include "restools/drawing.h"
#include "restools/hostcommand.h"
#include "restools/sysvar.h"

namespace {

constexpr const ACHAR* symbolLayer = L"DXTX";
constexpr const ACHAR* symbolColor = L"GREEN";
constexpr const ACHAR* continuous = L"CONTINUOUS";
constexpr double symbolLtscale = 10.0;
/// The star leaves the library's blocks and linetypes in the drawing, but no reference to it.
constexpr const ACHAR* explodedLibrary = L"*$DXT";

bool isInTable(const ACHAR* table, const ACHAR* name) {
    return !CResbuf(acdbTblSearch(table, name, 0)).IsNull();
}

/// Thaws, turns on, unlocks the layer and makes it current.
void makeCurrent(const ACHAR* layer) {
    RunHostCommand({L"_.-LAYER", L"_T", layer, L"_ON", layer, L"_U", layer, L"_M", layer, L""});
}

} // namespace

SymbolSession::SymbolSession() {
    SetVar(L"BLIPMODE", 0);
    SetVar(L"CMDECHO", 0);
    RunHostCommand({L"_.UNDO", L"_Group"});
    if (isInTable(L"LAYER", symbolLayer)) {
        makeCurrent(symbolLayer);
    }
    if (!isInTable(L"LTYPE", continuous)) {
        RunHostCommand({L"_.-LINETYPE", L"_L", continuous, L"ACAD.lin", L""});
    }
    RunHostCommand({L"_.-LAYER", L"_M", symbolLayer, L"_L", continuous, symbolLayer, L"_C", symbolColor,
                    symbolLayer, L""});
    SetVar(L"LTSCALE", symbolLtscale);
    RunHostCommand({L"_.INSERT", explodedLibrary, L"0.0,0.0,0.0", L"", L""});
}

SymbolSession::~SymbolSession() {
    makeCurrent(L"0");
    RunHostCommand({L"_.UNDO", L"_End"});
}
