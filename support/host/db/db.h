// The drawing database: the public header of the area.
#pragma once

#include "host/db/dbents.h"
#include "host/db/dbtrans.h"
