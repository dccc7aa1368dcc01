// Documents: a drawing database with its file, its commands in progress, its queue of sent text and its
// selection; and the manager that holds them and says which is current.
#pragma once

#include "host/db/db.h"

#include <memory>
#include <string>
#include <vector>

class AcApDocument;
class AcApDocumentIterator;
class AcEdInputPointManager;

namespace host {
struct DocumentState;
struct PickSet;
} // namespace host

namespace AcAp {
enum DocLockMode {
    kNone = 0x00,
    kAutoWrite = 0x01,
    kNotLocked = 0x02,
    kWrite = 0x04,
    kProtectedAutoWrite = 0x14,
    kRead = 0x20,
    kXWrite = 0x40
};
}

class AcApDocument : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcApDocument);

public:
    explicit AcApDocument(std::unique_ptr<AcDbDatabase> database);
    ~AcApDocument() override;

    /// Full Windows path of the drawing; its title when it was never saved.
    const ACHAR* fileName() const;
    const ACHAR* docTitle() const;
    AcDbDatabase* database() const { return mDatabase.get(); }
    AcTransactionManager* transactionManager() const { return mDatabase->transactionManager(); }
    AcAp::DocLockMode lockMode(bool includeMyLocks = false) const;
    AcAp::DocLockMode myLockMode() const { return lockMode(true); }
    /// No command runs and nothing waits to be run.
    bool isQuiescent() const;
    bool isNamedDrawing() const;
    bool isReadOnly() const { return false; }
    void pushDbmod();
    void popDbmod();
    AcEdInputPointManager* inputPointManager() const;

    host::DocumentState& state() const { return *mState; }
    /// The file's name is the database's from now on; the title follows.
    void setFile(const std::wstring& windowsPath);
    void setTitle(const std::wstring& title);

private:
    std::unique_ptr<AcDbDatabase> mDatabase;
    std::unique_ptr<host::DocumentState> mState;
    std::wstring mFile;
    std::wstring mTitle;
};

class AcApDocManagerReactor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcApDocManagerReactor);

public:
    virtual void documentCreateStarted(AcApDocument*) {}
    virtual void documentCreated(AcApDocument*) {}
    virtual void documentToBeDestroyed(AcApDocument*) {}
    virtual void documentDestroyed(const ACHAR*) {}
    virtual void documentToBeActivated(AcApDocument*) {}
    virtual void documentToBeDeactivated(AcApDocument*) {}
    virtual void documentActivated(AcApDocument*) {}
    virtual void documentBecameCurrent(AcApDocument*) {}
    virtual void documentLockModeChanged(AcApDocument*, AcAp::DocLockMode, AcAp::DocLockMode,
                                         AcAp::DocLockMode, const ACHAR*) {}
    virtual void documentTitleUpdated(AcApDocument*) {}
};

class AcApDocManager : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcApDocManager);

public:
    AcApDocument* curDocument() const { return mCurrent; }
    AcApDocument* mdiActiveDocument() const { return mCurrent; }
    AcApDocument* document(const AcDbDatabase* database) const;
    int documentCount() const { return static_cast<int>(mDocuments.size()); }
    AcApDocumentIterator* newAcApDocumentIterator(); ///< owned by the caller
    bool isApplicationContext() const { return mApplicationContext > 0; }
    bool isDocumentActivationEnabled() const { return true; }

    Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode = AcAp::kWrite,
                                   const ACHAR* globalCommand = nullptr, const ACHAR* localCommand = nullptr,
                                   bool prompt = true);
    Acad::ErrorStatus unlockDocument(AcApDocument* document);
    Acad::ErrorStatus setCurDocument(AcApDocument* document, AcAp::DocLockMode mode = AcAp::kNone,
                                     bool activate = false);
    Acad::ErrorStatus activateDocument(AcApDocument* document, bool passScript = false);
    /// Appends the text to what is typed in the document; it is read as soon as input is asked for.
    Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const ACHAR* text, bool activate = true,
                                          bool wrapUpInactiveDocument = false, bool echo = true);
    void executeInApplicationContext(void (*procedure)(void*), void* data) const;
    Acad::ErrorStatus beginExecuteInCommandContext(void (*procedure)(void*), void* data);

    /// A new drawing from a template (null or empty: metric standard settings), made current.
    Acad::ErrorStatus appContextNewDocument(const ACHAR* templateName);
    /// Reads a drawing and makes it current. The file is read before anything else changes.
    Acad::ErrorStatus appContextOpenDocument(const ACHAR* drawingName);
    Acad::ErrorStatus appContextCloseDocument(AcApDocument* document) { return closeDocument(document); }
    /// Closes without saving; running and waiting commands of the document are cancelled.
    Acad::ErrorStatus closeDocument(AcApDocument* document);

    void addReactor(AcApDocManagerReactor* reactor);
    void removeReactor(AcApDocManagerReactor* reactor);

    /// Makes a document of a database: modules are told (kLoadDwgMsg) and it becomes current.
    AcApDocument* adopt(std::unique_ptr<AcDbDatabase> database, const std::wstring& windowsPath);
    const std::vector<std::unique_ptr<AcApDocument>>& documents() const { return mDocuments; }
    /// Whether the document still is open; for what held it across calls that may close it.
    bool isOpen(const AcApDocument* document) const;
    /// Whether an open document goes by that name.
    bool hasTitle(const std::wstring& title) const;

private:
    void makeCurrent(AcApDocument* document);
    template <class Call>
    void notify(Call call);

    std::vector<std::unique_ptr<AcApDocument>> mDocuments;
    AcApDocument* mCurrent = nullptr;
    std::vector<AcApDocManagerReactor*> mReactors;
    int mNumberOfNew = 0;
    mutable int mApplicationContext = 0;
};

class AcApDocumentIterator {
public:
    explicit AcApDocumentIterator(const AcApDocManager& manager) : mManager(manager) {}
    bool done() const { return mIndex >= mManager.documents().size(); }
    void step() { ++mIndex; }
    AcApDocument* document() { return done() ? nullptr : mManager.documents()[mIndex].get(); }

private:
    const AcApDocManager& mManager;
    std::size_t mIndex = 0;
};

AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
/// The current document; null when none is open.
inline AcApDocument* curDoc() {
    return acDocManagerPtr()->curDocument();
}

/// Holds a document locked in its scope.
class AcAxDocLock {
public:
    AcAxDocLock() : AcAxDocLock(curDoc()) {}
    explicit AcAxDocLock(AcApDocument* document) : mDocument(document) {
        mStatus = acDocManagerPtr()->lockDocument(document);
    }
    explicit AcAxDocLock(AcDbDatabase* database) : AcAxDocLock(acDocManagerPtr()->document(database)) {}
    ~AcAxDocLock() {
        if (mStatus == Acad::eOk) {
            acDocManagerPtr()->unlockDocument(mDocument);
        }
    }
    AcAxDocLock(const AcAxDocLock&) = delete;
    AcAxDocLock& operator=(const AcAxDocLock&) = delete;
    Acad::ErrorStatus lockStatus() const { return mStatus; }

private:
    AcApDocument* mDocument;
    Acad::ErrorStatus mStatus;
};
