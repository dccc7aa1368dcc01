// Whether the outlines of wipeouts are shown: a setting of the drawing, in its dictionary.
#pragma once

#include "host/db/dbdatabase.h"

namespace host {

/// 0 hidden, 1 shown and plotted, 2 shown and not plotted. A drawing that says nothing shows them.
int wipeoutFrames(const AcDbDatabase& database);
/// Recorded for undo.
void setWipeoutFrames(AcDbDatabase& database, int frames);

} // namespace host
