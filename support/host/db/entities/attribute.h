// AcDbAttributeDefinition and AcDbAttribute: texts of blocks that differ from reference to reference. One of
// several lines has a multi-line text embedded, which is what it shows; files have it among the groups that
// follow the attribute's own (marker "Embedded Object"), and there it stays.
#pragma once

#include "host/db/entities/mtext.h"
#include "host/db/entities/text.h"

namespace host {

/// What attributes and their definitions have beyond a text.
struct AttributeData {
    AcString tag;
    AcString prompt;        ///< of a definition
    Adesk::UInt8 flags = 0; ///< group 70: 1 invisible, 2 constant, 4 verified, 8 preset
    Adesk::Int16 fieldLength = 0;
    bool lockPosition = false;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.tag, data.prompt, data.fieldLength, data.flags, data.lockPosition);
    }
    bool has(int flag) const { return (flags & flag) != 0; }
    void set(int flag, bool on) { flags = static_cast<Adesk::UInt8>(on ? flags | flag : flags & ~flag); }

    static constexpr int invisible = 1;
    static constexpr int constant = 2;
    static constexpr int verified = 4;
    static constexpr int preset = 8;
};

/// The part of both classes below that concerns attributes.
class AttributeText : public AcDbText {
public:
    ACHAR* tag() const; ///< a copy; freed with acutDelString
    const ACHAR* tagConst() const;
    /// eInvalidInput for an empty tag or one with blanks.
    Acad::ErrorStatus setTag(const ACHAR* tag);
    bool isInvisible() const;
    Acad::ErrorStatus setInvisible(bool invisible);
    bool isConstant() const;
    bool isVerifiable() const;
    bool isPreset() const;
    Adesk::UInt16 fieldLength() const;
    Acad::ErrorStatus setFieldLength(Adesk::UInt16 length);
    bool lockPositionInBlock() const;
    Acad::ErrorStatus setLockPositionInBlock(bool locked);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    /// A copy of the embedded text of several lines; null when there is none.
    std::unique_ptr<AcDbMText> lines() const;
    /// Embeds a text of several lines. For readers: before release 2018 it stands behind the attribute in
    /// files.
    void embedLines(const AcDbMText& text);

protected:
    bool hasLines() const;
    /// Puts what differs in the changed text, as lines() gave it, into the embedded one.
    void setLines(const AcDbMText& changed);
    /// Takes over the embedded text of a definition, or that there is none.
    void copyLines(const AttributeText& source);
    /// Lines stand for the text wherever the text itself is shown; a definition shows its tag.
    virtual bool showsText() const { return true; }
    void drawShown(AcGiWorldDraw* draw) const;

    void subPartChanged(Part part, const AcGeVector3d& offset) override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    /// Marker of the class's own groups.
    virtual std::string_view ownSubclass() const = 0;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;

    AttributeData a;
};

} // namespace host

/// Stands in a block definition. Shows its tag; a constant one shows its text.
class AcDbAttributeDefinition : public host::AttributeText {
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition);

public:
    AcDbAttributeDefinition() = default;
    AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                            const ACHAR* prompt, AcDbObjectId style = AcDbObjectId::kNull);

    ACHAR* prompt() const;
    const ACHAR* promptConst() const;
    Acad::ErrorStatus setPrompt(const ACHAR* prompt);
    Acad::ErrorStatus setConstant(bool constant);
    Acad::ErrorStatus setVerifiable(bool verified);
    Acad::ErrorStatus setPreset(bool preset);
    /// Shows what a reference of the block shows of a constant definition.
    void drawConstant(AcGiWorldDraw* draw) const;

protected:
    const AcString& shownText() const override { return showsText() ? data().text : a.tag; }
    bool showsText() const override { return a.has(a.constant); }
    std::string_view ownSubclass() const override { return "AcDbAttributeDefinition"; }
};

/// Belongs to a block reference.
class AcDbAttribute : public host::AttributeText {
    ACRX_DECLARE_MEMBERS(AcDbAttribute);

public:
    AcDbAttribute() = default;
    AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                  AcDbObjectId style = AcDbObjectId::kNull);

    /// Takes everything from a definition, moved by the block's transform.
    Acad::ErrorStatus setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                            const AcGeMatrix3d& blockTransform);
    bool isMTextAttribute() const;
    /// A copy of the text of several lines, owned by the caller; null when there is none.
    AcDbMText* getMTextAttribute() const { return lines().release(); }
    /// Takes place and look from the definition of the same tag in the block of its reference; the text
    /// stays.
    Acad::ErrorStatus setAttributeFromBlock(const AcGeMatrix3d& blockTransform);

protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view ownSubclass() const override { return "AcDbAttribute"; }
};
