// SELECT and SELECTSIMILAR: sets for the commands that follow. PROPERTIES: the panel that shows them.
#include "host/commands/ask.h"
#include "host/commands/edit/likeness.h"
#include "host/commands/registry.h"
#include "host/ed/desktop.h"

namespace host {
namespace {

/// The set is PREVIOUS afterwards.
void runSelect() {
    Selection::ask();
}

struct Comparable {
    const wchar_t* keyword;
    const wchar_t* name;
    Likeness::Bit bit;
};
constexpr Comparable comparables[] = {
    {L"Color", L"颜色", Likeness::color},        {L"LAyer", L"图层", Likeness::layer},
    {L"Linetype", L"线型", Likeness::linetype},  {L"Scale", L"线型比例", Likeness::linetypeScale},
    {L"LWeight", L"线宽", Likeness::lineWeight}, {L"Object", L"对象样式", Likeness::style},
    {L"Name", L"名称", Likeness::name}};

int mode() {
    return systemVariableInteger(L"SELECTSIMILARMODE");
}

/// Each word turns comparing of its property on or off. False for Escape.
bool askSettings() {
    for (;;) {
        std::wstring compared = L"类型";
        for (const Comparable& one : comparables) {
            compared += (mode() & one.bit) != 0 ? L"," + std::wstring(one.name) : L"";
        }
        const Answer answer =
            askKeyword(L"\n当前比较: " + compared +
                           L"\n输入要更改的特性 "
                           L"[颜色(C)/图层(LA)/线型(L)/线型比例(S)/线宽(LW)/对象样式(O)/名称(N)] <完成>: ",
                       L"Color LAyer Linetype Scale LWeight Object Name");
        if (answer.kind != Answer::Kind::keyword) {
            return answer.isNone();
        }
        for (const Comparable& one : comparables) {
            if (answer.isKeyword(one.keyword)) {
                setSystemVariable(L"SELECTSIMILARMODE", mode() ^ one.bit);
            }
        }
    }
}

void selectLike(const AcDbObjectIdArray& samples) {
    PickSet similar;
    for (const AcDbObjectId id : entitiesLike(samples, currentDatabase().currentSpaceId(), mode())) {
        if (isSelectable(*peek<AcDbEntity>(id))) {
            similar.add(id);
        }
    }
    acutPrintf(L"\n已选择 %d 个对象。", static_cast<int>(similar.size()));
    previousSelection() = similar;
    ads_name name;
    makePickSetName(std::move(similar), name);
    acedSSSetFirst(nullptr, name);
    acedSSFree(name);
}

void runSelectSimilar() {
    for (;;) {
        acedInitGet(0, L"SEttings");
        const Selection selection = Selection::askWith(L"\n选择对象或 [设置(SE)]: ");
        if (selection.isKeyword()) {
            if (!askSettings()) {
                return;
            }
            continue;
        }
        if (!selection.empty()) {
            selectLike(selection.ids());
        }
        return;
    }
}

void showProperties(bool visible) {
    if (!desktop().showProperties(visible)) {
        acutPrintf(L"\n没有窗口，也就没有特性面板。");
    }
}

void runProperties() {
    showProperties(true);
}

void runPropertiesClose() {
    showProperties(false);
}

constexpr Adesk::Int32 picked = ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW;
constexpr CommandRow rows[] = {
    {L"SELECT", L"选择", picked, runSelect},
    {L"SELECTSIMILAR", L"选择类似对象", picked, runSelectSimilar},
    {L"PROPERTIES", L"特性", picked | ACRX_CMD_NO_UNDO_MARKER, runProperties},
    {L"PROPERTIESCLOSE", L"关闭特性", picked | ACRX_CMD_NO_UNDO_MARKER, runPropertiesClose}};

} // namespace

std::span<const CommandRow> selectingCommands() {
    return rows;
}

} // namespace host
