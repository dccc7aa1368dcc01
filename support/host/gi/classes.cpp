// Runtime classes of the drawing interface.
#include "host/gi/gi.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawable, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiSubEntityTraits, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawableTraits, AcGiSubEntityTraits)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiGeometry, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportGeometry, AcGiGeometry)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiContext, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiCommonDraw, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiWorldDraw, AcGiCommonDraw)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewport, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiViewportDraw, AcGiCommonDraw)
ACRX_CONS_DEFINE_MEMBERS(AcGiTextStyle, AcRxObject, 1)

namespace host {

void registerGiClasses() {
    AcGiDrawable::rxInit();
    AcGiSubEntityTraits::rxInit();
    AcGiDrawableTraits::rxInit();
    AcGiGeometry::rxInit();
    AcGiWorldGeometry::rxInit();
    AcGiViewportGeometry::rxInit();
    AcGiContext::rxInit();
    AcGiCommonDraw::rxInit();
    AcGiWorldDraw::rxInit();
    AcGiViewport::rxInit();
    AcGiViewportDraw::rxInit();
    AcGiTextStyle::rxInit();
}

AcDb::LineWeight nearestLineWeight(int hundredths) noexcept {
    static constexpr int weights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                      53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
    if (hundredths < 0)
        return hundredths >= AcDb::kLnWtByLwDefault ? static_cast<AcDb::LineWeight>(hundredths)
                                                    : AcDb::kLnWtByLwDefault;
    const auto* nearest = std::ranges::min_element(
        weights, {}, [hundredths](int weight) { return std::abs(static_cast<long>(weight) - hundredths); });
    return static_cast<AcDb::LineWeight>(*nearest);
}

} // namespace host
