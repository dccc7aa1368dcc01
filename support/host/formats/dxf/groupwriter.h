// The lower floor of the DXF writer: groups to bytes. What text and binary files have in common - the
// release, the encoding of texts, the way to the sink - stands here.
#pragma once

#include "host/db/db.h"
#include "host/rx/codepage.h"

#include <functional>
#include <string>
#include <string_view>

namespace host::dxf {

/// Takes the bytes of a file piece by piece; false when they cannot be written, which ends writing.
using Sink = std::function<bool(std::string_view)>;

/// Longer binary data is written in pieces.
inline constexpr std::size_t chunkBytes = 127;

/// Collects bytes into large pieces for a sink.
class OutputBuffer {
public:
    explicit OutputBuffer(Sink sink);

    /// Room for so many bytes; what of it was filled is told with take().
    char* room(std::size_t count) {
        if (static_cast<std::size_t>(mBytes.data() + mBytes.size() - mAt) < count) {
            makeRoom(count);
        }
        return mAt;
    }
    void take(char* end) { mAt = end; }
    /// Hands everything to the sink; false when the sink refused anything.
    bool flush();
    bool refused() const { return mRefused; }
    /// How many bytes were taken so far.
    std::size_t count() const { return mFlushed + static_cast<std::size_t>(mAt - mBytes.data()); }

private:
    void makeRoom(std::size_t count);

    Sink mSink;
    std::string mBytes; ///< filled up to mAt
    char* mAt;
    std::size_t mFlushed = 0;
    bool mRefused = false;
};

class GroupWriter : public AcDbDxfFiler {
public:
    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    AcDbDatabase* database() const override { return &mDatabase; }
    Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                 AcDb::MaintenanceReleaseVersion& maintenance) const override;
    AcDb::AcDbDwgVersion version() const { return mVersion; }
    /// Of texts before release 2007; UTF-8 later.
    CodePage codePage() const { return mPage; }

    /// Group 0; the name is in the form of files.
    virtual void beginRecord(std::string_view name) { writeKept(0, name); }
    virtual void writeHandle(short code, Adesk::UInt64 handle) = 0;
    Acad::ErrorStatus writePoint(short code, double x, double y, double z, int dimensions) override;
    Acad::ErrorStatus writeReference(short code, AcDbStub* id) override;
    Acad::ErrorStatus writeText(short code, std::string_view value) override;
    using AcDbDxfFiler::writeKept;

    /// Hands everything to the sink; false when the sink refused anything.
    virtual bool flush() = 0;
    /// How many bytes were written so far.
    virtual std::size_t count() const = 0;

protected:
    GroupWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page)
        : mDatabase(database), mVersion(version), mPage(page) {}

    /// Whether a kept group of this code would be read as the third coordinate of the plane point just
    /// written. It has no place in the file then.
    bool joinsPoint(short code) const { return code == mJoiningCode && count() == mPointEnd; }

    /// UTF-8 in the encoding of the release; `buffer` holds what had to be changed.
    std::string_view encoded(std::string_view text, std::string& buffer) const;

private:
    AcDbDatabase& mDatabase;
    AcDb::AcDbDwgVersion mVersion;
    CodePage mPage;
    short mJoiningCode = -1; ///< of the last plane point, which ended at mPointEnd
    std::size_t mPointEnd = 0;
};

} // namespace host::dxf
