// The drawing interface: everything a drawable needs to draw itself, and the traits and colours of entities.
#pragma once

#include "host/gi/color.h"
#include "host/gi/drawable.h"
#include "host/gi/geometry.h"
#include "host/gi/lineweight.h"
#include "host/gi/textstyle.h"
#include "host/gi/traits.h"
#include "host/gi/types.h"
#include "host/gi/worlddraw.h"

namespace host {

// Registers the runtime classes of this area; called once when the host starts.
void registerGiClasses();

} // namespace host
