// Read reports as lines for the user.
#include "host/formats/formats.h"
#include "host/rx/format.h"

#include <algorithm>

namespace host {

std::wstring ReadEntry::text() const {
    std::wstring result;
    if (place != 0) {
        result += formatted(binary ? L"第 0x%I64X 字节: " : L"第 %I64d 行: ", static_cast<long long>(place));
    }
    result += what;
    if (handle != 0) {
        result += formatted(L" (句柄 %I64X)", static_cast<long long>(handle));
    }
    switch (done) {
    case Done::kept:
        return result + L", 已原样保留";
    case Done::repaired:
        return result + L", 已修复";
    case Done::leftOut:
        return result + L", 已略去";
    }
    return result;
}

void ReadReport::add(ReadEntry entry) {
    ++mCount;
    if (mEntries.size() < maximumEntries) {
        // Names of a hostile file may be as long as the file.
        constexpr std::size_t longest = 200;
        if (entry.what.size() > longest) {
            entry.what.resize(longest);
            entry.what += L'…';
        }
        mEntries.push_back(std::move(entry));
    }
}

std::wstring ReadReport::text(std::size_t lines) const {
    std::wstring result;
    const std::size_t shown = std::min(lines, mEntries.size());
    for (std::size_t index = 0; index < shown; ++index) {
        result += mEntries[index].text() + L"\n";
    }
    if (mCount > shown) {
        result += formatted(L"还有 %I64d 处\n", static_cast<long long>(mCount - shown));
    }
    return result;
}

} // namespace host
