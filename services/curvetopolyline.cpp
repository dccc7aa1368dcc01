// Lines, arcs, circles and ellipses as light polylines.
#include "services/curvetopolyline.h"

#include "restools/drawing.h"
#include "restools/entpicks.h"
#include "restools/polylineshape.h"
#include "restools/sysvar.h"

#include <memory>
#include <numbers>

namespace {

constexpr double fullCircle = 2.0 * std::numbers::pi;
/// Between two vertices on an ellipse: five degrees, seen from its centre.
constexpr double ellipseStep = 0.08726646259971647;
/// A step this near to the end (radians) is the end.
constexpr double angleTolerance = 1e-9;
/// Long enough to leave any ellipse of a map.
constexpr double rayLength = 1'000'000.0;

/// From the X axis counter-clockwise, 0 to 2 pi.
double angleTo(const AcGePoint3d& center, const AcGePoint3d& point) {
    return AcGeVector3d::kXAxis.angleTo(point - center, AcGeVector3d::kZAxis);
}

struct Sweep {
    double start = 0.0;
    double end = fullCircle;
};

Sweep sweepOf(const AcDbEllipse& ellipse) {
    if (ellipse.isClosed()) {
        return {};
    }
    AcGePoint3d start;
    AcGePoint3d end;
    ellipse.getStartPoint(start);
    ellipse.getEndPoint(end);
    Sweep sweep{angleTo(ellipse.center(), start), angleTo(ellipse.center(), end)};
    if (sweep.end < sweep.start) {
        sweep.end += fullCircle;
    }
    return sweep;
}

/// A chain of straight segments.
void AddShape(AcDbPolyline& polyline, const AcDbEllipse& ellipse) {
    const Sweep sweep = sweepOf(ellipse);
    const AcGePoint3d center = ellipse.center();
    for (int i = 0;; ++i) {
        const double stepped = sweep.start + i * ellipseStep;
        const bool isLast = stepped > sweep.end - angleTolerance;
        const double angle = isLast ? sweep.end : stepped;
        ads_point far;
        acutPolar(asDblArray(center), angle, rayLength, far);
        const AcDbLine ray(center, AcGePoint3d(far[X], far[Y], far[Z]));
        AcGePoint3dArray hits;
        ellipse.intersectWith(&ray, AcDb::kOnBothOperands, hits);
        if (hits.isEmpty()) {
            break;
        }
        AddVertex(polyline, hits.first());
        if (isLast) {
            break;
        }
    }
    if (ellipse.isClosed()) {
        polyline.setClosed(Adesk::kTrue);
    }
}

/// Puts a polyline of the curve's shape into the drawing and erases the curve. The new one's id.
template <class Curve>
AcDbObjectId replaceCurve(CArxEntity& entity, const Curve& curve, double width) {
    auto polyline = std::make_unique<AcDbPolyline>();
    polyline->setPropertiesFrom(&curve);
    AddShape(*polyline, curve);
    polyline->setConstantWidth(width);
    entity->erase();
    AcDbObjectId id;
    AppendEnt(polyline.release(), id);
    return id;
}

void setWidths(const AcDb2dPolyline& polyline, double width) {
    for (const std::unique_ptr<AcDbObjectIterator> iterator(polyline.vertexIterator()); !iterator->done();
         iterator->step()) {
        const CArxObjTemplate<AcDb2dVertex> vertex(iterator->objectId(), true);
        if (vertex) {
            vertex->setStartWidth(width);
            vertex->setEndWidth(width);
        }
    }
}

} // namespace

void ConvertArc2Polyline(AcDbPolyline* polyline, const AcDbArc* arc) {
    AddShape(*polyline, *arc);
}

void MultiplePEDIT(AcArray<AcDbObjectId>& ellipseResults, CArxEntity& entity, double width) {
    if (auto* light = entity.As<AcDbPolyline>()) {
        light->setConstantWidth(width);
    } else if (const auto* heavy = entity.As<AcDb2dPolyline>()) {
        setWidths(*heavy, width);
    } else if (const auto* line = entity.As<AcDbLine>()) {
        replaceCurve(entity, *line, width);
    } else if (const auto* arc = entity.As<AcDbArc>()) {
        replaceCurve(entity, *arc, width);
    } else if (const auto* circle = entity.As<AcDbCircle>()) {
        replaceCurve(entity, *circle, width);
    } else if (const auto* ellipse = entity.As<AcDbEllipse>(); ellipse != nullptr && width > 0.0) {
        ellipseResults.append(replaceCurve(entity, *ellipse, width));
    }
}

void MultiplePEDITAcDbEllipse(const AcArray<AcDbObjectId>& ids) {
    if (ids.isEmpty()) {
        return;
    }
    CEntPicks polylines;
    polylines.CreateNullEntPicks();
    for (const AcDbObjectId id : ids) {
        polylines.Add(id);
    }
    SetVar(L"CMDECHO", 0);
    acedCommandS(RTSTR, L"_.PEDIT", RTPICKS, polylines.Name(), RTSTR, L"_F", RTSTR, L"", RTNONE);
}
