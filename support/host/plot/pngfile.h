// Raster images as PNG data. Line drawings have long runs of equal pixels, so that rows are stored unfiltered
// and packed by run lengths: several times as fast as a general encoder, and smaller.
#pragma once

#include <QImage>
#include <string>

namespace host {

// The image, in a 32-bit format without transparency, as the bytes of a PNG file; empty when memory is short.
std::string pngData(const QImage& image, double pixelsPerMillimetre);

} // namespace host
