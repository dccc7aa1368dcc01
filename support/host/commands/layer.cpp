// -LAYER: layers by name, one option after the other.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/colornames.h"

#include <cmath>

namespace host {
namespace {

AcDbLayerTable& layers() {
    return *peek<AcDbLayerTable>(currentDatabase().layerTableId());
}

std::wstring nameOf(AcDbObjectId layer) {
    return peek<AcDbLayerTableRecord>(layer)->name().kwszPtr();
}

/// Applies a change to every layer of a comma-separated list; Enter means the current layer.
void change(const TextAnswer& names, const std::function<void(AcDbLayerTableRecord&)>& apply) {
    if (names.isCancelled()) {
        return;
    }
    const std::wstring patterns = names.isNone() ? nameOf(currentDatabase().clayer()) : names.text;
    forEachMatch(
        layers(), patterns,
        [&](AcDbObjectId id) {
            if (const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite); layer) {
                apply(*layer.get());
            }
        },
        [](const std::wstring& pattern) { acutPrintf(L"\n找不到匹配的图层名 \"%s\"。", pattern.c_str()); });
}

void make() {
    const std::wstring current = nameOf(currentDatabase().clayer());
    const TextAnswer answer = askName(L"\n输入新图层的名称（将成为当前图层）<" + current + L">: ");
    if (!answer.isValue()) {
        return;
    }
    bool created = false;
    if (const AcDbObjectId id = layerNamed(answer.text, &created); !id.isNull()) {
        currentDatabase().setClayer(id);
    }
}

void set() {
    const std::wstring current = nameOf(currentDatabase().clayer());
    const TextAnswer answer = askName(L"\n输入要置为当前的图层名 <" + current + L">: ");
    AcDbObjectId id;
    if (!answer.isValue()) {
        return;
    }
    if (layers().getAt(answer.text.c_str(), id) != Acad::eOk) {
        acutPrintf(L"\n找不到图层 \"%s\"。", answer.text.c_str());
    } else if (peek<AcDbLayerTableRecord>(id)->isFrozen()) {
        acutPrintf(L"\n不能将冻结的图层置为当前。");
    } else {
        currentDatabase().setClayer(id);
    }
}

void create() {
    const TextAnswer answer = askName(L"\n输入新图层名列表: ");
    std::size_t begin = 0;
    while (answer.isValue() && begin < answer.text.size()) {
        const std::size_t end = std::min(answer.text.find(L',', begin), answer.text.size());
        bool created = false;
        const std::wstring name = answer.text.substr(begin, end - begin);
        if (!layerNamed(name, &created).isNull() && !created) {
            acutPrintf(L"\n图层 \"%s\" 已经存在。", name.c_str());
        }
        begin = end + 1;
    }
}

void rename() {
    const TextAnswer from = askName(L"\n输入旧图层名: ");
    const TextAnswer to = from.isValue() ? askName(L"\n输入新图层名: ") : TextAnswer();
    if (!to.isValue()) {
        return;
    }
    AcDbObjectId id;
    if (layers().getAt(from.text.c_str(), id) != Acad::eOk || id == currentDatabase().layerZero()) {
        acutPrintf(L"\n不能重命名图层 \"%s\"。", from.text.c_str());
        return;
    }
    const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    if (!layer || layer->setName(to.text.c_str()) != Acad::eOk) {
        acutPrintf(L"\n图层名 \"%s\" 无效或已经存在。", to.text.c_str());
    }
}

TextAnswer askNames(const std::wstring& what) {
    return askName(L"\n输入" + what + L" <" + nameOf(currentDatabase().clayer()) + L">: ");
}

void setColor() {
    const std::optional<LayerColor> given = askLayerColor(L"新颜色");
    if (!given) {
        return;
    }
    change(askNames(L"图层名列表，这些图层使用颜色 " + colorText(given->color)),
           [&](AcDbLayerTableRecord& layer) {
               layer.setColor(AcCmColor(given->color));
               layer.setIsOff(given->off);
           });
}

void setLinetype() {
    const TextAnswer answer = askName(L"\n输入已加载的线型名或 [?] <Continuous>: ");
    if (answer.isCancelled()) {
        return;
    }
    const std::wstring name = answer.isNone() ? L"Continuous" : answer.text;
    const AcDbObjectId linetype = linetypeNamed(name);
    if (linetype.isNull()) {
        acutPrintf(L"\n找不到线型 \"%s\"。", name.c_str());
        return;
    }
    change(askNames(L"图层名列表，这些图层使用线型 \"" + name + L"\""),
           [&](AcDbLayerTableRecord& layer) { layer.setLinetypeObjectId(linetype); });
}

void setLineWeight() {
    const RealAnswer answer = askReal(L"\n输入线宽 (0.0mm - 2.11mm): ", nullptr, 4);
    if (!answer.isValue()) {
        return;
    }
    if (answer.value > 2.11) {
        acutPrintf(L"\n线宽必须在 0.0 和 2.11 毫米之间。");
        return;
    }
    const auto weight = nearestLineWeight(static_cast<int>(std::lround(answer.value * 100.0)));
    change(askNames(L"图层名列表，这些图层使用该线宽"),
           [&](AcDbLayerTableRecord& layer) { layer.setLineWeight(weight); });
}

void setPlottable() {
    const Answer answer = askKeyword(L"\n输入打印首选项 [打印(P)/不打印(N)] <打印>: ", L"Plot No");
    if (!answer.isCancelled()) {
        const bool plots = !answer.isKeyword(L"No");
        change(askNames(L"图层名列表"), [&](AcDbLayerTableRecord& layer) { layer.setIsPlottable(plots); });
    }
}

void turnOff() {
    change(askName(L"\n输入要关闭的图层名列表: "), [](AcDbLayerTableRecord& layer) {
        if (layer.objectId() == currentDatabase().clayer()) {
            const Answer sure = askKeyword(L"\n真的要关闭当前图层吗? [是(Y)/否(N)] <N>: ", L"Yes No");
            if (!sure.isKeyword(L"Yes")) {
                return;
            }
        }
        layer.setIsOff(true);
    });
}

void freeze() {
    change(askName(L"\n输入要冻结的图层名列表: "), [](AcDbLayerTableRecord& layer) {
        if (layer.setIsFrozen(true) != Acad::eOk) {
            acutPrintf(L"\n不能冻结当前图层 \"%s\"。", layer.name().kwszPtr());
        }
    });
}

void list() {
    const TextAnswer answer = askName(L"\n输入要列出的图层名 <*>: ");
    if (answer.isCancelled()) {
        return;
    }
    acutPrintf(L"\n%-24s %-10s %-8s %s", L"图层名", L"状态", L"颜色", L"线型");
    forEachMatch(
        layers(), answer.isNone() ? L"*" : answer.text,
        [](AcDbObjectId id) {
            const auto* layer = peek<AcDbLayerTableRecord>(id);
            std::wstring state = layer->isOff() ? L"关" : L"开";
            state += layer->isFrozen() ? L" 冻结" : L"";
            state += layer->isLocked() ? L" 锁定" : L"";
            const auto* linetype = peek<AcDbLinetypeTableRecord>(layer->linetypeObjectId());
            acutPrintf(L"\n%-24s %-10s %-8d %s", layer->name().kwszPtr(), state.c_str(),
                       static_cast<int>(layer->entityColor().colorIndex()),
                       linetype != nullptr ? linetype->name().kwszPtr() : L"Continuous");
        },
        [](const std::wstring& pattern) { acutPrintf(L"\n找不到匹配的图层名 \"%s\"。", pattern.c_str()); });
    acutPrintf(L"\n当前图层: \"%s\"", nameOf(currentDatabase().clayer()).c_str());
}

struct Option {
    const wchar_t* keyword;
    void (*run)();
};

constexpr Option options[] = {{L"?", list},
                              {L"Make", make},
                              {L"Set", set},
                              {L"New", create},
                              {L"Rename", rename},
                              {L"ON",
                               [] {
                                   change(askName(L"\n输入要打开的图层名列表: "),
                                          [](AcDbLayerTableRecord& layer) { layer.setIsOff(false); });
                               }},
                              {L"OFF", turnOff},
                              {L"Color", setColor},
                              {L"Ltype", setLinetype},
                              {L"LWeight", setLineWeight},
                              {L"Plot", setPlottable},
                              {L"Freeze", freeze},
                              {L"Thaw",
                               [] {
                                   change(askName(L"\n输入要解冻的图层名列表: "),
                                          [](AcDbLayerTableRecord& layer) { layer.setIsFrozen(false); });
                               }},
                              {L"LOck",
                               [] {
                                   change(askName(L"\n输入要锁定的图层名列表: "),
                                          [](AcDbLayerTableRecord& layer) { layer.setIsLocked(true); });
                               }},
                              {L"Unlock", [] {
                                   change(askName(L"\n输入要解锁的图层名列表: "),
                                          [](AcDbLayerTableRecord& layer) { layer.setIsLocked(false); });
                               }}};

void runLayer() {
    acutPrintf(L"\n当前图层:  \"%s\"", nameOf(currentDatabase().clayer()).c_str());
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入选项\n[?/生成(M)/设置(S)/新建(N)/重命名(R)/开(ON)/关(OFF)/颜色(C)/线型(L)/"
                       L"线宽(LW)/打印(P)/"
                       L"冻结(F)/解冻(T)/锁定(LO)/解锁(U)]: ",
                       L"? Make Set New Rename ON OFF Color Ltype LWeight Plot Freeze Thaw LOck Unlock");
        const auto* option = std::find_if(std::begin(options), std::end(options),
                                          [&](const Option& o) { return answer.isKeyword(o.keyword); });
        if (option == std::end(options)) {
            return;
        }
        option->run();
    }
}

constexpr CommandRow rows[] = {{L"-LAYER", L"-图层", ACRX_CMD_TRANSPARENT, runLayer},
                               {L"LAYER", L"图层", ACRX_CMD_TRANSPARENT, runLayer}};

} // namespace

std::span<const CommandRow> layerCommands() {
    return rows;
}

} // namespace host
