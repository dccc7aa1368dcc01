// JOIN: lines of one straight line, arcs of one circle, and pieces that touch become one curve.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/pathjoin.h"
#include "host/commands/registry.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

template <class T>
bool areAll(const AcDbObjectIdArray& ids) {
    return std::all_of(ids.begin(), ids.end(), [](AcDbObjectId id) { return peek<T>(id) != nullptr; });
}

/// Those of the lines that lie on the first one's straight line, gaps or not; the first then spans them all.
int joinLines(const AcDbObjectIdArray& ids) {
    const auto ends = [](AcDbObjectId id) {
        const auto* line = peek<AcDbLine>(id);
        const ReadAccess access(*line);
        return std::pair(line->startPoint(), line->endPoint());
    };
    const std::pair<AcGePoint3d, AcGePoint3d> first = ends(ids[0]);
    const AcGePoint3d& start = first.first;
    const double length = start.distanceTo(first.second);
    if (length == 0.0) {
        return 0;
    }
    const AcGeVector3d along = (first.second - start).normal();
    double low = 0.0;
    double high = length;
    std::vector<AcDbObjectId> joined;
    for (int i = 1; i < ids.length(); ++i) {
        const auto [a, b] = ends(ids[i]);
        const auto off = [&](const AcGePoint3d& point) {
            const AcGeVector3d arm = point - start;
            return (arm - along * arm.dotProduct(along)).length();
        };
        const double slack = 1e-8 * (1.0 + length + start.distanceTo(a) + start.distanceTo(b));
        if (off(a) > slack || off(b) > slack) {
            continue;
        }
        low = std::min({low, (a - start).dotProduct(along), (b - start).dotProduct(along)});
        high = std::max({high, (a - start).dotProduct(along), (b - start).dotProduct(along)});
        joined.push_back(ids[i]);
    }
    const Opened<AcDbLine> line(ids[0], AcDb::kForWrite);
    if (!line || joined.empty()) {
        return 0;
    }
    line->setStartPoint(start + along * low);
    line->setEndPoint(start + along * high);
    std::for_each(joined.begin(), joined.end(), eraseEntity);
    return static_cast<int>(joined.size());
}

/// Arcs of one circle, counterclockwise from the first one's start; together they may be the whole circle.
int joinArcs(const AcDbObjectIdArray& ids) {
    const Opened<AcDbArc> first(ids[0], AcDb::kForWrite);
    if (!first) {
        return 0;
    }
    double sweep = first->totalAngle();
    std::vector<AcDbObjectId> joined;
    for (int i = 1; i < ids.length(); ++i) {
        const auto* arc = peek<AcDbArc>(ids[i]);
        const ReadAccess access(*arc);
        const double slack = 1e-8 * (1.0 + first->radius());
        if (arc->center().distanceTo(first->center()) > slack ||
            std::fabs(arc->radius() - first->radius()) > slack ||
            arc->normal().dotProduct(first->normal()) < 1.0 - 1e-9) {
            continue;
        }
        const double from = normalizedAngle(arc->startAngle() - first->startAngle());
        sweep = std::max(sweep, std::min(from + arc->totalAngle(), twoPi));
        joined.push_back(ids[i]);
    }
    if (joined.empty()) {
        return 0;
    }
    if (sweep < twoPi - 1e-9) {
        first->setEndAngle(normalizedAngle(first->startAngle() + sweep));
    }
    std::for_each(joined.begin(), joined.end(), eraseEntity);
    return static_cast<int>(joined.size());
}

bool isPolyline(const AcDbEntity& entity) {
    return AcDbPolyline::cast(&entity) != nullptr || AcDb2dPolyline::cast(&entity) != nullptr;
}

/// What touches end to end becomes a polyline in the place of the first.
int joinChain(const AcDbObjectIdArray& ids) {
    std::vector<AcDbObjectId> sources;
    std::vector<WidePath> paths;
    std::optional<FlatPath> base;
    for (const AcDbObjectId id : ids) {
        const auto* entity = peek<AcDbEntity>(id);
        const ReadAccess access(*entity);
        const std::optional<FlatPath> own = flatPathOf(*entity);
        const AcGeVector3d normal = base ? base->normal : own ? own->normal : ucsNormal();
        const std::optional<FlatPath> flat = flatPathIn(*entity, normal);
        if (!flat) {
            continue;
        }
        base = base ? base : flat;
        if (std::fabs(flat->elevation - base->elevation) <= 1e-8 * (1.0 + std::fabs(base->elevation))) {
            sources.push_back(id);
            paths.push_back(flat->shape);
        }
    }
    if (paths.size() < 2) {
        return 0;
    }
    const JoinedPath joined = growPath(std::move(paths), {});
    if (joined.sources.size() < 2) {
        return 0;
    }
    const AcDbObjectId first = sources.front();
    std::unique_ptr<AcDbPolyline> made;
    if (const auto* entity = peek<AcDbEntity>(first); !isPolyline(*entity)) {
        const ReadAccess access(*entity);
        made = newLike<AcDbPolyline>(*entity);
        made->setNormal(base->normal);
        made->setElevation(base->elevation);
        made->setShape(joined.shape);
    }
    if (made != nullptr) {
        replaceEntity(first, std::move(made));
    } else if (const Opened<AcDbEntity> polyline(first, AcDb::kForWrite); polyline) {
        setFlatPath(*polyline.get(), joined.shape);
    }
    int count = 0;
    for (const std::size_t source : joined.sources) {
        count += source != 0 && eraseEntity(sources[source]) ? 1 : 0;
    }
    return count;
}

void runJoin() {
    const Selection selection = Selection::askWith(L"\n选择源对象或要一次合并的多个对象: ", true);
    AcDbObjectIdArray ids = selection.ids();
    if (ids.length() == 1) {
        const Selection others = Selection::askWith(L"\n选择要合并的对象: ", true);
        for (const AcDbObjectId id : others.ids()) {
            if (!ids.contains(id)) {
                ids.append(id);
            }
        }
    }
    if (ids.length() < 2) {
        return;
    }
    int joined = areAll<AcDbLine>(ids) ? joinLines(ids) : areAll<AcDbArc>(ids) ? joinArcs(ids) : 0;
    if (joined == 0) {
        joined = joinChain(ids);
    }
    if (joined == 0) {
        acutPrintf(L"\n没有可以合并的对象。");
    } else {
        acutPrintf(L"\n已将 %d 个对象合并到源对象。", joined);
    }
    if (joined < ids.length() - 1 && joined > 0) {
        acutPrintf(L"\n%d 个对象未合并。", ids.length() - 1 - joined);
    }
}

constexpr CommandRow rows[] = {{L"JOIN", L"合并", ACRX_CMD_MODAL, runJoin}};

} // namespace

std::span<const CommandRow> joinCommands() {
    return rows;
}

} // namespace host
