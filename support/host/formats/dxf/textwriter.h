// The lower floor of the DXF writer: groups to text. Numbers have one canonical form, so that what is read
// and written again is equal to the byte.
#pragma once

#include "host/db/db.h"
#include "host/rx/codepage.h"

#include <functional>
#include <string>
#include <string_view>

namespace host::dxf {

class TextWriter final : public AcDbDxfFiler {
public:
    /// Takes the text piece by piece; false when it cannot be written, which ends writing.
    using Sink = std::function<bool(std::string_view)>;

    /// Releases before 2007 are written in the code page, later ones in UTF-8.
    TextWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page, Sink sink);

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    AcDbDatabase* database() const override { return &mDatabase; }
    Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                 AcDb::MaintenanceReleaseVersion& maintenance) const override;

    Acad::ErrorStatus writeReal(short code, double value) override;
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override;
    Acad::ErrorStatus writeText(short code, std::string_view value) override;
    Acad::ErrorStatus writePoint(short code, double x, double y, double z, int dimensions) override;
    Acad::ErrorStatus writeReference(short code, AcDbStub* id) override;
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override;
    using AcDbDxfFiler::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override;

    void writeHandle(short code, Adesk::UInt64 handle);
    /// Hands everything to the sink; false when the sink refused anything.
    bool flush();

private:
    /// Room for so many characters, which the caller fills and then takes with `mAt`.
    void reserve(std::size_t count) {
        if (static_cast<std::size_t>(mBuffer.data() + mBuffer.size() - mAt) < count) {
            makeRoom(count);
        }
    }
    void makeRoom(std::size_t count);
    void putCode(short code);
    void putLine(std::string_view text);
    Acad::ErrorStatus status() const { return mRefused ? Acad::eFileAccessErr : Acad::eOk; }

    AcDbDatabase& mDatabase;
    AcDb::AcDbDwgVersion mVersion;
    CodePage mPage;
    Sink mSink;
    std::string mBuffer; ///< filled up to mAt
    char* mAt;
    bool mRefused = false;
};

} // namespace host::dxf
