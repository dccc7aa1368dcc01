// Drawing files: readers and writers over the database, and linetype files. Every reader fills an empty
// database and says in a report what it had to repair or leave out; the caller throws a half-filled
// database away when reading failed.
#pragma once

#include "host/db/db.h"
#include "host/db/entities/hatchpattern.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// One thing of a file that did not come over as it stood, or of a drawing that a file cannot hold.
struct ReadEntry {
    enum class Done { kept, repaired, leftOut };

    std::size_t place = 0;      ///< line, 1 for the first, or byte of a binary file; 0: not at one place
    Adesk::UInt64 handle = 0;   ///< of the object concerned; 0: none
    std::wstring what;          ///< in the user's language, without place and consequence
    Done done = Done::repaired; ///< `kept`: not understood, but goes back into a file as it came
    bool binary = false;        ///< the place is a byte

    /// One line: place, what, and what was done.
    std::wstring text() const;
};

class ReadReport {
public:
    /// Entries beyond this many are only counted, so that a hostile file cannot fill the memory.
    static constexpr std::size_t maximumEntries = 1000;

    void add(ReadEntry entry);
    const std::vector<ReadEntry>& entries() const { return mEntries; }
    std::size_t count() const { return mCount; }
    bool empty() const { return mCount == 0; }
    /// The first entries, a line each, and how many more there are.
    std::wstring text(std::size_t lines = maximumEntries) const;

private:
    std::vector<ReadEntry> mEntries;
    std::size_t mCount = 0;
};

struct ReadResult {
    Acad::ErrorStatus status = Acad::eOk;
    std::wstring message; ///< one line on why reading failed; empty when it did not
    ReadReport report;
};

struct WriteResult {
    Acad::ErrorStatus status = Acad::eOk;
    std::wstring message;
    ReadReport report; ///< what the release of the file does not have
};

/// Reads a DXF file, text or binary, of release 9 (AC1004) to 2018 (AC1032), into a database made without a
/// default drawing. Afterwards the database has everything a complete drawing needs. Nothing is recorded for
/// undo.
ReadResult readDxf(AcDbDatabase& database, const std::filesystem::path& file);
/// The same from bytes in memory.
ReadResult readDxfText(AcDbDatabase& database, std::string_view bytes);

struct DxfWriteOptions {
    AcDb::AcDbDwgVersion version = AcDb::kDHL_1032; ///< release 2000 (AC1015) and later
    bool binary = false;
    bool backup = true; ///< the old file stays as NAME.bak
};

/// Writes the whole drawing: all or nothing under the given name. What an older release does not have is
/// left out or turned into what it has.
WriteResult writeDxf(AcDbDatabase& database, const std::filesystem::path& file,
                     const DxfWriteOptions& options = {});
/// The same into memory.
std::string writeDxfText(AcDbDatabase& database, const DxfWriteOptions& options = {},
                         ReadReport* report = nullptr);

struct DumpOptions {
    bool volatileToo = false;   ///< time stamps, handle seed, fingerprint and the like
    bool digitsRounded = false; ///< reals to 9 significant digits, for comparing across conversions
};

/// The drawing as text for comparing: header variables by name, then every object that is not erased, by
/// handle, in its DXF groups, a group a line. Equal drawings give equal texts.
std::string dumpDrawing(AcDbDatabase& database, const DumpOptions& options = {});

/// Loads linetypes of a definition file; `name` may hold * and ?. eFileNotFound, eUndefinedLineType when the
/// file has none of that name, eDuplicateRecordName when one is there already (the others are loaded),
/// eInvalidLineType for a faulty definition; `message` then says what and where.
Acad::ErrorStatus loadLinetypes(const std::wstring& name, const std::wstring& file, AcDbDatabase& database,
                                std::wstring* message = nullptr);

/// The lines of a hatch pattern at scale 1 and angle 0, from a file or, without one, from acadiso.pat
/// (acad.pat for a drawing in inches) or a file of the pattern's own name. eFileNotFound, eKeyNotFound when
/// there is no such pattern, eInvalidInput for a faulty one; `message` then says what and where.
Acad::ErrorStatus loadHatchPattern(const std::wstring& name, AcDbDatabase* database,
                                   std::vector<HatchPatternLine>& lines, std::wstring& message,
                                   const std::wstring& file = {});

/// Hangs the readers and writers into fileFormats() and linetypeLoader().
void initializeFormats();

} // namespace host
