// The panel beside the drawing while a polyline with widths is drawn.
#pragma once

#include "host/arx.h"

/// Keeps the panel open, and the key that toggles snap listened to, for its own lifetime.
class CLineParaHolder {
public:
    CLineParaHolder();
    ~CLineParaHolder();
    CLineParaHolder(const CLineParaHolder&) = delete;
    CLineParaHolder& operator=(const CLineParaHolder&) = delete;
};

/// Shows the settings' widths in the panel, when it is open.
void RefreshLinePara();
