// Runtime classes, services, modules, texts and result buffers: the public header of the area.
#pragma once

#include "host/rx/acadstat.h"
#include "host/rx/acrx.h"
#include "host/rx/acstring.h"
#include "host/rx/ads.h"
