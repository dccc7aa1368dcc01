// RENAME and -RENAME: new names for named things.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

namespace host {
namespace {

struct Kind {
    const wchar_t* keyword;
    const wchar_t* name;
    AcDbObjectId (AcDbDatabase::*table)() const;
};

constexpr Kind kinds[] = {{L"Block", L"块", &AcDbDatabase::blockTableId},
                          {L"Dimstyle", L"标注样式", &AcDbDatabase::dimStyleTableId},
                          {L"LAyer", L"图层", &AcDbDatabase::layerTableId},
                          {L"LType", L"线型", &AcDbDatabase::linetypeTableId},
                          {L"textStyle", L"文字样式", &AcDbDatabase::textStyleTableId},
                          {L"Ucs", L"UCS", &AcDbDatabase::UCSTableId},
                          {L"VIew", L"视图", &AcDbDatabase::viewTableId},
                          {L"VPort", L"视口", &AcDbDatabase::viewportTableId}};

/// Names that the drawing's own things have for good.
bool mayNotBeRenamed(AcDbObjectId id) {
    const DatabaseImpl::Containers& containers = currentDatabase().impl().containers;
    for (const AcDbObjectId fixed :
         {containers.layerZero, containers.continuous, containers.byLayer, containers.byBlock}) {
        if (id == fixed) {
            return true;
        }
    }
    const auto* record = peek<AcDbSymbolTableRecord>(id);
    const auto* block = AcDbBlockTableRecord::cast(record);
    return record->isDependent() || (block != nullptr && (block->isLayout() || block->isAnonymous())) ||
           record->name().kwszPtr()[0] == L'*';
}

void runRename() {
    const Answer answer =
        askKeyword(L"\n输入要重命名的对象类型\n[块(B)/标注样式(D)/图层(LA)/线型(LT)/文字样式(S)/UCS(U)/"
                   L"视图(VI)/视口(VP)]: ",
                   L"Block Dimstyle LAyer LType textStyle Ucs VIew VPort", RSG_NONULL);
    const auto* kind = std::find_if(std::begin(kinds), std::end(kinds),
                                    [&](const Kind& one) { return answer.isKeyword(one.keyword); });
    if (kind == std::end(kinds)) {
        return;
    }
    const auto* table = peek<AcDbSymbolTable>((currentDatabase().*kind->table)());
    AcDbObjectId id;
    for (;;) {
        const TextAnswer old = askName(L"\n输入旧" + std::wstring(kind->name) + L"名: ");
        if (!old.isValue()) {
            return;
        }
        if (table->getAt(old.text.c_str(), id) != Acad::eOk) {
            acutPrintf(L"\n找不到%s \"%s\"。", kind->name, old.text.c_str());
        } else if (mayNotBeRenamed(id)) {
            acutPrintf(L"\n不能重命名%s \"%s\"。", kind->name, old.text.c_str());
        } else {
            break;
        }
    }
    for (;;) {
        const TextAnswer name = askName(L"\n输入新" + std::wstring(kind->name) + L"名: ");
        if (!name.isValue()) {
            return;
        }
        const Opened<AcDbSymbolTableRecord> record(id, AcDb::kForWrite);
        switch (record ? record->setName(name.text.c_str()) : record.status()) {
        case Acad::eOk:
            return;
        case Acad::eDuplicateRecordName:
            acutPrintf(L"\n%s \"%s\" 已经存在。", kind->name, name.text.c_str());
            break;
        default:
            acutPrintf(L"\n%s名 \"%s\" 无效。", kind->name, name.text.c_str());
            break;
        }
    }
}

constexpr CommandRow rows[] = {{L"-RENAME", L"-重命名", ACRX_CMD_MODAL, runRename},
                               {L"RENAME", L"重命名", ACRX_CMD_MODAL, runRename}};

} // namespace

std::span<const CommandRow> renameCommands() {
    return rows;
}

} // namespace host
