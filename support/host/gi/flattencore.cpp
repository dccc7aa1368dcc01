#include "host/gi/flattencore.h"

#include "host/gi/flattendraw.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {
constexpr int deepestNesting = 64; // of drawables in drawables; a drawing's blocks are refused long before
}

FlattenCore::FlattenCore(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options)
    : m_source(source), m_sink(sink), m_options(options), m_traits(source.makeTraits()), m_transforms(1) {
    m_traits->setRegenType(options.regenType);
    m_worldDraw = std::make_unique<FlattenWorldDraw>(*this);
    m_viewportDraw = std::make_unique<FlattenViewportDraw>(*this);
}

FlattenCore::~FlattenCore() = default;

AcGiWorldDraw& FlattenCore::worldDraw() {
    return *m_worldDraw;
}

void FlattenCore::pushTransform(const AcGeMatrix3d& matrix) {
    const Transform& outer = m_transforms.back();
    Transform inner;
    inner.matrix = outer.isIdentity ? matrix : outer.matrix * matrix;
    inner.isIdentity = inner.matrix.isEqualTo(AcGeMatrix3d::kIdentity);
    inner.scale = inner.isIdentity ? 1 : inner.matrix.scale();
    m_transforms.push_back(inner);
}

bool FlattenCore::popTransform() {
    if (m_transforms.size() < 2)
        return false;
    m_transforms.pop_back();
    return true;
}

const LayerLook& FlattenCore::layerOf(const TraitsState& state) const {
    return state.layer->isZero && m_block.layer ? *m_block.layer : *state.layer;
}

AcCmEntityColor FlattenCore::colorOf(const TraitsState& state) const {
    switch (state.color.colorMethod()) {
    case AcCmEntityColor::kByLayer:
        return layerOf(state).color;
    case AcCmEntityColor::kByBlock:
        return m_block.color;
    case AcCmEntityColor::kByACI:
    case AcCmEntityColor::kByColor:
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
        look = m_block.linetype;
    return look->kind == LinetypeLook::Kind::pattern ? *look : LinetypeLook::continuous();
}

AcDb::LineWeight FlattenCore::lineWeightOf(const TraitsState& state) const {
    switch (state.lineWeight) {
    case AcDb::kLnWtByLayer:
        return layerOf(state).lineWeight;
    case AcDb::kLnWtByBlock:
        return m_block.lineWeight;
    default:
        return state.lineWeight;
    }
}

FlattenCore::BlockLook FlattenCore::resolved(const TraitsState& state) const {
    return {colorOf(state), &linetypeOf(state), lineWeightOf(state), m_block.layer};
}

bool FlattenCore::isShown(const LayerLook& layer) const {
    return !layer.isOff && !layer.isFrozen && (layer.isPlottable || !m_options.isPlot);
}

bool FlattenCore::prepare() {
    if (m_isAborted)
        return false;
    if (++m_primitiveCount > m_options.primitiveLimit) {
        m_isAborted = true;
        return false;
    }
    const TraitsState& state = m_traits->state();
    const LayerLook& layer = layerOf(state);
    if (!isShown(layer))
        return false;
    m_pen.color = colorOf(state);
    const AcDb::LineWeight weight = lineWeightOf(state);
    m_pen.lineWeight = weight < 0 ? m_source.defaultLineWeight() : weight;
    m_pen.isPlottable = layer.isPlottable;
    m_pen.marker = state.marker;
    m_linetype = &linetypeOf(state);
    m_linetypeScale = m_source.linetypeScale() * state.linetypeScale;
    return true;
}

// A drawable starts with its parent's layer, else with the defaults, and leaves its parent's traits
// untouched.
void FlattenCore::drawChild(AcGiDrawable& drawable) {
    if (m_depth == 0 && m_options.isAborted && m_options.isAborted())
        m_isAborted = true;
    if (m_isAborted || m_depth >= deepestNesting)
        return;
    const TraitsState outerState = m_traits->state();
    const BlockLook outerBlock = m_block;
    const std::size_t outerTransforms = m_transforms.size();
    TraitsState start;
    start.layer = outerState.layer;
    m_traits->state() = start;

    const Adesk::UInt32 flags = drawable.setAttributes(m_traits.get());
    if ((flags & AcGiDrawable::kDrawableIsInvisible) == 0) {
        if ((flags & AcGiDrawable::kDrawableIsBlockDefinition) != 0) {
            if (m_depth > 0) {
                const LayerLook& referenceLayer = layerOf(outerState);
                m_block = resolved(outerState);
                m_block.layer = &referenceLayer;
            }
        } else if ((flags & AcGiDrawable::kDrawableIsCompoundObject) != 0) {
            m_block = resolved(m_traits->state());
        }
        drawWith(drawable, flags);
    }

    m_transforms.resize(std::max<std::size_t>(outerTransforms, 1)); // a drawable may forget to pop
    m_block = outerBlock;
    m_traits->state() = outerState;
}

void FlattenCore::drawWith(AcGiDrawable& drawable, Adesk::UInt32 flags) {
    constexpr Adesk::UInt32 nesting = AcGiDrawable::kDrawableUsesNesting |
                                      AcGiDrawable::kDrawableIsCompoundObject |
                                      AcGiDrawable::kDrawableIsBlockDefinition;
    const LayerLook& layer = layerOf(m_traits->state());
    if (layer.isFrozen || ((flags & nesting) == 0 && !isShown(layer)))
        return;
    if (m_depth == 0)
        m_sink.beginDrawable(drawable);
    ++m_depth;
    if (!drawable.worldDraw(m_worldDraw.get()))
        drawable.viewportDraw(m_viewportDraw.get());
    --m_depth;
    if (m_depth == 0)
        m_sink.endDrawable();
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
    m_sink.pushClip(corners);
}

void FlattenCore::popClip() {
    m_sink.popClip();
}

} // namespace host
