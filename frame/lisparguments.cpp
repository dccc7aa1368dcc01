#include "frame/lisparguments.h"

namespace {

std::optional<double> NumberIn(const resbuf* item) {
    switch (item != nullptr ? item->restype : RTNONE) {
    case RTREAL:
        return item->resval.rreal;
    case RTSHORT:
        return item->resval.rint;
    case RTLONG:
        return item->resval.rlong;
    default:
        return std::nullopt;
    }
}

/// How a DXF group holds its value, as far as filters use them.
enum class GroupKind { none, text, real, point, shortInteger, longInteger };

GroupKind KindOfGroup(int code) {
    struct Range {
        int first;
        int last;
        GroupKind kind;
    };
    constexpr Range ranges[] = {
        {-4, -4, GroupKind::text},
        {0, 9, GroupKind::text},
        {10, 18, GroupKind::point},
        {38, 59, GroupKind::real},
        {60, 79, GroupKind::shortInteger},
        {90, 99, GroupKind::longInteger},
        {100, 109, GroupKind::text},
        {140, 149, GroupKind::real},
        {170, 179, GroupKind::shortInteger},
        {210, 210, GroupKind::point},
        {370, 389, GroupKind::shortInteger},
        {410, 410, GroupKind::text},
        {1000, 1009, GroupKind::text},
        {1040, 1042, GroupKind::real},
        {1070, 1070, GroupKind::shortInteger},
        {1071, 1071, GroupKind::longInteger},
    };
    for (const Range& range : ranges) {
        if (code >= range.first && code <= range.last) {
            return range.kind;
        }
    }
    return GroupKind::none;
}

/// A group with the value of the items, of which there may be up to three. Null when they do not fit.
resbuf* MakeGroup(int code, const resbuf* const (&items)[3], int count) {
    const std::optional<double> number = NumberIn(items[0]);
    switch (KindOfGroup(code)) {
    case GroupKind::text:
        return count == 1 && items[0]->restype == RTSTR
                   ? acutBuildList(code == 0 ? RTDXF0 : code, items[0]->resval.rstring, RTNONE)
                   : nullptr;
    case GroupKind::real:
        return count == 1 && number ? acutBuildList(code, *number, RTNONE) : nullptr;
    case GroupKind::shortInteger:
        return count == 1 && number ? acutBuildList(code, static_cast<int>(*number), RTNONE) : nullptr;
    case GroupKind::longInteger:
        return count == 1 && number ? acutBuildList(code, static_cast<Adesk::Int32>(*number), RTNONE)
                                    : nullptr;
    case GroupKind::point: {
        ads_point point = {0.0, 0.0, 0.0};
        for (int index = 0; index < count; ++index) {
            const std::optional<double> coordinate = NumberIn(items[index]);
            if (!coordinate) {
                return nullptr;
            }
            point[index] = *coordinate;
        }
        return count >= 2 ? acutBuildList(code, point, RTNONE) : nullptr;
    }
    case GroupKind::none:
        break;
    }
    return nullptr;
}

/// Reads one (code . value) or (code x y z), whose RTLB `at` stands behind; it is left behind the pair.
resbuf* ReadPair(const resbuf*& at) {
    const resbuf* items[4] = {};
    int count = 0;
    for (; at != nullptr && at->restype != RTLE && at->restype != RTDOTE; at = at->rbnext) {
        if (count == 4) {
            return nullptr;
        }
        items[count++] = at;
    }
    if (at == nullptr || count < 2) {
        return nullptr;
    }
    at = at->rbnext;
    const std::optional<double> code = NumberIn(items[0]);
    return code ? MakeGroup(static_cast<int>(*code), {items[1], items[2], items[3]}, count - 1) : nullptr;
}

} // namespace

std::optional<double> CLispArguments::Number() {
    const std::optional<double> number = NumberIn(mAt);
    if (number) {
        Skip();
    }
    return number;
}

std::optional<AcGePoint3d> CLispArguments::Point() {
    if (mAt == nullptr) {
        return std::nullopt;
    }
    AcGePoint3d point;
    if (mAt->restype == RTPOINT || mAt->restype == RT3DPOINT) {
        point.x = mAt->resval.rpoint[X];
        point.y = mAt->resval.rpoint[Y];
        point.z = mAt->restype == RT3DPOINT ? mAt->resval.rpoint[Z] : 0.0;
        Skip();
        return point;
    }
    if (mAt->restype != RTLB) {
        return std::nullopt;
    }
    double coordinates[3] = {0.0, 0.0, 0.0}; // a list of integers
    int count = 0;
    const resbuf* item = mAt->rbnext;
    for (; count < 3 && NumberIn(item); item = item->rbnext) {
        coordinates[count++] = *NumberIn(item);
    }
    if (count < 2 || item == nullptr || item->restype != RTLE) {
        return std::nullopt;
    }
    mAt = item->rbnext;
    return AcGePoint3d(coordinates[0], coordinates[1], coordinates[2]);
}

const ACHAR* CLispArguments::Text() {
    if (mAt == nullptr || mAt->restype != RTSTR) {
        return nullptr;
    }
    const ACHAR* text = mAt->resval.rstring;
    Skip();
    return text;
}

AcDbObjectId CLispArguments::Entity() {
    AcDbObjectId id;
    if (mAt != nullptr && mAt->restype == RTENAME && acdbGetObjectId(id, mAt->resval.rlname) == Acad::eOk) {
        Skip();
    }
    return id;
}

const ads_name* CLispArguments::SelectionSet() {
    if (mAt == nullptr || mAt->restype != RTPICKS) {
        return nullptr;
    }
    const ads_name* name = &mAt->resval.rlname;
    Skip();
    return name;
}

CResbuf CLispArguments::Filter() {
    if (mAt == nullptr || mAt->restype != RTLB) {
        return CResbuf();
    }
    CResbuf filter;
    resbuf* last = nullptr;
    const resbuf* at = mAt->rbnext;
    while (at != nullptr && at->restype == RTLB) {
        at = at->rbnext;
        resbuf* group = ReadPair(at);
        if (group == nullptr) {
            return CResbuf();
        }
        if (last == nullptr) {
            filter = CResbuf(group);
        } else {
            last->rbnext = group;
        }
        last = group;
    }
    if (at == nullptr || at->restype != RTLE) {
        return CResbuf();
    }
    mAt = at->rbnext;
    return filter;
}
