// Result buffers: making, copying and freeing typed lists.
#include "host/rx/ads.h"

#include <cstdarg>
#include <cstring>

namespace host {

ResbufKind resbufKind(int type) {
    switch (type) {
    case RTREAL:
    case RTANG:
    case RTORINT:
        return ResbufKind::real;
    case RTPOINT:
    case RT3DPOINT:
        return ResbufKind::point;
    case RTSHORT:
        return ResbufKind::int16;
    case RTLONG:
        return ResbufKind::int32;
    case RTINT64:
        return ResbufKind::int64;
    case RTSTR:
    case RTDXF0:
        return ResbufKind::string;
    case RTENAME:
    case RTPICKS:
        return ResbufKind::name;
    default:
        break;
    }
    const auto within = [type](int first, int last) { return type >= first && type <= last; };
    if (within(-2, -1)) {
        return ResbufKind::name;
    }
    if (type == -3 || within(5000, 5100) || type < -5) {
        return ResbufKind::none;
    }
    if (type == -4 || within(0, 9) || within(100, 102) || within(300, 309) || within(410, 419) ||
        within(430, 439) || within(470, 479) || within(999, 1003) || type == 105) {
        return ResbufKind::string;
    }
    if (within(10, 17) || within(110, 112) || within(210, 210) || within(1010, 1013) || type == 211 ||
        type == 212 || type == 213) {
        return ResbufKind::point;
    }
    if (within(18, 59) || within(113, 149) || within(214, 239) || within(460, 469) || within(1014, 1059)) {
        return ResbufKind::real;
    }
    if (within(60, 79) || within(170, 179) || within(270, 289) || within(370, 389) || within(400, 409) ||
        within(1060, 1070)) {
        return ResbufKind::int16;
    }
    if (within(90, 99) || within(420, 429) || within(440, 459) || type == 1071) {
        return ResbufKind::int32;
    }
    if (within(160, 169)) {
        return ResbufKind::int64;
    }
    if (within(290, 299)) {
        return ResbufKind::int16;
    }
    if (within(310, 319) || type == 1004) {
        return ResbufKind::binary;
    }
    if (within(320, 329) || type == 1005) {
        return ResbufKind::handle;
    }
    if (within(330, 369) || within(390, 399) || within(480, 489)) {
        return ResbufKind::name;
    }
    return ResbufKind::none;
}

namespace {

void releaseValue(resbuf& buffer) {
    switch (resbufKind(buffer.restype)) {
    case ResbufKind::string:
    case ResbufKind::handle:
        delete[] buffer.resval.rstring;
        break;
    case ResbufKind::binary:
        delete[] buffer.resval.rbinary.buf;
        break;
    default:
        break;
    }
}

ACHAR* copyText(std::wstring_view text) {
    auto* copy = new ACHAR[text.size() + 1];
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = L'\0';
    return copy;
}

} // namespace

ResbufList copyResbuf(const resbuf& buffer) {
    ResbufList copy(acutNewRb(buffer.restype));
    copy->resval = buffer.resval;
    switch (resbufKind(buffer.restype)) {
    case ResbufKind::string:
    case ResbufKind::handle:
        copy->resval.rstring = copyText(buffer.resval.rstring != nullptr ? buffer.resval.rstring : L"");
        break;
    case ResbufKind::binary:
        copy->resval.rbinary.buf = new char[static_cast<std::size_t>(buffer.resval.rbinary.clen) + 1];
        std::memcpy(copy->resval.rbinary.buf, buffer.resval.rbinary.buf,
                    static_cast<std::size_t>(buffer.resval.rbinary.clen));
        break;
    default:
        break;
    }
    return copy;
}

ResbufList copyResbufList(const resbuf* list) {
    ResbufBuilder builder;
    for (; list != nullptr; list = list->rbnext) {
        builder.take(copyResbuf(*list).release());
    }
    return builder.release();
}

resbuf* ResbufBuilder::add(int type) {
    return take(acutNewRb(type)), mLast;
}

ResbufBuilder& ResbufBuilder::take(resbuf* list) {
    if (list == nullptr) {
        return *this;
    }
    if (mLast == nullptr) {
        mFirst.reset(list);
    } else {
        mLast->rbnext = list;
    }
    mLast = list;
    while (mLast->rbnext != nullptr) {
        mLast = mLast->rbnext;
    }
    return *this;
}

ResbufBuilder& ResbufBuilder::real(int type, double value) {
    add(type)->resval.rreal = value;
    return *this;
}

ResbufBuilder& ResbufBuilder::point(int type, double x, double y, double z) {
    resbuf* added = add(type);
    added->resval.rpoint[0] = x;
    added->resval.rpoint[1] = y;
    added->resval.rpoint[2] = z;
    return *this;
}

ResbufBuilder& ResbufBuilder::integer(int type, std::int64_t value) {
    resbuf* added = add(type);
    switch (resbufKind(type)) {
    case ResbufKind::int16:
        added->resval.rint = static_cast<short>(value);
        break;
    case ResbufKind::int32:
        added->resval.rlong = static_cast<std::int32_t>(value);
        break;
    default:
        added->resval.mnInt64 = value;
        break;
    }
    return *this;
}

ResbufBuilder& ResbufBuilder::string(int type, std::wstring_view value) {
    add(type)->resval.rstring = copyText(value);
    return *this;
}

ResbufBuilder& ResbufBuilder::name(int type, const ads_name value) {
    ads_name_set(value, add(type)->resval.rlname);
    return *this;
}

ResbufBuilder& ResbufBuilder::binary(int type, const void* bytes, std::size_t count) {
    resbuf* added = add(type);
    added->resval.rbinary.clen = static_cast<short>(count);
    added->resval.rbinary.buf = new char[count + 1];
    std::memcpy(added->resval.rbinary.buf, bytes, count);
    return *this;
}

ResbufBuilder& ResbufBuilder::mark(int type) {
    add(type);
    return *this;
}

ResbufList ResbufBuilder::release() {
    mLast = nullptr;
    return std::move(mFirst);
}

} // namespace host

resbuf* acutNewRb(int type) {
    auto* created = new resbuf{};
    created->restype = static_cast<short>(type);
    return created;
}

int acutRelRb(resbuf* list) {
    while (list != nullptr) {
        resbuf* next = list->rbnext;
        host::releaseValue(*list);
        delete list;
        list = next;
    }
    return RTNORM;
}

Acad::ErrorStatus acutNewString(const ACHAR* text, ACHAR*& copy) {
    copy = text != nullptr ? host::copyText(text) : nullptr;
    return Acad::eOk;
}

void acutDelString(ACHAR*& text) {
    delete[] text;
    text = nullptr;
}

resbuf* acutBuildList(int type, ...) {
    host::ResbufBuilder builder;
    va_list arguments;
    va_start(arguments, type);
    for (; type != 0 && type != RTNONE; type = va_arg(arguments, int)) {
        switch (const int code = type == RTDXF0 ? 0 : type; host::resbufKind(type)) {
        case host::ResbufKind::real:
            builder.real(code, va_arg(arguments, double));
            break;
        case host::ResbufKind::point: {
            const double* point = va_arg(arguments, double*);
            builder.point(code, point[0], point[1], type == RTPOINT ? 0.0 : point[2]);
            break;
        }
        case host::ResbufKind::int16:
        case host::ResbufKind::int32:
            builder.integer(code, va_arg(arguments, int));
            break;
        case host::ResbufKind::int64:
            builder.integer(code, va_arg(arguments, std::int64_t));
            break;
        case host::ResbufKind::string:
        case host::ResbufKind::handle: {
            const ACHAR* text = va_arg(arguments, const ACHAR*);
            builder.string(code, text != nullptr ? text : L"");
            break;
        }
        case host::ResbufKind::name:
            builder.name(code, va_arg(arguments, std::int64_t*));
            break;
        case host::ResbufKind::binary: {
            const ads_binary* chunk = va_arg(arguments, ads_binary*);
            builder.binary(code, chunk->buf, static_cast<std::size_t>(chunk->clen));
            break;
        }
        case host::ResbufKind::none:
            builder.mark(code);
            break;
        }
    }
    va_end(arguments);
    return builder.release().release();
}
