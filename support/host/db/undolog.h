// The one log behind UNDO, REDO and transactions: states of objects from before their changes.
#pragma once

#include "host/db/headervars.h"

#include <deque>
#include <string>
#include <vector>

class AcDbBlockTableRecord;

namespace host {

class DatabaseImpl;

/// A log of one database. A step is what one U takes back: a command, or a group of them. Recording an
/// object's state costs its size once a step; undo and redo cost the same as the change did.
class UndoLog {
public:
    explicit UndoLog(AcDbDatabase& database);
    ~UndoLog();

    bool isRecording() const { return mRecording && mSuspended == 0; }
    void setRecording(bool on);
    /// While in scope nothing is recorded (files being read, databases being built).
    class Suspend {
    public:
        explicit Suspend(UndoLog& log) : mLog(log) { ++mLog.mSuspended; }
        ~Suspend() { --mLog.mSuspended; }
        Suspend(const Suspend&) = delete;
        Suspend& operator=(const Suspend&) = delete;

    private:
        UndoLog& mLog;
    };

    // Steps. A command's changes between beginCommand and endCommand are one step; none when nothing changed.

    void beginCommand(const std::wstring& name);
    void endCommand();
    /// Commands until endGroup become one step, and are single ones until then. Groups nest: an inner one is
    /// a step of the outer. `stepsBefore` so many steps that were just made belong to the group already.
    void beginGroup(int stepsBefore = 0);
    void endGroup();
    void endAllGroups();
    bool inGroup() const { return !mGroups.empty(); }
    /// Between beginCommand and endCommand: steps can't be taken back.
    bool inCommand() const { return mCommandDepth > 0; }
    void setMark();

    /// Takes steps back; returns how many. Names of the commands taken back are added to `names`. Marks on
    /// the way are passed.
    int undo(int steps, std::vector<std::wstring>* names = nullptr);
    /// Takes back up to the last mark, or all when there is none; false in the second case.
    bool undoBack(std::vector<std::wstring>* names = nullptr);
    /// Repeats steps taken back, until something else changes.
    int redo(int steps, std::vector<std::wstring>* names = nullptr);
    /// Repeats all that the last undo took back, with its marks; returns how many steps.
    int redoLastUndo(std::vector<std::wstring>* names = nullptr);
    bool hasMark() const { return markCount() > 0; }
    int markCount() const;
    int undoableSteps() const;
    /// Marks included; without what no step holds yet.
    std::size_t stepCount() const { return mSteps.size(); }
    int redoableSteps() const { return static_cast<int>(mRedoSteps.size()); }
    /// Forgets everything (a drawing was opened, undo was switched off).
    void clear();
    /// Something was recorded since the step began.
    bool changedInStep() const;
    /// Grows with every change; equal values mean an unchanged drawing (used for "modified since saving").
    Adesk::UInt64 changeCount() const { return mChangeCount; }

    // Recording, called by the database's objects.

    void recordImage(AcDbObject& object);
    void recordCreated(AcDbStub& stub);
    void recordErase(AcDbStub& stub);
    /// Puts back the state of an object from before its last recorded change, if there is one in this step.
    void restoreLatestImage(AcDbObject& object);
    /// Undo, redo or an abort is putting states back: objects may be written without being open.
    bool isApplying() const { return mApplying; }
    /// The order of a block's entities is about to change other than by appending.
    void recordEntities(AcDbBlockTableRecord& block);
    /// Remembers what a command erased, for bringing it back; undo and redo take this along.
    void setLastErased(std::vector<AcDbStub*> entities);
    const std::vector<AcDbStub*>& lastErased() const { return mLastErased; }
    void recordHeader(HeaderIndex index, const HeaderValue& old);
    /// `old`, of another class, is about to lose its id to another object.
    void recordReplaced(AcDbStub& stub, const AcDbObject& old);

    // Positions, for transactions.

    std::size_t position() const { return mRecords.size(); }
    /// Starts a new epoch: objects changed from here on are recorded again.
    std::size_t openTransaction();
    void abortTransaction(std::size_t position);
    Adesk::UInt32 epoch() const { return mEpoch; }

private:
    enum class Kind { image, created, erased, lastErased, entities, header, replaced };
    struct Record {
        Kind kind;
        AcDbStub* stub = nullptr;
        std::string
            image; ///< image, replaced: what the object filed; entities, lastErased: addresses of stubs
        std::wstring className;       ///< replaced
        HeaderIndex index = 0;        ///< header
        bool erasedWithOwner = false; ///< created, erased
        HeaderValue value;            ///< header
    };
    struct Step {
        std::size_t begin = 0; ///< first record
        std::wstring name;
        bool mark = false;
    };
    struct RedoStep {
        std::vector<Record> records;
        Step step;
        bool first = false; ///< that its undo took back
    };

    void add(Record record);
    /// Puts the record's state back; the record then holds the state it replaced.
    void apply(Record& record);
    /// What was recorded since the last step becomes one, if it is anything.
    void closeStep(const std::wstring& name);
    void undoStep(std::vector<std::wstring>* names, bool first);
    void redoStep(std::vector<std::wstring>* names);
    /// Groups that begin after the last step are over: it was taken back.
    void dropEmptiedGroups();
    void dropRedo();

    AcDbDatabase& mDatabase;
    std::deque<Record> mRecords;
    std::vector<Step> mSteps;
    std::vector<RedoStep> mRedoSteps;
    std::vector<AcDbStub*> mLastErased;
    Adesk::UInt32 mEpoch = 1;
    Adesk::UInt64 mChangeCount = 0;
    std::wstring mCommand;
    std::size_t mOpenBegin = 0; ///< first record that belongs to no step yet
    std::size_t mStepBegin = 0; ///< first record of the running command
    int mCommandDepth = 0;
    std::vector<std::size_t> mGroups; ///< open ones, innermost last: number of steps before each
    int mSuspended = 0;
    bool mRecording = true;
    bool mApplying = false;
};

} // namespace host
