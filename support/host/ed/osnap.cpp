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

constexpr int extensionMask = 0x1000; ///< of OSMODE; there is no name for it in the interface
constexpr int parallelMask = 0x2000;
constexpr int switchedOff = 0x4000; ///< OSMODE: all modes are suspended

struct SnapMode {
    std::wstring_view word; ///< the whole word; three letters are enough
    std::wstring_view local;
    int mode; ///< AcDb::OsnapMode of the entities' own snap points; 0 for what several make together
    int mask;
};

constexpr SnapMode snapModes[] = {
    {L"ENDPOINT", L"端点", AcDb::kOsModeEnd, AcDb::kOsMaskEnd},
    {L"MIDPOINT", L"中点", AcDb::kOsModeMid, AcDb::kOsMaskMid},
    {L"CENTER", L"圆心", AcDb::kOsModeCen, AcDb::kOsMaskCen},
    {L"NODE", L"节点", AcDb::kOsModeNode, AcDb::kOsMaskNode},
    {L"QUADRANT", L"象限点", AcDb::kOsModeQuad, AcDb::kOsMaskQuad},
    {L"INTERSECTION", L"交点", 0, AcDb::kOsMaskInt},
    {L"INSERTION", L"插入点", AcDb::kOsModeIns, AcDb::kOsMaskIns},
    {L"PERPENDICULAR", L"垂足", AcDb::kOsModePerp, AcDb::kOsMaskPerp},
    {L"TANGENT", L"切点", AcDb::kOsModeTan, AcDb::kOsMaskTan},
    {L"NEAREST", L"最近点", AcDb::kOsModeNear, AcDb::kOsMaskNear},
    {L"APPINT", L"外观交点", 0, AcDb::kOsMaskApint},
    {L"APPARENT", L"外观交点", 0, AcDb::kOsMaskApint},
    {L"QUICK", L"快速", 0, AcDb::kOsMaskQuick},
    {L"EXTENSION", L"延长线", 0, extensionMask},
    {L"PARALLEL", L"平行", 0, parallelMask},
    {L"NONE", L"无", 0, AcDb::kOsMaskNoneOverride},
};

bool isWord(std::wstring_view typed, std::wstring_view whole, std::size_t least) {
    return typed.size() >= least && startsWithNoCase(whole, typed);
}

std::wstring_view withoutUnderscore(std::wstring_view word) {
    if (!word.empty() && word.front() == L'_') {
        word.remove_prefix(1);
    }
    return word;
}

std::optional<int> maskOf(std::wstring_view word) {
    word = withoutUnderscore(word);
    constexpr std::size_t least = 3;
    for (const SnapMode& mode : snapModes) {
        if (isWord(word, mode.word, least) || word == mode.local) {
            return mode.mask;
        }
    }
    return std::nullopt;
}

/// Snap points found so far, and the best of them.
class SnapSearch {
public:
    SnapSearch(const AcGePoint3d& pick, const AcGePoint3d& last, int modes, double aperture)
        : mPick(pick), mLast(last), mModes(modes), mAperture(aperture) {}

    void add(const AcDbEntity& entity) {
        const ReadAccess access(entity);
        for (const SnapMode& mode : snapModes) {
            if ((mModes & mode.mask) == 0 || mode.mode == 0) {
                continue;
            }
            AcGePoint3dArray points;
            AcDbIntArray ids;
            if (entity.getOsnapPoints(static_cast<AcDb::OsnapMode>(mode.mode), 0, mPick, mLast,
                                      AcGeMatrix3d(), points, ids) == Acad::eOk) {
                addPoints(points, entity.objectId(), mode.mask);
            }
        }
    }

    void addIntersections(const AcDbEntity& a, const AcDbEntity& b) {
        const ReadAccess accessA(a);
        const ReadAccess accessB(b);
        AcGePoint3dArray points;
        if ((mModes & AcDb::kOsMaskInt) != 0 &&
            a.intersectWith(&b, AcDb::kOnBothOperands, points) == Acad::eOk) {
            addPoints(points, a.objectId(), AcDb::kOsMaskInt);
        }
        points.setLogicalLength(0);
        const AcGePlane view(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis);
        if ((mModes & AcDb::kOsMaskApint) != 0 &&
            a.intersectWith(&b, AcDb::kOnBothOperands, view, points) == Acad::eOk) {
            addPoints(points, a.objectId(), AcDb::kOsMaskApint);
        }
    }

    /// A point that is merely nearest counts only when none of another kind is within the aperture.
    std::optional<Snapped> best() const {
        const Candidate& special = mBest[0];
        const Candidate& nearest = mBest[1];
        if (special.distance <= mAperture || nearest.distance == HUGE_VAL) {
            return special.distance == HUGE_VAL ? std::nullopt : std::optional(special.snapped);
        }
        return nearest.snapped;
    }

private:
    struct Candidate {
        Snapped snapped;
        double distance = HUGE_VAL;
    };

    void addPoints(const AcGePoint3dArray& points, AcDbObjectId entity, int kind) {
        Candidate& best = mBest[kind == AcDb::kOsMaskNear ? 1 : 0];
        for (const AcGePoint3d& point : points) {
            const double distance = std::hypot(point.x - mPick.x, point.y - mPick.y);
            if (distance < best.distance) {
                best = {{point, entity, mModes, kind}, distance};
            }
        }
    }

    AcGePoint3d mPick;
    AcGePoint3d mLast;
    int mModes;
    double mAperture;
    Candidate mBest[2];
};

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

std::optional<PointWord> parsePointWord(std::wstring_view text) {
    const std::wstring_view word = withoutUnderscore(text);
    if (word.size() > 1 && word.front() == L'.') {
        std::string axes;
        for (const wchar_t c : word.substr(1)) {
            const wchar_t axis = toLower(c);
            if (axis < L'x' || axis > L'z' || axes.find(static_cast<char>(axis)) != std::string::npos) {
                return std::nullopt;
            }
            axes.push_back(static_cast<char>(axis));
        }
        return axes.size() < 3 ? std::optional(PointWord{PointWord::Kind::filter, 0, axes}) : std::nullopt;
    }
    if (equalNoCase(word, L"M2P") || equalNoCase(word, L"MTP") || word == L"两点之间的中点") {
        return PointWord{PointWord::Kind::midBetween, 0, {}};
    }
    if (isWord(word, L"FROM", 3) || word == L"自") {
        return PointWord{PointWord::Kind::from, 0, {}};
    }
    const std::optional<int> modes = parseSnapModes(text);
    return modes ? std::optional(PointWord{PointWord::Kind::snap, *modes, {}}) : std::nullopt;
}

std::optional<Snapped> snapPoint(const AcGePoint3d& place, int modes, const AcGePoint3d& last) {
    const double aperture = pickAperture() * std::max(systemVariableInteger(L"APERTURE"), 1) /
                            std::max(systemVariableInteger(L"PICKBOX"), 1);
    const std::vector<AcDbObjectId> near = entitiesAt(place, aperture);
    SnapSearch search(place, last, modes, aperture);
    // Every pair is intersected: in a thicket the nearest of them must do.
    constexpr std::size_t mostForIntersections = 50;
    const bool intersects = (modes & (AcDb::kOsMaskInt | AcDb::kOsMaskApint)) != 0;
    for (std::size_t i = 0; i < near.size(); ++i) {
        const auto* entity = peek<AcDbEntity>(near[i]);
        search.add(*entity);
        for (std::size_t j = 0; intersects && i < mostForIntersections && j < i; ++j) {
            search.addIntersections(*peek<AcDbEntity>(near[j]), *entity);
        }
    }
    return search.best();
}

std::wstring snapModesText(int modes) {
    std::wstring text;
    for (const SnapMode& mode : snapModes) {
        if ((modes & mode.mask) != 0 && text.find(mode.local) == std::wstring::npos) {
            text.append(text.empty() ? L"" : L",").append(mode.local);
        }
    }
    return text.empty() ? L"无" : text;
}

int runningSnapModes() {
    const int modes = systemVariableInteger(L"OSMODE");
    return (modes & switchedOff) != 0 ? 0 : modes & (switchedOff - 1);
}

AcGePoint3d throughPointFilters(const AcGePoint3d& raw, const std::optional<Snapped>& snapped,
                                const AcGePoint3d& last, bool fromCursor) {
    const AcGePoint3d computed = snapped ? snapped->point : raw;
    AcApDocument* document = curDoc();
    if (document == nullptr || !document->inputPointManager()->isWatched()) {
        return computed;
    }
    AcEdInputPoint::Values values;
    values.document = document;
    values.pointComputed = snapped.has_value() || !fromCursor;
    values.history = fromCursor || snapped ? AcEdInputPointManager::eMousePoint : 0;
    values.rawPoint = raw;
    values.lastPoint = last;
    values.computedPoint = computed;
    if (snapped) {
        values.history |= AcEdInputPointManager::eOsnapped;
        values.osnappedPoint = snapped->point;
        values.osnapMask = static_cast<AcDb::OsnapMask>(snapped->modes);
        values.pickedEntities.append(snapped->entity);
    }
    return document->inputPointManager()->process(std::move(values));
}

} // namespace host
