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

// Each puts something where there is room for it and gives the place behind it.

char* putCode(char* at, short code) {
    const CodeLine& line = codeLines()[static_cast<std::size_t>(std::clamp<int>(code, 0, lastGroupCode))];
    std::memcpy(at, line.text.data(), line.text.size());
    return at + line.size;
}

char* putLineEnd(char* at) {
    return std::copy(lineEnd.begin(), lineEnd.end(), at);
}

} // namespace

Acad::ErrorStatus TextWriter::writeReal(short code, double value) {
    char digits[40];
    const std::string_view text = formatReal(value, digits);
    char* const line = putCode(mOut.room(numberRoom), code);
    mOut.take(putLineEnd(std::copy(text.begin(), text.end(), line)));
    return status();
}

Acad::ErrorStatus TextWriter::writeInteger(short code, Adesk::Int64 value) {
    char* const line = putCode(mOut.room(numberRoom), code);
    mOut.take(putLineEnd(std::to_chars(line, line + 24, value).ptr));
    return status();
}

void TextWriter::writeHandle(short code, Adesk::UInt64 handle) {
    char* const digits = putCode(mOut.room(numberRoom), code);
    char* const end = std::to_chars(digits, digits + 20, handle, 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    mOut.take(putLineEnd(end));
}

Acad::ErrorStatus TextWriter::writeBinary(short code, const void* bytes, std::size_t count) {
    const auto* const begin = static_cast<const char*>(bytes);
    for (std::size_t at = 0; at < count; at += chunkBytes) {
        writeKept(code, hexFromBytes(begin + at, std::min(count - at, chunkBytes)));
    }
    return status();
}

Acad::ErrorStatus TextWriter::writeKept(short code, std::string_view text) {
    if (joinsPoint(code)) {
        return status();
    }
    std::string buffer;
    text = encoded(text, buffer);
    char* const line = putCode(mOut.room(numberRoom + text.size()), code);
    char* const end = std::copy(text.begin(), text.end(), line);
    // Kept text comes from lines and has no line ends; what comes from elsewhere must not break the file.
    std::replace_if(
        line, end, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    mOut.take(putLineEnd(end));
    return status();
}

} // namespace host::dxf
