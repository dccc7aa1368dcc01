// The objects handed to a drawable when it is to draw itself.
#pragma once

#include "host/gi/drawable.h"
#include "host/gi/geometry.h"
#include "host/gi/traits.h"

class AcDbDatabase;

class AcGiContext : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiContext);

    virtual Adesk::Boolean isPsOut() const { return false; }
    virtual Adesk::Boolean isPlotGeneration() const { return false; }
    virtual Adesk::Boolean isBoundaryClipping() const { return false; }
    // The drawing that is drawn; null when there is none.
    virtual AcDbDatabase* database() const = 0;
};

class AcGiCommonDraw : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiCommonDraw);

    virtual AcGiRegenType regenType() const = 0;
    // Long drawings ask now and then and stop drawing when it is true.
    virtual Adesk::Boolean regenAbort() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
    virtual AcGiGeometry* rawGeometry() const = 0;
    virtual Adesk::Boolean isDragging() const = 0;
    // How far, in drawing units, a curve's chords may lie from it around the given point.
    virtual double deviation(const AcGiDeviationType type, const AcGePoint3d& point) const = 0;
    virtual Adesk::UInt32 numberOfIsolines() const = 0;
    virtual AcGiContext* context() = 0;
};

class AcGiWorldDraw : public AcGiCommonDraw {
public:
    ACRX_DECLARE_MEMBERS(AcGiWorldDraw);

    virtual AcGiWorldGeometry& geometry() const = 0;
};

class AcGiViewport : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewport);

    virtual void getModelToEyeTransform(AcGeMatrix3d& matrix) const = 0;
    virtual void getEyeToModelTransform(AcGeMatrix3d& matrix) const = 0;
    virtual void getWorldToEyeTransform(AcGeMatrix3d& matrix) const = 0;
    virtual void getEyeToWorldTransform(AcGeMatrix3d& matrix) const = 0;
    virtual Adesk::Boolean isPerspective() const = 0;
    // Pixels an eye unit at the given point.
    virtual void getNumPixelsInUnitSquare(const AcGePoint3d& point, AcGePoint2d& pixels) const = 0;
    virtual AcGeVector3d viewDir() const = 0;
    virtual void getCameraUpVector(AcGeVector3d& up) const = 0;
    virtual void getViewportDcCorners(AcGePoint2d& lowerLeft, AcGePoint2d& upperRight) const = 0;
};

class AcGiViewportDraw : public AcGiCommonDraw {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewportDraw);

    virtual AcGiViewport& viewport() const = 0;
    virtual AcGiViewportGeometry& geometry() const = 0;
    virtual Adesk::UInt32 sequenceNumber() const = 0;
    virtual Adesk::Boolean isValidId(const Adesk::ULongPtr viewportId) const = 0;
};
