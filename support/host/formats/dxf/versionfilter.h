// Stands before the writer of an older release: passes what that release has, turns what has another form
// there, leaves out the rest, and counts what is lost.
#pragma once

#include "host/formats/dxf/groupwriter.h"
#include "host/formats/dxf/versionrules.h"
#include "host/formats/formats.h"

#include <map>
#include <optional>
#include <unordered_set>
#include <vector>

namespace host::dxf {

class VersionFilter final : public GroupWriter {
public:
    /// Looks at every object once for those the release cannot hold.
    VersionFilter(AcDbDatabase& database, GroupWriter& out);

    /// Objects that are left out whole, with what they own.
    bool leavesOut(const AcDbObject& object) const { return mLeftOut.contains(object.handle()); }
    bool leavesOutVariable(std::string_view name) const { return variableSince(name) > version(); }
    bool leavesOutSection(std::string_view name) const {
        return name == "ACDSDATA" && version() < AcDb::kDHL_1027;
    }
    /// Counts something that is left out by whoever writes it.
    void note(Loss loss, Adesk::UInt64 handle = 0);
    void noteVariable(std::string_view name) { mVariables.emplace_back(name); }
    /// An entry for each kind of loss.
    void reportTo(ReadReport& report) const;

    void beginRecord(std::string_view name) override;
    Acad::ErrorStatus writeReal(short code, double value) override;
    Acad::ErrorStatus writeInteger(short code, Adesk::Int64 value) override;
    Acad::ErrorStatus writeReference(short code, AcDbStub* id) override;
    Acad::ErrorStatus writeBinary(short code, const void* bytes, std::size_t count) override;
    using GroupWriter::writeKept;
    Acad::ErrorStatus writeKept(short code, std::string_view text) override;
    void writeHandle(short code, Adesk::UInt64 handle) override;
    bool flush() override { return mOut.flush(); }
    std::size_t count() const override { return mOut.count(); }

private:
    void findLeftOut();
    bool isPlainVisualStyle(Adesk::UInt64 handle) const;
    void enterSubclass(std::string_view marker);
    /// The code to write a group under; nothing when it is left out. Asks `harmless` whether the value is one
    /// with which nothing is lost.
    template <class Harmless>
    std::optional<short> take(short code, Harmless&& harmless);
    /// What becomes of a reference: in lists it goes when it names something that is left out, elsewhere it
    /// becomes null.
    enum class Fate { stays, null, leftOut };
    Fate fateOf(short code, Adesk::UInt64 handle);

    GroupWriter& mOut;
    std::unordered_set<Adesk::UInt64> mLeftOut;
    struct Count {
        std::size_t count = 0;
        Adesk::UInt64 first = 0;
    };
    std::map<Loss, Count> mLosses;
    std::vector<std::string> mVariables;

    // Of the record being written.
    Adesk::UInt64 mHandle = 0;
    std::vector<VersionRule> mRules; ///< of the subclass, those that this release breaks
    std::vector<int> mSeen;          ///< how often the codes of the rules came
    bool mEmbedded = false;          ///< within an object embedded in another, which is left out
    bool mInDictionary = false;
    bool mInBraces = false;           ///< in a list of references
    std::optional<std::string> mName; ///< of a dictionary entry, until what it names is known to stay
};

} // namespace host::dxf
