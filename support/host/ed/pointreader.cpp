// Reading points and what is typed before them.
#include "host/ed/pointreader.h"

#include "host/ed/aced.h"
#include "host/ed/question.h"
#include "host/ed/sysvars.h"

#include <cmath>

namespace host {
namespace {

constexpr int deepestWord = 20;

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

AskOptions pointOptions(const std::optional<AcGePoint3d>& base) {
    AskOptions options;
    options.wantsPoint = true;
    if (base) {
        options.base = ucsToWorld(*base);
    }
    return options;
}

/// Running object snap is for the cursor; with OSNAPCOORD 0 typed coordinates are snapped too.
bool snapsRunning(const InputItem& item) {
    return item.fromCursor || systemVariableInteger(L"OSNAPCOORD") == 0;
}

double& coordinate(AcGePoint3d& point, char axis) {
    return axis == 'x' ? point.x : axis == 'y' ? point.y : point.z;
}

} // namespace

AcGePoint3d PointReader::last() const {
    return mBase.value_or(lastPoint());
}

std::optional<AcGePoint3d> PointReader::read(const InputItem& item) {
    return read(item, std::nullopt, 0);
}

std::optional<AcGePoint3d> PointReader::read(const InputItem& item, std::optional<int> overrides, int depth) {
    const std::optional<AcGePoint3d> place = pointIn(item, mBase);
    if (!place) {
        const std::optional<PointWord> word = item.kind == InputItem::Kind::text && depth < deepestWord
                                                  ? parsePointWord(item.text)
                                                  : std::nullopt;
        return word ? readWord(*word, depth + 1) : std::nullopt;
    }
    if (!isFinite(*place)) {
        return std::nullopt;
    }
    const int modes = overrides            ? *overrides & ~AcDb::kOsMaskNoneOverride
                      : item.isAimed       ? 0
                      : snapsRunning(item) ? runningSnapModes()
                                           : 0;
    const AcGePoint3d raw = ucsToWorld(*place);
    const AcGePoint3d from = ucsToWorld(last());
    const std::optional<Snapped> snapped = modes != 0 ? snapPoint(raw, modes, from) : std::nullopt;
    if (overrides && modes != 0 && !snapped) {
        refuse(L"未找到指定的捕捉点。");
        return std::nullopt;
    }
    const AcGePoint3d filtered = throughPointFilters(raw, snapped, from, item.fromCursor);
    return !snapped && filtered == raw ? place : std::optional(worldToUcs(filtered));
}

std::optional<AcGePoint3d> PointReader::ask(std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
                                            std::optional<int> overrides, int depth) {
    AskOptions options = pointOptions(base);
    options.snapModes = overrides;
    const InputItem item = inputStream().ask(prompt, options);
    if (item.isCancel()) {
        mCancelled = true;
        return std::nullopt;
    }
    const std::optional<AcGePoint3d> outer = std::exchange(mBase, base);
    const std::optional<AcGePoint3d> point = read(item, overrides, depth);
    mBase = outer;
    return point;
}

std::optional<AcGePoint3d> PointReader::readWord(const PointWord& word, int depth) {
    switch (word.kind) {
    case PointWord::Kind::snap: {
        const bool seen = (word.modes & (AcDb::kOsMaskPerp | AcDb::kOsMaskTan)) != 0;
        return ask(seen ? L"到 " : L"于 ", mBase, word.modes, depth);
    }
    case PointWord::Kind::filter:
        return combined(word.axes, depth);
    case PointWord::Kind::midBetween: {
        const std::optional<AcGePoint3d> first = ask(L"中点的第一点: ", mBase, std::nullopt, depth);
        const std::optional<AcGePoint3d> second =
            first ? ask(L"中点的第二点: ", first, std::nullopt, depth) : std::nullopt;
        return second ? std::optional(*first + (*second - *first) * 0.5) : std::nullopt;
    }
    case PointWord::Kind::from: {
        const std::optional<AcGePoint3d> base = ask(L"基点: ", mBase, std::nullopt, depth);
        return base ? ask(L"<偏移>: ", base, std::nullopt, depth) : std::nullopt;
    }
    }
    return std::nullopt;
}

/// The coordinates named from one point, the others from the next.
std::optional<AcGePoint3d> PointReader::combined(const std::string& axes, int depth) {
    const std::optional<AcGePoint3d> first = ask(L"于 ", mBase, std::nullopt, depth);
    if (!first) {
        return std::nullopt;
    }
    std::wstring missing;
    for (const char axis : {'x', 'y', 'z'}) {
        if (axes.find(axis) == std::string::npos) {
            missing.push_back(static_cast<wchar_t>(axis - 'a' + L'A'));
        }
    }
    std::optional<AcGePoint3d> point = ask(L"(需要 " + missing + L"): ", mBase, std::nullopt, depth);
    if (point) {
        AcGePoint3d given = *first;
        for (const char axis : axes) {
            coordinate(*point, axis) = coordinate(given, axis);
        }
    }
    return point;
}

} // namespace host
