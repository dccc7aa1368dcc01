// Patterns by name: from the pattern file for the drawing's units, or from a file of the pattern's own name.
#include "host/db/dbdatabase.h"
#include "host/formats/definitiontext.h"
#include "host/formats/formats.h"
#include "host/formats/pat/patfile.h"
#include "host/rx/text.h"
#include "host/win/fileio.h"

namespace host {
namespace {

bool isMetric(const AcDbDatabase* database) {
    const std::optional<HeaderIndex> index = findHeaderVariable("MEASUREMENT");
    if (database == nullptr || !index.has_value()) {
        return true;
    }
    const HeaderValue value = database->variable(*index);
    const auto* number = std::get_if<Adesk::Int16>(&value);
    return number == nullptr || *number != 0;
}

} // namespace

Acad::ErrorStatus loadHatchPattern(const std::wstring& name, AcDbDatabase* database,
                                   std::vector<HatchPatternLine>& lines, std::wstring& message,
                                   const std::wstring& file) {
    const std::wstring standard = isMetric(database) ? L"acadiso.pat" : L"acad.pat";
    std::vector<std::wstring> files{file};
    if (file.empty()) {
        files = {standard, name + L".pat"};
    }
    bool any = false;
    for (const std::wstring& candidate : files) {
        const std::filesystem::path path = findDefinitionFile(candidate, database);
        MappedFile mapped;
        if (path.empty()) {
            continue;
        }
        if (!mapped.open(path)) {
            message = mapped.errorText();
            return Acad::eFileAccessErr;
        }
        any = true;
        for (const pat::Definition& definition : pat::parse(mapped.text())) {
            if (!equalNoCase(definition.name, name)) {
                continue;
            }
            if (!definition.fault.empty()) {
                message = candidate + L" " + definition.fault;
                return Acad::eInvalidInput;
            }
            lines = definition.lines;
            return Acad::eOk;
        }
    }
    message = any ? L"没有填充图案 \"" + name + L"\"" : L"找不到填充图案文件 " + files.front();
    return any ? Acad::eKeyNotFound : Acad::eFileNotFound;
}

} // namespace host
