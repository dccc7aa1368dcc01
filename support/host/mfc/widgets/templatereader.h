// The fields of the templates that resource compilers write, one after the other: little endian, texts in
// UTF-16. Behind the end all are zero, and the reader is no longer good.
#pragma once

#include "host/win/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace host {

class TemplateReader {
public:
    // A text or a number in its place.
    struct Entry {
        UINT number = 0;
        std::wstring text;
    };

    explicit TemplateReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    bool good() const { return good_; }
    void fail() { good_ = false; }
    void align() { at_ = (at_ + 3) & ~std::size_t{3}; }
    void skip(std::size_t size) { at_ += size; }
    template <class Number>
    Number take() {
        Number value{};
        good_ = good_ && at_ <= bytes_.size() && sizeof value <= bytes_.size() - at_;
        if (good_)
            std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    int takeShort() { return take<std::int16_t>(); }
    Entry takeEntry() {
        const auto first = take<std::uint16_t>();
        if (first == 0xFFFF)
            return {take<std::uint16_t>(), {}};
        return {0, textFrom(first)};
    }
    std::wstring takeText() { return textFrom(take<std::uint16_t>()); }

private:
    std::wstring textFrom(std::uint16_t first) {
        std::wstring text;
        for (std::uint16_t unit = first; unit != 0 && good_; unit = take<std::uint16_t>())
            text += static_cast<wchar_t>(unit);
        return text;
    }

    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    bool good_ = true;
};

} // namespace host
