// The host's profile at its next start.
#pragma once

/// Makes the host start with its unnamed profile: done at every load and unload of the module. Without the
/// key of profiles nothing happens.
void ResetProfile();
