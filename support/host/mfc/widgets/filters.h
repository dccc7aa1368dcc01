// The filters that see messages before windows do.
#pragma once

#include "host/win/winuser.h"

namespace host {

// True when a filter has swallowed the message.
bool filterMessage(MSG& message);

} // namespace host
