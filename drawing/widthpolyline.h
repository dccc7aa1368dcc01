// The polyline whose segments have widths of their own: function c:V7_SPline.
#pragma once

#include "host/arx.h"

/// Draws a light polyline point by point while a panel beside the drawing shows widths and snap increments.
/// Always RTNORM.
int DrawWidthPolyline();

/// What the panel shows and the next segment gets. One copy for the module; read from the user's profile when
/// a polyline is begun and saved when it is done.
struct WidthPolylineSettings {
    double startWidth = 0.0;
    double endWidth = 0.0;
    double xIncrement = 10.0; ///< snap spacing
    double yIncrement = 10.0;
    int useSnap = 1;
};
WidthPolylineSettings& GetWidthPolylineSettings();
void LoadWidthPolylineSettings();
void SaveWidthPolylineSettings();

/// Points and widths of a polyline that is being drawn: the segment from point i to the next one has the
/// widths 2i (start) and 2i + 1 (end).
struct WidthPolylineCourse {
    AcGePoint3dArray points = AcGePoint3dArray(0, 8); ///< world
    AcGeDoubleArray widths = AcGeDoubleArray(0, 8);

    void Add(const AcGePoint3d& point);
    void AddSegment(const AcGePoint3d& point, double startWidth, double endWidth);
    /// Takes the last point back, and the widths of the segment that led there.
    void RemoveLast();
    /// Gives a polyline the vertices; the last one has no widths.
    void AddVertices(AcDbPolyline& polyline) const;
};

/// What is asked after so many points.
struct WidthPolylineQuestion {
    const ACHAR* prompt;
    const ACHAR* keywords;
};
WidthPolylineQuestion WidthPolylineQuestionAfter(int points);
