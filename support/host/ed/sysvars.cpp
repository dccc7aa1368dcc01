// Reading and setting system variables.
#include "host/ed/sysvars.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/acedreactor.h"
#include "host/ed/colornames.h"
#include "host/ed/sysvarcomputed.h"
#include "host/ed/sysvartable.h"
#include "host/ed/units.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace host {
namespace {

using Values = std::map<std::wstring, VariableValue>;

Values& sessionValues() {
    static Values values;
    return values;
}

/// Names of variables that were set and are still to be written to the settings.
std::set<std::wstring>& unsavedVariables() {
    static std::set<std::wstring> names;
    return names;
}

std::wstring settingsKey() {
    return std::wstring(acrxProductKey()) + L"\\Profiles\\<<未命名配置>>\\Variables";
}

const SessionVariable* findSession(std::wstring_view upperName) {
    const std::span<const SessionVariable> table = sessionVariables();
    const auto found = std::lower_bound(
        table.begin(), table.end(), upperName,
        [](const SessionVariable& variable, std::wstring_view name) { return variable.name < name; });
    return found != table.end() && found->name == upperName ? &*found : nullptr;
}

int resbufType(VariableType type) {
    switch (type) {
    case VariableType::shortInteger:
        return RTSHORT;
    case VariableType::longInteger:
        return RTLONG;
    case VariableType::real:
        return RTREAL;
    case VariableType::text:
        return RTSTR;
    case VariableType::point2d:
        return RTPOINT;
    case VariableType::point3d:
        return RT3DPOINT;
    }
    return RTNONE;
}

int resbufType(HeaderKind kind) {
    switch (kind) {
    case HeaderKind::int16:
        return RTSHORT;
    case HeaderKind::int32:
        return RTLONG;
    case HeaderKind::real:
    case HeaderKind::date:
        return RTREAL;
    case HeaderKind::point2d:
        return RTPOINT;
    case HeaderKind::point3d:
        return RT3DPOINT;
    default:
        return RTSTR;
    }
}

/// The value of text in the type; nothing when it does not fit.
std::optional<VariableValue> valueFromText(std::wstring_view text, int type) {
    switch (type) {
    case RTSHORT:
    case RTLONG: {
        const std::optional<long long> number = parseInteger(trim(text));
        const bool fits = number && std::llabs(*number) <= std::numeric_limits<int>::max();
        return fits ? std::optional<VariableValue>(static_cast<int>(*number)) : std::nullopt;
    }
    case RTREAL: {
        const std::optional<double> number = parseDistance(trim(text), UnitFormat::of(acdbCurDwg()).linear);
        return number ? std::optional<VariableValue>(*number) : std::nullopt;
    }
    case RTPOINT:
    case RT3DPOINT: {
        const std::optional<TypedPoint> point = parsePoint(trim(text), UnitFormat{});
        return point ? std::optional<VariableValue>(resolvePoint(*point, AcGePoint3d::kOrigin, 0.0))
                     : std::nullopt;
    }
    default:
        return VariableValue(std::wstring(text));
    }
}

VariableValue initialValue(const SessionVariable& variable) {
    std::optional<VariableValue> value;
    if (variable.type == VariableType::real) {
        value = parseReal(variable.initial).value_or(0.0);
    } else {
        value = valueFromText(variable.initial, resbufType(variable.type));
    }
    return value.value_or(VariableValue(0));
}

std::wstring storedText(const VariableValue& value) {
    struct Writer {
        std::wstring operator()(int number) const { return formatted(L"%d", number); }
        std::wstring operator()(double number) const { return formatted(L"%.17g", number); }
        std::wstring operator()(const std::wstring& text) const { return text; }
        std::wstring operator()(const AcGePoint3d& p) const {
            return formatted(L"%.17g,%.17g,%.17g", p.x, p.y, p.z);
        }
    };
    return std::visit(Writer{}, value);
}

Values* valuesFor(const SessionVariable& variable, AcApDocument* document) {
    if (variable.scope != VariableScope::document) {
        return &sessionValues();
    }
    return document != nullptr ? &document->state().variables : nullptr;
}

VariableValue sessionValue(const SessionVariable& variable, AcApDocument* document) {
    if (variable.scope == VariableScope::computed) {
        return computedVariable(variable.name, document).value_or(initialValue(variable));
    }
    Values* values = valuesFor(variable, document);
    if (values == nullptr) {
        return initialValue(variable);
    }
    if (const auto found = values->find(variable.name); found != values->end()) {
        return found->second;
    }
    VariableValue value = initialValue(variable);
    if (variable.scope == VariableScope::settings) {
        if (const std::optional<std::wstring> kept = readSetting(settingsKey(), variable.name)) {
            value = valueFromText(*kept, resbufType(variable.type)).value_or(value);
        }
    }
    return values->insert_or_assign(variable.name, value).first->second;
}

void storeSessionValue(const SessionVariable& variable, const VariableValue& value, AcApDocument* document) {
    if (Values* values = valuesFor(variable, document)) {
        const auto [entry, isNew] = values->try_emplace(variable.name, value);
        if (isNew || entry->second != value) {
            entry->second = value;
            if (variable.scope == VariableScope::settings) {
                unsavedVariables().insert(variable.name);
            }
        }
    }
}

ResbufList asResbuf(const VariableValue& value, int type) {
    ResbufBuilder builder;
    if (const auto* number = std::get_if<int>(&value)) {
        builder.integer(type, *number);
    } else if (const auto* real = std::get_if<double>(&value)) {
        builder.real(type, *real);
    } else if (const auto* text = std::get_if<std::wstring>(&value)) {
        builder.string(type, *text);
    } else {
        const AcGePoint3d& point = std::get<AcGePoint3d>(value);
        builder.point(type, point.x, point.y, type == RTPOINT ? 0.0 : point.z);
    }
    return builder.release();
}

/// The value as the type asks for it; nothing when the types don't go together.
std::optional<VariableValue> fromResbuf(const resbuf& value, int type) {
    std::optional<double> number;
    switch (value.restype) {
    case RTREAL:
    case RTANG:
    case RTORINT:
        number = value.resval.rreal;
        break;
    case RTSHORT:
        number = value.resval.rint;
        break;
    case RTLONG:
        number = value.resval.rlong;
        break;
    case RTSTR:
        return type == RTSTR ? std::optional<VariableValue>(
                                   std::wstring(value.resval.rstring != nullptr ? value.resval.rstring : L""))
                             : std::nullopt;
    case RTPOINT:
    case RT3DPOINT: {
        const double* p = value.resval.rpoint;
        const AcGePoint3d point(p[0], p[1], value.restype == RTPOINT || type == RTPOINT ? 0.0 : p[2]);
        return type == RTPOINT || type == RT3DPOINT ? std::optional<VariableValue>(point) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
    if (type == RTREAL) {
        return *number;
    }
    const bool whole =
        *number == std::floor(*number) && std::fabs(*number) <= std::numeric_limits<int>::max();
    const bool typedAsReal = value.restype != RTSHORT && value.restype != RTLONG;
    return (type == RTSHORT || type == RTLONG) && whole && !typedAsReal
               ? std::optional<VariableValue>(static_cast<int>(*number))
               : std::nullopt;
}

bool inRange(const VariableValue& value, double minimum, double maximum) {
    if (minimum > maximum) {
        return true;
    }
    const auto* integer = std::get_if<int>(&value);
    const auto* real = std::get_if<double>(&value);
    const double number = integer != nullptr ? *integer : real != nullptr ? *real : minimum;
    return number >= minimum && number <= maximum;
}

/// Short integers are short even where no range is given.
bool fitsType(const VariableValue& value, int type) {
    const int* number = std::get_if<int>(&value);
    return number == nullptr || type != RTSHORT ||
           (*number >= std::numeric_limits<Adesk::Int16>::min() &&
            *number <= std::numeric_limits<Adesk::Int16>::max());
}

// Header variables.

template <class Record>
std::wstring recordName(AcDbObjectId id) {
    const auto* record = peek<Record>(id);
    return record != nullptr ? std::wstring(record->name().kwszPtr()) : std::wstring();
}

std::wstring headerText(const AcDbDatabase& database, const HeaderVariable& variable,
                        const HeaderValue& value) {
    switch (variable.kind) {
    case HeaderKind::layer:
        return recordName<AcDbSymbolTableRecord>(database.clayer());
    case HeaderKind::linetype:
        return recordName<AcDbSymbolTableRecord>(database.celtype());
    case HeaderKind::color:
        return colorText(database.cecolor().entityColor());
    case HeaderKind::textStyle:
    case HeaderKind::dimStyle:
    case HeaderKind::handle: {
        const auto* id = std::get_if<AcDbObjectId>(&value);
        AcDbObjectId record = id != nullptr ? *id : AcDbObjectId();
        if (record.isNull()) {
            record = variable.kind == HeaderKind::dimStyle ? database.dimstyle() : database.textstyle();
        }
        return recordName<AcDbSymbolTableRecord>(record);
    }
    default: {
        const auto* text = std::get_if<AcString>(&value);
        return text != nullptr ? std::wstring(text->kwszPtr()) : std::wstring();
    }
    }
}

VariableValue headerValue(const AcDbDatabase& database, HeaderIndex index) {
    const HeaderVariable& variable = headerVariables()[index];
    const HeaderValue value = database.variable(index);
    if (resbufType(variable.kind) == RTSTR) {
        return headerText(database, variable, value);
    }
    if (const auto* number = std::get_if<Adesk::Int16>(&value)) {
        return static_cast<int>(*number);
    }
    if (const auto* number = std::get_if<Adesk::Int32>(&value)) {
        return static_cast<int>(*number);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return *real;
    }
    if (const auto* point = std::get_if<AcGePoint2d>(&value)) {
        return AcGePoint3d(point->x, point->y, 0.0);
    }
    const auto* point = std::get_if<AcGePoint3d>(&value);
    return point != nullptr ? *point : AcGePoint3d();
}

VariableError errorOf(Acad::ErrorStatus status) {
    return status == Acad::eOk             ? VariableError::none
           : status == Acad::eOutOfRange   ? VariableError::outOfRange
           : status == Acad::eInvalidInput ? VariableError::wrongType
                                           : VariableError::refused;
}

template <class Table>
AcDbObjectId recordIdOf(const AcDbDatabase& database, const std::wstring& name) {
    AcDbObjectId id;
    Table* table = nullptr;
    if (database.getSymbolTable(table) == Acad::eOk) {
        table->getAt(name.c_str(), id);
        table->close();
    }
    return id;
}

VariableError setLayer(AcDbDatabase& database, const std::wstring& name) {
    const AcDbObjectId id = recordIdOf<AcDbLayerTable>(database, name);
    const auto* layer = peek<AcDbLayerTableRecord>(id);
    if (layer == nullptr || layer->isFrozen()) {
        return VariableError::refused;
    }
    return errorOf(database.setClayer(id));
}

VariableError setNamed(AcDbDatabase& database, HeaderIndex index, HeaderKind kind, const std::wstring& name) {
    AcDbObjectId id;
    switch (kind) {
    case HeaderKind::layer:
        return setLayer(database, name);
    case HeaderKind::linetype:
        id = recordIdOf<AcDbLinetypeTable>(database, name);
        break;
    case HeaderKind::textStyle:
        id = recordIdOf<AcDbTextStyleTable>(database, name);
        break;
    case HeaderKind::dimStyle:
        id = recordIdOf<AcDbDimStyleTable>(database, name);
        break;
    case HeaderKind::color: {
        const std::optional<AcCmEntityColor> color = parseColor(name);
        return color ? errorOf(database.setCecolor(AcCmColor(*color))) : VariableError::refused;
    }
    case HeaderKind::string:
        return errorOf(database.setVariable(index, AcString(name.c_str())));
    default:
        break;
    }
    return id.isNull() ? VariableError::refused : errorOf(database.setVariable(index, id));
}

VariableError setHeaderValue(AcDbDatabase& database, HeaderIndex index, const VariableValue& value) {
    const HeaderVariable& variable = headerVariables()[index];
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        return setNamed(database, index, variable.kind, *text);
    }
    if (const auto* number = std::get_if<int>(&value)) {
        if (variable.kind == HeaderKind::int32) {
            return errorOf(database.setVariable(index, static_cast<Adesk::Int32>(*number)));
        }
        if (*number < std::numeric_limits<Adesk::Int16>::min() ||
            *number > std::numeric_limits<Adesk::Int16>::max()) {
            return VariableError::outOfRange;
        }
        return errorOf(database.setVariable(index, static_cast<Adesk::Int16>(*number)));
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return errorOf(database.setVariable(index, *real));
    }
    const AcGePoint3d& point = std::get<AcGePoint3d>(value);
    return errorOf(variable.kind == HeaderKind::point2d
                       ? database.setVariable(index, AcGePoint2d(point.x, point.y))
                       : database.setVariable(index, point));
}

VariableHome homeOf(VariableScope scope) {
    switch (scope) {
    case VariableScope::settings:
        return VariableHome::settings;
    case VariableScope::computed:
        return VariableHome::nowhere;
    default:
        return VariableHome::session;
    }
}

/// A variable found by name in either place.
struct Place {
    const SessionVariable* session = nullptr;
    std::optional<HeaderIndex> header;

    bool exists() const { return session != nullptr || header.has_value(); }
    int type() const {
        return session != nullptr ? resbufType(session->type) : resbufType(headerVariables()[*header].kind);
    }
    bool readOnly() const {
        return session != nullptr ? session->readOnly
                                  : isReadOnlyHeaderVariable(headerVariables()[*header].name);
    }
};

Place findVariable(std::wstring_view name) {
    Place place;
    const std::wstring upper = toUpper(name);
    place.session = findSession(upper);
    if (place.session == nullptr && isAscii(upper)) {
        place.header = findHeaderVariable(toUtf8(upper));
        if (place.header && !headerVariables()[*place.header].systemVariable) {
            place.header.reset();
        }
    }
    return place;
}

std::optional<VariableValue> valueAt(const Place& place) {
    AcApDocument* document = curDoc();
    if (place.session != nullptr) {
        return sessionValue(*place.session, document);
    }
    AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr) {
        return std::nullopt;
    }
    if (std::string_view(headerVariables()[*place.header].name).starts_with("EXTM")) {
        database->keepExtents();
    }
    return headerValue(*database, *place.header);
}

VariableError store(const Place& place, const VariableValue& value) {
    if (place.header) {
        AcDbDatabase* database = acdbCurDwg();
        return database != nullptr ? setHeaderValue(*database, *place.header, value) : VariableError::refused;
    }
    if (!inRange(value, place.session->minimum, place.session->maximum) || !fitsType(value, place.type())) {
        return VariableError::outOfRange;
    }
    if (place.session->scope == VariableScope::computed) {
        return setComputedVariable(place.session->name, value, curDoc());
    }
    storeSessionValue(*place.session, value, curDoc());
    return VariableError::none;
}

VariableError change(std::wstring_view name, const Place& place, const VariableValue& value) {
    const std::wstring upper = toUpper(name);
    acedEditor->notify([&](AcEditorReactor& reactor) { reactor.sysVarWillChange(upper.c_str()); });
    const VariableError error = store(place, value);
    acedEditor->notify([&](AcEditorReactor& reactor) {
        reactor.sysVarChanged(upper.c_str(), error == VariableError::none);
    });
    return error;
}

} // namespace

ResbufList systemVariable(std::wstring_view name) {
    const Place place = findVariable(name);
    const std::optional<VariableValue> value = place.exists() ? valueAt(place) : std::nullopt;
    return value ? asResbuf(*value, place.type()) : nullptr;
}

VariableError setSystemVariable(std::wstring_view name, const resbuf& value) {
    const Place place = findVariable(name);
    if (!place.exists()) {
        return VariableError::unknown;
    }
    if (place.readOnly()) {
        return VariableError::readOnly;
    }
    const std::optional<VariableValue> converted = fromResbuf(value, place.type());
    return converted ? change(name, place, *converted) : VariableError::wrongType;
}

void putSystemVariable(std::wstring_view name, const resbuf& value) {
    const Place place = findVariable(name);
    if (const std::optional<VariableValue> converted =
            place.exists() ? fromResbuf(value, place.type()) : std::nullopt) {
        store(place, *converted);
    }
}

VariableError setSystemVariableFromText(std::wstring_view name, std::wstring_view text) {
    const Place place = findVariable(name);
    if (!place.exists()) {
        return VariableError::unknown;
    }
    if (place.readOnly()) {
        return VariableError::readOnly;
    }
    const std::wstring plain = text == L"." && place.type() == RTSTR ? std::wstring() : std::wstring(text);
    const std::optional<VariableValue> value = valueFromText(plain, place.type());
    return value ? change(name, place, *value) : VariableError::wrongType;
}

int systemVariableInteger(std::wstring_view name) {
    const Place place = findVariable(name);
    const std::optional<VariableValue> value = place.exists() ? valueAt(place) : std::nullopt;
    const int* number = value ? std::get_if<int>(&*value) : nullptr;
    return number != nullptr ? *number : 0;
}

double systemVariableReal(std::wstring_view name) {
    const Place place = findVariable(name);
    const std::optional<VariableValue> value = place.exists() ? valueAt(place) : std::nullopt;
    const double* number = value ? std::get_if<double>(&*value) : nullptr;
    return number != nullptr ? *number : 0.0;
}

std::wstring systemVariableText(std::wstring_view name) {
    const Place place = findVariable(name);
    const std::optional<VariableValue> value = place.exists() ? valueAt(place) : std::nullopt;
    const std::wstring* text = value ? std::get_if<std::wstring>(&*value) : nullptr;
    return text != nullptr ? *text : std::wstring();
}

void setSystemVariable(std::wstring_view name, int value) {
    ResbufBuilder builder;
    builder.integer(RTLONG, value);
    setSystemVariable(name, *builder.release());
}

void setSystemVariable(std::wstring_view name, double value) {
    ResbufBuilder builder;
    builder.real(RTREAL, value);
    setSystemVariable(name, *builder.release());
}

void setSystemVariable(std::wstring_view name, std::wstring_view value) {
    ResbufBuilder builder;
    builder.string(RTSTR, value);
    setSystemVariable(name, *builder.release());
}

std::optional<VariableInfo> systemVariableInfo(std::wstring_view name) {
    const Place place = findVariable(name);
    if (!place.exists()) {
        return std::nullopt;
    }
    VariableInfo info{toUpper(name), place.readOnly(), place.type(), 0.0, -1.0, VariableHome::drawing};
    if (place.session != nullptr) {
        info.home = homeOf(place.session->scope);
        info.minimum = place.session->minimum;
        info.maximum = place.session->maximum;
    } else {
        info.minimum = headerVariables()[*place.header].minimum;
        info.maximum = headerVariables()[*place.header].maximum;
    }
    return info;
}

std::vector<std::wstring> systemVariableNames() {
    std::vector<std::wstring> names;
    for (const SessionVariable& variable : sessionVariables()) {
        names.emplace_back(variable.name);
    }
    for (const HeaderVariable& variable : headerVariables()) {
        if (variable.systemVariable) {
            names.push_back(fromUtf8(variable.name));
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

void saveVariables() {
    for (const std::wstring& name : std::exchange(unsavedVariables(), {})) {
        writeSetting(settingsKey(), name, storedText(sessionValues()[name]));
    }
}

SystemVariableScope::SystemVariableScope(std::wstring_view name, int value)
    : mName(name), mOld(systemVariable(name)) {
    setSystemVariable(name, value);
}

SystemVariableScope::~SystemVariableScope() {
    if (mOld != nullptr) {
        setSystemVariable(mName, *mOld);
    }
}

} // namespace host

int acedGetVar(const ACHAR* name, resbuf* value) {
    if (name == nullptr || value == nullptr) {
        return RTERROR;
    }
    const host::ResbufList found = host::systemVariable(name);
    if (found == nullptr) {
        return RTERROR;
    }
    resbuf* next = value->rbnext;
    *value = *found;
    value->rbnext = next;
    if (found->restype == RTSTR) {
        found->resval.rstring = nullptr; // the caller's now
    }
    return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
    if (name == nullptr || value == nullptr) {
        return RTERROR;
    }
    return host::setSystemVariable(name, *value) == host::VariableError::none ? RTNORM : RTERROR;
}
