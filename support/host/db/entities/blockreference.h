// AcDbBlockReference: a block shown at a place.
#pragma once

#include "host/db/entities/attribute.h"
#include "host/db/entities/subentities.h"

#include <functional>
#include <string>

namespace host {

struct BlockReferenceData {
    AcDbObjectId block;
    AcGePoint3d position; ///< in object coordinates
    AcGeScale3d scale;
    double rotation = 0.0; ///< radians, about the normal
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.position, data.scale, data.rotation, data.normal);
        walk.hardPointer(data.block);
    }
};

} // namespace host

/// Shows a block, scaled (each axis by itself), turned and moved so that the block's origin lies at the
/// position. Owns the attributes.
class AcDbBlockReference : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbBlockReference);

public:
    AcDbBlockReference() = default;
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block);

    AcDbObjectId blockTableRecord() const;
    /// eSelfReference when the block would come to hold itself.
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGeScale3d scaleFactors() const;
    /// eInvalidInput when a factor is zero.
    virtual Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
    double rotation() const;
    virtual Acad::ErrorStatus setRotation(double angle);
    AcGeVector3d normal() const;
    virtual Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    /// From block coordinates to world coordinates.
    AcGeMatrix3d blockTransform() const;
    /// eCannotScaleNonUniformly for a matrix that shears.
    virtual Acad::ErrorStatus setBlockTransform(const AcGeMatrix3d& transform);
    AcGeMatrix3d nonAnnotationBlockTransform() const { return blockTransform(); }

    /// The attribute becomes the reference's; one of a resident reference becomes a resident, open for write.
    Acad::ErrorStatus appendAttribute(AcDbAttribute* attribute);
    Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
    Acad::ErrorStatus openAttribute(AcDbAttribute*& attribute, AcDbObjectId id, AcDb::OpenMode mode,
                                    bool openErased = false) const;
    Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const;
    /// Owned by the caller.
    AcDbObjectIterator* attributeIterator() const;

    /// Extents under a further transform.
    Acad::ErrorStatus geomExtentsBestFit(AcDbExtents& extents,
                                         const AcGeMatrix3d& parent = AcGeMatrix3d::kIdentity) const {
        return getExtentsUnder(parent, extents);
    }
    /// Puts the exploded parts into the block the reference stands in.
    virtual Acad::ErrorStatus explodeToOwnerSpace() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

    host::SubentityList* subentities() override { return mAttributes.get(); }
    host::SubentityList* needSubentities() override { return &needAttributes(); }
    const host::BlockReferenceData& data() const { return m; }

protected:
    Acad::ErrorStatus copyFromBase(const AcDbObject& source) override;
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override;
    Acad::ErrorStatus subErase(bool erasing) override;
    /// Everything within the block, in world coordinates.
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    /// Copies of the block's entities. Those that a scale by axis cannot keep what they are go into their own
    /// parts; when that does not help either, the status says so and there are none.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    // What differs for a reference in rows and columns.

    /// Marker of the subclass in files.
    virtual std::string_view referenceSubclass() const { return "AcDbBlockReference"; }
    /// Groups 70, 71, 44 and 45.
    virtual void writeArrayGroups(AcDbDxfFiler* filer) const;
    enum class Showings { all, corners };
    /// Calls visit with the way from the position to each showing of the block, in world coordinates.
    virtual void forShowings(Showings, const std::function<void(const AcGeVector3d&)>& visit) const {
        visit(AcGeVector3d());
    }

private:
    host::SubentityList& needAttributes();
    /// The entities of the block with the transform to the world; nothing within a block that is already
    /// being visited.
    template <class Visit>
    void visitBlock(Visit&& visit) const;

    host::BlockReferenceData m;
    std::unique_ptr<host::SubentityList> mAttributes;
};

namespace host {

/// Draws the entities of a block in its own coordinates, as a reference shows them.
bool drawBlockContents(const AcDbBlockTableRecord& block, AcGiWorldDraw* draw);
/// Whether a block is another one or holds it, at any depth.
bool blockContains(AcDbObjectId outer, AcDbObjectId inner);
/// Whether a block of that name, filled with the model space of another drawing, would come to hold itself.
bool wouldHoldItself(const AcDbDatabase& database, const ACHAR* blockName, const AcDbDatabase& source);
/// What is drawn of one reference: more references within it, or deeper ones, do not show.
inline constexpr int mostNestedReferences = 1'000'000;
inline constexpr int deepestBlocks = 64;

/// One line, with the handle it is about.
using BlockReport = std::function<void(const std::wstring& what, Adesk::UInt64 handle)>;
/// Takes out the references by which blocks hold themselves (of damaged files), and reports each; tells of
/// blocks that multiply beyond what is drawn.
void breakBlockCycles(AcDbDatabase& database, const BlockReport& report, const BlockReport& tell);

} // namespace host
