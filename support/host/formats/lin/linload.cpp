// Definitions of a linetype file as records of a drawing.
#include "host/formats/definitiontext.h"
#include "host/formats/formats.h"
#include "host/formats/lin/linfile.h"
#include "host/rx/text.h"
#include "host/win/fileio.h"
#include "host/win/paths.h"

#include <cmath>
#include <cwchar>

namespace host {
namespace {

AcDbObjectId shapeFileStyle(AcDbDatabase& database, const std::wstring& file) {
    const Opened<AcDbTextStyleTable> table(database.textStyleTableId(), AcDb::kForRead);
    for (AcDbStub* stub : table->records()) {
        const auto* style = peek<AcDbTextStyleTableRecord>(AcDbObjectId(stub));
        if (style != nullptr && style->isShapeFile() &&
            style->fontFileName().compareNoCase(file.c_str()) == 0) {
            return style->objectId();
        }
    }
    return {};
}

/// Text and shape insets name styles; a style that is not there is a fault of the definition.
bool takeStyle(AcDbDatabase& database, const lin::Element& element, AcDbLinetypeTableRecord::Dash& dash,
               std::wstring& fault) {
    if (element.inset == lin::Element::Inset::text) {
        const Opened<AcDbTextStyleTable> table(database.textStyleTableId(), AcDb::kForRead);
        if (!table || table->AcDbSymbolTable::getAt(element.style.c_str(), dash.style) != Acad::eOk) {
            fault = L"没有文字样式 \"" + element.style + L"\"";
            return false;
        }
        dash.hasText = true;
        dash.text = element.text.c_str();
        return true;
    }
    dash.style = shapeFileStyle(database, element.style);
    wchar_t* end = nullptr;
    const long shape = std::wcstol(element.text.c_str(), &end, 10);
    if (dash.style.isNull() || *end != L'\0' || shape < 1 || shape > 255) {
        fault = L"没有形 " + element.text + L" (" + element.style + L")";
        return false;
    }
    dash.hasShape = true;
    dash.shapeNumber = static_cast<Adesk::Int16>(shape);
    return true;
}

Acad::ErrorStatus addLinetype(AcDbDatabase& database, const lin::Definition& definition,
                              std::wstring& fault) {
    if (!definition.fault.empty()) {
        fault = definition.fault;
        return Acad::eInvalidLineType;
    }
    std::vector<AcDbLinetypeTableRecord::Dash> dashes;
    double length = 0.0;
    for (const lin::Element& element : definition.elements) {
        AcDbLinetypeTableRecord::Dash& dash = dashes.emplace_back();
        dash.length = element.length;
        dash.absoluteRotation = element.absoluteRotation;
        dash.uprightRotation = element.uprightRotation;
        dash.rotation = element.rotation;
        dash.scale = element.scale;
        dash.offset.set(element.x, element.y);
        length += std::fabs(element.length);
        if (element.inset != lin::Element::Inset::none && !takeStyle(database, element, dash, fault)) {
            fault = L"线型 \"" + definition.name + L"\": " + fault;
            return Acad::eInvalidLineType;
        }
    }
    auto record = std::make_unique<AcDbLinetypeTableRecord>();
    if (const Acad::ErrorStatus status = record->setName(definition.name.c_str()); status != Acad::eOk) {
        fault = L"线型名 \"" + definition.name + L"\" 无效";
        return status;
    }
    record->setComments(definition.description.c_str());
    record->setPatternLength(length);
    record->setDashes(std::move(dashes));
    const Opened<AcDbLinetypeTable> table(database.linetypeTableId(), AcDb::kForWrite);
    if (!table) {
        return table.status();
    }
    const Acad::ErrorStatus status = table->add(record.get());
    if (status == Acad::eOk) {
        record.release()->close();
    }
    return status;
}

bool hasLinetype(AcDbDatabase& database, const std::wstring& name) {
    const Opened<AcDbLinetypeTable> table(database.linetypeTableId(), AcDb::kForRead);
    return table && table->has(name.c_str());
}

} // namespace

Acad::ErrorStatus loadLinetypes(const std::wstring& name, const std::wstring& file, AcDbDatabase& database,
                                std::wstring* message) {
    std::wstring ignored;
    std::wstring& text = message != nullptr ? *message : ignored;
    MappedFile mapped;
    const std::filesystem::path path = findDefinitionFile(file, &database);
    if (path.empty() || !mapped.open(path)) {
        text = path.empty() ? L"找不到线型文件 " + file : mapped.errorText();
        return path.empty() ? Acad::eFileNotFound : Acad::eFileAccessErr;
    }
    const bool several = name.find_first_of(L"*?") != name.npos;
    bool found = false;
    Acad::ErrorStatus result = Acad::eOk;
    for (const lin::Definition& definition : lin::parse(mapped.text())) {
        const bool wanted =
            several ? matchesPattern(definition.name, name) : equalNoCase(definition.name, name);
        if (!wanted || (found && !several)) {
            continue;
        }
        found = true;
        Acad::ErrorStatus status = Acad::eDuplicateRecordName;
        std::wstring fault = L"线型 \"" + definition.name + L"\" 已经加载";
        if (!hasLinetype(database, definition.name)) {
            fault.clear();
            status = addLinetype(database, definition, fault);
        }
        if (status != Acad::eOk && result == Acad::eOk) {
            result = status;
            text = fault;
        }
    }
    if (!found) {
        text = L"文件 " + file + L" 中没有线型 \"" + name + L"\"";
        return Acad::eUndefinedLineType;
    }
    return result;
}

} // namespace host
