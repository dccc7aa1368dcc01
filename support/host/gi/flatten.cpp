#include "host/gi/flatten.h"

#include "host/gi/flattencore.h"
#include "host/gi/flattendraw.h"

namespace host {

Flattener::Flattener(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options)
    : mCore(std::make_unique<FlattenCore>(source, sink, options)) {}
Flattener::~Flattener() = default;

void Flattener::draw(AcGiDrawable& drawable) {
    mCore->drawChild(drawable);
}

void Flattener::setTransform(const AcGeMatrix3d& transform) {
    while (mCore->popTransform()) {
    }
    mCore->pushTransform(transform);
}

AcGiWorldDraw& Flattener::worldDraw() {
    return mCore->worldDraw();
}
DrawTraits& Flattener::traits() {
    return mCore->traits();
}
bool Flattener::isAborted() const {
    return mCore->isAborted();
}

} // namespace host
