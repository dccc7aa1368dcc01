// Paints what is seen of a dimension: lines, arcs, arrows and text with the looks that the dimension
// variables give them. Coordinates are those of the dimension's plane.
#pragma once

#include "host/db/entities/dimension.h"

#include <optional>

namespace host {

class DimensionPainter {
public:
    /// `text`: contents of the text, empty for none. `owner` gives layer, text attachment and database.
    DimensionPainter(const AcDbDimension& owner, const DimVariables& variables, std::wstring text,
                     double elevation);

    // Sizes in drawing units, DIMSCALE included.
    double scaled(double length) const { return length * mScale; }
    double arrowSize() const { return mTicks ? 0.0 : scaled(v.asz); }
    double gap() const { return std::fabs(scaled(v.gap)); }
    double textHeight() const { return mTextHeight; }
    double textWidth() const { return mTextWidth; } ///< 0 without text
    bool hasText() const { return !mText.empty(); }
    bool hasTicks() const { return mTicks; }
    const DimensionData& data() const { return mData; }
    const DimVariables v;

    /// Direction in which a text along a line can be read: from left to right or from below.
    double readable(double angle) const;
    /// Angle of the text on a line of this direction; forced says whether it is to be horizontal.
    double textAngle(double lineAngle, bool forced) const;
    /// Half of what the text covers along and across a direction, gaps aside.
    AcGeVector2d textHalfExtent(double angle, double lineAngle) const;

    void dimensionLine(const AcGePoint2d& from, const AcGePoint2d& to);
    /// Left out where the text stands.
    void brokenLine(const AcGePoint2d& from, const AcGePoint2d& to);
    void extensionLine(const AcGePoint2d& from, const AcGePoint2d& to, bool second);
    void dimensionArc(const AcGePoint2d& center, double radius, double start, double sweep);
    /// Left out where the text stands.
    void brokenArc(const AcGePoint2d& center, double radius, double start, double sweep);
    /// The tip points in the direction of the angle; `second` tells which arrow it is.
    void arrow(const AcGePoint2d& tip, double angle, bool second);
    /// How far the dimension line stays from the tip.
    double arrowCut(bool second) const;
    /// Chooses the text's place; lines broken afterwards leave room for it.
    void placeText(const AcGePoint2d& middle, double angle, bool breaksLines);
    void centerMark(const AcGePoint2d& center, double radius);
    void definitionPoint(const AcGePoint2d& point);
    void definitionPoint(const AcGePoint3d& point);

    const std::optional<AcGePoint2d>& textPlace() const { return mTextPlace; }
    /// Where the user has put the text.
    std::optional<AcGePoint2d> givenTextPlace() const;
    std::vector<std::unique_ptr<AcDbEntity>> take();

private:
    void add(std::unique_ptr<AcDbEntity> entity, Adesk::Int16 color, Adesk::Int16 weight,
             AcDbObjectId linetype = {});
    AcDbObjectId arrowBlockOf(bool second) const;
    /// The part of a segment that the text covers, as parameters; nothing when it is none.
    std::optional<std::pair<double, double>> coveredByText(const AcGePoint2d& from,
                                                           const AcGePoint2d& to) const;
    AcGePoint3d lifted(const AcGePoint2d& point) const { return to3d(point, mElevation); }
    std::unique_ptr<AcDbMText> makeText() const;
    void addTextFrame();

    const AcDbDimension& mOwner;
    const DimensionData& mData;
    AcDbDatabase* mDatabase;
    std::wstring mText;
    double mElevation;
    double mScale = 1.0;
    bool mTicks = false;
    double mTextHeight = 0.0, mTextWidth = 0.0;
    double mTextShift = 0.0; ///< of the middle, where the text is split by the dimension line
    bool mIsSplit = false;
    std::optional<AcGePoint2d> mTextPlace;
    double mTextAngle = 0.0;
    bool mTextBreaksLines = false;
    std::vector<std::unique_ptr<AcDbEntity>> mParts;
};

} // namespace host
