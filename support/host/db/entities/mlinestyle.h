// AcDbMlineStyle: the lines that a multiline consists of, its caps and its filling. Styles live in the
// dictionary ACAD_MLINESTYLE.
#pragma once

#include "host/db/dbgroupedobject.h"
#include "host/db/entities/hatchboundary.h"

namespace host {

/// One line of a multiline: its distance to the left of the axis at scale 1.
struct MlineElement {
    double offset = 0.0;
    AcCmEntityColor color;
    AcDbObjectId linetype;
};

struct MlineStyleData {
    enum Flag : Adesk::Int16 {
        filled = 1,
        joints = 2, ///< drawn
        startLine = 16,
        startInnerArcs = 32,
        startRound = 64,
        endLine = 256,
        endInnerArcs = 512,
        endRound = 1024
    };
    AcString name = L"Standard";
    AcString description;
    Adesk::Int16 flags = 0;
    AcCmEntityColor fillColor;
    double startAngle = halfPi; ///< of the cap to the line, radians
    double endAngle = halfPi;
    std::vector<MlineElement> elements; ///< in falling order of offsets

    bool has(Flag flag) const { return (flags & flag) != 0; }
    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk);
};

} // namespace host

class AcDbMlineStyle : public host::GroupedObject {
    ACRX_DECLARE_MEMBERS(AcDbMlineStyle);

public:
    const AcString& name() const { return m.name; }
    /// eInvalidInput for an empty name. The dictionary's entry is not changed.
    Acad::ErrorStatus setName(const ACHAR* name);
    const AcString& description() const { return m.description; }
    Acad::ErrorStatus setDescription(const ACHAR* description);
    bool showMiters() const { return m.has(host::MlineStyleData::joints); }
    void setShowMiters(bool show) { setFlag(host::MlineStyleData::joints, show); }
    bool startSquareCap() const { return m.has(host::MlineStyleData::startLine); }
    void setStartSquareCap(bool cap) { setFlag(host::MlineStyleData::startLine, cap); }
    bool startRoundCap() const { return m.has(host::MlineStyleData::startRound); }
    void setStartRoundCap(bool cap) { setFlag(host::MlineStyleData::startRound, cap); }
    bool startInnerArcs() const { return m.has(host::MlineStyleData::startInnerArcs); }
    void setStartInnerArcs(bool arcs) { setFlag(host::MlineStyleData::startInnerArcs, arcs); }
    bool endSquareCap() const { return m.has(host::MlineStyleData::endLine); }
    void setEndSquareCap(bool cap) { setFlag(host::MlineStyleData::endLine, cap); }
    bool endRoundCap() const { return m.has(host::MlineStyleData::endRound); }
    void setEndRoundCap(bool cap) { setFlag(host::MlineStyleData::endRound, cap); }
    bool endInnerArcs() const { return m.has(host::MlineStyleData::endInnerArcs); }
    void setEndInnerArcs(bool arcs) { setFlag(host::MlineStyleData::endInnerArcs, arcs); }
    double startAngle() const { return m.startAngle; }
    /// eInvalidInput unless between 10 and 170 degrees.
    Acad::ErrorStatus setStartAngle(double angle);
    double endAngle() const { return m.endAngle; }
    Acad::ErrorStatus setEndAngle(double angle);
    bool filled() const { return m.has(host::MlineStyleData::filled); }
    void setFilled(bool filled) { setFlag(host::MlineStyleData::filled, filled); }
    AcCmColor fillColor() const { return AcCmColor(m.fillColor); }
    Acad::ErrorStatus setFillColor(const AcCmColor& color);

    int numElements() const { return static_cast<int>(m.elements.size()); }
    /// Elements are kept by offset, the largest first; `index` tells where the new one came. At most 16.
    Acad::ErrorStatus addElement(int& index, double offset, const AcCmColor& color, AcDbObjectId linetype);
    Acad::ErrorStatus removeElementAt(int index);
    Acad::ErrorStatus getElementAt(int index, double& offset, AcCmColor& color, AcDbObjectId& linetype) const;
    Acad::ErrorStatus setElement(int index, const AcCmColor& color, AcDbObjectId linetype);
    const host::MlineStyleData& data() const { return m; }
    /// The style every drawing has: two lines a unit apart.
    void setStandard(AcDbObjectId linetype);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    void setFlag(host::MlineStyleData::Flag flag, bool on);
    host::MlineStyleData m;
};
