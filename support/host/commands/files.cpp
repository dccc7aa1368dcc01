// NEW, OPEN, SAVE, SAVEAS and QUIT. A drawing is read whole before the current one is touched.
#include "host/commands/ask.h"
#include "host/commands/filenames.h"
#include "host/commands/registry.h"
#include "host/ed/documentstate.h"
#include "host/ed/drawingtimes.h"
#include "host/win/win.h"

#include <algorithm>

namespace host {
namespace {

void runNew() {
    const TextAnswer answer = askText(L"\n输入样板文件名或 [. (表示无)] <无>: ", true);
    if (answer.isCancelled()) {
        return;
    }
    const bool none = answer.isNone() || answer.text == L".";
    acDocManager->appContextNewDocument(none ? nullptr : drawingFileName(answer.text).c_str());
}

void runOpen() {
    const TextAnswer answer = askText(L"\n输入要打开的图形文件名: ", true);
    if (answer.isValue()) {
        acDocManager->appContextOpenDocument(drawingFileName(answer.text).c_str());
    }
}

/// Writes the drawing; the document goes by the new name and format afterwards.
void saveTo(const std::wstring& name, const SaveFormat& format) {
    AcApDocument* document = curDoc();
    std::wstring message;
    document->database()->keepExtents();
    stampSaved(*document);
    if (fileFormats().write(*document->database(), name, format, message) != Acad::eOk) {
        reportFailure(message);
        return;
    }
    if (!message.empty()) {
        acutPrintf(L"\n%s", message.c_str());
    }
    document->setFile(toWindowsPath(std::filesystem::absolute(toNativePath(name))));
    document->state().savedChangeCount = document->database()->undoLog().changeCount();
    document->state().saveFormat = format;
}

struct Release {
    const wchar_t* name;
    AcDb::AcDbDwgVersion version;
};
constexpr Release releases[] = {{L"2000", AcDb::kDHL_1015}, {L"2004", AcDb::kDHL_1800},
                                {L"2007", AcDb::kDHL_1021}, {L"2010", AcDb::kDHL_1024},
                                {L"2013", AcDb::kDHL_1027}, {L"2018", AcDb::kDHL_1032}};

/// Asks for the release until one is given; Binary and Text change the form. False for Escape.
bool askFormat(SaveFormat& format) {
    std::wstring names;
    std::wstring choices;
    const wchar_t* current = L"";
    for (const Release& release : releases) {
        names += names.empty() ? release.name : std::wstring(L" ") + release.name;
        choices += std::wstring(release.name) + L"/";
        current = release.version <= format.version ? release.name : current;
    }
    while (true) {
        const std::wstring other = format.binary ? L"文本(T)" : L"二进制(B)";
        const Answer answer =
            askKeyword(std::wstring(L"\n输入文件格式 (") + (format.binary ? L"二进制" : L"文本") + L") [" +
                           choices + other + L"] <" + current + L">: ",
                       (names + (format.binary ? L" Text" : L" Binary")).c_str());
        if (answer.kind != Answer::Kind::keyword) {
            return answer.isNone();
        }
        if (answer.isKeyword(L"Binary") || answer.isKeyword(L"Text")) {
            format.binary = answer.isKeyword(L"Binary");
            continue;
        }
        format.version = std::ranges::find_if(releases, [&](const Release& release) {
                             return answer.isKeyword(release.name);
                         })->version;
        return true;
    }
}

void saveUnder(const SaveFormat& format) {
    const TextAnswer answer = askText(L"\n图形另存为: ", true);
    if (!answer.isValue()) {
        return;
    }
    const std::wstring name = drawingFileName(answer.text);
    if (!mayWriteFile(name)) {
        return;
    }
    saveTo(name, format);
}

void runSaveAs() {
    SaveFormat format = curDoc()->state().saveFormat;
    if (askFormat(format)) {
        saveUnder(format);
    }
}

/// Under another name, in the format of the last time.
void runSaveCopy() {
    saveUnder(curDoc()->state().saveFormat);
}

void runSave() {
    if (!curDoc()->isNamedDrawing()) {
        runSaveCopy();
        return;
    }
    saveTo(curDoc()->fileName(), curDoc()->state().saveFormat);
}

void runQuit() {
    Session::requestQuit();
}

constexpr Adesk::Int32 flags = ACRX_CMD_SESSION | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {
    {L"NEW", L"新建", flags, runNew},         {L"OPEN", L"打开", flags, runOpen},
    {L"SAVE", L"保存", flags, runSaveCopy},   {L"QSAVE", L"快速保存", flags, runSave},
    {L"SAVEAS", L"另存为", flags, runSaveAs}, {L"QUIT", L"退出", flags, runQuit}};

} // namespace

std::span<const CommandRow> fileCommands() {
    return rows;
}

} // namespace host
