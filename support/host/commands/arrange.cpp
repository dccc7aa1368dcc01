// DRAWORDER, GROUP, LAYOUT and MODEL: what lies above what, what belongs together, and which sheet is shown.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/db/dbgroup.h"
#include "host/db/dblayout.h"
#include "host/ed/viewports.h"

namespace host {
namespace {

void runDraworder() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const Answer answer = askKeyword(L"\n输入对象排序选项 [对象之上(A)/对象之下(U)/最前(F)/最后(B)] <最后>: ",
                                     L"Above Under Front Back");
    if (answer.isCancelled()) {
        return;
    }
    AcDbObjectId target;
    const bool beside = answer.isKeyword(L"Above") || answer.isKeyword(L"Under");
    if (beside) {
        const EntityAnswer picked = askEntity(L"\n选择参照对象: ");
        if (!picked.isValue()) {
            return;
        }
        target = picked.id;
    }
    const Opened<AcDbBlockTableRecord> space(currentDatabase().currentSpaceId(), AcDb::kForWrite);
    AcDbSortentsTable* table = nullptr;
    if (!space || space->getSortentsTable(table, AcDb::kForWrite, true) != Acad::eOk) {
        acutPrintf(L"\n无法更改绘图次序。");
        return;
    }
    const Acad::ErrorStatus status = answer.isKeyword(L"Above")   ? table->moveAbove(selection.ids(), target)
                                     : answer.isKeyword(L"Under") ? table->moveBelow(selection.ids(), target)
                                     : answer.isKeyword(L"Front") ? table->moveToTop(selection.ids())
                                                                  : table->moveToBottom(selection.ids());
    table->close();
    if (status != Acad::eOk) {
        acutPrintf(L"\n无法更改绘图次序。");
    }
}

AcDbDictionary& groupDictionary() {
    return *peek<AcDbDictionary>(currentDatabase().groupDictionaryId());
}

/// An existing group; null when the user gives up.
AcDbObjectId askGroup() {
    for (;;) {
        const TextAnswer name = askName(L"\n输入组名或 [?]: ");
        if (!name.isValue()) {
            return {};
        }
        AcDbObjectId id;
        if (name.text == L"?") {
            for (const AcDbDictionary::Entry& entry : groupDictionary().entries()) {
                const auto* group = peek<AcDbGroup>(entry.id);
                if (group != nullptr) {
                    const ReadAccess access(*group);
                    acutPrintf(L"\n  %s  %s  %d", entry.name.kwszPtr(), group->description(),
                               static_cast<int>(group->numEntities()));
                }
            }
        } else if (groupDictionary().getAt(name.text.c_str(), id) == Acad::eOk &&
                   peek<AcDbGroup>(id) != nullptr) {
            return id;
        } else {
            acutPrintf(L"\n找不到组 \"%s\"。", name.text.c_str());
        }
    }
}

/// A name for a new group; nothing when the user gives up.
std::optional<std::wstring> askNewName(const std::wstring& prompt) {
    for (;;) {
        const TextAnswer name = askName(prompt);
        if (!name.isValue()) {
            return std::nullopt;
        }
        if (acdbSNValid(name.text.c_str(), 0) != RTNORM) {
            acutPrintf(L"\n组名 \"%s\" 无效。", name.text.c_str());
        } else if (groupDictionary().has(name.text.c_str())) {
            acutPrintf(L"\n组 \"%s\" 已经存在。", name.text.c_str());
        } else {
            return name.text;
        }
    }
}

void create() {
    const std::optional<std::wstring> name = askNewName(L"\n输入组名: ");
    const TextAnswer description = name ? askText(L"\n输入组说明: ", true) : TextAnswer();
    if (description.isCancelled()) {
        return;
    }
    const Selection selection = Selection::ask();
    const Opened<AcDbDictionary> dictionary(currentDatabase().groupDictionaryId(), AcDb::kForWrite);
    if (selection.empty() || !dictionary) {
        return;
    }
    auto* group = new AcDbGroup(description.text.c_str());
    AcDbObjectId id;
    dictionary->setAt(name->c_str(), group, id);
    group->append(selection.ids());
    group->close();
    acutPrintf(L"\n组 \"%s\" 已创建。", name->c_str());
}

void changeMembers(bool adds) {
    const AcDbObjectId id = askGroup();
    if (id.isNull()) {
        return;
    }
    const Selection selection = Selection::ask();
    const Opened<AcDbGroup> group(id, AcDb::kForWrite);
    for (const AcDbObjectId member : group ? selection.ids() : AcDbObjectIdArray()) {
        adds ? group->append(member) : group->remove(member);
    }
}

void dissolve(AcDbObjectId id) {
    {
        const Opened<AcDbGroup> group(id, AcDb::kForWrite);
        if (group) {
            group->clear();
            group->erase();
        }
    }
    const Opened<AcDbDictionary> dictionary(currentDatabase().groupDictionaryId(), AcDb::kForWrite);
    if (dictionary) {
        dictionary->remove(id);
    }
}

void explodeGroup() {
    if (const AcDbObjectId id = askGroup(); !id.isNull()) {
        dissolve(id);
    }
}

std::wstring groupName(AcDbObjectId id) {
    AcString name;
    groupDictionary().nameAt(id, name);
    return name.kwszPtr();
}

/// The groups that an entity is in, in the order of their names.
std::vector<AcDbObjectId> groupsOf(AcDbObjectId entity) {
    std::vector<AcDbObjectId> found;
    for (const AcDbDictionary::Entry& entry : groupDictionary().entries()) {
        const auto* group = peek<AcDbGroup>(entry.id);
        if (group != nullptr) {
            const ReadAccess access(*group);
            if (group->has(peek<AcDbEntity>(entity))) {
                found.push_back(entry.id);
            }
        }
    }
    return found;
}

/// One of an object's groups; null when the user gives up.
AcDbObjectId chooseGroup(const std::vector<AcDbObjectId>& groups) {
    for (std::size_t i = 0; groups.size() > 1; i = (i + 1) % groups.size()) {
        acutPrintf(L"\n对象是多个组的成员。组: \"%s\"", groupName(groups[i]).c_str());
        const Answer answer = askKeyword(L"\n输入选项 [接受(A)/下一个(N)] <下一个>: ", L"Accept Next");
        if (answer.isCancelled()) {
            return {};
        }
        if (answer.isKeyword(L"Accept")) {
            return groups[i];
        }
    }
    return groups.front();
}

void runUngroup() {
    AcDbObjectId group;
    const EntityAnswer pick = askEntity(L"\n选择组或 [名称(N)]: ", L"Name");
    if (pick.isKeyword(L"Name")) {
        group = askGroup();
    } else if (pick.isValue()) {
        const std::vector<AcDbObjectId> groups = groupsOf(pick.id);
        if (groups.empty()) {
            acutPrintf(L"\n对象不是组的成员。");
            return;
        }
        group = chooseGroup(groups);
    }
    if (!group.isNull()) {
        const std::wstring name = groupName(group);
        dissolve(group);
        acutPrintf(L"\n组 \"%s\" 已分解。", name.c_str());
    }
}

void renameGroup() {
    const AcDbObjectId id = askGroup();
    const std::optional<std::wstring> name = id.isNull() ? std::nullopt : askNewName(L"\n输入新组名: ");
    const Opened<AcDbDictionary> dictionary(currentDatabase().groupDictionaryId(), AcDb::kForWrite);
    AcString old;
    if (name && dictionary && dictionary->nameAt(id, old) == Acad::eOk) {
        dictionary->setName(old.kwszPtr(), name->c_str());
    }
}

void setSelectable() {
    const AcDbObjectId id = askGroup();
    const std::optional<bool> selectable = id.isNull() ? std::nullopt : askYesNo(L"\n组是否可选?", true);
    const Opened<AcDbGroup> group(id, AcDb::kForWrite);
    if (selectable && group) {
        group->setSelectable(*selectable);
    }
}

void runGroup() {
    const Answer answer =
        askKeyword(L"\n输入组选项\n[添加(A)/删除(R)/分解(E)/重命名(REN)/可选(S)/创建(C)] <创建>: ",
                   L"Add Remove Explode REName Selectable Create");
    if (answer.isKeyword(L"Add") || answer.isKeyword(L"Remove")) {
        changeMembers(answer.isKeyword(L"Add"));
    } else if (answer.isKeyword(L"Explode")) {
        explodeGroup();
    } else if (answer.isKeyword(L"REName")) {
        renameGroup();
    } else if (answer.isKeyword(L"Selectable")) {
        setSelectable();
    } else if (!answer.isCancelled()) {
        create();
    }
}

AcDbLayoutManager& layouts() {
    return *acdbHostApplicationServices()->layoutManager();
}

std::wstring currentLayout() {
    return layouts().findActiveLayout(true, &currentDatabase()).kwszPtr();
}

void showLayout(const std::wstring& name) {
    leaveViewport();
    if (layouts().setCurrentLayout(name.c_str(), &currentDatabase()) != Acad::eOk) {
        acutPrintf(L"\n找不到布局 \"%s\"。", name.c_str());
    }
}

/// The layout's name, or the current one for Enter.
std::optional<std::wstring> askLayout(const std::wstring& prompt) {
    const std::wstring current = currentLayout();
    const TextAnswer name = askName(prompt + L" <" + current + L">: ");
    if (name.isCancelled()) {
        return std::nullopt;
    }
    return name.isNone() ? current : name.text;
}

void tellLayoutFailure(Acad::ErrorStatus status, const std::wstring& name) {
    if (status == Acad::eDuplicateKey) {
        acutPrintf(L"\n布局 \"%s\" 已经存在。", name.c_str());
    } else if (status != Acad::eOk) {
        acutPrintf(L"\n布局 \"%s\" 不能这样更改。", name.c_str());
    }
}

void runLayout() {
    const Answer answer = askKeyword(L"\n输入布局选项 [复制(C)/删除(D)/新建(N)/重命名(R)/设置(S)/?] <设置>: ",
                                     L"Copy Delete New Rename Set ?");
    if (answer.isCancelled()) {
        return;
    }
    AcDbDatabase* database = &currentDatabase();
    if (answer.isKeyword(L"?")) {
        for (const AcString& name : layouts().layoutNames(database)) {
            acutPrintf(L"\n  %s", name.kwszPtr());
        }
    } else if (answer.isKeyword(L"New")) {
        const std::wstring standard = L"布局" + std::to_wstring(layouts().countLayouts(database));
        const TextAnswer name = askName(L"\n输入新布局名 <" + standard + L">: ");
        AcDbObjectId layout;
        AcDbObjectId block;
        if (!name.isCancelled()) {
            const std::wstring chosen = name.isNone() ? standard : name.text;
            tellLayoutFailure(layouts().createLayout(chosen.c_str(), layout, block, database), chosen);
        }
    } else if (answer.isKeyword(L"Delete")) {
        if (const std::optional<std::wstring> name = askLayout(L"\n输入要删除的布局名")) {
            tellLayoutFailure(layouts().deleteLayout(name->c_str(), database), *name);
        }
    } else if (answer.isKeyword(L"Copy") || answer.isKeyword(L"Rename")) {
        const bool copies = answer.isKeyword(L"Copy");
        const std::optional<std::wstring> old =
            askLayout(copies ? L"\n输入要复制的布局名" : L"\n输入要重命名的布局");
        const TextAnswer name =
            old ? askName(copies ? L"\n输入复制后的布局名: " : L"\n输入新布局名: ") : TextAnswer();
        if (name.isValue()) {
            tellLayoutFailure(copies ? layouts().copyLayout(old->c_str(), name.text.c_str(), database)
                                     : layouts().renameLayout(old->c_str(), name.text.c_str(), database),
                              name.text);
        }
    } else if (const std::optional<std::wstring> name = askLayout(L"\n输入要置为当前的布局")) {
        showLayout(*name);
    }
}

void runModel() {
    showLayout(L"Model");
}

constexpr CommandRow rows[] = {
    {L"DRAWORDER", L"绘图次序", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runDraworder},
    {L"GROUP", L"组", ACRX_CMD_MODAL, runGroup},
    {L"-GROUP", L"-组", ACRX_CMD_MODAL, runGroup},
    {L"UNGROUP", L"解组", ACRX_CMD_MODAL, runUngroup},
    {L"LAYOUT", L"布局", ACRX_CMD_MODAL, runLayout},
    {L"-LAYOUT", L"-布局", ACRX_CMD_MODAL, runLayout},
    {L"MODEL", L"模型", ACRX_CMD_MODAL, runModel}};

} // namespace

std::span<const CommandRow> arrangeCommands() {
    return rows;
}

} // namespace host
