// The dragging of a segment of a polyline with widths: its preview, which tells length and angle beside the
// cursor, and its jig, which asks for widths on the way.
#pragma once

#include "drawing/widthpolyline.h"
#include "restools/tipwnd.h"

/// The segments that are fixed. Drawing it shows the tip.
class AsdkPolyLine : public AcDbPolyline {
public:
    explicit AsdkPolyLine(const WidthPolylineCourse& course);

    const AcGePoint3d& Base() const { return mBase; }
    void SetCursor(const AcGePoint3d& cursor) { mCursor = cursor; }
    /// Length and direction from base to cursor in the drawing's units, as 125.0000<30.
    CString TipText() const;
    void HideTip();

protected:
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;

private:
    AcGePoint3d mBase; ///< the last point picked
    AcGePoint3d mCursor;
    CTipWnd mTip;
};

class AsdkPolyLineJig : public AcEdJig {
public:
    AsdkPolyLineJig(AsdkPolyLine& preview, const ACHAR* keywords);

    DragStatus sampler() override;
    Adesk::Boolean update() override;
    AcDbEntity* entity() const override { return &mPreview; }

    const AcString& Keyword() const { return mKeyword; }
    const AcGePoint3d& Point() const { return mPoint; }

private:
    bool AskWidths();

    AcString mKeyword;
    CString mKeywords; ///< separated by blanks
    AsdkPolyLine& mPreview;
    AcGePoint3d mPoint; ///< acquired last
};
