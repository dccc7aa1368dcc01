// -LINETYPE: lists, loads and sets linetypes.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

namespace host {
namespace {

AcDbLinetypeTable& linetypes() {
    return *peek<AcDbLinetypeTable>(currentDatabase().linetypeTableId());
}

std::wstring currentName() {
    return peek<AcDbLinetypeTableRecord>(currentDatabase().celtype())->name().kwszPtr();
}

void list() {
    for (AcDbStub* stub : linetypes().records()) {
        if (const auto* linetype = peek<AcDbLinetypeTableRecord>(stub)) {
            acutPrintf(L"\n%-20s %s", linetype->name().kwszPtr(), linetype->asciiDescription());
        }
    }
}

void load() {
    const TextAnswer names = askName(L"\n输入要加载的线型: ");
    if (!names.isValue()) {
        return;
    }
    const TextAnswer file = askName(L"\n输入线型文件名 <acadiso.lin>: ");
    if (file.isCancelled()) {
        return;
    }
    std::wstring fileName = file.isNone() ? L"acadiso.lin" : file.text;
    if (fileName.find(L'.') == std::wstring::npos) {
        fileName += L".lin";
    }
    std::size_t begin = 0;
    while (begin <= names.text.size()) {
        const std::size_t end = std::min(names.text.find(L',', begin), names.text.size());
        const std::wstring name = names.text.substr(begin, end - begin);
        begin = end + 1;
        AcDbObjectId existing;
        if (linetypes().getAt(name.c_str(), existing) == Acad::eOk) {
            // The host asks before it reads a definition again; the answer here keeps what is there.
            const Answer reload =
                askKeyword(L"\n线型 \"" + name + L"\" 已加载。是否重新加载? [是(Y)/否(N)] <Y>: ", L"Yes No");
            if (reload.isCancelled()) {
                return;
            }
            continue;
        }
        switch (acdbLoadLineTypeFile(name.c_str(), fileName.c_str(), &currentDatabase())) {
        case Acad::eOk:
            acutPrintf(L"\n线型 \"%s\" 已加载。", name.c_str());
            break;
        case Acad::eFileNotFound:
            reportFailure(L"找不到线型文件 \"" + fileName + L"\"");
            return;
        default:
            acutPrintf(L"\n在文件 \"%s\" 中找不到线型 \"%s\"。", fileName.c_str(), name.c_str());
            break;
        }
    }
}

void set() {
    const TextAnswer answer = askName(L"\n指定线型名或 [?] <" + currentName() + L">: ");
    if (!answer.isValue()) {
        return;
    }
    AcDbObjectId id;
    if (answer.text == L"?") {
        list();
    } else if (linetypes().getAt(answer.text.c_str(), id) == Acad::eOk) {
        currentDatabase().setCeltype(id);
    } else {
        acutPrintf(L"\n找不到线型 \"%s\"。请先加载。", answer.text.c_str());
    }
}

/// A simple definition typed in: name, description, dash lengths.
void create() {
    const TextAnswer name = askName(L"\n输入要创建的线型名: ");
    const TextAnswer description = name.isValue() ? askText(L"\n说明文字: ", true) : TextAnswer();
    const TextAnswer pattern =
        description.isCancelled() ? TextAnswer() : askText(L"\n输入线型图案（下一行）:\nA,", true);
    if (!pattern.isValue()) {
        return;
    }
    std::vector<AcDbLinetypeTableRecord::Dash> dashes;
    double length = 0.0;
    std::wstring rest = pattern.text;
    while (!rest.empty()) {
        wchar_t* end = nullptr;
        AcDbLinetypeTableRecord::Dash& dash = dashes.emplace_back();
        dash.length = std::wcstod(rest.c_str(), &end);
        if (end == rest.c_str() || (*end != L',' && *end != L'\0')) {
            acutPrintf(L"\n线型图案无效: %s", rest.c_str());
            return;
        }
        length += std::abs(dash.length);
        rest = *end == L',' ? std::wstring(end + 1) : std::wstring();
    }
    if (dashes.size() < 2 || dashes.front().length < 0.0) {
        acutPrintf(L"\n线型图案无效: %s", pattern.text.c_str());
        return;
    }
    const Opened<AcDbLinetypeTable> table(currentDatabase().linetypeTableId(), AcDb::kForWrite);
    auto linetype = std::make_unique<AcDbLinetypeTableRecord>();
    linetype->setComments(description.text.c_str());
    linetype->setPatternLength(length);
    linetype->setDashes(std::move(dashes));
    if (!table || linetype->setName(name.text.c_str()) != Acad::eOk ||
        table->add(linetype.get()) != Acad::eOk) {
        acutPrintf(L"\n线型 \"%s\" 无法创建。", name.text.c_str());
        return;
    }
    linetype.release()->close();
}

void runLinetype() {
    acutPrintf(L"\n当前线型:  \"%s\"", currentName().c_str());
    for (;;) {
        const Answer answer = askKeyword(L"\n输入选项 [?/创建(C)/加载(L)/设置(S)]: ", L"? Create Load Set");
        if (answer.isKeyword(L"?")) {
            list();
        } else if (answer.isKeyword(L"Load")) {
            load();
        } else if (answer.isKeyword(L"Set")) {
            set();
        } else if (answer.isKeyword(L"Create")) {
            create();
        } else {
            return;
        }
    }
}

constexpr CommandRow rows[] = {{L"-LINETYPE", L"-线型", ACRX_CMD_TRANSPARENT, runLinetype},
                               {L"LINETYPE", L"线型", ACRX_CMD_TRANSPARENT, runLinetype}};

} // namespace

std::span<const CommandRow> linetypeCommands() {
    return rows;
}

} // namespace host
