// What the map symbol functions share before and after drawing: the symbols' layer and library, and one undo
// step.
#pragma once

/// While it lives the symbol layer is current, and the symbol library's blocks and linetypes are in the
/// drawing; layer 0 is current afterwards, however the function is left.
class SymbolSession {
public:
    SymbolSession();
    ~SymbolSession();
    SymbolSession(const SymbolSession&) = delete;
    SymbolSession& operator=(const SymbolSession&) = delete;
};
