// The look of text given to AcGiGeometry::text: fonts, size and the ways it can be bent.
#pragma once

#include "host/font/font.h"
#include "host/ge/ge.h"
#include "host/rx/rx.h"

#include <string>

class AcGiWorldDraw;

class AcGiTextStyle : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiTextStyle);

    AcGiTextStyle() = default;
    AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, const double textSize, const double xScale,
                  const double obliqueAngle, const double trackPercent, const Adesk::Boolean isBackward,
                  const Adesk::Boolean isUpsideDown, const Adesk::Boolean isVertical,
                  const Adesk::Boolean isOverlined, const Adesk::Boolean isUnderlined);

    double textSize() const { return m_format.height; }
    double xScale() const { return m_format.widthFactor; }
    double obliquingAngle() const { return m_format.oblique; }
    double trackingPercent() const { return m_format.tracking; }
    Adesk::Boolean isBackward() const { return m_format.backward; }
    Adesk::Boolean isUpsideDown() const { return m_format.upsideDown; }
    Adesk::Boolean isVertical() const { return m_format.vertical; }
    Adesk::Boolean isUnderlined() const { return m_format.underlined; }
    Adesk::Boolean isOverlined() const { return m_format.overlined; }
    Adesk::Boolean isStrikethrough() const { return m_format.struckThrough; }

    void setTextSize(const double size) { m_format.height = size; }
    void setXScale(const double scale) { m_format.widthFactor = scale; }
    void setObliquingAngle(const double angle) { m_format.oblique = angle; }
    void setTrackingPercent(const double factor) { m_format.tracking = factor; }
    void setBackward(const Adesk::Boolean value) { m_format.backward = value; }
    void setUpsideDown(const Adesk::Boolean value) { m_format.upsideDown = value; }
    void setVertical(const Adesk::Boolean value) { m_format.vertical = value; }
    void setUnderlined(const Adesk::Boolean value) { m_format.underlined = value; }
    void setOverlined(const Adesk::Boolean value) { m_format.overlined = value; }
    void setStrikethrough(const Adesk::Boolean value) { m_format.struckThrough = value; }

    const ACHAR* fileName() const { return m_format.font.file.c_str(); }
    const ACHAR* bigFontFileName() const { return m_format.font.bigFontFile.c_str(); }
    void setFileName(const ACHAR* name);
    void setBigFontFileName(const ACHAR* name);

    // A typeface makes the style a TrueType one whatever the file name; an empty one ends that.
    Acad::ErrorStatus setFont(const ACHAR* typeface, Adesk::Boolean bold, Adesk::Boolean italic, int charset,
                              int pitchAndFamily);
    Acad::ErrorStatus font(AcString& typeface, Adesk::Boolean& bold, Adesk::Boolean& italic, int& charset,
                           int& pitchAndFamily) const;

    const ACHAR* styleName() const { return m_styleName.c_str(); }
    void setStyleName(const ACHAR* name) { m_styleName = name ? name : L""; }

    // Looks the fonts up; 0 when nothing had to be substituted.
    Adesk::Boolean loadStyleRec() const;

    // The upper right corner of the text's box whose lower left is the start of its base line. With penups
    // trailing blanks count. raw: control codes are characters. The context is not needed.
    AcGePoint2d extents(const ACHAR* text, const Adesk::Boolean penups, const int length,
                        const Adesk::Boolean raw, AcGiWorldDraw* context = nullptr) const;

    const host::TextFormat& format() const { return m_format; }

private:
    host::TextFormat m_format;
    std::wstring m_styleName;
    int m_charset = 0;
    int m_pitchAndFamily = 0;
};
