// TEXTEDIT: other words in texts, multi-line texts, dimensions and attribute definitions.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

namespace host {
namespace {

struct Words {
    AcDbObjectId entity;
    std::wstring text;
};

std::optional<std::wstring> wordsOf(const AcDbEntity& entity) {
    const ReadAccess access(entity);
    if (const auto* text = AcDbText::cast(&entity)) {
        return text->textStringConst();
    }
    if (const auto* text = AcDbMText::cast(&entity)) {
        AcString contents;
        text->contents(contents);
        return contents.kwszPtr();
    }
    if (const auto* dimension = AcDbDimension::cast(&entity)) {
        AcString text;
        dimension->dimensionText(text);
        return text.kwszPtr();
    }
    return std::nullopt;
}

void setWords(const Words& words) {
    const Opened<AcDbEntity> entity(words.entity, AcDb::kForWrite);
    if (!entity) {
        return;
    }
    if (auto* text = AcDbText::cast(entity.get())) {
        text->setTextString(words.text.c_str());
        text->adjustAlignment(&currentDatabase());
    } else if (auto* paragraphs = AcDbMText::cast(entity.get())) {
        paragraphs->setContents(words.text.c_str());
    } else if (auto* dimension = AcDbDimension::cast(entity.get())) {
        dimension->setDimensionText(words.text.c_str());
        dimension->recomputeDimBlock();
    }
}

const wchar_t* refusal(const AcDbEntity& entity) {
    if (!wordsOf(entity)) {
        return L"对象没有可编辑的文字。";
    }
    return isOnLockedLayer(entity) ? L"该对象在锁定的图层上。" : nullptr;
}

void runTextEdit() {
    std::vector<Words> before;
    for (;;) {
        const EntityAnswer picked = askEntity(L"\n选择注释对象或 [放弃(U)]: ", L"Undo", refusal);
        if (picked.isKeyword(L"Undo")) {
            if (before.empty()) {
                acutPrintf(L"\n没有可放弃的操作。");
            } else {
                setWords(before.back());
                before.pop_back();
            }
            continue;
        }
        if (!picked.isValue()) {
            return;
        }
        const std::wstring old = *wordsOf(*peek<AcDbEntity>(picked.id));
        const TextAnswer answer = askText(L"\n输入文字 <" + old + L">: ", true);
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isValue() && answer.text != old) {
            setWords({picked.id, answer.text});
            before.push_back({picked.id, old});
        }
    }
}

constexpr CommandRow rows[] = {{L"TEXTEDIT", L"编辑文字", ACRX_CMD_MODAL, runTextEdit},
                               {L"DDEDIT", L"编辑注释", ACRX_CMD_MODAL, runTextEdit}};

} // namespace

std::span<const CommandRow> textEditCommands() {
    return rows;
}

} // namespace host
