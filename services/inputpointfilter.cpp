// Whether a snapped point is kept, and the filter's way into the current document.
#include "services/inputpointfilter.h"

#include <cstdarg>

namespace {

/// Null without a document.
AcEdInputPointManager* pointManager() {
    AcApDocument* document = curDoc();
    return document != nullptr ? document->inputPointManager() : nullptr;
}

bool isOrdinaryBlockReference(const CArxEntity& entity) {
    const auto* reference = entity.As<AcDbBlockReference>();
    if (reference == nullptr) {
        return false;
    }
    const CArxObjTemplate<AcDbBlockTableRecord> block(reference->blockTableRecord(), false);
    return block && block->xrefStatus() == AcDb::kXrfNotAnXref;
}

/// Whether the table and the user function of a filter take the snap to the entity back.
bool isSuppressed(const CQDVAcEdInputPointFilter& filter, CArxEntity& entity, AcDb::OsnapMask activeModes) {
    const auto row = filter.GetMapInfo().find(entity->isA());
    if (row == filter.GetMapInfo().end()) {
        return false;
    }
    const int mask = row->second;
    bool handled = false;
    if (filter.GetUserTreatFunc() != nullptr &&
        filter.GetUserTreatFunc()(entity, activeModes, filter.GetUserData(), handled) == 0) {
        return false;
    }
    if (!handled && (mask & activeModes) == 0) {
        return false;
    }
    return (mask & CQDVAcEdInputPointFilter::onlyExternalReferences) == 0 ||
           !isOrdinaryBlockReference(entity);
}

} // namespace

QDVAcEdInputPointFilter::~QDVAcEdInputPointFilter() = default;

Acad::ErrorStatus QDVAcEdInputPointFilter::processInputPoint(const AcEdInputPoint& input,
                                                             AcEdInputPointFilterResult& output) {
    if (!input.pointComputed() || (input.history() & AcEdInputPointManager::eOsnapped) == 0 ||
        input.pickedEntities().isEmpty()) {
        return Acad::eOk;
    }
    CArxEntity entity(input.pickedEntities().first(), false);
    if (entity && isSuppressed(*mOwner, entity, input.osnapMask())) {
        output.setDisplayOsnapGlyph(false);
        output.setNewPoint(input.rawPoint());
    }
    return Acad::eOk;
}

CQDVAcEdInputPointFilter::CQDVAcEdInputPointFilter(const ClassTable& table, bool enable)
    : mClasses(table), mHostFilter(std::make_unique<QDVAcEdInputPointFilter>(*this)) {
    if (enable) {
        Enable();
    }
}

CQDVAcEdInputPointFilter::CQDVAcEdInputPointFilter(AcRxClass* cls, AcDb::OsnapMask mask, bool enable)
    : CQDVAcEdInputPointFilter(ClassTable{{cls, mask}}, enable) {}

CQDVAcEdInputPointFilter::CQDVAcEdInputPointFilter(
    std::initializer_list<std::pair<AcRxClass*, AcDb::OsnapMask>> rows, bool enable)
    : CQDVAcEdInputPointFilter(ClassTable(), false) {
    for (const auto& [cls, mask] : rows) {
        Add(cls, mask);
    }
    if (enable) {
        Enable();
    }
}

CQDVAcEdInputPointFilter::CQDVAcEdInputPointFilter(bool enable, AcRxClass* cls, ...)
    : CQDVAcEdInputPointFilter(ClassTable(), false) {
    va_list arguments;
    va_start(arguments, cls);
    while (cls != nullptr) {
        Add(cls, static_cast<AcDb::OsnapMask>(va_arg(arguments, int)));
        cls = va_arg(arguments, AcRxClass*);
    }
    va_end(arguments);
    if (enable) {
        Enable();
    }
}

CQDVAcEdInputPointFilter::CQDVAcEdInputPointFilter(const CQDVAcEdInputPointFilter& other)
    : CQDVAcEdInputPointFilter(other.mClasses, false) {
    SetUserTreatFunc(other.mUserFunction, other.mUserData);
}

CQDVAcEdInputPointFilter& CQDVAcEdInputPointFilter::operator=(const CQDVAcEdInputPointFilter& other) {
    mClasses = other.mClasses;
    SetUserTreatFunc(other.mUserFunction, other.mUserData);
    return *this;
}

CQDVAcEdInputPointFilter::~CQDVAcEdInputPointFilter() {
    Disable();
}

void CQDVAcEdInputPointFilter::Add(AcRxClass* cls, AcDb::OsnapMask mask) {
    mClasses.insert_or_assign(cls, mask);
}

void CQDVAcEdInputPointFilter::Remove(AcRxClass* cls) {
    mClasses.erase(cls);
}

void CQDVAcEdInputPointFilter::SetUserTreatFunc(UserTreatFunc function, void* userData) {
    mUserFunction = function;
    mUserData = userData;
}

void CQDVAcEdInputPointFilter::Enable() {
    Disable();
    if (AcEdInputPointManager* manager = pointManager()) {
        manager->registerPointFilter(mHostFilter.get());
    }
}

void CQDVAcEdInputPointFilter::Disable() const {
    AcEdInputPointManager* manager = pointManager();
    if (manager != nullptr && manager->currentPointFilter() != nullptr) {
        manager->revokePointFilter();
    }
}

bool CQDVAcEdInputPointFilter::IsEnable() const {
    const AcEdInputPointManager* manager = pointManager();
    return manager != nullptr && manager->currentPointFilter() != nullptr;
}
