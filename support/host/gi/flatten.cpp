#include "host/gi/flatten.h"

#include "host/gi/flattencore.h"
#include "host/gi/flattendraw.h"

namespace host {

Flattener::Flattener(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options)
    : m_core(std::make_unique<FlattenCore>(source, sink, options)) {}
Flattener::~Flattener() = default;

void Flattener::draw(AcGiDrawable& drawable) {
    m_core->drawChild(drawable);
}

void Flattener::setTransform(const AcGeMatrix3d& transform) {
    while (m_core->popTransform()) {
    }
    m_core->pushTransform(transform);
}

AcGiWorldDraw& Flattener::worldDraw() {
    return m_core->worldDraw();
}
DrawTraits& Flattener::traits() {
    return m_core->traits();
}
bool Flattener::isAborted() const {
    return m_core->isAborted();
}

} // namespace host
