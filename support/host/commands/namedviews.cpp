// VIEW: views kept under names.
#include "host/commands/edit/namedviews.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/commands/viewing.h"

#include <cmath>

namespace host {
namespace {

AcDbViewTable& views() {
    return *peek<AcDbViewTable>(currentDatabase().viewTableId());
}

void tellUnmatched(const std::wstring& pattern) {
    acutPrintf(L"\n找不到匹配的视图名 \"%s\"。", pattern.c_str());
}

void list() {
    const TextAnswer answer = askName(L"\n输入要列出的视图名 <*>: ");
    if (answer.isCancelled()) {
        return;
    }
    acutPrintf(L"\n%-24s %s", L"视图名", L"空间");
    forEachMatch(
        views(), answer.isNone() ? L"*" : answer.text,
        [](AcDbObjectId id) {
            const bool isPaper = (peek<AcDbViewTableRecord>(id)->standardFlags() & 1) != 0;
            acutPrintf(L"\n%-24s %s", (L"\"" + recordName(id) + L"\"").c_str(), isPaper ? L"图纸" : L"模型");
        },
        [&](const std::wstring& pattern) {
            if (pattern != L"*") {
                tellUnmatched(pattern);
            }
        });
}

void remove() {
    const TextAnswer answer = askName(L"\n输入要删除的视图名: ");
    if (!answer.isValue()) {
        return;
    }
    forEachMatch(
        views(), answer.text,
        [](AcDbObjectId id) {
            if (const Opened<AcDbViewTableRecord> record(id, AcDb::kForWrite); record) {
                record->erase();
            }
        },
        tellUnmatched);
}

void restore() {
    const TextAnswer answer = askName(L"\n输入要恢复的视图名: ");
    if (!answer.isValue()) {
        return;
    }
    AcDbObjectId id;
    if (views().getAt(answer.text.c_str(), id) != Acad::eOk) {
        acutPrintf(L"\n找不到视图 \"%s\"。", answer.text.c_str());
        return;
    }
    const std::optional<NamedView> view = namedView(id);
    if (!view) {
        acutPrintf(L"\n视图 \"%s\" 不是俯视图，不能恢复。", answer.text.c_str());
    } else if (view->isPaper == currentDatabase().tilemode()) {
        acutPrintf(view->isPaper ? L"\n视图 \"%s\" 属于布局。" : L"\n视图 \"%s\" 属于模型空间。",
                   answer.text.c_str());
    } else {
        setView(view->centre, std::max(view->height, view->width / screenRatio()));
    }
}

/// A name to save a view under; nothing when the user gives up.
std::optional<std::wstring> askNewName() {
    for (;;) {
        const TextAnswer answer = askName(L"\n输入要保存的视图名: ");
        if (!answer.isValue()) {
            return std::nullopt;
        }
        if (acdbSNValid(answer.text.c_str(), 0) != RTNORM) {
            acutPrintf(L"\n视图名 \"%s\" 无效。", answer.text.c_str());
            continue;
        }
        const std::optional<bool> sure =
            views().has(answer.text.c_str())
                ? askYesNo(L"\n视图 \"" + answer.text + L"\" 已经存在。是否替换?", false)
                : std::optional(true);
        if (!sure) {
            return std::nullopt;
        }
        if (*sure) {
            return answer.text;
        }
    }
}

void save(const std::wstring& name, const AcGePoint3d& centre, double height, double width) {
    saveNamedView(currentDatabase(), name.c_str(), {centre, height, width, !currentDatabase().tilemode()});
}

void saveShown() {
    if (const std::optional<std::wstring> name = askNewName()) {
        const ShownView view = shownView();
        save(*name, view.centre, view.height, view.height * screenRatio());
    }
}

void saveWindow() {
    const std::optional<std::wstring> name = askNewName();
    const PointAnswer first =
        name ? askPoint(L"\n指定第一个角点: ", nullptr, nullptr, RSG_NONULL) : PointAnswer();
    if (!first.isValue()) {
        return;
    }
    const std::optional<AcGePoint3d> opposite = askOppositeCorner(L"\n指定对角点: ", first.ucs);
    if (!opposite) {
        return;
    }
    const AcGeVector3d diagonal = *opposite - first.world;
    if (diagonal.x == 0.0 || diagonal.y == 0.0) {
        acutPrintf(L"\n窗口没有大小。");
        return;
    }
    save(*name, first.world + diagonal * 0.5, std::fabs(diagonal.y), std::fabs(diagonal.x));
}

void runView() {
    struct Option {
        const wchar_t* keyword;
        void (*run)();
    };
    constexpr Option options[] = {{L"?", list},
                                  {L"Delete", remove},
                                  {L"Restore", restore},
                                  {L"Save", saveShown},
                                  {L"Window", saveWindow}};
    const Answer answer =
        askKeyword(L"\n输入选项 [?/删除(D)/恢复(R)/保存(S)/窗口(W)]: ", L"? Delete Restore Save Window");
    for (const Option& option : options) {
        if (answer.isKeyword(option.keyword)) {
            option.run();
        }
    }
}

constexpr CommandRow rows[] = {{L"VIEW", L"视图", ACRX_CMD_MODAL, runView},
                               {L"-VIEW", L"-视图", ACRX_CMD_MODAL, runView}};

} // namespace

std::span<const CommandRow> namedViewCommands() {
    return rows;
}

} // namespace host
