#include "host/plot/imagesink.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double farthest = 1e5; // pixels; beyond it the rasteriser loses precision
constexpr std::size_t mostLines = 4096;

QImage blank(const Sheet& sheet, double pixelsPerMillimetre) {
    const auto pixels = [&](double millimetres) {
        return std::max(1, static_cast<int>(std::lround(millimetres * pixelsPerMillimetre)));
    };
    QImage image(pixels(sheet.width), pixels(sheet.height), QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

} // namespace

ImageSink::ImageSink(const Sheet& sheet, int longSide, bool hasLineWeights)
    : m_image(blank(sheet, longSide / std::max(sheet.width, sheet.height))), m_painter(&m_image),
      m_map(sheet, longSide / std::max(sheet.width, sheet.height), true),
      m_pixelsPerMillimetre(longSide / std::max(sheet.width, sheet.height)),
      m_hasLineWeights(hasLineWeights) {
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_pen.setCapStyle(Qt::FlatCap);
    m_pen.setJoinStyle(Qt::BevelJoin);
    m_painter.setPen(m_pen);
}

ImageSink::~ImageSink() {
    m_painter.end();
}

QPointF ImageSink::at(const AcGePoint3d& point) const {
    return {std::clamp(m_map.x(point.x), -farthest, farthest),
            std::clamp(m_map.y(point.y), -farthest, farthest)};
}

void ImageSink::setPen(const Pen& pen) {
    const std::uint32_t color = paperColor(pen);
    const double width = std::max(paperWidth(pen, m_hasLineWeights) * m_pixelsPerMillimetre, 1.0);
    if (color == m_color && width == m_width)
        return;
    flush();
    m_color = color;
    m_width = width;
    m_pen.setColor(QColor::fromRgb(color));
    m_pen.setWidthF(width);
    m_painter.setPen(m_pen);
}

void ImageSink::flush() {
    if (!m_lines.empty())
        m_painter.drawLines(m_lines.data(), static_cast<int>(m_lines.size()));
    m_lines.clear();
}

void ImageSink::polyline(std::span<const AcGePoint3d> points, const Pen& pen) {
    setPen(pen);
    if (points.size() == 2) {
        m_lines.emplace_back(at(points[0]), at(points[1]));
        if (m_lines.size() >= mostLines)
            flush();
        return;
    }
    flush();
    // Points closer than a tenth of a pixel to the one before are left out.
    QPolygonF polygon;
    polygon.reserve(static_cast<int>(points.size()));
    for (const AcGePoint3d& point : points) {
        const QPointF next = at(point);
        if (polygon.isEmpty() || (next - polygon.last()).manhattanLength() > 0.1)
            polygon.append(next);
    }
    if (polygon.size() > 1)
        m_painter.drawPolyline(polygon);
    else
        dot(points.front(), pen);
}

void ImageSink::area(const Area& area, const Pen& pen) {
    flush();
    QPainterPath path;
    path.setFillRule(area.rule == FillRule::evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
    std::size_t start = 0;
    for (const std::size_t end : area.contourEnds) {
        for (std::size_t i = start; i < end; ++i)
            i == start ? path.moveTo(at(area.points[i])) : path.lineTo(at(area.points[i]));
        path.closeSubpath();
        start = end;
    }
    m_painter.fillPath(path, QColor::fromRgb(paperColor(pen)));
}

void ImageSink::dot(const AcGePoint3d& point, const Pen& pen) {
    setPen(pen);
    flush();
    const QPointF half(m_width / 2, m_width / 2), center = at(point);
    m_painter.fillRect(QRectF(center - half, center + half), m_pen.color());
}

void ImageSink::pushClip(std::span<const AcGePoint3d> polygon) {
    flush();
    QPolygonF corners;
    for (const AcGePoint3d& corner : polygon)
        corners.append(at(corner));
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    m_painter.save();
    m_painter.setClipPath(path, Qt::IntersectClip);
}

void ImageSink::popClip() {
    flush();
    m_painter.restore();
    m_painter.setPen(m_pen);
}

const QImage& ImageSink::image() {
    flush();
    return m_image;
}

} // namespace host
