// Sizes that are meant for a screen of 96 dots an inch, in the pixels of this screen.
#pragma once

#include "host/arx.h"

QDV_EXPORT int CalculateByDPI(int pixels);
/// The same for sizes given in the places of dialogs.
QDV_EXPORT int CalculateDialogScaleByDPI(int pixels);
