// The panel of widths and snap increments.
#include "drawing/linepara.h"

CLineParaHolder::CLineParaHolder() = default;
CLineParaHolder::~CLineParaHolder() = default;

void RefreshLinePara() {}
