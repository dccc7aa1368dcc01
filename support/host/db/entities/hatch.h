// AcDbHatch: an area filled solid or with a pattern of lines.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/entities/hatchpattern.h"

namespace host {

/// Boundary and pattern are in object coordinates of the normal, at the elevation.
struct HatchData {
    double elevation = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcString patternName = L"SOLID";
    bool solid = true;
    bool associative = false;
    std::vector<HatchLoop> loops;
    Adesk::Int16 style = 0;       ///< HatchStyle
    Adesk::Int16 patternType = 1; ///< HatchPatternType
    double patternAngle = 0.0;    ///< radians
    double patternScale = 1.0;    ///< of a user-defined pattern the spacing of its lines
    bool patternDouble = false;
    double pixelSize = 0.0;                ///< group 47, kept
    std::vector<HatchPatternLine> pattern; ///< as drawn: turned and scaled
    std::vector<AcGePoint2d> seeds;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk);
};

/// A two-coloured filling, from the groups of a file.
struct HatchGradient {
    AcString name;
    double angle = 0.0; ///< radians
    double shift = 0.0; ///< 1: the middle of the colours lies off the centre
    std::vector<AcCmEntityColor> colors;
};

} // namespace host

/// Boundary points and angles are in object coordinates. There are no snap points, as with hatches ignored by
/// object snaps; the grips are the middle of the boundary and, of a hatch that is not associative, the
/// vertices of its polylines.
class AcDbHatch : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbHatch);

public:
    enum HatchLoopType {
        kDefault = 0,
        kExternal = 1,
        kPolyline = 2,
        kDerived = 4,
        kTextbox = 8,
        kOutermost = 0x10,
        kNotClosed = 0x20,
        kSelfIntersecting = 0x40,
        kTextIsland = 0x80,
        kDuplicate = 0x100
    };
    enum HatchEdgeType { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };
    enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
    enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };
    enum HatchObjectType { kHatchObject = 0, kGradientObject = 1 };

    double elevation() const;
    Acad::ErrorStatus setElevation(double elevation);
    AcGeVector3d normal() const;
    /// The boundary keeps its object coordinates.
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    int numLoops() const;
    Adesk::Int32 loopTypeAt(int index) const;
    /// eNotApplicable for a loop of the other kind. Curves are new and owned by the caller; a spline edge
    /// comes as its chords.
    Acad::ErrorStatus getLoopAt(int index, Adesk::Int32& type, AcGePoint2dArray& vertices,
                                AcGeDoubleArray& bulges) const;
    Acad::ErrorStatus getLoopAt(int index, Adesk::Int32& type, AcGeVoidPointerArray& edges,
                                AcGeIntArray& edgeTypes) const;
    Acad::ErrorStatus appendLoop(Adesk::Int32 type, const AcGePoint2dArray& vertices,
                                 const AcGeDoubleArray& bulges);
    /// The edges (AcGeLineSeg2d, AcGeCircArc2d, AcGeEllipArc2d) are the hatch's from now on, whatever the
    /// status.
    Acad::ErrorStatus appendLoop(Adesk::Int32 type, const AcGeVoidPointerArray& edges,
                                 const AcGeIntArray& edgeTypes);
    /// One loop of objects that follow each other in any order, remembered for an associative hatch.
    Acad::ErrorStatus appendLoop(Adesk::Int32 type, const AcDbObjectIdArray& objects);
    Acad::ErrorStatus insertLoopAt(int index, Adesk::Int32 type, const AcGePoint2dArray& vertices,
                                   const AcGeDoubleArray& bulges);
    Acad::ErrorStatus removeLoopAt(int index);

    bool associative() const;
    Acad::ErrorStatus setAssociative(bool associative);
    Acad::ErrorStatus getAssocObjIds(AcDbObjectIdArray& ids) const;
    Acad::ErrorStatus getAssocObjIdsAt(int loop, AcDbObjectIdArray& ids) const;
    Acad::ErrorStatus setAssocObjIdsAt(int loop, const AcDbObjectIdArray& ids);
    Acad::ErrorStatus removeAssocObjIds();

    bool isHatch() const { return !isGradient(); }
    bool isGradient() const;
    bool isSolidFill() const;
    HatchPatternType patternType() const;
    const AcString& patternName() const;
    /// Angle, scale and spacing must be set before. Looks the lines up in the pattern files;
    /// eInvalidInput when there is no such pattern, and the hatch is as it was. `fault` then says why.
    Acad::ErrorStatus setPattern(HatchPatternType type, const ACHAR* name, AcString* fault = nullptr);
    /// Takes lines at scale 1 and angle 0.
    Acad::ErrorStatus setPatternLines(HatchPatternType type, const ACHAR* name,
                                      std::vector<host::HatchPatternLine> lines);
    int numPatternDefinitions() const;
    Acad::ErrorStatus getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY,
                                             double& offsetX, double& offsetY, AcGeDoubleArray& dashes) const;
    // These turn and scale the lines that are there.
    double patternAngle() const;
    Acad::ErrorStatus setPatternAngle(double angle);
    double patternScale() const;
    Acad::ErrorStatus setPatternScale(double scale);
    double patternSpace() const;
    Acad::ErrorStatus setPatternSpace(double space);
    bool patternDouble() const;
    Acad::ErrorStatus setPatternDouble(bool crossed);
    AcGePoint2d originPoint() const;
    /// The pattern's lines run from this point.
    Acad::ErrorStatus setOriginPoint(const AcGePoint2d& origin);
    HatchStyle hatchStyle() const;
    Acad::ErrorStatus setHatchStyle(HatchStyle style);
    int numSeedPoints() const;
    Acad::ErrorStatus getSeedPointAt(int index, AcGePoint2d& point) const;
    Acad::ErrorStatus setSeedPointAt(int index, const AcGePoint2d& point);

    /// Computes the lines; eHatchTooDense when there would be more than host::mostHatchLines.
    Acad::ErrorStatus evaluateHatch(bool underestimate = false);
    int numHatchLines() const { return static_cast<int>(mLines.size()); }
    Acad::ErrorStatus getHatchLineDataAt(int index, AcGePoint2d& start, AcGePoint2d& end) const;
    const std::vector<host::HatchLine>& hatchLines() const { return mLines; }
    /// Of what the style leaves hatched.
    Acad::ErrorStatus getArea(double& area) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    const host::HatchData& data() const { return m; }

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    /// A pattern into lines and points, a solid filling into solids.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    using Loops = std::vector<std::vector<host::BoundaryPiece>>;
    Loops loopPieces() const;
    void changed() { mLines.clear(); }
    AcGePoint3d worldPoint(const AcGePoint2d& point) const {
        return host::toWorld(m.normal, AcGePoint3d(point.x, point.y, m.elevation));
    }
    const host::HatchLoop* loopAt(int index) const;
    AcGePoint2d middle() const;
    /// Vertices of polylines and ends of lines, in order.
    std::vector<AcGePoint2d> vertices(bool polylinesOnly) const;
    void moveVertices(const AcDbIntArray& indices, int first, bool polylinesOnly, const AcGeVector2d& offset);
    void readPattern(AcDbDxfFiler* filer, Adesk::Int32 count);
    void readSeeds(AcDbDxfFiler* filer, Adesk::Int32 count);
    std::optional<host::HatchGradient> gradient() const;
    void drawSolid(AcGiWorldDraw* draw, const Loops& loops) const;
    void drawGradient(AcGiWorldDraw* draw, const Loops& loops, const host::HatchGradient& gradient) const;

    host::HatchData m;
    std::vector<host::HatchLine> mLines; ///< of the last evaluation
    bool mHasBoundary = false;           ///< a file that is being read told of one
};
