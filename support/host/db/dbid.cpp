// Handles as text, and the glue between ids and the names of the C-style interface.
#include "host/db/dbid.h"

#include "host/db/dbobject.h"

#include <array>
#include <cwchar>

const AcDbObjectId AcDbObjectId::kNull;

AcDbHandle::AcDbHandle(const ACHAR* digits) {
    for (; digits != nullptr && *digits != L'\0'; ++digits) {
        const ACHAR c = *digits;
        unsigned digit = 0;
        if (c >= L'0' && c <= L'9') {
            digit = static_cast<unsigned>(c - L'0');
        } else if (c >= L'a' && c <= L'f') {
            digit = static_cast<unsigned>(c - L'a' + 10);
        } else if (c >= L'A' && c <= L'F') {
            digit = static_cast<unsigned>(c - L'A' + 10);
        } else {
            mValue = 0;
            return;
        }
        mValue = mValue * 16 + digit;
    }
}

std::wstring AcDbHandle::toString() const {
    std::array<wchar_t, 17> digits{};
    std::size_t at = digits.size();
    Adesk::UInt64 rest = mValue;
    do {
        digits[--at] = L"0123456789ABCDEF"[rest & 15];
        rest >>= 4;
    } while (rest != 0);
    return {digits.data() + at, digits.size() - at};
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, std::size_t size) const {
    const std::wstring digits = toString();
    if (digits.size() >= size) {
        return false;
    }
    std::wcscpy(buffer, digits.c_str());
    return true;
}

bool AcDbObjectId::isEffectivelyErased() const {
    for (AcDbObjectId id = *this; !id.isNull(); id = id.stub()->object->ownerId()) {
        if (id.isErased() || id.stub()->object == nullptr) {
            return true;
        }
    }
    return isNull();
}

AcRxClass* AcDbObjectId::objectClass() const {
    return isValid() ? mStub->object->isA() : nullptr;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    if (name[0] == 0) {
        id.setNull();
        return Acad::eInvalidAdsName;
    }
    id.setFromOldId(static_cast<Adesk::IntDbId>(name[0]));
    return Acad::eOk;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id) {
    name[0] = id.asOldId();
    name[1] = 0;
    return id.isNull() ? Acad::eNullObjectId : Acad::eOk;
}
