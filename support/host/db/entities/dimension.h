// Dimensions: the common base and the seven kinds. What is seen of one is an anonymous block; it is kept as a
// file has it and made anew when the dimension changes.
#pragma once

#include "host/db/dbsymtb.h"
#include "host/db/entities/dimensiontext.h"
#include "host/db/entities/mtext.h"

#include <array>

namespace host {

class DimensionPainter;

/// Numbers of the kinds, as group 70 has them.
enum class DimensionKind : Adesk::UInt8 {
    rotated = 0,
    aligned = 1,
    twoLineAngular = 2,
    diametric = 3,
    radial = 4,
    threePointAngular = 5,
    ordinate = 6
};

/// Fields of all kinds; which points a kind has its class tells. `points` are those of groups 10, 13, 14, 15
/// in world coordinates and 16 in object coordinates; angles are radians.
struct DimensionData {
    enum Point { first = 0, second = 1, third = 2, fourth = 3, arc = 4 };
    std::array<AcGePoint3d, 5> points;
    AcGePoint3d textPosition;  ///< middle of the text, in object coordinates
    AcGePoint3d blockPosition; ///< where the block stands, in object coordinates
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double rotation = 0.0;           ///< of a rotated dimension's line
    double oblique = 0.0;            ///< of the extension lines from the line's direction; 0: at right angles
    double leaderLength = 0.0;       ///< of radial dimensions, beyond the chord point
    double horizontalRotation = 0.0; ///< direction that counts as horizontal
    double textRotation = 0.0;
    double textSpacing = 1.0;
    double fileMeasurement = 0.0; ///< group 42
    AcString text;
    Adesk::Int16 flags = 0; ///< of group 70, without the kind: 32, 64, 128
    Adesk::Int16 textAttachment = 5;
    Adesk::Int16 textSpacingStyle = AcDb::kAtLeast;
    Adesk::Int16 flip = 0; ///< arrows turned round: 1 the first, 2 the second
    bool hasFileMeasurement = false;
    bool hasTextRotation = false; ///< else along the line
    AcDbObjectId style;
    AcDbObjectId block;

    static constexpr int ownsBlock = 32; ///< no other dimension shows the block
    static constexpr int alongX = 64;    ///< an ordinate dimension tells the x coordinate
    static constexpr int textIsPlaced = 128;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        for (auto& point : data.points) {
            walk(point);
        }
        walk(data.textPosition, data.blockPosition, data.normal, data.rotation, data.oblique,
             data.leaderLength, data.horizontalRotation, data.textRotation, data.textSpacing,
             data.fileMeasurement, data.text, data.flags, data.textAttachment, data.textSpacingStyle,
             data.flip, data.hasFileMeasurement, data.hasTextRotation);
        walk.hardPointer(data.style);
        walk.hardPointer(data.block);
    }
    bool has(int flag) const { return (flags & flag) != 0; }
    void set(int flag, bool on) { flags = static_cast<Adesk::Int16>(on ? flags | flag : flags & ~flag); }
};

/// Name of the class for a group 70; empty for a kind that does not exist.
const wchar_t* dimensionClassName(Adesk::Int64 type);
/// Makes the blocks of all dimensions of a style anew.
void rebuildDimensionsOf(AcDbObjectId style);

} // namespace host

class AcDbDimension : public AcDbEntity, public host::DimVariableAccess<AcDbDimension> {
    ACRX_DECLARE_MEMBERS(AcDbDimension);

public:
    AcGePoint3d textPosition() const;
    /// The text stays there from now on.
    Acad::ErrorStatus setTextPosition(const AcGePoint3d& point);
    bool isUsingDefaultTextPosition() const;
    Acad::ErrorStatus useDefaultTextPosition();
    Acad::ErrorStatus useSetTextPosition();
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    double elevation() const;
    Acad::ErrorStatus setElevation(double elevation);
    ACHAR* dimensionText() const; ///< a copy; freed with acutDelString
    Acad::ErrorStatus dimensionText(AcString& text) const;
    /// <> stands for the measurement; empty is <>, a blank no text.
    Acad::ErrorStatus setDimensionText(const ACHAR* text);
    double textRotation() const;
    Acad::ErrorStatus setTextRotation(double angle);
    double horizontalRotation() const;
    Acad::ErrorStatus setHorizontalRotation(double angle);
    AcDbObjectId dimensionStyle() const;
    Acad::ErrorStatus setDimensionStyle(AcDbObjectId style);
    AcDbMText::AttachmentPoint textAttachment() const;
    Acad::ErrorStatus setTextAttachment(AcDbMText::AttachmentPoint point);
    AcDb::LineSpacingStyle textLineSpacingStyle() const;
    Acad::ErrorStatus setTextLineSpacingStyle(AcDb::LineSpacingStyle style);
    double textLineSpacingFactor() const;
    Acad::ErrorStatus setTextLineSpacingFactor(double factor);
    bool getArrowFirstIsFlipped() const;
    bool getArrowSecondIsFlipped() const;
    Acad::ErrorStatus setArrowFirstIsFlipped(bool flipped);
    Acad::ErrorStatus setArrowSecondIsFlipped(bool flipped);

    /// Drawing units, radians for angles; before DIMLFAC and rounding.
    Acad::ErrorStatus getMeasurement(double& value) const;
    Acad::ErrorStatus measurement(double& value) const { return getMeasurement(value); }
    Acad::ErrorStatus formatMeasurement(AcString& text, double value, const ACHAR* dimensionText) const;

    AcDbObjectId dimBlockId() const;
    Acad::ErrorStatus setDimBlockId(AcDbObjectId block);
    AcGePoint3d dimBlockPosition() const;
    Acad::ErrorStatus setDimBlockPosition(const AcGePoint3d& point);
    /// Makes the block anew, now; without force only when something has changed.
    Acad::ErrorStatus recomputeDimBlock(bool forceUpdate = true);
    Acad::ErrorStatus generateLayout() { return recomputeDimBlock(); }

    /// Values of the style with the overrides of this dimension.
    host::DimVariables dimVariables() const;
    /// Makes one value an override.
    Acad::ErrorStatus setDimVariable(const host::DimVariables& values, std::size_t index);
    Acad::ErrorStatus setDimstyleData(AcDbDimStyleTableRecord* values);
    Acad::ErrorStatus setDimstyleData(AcDbObjectId style);
    /// The style with the overrides as a new record, owned by the caller.
    Acad::ErrorStatus getDimstyleData(AcDbDimStyleTableRecord*& values) const;

    Acad::ErrorStatus setXData(const resbuf* data) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    const host::DimensionData& data() const { return m; }
    /// What is seen, computed from the fields; entities in world coordinates.
    std::vector<std::unique_ptr<AcDbEntity>> computedParts(AcGePoint3d* textPosition = nullptr) const;

protected:
    using Point = host::DimensionData::Point;
    virtual host::DimensionKind kind() const = 0;
    virtual double subMeasurement() const = 0;
    virtual void paint(host::DimensionPainter& painter) const = 0;
    virtual host::DimMeasure measures() const { return host::DimMeasure::length; }
    /// In front of a measurement without prefix.
    virtual std::wstring_view sign() const { return {}; }
    /// The points that the kind has, in the order of its grips.
    virtual std::vector<Point> usedPoints() const = 0;
    /// A marker and the groups that follow it.
    struct FileSubclass {
        std::string_view marker;
        std::vector<short> codes;
    };
    virtual std::vector<FileSubclass> fileSubclasses() const = 0;

    AcGePoint3d point(Point which) const;
    Acad::ErrorStatus setPoint(Point which, const AcGePoint3d& point);
    Acad::ErrorStatus setAngle(double host::DimensionData::*member, double angle);
    /// In object coordinates, without elevation.
    AcGePoint2d flat(Point which) const;
    /// To be called before a change on which the picture depends.
    void changing();

    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    Acad::ErrorStatus subClose() override;
    Acad::ErrorStatus subErase(bool erasing) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The points of the kind, then the middle of the text.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    host::DimensionData m;

private:
    bool showsBlock() const;
    AcGeMatrix3d blockToWorld() const;
    /// Calls visit(entity, transform to world) for what is seen.
    template <class Visit>
    void forShown(Visit&& visit) const;
    void updateBlock();
    void replaceBlock(std::vector<std::unique_ptr<AcDbEntity>> parts);
    void writeKindGroups(AcDbDxfFiler* filer) const;
    std::wstring shownText(const host::DimVariables& variables) const;

    AcGeVector3d mMoved;    ///< by which the block is to be moved
    bool mStale = false;    ///< the block shows what was before a change
    bool mBorrowed = false; ///< the block is that of the dimension this one is a copy of
};

class AcDbAlignedDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbAlignedDimension);

public:
    AcDbAlignedDimension() = default;
    AcDbAlignedDimension(const AcGePoint3d& xLine1Point, const AcGePoint3d& xLine2Point,
                         const AcGePoint3d& dimLinePoint, const ACHAR* text = nullptr,
                         AcDbObjectId style = AcDbObjectId::kNull);
    AcGePoint3d xLine1Point() const { return point(Point::second); }
    AcGePoint3d xLine2Point() const { return point(Point::third); }
    AcGePoint3d dimLinePoint() const { return point(Point::first); }
    Acad::ErrorStatus setXLine1Point(const AcGePoint3d& p) { return setPoint(Point::second, p); }
    Acad::ErrorStatus setXLine2Point(const AcGePoint3d& p) { return setPoint(Point::third, p); }
    Acad::ErrorStatus setDimLinePoint(const AcGePoint3d& p) { return setPoint(Point::first, p); }
    double oblique() const;
    Acad::ErrorStatus setOblique(double angle);

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::aligned; }
    /// Direction of the dimension line in object coordinates.
    virtual AcGeVector2d lineDirection() const;
    double subMeasurement() const override;
    void paint(host::DimensionPainter& painter) const override;
    std::vector<Point> usedPoints() const override { return {Point::second, Point::third, Point::first}; }
    std::vector<FileSubclass> fileSubclasses() const override;
};

class AcDbRotatedDimension : public AcDbAlignedDimension {
    ACRX_DECLARE_MEMBERS(AcDbRotatedDimension);

public:
    AcDbRotatedDimension() = default;
    AcDbRotatedDimension(double rotation, const AcGePoint3d& xLine1Point, const AcGePoint3d& xLine2Point,
                         const AcGePoint3d& dimLinePoint, const ACHAR* text = nullptr,
                         AcDbObjectId style = AcDbObjectId::kNull);
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::rotated; }
    AcGeVector2d lineDirection() const override;
    std::vector<FileSubclass> fileSubclasses() const override;
};

namespace host {

/// What both kinds of angular dimensions share: an arc between two directions from a vertex.
class AngularDimension : public AcDbDimension {
protected:
    /// In object coordinates; angles counterclockwise from start to start + sweep.
    struct Sector {
        AcGePoint2d vertex;
        AcGePoint2d startPoint, endPoint; ///< from which the extension lines come
        double start = 0.0;
        double sweep = 0.0;
        double radius = 0.0;
        bool isValid = false;
    };
    virtual Sector sector() const = 0;
    double subMeasurement() const override { return sector().sweep; }
    void paint(DimensionPainter& painter) const override;
    DimMeasure measures() const override { return DimMeasure::angle; }

private:
    void paintExtensionLine(DimensionPainter& painter, const Sector& at, const AcGePoint2d& origin,
                            double angle, bool second) const;
};

/// What radial and diametric dimensions share.
class CircleDimension : public AcDbDimension {
public:
    AcGePoint3d chordPoint() const { return point(Point::fourth); }
    Acad::ErrorStatus setChordPoint(const AcGePoint3d& p) { return setPoint(Point::fourth, p); }
    double leaderLength() const;
    Acad::ErrorStatus setLeaderLength(double length);

protected:
    double subMeasurement() const override { return point(Point::first).distanceTo(point(Point::fourth)); }
    void paint(DimensionPainter& painter) const override;
    std::vector<Point> usedPoints() const override { return {Point::first, Point::fourth}; }
    virtual bool isDiametric() const = 0;

private:
    void paintInside(DimensionPainter& painter, const AcGePoint2d& chord, const AcGePoint2d& other) const;
    void paintLeader(DimensionPainter& painter, const AcGePoint2d& chord, const AcGeVector2d& out) const;
};

} // namespace host

class AcDb2LineAngularDimension : public host::AngularDimension {
    ACRX_DECLARE_MEMBERS(AcDb2LineAngularDimension);

public:
    AcDb2LineAngularDimension() = default;
    AcDb2LineAngularDimension(const AcGePoint3d& xLine1Start, const AcGePoint3d& xLine1End,
                              const AcGePoint3d& xLine2Start, const AcGePoint3d& xLine2End,
                              const AcGePoint3d& arcPoint, const ACHAR* text = nullptr,
                              AcDbObjectId style = AcDbObjectId::kNull);
    AcGePoint3d arcPoint() const { return point(Point::arc); }
    AcGePoint3d xLine1Start() const { return point(Point::second); }
    AcGePoint3d xLine1End() const { return point(Point::third); }
    AcGePoint3d xLine2Start() const { return point(Point::fourth); }
    AcGePoint3d xLine2End() const { return point(Point::first); }
    Acad::ErrorStatus setArcPoint(const AcGePoint3d& p) { return setPoint(Point::arc, p); }
    Acad::ErrorStatus setXLine1Start(const AcGePoint3d& p) { return setPoint(Point::second, p); }
    Acad::ErrorStatus setXLine1End(const AcGePoint3d& p) { return setPoint(Point::third, p); }
    Acad::ErrorStatus setXLine2Start(const AcGePoint3d& p) { return setPoint(Point::fourth, p); }
    Acad::ErrorStatus setXLine2End(const AcGePoint3d& p) { return setPoint(Point::first, p); }

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::twoLineAngular; }
    Sector sector() const override;
    std::vector<Point> usedPoints() const override {
        return {Point::second, Point::third, Point::fourth, Point::first, Point::arc};
    }
    std::vector<FileSubclass> fileSubclasses() const override;
};

class AcDb3PointAngularDimension : public host::AngularDimension {
    ACRX_DECLARE_MEMBERS(AcDb3PointAngularDimension);

public:
    AcDb3PointAngularDimension() = default;
    AcDb3PointAngularDimension(const AcGePoint3d& centerPoint, const AcGePoint3d& xLine1Point,
                               const AcGePoint3d& xLine2Point, const AcGePoint3d& arcPoint,
                               const ACHAR* text = nullptr, AcDbObjectId style = AcDbObjectId::kNull);
    AcGePoint3d arcPoint() const { return point(Point::first); }
    AcGePoint3d xLine1Point() const { return point(Point::second); }
    AcGePoint3d xLine2Point() const { return point(Point::third); }
    AcGePoint3d centerPoint() const { return point(Point::fourth); }
    Acad::ErrorStatus setArcPoint(const AcGePoint3d& p) { return setPoint(Point::first, p); }
    Acad::ErrorStatus setXLine1Point(const AcGePoint3d& p) { return setPoint(Point::second, p); }
    Acad::ErrorStatus setXLine2Point(const AcGePoint3d& p) { return setPoint(Point::third, p); }
    Acad::ErrorStatus setCenterPoint(const AcGePoint3d& p) { return setPoint(Point::fourth, p); }

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::threePointAngular; }
    Sector sector() const override;
    std::vector<Point> usedPoints() const override {
        return {Point::second, Point::third, Point::fourth, Point::first};
    }
    std::vector<FileSubclass> fileSubclasses() const override;
};

class AcDbRadialDimension : public host::CircleDimension {
    ACRX_DECLARE_MEMBERS(AcDbRadialDimension);

public:
    AcDbRadialDimension() = default;
    AcDbRadialDimension(const AcGePoint3d& center, const AcGePoint3d& chordPoint, double leaderLength,
                        const ACHAR* text = nullptr, AcDbObjectId style = AcDbObjectId::kNull);
    AcGePoint3d center() const { return point(Point::first); }
    Acad::ErrorStatus setCenter(const AcGePoint3d& p) { return setPoint(Point::first, p); }

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::radial; }
    std::wstring_view sign() const override { return L"R"; }
    bool isDiametric() const override { return false; }
    std::vector<FileSubclass> fileSubclasses() const override;
};

class AcDbDiametricDimension : public host::CircleDimension {
    ACRX_DECLARE_MEMBERS(AcDbDiametricDimension);

public:
    AcDbDiametricDimension() = default;
    AcDbDiametricDimension(const AcGePoint3d& chordPoint, const AcGePoint3d& farChordPoint,
                           double leaderLength, const ACHAR* text = nullptr,
                           AcDbObjectId style = AcDbObjectId::kNull);
    AcGePoint3d farChordPoint() const { return point(Point::first); }
    Acad::ErrorStatus setFarChordPoint(const AcGePoint3d& p) { return setPoint(Point::first, p); }

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::diametric; }
    std::wstring_view sign() const override { return L"%%c"; }
    bool isDiametric() const override { return true; }
    std::vector<FileSubclass> fileSubclasses() const override;
};

class AcDbOrdinateDimension : public AcDbDimension {
    ACRX_DECLARE_MEMBERS(AcDbOrdinateDimension);

public:
    AcDbOrdinateDimension() = default;
    AcDbOrdinateDimension(bool useXAxis, const AcGePoint3d& definingPoint, const AcGePoint3d& leaderEndPoint,
                          const ACHAR* text = nullptr, AcDbObjectId style = AcDbObjectId::kNull);
    bool isUsingXAxis() const;
    bool isUsingYAxis() const { return !isUsingXAxis(); }
    Acad::ErrorStatus useXAxis();
    Acad::ErrorStatus useYAxis();
    AcGePoint3d origin() const { return point(Point::first); }
    AcGePoint3d definingPoint() const { return point(Point::second); }
    AcGePoint3d leaderEndPoint() const { return point(Point::third); }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& p) { return setPoint(Point::first, p); }
    Acad::ErrorStatus setDefiningPoint(const AcGePoint3d& p) { return setPoint(Point::second, p); }
    Acad::ErrorStatus setLeaderEndPoint(const AcGePoint3d& p) { return setPoint(Point::third, p); }

protected:
    host::DimensionKind kind() const override { return host::DimensionKind::ordinate; }
    double subMeasurement() const override;
    void paint(host::DimensionPainter& painter) const override;
    std::vector<Point> usedPoints() const override { return {Point::second, Point::third, Point::first}; }
    std::vector<FileSubclass> fileSubclasses() const override;
};
