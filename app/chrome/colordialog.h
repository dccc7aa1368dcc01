// All 255 standard colours to choose from.
#pragma once

#include <optional>

class QWidget;

namespace app {

/// The number of the colour; nothing when the dialog was cancelled.
std::optional<int> chooseColor(QWidget* parent, int before);

} // namespace app
