#include "host/gi/textstyle.h"

#include <string_view>

AcGiTextStyle::AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, const double textSize,
                             const double xScale, const double obliqueAngle, const double trackPercent,
                             const Adesk::Boolean isBackward, const Adesk::Boolean isUpsideDown,
                             const Adesk::Boolean isVertical, const Adesk::Boolean isOverlined,
                             const Adesk::Boolean isUnderlined) {
    setFileName(fontName);
    setBigFontFileName(bigFontName);
    m_format.height = textSize;
    m_format.widthFactor = xScale;
    m_format.oblique = obliqueAngle;
    m_format.tracking = trackPercent;
    m_format.backward = isBackward;
    m_format.upsideDown = isUpsideDown;
    m_format.vertical = isVertical;
    m_format.overlined = isOverlined;
    m_format.underlined = isUnderlined;
}

void AcGiTextStyle::setFileName(const ACHAR* name) {
    m_format.font.file = name ? name : L"";
}
void AcGiTextStyle::setBigFontFileName(const ACHAR* name) {
    m_format.font.bigFontFile = name ? name : L"";
}

Acad::ErrorStatus AcGiTextStyle::setFont(const ACHAR* typeface, Adesk::Boolean bold, Adesk::Boolean italic,
                                         int charset, int pitchAndFamily) {
    m_format.font.typeface = typeface ? typeface : L"";
    m_format.font.bold = bold;
    m_format.font.italic = italic;
    m_charset = charset;
    m_pitchAndFamily = pitchAndFamily;
    return Acad::eOk;
}

Acad::ErrorStatus AcGiTextStyle::font(AcString& typeface, Adesk::Boolean& bold, Adesk::Boolean& italic,
                                      int& charset, int& pitchAndFamily) const {
    typeface = m_format.font.typeface.c_str();
    bold = m_format.font.bold;
    italic = m_format.font.italic;
    charset = m_charset;
    pitchAndFamily = m_pitchAndFamily;
    return Acad::eOk;
}

Adesk::Boolean AcGiTextStyle::loadStyleRec() const {
    return !host::FontEngine::instance().isAvailable(m_format.font);
}

AcGePoint2d AcGiTextStyle::extents(const ACHAR* text, const Adesk::Boolean penups, const int length,
                                   const Adesk::Boolean raw, AcGiWorldDraw*) const {
    std::wstring_view line = text ? text : L"";
    if (length >= 0)
        line = line.substr(0, static_cast<std::size_t>(length));
    const auto box = host::FontEngine::instance().extents(line, m_format, raw, penups);
    return {box.width, box.height};
}
