// Changing the current coordinate system.
#include "host/ed/ucs.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/question.h"
#include "host/rx/text.h"

namespace host {
namespace {

constexpr std::size_t mostKept = 10;

void put(AcDbDatabase& database, const UcsFrame& ucs) {
    const AcGePoint3d last = ucsToWorld(lastPoint());
    database.setUcs(ucs.origin, ucs.x, ucs.y);
    database.setVariable(*findHeaderVariable("UCSNAME"), AcString(ucs.name.c_str()));
    setLastPoint(worldToUcs(last));
}

} // namespace

AcGeMatrix3d UcsFrame::toWorld() const {
    AcGeMatrix3d matrix;
    matrix.setCoordSystem(origin, x, y, z());
    return matrix;
}

bool UcsFrame::isWorld() const {
    return origin == AcGePoint3d::kOrigin && x == AcGeVector3d::kXAxis && y == AcGeVector3d::kYAxis;
}

UcsFrame currentUcs() {
    UcsFrame ucs;
    if (const AcDbDatabase* database = acdbCurDwg()) {
        ucs = {database->ucsorg(), database->ucsxdir(), database->ucsydir(), {}};
        const HeaderValue name = database->variable(*findHeaderVariable("UCSNAME"));
        ucs.name = std::get<AcString>(name).kwszPtr();
    }
    return ucs;
}

bool setCurrentUcs(const UcsFrame& ucs) {
    AcApDocument* document = curDoc();
    if (document == nullptr || ucs.x.isZeroLength() || ucs.y.isZeroLength() ||
        !ucs.x.isPerpendicularTo(ucs.y)) {
        return false;
    }
    std::vector<UcsFrame>& before = document->state().earlierUcs;
    before.push_back(currentUcs());
    if (before.size() > mostKept) {
        before.erase(before.begin());
    }
    put(*document->database(), {ucs.origin, ucs.x.normal(), ucs.y.normal(), ucs.name});
    return true;
}

bool restorePreviousUcs() {
    AcApDocument* document = curDoc();
    if (document == nullptr || document->state().earlierUcs.empty()) {
        return false;
    }
    put(*document->database(), document->state().earlierUcs.back());
    document->state().earlierUcs.pop_back();
    return true;
}

} // namespace host
