// Nested transactions over the undo log.
#pragma once

#include "host/db/dbdatabase.h"

class AcTransaction : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcTransaction);

public:
    /// The object stays open until the outermost transaction ends.
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                bool openErased = false);

private:
    friend class AcDbTransactionManager;
    std::size_t mUndoPosition = 0;
    AcDbDatabase* mDatabase = nullptr;
};

class AcDbTransactionManager : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbTransactionManager);

public:
    explicit AcDbTransactionManager(AcDbDatabase& database) : mDatabase(database) {}
    ~AcDbTransactionManager() override;
    AcTransaction* startTransaction();
    Acad::ErrorStatus endTransaction();
    /// Gives back every object's state from when the transaction started.
    Acad::ErrorStatus abortTransaction();
    int numActiveTransactions() const { return static_cast<int>(mTransactions.size()); }
    AcTransaction* topTransaction() const {
        return mTransactions.empty() ? nullptr : mTransactions.back().get();
    }
    Acad::ErrorStatus addNewlyCreatedDBRObject(AcDbObject* object, bool add = true);
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                bool openErased = false);
    void queueForGraphicsFlush() {}
    void flushGraphics() {}

private:
    void closeAll();
    AcDbDatabase& mDatabase;
    std::vector<std::unique_ptr<AcTransaction>> mTransactions;
    std::vector<AcDbObject*> mOpened;
};
using AcTransactionManager = AcDbTransactionManager;
