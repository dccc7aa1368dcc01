// What gives the suite's dialogs their common face.
#pragma once

#include "host/arx.h"

/// The suite's icon for a dialog's title bar. In OnInitDialog.
QDV_EXPORT void SetIconAndAttachCaption(CWnd* dialog);
