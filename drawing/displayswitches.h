// How the drawing looks while people work: the crosshair (V7_SetCursor) and the centre lines of roads
// (V7_CloseRoadCenter, V7_OpenRoadCenter).
#pragma once

/// Asks for the style of the crosshair: across the whole screen, or small.
void SetCursorStyle();

/// Freezes, turns off and locks the layer of road centre lines, if the drawing has it.
void CloseRoadCenter();
/// Thaws, turns on and unlocks it through the host's layer command.
void OpenRoadCenter();
