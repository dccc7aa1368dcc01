// Draws a scene into an image: what is smaller than a pixel as a dot, the rest from its kept geometry, which
// is made on the way as far as the time allows.
#pragma once

#include "app/canvas/raster.h"
#include "app/canvas/scene.h"
#include "app/canvas/viewmap.h"

namespace app {

/// Colours of the drawing area, 0x00RRGGBB.
struct CanvasLook {
    std::uint32_t background = 0xFF1F262E;
    std::uint32_t foreground = 0xFFFFFFFF;
    std::uint32_t highlight = 0xFF4CA6FF;
    double pixelRatio = 1; ///< device pixels a pixel
    bool showsLineWeights = false;
    int lockedFade = 0; ///< per cent of the background in what lies on locked layers
};

class Renderer {
public:
    Renderer(Scene& scene, const ViewMap& view, const CanvasLook& look)
        : mScene(scene), mView(view), mLook(look) {}

    /// Draws what lies in the rectangle over the image as it is. False when time ran out while geometry was
    /// made: dots stand for what is missing. `seconds` is what making geometry may take.
    bool draw(QImage& image, const QRect& clip, double seconds);
    /// One entity, as it is now, on top: dragged, or not in the drawing.
    void drawOnce(QImage& image, AcDbEntity& entity);

private:
    void draw(const Geometry& geometry, Raster& raster);
    void stroke(const SceneItem& item, double originX, double originY, Raster& raster) const;
    void polyline(std::span<const std::uint32_t> words, Raster& raster);
    void path(const KeptPrimitive& primitive, Raster& raster);
    void area(const KeptPrimitive& primitive, Raster& raster);
    void glyph(const KeptPrimitive& primitive, Raster& raster);
    void curve(const PixelPoint (&points)[4], Raster& raster) const;
    void setPen(const ScreenPen& pen, Raster& raster) const;
    std::uint32_t colorOf(bool isForeground, std::uint32_t color) const;
    PixelPoint at(std::uint32_t x, std::uint32_t y) const {
        return {mOriginX + static_cast<double>(floatOf(x)) * mScale,
                mOriginY - static_cast<double>(floatOf(y)) * mScale};
    }

    Scene& mScene;
    const ViewMap& mView;
    const CanvasLook& mLook;
    double mOriginX = 0, mOriginY = 0; ///< of the geometry that is drawn, pixels
    double mScale = 1;                 ///< pixels a unit
    double mChordTolerance = 0.2;      ///< pixels
    bool mIsHighlighted = false;
    bool mIsFaded = false;
    std::vector<PixelPoint> mPoints;
    std::vector<std::uint32_t> mEnds;
};

} // namespace app
