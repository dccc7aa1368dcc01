// A multiline drawn point by point, for reuse: its layer and the name shown in prompts are virtual.
#pragma once

#include "restools/arxobject.h"

/// Holds the multiline, in no database while it is drawn, and its points.
class CAcDbMlineJig : public AcEdJig {
public:
    /// Justification as the host's AcDbMline has it: 0 top, 1 zero, 2 bottom; the names shown for them.
    static const ACHAR* JustificationName(int justification);

    explicit CAcDbMlineJig(const ACHAR* section);
    ~CAcDbMlineJig() override;

    DragStatus sampler() override;
    Adesk::Boolean update() override;
    AcDbEntity* entity() const override;
    virtual Adesk::UInt16 LayerColor() const { return 7; }
    virtual const ACHAR* LayerName() const { return L"0"; }
    virtual const ACHAR* DisplayName() const { return L"多线"; }

    /// Makes the layer and lets the user draw on from the start point. False when that was cancelled, or
    /// ended with one point.
    bool Draw(const AcGePoint3d& start);

    int Justification() const { return mJustification; }
    void SetJustification(int justification) { mJustification = justification; }
    /// Between the outer lines of the style "Standard", in drawing units.
    double Width() const { return mWidth; }
    void SetWidth(double width) { mWidth = width; }
    const ACHAR* Section() const { return mSection; }
    /// The multiline drawn, to be taken over from its holder.
    CArxObject& Multiline() { return mMultiline; }

private:
    void begin(const AcGePoint3d& start);
    AcDbMline& multiline() const { return *mMultiline.As<AcDbMline>(); }
    void removeLastSegment() const;

    AcGePoint3d mCurrent; ///< Z is 0
    AcDbObjectId mStyle;
    CArxObject mMultiline;
    AcGePoint3dArray mPoints{0, 8};
    int mJustification = 1;
    double mWidth = 4.0;
    CString mSection;
};
