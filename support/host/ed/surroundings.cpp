// Settings, files, the picture and units of the C-style interface.
#include "host/db/dbents.h"
#include "host/ed/aced.h"
#include "host/ed/editorview.h"
#include "host/ed/session.h"
#include "host/ed/sysvars.h"
#include "host/ed/viewports.h"
#include "host/font/catalog.h"
#include "host/font/font.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace host {
namespace {

std::wstring generalKey() {
    return std::wstring(acrxProductKey()) + L"\\Profiles\\<<未命名配置>>\\General";
}

/// A path of names between slashes whose last is the value's.
struct CfgPath {
    std::wstring key;
    std::wstring name;

    explicit CfgPath(std::wstring_view path) {
        std::wstring backslashes(path);
        std::replace(backslashes.begin(), backslashes.end(), L'/', L'\\');
        const std::size_t last = backslashes.find_last_of(L'\\');
        if (last != std::wstring::npos) {
            key = std::wstring(acrxProductKey()) + L"\\" + backslashes.substr(0, last);
            name = backslashes.substr(last + 1);
        }
    }
    /// Programs keep their values below AppData.
    bool isValid() const { return !name.empty() && key.find(L"\\AppData") != std::wstring::npos; }
};

int give(std::wstring_view text, ACHAR* value, std::size_t size) {
    if (value == nullptr || text.size() >= size) {
        return RTERROR;
    }
    std::copy_n(text.data(), text.size(), value);
    value[text.size()] = L'\0';
    return RTNORM;
}

struct Unit {
    const wchar_t* names; ///< between blanks
    char dimension;
    double factor; ///< to the dimension's base: metre, square metre, cubic metre, radian, kilogram, second
};

constexpr Unit units[] = {
    {L"m meter meters metre metres", 'l', 1.0},
    {L"mm millimeter millimeters millimetre millimetres", 'l', 0.001},
    {L"cm centimeter centimeters centimetre centimetres", 'l', 0.01},
    {L"dm decimeter decimeters", 'l', 0.1},
    {L"km kilometer kilometers kilometre kilometres", 'l', 1000.0},
    {L"in inch inches", 'l', 0.0254},
    {L"ft foot feet", 'l', 0.3048},
    {L"yd yard yards", 'l', 0.9144},
    {L"mi mile miles", 'l', 1609.344},
    {L"nautical_mile nautical_miles", 'l', 1852.0},
    {L"acre acres", 'a', 4046.8564224},
    {L"ha hectare hectares", 'a', 10000.0},
    {L"sq_m square_meter square_meters", 'a', 1.0},
    {L"sq_km square_kilometer square_kilometers", 'a', 1e6},
    {L"sq_ft square_foot square_feet", 'a', 0.09290304},
    {L"sq_in square_inch square_inches", 'a', 0.00064516},
    {L"l liter liters litre litres", 'v', 0.001},
    {L"cu_m cubic_meter cubic_meters", 'v', 1.0},
    {L"gal gallon gallons", 'v', 0.003785411784},
    {L"rad radian radians", 'g', 1.0},
    {L"deg degree degrees", 'g', pi / 180.0},
    {L"grad grads gradian gradians", 'g', pi / 200.0},
    {L"kg kilogram kilograms", 'm', 1.0},
    {L"g gram grams", 'm', 0.001},
    {L"lb pound pounds", 'm', 0.45359237},
    {L"t tonne tonnes", 'm', 1000.0},
    {L"s sec second seconds", 't', 1.0},
    {L"min minute minutes", 't', 60.0},
    {L"h hour hours", 't', 3600.0},
};

const Unit* findUnit(std::wstring_view name) {
    for (const Unit& unit : units) {
        for (std::wstring_view rest = unit.names; !rest.empty();) {
            const std::size_t blank = std::min(rest.find(L' '), rest.size());
            if (equalNoCase(rest.substr(0, blank), name)) {
                return &unit;
            }
            rest.remove_prefix(std::min(blank + 1, rest.size()));
        }
    }
    return nullptr;
}

const resbuf* group(const resbuf* list, int code) {
    while (list != nullptr && list->restype != code) {
        list = list->rbnext;
    }
    return list;
}

/// Fonts that are there without being in a support folder: those of the system, and the standard shape fonts,
/// which no file holds.
std::filesystem::path findFont(std::wstring_view name) {
    const std::wstring folded = fold(name);
    if (folded.find_first_of(L"\\/:") != folded.npos || supportFolders().empty()) {
        return {};
    }
    if (folded.ends_with(L".shx")) {
        const bool isBuiltIn = FontEngine::instance().shapeGlyph(folded, L'A') != nullptr;
        return isBuiltIn ? supportFolders().front() / folded : std::filesystem::path();
    }
    if (!folded.ends_with(L".ttf") && !folded.ends_with(L".ttc") && !folded.ends_with(L".otf")) {
        return {};
    }
    const std::optional<FontFile> file = findFontFile(folded);
    return file && !file->isSubstitute ? file->path : std::filesystem::path();
}

} // namespace
} // namespace host

int acedGetEnv(const ACHAR* name, ACHAR* value, std::size_t size) {
    AcString text;
    const int code = acedGetEnv(name, text);
    return code == RTNORM ? host::give(text.kwszPtr(), value, size) : code;
}

int acedGetEnv(const ACHAR* name, AcString& value) {
    if (name == nullptr) {
        return RTERROR;
    }
    if (const std::optional<std::wstring> kept = host::readSetting(host::generalKey(), name)) {
        value = kept->c_str();
        return RTNORM;
    }
    if (host::equalNoCase(name, L"ACAD")) {
        value = host::systemVariableText(L"ACADPREFIX").c_str();
        return RTNORM;
    }
    return RTERROR;
}

int acedSetEnv(const ACHAR* name, const ACHAR* value) {
    return name != nullptr && value != nullptr && host::writeSetting(host::generalKey(), name, value)
               ? RTNORM
               : RTERROR;
}

int acedGetCfg(const ACHAR* name, ACHAR* value, std::size_t size) {
    const host::CfgPath path(name != nullptr ? name : L"");
    if (!path.isValid()) {
        return RTERROR;
    }
    return host::give(host::readSetting(path.key, path.name).value_or(L""), value, size);
}

int acedSetCfg(const ACHAR* name, const ACHAR* value) {
    const host::CfgPath path(name != nullptr ? name : L"");
    return path.isValid() && value != nullptr && host::writeSetting(path.key, path.name, value) ? RTNORM
                                                                                                : RTERROR;
}

int acedFindFile(const ACHAR* name, ACHAR* path, std::size_t size) {
    AcString text;
    const int code = acedFindFile(name, text);
    return code == RTNORM ? host::give(text.kwszPtr(), path, size) : code;
}

int acedFindFile(const ACHAR* name, AcString& path) {
    std::filesystem::path found = name != nullptr ? host::findSupportFile(name) : std::filesystem::path();
    if (found.empty() && name != nullptr) {
        found = host::findFont(name);
    }
    if (found.empty()) {
        return RTERROR;
    }
    path = host::toWindowsPath(found).c_str();
    return RTNORM;
}

int acedGetFileD(const ACHAR* title, const ACHAR*, const ACHAR* extension, int flags, resbuf* result) {
    constexpr int forSaving = 1;
    if (result == nullptr) {
        return RTERROR;
    }
    AcString text;
    const std::wstring prompt =
        L"\n" + std::wstring(title != nullptr && *title != L'\0' ? title : L"输入文件名") + L": ";
    const int code = acedGetString(1, prompt.c_str(), text);
    if (code != RTNORM || text.isEmpty()) {
        return code == RTNORM ? RTCAN : code;
    }
    std::wstring name = text.kwszPtr();
    if (host::extensionOf(name).empty() && extension != nullptr && *extension != L'\0') {
        name += L"." + std::wstring(extension);
    }
    std::filesystem::path file = host::findSupportFile(name);
    if (file.empty()) {
        if ((flags & forSaving) == 0) {
            return RTERROR;
        }
        std::error_code error;
        file = std::filesystem::absolute(host::toNativePath(name), error);
    }
    ACHAR* copy = nullptr;
    acutNewString(host::toWindowsPath(file).c_str(), copy);
    result->restype = RTSTR;
    result->resval.rstring = copy;
    return RTNORM;
}

int acedMenuCmd(const ACHAR* text) {
    return text != nullptr ? RTNORM : RTERROR; // there are no menus to change
}

int acedGrDraw(const ads_point from, const ads_point to, int color, int highlight) {
    host::editorView().drawVector(host::ucsToWorld(host::asPoint3d(from)),
                                  host::ucsToWorld(host::asPoint3d(to)), color, highlight != 0);
    return RTNORM;
}
/// A list of a colour (below zero: highlighted) and pairs of points, the colour as often as it changes.
int acedGrVecs(const resbuf* vectors, ads_matrix transform) {
    AcGeMatrix3d matrix;
    for (int row = 0; transform != nullptr && row < 4; ++row) {
        std::copy_n(transform[row], 4, matrix.entry[row]);
    }
    int color = AcCmEntityColor::kACIforeground;
    const auto isPoint = [](const resbuf* at) {
        return at != nullptr && (at->restype == RTPOINT || at->restype == RT3DPOINT);
    };
    const auto world = [&](const resbuf* at) {
        return host::ucsToWorld(matrix * host::asPoint3d(at->resval.rpoint));
    };
    for (const resbuf* at = vectors; at != nullptr; at = at->rbnext) {
        if (at->restype == RTSHORT) {
            color = at->resval.rint;
        } else if (isPoint(at) && isPoint(at->rbnext)) {
            host::editorView().drawVector(world(at), world(at->rbnext), std::abs(color), color < 0);
            at = at->rbnext;
        }
    }
    return RTNORM;
}
int acedGrText(int box, const ACHAR* text, int) {
    constexpr int statusLine = -1, coordinates = -2;
    if (box == statusLine || box == coordinates) {
        host::editorView().showStatus(text != nullptr ? text : L"");
    }
    return RTNORM;
}
int acedGrRead(int, int*, resbuf*) {
    return RTERROR;
}
int acedRedraw(const ads_name entity, int mode) {
    constexpr int lastMode = 4, highlights = 3, highlightsNoMore = 4;
    AcDbObjectId id;
    if (entity == nullptr || ads_name_nil(entity)) {
        host::editorView().redraw();
        return RTNORM;
    }
    if (mode < 1 || mode > lastMode || acdbGetObjectId(id, entity) != Acad::eOk) {
        return RTERROR;
    }
    if (mode == highlights || mode == highlightsNoMore) {
        host::editorView().highlight({&id, 1}, mode == highlights);
    }
    return RTNORM;
}
void acedUpdateDisplay() {
    host::editorView().redraw();
}
int acedUpdateDisplayPause(bool) {
    return RTNORM;
}
int acedTextScr() {
    host::editorView().showTextWindow(true);
    return RTNORM;
}
int acedGraphScr() {
    host::editorView().showTextWindow(false);
    return RTNORM;
}
int acedTextPage() {
    return RTNORM;
}

int acedMspace() {
    const AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr || !database->activeViewportId().isNull()) {
        return database != nullptr ? RTNORM : RTERROR;
    }
    for (const AcDbObjectId id : host::layoutViewports(*database)) {
        if (host::enterViewport(id)) {
            return RTNORM;
        }
    }
    return RTERROR;
}
int acedPspace() {
    const AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr || database->tilemode()) {
        return RTERROR;
    }
    host::leaveViewport();
    return RTNORM;
}

int acutCvUnit(ads_real value, const ACHAR* from, const ACHAR* to, ads_real* result) {
    const host::Unit* source = from != nullptr ? host::findUnit(from) : nullptr;
    const host::Unit* target = to != nullptr ? host::findUnit(to) : nullptr;
    if (source == nullptr || target == nullptr || source->dimension != target->dimension ||
        result == nullptr) {
        return RTERROR;
    }
    *result = value * source->factor / target->factor;
    return RTNORM;
}

/// The box of a text in its own direction, from the start of its base line.
int acdbTextBox(const resbuf* list, ads_point first, ads_point second) {
    const AcDbDatabase* database = acdbCurDwg();
    const resbuf* text = host::group(list, 1);
    if (database == nullptr || text == nullptr || text->resval.rstring == nullptr) {
        return RTERROR;
    }
    AcDbObjectId styleId = database->textstyle();
    if (const resbuf* named = host::group(list, 7)) {
        const auto* table = host::peek<AcDbTextStyleTable>(database->textStyleTableId());
        const host::ReadAccess access(*table);
        if (table->getAt(named->resval.rstring, styleId) != Acad::eOk) {
            return RTERROR;
        }
    }
    const auto* record = host::peek<AcDbTextStyleTableRecord>(styleId);
    if (record == nullptr) {
        return RTERROR;
    }
    AcGiTextStyle style;
    {
        const host::ReadAccess access(*record);
        record->toGiTextStyle(style);
    }
    const auto take = [&](int code, auto set) {
        if (const resbuf* value = host::group(list, code)) {
            (style.*set)(value->resval.rreal);
        }
    };
    if (style.textSize() <= 0.0) {
        style.setTextSize(database->textsize());
    }
    take(40, &AcGiTextStyle::setTextSize);
    take(41, &AcGiTextStyle::setXScale);
    take(51, &AcGiTextStyle::setObliquingAngle);
    const AcGePoint2d corner = style.extents(text->resval.rstring, false, -1, false);
    host::setPoint(first, AcGePoint3d());
    host::setPoint(second, AcGePoint3d(corner.x, corner.y, 0.0));
    return RTNORM;
}
