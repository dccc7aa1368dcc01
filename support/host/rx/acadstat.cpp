// Names of the result codes, for diagnostics.
#include "host/rx/acadstat.h"

#include <array>
#include <utility>

namespace {

constexpr std::pair<Acad::ErrorStatus, const wchar_t*> statusNames[] = {
    {Acad::eOk, L"eOk"},
    {Acad::eNotImplementedYet, L"eNotImplementedYet"},
    {Acad::eNotApplicable, L"eNotApplicable"},
    {Acad::eInvalidInput, L"eInvalidInput"},
    {Acad::eOutOfMemory, L"eOutOfMemory"},
    {Acad::eInvalidOpenState, L"eInvalidOpenState"},
    {Acad::eNullHandle, L"eNullHandle"},
    {Acad::eUnknownHandle, L"eUnknownHandle"},
    {Acad::eNullObjectPointer, L"eNullObjectPointer"},
    {Acad::eNullObjectId, L"eNullObjectId"},
    {Acad::eKeyNotFound, L"eKeyNotFound"},
    {Acad::eDuplicateKey, L"eDuplicateKey"},
    {Acad::eInvalidIndex, L"eInvalidIndex"},
    {Acad::eAlreadyInDb, L"eAlreadyInDb"},
    {Acad::eInvalidExtents, L"eInvalidExtents"},
    {Acad::eWrongObjectType, L"eWrongObjectType"},
    {Acad::eWrongDatabase, L"eWrongDatabase"},
    {Acad::eNotThatKindOfClass, L"eNotThatKindOfClass"},
    {Acad::eFilerError, L"eFilerError"},
    {Acad::eNoDatabase, L"eNoDatabase"},
    {Acad::eNoDocument, L"eNoDocument"},
    {Acad::eWasOpenForRead, L"eWasOpenForRead"},
    {Acad::eWasOpenForWrite, L"eWasOpenForWrite"},
    {Acad::eWasOpenForNotify, L"eWasOpenForNotify"},
    {Acad::eWasErased, L"eWasErased"},
    {Acad::ePermanentlyErased, L"ePermanentlyErased"},
    {Acad::eAtMaxReaders, L"eAtMaxReaders"},
    {Acad::eDuplicateRecordName, L"eDuplicateRecordName"},
    {Acad::eNotAllowedForThisProxy, L"eNotAllowedForThisProxy"},
    {Acad::eOnLockedLayer, L"eOnLockedLayer"},
    {Acad::eCannotBeErasedByCaller, L"eCannotBeErasedByCaller"},
    {Acad::eNoActiveTransactions, L"eNoActiveTransactions"},
    {Acad::eCannotScaleNonUniformly, L"eCannotScaleNonUniformly"},
    {Acad::eDegenerateGeometry, L"eDegenerateGeometry"},
    {Acad::eFileNotFound, L"eFileNotFound"},
    {Acad::eFileAccessErr, L"eFileAccessErr"},
    {Acad::eUndefinedLineType, L"eUndefinedLineType"},
    {Acad::eRegappIdNotFound, L"eRegappIdNotFound"},
    {Acad::eSelfReference, L"eSelfReference"},
    {Acad::eUserBreak, L"eUserBreak"},
    {Acad::eOutOfRange, L"eOutOfRange"},
    {Acad::eBadDxfFile, L"eBadDxfFile"},
    {Acad::eBadDxfSequence, L"eBadDxfSequence"},
    {Acad::eMakeMeProxy, L"eMakeMeProxy"},
};

} // namespace

const wchar_t* acadErrorStatusText(Acad::ErrorStatus status) {
    for (const auto& [known, name] : statusNames) {
        if (known == status) {
            return name;
        }
    }
    static thread_local std::array<wchar_t, 16> number;
    int value = static_cast<int>(status);
    auto at = number.end();
    *--at = L'\0';
    const bool negative = value < 0;
    do {
        *--at = static_cast<wchar_t>(L'0' + (negative ? -(value % 10) : value % 10));
        value /= 10;
    } while (value != 0);
    if (negative) {
        *--at = L'-';
    }
    return &*at;
}
