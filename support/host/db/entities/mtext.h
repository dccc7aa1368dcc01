// AcDbMText: a text of several lines with inline codes.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/dbsymtb.h"
#include "host/db/entities/mtextlayout.h"

class AcDbText;

namespace AcDb {
enum LineSpacingStyle { kAtLeast = 1, kExactly = 2 };
}

namespace host {

/// Columns as files store them.
struct MTextColumnData {
    Adesk::Int16 type = 0; ///< 0 none, 1 static, 2 dynamic
    Adesk::Int16 count = 0;
    bool autoHeight = false;
    bool reversed = false;
    double width = 0.0;
    double gutter = 0.0;
    double definedHeight = 0.0;
    double totalWidth = 0.0; ///< as the file has them; what is drawn is laid out anew
    double totalHeight = 0.0;
    std::vector<double> heights;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.type, data.count, data.autoHeight, data.reversed, data.width, data.gutter,
             data.definedHeight, data.totalWidth, data.totalHeight);
        auto size = static_cast<Adesk::UInt32>(data.heights.size());
        walk(size);
        if constexpr (Walk::reads) {
            constexpr Adesk::UInt32 most = 10000;
            data.heights.assign(walk.isGood() ? std::min(size, most) : 0, 0.0);
        }
        for (auto& height : data.heights) {
            walk(height);
        }
    }
};

/// Points and directions are in world coordinates.
struct MTextData {
    AcGePoint3d location;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d direction = AcGeVector3d::kXAxis; ///< of the base lines; unit length, across the normal
    double width = 0.0;                            ///< of the frame; 0: lines are not broken
    double definedHeight = 0.0;
    double textHeight = 0.0;
    double spacingFactor = 1.0;
    Adesk::Int16 attachment = 1;
    Adesk::Int16 flow = 1;
    Adesk::Int16 spacingStyle = AcDb::kAtLeast;
    Adesk::Int32 fill = 0; ///< group 90: 1 colour, 2 the window's colour, 16 a frame
    double fillScale = 1.5;
    Adesk::UInt32 fillColor = AcCmEntityColor(AcCmEntityColor::kByLayer).color();
    AcString contents;
    AcDbObjectId style;
    MTextColumnData columns;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.location, data.normal, data.direction, data.width, data.definedHeight, data.textHeight,
             data.spacingFactor, data.attachment, data.flow, data.spacingStyle, data.fill, data.fillScale,
             data.fillColor, data.contents);
        walk.hardPointer(data.style);
        MTextColumnData::fields(data.columns, walk);
    }
};

/// Calls `write` with the groups in which a file holds contents: long ones are cut into several.
template <class Write>
void forContentsGroups(std::wstring_view contents, Write write) {
    constexpr std::size_t charactersInGroup = 250;
    for (; contents.size() > charactersInGroup; contents.remove_prefix(charactersInGroup)) {
        write(3, std::wstring(contents.substr(0, charactersInGroup)));
    }
    write(1, std::wstring(contents));
}

} // namespace host

/// A piece of text of one look, as AcDbMText::explodeFragments hands it out.
struct AcDbMTextFragment {
    AcGePoint3d location;
    AcGeVector3d normal;
    AcGeVector3d direction;
    ACHAR* text = nullptr; ///< lives during the call
    ACHAR* font = nullptr;
    ACHAR* bigfont = nullptr;
    AcGePoint2d extents;
    double capsHeight = 0.0;
    double widthFactor = 1.0;
    double obliqueAngle = 0.0;
    double trackingFactor = 1.0;
    AcCmEntityColor color;
    bool underlined = false;
    bool overlined = false;
    bool strikethrough = false;
    bool bold = false;
    bool italic = false;
};
/// Zero ends the walk.
using AcDbMTextEnum = int (*)(AcDbMTextFragment* fragment, void* data);

class AcDbMText : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbMText);

public:
    enum AttachmentPoint {
        kTopLeft = 1,
        kTopCenter = 2,
        kTopRight = 3,
        kMiddleLeft = 4,
        kMiddleCenter = 5,
        kMiddleRight = 6,
        kBottomLeft = 7,
        kBottomCenter = 8,
        kBottomRight = 9
    };
    enum FlowDirection { kLtoR = 1, kRtoL = 2, kTtoB = 3, kBtoT = 4, kByStyle = 5 };
    enum ColumnType { kNoColumns = 0, kStaticColumns = 1, kDynamicColumns = 2 };

    AcGePoint3d location() const;
    Acad::ErrorStatus setLocation(const AcGePoint3d& point);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    AcGeVector3d direction() const;
    Acad::ErrorStatus setDirection(const AcGeVector3d& direction);
    /// Of the base lines from the X axis of the object coordinates.
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);
    double width() const;
    Acad::ErrorStatus setWidth(double width);
    double height() const; ///< as the user gave it; 0 when not
    Acad::ErrorStatus setHeight(double height);
    AcDbObjectId textStyle() const;
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    double textHeight() const;
    Acad::ErrorStatus setTextHeight(double height);
    AttachmentPoint attachment() const;
    Acad::ErrorStatus setAttachment(AttachmentPoint point);
    /// The text stays where it is: the location moves to the new attachment point.
    Acad::ErrorStatus setAttachmentMovingLocation(AttachmentPoint point);
    FlowDirection flowDirection() const;
    Acad::ErrorStatus setFlowDirection(FlowDirection direction);
    ACHAR* contents() const; ///< with the inline codes; a copy, freed with acutDelString
    Acad::ErrorStatus contents(AcString& text) const;
    Acad::ErrorStatus setContents(const ACHAR* text);
    ACHAR* text() const; ///< without codes; a copy, freed with acutDelString
    Acad::ErrorStatus text(AcString& text) const;
    AcDb::LineSpacingStyle lineSpacingStyle() const;
    Acad::ErrorStatus setLineSpacingStyle(AcDb::LineSpacingStyle style);
    double lineSpacingFactor() const;
    /// 0.25 to 4.
    Acad::ErrorStatus setLineSpacingFactor(double factor);
    bool backgroundFillOn() const;
    Acad::ErrorStatus setBackgroundFill(bool on);
    bool useBackgroundColorOn() const;
    Acad::ErrorStatus setUseBackgroundColor(bool on);
    Acad::ErrorStatus getBackgroundFillColor(AcCmColor& color) const;
    Acad::ErrorStatus setBackgroundFillColor(const AcCmColor& color);
    Acad::ErrorStatus getBackgroundScaleFactor(double& factor) const;
    /// 1 to 5.
    Acad::ErrorStatus setBackgroundScaleFactor(double factor);
    bool showBorders() const;
    Acad::ErrorStatus setShowBorders(bool on);

    Acad::ErrorStatus getColumnType(ColumnType& type) const;
    Acad::ErrorStatus setColumnType(ColumnType type);
    Acad::ErrorStatus getColumnCount(int& count) const;
    Acad::ErrorStatus setColumnCount(int count);
    Acad::ErrorStatus getColumnWidth(double& width) const;
    Acad::ErrorStatus setColumnWidth(double width);
    Acad::ErrorStatus getColumnGutterWidth(double& width) const;
    Acad::ErrorStatus setColumnGutterWidth(double width);
    Acad::ErrorStatus getColumnHeight(int column, double& height) const;
    Acad::ErrorStatus setColumnHeight(int column, double height);
    Acad::ErrorStatus getColumnAutoHeight(bool& automatic) const;
    Acad::ErrorStatus setColumnAutoHeight(bool automatic);
    Acad::ErrorStatus getColumnFlowReversed(bool& reversed) const;
    Acad::ErrorStatus setColumnFlowReversed(bool reversed);
    Acad::ErrorStatus setDynamicColumns(double width, double gutter, bool autoHeight);
    Acad::ErrorStatus setStaticColumns(double width, double gutter, int count);

    double actualWidth() const;
    double actualHeight(AcGiWorldDraw* = nullptr) const;
    double ascent() const;
    double descent() const;
    /// Corners of the frame: top left, top right, bottom left, bottom right.
    Acad::ErrorStatus boundingPoints(AcGePoint3dArray& corners) const;
    void explodeFragments(AcDbMTextEnum visit, void* data, AcGiWorldDraw* = nullptr) const;
    /// Lines, places and bars of the text as it is drawn.
    host::MTextLayout layout() const;
    /// From the coordinates of a layout to world coordinates.
    AcGeMatrix3d textToWorld() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    const host::MTextData& data() const { return m; }

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The location, and the side of the frame that its width moves.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    /// Lines of text and the bars of fractions.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& parts) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    host::MTextSettings settings() const;
    double gripSide() const;
    bool hasWidthGrip() const;
    std::unique_ptr<AcDbText> newTextOf(const host::MTextRun& run) const;
    void readColumns(AcDbDxfFiler* filer);
    void writeColumns(AcDbDxfFiler* filer) const;
    void drawBackground(AcGiWorldDraw* draw, const host::MTextLayout& layout) const;

    host::MTextData m;
    std::string mRead;           ///< contents while groups are read, in the form of files
    bool mHasColumnData = false; ///< a file has given the embedded part, be there columns or not
};
