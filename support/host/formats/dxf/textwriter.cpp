// Groups as two lines each, ended with CR and LF.
#include "host/formats/dxf/textwriter.h"

#include "host/formats/dxf/groupscanner.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace host::dxf {
namespace {

constexpr std::size_t bufferSize = 1 << 18;
/// More than any number needs with its code.
constexpr std::size_t numberRoom = 64;
constexpr std::string_view lineEnd = "\r\n";

/// The line of each group code: at least three characters wide.
struct CodeLine {
    std::array<char, 8> text{};
    std::size_t size = 0;
};

const std::array<CodeLine, lastGroupCode + 1>& codeLines() {
    static const auto lines = [] {
        std::array<CodeLine, lastGroupCode + 1> table;
        for (int code = 0; code <= lastGroupCode; ++code) {
            std::string text = std::to_string(code);
            text.insert(0, text.size() < 3 ? 3 - text.size() : 0, ' ');
            text += lineEnd;
            CodeLine& line = table[static_cast<std::size_t>(code)];
            std::copy(text.begin(), text.end(), line.text.begin());
            line.size = text.size();
        }
        return table;
    }();
    return lines;
}

/// Below the characters that a line of a file holds as they are.
bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20;
}

} // namespace

TextWriter::TextWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page, Sink sink)
    : mDatabase(database), mVersion(version), mPage(page), mSink(std::move(sink)), mBuffer(bufferSize, '\0'),
      mAt(mBuffer.data()) {}

Acad::ErrorStatus TextWriter::dwgVersion(AcDb::AcDbDwgVersion& version,
                                         AcDb::MaintenanceReleaseVersion& maintenance) const {
    version = mVersion;
    maintenance = AcDb::kMReleaseCurrent;
    return Acad::eOk;
}

void TextWriter::makeRoom(std::size_t count) {
    flush();
    if (mBuffer.size() < count) {
        mBuffer.resize(count);
    }
    mAt = mBuffer.data();
}

bool TextWriter::flush() {
    const std::string_view filled(mBuffer.data(), static_cast<std::size_t>(mAt - mBuffer.data()));
    if (!mRefused && !filled.empty()) {
        mRefused = !mSink(filled);
    }
    mAt = mBuffer.data();
    return !mRefused;
}

/// Needs room for numberRoom characters.
void TextWriter::putCode(short code) {
    const CodeLine& line = codeLines()[static_cast<std::size_t>(std::clamp<int>(code, 0, lastGroupCode))];
    std::memcpy(mAt, line.text.data(), line.text.size());
    mAt += line.size;
}

/// Needs room for the text and a line end.
void TextWriter::putLine(std::string_view text) {
    mAt = std::copy(text.begin(), text.end(), mAt);
    mAt = std::copy(lineEnd.begin(), lineEnd.end(), mAt);
}

Acad::ErrorStatus TextWriter::writeReal(short code, double value) {
    char digits[40];
    reserve(numberRoom);
    putCode(code);
    putLine(formatReal(value, digits));
    return status();
}

Acad::ErrorStatus TextWriter::writeInteger(short code, Adesk::Int64 value) {
    reserve(numberRoom);
    putCode(code);
    mAt = std::to_chars(mAt, mAt + 24, value).ptr;
    putLine({});
    return status();
}

void TextWriter::writeHandle(short code, Adesk::UInt64 handle) {
    reserve(numberRoom);
    putCode(code);
    char* const digits = mAt;
    mAt = std::to_chars(mAt, mAt + 20, handle, 16).ptr;
    std::transform(digits, mAt, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    putLine({});
}

Acad::ErrorStatus TextWriter::writeText(short code, std::string_view value) {
    const bool plain =
        std::none_of(value.begin(), value.end(), [](char c) { return c == '^' || isControl(c); });
    return plain ? writeKept(code, value) : writeKept(code, encodeDxfText(value));
}

Acad::ErrorStatus TextWriter::writePoint(short code, double x, double y, double z, int dimensions) {
    writeReal(code, x);
    writeReal(static_cast<short>(code + 10), y);
    if (dimensions == 3) {
        writeReal(static_cast<short>(code + 20), z);
    }
    return status();
}

Acad::ErrorStatus TextWriter::writeReference(short code, AcDbStub* id) {
    writeHandle(code, id != nullptr ? id->handle : 0);
    return status();
}

Acad::ErrorStatus TextWriter::writeBinary(short code, const void* bytes, std::size_t count) {
    constexpr std::size_t chunk = 127;
    const auto* at = static_cast<const char*>(bytes);
    for (; count > 0; count -= std::min(count, chunk), at += chunk) {
        writeKept(code, hexFromBytes(at, std::min(count, chunk)));
    }
    return status();
}

Acad::ErrorStatus TextWriter::writeKept(short code, std::string_view text) {
    std::string changed;
    if (mVersion < AcDb::kDHL_1021 && !isAscii(text)) {
        changed = encode(fromUtf8(text), mPage);
        text = changed;
    }
    reserve(numberRoom + text.size());
    putCode(code);
    char* const line = mAt;
    putLine(text);
    // Kept text comes from lines and has no line ends; what comes from elsewhere must not break the file.
    std::replace_if(
        line, line + text.size(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return status();
}

} // namespace host::dxf
