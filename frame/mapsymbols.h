// The map symbols that LISP-callable functions draw: boundaries, slopes, railways, power lines, bridge marks.
#pragma once

/// Named as the functions are.
enum class LineSymbol {
    jqx,
    dgx,
    hdx,
    hxx,
    xpw,
    xpj,
    dpw,
    dpj,
    substation,
    county,
    country,
    province,
    city,
    eline,
    railroad,
    drailroad
};
enum class BridgeMark { hoverb, voverb, hnoverb, hnoverb1 };

// Handlers of LISP functions. RTNORM, whatever the user did.

int DrawLineSymbol(LineSymbol symbol);
int PlaceBridgeMarks(BridgeMark mark);

template <LineSymbol symbol>
int DrawSymbol() {
    return DrawLineSymbol(symbol);
}
template <BridgeMark mark>
int PlaceMarks() {
    return PlaceBridgeMarks(mark);
}
