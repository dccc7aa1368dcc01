// The kinds of entities: one header a family.
#pragma once

#include "host/db/dbdatabase.h"
#include "host/db/dbgroup.h"
#include "host/db/entities/attribute.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/circle.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/dimension.h"
#include "host/db/entities/fcf.h"
#include "host/db/entities/leader.h"
#include "host/db/entities/line.h"
#include "host/db/entities/mtext.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/polyline2d.h"
#include "host/db/entities/solid.h"
#include "host/db/entities/subentities.h"
#include "host/db/entities/text.h"
