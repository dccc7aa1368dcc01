// A small drawing for tests of the drawing interface: layers and linetypes given out by number, drawables
// made of functions, and a sink that keeps what it gets.
#pragma once

#include "host/gi/flatten.h"
#include "host/gi/gi.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// The real class belongs to the database, which these tests do without.
class AcDbObjectId {
public:
    int number = 0;
};

// A light polyline is only looked through by the source.
class AcDbPolyline {
public:
    host::LightPolyline geometry;
};

namespace host {

class TestSource : public DrawingSource {
public:
    // Layer and linetype 0 are layer 0 and continuous.
    std::vector<std::unique_ptr<LayerLook>> layers;
    std::vector<std::unique_ptr<LinetypeLook>> linetypes;
    double scale = 1;
    bool fills = true;

    TestSource() {
        addLayer(7).isZero = true;
        addLinetype({});
    }

    LayerLook& addLayer(int color) {
        auto layer = std::make_unique<LayerLook>();
        layer->color = LayerLook::colorOf(color);
        layer->tableIndex = static_cast<int>(layers.size());
        layers.push_back(std::move(layer));
        return *layers.back();
    }
    LinetypeLook& addLinetype(std::vector<double> lengths) {
        auto linetype = std::make_unique<LinetypeLook>();
        for (const double length : lengths) {
            LinetypeLook::Element element;
            element.length = length;
            linetype->elements.push_back(element);
        }
        linetype->tableIndex = static_cast<int>(linetypes.size());
        linetypes.push_back(std::move(linetype));
        return *linetypes.back();
    }

    std::unique_ptr<DrawTraits> makeTraits() override { return std::make_unique<Traits>(*this); }
    void readLightPolyline(const AcDbPolyline& polyline, LightPolyline& result) const override {
        result = polyline.geometry;
    }
    AcDbDatabase* database() const override { return nullptr; }
    const LayerLook& layerAt(int index) override {
        return *layers[index >= 0 && static_cast<std::size_t>(index) < layers.size()
                           ? static_cast<std::size_t>(index)
                           : 0];
    }
    const LinetypeLook& linetypeAt(int index) override {
        return index >= 0 && static_cast<std::size_t>(index) < linetypes.size()
                   ? *linetypes[static_cast<std::size_t>(index)]
                   : LinetypeLook::byLayer();
    }
    double linetypeScale() const override { return scale; }
    bool fillMode() const override { return fills; }

private:
    class Traits final : public DrawTraits {
    public:
        explicit Traits(TestSource& source) : mSource(source) {}
        void setLayer(const AcDbObjectId id) override { state().layer = &mSource.layerAt(id.number); }
        void setLineType(const AcDbObjectId id) override {
            state().linetype = &mSource.linetypeAt(id.number);
        }
        AcDbObjectId layerId() const override { return {state().layer->tableIndex}; }
        AcDbObjectId lineTypeId() const override { return {state().linetype->tableIndex}; }

    private:
        TestSource& mSource;
    };
};

// A drawable made of two functions.
class TestDrawable : public AcGiDrawable {
public:
    std::function<Adesk::UInt32(AcGiDrawableTraits&)> attributes;
    std::function<void(AcGiWorldDraw&)> drawing;
    std::function<void(AcGiViewportDraw&)> viewportDrawing; // when set, worldDraw asks for it

    explicit TestDrawable(std::function<void(AcGiWorldDraw&)> draw) : drawing(std::move(draw)) {}
    TestDrawable(std::function<Adesk::UInt32(AcGiDrawableTraits&)> set,
                 std::function<void(AcGiWorldDraw&)> draw)
        : attributes(std::move(set)), drawing(std::move(draw)) {}

    Adesk::Boolean isPersistent() const override { return false; }
    AcDbObjectId id() const override { return {}; }

protected:
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits* traits) override {
        return attributes ? attributes(*traits) : 0;
    }
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override {
        if (drawing)
            drawing(*draw);
        return !viewportDrawing;
    }
    void subViewportDraw(AcGiViewportDraw* draw) override { viewportDrawing(*draw); }
};

class KeepingSink : public PrimitiveSink {
public:
    struct Line {
        std::vector<AcGePoint3d> points;
        Pen pen;
    };
    struct Filled {
        std::vector<AcGePoint3d> points;
        std::vector<std::uint32_t> ends;
        FillRule rule;
        Pen pen;
    };
    std::vector<Line> lines;
    std::vector<Filled> areas;
    std::vector<AcGePoint3d> dots;
    std::vector<std::wstring> texts;
    std::vector<AcGePoint3d> textOrigins;
    std::vector<AcGeVector3d> textAxes;

    void polyline(std::span<const AcGePoint3d> points, const Pen& pen) override {
        lines.push_back({{points.begin(), points.end()}, pen});
    }
    void area(const Area& area, const Pen& pen) override {
        areas.push_back({{area.points.begin(), area.points.end()},
                         {area.contourEnds.begin(), area.contourEnds.end()},
                         area.rule,
                         pen});
    }
    void dot(const AcGePoint3d& point, const Pen&) override { dots.push_back(point); }
    void glyphs(const GlyphRun& run, const Pen&) override {
        std::wstring text;
        for (const PlacedGlyph& placed : run.text.glyphs)
            text += static_cast<wchar_t>(placed.glyph->character);
        texts.push_back(text);
        textOrigins.push_back(run.origin);
        textAxes.push_back(run.xAxis);
    }
    bool isEmpty() const { return lines.empty() && areas.empty() && dots.empty() && texts.empty(); }
};

// Draws one drawable and gives what came out of it.
inline KeepingSink flattened(TestSource& source, AcGiDrawable& drawable, const FlattenOptions& options = {}) {
    KeepingSink sink;
    Flattener flattener(source, sink, options);
    flattener.draw(drawable);
    return sink;
}

inline KeepingSink flattened(TestSource& source, std::function<void(AcGiWorldDraw&)> draw,
                             const FlattenOptions& options = {}) {
    TestDrawable drawable(std::move(draw));
    return flattened(source, drawable, options);
}

// The area enclosed by a filled area's contours by the non-zero or even-odd rule, where they do not cross.
inline double enclosed(const KeepingSink::Filled& area) {
    double sum = 0;
    std::size_t start = 0;
    for (const std::size_t end : area.ends) {
        for (std::size_t i = start; i < end; ++i) {
            const AcGePoint3d &a = area.points[i], &b = area.points[i + 1 < end ? i + 1 : start];
            sum += (a.x * b.y - b.x * a.y) / 2;
        }
        start = end;
    }
    return std::abs(sum);
}

} // namespace host
