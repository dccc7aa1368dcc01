// Draws antialiased lines with round ends into the pixels of an image: a pixel is covered by how near its
// centre lies to the line. Several times as fast as filling the line's outline.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

struct PixelBox { // pixels from left to before right, from top to before bottom
    int left = 0, top = 0, right = 0, bottom = 0;
};

class LineRaster {
public:
    // Pixels are 0x00RRGGBB, rowLength of them from one row to the next; they must outlive it.
    LineRaster(std::uint32_t* pixels, std::size_t rowLength, const PixelBox& bounds)
        : mPixels(pixels), mRowLength(rowLength), mBounds(bounds) {}

    const PixelBox& bounds() const { return mBounds; }
    void setBounds(const PixelBox& bounds) { mBounds = bounds; }
    void setPen(std::uint32_t color, double width) {
        mColor = color;
        mHalfWidth = width / 2;
    }
    // Pixel coordinates; equal ends draw a dot.
    void line(double x0, double y0, double x1, double y1);

private:
    // A line with its longer extension along the first axis.
    struct Segment {
        double u0, v0, du, dv, length;
    };
    template <bool isSteep>
    void draw(const Segment& segment);
    void cover(std::uint32_t& pixel, double coverage) const;

    std::uint32_t* mPixels;
    std::size_t mRowLength;
    PixelBox mBounds;
    std::uint32_t mColor = 0;
    double mHalfWidth = 0.5;
};

} // namespace host
