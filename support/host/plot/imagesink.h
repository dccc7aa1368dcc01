// Draws primitives into a raster image on white paper.
#pragma once

#include "host/plot/lineraster.h"
#include "host/plot/sheet.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <filesystem>
#include <vector>

namespace host {

class ImageSink final : public PrimitiveSink {
public:
    // longSide: pixels of the image's longer side.
    ImageSink(const Sheet& sheet, int longSide, const PaperLook& look);
    ~ImageSink() override;

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override;
    void area(const Area& area, const Pen& pen) override;
    void dot(const AcGePoint3d& point, const Pen& pen) override;
    void pushClip(std::span<const AcGePoint3d> polygon) override;
    void popClip() override;

    const QImage& image() const { return mImage; }
    double pixelsPerMillimetre() const { return mPixelsPerMillimetre; }

private:
    void setPen(const Pen& pen);
    void line(const AcGePoint3d& from, const AcGePoint3d& to);
    QPointF at(const AcGePoint3d& point) const;

    struct Clip {
        PixelBox outer; // of lines, outside it
        bool isBox;
    };

    QImage mImage;
    LineRaster mRaster;
    QPainter mPainter;
    SheetMap mMap;
    double mPixelsPerMillimetre;
    PaperLook mLook;
    std::vector<Clip> mClips;
    int mOddClips = 0; // that are no boxes
};

} // namespace host
