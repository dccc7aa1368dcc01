// Buffering and the encoding of texts for both kinds of DXF files.
#include "host/formats/dxf/groupwriter.h"

#include "host/rx/text.h"

#include <algorithm>

namespace host::dxf {
namespace {

constexpr std::size_t bufferSize = 1 << 16;

/// Below the characters that a line of a file holds as they are.
bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20;
}

} // namespace

OutputBuffer::OutputBuffer(Sink sink)
    : mSink(std::move(sink)), mBytes(bufferSize, '\0'), mAt(mBytes.data()) {}

void OutputBuffer::makeRoom(std::size_t count) {
    flush();
    if (mBytes.size() < count) {
        mBytes.resize(count);
    }
    mAt = mBytes.data();
}

bool OutputBuffer::flush() {
    const std::string_view filled(mBytes.data(), static_cast<std::size_t>(mAt - mBytes.data()));
    if (!mRefused && !filled.empty()) {
        mRefused = !mSink(filled);
    }
    mFlushed += filled.size();
    mAt = mBytes.data();
    return !mRefused;
}

Acad::ErrorStatus GroupWriter::dwgVersion(AcDb::AcDbDwgVersion& version,
                                          AcDb::MaintenanceReleaseVersion& maintenance) const {
    version = mVersion;
    maintenance = AcDb::kMReleaseCurrent;
    return Acad::eOk;
}

Acad::ErrorStatus GroupWriter::writePoint(short code, double x, double y, double z, int dimensions) {
    writeReal(code, x);
    const Acad::ErrorStatus status = writeReal(static_cast<short>(code + 10), y);
    if (dimensions == 3) {
        return writeReal(static_cast<short>(code + 20), z);
    }
    mJoiningCode = static_cast<short>(code + 20);
    mPointEnd = count();
    return status;
}

Acad::ErrorStatus GroupWriter::writeReference(short code, AcDbStub* id) {
    writeHandle(code, id != nullptr ? id->handle : 0);
    return filerStatus();
}

Acad::ErrorStatus GroupWriter::writeText(short code, std::string_view value) {
    const bool plain =
        std::none_of(value.begin(), value.end(), [](char c) { return c == '^' || isControl(c); });
    return plain ? writeKept(code, value) : writeKept(code, encodeDxfText(value));
}

std::string_view GroupWriter::encoded(std::string_view text, std::string& buffer) const {
    if (mVersion >= AcDb::kDHL_1021 || isAscii(text)) {
        return text;
    }
    buffer = encode(fromUtf8(text), mPage);
    return buffer;
}

} // namespace host::dxf
