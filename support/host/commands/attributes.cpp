// ATTDEF, ATTEDIT, ATTDISP: texts of blocks that differ from reference to reference.
#include "host/commands/edit/textplacing.h"
#include "host/commands/registry.h"
#include "host/ed/sysvars.h"
#include "host/rx/text.h"

namespace host {
namespace {

constexpr int lockFlag = 16; ///< the other bits of AFLAGS are those of the definitions

/// A mode of new definitions: a bit of AFLAGS.
struct Mode {
    const wchar_t* keyword;
    int flag;
};
constexpr Mode modes[] = {{L"Invisible", AttributeData::invisible},
                          {L"Constant", AttributeData::constant},
                          {L"Verify", AttributeData::verified},
                          {L"Preset", AttributeData::preset},
                          {L"Lock", lockFlag}};

/// Each keyword turns its mode over; false when cancelled.
bool askModes(int& flags) {
    for (;;) {
        const auto shows = [&](int flag) { return (flags & flag) != 0 ? L"Y" : L"N"; };
        acutPrintf(L"\n当前属性模式:  不可见=%s  常数=%s  验证=%s  预设=%s  锁定位置=%s",
                   shows(modes[0].flag), shows(modes[1].flag), shows(modes[2].flag), shows(modes[3].flag),
                   shows(modes[4].flag));
        const Answer answer =
            askKeyword(L"\n输入要修改的选项 [不可见(I)/常数(C)/验证(V)/预设(P)/锁定位置(L)] <已完成>: ",
                       L"Invisible Constant Verify Preset Lock");
        const auto* mode = std::find_if(std::begin(modes), std::end(modes),
                                        [&](const Mode& one) { return answer.isKeyword(one.keyword); });
        if (mode == std::end(modes)) {
            return answer.isNone();
        }
        flags ^= mode->flag;
    }
}

/// A name without blanks, in capitals as all programs write it; empty when cancelled.
std::wstring askTag() {
    for (;;) {
        const TextAnswer answer = askText(L"\n输入属性标记名: ", true);
        if (answer.isCancelled()) {
            return {};
        }
        if (!answer.isValue()) {
            acutPrintf(L"\n标记不能为空。");
        } else if (answer.text.find(L' ') != std::wstring::npos) {
            acutPrintf(L"\n标记中不能有空格: \"%s\"。", answer.text.c_str());
        } else {
            return toUpper(answer.text);
        }
    }
}

void runDefine() {
    int flags = systemVariableInteger(L"AFLAGS");
    if (!askModes(flags)) {
        return;
    }
    setSystemVariable(L"AFLAGS", flags);
    const std::wstring tag = askTag();
    if (tag.empty()) {
        return;
    }
    const auto has = [flags](int flag) { return (flags & flag) != 0; };
    const bool constant = has(AttributeData::constant);
    const TextAnswer prompt = constant ? TextAnswer{} : askText(L"\n输入属性提示: ", true);
    if (!constant && prompt.isCancelled()) {
        return;
    }
    const TextAnswer value = askText(constant ? L"\n输入属性值: " : L"\n输入默认属性值: ", true);
    TextPlacing placing;
    if (value.isCancelled() || !askTextPlacing(placing)) {
        return;
    }
    auto definition = std::make_unique<AcDbAttributeDefinition>();
    definition->setTag(tag.c_str());
    definition->setPrompt(prompt.text.c_str());
    definition->setTextString(value.text.c_str());
    definition->setInvisible(has(AttributeData::invisible));
    definition->setConstant(constant);
    definition->setVerifiable(has(AttributeData::verified));
    definition->setPreset(has(AttributeData::preset));
    definition->setLockPositionInBlock(has(lockFlag));
    appendPlaced(std::move(definition), placing);
}

/// The definition of the attribute's tag may say how to ask for it.
std::wstring promptFor(const AcDbAttribute& attribute, const AcDbBlockTableRecord& block) {
    for (AcDbStub* stub : block.entities()) {
        const auto* definition = peek<AcDbAttributeDefinition>(stub);
        if (definition == nullptr) {
            continue;
        }
        const ReadAccess access(*definition);
        if (std::wstring_view(definition->tagConst()) == attribute.tagConst() &&
            *definition->promptConst() != L'\0') {
            return definition->promptConst();
        }
    }
    return attribute.tagConst();
}

/// Asks for each value; Enter keeps it, Escape keeps the rest.
void runEdit() {
    const EntityAnswer picked = askEntity(L"\n选择块参照: ", nullptr, [](const AcDbEntity& entity) {
        if (!AcDbBlockReference::cast(&entity)) {
            return L"对象不是块参照。";
        }
        const std::unique_ptr<AcDbObjectIterator> attributes(
            AcDbBlockReference::cast(&entity)->attributeIterator());
        return attributes->done() ? L"该块参照没有可编辑的属性。" : nullptr;
    });
    if (!picked.isValue()) {
        return;
    }
    const Opened<AcDbBlockReference> reference(picked.id, AcDb::kForWrite);
    if (!reference) {
        return;
    }
    const auto* block = peek<AcDbBlockTableRecord>(reference->blockTableRecord());
    const std::unique_ptr<AcDbObjectIterator> attributes(reference->attributeIterator());
    for (; !attributes->done(); attributes->step()) {
        const Opened<AcDbAttribute> attribute(attributes->objectId(), AcDb::kForWrite);
        if (!attribute || attribute->isConstant()) {
            continue;
        }
        const TextAnswer answer = askText(L"\n" + promptFor(*attribute.get(), *block) + L" <" +
                                              attribute->textStringConst() + L">: ",
                                          true);
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isValue()) {
            attribute->setTextString(answer.text.c_str());
            attribute->adjustAlignment(&currentDatabase());
        }
    }
}

/// ATTMODE: 0 none shows, 1 each as it was defined, 2 all show.
void runDisplay() {
    constexpr const wchar_t* keywords[] = {L"OFf", L"Normal", L"ON"};
    constexpr const wchar_t* names[] = {L"关", L"普通", L"开"};
    const int current = std::clamp(systemVariableInteger(L"ATTMODE"), 0, 2);
    const Answer answer = askKeyword(L"\n输入属性的可见性设置 [普通(N)/开(ON)/关(OFF)] <" +
                                         std::wstring(names[current]) + L">: ",
                                     L"Normal ON OFf");
    for (int mode = 0; mode < 3; ++mode) {
        if (answer.isKeyword(keywords[mode])) {
            setSystemVariable(L"ATTMODE", mode);
        }
    }
}

constexpr CommandRow rows[] = {{L"ATTDEF", L"定义属性", ACRX_CMD_MODAL, runDefine},
                               {L"-ATTDEF", L"-定义属性", ACRX_CMD_MODAL, runDefine},
                               {L"ATTEDIT", L"编辑属性", ACRX_CMD_MODAL, runEdit},
                               {L"ATTDISP", L"显示属性", ACRX_CMD_MODAL, runDisplay}};

} // namespace

std::span<const CommandRow> attributeCommands() {
    return rows;
}

} // namespace host
