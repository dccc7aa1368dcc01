// Documents and their manager.
#include "host/ed/acdocman.h"

#include "host/ed/aced.h"
#include "host/ed/acedreactor.h"
#include "host/ed/commandrunner.h"
#include "host/ed/console.h"
#include "host/ed/documentfonts.h"
#include "host/ed/documentstate.h"
#include "host/ed/drawingtimes.h"
#include "host/ed/editorview.h"
#include "host/ed/input.h"
#include "host/ed/lisphook.h"
#include "host/ed/session.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocument, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManager, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManagerReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEditorReactor, AcRxObject)

AcApDocument::AcApDocument(std::unique_ptr<AcDbDatabase> database)
    : mDatabase(std::move(database)), mState(std::make_unique<host::DocumentState>()) {
    mState->savedChangeCount = mDatabase->undoLog().changeCount();
    mDatabase->impl().extentsHold();
}
AcApDocument::~AcApDocument() = default;

const ACHAR* AcApDocument::fileName() const {
    return isNamedDrawing() ? mFile.c_str() : mTitle.c_str();
}
const ACHAR* AcApDocument::docTitle() const {
    return mTitle.c_str();
}
bool AcApDocument::isNamedDrawing() const {
    return !mFile.empty();
}
bool AcApDocument::isQuiescent() const {
    return mState->active.empty() && mState->waiting.empty() && mState->postedText.empty();
}
AcAp::DocLockMode AcApDocument::lockMode(bool) const {
    return mState->lockCount > 0 ? AcAp::kWrite : mState->active.empty() ? AcAp::kNone : AcAp::kAutoWrite;
}
void AcApDocument::pushDbmod() {
    mState->pushedDbmod.push_back(mDatabase->undoLog().changeCount() - mState->savedChangeCount);
}
void AcApDocument::popDbmod() {
    if (!mState->pushedDbmod.empty()) {
        mState->savedChangeCount = mDatabase->undoLog().changeCount() - mState->pushedDbmod.back();
        mState->pushedDbmod.pop_back();
    }
}
AcEdInputPointManager* AcApDocument::inputPointManager() const {
    return &mState->points;
}
void AcApDocument::setFile(const std::wstring& windowsPath) {
    mFile = windowsPath;
    mTitle = host::fileNameOf(windowsPath);
    mDatabase->setFilename(windowsPath);
}
void AcApDocument::setTitle(const std::wstring& title) {
    mTitle = title;
}

AcApDocManager* acDocManagerPtr() {
    static AcApDocManager manager;
    return &manager;
}

template <class Call>
void AcApDocManager::notify(Call call) {
    for (AcApDocManagerReactor* reactor : std::vector(mReactors)) {
        call(*reactor);
    }
}

void AcApDocManager::addReactor(AcApDocManagerReactor* reactor) {
    if (std::find(mReactors.begin(), mReactors.end(), reactor) == mReactors.end()) {
        mReactors.push_back(reactor);
    }
}

void AcApDocManager::removeReactor(AcApDocManagerReactor* reactor) {
    std::erase(mReactors, reactor);
}

AcApDocument* AcApDocManager::document(const AcDbDatabase* database) const {
    const auto found = std::find_if(
        mDocuments.begin(), mDocuments.end(),
        [&](const std::unique_ptr<AcApDocument>& document) { return document->database() == database; });
    return found != mDocuments.end() ? found->get() : nullptr;
}

bool AcApDocManager::isOpen(const AcApDocument* document) const {
    return std::any_of(mDocuments.begin(), mDocuments.end(),
                       [&](const std::unique_ptr<AcApDocument>& other) { return other.get() == document; });
}

AcApDocumentIterator* AcApDocManager::newAcApDocumentIterator() {
    return new AcApDocumentIterator(*this);
}

Acad::ErrorStatus AcApDocManager::lockDocument(AcApDocument* document, AcAp::DocLockMode, const ACHAR*,
                                               const ACHAR*, bool) {
    if (document == nullptr || !isOpen(document)) {
        return Acad::eNoDocument;
    }
    ++document->state().lockCount;
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::unlockDocument(AcApDocument* document) {
    if (document == nullptr || !isOpen(document)) {
        return Acad::eNoDocument;
    }
    if (document->state().lockCount == 0) {
        return Acad::eInvalidInput;
    }
    --document->state().lockCount;
    return Acad::eOk;
}

void AcApDocManager::makeCurrent(AcApDocument* document) {
    if (mCurrent == document) {
        return;
    }
    if (AcApDocument* before = mCurrent) {
        notify([&](AcApDocManagerReactor& reactor) { reactor.documentToBeDeactivated(before); });
    }
    if (document != nullptr) {
        notify([&](AcApDocManagerReactor& reactor) { reactor.documentToBeActivated(document); });
    }
    mCurrent = document;
    acdbHostApplicationServices()->setWorkingDatabase(document != nullptr ? document->database() : nullptr);
    if (document != nullptr) {
        if (!document->state().postedText.empty()) {
            host::inputStream().post(*document, std::exchange(document->state().postedText, {}));
        }
        notify([&](AcApDocManagerReactor& reactor) {
            reactor.documentBecameCurrent(document);
            reactor.documentActivated(document);
        });
    }
}

Acad::ErrorStatus AcApDocManager::setCurDocument(AcApDocument* document, AcAp::DocLockMode mode, bool) {
    if (!isOpen(document)) {
        return Acad::eNoDocument;
    }
    makeCurrent(document);
    return mode == AcAp::kNone ? Acad::eOk : lockDocument(document, mode);
}

Acad::ErrorStatus AcApDocManager::activateDocument(AcApDocument* document, bool) {
    return setCurDocument(document, AcAp::kNone, true);
}

Acad::ErrorStatus AcApDocManager::sendStringToExecute(AcApDocument* document, const ACHAR* text,
                                                      bool activate, bool, bool) {
    if (!isOpen(document)) {
        return Acad::eNoDocument;
    }
    if (text == nullptr) {
        return Acad::eInvalidInput;
    }
    if (activate) {
        makeCurrent(document);
    }
    host::inputStream().post(*document, text);
    return Acad::eOk;
}

void AcApDocManager::executeInApplicationContext(void (*procedure)(void*), void* data) const {
    ++mApplicationContext;
    try {
        procedure(data);
    } catch (...) {
        --mApplicationContext;
        throw;
    }
    --mApplicationContext;
}

Acad::ErrorStatus AcApDocManager::beginExecuteInCommandContext(void (*procedure)(void*), void* data) {
    procedure(data);
    return Acad::eOk;
}

bool AcApDocManager::hasTitle(const std::wstring& title) const {
    return std::any_of(mDocuments.begin(), mDocuments.end(),
                       [&](const auto& document) { return host::equalNoCase(document->docTitle(), title); });
}

AcApDocument* AcApDocManager::adopt(std::unique_ptr<AcDbDatabase> database, const std::wstring& windowsPath) {
    AcApDocument* document =
        mDocuments.emplace_back(std::make_unique<AcApDocument>(std::move(database))).get();
    notify([&](AcApDocManagerReactor& reactor) { reactor.documentCreateStarted(document); });
    if (windowsPath.empty()) {
        std::wstring title;
        do {
            title = host::formatted(L"Drawing%d.dwg", ++mNumberOfNew);
        } while (hasTitle(title));
        document->setTitle(title);
    } else {
        document->setFile(windowsPath);
    }
    makeCurrent(document);
    notify([&](AcApDocManagerReactor& reactor) { reactor.documentCreated(document); });
    for (const auto& module : host::loadedModules()) {
        host::sendMessage(*module, AcRx::kLoadDwgMsg);
    }
    return document;
}

namespace {

/// Reads a drawing into a new database; a failure is told in one line.
std::unique_ptr<AcDbDatabase> readDrawing(const std::filesystem::path& file, Acad::ErrorStatus& status) {
    auto database = std::make_unique<AcDbDatabase>(false);
    std::wstring message;
    status = host::editorView().runLong(host::displayPath(file), [&] {
        const Acad::ErrorStatus read =
            host::fileFormats().read ? host::fileFormats().read(*database, host::toWindowsPath(file), message)
                                     : Acad::eNotImplementedYet;
        if (read == Acad::eOk && host::editorView().isShown()) {
            database->impl().places.of(database->currentSpaceId()); // where all lies: a picture asks for it
        }
        return read;
    });
    if (status == Acad::eOk) {
        if (!message.empty()) {
            acutPrintf(L"\n%s", message.c_str());
        }
        return database;
    }
    host::reportFailure(message.empty() ? L"无法读取图形文件 " + host::displayPath(file) : message);
    return nullptr;
}

/// The file that a name means, where it is or would be.
std::filesystem::path drawingFile(const std::wstring& name) {
    std::filesystem::path file = host::findSupportFile(name);
    if (file.empty() && host::extensionOf(name).empty()) {
        for (const wchar_t* extension : {L".dwg", L".dxf"}) {
            if (file = host::findSupportFile(name + extension); !file.empty()) {
                break;
            }
        }
    }
    std::error_code error;
    return file.empty() ? std::filesystem::absolute(host::toNativePath(name), error) : file;
}

} // namespace

Acad::ErrorStatus AcApDocManager::appContextNewDocument(const ACHAR* templateName) {
    std::unique_ptr<AcDbDatabase> database;
    if (templateName == nullptr || *templateName == L'\0') {
        database = std::make_unique<AcDbDatabase>(true);
    } else {
        Acad::ErrorStatus status = Acad::eOk;
        database = readDrawing(drawingFile(templateName), status);
        if (database == nullptr) {
            return status;
        }
    }
    host::stampCreated(*database);
    host::useFontsBeside({});
    adopt(std::move(database), {});
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::appContextOpenDocument(const ACHAR* drawingName) {
    if (drawingName == nullptr) {
        return Acad::eInvalidInput;
    }
    std::wstring name = drawingName;
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.beginDwgOpen(name.data()); });
    const std::filesystem::path file = drawingFile(name);
    host::useFontsBeside(file.parent_path());
    Acad::ErrorStatus status = Acad::eOk;
    std::unique_ptr<AcDbDatabase> database = readDrawing(file, status);
    if (database == nullptr) {
        return status;
    }
    AcApDocument* document = adopt(std::move(database), host::toWindowsPath(file));
    host::tellMissingFonts(*document->database());
    acedEditor->notify(
        [&](AcEditorReactor& reactor) { reactor.endDwgOpen(name.data(), document->database()); });
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::closeDocument(AcApDocument* document) {
    const auto found =
        std::find_if(mDocuments.begin(), mDocuments.end(),
                     [&](const std::unique_ptr<AcApDocument>& other) { return other.get() == document; });
    if (found == mDocuments.end()) {
        return Acad::eNoDocument;
    }
    AcApDocument* before = mCurrent;
    makeCurrent(document);
    host::cancelWaitingCommands(*document);
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.beginClose(document->database()); });
    for (const auto& module : host::loadedModules()) {
        host::sendMessage(*module, AcRx::kUnloadDwgMsg);
    }
    if (host::lispHook().documentClosed) {
        host::lispHook().documentClosed(*document);
    }
    notify([&](AcApDocManagerReactor& reactor) { reactor.documentToBeDestroyed(document); });
    const std::wstring name = document->fileName();
    // What is open after: the document that was current, or the one opened last.
    std::unique_ptr<AcApDocument> closing;
    for (std::unique_ptr<AcApDocument>& other : mDocuments) {
        if (other.get() == document) {
            closing = std::move(other);
        }
    }
    std::erase(mDocuments, nullptr);
    AcApDocument* next = before != document ? before : mDocuments.empty() ? nullptr : mDocuments.back().get();
    makeCurrent(next);
    closing.reset();
    notify([&](AcApDocManagerReactor& reactor) { reactor.documentDestroyed(name.c_str()); });
    return Acad::eOk;
}

AcEditor* acedEditorPtr() {
    static AcEditor editor;
    return &editor;
}

void AcEditor::addReactor(AcEditorReactor* reactor) {
    if (std::find(mReactors.begin(), mReactors.end(), reactor) == mReactors.end()) {
        mReactors.push_back(reactor);
    }
}

void AcEditor::removeReactor(AcEditorReactor* reactor) {
    std::erase(mReactors, reactor);
}
