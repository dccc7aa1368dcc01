// Where a step of the undo log begins and ends around commands and LISP.
#include "host/ed/documentstate.h"

namespace host {

std::function<std::unique_ptr<StepFollower>(AcDbDatabase&)>& stepFollowerMaker() {
    static std::function<std::unique_ptr<StepFollower>(AcDbDatabase&)> maker;
    return maker;
}

void UndoSteps::needFollower(AcDbDatabase& database) {
    if (stepFollowerMaker() && (mFollower == nullptr || !mFollower->follows(database))) {
        mFollower = stepFollowerMaker()(database);
    }
}

void UndoSteps::openLispStep(AcDbDatabase& database) {
    if (mLisp > 0 && mCommands == 0 && !mLispStepOpen) {
        needFollower(database);
        database.undoLog().beginCommand(L"LISP");
        mLispStepOpen = true;
    }
}

void UndoSteps::closeLispStep(AcDbDatabase& database) {
    if (mLispStepOpen) {
        const std::size_t before = database.undoLog().stepCount();
        if (mFollower != nullptr) {
            mFollower->stepEnds();
        }
        database.undoLog().endCommand();
        mLispStepMade = database.undoLog().stepCount() > before;
        mLispStepOpen = false;
    }
}

void UndoSteps::beginCommand(AcDbDatabase& database, const std::wstring& name) {
    if (mCommands++ == 0) {
        closeLispStep(database);
    }
    needFollower(database);
    database.undoLog().beginCommand(name);
}

void UndoSteps::endCommand(AcDbDatabase& database) {
    if (mFollower != nullptr) {
        mFollower->stepEnds();
    }
    database.undoLog().endCommand();
    --mCommands;
    openLispStep(database);
}

void UndoSteps::beginUnrecorded(AcDbDatabase& database) {
    if (mCommands == 0) {
        closeLispStep(database);
    }
}

void UndoSteps::endUnrecorded(AcDbDatabase& database) {
    openLispStep(database);
}

void UndoSteps::beginGroup(AcDbDatabase& database) {
    const bool byLisp = mLisp > 0 && mCommands == 0;
    if (mLisp == 0 && mCommands == 0) {
        database.undoLog().endAllGroups();
    }
    database.undoLog().beginGroup(byLisp && mLispStepMade ? 1 : 0);
}

void UndoSteps::beginLisp(AcDbDatabase& database) {
    ++mLisp;
    openLispStep(database);
}

void UndoSteps::endLisp(AcDbDatabase& database) {
    if (--mLisp == 0) {
        closeLispStep(database);
    }
}

} // namespace host
