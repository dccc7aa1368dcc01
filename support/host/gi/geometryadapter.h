// The many forms of the published geometry calls, brought to the few that an implementation (the Core) has:
// three-point circles become circles, arguments become values, null pointers are met.
#pragma once

#include "host/gi/curves.h"
#include "host/gi/geometry.h"
#include "host/gi/textstyle.h"

#include <span>
#include <string_view>

namespace host {

// A circular arc through three points; false when they lie on a line or are not finite.
bool arcThrough(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end, Arc& arc);

// The arc of the published calls' arguments.
Arc circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                const AcGeVector3d& startVector, double sweepAngle);
Arc fullCircle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal);
Arc ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal, double majorRadius,
                  double minorRadius, double startParameter, double endParameter, double tilt);

// Base is the published class to implement. The Core has: transform(), pushTransform(matrix), popTransform(),
// arc(Arc, AcGiArcType, isWhole), polyline(points, marker), polygons(points, counts, colors),
// lightPolyline(...), points(...), faces(...), text(...), infiniteLine(...), drawChild(...), pushClip(...),
// popClip(), worldLine(...), isAborted().
template <class Base, class Core>
class GeometryAdapter : public Base {
public:
    explicit GeometryAdapter(Core& core) : mCore(core) {}

    void getModelToWorldTransform(AcGeMatrix3d& matrix) const override { matrix = mCore.transform(); }
    void getWorldToModelTransform(AcGeMatrix3d& matrix) const override {
        matrix = mCore.transform().inverse();
    }
    Adesk::Boolean pushModelTransform(const AcGeVector3d& normal) override {
        mCore.pushTransform(arbitraryAxes(normal));
        return true;
    }
    Adesk::Boolean pushModelTransform(const AcGeMatrix3d& transform) override {
        mCore.pushTransform(transform);
        return true;
    }
    Adesk::Boolean popModelTransform() override { return mCore.popTransform(); }

    Adesk::Boolean circle(const AcGePoint3d& center, const double radius,
                          const AcGeVector3d& normal) const override {
        mCore.arc(fullCircle(center, radius, normal), kAcGiArcSimple, true);
        return mCore.isAborted();
    }
    Adesk::Boolean circle(const AcGePoint3d& first, const AcGePoint3d& second,
                          const AcGePoint3d& third) const override {
        Arc arc;
        if (arcThrough(first, second, third, arc)) {
            arc.sweep = arc.sweep < 0 ? -fullTurn : fullTurn;
            mCore.arc(arc, kAcGiArcSimple, true);
        }
        return mCore.isAborted();
    }
    Adesk::Boolean circularArc(const AcGePoint3d& center, const double radius, const AcGeVector3d& normal,
                               const AcGeVector3d& startVector, const double sweepAngle,
                               const AcGiArcType arcType) const override {
        mCore.arc(host::circularArc(center, radius, normal, startVector, sweepAngle), arcType, false);
        return mCore.isAborted();
    }
    Adesk::Boolean circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end,
                               const AcGiArcType arcType) const override {
        Arc arc;
        if (arcThrough(start, point, end, arc))
            mCore.arc(arc, arcType, false);
        else
            mCore.polyline(std::array{start, point, end}, -1);
        return mCore.isAborted();
    }
    Adesk::Boolean ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal, double majorRadius,
                                 double minorRadius, double startParam, double endParam, double tilt,
                                 const AcGiArcType arcType) const override {
        const Arc arc =
            host::ellipticalArc(center, normal, majorRadius, minorRadius, startParam, endParam, tilt);
        mCore.arc(arc, arcType, std::abs(arc.sweep) >= fullTurn);
        return mCore.isAborted();
    }

    Adesk::Boolean polyline(const Adesk::UInt32 count, const AcGePoint3d* vertices,
                            const AcGeVector3d* normal, Adesk::LongPtr baseMarker) const override {
        if (count > 0 && vertices)
            mCore.polyline({vertices, count}, baseMarker, normal);
        return mCore.isAborted();
    }
    Adesk::Boolean polygon(const Adesk::UInt32 count, const AcGePoint3d* vertices) const override {
        if (count > 0 && vertices)
            mCore.polygon({vertices, count});
        return mCore.isAborted();
    }
    Adesk::Boolean polyPolygon(const Adesk::UInt32 polygonCount, const Adesk::UInt32* counts,
                               const AcGePoint3d* vertices,
                               const AcCmEntityColor* fillColors) const override {
        if (polygonCount > 0 && counts && vertices)
            mCore.polyPolygon({counts, polygonCount}, vertices, fillColors);
        return mCore.isAborted();
    }
    Adesk::Boolean pline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex,
                         Adesk::UInt32 numSegs) const override {
        mCore.lightPolyline(polyline, fromIndex, numSegs);
        return mCore.isAborted();
    }
    Adesk::Boolean polypoint(const Adesk::UInt32 count, const AcGePoint3d* points) const override {
        if (count > 0 && points)
            mCore.points({points, count});
        return mCore.isAborted();
    }
    Adesk::Boolean mesh(const Adesk::UInt32 rows, const Adesk::UInt32 columns, const AcGePoint3d* vertices,
                        const AcGiEdgeData* edgeData, const AcGiFaceData* faceData, const AcGiVertexData*,
                        const bool) const override {
        if (rows > 1 && columns > 1 && vertices)
            mCore.mesh(rows, columns, vertices, edgeData, faceData);
        return mCore.isAborted();
    }
    Adesk::Boolean shell(const Adesk::UInt32 vertexCount, const AcGePoint3d* vertices,
                         const Adesk::UInt32 faceListSize, const Adesk::Int32* faceList,
                         const AcGiEdgeData* edgeData, const AcGiFaceData* faceData, const AcGiVertexData*,
                         const resbuf*, const bool) const override {
        if (vertexCount > 0 && vertices && faceListSize > 0 && faceList)
            mCore.shell({vertices, vertexCount}, {faceList, faceListSize}, edgeData, faceData);
        return mCore.isAborted();
    }

    Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                        const AcGeVector3d& direction, const double height, const double width,
                        const double oblique, const ACHAR* message) const override {
        if (message)
            mCore.simpleText(position, normal, direction, height, width, oblique, message);
        return mCore.isAborted();
    }
    Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                        const AcGeVector3d& direction, const ACHAR* message, const Adesk::Int32 length,
                        const Adesk::Boolean raw, const AcGiTextStyle& style) const override {
        if (message) {
            const std::wstring_view whole =
                length < 0 ? std::wstring_view(message)
                           : std::wstring_view(message, static_cast<std::size_t>(length));
            mCore.styledText(position, normal, direction, whole, raw, style);
        }
        return mCore.isAborted();
    }

    Adesk::Boolean xline(const AcGePoint3d& first, const AcGePoint3d& second) const override {
        mCore.infiniteLine(first, second, true);
        return mCore.isAborted();
    }
    Adesk::Boolean ray(const AcGePoint3d& start, const AcGePoint3d& through) const override {
        mCore.infiniteLine(start, through, false);
        return mCore.isAborted();
    }

    Adesk::Boolean draw(AcGiDrawable* drawable) const override {
        if (drawable)
            mCore.drawChild(*drawable);
        return mCore.isAborted();
    }

    Adesk::Boolean pushClipBoundary(AcGiClipBoundary* boundary) override {
        if (boundary)
            mCore.pushClip(*boundary);
        return boundary != nullptr;
    }
    void popClipBoundary() override { mCore.popClip(); }

    Adesk::Boolean worldLine(const AcGePoint3d points[2]) override {
        mCore.worldLine({points, 2});
        return mCore.isAborted();
    }

protected:
    static constexpr double fullTurn = 6.283185307179586476925;
    Core& mCore;
};

template <class Core>
class WorldGeometryAdapter final : public GeometryAdapter<AcGiWorldGeometry, Core> {
public:
    using GeometryAdapter<AcGiWorldGeometry, Core>::GeometryAdapter;
    void setExtents(AcGePoint3d*) const override {} // extents are taken from what is drawn
};

// Eye coordinates are world coordinates: the view is from above.
template <class Core>
class ViewportGeometryAdapter final : public GeometryAdapter<AcGiViewportGeometry, Core> {
public:
    using GeometryAdapter<AcGiViewportGeometry, Core>::GeometryAdapter;
    Adesk::Boolean polylineEye(const Adesk::UInt32 count, const AcGePoint3d* points) const override {
        if (count > 0 && points)
            this->mCore.worldLine({points, count});
        return this->mCore.isAborted();
    }
    Adesk::Boolean polygonEye(const Adesk::UInt32 count, const AcGePoint3d* points) const override {
        return this->polygon(count, points);
    }
    Adesk::Boolean polylineDc(const Adesk::UInt32 count, const AcGePoint3d* points) const override {
        return polylineEye(count, points);
    }
    Adesk::Boolean polygonDc(const Adesk::UInt32 count, const AcGePoint3d* points) const override {
        return polygonEye(count, points);
    }
};

} // namespace host
