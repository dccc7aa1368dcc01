// Snap modes and snap points.
#include "host/ed/osnap.h"

#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/acedinpt.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

struct SnapMode {
    std::wstring_view word; ///< the whole word; three letters are enough
    AcDb::OsnapMode mode;
    int mask;
};

constexpr SnapMode snapModes[] = {
    {L"ENDPOINT", AcDb::kOsModeEnd, AcDb::kOsMaskEnd},
    {L"MIDPOINT", AcDb::kOsModeMid, AcDb::kOsMaskMid},
    {L"CENTER", AcDb::kOsModeCen, AcDb::kOsMaskCen},
    {L"NODE", AcDb::kOsModeNode, AcDb::kOsMaskNode},
    {L"QUADRANT", AcDb::kOsModeQuad, AcDb::kOsMaskQuad},
    {L"INTERSECTION", AcDb::kOsModeIntersec, AcDb::kOsMaskInt},
    {L"INSERTION", AcDb::kOsModeIns, AcDb::kOsMaskIns},
    {L"PERPENDICULAR", AcDb::kOsModePerp, AcDb::kOsMaskPerp},
    {L"TANGENT", AcDb::kOsModeTan, AcDb::kOsMaskTan},
    {L"NEAREST", AcDb::kOsModeNear, AcDb::kOsMaskNear},
};

std::optional<int> maskOf(std::wstring_view word) {
    if (!word.empty() && word.front() == L'_') {
        word.remove_prefix(1);
    }
    constexpr std::size_t least = 3;
    if (word.size() < least) {
        return std::nullopt;
    }
    if (startsWithNoCase(L"NONE", word)) {
        return AcDb::kOsMaskNoneOverride;
    }
    for (const SnapMode& mode : snapModes) {
        if (startsWithNoCase(mode.word, word)) {
            return mode.mask;
        }
    }
    return std::nullopt;
}

struct Candidate {
    AcGePoint3d point;
    AcDbObjectId entity;
};

/// Collects the snap points of entities.
class SnapSearch {
public:
    SnapSearch(const AcGePoint3d& pick, const AcGePoint3d& last, int modes)
        : mPick(pick), mLast(last), mModes(modes) {}

    void add(const AcDbEntity& entity) {
        const ReadAccess access(entity);
        for (const SnapMode& mode : snapModes) {
            if ((mModes & mode.mask) == 0 || mode.mode == AcDb::kOsModeIntersec) {
                continue;
            }
            AcGePoint3dArray points;
            AcDbIntArray ids;
            if (entity.getOsnapPoints(mode.mode, 0, mPick, mLast, AcGeMatrix3d(), points, ids) == Acad::eOk) {
                addPoints(points, entity.objectId());
            }
        }
    }

    void addIntersections(const AcDbEntity& a, const AcDbEntity& b) {
        const ReadAccess accessA(a);
        const ReadAccess accessB(b);
        AcGePoint3dArray points;
        if (a.intersectWith(&b, AcDb::kOnBothOperands, points) == Acad::eOk) {
            addPoints(points, a.objectId());
        }
    }

    std::optional<Candidate> best() const { return mFound ? std::optional(mBest) : std::nullopt; }

private:
    void addPoints(const AcGePoint3dArray& points, AcDbObjectId entity) {
        for (int i = 0; i < points.length(); ++i) {
            const double distance = std::hypot(points[i].x - mPick.x, points[i].y - mPick.y);
            if (!mFound || distance < mDistance) {
                mFound = true;
                mDistance = distance;
                mBest = {points[i], entity};
            }
        }
    }

    AcGePoint3d mPick;
    AcGePoint3d mLast;
    int mModes;
    Candidate mBest;
    double mDistance = 0.0;
    bool mFound = false;
};

/// Lets the document's point filter change what was snapped.
AcGePoint3d afterFilter(const Candidate& snapped, const AcGePoint3d& raw, const AcGePoint3d& last,
                        int modes) {
    AcApDocument* document = curDoc();
    if (document == nullptr) {
        return snapped.point;
    }
    AcEdInputPoint::Values values;
    values.document = document;
    values.pointComputed = true;
    values.history = AcEdInputPointManager::eMousePoint | AcEdInputPointManager::eOsnapped;
    values.rawPoint = raw;
    values.lastPoint = last;
    values.osnappedPoint = snapped.point;
    values.computedPoint = snapped.point;
    values.osnapMask = static_cast<AcDb::OsnapMask>(modes);
    values.pickedEntities.append(snapped.entity);
    return document->inputPointManager()->process(std::move(values));
}

} // namespace

std::optional<int> parseSnapModes(std::wstring_view text) {
    int modes = 0;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(L',', at), text.size());
        const std::optional<int> mask = maskOf(trim(text.substr(at, comma - at)));
        if (!mask) {
            return std::nullopt;
        }
        modes |= *mask;
        at = comma + 1;
    }
    return modes;
}

std::optional<AcGePoint3d> snapPoint(const AcGePoint3d& point, int modes, const AcGePoint3d& lastPoint) {
    const double aperture = pickAperture() * std::max(systemVariableInteger(L"APERTURE"), 1) /
                            std::max(systemVariableInteger(L"PICKBOX"), 1);
    const std::vector<AcDbObjectId> near = entitiesAt(point, aperture);
    SnapSearch search(point, lastPoint, modes);
    constexpr std::size_t mostForIntersections = 50;
    for (std::size_t i = 0; i < near.size(); ++i) {
        const auto* entity = peek<AcDbEntity>(near[i]);
        search.add(*entity);
        if ((modes & AcDb::kOsMaskInt) == 0 || i >= mostForIntersections) {
            continue;
        }
        for (std::size_t j = 0; j < i; ++j) {
            search.addIntersections(*entity, *peek<AcDbEntity>(near[j]));
        }
    }
    const std::optional<Candidate> best = search.best();
    return best ? std::optional(afterFilter(*best, point, lastPoint, modes)) : std::nullopt;
}

} // namespace host
