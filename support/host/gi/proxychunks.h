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
        m_start = m_bytes.size();
        integer(0);
        integer(static_cast<std::int32_t>(type));
    }
    void end() {
        const auto size = static_cast<std::int32_t>(m_bytes.size() - m_start);
        std::memcpy(m_bytes.data() + m_start, &size, sizeof size);
        ++m_count;
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
        m_bytes += toUtf16Le(value);
        m_bytes.append(2, '\0');
        m_bytes.resize((m_bytes.size() + 3) / 4 * 4, '\0');
    }

    std::size_t count() const { return m_count; }
    const std::string& bytes() const { return m_bytes; }

private:
    template <class Value>
    void append(const Value& value) {
        m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }

    std::string m_bytes;
    std::size_t m_start = 0, m_count = 0;
};

// Reads one chunk's data. Every value read past the end is zero and makes isGood false.
class ProxyReader {
public:
    explicit ProxyReader(std::string_view data) : m_data(data) {}

    bool isGood() const { return m_isGood; }
    std::size_t remaining() const { return m_data.size() - m_position; }

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
            m_isGood = false;
            return 0;
        }
        return static_cast<std::size_t>(value);
    }
    std::vector<AcGePoint3d> points(std::size_t count) {
        std::vector<AcGePoint3d> result;
        result.reserve(count);
        for (std::size_t i = 0; i < count && m_isGood; ++i)
            result.push_back(point());
        return result;
    }
    std::string_view narrowText() {
        const std::string_view rest = m_data.substr(m_position);
        const std::size_t length = rest.find('\0');
        if (length == rest.npos) {
            m_isGood = false;
            return {};
        }
        skipPadded(length + 1);
        return rest.substr(0, length);
    }
    std::wstring wideText() {
        for (std::size_t end = m_position; end + 1 < m_data.size(); end += 2)
            if (m_data[end] == '\0' && m_data[end + 1] == '\0') {
                const std::string_view text = m_data.substr(m_position, end - m_position);
                skipPadded(text.size() + 2);
                return fromUtf16Le(text);
            }
        m_isGood = false;
        return {};
    }

private:
    template <class Value>
    Value read() {
        Value value{};
        if (remaining() < sizeof value) {
            m_isGood = false;
            m_position = m_data.size();
        } else {
            std::memcpy(&value, m_data.data() + m_position, sizeof value);
            m_position += sizeof value;
        }
        return value;
    }

    void skipPadded(std::size_t length) {
        m_position = std::min(m_position + (length + 3) / 4 * 4, m_data.size());
    }

    std::string_view m_data;
    std::size_t m_position = 0;
    bool m_isGood = true;
};

} // namespace host
