// Finds what is wrong in a drawing: containers, owners, references, geometry, parts of entities.
#include "host/commands/edit/audit.h"

#include "host/commands/edit/editing.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace host {
namespace {

bool isThere(AcDbObjectId id) {
    return id.isValid() && !id.isErased();
}

class Audit {
public:
    Audit(AcDbDatabase& database, bool fixes) : mDatabase(database), mFixes(fixes) {}
    AuditResult run();

private:
    void checkContainers();
    void checkHeader();
    void collectLists();
    void checkLists();
    bool isGone(const AcDbStub& stub) const;
    void checkObject(AcDbStub& stub);
    void checkOwner(AcDbObject& object);
    void checkReactors(AcDbObject& object);
    void checkDictionary(AcDbDictionary& dictionary);
    void checkLayer(AcDbLayerTableRecord& layer);
    void checkEntity(AcDbEntity& entity);
    void checkLooks(AcDbEntity& entity);
    bool checkGeometry(AcDbEntity& entity);
    void checkParts(AcDbEntity& entity);

    /// Notes a fault; `fix` is called when faults are to be put right, and says whether it could.
    void note(const std::wstring& object, const std::wstring& fault, const std::wstring& remedy,
              const std::function<bool()>& fix);
    /// The same for an object that is being read: it is put right by the next applyFixes.
    template <class T>
    void note(T& object, const std::wstring& fault, const std::wstring& remedy, std::function<void(T&)> fix);
    void applyFixes();
    void eraseFaulty(AcDbObject& object, const std::wstring& fault) {
        note<AcDbObject>(object, fault, L"删除", [](AcDbObject& opened) { opened.erase(); });
    }

    AcDbDatabase& mDatabase;
    bool mFixes;
    AuditResult mResult;
    std::vector<std::pair<std::size_t, std::function<bool()>>> mPending; ///< with the findings' indices
    std::unordered_map<AcDbStub*, AcDbStub*> mListedIn; ///< entities, and the block or entity that lists them
};

std::wstring nameOf(const AcDbObject& object) {
    return fromUtf8(object.dxfRecordName()) + L"(" + object.handle().toString() + L")";
}

void Audit::note(const std::wstring& object, const std::wstring& fault, const std::wstring& remedy,
                 const std::function<bool()>& fix) {
    const bool fixed = mFixes && fix();
    mResult.findings.push_back({object, fault, remedy, fixed});
}

/// Erased, or with an owner that is; what a block or entity lists is there all the same.
bool Audit::isGone(const AcDbStub& stub) const {
    const AcDbStub* at = &stub;
    while (at != nullptr && at->object != nullptr && !at->erased) {
        at = at->object->ownerId().stub();
    }
    return stub.erased || (at != nullptr && at->erased && !mListedIn.contains(const_cast<AcDbStub*>(&stub)));
}

void appendTo(AcDbObjectId blockId, const AcDbObject& entity) {
    auto& block = *peek<AcDbBlockTableRecord>(blockId);
    block.database()->undoLog().recordEntities(block);
    block.entitiesForReaders().push_back(entity.objectId().stub());
}

template <class T>
void Audit::note(T& object, const std::wstring& fault, const std::wstring& remedy,
                 std::function<void(T&)> fix) {
    if (mFixes) {
        mPending.emplace_back(mResult.findings.size(), [id = object.objectId(), fix = std::move(fix)] {
            const Opened<T> opened(id, AcDb::kForWrite);
            if (opened) {
                fix(*opened.get());
            }
            return static_cast<bool>(opened);
        });
    }
    mResult.findings.push_back({nameOf(object), fault, remedy, false});
}

void Audit::applyFixes() {
    for (const auto& [index, fix] : std::exchange(mPending, {})) {
        mResult.findings[index].fixed = fix();
    }
}

AuditResult Audit::run() {
    checkContainers();
    checkHeader();
    collectLists();
    checkLists();
    std::vector<AcDbStub*> stubs;
    stubs.reserve(mDatabase.impl().stubCount());
    mDatabase.impl().forEachStub([&](AcDbStub& stub) { stubs.push_back(&stub); });
    Adesk::UInt64 greatest = 0;
    for (AcDbStub* stub : stubs) {
        greatest = std::max(greatest, stub->handle);
        if (stub->object != nullptr && !isGone(*stub)) {
            ++mResult.objects;
            checkObject(*stub);
        }
    }
    if (mDatabase.impl().nextHandle() <= greatest) {
        note(L"HANDSEED", L"不大于图形中最大的句柄", L"改正", [&] {
            mDatabase.impl().raiseNextHandle(greatest + 1);
            return true;
        });
    }
    return std::move(mResult);
}

void Audit::checkContainers() {
    const DatabaseImpl::Containers& containers = mDatabase.impl().containers;
    const std::pair<const wchar_t*, AcDbObjectId> needed[] = {
        {L"块表", containers.blockTable},
        {L"图层表", containers.layerTable},
        {L"线型表", containers.linetypeTable},
        {L"文字样式表", containers.textStyleTable},
        {L"注册应用程序表", containers.regAppTable},
        {L"标注样式表", containers.dimStyleTable},
        {L"视图表", containers.viewTable},
        {L"视口表", containers.viewportTable},
        {L"UCS 表", containers.ucsTable},
        {L"命名对象词典", containers.namedObjects},
        {L"模型空间", containers.modelSpace},
        {L"图纸空间", containers.paperSpace},
        {L"图层 0", containers.layerZero},
        {L"线型 Continuous", containers.continuous},
        {L"线型 ByLayer", containers.byLayer},
        {L"线型 ByBlock", containers.byBlock},
        {L"文字样式 Standard", containers.standardTextStyle}};
    bool completed = false;
    for (const auto& [name, id] : needed) {
        if (isThere(id)) {
            continue;
        }
        note(name, L"不存在", L"新建", [&] {
            if (!completed) {
                mDatabase.impl().completeDrawing();
                completed = true;
            }
            return true;
        });
    }
}

void Audit::checkHeader() {
    const struct {
        const wchar_t* name;
        AcDbObjectId value;
        AcDbObjectId standard;
        Acad::ErrorStatus (AcDbDatabase::*set)(AcDbObjectId);
    } settings[] = {
        {L"CLAYER", mDatabase.clayer(), mDatabase.layerZero(), &AcDbDatabase::setClayer},
        {L"CELTYPE", mDatabase.celtype(), mDatabase.byLayerLinetype(), &AcDbDatabase::setCeltype},
        {L"TEXTSTYLE", mDatabase.textstyle(), mDatabase.standardTextStyle(), &AcDbDatabase::setTextstyle}};
    for (const auto& setting : settings) {
        if (!isThere(setting.value)) {
            note(setting.name, L"所指的记录不存在", L"恢复默认值",
                 [&] { return (mDatabase.*setting.set)(setting.standard) == Acad::eOk; });
        }
    }
}

/// Which block or entity lists each entity. The list of its owner wins where several do.
void Audit::collectLists() {
    const auto add = [&](AcDbStub* part, AcDbStub* lister) {
        const auto* object = peek<AcDbObject>(AcDbObjectId(part));
        if (object == nullptr) {
            return;
        }
        const auto [found, added] = mListedIn.emplace(part, lister);
        if (!added && object->ownerId().stub() == lister) {
            found->second = lister;
        }
    };
    mDatabase.impl().forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased) {
            return;
        }
        if (const auto* block = AcDbBlockTableRecord::cast(stub.object)) {
            for (AcDbStub* part : block->entities()) {
                add(part, &stub);
            }
            add(block->blockBeginId().stub(), &stub);
            add(block->blockEndId().stub(), &stub);
        } else if (auto* entity = AcDbEntity::cast(stub.object)) {
            if (const SubentityList* parts = entity->subentities()) {
                for (AcDbStub* part : parts->ids()) {
                    add(part, &stub);
                }
                add(parts->sequenceEnd(), &stub);
            }
        }
    });
}

/// Entries of a block's list that lead nowhere, stand twice, or belong to another block.
void Audit::checkLists() {
    const auto* blocks = peek<AcDbBlockTable>(mDatabase.blockTableId());
    for (AcDbStub* stub : blocks != nullptr ? std::vector(blocks->records()) : std::vector<AcDbStub*>()) {
        auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(stub));
        if (block == nullptr) {
            continue;
        }
        std::unordered_map<AcDbStub*, bool> seen;
        const auto isFaulty = [&](AcDbStub* part) {
            const auto listed = mListedIn.find(part);
            const bool foreign = listed != mListedIn.end() && listed->second != stub;
            return part == nullptr || part->object == nullptr || foreign || !seen.emplace(part, true).second;
        };
        const std::vector<AcDbStub*>& entities = block->entities();
        const auto faulty = std::count_if(entities.begin(), entities.end(), isFaulty);
        if (faulty > 0) {
            seen.clear();
            note<AcDbBlockTableRecord>(*block, L"对象表中有 " + std::to_wstring(faulty) + L" 个无效的项",
                                       L"移除", [&](AcDbBlockTableRecord& opened) {
                                           mDatabase.undoLog().recordEntities(opened);
                                           std::erase_if(opened.entitiesForReaders(), isFaulty);
                                       });
            applyFixes();
        }
    }
}

void Audit::checkObject(AcDbStub& stub) {
    AcDbObject& object = *stub.object;
    {
        const ReadAccess access(object);
        checkOwner(object);
        checkReactors(object);
        if (auto* entity = AcDbEntity::cast(&object)) {
            checkEntity(*entity);
        } else if (auto* dictionary = AcDbDictionary::cast(&object)) {
            checkDictionary(*dictionary);
        } else if (auto* layer = AcDbLayerTableRecord::cast(&object)) {
            checkLayer(*layer);
        }
    }
    applyFixes();
}

void Audit::checkOwner(AcDbObject& object) {
    const auto* entity = AcDbEntity::cast(&object);
    const auto listed = mListedIn.find(object.objectId().stub());
    if (entity == nullptr || isThere(object.ownerId())) {
        if (entity != nullptr && listed == mListedIn.end() && peek<AcDbBlockTableRecord>(object.ownerId())) {
            note<AcDbObject>(object, L"不在所有者的对象表中", L"加入",
                             [](AcDbObject& opened) { appendTo(opened.ownerId(), opened); });
        } else if (listed != mListedIn.end() && listed->second != object.ownerId().stub()) {
            note<AcDbObject>(object, L"所有者不正确", L"改正", [owner = listed->second](AcDbObject& opened) {
                opened.setOwnerId(AcDbObjectId(owner));
            });
        }
        return;
    }
    if (listed != mListedIn.end()) {
        note<AcDbObject>(object, L"所有者不存在", L"改正", [owner = listed->second](AcDbObject& opened) {
            opened.setOwnerId(AcDbObjectId(owner));
        });
    } else {
        note<AcDbObject>(object, L"没有所有者", L"放入模型空间", [this](AcDbObject& opened) {
            opened.setOwnerId(mDatabase.modelSpaceId());
            appendTo(mDatabase.modelSpaceId(), opened);
        });
    }
}

void Audit::checkReactors(AcDbObject& object) {
    for (const AcDbObjectId reactor : std::vector(object.persistentReactors())) {
        if (!reactor.isValid()) {
            note<AcDbObject>(object, L"反应器指向不存在的对象", L"移除",
                             [reactor](AcDbObject& opened) { opened.removePersistentReactor(reactor); });
        }
    }
    if (!object.extensionDictionary().isNull() && !object.extensionDictionary().isValid()) {
        note<AcDbObject>(object, L"扩展词典不存在", L"移除",
                         [](AcDbObject& opened) { opened.setExtensionDictionary({}); });
    }
}

void Audit::checkDictionary(AcDbDictionary& dictionary) {
    for (const AcDbDictionary::Entry& entry : std::vector(dictionary.entries())) {
        if (!entry.id.isValid()) {
            note<AcDbDictionary>(
                dictionary, L"项 \"" + std::wstring(entry.name.kwszPtr()) + L"\" 指向不存在的对象", L"移除",
                [name = entry.name](AcDbDictionary& opened) { opened.remove(name.kwszPtr()); });
        }
    }
}

void Audit::checkLayer(AcDbLayerTableRecord& layer) {
    if (peek<AcDbLinetypeTableRecord>(layer.linetypeObjectId()) == nullptr) {
        note<AcDbLayerTableRecord>(layer, L"线型无效", L"设为 Continuous",
                                   [this](AcDbLayerTableRecord& opened) {
                                       opened.setLinetypeObjectId(mDatabase.continuousLinetype());
                                   });
    }
}

void Audit::checkEntity(AcDbEntity& entity) {
    checkLooks(entity);
    if (checkGeometry(entity)) {
        checkParts(entity);
    }
}

void Audit::checkLooks(AcDbEntity& entity) {
    if (peek<AcDbLayerTableRecord>(entity.layerId()) == nullptr) {
        note<AcDbEntity>(entity, L"图层无效", L"设为 0",
                         [this](AcDbEntity& opened) { opened.setLayer(mDatabase.layerZero(), false); });
    }
    if (!entity.linetypeId().isNull() && peek<AcDbLinetypeTableRecord>(entity.linetypeId()) == nullptr) {
        note<AcDbEntity>(entity, L"线型无效", L"设为 ByLayer", [this](AcDbEntity& opened) {
            opened.setLinetype(mDatabase.byLayerLinetype(), false);
        });
    }
    if (!(entity.linetypeScale() > 0.0) || !std::isfinite(entity.linetypeScale())) {
        note<AcDbEntity>(entity, L"线型比例无效", L"设为 1",
                         [](AcDbEntity& opened) { opened.setLinetypeScale(1.0, false); });
    }
    if (auto* text = AcDbText::cast(&entity);
        text != nullptr && peek<AcDbTextStyleTableRecord>(text->textStyle()) == nullptr) {
        note<AcDbText>(*text, L"文字样式无效", L"设为 Standard",
                       [this](AcDbText& opened) { opened.setTextStyle(mDatabase.standardTextStyle()); });
    }
}

/// False when the entity was, or would be, erased.
bool Audit::checkGeometry(AcDbEntity& entity) {
    if (const auto* reference = AcDbBlockReference::cast(&entity);
        reference != nullptr && peek<AcDbBlockTableRecord>(reference->blockTableRecord()) == nullptr) {
        eraseFaulty(entity, L"所参照的块不存在");
        return false;
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) == Acad::eOk) {
        const AcGePoint3d& low = extents.minPoint();
        const AcGePoint3d& high = extents.maxPoint();
        if (!std::isfinite(low.x + low.y + low.z + high.x + high.y + high.z)) {
            eraseFaulty(entity, L"坐标不是有限的数");
            return false;
        }
    }
    const auto* line = AcDbLine::cast(&entity);
    const auto* circle = AcDbCircle::cast(&entity);
    const auto* arc = AcDbArc::cast(&entity);
    const auto* light = AcDbPolyline::cast(&entity);
    const bool empty = (line != nullptr && line->startPoint().distanceTo(line->endPoint()) == 0.0) ||
                       (circle != nullptr && !(circle->radius() > 0.0)) ||
                       (arc != nullptr && !(arc->radius() > 0.0)) ||
                       (light != nullptr && light->numVerts() < 2);
    if (empty) {
        eraseFaulty(entity, L"长度为零");
        return false;
    }
    return true;
}

/// Vertices and attributes: parts that are not there, none at all, an end that is missing.
void Audit::checkParts(AcDbEntity& entity) {
    SubentityList* parts = entity.subentities();
    if (parts == nullptr || KeptEntity::cast(&entity) != nullptr) {
        return;
    }
    const auto present = [](AcDbStub* part) { return peek<AcDbEntity>(AcDbObjectId(part)) != nullptr; };
    const bool any = std::any_of(parts->ids().begin(), parts->ids().end(), present);
    if (!any && AcDbCurve::cast(&entity) != nullptr) {
        eraseFaulty(entity, L"没有顶点");
    } else if (any && !isThere(AcDbObjectId(parts->sequenceEnd()))) {
        note<AcDbEntity>(entity, L"缺少序列结束", L"新建", [this](AcDbEntity& opened) {
            auto* end = new AcDbSequenceEnd;
            end->setPropertiesFrom(&opened);
            AcDbObjectId id;
            if (mDatabase.addAcDbObject(id, end) == Acad::eOk) {
                end->setOwnerId(opened.objectId());
                end->close();
                opened.assertWriteEnabled();
                opened.subentities()->adoptSequenceEnd(id.stub());
            }
        });
    }
}

} // namespace

std::size_t AuditResult::fixedCount() const {
    return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(),
                                                  [](const AuditFinding& finding) { return finding.fixed; }));
}

AuditResult auditDrawing(AcDbDatabase& database, bool fixes) {
    return Audit(database, fixes).run();
}

} // namespace host
