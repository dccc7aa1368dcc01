// The palette whose buttons start the text commands: command V7_TextTool.
#pragma once

/// Shows the palette; there is one at most.
void ShowTextTool();
