// Recording and applying states. Applying swaps: the record ends up holding what it replaced, so the same
// record serves undo and redo.
#include "host/db/undolog.h"

#include "host/db/dbdatabase.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

template <class Flag>
class ScopedFlag {
public:
    ScopedFlag(Flag& flag, Flag value) : mFlag(flag), mBefore(flag) { flag = value; }
    ~ScopedFlag() { mFlag = mBefore; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    Flag& mFlag;
    Flag mBefore;
};

std::string imageOf(const AcDbObject& object) {
    MemoryDwgFiler filer(AcDb::kUndoFiler, object.database());
    object.dwgOutFields(&filer);
    return filer.takeBytes();
}

std::string bytesOf(const std::vector<AcDbStub*>& stubs) {
    return {reinterpret_cast<const char*>(stubs.data()), stubs.size() * sizeof(AcDbStub*)};
}

/// Exchanges a list with the one that was recorded.
void swapStubs(std::vector<AcDbStub*>& stubs, std::string& bytes) {
    std::vector<AcDbStub*> before(bytes.size() / sizeof(AcDbStub*));
    if (!before.empty()) {
        std::memcpy(before.data(), bytes.data(), bytes.size());
    }
    bytes = bytesOf(stubs);
    stubs = std::move(before);
}

} // namespace

UndoLog::UndoLog(AcDbDatabase& database) : mDatabase(database) {}
UndoLog::~UndoLog() = default;

void UndoLog::setRecording(bool on) {
    if (mRecording != on) {
        clear();
        mRecording = on;
    }
}

void UndoLog::add(Record record) {
    ++mChangeCount;
    if (!mRedoSteps.empty()) {
        dropRedo();
    }
    mRecords.push_back(std::move(record));
}

void UndoLog::recordImage(AcDbObject& object) {
    object.mImageEpoch = mEpoch;
    if (mApplying) {
        return;
    }
    if (!isRecording()) {
        ++mChangeCount;
        return;
    }
    add({Kind::image, object.mStub, imageOf(object), {}, 0, false, {}});
}

void UndoLog::recordCreated(AcDbStub& stub) {
    stub.object->mImageEpoch = mEpoch;
    if (isRecording() && !mApplying) {
        add({Kind::created, &stub, {}, {}, 0, false, {}});
    }
}

void UndoLog::recordErase(AcDbStub& stub) {
    if (isRecording() && !mApplying) {
        add({Kind::erased, &stub, {}, {}, 0, stub.erasedWithOwner, {}});
    }
}

void UndoLog::recordEntities(AcDbBlockTableRecord& block) {
    if (isRecording() && !mApplying) {
        add({Kind::entities, block.objectId().stub(), bytesOf(block.entities()), {}, 0, false, {}});
    }
}

void UndoLog::setLastErased(std::vector<AcDbStub*> entities) {
    if (isRecording() && !mApplying) {
        add({Kind::lastErased, nullptr, bytesOf(mLastErased), {}, 0, false, {}});
    }
    mLastErased = std::move(entities);
}

void UndoLog::recordHeader(HeaderIndex index, const HeaderValue& old) {
    if (isRecording() && !mApplying) {
        add({Kind::header, nullptr, {}, {}, index, false, old});
    }
}

void UndoLog::recordReplaced(AcDbStub& stub, const AcDbObject& old) {
    if (isRecording() && !mApplying) {
        add({Kind::replaced, &stub, imageOf(old), old.isA()->name(), 0, false, {}});
    }
}

void UndoLog::restoreLatestImage(AcDbObject& object) {
    for (std::size_t at = mRecords.size(); at > mStepBegin; --at) {
        Record& record = mRecords[at - 1];
        if (record.stub == object.mStub && record.kind == Kind::image) {
            const ScopedFlag applying(mApplying, true);
            MemoryDwgFiler filer(AcDb::kUndoFiler, &mDatabase, record.image);
            object.dwgInFields(&filer);
            return;
        }
    }
}

void UndoLog::apply(Record& record) {
    ++mDatabase.impl().changeStamp;
    switch (record.kind) {
    case Kind::image: {
        AcDbObject& object = *record.stub->object;
        std::string now = imageOf(object);
        MemoryDwgFiler filer(AcDb::kUndoFiler, &mDatabase, record.image);
        object.dwgInFields(&filer);
        record.image = std::move(now);
        mDatabase.impl().notifyModified(object);
        break;
    }
    case Kind::created:
    case Kind::erased:
        record.stub->erased = !record.stub->erased;
        std::swap(record.stub->erasedWithOwner, record.erasedWithOwner);
        mDatabase.impl().notifyErased(*record.stub->object, record.stub->erased);
        break;
    case Kind::entities:
        swapStubs(static_cast<AcDbBlockTableRecord&>(*record.stub->object).entitiesForReaders(),
                  record.image);
        break;
    case Kind::lastErased:
        swapStubs(mLastErased, record.image);
        break;
    case Kind::header:
        std::swap(record.value, mDatabase.impl().header[record.index]);
        break;
    case Kind::replaced: {
        AcRxClass* descriptor = acrxFindAcRxClass(record.className.c_str());
        AcDbObject* back = descriptor != nullptr ? AcDbObject::cast(descriptor->create()) : nullptr;
        if (back == nullptr) {
            break; // its module was unloaded: the object stays what it is now
        }
        AcDbObject& object = *record.stub->object;
        std::string now = imageOf(object);
        std::wstring name = object.isA()->name();
        delete mDatabase.impl().replaceObject(record.stub, back, false);
        MemoryDwgFiler filer(AcDb::kUndoFiler, &mDatabase, record.image);
        back->dwgInFields(&filer);
        record.image = std::move(now);
        record.className = std::move(name);
        mDatabase.impl().notifyModified(*back);
        break;
    }
    }
}

void UndoLog::beginCommand(const std::wstring& name) {
    if (mCommandDepth++ == 0) {
        closeStep(mCommand); // what was changed outside of commands is no part of this one
        mCommand = name;
        mStepBegin = mRecords.size();
        ++mEpoch;
    }
}

void UndoLog::endCommand() {
    if (mCommandDepth == 0 || --mCommandDepth > 0) {
        return;
    }
    closeStep(mCommand);
    ++mEpoch;
}

void UndoLog::closeStep(const std::wstring& name) {
    if (mRecords.size() > mOpenBegin) {
        mSteps.push_back({mOpenBegin, name, false});
    }
    mOpenBegin = mRecords.size();
}

void UndoLog::beginGroup(int stepsBefore) {
    // What the running command did so far belongs to the step before the group.
    closeStep(mCommand);
    const std::size_t outer = mGroups.empty() ? 0 : mGroups.back();
    mGroups.push_back(mSteps.size() - std::min(static_cast<std::size_t>(stepsBefore), mSteps.size() - outer));
    ++mEpoch;
}

void UndoLog::endGroup() {
    if (mGroups.empty()) {
        return;
    }
    closeStep(mCommand);
    ++mEpoch;
    const auto first = mSteps.begin() + static_cast<std::ptrdiff_t>(mGroups.back());
    mGroups.pop_back();
    // Marks that were set within stand before the group: it is one step from now on.
    const auto members =
        std::stable_partition(first, mSteps.end(), [](const Step& step) { return step.mark; });
    if (members == mSteps.end()) {
        return;
    }
    const std::size_t begin = members->begin;
    std::for_each(first, members, [&](Step& mark) { mark.begin = std::min(mark.begin, begin); });
    *members = {begin, L"GROUP", false};
    mSteps.erase(members + 1, mSteps.end());
}

void UndoLog::endAllGroups() {
    while (inGroup()) {
        endGroup();
    }
}

void UndoLog::dropEmptiedGroups() {
    while (!mGroups.empty() && mGroups.back() > mSteps.size()) {
        mGroups.pop_back();
    }
}

void UndoLog::setMark() {
    closeStep(mCommand);
    mSteps.push_back({mOpenBegin, L"MARK", true});
    ++mEpoch;
}

bool UndoLog::changedInStep() const {
    return mRecords.size() > mStepBegin;
}

void UndoLog::undoStep(std::vector<std::wstring>* names, bool first) {
    const ScopedFlag applying(mApplying, true);
    RedoStep redo{{}, mSteps.back(), first};
    mSteps.pop_back();
    redo.records.reserve(mRecords.size() - redo.step.begin);
    while (mRecords.size() > redo.step.begin) {
        apply(mRecords.back());
        redo.records.push_back(std::move(mRecords.back()));
        mRecords.pop_back();
    }
    mOpenBegin = mStepBegin = mRecords.size();
    dropEmptiedGroups();
    if (names != nullptr) {
        names->push_back(redo.step.name);
    }
    mRedoSteps.push_back(std::move(redo));
    ++mEpoch;
    ++mChangeCount;
}

int UndoLog::undo(int steps, std::vector<std::wstring>* names) {
    closeStep(mCommand);
    int done = 0;
    for (bool first = true; done < steps && !mSteps.empty(); first = false) {
        const bool mark = mSteps.back().mark;
        undoStep(mark ? nullptr : names, first);
        if (!mark) {
            ++done;
        }
    }
    return done;
}

bool UndoLog::undoBack(std::vector<std::wstring>* names) {
    closeStep(mCommand);
    for (bool first = true; !mSteps.empty(); first = false) {
        const bool mark = mSteps.back().mark;
        undoStep(mark ? nullptr : names, first);
        if (mark) {
            return true;
        }
    }
    return false;
}

void UndoLog::redoStep(std::vector<std::wstring>* names) {
    const ScopedFlag applying(mApplying, true);
    RedoStep redo = std::move(mRedoSteps.back());
    mRedoSteps.pop_back();
    redo.step.begin = mRecords.size();
    while (!redo.records.empty()) {
        apply(redo.records.back());
        mRecords.push_back(std::move(redo.records.back()));
        redo.records.pop_back();
    }
    mOpenBegin = mStepBegin = mRecords.size();
    ++mEpoch;
    ++mChangeCount;
    if (!redo.step.mark && names != nullptr) {
        names->push_back(redo.step.name);
    }
    mSteps.push_back(std::move(redo.step));
}

int UndoLog::redo(int steps, std::vector<std::wstring>* names) {
    int done = 0;
    while (done < steps && !mRedoSteps.empty()) {
        redoStep(names);
        done += mSteps.back().mark ? 0 : 1;
    }
    return done;
}

int UndoLog::redoLastUndo(std::vector<std::wstring>* names) {
    int done = 0;
    for (bool first = false; !first && !mRedoSteps.empty();) {
        first = mRedoSteps.back().first;
        redoStep(names);
        done += mSteps.back().mark ? 0 : 1;
    }
    return done;
}

int UndoLog::markCount() const {
    return static_cast<int>(
        std::count_if(mSteps.begin(), mSteps.end(), [](const Step& step) { return step.mark; }));
}

int UndoLog::undoableSteps() const {
    const auto closed =
        std::count_if(mSteps.begin(), mSteps.end(), [](const Step& step) { return !step.mark; });
    return static_cast<int>(closed) + (mRecords.size() > mOpenBegin ? 1 : 0);
}

void UndoLog::clear() {
    dropRedo();
    mRecords.clear();
    mSteps.clear();
    mOpenBegin = mStepBegin = 0;
    mGroups.clear();
    ++mEpoch;
}

void UndoLog::dropRedo() {
    mRedoSteps.clear();
}

std::size_t UndoLog::openTransaction() {
    ++mEpoch;
    return mRecords.size();
}

void UndoLog::abortTransaction(std::size_t position) {
    const ScopedFlag applying(mApplying, true);
    while (mRecords.size() > position) {
        apply(mRecords.back());
        mRecords.pop_back();
    }
    mOpenBegin = std::min(mOpenBegin, mRecords.size());
    mStepBegin = std::min(mStepBegin, mRecords.size());
    for (auto step = mSteps.rbegin(); step != mSteps.rend() && step->begin > mRecords.size(); ++step) {
        step->begin = mRecords.size(); // a step that ended within the transaction
    }
    ++mEpoch;
}

} // namespace host
