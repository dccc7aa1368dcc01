// How what is drawn looks: colour, layer, linetype, weight. An entity's attributes are the traits at the
// start of its drawing; what it sets while drawing holds until its end.
#pragma once

#include "host/gi/color.h"
#include "host/gi/lineweight.h"
#include "host/gi/types.h"

class AcDbObjectId;

class AcGiSubEntityTraits : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiSubEntityTraits);

    // 0 is by block, 256 by layer.
    virtual void setColor(const Adesk::UInt16 color) = 0;
    virtual void setTrueColor(const AcCmEntityColor& color) = 0;
    virtual void setLayer(const AcDbObjectId layerId) = 0;
    virtual void setLineType(const AcDbObjectId linetypeId) = 0;
    virtual void setSelectionMarker(const Adesk::LongPtr marker) = 0;
    virtual void setFillType(const AcGiFillType type) = 0;
    virtual void setLineWeight(const AcDb::LineWeight weight) = 0;
    // Multiplied by the drawing's own linetype scale; not positive counts as 1.
    virtual void setLineTypeScale(double scale = 1.0) = 0;
    virtual void setThickness(double thickness) = 0;

    virtual Adesk::UInt16 color() const = 0;
    virtual AcCmEntityColor trueColor() const = 0;
    virtual AcDbObjectId layerId() const = 0;
    virtual AcDbObjectId lineTypeId() const = 0;
    virtual AcGiFillType fillType() const = 0;
    virtual AcDb::LineWeight lineWeight() const = 0;
    virtual double lineTypeScale() const = 0;
    virtual double thickness() const = 0;
    virtual Adesk::LongPtr selectionMarker() const = 0;
};

class AcGiDrawableTraits : public AcGiSubEntityTraits {
public:
    ACRX_DECLARE_MEMBERS(AcGiDrawableTraits);

    // The host draws for a screen or a sheet, or lets objects tell their graphics to a file.
    virtual AcGiRegenType regenType() const = 0;
};
