// Pictures of slides and drawings, drawn into a rectangle.
#include "restools/drawsld.h"

#include <algorithm>
#include <vector>

namespace {

bool isDark(COLORREF color) {
    return GetRValue(color) * 3 + GetGValue(color) * 6 + GetBValue(color) < 1280;
}

COLORREF colorOf(int index, COLORREF background) {
    if (index == 0) {
        return background;
    }
    if (index == 7) {
        return isDark(background) ? RGB(255, 255, 255) : RGB(0, 0, 0);
    }
    const Adesk::UInt32 color = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index));
    return RGB(color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF);
}

/// The slide's dots in the pixels of a rectangle.
class Placing {
public:
    Placing(const host::Slide& slide, const CRect& rect) {
        const double aspect = slide.aspect > 0.0 ? slide.aspect : 1.0;
        const double width = std::min<double>(rect.Width(), rect.Height() * aspect);
        const double height = width / aspect;
        mAcross = width / std::max(1, slide.width);
        mUp = height / std::max(1, slide.height);
        mLeft = rect.left + (rect.Width() - width) / 2.0;
        mBottom = rect.bottom - (rect.Height() - height) / 2.0;
    }
    POINT operator()(host::SlidePoint point) const {
        return {static_cast<LONG>(mLeft + point.x * mAcross),
                static_cast<LONG>(mBottom - 1.0 - point.y * mUp)};
    }

private:
    double mLeft, mBottom, mAcross, mUp;
};

} // namespace

CDrawSld::CDrawSld() = default;
CDrawSld::~CDrawSld() = default;
CDrawSld::CDrawSld(CDrawSld&&) noexcept = default;
CDrawSld& CDrawSld::operator=(CDrawSld&&) noexcept = default;

bool CDrawSld::Load(const ACHAR* path, CSize size) {
    constexpr int finer = 2; // for screens with small dots
    std::wstring message;
    std::optional<host::Slide> slide = host::previewOf(path, size.cx * finer, size.cy * finer, message);
    mFault = message.c_str();
    mSlide = slide ? std::make_unique<host::Slide>(std::move(*slide)) : nullptr;
    return slide.has_value();
}

bool CDrawSld::LoadBytes(std::string_view bytes) {
    std::wstring message;
    std::optional<host::Slide> slide = host::parseSlide(bytes, message);
    mFault = message.c_str();
    mSlide = slide ? std::make_unique<host::Slide>(std::move(*slide)) : nullptr;
    return slide.has_value();
}

void CDrawSld::Draw(CDC& context, const CRect& rect, COLORREF background) const {
    context.FillSolidRect(rect, background);
    if (mSlide == nullptr || rect.IsRectEmpty()) {
        return;
    }
    const Placing place(*mSlide, rect);
    std::vector<POINT> points;
    const int saved = context.SaveDC();
    context.IntersectClipRect(rect);
    for (const host::SlideShape& shape : mSlide->shapes) {
        points.clear();
        std::ranges::transform(mSlide->pointsOf(shape), std::back_inserter(points), place);
        const COLORREF color = colorOf(shape.color, background);
        CPen pen(PS_SOLID, 1, color);
        CPen* const penBefore = context.SelectObject(&pen);
        if (shape.kind == host::SlideShape::Kind::line) {
            context.Polyline(points.data(), static_cast<int>(points.size()));
        } else {
            CBrush brush(color);
            CBrush* const brushBefore = context.SelectObject(&brush);
            context.Polygon(points.data(), static_cast<int>(points.size()));
            context.SelectObject(brushBefore);
        }
        context.SelectObject(penBefore);
    }
    context.RestoreDC(saved);
}
