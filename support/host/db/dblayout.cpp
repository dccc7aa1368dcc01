// Page setups and layouts: their fields.
#include "host/db/dblayout.h"

#include "host/db/dbdatabase.h"

#include <charconv>
#include <cmath>
#include <span>

ACRX_DXF_DEFINE_MEMBERS(AcDbPlotSettings, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        PLOTSETTINGS, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbLayout, AcDbPlotSettings, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, LAYOUT,
                        ObjectDBX Classes)

namespace {

constexpr short activeViewportCode = 331;

struct StandardGroup {
    short code;
    const char* text;
};

constexpr StandardGroup standardPlotSettings[] = {
    {1, ""},      {2, "none_device"}, {4, ""},      {6, ""},      {40, "0.0"},  {41, "0.0"},
    {42, "0.0"},  {43, "0.0"},        {44, "0.0"},  {45, "0.0"},  {46, "0.0"},  {47, "0.0"},
    {48, "0.0"},  {49, "0.0"},        {140, "0.0"}, {141, "0.0"}, {142, "1.0"}, {143, "1.0"},
    {70, "688"},  {72, "1"},          {73, "0"},    {74, "5"},    {7, ""},      {75, "16"},
    {147, "1.0"}, {76, "0"},          {77, "2"},    {78, "300"},  {148, "0.0"}, {149, "0.0"}};

constexpr StandardGroup standardLayout[] = {
    {70, "1"},    {10, "0.0"},   {20, "0.0"},   {11, "420.0"}, {21, "297.0"},  {12, "0.0"},    {22, "0.0"},
    {32, "0.0"},  {14, "1e+20"}, {24, "1e+20"}, {34, "1e+20"}, {15, "-1e+20"}, {25, "-1e+20"}, {35, "-1e+20"},
    {146, "0.0"}, {13, "0.0"},   {23, "0.0"},   {33, "0.0"},   {16, "1.0"},    {26, "0.0"},    {36, "0.0"},
    {17, "0.0"},  {27, "1.0"},   {37, "0.0"},   {76, "0"}};

host::GroupList groupsOf(std::span<const StandardGroup> table) {
    host::GroupList groups;
    for (const StandardGroup& group : table) {
        groups.add(group.code, group.text);
    }
    return groups;
}

/// The list with the first group of a code changed, or added.
host::GroupList withGroup(const host::GroupList& list, short code, std::string_view text) {
    host::GroupList changed;
    bool done = false;
    for (const host::GroupList::Group group : list) {
        const bool same = !done && group.code == code;
        changed.add(group.code, same ? text : group.text);
        done = done || same;
    }
    if (!done) {
        changed.add(code, text);
    }
    return changed;
}

} // namespace

AcDbPlotSettings::AcDbPlotSettings() : mPlotSettings(groupsOf(standardPlotSettings)) {}

AcDbPlotSettings::AcDbPlotSettings(bool modelType) : AcDbPlotSettings() {
    setFlag(1024, modelType);
}

std::string_view AcDbPlotSettings::text(short code) const {
    assertReadEnabled();
    for (const host::GroupList::Group group : mPlotSettings) {
        if (group.code == code) {
            return group.text;
        }
    }
    return {};
}

double AcDbPlotSettings::real(short code) const {
    const std::string_view digits = text(code);
    double value = 0.0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

Adesk::Int64 AcDbPlotSettings::integer(short code) const {
    const std::string_view digits = text(code);
    Adesk::Int64 value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

Acad::ErrorStatus AcDbPlotSettings::setText(short code, const ACHAR* value) {
    if (value == nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mPlotSettings = withGroup(mPlotSettings, code, host::encodeDxfText(host::toUtf8(value)));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPlotSettings::setReals(std::initializer_list<std::pair<short, double>> values) {
    for (const auto& [code, value] : values) {
        if (!std::isfinite(value)) {
            return Acad::eInvalidInput;
        }
    }
    assertWriteEnabled();
    for (const auto& [code, value] : values) {
        char buffer[40];
        mPlotSettings = withGroup(mPlotSettings, code, host::formatReal(value, buffer));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPlotSettings::setInteger(short code, Adesk::Int64 value) {
    assertWriteEnabled();
    mPlotSettings = withGroup(mPlotSettings, code, std::to_string(value));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPlotSettings::setFlag(Adesk::Int64 flag, bool on) {
    return setInteger(70, on ? integer(70) | flag : integer(70) & ~flag);
}

namespace {

AcString decoded(std::string_view text) {
    return host::fromUtf8(host::decodeDxfText(text)).c_str();
}

} // namespace

Acad::ErrorStatus AcDbPlotSettings::getPlotSettingsName(AcString& name) const {
    name = decoded(text(1));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getPlotCfgName(AcString& device) const {
    device = decoded(text(2));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getCanonicalMediaName(AcString& medium) const {
    medium = decoded(text(4));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getCurrentStyleSheet(AcString& name) const {
    name = decoded(text(7));
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getPlotPaperMargins(double& left, double& bottom, double& right,
                                                        double& top) const {
    left = real(40);
    bottom = real(41);
    right = real(42);
    top = real(43);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setPlotPaperMargins(double left, double bottom, double right,
                                                        double top) {
    return setReals({{40, left}, {41, bottom}, {42, right}, {43, top}});
}
Acad::ErrorStatus AcDbPlotSettings::getPlotPaperSize(double& width, double& height) const {
    width = real(44);
    height = real(45);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setPlotPaperSize(double width, double height) {
    return width >= 0.0 && height >= 0.0 ? setReals({{44, width}, {45, height}}) : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbPlotSettings::getPlotOrigin(double& x, double& y) const {
    x = real(46);
    y = real(47);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setPlotOrigin(double x, double y) {
    return setReals({{46, x}, {47, y}});
}
Acad::ErrorStatus AcDbPlotSettings::getPlotWindowArea(double& left, double& bottom, double& right,
                                                      double& top) const {
    left = real(48);
    bottom = real(49);
    right = real(140);
    top = real(141);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setPlotWindowArea(double left, double bottom, double right, double top) {
    return setReals({{48, left}, {49, bottom}, {140, right}, {141, top}});
}
Acad::ErrorStatus AcDbPlotSettings::getCustomPrintScale(double& numerator, double& denominator) const {
    numerator = real(142);
    denominator = real(143);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setCustomPrintScale(double numerator, double denominator) {
    return numerator > 0.0 && denominator > 0.0 ? setReals({{142, numerator}, {143, denominator}})
                                                : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbPlotSettings::setScalesToFit(bool fit) {
    const Acad::ErrorStatus status = setUseStandardScale(fit);
    return status == Acad::eOk && fit ? setInteger(75, 0) : status;
}
Acad::ErrorStatus AcDbPlotSettings::getPlotViewName(AcString& name) const {
    name = decoded(text(6));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPlotSettings::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    mPlotSettings.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPlotSettings::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    mPlotSettings.dwgIn(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPlotSettings::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    mPlotSettings.clear();
    AcDbObject::dxfInFields(filer);
    filer->atSubclassData("AcDbPlotSettings");
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100) {
            filer->pushBackItem();
            break;
        }
        if (group->code < 1000 || !takeObjectGroup(filer, *group)) {
            mPlotSettings.add(*group);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPlotSettings::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbPlotSettings");
    return filer->writeKept(mPlotSettings);
}

// Layouts.

AcDbLayout::AcDbLayout() : mGroups(groupsOf(standardLayout)) {}

Acad::ErrorStatus AcDbLayout::getLayoutName(AcString& name) const {
    name = mName;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLayout::setLayoutName(const ACHAR* name) {
    assertWriteEnabled();
    mName = name;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLayout::setBlockTableRecordId(AcDbObjectId block) {
    assertWriteEnabled();
    mBlock = block;
    return Acad::eOk;
}
void AcDbLayout::setTabOrder(int order) {
    assertWriteEnabled();
    mTabOrder = order;
}

AcDbObjectId AcDbLayout::activeViewportId() const {
    for (const host::GroupList::Group group : mGroups) {
        Adesk::UInt64 handle = 0;
        if (group.code == activeViewportCode && database() != nullptr &&
            std::from_chars(group.text.data(), group.text.data() + group.text.size(), handle, 16).ec ==
                std::errc()) {
            return AcDbObjectId(database()->impl().findStub(handle));
        }
    }
    return {};
}

Acad::ErrorStatus AcDbLayout::setActiveViewportId(AcDbObjectId viewport) {
    assertWriteEnabled();
    const std::string handle = viewport.isNull() ? "0" : host::toUtf8(viewport.handle().toString());
    mGroups = withGroup(mGroups, activeViewportCode, handle);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayout::copySettingsFrom(const AcDbLayout& other) {
    assertWriteEnabled();
    mPlotSettings = other.mPlotSettings;
    mGroups.clear();
    for (const host::GroupList::Group group : other.mGroups) {
        // The viewport last active and the UCS belong to the other sheet.
        if (host::referenceKind(group.code) == host::ReferenceKind::none) {
            mGroups.add(group.code, group.text);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayout::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeString(mName);
    filer->writeInt32(mTabOrder);
    filer->writeSoftPointerId(mBlock);
    mPlotSettings.dwgOut(filer, database());
    mGroups.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readString(mName);
    Adesk::Int32 order = 0;
    filer->readInt32(&order);
    mTabOrder = order;
    AcDbSoftPointerId block;
    filer->readSoftPointerId(&block);
    mBlock = block;
    mPlotSettings.dwgIn(filer);
    mGroups.dwgIn(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    mPlotSettings.clear();
    mGroups.clear();
    AcDbObject::dxfInFields(filer);
    bool plotSettings = true;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100 && (group->text == "AcDbPlotSettings" || group->text == "AcDbLayout")) {
            plotSettings = group->text == "AcDbPlotSettings";
        } else if (group->code == 100 || group->code >= 1000) {
            if (!takeObjectGroup(filer, *group)) {
                keepGroup("", *group);
                break;
            }
        } else if (plotSettings) {
            mPlotSettings.add(*group);
        } else if (group->code == 1) {
            mName = group->string();
        } else if (group->code == 71) {
            mTabOrder = group->int32();
        } else if (group->code == 330 && mBlock.isNull()) {
            mBlock = AcDbObjectId(group->id);
        } else {
            mGroups.add(*group);
        }
    }
    keepRest(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbPlotSettings::dxfOutFields(filer);
    filer->writeText(100, "AcDbLayout");
    filer->writeString(1, mName);
    bool blockWritten = false;
    bool orderWritten = false;
    for (const host::GroupList::Group group : mGroups) {
        if (!orderWritten && group.code != 70) {
            filer->writeInt16(71, static_cast<Adesk::Int16>(mTabOrder));
            orderWritten = true;
        }
        if (!blockWritten && (group.code == 331 || group.code == 345 || group.code == 346)) {
            filer->writeObjectId(330, mBlock);
            blockWritten = true;
        }
        filer->writeKept(group.code, group.text);
    }
    if (!orderWritten) {
        filer->writeInt16(71, static_cast<Adesk::Int16>(mTabOrder));
    }
    if (!blockWritten) {
        filer->writeObjectId(330, mBlock);
    }
    return filer->filerStatus();
}
