// Point filters and monitors.
#include "host/ed/acedinpt.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdInputPointFilter, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdInputPointMonitor, AcRxObject)

Acad::ErrorStatus AcEdInputPointManager::registerPointFilter(AcEdInputPointFilter* filter) {
    if (filter == nullptr) {
        return Acad::eInvalidInput;
    }
    mFilter = filter;
    return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::revokePointFilter() {
    if (mFilter == nullptr) {
        return Acad::eNotApplicable;
    }
    mFilter = nullptr;
    return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::addPointMonitor(AcEdInputPointMonitor* monitor) {
    if (monitor == nullptr) {
        return Acad::eInvalidInput;
    }
    if (std::find(mMonitors.begin(), mMonitors.end(), monitor) != mMonitors.end()) {
        return Acad::eDuplicateKey;
    }
    mMonitors.push_back(monitor);
    return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::removePointMonitor(AcEdInputPointMonitor* monitor) {
    return std::erase(mMonitors, monitor) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

AcGePoint3d AcEdInputPointManager::process(AcEdInputPoint::Values values) const {
    if (mFilter != nullptr) {
        AcEdInputPointFilterResult result;
        const bool done = mFilter->processInputPoint(AcEdInputPoint(values), result) == Acad::eOk;
        if (done && result.isPointChanged()) {
            values.computedPoint = result.newPoint();
        }
    }
    for (AcEdInputPointMonitor* monitor : std::vector(mMonitors)) {
        AcEdInputPointMonitorResult result;
        monitor->monitorInputPoint(AcEdInputPoint(values), result);
    }
    return values.computedPoint;
}
