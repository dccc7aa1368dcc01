// Bringing the host up: what the program and the programs that test it do before the first drawing.
#pragma once

#include <filesystem>
#include <optional>

namespace app {

/// The folder of the running executable; modules and the starter content stand there.
std::filesystem::path programFolder();

/// Starts every area of the host. Settings are kept in the given folder, else in the user's.
void initializeHost(const std::optional<std::filesystem::path>& settings);

} // namespace app
