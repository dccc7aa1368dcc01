// Scaling by the dots an inch that the screen's device context tells.
#include "restools/dpi.h"

namespace {

constexpr int dotsAtFullScale = 96;

} // namespace

int CalculateByDPI(int pixels) {
    CClientDC screen(nullptr);
    const int dots = screen.GetDeviceCaps(LOGPIXELSX);
    const int half = pixels < 0 ? -dotsAtFullScale / 2 : dotsAtFullScale / 2;
    return (pixels * dots + half) / dotsAtFullScale;
}

int CalculateDialogScaleByDPI(int pixels) {
    return CalculateByDPI(pixels);
}
