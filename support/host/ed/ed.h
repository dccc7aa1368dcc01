// The editor: documents, commands, input, selection, system variables and the C-style functions over them.
// The public header of the area.
#pragma once

#include "host/ed/accmd.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/acedinpt.h"
#include "host/ed/acedreactor.h"
#include "host/ed/acjig.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/editorview.h"
#include "host/ed/externalfunctions.h"
#include "host/ed/grips.h"
#include "host/ed/input.h"
#include "host/ed/keywords.h"
#include "host/ed/lisphook.h"
#include "host/ed/selection.h"
#include "host/ed/session.h"
#include "host/ed/sysvars.h"
#include "host/ed/ucs.h"
#include "host/ed/units.h"
