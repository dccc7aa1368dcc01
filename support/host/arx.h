// Everything that a module is written against: the host's programming interface under its published names.
// The one host header that modules include.
#pragma once

#include "host/db/db.h"
#include "host/ed/ed.h"
#include "host/font/fontenumeration.h"
#include "host/formats/sld/slidedrawing.h"
#include "host/ge/ge.h"
#include "host/gi/gi.h"
#include "host/mfc/mfc.h"
#include "host/rx/rx.h"
#include "host/win/win.h"

/// On what a module gives to its sibling modules.
#define QDV_EXPORT __declspec(dllexport)
