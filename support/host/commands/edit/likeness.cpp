#include "host/commands/edit/likeness.h"

#include "host/db/dbents.h"

#include <set>
#include <string>
#include <tuple>

namespace host {
namespace {

using Traits = std::tuple<const AcRxClass*, std::string, Adesk::UInt32, AcDbStub*, AcDbStub*, double, int,
                          AcDbStub*, AcDbStub*>;

AcDbObjectId styleOf(const AcDbEntity& entity) {
    if (const auto* text = AcDbText::cast(&entity)) {
        return text->textStyle();
    }
    if (const auto* text = AcDbMText::cast(&entity)) {
        return text->textStyle();
    }
    if (const auto* dimension = AcDbDimension::cast(&entity)) {
        return dimension->dimensionStyle();
    }
    const auto* mline = AcDbMline::cast(&entity);
    return mline != nullptr ? mline->style() : AcDbObjectId();
}

Traits traitsOf(const AcDbEntity& entity, int bits) {
    const ReadAccess access(entity);
    const auto counts = [&](Likeness::Bit bit) { return (bits & bit) != 0; };
    const auto* reference = AcDbBlockReference::cast(&entity);
    return {entity.isA(),
            entity.dxfRecordName(),
            counts(Likeness::color) ? entity.entityColor().color() : 0,
            counts(Likeness::layer) ? entity.layerId().stub() : nullptr,
            counts(Likeness::linetype) ? entity.linetypeId().stub() : nullptr,
            counts(Likeness::linetypeScale) ? entity.linetypeScale() : 0.0,
            counts(Likeness::lineWeight) ? static_cast<int>(entity.lineWeight()) : 0,
            counts(Likeness::style) ? styleOf(entity).stub() : nullptr,
            counts(Likeness::name) && reference != nullptr ? reference->blockTableRecord().stub() : nullptr};
}

} // namespace

std::vector<AcDbObjectId> entitiesLike(const AcDbObjectIdArray& samples, AcDbObjectId block, int bits) {
    std::set<Traits> wanted;
    for (const AcDbObjectId id : samples) {
        if (const auto* entity = peek<AcDbEntity>(id)) {
            wanted.insert(traitsOf(*entity, bits));
        }
    }
    std::vector<AcDbObjectId> found;
    for (AcDbStub* stub : peek<AcDbBlockTableRecord>(block)->entities()) {
        const auto* entity = peek<AcDbEntity>(stub);
        if (entity != nullptr && wanted.contains(traitsOf(*entity, bits))) {
            found.emplace_back(stub);
        }
    }
    return found;
}

} // namespace host
