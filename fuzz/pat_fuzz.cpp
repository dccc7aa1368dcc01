// Any bytes as a hatch pattern file: every definition is either good or says in one line what is wrong with
// it.
#include "fuzz/target.h"

#include "host/formats/pat/patfile.h"

#include <algorithm>
#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const host::pat::Definition& definition :
         host::pat::parse(std::string_view(reinterpret_cast<const char*>(data), size))) {
        require(definition.fault.find(L'\n') == std::wstring::npos, "several lines");
        if (!definition.fault.empty()) {
            continue;
        }
        require(!definition.name.empty() && !definition.lines.empty(), "good without content");
        for (const host::HatchPatternLine& line : definition.lines) {
            const double sum = line.angle + line.base.x + line.base.y + line.offset.x + line.offset.y;
            require(std::isfinite(sum) && std::all_of(line.dashes.begin(), line.dashes.end(),
                                                      [](double dash) { return std::isfinite(dash); }),
                    "not finite");
        }
    }
    return 0;
}
