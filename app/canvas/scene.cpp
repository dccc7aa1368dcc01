#include "app/canvas/scene.h"

#include "host/db/dbents.h"
#include "host/db/dbsortents.h"
#include "host/db/drawingsource.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace app {
namespace {

using host::Box2d;
using host::peek;

constexpr double chordsWithin = 0.25;  ///< pixels, of curves that are dashed
constexpr double shortestDashes = 3.0; ///< pixels a pattern must have to be drawn
constexpr std::size_t fewRecent = 2048;
// Geometry beside the hundred bytes that item, tree and table take, and what any drawing may have.
constexpr std::size_t budgetAnItem = 96;
constexpr std::size_t leastBudget = std::size_t{48} << 20;

const Box2d everywhere{{-HUGE_VAL, -HUGE_VAL}, {HUGE_VAL, HUGE_VAL}};

bool followsOthers(const AcDbEntity& entity) {
    const std::string& name = entity.dxfRecordName();
    return name == "INSERT" || name == "DIMENSION" || name == "ACAD_TABLE" || name == "MULTILEADER" ||
           name == "LEADER" || name == "TOLERANCE" || name == "VIEWPORT";
}

/// Its frame follows its layer, what it shows does not.
bool isViewport(const AcDbEntity& entity) {
    return entity.isA() == AcDbViewport::desc();
}

bool isInfinite(const AcDbEntity& entity) {
    return entity.dxfRecordName() == "XLINE" || entity.dxfRecordName() == "RAY";
}

/// Layers, linetypes, styles: what many entities' looks follow.
bool isLook(const AcDbObject& object) {
    const std::string& name = object.dxfRecordName();
    return AcDbLayerTableRecord::cast(&object) != nullptr ||
           AcDbLinetypeTableRecord::cast(&object) != nullptr || name.ends_with("STYLE") ||
           name == "SORTENTSTABLE" || name.ends_with("DEF") || name.ends_with("DEFINITION");
}

/// Drawn by lines, whole curves and glyphs alone.
bool isPlain(const AcDbEntity& entity) {
    const AcRxClass* kind = entity.isA();
    if (kind == AcDbPolyline::desc()) {
        return !static_cast<const AcDbPolyline&>(entity).hasWidth();
    }
    return kind == AcDbLine::desc() || kind == AcDbCircle::desc() || kind == AcDbArc::desc() ||
           kind == AcDbText::desc() || kind == AcDbPoint::desc() || entity.dxfRecordName() == "ATTRIB";
}

Box2d boxOf(AcDbEntity& entity) {
    const host::ReadAccess access(entity);
    AcDbExtents extents;
    try {
        if (entity.getGeomExtents(extents) != Acad::eOk && host::drawnExtents(entity, extents) != Acad::eOk) {
            return {};
        }
    } catch (const std::exception&) {
        return {}; // a module's class; what it cannot measure is not seen
    }
    return {{extents.minPoint().x, extents.minPoint().y}, {extents.maxPoint().x, extents.maxPoint().y}};
}

std::size_t hashOf(const AcDbStub* stub) {
    return static_cast<std::size_t>(std::bit_cast<std::uint64_t>(stub) * 0x9E3779B97F4A7C15U >> 16);
}

} // namespace

Scene::Scene(AcDbDatabase& database)
    : mDatabase(database), mSpace(database.currentSpaceId()), mJournal(database), mSink(mPens) {
    load();
}

Scene::~Scene() = default;

void Scene::load() {
    mSpace = mDatabase.currentSpaceId();
    mViewport = mDatabase.activeViewportId();
    mItems.clear();
    mRecent.clear();
    mUsedBlocks.clear();
    mGeometryBytes = 0;
    mSource.reset();
    mFlattener.reset();
    mJournal.touched.clear();
    mScaledBlocks.clear();
    loadItems();
    rehash();
    pack();
}

void Scene::loadItems() {
    const auto* block = peek<AcDbBlockTableRecord>(mSpace);
    if (block == nullptr) {
        return;
    }
    std::vector<host::Placed> placed = mDatabase.impl().places.of(mSpace).search(everywhere);
    if (host::sortentsOf(*block) != nullptr) {
        std::unordered_map<AcDbStub*, std::size_t> order;
        const std::vector<AcDbStub*> stubs = host::drawOrder(*block);
        for (std::size_t i = 0; i < stubs.size(); ++i) {
            order.emplace(stubs[i], i);
        }
        std::sort(placed.begin(), placed.end(), [&](const host::Placed& a, const host::Placed& b) {
            return order[a.stub] < order[b.stub];
        });
    }
    Box2d whole;
    for (const host::Placed& place : placed) {
        if (!place.box.isEmpty()) {
            whole.add(place.box);
        }
    }
    mOrigin = whole.isEmpty() ? AcGePoint2d() : whole.center();
    mItems.reserve(placed.size() + placed.size() / 16 + 64);
    for (const host::Placed& place : placed) {
        SceneItem& item = mItems.emplace_back();
        item.stub = place.stub;
        item.isUnbounded = place.box.isEmpty();
        item.box = place.box.isEmpty() ? FloatBox() : relative(place.box);
        look(item);
    }
}

/// Colour and visibility, from the entity and the tables.
void Scene::look(SceneItem& item) const {
    const auto* entity = peek<AcDbEntity>(AcDbObjectId(item.stub));
    item.isHidden = entity == nullptr;
    if (entity == nullptr) {
        return;
    }
    const host::ReadAccess access(*entity);
    item.isDependent = followsOthers(*entity);
    const auto* layer = peek<AcDbLayerTableRecord>(entity->layerId());
    item.isHidden =
        entity->visibility() == AcDb::kInvisible ||
        (layer != nullptr && ((layer->isFrozen() && !isViewport(*entity)) ||
                              (layer->isOff() && !item.isDependent) || isFrozenHere(entity->layerId())));
    AcCmEntityColor color = entity->entityColor();
    if (color.isByLayer() && layer != nullptr) {
        color = layer->entityColor();
    }
    item.isForeground = color.isByBlock() || color.isForeground();
    item.color = item.isForeground ? 0 : color.trueColor();
    item.isFaded = layer != nullptr && layer->isLocked();
    if (entity->isA() == AcDbBlockReference::desc()) {
        const_cast<Scene*>(this)->use(
            static_cast<const AcDbBlockReference*>(entity)->blockTableRecord().stub());
    }
}

/// In the viewport that is worked in.
bool Scene::isFrozenHere(AcDbObjectId layer) const {
    const auto* viewport = peek<AcDbViewport>(mViewport);
    if (viewport == nullptr) {
        return false;
    }
    const host::ReadAccess access(*viewport);
    return viewport->isLayerFrozenInViewport(layer);
}

/// Notes a block that is shown, with the blocks in it.
void Scene::use(AcDbStub* block) {
    if (block == nullptr || !mUsedBlocks.insert(block).second) {
        return;
    }
    const auto* record = peek<AcDbBlockTableRecord>(AcDbObjectId(block));
    for (AcDbStub* stub : record != nullptr ? record->entities() : std::vector<AcDbStub*>()) {
        if (const auto* reference = peek<AcDbBlockReference>(AcDbObjectId(stub))) {
            const host::ReadAccess access(*reference);
            use(reference->blockTableRecord().stub());
        }
    }
}

/// Whether the primitives depend on the scale: the gaps of a linetype, and chords of what is not given as a
/// curve.
bool Scene::isScaled(const AcDbEntity& entity) {
    const host::ReadAccess access(entity);
    if (entity.isA() == AcDbBlockReference::desc()) {
        const auto& reference = static_cast<const AcDbBlockReference&>(entity);
        if (isScaledBlock(reference.blockTableRecord().stub())) {
            return true;
        }
    } else if (!isPlain(entity)) {
        return true;
    }
    AcDbObjectId linetype = entity.linetypeId();
    if (linetype.isNull() || linetype == mDatabase.byLayerLinetype()) {
        const auto* layer = peek<AcDbLayerTableRecord>(entity.layerId());
        linetype = layer != nullptr ? layer->linetypeObjectId() : AcDbObjectId();
    }
    const auto* record = peek<AcDbLinetypeTableRecord>(linetype);
    return record != nullptr && !record->dashes().empty();
}

bool Scene::isScaledBlock(AcDbStub* block) {
    const auto [found, added] = mScaledBlocks.try_emplace(block, false);
    if (added) {
        bool patterned = false;
        const auto* record = peek<AcDbBlockTableRecord>(AcDbObjectId(block));
        for (AcDbStub* stub : record != nullptr ? record->entities() : std::vector<AcDbStub*>()) {
            const auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            if (entity != nullptr && isScaled(*entity)) {
                patterned = true;
                break;
            }
        }
        mScaledBlocks[block] = patterned;
        return patterned;
    }
    return found->second;
}

void Scene::measure(SceneItem& item) {
    auto* entity = peek<AcDbEntity>(AcDbObjectId(item.stub));
    item.isUnbounded = entity != nullptr && isInfinite(*entity);
    const Box2d box = entity != nullptr && !item.isUnbounded ? boxOf(*entity) : Box2d();
    item.box = box.isEmpty() ? FloatBox() : relative(box);
}

FloatBox Scene::relative(const Box2d& box) const {
    constexpr float most = 1e30F;
    const auto down = [](double value) {
        const auto near = static_cast<float>(std::clamp<double>(value, -most, most));
        return near > value ? std::nextafterf(near, -most) : near;
    };
    const auto up = [](double value) {
        const auto near = static_cast<float>(std::clamp<double>(value, -most, most));
        return near < value ? std::nextafterf(near, most) : near;
    };
    return {down(box.minimum.x - mOrigin.x), down(box.minimum.y - mOrigin.y), up(box.maximum.x - mOrigin.x),
            up(box.maximum.y - mOrigin.y)};
}

Box2d Scene::absolute(const FloatBox& box) const {
    return {{mOrigin.x + static_cast<double>(box.left), mOrigin.y + static_cast<double>(box.bottom)},
            {mOrigin.x + static_cast<double>(box.right), mOrigin.y + static_cast<double>(box.top)}};
}

Box2d Scene::extents() const {
    Box2d whole;
    for (const SceneItem& item : mItems) {
        if (!item.isHidden && !item.box.isEmpty()) {
            whole.add(absolute(item.box));
        }
    }
    return whole;
}

void Scene::pack() {
    std::vector<FloatBox> boxes(mItems.size());
    mRecent.clear();
    mInTree.assign(mItems.size() / 64 + 1, 0);
    for (std::uint32_t i = 0; i < mItems.size(); ++i) {
        const SceneItem& item = mItems[i];
        boxes[i] = item.box;
        if (!item.box.isEmpty()) {
            mInTree[i / 64] |= std::uint64_t{1} << (i % 64);
        }
        if (item.isUnbounded) {
            mRecent.push_back(i);
        }
    }
    mTree = DisplayTree(boxes);
    mMarked.assign(mItems.size() / 64 + 1, 0);
}

void Scene::collect(const Box2d& box, double smallest) {
    const FloatBox around = relative(box);
    mMarked.resize(mItems.size() / 64 + 1);
    // Items are far apart in memory: those of whole leaves need not be looked at.
    mTree.search(around, static_cast<float>(smallest), [&](std::uint32_t index, bool whole) {
        if (isInTree(index) && (whole || mItems[index].box.touches(around))) {
            mark(index);
        }
    });
    for (const std::uint32_t index : mRecent) {
        const SceneItem& item = mItems[index];
        if (item.isUnbounded || (!isInTree(index) && item.box.touches(around))) {
            mark(index);
        }
    }
}

// The table of stubs.

void Scene::rehash() {
    std::size_t size = 64;
    while (size < mItems.size() * 3 / 2 + 64) {
        size *= 2;
    }
    mTable.assign(size, none);
    for (std::uint32_t i = 0; i < mItems.size(); ++i) {
        remember(i);
    }
}

void Scene::remember(std::uint32_t index) {
    const std::size_t mask = mTable.size() - 1;
    std::size_t at = hashOf(mItems[index].stub) & mask;
    while (mTable[at] != none) {
        at = (at + 1) & mask;
    }
    mTable[at] = index;
}

std::uint32_t Scene::indexOf(const AcDbStub* stub) const {
    const std::size_t mask = mTable.size() - 1;
    for (std::size_t at = hashOf(stub) & mask; mTable[at] != none; at = (at + 1) & mask) {
        if (mItems[mTable[at]].stub == stub) {
            return mTable[at];
        }
    }
    return none;
}

// Changes.

SceneChange Scene::update() {
    SceneChange change;
    if (mDatabase.currentSpaceId() != mSpace || mDatabase.activeViewportId() != mViewport) {
        load();
        change.everything = true;
        return change;
    }
    if (mJournal.touched.empty()) {
        return change;
    }
    const std::vector<AcDbStub*> touched = std::exchange(mJournal.touched, {});
    std::unordered_set<AcDbStub*> seen;
    for (AcDbStub* stub : touched) {
        if (seen.insert(stub).second) {
            changed(stub, change);
        }
    }
    if (mRecent.size() > std::max(fewRecent, mItems.size() / 16)) {
        pack();
    }
    return change;
}

void Scene::changed(AcDbStub* stub, SceneChange& change) {
    if (const std::uint32_t index = indexOf(stub); index != none) {
        this->change(index, change);
        return;
    }
    const auto* object = peek<AcDbObject>(AcDbObjectId(stub), true);
    if (object == nullptr) {
        return;
    }
    if (mViewport.stub() == stub) { // its frozen layers may be others
        lookAgain(change);
        return;
    }
    if (const auto* entity = AcDbEntity::cast(object)) {
        const AcDbObjectId owner = entity->ownerId();
        if (owner == mSpace) {
            append(stub, change);
        } else if (peek<AcDbBlockTableRecord>(owner, true) != nullptr) {
            blockChanged(owner.stub(), change);
        } else if (!owner.isNull() && owner.stub() != stub) {
            changed(owner.stub(), change); // a vertex's polyline, an attribute's reference
        }
        return;
    }
    if (AcDbBlockTableRecord::cast(object) != nullptr) {
        blockChanged(stub, change);
    } else if (isLook(*object)) {
        lookAgain(change);
    }
}

void Scene::lookAgain(SceneChange& change) {
    for (SceneItem& item : mItems) {
        look(item);
    }
    forgetGeometry();
    mScaledBlocks.clear();
    change.everything = true;
}

/// What shows a block is measured and drawn anew.
void Scene::blockChanged(AcDbStub* block, SceneChange& change) {
    if (mUsedBlocks.count(block) == 0) {
        return;
    }
    for (std::uint32_t i = 0; i < mItems.size(); ++i) {
        if (mItems[i].isDependent) {
            this->change(i, change);
        }
    }
    mUsedBlocks.erase(block);
    mScaledBlocks.clear();
    use(block); // blocks that it refers to now
}

void Scene::change(std::uint32_t index, SceneChange& change) {
    SceneItem& item = mItems[index];
    if (item.isUnbounded) {
        change.everything = true;
    } else if (!item.box.isEmpty()) {
        change.boxes.push_back(absolute(item.box));
    }
    mGeometryBytes -= item.geometry.bytes();
    item.geometry.clear();
    look(item);
    const FloatBox before = item.box;
    const bool wasUnbounded = item.isUnbounded;
    if (!item.stub->erased) {
        measure(item);
    }
    const bool stays = before.left == item.box.left && before.right == item.box.right &&
                       before.bottom == item.box.bottom && before.top == item.box.top;
    if (isInTree(index) ? !stays : item.isUnbounded && !wasUnbounded) {
        if (isInTree(index)) {
            mInTree[index / 64] &= ~(std::uint64_t{1} << (index % 64));
        }
        mRecent.push_back(index);
    }
    if (item.isUnbounded) {
        change.everything = true;
    } else if (!item.box.isEmpty()) {
        change.boxes.push_back(absolute(item.box));
    }
}

void Scene::append(AcDbStub* stub, SceneChange& change) {
    const auto index = static_cast<std::uint32_t>(mItems.size());
    mItems.emplace_back().stub = stub;
    if (mItems.size() * 4 / 3 > mTable.size()) {
        rehash();
    } else {
        remember(index);
    }
    mRecent.push_back(index);
    this->change(index, change);
}

void Scene::regenerate() {
    load();
}

void Scene::forgetGeometry() {
    for (SceneItem& item : mItems) {
        item.geometry.clear();
    }
    mGeometryBytes = 0;
    mSource.reset();
    mFlattener.reset();
}

// Geometry.

int Scene::levelOf(double unitsPerPixel) {
    constexpr double least = -100, most = 100;
    return static_cast<int>(std::clamp(std::floor(std::log2(unitsPerPixel)), least, most));
}

bool Scene::isFit(const SceneItem& item, int level) {
    return item.geometry.isBuilt() && (item.geometry.isScaleFree() || item.geometry.level() == level ||
                                       item.geometry.level() == level - 1);
}

host::Flattener& Scene::flattener(double unitsPerPixel, const Box2d* view) {
    const int level = levelOf(unitsPerPixel);
    if (mSource == nullptr) {
        mSource = host::drawingSource(mDatabase);
        mFlattener.reset();
    }
    if (mFlattener == nullptr || mFlattenerLevel != level || view != nullptr) {
        host::FlattenOptions options;
        options.deviation = chordsWithin * std::exp2(level);
        options.dashResolution = shortestDashes * std::exp2(level);
        options.primitiveLimit = std::numeric_limits<std::size_t>::max();
        if (view != nullptr) {
            options.view = {{view->minimum.x, view->minimum.y, 0.0}, {view->maximum.x, view->maximum.y, 0.0}};
        }
        mFlattener = std::make_unique<host::Flattener>(*mSource, mSink, options);
        mFlattenerLevel = view != nullptr ? std::numeric_limits<int>::min() : level;
    }
    return *mFlattener;
}

/// Whose code for drawing fails, a module's or the host's, does not take the picture of the others with it.
template <class Draw>
void Scene::draw(AcDbEntity& entity, Draw draw) {
    try {
        const host::ReadAccess access(entity);
        draw();
    } catch (const std::exception& error) {
        mFlattener.reset();
        mSink.abandon();
        if (mFaulty.insert(entity.objectId().stub()).second) {
            mFaults.push_back(L"无法显示对象 " + entity.objectId().handle().toString() + L": " +
                              host::fromUtf8(error.what()));
        }
    }
}

void Scene::build(SceneItem& item, double unitsPerPixel) {
    auto* entity = peek<AcDbEntity>(AcDbObjectId(item.stub));
    if (entity == nullptr) {
        return;
    }
    mGeometryBytes -= item.geometry.bytes();
    mSink.start(absolute(item.box).center());
    draw(*entity, [&] { flattener(unitsPerPixel, nullptr).draw(*entity); });
    item.geometry = mSink.finish(levelOf(unitsPerPixel), isScaled(*entity));
    const std::size_t added = item.geometry.bytes();
    mGeometryBytes += added;
}

Geometry Scene::drawnOnce(AcDbEntity& entity, const AcGePoint2d& origin, double unitsPerPixel,
                          const Box2d& view) {
    mSink.start(origin);
    mSink.setWantsCurves(false);
    draw(entity, [&] { flattener(unitsPerPixel, &view).draw(entity); });
    mSink.setWantsCurves(true);
    return mSink.finish(levelOf(unitsPerPixel), true);
}

SceneChange Scene::highlight(std::span<const AcDbObjectId> ids, bool on) {
    constexpr std::size_t many = 400;
    SceneChange change;
    for (const AcDbObjectId id : ids) {
        const std::uint32_t index = id.isNull() ? none : indexOf(id.stub());
        if (index == none || mItems[index].isHighlighted == on) {
            continue;
        }
        mItems[index].isHighlighted = on;
        if (mItems[index].isUnbounded) {
            change.everything = true;
        } else if (!mItems[index].box.isEmpty()) {
            change.boxes.push_back(absolute(mItems[index].box));
        }
    }
    change.everything = change.everything || change.boxes.size() > many;
    return change;
}

std::size_t Scene::bytes() const {
    return mItems.capacity() * sizeof(SceneItem) + mTree.bytes() + mTable.capacity() * sizeof(std::uint32_t) +
           (mMarked.capacity() + mInTree.capacity()) * sizeof(std::uint64_t) + mGeometryBytes;
}

void Scene::trim(const Box2d& view) {
    const std::size_t budget = std::max(leastBudget, mItems.size() * budgetAnItem);
    if (mGeometryBytes < std::max(budget, mTrimAbove)) {
        return;
    }
    const FloatBox around = relative(view);
    for (SceneItem& item : mItems) {
        if (item.geometry.isBuilt() && !item.box.touches(around)) {
            mGeometryBytes -= item.geometry.bytes();
            item.geometry.clear();
        }
    }
    mTrimAbove = mGeometryBytes + budget / 4;
}

} // namespace app
