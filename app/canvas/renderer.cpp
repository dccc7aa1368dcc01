#include "app/canvas/renderer.h"

#include <QElapsedTimer>
#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double dotBelow = 1.3;          ///< pixels: what is smaller is a dot
constexpr double coarseDotBelow = 2.6;    ///< the same among very many
constexpr std::size_t manyItems = 60'000; ///< in view: lines are drawn plain
constexpr std::size_t veryManyItems = 150'000;
constexpr double strokeBelow = 4.5; ///< pixels: what is smaller is a stroke along its box among very many
constexpr double tooFineForFloats = 2e6; ///< pixels: geometry this large is drawn from doubles
constexpr double fineChord = 0.2;        ///< pixels between a curve and its chords
constexpr double coarseChord = 0.5;      ///< the same among many
constexpr double legible = 4;            ///< pixels of a text height that are drawn as a text

} // namespace

std::uint32_t Renderer::colorOf(bool isForeground, std::uint32_t color) const {
    const std::uint32_t own = isForeground ? mLook.foreground : 0xFF000000 | color;
    if (!mIsFaded || mLook.lockedFade <= 0) {
        return own;
    }
    const auto fade = static_cast<std::uint32_t>(mLook.lockedFade);
    std::uint32_t mixed = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        const std::uint32_t channel =
            ((own >> shift & 0xFF) * (100 - fade) + (mLook.background >> shift & 0xFF) * fade) / 100;
        mixed |= channel << shift;
    }
    return mixed;
}

void Renderer::setPen(const ScreenPen& pen, Raster& raster) const {
    raster.setColor(mIsHighlighted     ? mLook.highlight
                    : pen.isBackground ? mLook.background
                                       : colorOf(pen.isForeground, pen.color));
    double width = mLook.pixelRatio;
    if (mLook.showsLineWeights && pen.lineWeight > 0) {
        constexpr double pixelsAHundredthMillimetre = 96 / 25.4 / 100;
        width = std::max(width, pen.lineWeight * pixelsAHundredthMillimetre * mLook.pixelRatio);
    }
    raster.setWidth(mIsHighlighted ? width * 2 : width);
}

bool Renderer::draw(QImage& image, const QRect& clip, double seconds) {
    Raster raster(image, clip);
    mScale = 1 / mView.unitsPerPixel;
    const host::Box2d box = mView.box(clip.left() - 2, clip.top() - 2, clip.right() + 3, clip.bottom() + 3);
    std::vector<std::uint32_t> visible;
    mScene.search(box, 0.7 * mView.unitsPerPixel,
                  [&](std::size_t index) { visible.push_back(static_cast<std::uint32_t>(index)); });
    raster.setSmooth(visible.size() < manyItems);
    mChordTolerance = visible.size() < manyItems ? fineChord : coarseChord;
    const double dotSize = visible.size() > veryManyItems ? coarseDotBelow : dotBelow;
    const int dotPixels = std::max(1, static_cast<int>(std::lround(mLook.pixelRatio)));
    const int level = Scene::levelOf(mView.unitsPerPixel);
    const double originX = mView.x(mScene.origin().x);
    const double originY = mView.y(mScene.origin().y);
    QElapsedTimer timer;
    timer.start();
    bool hasTime = true;
    bool isWhole = true;
    const std::span<SceneItem> items = mScene.items();
    for (std::size_t i = 0; i < visible.size(); ++i) {
        // Neighbours in the picture lie anywhere in memory, and waiting for it would cost more than drawing.
        constexpr std::size_t itemsAhead = 16;
        constexpr std::size_t geometryAhead = 8;
        if (i + itemsAhead < visible.size()) {
            const SceneItem* const next = &items[visible[i + itemsAhead]];
            __builtin_prefetch(next);
            __builtin_prefetch(next + 1);
            items[visible[i + geometryAhead]].geometry.prefetch();
        }
        SceneItem& item = items[visible[i]];
        if (item.isHidden) {
            continue;
        }
        const double size = item.isUnbounded
                                ? HUGE_VAL
                                : static_cast<double>(std::max(item.box.width(), item.box.height())) * mScale;
        mIsHighlighted = item.isHighlighted;
        mIsFaded = item.isFaded;
        const auto standIn = [&] {
            raster.setColor(mIsHighlighted ? mLook.highlight : colorOf(item.isForeground, item.color));
            const double x = originX + 0.5 * static_cast<double>(item.box.left + item.box.right) * mScale;
            const double y = originY - 0.5 * static_cast<double>(item.box.bottom + item.box.top) * mScale;
            dotPixels == 1 ? raster.dot(x, y) : raster.spot(x, y, dotPixels);
        };
        const bool isPoint = item.box.left == item.box.right && item.box.bottom == item.box.top;
        if (size < dotSize && (!isPoint || visible.size() > manyItems)) {
            standIn();
            continue;
        }
        raster.setDash(0);
        if (size < strokeBelow && visible.size() > veryManyItems) {
            stroke(item, originX, originY, raster);
            continue;
        }
        if (size > tooFineForFloats) {
            if (auto* entity = host::peek<AcDbEntity>(AcDbObjectId(item.stub))) {
                draw(mScene.drawnOnce(*entity, mView.centre, mView.unitsPerPixel, mView.box()), raster);
            }
            continue;
        }
        if (!Scene::isFit(item, level)) {
            hasTime = hasTime && static_cast<double>(timer.nsecsElapsed()) < seconds * 1e9;
            if (hasTime) {
                mScene.build(item, mView.unitsPerPixel);
            } else if (!item.geometry.isBuilt()) {
                isWhole = false;
                standIn();
                continue;
            } else {
                isWhole = false;
            }
        }
        draw(item.geometry, raster);
    }
    return isWhole;
}

void Renderer::stroke(const SceneItem& item, double originX, double originY, Raster& raster) const {
    raster.setColor(item.isHighlighted ? mLook.highlight : colorOf(item.isForeground, item.color));
    raster.setWidth(mLook.pixelRatio);
    const FloatBox& box = item.box;
    const PixelPoint low{originX + static_cast<double>(box.left) * mScale,
                         originY - static_cast<double>(box.bottom) * mScale};
    const PixelPoint high{originX + static_cast<double>(box.right) * mScale,
                          originY - static_cast<double>(box.top) * mScale};
    const double x = 0.5 * (low.x + high.x);
    const double y = 0.5 * (low.y + high.y);
    box.width() >= box.height() ? raster.line({low.x, y}, {high.x, y}) : raster.line({x, low.y}, {x, high.y});
}

void Renderer::drawOnce(QImage& image, AcDbEntity& entity) {
    Raster raster(image, image.rect());
    mScale = 1 / mView.unitsPerPixel;
    draw(mScene.drawnOnce(entity, mView.centre, mView.unitsPerPixel, mView.box()), raster);
}

void Renderer::draw(const Geometry& geometry, Raster& raster) {
    if (!geometry.isBuilt()) {
        return;
    }
    const AcGePoint2d origin = geometry.origin();
    mOriginX = mView.x(origin.x);
    mOriginY = mView.y(origin.y);
    geometry.forEach([&](const KeptPrimitive& primitive) {
        switch (primitive.kind) {
        case Primitive::polyline:
            setPen(mScene.pens()[primitive.pen], raster);
            polyline(primitive.words, raster);
            break;
        case Primitive::path:
            setPen(mScene.pens()[primitive.pen], raster);
            path(primitive, raster);
            break;
        case Primitive::dot: {
            setPen(mScene.pens()[primitive.pen], raster);
            const PixelPoint point = at(primitive.words[0], primitive.words[1]);
            raster.spot(point.x, point.y, std::max(2, static_cast<int>(2 * mLook.pixelRatio)));
            break;
        }
        case Primitive::area:
            setPen(mScene.pens()[primitive.pen], raster);
            area(primitive, raster);
            break;
        case Primitive::glyph:
            setPen(mScene.pens()[primitive.pen], raster);
            glyph(primitive, raster);
            break;
        case Primitive::clip: {
            mPoints.clear();
            for (std::size_t i = 0; i + 1 < primitive.words.size(); i += 2) {
                mPoints.push_back(at(primitive.words[i], primitive.words[i + 1]));
            }
            raster.pushClip(mPoints);
            break;
        }
        case Primitive::unclip:
            raster.popClip();
            break;
        }
    });
}

void Renderer::polyline(std::span<const std::uint32_t> words, Raster& raster) {
    PixelPoint last = at(words[0], words[1]);
    for (std::size_t i = 2; i + 1 < words.size(); i += 2) {
        const PixelPoint point = at(words[i], words[i + 1]);
        // What moves less than half a pixel is not seen, save at the end.
        if (i + 3 < words.size() && std::abs(point.x - last.x) + std::abs(point.y - last.y) < 0.5) {
            continue;
        }
        raster.line(last, point);
        last = point;
    }
}

void Renderer::curve(const PixelPoint (&points)[4], Raster& raster) const {
    // The chords of n parts of a cubic lie within (sqrt 3 / 18) / n^2 times the bend of its control polygon.
    const auto bendAt = [&](int i) { // its square
        const double x = points[i - 1].x - 2 * points[i].x + points[i + 1].x;
        const double y = points[i - 1].y - 2 * points[i].y + points[i + 1].y;
        return x * x + y * y;
    };
    const double bend = std::sqrt(std::max(bendAt(1), bendAt(2)));
    constexpr double share = 0.75;
    constexpr int mostParts = 2000;
    const int parts = static_cast<int>(std::clamp(std::ceil(std::sqrt(share * bend / mChordTolerance)), 1.0,
                                                  static_cast<double>(mostParts)));
    PixelPoint last = points[0];
    for (int i = 1; i <= parts; ++i) {
        const double t = static_cast<double>(i) / parts;
        const double s = 1 - t;
        const double a = s * s * s;
        const double b = 3 * s * s * t;
        const double c = 3 * s * t * t;
        const double d = t * t * t;
        const PixelPoint point{a * points[0].x + b * points[1].x + c * points[2].x + d * points[3].x,
                               a * points[0].y + b * points[1].y + c * points[2].y + d * points[3].y};
        raster.line(last, point);
        last = point;
    }
}

void Renderer::path(const KeptPrimitive& primitive, Raster& raster) {
    constexpr std::size_t verbsAWord = 16;
    const std::size_t verbWords = (primitive.count + verbsAWord - 1) / verbsAWord;
    std::size_t next = verbWords;
    const auto take = [&] {
        next += 2;
        return at(primitive.words[next - 2], primitive.words[next - 1]);
    };
    PixelPoint last;
    for (std::size_t i = 0; i < primitive.count; ++i) {
        const auto verb =
            static_cast<host::WorldPath::Verb>(primitive.words[i / verbsAWord] >> (2 * (i % verbsAWord)) & 3);
        if (verb == host::WorldPath::Verb::move) {
            last = take();
        } else if (verb == host::WorldPath::Verb::line) {
            const PixelPoint point = take();
            raster.line(last, point);
            last = point;
        } else {
            const PixelPoint first = take();
            const PixelPoint second = take();
            const PixelPoint end = take();
            curve({last, first, second, end}, raster);
            last = end;
        }
    }
}

void Renderer::area(const KeptPrimitive& primitive, Raster& raster) {
    mPoints.clear();
    const std::size_t first = 1 + primitive.count;
    for (std::size_t i = first; i + 1 < primitive.words.size(); i += 2) {
        mPoints.push_back(at(primitive.words[i], primitive.words[i + 1]));
    }
    raster.fill(mPoints, primitive.words.subspan(1, primitive.count), primitive.words[0] != 0);
}

/// Small ones are a line in the middle of their height.
void Renderer::glyph(const KeptPrimitive& primitive, Raster& raster) {
    const std::span<const std::uint32_t> words = primitive.words;
    const auto* glyph =
        std::bit_cast<const host::Glyph*>(words[0] | static_cast<std::uint64_t>(words[1]) << 32);
    const PixelPoint place = at(words[2], words[3]);
    const double ux = static_cast<double>(floatOf(words[4])) * mScale;
    const double uy = -static_cast<double>(floatOf(words[5])) * mScale;
    const double vx = static_cast<double>(floatOf(words[6])) * mScale;
    const double vy = -static_cast<double>(floatOf(words[7])) * mScale;
    const auto pixel = [&](double u, double v) {
        return PixelPoint{place.x + ux * u + vx * v, place.y + uy * u + vy * v};
    };
    const host::GlyphBox& box = glyph->box();
    if (std::hypot(vx, vy) < legible) {
        raster.setWidth(mLook.pixelRatio);
        raster.line(pixel(box.left, 0.5 * (box.bottom + box.top)),
                    pixel(box.right, 0.5 * (box.bottom + box.top)));
        return;
    }
    mPoints.clear();
    for (const host::GlyphPoint& point : glyph->polylinePoints()) {
        mPoints.push_back(pixel(static_cast<double>(point.x), static_cast<double>(point.y)));
    }
    if (glyph->filled) {
        raster.fill(mPoints, glyph->contourEnds(), true);
        return;
    }
    std::size_t start = 0;
    for (const std::size_t end : glyph->contourEnds()) {
        if (end - start == 1) {
            raster.line(mPoints[start], mPoints[start]);
        }
        for (std::size_t i = start + 1; i < end; ++i) {
            raster.line(mPoints[i - 1], mPoints[i]);
        }
        start = end;
    }
}

} // namespace app
