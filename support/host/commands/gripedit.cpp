// GRIP_STRETCH: what the window runs when a grip is clicked. The grips move by what lies between the one
// clicked and the point that is given; the other modes move, copy or turn the whole pick-first set.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/ed/grips.h"
#include "host/ed/pointreader.h"
#include "host/ed/question.h"

#include <map>
#include <memory>

namespace host {
namespace {

/// Entities with the grips of each that move.
using Moved = std::map<AcDbObjectId, AcDbIntArray>;

Moved movedBy(const std::vector<EntityGrip>& grips) {
    Moved moved;
    for (const EntityGrip& grip : grips) {
        moved[grip.entity].append(grip.index);
    }
    return moved;
}

/// Copies of the entities that follow the cursor; they belong to no drawing.
class Preview {
public:
    explicit Preview(const Moved& moved) {
        for (const auto& [id, indices] : moved) {
            const Opened<AcDbEntity> entity(id, AcDb::kForRead);
            if (entity) {
                mOriginals.emplace_back(AcDbEntity::cast(entity->clone()), &indices);
            }
        }
    }
    std::vector<AcDbEntity*> at(const AcGeVector3d& offset) {
        mShown.clear();
        std::vector<AcDbEntity*> shown;
        for (const auto& [original, indices] : mOriginals) {
            auto* copy = original != nullptr ? AcDbEntity::cast(original->clone()) : nullptr;
            if (copy != nullptr) {
                copy->moveGripPointsAt(*indices, offset);
                shown.push_back(mShown.emplace_back(copy).get());
            }
        }
        return shown;
    }

private:
    std::vector<std::pair<std::unique_ptr<AcDbEntity>, const AcDbIntArray*>> mOriginals;
    std::vector<std::unique_ptr<AcDbEntity>> mShown;
};

enum class Step { done, again, cancelled };

class Stretching {
public:
    explicit Stretching(std::vector<EntityGrip> grips)
        : mBase(grips.front().point), mMoved(movedBy(grips)), mPreview(mMoved) {}

    void run() {
        while (true) {
            const InputItem item = ask();
            if (item.kind == InputItem::Kind::motion) {
                if (const std::optional<AcGePoint3d> point = pointIn(item, worldToUcs(mBase))) {
                    mOffset = ucsToWorld(*point) - mBase;
                }
                continue;
            }
            if (take(item)) {
                return;
            }
        }
    }

private:
    InputItem ask() {
        AskOptions options;
        options.wantsPoint = options.wantsMotion = options.takesDistance = true;
        options.base = mBase;
        options.dragged = mPreview.at(mOffset);
        const wchar_t* prompt = mIsPromptShown ? L""
                                : mCopies ? L"\n** 拉伸 (多个) **\n指定拉伸点或 [基点(B)/放弃(U)/退出(X)]: "
                                          : L"\n** 拉伸 **\n指定拉伸点或 [基点(B)/复制(C)/放弃(U)/退出(X)]: ";
        InputItem item = inputStream().ask(prompt, options);
        mIsPromptShown = item.kind == InputItem::Kind::motion;
        return item;
    }

    /// True when the command ends.
    bool take(const InputItem& item) {
        if (item.isCancel() || item.isEnter()) {
            return true;
        }
        static const KeywordList words(L"Base Copy Undo eXit");
        if (const auto word =
                item.kind == InputItem::Kind::text ? words.matchGlobal(item.text) : std::nullopt) {
            if (*word == L"Base") {
                const PointAnswer base = host::askPoint(L"\n指定基点: ");
                mBase = base.isValue() ? base.world : mBase;
            } else if (*word == L"Copy") {
                mCopies = true;
            } else if (*word == L"Undo") {
                acutPrintf(L"\n没有可放弃的操作。");
            }
            return *word == L"eXit";
        }
        PointReader reader(worldToUcs(mBase));
        const std::optional<AcGePoint3d> point = reader.read(item);
        if (reader.isCancelled()) {
            return true;
        }
        if (!point) {
            refuse(L"需要点或选项关键字。");
            return false;
        }
        setLastPoint(*point);
        apply(ucsToWorld(*point) - mBase);
        return !mCopies;
    }

    void apply(const AcGeVector3d& offset) {
        for (const auto& [id, indices] : mMoved) {
            if (mCopies) {
                copy(id, indices, offset);
                continue;
            }
            const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
            if (!entity || entity->moveGripPointsAt(indices, offset) != Acad::eOk) {
                refuse(L"此夹点不能移到那里。");
            }
        }
    }

    static void copy(AcDbObjectId id, const AcDbIntArray& indices, const AcGeVector3d& offset) {
        AcDbObjectIdArray ids;
        ids.append(id);
        AcDbIdMapping mapping;
        if (currentDatabase().deepCloneObjects(ids, currentDatabase().currentSpaceId(), mapping) !=
            Acad::eOk) {
            return;
        }
        AcDbIdPair pair(id, AcDbObjectId(), false);
        if (mapping.compute(pair)) {
            const Opened<AcDbEntity> entity(pair.value(), AcDb::kForWrite);
            if (entity) {
                entity->moveGripPointsAt(indices, offset);
            }
        }
    }

    AcGePoint3d mBase;
    Moved mMoved;
    Preview mPreview;
    AcGeVector3d mOffset;
    bool mCopies = false;
    bool mIsPromptShown = false;
};

void runGripStretch() {
    std::vector<EntityGrip> grips = takeHotGrips();
    if (grips.empty()) {
        acutPrintf(L"\n没有选中的夹点。");
        return;
    }
    Stretching(std::move(grips)).run();
}

constexpr Adesk::Int32 flags = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW | ACRX_CMD_NOHISTORY;
constexpr CommandRow rows[] = {{L"GRIP_STRETCH", L"夹点拉伸", flags, runGripStretch}};

} // namespace

std::span<const CommandRow> gripCommands() {
    return rows;
}

} // namespace host
