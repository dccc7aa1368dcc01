// Blocks and entities of a DXF file: who owns what, and the parts that follow polylines and block references.
#include "host/db/entities/attribute.h"
#include "host/db/entities/subentities.h"
#include "host/formats/dxf/reader.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host::dxf {
namespace {

/// Blocks before release 13 had other names for the two spaces.
AcString spaceName(const AcString& name) {
    if (name.compareNoCase(L"$MODEL_SPACE") == 0) {
        return ACDB_MODEL_SPACE;
    }
    return name.compareNoCase(L"$PAPER_SPACE") == 0 ? AcString(ACDB_PAPER_SPACE) : name;
}

bool isPart(const std::string& name) {
    return name == "VERTEX" || name == "ATTRIB" || name == "SEQEND";
}

AcDbBlockTableRecord* asBlock(AcDbStub* stub) {
    return stub != nullptr ? AcDbBlockTableRecord::cast(stub->object) : nullptr;
}

/// What the BLOCK record says of its block beside the common groups.
struct BlockData {
    AcString name;
    AcString path;
    AcString comments;
    AcGePoint3d origin;
    Adesk::Int16 flags = 0;
    GroupList xdata;
};

BlockData readBlockData(FileFiler& filer) {
    BlockData data;
    while (const DxfGroup* group = filer.nextGroup()) {
        switch (group->code) {
        case 2:
            data.name = group->string();
            break;
        case 3:
            if (data.name.isEmpty()) {
                data.name = group->string();
            }
            break;
        case 1:
            data.path = group->string();
            break;
        case 4:
            data.comments = group->string();
            break;
        case 10:
            data.origin = group->point();
            break;
        case 70:
            data.flags = group->int16();
            break;
        default:
            if (group->code >= 1000) {
                data.xdata.add(*group);
            }
            break;
        }
    }
    return data;
}

} // namespace

void Reader::readBlocks() {
    mFiler.resolveNames(true);
    while (nextInSection()) {
        if (mFiler.recordName() == "BLOCK") {
            readBlock();
        } else if (mFiler.recordName() != "ENDBLK") {
            report(L"BLOCKS 段中块之外的 " + fromUtf8(mFiler.recordName()), Done::leftOut);
        }
    }
    mFiler.resolveNames(false);
}

AcDbBlockTableRecord* Reader::blockNamed(const AcString& name) {
    auto* table = static_cast<AcDbBlockTable*>(mImpl.containers.blockTable.stub()->object);
    AcDbObjectId id;
    const ReadAccess access(*table);
    return table->AcDbSymbolTable::getAt(name, id) == Acad::eOk ? asBlock(id.stub()) : nullptr;
}

AcDbBlockTableRecord* Reader::blockOf(AcDbStub* owner, const AcString& name) {
    AcDbBlockTableRecord* owned = asBlock(owner);
    if (owned != nullptr && owned->name().compareNoCase(name) == 0) {
        return owned;
    }
    if (AcDbBlockTableRecord* named = blockNamed(name)) {
        return named;
    }
    if (owned != nullptr) {
        return owned;
    }
    if (mFiler.version() >= AcDb::kDHL_1012) {
        report(L"块 \"" + std::wstring(name.view()) + L"\" 不在块表中", Done::repaired);
    }
    return static_cast<AcDbBlockTableRecord*>(
        addRecord(mImpl.containers.blockTable, L"AcDbBlockTableRecord", name));
}

void Reader::readBlock() {
    auto begin = std::make_unique<AcDbBlockBegin>();
    begin->dxfInFields(&mFiler);
    BlockData data = readBlockData(mFiler);
    mFiler.resetFilerStatus();
    reportFault(Done::leftOut);
    if (!data.xdata.empty()) {
        GroupList all = begin->xdataGroups();
        all.append(data.xdata);
        begin->setXdataGroups(std::move(all));
    }
    AcDbBlockTableRecord* block = blockOf(mFiler.owner(), spaceName(data.name));
    mBlocksWithoutDefinition.erase(block->objectId().stub());
    const bool repeated = !block->blockBeginId().isNull();
    if (repeated) {
        report(L"块 \"" + std::wstring(data.name.view()) + L"\" 再次定义", Done::leftOut);
    } else {
        block->setBlockData(data.flags, data.origin, data.comments, data.path);
        block->setBlockBeginAndEnd(AcDbObjectId(adopt(std::move(begin), block->objectId().stub())), {});
    }
    Sequence sequence;
    while (nextInSection()) {
        if (mFiler.recordName() == "ENDBLK") {
            if (!repeated) {
                readBlockEnd(*block);
            }
            return;
        }
        if (mFiler.recordName() == "BLOCK") {
            break;
        }
        if (!repeated) {
            readEntity(block, sequence);
        }
    }
    report(L"块 \"" + std::wstring(data.name.view()) + L"\" 没有以 ENDBLK 结束", Done::repaired);
    mFiler.repeatRecord();
}

void Reader::readBlockEnd(AcDbBlockTableRecord& block) {
    auto end = std::make_unique<AcDbBlockEnd>();
    end->dxfInFields(&mFiler);
    GroupList xdata = end->xdataGroups();
    while (const DxfGroup* group = mFiler.nextGroup()) {
        if (group->code >= 1000) {
            xdata.add(*group);
        }
    }
    end->setXdataGroups(std::move(xdata));
    mFiler.resetFilerStatus();
    reportFault(Done::leftOut);
    AcDbStub* stub = adopt(std::move(end), block.objectId().stub());
    block.setBlockBeginAndEnd(block.blockBeginId(), AcDbObjectId(stub));
}

void Reader::readEntities() {
    mFiler.resolveNames(true);
    Sequence sequence;
    while (nextInSection()) {
        readEntity(nullptr, sequence);
    }
    mFiler.resolveNames(false);
}

/// The block an entity just read goes into: where it was found, or in the entities section the space its
/// owner names.
AcDbBlockTableRecord* Reader::spaceOf(AcDbBlockTableRecord* block) {
    AcDbStub* owner = mFiler.owner();
    if (block != nullptr) {
        if (owner != nullptr && owner != block->objectId().stub()) {
            report(fromUtf8(mFiler.recordName()) + L" 的所有者不是它所在的块", Done::repaired);
        }
        return block;
    }
    if (owner != nullptr && owner == mLastOwner) {
        return mLastBlock;
    }
    AcDbBlockTableRecord* space = asBlock(owner);
    if (space != nullptr && !isSpace(*space)) {
        space = takeForModelSpace(*space) ? space : nullptr;
    }
    if (space == nullptr) {
        if (owner != nullptr) {
            report(formatted(L"%s 的所有者 %I64X 不是模型空间或图纸空间",
                             fromUtf8(mFiler.recordName()).c_str(), static_cast<long long>(owner->handle)),
                   Done::repaired);
        }
        const AcDbObjectId id =
            mFiler.inPaperSpace() ? mImpl.containers.paperSpace : mImpl.containers.modelSpace;
        return asBlock(id.stub());
    }
    mLastOwner = owner;
    mLastBlock = space;
    return space;
}

bool Reader::isSpace(const AcDbBlockTableRecord& block) const {
    return block.objectId() == mImpl.containers.modelSpace ||
           startsWithNoCase(block.name().view(), ACDB_PAPER_SPACE);
}

/// Some programs give the model space another name. Then the block that owns what stands in the entities
/// section is the model space, in the place of the one that was made because the file has none.
bool Reader::takeForModelSpace(AcDbBlockTableRecord& block) {
    AcDbBlockTableRecord* made = asBlock(mImpl.containers.modelSpace.stub());
    if (!mMadeModelSpace || !made->entities().empty() || mFiler.inPaperSpace()) {
        return false;
    }
    report(L"模型空间的块名是 \"" + std::wstring(block.name().view()) + L"\"", Done::repaired,
           mFiler.recordLine(), block.handle());
    mMadeModelSpace = false;
    mImpl.containers.modelSpace.stub()->erased = true;
    AcDbStub* stub = block.objectId().stub();
    stub->openForWrite = true;
    block.setName(ACDB_MODEL_SPACE);
    stub->openForWrite = false;
    mImpl.containers.modelSpace = block.objectId();
    return true;
}

void Reader::readEntity(AcDbBlockTableRecord* block, Sequence& sequence) {
    if (isPart(mFiler.recordName())) {
        readPart(sequence);
        return;
    }
    if (sequence.attribute != nullptr && mFiler.recordName() == "MTEXT") {
        readLines(*sequence.attribute);
        return;
    }
    sequence = {};
    const bool hasParts = mFiler.recordName() == "POLYLINE" || mFiler.recordName() == "INSERT";
    std::unique_ptr<AcDbObject> object = readObject(mClasses.classOf(mFiler), true);
    if (object == nullptr) {
        sequence.leftOut = true;
        return;
    }
    auto* entity = static_cast<AcDbEntity*>(object.get());
    AcDbBlockTableRecord* owner = spaceOf(block);
    owner->entitiesForReaders().push_back(adopt(std::move(object), owner->objectId().stub()));
    if (hasParts) {
        sequence.parent = entity;
    }
}

/// The lines of an attribute, which stand behind it in files before release 2018.
void Reader::readLines(AttributeText& attribute) {
    const std::unique_ptr<AcDbObject> lines = readObject(mClasses.classOf(mFiler), true);
    if (const auto* text = AcDbMText::cast(lines.get())) {
        attribute.embedLines(*text);
    }
}

void Reader::readPart(Sequence& sequence) {
    AcDbEntity* parent = sequence.parent;
    SubentityList* parts = parent != nullptr ? parent->needSubentities() : nullptr;
    const std::string name = mFiler.recordName();
    if (parts == nullptr) {
        if (!sequence.leftOut && name != "SEQEND") {
            report(fromUtf8(name) + L" 没有所属的对象", Done::leftOut);
        }
        return;
    }
    const bool isEnd = name == "SEQEND";
    std::unique_ptr<AcDbObject> part =
        readObject(isEnd ? mClasses.classOf(mFiler) : mClasses.partClass(name, *parent), true);
    if (part == nullptr) {
        return;
    }
    sequence.attribute = AcDbAttribute::cast(part.get());
    AcDbStub* stub = adopt(std::move(part), parent->objectId().stub());
    if (isEnd) {
        parts->adoptSequenceEnd(stub);
        sequence = {};
    } else {
        parts->adopt(stub);
    }
}

} // namespace host::dxf
