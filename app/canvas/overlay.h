// What is drawn on top of the picture and changes with every movement: cross hair, rubber bands, snap
// markers, grips, tips. Positions are in the widget's own (logical) pixels.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <cstdint>

namespace host {
struct Slide;
}

namespace app::overlay {

/// Arms reaching so many pixels from the centre, with a pick box of this half size (0: none). Without arms
/// only the box is drawn.
void crossHair(QPainter& painter, const QPointF& at, double reach, double box, const QColor& color);
/// The sign of an object snap of this kind (a bit of OSMODE), with its name beside it.
void snapMarker(QPainter& painter, const QPointF& at, int kind);
void rubberLine(QPainter& painter, const QPointF& from, const QPointF& to, const QColor& color);
/// A rectangle for two corners; one that selects is filled, blue for a window, green and dashed for a
/// crossing.
enum class Rectangle { plain, window, crossing };
void rectangle(QPainter& painter, const QPointF& from, const QPointF& to, Rectangle kind,
               const QColor& color);
enum class Grip { cold, hovered, hot };
void grip(QPainter& painter, const QPointF& at, double halfSize, Grip state);
/// A line of text on a dark plate, kept inside the area.
void tip(QPainter& painter, const QPointF& at, const QString& text, const QRectF& area);
/// Axes of the coordinate system; `angle` is the X axis', radians counterclockwise.
void axes(QPainter& painter, const QPointF& at, double angle, bool isWorld, const QColor& color);

/// A slide as large as it fits; colours are 0x00RRGGBB.
void slide(QPainter& painter, const host::Slide& slide, const QRectF& area, std::uint32_t background,
           std::uint32_t foreground);

} // namespace app::overlay
