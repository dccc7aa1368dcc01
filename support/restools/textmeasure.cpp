// How large a text is when it is drawn.
#include "restools/textmeasure.h"

#include <cwchar>

TextExtent MeasureText(const AcDbText& text, const ACHAR* string, double height) {
    AcGiTextStyle style;
    fromAcDbTextStyle(style, text.textStyle());
    style.setTextSize(height);
    style.setXScale(text.widthFactor());
    style.setObliquingAngle(text.oblique());
    const AcGePoint2d corner =
        style.extents(string, Adesk::kFalse, static_cast<int>(std::wcslen(string)), Adesk::kFalse, nullptr);
    return {corner.x, corner.y};
}

TextExtent MeasureText(const AcDbText& text) {
    return MeasureText(text, text.textStringConst(), text.height());
}

AcGeVector3d BaselineDirection(const AcDbText& text) {
    AcGeVector3d direction = AcGeVector3d::kXAxis;
    direction.rotateBy(text.rotation(), AcGeVector3d::kZAxis);
    return direction;
}
