#include "host/gi/flattencore.h"

#include "host/gi/flattendraw.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {
constexpr int deepestNesting = 64; // of drawables in drawables; a drawing's blocks are refused long before
}

FlattenCore::FlattenCore(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options)
    : mSource(source), mSink(sink), mOptions(options), mTraits(source.makeTraits()), mTransforms(1) {
    mTraits->setRegenType(options.regenType);
    mWorldDraw = std::make_unique<FlattenWorldDraw>(*this);
    mViewportDraw = std::make_unique<FlattenViewportDraw>(*this);
}

FlattenCore::~FlattenCore() = default;

AcGiWorldDraw& FlattenCore::worldDraw() {
    return *mWorldDraw;
}

void FlattenCore::pushTransform(const AcGeMatrix3d& matrix) {
    const Transform& outer = mTransforms.back();
    Transform inner;
    inner.matrix = outer.isIdentity ? matrix : outer.matrix * matrix;
    inner.isIdentity = inner.matrix.isEqualTo(AcGeMatrix3d::kIdentity);
    inner.scale = inner.isIdentity ? 1 : inner.matrix.scale();
    mTransforms.push_back(inner);
}

bool FlattenCore::popTransform() {
    if (mTransforms.size() < 2)
        return false;
    mTransforms.pop_back();
    return true;
}

const LayerLook& FlattenCore::layerOf(const TraitsState& state) const {
    return state.layer->isZero && mBlock.layer ? *mBlock.layer : *state.layer;
}

AcCmEntityColor FlattenCore::colorOf(const TraitsState& state) const {
    switch (state.color.colorMethod()) {
    case AcCmEntityColor::kByLayer:
        return layerOf(state).color;
    case AcCmEntityColor::kByBlock:
        return mBlock.color;
    case AcCmEntityColor::kByACI:
    case AcCmEntityColor::kByColor:
    case AcCmEntityColor::kNone: // the background's
        return state.color;
    default:
        return LayerLook::colorOf(AcCmEntityColor::kACIforeground);
    }
}

const LinetypeLook& FlattenCore::linetypeOf(const TraitsState& state) const {
    const LinetypeLook* look = state.linetype;
    if (look->kind == LinetypeLook::Kind::byLayer)
        look = layerOf(state).linetype;
    else if (look->kind == LinetypeLook::Kind::byBlock)
        look = mBlock.linetype;
    return look->kind == LinetypeLook::Kind::pattern ? *look : LinetypeLook::continuous();
}

AcDb::LineWeight FlattenCore::lineWeightOf(const TraitsState& state) const {
    switch (state.lineWeight) {
    case AcDb::kLnWtByLayer:
        return layerOf(state).lineWeight;
    case AcDb::kLnWtByBlock:
        return mBlock.lineWeight;
    default:
        return state.lineWeight;
    }
}

FlattenCore::BlockLook FlattenCore::resolved(const TraitsState& state) const {
    return {colorOf(state), &linetypeOf(state), lineWeightOf(state), mBlock.layer};
}

bool FlattenCore::isShown(const LayerLook& layer) const {
    return !layer.isOff && !isFrozen(layer) && (layer.isPlottable || !mOptions.isPlot);
}

bool FlattenCore::prepare() {
    if (mIsAborted)
        return false;
    if (++mPrimitiveCount > mOptions.primitiveLimit) {
        mIsAborted = true;
        return false;
    }
    const TraitsState& state = mTraits->state();
    const LayerLook& layer = layerOf(state);
    if (!isShown(layer))
        return false;
    mPen.color = colorOf(state);
    const AcDb::LineWeight weight = lineWeightOf(state);
    mPen.lineWeight = weight < 0 ? mSource.defaultLineWeight() : weight;
    mPen.isPlottable = layer.isPlottable;
    mPen.layer = &layer;
    mPen.marker = state.marker;
    mLinetype = &linetypeOf(state);
    mLinetypeScale = mSource.linetypeScale() * state.linetypeScale * mViewLinetypeScale;
    return true;
}

// A drawable starts with its parent's layer, else with the defaults, and leaves its parent's traits
// untouched.
void FlattenCore::drawChild(AcGiDrawable& drawable) {
    if (mDepth == 0 && mOptions.isAborted && mOptions.isAborted())
        mIsAborted = true;
    if (mIsAborted || mDepth >= deepestNesting)
        return;
    const TraitsState outerState = mTraits->state();
    const BlockLook outerBlock = mBlock;
    const std::size_t outerTransforms = mTransforms.size();
    TraitsState start;
    start.layer = outerState.layer;
    mTraits->state() = start;

    const Adesk::UInt32 flags = drawable.setAttributes(mTraits.get());
    if ((flags & AcGiDrawable::kDrawableIsInvisible) == 0) {
        if ((flags & AcGiDrawable::kDrawableIsBlockDefinition) != 0) {
            if (mDepth > 0) {
                const LayerLook& referenceLayer = layerOf(outerState);
                mBlock = resolved(outerState);
                mBlock.layer = &referenceLayer;
            }
        } else if ((flags & AcGiDrawable::kDrawableIsCompoundObject) != 0) {
            mBlock = resolved(mTraits->state());
        }
        drawWith(drawable, flags);
    }

    mTransforms.resize(std::max<std::size_t>(outerTransforms, 1)); // a drawable may forget to pop
    mBlock = outerBlock;
    mTraits->state() = outerState;
}

void FlattenCore::drawWith(AcGiDrawable& drawable, Adesk::UInt32 flags) {
    constexpr Adesk::UInt32 nesting = AcGiDrawable::kDrawableUsesNesting |
                                      AcGiDrawable::kDrawableIsCompoundObject |
                                      AcGiDrawable::kDrawableIsBlockDefinition;
    const LayerLook& layer = layerOf(mTraits->state());
    const bool isWindow = (flags & AcGiDrawable::kDrawableIsWindow) != 0;
    if (!isWindow && (isFrozen(layer) || ((flags & nesting) == 0 && !isShown(layer))))
        return;
    if (mDepth == 0)
        mSink.beginDrawable(drawable);
    ++mDepth;
    if (!drawable.worldDraw(mWorldDraw.get()))
        drawable.viewportDraw(mViewportDraw.get());
    --mDepth;
    if (mDepth == 0)
        mSink.endDrawable();
}

void FlattenCore::pushClip(const AcGiClipBoundary& boundary) {
    std::vector<AcGePoint3d> corners;
    const AcGeMatrix3d toModel = boundary.m_xToClipSpace.inverse();
    const auto add = [&](double x, double y) {
        corners.push_back(transform() * (toModel * AcGePoint3d{x, y, 0}));
    };
    const AcGePoint2dArray& given = boundary.m_aptPoints;
    if (given.length() == 2) {
        const AcGePoint2d &a = given[0], &b = given[1];
        add(a.x, a.y);
        add(b.x, a.y);
        add(b.x, b.y);
        add(a.x, b.y);
    } else {
        for (const AcGePoint2d& point : given)
            add(point.x, point.y);
    }
    mSink.pushClip(corners);
}

void FlattenCore::popClip() {
    mSink.popClip();
}

void FlattenCore::beginModelView(const AcGeMatrix3d& modelToPaper, std::span<const AcGePoint3d> outline) {
    std::vector<AcGePoint3d> corners(outline.begin(), outline.end());
    for (AcGePoint3d& corner : corners)
        corner = transform() * corner;
    mSink.pushClip(corners);
    pushTransform(modelToPaper);
    const double scale = modelToPaper.scale();
    mViewLinetypeScale = mSource.scalesLinetypesToPaper() && scale > 0 ? 1 / scale : 1;
}

void FlattenCore::endModelView() {
    mViewLinetypeScale = 1;
    mHiddenLayers.clear();
    popTransform();
    mSink.popClip();
}

} // namespace host
