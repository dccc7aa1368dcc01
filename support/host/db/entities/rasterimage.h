// AcDbRasterImage and AcDbWipeout: a picture from a file, and an area that hides what lies below it; both
// with a clip boundary. AcDbRasterImageDef names the file and stands in the dictionary ACAD_IMAGE_DICT.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/dbgroupedobject.h"
#include "host/db/entities/hatchboundary.h"

namespace host {

struct RasterImageData {
    enum Option : Adesk::Int16 { show = 1, showUnaligned = 2, useClip = 4, transparent = 8 };
    static constexpr Adesk::Int16 rectangle = 1;
    static constexpr Adesk::Int16 polygon = 2;

    Adesk::Int32 classVersion = 0;
    AcGePoint3d origin;                    ///< lower left corner
    AcGeVector3d u = AcGeVector3d::kXAxis; ///< one pixel along
    AcGeVector3d v = AcGeVector3d::kYAxis; ///< one pixel up
    double width = 1.0;                    ///< pixels
    double height = 1.0;
    AcDbObjectId definition;
    AcDbObjectId reactor; ///< the object that tells the image of changes of its definition
    Adesk::Int16 options = show | showUnaligned | useClip;
    bool clipped = false;
    Adesk::Int16 brightness = 50; ///< percent
    Adesk::Int16 contrast = 50;
    Adesk::Int16 fade = 0;
    Adesk::Int16 clipType = rectangle;
    /// In pixels from the middle of the upper left one, y down: two corners, or a closed polygon.
    std::vector<AcGePoint2d> clip{{-0.5, -0.5}, {0.5, 0.5}};
    bool clipsInside = false; ///< what is within the boundary is hidden

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.classVersion, data.origin, data.u, data.v, data.width, data.height, data.options,
             data.clipped, data.brightness, data.contrast, data.fade, data.clipType, data.clipsInside);
        walkValues(walk, data.clip);
        walk.hardPointer(data.definition);
        walk.softPointer(data.reactor);
    }
};

struct RasterImageDefData {
    Adesk::Int32 classVersion = 0;
    AcString file;
    double width = 1.0; ///< pixels
    double height = 1.0;
    double pixelWidth = 1.0; ///< drawing units a pixel, by default
    double pixelHeight = 1.0;
    bool loaded = true;
    Adesk::UInt8 units = 0; ///< of the resolution: 0 none, 2 centimetres, 5 inches

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.classVersion, data.file, data.width, data.height, data.pixelWidth, data.pixelHeight,
             data.loaded, data.units);
    }
};

} // namespace host

class AcDbRasterImageDef : public host::GroupedObject {
    ACRX_DECLARE_MEMBERS(AcDbRasterImageDef);

public:
    const AcString& sourceFileName() const { return m.file; }
    Acad::ErrorStatus setSourceFileName(const ACHAR* name);
    AcGeVector2d size() const { return {m.width, m.height}; }
    Acad::ErrorStatus setSize(const AcGeVector2d& pixels);
    bool isLoaded() const { return m.loaded; }
    const host::RasterImageDefData& data() const { return m; }
    /// Id of the dictionary of image definitions; null when the drawing has none.
    static AcDbObjectId imageDictionary(AcDbDatabase* database);
    static Acad::ErrorStatus createImageDictionary(AcDbDatabase* database, AcDbObjectId& id);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    host::RasterImageDefData m;
};

/// Drawn as its frame with the name of the file in it.
class AcDbRasterImage : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbRasterImage);

public:
    enum ClipBoundaryType { kInvalid = 0, kRect = 1, kPoly = 2 };
    enum ImageDisplayOpt { kShow = 1, kShowUnAligned = 2, kClip = 4, kTransparent = 8 };

    AcDbObjectId imageDefId() const;
    Acad::ErrorStatus setImageDefId(AcDbObjectId definition);
    /// The whole image: lower left corner, and the edges along and up.
    void getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const;
    Acad::ErrorStatus setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u, const AcGeVector3d& v);
    AcGeVector2d imageSize() const; ///< pixels
    /// The orientation stays.
    Acad::ErrorStatus setImageSize(const AcGeVector2d& pixels);

    bool isClipped() const;
    ClipBoundaryType clipBoundaryType() const;
    const std::vector<AcGePoint2d>& clipBoundary() const;
    /// Two points, or a closed polygon with its first point repeated at the end, in pixels.
    Acad::ErrorStatus setClipBoundary(ClipBoundaryType type, const AcGePoint2dArray& points);
    Acad::ErrorStatus setClipBoundaryToWholeImage();
    bool isDisplayOptSet(ImageDisplayOpt option) const;
    Acad::ErrorStatus setDisplayOpt(ImageDisplayOpt option, bool on);
    Adesk::Int16 brightness() const;
    Adesk::Int16 contrast() const;
    Adesk::Int16 fade() const;
    Acad::ErrorStatus setBrightness(Adesk::Int16 percent);
    Acad::ErrorStatus setContrast(Adesk::Int16 percent);
    Acad::ErrorStatus setFade(Adesk::Int16 percent);
    /// The outline that is shown, in world coordinates, not repeating its first corner.
    std::vector<AcGePoint3d> outline() const;
    AcGeMatrix3d pixelToModel() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    const host::RasterImageData& data() const { return m; }

protected:
    AcGeVector3d subEcsNormal() const override { return host::unitNormal(m.u.crossProduct(m.v)); }
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// Corners of the outline.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    /// All corners move the image; fewer change the clip boundary.
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;
    virtual std::string_view imageSubclass() const { return "AcDbRasterImage"; }

private:
    std::vector<AcGePoint2d> clipPolygon() const;
    bool mGivesClip = false; ///< the clip boundary of a file was begun
    host::RasterImageData m;
};

/// Drawn as its area in the colour of the background.
class AcDbWipeout : public AcDbRasterImage {
    ACRX_DECLARE_MEMBERS(AcDbWipeout);

public:
    /// The area within a closed outline given by points in a plane parallel to the XY plane of the world.
    Acad::ErrorStatus setOutline(const AcGePoint3dArray& corners);

protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    std::string_view imageSubclass() const override { return "AcDbWipeout"; }
};
