// The third floor of the DXF reader: the groups of one record after the other, as objects read them. Values
// are converted, coordinates joined, texts made UTF-8, handles turned into ids.
#pragma once

#include "host/db/db.h"
#include "host/formats/dxf/groupscanner.h"
#include "host/formats/dxf/textdecoder.h"

#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace host::dxf {

/// The tables whose records entities refer to by name.
enum class SymbolKind { layer, linetype, textStyle, block };

class FileFiler final : public AcDbDxfFiler {
public:
    FileFiler(AcDbDatabase& database, GroupScanner& scanner);

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
    AcDbDatabase* database() const override { return &mDatabase; }
    Acad::ErrorStatus dwgVersion(AcDb::AcDbDwgVersion& version,
                                 AcDb::MaintenanceReleaseVersion& maintenance) const override;
    const DxfGroup* nextGroup() override;
    void pushBackItem() override { mPushedBack = true; }

    TextDecoder& decoder() { return mDecoder; }
    void setVersion(AcDb::AcDbDwgVersion version) { mVersion = version; }
    AcDb::AcDbDwgVersion version() const { return mVersion; }

    // Records: a group 0 and all up to the next.

    /// Goes to the next record, past what is left of this one. False at the end of the file.
    bool nextRecord();
    const std::string& recordName() const { return mRecordName; }
    std::size_t recordLine() const { return mRecordLine; }
    /// Says that the record is not done with: the next nextRecord stays on it.
    void repeatRecord() { mRepeat = true; }
    /// Looks ahead in the record, from where reading stands, for the first whole number under a code.
    std::int64_t peekInteger(short code, std::int64_t otherwise) {
        return peekInteger(code, code, [&](std::int64_t) { return true; }).value_or(otherwise);
    }
    /// The first under a code of the range with which `wanted` agrees.
    std::optional<std::int64_t> peekInteger(short first, short last,
                                            const std::function<bool(std::int64_t)>& wanted);
    /// Looks ahead for a subclass marker.
    bool peekMarker(std::string_view marker);

    // What the groups read so far said of the record.

    std::uint64_t handle() const { return mHandle; }
    /// There was a handle that is none, or too great.
    bool hasBadHandle() const { return mBadHandle; }
    AcDbStub* owner() const { return mOwner; }
    bool inPaperSpace() const { return mPaperSpace; }
    bool hasMarkers() const { return mMarkers > 0; }
    /// One marker came: that of the class all entities are, not that of their own.
    bool hasBaseMarkerOnly() const { return mMarkers == 1; }
    /// The first value that could not be read, with its line; such groups are passed over.
    struct Fault {
        std::size_t line = 0;
        std::wstring what; ///< empty: none
    };
    const Fault& fault() const { return mFault; }

    /// The line of the group given last.
    std::size_t line() const { return mGroupLine; }
    /// The line of its value.
    std::size_t valueLine() const { return mScanner.valueLine(mGroupLine); }

    // Names in entities: groups 8, 6, 7 and 2 get the id of the record they name.

    using SymbolFinder = std::function<AcDbStub*(SymbolKind, std::string_view name)>;
    /// Asked once for each name; what it gives is remembered.
    void setSymbolFinder(SymbolFinder finder) { mFindSymbol = std::move(finder); }
    /// Names are looked up from now on, or no more.
    void resolveNames(bool on) { mResolveNames = on; }
    /// In the table of dimension styles group 5 is a text, of old releases, and 105 the handle.
    void inDimStyles(bool on) { mInDimStyles = on; }

    /// Application names that came with extended data.
    const std::unordered_set<std::string>& applications() const { return mApplications; }

    // Places in the file, for reading sections out of order.

    struct Place {
        GroupScanner::Position position;
    };
    /// Of the record that is current.
    Place place() const { return {mRecordPosition}; }
    /// Makes the record at the place the next one.
    void seek(Place place);

    /// References to objects that had not come when they were mentioned, with the first mention.
    struct Mention {
        std::uint64_t by = 0; ///< handle of the record that refers
        std::size_t line = 0;
    };
    const std::unordered_map<AcDbStub*, Mention>& mentions() const { return mMentions; }

    Acad::ErrorStatus writeReal(short, double) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeInteger(short, Adesk::Int64) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeText(short, std::string_view) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writePoint(short, double, double, double, int) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeReference(short, AcDbStub*) override { return Acad::eNotApplicable; }
    Acad::ErrorStatus writeBinary(short, const void*, std::size_t) override { return Acad::eNotApplicable; }
    using AcDbDxfFiler::writeKept;
    Acad::ErrorStatus writeKept(short, std::string_view) override { return Acad::eNotApplicable; }

private:
    /// Reads the token after the current one; comments are passed over.
    void advance();
    bool convert();
    bool convertReal(double& value);
    void joinPoint();
    bool takeHandle();
    void noteMarker();
    void takeText();
    void takeSymbol(SymbolKind kind);
    void noteApplication();
    bool refuse(const wchar_t* expected);
    void resetRecord();

    AcDbDatabase& mDatabase;
    GroupScanner& mScanner;
    TextDecoder mDecoder;
    AcDb::AcDbDwgVersion mVersion = AcDb::kDHL_1009;

    Token mToken; ///< the group after the one given last
    bool mHasToken = false;
    std::size_t mTokenLine = 0;
    GroupScanner::Position mTokenPosition;

    DxfGroup mGroup;
    std::size_t mGroupLine = 0;
    bool mPushedBack = false;
    bool mEnded = true;
    bool mRepeat = false;

    std::string mRecordName;
    std::string mText; ///< of the group, when its line ends were encoded
    std::size_t mRecordLine = 0;
    GroupScanner::Position mRecordPosition;
    std::uint64_t mHandle = 0;
    bool mBadHandle = false;
    AcDbStub* mOwner = nullptr;
    int mMarkers = 0;
    bool mInBraces = false;
    bool mPaperSpace = false;
    Fault mFault;
    std::unordered_map<AcDbStub*, Mention> mMentions;

    SymbolFinder mFindSymbol;
    bool mResolveNames = false;
    bool mInDimStyles = false;
    struct Symbols {
        std::string_view lastName; ///< as in the file, like the keys
        AcDbStub* lastRecord = nullptr;
        std::unordered_map<std::string_view, AcDbStub*> records;
    };
    Symbols mSymbols[4];
    std::string_view mLastApplication;
    std::unordered_set<std::string> mApplications;
};

} // namespace host::dxf
