#include "app/canvas/overlay.h"

#include "app/canvas/aiming.h"

#include "host/db/db.h"
#include "host/formats/sld/slide.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace app::overlay {
namespace {

constexpr QColor markerColor(64, 220, 110);
constexpr double markerSize = 6.5;

/// On whole pixels, so that thin lines stay sharp.
QPointF sharp(const QPointF& point) {
    return {std::floor(point.x()) + 0.5, std::floor(point.y()) + 0.5};
}

void zigzag(QPainter& painter, const QPointF& at, std::initializer_list<QPointF> corners, bool closed) {
    QPainterPath path;
    bool first = true;
    for (const QPointF& corner : corners) {
        const QPointF point = at + corner * markerSize;
        first ? path.moveTo(point) : path.lineTo(point);
        first = false;
    }
    if (closed) {
        path.closeSubpath();
    }
    painter.drawPath(path);
}

} // namespace

void crossHair(QPainter& painter, const QPointF& at, double reach, double box, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(color, 1));
    painter.setBrush(Qt::NoBrush);
    const QPointF middle = sharp(at);
    if (reach > 0) {
        painter.drawLine(middle - QPointF(reach, 0), middle - QPointF(box, 0));
        painter.drawLine(middle + QPointF(box, 0), middle + QPointF(reach, 0));
        painter.drawLine(middle - QPointF(0, reach), middle - QPointF(0, box));
        painter.drawLine(middle + QPointF(0, box), middle + QPointF(0, reach));
    }
    if (box > 0) {
        painter.drawRect(QRectF(middle.x() - box, middle.y() - box, 2 * box, 2 * box));
    }
}

void snapMarker(QPainter& painter, const QPointF& at, int kind) {
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(markerColor, 1.8));
    painter.setBrush(Qt::NoBrush);
    const double size = markerSize;
    switch (kind) {
    case AcDb::kOsMaskEnd:
        painter.drawRect(QRectF(at.x() - size, at.y() - size, 2 * size, 2 * size));
        break;
    case AcDb::kOsMaskMid:
        zigzag(painter, at, {{-1.1, 0.8}, {1.1, 0.8}, {0, -1.1}}, true);
        break;
    case AcDb::kOsMaskCen:
        painter.drawEllipse(at, size, size);
        break;
    case AcDb::kOsMaskNode:
        painter.drawEllipse(at, size, size);
        zigzag(painter, at, {{-0.7, -0.7}, {0.7, 0.7}}, false);
        zigzag(painter, at, {{-0.7, 0.7}, {0.7, -0.7}}, false);
        break;
    case AcDb::kOsMaskQuad:
        zigzag(painter, at, {{0, -1.2}, {1.2, 0}, {0, 1.2}, {-1.2, 0}}, true);
        break;
    case AcDb::kOsMaskPerp:
        zigzag(painter, at, {{-1, -1}, {-1, 1}, {1, 1}}, false);
        zigzag(painter, at, {{-1, 0}, {0, 0}, {0, 1}}, false);
        break;
    case AcDb::kOsMaskTan:
        painter.drawEllipse(at, size * 0.8, size * 0.8);
        zigzag(painter, at, {{-1.1, -0.9}, {1.1, -0.9}}, false);
        break;
    case AcDb::kOsMaskNear:
        zigzag(painter, at, {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}}, true);
        break;
    case AcDb::kOsMaskIns:
        zigzag(painter, at, {{-1, -1}, {0.2, -1}, {0.2, 0}, {1, 0}, {1, 1}, {-0.2, 1}, {-0.2, 0}, {-1, 0}},
               true);
        break;
    default:
        zigzag(painter, at, {{-1, -1}, {1, 1}}, false);
        zigzag(painter, at, {{-1, 1}, {1, -1}}, false);
    }
}

void rubberLine(QPainter& painter, const QPointF& from, const QPointF& to, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(color, 1, Qt::CustomDashLine));
    QPen pen = painter.pen();
    pen.setDashPattern({6, 4});
    painter.setPen(pen);
    painter.drawLine(from, to);
}

void rectangle(QPainter& painter, const QPointF& from, const QPointF& to, Rectangle kind,
               const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QRectF area = QRectF(sharp(from), sharp(to)).normalized();
    switch (kind) {
    case Rectangle::plain:
        painter.setPen(QPen(color, 1));
        painter.setBrush(Qt::NoBrush);
        break;
    case Rectangle::window:
        painter.setPen(QPen(QColor(90, 150, 255), 1));
        painter.setBrush(QColor(60, 120, 255, 55));
        break;
    case Rectangle::crossing:
        painter.setPen(QPen(QColor(90, 220, 120), 1, Qt::DashLine));
        painter.setBrush(QColor(60, 200, 100, 50));
        break;
    }
    painter.drawRect(area);
}

void grip(QPainter& painter, const QPointF& at, double halfSize, Grip state) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QColor color = state == Grip::hot       ? QColor(230, 60, 50)
                         : state == Grip::hovered ? QColor(255, 170, 130)
                                                  : QColor(40, 120, 230);
    const QPointF middle = sharp(at);
    const QRectF square(middle.x() - halfSize, middle.y() - halfSize, 2 * halfSize, 2 * halfSize);
    painter.setPen(QPen(QColor(200, 215, 235), 1));
    painter.setBrush(color);
    painter.drawRect(square);
}

void tip(QPainter& painter, const QPointF& at, const QString& text, const QRectF& area) {
    if (text.isEmpty()) {
        return;
    }
    constexpr double marginX = 6, marginY = 3;
    const QFontMetricsF metrics(painter.font());
    const QSizeF size(std::min(metrics.horizontalAdvance(text), area.width() - 4 * marginX) + 2 * marginX,
                      metrics.height() + 2 * marginY);
    QPointF corner = at;
    corner.setX(std::clamp(corner.x(), area.left(), std::max(area.left(), area.right() - size.width() - 1)));
    corner.setY(std::clamp(corner.y(), area.top(), std::max(area.top(), area.bottom() - size.height() - 1)));
    const QRectF plate(corner, size);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(QColor(110, 125, 140), 1));
    painter.setBrush(QColor(52, 60, 70, 235));
    painter.drawRoundedRect(plate.adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    painter.setPen(QColor(232, 236, 240));
    painter.drawText(plate.adjusted(marginX, marginY, -marginX, -marginY), Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(text, Qt::ElideRight, size.width() - 2 * marginX + 1));
}

void axes(QPainter& painter, const QPointF& at, double angle, bool isWorld, const QColor& color) {
    constexpr double length = 38, head = 5, letter = 12;
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setBrush(Qt::NoBrush);
    const auto arm = [&](double direction, const QColor& armColor, const QString& name) {
        const QPointF along(std::cos(direction), -std::sin(direction));
        const QPointF across(-along.y(), along.x());
        const QPointF end = at + along * length;
        painter.setPen(QPen(armColor, 1.4));
        painter.drawLine(at, end);
        painter.drawLine(end, end - along * head + across * (head * 0.6));
        painter.drawLine(end, end - along * head - across * (head * 0.6));
        painter.setPen(color);
        const QPointF middle = at + along * (length + letter * 0.8);
        painter.drawText(QRectF(middle.x() - letter, middle.y() - letter, 2 * letter, 2 * letter),
                         Qt::AlignCenter, name);
    };
    arm(angle, QColor(220, 90, 80), QStringLiteral("X"));
    arm(angle + 1.5707963267948966, QColor(110, 200, 90), QStringLiteral("Y"));
    if (isWorld) {
        painter.setPen(QPen(color, 1));
        painter.drawRect(QRectF(at.x() - 4, at.y() - 4, 8, 8));
    }
}

void slide(QPainter& painter, const host::Slide& slide, const QRectF& area, std::uint32_t background,
           std::uint32_t foreground) {
    painter.fillRect(area, QColor::fromRgb(background));
    if (slide.width < 1 || slide.height < 1) {
        return;
    }
    const double aspect = slide.aspect > 0 ? slide.aspect : static_cast<double>(slide.width) / slide.height;
    const double width = std::min(area.width(), area.height() * aspect);
    const double height = width / aspect;
    const QPointF corner(area.center().x() - width / 2, area.center().y() + height / 2);
    painter.setRenderHint(QPainter::Antialiasing, true);
    QPolygonF points;
    for (const host::SlideShape& shape : slide.shapes) {
        const QColor color = QColor::fromRgb(shape.color == 0   ? background
                                             : shape.color == 7 ? foreground
                                                                : AcCmEntityColor::lookUpRGB(shape.color));
        points.clear();
        for (const host::SlidePoint& point : slide.pointsOf(shape)) {
            points.append(corner + QPointF((point.x + 0.5) * width / slide.width,
                                           -(point.y + 0.5) * height / slide.height));
        }
        painter.setPen(QPen(color, 1));
        painter.setBrush(color);
        shape.kind == host::SlideShape::Kind::line ? painter.drawPolyline(points)
                                                   : painter.drawPolygon(points);
    }
}

} // namespace app::overlay
