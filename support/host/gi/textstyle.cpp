#include "host/gi/textstyle.h"

#include <string_view>

AcGiTextStyle::AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, const double textSize,
                             const double xScale, const double obliqueAngle, const double trackPercent,
                             const Adesk::Boolean isBackward, const Adesk::Boolean isUpsideDown,
                             const Adesk::Boolean isVertical, const Adesk::Boolean isOverlined,
                             const Adesk::Boolean isUnderlined) {
    setFileName(fontName);
    setBigFontFileName(bigFontName);
    mFormat.height = textSize;
    mFormat.widthFactor = xScale;
    mFormat.oblique = obliqueAngle;
    mFormat.tracking = trackPercent;
    mFormat.backward = isBackward;
    mFormat.upsideDown = isUpsideDown;
    mFormat.vertical = isVertical;
    mFormat.overlined = isOverlined;
    mFormat.underlined = isUnderlined;
}

void AcGiTextStyle::setFileName(const ACHAR* name) {
    mFormat.font.file = name ? name : L"";
}
void AcGiTextStyle::setBigFontFileName(const ACHAR* name) {
    mFormat.font.bigFontFile = name ? name : L"";
}

Acad::ErrorStatus AcGiTextStyle::setFont(const ACHAR* typeface, Adesk::Boolean bold, Adesk::Boolean italic,
                                         int charset, int pitchAndFamily) {
    mFormat.font.typeface = typeface ? typeface : L"";
    mFormat.font.bold = bold;
    mFormat.font.italic = italic;
    mCharset = charset;
    mPitchAndFamily = pitchAndFamily;
    return Acad::eOk;
}

Acad::ErrorStatus AcGiTextStyle::font(AcString& typeface, Adesk::Boolean& bold, Adesk::Boolean& italic,
                                      int& charset, int& pitchAndFamily) const {
    typeface = mFormat.font.typeface.c_str();
    bold = mFormat.font.bold;
    italic = mFormat.font.italic;
    charset = mCharset;
    pitchAndFamily = mPitchAndFamily;
    return Acad::eOk;
}

Adesk::Boolean AcGiTextStyle::loadStyleRec() const {
    return !host::FontEngine::instance().isAvailable(mFormat.font);
}

AcGePoint2d AcGiTextStyle::extents(const ACHAR* text, const Adesk::Boolean penups, const int length,
                                   const Adesk::Boolean raw, AcGiWorldDraw*) const {
    std::wstring_view line = text ? text : L"";
    if (length >= 0)
        line = line.substr(0, static_cast<std::size_t>(length));
    const auto box = host::FontEngine::instance().extents(line, mFormat, raw, penups);
    return {box.width, box.height};
}
