// AcDbViewport: a window of a layout onto the model space.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/entities/hatchboundary.h"

namespace host {

struct ViewportData {
    enum Flag : Adesk::Int32 { zoomLocked = 0x4000, clippedByEntity = 0x10000, off = 0x20000 };

    AcGePoint3d center; ///< on the sheet
    double width = 0.0;
    double height = 0.0;
    Adesk::Int16 status = 1; ///< place in the stack of active viewports; 0 off, -1 not on the screen
    Adesk::Int16 number = 2; ///< 1 is the sheet itself
    AcGePoint2d
        viewCenter; ///< in display coordinates: origin at the target, turned to the view and by the twist
    AcGePoint2d snapBase;
    AcGePoint2d snapSpacing{10.0, 10.0};
    AcGePoint2d gridSpacing{10.0, 10.0};
    AcGeVector3d viewDirection = AcGeVector3d::kZAxis; ///< from the target to the eye
    AcGePoint3d viewTarget;
    double lens = 50.0;
    double frontClip = 0.0;
    double backClip = 0.0;
    double viewHeight = 1.0; ///< of the model, as high as the viewport
    double snapAngle = 0.0;  ///< radians
    double twist = 0.0;
    Adesk::Int16 circleSides = 1000;
    Adesk::Int32 flags = 32864;
    AcDbObjectId clipEntity;
    std::vector<AcDbObjectId> frozenLayers;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.center, data.width, data.height, data.status, data.number, data.viewCenter, data.snapBase,
             data.snapSpacing, data.gridSpacing, data.viewDirection, data.viewTarget, data.lens,
             data.frontClip, data.backClip, data.viewHeight, data.snapAngle, data.twist, data.circleSides,
             data.flags);
        walk.hardPointer(data.clipEntity);
        walkList(walk, data.frozenLayers, [&](auto& id) { walk.softPointer(id); });
    }
};

} // namespace host

/// The rectangle stays upright under every transform.
class AcDbViewport : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbViewport);

public:
    AcGePoint3d centerPoint() const;
    Acad::ErrorStatus setCenterPoint(const AcGePoint3d& center);
    double width() const;
    Acad::ErrorStatus setWidth(double width);
    double height() const;
    Acad::ErrorStatus setHeight(double height);
    Adesk::Int16 number() const;
    Acad::ErrorStatus setNumber(Adesk::Int16 number);
    /// The view of the sheet itself, which every layout that was shown once has: nothing is drawn of it.
    bool isSheet() const;
    bool isOn() const;
    Acad::ErrorStatus setOn();
    Acad::ErrorStatus setOff();
    bool isLocked() const;
    Acad::ErrorStatus setLocked(bool locked = true);

    AcGePoint2d viewCenter() const;
    Acad::ErrorStatus setViewCenter(const AcGePoint2d& center);
    double viewHeight() const;
    Acad::ErrorStatus setViewHeight(double height);
    AcGePoint3d viewTarget() const;
    Acad::ErrorStatus setViewTarget(const AcGePoint3d& target);
    AcGeVector3d viewDirection() const;
    Acad::ErrorStatus setViewDirection(const AcGeVector3d& direction);
    double twistAngle() const;
    Acad::ErrorStatus setTwistAngle(double angle);
    /// Units of the sheet for a unit of the model.
    double customScale() const;
    Acad::ErrorStatus setCustomScale(double scale);
    AcDbObjectId nonRectClipEntityId() const;
    Acad::ErrorStatus setNonRectClipEntityId(AcDbObjectId id);
    bool isLayerFrozenInViewport(AcDbObjectId layer) const;
    Acad::ErrorStatus freezeLayersInViewport(const AcDbObjectIdArray& layers);
    Acad::ErrorStatus thawLayersInViewport(const AcDbObjectIdArray& layers);
    /// From the model's world coordinates to the sheet's.
    AcGeMatrix3d modelToPaper() const;
    /// What the model is cut at, on the sheet: the frame, or the outline of the clipping entity.
    std::vector<AcGePoint3d> clipOutline() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    const host::ViewportData& data() const { return m; }

protected:
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override;
    /// The frame; for the sheet itself there is none.
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The centre, then the corners from the lower left one.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    /// The frame and, cut at it, the model space.
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    std::vector<AcGePoint3d> corners() const;
    void drawModel(AcGiWorldDraw* draw) const;
    host::ViewportData m;
};
