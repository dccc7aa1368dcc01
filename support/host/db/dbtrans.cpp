// Transactions hold objects open and give their states back when they are aborted.
#include "host/db/dbtrans.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcTransaction, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbTransactionManager, AcRxObject)

Acad::ErrorStatus AcTransaction::getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                           bool openErased) {
    return mDatabase->transactionManager()->getObject(object, id, mode, openErased);
}

AcDbTransactionManager::~AcDbTransactionManager() = default;

AcTransaction* AcDbTransactionManager::startTransaction() {
    auto transaction = std::make_unique<AcTransaction>();
    transaction->mDatabase = &mDatabase;
    transaction->mUndoPosition = mDatabase.undoLog().openTransaction();
    return mTransactions.emplace_back(std::move(transaction)).get();
}

Acad::ErrorStatus AcDbTransactionManager::endTransaction() {
    if (mTransactions.empty()) {
        return Acad::eNoActiveTransactions;
    }
    mTransactions.pop_back();
    if (mTransactions.empty()) {
        closeAll();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTransactionManager::abortTransaction() {
    if (mTransactions.empty()) {
        return Acad::eNoActiveTransactions;
    }
    const std::size_t position = mTransactions.back()->mUndoPosition;
    mTransactions.pop_back();
    if (mTransactions.empty()) {
        closeAll();
    }
    mDatabase.undoLog().abortTransaction(position);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTransactionManager::addNewlyCreatedDBRObject(AcDbObject* object, bool add) {
    if (mTransactions.empty()) {
        return Acad::eNoActiveTransactions;
    }
    AcDbStub* stub = object != nullptr ? object->objectId().stub() : nullptr;
    if (stub == nullptr) {
        return Acad::eNullObjectPointer;
    }
    stub->transactionOpen = add;
    if (add) {
        mOpened.push_back(object);
    } else {
        std::erase(mOpened, object);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTransactionManager::getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                                    bool openErased) {
    object = nullptr;
    if (mTransactions.empty()) {
        return Acad::eNoActiveTransactions;
    }
    AcDbStub* stub = id.stub();
    if (stub == nullptr || stub->object == nullptr) {
        return stub == nullptr ? Acad::eNullObjectId : Acad::eUnknownHandle;
    }
    if (!stub->transactionOpen) {
        if (const Acad::ErrorStatus status = acdbOpenAcDbObject(object, id, mode, openErased);
            status != Acad::eOk) {
            return status;
        }
        stub->transactionOpen = true;
        mOpened.push_back(object);
        return Acad::eOk;
    }
    if (stub->erased && !openErased) {
        return Acad::eWasErased;
    }
    if (mode == AcDb::kForWrite && !stub->openForWrite) {
        if (const Acad::ErrorStatus status = stub->object->upgradeOpen(); status != Acad::eOk) {
            return status;
        }
    }
    object = stub->object;
    return Acad::eOk;
}

void AcDbTransactionManager::closeAll() {
    for (AcDbObject* object : std::exchange(mOpened, {})) {
        if (AcDbStub* stub = object->objectId().stub()) {
            stub->transactionOpen = false;
            object->close();
        }
    }
}
