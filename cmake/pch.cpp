// Exists so that the precompiled header has a target to be built with.
