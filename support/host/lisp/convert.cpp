#include "host/lisp/convert.h"

#include "host/ed/ed.h"
#include "host/lisp/points.h"
#include "host/lisp/printer.h"
#include "host/lisp/stack.h"

#include <cmath>
#include <limits>
#include <unordered_map>

namespace host::lisp {

namespace {

constexpr int xdataMark = -3;
constexpr int applicationGroup = 1001;

template <class Integer>
bool fits(std::int32_t value) {
    return value >= std::numeric_limits<Integer>::min() && value <= std::numeric_limits<Integer>::max();
}

void appendList(ResbufBuilder& builder, const Value& list, PointRule points) {
    builder.mark(RTLB);
    const Value* at = &list;
    for (; at->isCons(); at = &at->cons().tail) {
        appendValue(builder, at->cons().head, points);
    }
    if (at->isNil()) {
        builder.mark(RTLE);
    } else {
        appendValue(builder, *at, points);
        builder.mark(RTDOTE);
    }
}

bool hasReal(const Value& list) {
    for (const Value& element : Elements(list)) {
        if (element.isReal()) {
            return true;
        }
    }
    return false;
}

// Digits of a binary chunk, as texts hold it.
std::wstring hexadecimal(const ads_binary& chunk) {
    constexpr std::wstring_view digits = L"0123456789ABCDEF";
    std::wstring text;
    for (short at = 0; at < chunk.clen; ++at) {
        const auto byte = static_cast<unsigned char>(chunk.buf[at]);
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::optional<std::string> bytesOf(const std::wstring& digits) {
    std::string bytes;
    if (digits.size() % 2 != 0 || digits.size() / 2 > std::numeric_limits<short>::max()) {
        return std::nullopt;
    }
    for (std::size_t at = 0; at < digits.size(); ++at) {
        const wchar_t c = digits[at];
        const int digit = c >= L'0' && c <= L'9'   ? c - L'0'
                          : c >= L'A' && c <= L'F' ? c - L'A' + 10
                          : c >= L'a' && c <= L'f' ? c - L'a' + 10
                                                   : -1;
        if (digit < 0) {
            return std::nullopt;
        }
        if (at % 2 == 0) {
            bytes += static_cast<char>(digit << 4);
        } else {
            bytes.back() = static_cast<char>(bytes.back() | digit);
        }
    }
    return bytes;
}

Value textValue(const ACHAR* text) {
    return makeText(text != nullptr ? std::wstring(text) : std::wstring());
}

// The value of a group as the rest of its pair: a number, text or name, or the coordinates of a point.
Value groupValue(const resbuf& group, bool flatPoint) {
    switch (resbufKind(group.restype)) {
    case ResbufKind::real:
        return group.resval.rreal;
    case ResbufKind::point: {
        const double* point = group.resval.rpoint;
        return flatPoint ? flatPointList(point[0], point[1]) : pointList({point[0], point[1], point[2]});
    }
    case ResbufKind::int16:
        return std::int32_t{group.resval.rint};
    case ResbufKind::int32:
        return group.resval.rlong;
    case ResbufKind::int64:
        return integerOrReal(group.resval.mnInt64);
    case ResbufKind::string:
    case ResbufKind::handle:
        return textValue(group.resval.rstring);
    case ResbufKind::name:
        return entityValue(group.resval.rlname);
    case ResbufKind::binary:
        return makeText(hexadecimal(group.resval.rbinary));
    case ResbufKind::none:
        break;
    }
    return {};
}

Value pairOf(const resbuf& group, bool flatPoint = false) {
    return cons(std::int32_t{group.restype}, groupValue(group, flatPoint));
}

// Subclasses whose points have two coordinates.
bool hasFlatPoints(std::wstring_view subclass) {
    return subclass == L"AcDbPolyline" || subclass == L"AcDbViewportTableRecord" ||
           subclass == L"AcDbViewTableRecord";
}

// Reads groups up to the first item that is none, where `at` is left.
Value groupsUpTo(const resbuf*& at) {
    const auto isGroup = [&] { return at != nullptr && at->restype < RTNONE; };
    ListBuilder builder;
    bool flatPoints = false;
    for (; isGroup() && at->restype != xdataMark; at = at->rbnext) {
        if (at->restype == 100 && at->resval.rstring != nullptr) {
            flatPoints = hasFlatPoints(at->resval.rstring);
        }
        builder.add(pairOf(*at, flatPoints && at->restype >= 10 && at->restype < 20));
    }
    if (!isGroup()) {
        return builder.take();
    }
    ListBuilder applications;
    for (at = at->rbnext; isGroup();) {
        ListBuilder application;
        application.add(groupValue(*at, false));
        for (at = at->rbnext; isGroup() && at->restype != applicationGroup; at = at->rbnext) {
            application.add(pairOf(*at));
        }
        applications.add(application.take());
    }
    builder.add(cons(std::int32_t{xdataMark}, applications.take()));
    return builder.take();
}

// Reads nested items; `at` is left behind what was read.
class ItemReader {
public:
    ItemReader(LispInterpreter& lisp, const resbuf* list) : mLisp(lisp), mAt(list) {}

    bool done() const { return mAt == nullptr; }

    Value read() {
        const resbuf& item = *mAt;
        mAt = mAt->rbnext;
        switch (item.restype) {
        case RTNONE:
        case RTVOID:
        case RTNIL:
            return {};
        case RTT:
            return mLisp.truth();
        case RTREAL:
        case RTANG:
        case RTORINT:
            return item.resval.rreal;
        case RTSHORT:
            return std::int32_t{item.resval.rint};
        case RTLONG:
            return item.resval.rlong;
        case RTINT64:
            return integerOrReal(item.resval.mnInt64);
        case RTPOINT:
            return flatPointList(item.resval.rpoint[0], item.resval.rpoint[1]);
        case RT3DPOINT:
            return pointList(asPoint3d(item.resval.rpoint));
        case RTSTR:
            return textValue(item.resval.rstring);
        case RTENAME:
            return entityValue(item.resval.rlname);
        case RTPICKS:
            return selectionValue(item.resval.rlname);
        case RTLB:
            return readList();
        case RTLE:
        case RTDOTE:
            throw Error(L"外部函数返回的列表有缺陷");
        default:
            return pairOf(item);
        }
    }

private:
    // RTDOTE after the last value closes a dotted list; between two values it is the dot of a pair.
    Value readList() {
        ensureStack();
        if (mAt != nullptr && mAt->restype < RTNONE) { // an entity's list
            Value groups = groupsUpTo(mAt);
            if (mAt == nullptr || mAt->restype != RTLE) {
                throw Error(L"外部函数返回的列表有缺陷");
            }
            mAt = mAt->rbnext;
            return groups;
        }
        std::vector<Value> values;
        bool dotted = false;
        for (;;) {
            if (mAt == nullptr) {
                throw Error(L"外部函数返回的列表有缺陷");
            }
            if (mAt->restype == RTLE) {
                mAt = mAt->rbnext;
                break;
            }
            if (mAt->restype == RTDOTE) {
                mAt = mAt->rbnext;
                dotted = true;
                if (values.size() >= 2) {
                    break;
                }
                continue;
            }
            values.push_back(read());
        }
        dotted = dotted && values.size() >= 2;
        Value result = dotted ? values.back() : Value();
        for (std::size_t index = values.size() - (dotted ? 1 : 0); index-- > 0;) {
            result = cons(std::move(values[index]), std::move(result));
        }
        return result;
    }

    LispInterpreter& mLisp;
    const resbuf* mAt;
};

[[noreturn]] void badGroup(const Value& pair) {
    throw Error(L"错误的 DXF 组: " + printedShort(pair));
}

void appendGroup(ResbufBuilder& builder, const Value& pair) {
    if (!pair.isCons() || !pair.head().isInteger() || !fits<short>(pair.head().integer())) {
        badGroup(pair);
    }
    const int code = pair.head().integer();
    const Value& value = pair.tail();
    switch (resbufKind(code)) {
    case ResbufKind::real:
        if (!value.isNumber()) {
            badGroup(pair);
        }
        builder.real(code, value.number());
        return;
    case ResbufKind::point: {
        // (10 x y z), and (10 x) where some records use the code for a number.
        const std::optional<ListPoint> point = pointIn(value);
        if (!point) {
            badGroup(pair);
        }
        builder.point(code, point->point.x, point->point.y, point->point.z);
        return;
    }
    case ResbufKind::int16:
    case ResbufKind::int32:
    case ResbufKind::int64: {
        const bool whole = value.isInteger() || (value.isReal() && std::abs(value.real()) < 9e15 &&
                                                 value.real() == std::trunc(value.real()));
        if (!whole) {
            badGroup(pair);
        }
        const auto number = static_cast<std::int64_t>(value.number());
        const std::int64_t most = resbufKind(code) == ResbufKind::int16   ? 0xFFFF
                                  : resbufKind(code) == ResbufKind::int32 ? 0xFFFFFFFF
                                                                          : std::int64_t{1} << 62;
        if (number > most || number < -(most / 2) - 1) {
            badGroup(pair);
        }
        builder.integer(code, number);
        return;
    }
    case ResbufKind::string:
    case ResbufKind::handle:
        if (!value.isText()) {
            badGroup(pair);
        }
        builder.string(code, value.text());
        return;
    case ResbufKind::name:
        if (value.kind() != Kind::entityName) {
            badGroup(pair);
        }
        builder.name(code, value.as<EntityName>().name);
        return;
    case ResbufKind::binary: {
        const std::optional<std::string> bytes = value.isText() ? bytesOf(value.text()) : std::nullopt;
        if (!bytes) {
            badGroup(pair);
        }
        builder.binary(code, bytes->data(), bytes->size());
        return;
    }
    case ResbufKind::none:
        badGroup(pair);
    }
}

void appendXdata(ResbufBuilder& builder, const Value& applications) {
    builder.mark(xdataMark);
    for (const Value& application : Elements(listOf(applications))) {
        if (!application.isCons() || !application.head().isText()) {
            badGroup(application);
        }
        builder.string(applicationGroup, application.head().text());
        for (const Value& pair : Elements(application.tail())) {
            appendGroup(builder, pair);
        }
    }
}

} // namespace

void appendValue(ResbufBuilder& builder, const Value& value, PointRule points) {
    ensureStack();
    switch (value.kind()) {
    case Kind::nil:
        builder.mark(RTNIL);
        return;
    case Kind::integer:
        builder.integer(fits<std::int16_t>(value.integer()) ? RTSHORT : RTLONG, value.integer());
        return;
    case Kind::real:
        builder.real(RTREAL, value.real());
        return;
    case Kind::symbol:
        if (value.symbol()->constant) {
            builder.mark(RTT);
        } else {
            builder.string(RTSTR, value.symbol()->name);
        }
        return;
    case Kind::text:
        builder.string(RTSTR, value.text());
        return;
    case Kind::cons:
        if (const std::optional<ListPoint> point = pointIn(value);
            point && (points == PointRule::numbers || hasReal(value))) {
            builder.point(point->flat ? RTPOINT : RT3DPOINT, point->point.x, point->point.y, point->point.z);
        } else {
            appendList(builder, value, points);
        }
        return;
    case Kind::entityName:
        builder.name(RTENAME, value.as<EntityName>().name);
        return;
    case Kind::selectionSet:
        builder.name(RTPICKS, value.as<SelectionSet>().name);
        return;
    default:
        builder.string(RTSTR, printed(value));
    }
}

std::optional<Value> valueFrom(LispInterpreter& lisp, const resbuf* list) {
    if (list == nullptr || list->restype == RTVOID) {
        return std::nullopt;
    }
    if (list->restype < RTNONE) {
        return groupsToList(list);
    }
    ItemReader reader(lisp, list);
    Value first = reader.read();
    if (reader.done()) {
        return first;
    }
    ListBuilder builder;
    builder.add(std::move(first));
    while (!reader.done()) {
        builder.add(reader.read());
    }
    return builder.take();
}

std::vector<Value> valuesFrom(LispInterpreter& lisp, const resbuf* list) {
    std::vector<Value> values;
    for (ItemReader reader(lisp, list); !reader.done();) {
        values.push_back(reader.read());
    }
    return values;
}

Value groupsToList(const resbuf* groups) {
    return groupsUpTo(groups);
}

ResbufList listToGroups(const Value& list) {
    ResbufBuilder builder;
    for (const Value& pair : Elements(listOf(list))) {
        if (pair.isCons() && pair.head().isInteger() && pair.head().integer() == xdataMark) {
            appendXdata(builder, pair.tail());
        } else {
            appendGroup(builder, pair);
        }
    }
    return builder.release();
}

Value entityValue(const ads_name name) {
    return make<EntityName>(name);
}

Value entityValue(AcDbObjectId id) {
    ads_name name;
    acdbGetAdsName(name, id);
    return entityValue(name);
}

namespace {

// The value of each living set, so that a name that comes back is the same value and is freed once.
std::unordered_map<std::int64_t, SelectionSet*>& livingSets() {
    static auto& sets = *new std::unordered_map<std::int64_t, SelectionSet*>; // outlives all values
    return sets;
}

void releaseSet(ads_name name) {
    livingSets().erase(name[0]);
    acedSSFree(name);
}

} // namespace

Value selectionValue(const ads_name name) {
    if (const auto found = livingSets().find(name[0]); found != livingSets().end()) {
        return Value(static_cast<Object*>(found->second));
    }
    Value value = make<SelectionSet>(name, releaseSet);
    livingSets().emplace(name[0], &value.as<SelectionSet>());
    return value;
}

const EntityName& entityOf(const Value& value) {
    if (value.kind() != Kind::entityName) {
        typeError(L"lentityp", value);
    }
    return value.as<EntityName>();
}

const SelectionSet& selectionOf(const Value& value) {
    if (value.kind() != Kind::selectionSet) {
        typeError(L"lselsetp", value);
    }
    return value.as<SelectionSet>();
}

} // namespace host::lisp
