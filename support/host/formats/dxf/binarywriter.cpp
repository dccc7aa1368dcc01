// Values of binary DXF files: little-endian numbers, texts that end with a zero byte, chunks with their size.
#include "host/formats/dxf/binarywriter.h"

#include "host/formats/dxf/groupscanner.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace host::dxf {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr bool isBoolean(short code) {
    return code >= 290 && code <= 299;
}

ResbufKind kindOf(short code) {
    return groupKinds()[static_cast<std::size_t>(std::clamp<int>(code, 0, lastGroupCode))];
}

} // namespace

BinaryWriter::BinaryWriter(AcDbDatabase& database, AcDb::AcDbDwgVersion version, CodePage page, Sink sink)
    : GroupWriter(database, version, page), mOut(std::move(sink)) {
    char* const at = mOut.room(binarySentinel.size());
    mOut.take(std::copy(binarySentinel.begin(), binarySentinel.end(), at));
}

template <class T>
void BinaryWriter::put(short code, T value) {
    char* const at = mOut.room(sizeof code + sizeof value);
    std::memcpy(at, &code, sizeof code);
    std::memcpy(at + sizeof code, &value, sizeof value);
    mOut.take(at + sizeof code + sizeof value);
}

template <class T>
void BinaryWriter::putInteger(short code, Adesk::Int64 value) {
    using Limits = std::numeric_limits<T>;
    const auto nearest = static_cast<T>(
        std::clamp<Adesk::Int64>(value, Adesk::Int64{Limits::min()}, Adesk::Int64{Limits::max()}));
    mClamped += nearest != value ? 1 : 0;
    put(code, nearest);
}

/// Nothing in a text may end it early.
void BinaryWriter::putText(short code, std::string_view text) {
    char* const at = mOut.room(sizeof code + text.size() + 1);
    std::memcpy(at, &code, sizeof code);
    char* const begin = at + sizeof code;
    char* const end = std::copy(text.begin(), text.end(), begin);
    std::replace_if(
        begin, end, [](char c) { return c == '\0' || c == '\n' || c == '\r'; }, ' ');
    *end = '\0';
    mOut.take(end + 1);
}

Acad::ErrorStatus BinaryWriter::writeReal(short code, double value) {
    switch (kindOf(code)) {
    case ResbufKind::real:
    case ResbufKind::point:
        put(code, std::isfinite(value) ? value : 0.0);
        return status();
    case ResbufKind::int16:
    case ResbufKind::int32:
    case ResbufKind::int64:
        return writeInteger(code, std::llround(std::clamp(value, -9e18, 9e18)));
    default: {
        char digits[40];
        putText(code, formatReal(value, digits));
        return status();
    }
    }
}

Acad::ErrorStatus BinaryWriter::writeInteger(short code, Adesk::Int64 value) {
    switch (kindOf(code)) {
    case ResbufKind::real:
    case ResbufKind::point:
        put(code, static_cast<double>(value));
        break;
    case ResbufKind::int16:
        isBoolean(code) ? putInteger<Adesk::UInt8>(code, value) : putInteger<Adesk::Int16>(code, value);
        break;
    case ResbufKind::int32:
        putInteger<Adesk::Int32>(code, value);
        break;
    case ResbufKind::int64:
        put(code, value);
        break;
    default:
        putText(code, std::to_string(value));
        break;
    }
    return status();
}

Acad::ErrorStatus BinaryWriter::writeBinary(short code, const void* bytes, std::size_t count) {
    const auto* const begin = static_cast<const char*>(bytes);
    for (std::size_t done = 0; done < count || count == 0; done += chunkBytes) {
        const std::size_t size = std::min(count - done, chunkBytes);
        char* const at = mOut.room(sizeof code + 1 + size);
        std::memcpy(at, &code, sizeof code);
        at[sizeof code] = static_cast<char>(size);
        mOut.take(std::copy_n(begin + done, size, at + sizeof code + 1));
        if (count == 0) {
            break;
        }
    }
    return status();
}

Acad::ErrorStatus BinaryWriter::writeKept(short code, std::string_view text) {
    if (joinsPoint(code)) {
        return status();
    }
    switch (kindOf(code)) {
    case ResbufKind::real:
    case ResbufKind::point: {
        double value = 0.0;
        parseReal(text, value);
        put(code, value);
        return status();
    }
    case ResbufKind::int16:
    case ResbufKind::int32:
    case ResbufKind::int64: {
        std::int64_t value = 0;
        parseInteger(text, value);
        return writeInteger(code, value);
    }
    case ResbufKind::binary: {
        const std::string bytes = bytesFromHex(text);
        return writeBinary(code, bytes.data(), bytes.size());
    }
    default: {
        std::string buffer;
        putText(code, encoded(text, buffer));
        return status();
    }
    }
}

void BinaryWriter::writeHandle(short code, Adesk::UInt64 handle) {
    char digits[20];
    char* const end = std::to_chars(digits, digits + sizeof digits, handle, 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    putText(code, std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

} // namespace host::dxf
