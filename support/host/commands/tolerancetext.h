// The text of a geometric tolerance, asked for cell by cell.
#pragma once

#include <optional>
#include <string>

namespace host {

/// Nothing when the user gives up or no cell has anything.
std::optional<std::wstring> askToleranceText();

} // namespace host
