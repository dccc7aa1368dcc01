// Questions for records of symbol tables, colours and lineweights by name.
#include "host/commands/tables.h"

#include "host/ed/colornames.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {

std::wstring recordName(AcDbObjectId record) {
    const auto* found = peek<AcDbSymbolTableRecord>(record);
    return found != nullptr ? found->name().kwszPtr() : L"";
}

namespace {

std::optional<AcDbObjectId> askNamed(AcDbObjectId table, const std::wstring& prompt, const std::wstring& what,
                                     AcDbObjectId current,
                                     const std::function<AcDbObjectId(const std::wstring&)>& find) {
    const std::wstring standard = current.isNull() ? std::wstring(L"多种") : recordName(current);
    for (;;) {
        const TextAnswer answer = askName(L"\n" + prompt + L" <" + standard + L">: ");
        if (answer.isCancelled()) {
            return std::nullopt;
        }
        if (answer.isNone()) {
            return AcDbObjectId();
        }
        if (answer.text == L"?") {
            for (AcDbStub* stub : peek<AcDbSymbolTable>(table)->records()) {
                if (!stub->erased) {
                    acutPrintf(L"\n  %s", recordName(stub).c_str());
                }
            }
            continue;
        }
        const AcDbObjectId found = find(answer.text);
        if (!found.isNull()) {
            return found;
        }
        acutPrintf(L"\n找不到%s \"%s\"。", what.c_str(), answer.text.c_str());
    }
}

} // namespace

std::optional<AcDbObjectId> askRecord(AcDbObjectId table, const std::wstring& prompt,
                                      const std::wstring& what, AcDbObjectId current) {
    return askNamed(table, prompt, what, current, [table](const std::wstring& name) {
        AcDbObjectId id;
        return peek<AcDbSymbolTable>(table)->getAt(name.c_str(), id) == Acad::eOk ? id : AcDbObjectId();
    });
}

AcDbObjectId linetypeNamed(const std::wstring& name) {
    AcDbDatabase& database = currentDatabase();
    const auto* table = peek<AcDbLinetypeTable>(database.linetypeTableId());
    AcDbObjectId id;
    if (table->getAt(name.c_str(), id) == Acad::eOk) {
        return id;
    }
    const bool loaded = acdbLoadLineTypeFile(name.c_str(), L"acadiso.lin", &database) == Acad::eOk ||
                        acdbLoadLineTypeFile(name.c_str(), L"acad.lin", &database) == Acad::eOk;
    return loaded && table->getAt(name.c_str(), id) == Acad::eOk ? id : AcDbObjectId();
}

std::optional<AcDbObjectId> askLinetype(const std::wstring& prompt, AcDbObjectId current) {
    return askNamed(currentDatabase().linetypeTableId(), prompt, L"线型", current, linetypeNamed);
}

AcDbObjectId makeLayer(const std::wstring& name) {
    AcDbObjectId id;
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    const Opened<AcDbLayerTable> table(currentDatabase().layerTableId(), AcDb::kForWrite);
    layer->setLinetypeObjectId(currentDatabase().continuousLinetype());
    if (!table || layer->setName(name.c_str()) != Acad::eOk || table->add(id, layer.get()) != Acad::eOk) {
        return {};
    }
    layer.release()->close();
    return id;
}

AcDbObjectId layerNamed(const std::wstring& name, bool* created) {
    AcDbObjectId id;
    if (created != nullptr) {
        *created = false;
    }
    if (peek<AcDbLayerTable>(currentDatabase().layerTableId())->getAt(name.c_str(), id) == Acad::eOk) {
        return id;
    }
    id = makeLayer(name);
    if (id.isNull()) {
        acutPrintf(L"\n图层名 \"%s\" 无效。", name.c_str());
        return {};
    }
    if (created != nullptr) {
        *created = true;
    }
    return id;
}

namespace {

/// Asks until `read` makes a value of the answer; nothing for Enter and Escape.
template <class Read>
auto askColorText(const std::wstring& prompt, Read read) -> decltype(read(std::wstring_view())) {
    for (;;) {
        TextAnswer answer = askText(prompt);
        if (!answer.isValue()) {
            return std::nullopt;
        }
        const bool trueColor = equalNoCase(answer.text, L"T") || equalNoCase(answer.text, L"_T");
        if (trueColor) {
            answer = askText(L"\n红,绿,蓝: ");
            if (!answer.isValue()) {
                return std::nullopt;
            }
        }
        if (auto color = read(std::wstring_view(answer.text))) {
            return color;
        }
        acutPrintf(L"\n需要 1 到 255 的颜色号、颜色名或 红,绿,蓝。");
    }
}

std::optional<LayerColor> parseLayerColor(std::wstring_view text) {
    LayerColor result;
    result.off = text.starts_with(L'-');
    const std::optional<AcCmEntityColor> color = parseColor(text.substr(result.off ? 1 : 0));
    if (!color || color->isByLayer() || color->isByBlock()) {
        return std::nullopt;
    }
    result.color = *color;
    return result;
}

} // namespace

std::optional<AcCmEntityColor> askColor(const std::wstring& prompt, const std::wstring& standard) {
    return askColorText(L"\n" + prompt + L" [真彩色(T)] <" + standard + L">: ", parseColor);
}

std::optional<LayerColor> askLayerColor(const std::wstring& prompt) {
    return askColorText(L"\n" + prompt + L" [真彩色(T)]: ", parseLayerColor);
}

std::optional<AcDb::LineWeight> parseLineWeight(const std::wstring& text) {
    constexpr std::pair<const wchar_t*, AcDb::LineWeight> words[] = {
        {L"BYLAYER", AcDb::kLnWtByLayer},     {L"BYBLOCK", AcDb::kLnWtByBlock},
        {L"DEFAULT", AcDb::kLnWtByLwDefault}, {L"随层", AcDb::kLnWtByLayer},
        {L"随块", AcDb::kLnWtByBlock},        {L"默认", AcDb::kLnWtByLwDefault}};
    for (const auto& [word, weight] : words) {
        if (equalNoCase(text, word)) {
            return weight;
        }
    }
    const std::optional<double> millimetres = parseReal(text);
    if (!millimetres || !(*millimetres >= 0.0 && *millimetres <= 2.11)) {
        return std::nullopt;
    }
    return nearestLineWeight(static_cast<int>(std::lround(*millimetres * 100.0)));
}

} // namespace host
