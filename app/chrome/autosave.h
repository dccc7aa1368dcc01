// Copies of changed drawings beside the settings, so that a program that ends badly loses minutes at most.
// Copies are written by a child process from its own snapshot of the memory: the user never waits for one.
#pragma once

#include "host/ge/ge.h"

#include <QString>
#include <QTimer>
#include <filesystem>
#include <map>
#include <sys/types.h>
#include <vector>

class AcApDocument;

namespace app {

/// A copy that a program left behind that is no more.
struct Recoverable {
    std::filesystem::path copy;
    QString title;
    QString original; ///< native path; empty when the drawing was never saved
    QString when;
};

class Autosave {
public:
    explicit Autosave(std::filesystem::path folder);
    ~Autosave();
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    /// Saves every so many minutes; 0: never.
    void setInterval(int minutes);
    /// Copies what changed since its last copy.
    void save();
    /// Waits until the copies are written.
    void finish();
    /// The drawing was saved or closed: its copy is not needed.
    void forget(const AcApDocument& document);

    std::vector<Recoverable> found() const;
    /// Opens the copy as a changed drawing with its old name; false with a line told when it can't be read.
    static bool recover(const Recoverable& recoverable);
    static void drop(const Recoverable& recoverable);

private:
    struct Copy {
        std::filesystem::path file;
        Adesk::UInt64 changes = 0; ///< of the drawing when the copy was made
        pid_t writer = 0;
    };
    void copy(AcApDocument& document);
    static bool isWriting(Copy& copy, bool wait);
    static std::filesystem::path noteOf(const std::filesystem::path& copy);

    std::filesystem::path mFolder;
    std::map<const AcApDocument*, Copy> mCopies;
    QTimer mTimer;
    int mNumber = 0;
};

} // namespace app
