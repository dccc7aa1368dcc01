// What a drawing's space shows: every entity's box, colour and, once it was seen near enough, its geometry.
// Follows the drawing through its notifications: only what changed is made anew.
#pragma once

#include "app/canvas/displaytree.h"
#include "app/canvas/geometry.h"

#include "host/db/db.h"
#include "host/ge/box2d.h"
#include "host/gi/flatten.h"

#include <bit>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace app {

/// An entity of the scene, in drawing order.
struct SceneItem {
    AcDbStub* stub = nullptr;
    Geometry geometry;
    FloatBox box;
    std::uint32_t color = 0; ///< of a dot that stands for it; foreground: see isForeground
    bool isForeground : 1 = false;
    bool isHidden : 1 = false;    ///< erased, invisible, or on a layer that is off or frozen
    bool isUnbounded : 1 = false; ///< an infinite line
    bool isDependent : 1 = false; ///< drawn with other objects: a block's, a style's
    bool isHighlighted : 1 = false;
    bool isFaded : 1 = false; ///< on a locked layer
};

/// What has to be painted again.
struct SceneChange {
    bool everything = false;
    std::vector<host::Box2d> boxes; ///< world

    bool isEmpty() const { return !everything && boxes.empty(); }
};

class Scene {
public:
    /// Shows the current space. The database must outlive the scene.
    explicit Scene(AcDbDatabase& database);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    AcDbDatabase& database() const { return mDatabase; }
    AcDbObjectId space() const { return mSpace; }
    /// Takes in what changed in the drawing since the last call.
    SceneChange update();
    /// Forgets everything drawn.
    void regenerate();

    std::span<SceneItem> items() { return mItems; }
    const AcGePoint2d& origin() const { return mOrigin; }
    const PenTable& pens() const { return mPens; }
    FloatBox relative(const host::Box2d& box) const;
    host::Box2d absolute(const FloatBox& box) const;
    /// Box of all that is shown; empty for an empty drawing.
    host::Box2d extents() const;

    /// Calls visit(index) for items that may show in the box, in drawing order; of branches of the tree
    /// smaller than `smallest` for one only.
    template <class Visit>
    void search(const host::Box2d& box, double smallest, Visit visit) {
        collect(box, smallest);
        for (std::size_t word = 0; word < mMarked.size(); ++word) {
            for (std::uint64_t bits = mMarked[word]; bits != 0; bits &= bits - 1) {
                visit(word * 64 + static_cast<std::size_t>(std::countr_zero(bits)));
            }
            mMarked[word] = 0;
        }
    }

    /// The item's geometry is right for this scale.
    static bool isFit(const SceneItem& item, int level);
    /// Makes it so. What can't be drawn has empty geometry; see takeFaults().
    void build(SceneItem& item, double unitsPerPixel);
    /// Geometry of an entity that is made for one picture only: around `origin`, within `view`.
    Geometry drawnOnce(AcDbEntity& entity, const AcGePoint2d& origin, double unitsPerPixel,
                       const host::Box2d& view);
    static int levelOf(double unitsPerPixel);
    /// A line for each object that failed to draw since the last call; an object is told of once.
    std::vector<std::wstring> takeFaults() { return std::exchange(mFaults, {}); }

    /// Shows entities as selected, or no more; tells what has to be painted.
    SceneChange highlight(std::span<const AcDbObjectId> ids, bool on);
    /// Drops geometry outside of the view when all together takes too much.
    void trim(const host::Box2d& view);
    /// Bytes held beside the drawing itself.
    std::size_t bytes() const;

private:
    /// Notes the objects that the drawing tells of, to be looked at later.
    class Journal final : public AcDbDatabaseReactor {
    public:
        explicit Journal(AcDbDatabase& database) : mDatabase(database) { mDatabase.addReactor(this); }
        ~Journal() override { mDatabase.removeReactor(this); }
        Journal(const Journal&) = delete;
        Journal& operator=(const Journal&) = delete;
        void objectAppended(const AcDbDatabase*, const AcDbObject* object) override { note(object); }
        void objectModified(const AcDbDatabase*, const AcDbObject* object) override { note(object); }
        void objectErased(const AcDbDatabase*, const AcDbObject* object, bool) override { note(object); }
        std::vector<AcDbStub*> touched;

    private:
        void note(const AcDbObject* object) {
            AcDbStub* stub = object->objectId().stub();
            if (touched.empty() || touched.back() != stub) {
                touched.push_back(stub);
            }
        }
        AcDbDatabase& mDatabase;
    };

    static constexpr std::uint32_t none = ~std::uint32_t{0};

    void load();
    void loadItems();
    template <class Draw>
    void draw(AcDbEntity& entity, Draw draw);
    void measure(SceneItem& item);
    void look(SceneItem& item) const;
    bool isFrozenHere(AcDbObjectId layer) const;
    void pack();
    void collect(const host::Box2d& box, double smallest);
    bool isInTree(std::size_t index) const {
        return index / 64 < mInTree.size() && (mInTree[index / 64] >> (index % 64) & 1) != 0;
    }
    void mark(std::size_t index) { mMarked[index / 64] |= std::uint64_t{1} << (index % 64); }
    void forgetGeometry();
    void change(std::uint32_t index, SceneChange& change);
    void changed(AcDbStub* stub, SceneChange& change);
    void lookAgain(SceneChange& change);
    void blockChanged(AcDbStub* block, SceneChange& change);
    void append(AcDbStub* stub, SceneChange& change);
    void use(AcDbStub* block);
    bool isScaled(const AcDbEntity& entity);
    bool isScaledBlock(AcDbStub* block);
    host::Flattener& flattener(double unitsPerPixel, const host::Box2d* view);

    std::uint32_t indexOf(const AcDbStub* stub) const;
    void remember(std::uint32_t index);
    void rehash();

    AcDbDatabase& mDatabase;
    AcDbObjectId mSpace;
    AcDbObjectId mViewport; ///< the active one of a layout; null: the whole drawing is shown
    AcGePoint2d mOrigin;
    std::vector<SceneItem> mItems;
    DisplayTree mTree;
    std::vector<std::uint32_t> mRecent; ///< not in the tree
    std::vector<std::uint32_t> mTable;  ///< open addressing by stub
    std::vector<std::uint64_t> mInTree; ///< a bit an item: its box is the tree's
    std::vector<std::uint64_t> mMarked; ///< a bit an item, zero between searches
    std::unordered_set<AcDbStub*> mUsedBlocks;
    Journal mJournal;
    std::unordered_map<AcDbStub*, bool> mScaledBlocks; ///< what is in them is drawn for a scale
    PenTable mPens;
    GeometrySink mSink;
    std::unique_ptr<host::DrawingSource> mSource;
    std::unique_ptr<host::Flattener> mFlattener;
    int mFlattenerLevel = 0;
    std::size_t mGeometryBytes = 0;
    std::size_t mTrimAbove = 0; ///< bytes of geometry; what is in view may be more than the budget
    std::vector<std::wstring> mFaults;
    std::unordered_set<AcDbStub*> mFaulty;
};

} // namespace app
