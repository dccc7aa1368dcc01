// AcDbText: a line of text.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/dbsymtb.h"

namespace AcDb {
enum TextHorzMode {
    kTextLeft = 0,
    kTextCenter = 1,
    kTextRight = 2,
    kTextAlign = 3,
    kTextMid = 4,
    kTextFit = 5
};
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };
} // namespace AcDb

namespace host {

/// Points are in object coordinates, angles radians.
struct TextData {
    AcGePoint3d position;  ///< start of the base line
    AcGePoint3d alignment; ///< what the text is fitted to, unless it is left aligned on its base line
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double thickness = 0.0;
    double oblique = 0.0;
    double rotation = 0.0;
    double height = 0.0;
    double widthFactor = 1.0;
    AcString text;
    Adesk::UInt8 generation = 0; ///< group 71: 2 backwards, 4 upside down
    Adesk::UInt8 horizontal = 0; ///< group 72
    Adesk::UInt8 vertical = 0;   ///< group 73
    AcDbObjectId style;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.position, data.alignment, data.normal, data.thickness, data.oblique, data.rotation,
             data.height, data.widthFactor, data.text, data.generation, data.horizontal, data.vertical);
        walk.hardPointer(data.style);
    }
};

/// Extent of a text in its own coordinates: origin at the start of the base line, x along it, neither
/// mirrored nor turned. A vertical text starts at the top of its middle line and goes down.
struct TextBox {
    double left = 0.0, bottom = 0.0, right = 0.0, top = 0.0; ///< of the ink
    double width = 0.0;   ///< from the start to the end of the last character
    double descent = 0.0; ///< of the font, below the base line; not negative
    bool isVertical = false;
};

} // namespace host

class AcDbText : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbText);

public:
    AcDbText() = default;
    AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = AcDbObjectId::kNull,
             double height = 0.0, double rotation = 0.0);

    // Setters on which the place of an aligned text depends compute its position anew.

    /// Where the base line begins as the text is drawn here: what a file has fits the fonts of its program.
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGePoint3d alignmentPoint() const;
    Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& point);
    /// Left aligned on the base line: the alignment point has no meaning.
    bool isDefaultAlignment() const;
    AcGeVector3d normal() const;
    /// The points keep their places.
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    double oblique() const;
    Acad::ErrorStatus setOblique(double angle);
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);
    double height() const;
    Acad::ErrorStatus setHeight(double height);
    double widthFactor() const;
    Acad::ErrorStatus setWidthFactor(double factor);
    ACHAR* textString() const; ///< a copy; freed with acutDelString
    Acad::ErrorStatus textString(AcString& text) const;
    const ACHAR* textStringConst() const;
    Acad::ErrorStatus setTextString(const ACHAR* text);
    AcDbObjectId textStyle() const;
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    /// Backwards.
    bool isMirroredInX() const;
    Acad::ErrorStatus mirrorInX(bool mirrored);
    /// Upside down.
    bool isMirroredInY() const;
    Acad::ErrorStatus mirrorInY(bool mirrored);
    AcDb::TextHorzMode horizontalMode() const;
    Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
    AcDb::TextVertMode verticalMode() const;
    Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);
    /// Computes the position (aligned: height and rotation too; fitted: width factor and rotation) from the
    /// alignment point. The database gives the style of a text without one.
    virtual Acad::ErrorStatus adjustAlignment(const AcDbDatabase* database = nullptr);
    int correctSpelling() { return 0; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

    /// The style record's fonts with the text's own size, width, slant and mirroring.
    AcGiTextStyle giTextStyle(const AcDbDatabase* database = nullptr) const;
    host::TextBox textBox() const;
    /// Corners of the ink in world coordinates: lower left, lower right, upper right, upper left as read.
    void getCorners(AcGePoint3d (&corners)[4]) const;
    const host::TextData& data() const { return m; }

protected:
    enum class Part { text, height, rotation, style, place };
    /// A setter has changed this part of the text. The offset, in world coordinates, is that of the place.
    virtual void subPartChanged(Part, const AcGeVector3d&) {}
    /// What is shown: the text, or a definition's tag.
    virtual const AcString& shownText() const { return m.text; }
    Acad::ErrorStatus copyFromBase(const AcDbObject& source) override;
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    void subBecameResident() override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The position, and the alignment point where it has a meaning.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    /// Groups of the first AcDbText subclass.
    void writeTextGroups(AcDbDxfFiler* filer) const;
    void drawText(AcGiWorldDraw* draw, const AcString& text) const;
    /// Where the base line begins, in object coordinates: the position, or what follows from the alignment
    /// point for a text of these extents. A file's position fits only the fonts of the program that wrote it.
    AcGePoint3d startPoint(const host::TextBox& box) const;
    host::TextData& textData() { return m; }

private:
    /// The text moved or changed: an aligned one finds its position again.
    Acad::ErrorStatus changed();
    Acad::ErrorStatus changed(Part part);
    Acad::ErrorStatus stretchBetweenPoints(AcGiTextStyle style);
    host::TextData m;
};
