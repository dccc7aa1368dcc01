// What a fuzz target is: one function that is given any bytes and must come back without a fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the run as a finding.
inline void require(bool condition, std::string_view what) {
    if (!condition) {
        std::fprintf(stderr, "%.*s\n", static_cast<int>(what.size()), what.data());
        std::abort();
    }
}
