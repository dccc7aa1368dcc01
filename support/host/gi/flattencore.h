// The state of flattening (transforms, looks, nesting) and the primitives' way through it.
#pragma once

#include "host/gi/dashes.h"
#include "host/gi/flatten.h"
#include "host/gi/geometryadapter.h"

#include <unordered_set>
#include <vector>

namespace host {

class FlattenCore {
public:
    FlattenCore(DrawingSource& source, PrimitiveSink& sink, const FlattenOptions& options);
    ~FlattenCore();

    // The Core of GeometryAdapter. Points are in the coordinates of the innermost transform.
    const AcGeMatrix3d& transform() const { return mTransforms.back().matrix; }
    void pushTransform(const AcGeMatrix3d& matrix);
    bool popTransform();
    void arc(const Arc& arc, AcGiArcType type, bool isWhole);
    void polyline(std::span<const AcGePoint3d> points, Adesk::LongPtr marker,
                  const AcGeVector3d* normal = nullptr);
    void polygon(std::span<const AcGePoint3d> points);
    void polyPolygon(std::span<const Adesk::UInt32> counts, const AcGePoint3d* points,
                     const AcCmEntityColor* fillColors);
    void lightPolyline(const AcDbPolyline& polyline, Adesk::UInt32 fromIndex, Adesk::UInt32 segmentCount);
    void points(std::span<const AcGePoint3d> points);
    void mesh(std::size_t rows, std::size_t columns, const AcGePoint3d* points, const AcGiEdgeData* edges,
              const AcGiFaceData* faces);
    void shell(std::span<const AcGePoint3d> points, std::span<const Adesk::Int32> faceList,
               const AcGiEdgeData* edges, const AcGiFaceData* faces);
    void simpleText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    double height, double width, double oblique, std::wstring_view text);
    void styledText(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                    std::wstring_view text, bool raw, const AcGiTextStyle& style);
    void infiniteLine(const AcGePoint3d& first, const AcGePoint3d& second, bool isBothWays);
    void drawChild(AcGiDrawable& drawable);
    void pushClip(const AcGiClipBoundary& boundary);
    void popClip();
    void worldLine(std::span<const AcGePoint3d> points);
    void beginModelView(const AcGeMatrix3d& modelToPaper, std::span<const AcGePoint3d> outline);
    void hideLayer() { mHiddenLayers.insert(&layerOf(mTraits->state())); }
    void endModelView();
    bool isAborted() const { return mIsAborted; }

    AcGiWorldDraw& worldDraw();
    DrawTraits& traits() const { return *mTraits; }
    const FlattenOptions& options() const { return mOptions; }
    DrawingSource& source() const { return mSource; }

private:
    friend class FlattenWorldDraw;
    friend class FlattenViewportDraw;

    struct Transform {
        AcGeMatrix3d matrix;
        double scale = 1; // the most by which it lengthens
        bool isIdentity = true;
    };
    // What by block and layer 0 mean at the present depth.
    struct BlockLook {
        AcCmEntityColor color = LayerLook::colorOf(AcCmEntityColor::kACIforeground);
        const LinetypeLook* linetype = &LinetypeLook::continuous();
        AcDb::LineWeight lineWeight = AcDb::kLnWtByLwDefault;
        const LayerLook* layer = nullptr; // null outside blocks
    };

    const LayerLook& layerOf(const TraitsState& state) const;
    AcCmEntityColor colorOf(const TraitsState& state) const;
    const LinetypeLook& linetypeOf(const TraitsState& state) const;
    AcDb::LineWeight lineWeightOf(const TraitsState& state) const; // may still be the default
    BlockLook resolved(const TraitsState& state) const;
    bool isShown(const LayerLook& layer) const;
    bool isFrozen(const LayerLook& layer) const {
        return layer.isFrozen || (!mHiddenLayers.empty() && mHiddenLayers.contains(&layer));
    }
    void drawWith(AcGiDrawable& drawable, Adesk::UInt32 flags);

    // Sets the pen and the linetype for a primitive; false when nothing is to be drawn.
    bool prepare();
    bool toWorld(std::span<const AcGePoint3d> points); // into mWorld; false when a point is not finite
    double localDeviation() const;

    void stroke(std::span<const AcGePoint3d> points);
    void strokeDashed(std::span<const AcGePoint3d> points);
    void strokeContinuous(std::span<const AcGePoint3d> points);
    void strokeArc(const Arc& arc);
    void fill(std::span<const AcGePoint3d> points, std::span<const std::uint32_t> contourEnds, FillRule rule);
    void inset(const RunCutter& run, const DashLayout::InsetPlace& place);
    void extrude(std::span<const AcGePoint3d> points, const AcGeVector3d& normal, double thickness);
    void face(std::span<const AcGePoint3d> points, const AcCmEntityColor* color,
              const std::function<bool(std::size_t)>& isEdgeShown);
    void glyphs(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                const ShapedText& text);

    // Light polylines.
    void narrowPolyline(std::size_t from, std::size_t count);
    void plainPolyline(std::size_t from, std::size_t count);
    void widePolyline(std::size_t from, std::size_t count);
    void appendSegment(std::size_t index, std::vector<RunPoint>& run) const;
    void wideRun(std::span<const RunPoint> run, bool isClosed);
    void strip(std::span<const RunPoint> run, bool isClosed);
    const LightPolyline::Vertex& vertexAfter(std::size_t index) const;

    DrawingSource& mSource;
    PrimitiveSink& mSink;
    FlattenOptions mOptions;
    std::unique_ptr<DrawTraits> mTraits;
    std::vector<Transform> mTransforms;
    BlockLook mBlock;
    int mDepth = 0;
    std::size_t mPrimitiveCount = 0;
    bool mIsAborted = false;

    Pen mPen;
    const LinetypeLook* mLinetype = &LinetypeLook::continuous();
    double mLinetypeScale = 1;
    double mViewLinetypeScale = 1; // of the model seen through a viewport
    std::unordered_set<const LayerLook*> mHiddenLayers;

    // Kept to spare allocations.
    std::vector<AcGePoint3d> mWorld, mChords;
    std::vector<RunPoint> mRun, mPiece;
    std::vector<std::uint32_t> mContourEnds;
    WorldPath mPath;
    LightPolyline mLightPolyline;

    std::unique_ptr<class FlattenWorldDraw> mWorldDraw;
    std::unique_ptr<class FlattenViewportDraw> mViewportDraw;
};

} // namespace host
