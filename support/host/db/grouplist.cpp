// Groups kept as DXF text: packed as code, length and bytes, one after the other.
#include "host/db/dbdatabase.h"
#include "host/db/dbfiler.h"
#include "host/rx/text.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace host {
namespace {

constexpr std::size_t codeBytes = sizeof(short);
constexpr std::size_t headBytes = codeBytes + sizeof(Adesk::UInt32);

Adesk::UInt32 lengthAt(const char* at) {
    Adesk::UInt32 length = 0;
    std::memcpy(&length, at + codeBytes, sizeof length);
    return length;
}

double parseReal(std::string_view text) {
    double value = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

Adesk::Int64 parseInteger(std::string_view text) {
    Adesk::Int64 value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

/// 10 to 37 and 110 to 132 (also of extended data), 210 to 230: x, y and z of points, ten apart.
constexpr bool isCoordinate(int code) {
    code = code >= 1000 ? code - 1000 : code;
    return (code >= 10 && code <= 37) || (code >= 110 && code <= 132) || (code >= 210 && code <= 230);
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 0;
}

} // namespace

std::string bytesFromHex(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
        bytes.push_back(static_cast<char>(hexDigit(text[at]) * 16 + hexDigit(text[at + 1])));
    }
    return bytes;
}

std::string hexFromBytes(const void* bytes, std::size_t count) {
    std::string text;
    text.reserve(count * 2);
    for (const auto* at = static_cast<const unsigned char*>(bytes); count > 0; --count, ++at) {
        text.push_back("0123456789ABCDEF"[*at >> 4]);
        text.push_back("0123456789ABCDEF"[*at & 15]);
    }
    return text;
}

std::string encodeDxfText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (c == '^') {
            result += "^ ";
        } else if (static_cast<unsigned char>(c) < 0x20) {
            result += '^';
            result += static_cast<char>(c + 0x40);
        } else {
            result += c;
        }
    }
    return result;
}

std::string decodeDxfText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        if (text[at] == '^' && next == ' ') {
            result += '^';
            ++at;
        } else if (text[at] == '^' && next > '@' && next <= '_') {
            result += static_cast<char>(next - 0x40);
            ++at;
        } else {
            result += text[at];
        }
    }
    return result;
}

std::string_view formatReal(double value, char (&buffer)[40]) {
    if (!std::isfinite(value)) {
        return "0.0";
    }
    // Whole numbers are frequent and much faster to write.
    constexpr double greatestWhole = 1e15;
    if (value == std::trunc(value) && std::fabs(value) < greatestWhole &&
        !(value == 0.0 && std::signbit(value))) {
        const std::to_chars_result whole =
            std::to_chars(buffer, buffer + sizeof buffer - 2, static_cast<Adesk::Int64>(value));
        whole.ptr[0] = '.';
        whole.ptr[1] = '0';
        return std::string_view(buffer, static_cast<std::size_t>(whole.ptr - buffer) + 2);
    }
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer - 2, value);
    std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
    if (text.find_first_of(".e") == std::string_view::npos) {
        *result.ptr = '.';
        result.ptr[1] = '0';
        text = std::string_view(buffer, text.size() + 2);
    }
    return text;
}

ReferenceKind referenceKind(int code) {
    if ((code >= 320 && code <= 329) || code == 1005) {
        return ReferenceKind::handleOnly;
    }
    if (code >= 330 && code <= 339) {
        return ReferenceKind::softPointer;
    }
    if ((code >= 340 && code <= 349) || (code >= 390 && code <= 399) || (code >= 480 && code <= 489)) {
        return ReferenceKind::hardPointer;
    }
    if (code >= 350 && code <= 359) {
        return ReferenceKind::softOwnership;
    }
    return code >= 360 && code <= 369 ? ReferenceKind::hardOwnership : ReferenceKind::none;
}

bool isPointCode(int code) {
    return resbufKind(code) == ResbufKind::point;
}

GroupList::Group GroupList::Iterator::operator*() const {
    short code = 0;
    std::memcpy(&code, mAt, sizeof code);
    return {code, std::string_view(mAt + headBytes, lengthAt(mAt))};
}

GroupList::Iterator& GroupList::Iterator::operator++() {
    mAt += headBytes + lengthAt(mAt);
    return *this;
}

void GroupList::add(short code, std::string_view text) {
    const auto length = static_cast<Adesk::UInt32>(text.size());
    char head[headBytes];
    std::memcpy(head, &code, sizeof code);
    std::memcpy(head + codeBytes, &length, sizeof length);
    mBytes.append(head, headBytes);
    mBytes.append(text);
}

void GroupList::addReal(short code, double value) {
    char buffer[40];
    add(code, formatReal(value, buffer));
}

void GroupList::addInteger(short code, Adesk::Int64 value) {
    char buffer[24];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    add(code, std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)));
}

void GroupList::add(const DxfGroup& group) {
    switch (group.kind) {
    case ResbufKind::point:
        addReal(group.code, group.real);
        addReal(static_cast<short>(group.code + 10), group.y);
        if (group.dimensions == 3) {
            addReal(static_cast<short>(group.code + 20), group.z);
        }
        break;
    case ResbufKind::real:
        // A coordinate that stands alone may, when written, come to stand after another that it makes a point
        // with.
        if (group.text.empty() || isCoordinate(group.code)) {
            addReal(group.code, group.real);
        } else {
            add(group.code, group.text);
        }
        break;
    case ResbufKind::int16:
    case ResbufKind::int32:
    case ResbufKind::int64:
        addInteger(group.code, group.integer);
        break;
    case ResbufKind::name:
        if (group.text.empty() && group.id != nullptr) {
            add(group.code, toUtf8(AcDbHandle(group.id->handle).toString()));
            break;
        }
        [[fallthrough]];
    default:
        add(group.code, group.text);
        break;
    }
}

bool GroupList::setBytes(std::string bytes) {
    std::size_t at = 0;
    while (at + headBytes <= bytes.size()) {
        const std::size_t length = lengthAt(bytes.data() + at);
        if (length > bytes.size() - at - headBytes) {
            return false;
        }
        at += headBytes + length;
    }
    if (at != bytes.size()) {
        return false;
    }
    mBytes = std::move(bytes);
    return true;
}

namespace {

/// Filers that follow references; the others take the bytes as they are.
bool followsReferences(const AcDbDwgFiler& filer) {
    switch (filer.filerType()) {
    case AcDb::kDeepCloneFiler:
    case AcDb::kWblockCloneFiler:
    case AcDb::kIdXlateFiler:
    case AcDb::kIdFiler:
    case AcDb::kPurgeFiler:
        return true;
    default:
        return false;
    }
}

/// References inside kept data never own: what they name is owned by something the host knows.
bool isFollowed(short code) {
    return referenceKind(code) != ReferenceKind::none;
}

} // namespace

void GroupList::dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const {
    filer->writeUInt32(static_cast<Adesk::UInt32>(mBytes.size()));
    filer->writeBytes(mBytes.data(), mBytes.size());
    if (!followsReferences(*filer)) {
        return;
    }
    for (const Group group : *this) {
        if (!isFollowed(group.code)) {
            continue;
        }
        AcDbStub* stub = database != nullptr
                             ? database->impl().findStub(AcDbHandle(fromUtf8(group.text).c_str()))
                             : nullptr;
        switch (referenceKind(group.code)) {
        case ReferenceKind::hardOwnership:
            filer->writeHardOwnershipId(AcDbHardOwnershipId(stub));
            break;
        case ReferenceKind::softOwnership:
            filer->writeSoftOwnershipId(AcDbSoftOwnershipId(stub));
            break;
        case ReferenceKind::hardPointer:
            filer->writeHardPointerId(AcDbHardPointerId(stub));
            break;
        default:
            filer->writeSoftPointerId(AcDbSoftPointerId(stub));
            break;
        }
    }
}

void GroupList::dwgIn(AcDbDwgFiler* filer) {
    Adesk::UInt32 size = 0;
    filer->readUInt32(&size);
    std::string bytes(filer->filerStatus() == Acad::eOk ? size : 0, '\0');
    filer->readBytes(bytes.data(), bytes.size());
    if (filer->filerStatus() != Acad::eOk || !setBytes(std::move(bytes))) {
        mBytes.clear();
        filer->setFilerStatus(Acad::eFilerError);
        return;
    }
    if (!followsReferences(*filer)) {
        return;
    }
    GroupList translated;
    for (const Group group : *this) {
        if (!isFollowed(group.code)) {
            translated.add(group.code, group.text);
            continue;
        }
        AcDbSoftPointerId id;
        filer->readSoftPointerId(&id);
        translated.add(group.code, id.isNull() ? std::string("0") : toUtf8(id.handle().toString()));
    }
    mBytes = std::move(translated.mBytes);
}

ResbufList GroupList::toResbuf(AcDbDatabase* database) const {
    ResbufBuilder builder;
    for (Iterator at = begin(); at != end(); ++at) {
        const Group group = *at;
        switch (resbufKind(group.code)) {
        case ResbufKind::real:
            builder.real(group.code, parseReal(group.text));
            break;
        case ResbufKind::point: {
            double values[3] = {parseReal(group.text), 0.0, 0.0};
            for (int axis = 1; axis < 3; ++axis) {
                Iterator next = at;
                ++next;
                if (next != end() && (*next).code == group.code + 10 * axis) {
                    values[axis] = parseReal((*next).text);
                    at = next;
                } else {
                    break;
                }
            }
            builder.point(group.code, values[0], values[1], values[2]);
            break;
        }
        case ResbufKind::int16:
        case ResbufKind::int32:
        case ResbufKind::int64:
            builder.integer(group.code, parseInteger(group.text));
            break;
        case ResbufKind::name: {
            AcDbStub* stub = nullptr;
            if (database != nullptr) {
                stub = database->impl().findStub(AcDbHandle(fromUtf8(group.text).c_str()));
            }
            ads_name name = {AcDbObjectId(stub).asOldId(), 0};
            builder.name(group.code, name);
            break;
        }
        case ResbufKind::binary: {
            const std::string bytes = bytesFromHex(group.text);
            builder.binary(group.code, bytes.data(), bytes.size());
            break;
        }
        default:
            builder.string(group.code, fromUtf8(decodeDxfText(group.text)));
            break;
        }
    }
    return builder.release();
}

GroupList GroupList::fromResbuf(const resbuf* list) {
    GroupList groups;
    for (; list != nullptr; list = list->rbnext) {
        const short code = list->restype;
        switch (resbufKind(code)) {
        case ResbufKind::real:
            groups.addReal(code, list->resval.rreal);
            break;
        case ResbufKind::point:
            for (short axis = 0; axis < 3; ++axis) {
                groups.addReal(static_cast<short>(code + 10 * axis), list->resval.rpoint[axis]);
            }
            break;
        case ResbufKind::int16:
            groups.addInteger(code, list->resval.rint);
            break;
        case ResbufKind::int32:
            groups.addInteger(code, list->resval.rlong);
            break;
        case ResbufKind::int64:
            groups.addInteger(code, list->resval.mnInt64);
            break;
        case ResbufKind::name: {
            AcDbObjectId id;
            acdbGetObjectId(id, list->resval.rlname);
            groups.add(code, toUtf8(id.handle().toString()));
            break;
        }
        case ResbufKind::binary:
            groups.add(code, hexFromBytes(list->resval.rbinary.buf,
                                          static_cast<std::size_t>(list->resval.rbinary.clen)));
            break;
        case ResbufKind::string:
        case ResbufKind::handle:
            groups.add(code,
                       encodeDxfText(toUtf8(list->resval.rstring != nullptr ? list->resval.rstring : L"")));
            break;
        case ResbufKind::none:
            break;
        }
    }
    return groups;
}

} // namespace host
