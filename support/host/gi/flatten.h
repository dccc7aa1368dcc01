// Drawing turned into primitives: gives drawables a world draw to draw with and hands what they draw, in
// world coordinates and with resolved looks, to a sink.
#pragma once

#include "host/gi/looks.h"
#include "host/gi/primitives.h"
#include "host/gi/worlddraw.h"

#include <functional>
#include <memory>
#include <optional>

namespace host {

struct FlattenOptions {
    AcGiRegenType regenType = kAcGiStandardDisplay;
    bool isPlot = false;         // layers that are not to be plotted are left out
    double deviation = 0.01;     // of chords from curves, drawing units
    double curveDeviation = 0;   // of cubic curves from arcs; 0: right at any scale
    double dashResolution = 0;   // linetype patterns shorter than this are drawn continuous
    bool drawsThickness = false; // extrusions are drawn as well; seen from above they add nothing
    // Infinite lines are drawn as far as they pass this box, or not at all.
    struct Box {
        AcGePoint3d min, max;
    };
    std::optional<Box> view;
    // Drawing stops after this many primitives (dashes and glyphs count): a drawing of blocks in blocks can
    // ask for any number.
    std::size_t primitiveLimit = 50'000'000;
    std::function<bool()> isAborted; // asked once a drawable
};

class FlattenCore;

// Source and sink must outlive it. It may be used for any number of drawables.
class Flattener {
public:
    Flattener(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options);
    ~Flattener();
    Flattener(const Flattener&) = delete;
    Flattener& operator=(const Flattener&) = delete;

    void draw(AcGiDrawable& drawable);
    // Applied to what is drawn from now on, from the identity.
    void setTransform(const AcGeMatrix3d& transform);

    // For direct drawing without a drawable.
    AcGiWorldDraw& worldDraw();
    DrawTraits& traits();

    // Drawing was stopped by the limit or by isAborted.
    bool isAborted() const;

private:
    std::unique_ptr<FlattenCore> mCore;
};

} // namespace host
