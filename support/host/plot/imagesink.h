// Draws primitives into a raster image on white paper.
#pragma once

#include "host/plot/sheet.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <filesystem>
#include <optional>
#include <vector>

namespace host {

class ImageSink final : public PrimitiveSink {
public:
    // longSide: pixels of the image's longer side.
    ImageSink(const Sheet& sheet, int longSide, bool hasLineWeights);
    ~ImageSink() override;

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void dot(const AcGePoint3d& point, const Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

    const QImage& image();
    double pixelsPerMillimetre() const { return m_pixelsPerMillimetre; }

private:
    void setPen(const Pen& pen);
    void flush(); // draws the lines collected
    QPointF at(const AcGePoint3d& point) const;

    QImage m_image;
    QPainter m_painter;
    SheetMap m_map;
    double m_pixelsPerMillimetre;
    bool m_hasLineWeights;
    std::uint32_t m_color = 0;
    double m_width = 0;
    QPen m_pen;
    std::vector<QLineF> m_lines;
};

} // namespace host
