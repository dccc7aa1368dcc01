// Asking for points, distances and angles.
#include "host/ed/question.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/console.h"
#include "host/ed/dragging.h"
#include "host/ed/pointreader.h"
#include "host/ed/runcontext.h"
#include "host/ed/sysvars.h"
#include "host/ed/units.h"

#include <cmath>

namespace host {
namespace {

struct Pending {
    int flags = 0;
    std::wstring keywords;
};

Pending& pending() {
    static Pending state;
    return state;
}

/// A list of two or three numbers counts as a point.
std::optional<AcGePoint3d> pointInList(const resbuf* list) {
    double numbers[3] = {};
    int count = 0;
    for (const resbuf* at = list->rbnext; at != nullptr && at->restype != RTLE; at = at->rbnext) {
        if (count == 3) {
            return std::nullopt;
        }
        if (at->restype == RTREAL) {
            numbers[count++] = at->resval.rreal;
        } else if (at->restype == RTSHORT) {
            numbers[count++] = at->resval.rint;
        } else if (at->restype == RTLONG) {
            numbers[count++] = at->resval.rlong;
        } else {
            return std::nullopt;
        }
    }
    return count >= 2 ? std::optional(AcGePoint3d(numbers[0], numbers[1], numbers[2])) : std::nullopt;
}

std::optional<AcGePoint3d> pointInValue(const resbuf& value) {
    const double* p = value.resval.rpoint;
    switch (value.restype) {
    case RT3DPOINT:
        return AcGePoint3d(p[0], p[1], p[2]);
    case RTPOINT:
        return AcGePoint3d(p[0], p[1], systemVariableReal(L"ELEVATION"));
    case RTLB:
        return pointInList(&value);
    default:
        return std::nullopt;
    }
}

std::optional<double> numberInValue(const InputItem& item) {
    if (item.kind != InputItem::Kind::value || item.value == nullptr) {
        return std::nullopt;
    }
    switch (item.value->restype) {
    case RTREAL:
    case RTANG:
    case RTORINT:
        return item.value->resval.rreal;
    case RTSHORT:
        return item.value->resval.rint;
    case RTLONG:
        return item.value->resval.rlong;
    default:
        return std::nullopt;
    }
}

/// The keyword or other text in an answer that the question itself can't use.
std::optional<std::wstring> keywordIn(const InitGet& init, const InputItem& item) {
    return item.kind == InputItem::Kind::text ? init.keywords.matchGlobal(item.text) : std::nullopt;
}

std::wstring pointRefusal(const InitGet& init) {
    return init.keywords.empty() ? L"点无效。" : L"需要点或选项关键字。";
}

AskOptions pointOptions(const std::optional<AcGePoint3d>& base) {
    AskOptions options;
    options.wantsPoint = true;
    if (base) {
        options.base = ucsToWorld(*base);
    }
    return options;
}

/// The second point that gives a distance or an angle with the first.
std::optional<AcGePoint3d> secondPoint(const AcGePoint3d& first) {
    AcGePoint3d second;
    InitGet init;
    init.flags = RSG_NONULL;
    return askPoint(init, L"\n指定第二点: ", first, second) == RTNORM ? std::optional(second) : std::nullopt;
}

} // namespace

std::wstring numberRefusal(const InitGet& init, double value) {
    const bool zero = init.forbids(RSG_NOZERO) && value == 0.0;
    const bool negative = init.forbids(RSG_NONEG) && value < 0.0;
    if (!zero && !negative) {
        return {};
    }
    return !init.forbids(RSG_NONEG)    ? L"值必须非零。"
           : !init.forbids(RSG_NOZERO) ? L"值不能为负。"
                                       : L"值必须为正且非零。";
}

bool InitGet::allowsOther() const {
    return (flags & RSG_OTHER) != 0;
}

InitGet takeInitGet() {
    const Pending taken = std::exchange(pending(), {});
    return {taken.flags, KeywordList(taken.keywords)};
}

void setInitGet(int flags, std::wstring_view keywords) {
    pending() = {flags, std::wstring(keywords)};
}

std::wstring& lastInput() {
    static std::wstring text;
    return text;
}

void refuse(std::wstring_view line) {
    if (!line.empty()) {
        console().write(L"\n");
        console().write(line);
    }
}

namespace {

/// The question that is put again stands in a line of its own.
void refuseAnswer(const ValueQuestion& question) {
    refuse(question.refusal);
    if (!question.prompt.starts_with(L'\n')) {
        console().write(L"\n");
    }
}

} // namespace

int askValue(const InitGet& init, const ValueQuestion& question) {
    AskOptions options = question.options;
    Dragging* dragging = runContext().dragging;
    const bool drags = dragging != nullptr && options.wantsPoint && options.base && !options.picksObjects;
    options.wantsMotion = options.wantsMotion || drags;
    bool isAsked = false;
    for (;;) {
        const InputItem item = inputStream().ask(isAsked ? L"" : question.prompt, options);
        isAsked = item.kind == InputItem::Kind::motion;
        if (isAsked) {
            if (const auto point = drags ? pointIn(item, std::nullopt) : std::nullopt) {
                options.dragged = dragging->at(*options.base, ucsToWorld(*point));
            }
            continue;
        }
        options.dragged.clear();
        if (item.isCancel()) {
            return RTCAN;
        }
        if (item.isEnter()) {
            if (!init.forbids(RSG_NONULL)) {
                lastInput().clear();
                return RTNONE;
            }
            refuseAnswer(question);
            continue;
        }
        if (const std::optional<std::wstring> keyword = keywordIn(init, item)) {
            lastInput() = *keyword;
            return RTKWORD;
        }
        if (question.take(item)) {
            return RTNORM;
        }
        if (init.allowsOther() && item.kind == InputItem::Kind::text) {
            lastInput() = item.text;
            return RTKWORD;
        }
        refuseAnswer(question);
    }
}

AcGePoint3d lastPoint() {
    const ResbufList value = systemVariable(L"LASTPOINT");
    return value != nullptr ? asPoint3d(value->resval.rpoint) : AcGePoint3d();
}

void setLastPoint(const AcGePoint3d& point) {
    ResbufBuilder builder;
    builder.point(RT3DPOINT, point.x, point.y, point.z);
    putSystemVariable(L"LASTPOINT", *builder.release());
}

std::optional<AcGePoint3d> pointIn(const InputItem& item, const std::optional<AcGePoint3d>& base) {
    if (item.kind == InputItem::Kind::value || item.kind == InputItem::Kind::motion) {
        return item.value != nullptr ? pointInValue(*item.value) : std::nullopt;
    }
    if (item.kind != InputItem::Kind::text) {
        return std::nullopt;
    }
    const std::optional<TypedPoint> typed = parsePoint(item.text, UnitFormat::of(acdbCurDwg()));
    if (!typed) {
        return std::nullopt;
    }
    AcGePoint3d last = base.value_or(lastPoint());
    if (typed->world) {
        last = ucsToWorld(last);
    }
    const AcGePoint3d point = resolvePoint(*typed, last, systemVariableReal(L"ELEVATION"));
    return typed->world ? worldToUcs(point) : point;
}

std::optional<double> numberIn(const InputItem& item) {
    if (item.kind == InputItem::Kind::text) {
        return parseDistance(item.text, UnitFormat::of(acdbCurDwg()).linear);
    }
    return numberInValue(item);
}

namespace {

int askPoint(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
             const AskOptions& options, AcGePoint3d& result) {
    PointReader reader(base);
    const auto take = [&](const InputItem& item) {
        const std::optional<AcGePoint3d> point = reader.read(item);
        result = point.value_or(result);
        return point || reader.isCancelled();
    };
    const int code = askValue(init, {std::wstring(prompt), options, pointRefusal(init), take});
    if (reader.isCancelled()) {
        return RTCAN;
    }
    if (code == RTNORM) {
        setLastPoint(result);
    }
    return code;
}

} // namespace

int askPoint(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
             AcGePoint3d& result) {
    AskOptions options = pointOptions(base);
    options.takesDistance = true;
    return askPoint(init, prompt, base, options, result);
}

int askCorner(const InitGet& init, std::wstring_view prompt, const AcGePoint3d& base, Aim::Band band,
              AcGePoint3d& result) {
    AskOptions options = pointOptions(base);
    options.band = band;
    options.picksObjects = band == Aim::Band::selection;
    return askPoint(init, prompt, base, options, result);
}

int askDistance(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
                double& result) {
    const std::wstring refusal =
        init.keywords.empty() ? L"需要数值距离或两点。" : L"需要数值距离、两点或选项关键字。";
    ValueQuestion question{std::wstring(prompt), pointOptions(base), refusal, {}};
    bool cancelled = false;
    question.take = [&](const InputItem& item) {
        question.refusal = refusal;
        std::optional<double> value = numberIn(item);
        if (!value) {
            PointReader reader(base);
            const std::optional<AcGePoint3d> point = reader.read(item);
            cancelled = reader.isCancelled();
            if (!point) {
                return cancelled;
            }
            setLastPoint(*point);
            const std::optional<AcGePoint3d> other = base ? base : secondPoint(*point);
            if (!other) {
                cancelled = true;
                return true;
            }
            const AcGeVector3d between = *other - *point;
            value = init.forbids(RSG_2D) ? std::hypot(between.x, between.y) : between.length();
        }
        if (const std::wstring line = numberRefusal(init, *value); !line.empty()) {
            question.refusal = line;
            return false;
        }
        result = *value;
        return true;
    };
    const int code = askValue(init, question);
    return cancelled ? RTCAN : code;
}

int askAngle(const InitGet& init, std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
             bool orientation, double& result) {
    const UnitFormat format = UnitFormat::of(acdbCurDwg());
    bool cancelled = false;
    const auto take = [&](const InputItem& item) {
        if (const std::optional<double> number = numberInValue(item)) {
            result = *number; // radians
        } else if (const std::optional<double> typed = item.kind == InputItem::Kind::text
                                                           ? parseAngle(item.text, format, orientation)
                                                           : std::nullopt) {
            result = *typed;
        } else {
            PointReader reader(base);
            const std::optional<AcGePoint3d> point = reader.read(item);
            cancelled = reader.isCancelled();
            if (!point) {
                return cancelled;
            }
            setLastPoint(*point);
            const std::optional<AcGePoint3d> other = base ? point : secondPoint(*point);
            if (!other) {
                cancelled = true;
                return true;
            }
            result = angleBetween(base.value_or(*point), *other) - (orientation ? 0.0 : format.angleBase);
        }
        result = normalizedAngle(result) + 0.0; // no negative zero
        return true;
    };
    const int code = askValue(init, {std::wstring(prompt), pointOptions(base),
                                     init.keywords.empty() ? L"需要有效的数值角度或第二点。"
                                                           : L"需要有效的数值角度、第二点或选项关键字。",
                                     take});
    if (code == RTNORM && !cancelled && init.forbids(RSG_NOZERO) && result == 0.0) {
        refuse(L"值必须非零。");
        return askAngle(init, prompt, base, orientation, result);
    }
    return cancelled ? RTCAN : code;
}

} // namespace host
