// Any bytes as a linetype file: every definition is either good or says in one line what is wrong with it.
#include "fuzz/target.h"

#include "host/formats/lin/linfile.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const host::lin::Definition& definition :
         host::lin::parse(std::string_view(reinterpret_cast<const char*>(data), size))) {
        require(definition.fault.find(L'\n') == std::wstring::npos, "several lines");
        if (!definition.fault.empty()) {
            continue;
        }
        require(!definition.name.empty() && !definition.elements.empty(), "good without content");
        for (const host::lin::Element& element : definition.elements) {
            require(std::isfinite(element.length) && std::isfinite(element.rotation) &&
                        std::isfinite(element.scale),
                    "not finite");
        }
    }
    return 0;
}
