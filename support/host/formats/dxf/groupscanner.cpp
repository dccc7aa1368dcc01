// Lines to groups, and numbers out of text. The inner loops of reading: about two lines of text a group.
#include "host/formats/dxf/groupscanner.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace host::dxf {
namespace {

/// A zero byte, too: binary files end texts with it, so it can't stay at a text's end.
constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\0';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Powers of ten that a double holds exactly.
constexpr double exactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// A plain decimal of few digits, which one exact multiplication or division converts rightly rounded.
bool parsePlainReal(const char* at, const char* end, double& value) {
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    std::uint64_t digits = 0;
    const char* const first = at;
    while (at != end && isDigit(*at)) {
        digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    }
    std::ptrdiff_t count = at - first;
    std::ptrdiff_t fraction = 0;
    if (at != end && *at == '.') {
        const char* const point = ++at;
        while (at != end && isDigit(*at)) {
            digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
        }
        fraction = at - point;
        count += fraction;
    }
    if (at != end || count == 0 || count > 18 || digits > (std::uint64_t{1} << 53)) {
        return false;
    }
    value = static_cast<double>(digits) / exactPowers[fraction];
    value = negative ? -value : value;
    return true;
}

std::wstring shown(std::string_view text) {
    constexpr std::size_t most = 40;
    std::wstring result = fromUtf8(text.substr(0, most));
    for (wchar_t& c : result) {
        c = c < L' ' ? L'?' : c;
    }
    return text.size() > most ? result + L"…" : result;
}

} // namespace

const std::array<ResbufKind, lastGroupCode + 1>& groupKinds() {
    static const auto kinds = [] {
        std::array<ResbufKind, lastGroupCode + 1> table{};
        for (int code = 0; code <= lastGroupCode; ++code) {
            const ResbufKind kind = resbufKind(code);
            table[static_cast<std::size_t>(code)] = kind == ResbufKind::none ? ResbufKind::string : kind;
        }
        return table;
    }();
    return kinds;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool parseReal(std::string_view text, double& value) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    if (text.empty()) {
        return false;
    }
    const char* const end = text.data() + text.size();
    if (parsePlainReal(text.data(), end, value)) {
        return true;
    }
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    if (result.ec == std::errc::result_out_of_range && result.ptr == end) {
        // Too small is zero; too large is no number of a drawing.
        const bool small = text.find("e-") != text.npos || text.find("E-") != text.npos;
        value = 0.0;
        return small;
    }
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value);
}

bool parseInteger(std::string_view text, std::int64_t& value) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    if (result.ec == std::errc() && result.ptr == end) {
        return true;
    }
    double real = 0.0;
    if (!parseReal(text, real) || real != std::floor(real) || std::fabs(real) > 9e15) {
        return false;
    }
    value = static_cast<std::int64_t>(real);
    return true;
}

bool parseHandle(std::string_view text, std::uint64_t& value) {
    text = trimmed(text);
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value, 16);
    return result.ec == std::errc() && result.ptr == end;
}

GroupScanner::GroupScanner(std::string_view bytes) {
    if (bytes.starts_with(binarySentinel)) {
        mBinary = true;
        bytes.remove_prefix(binarySentinel.size());
        // The first group is 0 SECTION: a second zero byte is the rest of a code of two bytes.
        mShortCodes = bytes.size() > 1 && bytes[0] == '\0' && bytes[1] != '\0';
    } else {
        if (bytes.starts_with("\xEF\xBB\xBF")) {
            bytes.remove_prefix(3);
        }
        if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
            throw FormatError(L"文件是 UTF-16 文本, 不是 DXF 文件");
        }
        const std::string_view start = bytes.substr(0, 4096);
        if (start.find('\n') == start.npos && start.find('\r') != start.npos) {
            mConverted = bytes;
            std::replace(mConverted.begin(), mConverted.end(), '\r', '\n');
            bytes = mConverted;
        }
    }
    mBegin = mAt = bytes.data();
    mEnd = mBegin + bytes.size();
}

std::wstring GroupScanner::place(std::size_t line) const {
    return formatted(mBinary ? L"第 0x%I64X 字节" : L"第 %I64d 行", static_cast<long long>(line));
}

/// A code line that is not just digits with blanks before them. False: nothing but blank lines follow.
bool GroupScanner::slowCode(const char* lineEnd, int& code) {
    std::string_view line(mAt, static_cast<std::size_t>(lineEnd - mAt));
    while (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    const std::string_view text = trimmed(line);
    if (text.empty() || text == "\x1a") {
        const bool onlyBlanks = std::all_of(
            lineEnd, mEnd, [](char c) { return isBlank(c) || c == '\r' || c == '\n' || c == '\x1a'; });
        if (onlyBlanks) {
            return false;
        }
    }
    const bool isWhole = lineEnd == mEnd || *lineEnd == '\n';
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), code);
    if (!isWhole || result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw FormatError(formatted(L"第 %I64d 行: 组码 \"%s\" 不是整数",
                                    static_cast<long long>(mGroup * 2 + 1), shown(text).c_str()));
    }
    return true;
}

bool GroupScanner::nextText(Token& token) {
    const char* at = mAt;
    while (at != mEnd && isBlank(*at)) {
        ++at;
    }
    int code = 0;
    const char* const digits = at;
    while (at != mEnd && isDigit(*at) && at - digits < 5) {
        code = code * 10 + (*at++ - '0');
    }
    const bool some = at != digits;
    at += at != mEnd && *at == '\r' ? 1 : 0;
    if (!some || at == mEnd || *at != '\n') {
        // No code takes a longer line; the file may be one line of any size.
        constexpr std::ptrdiff_t longest = 256;
        const char* const limit = mEnd - mAt > longest ? mAt + longest : mEnd;
        at = std::find(mAt, limit, '\n');
        if (!slowCode(at, code)) {
            mAt = mEnd;
            return false;
        }
    }
    if (code < 0 || code > lastGroupCode) {
        throw FormatError(
            formatted(L"第 %I64d 行: 组码 %d 超出范围", static_cast<long long>(mGroup * 2 + 1), code));
    }
    at += at != mEnd ? 1 : 0;
    if (at == mEnd) {
        throw FormatError(
            formatted(L"第 %I64d 行: 组码 %d 之后文件中断", static_cast<long long>(mGroup * 2 + 1), code));
    }
    const auto* lineEnd =
        static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(mEnd - at)));
    mAt = lineEnd != nullptr ? lineEnd + 1 : mEnd;
    lineEnd = lineEnd != nullptr ? lineEnd : mEnd;
    while (lineEnd != at && lineEnd[-1] == '\r') {
        --lineEnd;
    }
    ++mGroup;
    token.code = static_cast<short>(code);
    token.kind = groupKinds()[static_cast<std::size_t>(code)];
    token.text = std::string_view(at, static_cast<std::size_t>(lineEnd - at));
    return true;
}

template <class T>
T GroupScanner::take() {
    if (static_cast<std::size_t>(mEnd - mAt) < sizeof(T)) {
        throw FormatError(place() + L": 二进制 DXF 文件中断");
    }
    T value;
    std::memcpy(&value, mAt, sizeof value);
    mAt += sizeof value;
    return value;
}

bool GroupScanner::nextBinary(Token& token) {
    if (mAt == mEnd) {
        return false;
    }
    mStart = position().offset + binarySentinel.size();
    int code = 0;
    if (mShortCodes) {
        code = take<std::uint8_t>();
        code = code == 255 ? take<std::int16_t>() : code;
    } else {
        code = take<std::int16_t>();
    }
    if (code < 0 || code > lastGroupCode) {
        throw FormatError(place() + formatted(L": 组码 %d 超出范围", code));
    }
    ++mGroup;
    token.code = static_cast<short>(code);
    token.kind = groupKinds()[static_cast<std::size_t>(code)];
    token.text = {};
    token.binary = true;
    switch (token.kind) {
    case ResbufKind::real:
    case ResbufKind::point:
        token.real = take<double>();
        break;
    case ResbufKind::int16:
        token.integer = code >= 290 && code <= 299 ? take<std::uint8_t>() : take<std::int16_t>();
        break;
    case ResbufKind::int32:
        token.integer = take<std::int32_t>();
        break;
    case ResbufKind::int64:
        token.integer = take<std::int64_t>();
        break;
    case ResbufKind::binary: {
        const std::size_t count = take<std::uint8_t>();
        if (static_cast<std::size_t>(mEnd - mAt) < count) {
            throw FormatError(place() + L": 二进制 DXF 文件中断");
        }
        std::string& hex = mHex[static_cast<std::size_t>(mHexTurn ^= 1)];
        hex.clear();
        for (std::size_t index = 0; index < count; ++index) {
            const auto byte = static_cast<unsigned char>(*mAt++);
            hex.push_back("0123456789ABCDEF"[byte >> 4]);
            hex.push_back("0123456789ABCDEF"[byte & 15]);
        }
        token.text = hex;
        break;
    }
    default: {
        const auto* zero =
            static_cast<const char*>(std::memchr(mAt, '\0', static_cast<std::size_t>(mEnd - mAt)));
        if (zero == nullptr) {
            throw FormatError(place() + L": 二进制 DXF 文件中断");
        }
        token.text = std::string_view(mAt, static_cast<std::size_t>(zero - mAt));
        mAt = zero + 1;
        break;
    }
    }
    return true;
}

} // namespace host::dxf
