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

    double textSize() const { return mFormat.height; }
    double xScale() const { return mFormat.widthFactor; }
    double obliquingAngle() const { return mFormat.oblique; }
    double trackingPercent() const { return mFormat.tracking; }
    Adesk::Boolean isBackward() const { return mFormat.backward; }
    Adesk::Boolean isUpsideDown() const { return mFormat.upsideDown; }
    Adesk::Boolean isVertical() const { return mFormat.vertical; }
    Adesk::Boolean isUnderlined() const { return mFormat.underlined; }
    Adesk::Boolean isOverlined() const { return mFormat.overlined; }
    Adesk::Boolean isStrikethrough() const { return mFormat.struckThrough; }

    void setTextSize(const double size) { mFormat.height = size; }
    void setXScale(const double scale) { mFormat.widthFactor = scale; }
    void setObliquingAngle(const double angle) { mFormat.oblique = angle; }
    void setTrackingPercent(const double factor) { mFormat.tracking = factor; }
    void setBackward(const Adesk::Boolean value) { mFormat.backward = value; }
    void setUpsideDown(const Adesk::Boolean value) { mFormat.upsideDown = value; }
    void setVertical(const Adesk::Boolean value) { mFormat.vertical = value; }
    void setUnderlined(const Adesk::Boolean value) { mFormat.underlined = value; }
    void setOverlined(const Adesk::Boolean value) { mFormat.overlined = value; }
    void setStrikethrough(const Adesk::Boolean value) { mFormat.struckThrough = value; }

    const ACHAR* fileName() const { return mFormat.font.file.c_str(); }
    const ACHAR* bigFontFileName() const { return mFormat.font.bigFontFile.c_str(); }
    void setFileName(const ACHAR* name);
    void setBigFontFileName(const ACHAR* name);

    // A typeface makes the style a TrueType one whatever the file name; an empty one ends that.
    Acad::ErrorStatus setFont(const ACHAR* typeface, Adesk::Boolean bold, Adesk::Boolean italic, int charset,
                              int pitchAndFamily);
    Acad::ErrorStatus font(AcString& typeface, Adesk::Boolean& bold, Adesk::Boolean& italic, int& charset,
                           int& pitchAndFamily) const;

    const ACHAR* styleName() const { return mStyleName.c_str(); }
    void setStyleName(const ACHAR* name) { mStyleName = name ? name : L""; }

    // Looks the fonts up; 0 when nothing had to be substituted.
    Adesk::Boolean loadStyleRec() const;

    // The upper right corner of the text's box whose lower left is the start of its base line. With penups
    // trailing blanks count. raw: control codes are characters. The context is not needed.
    AcGePoint2d extents(const ACHAR* text, const Adesk::Boolean penups, const int length,
                        const Adesk::Boolean raw, AcGiWorldDraw* context = nullptr) const;

    const host::TextFormat& format() const { return mFormat; }

private:
    host::TextFormat mFormat;
    std::wstring mStyleName;
    int mCharset = 0;
    int mPitchAndFamily = 0;
};
