// The look of the window: dark, quiet, with the drawing in the middle.
#pragma once

class QWidget;

namespace app {

/// Palette and style sheet for a window and all it holds.
void applyStyle(QWidget& window);

} // namespace app
