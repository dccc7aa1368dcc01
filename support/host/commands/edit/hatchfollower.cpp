// Sources tell of the hatches that follow them by their reactors. A hatch whose sources changed is made anew;
// one that went away without them, or whose objects enclose nothing any more, follows nothing from then on.
#include "host/commands/edit/hatchfollower.h"

#include "host/commands/edit/hatchoutline.h"
#include "host/db/dbents.h"
#include "host/ed/ed.h"
#include "host/rx/text.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace host {
namespace {

class HatchFollower : public StepFollower, public AcDbDatabaseReactor {
public:
    explicit HatchFollower(AcDbDatabase& database) : mDatabase(&database) { database.addReactor(this); }
    ~HatchFollower() override {
        if (mDatabase != nullptr) {
            mDatabase->removeReactor(this);
        }
    }

    bool follows(const AcDbDatabase& database) const override { return mDatabase == &database; }
    void stepEnds() override;

    void objectOpenedForModify(const AcDbDatabase*, const AcDbObject* object) override {
        const auto* hatch = isListening() ? AcDbHatch::cast(object) : nullptr;
        if (hatch != nullptr && hatch->data().associative) {
            mMoved.try_emplace(object->objectId().stub(), extentsOf(*hatch));
        }
    }
    void objectModified(const AcDbDatabase*, const AcDbObject* object) override { noteFollowers(*object); }
    void objectErased(const AcDbDatabase*, const AcDbObject* object, bool) override {
        noteFollowers(*object);
    }
    void goodbye(const AcDbDatabase*) override { mDatabase = nullptr; }

private:
    /// Where hatches were.
    using Places = std::unordered_map<AcDbStub*, AcDbExtents>;

    bool isListening() const { return !mIsMaking && !mDatabase->undoLog().isApplying(); }
    static AcDbExtents extentsOf(const AcDbHatch& hatch) {
        const ReadAccess access(hatch);
        AcDbExtents extents;
        hatch.getGeomExtents(extents);
        return extents;
    }
    void noteFollowers(const AcDbObject& object) {
        if (object.persistentReactors().empty() || !isListening()) {
            return;
        }
        for (const AcDbObjectId reactor : object.persistentReactors()) {
            const auto* hatch = peek<AcDbHatch>(reactor);
            if (hatch != nullptr && hatch->data().associative && mNoted.insert(reactor.stub()).second) {
                mOrder.push_back(reactor);
            }
        }
    }
    bool wentAway(const AcDbHatch& hatch, const AcDbExtents& before) const;
    int bringUpToDate(const std::vector<AcDbObjectId>& changed, const Places& moved);

    AcDbDatabase* mDatabase;
    std::unordered_set<AcDbStub*> mNoted; ///< whose sources changed
    std::vector<AcDbObjectId> mOrder;     ///< the same in the order of the changes
    Places mMoved;                        ///< those that were changed themselves
    bool mIsMaking = false;
};

/// The hatch moved, and not to where its sources are.
bool HatchFollower::wentAway(const AcDbHatch& hatch, const AcDbExtents& before) const {
    const AcDbExtents now = extentsOf(hatch);
    const auto near = [](const AcDbExtents& a, const AcDbExtents& b) {
        const double slack = 1e-6 * (1.0 + b.maxPoint().distanceTo(b.minPoint()));
        return a.minPoint().distanceTo(b.minPoint()) <= slack &&
               a.maxPoint().distanceTo(b.maxPoint()) <= slack;
    };
    if (near(now, before)) {
        return false;
    }
    const std::optional<std::vector<HatchOutline>> outlines = remadeOutlines(hatch);
    if (!outlines) {
        return true;
    }
    AcDbHatch there;
    there.setNormal(hatch.data().normal);
    there.setElevation(hatch.data().elevation);
    for (const HatchOutline& outline : *outlines) {
        if (!outline.sources.empty()) {
            appendOutline(there, outline);
        }
    }
    return there.numLoops() == std::ssize(hatch.data().loops) && !near(now, extentsOf(there));
}

/// Which of the hatches follow nothing any more.
int HatchFollower::bringUpToDate(const std::vector<AcDbObjectId>& changed, const Places& moved) {
    // One that a program holds open is its own business.
    const auto isFollowing = [](AcDbObjectId id) {
        const auto* hatch = peek<AcDbHatch>(id);
        return hatch != nullptr && hatch->data().associative && !id.stub()->openForWrite &&
               id.stub()->readers == 0;
    };
    int lost = 0;
    for (const AcDbObjectId id : changed) {
        if (isFollowing(id) && !remakeLoops(id)) {
            dissociate(id);
            ++lost;
        }
    }
    const std::unordered_set<AcDbObjectId> done(changed.begin(), changed.end());
    for (const auto& [stub, before] : moved) {
        const AcDbObjectId id(stub);
        if (!done.contains(id) && isFollowing(id) && wentAway(*peek<AcDbHatch>(id), before)) {
            dissociate(id);
            ++lost;
        }
    }
    return lost;
}

void HatchFollower::stepEnds() {
    if (mDatabase == nullptr || (mOrder.empty() && mMoved.empty())) {
        return;
    }
    mNoted.clear();
    const std::vector<AcDbObjectId> changed = std::exchange(mOrder, {});
    const Places moved = std::exchange(mMoved, {});
    int lost = 0;
    mIsMaking = true;
    try {
        lost = bringUpToDate(changed, moved);
    } catch (const std::exception& error) {
        reportFailure(L"图案填充无法更新: " + fromUtf8(error.what()));
    }
    mIsMaking = false;
    if (lost == 1) {
        acutPrintf(L"\n图案填充边界的关联性已删除。");
    } else if (lost > 1) {
        acutPrintf(L"\n%d 个图案填充的边界关联性已删除。", lost);
    }
}

} // namespace

std::unique_ptr<StepFollower> followHatches(AcDbDatabase& database) {
    return std::make_unique<HatchFollower>(database);
}

} // namespace host
