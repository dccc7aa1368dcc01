// The MFC names that modules use: the public header of the area.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/filefind.h"
#include "host/mfc/modulestate.h"
#include "host/mfc/winapp.h"
