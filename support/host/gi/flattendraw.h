// The world draw and the viewport draw that flattening gives to drawables; the view is from above.
#pragma once

#include "host/gi/flattencore.h"
#include "host/gi/modelview.h"

namespace host {

class FlattenContext final : public AcGiContext {
public:
    explicit FlattenContext(FlattenCore& core) : mCore(core) {}
    Adesk::Boolean isPlotGeneration() const override { return mCore.options().isPlot; }
    AcDbDatabase* database() const override { return mCore.source().database(); }

private:
    FlattenCore& mCore;
};

// What both have in common.
template <class Base>
class FlattenCommonDraw : public Base {
public:
    explicit FlattenCommonDraw(FlattenCore& core) : mCore(core), mContext(core) {}

    AcGiRegenType regenType() const override { return mCore.options().regenType; }
    Adesk::Boolean regenAbort() const override { return mCore.isAborted(); }
    AcGiSubEntityTraits& subEntityTraits() const override { return mCore.traits(); }
    Adesk::Boolean isDragging() const override { return false; }
    double deviation(const AcGiDeviationType, const AcGePoint3d&) const override {
        return mCore.options().deviation;
    }
    Adesk::UInt32 numberOfIsolines() const override { return 4; }
    AcGiContext* context() override { return &mContext; }

protected:
    FlattenCore& mCore;

private:
    FlattenContext mContext;
};

class FlattenWorldDraw final : public FlattenCommonDraw<AcGiWorldDraw>, public ModelViewDraw {
public:
    explicit FlattenWorldDraw(FlattenCore& core) : FlattenCommonDraw(core), mGeometry(core) {}
    AcGiWorldGeometry& geometry() const override { return mGeometry; }
    AcGiGeometry* rawGeometry() const override { return &mGeometry; }

    void beginModelView(const AcGeMatrix3d& modelToPaper, std::span<const AcGePoint3d> outline) override {
        mCore.beginModelView(modelToPaper, outline);
    }
    void hideLayer() override { mCore.hideLayer(); }
    void endModelView() override { mCore.endModelView(); }

private:
    mutable WorldGeometryAdapter<FlattenCore> mGeometry;
};

class FlattenViewport final : public AcGiViewport {
public:
    explicit FlattenViewport(FlattenCore& core) : mCore(core) {}
    void getModelToEyeTransform(AcGeMatrix3d& matrix) const override { matrix = mCore.transform(); }
    void getEyeToModelTransform(AcGeMatrix3d& matrix) const override { matrix = mCore.transform().inverse(); }
    void getWorldToEyeTransform(AcGeMatrix3d& matrix) const override { matrix.setToIdentity(); }
    void getEyeToWorldTransform(AcGeMatrix3d& matrix) const override { matrix.setToIdentity(); }
    Adesk::Boolean isPerspective() const override { return false; }
    void getNumPixelsInUnitSquare(const AcGePoint3d&, AcGePoint2d& pixels) const override {
        // A chord's deviation is half a pixel where a screen shows it.
        pixels.x = pixels.y = 0.5 / mCore.options().deviation;
    }
    AcGeVector3d viewDir() const override { return AcGeVector3d::kZAxis; }
    void getCameraUpVector(AcGeVector3d& up) const override { up = AcGeVector3d::kYAxis; }
    void getViewportDcCorners(AcGePoint2d& lowerLeft, AcGePoint2d& upperRight) const override {
        const auto view = mCore.options().view.value_or(FlattenOptions::Box());
        lowerLeft.set(view.min.x, view.min.y);
        upperRight.set(view.max.x, view.max.y);
    }

private:
    FlattenCore& mCore;
};

class FlattenViewportDraw final : public FlattenCommonDraw<AcGiViewportDraw> {
public:
    explicit FlattenViewportDraw(FlattenCore& core)
        : FlattenCommonDraw(core), mViewport(core), mGeometry(core) {}
    AcGiViewport& viewport() const override { return mViewport; }
    AcGiViewportGeometry& geometry() const override { return mGeometry; }
    AcGiGeometry* rawGeometry() const override { return &mGeometry; }
    Adesk::UInt32 sequenceNumber() const override { return 1; }
    Adesk::Boolean isValidId(const Adesk::ULongPtr viewportId) const override { return viewportId == 1; }

private:
    mutable FlattenViewport mViewport;
    mutable ViewportGeometryAdapter<FlattenCore> mGeometry;
};

} // namespace host
