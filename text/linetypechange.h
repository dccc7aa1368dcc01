// Linetypes by one letter: command V7_ChgLType.
#pragma once

/// Gives the selected entities a continuous, dashed or centre linetype, or lets them follow their layer.
void ChangeLinetype();
