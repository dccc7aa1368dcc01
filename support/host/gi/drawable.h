// What can be drawn. A drawable first says its attributes, then draws its geometry in model coordinates.
#pragma once

#include "host/ge/ge.h"
#include "host/rx/rx.h"

class AcDbExtents;
class AcDbObjectId;
class AcGiDrawableTraits;
class AcGiViewportDraw;
class AcGiWorldDraw;

class AcGiDrawable : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiDrawable);

    // What setAttributes answers, combined.
    enum SetAttributesFlags {
        kDrawableNone = 0,
        kDrawableIsAnEntity = 1,
        kDrawableUsesNesting = 2,
        kDrawableIsCompoundObject = 4, // by-block attributes of what it draws take this drawable's attributes
        kDrawableViewIndependentViewportDraw = 8,
        kDrawableIsInvisible = 16,
        kDrawableHasAttributes = 32,
        kDrawableRegenTypeDependantGeometry = 64,
        kDrawableIsDimension = 128,
        kDrawableRegenDraw = 256,
        kDrawableStandardDisplaySingleLOD = 512,
        kDrawableShadedDisplaySingleLOD = 1024,
        // The host's own: the drawable is a block definition, so what it draws on layer 0 takes the layer of
        // the reference that draws it.
        kDrawableIsBlockDefinition = 0x100000,
        // The host's own: parts on shown layers are drawn even where the drawable's own layer is frozen.
        kDrawableIsWindow = 0x200000
    };
    enum DrawableType { kGeometry, kDistantLight, kPointLight, kSpotLight, kAmbientLight, kSolidBackground };

    Adesk::UInt32 setAttributes(AcGiDrawableTraits* traits) { return subSetAttributes(traits); }
    // True: drawn whole; false: viewportDraw is to be called as well.
    Adesk::Boolean worldDraw(AcGiWorldDraw* worldDraw) { return subWorldDraw(worldDraw); }
    void viewportDraw(AcGiViewportDraw* viewportDraw) { subViewportDraw(viewportDraw); }

    virtual Adesk::Boolean isPersistent() const = 0;
    virtual AcDbObjectId id() const = 0;
    virtual DrawableType drawableType() const { return kGeometry; }
    virtual bool bounds(AcDbExtents&) const { return false; }

protected:
    virtual Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) = 0;
    virtual Adesk::Boolean subWorldDraw(AcGiWorldDraw* worldDraw) = 0;
    virtual void subViewportDraw(AcGiViewportDraw* viewportDraw) = 0;
};
