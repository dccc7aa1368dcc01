#include "app/chrome/autosave.h"

#include "app/chrome/files.h"

#include "host/ed/documentstate.h"
#include "host/ed/ed.h"
#include "host/formats/formats.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <QDateTime>
#include <QFile>
#include <QSettings>
#include <cerrno>
#include <csignal>
#include <limits>
#include <sys/wait.h>
#include <unistd.h>

namespace app {
namespace {

bool isAlive(qint64 process) {
    return process > 0 && (kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM);
}

void removeFile(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::remove(file, error);
}

} // namespace

Autosave::Autosave(std::filesystem::path folder) : mFolder(std::move(folder)) {
    QObject::connect(&mTimer, &QTimer::timeout, [this] { save(); });
}

/// A program that ends well leaves nothing behind.
Autosave::~Autosave() {
    finish();
    for (const auto& [document, copy] : mCopies) {
        removeFile(copy.file);
        removeFile(noteOf(copy.file));
    }
}

void Autosave::setInterval(int minutes) {
    constexpr int millisecondsAMinute = 60'000;
    const int interval = minutes * millisecondsAMinute;
    if (minutes <= 0) {
        mTimer.stop();
    } else if (!mTimer.isActive() || mTimer.interval() != interval) {
        mTimer.start(interval);
    }
}

std::filesystem::path Autosave::noteOf(const std::filesystem::path& copy) {
    std::filesystem::path note = copy;
    return note.replace_extension(".ini");
}

bool Autosave::isWriting(Copy& copy, bool wait) {
    if (copy.writer > 0 && waitpid(copy.writer, nullptr, wait ? 0 : WNOHANG) != 0) {
        copy.writer = 0; // ended, or not there any more
    }
    return copy.writer > 0;
}

void Autosave::finish() {
    for (auto& [document, copy] : mCopies) {
        isWriting(copy, true);
    }
}

void Autosave::save() {
    for (const auto& document : acDocManagerPtr()->documents()) {
        if (isChanged(*document)) {
            copy(*document);
        }
    }
}

void Autosave::copy(AcApDocument& document) {
    Copy& kept = mCopies[&document];
    const Adesk::UInt64 changes = document.database()->undoLog().changeCount();
    if (kept.changes == changes + 1 || isWriting(kept, false)) {
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(mFolder, error);
    if (kept.file.empty()) {
        kept.file = mFolder / (std::to_string(getpid()) + "-" + std::to_string(++mNumber) + ".dxf");
    }
    QSettings note(QString::fromStdString(noteOf(kept.file).string()), QSettings::IniFormat);
    note.setValue(QStringLiteral("process"), static_cast<qint64>(getpid()));
    note.setValue(QStringLiteral("title"), QString::fromWCharArray(document.docTitle()));
    note.setValue(QStringLiteral("original"),
                  document.isNamedDrawing()
                      ? QString::fromStdString(host::toNativePath(document.fileName()).string())
                      : QString());
    note.setValue(QStringLiteral("when"),
                  QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    note.sync();
    const pid_t child = fork();
    if (child == 0) {
        host::DxfWriteOptions options;
        options.backup = false;
        const bool written = host::writeDxf(*document.database(), kept.file, options).status == Acad::eOk;
        _exit(written ? 0 : 1);
    }
    kept.writer = child > 0 ? child : 0;
    kept.changes = child > 0 ? changes + 1 : 0;
}

void Autosave::forget(const AcApDocument& document) {
    const auto found = mCopies.find(&document);
    if (found != mCopies.end()) {
        isWriting(found->second, true);
        removeFile(found->second.file);
        removeFile(noteOf(found->second.file));
        mCopies.erase(found);
    }
}

std::vector<Recoverable> Autosave::found() const {
    std::vector<Recoverable> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(mFolder, error)) {
        if (entry.path().extension() != ".dxf") {
            continue;
        }
        const QSettings note(QString::fromStdString(noteOf(entry.path()).string()), QSettings::IniFormat);
        const qint64 process = note.value(QStringLiteral("process")).toLongLong();
        if (process != getpid() && !isAlive(process)) {
            found.push_back({entry.path(), note.value(QStringLiteral("title")).toString(),
                             note.value(QStringLiteral("original")).toString(),
                             note.value(QStringLiteral("when")).toString()});
        }
    }
    return found;
}

bool Autosave::recover(const Recoverable& recoverable) {
    const std::wstring copy = host::toWindowsPath(recoverable.copy);
    if (acDocManagerPtr()->appContextNewDocument(copy.c_str()) != Acad::eOk) {
        return false;
    }
    AcApDocument& document = *curDoc();
    if (!recoverable.original.isEmpty()) {
        document.setFile(host::toWindowsPath(std::filesystem::path(recoverable.original.toStdString())));
    } else if (!recoverable.title.isEmpty() &&
               !acDocManagerPtr()->hasTitle(recoverable.title.toStdWString())) {
        document.setTitle(recoverable.title.toStdWString());
    }
    document.state().savedChangeCount = std::numeric_limits<Adesk::UInt64>::max();
    return true;
}

void Autosave::drop(const Recoverable& recoverable) {
    removeFile(recoverable.copy);
    removeFile(noteOf(recoverable.copy));
}

} // namespace app
