#include "host/gi/looks.h"

#include <cmath>
#include <numeric>

namespace host {

double LinetypeLook::patternLength() const {
    return std::accumulate(elements.begin(), elements.end(), 0.0,
                           [](double sum, const Element& element) { return sum + std::abs(element.length); });
}

const LinetypeLook& LinetypeLook::byLayer() {
    static const LinetypeLook look{Kind::byLayer, {}, 0};
    return look;
}

const LinetypeLook& LinetypeLook::byBlock() {
    static const LinetypeLook look{Kind::byBlock, {}, 0};
    return look;
}

const LinetypeLook& LinetypeLook::continuous() {
    static const LinetypeLook look;
    return look;
}

const LayerLook& LayerLook::zero() {
    static const LayerLook look = [] {
        LayerLook made;
        made.isZero = true;
        return made;
    }();
    return look;
}

} // namespace host
