// FIND: finds a piece of text in texts and attributes, and replaces it when asked.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

namespace host {
namespace {

/// Every place of the piece in a text, without regard to case unless asked for.
std::vector<std::size_t> placesIn(std::wstring_view text, const std::wstring& piece, bool exactCase) {
    std::vector<std::size_t> places;
    const std::wstring where = exactCase ? std::wstring(text) : fold(text);
    const std::wstring what = exactCase ? piece : fold(piece);
    for (std::size_t at = where.find(what); at != std::wstring::npos;
         at = where.find(what, at + what.size())) {
        places.push_back(at);
    }
    return places;
}

std::wstring replaced(std::wstring_view text, const std::vector<std::size_t>& places, std::size_t length,
                      const std::wstring& by) {
    std::wstring result;
    std::size_t from = 0;
    for (const std::size_t place : places) {
        result += text.substr(from, place - from);
        result += by;
        from = place + length;
    }
    return result += text.substr(from);
}

/// Texts, and attributes of references, in the selection or, without one, in the current space.
std::vector<AcDbObjectId> textsOf(const Selection& selection) {
    std::vector<AcDbObjectId> found;
    const auto add = [&](AcDbObjectId id) {
        auto* entity = peek<AcDbEntity>(id);
        if (AcDbText::cast(entity) != nullptr) {
            found.push_back(id);
        } else if (const SubentityList* parts =
                       AcDbBlockReference::cast(entity) != nullptr ? entity->subentities() : nullptr) {
            for (AcDbStub* part : parts->ids()) {
                if (peek<AcDbAttribute>(AcDbObjectId(part)) != nullptr) {
                    found.emplace_back(part);
                }
            }
        }
    };
    if (!selection.empty()) {
        std::for_each(selection.ids().begin(), selection.ids().end(), add);
        return found;
    }
    const auto* space = peek<AcDbBlockTableRecord>(currentDatabase().currentSpaceId());
    std::for_each(space->entities().begin(), space->entities().end(),
                  [&](AcDbStub* stub) { add(AcDbObjectId(stub)); });
    return found;
}

void runFind() {
    const TextAnswer what = askText(L"\n输入要查找的文字: ", true);
    if (!what.isValue()) {
        return;
    }
    const Answer mode = askKeyword(L"\n输入选项 [查找(F)/全部替换(R)] <查找>: ", L"Find Replace");
    if (mode.isCancelled()) {
        return;
    }
    const bool replaces = mode.isKeyword(L"Replace");
    const TextAnswer by = replaces ? askText(L"\n替换为: ", true) : TextAnswer();
    const std::optional<bool> exactCase =
        replaces && by.isCancelled() ? std::nullopt : askYesNo(L"\n是否区分大小写?", false);
    if (!exactCase) {
        return;
    }
    const Selection selection = Selection::askWith(L"\n选择对象或 <整个空间>: ");
    if (selection.isCancelled()) {
        return;
    }
    int places = 0;
    int changed = 0;
    PickSet matching;
    for (const AcDbObjectId id : textsOf(selection)) {
        const auto* text = peek<AcDbText>(id);
        const std::wstring content = text->data().text.kwszPtr();
        const std::vector<std::size_t> found = placesIn(content, what.text, *exactCase);
        if (found.empty()) {
            continue;
        }
        places += static_cast<int>(found.size());
        matching.add(id);
        const Opened<AcDbText> opened(replaces ? id : AcDbObjectId(), AcDb::kForWrite);
        if (opened) {
            opened->setTextString(replaced(content, found, what.text.size(), by.text).c_str());
            opened->adjustAlignment(&currentDatabase());
            ++changed;
        } else if (!replaces) {
            acutPrintf(L"\n%s", content.c_str());
        }
    }
    previousSelection() = std::move(matching);
    if (replaces) {
        acutPrintf(L"\n找到 %d 个匹配项，更改了 %d 个对象。", places, changed);
    } else {
        acutPrintf(L"\n找到 %d 个匹配项。", places);
    }
}

constexpr CommandRow rows[] = {{L"FIND", L"查找", ACRX_CMD_MODAL, runFind}};

} // namespace

std::span<const CommandRow> findCommands() {
    return rows;
}

} // namespace host
