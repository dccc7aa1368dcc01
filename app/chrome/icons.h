// The program's own icons, drawn from short descriptions so that they are sharp at any scale.
#pragma once

#include <QIcon>
#include <string_view>

namespace app {

/// An icon for a name; a plain square for a name without one.
QIcon icon(std::string_view name);
/// Whether there is a drawing for the name.
bool hasIcon(std::string_view name);
/// A square of a colour, 0x00RRGGBB.
QIcon colorIcon(std::uint32_t color);

} // namespace app
