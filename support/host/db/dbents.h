// The kinds of entities: one header a family.
#pragma once

#include "host/db/dbdatabase.h"
#include "host/db/dbgroup.h"
#include "host/db/dbsortents.h"
#include "host/db/entities/attribute.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/circle.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/hatch.h"
#include "host/db/entities/line.h"
#include "host/db/entities/minsertblock.h"
#include "host/db/entities/mline.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/polyline2d.h"
#include "host/db/entities/solid.h"
#include "host/db/entities/subentities.h"
#include "host/db/entities/text.h"
