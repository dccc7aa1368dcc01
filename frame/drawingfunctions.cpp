#include "frame/drawingfunctions.h"

#include "frame/lisparguments.h"
#include "restools/arxobject.h"
#include "restools/drawing.h"
#include "restools/entpicks.h"
#include "restools/sysvar.h"

#include <string>

namespace {

int TellUsage(const ACHAR* usage) {
    acutPrintf(L"\n用法: %s", usage);
    return RTERROR;
}

int ReturnPoint(const AcGePoint3d& point) {
    const ads_point result = {point.x, point.y, point.z};
    return acedRetPoint(result);
}

using PointOfCurve = Acad::ErrorStatus (AcDbCurve::*)(AcGePoint3d&) const;

/// A point of the curve given as the argument; nil when the entity is no curve or has no such point.
int ReturnCurvePoint(PointOfCurve pointOf, const ACHAR* usage) {
    CLispArguments arguments;
    const AcDbObjectId id = arguments.Entity();
    if (id.isNull() || !arguments.AtEnd()) {
        return TellUsage(usage);
    }
    const CArxObjTemplate<AcDbCurve> curve(id, false);
    AcGePoint3d point;
    return !curve.IsNull() && ((*curve).*pointOf)(point) == Acad::eOk ? ReturnPoint(point) : acedRetNil();
}

/// The centre of gravity of the surface that a light polyline without arcs encloses; nothing for another, and
/// for one without surface.
std::optional<AcGePoint3d> CentroidOf(const AcDbPolyline& polyline) {
    double twiceArea = 0.0;
    AcGePoint3d first;
    AcGePoint3d previous;
    AcGeVector3d sum;
    if (!polyline.isClosed() || !polyline.isOnlyLines() || polyline.getPointAt(0, first) != Acad::eOk) {
        return std::nullopt;
    }
    previous = first;
    for (unsigned index = 1; index <= polyline.numVerts(); ++index) {
        AcGePoint3d next = first;
        if (index < polyline.numVerts()) {
            polyline.getPointAt(index, next);
        }
        // Relative to the first vertex, so that large coordinates cost no digits.
        const AcGeVector3d a = previous - first;
        const AcGeVector3d b = next - first;
        const double cross = a.x * b.y - b.x * a.y;
        twiceArea += cross;
        sum += (a + b) * cross;
        previous = next;
    }
    return twiceArea != 0.0 ? std::optional(first + sum / (3.0 * twiceArea)) : std::nullopt;
}

std::optional<AcGePoint3d> CentreOf(const AcDbEntity& entity) {
    if (const auto* circle = AcDbCircle::cast(&entity)) {
        return circle->center();
    }
    if (const auto* arc = AcDbArc::cast(&entity)) {
        return arc->center();
    }
    if (const auto* polyline = AcDbPolyline::cast(&entity)) {
        if (const std::optional<AcGePoint3d> centroid = CentroidOf(*polyline)) {
            return centroid;
        }
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) != Acad::eOk) {
        return std::nullopt;
    }
    return extents.minPoint() + (extents.maxPoint() - extents.minPoint()) / 2.0;
}

/// The entities of a set, or the one named.
AcDbObjectIdArray EntitiesOf(CLispArguments& arguments) {
    AcDbObjectIdArray ids;
    if (const ads_name* set = arguments.SelectionSet()) {
        Adesk::Int32 count = 0;
        acedSSLength(*set, &count);
        for (int index = 0; index < count; ++index) {
            ads_name name;
            AcDbObjectId id;
            if (acedSSName(*set, index, name) == RTNORM && acdbGetObjectId(id, name) == Acad::eOk) {
                ids.append(id);
            }
        }
    } else if (const AcDbObjectId id = arguments.Entity(); !id.isNull()) {
        ids.append(id);
    }
    return ids;
}

bool IsClosedCurve(AcDbObjectId id) {
    const CArxObjTemplate<AcDbCurve> curve(id, false);
    return !curve.IsNull() && curve->isClosed();
}

/// Null, or what is wrong.
const ACHAR* FillHatch(AcDbHatch& hatch, const AcDbObjectIdArray& boundaries, const ACHAR* pattern,
                       double scale, double angle) {
    hatch.setPatternScale(scale);
    hatch.setPatternAngle(angle);
    if (hatch.setPattern(AcDbHatch::kPreDefined, pattern) != Acad::eOk) {
        return L"没有这个填充图案。";
    }
    hatch.setAssociative(true);
    for (int index = 0; index < boundaries.length(); ++index) {
        AcDbObjectIdArray loop;
        loop.append(boundaries[index]);
        if (!IsClosedCurve(boundaries[index]) || hatch.appendLoop(AcDbHatch::kExternal, loop) != Acad::eOk) {
            return L"边界没有闭合。";
        }
    }
    return hatch.evaluateHatch() == Acad::eOk ? nullptr : L"填充太密。";
}

int ReturnEntity(AcDbObjectId id) {
    ads_name name;
    return acdbGetAdsName(name, id) == Acad::eOk ? acedRetName(name, RTENAME) : acedRetNil();
}

} // namespace

int FindByHandle() {
    CLispArguments arguments;
    const ACHAR* handle = arguments.Text();
    if (handle == nullptr || !arguments.AtEnd()) {
        return TellUsage(L"(_fid 句柄)");
    }
    ads_name entity = {0, 0};
    return acdbHandEnt(handle, entity) == RTNORM ? acedRetName(entity, RTENAME) : acedRetNil();
}

int MidPoint() {
    CLispArguments arguments;
    const std::optional<AcGePoint3d> first = arguments.Point();
    const std::optional<AcGePoint3d> second = arguments.Point();
    if (!first || !second || !arguments.AtEnd()) {
        return TellUsage(L"(_midp 点1 点2)");
    }
    return ReturnPoint(*first + (*second - *first) / 2.0);
}

int CurveStartPoint() {
    return ReturnCurvePoint(&AcDbCurve::getStartPoint, L"(_getsp 曲线)");
}

int CurveLastPoint() {
    return ReturnCurvePoint(&AcDbCurve::getEndPoint, L"(_glpoint 曲线)");
}

int CentrePoint() {
    CLispArguments arguments;
    const AcDbObjectId id = arguments.Entity();
    if (id.isNull() || !arguments.AtEnd()) {
        return TellUsage(L"(gcpoint 图元)");
    }
    const CArxObjTemplate<AcDbEntity> entity(id, false);
    const std::optional<AcGePoint3d> centre = entity.IsNull() ? std::nullopt : CentreOf(*entity);
    return centre ? ReturnPoint(*centre) : acedRetNil();
}

int ReplaceText() {
    CLispArguments arguments;
    const ACHAR* text = arguments.Text();
    const ACHAR* from = text != nullptr ? arguments.Text() : nullptr;
    const ACHAR* to = from != nullptr ? arguments.Text() : nullptr;
    if (to == nullptr || !arguments.AtEnd()) {
        return TellUsage(L"(_strchg 文字 旧内容 新内容)");
    }
    const std::wstring_view old = from;
    std::wstring result;
    for (std::wstring_view rest = text;;) {
        const std::size_t at = old.empty() ? std::wstring_view::npos : rest.find(old);
        result += rest.substr(0, at);
        if (at == std::wstring_view::npos) {
            return acedRetStr(result.c_str());
        }
        result += to;
        rest.remove_prefix(at + old.size());
    }
}

int SetTextStyle() {
    CLispArguments arguments;
    const ACHAR* style = arguments.Text();
    const std::optional<double> height = arguments.Number();
    if (style == nullptr || !arguments.AtEnd() || (height && *height <= 0.0)) {
        return TellUsage(L"(_setsh 文字样式 [字高])");
    }
    if (!SetVar(L"TEXTSTYLE", style) || (height && !SetVar(L"TEXTSIZE", *height))) {
        return acedRetNil();
    }
    return acedRetT();
}

int SelectWithPrompt() {
    constexpr const ACHAR* usage = L"(ssgetex 提示 [过滤表])";
    CLispArguments arguments;
    const ACHAR* prompt = arguments.Text();
    if (prompt == nullptr) {
        return TellUsage(usage);
    }
    const CResbuf filter = arguments.Filter();
    if (!arguments.AtEnd()) {
        return TellUsage(usage);
    }
    const ACHAR* prompts[2] = {prompt, L"\n删除对象: "};
    ads_name set = {0, 0};
    return acedSSGet(L":$", prompts, nullptr, filter, set) == RTNORM ? acedRetName(set, RTPICKS)
                                                                     : acedRetNil();
}

int DragSelection() {
    CLispArguments arguments;
    const ads_name* set = arguments.SelectionSet();
    const std::optional<AcGePoint3d> base = arguments.Point();
    const ACHAR* prompt = arguments.Text();
    if (set == nullptr || !base || !arguments.AtEnd()) {
        return TellUsage(L"(dodrag 选择集 基点 [提示])");
    }
    const ads_point from = {base->x, base->y, base->z};
    ads_point to;
    if (acedGetPoint(from, prompt != nullptr ? prompt : L"\n移动到: ", to) != RTNORM) {
        return acedRetNil();
    }
    acedCommandS(RTSTR, L"_.MOVE", RTPICKS, *set, RTSTR, L"", RT3DPOINT, from, RT3DPOINT, to, RTNONE);
    return acedRetPoint(to);
}

int EditPolylines() {
    const CResbuf filter(acutBuildList(RTDXF0, L"*POLYLINE,LINE,ARC", RTNONE));
    CEntPicks picks;
    if (!picks.GetSelection(L"\n选择要编辑的多段线: ", filter)) {
        return RTNORM;
    }
    // Lines and arcs are converted without a question, which would take the option for its answer.
    const CSysVar converting(L"PEDITACCEPT", 1);
    for (;;) {
        ACHAR option[32];
        acedInitGet(0, L"Close Open Width Decurve");
        if (acedGetKword(L"\n输入选项 [闭合(C)/打开(O)/宽度(W)/非曲线化(D)] <退出>: ", option) != RTNORM) {
            return RTNORM;
        }
        if (option[0] != L'W') {
            acedCommandS(RTSTR, L"_.PEDIT", RTSTR, L"_Multiple", RTPICKS, picks.Name(), RTSTR, L"", RTSTR,
                         option, RTSTR, L"", RTNONE);
            continue;
        }
        ads_real width = 0.0;
        acedInitGet(RSG_NONEG, nullptr);
        if (acedGetDist(nullptr, L"\n所有线段的新宽度 <0>: ", &width) == RTCAN) {
            return RTNORM;
        }
        acedCommandS(RTSTR, L"_.PEDIT", RTSTR, L"_Multiple", RTPICKS, picks.Name(), RTSTR, L"", RTSTR, option,
                     RTREAL, width, RTSTR, L"", RTNONE);
    }
}

int MakeGroup() {
    CLispArguments arguments;
    const AcDbObjectIdArray members = EntitiesOf(arguments);
    const ACHAR* name = arguments.Text();
    if (members.isEmpty() || !arguments.AtEnd() || (name != nullptr && acdbSNValid(name, 0) != RTNORM)) {
        return TellUsage(L"(mkngroup 选择集 [组名])");
    }
    CArxObjTemplate<AcDbDictionary> groups;
    if (!groups.OpenObject(WorkingDatabase()->groupDictionaryId(), true)) {
        return acedRetNil();
    }
    AcString key = name != nullptr ? name : L"";
    for (int number = 1; name == nullptr && (key.isEmpty() || groups->has(key.kwszPtr())); ++number) {
        key.format(L"*A%d", number);
    }
    if (groups->has(key.kwszPtr())) {
        acutPrintf(L"\n组 %s 已存在。", key.kwszPtr());
        return acedRetNil();
    }
    CArxObjTemplate<AcDbGroup> group;
    group.New();
    AcDbObjectId id;
    if (name == nullptr) {
        group->setAnonymous();
    }
    if (groups->setAt(key.kwszPtr(), group.Get(), id) != Acad::eOk || group->append(members) != Acad::eOk) {
        return acedRetNil();
    }
    return ReturnEntity(id);
}

int MakeHatch() {
    CLispArguments arguments;
    const AcDbObjectIdArray boundaries = EntitiesOf(arguments);
    const ACHAR* pattern = arguments.Text();
    const double scale = arguments.Number().value_or(1.0);
    const double angle = arguments.Number().value_or(0.0);
    if (boundaries.isEmpty() || pattern == nullptr || !arguments.AtEnd() || scale <= 0.0) {
        return TellUsage(L"(dhatch 边界 图案 [比例 [角度]])");
    }
    CArxObjTemplate<AcDbHatch> hatch;
    hatch.New();
    hatch->setDatabaseDefaults(WorkingDatabase());
    if (AppendEnt(hatch) != Acad::eOk) {
        return acedRetNil();
    }
    // In the drawing first: its units choose among the pattern files, and its objects are the boundary.
    if (const ACHAR* fault = FillHatch(*hatch, boundaries, pattern, scale, angle)) {
        hatch->erase();
        acutPrintf(L"\n%s", fault);
        return acedRetNil();
    }
    return ReturnEntity(hatch->objectId());
}
