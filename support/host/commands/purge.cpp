// PURGE and -PURGE: takes out definitions that nothing uses, and what they alone used.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/purging.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

/// A line, arc or polyline that is no longer than a point.
bool hasNoLength(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    double end = 0.0;
    double length = 1.0;
    return curve != nullptr && curve->getEndParam(end) == Acad::eOk &&
           curve->getDistAtParam(end, length) == Acad::eOk && std::fabs(length) < 1e-10;
}

bool isBlankText(const AcDbEntity& entity) {
    const auto* text = AcDbText::cast(&entity);
    return text != nullptr && AcDbAttributeDefinition::cast(&entity) == nullptr &&
           AcDbAttribute::cast(&entity) == nullptr &&
           trim(std::wstring_view(text->textStringConst())).empty();
}

void eraseEntities(const wchar_t* name, bool (*isUseless)(const AcDbEntity&)) {
    int erased = 0;
    for (AcDbStub* block : peek<AcDbBlockTable>(currentDatabase().blockTableId())->records()) {
        const auto* record = peek<AcDbBlockTableRecord>(block);
        for (AcDbStub* stub :
             record != nullptr ? std::vector(record->entities()) : std::vector<AcDbStub*>()) {
            const auto* entity = peek<AcDbEntity>(stub);
            const bool useless = entity != nullptr && [&] {
                const ReadAccess access(*entity);
                return isUseless(*entity);
            }();
            erased += useless && eraseEntity(stub) ? 1 : 0;
        }
    }
    erased > 0 ? acutPrintf(L"\n已删除 %d 个%s。", erased, name) : acutPrintf(L"\n没有找到%s。", name);
}

void runPurge() {
    const Answer kind = askKeyword(
        L"\n输入要清理的未使用对象的类型\n[块(B)/标注样式(D)/组(G)/图层(LA)/线型(LT)/材质(MA)/"
        L"多重引线样式(MU)/"
        L"形(SH)/文字样式(ST)/多线样式(M)/表格样式(T)/注册应用程序(R)/零长度几何图形(Z)/空文字对象(E)/"
        L"全部(A)]: ",
        L"Blocks Dimstyles Groups LAyers LTypes MAterials MUltileaderstyles SHapes textSTyles Mlinestyles "
        L"Tablestyles Regapps Zero Empty All",
        RSG_NONULL);
    if (kind.kind != Answer::Kind::keyword) {
        return;
    }
    if (kind.isKeyword(L"Zero")) {
        eraseEntities(L"零长度几何图形", hasNoLength);
        return;
    }
    if (kind.isKeyword(L"Empty")) {
        eraseEntities(L"空文字对象", isBlankText);
        return;
    }
    const TextAnswer names = askName(L"\n输入要清理的名称 <*>: ");
    if (names.isCancelled()) {
        return;
    }
    const std::optional<bool> confirms = askYesNo(L"\n是否确认每个要清理的名称?", true);
    if (!confirms) {
        return;
    }
    AcDbDatabase& database = currentDatabase();
    const int purged =
        purgeUnused(database, purgeCandidates(database, kind.keyword, names.isNone() ? L"*" : names.text),
                    [&](const PurgeCandidate& candidate) -> std::optional<bool> {
                        const std::wstring what =
                            std::wstring(candidate.kind) + L" \"" + candidate.name + L"\"";
                        const std::optional<bool> sure =
                            *confirms ? askYesNo(L"\n是否清理" + what + L"?", false) : std::optional(true);
                        if (sure == true) {
                            acutPrintf(L"\n正在删除%s。", what.c_str());
                        }
                        return sure;
                    });
    if (purged == 0) {
        const wchar_t* name = purgeKindName(kind.keyword);
        acutPrintf(L"\n没有清理%s。", name != nullptr ? name : L"对象");
    }
}

constexpr CommandRow rows[] = {{L"PURGE", L"清理", ACRX_CMD_MODAL, runPurge},
                               {L"-PURGE", L"-清理", ACRX_CMD_MODAL, runPurge}};

} // namespace

std::span<const CommandRow> purgeCommands() {
    return rows;
}

} // namespace host
