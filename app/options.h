// The program's command line.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace app {

struct Options {
    std::optional<std::string> script; ///< file, or - for standard input; none: the window
    std::optional<std::filesystem::path> drawing;
    std::vector<std::filesystem::path> saves;
    std::vector<std::filesystem::path> plots;
    std::vector<std::filesystem::path> dumps;
    std::vector<std::filesystem::path> modules; ///< empty with loadsDefaultModule: the one beside the program
    bool loadsDefaultModule = true;
    std::optional<std::filesystem::path> settings;
    bool help = false;
    bool version = false;
};

/// The options, or nothing with `error` saying in one line what is wrong.
std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error);

/// What --help prints.
std::string helpText();

} // namespace app
