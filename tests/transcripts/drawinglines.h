// A drawing as one line an object, for comparing: numbers rounded, handles replaced by names or left out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Made from the text that the host's drawing dump gives.
std::vector<std::string> drawingLines(std::string_view dump);
