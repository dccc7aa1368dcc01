// The looks that layers, linetypes and entities have while they are drawn: resolved once from the drawing's
// tables, then only compared and combined.
#pragma once

#include "host/font/font.h"
#include "host/gi/traits.h"

#include <memory>
#include <string>
#include <vector>

class AcDbDatabase;
class AcDbPolyline;

namespace host {

// A linetype. Lengths are in drawing units before any scale.
struct LinetypeLook {
    enum class Kind { byLayer, byBlock, pattern };

    struct Element {
        double length = 0; // positive: pen down; negative: pen up; zero: a dot
        // A text or shape set into the line where the element ends, moved by (offsetX, offsetY) along and
        // across it.
        enum class Inset { none, text, shape } inset = Inset::none;
        std::wstring text;
        int shapeNumber = 0;
        TextFormat format;       // height and font of the text, or the shape font
        double rotation = 0;     // radians
        bool isAbsolute = false; // the rotation is against the X axis, not against the line
        bool isUpright = false;  // turned about its middle where it would stand on its head
        double offsetX = 0, offsetY = 0;
    };

    Kind kind = Kind::pattern;
    std::vector<Element> elements; // none: a continuous line
    int tableIndex = 0;            // position in the drawing's table

    double patternLength() const;
    bool isContinuous() const { return kind == Kind::pattern && elements.empty(); }

    static const LinetypeLook& byLayer();
    static const LinetypeLook& byBlock();
    static const LinetypeLook& continuous();
};

struct LayerLook {
    std::wstring name = L"0";
    AcCmEntityColor color = colorOf(AcCmEntityColor::kACIforeground); // an index or a true colour
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLwDefault;
    const LinetypeLook* linetype = &LinetypeLook::continuous();
    bool isOff = false;
    bool isFrozen = false;
    bool isPlottable = true;
    bool isZero = false; // what lies on it in a block takes the layer of the block's reference
    int tableIndex = 0;  // position in the drawing's table

    static AcCmEntityColor colorOf(int index) {
        AcCmEntityColor color;
        color.setColorIndex(static_cast<Adesk::Int16>(index));
        return color;
    }
    // Layer 0 as a new drawing has it.
    static const LayerLook& zero();
};

// The traits a drawable can set, as they were set: by layer and by block not yet resolved.
struct TraitsState {
    AcCmEntityColor color;
    const LayerLook* layer = &LayerLook::zero();
    const LinetypeLook* linetype = &LinetypeLook::byLayer();
    double linetypeScale = 1;
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
    AcGiFillType fillType = kAcGiFillNever;
    double thickness = 0;
    Adesk::LongPtr marker = 0;

    bool operator==(const TraitsState&) const = default;
};

// The traits object given to drawables. What deals with object ids is left to the database, which knows them:
// setLayer and setLineType look the id up and set the state's pointers.
class DrawTraits : public AcGiDrawableTraits {
public:
    TraitsState& state() { return mState; }
    const TraitsState& state() const { return mState; }
    void setRegenType(AcGiRegenType type) { mRegenType = type; }

    void setColor(const Adesk::UInt16 color) final {
        mState.color.setColorIndex(static_cast<Adesk::Int16>(color));
    }
    void setTrueColor(const AcCmEntityColor& color) final { mState.color = color; }
    void setSelectionMarker(const Adesk::LongPtr marker) final { mState.marker = marker; }
    void setFillType(const AcGiFillType type) final { mState.fillType = type; }
    void setLineWeight(const AcDb::LineWeight weight) final { mState.lineWeight = weight; }
    void setLineTypeScale(double scale) final { mState.linetypeScale = scale > 0 ? scale : 1; }
    void setThickness(double thickness) final { mState.thickness = thickness; }

    Adesk::UInt16 color() const final { return static_cast<Adesk::UInt16>(mState.color.colorIndex()); }
    AcCmEntityColor trueColor() const final { return mState.color; }
    AcGiFillType fillType() const final { return mState.fillType; }
    AcDb::LineWeight lineWeight() const final { return mState.lineWeight; }
    double lineTypeScale() const final { return mState.linetypeScale; }
    double thickness() const final { return mState.thickness; }
    Adesk::LongPtr selectionMarker() const final { return mState.marker; }
    AcGiRegenType regenType() const final { return mRegenType; }

private:
    TraitsState mState;
    AcGiRegenType mRegenType = kAcGiStandardDisplay;
};

// A light polyline's geometry as it is drawn.
struct LightPolyline {
    struct Vertex {
        double x, y, bulge, startWidth, endWidth;
    };
    std::vector<Vertex> vertices; // in the object coordinate system of the normal
    bool isClosed = false;
    bool generatesLinetype = false; // the pattern runs over the vertices
    double elevation = 0;
    double thickness = 0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
};

// What drawing needs to know of the drawing an entity belongs to; the database implements it. Looks given out
// live as long as the source.
class DrawingSource {
public:
    virtual ~DrawingSource() = default;

    virtual std::unique_ptr<DrawTraits> makeTraits() = 0;
    // Fills in all of the polyline; vertices are replaced.
    virtual void readLightPolyline(const AcDbPolyline& polyline, LightPolyline& result) const = 0;
    virtual AcDbDatabase* database() const = 0;
    // Layer and linetype by their position in the drawing's tables, for proxy graphics; unknown positions
    // give layer 0 and by layer.
    virtual const LayerLook& layerAt(int tableIndex) = 0;
    virtual const LinetypeLook& linetypeAt(int tableIndex) = 0;
    // The drawing's global linetype scale and default lineweight.
    virtual double linetypeScale() const { return 1; }
    // Whether linetypes seen through a viewport are scaled as if they lay on the sheet.
    virtual bool scalesLinetypesToPaper() const { return true; }
    virtual AcDb::LineWeight defaultLineWeight() const { return AcDb::kLnWt025; }
    // Whether wide lines and areas are filled.
    virtual bool fillMode() const { return true; }
};

} // namespace host
