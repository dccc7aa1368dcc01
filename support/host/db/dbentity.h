// AcDbEntity and AcDbCurve: what every drawn object has, and what every curve answers.
#pragma once

#include "host/db/dbobject.h"
#include "host/ge/ge.h"

class AcDbFullSubentPath;

namespace host {
struct CurvePiece;
class SubentityList;
} // namespace host

class AcGeCurve3d;
class AcDbGripData;

using AcDbVoidPtrArray = AcArray<void*>;
using AcDbEntityPtrArray = AcArray<class AcDbEntity*>;
using AcDbCurvePtrArray = AcArray<class AcDbCurve*>;

namespace AcDb {

enum Intersect { kOnBothOperands = 0, kExtendThis = 1, kExtendArg = 2, kExtendBoth = 3 };

enum OsnapMode {
    kOsModeEnd = 1,
    kOsModeMid = 2,
    kOsModeCen = 3,
    kOsModeNode = 4,
    kOsModeQuad = 5,
    kOsModeIntersec = 6,
    kOsModeIns = 7,
    kOsModePerp = 8,
    kOsModeTan = 9,
    kOsModeNear = 10,
    kOsModeApint = 11,
    kOsModePar = 12,
    kOsModeStart = 13
};

/// Bits of OSMODE.
enum OsnapMask : int {
    kOsMaskEnd = 0x1,
    kOsMaskMid = 0x2,
    kOsMaskCen = 0x4,
    kOsMaskNode = 0x8,
    kOsMaskQuad = 0x10,
    kOsMaskInt = 0x20,
    kOsMaskIns = 0x40,
    kOsMaskPerp = 0x80,
    kOsMaskTan = 0x100,
    kOsMaskNear = 0x200,
    kOsMaskQuick = 0x400,
    kOsMaskApint = 0x800,
    kOsMaskImmediate = 0x10000,
    kOsMaskAllowTan = 0x20000,
    kOsMaskDisablePerp = 0x40000,
    kOsMaskRelCartesian = 0x80000,
    kOsMaskRelPolar = 0x100000,
    kOsMaskNoneOverride = 0x200000
};

/// Of a block that stands for another drawing.
enum XrefStatus {
    kXrfNotAnXref = 0,
    kXrfResolved,
    kXrfUnloaded,
    kXrfUnreferenced,
    kXrfFileNotFound,
    kXrfUnresolved
};

enum SubentType { kNullSubentType = 0, kFaceSubentType = 1, kEdgeSubentType = 2, kVertexSubentType = 3 };
enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };

} // namespace AcDb

/// An axis-aligned box in world coordinates; empty until a point was added.
class AcDbExtents {
public:
    AcDbExtents() = default;
    AcDbExtents(const AcGePoint3d& min, const AcGePoint3d& max) : mMin(min), mMax(max) {}
    AcGePoint3d minPoint() const { return mMin; }
    AcGePoint3d maxPoint() const { return mMax; }
    bool isEmpty() const { return mMin.x > mMax.x; }
    Acad::ErrorStatus set(const AcGePoint3d& min, const AcGePoint3d& max);
    void addPoint(const AcGePoint3d& point);
    void addExt(const AcDbExtents& other);
    void expandBy(const AcGeVector3d& by);
    void transformBy(const AcGeMatrix3d& transform);

private:
    AcGePoint3d mMin{1e20, 1e20, 1e20};
    AcGePoint3d mMax{-1e20, -1e20, -1e20};
};

class AcDbSubentId {
public:
    AcDbSubentId() = default;
    AcDbSubentId(AcDb::SubentType type, Adesk::IntPtr index) : mType(type), mIndex(index) {}
    AcDb::SubentType type() const { return mType; }
    Adesk::IntPtr index() const { return mIndex; }

private:
    AcDb::SubentType mType = AcDb::kNullSubentType;
    Adesk::IntPtr mIndex = 0;
};

class AcDbEntity : public AcDbObject {
    ACRX_DECLARE_MEMBERS(AcDbEntity);

public:
    AcDbEntity();

    AcDbObjectId blockId() const { return ownerId(); }

    AcCmColor color() const;
    Adesk::UInt16 colorIndex() const;
    AcCmEntityColor entityColor() const { return mColor; }
    virtual Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true,
                                       AcDbDatabase* database = nullptr);
    virtual Acad::ErrorStatus setColorIndex(Adesk::UInt16 index, bool doSubents = true);
    Acad::ErrorStatus setEntityColor(const AcCmEntityColor& color);

    AcDbObjectId layerId() const { return mLayer; }
    ACHAR* layer() const; ///< a copy; freed with acutDelString
    Acad::ErrorStatus layer(AcString& name) const;
    virtual Acad::ErrorStatus setLayer(const ACHAR* name, bool doSubents = true, bool allowHidden = false);
    virtual Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true, bool allowHidden = false);

    AcDbObjectId linetypeId() const { return mLinetype; }
    ACHAR* linetype() const;
    Acad::ErrorStatus linetype(AcString& name) const;
    virtual Acad::ErrorStatus setLinetype(const ACHAR* name, bool doSubents = true);
    virtual Acad::ErrorStatus setLinetype(AcDbObjectId linetype, bool doSubents = true);
    double linetypeScale() const { return mLinetypeScale; }
    virtual Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);
    AcDb::Visibility visibility() const { return mVisible ? AcDb::kVisible : AcDb::kInvisible; }
    virtual Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents = true);
    AcDb::LineWeight lineWeight() const { return static_cast<AcDb::LineWeight>(mLineWeight); }
    virtual Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents = true);
    /// Takes layer, colour, linetype, its scale, lineweight and visibility of another entity.
    Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);
    /// Takes the database's current layer, colour, linetype, its scale and lineweight.
    void setDatabaseDefaults(AcDbDatabase* database = nullptr);
    /// Takes those current properties of the database that were never set here, each on its own.
    void completeProperties(AcDbDatabase& database);

    Acad::ErrorStatus transformBy(const AcGeMatrix3d& transform) { return subTransformBy(transform); }
    Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const {
        return subGetTransformedCopy(transform, copy);
    }
    Acad::ErrorStatus getGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                    AcDbIntArray& geometryIds) const {
        return subGetGripPoints(points, snapModes, geometryIds);
    }
    Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveGripPointsAt(indices, offset);
    }
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const { return subGetStretchPoints(points); }
    Acad::ErrorStatus moveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveStretchPointsAt(indices, offset);
    }
    Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                     const AcGePoint3d& last, const AcGeMatrix3d& view,
                                     AcGePoint3dArray& points, AcDbIntArray& geometryIds) const {
        return subGetOsnapPoints(mode, marker, pick, last, view, points, geometryIds);
    }
    /// World box. eInvalidExtents for an entity without any.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const { return subGetGeomExtents(extents); }
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, AcGePoint3dArray& points,
                                    Adesk::GsMarker thisMarker = 0, Adesk::GsMarker otherMarker = 0) const {
        return subIntersectWith(other, type, points, thisMarker, otherMarker);
    }
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, const AcGePlane& plane,
                                    AcGePoint3dArray& points, Adesk::GsMarker thisMarker = 0,
                                    Adesk::GsMarker otherMarker = 0) const {
        return subIntersectWith(other, type, plane, points, thisMarker, otherMarker);
    }
    /// The parts as new entities owned by the caller.
    Acad::ErrorStatus explode(AcDbVoidPtrArray& parts) const { return subExplode(parts); }
    Acad::ErrorStatus list() const { return subList(); }
    AcGeMatrix3d getEcs() const;
    void getEcs(AcGeMatrix3d& ecs) const { ecs = getEcs(); }
    virtual bool isPlanar() const { return false; }
    virtual Acad::ErrorStatus getPlane(AcGePlane&, AcDb::Planarity&) const { return Acad::eNotApplicable; }
    virtual void recordGraphicsModified(bool = true) {}
    void draw() {}

    /// The lines and arcs the entity is drawn with, in world coordinates and in order; false when it cannot
    /// be told by such. Intersection, snapping, closest points and extents are computed from them.
    bool curvePieces(std::vector<host::CurvePiece>& pieces) const { return subCurvePieces(pieces); }
    /// World box of the entity under a transform (a block's): tighter than the transformed box.
    Acad::ErrorStatus getExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
        return subGetExtentsUnder(transform, extents);
    }
    /// Vertices of a polyline, attributes of a block reference: entities that follow their owner in files.
    /// Null for an entity that has no parts.
    virtual host::SubentityList* subentities() { return nullptr; }
    /// For readers: the list is made when the entity can have parts.
    virtual host::SubentityList* needSubentities() { return subentities(); }
    const host::SubentityList* subentities() const { return const_cast<AcDbEntity*>(this)->subentities(); }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    /// Reads the common groups in front, up to the marker of the next subclass or the first group that is
    /// not common; classes go on from there.
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d&) { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const;
    virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                               AcDbIntArray& geometryIds) const;
    virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const;
    virtual Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                const AcGePoint3d& pick, const AcGePoint3d& last,
                                                const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                AcDbIntArray& geometryIds) const;
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               AcGePoint3dArray& points, Adesk::GsMarker thisMarker,
                                               Adesk::GsMarker otherMarker) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               const AcGePlane& plane, AcGePoint3dArray& points,
                                               Adesk::GsMarker thisMarker, Adesk::GsMarker otherMarker) const;
    virtual Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const;
    virtual Acad::ErrorStatus subList() const { return Acad::eOk; }
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;
    virtual void subSetDatabaseDefaults(AcDbDatabase*) {}

    /// Normal of the entity's own coordinate system.
    virtual AcGeVector3d subEcsNormal() const { return AcGeVector3d::kZAxis; }
    virtual bool subCurvePieces(std::vector<host::CurvePiece>&) const { return false; }
    virtual Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const;

    // Reading of DXF groups. A class resets its fields, lets AcDbEntity::dxfInFields read the groups in
    // front, then calls readDxfGroups, which hands every group to takeDxfGroup until a marker that is not the
    // class's own; groups nobody takes are kept under their subclass.

    Acad::ErrorStatus readDxfGroups(AcDbDxfFiler* filer);
    /// The marker in a lasting form when it is one of the class's subclasses, else empty. For an empty marker
    /// (files without markers) the class's main subclass.
    virtual std::string_view dxfSubclass(std::string_view) const { return {}; }
    /// Takes one group; `subclass` is the marker it came under, empty in files without markers.
    virtual bool takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup&, std::string_view) { return false; }
    /// All groups were read: what depends on several of them is done here.
    virtual Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler*) { return Acad::eOk; }

    /// Takes a group that any entity may have (layer, colour, linetype, ...), wherever a file put it.
    bool takeEntityGroup(AcDbDxfFiler* filer, const host::DxfGroup& group);
    friend class host::DatabaseImpl;

private:
    void setAllGiven() { mHasColor = mHasLinetypeScale = mHasLineWeight = true; }

    AcDbStub* mLayer = nullptr;
    AcDbStub* mLinetype = nullptr;
    double mLinetypeScale = 1.0;
    AcCmEntityColor mColor;
    Adesk::Int16 mLineWeight = -1; ///< hundredths of a millimetre; -1 by layer, -2 by block, -3 default
    bool mVisible : 1 = true;
    bool mPaperSpace : 1 = false; ///< group 67, kept while a file without owners is read
    // Properties that somebody gave, so that they are not the drawing's current ones.
    bool mHasColor : 1 = false;
    bool mHasLinetypeScale : 1 = false;
    bool mHasLineWeight : 1 = false;
};

/// Every curve: parameters run from start to end parameter; distances are along the curve from its start.
/// Points are in world coordinates.
class AcDbCurve : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbCurve);

public:
    virtual bool isClosed() const { return false; }
    virtual bool isPeriodic() const { return false; }
    virtual Acad::ErrorStatus getStartParam(double&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getEndParam(double&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getPointAtParam(double, AcGePoint3d&) const { return Acad::eNotApplicable; }
    /// eInvalidInput (eOnlyInCurve does not exist here) when the point is not on the curve.
    virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d&, double&) const {
        return Acad::eNotApplicable;
    }
    virtual Acad::ErrorStatus getDistAtParam(double, double&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getParamAtDist(double, double&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& distance) const;
    virtual Acad::ErrorStatus getPointAtDist(double distance, AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getFirstDeriv(double, AcGeVector3d&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const;
    virtual Acad::ErrorStatus getSecondDeriv(double, AcGeVector3d&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getSecondDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const;
    /// With `extend` the curve's ends go on along their line or circle.
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                bool extend = false) const;
    /// Closest as seen along a direction.
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                                AcGePoint3d& closest, bool extend = false) const;
    virtual Acad::ErrorStatus getOrthoProjectedCurve(const AcGePlane&, AcDbCurve*&) const {
        return Acad::eNotApplicable;
    }
    /// New curves owned by the caller. For an open polyline a positive distance goes to the right of its
    /// direction; for a closed curve, circle or arc outwards.
    virtual Acad::ErrorStatus getOffsetCurves(double, AcDbVoidPtrArray&) const {
        return Acad::eNotApplicable;
    }
    virtual Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray&, AcDbVoidPtrArray&) const {
        return Acad::eNotApplicable;
    }
    virtual Acad::ErrorStatus getSplitCurves(const AcGePoint3dArray& points, AcDbVoidPtrArray& pieces) const;
    virtual Acad::ErrorStatus extend(double) { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus extend(bool, const AcGePoint3d&) { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getArea(double&) const { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus reverseCurve() { return Acad::eNotApplicable; }
    virtual Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*&) const { return Acad::eNotApplicable; }

protected:
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
};

using AcDbEntityPointer = AcDbObjectPointer<AcDbEntity>;
inline Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                            bool openErased = false) {
    return acdbOpenObject(entity, id, mode, openErased);
}
