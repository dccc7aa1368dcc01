// The primitives a drawable draws with. Points are in the coordinate system of the innermost model transform;
// angles are radians. Every primitive returns true when drawing was aborted.
#pragma once

#include "host/gi/color.h"
#include "host/gi/types.h"
#include "host/rx/rx.h"

class AcDbPolyline;
class AcGiDrawable;
class AcGiTextStyle;

class AcGiGeometry : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcGiGeometry);

    virtual void getModelToWorldTransform(AcGeMatrix3d& matrix) const = 0;
    virtual void getWorldToModelTransform(AcGeMatrix3d& matrix) const = 0;
    // Pushes the arbitrary-axis transform of a normal.
    virtual Adesk::Boolean pushModelTransform(const AcGeVector3d& normal) = 0;
    virtual Adesk::Boolean pushModelTransform(const AcGeMatrix3d& transform) = 0;
    virtual Adesk::Boolean popModelTransform() = 0;

    virtual Adesk::Boolean circle(const AcGePoint3d& center, const double radius,
                                  const AcGeVector3d& normal) const = 0;
    virtual Adesk::Boolean circle(const AcGePoint3d& first, const AcGePoint3d& second,
                                  const AcGePoint3d& third) const = 0;
    virtual Adesk::Boolean circularArc(const AcGePoint3d& center, const double radius,
                                       const AcGeVector3d& normal, const AcGeVector3d& startVector,
                                       const double sweepAngle,
                                       const AcGiArcType arcType = kAcGiArcSimple) const = 0;
    virtual Adesk::Boolean circularArc(const AcGePoint3d& start, const AcGePoint3d& point,
                                       const AcGePoint3d& end,
                                       const AcGiArcType arcType = kAcGiArcSimple) const = 0;
    // An arc of an ellipse in the plane of normal: its axis of length majorRadius lies at tilt from the
    // plane's X direction, parameters run from startParam to endParam.
    virtual Adesk::Boolean ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal,
                                         double majorRadius, double minorRadius, double startParam,
                                         double endParam, double tilt,
                                         const AcGiArcType arcType = kAcGiArcSimple) const = 0;

    virtual Adesk::Boolean polyline(const Adesk::UInt32 count, const AcGePoint3d* vertices,
                                    const AcGeVector3d* normal = nullptr,
                                    Adesk::LongPtr baseMarker = -1) const = 0;
    virtual Adesk::Boolean polygon(const Adesk::UInt32 count, const AcGePoint3d* vertices) const = 0;
    // Several polygons, each filled by the even-odd rule with the holes inside it; counts[i] vertices each.
    virtual Adesk::Boolean polyPolygon(const Adesk::UInt32 polygonCount, const Adesk::UInt32* counts,
                                       const AcGePoint3d* vertices,
                                       const AcCmEntityColor* fillColors = nullptr) const = 0;
    // Segments fromIndex .. fromIndex+numSegs-1 of a light polyline, all of them when numSegs is 0: with its
    // widths, bulges, thickness and linetype generation.
    virtual Adesk::Boolean pline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex = 0,
                                 Adesk::UInt32 numSegs = 0) const = 0;
    virtual Adesk::Boolean polypoint(const Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
    virtual Adesk::Boolean mesh(const Adesk::UInt32 rows, const Adesk::UInt32 columns,
                                const AcGePoint3d* vertices, const AcGiEdgeData* edgeData = nullptr,
                                const AcGiFaceData* faceData = nullptr,
                                const AcGiVertexData* vertexData = nullptr,
                                const bool autoGenerateNormals = true) const = 0;
    // faceList: for each face its number of vertices (negative: a hole in the face before), then their
    // indices.
    virtual Adesk::Boolean
    shell(const Adesk::UInt32 vertexCount, const AcGePoint3d* vertices, const Adesk::UInt32 faceListSize,
          const Adesk::Int32* faceList, const AcGiEdgeData* edgeData = nullptr,
          const AcGiFaceData* faceData = nullptr, const AcGiVertexData* vertexData = nullptr,
          const struct resbuf* reserved = nullptr, const bool autoGenerateNormals = true) const = 0;

    // Text in the host's default font: control codes are read, width is a factor of the width.
    virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                const AcGeVector3d& direction, const double height, const double width,
                                const double oblique, const ACHAR* message) const = 0;
    // length < 0: up to the terminating zero. raw: control codes are drawn as they are.
    virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                const AcGeVector3d& direction, const ACHAR* message,
                                const Adesk::Int32 length, const Adesk::Boolean raw,
                                const AcGiTextStyle& style) const = 0;

    virtual Adesk::Boolean xline(const AcGePoint3d& first, const AcGePoint3d& second) const = 0;
    virtual Adesk::Boolean ray(const AcGePoint3d& start, const AcGePoint3d& through) const = 0;

    virtual Adesk::Boolean draw(AcGiDrawable* drawable) const = 0;

    virtual Adesk::Boolean pushClipBoundary(AcGiClipBoundary* boundary) = 0;
    virtual void popClipBoundary() = 0;

    // A line in world coordinates whatever the model transform.
    virtual Adesk::Boolean worldLine(const AcGePoint3d points[2]) = 0;
};

class AcGiWorldGeometry : public AcGiGeometry {
public:
    ACRX_DECLARE_MEMBERS(AcGiWorldGeometry);

    virtual void setExtents(AcGePoint3d* newExtents) const = 0;
};

class AcGiViewportGeometry : public AcGiGeometry {
public:
    ACRX_DECLARE_MEMBERS(AcGiViewportGeometry);

    virtual Adesk::Boolean polylineEye(const Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
    virtual Adesk::Boolean polygonEye(const Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
    virtual Adesk::Boolean polylineDc(const Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
    virtual Adesk::Boolean polygonDc(const Adesk::UInt32 count, const AcGePoint3d* points) const = 0;
};
