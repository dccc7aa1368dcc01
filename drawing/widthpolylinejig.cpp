// Preview and jig of the polyline with widths.
#include "drawing/widthpolylinejig.h"

#include "drawing/linepara.h"
#include "restools/drawing.h"

namespace {

/// A word of a list separated by blanks.
AcString wordAt(const CString& words, int index) {
    int start = 0;
    for (; index > 0; --index) {
        start = words.Find(L' ', start) + 1;
    }
    const int end = words.Find(L' ', start);
    return AcString(static_cast<const ACHAR*>(words.Mid(start, (end < 0 ? words.GetLength() : end) - start)));
}

} // namespace

AsdkPolyLine::AsdkPolyLine(const WidthPolylineCourse& course)
    : mBase(course.points.last()), mCursor(course.points.last()), mTip(acedGetAcadFrame()) {
    constexpr COLORREF paleYellow = 0xDCFFFF;
    constexpr int textHeight = 14;
    mTip.SetColor(paleYellow);
    mTip.SetTextHeight(textHeight);
    course.AddVertices(*this);
}

CString AsdkPolyLine::TipText() const {
    const AcDbDatabase* database = WorkingDatabase();
    ACHAR length[30];
    ACHAR angle[30];
    acdbRToS(mBase.distanceTo(mCursor), database->lunits(), database->luprec(), length);
    acdbAngToS(acutAngle(asDblArray(mBase), asDblArray(mCursor)), database->aunits(), database->auprec(),
               angle);
    CString text;
    text.Format(L"%s<%s", length, angle);
    return text;
}

void AsdkPolyLine::HideTip() {
    mTip.Hide();
}

Adesk::Boolean AsdkPolyLine::subWorldDraw(AcGiWorldDraw* draw) {
    mTip.Show(TipText());
    return AcDbPolyline::subWorldDraw(draw);
}

AsdkPolyLineJig::AsdkPolyLineJig(AsdkPolyLine& preview, const ACHAR* keywords)
    : mKeywords(keywords), mPreview(preview), mPoint(preview.Base()) {}

AcEdJig::DragStatus AsdkPolyLineJig::sampler() {
    setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
    setKeywordList(mKeywords);
    for (;;) {
        AcGePoint3d point;
        const DragStatus status = acquirePoint(point, mPreview.Base());
        if (status == kNormal) {
            if (point.isEqualTo(mPoint)) {
                return kNoChange;
            }
            mPoint = point;
            return kNormal;
        }
        if (status < kKW1 || status > kKW9) {
            return status;
        }
        mKeyword = wordAt(mKeywords, status - kKW1);
        if (mKeyword != L"Width") {
            return kKW1;
        }
        mPreview.HideTip();
        if (!AskWidths()) {
            return kNull;
        }
        RefreshLinePara();
    }
}

Adesk::Boolean AsdkPolyLineJig::update() {
    mPreview.SetCursor(mPoint);
    return Adesk::kTrue;
}

namespace {

enum class WidthAnswer { value, standard, left };

/// The format has a place for the number of decimals, which makes it one for the width that is shown.
WidthAnswer askWidth(const ACHAR* format, double shown, double& width) {
    CString withDecimals;
    withDecimals.Format(format, static_cast<int>(WorkingDatabase()->luprec()));
    CString prompt;
    prompt.Format(withDecimals, shown);
    acutPrintf(L"%s", static_cast<const ACHAR*>(prompt));
    acedInitGet(RSG_NONEG, nullptr);
    switch (acedGetDist(nullptr, nullptr, &width)) {
    case RTNORM:
        return WidthAnswer::value;
    case RTNONE:
        return WidthAnswer::standard;
    default:
        return WidthAnswer::left;
    }
}

} // namespace

/// False when a question was left; a width accepted before stays.
bool AsdkPolyLineJig::AskWidths() {
    WidthPolylineSettings& settings = GetWidthPolylineSettings();
    if (askWidth(L"\n起始宽度 <%%.%dlf>: ", settings.startWidth, settings.startWidth) == WidthAnswer::left) {
        return false;
    }
    // Enter ends the segment as wide as it starts.
    double endWidth = settings.startWidth;
    if (askWidth(L"\n终止宽度 <%%.%dlf>: ", settings.startWidth, endWidth) == WidthAnswer::left) {
        return false;
    }
    settings.endWidth = endWidth;
    return true;
}
