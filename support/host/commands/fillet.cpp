// FILLET and CHAMFER: corners of lines, arcs and polylines are rounded or cut off.
#include "host/commands/ask.h"
#include "host/commands/edit/corner.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"
#include "host/db/entities/transforms.h"

#include <cmath>

namespace host {
namespace {

/// One of the two objects of a corner.
struct Side {
    AcDbObjectId id;
    CornerSide corner;
    double elevation = 0.0;
    int segment = -1; ///< of a polyline
};

const wchar_t* refuseUnlessCornered(const AcDbEntity& entity) {
    const bool fits = AcDbLine::cast(&entity) != nullptr || AcDbArc::cast(&entity) != nullptr ||
                      AcDbCircle::cast(&entity) != nullptr || flatPathOf(entity).has_value();
    if (!fits) {
        return L"不能对该对象倒角。";
    }
    return lockedRefusal(entity);
}

const wchar_t* refuseUnlessPolyline(const AcDbEntity& entity) {
    return flatPathOf(entity) ? nullptr : L"对象不是二维多段线。";
}

/// The picked line, arc, circle or segment in the plane of the UCS; nothing when it lies in no such plane.
std::optional<Side> sideOf(const EntityAnswer& picked) {
    const auto* entity = peek<AcDbEntity>(picked.id);
    const ReadAccess access(*entity);
    const AcGeVector3d normal = ucsNormal();
    Side side;
    side.id = picked.id;
    const AcGePoint3d pick = toObject(normal, picked.world);
    side.corner.pick = to2d(pick);
    if (const auto* circle = AcDbCircle::cast(entity)) {
        if (!circle->normal().isParallelTo(normal)) {
            return std::nullopt;
        }
        const AcGePoint3d center = toObject(normal, circle->center());
        const AcGeVector2d arm(circle->radius(), 0.0);
        side.corner.segment = PathSegment(to2d(center) + arm, to2d(center) - arm, 1.0);
        side.corner.isCircle = true;
        side.elevation = center.z;
        return side;
    }
    const std::optional<FlatPath> flat = flatPathIn(*entity, normal);
    if (!flat || flat->shape.path.segmentCount() == 0) {
        return std::nullopt;
    }
    const BulgePath& path = flat->shape.path;
    int index = 0;
    if (flatPathOf(*entity)) {
        index = std::clamp(static_cast<int>(closestParameter(path, side.corner.pick)), 0,
                           path.segmentCount() - 1);
        side.segment = index;
    }
    side.corner.segment = path.segment(index);
    side.elevation = flat->elevation;
    return side;
}

class Cornering {
public:
    explicit Cornering(bool rounds) : mRounds(rounds) {}
    void run();

private:
    enum class Next { goOn, finished };
    Next turn();
    Next option(const Answer& answer);
    bool askRadius();
    bool askDistances();
    bool askLengthAndAngle();
    bool askTrimMode();
    bool askMethod();
    bool trims() const { return systemVariableInteger(L"TRIMMODE") != 0; }
    bool byAngle() const { return systemVariableInteger(L"CHAMMODE") != 0; }
    std::optional<Corner> cornerOf(const CornerSide& first, const CornerSide& second) const;
    bool makeCorner(const Side& first, const Side& second);
    bool makeInPolyline(const Side& first, const Side& second);
    bool makeWithPolyline(const Side& first, const Side& second);
    void makeAll();
    void endSide(const Side& side, const PathSegment& segment);
    void addBetween(const PathSegment& segment, const Side& first, const Side& second);
    void tellSettings() const;

    bool mRounds;
    bool mMultiple = false;
};

void Cornering::tellSettings() const {
    const wchar_t* mode = trims() ? L"修剪" : L"不修剪";
    if (mRounds) {
        acutPrintf(L"\n当前设置: 模式 = %s，半径 = %s", mode,
                   shown(systemVariableReal(L"FILLETRAD")).c_str());
    } else if (byAngle()) {
        acutPrintf(L"\n(“%s”模式) 当前倒角长度 = %s，角度 = %s", mode,
                   shown(systemVariableReal(L"CHAMFERC")).c_str(),
                   shownAngle(systemVariableReal(L"CHAMFERD")).c_str());
    } else {
        acutPrintf(L"\n(“%s”模式) 当前倒角距离 1 = %s，距离 2 = %s", mode,
                   shown(systemVariableReal(L"CHAMFERA")).c_str(),
                   shown(systemVariableReal(L"CHAMFERB")).c_str());
    }
}

void Cornering::run() {
    tellSettings();
    while (turn() == Next::goOn) {
    }
}

Cornering::Next Cornering::turn() {
    const EntityAnswer first =
        mRounds ? askEntity(L"\n选择第一个对象或 [多段线(P)/半径(R)/修剪(T)/多个(M)]: ",
                            L"Polyline Radius Trim Multiple", refuseUnlessCornered)
                : askEntity(L"\n选择第一条直线或 [多段线(P)/距离(D)/角度(A)/修剪(T)/方式(E)/多个(M)]: ",
                            L"Polyline Distance Angle Trim mEthod Multiple", refuseUnlessCornered);
    if (first.kind == Answer::Kind::keyword) {
        return option(first);
    }
    if (!first.isValue()) {
        return Next::finished;
    }
    for (;;) {
        const EntityAnswer second =
            mRounds ? askEntity(L"\n选择第二个对象或 [半径(R)]: ", L"Radius", refuseUnlessCornered)
                    : askEntity(L"\n选择第二条直线或 [距离(D)/角度(A)/方法(M)]: ", L"Distance Angle Method",
                                refuseUnlessCornered);
        if (second.kind == Answer::Kind::keyword) {
            if (option(second) == Next::finished) {
                return Next::finished;
            }
            continue;
        }
        if (!second.isValue()) {
            return Next::finished;
        }
        const std::optional<Side> one = sideOf(first);
        const std::optional<Side> other = sideOf(second);
        if (!one || !other ||
            std::fabs(one->elevation - other->elevation) > 1e-8 * (1.0 + std::fabs(one->elevation))) {
            acutPrintf(L"\n对象不在与 UCS 平行的同一平面内。");
        } else if (!makeCorner(*one, *other)) {
            acutPrintf(mRounds ? L"\n半径对这些对象太大，或对象没有圆角。" : L"\n这些对象没有倒角。");
        }
        return mMultiple ? Next::goOn : Next::finished;
    }
}

Cornering::Next Cornering::option(const Answer& answer) {
    bool goesOn = true;
    if (answer.isKeyword(L"Radius")) {
        goesOn = askRadius();
    } else if (answer.isKeyword(L"Distance")) {
        goesOn = askDistances();
    } else if (answer.isKeyword(L"Angle")) {
        goesOn = askLengthAndAngle();
    } else if (answer.isKeyword(L"Trim")) {
        goesOn = askTrimMode();
    } else if (answer.isKeyword(L"mEthod") || answer.isKeyword(L"Method")) {
        goesOn = askMethod();
    } else if (answer.isKeyword(L"Multiple")) {
        mMultiple = true;
    } else if (answer.isKeyword(L"Polyline")) {
        makeAll();
        goesOn = mMultiple;
    }
    return goesOn ? Next::goOn : Next::finished;
}

/// Asks for a length that a variable keeps.
bool askKept(const std::wstring& prompt, const wchar_t* variable) {
    const double now = systemVariableReal(variable);
    const RealAnswer answer = askDistance(prompt + L" <" + shown(now) + L">: ", nullptr, nullptr, RSG_NONEG);
    if (answer.isValue()) {
        setSystemVariable(variable, answer.value);
    }
    return !answer.isCancelled();
}

bool Cornering::askRadius() {
    return askKept(L"\n指定圆角半径", L"FILLETRAD");
}

bool Cornering::askDistances() {
    if (!askKept(L"\n指定第一个倒角距离", L"CHAMFERA")) {
        return false;
    }
    const RealAnswer second =
        askDistance(L"\n指定第二个倒角距离 <" + shown(systemVariableReal(L"CHAMFERA")) + L">: ", nullptr,
                    nullptr, RSG_NONEG);
    if (second.isCancelled()) {
        return false;
    }
    setSystemVariable(L"CHAMFERB", second.isValue() ? second.value : systemVariableReal(L"CHAMFERA"));
    setSystemVariable(L"CHAMMODE", 0);
    return true;
}

bool Cornering::askLengthAndAngle() {
    if (!askKept(L"\n指定第一条直线的倒角长度", L"CHAMFERC")) {
        return false;
    }
    const RealAnswer angle =
        askAngle(L"\n指定第一条直线的倒角角度 <" + shownAngle(systemVariableReal(L"CHAMFERD")) + L">: ");
    if (angle.isValue()) {
        setSystemVariable(L"CHAMFERD", angle.value);
    }
    setSystemVariable(L"CHAMMODE", 1);
    return !angle.isCancelled();
}

bool Cornering::askTrimMode() {
    const Answer answer = askKeyword(std::wstring(L"\n输入修剪模式选项 [修剪(T)/不修剪(N)] <") +
                                         (trims() ? L"修剪>: " : L"不修剪>: "),
                                     L"Trim No");
    if (answer.kind == Answer::Kind::keyword) {
        setSystemVariable(L"TRIMMODE", answer.isKeyword(L"Trim") ? 1 : 0);
    }
    return !answer.isCancelled();
}

bool Cornering::askMethod() {
    const Answer answer = askKeyword(std::wstring(L"\n输入修剪方法 [距离(D)/角度(A)] <") +
                                         (byAngle() ? L"角度>: " : L"距离>: "),
                                     L"Distance Angle");
    if (answer.kind == Answer::Kind::keyword) {
        setSystemVariable(L"CHAMMODE", answer.isKeyword(L"Angle") ? 1 : 0);
    }
    return !answer.isCancelled();
}

std::optional<Corner> Cornering::cornerOf(const CornerSide& first, const CornerSide& second) const {
    if (mRounds) {
        return roundCorner(first, second, systemVariableReal(L"FILLETRAD"));
    }
    double one = systemVariableReal(L"CHAMFERA");
    double other = systemVariableReal(L"CHAMFERB");
    if (byAngle()) {
        // The triangle of the corner, the length on the first line and the angle there.
        one = systemVariableReal(L"CHAMFERC");
        const double angle = systemVariableReal(L"CHAMFERD");
        const std::optional<Corner> bare = cutCorner(first, second, 0.0, 0.0);
        if (!bare) {
            return std::nullopt;
        }
        const AcGeVector2d a = bare->first.tangent(0.0) * (bare->firstEndsAtCorner ? -1.0 : 1.0);
        const AcGeVector2d b = bare->second.tangent(0.0) * (bare->secondEndsAtCorner ? -1.0 : 1.0);
        const double between = std::acos(std::clamp(a.dotProduct(b), -1.0, 1.0));
        const double rest = pi - between - angle;
        if (!(angle > 0.0) || !(rest > 1e-9)) {
            return std::nullopt;
        }
        other = one * std::sin(angle) / std::sin(rest);
    }
    return cutCorner(first, second, one, other);
}

bool Cornering::makeCorner(const Side& first, const Side& second) {
    if (first.segment >= 0 || second.segment >= 0) {
        return first.id == second.id ? makeInPolyline(first, second) : makeWithPolyline(first, second);
    }
    if (first.id == second.id) {
        return false;
    }
    const std::optional<Corner> corner = cornerOf(first.corner, second.corner);
    if (!corner) {
        return false;
    }
    if (trims()) {
        endSide(first, corner->first);
        endSide(second, corner->second);
    }
    if (corner->between) {
        addBetween(*corner->between, first, second);
    }
    return true;
}

std::unique_ptr<AcDbCurve> curveOf(const PathSegment& segment, double elevation, const AcDbEntity& like) {
    const AcGeVector3d normal = ucsNormal();
    const auto world = [&](const AcGePoint2d& point) { return toWorld(normal, to3d(point, elevation)); };
    if (!segment.isArc()) {
        auto line = newLike<AcDbLine>(like);
        line->setStartPoint(world(segment.start));
        line->setEndPoint(world(segment.end));
        return line;
    }
    const AcGePoint2d center = segment.center();
    const double start = (segment.start - center).angle();
    const double end = (segment.end - center).angle();
    auto arc = newLike<AcDbArc>(like);
    arc->setNormal(normal);
    arc->setCenter(world(center));
    arc->setRadius(segment.radius());
    arc->setStartAngle(segment.bulge > 0.0 ? start : end);
    arc->setEndAngle(segment.bulge > 0.0 ? end : start);
    return arc;
}

void Cornering::endSide(const Side& side, const PathSegment& segment) {
    if (side.corner.isCircle) {
        return; // circles stay whole
    }
    std::unique_ptr<AcDbCurve> changed = [&] {
        const auto* entity = peek<AcDbEntity>(side.id);
        const ReadAccess access(*entity);
        return curveOf(segment, side.elevation, *entity);
    }();
    replaceEntity(side.id, std::move(changed));
}

/// On the layer of both, or on the current one when they differ.
void Cornering::addBetween(const PathSegment& segment, const Side& first, const Side& second) {
    const auto* one = peek<AcDbEntity>(first.id);
    std::unique_ptr<AcDbCurve> curve = [&] {
        const ReadAccess access(*one);
        return curveOf(segment, first.elevation, *one);
    }();
    if (one->layerId() != peek<AcDbEntity>(second.id)->layerId()) {
        curve->setDatabaseDefaults(&currentDatabase());
    }
    appendTo(one->ownerId(), std::move(curve));
}

std::vector<PathSegment> segmentsOf(const BulgePath& path) {
    std::vector<PathSegment> segments;
    for (int i = 0; i < path.segmentCount(); ++i) {
        segments.push_back(path.segment(i));
    }
    return segments;
}

/// Widths of the segment of the old path that is nearest.
SegmentWidths widthsNear(const FlatPath& old, const PathIndex& index, const PathSegment& segment) {
    const auto at = static_cast<std::size_t>(index.closestParameter(segment.pointAt(0.5)));
    return old.shape.widths[std::min(at, old.shape.widths.size() - 1)];
}

WidePath pathOf(const std::vector<PathSegment>& segments, const FlatPath& old) {
    WidePath shape;
    shape.path.closed = old.shape.path.closed;
    const PathIndex index(old.shape.path);
    for (const PathSegment& segment : segments) {
        shape.path.add(segment.start, segment.bulge);
        if (!old.shape.widths.empty()) {
            shape.widths.push_back(widthsNear(old, index, segment));
        }
    }
    if (!shape.path.closed) {
        shape.path.add(segments.back().end);
    }
    return shape;
}

/// Changes the segments of a polyline; false when nothing was changed.
bool changePolyline(AcDbObjectId id,
                    const std::function<bool(std::vector<PathSegment>&, bool closed)>& change) {
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) {
        return false;
    }
    const FlatPath flat = *flatPathOf(*entity.get());
    std::vector<PathSegment> segments = segmentsOf(flat.shape.path);
    if (!change(segments, flat.shape.path.closed) || segments.empty()) {
        return false;
    }
    setFlatPath(*entity.get(), pathOf(segments, flat));
    return true;
}

/// Two neighbours, or two segments with one between them, which goes. The ends of an open polyline meet too.
bool Cornering::makeInPolyline(const Side& first, const Side& second) {
    return changePolyline(first.id, [&](std::vector<PathSegment>& segments, bool closed) {
        const int count = static_cast<int>(segments.size());
        Side before = first;
        Side after = second;
        const auto gap = [&](const Side& a, const Side& b) {
            const int steps = b.segment - a.segment;
            return closed ? (steps + count) % count : steps;
        };
        if (gap(before, after) < 1 || gap(before, after) > 2) {
            std::swap(before, after);
        }
        const int steps = gap(before, after);
        if (steps < 1 || steps > 2) {
            return false;
        }
        const std::optional<Corner> corner = cornerOf(before.corner, after.corner);
        if (!corner || !corner->firstEndsAtCorner || corner->secondEndsAtCorner) {
            return false;
        }
        std::vector<PathSegment> result;
        for (int i = 0; i < count; ++i) {
            if (i == before.segment) {
                result.push_back(corner->first);
                if (corner->between) {
                    result.push_back(*corner->between);
                }
            } else if (i == after.segment) {
                result.push_back(corner->second);
            } else if (steps == 1 || i != (before.segment + 1) % count) {
                result.push_back(segments[static_cast<std::size_t>(i)]);
            }
        }
        segments = std::move(result);
        return true;
    });
}

/// What a side's object keeps, in order towards the corner: a polyline loses what lies beyond it. Nothing for
/// what has no such end.
std::optional<std::vector<PathSegment>> keptUpTo(const Side& side, const PathSegment& ended,
                                                 bool endsAtCorner) {
    std::vector<PathSegment> kept;
    if (side.segment >= 0) {
        const auto* entity = peek<AcDbEntity>(side.id);
        const ReadAccess access(*entity);
        const FlatPath flat = *flatPathOf(*entity);
        if (flat.shape.path.closed || !flat.normal.isEqualTo(ucsNormal())) {
            return std::nullopt;
        }
        kept = segmentsOf(flat.shape.path);
        const auto picked = kept.begin() + side.segment;
        endsAtCorner ? kept.erase(picked, kept.end()) : kept.erase(kept.begin(), picked + 1);
    }
    kept.insert(endsAtCorner ? kept.end() : kept.begin(), ended);
    if (!endsAtCorner) {
        std::reverse(kept.begin(), kept.end());
        std::transform(kept.begin(), kept.end(), kept.begin(),
                       [](const PathSegment& segment) { return segment.reversed(); });
    }
    return kept;
}

/// A polyline and another object become one polyline, with the corner between them.
bool Cornering::makeWithPolyline(const Side& first, const Side& second) {
    const std::optional<Corner> corner = cornerOf(first.corner, second.corner);
    if (!corner) {
        return false;
    }
    if (!trims()) {
        if (corner->between) {
            addBetween(*corner->between, first, second);
        }
        return true;
    }
    auto whole = keptUpTo(first, corner->first, corner->firstEndsAtCorner);
    const auto rest = keptUpTo(second, corner->second, corner->secondEndsAtCorner);
    if (!whole || !rest || first.corner.isCircle || second.corner.isCircle) {
        return false;
    }
    if (corner->between) {
        whole->push_back(*corner->between);
    }
    std::transform(rest->rbegin(), rest->rend(), std::back_inserter(*whole),
                   [](const PathSegment& segment) { return segment.reversed(); });
    const bool firstStays = first.segment >= 0;
    const bool changed = changePolyline((firstStays ? first : second).id, [&](auto& segments, bool) {
        segments = std::move(*whole);
        return true;
    });
    return changed && eraseEntity((firstStays ? second : first).id);
}

void Cornering::makeAll() {
    const EntityAnswer picked = askEntity(L"\n选择二维多段线: ", nullptr, refuseUnlessPolyline);
    if (!picked.isValue()) {
        return;
    }
    int made = 0;
    int refused = 0;
    changePolyline(picked.id, [&](std::vector<PathSegment>& segments, bool closed) {
        made = cornerAll(
            segments, closed, [&](const CornerSide& a, const CornerSide& b) { return cornerOf(a, b); },
            refused);
        return made > 0;
    });
    acutPrintf(mRounds ? L"\n%d 个角已被圆角。" : L"\n%d 个角已被倒角。", made);
    if (refused > 0) {
        acutPrintf(L"\n%d 个角的线段太短或平行。", refused);
    }
}

void runFillet() {
    Cornering(true).run();
}
void runChamfer() {
    Cornering(false).run();
}

constexpr CommandRow rows[] = {{L"FILLET", L"圆角", ACRX_CMD_MODAL, runFillet},
                               {L"CHAMFER", L"倒角", ACRX_CMD_MODAL, runChamfer}};

} // namespace

std::span<const CommandRow> filletCommands() {
    return rows;
}

} // namespace host
