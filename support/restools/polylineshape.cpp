// The shapes of lines, circles and arcs as vertices of light polylines.
#include "restools/polylineshape.h"

#include <cmath>
#include <numbers>

void AddVertex(AcDbPolyline& polyline, const AcGePoint3d& point, double bulge) {
    constexpr double noWidth = -1.0;
    polyline.addVertexAt(polyline.numVerts(), AcGePoint2d(point.x, point.y), bulge, noWidth, noWidth);
}

void AddShape(AcDbPolyline& polyline, const AcDbLine& line) {
    AddVertex(polyline, line.startPoint());
    AddVertex(polyline, line.endPoint());
}

void AddShape(AcDbPolyline& polyline, const AcDbCircle& circle) {
    const AcGePoint3d center = circle.center();
    const AcGeVector3d radius(circle.radius(), 0.0, 0.0);
    const double halfCircle = std::tan(std::numbers::pi / 4.0);
    AddVertex(polyline, center - radius, halfCircle);
    AddVertex(polyline, center + radius, halfCircle);
    polyline.setClosed(Adesk::kTrue);
}

void AddShape(AcDbPolyline& polyline, const AcDbArc& arc) {
    AcGePoint3d start;
    AcGePoint3d end;
    arc.getStartPoint(start);
    arc.getEndPoint(end);
    const double from = arc.startAngle();
    double to = arc.endAngle();
    if (from > to) {
        to += 2.0 * std::numbers::pi;
    }
    AddVertex(polyline, start, std::tan((to - from) * 0.25));
    AddVertex(polyline, end);
}
