// Repair of text styles whose fonts this computer lacks.
#include "text/fontreplacement.h"

#include "restools/arxobject.h"
#include "restools/drawing.h"

#include <string_view>

namespace fontreplacement {
namespace {

/// The beginning of the names of the faces that may stand for a typeface; empty when there are none.
std::wstring_view familyPrefix(std::wstring_view typeface) {
    for (const wchar_t* kai : {L"KaiTi_GB2312", L"楷体_GB2312", L"KaiTi", L"楷体"}) {
        if (typeface == kai) {
            return L"楷体";
        }
    }
    for (const wchar_t* fangSong : {L"FangSong_GB2312", L"仿宋_GB2312", L"FangSong", L"仿宋"}) {
        if (typeface == fangSong) {
            return L"仿宋";
        }
    }
    return {};
}

} // namespace

Replacement ReplacementFor(const std::wstring& typeface, const std::set<std::wstring>& installed) {
    if (const std::wstring prefix(familyPrefix(typeface)); !prefix.empty()) {
        if (const auto face = installed.lower_bound(prefix);
            face != installed.end() && face->starts_with(prefix)) {
            return {prefix, {}};
        }
    }
    return {L"宋体", L"SimSun.ttf"};
}

namespace {

int CALLBACK addFace(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM faces) {
    reinterpret_cast<std::set<std::wstring>*>(faces)->insert(font->lfFaceName);
    return 1;
}

std::set<std::wstring> installedFaces() {
    std::set<std::wstring> faces;
    LOGFONTW any = {};
    EnumFontFamiliesExW(nullptr, &any, addFace, reinterpret_cast<LPARAM>(&faces), 0);
    return faces;
}

struct Typeface {
    AcString name;
    Adesk::Boolean bold = Adesk::kFalse;
    Adesk::Boolean italic = Adesk::kFalse;
    int charset = 0;
    int pitchAndFamily = 0;
};

bool replaceTypeface(AcDbTextStyleTableRecord& style, const Typeface& typeface,
                     const std::set<std::wstring>& installed) {
    const std::wstring name = typeface.name.constPtr();
    if (installed.contains(name) || style.upgradeOpen() != Acad::eOk) {
        return false;
    }
    const Replacement replacement = ReplacementFor(name, installed);
    if (!replacement.fileName.empty()) {
        style.setFileName(replacement.fileName.c_str());
    }
    style.setFont(replacement.typeface.c_str(), typeface.bold, typeface.italic, typeface.charset,
                  typeface.pitchAndFamily);
    return true;
}

/// A name without extension is a shape font's.
bool isMissing(const AcString& file) {
    AcString path;
    return !file.isEmpty() && acedFindFile(file, path) != RTNORM &&
           (file.findOneOf(L".") >= 0 || acedFindFile(file + L".shx", path) != RTNORM);
}

bool setFontFile(AcDbTextStyleTableRecord& style, const ACHAR* file) {
    if (style.upgradeOpen() != Acad::eOk) {
        return false;
    }
    style.setFileName(file);
    style.downgradeOpen();
    return true;
}

bool replaceShapeFonts(AcDbTextStyleTableRecord& style) {
    AcString file;
    style.fileName(file);
    bool isChanged = isMissing(file) && setFontFile(style, L"romanc.shx");
    // The main font of a style without its big font shows Chinese characters from then on.
    style.bigFontFileName(file);
    if (isMissing(file)) {
        isChanged = setFontFile(style, L"hztxt.shx") || isChanged;
    }
    return isChanged;
}

bool replaceFonts(AcDbTextStyleTableRecord& style, const std::set<std::wstring>& installed) {
    Typeface typeface;
    if (style.font(typeface.name, typeface.bold, typeface.italic, typeface.charset,
                   typeface.pitchAndFamily) == Acad::eOk &&
        !typeface.name.isEmpty()) {
        return replaceTypeface(style, typeface, installed);
    }
    return replaceShapeFonts(style);
}

} // namespace
} // namespace fontreplacement

void ReplaceMissingFonts() {
    using namespace fontreplacement;
    const std::set<std::wstring> installed = installedFaces();
    bool isChanged = false;
    for (const AcDbObjectId id : RecordIds<AcDbTextStyleTable>()) {
        if (const CArxObjTemplate<AcDbTextStyleTableRecord> style(id, false); style) {
            isChanged = replaceFonts(*style, installed) || isChanged;
        }
    }
    if (isChanged) {
        RegenDrawing();
    }
}
