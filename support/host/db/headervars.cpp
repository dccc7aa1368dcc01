// The table of header variables, in the order drawing files list them. Initial values are those of a new
// metric drawing.
#include "host/db/headervars.h"

#include "host/db/dbdatabase.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace host {
namespace {

using K = HeaderKind;

constexpr HeaderVariable variables[] = {
    {"INSBASE", 10, K::point3d, "0,0,0", true},
    {"EXTMIN", 10, K::point3d, "1e20,1e20,1e20", true},
    {"EXTMAX", 10, K::point3d, "-1e20,-1e20,-1e20", true},
    {"LIMMIN", 10, K::point2d, "0,0", true},
    {"LIMMAX", 10, K::point2d, "420,297", true},
    {"ORTHOMODE", 70, K::int16, "0", true, 0, 1},
    {"REGENMODE", 70, K::int16, "1", true, 0, 1},
    {"FILLMODE", 70, K::int16, "1", true, 0, 1},
    {"QTEXTMODE", 70, K::int16, "0", true, 0, 1},
    {"MIRRTEXT", 70, K::int16, "0", true, 0, 1},
    {"LTSCALE", 40, K::real, "1", true, 1e-99, 1e99},
    {"ATTMODE", 70, K::int16, "1", true, 0, 2},
    {"TEXTSIZE", 40, K::real, "2.5", true, 1e-99, 1e99},
    {"TRACEWID", 40, K::real, "1", true, 0, 1e99},
    {"TEXTSTYLE", 7, K::textStyle, "", true},
    {"CLAYER", 8, K::layer, "", true},
    {"CELTYPE", 6, K::linetype, "", true},
    {"CECOLOR", 62, K::color, "256", true},
    {"CELTSCALE", 40, K::real, "1", true, 1e-99, 1e99},
    {"DISPSILH", 70, K::int16, "0", true, 0, 1},
    {"DIMSCALE", 40, K::real, "1", true, 0, 1e99},
    {"DIMASZ", 40, K::real, "2.5", true, 0, 1e99},
    {"DIMEXO", 40, K::real, "0.625", true, 0, 1e99},
    {"DIMDLI", 40, K::real, "3.75", true, 0, 1e99},
    {"DIMRND", 40, K::real, "0", true, 0, 1e99},
    {"DIMDLE", 40, K::real, "0", true, 0, 1e99},
    {"DIMEXE", 40, K::real, "1.25", true, 0, 1e99},
    {"DIMTP", 40, K::real, "0", true},
    {"DIMTM", 40, K::real, "0", true},
    {"DIMTXT", 40, K::real, "2.5", true, 1e-99, 1e99},
    {"DIMCEN", 40, K::real, "2.5", true},
    {"DIMTSZ", 40, K::real, "0", true, 0, 1e99},
    {"DIMTOL", 70, K::int16, "0", true, 0, 1},
    {"DIMLIM", 70, K::int16, "0", true, 0, 1},
    {"DIMTIH", 70, K::int16, "0", true, 0, 1},
    {"DIMTOH", 70, K::int16, "0", true, 0, 1},
    {"DIMSE1", 70, K::int16, "0", true, 0, 1},
    {"DIMSE2", 70, K::int16, "0", true, 0, 1},
    {"DIMTAD", 70, K::int16, "1", true, 0, 4},
    {"DIMZIN", 70, K::int16, "8", true, 0, 15},
    {"DIMBLK", 1, K::string, "", true},
    {"DIMASO", 70, K::int16, "1", true, 0, 1},
    {"DIMSHO", 70, K::int16, "1", true, 0, 1},
    {"DIMPOST", 1, K::string, "", true},
    {"DIMAPOST", 1, K::string, "", true},
    {"DIMALT", 70, K::int16, "0", true, 0, 1},
    {"DIMALTD", 70, K::int16, "3", true, 0, 8},
    {"DIMALTF", 40, K::real, "0.03937007874", true, 1e-99, 1e99},
    {"DIMLFAC", 40, K::real, "1", true},
    {"DIMTOFL", 70, K::int16, "1", true, 0, 1},
    {"DIMTVP", 40, K::real, "0", true},
    {"DIMTIX", 70, K::int16, "0", true, 0, 1},
    {"DIMSOXD", 70, K::int16, "0", true, 0, 1},
    {"DIMSAH", 70, K::int16, "0", true, 0, 1},
    {"DIMBLK1", 1, K::string, "", true},
    {"DIMBLK2", 1, K::string, "", true},
    {"DIMSTYLE", 2, K::dimStyle, "", true},
    {"DIMCLRD", 70, K::int16, "0", true, 0, 256},
    {"DIMCLRE", 70, K::int16, "0", true, 0, 256},
    {"DIMCLRT", 70, K::int16, "0", true, 0, 256},
    {"DIMTFAC", 40, K::real, "1", true, 1e-99, 1e99},
    {"DIMGAP", 40, K::real, "0.625", true},
    {"DIMJUST", 70, K::int16, "0", true, 0, 4},
    {"DIMSD1", 70, K::int16, "0", true, 0, 1},
    {"DIMSD2", 70, K::int16, "0", true, 0, 1},
    {"DIMTOLJ", 70, K::int16, "0", true, 0, 2},
    {"DIMTZIN", 70, K::int16, "8", true, 0, 15},
    {"DIMALTZ", 70, K::int16, "0", true, 0, 15},
    {"DIMALTTZ", 70, K::int16, "0", true, 0, 15},
    {"DIMUPT", 70, K::int16, "0", true, 0, 1},
    {"DIMDEC", 70, K::int16, "2", true, 0, 8},
    {"DIMTDEC", 70, K::int16, "2", true, 0, 8},
    {"DIMALTU", 70, K::int16, "2", true, 1, 8},
    {"DIMALTTD", 70, K::int16, "3", true, 0, 8},
    {"DIMTXSTY", 7, K::textStyle, "", true},
    {"DIMAUNIT", 70, K::int16, "0", true, 0, 4},
    {"DIMADEC", 70, K::int16, "0", true, -1, 8},
    {"DIMALTRND", 40, K::real, "0", true, 0, 1e99},
    {"DIMAZIN", 70, K::int16, "0", true, 0, 3},
    {"DIMDSEP", 70, K::int16, "46", true},
    {"DIMATFIT", 70, K::int16, "3", true, 0, 3},
    {"DIMFRAC", 70, K::int16, "0", true, 0, 2},
    {"DIMLDRBLK", 1, K::string, "", true},
    {"DIMLUNIT", 70, K::int16, "2", true, 1, 6},
    {"DIMLWD", 70, K::int16, "-2", true, -3, 211},
    {"DIMLWE", 70, K::int16, "-2", true, -3, 211},
    {"DIMTMOVE", 70, K::int16, "0", true, 0, 2},
    {"DIMFXL", 40, K::real, "1", true},
    {"DIMFXLON", 70, K::int16, "0", true, 0, 1},
    {"DIMJOGANG", 40, K::real, "0.785398163397448", true},
    {"DIMTFILL", 70, K::int16, "0", true, 0, 2},
    {"DIMTFILLCLR", 70, K::int16, "0", true, 0, 256},
    {"DIMARCSYM", 70, K::int16, "0", true, 0, 2},
    {"DIMLTYPE", 6, K::string, "", true},
    {"DIMLTEX1", 6, K::string, "", true},
    {"DIMLTEX2", 6, K::string, "", true},
    {"DIMTXTDIRECTION", 70, K::int16, "0", true, 0, 1},
    {"LUNITS", 70, K::int16, "2", true, 1, 5},
    {"LUPREC", 70, K::int16, "4", true, 0, 8},
    {"SKETCHINC", 40, K::real, "1", true, 1e-99, 1e99},
    {"FILLETRAD", 40, K::real, "0", true, 0, 1e99},
    {"AUNITS", 70, K::int16, "0", true, 0, 4},
    {"AUPREC", 70, K::int16, "0", true, 0, 8},
    {"MENU", 1, K::string, ".", false},
    {"ELEVATION", 40, K::real, "0", true},
    {"PELEVATION", 40, K::real, "0", false},
    {"THICKNESS", 40, K::real, "0", true},
    {"LIMCHECK", 70, K::int16, "0", true, 0, 1},
    {"CHAMFERA", 40, K::real, "0", true, 0, 1e99},
    {"CHAMFERB", 40, K::real, "0", true, 0, 1e99},
    {"CHAMFERC", 40, K::real, "0", true, 0, 1e99},
    {"CHAMFERD", 40, K::real, "0", true},
    {"SKPOLY", 70, K::int16, "0", true, 0, 2},
    {"TDCREATE", 40, K::date, "0", true},
    {"TDUCREATE", 40, K::date, "0", true},
    {"TDUPDATE", 40, K::date, "0", true},
    {"TDUUPDATE", 40, K::date, "0", true},
    {"TDINDWG", 40, K::date, "0", true},
    {"TDUSRTIMER", 40, K::date, "0", true},
    {"USRTIMER", 70, K::int16, "1", false},
    {"ANGBASE", 50, K::real, "0", true},
    {"ANGDIR", 70, K::int16, "0", true, 0, 1},
    {"PDMODE", 70, K::int16, "0", true, 0, 100},
    {"PDSIZE", 40, K::real, "0", true},
    {"PLINEWID", 40, K::real, "0", true, 0, 1e99},
    {"SPLFRAME", 70, K::int16, "0", true, 0, 1},
    {"SPLINETYPE", 70, K::int16, "6", true, 5, 6},
    {"SPLINESEGS", 70, K::int16, "8", true, -32768, 32767},
    {"SURFTAB1", 70, K::int16, "6", true, 2, 32766},
    {"SURFTAB2", 70, K::int16, "6", true, 2, 32766},
    {"SURFTYPE", 70, K::int16, "6", true, 5, 8},
    {"SURFU", 70, K::int16, "6", true, 0, 200},
    {"SURFV", 70, K::int16, "6", true, 0, 200},
    {"UCSBASE", 2, K::string, "", true},
    {"UCSNAME", 2, K::string, "", true},
    {"UCSORG", 10, K::point3d, "0,0,0", true},
    {"UCSXDIR", 10, K::point3d, "1,0,0", true},
    {"UCSYDIR", 10, K::point3d, "0,1,0", true},
    {"UCSORTHOREF", 2, K::string, "", false},
    {"UCSORTHOVIEW", 70, K::int16, "0", false},
    {"UCSORGTOP", 10, K::point3d, "0,0,0", false},
    {"UCSORGBOTTOM", 10, K::point3d, "0,0,0", false},
    {"UCSORGLEFT", 10, K::point3d, "0,0,0", false},
    {"UCSORGRIGHT", 10, K::point3d, "0,0,0", false},
    {"UCSORGFRONT", 10, K::point3d, "0,0,0", false},
    {"UCSORGBACK", 10, K::point3d, "0,0,0", false},
    {"PUCSBASE", 2, K::string, "", false},
    {"PUCSNAME", 2, K::string, "", false},
    {"PUCSORG", 10, K::point3d, "0,0,0", false},
    {"PUCSXDIR", 10, K::point3d, "1,0,0", false},
    {"PUCSYDIR", 10, K::point3d, "0,1,0", false},
    {"PUCSORTHOREF", 2, K::string, "", false},
    {"PUCSORTHOVIEW", 70, K::int16, "0", false},
    {"PUCSORGTOP", 10, K::point3d, "0,0,0", false},
    {"PUCSORGBOTTOM", 10, K::point3d, "0,0,0", false},
    {"PUCSORGLEFT", 10, K::point3d, "0,0,0", false},
    {"PUCSORGRIGHT", 10, K::point3d, "0,0,0", false},
    {"PUCSORGFRONT", 10, K::point3d, "0,0,0", false},
    {"PUCSORGBACK", 10, K::point3d, "0,0,0", false},
    {"USERI1", 70, K::int16, "0", true, -32768, 32767},
    {"USERI2", 70, K::int16, "0", true, -32768, 32767},
    {"USERI3", 70, K::int16, "0", true, -32768, 32767},
    {"USERI4", 70, K::int16, "0", true, -32768, 32767},
    {"USERI5", 70, K::int16, "0", true, -32768, 32767},
    {"USERR1", 40, K::real, "0", true},
    {"USERR2", 40, K::real, "0", true},
    {"USERR3", 40, K::real, "0", true},
    {"USERR4", 40, K::real, "0", true},
    {"USERR5", 40, K::real, "0", true},
    {"WORLDVIEW", 70, K::int16, "1", true, 0, 2},
    {"SHADEDGE", 70, K::int16, "3", true, 0, 3},
    {"SHADEDIF", 70, K::int16, "70", true, 0, 100},
    {"TILEMODE", 70, K::int16, "1", true, 0, 1},
    {"MAXACTVP", 70, K::int16, "64", true, 2, 64},
    {"PINSBASE", 10, K::point3d, "0,0,0", false},
    {"PLIMCHECK", 70, K::int16, "0", false},
    {"PEXTMIN", 10, K::point3d, "1e20,1e20,1e20", false},
    {"PEXTMAX", 10, K::point3d, "-1e20,-1e20,-1e20", false},
    {"PLIMMIN", 10, K::point2d, "0,0", false},
    {"PLIMMAX", 10, K::point2d, "420,297", false},
    {"UNITMODE", 70, K::int16, "0", true, 0, 1},
    {"VISRETAIN", 70, K::int16, "1", true, 0, 1},
    {"PLINEGEN", 70, K::int16, "0", true, 0, 1},
    {"PSLTSCALE", 70, K::int16, "1", true, 0, 1},
    {"TREEDEPTH", 70, K::int16, "3020", true},
    {"CMLSTYLE", 2, K::string, "Standard", true},
    {"CMLJUST", 70, K::int16, "0", true, 0, 2},
    {"CMLSCALE", 40, K::real, "20", true},
    {"PROXYGRAPHICS", 70, K::int16, "1", true, 0, 1},
    {"MEASUREMENT", 70, K::int16, "1", true, 0, 1},
    {"CELWEIGHT", 370, K::int16, "-1", true, -3, 211},
    {"ENDCAPS", 280, K::int16, "0", true, 0, 3},
    {"JOINSTYLE", 280, K::int16, "0", true, 0, 3},
    {"LWDISPLAY", 290, K::int16, "0", true, 0, 1},
    {"INSUNITS", 70, K::int16, "6", true, 0, 24},
    {"HYPERLINKBASE", 1, K::string, "", true},
    {"STYLESHEET", 1, K::string, "", false},
    {"XEDIT", 290, K::int16, "1", true, 0, 1},
    {"CEPSNTYPE", 380, K::int16, "0", false},
    {"PSTYLEMODE", 290, K::int16, "1", false},
    {"EXTNAMES", 290, K::int16, "1", true, 0, 1},
    {"PSVPSCALE", 40, K::real, "0", true, 0, 1e99},
    {"OLESTARTUP", 290, K::int16, "0", true, 0, 1},
    {"SORTENTS", 280, K::int16, "127", true, 0, 127},
    {"INDEXCTL", 280, K::int16, "0", true, 0, 3},
    {"HIDETEXT", 280, K::int16, "1", true, 0, 1},
    {"XCLIPFRAME", 280, K::int16, "2", true, 0, 2},
    {"HALOGAP", 280, K::int16, "0", true, 0, 255},
    {"OBSCOLOR", 70, K::int16, "257", true, 0, 257},
    {"OBSLTYPE", 280, K::int16, "0", true, 0, 11},
    {"INTERSECTIONDISPLAY", 280, K::int16, "0", true, 0, 1},
    {"INTERSECTIONCOLOR", 70, K::int16, "257", true, 0, 257},
    {"DIMASSOC", 280, K::int16, "2", true, 0, 2},
    {"PROJECTNAME", 1, K::string, "", true},
};

struct NameIndex {
    std::unordered_map<std::string_view, HeaderIndex> byName;
    NameIndex() {
        for (HeaderIndex index = 0; index < std::size(variables); ++index) {
            byName.emplace(variables[index].name, index);
        }
    }
};

double realFrom(std::string_view& text) {
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    if (!text.empty() && text.front() == ',') {
        text.remove_prefix(1);
    }
    return value;
}

HeaderValue initialValue(const HeaderVariable& variable) {
    std::string_view text = variable.initial;
    switch (variable.kind) {
    case K::int16:
    case K::color:
        return static_cast<Adesk::Int16>(realFrom(text));
    case K::int32:
        return static_cast<Adesk::Int32>(realFrom(text));
    case K::real:
    case K::date:
        return realFrom(text);
    case K::string:
        return AcString(fromUtf8(text).c_str());
    case K::point2d: {
        const double x = realFrom(text);
        return AcGePoint2d(x, realFrom(text));
    }
    case K::point3d: {
        const double x = realFrom(text);
        const double y = realFrom(text);
        return AcGePoint3d(x, y, realFrom(text));
    }
    default:
        return AcDbObjectId();
    }
}

} // namespace

std::span<const HeaderVariable> headerVariables() {
    return variables;
}

HeaderValue initialHeaderValue(HeaderIndex index) {
    return initialValue(variables[index]);
}

std::optional<HeaderIndex> findHeaderVariable(std::string_view name) {
    static const NameIndex index;
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    const auto found = index.byName.find(upper);
    return found != index.byName.end() ? std::optional(found->second) : std::nullopt;
}

void DatabaseImpl::initializeHeader() {
    header.reserve(std::size(variables));
    std::transform(std::begin(variables), std::end(variables), std::back_inserter(header), initialValue);
}

} // namespace host

host::HeaderValue AcDbDatabase::variable(host::HeaderIndex index) const {
    return mImpl->header[index];
}

Acad::ErrorStatus AcDbDatabase::setVariable(host::HeaderIndex index, const host::HeaderValue& value) {
    const host::HeaderVariable& variable = host::headerVariables()[index];
    host::HeaderValue& stored = mImpl->header[index];
    if (value.index() != stored.index()) {
        return Acad::eInvalidInput;
    }
    if (variable.minimum <= variable.maximum) {
        double number = 0.0;
        if (const auto* integer = std::get_if<Adesk::Int16>(&value)) {
            number = *integer;
        } else if (const auto* real = std::get_if<double>(&value)) {
            number = *real;
        }
        if (!(number >= variable.minimum && number <= variable.maximum)) {
            return Acad::eOutOfRange;
        }
    }
    if (const auto* real = std::get_if<double>(&value); real != nullptr && !std::isfinite(*real)) {
        return Acad::eInvalidInput;
    }
    if (stored == value) {
        return Acad::eOk;
    }
    const std::wstring name = host::fromUtf8(variable.name);
    for (AcDbDatabaseReactor* reactor : std::vector(mImpl->reactors)) {
        reactor->headerSysVarWillChange(this, name.c_str());
    }
    mImpl->undo.recordHeader(index, stored);
    stored = value;
    for (AcDbDatabaseReactor* reactor : std::vector(mImpl->reactors)) {
        reactor->headerSysVarChanged(this, name.c_str(), true);
    }
    return Acad::eOk;
}

namespace {

template <class T>
T get(const AcDbDatabase& database, const char* name) {
    return std::get<T>(database.variable(*host::findHeaderVariable(name)));
}

Acad::ErrorStatus put(AcDbDatabase& database, const char* name, const host::HeaderValue& value) {
    return database.setVariable(*host::findHeaderVariable(name), value);
}

/// A current record: the one that is set, or the given one while none is.
AcDbObjectId current(const AcDbDatabase& database, const char* name, AcDbObjectId otherwise) {
    const AcDbObjectId id = get<AcDbObjectId>(database, name);
    return id.isErased() ? otherwise : id;
}

Adesk::Int16 flag(bool on) {
    return on ? 1 : 0;
}

} // namespace

AcDbObjectId AcDbDatabase::clayer() const {
    return current(*this, "CLAYER", layerZero());
}
Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
    return put(*this, "CLAYER", layer);
}
AcDbObjectId AcDbDatabase::celtype() const {
    return current(*this, "CELTYPE", byLayerLinetype());
}
Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId linetype) {
    return put(*this, "CELTYPE", linetype);
}
AcDbObjectId AcDbDatabase::textstyle() const {
    return current(*this, "TEXTSTYLE", standardTextStyle());
}
Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId style) {
    return put(*this, "TEXTSTYLE", style);
}
AcDbObjectId AcDbDatabase::dimstyle() const {
    AcDbObjectId standard;
    if (const auto* table = host::peek<AcDbDimStyleTable>(dimStyleTableId())) {
        const host::ReadAccess access(*table);
        table->getAt(L"Standard", standard);
    }
    return current(*this, "DIMSTYLE", standard);
}
Acad::ErrorStatus AcDbDatabase::setDimstyle(AcDbObjectId style) {
    return host::peek<AcDbDimStyleTableRecord>(style) != nullptr ? put(*this, "DIMSTYLE", style)
                                                                 : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbDatabase::setDimstyleData(AcDbObjectId style) {
    const auto* record = host::peek<AcDbDimStyleTableRecord>(style);
    return record != nullptr ? host::setCurrentDimVariables(*this, record->dimVariables())
                             : Acad::eInvalidInput;
}
AcCmColor AcDbDatabase::cecolor() const {
    AcCmEntityColor color;
    color.setColorIndex(get<Adesk::Int16>(*this, "CECOLOR"));
    const std::optional<AcCmEntityColor>& full = impl().currentTrueColor;
    return AcCmColor(full && full->colorIndex() == color.colorIndex() ? *full : color);
}
Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& color) {
    const AcCmEntityColor own = color.entityColor();
    impl().currentTrueColor = own.isByColor() ? std::optional(own) : std::nullopt;
    return put(*this, "CECOLOR", static_cast<Adesk::Int16>(own.colorIndex()));
}
AcDb::LineWeight AcDbDatabase::celweight() const {
    return static_cast<AcDb::LineWeight>(get<Adesk::Int16>(*this, "CELWEIGHT"));
}
Acad::ErrorStatus AcDbDatabase::setCelweight(AcDb::LineWeight weight) {
    return put(*this, "CELWEIGHT", static_cast<Adesk::Int16>(weight));
}
double AcDbDatabase::ltscale() const {
    return get<double>(*this, "LTSCALE");
}
Acad::ErrorStatus AcDbDatabase::setLtscale(double scale) {
    return put(*this, "LTSCALE", scale);
}
double AcDbDatabase::celtscale() const {
    return get<double>(*this, "CELTSCALE");
}
Acad::ErrorStatus AcDbDatabase::setCeltscale(double scale) {
    return put(*this, "CELTSCALE", scale);
}
double AcDbDatabase::textsize() const {
    return get<double>(*this, "TEXTSIZE");
}
Acad::ErrorStatus AcDbDatabase::setTextsize(double size) {
    return put(*this, "TEXTSIZE", size);
}
double AcDbDatabase::plinewid() const {
    return get<double>(*this, "PLINEWID");
}
Acad::ErrorStatus AcDbDatabase::setPlinewid(double width) {
    return put(*this, "PLINEWID", width);
}
bool AcDbDatabase::plinegen() const {
    return get<Adesk::Int16>(*this, "PLINEGEN") != 0;
}
Acad::ErrorStatus AcDbDatabase::setPlinegen(bool on) {
    return put(*this, "PLINEGEN", flag(on));
}
bool AcDbDatabase::tilemode() const {
    return get<Adesk::Int16>(*this, "TILEMODE") != 0;
}
Acad::ErrorStatus AcDbDatabase::setTilemode(bool on) {
    return put(*this, "TILEMODE", flag(on));
}
bool AcDbDatabase::orthomode() const {
    return get<Adesk::Int16>(*this, "ORTHOMODE") != 0;
}
Acad::ErrorStatus AcDbDatabase::setOrthomode(bool on) {
    return put(*this, "ORTHOMODE", flag(on));
}
Adesk::Int16 AcDbDatabase::lunits() const {
    return get<Adesk::Int16>(*this, "LUNITS");
}
Acad::ErrorStatus AcDbDatabase::setLunits(Adesk::Int16 units) {
    return put(*this, "LUNITS", units);
}
Adesk::Int16 AcDbDatabase::luprec() const {
    return get<Adesk::Int16>(*this, "LUPREC");
}
Acad::ErrorStatus AcDbDatabase::setLuprec(Adesk::Int16 digits) {
    return put(*this, "LUPREC", digits);
}
Adesk::Int16 AcDbDatabase::aunits() const {
    return get<Adesk::Int16>(*this, "AUNITS");
}
Acad::ErrorStatus AcDbDatabase::setAunits(Adesk::Int16 units) {
    return put(*this, "AUNITS", units);
}
Adesk::Int16 AcDbDatabase::auprec() const {
    return get<Adesk::Int16>(*this, "AUPREC");
}
Acad::ErrorStatus AcDbDatabase::setAuprec(Adesk::Int16 digits) {
    return put(*this, "AUPREC", digits);
}
double AcDbDatabase::angbase() const {
    return get<double>(*this, "ANGBASE");
}
bool AcDbDatabase::angdir() const {
    return get<Adesk::Int16>(*this, "ANGDIR") != 0;
}
Adesk::Int16 AcDbDatabase::insunits() const {
    return get<Adesk::Int16>(*this, "INSUNITS");
}
AcGePoint3d AcDbDatabase::insbase() const {
    return get<AcGePoint3d>(*this, "INSBASE");
}
Acad::ErrorStatus AcDbDatabase::setInsbase(const AcGePoint3d& point) {
    return put(*this, "INSBASE", point);
}
AcGePoint3d AcDbDatabase::ucsorg() const {
    return get<AcGePoint3d>(*this, "UCSORG");
}
AcGeVector3d AcDbDatabase::ucsxdir() const {
    return get<AcGePoint3d>(*this, "UCSXDIR").asVector();
}
AcGeVector3d AcDbDatabase::ucsydir() const {
    return get<AcGePoint3d>(*this, "UCSYDIR").asVector();
}
void AcDbDatabase::setUcs(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& y) {
    put(*this, "UCSORG", origin);
    put(*this, "UCSXDIR", AcGePoint3d::kOrigin + x);
    put(*this, "UCSYDIR", AcGePoint3d::kOrigin + y);
}
AcGePoint3d AcDbDatabase::extmin() const {
    return get<AcGePoint3d>(*this, "EXTMIN");
}
AcGePoint3d AcDbDatabase::extmax() const {
    return get<AcGePoint3d>(*this, "EXTMAX");
}
