// Groups as text. Numbers have one canonical form, so that what is read and written again is equal to the
// byte.
#pragma once

#include "host/formats/dxf/groupwriter.h"

namespace host::dxf {

class TextWriter final : public GroupWriter {
public:
    TextWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page, Sink sink)
        : GroupWriter(database, version, page), mOut(std::move(sink)) {}

    Acad::ErrorStatus writeReal(short code, double value) override;
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override;
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override;
    using GroupWriter::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override;
    void writeHandle(short code, Adesk::UInt64 handle) override;
    bool flush() override { return mOut.flush(); }
    std::size_t count() const override { return mOut.count(); }

private:
    Acad::ErrorStatus status() const { return mOut.refused() ? Acad::eFileAccessErr : Acad::eOk; }

    OutputBuffer mOut;
};

} // namespace host::dxf
