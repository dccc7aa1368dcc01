// Questions as commands put them: one call with prompt, keywords and what is allowed; one value back.
#pragma once

#include "host/ed/ed.h"

#include <optional>
#include <string>

namespace host {

/// What a question was answered with. `cancelled` is Escape, or an error of the input.
struct Answer {
    enum class Kind { value, keyword, none, cancelled };
    Kind kind = Kind::cancelled;
    std::wstring keyword;

    bool isValue() const { return kind == Kind::value; }
    bool isKeyword(std::wstring_view name) const { return kind == Kind::keyword && keyword == name; }
    bool isNone() const { return kind == Kind::none; }
    bool isCancelled() const { return kind == Kind::cancelled; }
};

struct PointAnswer : Answer {
    AcGePoint3d ucs;   ///< as answered
    AcGePoint3d world; ///< the same in world coordinates
};
struct RealAnswer : Answer {
    double value = 0.0;
};
struct IntegerAnswer : Answer {
    int value = 0;
};
struct TextAnswer : Answer {
    std::wstring text;
};

/// `flags` are those of acedInitGet; `base` is in UCS coordinates.
PointAnswer askPoint(const std::wstring& prompt, const wchar_t* keywords = nullptr,
                     const AcGePoint3d* base = nullptr, int flags = 0);
RealAnswer askDistance(const std::wstring& prompt, const wchar_t* keywords = nullptr,
                       const AcGePoint3d* base = nullptr, int flags = 0);
/// Radians against the X axis of the UCS.
RealAnswer askAngle(const std::wstring& prompt, const wchar_t* keywords = nullptr,
                    const AcGePoint3d* base = nullptr, int flags = 0);
RealAnswer askReal(const std::wstring& prompt, const wchar_t* keywords = nullptr, int flags = 0);
IntegerAnswer askInteger(const std::wstring& prompt, const wchar_t* keywords = nullptr, int flags = 0);
/// Enter is `none`.
Answer askKeyword(const std::wstring& prompt, const wchar_t* keywords, int flags = 0);
/// With `blanks` the text ends with the line only. Enter is `none`.
TextAnswer askText(const std::wstring& prompt, bool blanks = false);
/// A name, or several with commas: a blank ends it too, as everywhere, except between quotes, which are taken
/// off.
TextAnswer askName(const std::wstring& prompt);

struct EntityAnswer : Answer {
    AcDbObjectId id;
    AcGePoint3d ucs; ///< where it was picked; the origin for one given by name
    AcGePoint3d world;
    bool hasPoint = false;
    AcDbObjectIdArray set; ///< the whole set when a selection set was given
};
/// Asks again while nothing is found at the point, and while `refusal` has a line to tell about what was
/// picked (null accepts it). Enter is `none`.
EntityAnswer askEntity(const std::wstring& prompt, const wchar_t* keywords = nullptr,
                       const std::function<const wchar_t*(const AcDbEntity&)>& refusal = {});

/// The corner of a rectangle opposite to one in UCS coordinates, in world coordinates; nothing when the user
/// gives up.
std::optional<AcGePoint3d> askOppositeCorner(const wchar_t* prompt, const AcGePoint3d& ucs);
/// The line that refuses what stands on a locked layer; null for the rest.
const wchar_t* lockedRefusal(const AcDbEntity& entity);

/// A selection made by the user, or what was picked before the command; freed at the end of the scope.
class Selection {
public:
    /// Asks when nothing is picked.
    static Selection ask();
    /// The same without what stands on locked layers, which is told.
    static Selection askEditable();
    /// One answer ends it.
    static Selection askSingle();
    /// Asks with a prompt of its own, whatever was picked before.
    static Selection askWith(const wchar_t* prompt, bool editable = false);
    ~Selection();
    Selection(Selection&& other) noexcept;
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    bool empty() const { return mIds.isEmpty(); }
    /// Escape, not Enter, ended it.
    bool isCancelled() const { return mCancelled; }
    /// One of the keywords offered by acedInitGet before ended it.
    bool isKeyword() const { return mKeyword; }
    const AcDbObjectIdArray& ids() const { return mIds; }

private:
    Selection() = default;
    static Selection from(const wchar_t* options, const void* prompts);
    ads_name mSet{0, 0};
    AcDbObjectIdArray mIds;
    bool mCancelled = false;
    bool mKeyword = false;
};

AcDbDatabase& currentDatabase();
/// The answers come from a program (acedCommandS, LISP), not from the user or his script.
bool isProgramAnswering();
/// A number in the drawing's units and precision, for defaults in prompts.
std::wstring shown(double value);
std::wstring shownAngle(double radians);

std::wstring shownPoint(const AcGePoint3d& ucs);
/// Yes or no; `standard` for Enter, nothing for Escape. The prompt comes without the options.
std::optional<bool> askYesNo(const std::wstring& prompt, bool standard);
/// A file name as typed: quotes taken off.
std::wstring unquoted(std::wstring text);
/// Normal of the current UCS, in the world.
AcGeVector3d ucsNormal();

/// An entity made in UCS coordinates comes to stand in the world.
void transformFromUcs(AcDbEntity& entity);

/// Appends an entity to the current space with the current properties and closes it.
AcDbObjectId appendToCurrentSpace(AcDbEntity* entity);
/// Calls for each record name of a comma-separated list of wildcard patterns; patterns without a match are
/// handed to `unmatched`.
void forEachMatch(AcDbSymbolTable& table, const std::wstring& patterns,
                  const std::function<void(AcDbObjectId)>& matched,
                  const std::function<void(const std::wstring&)>& unmatched);

} // namespace host
