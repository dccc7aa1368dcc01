// Which reader and writer a file gets, by its extension.
#include "host/formats/formats.h"

#include "host/rx/text.h"
#include "host/win/paths.h"

namespace host {
namespace {

/// What is printed of a report when a file is opened or saved.
constexpr std::size_t linesShown = 20;

Acad::ErrorStatus readFile(AcDbDatabase& database, const std::wstring& path, std::wstring& message) {
    if (!equalNoCase(extensionOf(path), std::wstring_view(L".dxf"))) {
        message = L"不能读取这种文件: " + path;
        return Acad::eInvalidFileExtension;
    }
    ReadResult result = readDxf(database, toNativePath(path));
    message = result.status == Acad::eOk ? result.report.text(linesShown) : result.message;
    if (result.status == Acad::eOk) {
        database.setFilename(path);
    }
    return result.status;
}

Acad::ErrorStatus writeFile(AcDbDatabase& database, const std::wstring& path, const SaveFormat& format,
                            std::wstring& message) {
    if (!equalNoCase(extensionOf(path), std::wstring_view(L".dxf"))) {
        message = L"不能写入这种文件: " + path;
        return Acad::eInvalidFileExtension;
    }
    DxfWriteOptions options;
    options.version = format.version;
    options.binary = format.binary;
    options.backup = format.backup;
    WriteResult result = writeDxf(database, toNativePath(path), options);
    message = result.status == Acad::eOk ? result.report.text(linesShown) : result.message;
    return result.status;
}

} // namespace

void initializeFormats() {
    fileFormats() = {readFile, writeFile};
    linetypeLoader() = [](const ACHAR* name, const ACHAR* file, AcDbDatabase& database) {
        return loadLinetypes(name, file, database);
    };
    hatchPatternLoader() = [](const std::wstring& name, AcDbDatabase* database,
                              std::vector<HatchPatternLine>& lines, std::wstring& message) {
        return loadHatchPattern(name, database, lines, message);
    };
}

} // namespace host
