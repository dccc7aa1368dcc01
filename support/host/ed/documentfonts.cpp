#include "host/ed/documentfonts.h"

#include "host/db/db.h"
#include "host/ed/aced.h"
#include "host/ed/session.h"
#include "host/font/font.h"
#include "host/gi/gi.h"

namespace host {

void useFontsBeside(const std::filesystem::path& drawingFolder) {
    std::vector<std::filesystem::path> folders;
    if (!drawingFolder.empty()) {
        folders.push_back(drawingFolder);
    }
    std::error_code error;
    folders.push_back(std::filesystem::current_path(error));
    for (const std::filesystem::path& folder : supportFolders()) {
        folders.push_back(folder);
        folders.push_back(folder / "fonts");
    }
    FontEngine& engine = FontEngine::instance();
    if (engine.searchFolders() != folders) {
        engine.setSearchFolders(std::move(folders));
    }
}

void tellMissingFonts(AcDbDatabase& database) {
    FontEngine& engine = FontEngine::instance();
    if (const auto* styles = peek<AcDbTextStyleTable>(database.textStyleTableId())) {
        for (AcDbStub* stub : styles->records()) {
            const auto* record = peek<AcDbTextStyleTableRecord>(AcDbObjectId(stub));
            if (record == nullptr || record->isShapeFile()) {
                continue;
            }
            const ReadAccess access(*record);
            AcGiTextStyle style;
            record->toGiTextStyle(style);
            style.loadStyleRec();
        }
    }
    for (const FontSubstitution& font : engine.takeSubstitutions()) {
        const wchar_t* const used = font.used.empty() ? L"其他字体" : font.used.c_str();
        acutPrintf(L"\n未找到字体 \"%s\"，用 \"%s\" 代替。", font.wanted.c_str(), used);
    }
}

} // namespace host
