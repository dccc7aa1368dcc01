// Making the values of computed system variables.
#include "host/ed/sysvarcomputed.h"

#include "host/db/entities/wipeoutframes.h"
#include "host/ed/acdocman.h"
#include "host/ed/commandrunner.h"
#include "host/ed/input.h"
#include "host/ed/session.h"
#include "host/rx/format.h"
#include "host/win/win.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <sys/utsname.h>

namespace host {
namespace {

constexpr std::wstring_view modelTab = L"Model";
constexpr int paperViewport = 1;
constexpr int modelViewport = 2;

std::wstring environmentText(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? fromUtf8(value) : std::wstring();
}

std::wstring platformText() {
    utsname system{};
    if (uname(&system) != 0) {
        return L"Linux";
    }
    return fromUtf8(std::string(system.sysname) + " " + system.release);
}

/// YYYYMMDD.HHMMSSmmm
double calendarDate() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return now.wYear * 10000.0 + now.wMonth * 100.0 + now.wDay + now.wHour / 1e2 + now.wMinute / 1e4 +
           now.wSecond / 1e6 + now.wMilliseconds / 1e9;
}

std::wstring supportPrefix() {
    std::wstring text;
    for (const std::filesystem::path& folder : supportFolders()) {
        text += toWindowsPath(folder) + L"\\;";
    }
    return text;
}

std::wstring folderWithSeparator(std::wstring_view path) {
    std::wstring folder(folderOf(path));
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/') {
        folder += L'\\';
    }
    return folder;
}

std::wstring settingsPrefix() {
    return toWindowsPath(settingsFolder()) + L"\\";
}

std::wstring homePrefix() {
    return toWindowsPath(std::filesystem::path(toUtf8(environmentText("HOME")))) + L"\\";
}

std::wstring drawingFolder(const AcApDocument& document) {
    if (document.isNamedDrawing()) {
        return folderWithSeparator(document.fileName());
    }
    std::error_code error;
    return toWindowsPath(std::filesystem::current_path(error)) + L"\\";
}

int undoControl(const AcDbDatabase& database) {
    const UndoLog& log = database.undoLog();
    return !database.undoRecording() ? 0 : log.inGroup() ? 1 + 4 + 8 : 1 + 4;
}

bool isWorldUcs(const AcDbDatabase& database) {
    return database.ucsorg().isEqualTo(AcGePoint3d::kOrigin) &&
           database.ucsxdir().isEqualTo(AcGeVector3d::kXAxis) &&
           database.ucsydir().isEqualTo(AcGeVector3d::kYAxis);
}

using Maker = VariableValue (*)(const AcApDocument*);
using DrawingMaker = VariableValue (*)(const AcApDocument&);

const std::map<std::wstring_view, Maker>& makers() {
    using Value = VariableValue;
    using Document = const AcApDocument*;
    static const std::map<std::wstring_view, Maker> table = {
        {L"ACADPREFIX", [](Document) { return Value(supportPrefix()); }},
        {L"ACADVER", [](Document) { return Value(std::wstring(L"24.0")); }},
        {L"CDATE", [](Document) { return Value(calendarDate()); }},
        {L"CPROFILE", [](Document) { return Value(std::wstring(L"<<未命名配置>>")); }},
        {L"DATE",
         [](Document) { return Value(toJulianDate(std::chrono::system_clock::now(), Zone::local).value()); }},
        {L"LASTSAVEDBY", [](Document) { return Value(environmentText("USER")); }},
        {L"LOCALROOTPREFIX", [](Document) { return Value(settingsPrefix()); }},
        {L"MYDOCUMENTSPREFIX", [](Document) { return Value(homePrefix()); }},
        {L"ROAMABLEROOTPREFIX", [](Document) { return Value(settingsPrefix()); }},
        {L"LASTPROMPT", [](Document) { return Value(inputStream().lastPrompt()); }},
        {L"LOCALE", [](Document) { return Value(std::wstring(L"CHS")); }},
        {L"LOGINNAME", [](Document) { return Value(environmentText("USER")); }},
        {L"MILLISECS", [](Document) { return Value(static_cast<int>(GetTickCount() & 0x7FFFFFFF)); }},
        {L"PLATFORM", [](Document) { return Value(platformText()); }},
        {L"PRODUCT", [](Document) { return Value(std::wstring(L"QDVHost")); }},
        {L"TEMPPREFIX",
         [](Document) {
             std::error_code error;
             return Value(toWindowsPath(std::filesystem::temp_directory_path(error)) + L"\\");
         }},
    };
    return table;
}

const std::map<std::wstring_view, DrawingMaker>& drawingMakers() {
    using Value = VariableValue;
    using Document = const AcApDocument&;
    static const std::map<std::wstring_view, DrawingMaker> table = {
        {L"CMDACTIVE", [](Document d) { return Value(activeCommandBits(d)); }},
        {L"CMDNAMES", [](Document d) { return Value(activeCommandNames(d)); }},
        {L"CTAB", [](Document d) { return Value(currentLayoutName(*d.database())); }},
        {L"CVPORT",
         [](Document d) { return Value(d.database()->tilemode() ? modelViewport : paperViewport); }},
        {L"DBMOD",
         [](Document d) {
             return Value(d.database()->undoLog().changeCount() != d.state().savedChangeCount ? 1 : 0);
         }},
        {L"DWGCODEPAGE", [](Document d) { return Value(fromUtf8(d.database()->impl().codePage)); }},
        {L"DWGNAME", [](Document d) { return Value(std::wstring(d.docTitle())); }},
        {L"DWGPREFIX", [](Document d) { return Value(drawingFolder(d)); }},
        {L"DWGTITLED", [](Document d) { return Value(d.isNamedDrawing() ? 1 : 0); }},
        {L"SAVENAME",
         [](Document d) { return Value(d.isNamedDrawing() ? std::wstring(d.fileName()) : std::wstring()); }},
        {L"UNDOCTL", [](Document d) { return Value(undoControl(*d.database())); }},
        {L"UNDOMARKS", [](Document d) { return Value(d.database()->undoLog().markCount()); }},
        {L"WIPEOUTFRAME", [](Document d) { return Value(wipeoutFrames(*d.database())); }},
        {L"WORLDUCS", [](Document d) { return Value(isWorldUcs(*d.database()) ? 1 : 0); }},
    };
    return table;
}

const AcDbLayout* layoutOf(AcDbObjectId block) {
    const auto* record = peek<AcDbBlockTableRecord>(block);
    return record != nullptr ? peek<AcDbLayout>(record->getLayoutId()) : nullptr;
}

} // namespace

std::optional<VariableValue> computedVariable(std::wstring_view name, const AcApDocument* document) {
    if (const auto found = makers().find(name); found != makers().end()) {
        return found->second(document);
    }
    const auto found = drawingMakers().find(name);
    return found != drawingMakers().end() && document != nullptr ? std::optional(found->second(*document))
                                                                 : std::nullopt;
}

std::wstring currentLayoutName(const AcDbDatabase& database) {
    if (database.tilemode()) {
        return std::wstring(modelTab);
    }
    const AcDbLayout* layout = layoutOf(database.paperSpaceId());
    return layout != nullptr ? std::wstring(layout->layoutName().kwszPtr()) : L"Layout1";
}

bool setCurrentLayout(AcDbDatabase& database, std::wstring_view name) {
    if (equalNoCase(name, modelTab)) {
        return database.setTilemode(true) == Acad::eOk;
    }
    return acdbHostApplicationServices()->layoutManager()->setCurrentLayout(std::wstring(name).c_str(),
                                                                            &database) == Acad::eOk;
}

VariableError setComputedVariable(std::wstring_view name, const VariableValue& value,
                                  AcApDocument* document) {
    if (document == nullptr) {
        return VariableError::refused;
    }
    AcDbDatabase& database = *document->database();
    if (name == L"CTAB") {
        const auto* layout = std::get_if<std::wstring>(&value);
        return layout != nullptr && setCurrentLayout(database, *layout) ? VariableError::none
                                                                        : VariableError::refused;
    }
    if (name == L"WIPEOUTFRAME") {
        const auto* frames = std::get_if<int>(&value);
        if (frames == nullptr) {
            return VariableError::wrongType;
        }
        setWipeoutFrames(database, *frames);
        return VariableError::none;
    }
    if (name == L"CVPORT") {
        const auto* number = std::get_if<int>(&value);
        const int now = database.tilemode() ? modelViewport : paperViewport;
        return number != nullptr && *number == now ? VariableError::none : VariableError::refused;
    }
    return VariableError::readOnly;
}

} // namespace host
