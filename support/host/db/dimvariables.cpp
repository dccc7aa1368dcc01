// The table of dimension variables, and overrides in extended data.
#include "host/db/dimvariables.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/recordlookup.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>

namespace host {
namespace {

using V = DimVariables;

constexpr DimVariable table[] = {
    {"POST", 3, &V::post},
    {"APOST", 4, &V::apost},
    {"SCALE", 40, &V::scale},
    {"ASZ", 41, &V::asz},
    {"EXO", 42, &V::exo},
    {"DLI", 43, &V::dli},
    {"EXE", 44, &V::exe},
    {"RND", 45, &V::rnd},
    {"DLE", 46, &V::dle},
    {"TP", 47, &V::tp},
    {"TM", 48, &V::tm},
    {"FXL", 49, &V::fxl},
    {"JOGANG", 50, &V::jogang},
    {"TFILL", 69, &V::tfill},
    {"TFILLCLR", 70, &V::tfillclr},
    {"TOL", 71, &V::tol},
    {"LIM", 72, &V::lim},
    {"TIH", 73, &V::tih},
    {"TOH", 74, &V::toh},
    {"SE1", 75, &V::se1},
    {"SE2", 76, &V::se2},
    {"TAD", 77, &V::tad},
    {"ZIN", 78, &V::zin},
    {"AZIN", 79, &V::azin},
    {"ARCSYM", 90, &V::arcsym},
    {"TXT", 140, &V::txt},
    {"CEN", 141, &V::cen},
    {"TSZ", 142, &V::tsz},
    {"ALTF", 143, &V::altf},
    {"LFAC", 144, &V::lfac},
    {"TVP", 145, &V::tvp},
    {"TFAC", 146, &V::tfac},
    {"GAP", 147, &V::gap},
    {"ALTRND", 148, &V::altrnd},
    {"ALT", 170, &V::alt},
    {"ALTD", 171, &V::altd},
    {"TOFL", 172, &V::tofl},
    {"SAH", 173, &V::sah},
    {"TIX", 174, &V::tix},
    {"SOXD", 175, &V::soxd},
    {"CLRD", 176, &V::clrd},
    {"CLRE", 177, &V::clre},
    {"CLRT", 178, &V::clrt},
    {"ADEC", 179, &V::adec},
    {"DEC", 271, &V::dec},
    {"TDEC", 272, &V::tdec},
    {"ALTU", 273, &V::altu},
    {"ALTTD", 274, &V::alttd},
    {"AUNIT", 275, &V::aunit},
    {"FRAC", 276, &V::frac},
    {"LUNIT", 277, &V::lunit},
    {"DSEP", 278, &V::dsep},
    {"TMOVE", 279, &V::tmove},
    {"JUST", 280, &V::just},
    {"SD1", 281, &V::sd1},
    {"SD2", 282, &V::sd2},
    {"TOLJ", 283, &V::tolj},
    {"TZIN", 284, &V::tzin},
    {"ALTZ", 285, &V::altz},
    {"ALTTZ", 286, &V::alttz},
    {"UPT", 288, &V::upt},
    {"ATFIT", 289, &V::atfit},
    {"FXLON", 290, &V::fxlon},
    {"TXTDIRECTION", 294, &V::txtdirection},
    {"TXSTY", 340, &V::txsty},
    {"LDRBLK", 341, &V::ldrblk},
    {"BLK", 342, &V::blk},
    {"BLK1", 343, &V::blk1},
    {"BLK2", 344, &V::blk2},
    {"LTYPE", 345, &V::ltype},
    {"LTEX1", 346, &V::ltex1},
    {"LTEX2", 347, &V::ltex2},
    {"LWD", 371, &V::lwd},
    {"LWE", 372, &V::lwe},
};
static_assert(std::size(table) <= dimVariableCount);

const DimVariables& defaults() {
    static const DimVariables values;
    return values;
}

constexpr double degree = 3.14159265358979323846 / 180.0;
bool isAngle(const DimVariable& variable) {
    return variable.code == 50;
}

} // namespace

std::span<const DimVariable> dimVariables() {
    return table;
}

std::optional<std::size_t> findDimVariable(short code) {
    const auto* const found = std::find_if(std::begin(table), std::end(table),
                                           [&](const DimVariable& one) { return one.code == code; });
    return found != std::end(table) ? std::optional(static_cast<std::size_t>(found - table)) : std::nullopt;
}

bool takeDimVariable(DimVariables& variables, DimVariableSet& given, const DxfGroup& group) {
    const std::optional<std::size_t> index = findDimVariable(group.code);
    if (!index) {
        // Before release 2000 one variable said what two say since; its group is kept beside.
        const std::size_t units = *findDimVariable(277);
        const std::size_t fit = *findDimVariable(289);
        if (group.code == 270 && !given[units] && group.integer >= 1 && group.integer <= 8) {
            variables.lunit = static_cast<Adesk::Int16>(group.integer == 8   ? 6
                                                        : group.integer >= 6 ? group.integer - 2
                                                                             : group.integer);
        } else if (group.code == 287 && !given[fit] && group.integer >= 0 && group.integer <= 5) {
            variables.atfit = static_cast<Adesk::Int16>(std::min<Adesk::Int64>(group.integer, 3));
            variables.tmove = static_cast<Adesk::Int16>(std::max<Adesk::Int64>(group.integer - 3, 0));
        }
        return false;
    }
    given.set(*index);
    std::visit(
        [&](auto member) {
            auto& value = variables.*member;
            using Value = std::remove_reference_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, double>) {
                value = std::isfinite(group.real) ? group.real * (isAngle(table[*index]) ? degree : 1.0)
                                                  : defaults().*member;
            } else if constexpr (std::is_same_v<Value, Adesk::Int16>) {
                value = group.int16();
            } else if constexpr (std::is_same_v<Value, AcString>) {
                value = group.string();
            } else {
                value = AcDbObjectId(group.id);
            }
        },
        table[*index].member);
    return true;
}

void writeDimVariables(AcDbDxfFiler* filer, const DimVariables& variables, const DimVariableSet& given) {
    for (std::size_t index = 0; index < std::size(table); ++index) {
        const bool differs = !equalDimVariable(variables, defaults(), index);
        if (!given[index] && !differs && !filer->includesDefaultValues()) {
            continue;
        }
        const short code = table[index].code;
        std::visit(
            [&](auto member) {
                const auto& value = variables.*member;
                using Value = std::remove_cvref_t<decltype(value)>;
                if constexpr (std::is_same_v<Value, double>) {
                    isAngle(table[index]) ? filer->writeAngle(code, value) : filer->writeReal(code, value);
                } else if constexpr (std::is_same_v<Value, Adesk::Int16>) {
                    filer->writeInteger(code, value);
                } else if constexpr (std::is_same_v<Value, AcString>) {
                    filer->writeString(code, value);
                } else if (given[index] || differs) {
                    filer->writeReference(code, value.stub());
                }
            },
            table[index].member);
    }
}

bool equalDimVariable(const DimVariables& a, const DimVariables& b, std::size_t index) {
    return std::visit([&](auto member) { return a.*member == b.*member; }, table[index].member);
}

void copyDimVariable(DimVariables& to, const DimVariables& from, std::size_t index) {
    std::visit([&](auto member) { to.*member = from.*member; }, table[index].member);
}

Acad::ErrorStatus checkDimVariable(const DimVariables& variables, std::size_t index) {
    double number = 0.0;
    if (const auto* real = std::get_if<double DimVariables::*>(&table[index].member)) {
        number = variables.**real;
    } else if (const auto* integer = std::get_if<Adesk::Int16 DimVariables::*>(&table[index].member)) {
        number = variables.**integer;
    } else {
        return Acad::eOk;
    }
    const std::optional<HeaderIndex> header = findHeaderVariable(std::string("DIM") + table[index].name);
    if (!std::isfinite(number)) {
        return Acad::eInvalidInput;
    }
    if (!header || headerVariables()[*header].minimum > headerVariables()[*header].maximum) {
        return Acad::eOk;
    }
    const HeaderVariable& limits = headerVariables()[*header];
    return number >= limits.minimum && number <= limits.maximum ? Acad::eOk : Acad::eOutOfRange;
}

DimVariables currentDimVariables(const AcDbDatabase& database) {
    DimVariables current;
    for (const DimVariable& variable : table) {
        const std::optional<HeaderIndex> index = findHeaderVariable(std::string("DIM") + variable.name);
        if (!index) {
            continue;
        }
        const HeaderValue value = database.variable(*index);
        std::visit(
            [&](auto member) {
                using Value = std::remove_reference_t<decltype(current.*member)>;
                if (const auto* same = std::get_if<Value>(&value)) {
                    current.*member = *same;
                } else if constexpr (std::is_same_v<Value, AcDbObjectId>) {
                    const auto* name = std::get_if<AcString>(&value);
                    if (name != nullptr && !name->isEmpty()) {
                        const bool isLinetype = variable.code >= 345;
                        current.*member = AcDbObjectId(
                            isLinetype
                                ? findRecord<AcDbLinetypeTable>(database.linetypeTableId(), name->kwszPtr())
                                : findRecord<AcDbBlockTable>(database.blockTableId(), name->kwszPtr()));
                    }
                }
            },
            variable.member);
    }
    return current;
}

Acad::ErrorStatus setCurrentDimVariables(AcDbDatabase& database, const DimVariables& variables) {
    Acad::ErrorStatus status = Acad::eOk;
    for (const DimVariable& variable : table) {
        const std::optional<HeaderIndex> index = findHeaderVariable(std::string("DIM") + variable.name);
        if (!index) {
            continue;
        }
        const HeaderValue before = database.variable(*index);
        std::visit(
            [&](auto member) {
                const auto& value = variables.*member;
                using Value = std::remove_cvref_t<decltype(value)>;
                HeaderValue header = value;
                if constexpr (std::is_same_v<Value, AcDbObjectId>) {
                    if (std::holds_alternative<AcString>(before)) {
                        header = recordName(value);
                    }
                }
                if (const Acad::ErrorStatus one = database.setVariable(*index, header); one != Acad::eOk) {
                    status = one;
                }
            },
            variable.member);
    }
    return status;
}

// Overrides: 1001 ACAD, 1000 DSTYLE, 1002 {, then pairs of a code (1070) and a value, 1002 }.

namespace {

constexpr std::string_view application = "ACAD";
constexpr std::string_view listName = "DSTYLE";

/// Walks the groups and tells for each where in the list of overrides it stands.
class OverrideScanner {
public:
    enum class Place { outside, code, value, end };

    Place next(const GroupList::Group& group) {
        if (group.code == 1001) {
            mInApplication = group.text == application;
            mState = State::before;
            return Place::outside;
        }
        if (!mInApplication) {
            return Place::outside;
        }
        switch (mState) {
        case State::before:
            mState = group.code == 1000 && group.text == listName ? State::named : State::before;
            return Place::outside;
        case State::named:
            mState = group.code == 1002 && group.text == "{" ? State::code : State::before;
            return Place::outside;
        case State::code:
            if (group.code == 1002 || group.code != 1070) {
                mState = State::before;
                return group.code == 1002 ? Place::end : Place::outside;
            }
            mState = State::value;
            return Place::code;
        case State::value:
            mState = State::code;
            return Place::value;
        }
        return Place::outside;
    }
    bool inApplication() const { return mInApplication; }

private:
    enum class State { before, named, code, value };
    State mState = State::before;
    bool mInApplication = false;
};

short codeOf(std::string_view text) {
    short code = 0;
    const std::string_view digits = trim(text);
    std::from_chars(digits.data(), digits.data() + digits.size(), code);
    return code;
}

DxfGroup valueGroup(short code, const GroupList::Group& given, AcDbDatabase* database) {
    DxfGroup group;
    group.code = code;
    group.text = given.text;
    const std::string digits(trim(given.text));
    group.real = std::strtod(digits.c_str(), nullptr);
    group.integer = given.code == 1005 ? std::strtoll(digits.c_str(), nullptr, 16)
                                       : std::strtoll(digits.c_str(), nullptr, 10);
    if (given.code == 1005 && database != nullptr) {
        group.id = database->impl().findStub(static_cast<Adesk::UInt64>(group.integer));
    }
    return group;
}

void addValue(GroupList& groups, const DimVariables& variables, std::size_t index) {
    std::visit(
        [&](auto member) {
            const auto& value = variables.*member;
            using Value = std::remove_cvref_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, double>) {
                groups.addReal(1040, isAngle(table[index]) ? value / degree : value);
            } else if constexpr (std::is_same_v<Value, Adesk::Int16>) {
                groups.addInteger(1070, value);
            } else if constexpr (std::is_same_v<Value, AcString>) {
                groups.add(1000, encodeDxfText(toUtf8(value.view())));
            } else {
                groups.add(1005, toUtf8(value.handle().toString()));
            }
        },
        table[index].member);
}

} // namespace

DimVariableSet applyDimOverrides(DimVariables& variables, const GroupList& xdata, AcDbDatabase* database) {
    DimVariableSet given;
    OverrideScanner scanner;
    short code = 0;
    for (const GroupList::Group group : xdata) {
        switch (scanner.next(group)) {
        case OverrideScanner::Place::code:
            code = codeOf(group.text);
            break;
        case OverrideScanner::Place::value:
            takeDimVariable(variables, given, valueGroup(code, group, database));
            break;
        default:
            break;
        }
    }
    return given;
}

DimVariables annotationVariables(const AcDbEntity& annotation, AcDbObjectId style) {
    DimVariables variables;
    AcDbDatabase* home = annotation.database() != nullptr ? annotation.database() : style.database();
    if (const auto* record = peek<AcDbDimStyleTableRecord>(style, true)) {
        variables = record->dimVariables();
    } else if (home != nullptr) {
        variables = currentDimVariables(*home);
    }
    applyDimOverrides(variables, annotation.xdataGroups(), home);
    return variables;
}

GroupList withDimOverride(const GroupList& xdata, const DimVariables& variables, std::size_t index) {
    GroupList result;
    OverrideScanner scanner;
    bool done = false;
    short code = 0;
    const auto addPair = [&] {
        result.addInteger(1070, table[index].code);
        addValue(result, variables, index);
        done = true;
    };
    const auto addList = [&] {
        result.add(1000, listName);
        result.add(1002, "{");
        addPair();
        result.add(1002, "}");
    };
    for (const GroupList::Group group : xdata) {
        const bool wasInside = scanner.inApplication();
        const OverrideScanner::Place place = scanner.next(group);
        if (group.code == 1001 && wasInside && !done) {
            addList(); // the application's data has no list yet
        }
        if (place == OverrideScanner::Place::code) {
            code = codeOf(group.text);
        }
        if (place == OverrideScanner::Place::value && code == table[index].code) {
            addValue(result, variables, index);
            done = true;
            continue;
        }
        if (place == OverrideScanner::Place::end && !done) {
            addPair();
        }
        result.add(group.code, group.text);
    }
    if (!done) {
        if (!scanner.inApplication()) {
            result.add(1001, application);
        }
        addList();
    }
    return result;
}

} // namespace host
