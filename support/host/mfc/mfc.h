// The MFC names that modules use: the public header of the area.
#pragma once

#include "host/mfc/adui.h"
#include "host/mfc/controls.h"
#include "host/mfc/cstring.h"
#include "host/mfc/ddx.h"
#include "host/mfc/dialog.h"
#include "host/mfc/filefind.h"
#include "host/mfc/gdi.h"
#include "host/mfc/geometry.h"
#include "host/mfc/listctrl.h"
#include "host/mfc/menu.h"
#include "host/mfc/modulestate.h"
#include "host/mfc/winapp.h"
#include "host/mfc/wnd.h"
