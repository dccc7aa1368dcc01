// Read reports as lines for the user.
#include "host/formats/formats.h"
#include "host/rx/format.h"

namespace host {

std::wstring ReadEntry::text() const {
    std::wstring result;
    if (line != 0) {
        result += formatted(L"第 %I64d 行: ", static_cast<long long>(line));
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
        mEntries.push_back(std::move(entry));
    }
}

std::wstring ReadReport::text() const {
    std::wstring result;
    for (const ReadEntry& entry : mEntries) {
        result += entry.text() + L"\n";
    }
    if (mCount > mEntries.size()) {
        result += formatted(L"还有 %I64d 处\n", static_cast<long long>(mCount - mEntries.size()));
    }
    return result;
}

} // namespace host
