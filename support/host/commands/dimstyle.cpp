// DIMSTYLE: dimension styles saved, made current, listed and applied.
#include "host/commands/ask.h"
#include "host/commands/edit/dimvalues.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

const wchar_t* refuseUnlessStyled(const AcDbEntity& entity) {
    return dimensionStyleOf(entity).isNull() ? L"需要标注、引线或公差。" : nullptr;
}

const AcDbDimStyleTable& styles() {
    return *peek<AcDbDimStyleTable>(currentDatabase().dimStyleTableId());
}

void listStyles(const std::wstring& pattern) {
    std::vector<std::wstring> names;
    for (AcDbStub* stub : styles().records()) {
        const auto* style = peek<AcDbDimStyleTableRecord>(AcDbObjectId(stub));
        if (style != nullptr && wildcardMatch(style->name().kwszPtr(), pattern)) {
            names.emplace_back(style->name().kwszPtr());
        }
    }
    std::ranges::sort(names);
    acutPrintf(L"\n命名标注样式:");
    for (const std::wstring& name : names) {
        acutPrintf(L"\n  %s", name.c_str());
    }
}

void askListed() {
    const TextAnswer pattern = askName(L"\n输入要列出的标注样式 <*>: ");
    if (!pattern.isCancelled()) {
        listStyles(pattern.isNone() ? L"*" : pattern.text);
    }
}

/// In the order of their names, a line each.
void listVariables(const DimVariables& variables, const DimVariables* standard) {
    std::vector<std::size_t> order(dimVariables().size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::ranges::sort(order, {},
                      [](std::size_t index) { return std::string_view(dimVariables()[index].name); });
    for (const std::size_t index : order) {
        const bool differs = standard != nullptr && !equalDimVariable(variables, *standard, index);
        acutPrintf(L"\nDIM%-13s %-16s %s%s", fromUtf8(dimVariables()[index].name).c_str(),
                   shownDimValue(variables, index).c_str(), dimVariableMeaning(index),
                   differs ? L" (替代)" : L"");
    }
}

/// A style by its name or by an annotation that has it; null when the user gives up.
AcDbObjectId askStyle() {
    for (;;) {
        const TextAnswer name = askName(L"\n输入标注样式名、[?] 或 <选择标注>: ");
        if (name.isCancelled()) {
            return {};
        }
        if (name.isNone()) {
            const EntityAnswer picked = askEntity(L"\n选择标注: ", nullptr, refuseUnlessStyled);
            return picked.isValue() ? dimensionStyleOf(*peek<AcDbEntity>(picked.id)) : AcDbObjectId();
        }
        AcDbObjectId id;
        if (name.text == L"?") {
            askListed();
        } else if (styles().getAt(name.text.c_str(), id) == Acad::eOk) {
            return id;
        } else {
            acutPrintf(L"\n找不到标注样式 \"%s\"。", name.text.c_str());
        }
    }
}

void save() {
    for (;;) {
        const TextAnswer name = askName(L"\n输入新标注样式名或 [?]: ");
        if (!name.isValue()) {
            return;
        }
        if (name.text == L"?") {
            askListed();
            continue;
        }
        if (acdbSNValid(name.text.c_str(), 0) != RTNORM) {
            acutPrintf(L"\n标注样式名 \"%s\" 无效。", name.text.c_str());
            continue;
        }
        AcDbObjectId id;
        const bool exists = styles().getAt(name.text.c_str(), id) == Acad::eOk;
        if (exists && !askYesNo(L"\n该名称已被使用，是否重定义?", false).value_or(false)) {
            continue;
        }
        const DimVariables current = currentDimVariables(currentDatabase());
        if (!exists) {
            const Opened<AcDbDimStyleTable> table(currentDatabase().dimStyleTableId(), AcDb::kForWrite);
            auto style = std::make_unique<AcDbDimStyleTableRecord>();
            if (!table || style->setName(name.text.c_str()) != Acad::eOk ||
                table->add(id, style.get()) != Acad::eOk) {
                reportFailure(L"标注样式 \"" + name.text + L"\" 无法创建");
                return;
            }
            style.release()->close();
        }
        {
            const Opened<AcDbDimStyleTableRecord> style(id, AcDb::kForWrite);
            if (style) {
                style->setDimVariables(current);
            }
        }
        currentDatabase().setDimstyle(id);
        return;
    }
}

void restore() {
    const AcDbObjectId id = askStyle();
    if (!id.isNull()) {
        currentDatabase().setDimstyle(id);
        currentDatabase().setDimstyleData(id);
    }
}

void apply() {
    const Selection selection = Selection::askEditable();
    const AcDbObjectId style = currentDatabase().dimstyle();
    int changed = 0;
    for (const AcDbObjectId id : selection.ids()) {
        const auto* known = peek<AcDbEntity>(id);
        if (known == nullptr || dimensionStyleOf(*known).isNull()) {
            continue;
        }
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (entity) {
            setDimensionStyleOf(*entity.get(), style);
            clearDimOverrides(*entity.get());
            overrideByCurrent(*entity.get(), currentDatabase());
            ++changed;
        }
    }
    if (!selection.empty()) {
        acutPrintf(L"\n标注样式已应用到 %d 个对象。", changed);
    }
}

void runDimstyle() {
    const AcDbObjectId now = currentDatabase().dimstyle();
    acutPrintf(L"\n当前标注样式: %s", recordName(now).c_str());
    const Answer option =
        askKeyword(L"\n输入标注样式选项 [保存(S)/恢复(R)/状态(ST)/变量(V)/应用(A)/?] <恢复>: ",
                   L"Save Restore STatus Variables Apply ?");
    if (option.isKeyword(L"Save")) {
        save();
    } else if (option.isKeyword(L"STatus")) {
        const auto* style = peek<AcDbDimStyleTableRecord>(now);
        listVariables(currentDimVariables(currentDatabase()),
                      style != nullptr ? &style->dimVariables() : nullptr);
    } else if (option.isKeyword(L"Variables")) {
        if (const auto* style = peek<AcDbDimStyleTableRecord>(askStyle())) {
            acutPrintf(L"\n标注样式 \"%s\":", style->name().kwszPtr());
            listVariables(style->dimVariables(), nullptr);
        }
    } else if (option.isKeyword(L"Apply")) {
        apply();
    } else if (option.isKeyword(L"?")) {
        askListed();
    } else if (!option.isCancelled()) {
        restore();
    }
}

constexpr CommandRow rows[] = {{L"-DIMSTYLE", L"-标注样式", ACRX_CMD_MODAL, runDimstyle},
                               {L"DIMSTYLE", L"标注样式", ACRX_CMD_MODAL, runDimstyle}};

} // namespace

std::span<const CommandRow> dimensionStyleCommands() {
    return rows;
}

} // namespace host
