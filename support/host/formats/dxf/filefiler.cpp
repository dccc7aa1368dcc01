// Tokens of the scanner to the groups that objects take.
#include "host/formats/dxf/filefiler.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <iterator>

namespace host::dxf {
namespace {

/// Without blanks and control characters at its ends, which codes may stand for and which files cannot keep.
std::string_view withoutControls(std::string_view text) {
    const auto shows = [](char character) { return static_cast<unsigned char>(character) > ' '; };
    const auto first = std::find_if(text.begin(), text.end(), shows);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), shows);
    return {first, last.base()};
}

/// Codes whose texts are names that many records share: layer, linetype, style, block, marker.
constexpr bool isNameCode(int code) {
    return code == 2 || (code >= 6 && code <= 8) || code == 100 || code == 1001 || code == 1003;
}

} // namespace

FileFiler::FileFiler(AcDbDatabase& database, GroupScanner& scanner) : mDatabase(database), mScanner(scanner) {
    advance();
}

Acad::ErrorStatus FileFiler::dwgVersion(AcDb::AcDbDwgVersion& version,
                                        AcDb::MaintenanceReleaseVersion& maintenance) const {
    version = mVersion;
    maintenance = AcDb::kMReleaseCurrent;
    return Acad::eOk;
}

void FileFiler::advance() {
    do {
        mTokenPosition = mScanner.position();
        mHasToken = mScanner.next(mToken);
    } while (mHasToken && mToken.code == 999);
    mTokenLine = mScanner.line();
}

void FileFiler::resetRecord() {
    mEnded = false;
    mPushedBack = false;
    mHandle = 0;
    mBadHandle = false;
    mOwner = nullptr;
    mMarkers = 0;
    mInBraces = false;
    mPaperSpace = false;
    mFault.what.clear();
}

bool FileFiler::nextRecord() {
    if (mRepeat) {
        mRepeat = false;
        return true;
    }
    while (mHasToken && mToken.code != 0) {
        advance();
    }
    if (!mHasToken) {
        mRecordName.clear();
        mEnded = true;
        return false;
    }
    mRecordName = withoutControls(mDecoder.text(trimmed(mToken.text)));
    encodeLineEnds(mRecordName);
    mRecordLine = mTokenLine;
    mRecordPosition = mTokenPosition;
    resetRecord();
    advance();
    return true;
}

void FileFiler::seek(Place place) {
    mScanner.seek(place.position);
    mRepeat = false;
    mEnded = true;
    mPushedBack = false;
    advance();
}

std::optional<std::int64_t> FileFiler::peekInteger(short first, short last,
                                                   const std::function<bool(std::int64_t)>& wanted) {
    const GroupScanner::Position here = mScanner.position();
    Token token = mToken;
    std::optional<std::int64_t> found;
    for (bool has = mHasToken; has && token.code != 0 && !found; has = mScanner.next(token)) {
        if (token.code >= first && token.code <= last) {
            std::int64_t value = token.integer;
            if ((token.binary || parseInteger(token.text, value)) && wanted(value)) {
                found = value;
            }
        }
    }
    mScanner.seek(here);
    return found;
}

bool FileFiler::peekMarker(std::string_view marker) {
    const GroupScanner::Position here = mScanner.position();
    Token token = mToken;
    bool found = false;
    for (bool has = mHasToken; has && token.code != 0 && !found; has = mScanner.next(token)) {
        found = token.code == 100 && trimmed(token.text) == marker;
    }
    mScanner.seek(here);
    return found;
}

/// Notes that the value of the current token cannot be read; the group is then passed over.
bool FileFiler::refuse(const wchar_t* expected) {
    if (mFault.what.empty()) {
        std::wstring shown = fromUtf8(mToken.text.substr(0, 40));
        for (wchar_t& c : shown) {
            c = c < L' ' ? L'?' : c;
        }
        mFault = {mScanner.valueLine(mTokenLine),
                  formatted(L"组码 %d 的值 \"%s\" 不是%s", mToken.code, shown.c_str(), expected)};
    }
    return false;
}

bool FileFiler::convertReal(double& value) {
    if (mToken.binary) {
        value = mToken.real;
        return std::isfinite(value) || refuse(L"有限的数");
    }
    return parseReal(mToken.text, value) || refuse(L"数");
}

/// Handles of records and of others they refer to. The first ones, before any subclass, are the record's own.
bool FileFiler::takeHandle() {
    std::uint64_t handle = 0;
    if (!parseHandle(mToken.text, handle) || handle > greatestHandle) {
        return refuse(L"句柄");
    }
    mGroup.text = trimmed(mToken.text);
    mGroup.integer = static_cast<Adesk::Int64>(handle);
    if (mGroup.kind == ResbufKind::name && handle != 0) {
        mGroup.id = mDatabase.impl().stubFor(handle);
        if (mGroup.id->object == nullptr) {
            mMentions.try_emplace(mGroup.id, Mention{mHandle, mTokenLine});
        }
    }
    if (mGroup.code == 330 && mMarkers == 0 && !mInBraces && mOwner == nullptr) {
        mOwner = mGroup.id;
    }
    return true;
}

bool FileFiler::convert() {
    mGroup.code = mToken.code;
    mGroup.kind = mToken.kind;
    mGroup.dimensions = 0;
    mGroup.id = nullptr;
    mGroup.integer = 0;
    mGroup.text = {};
    switch (mToken.kind) {
    case ResbufKind::point:
    case ResbufKind::real:
        mGroup.text = trimmed(mToken.text);
        return convertReal(mGroup.real);
    case ResbufKind::int16:
    case ResbufKind::int32:
    case ResbufKind::int64: {
        std::int64_t value = mToken.integer;
        if (!mToken.binary && !parseInteger(mToken.text, value)) {
            return refuse(L"整数");
        }
        mGroup.integer = value;
        if (mToken.code == 67 && mMarkers < 2) {
            mPaperSpace = value != 0;
        }
        return true;
    }
    case ResbufKind::name:
    case ResbufKind::handle:
        return takeHandle();
    default:
        break;
    }
    if (mToken.code == 5 || mToken.code == 105) {
        std::uint64_t handle = 0;
        mGroup.text = trimmed(mToken.text);
        const bool own = mMarkers == 0 && mHandle == 0 && (mToken.code == 105 || !mInDimStyles);
        if (parseHandle(mToken.text, handle) && handle <= greatestHandle) {
            mGroup.integer = static_cast<Adesk::Int64>(handle);
            mHandle = own ? handle : mHandle;
        } else {
            mText = withoutControls(mToken.text);
            encodeLineEnds(mText);
            mGroup.text = mText;
            mBadHandle = mBadHandle || own;
        }
        return true;
    }
    takeText();
    return true;
}

void FileFiler::takeText() {
    mGroup.text = isNameCode(mToken.code) ? mDecoder.name(mToken.text) : mDecoder.text(mToken.text);
    if (mToken.binary && mGroup.text.find_first_of("\n\r") != mGroup.text.npos) {
        mText = mGroup.text;
        encodeLineEnds(mText);
        mGroup.text = mText;
    }
    switch (mToken.code) {
    case 2:
        if (mRecordName == "INSERT") {
            takeSymbol(SymbolKind::block);
        }
        break;
    case 6:
        takeSymbol(SymbolKind::linetype);
        break;
    case 7:
        takeSymbol(SymbolKind::textStyle);
        break;
    case 8:
        takeSymbol(SymbolKind::layer);
        break;
    case 100:
        mGroup.text = withoutControls(mGroup.text);
        ++mMarkers;
        break;
    case 102:
        mGroup.text = withoutControls(mGroup.text);
        noteMarker();
        break;
    case 1001:
        noteApplication();
        break;
    default:
        break;
    }
}

void FileFiler::takeSymbol(SymbolKind kind) {
    if (!mResolveNames || mFindSymbol == nullptr) {
        return;
    }
    Symbols& symbols = mSymbols[static_cast<std::size_t>(kind)];
    if (symbols.lastRecord == nullptr || symbols.lastName != mToken.text) {
        const auto [found, added] = symbols.records.try_emplace(mToken.text);
        if (added) {
            found->second = mFindSymbol(kind, trimmed(mGroup.text));
        }
        symbols.lastName = mToken.text;
        symbols.lastRecord = found->second;
    }
    mGroup.id = symbols.lastRecord;
}

void FileFiler::noteApplication() {
    if (mToken.text != mLastApplication || mApplications.empty()) {
        mLastApplication = mToken.text;
        mApplications.emplace(mGroup.text);
    }
}

/// Braces hold the references that are not the owner. They do not nest.
void FileFiler::noteMarker() {
    if (mGroup.text.starts_with('{')) {
        mInBraces = true;
    } else if (mGroup.text.starts_with('}')) {
        mInBraces = false;
    }
}

/// The tokens after a first coordinate: y ten codes on, z twenty.
void FileFiler::joinPoint() {
    mGroup.dimensions = 1;
    mGroup.y = 0.0;
    mGroup.z = 0.0;
    if (!mHasToken || mToken.code != mGroup.code + 10) {
        mGroup.kind = ResbufKind::real;
        return;
    }
    convertReal(mGroup.y);
    mGroup.dimensions = 2;
    advance();
    if (mHasToken && mToken.code == mGroup.code + 20) {
        convertReal(mGroup.z);
        mGroup.dimensions = 3;
        advance();
    }
    mGroup.text = {};
}

const DxfGroup* FileFiler::nextGroup() {
    if (mPushedBack) {
        mPushedBack = false;
        return mEnded ? nullptr : &mGroup;
    }
    while (true) {
        if (mEnded || !mHasToken || mToken.code == 0) {
            mEnded = true;
            return nullptr;
        }
        mGroupLine = mTokenLine;
        const bool good = convert();
        advance();
        if (good) {
            break;
        }
    }
    if (mGroup.kind == ResbufKind::point) {
        joinPoint();
    }
    return &mGroup;
}

} // namespace host::dxf
