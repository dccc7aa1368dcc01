// The types of proxy graphics chunks and the reading and writing of their bytes.
#pragma once

#include "host/ge/ge.h"
#include "host/rx/text.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class ProxyChunk : std::int32_t {
    extents = 1,
    circle = 2,
    circleThroughPoints = 3,
    circularArc = 4,
    circularArcThroughPoints = 5,
    polyline = 6,
    polygon = 7,
    mesh = 8,
    shell = 9,
    text = 10,
    styledText = 11,
    xline = 12,
    ray = 13,
    color = 14,
    layer = 16,
    linetype = 18,
    marker = 19,
    fill = 20,
    trueColor = 22,
    lineWeight = 23,
    linetypeScale = 24,
    thickness = 25,
    plotStyle = 26,
    pushClip = 27,
    popClip = 28,
    pushTransform = 29,
    pushTransform2 = 30,
    popTransform = 31,
    polylineWithNormal = 32,
    unicodeText = 36,
    unicodeStyledText = 38,
    ellipticalArc = 44
};

constexpr std::size_t proxyChunkHead = 8;
constexpr std::int32_t proxyLinetypeByLayer = 32767, proxyLinetypeByBlock = 32766;

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie in memory");

// Builds one chunk after the other.
class ProxyWriter {
public:
    void begin(ProxyChunk type) {
        mStart = mBytes.size();
        integer(0);
        integer(static_cast<std::int32_t>(type));
    }
    void end() {
        const auto size = static_cast<std::int32_t>(mBytes.size() - mStart);
        std::memcpy(mBytes.data() + mStart, &size, sizeof size);
        ++mCount;
    }

    void integer(std::int32_t value) { append(value); }
    void number(double value) { append(value); }
    void point(const AcGePoint3d& value) {
        append(value.x);
        append(value.y);
        append(value.z);
    }
    void vector(const AcGeVector3d& value) { point({value.x, value.y, value.z}); }
    void matrix(const AcGeMatrix3d& value) {
        for (const auto& row : value.entry)
            for (const double entry : row)
                append(entry);
    }
    void text(std::wstring_view value) {
        mBytes += toUtf16Le(value);
        mBytes.append(2, '\0');
        mBytes.resize((mBytes.size() + 3) / 4 * 4, '\0');
    }

    std::size_t count() const { return mCount; }
    const std::string& bytes() const { return mBytes; }

private:
    template <class Value>
    void append(const Value& value) {
        mBytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }

    std::string mBytes;
    std::size_t mStart = 0, mCount = 0;
};

// Reads one chunk's data. Every value read past the end is zero and makes isGood false.
class ProxyReader {
public:
    explicit ProxyReader(std::string_view data) : mData(data) {}

    bool isGood() const { return mIsGood; }
    std::size_t remaining() const { return mData.size() - mPosition; }

    std::int32_t integer() { return read<std::int32_t>(); }
    bool flag() { return integer() != 0; }
    double number() { return read<double>(); }
    AcGePoint3d point() {
        const double x = number(), y = number(), z = number();
        return {x, y, z};
    }
    AcGeVector3d vector() {
        const AcGePoint3d value = point();
        return {value.x, value.y, value.z};
    }
    AcGeMatrix3d matrix() {
        AcGeMatrix3d value;
        for (auto& row : value.entry)
            for (double& entry : row)
                entry = number();
        return value;
    }
    // A count that the data still has room for; zero and not good otherwise.
    std::size_t count(std::size_t bytesEach) {
        const std::int32_t value = integer();
        if (value < 0 || static_cast<std::size_t>(value) > remaining() / bytesEach) {
            mIsGood = false;
            return 0;
        }
        return static_cast<std::size_t>(value);
    }
    std::vector<AcGePoint3d> points(std::size_t count) {
        std::vector<AcGePoint3d> result;
        result.reserve(count);
        for (std::size_t i = 0; i < count && mIsGood; ++i)
            result.push_back(point());
        return result;
    }
    std::string_view narrowText() {
        const std::string_view rest = mData.substr(mPosition);
        const std::size_t length = rest.find('\0');
        if (length == rest.npos) {
            mIsGood = false;
            return {};
        }
        skipPadded(length + 1);
        return rest.substr(0, length);
    }
    std::wstring wideText() {
        for (std::size_t end = mPosition; end + 1 < mData.size(); end += 2)
            if (mData[end] == '\0' && mData[end + 1] == '\0') {
                const std::string_view text = mData.substr(mPosition, end - mPosition);
                skipPadded(text.size() + 2);
                return fromUtf16Le(text);
            }
        mIsGood = false;
        return {};
    }

private:
    template <class Value>
    Value read() {
        Value value{};
        if (remaining() < sizeof value) {
            mIsGood = false;
            mPosition = mData.size();
        } else {
            std::memcpy(&value, mData.data() + mPosition, sizeof value);
            mPosition += sizeof value;
        }
        return value;
    }

    void skipPadded(std::size_t length) {
        mPosition = std::min(mPosition + (length + 3) / 4 * 4, mData.size());
    }

    std::string_view mData;
    std::size_t mPosition = 0;
    bool mIsGood = true;
};

} // namespace host
