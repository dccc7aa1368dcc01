// Groups as a binary DXF file of release 13 and later has them: the code in two bytes, then the value in the
// form the code stands for.
#pragma once

#include "host/formats/dxf/groupwriter.h"

namespace host::dxf {

class BinaryWriter final : public GroupWriter {
public:
    /// The mark at the front of the file goes to the sink first.
    BinaryWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page, Sink sink);

    Acad::ErrorStatus writeReal(short code, double value) override;
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override;
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override;
    using GroupWriter::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override;
    void writeHandle(short code, Adesk::UInt64 handle) override;
    bool flush() override { return mOut.flush(); }
    std::size_t count() const override { return mOut.count(); }

    /// How many whole numbers did not fit into the bytes their code has, and became the nearest that does.
    std::size_t clampedNumbers() const { return mClamped; }

private:
    template <class T>
    void put(short code, T value);
    template <class T>
    void putInteger(short code, Adesk::Int64 value);
    void putText(short code, std::string_view text);
    Acad::ErrorStatus status() const { return mOut.refused() ? Acad::eFileAccessErr : Acad::eOk; }

    OutputBuffer mOut;
    std::size_t mClamped = 0;
};

} // namespace host::dxf
