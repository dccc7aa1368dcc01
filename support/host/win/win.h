// The Windows names that modules and the host use: types, registry, profile files, paths, files, modules,
// clock and the C library's own Windows functions; and the host's file helpers.
#pragma once

#include "host/win/clock.h"
#include "host/win/crt.h"
#include "host/win/filefunctions.h"
#include "host/win/fileio.h"
#include "host/win/moduleinstance.h"
#include "host/win/paths.h"
#include "host/win/profilefile.h"
#include "host/win/registry.h"
#include "host/win/resources.h"
#include "host/win/types.h"
#include "host/win/winuser.h"
