// The world draw and the viewport draw that flattening gives to drawables; the view is from above.
#pragma once

#include "host/gi/flattencore.h"

namespace host {

class FlattenContext final : public AcGiContext {
public:
    explicit FlattenContext(FlattenCore& core) : m_core(core) {}
    Adesk::Boolean isPlotGeneration() const override { return m_core.options().isPlot; }
    AcDbDatabase* database() const override { return m_core.source().database(); }

private:
    FlattenCore& m_core;
};

// What both have in common.
template <class Base>
class FlattenCommonDraw : public Base {
public:
    explicit FlattenCommonDraw(FlattenCore& core) : m_core(core), m_context(core) {}

    AcGiRegenType regenType() const override { return m_core.options().regenType; }
    Adesk::Boolean regenAbort() const override { return m_core.isAborted(); }
    AcGiSubEntityTraits& subEntityTraits() const override { return m_core.traits(); }
    Adesk::Boolean isDragging() const override { return false; }
    double deviation(const AcGiDeviationType, const AcGePoint3d&) const override {
        return m_core.options().deviation;
    }
    Adesk::UInt32 numberOfIsolines() const override { return 4; }
    AcGiContext* context() override { return &m_context; }

protected:
    FlattenCore& m_core;

private:
    FlattenContext m_context;
};

class FlattenWorldDraw final : public FlattenCommonDraw<AcGiWorldDraw> {
public:
    explicit FlattenWorldDraw(FlattenCore& core) : FlattenCommonDraw(core), m_geometry(core) {}
    AcGiWorldGeometry& geometry() const override { return m_geometry; }
    AcGiGeometry* rawGeometry() const override { return &m_geometry; }

private:
    mutable WorldGeometryAdapter<FlattenCore> m_geometry;
};

class FlattenViewport final : public AcGiViewport {
public:
    explicit FlattenViewport(FlattenCore& core) : m_core(core) {}
    void getModelToEyeTransform(AcGeMatrix3d& matrix) const override { matrix = m_core.transform(); }
    void getEyeToModelTransform(AcGeMatrix3d& matrix) const override {
        matrix = m_core.transform().inverse();
    }
    void getWorldToEyeTransform(AcGeMatrix3d& matrix) const override { matrix.setToIdentity(); }
    void getEyeToWorldTransform(AcGeMatrix3d& matrix) const override { matrix.setToIdentity(); }
    Adesk::Boolean isPerspective() const override { return false; }
    void getNumPixelsInUnitSquare(const AcGePoint3d&, AcGePoint2d& pixels) const override {
        // A chord's deviation is half a pixel where a screen shows it.
        pixels.x = pixels.y = 0.5 / m_core.options().deviation;
    }
    AcGeVector3d viewDir() const override { return AcGeVector3d::kZAxis; }
    void getCameraUpVector(AcGeVector3d& up) const override { up = AcGeVector3d::kYAxis; }
    void getViewportDcCorners(AcGePoint2d& lowerLeft, AcGePoint2d& upperRight) const override {
        const auto view = m_core.options().view.value_or(FlattenOptions::Box());
        lowerLeft.set(view.min.x, view.min.y);
        upperRight.set(view.max.x, view.max.y);
    }

private:
    FlattenCore& m_core;
};

class FlattenViewportDraw final : public FlattenCommonDraw<AcGiViewportDraw> {
public:
    explicit FlattenViewportDraw(FlattenCore& core)
        : FlattenCommonDraw(core), m_viewport(core), m_geometry(core) {}
    AcGiViewport& viewport() const override { return m_viewport; }
    AcGiViewportGeometry& geometry() const override { return m_geometry; }
    AcGiGeometry* rawGeometry() const override { return &m_geometry; }
    Adesk::UInt32 sequenceNumber() const override { return 1; }
    Adesk::Boolean isValidId(const Adesk::ULongPtr viewportId) const override { return viewportId == 1; }

private:
    mutable FlattenViewport m_viewport;
    mutable ViewportGeometryAdapter<FlattenCore> m_geometry;
};

} // namespace host
