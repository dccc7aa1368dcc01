#include "host/mfc/widgets/lists.h"

#include "host/mfc/widgets/combos.h"

#include <QEvent>

namespace host {

ListBoxWindow::ListBoxWindow(QListWidget* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle) {
    made->viewport()->installEventFilter(this);
    made->setSelectionMode((style & LBS_EXTENDEDSEL) != 0   ? QAbstractItemView::ExtendedSelection
                           : (style & LBS_MULTIPLESEL) != 0 ? QAbstractItemView::MultiSelection
                                                            : QAbstractItemView::SingleSelection);
    made->setUniformItemSizes(true);
    QObject::connect(made, &QListWidget::itemSelectionChanged, this, [this] {
        if (!quiet_ && (style & LBS_NOTIFY) != 0)
            command(LBN_SELCHANGE);
    });
    QObject::connect(made, &QListWidget::itemDoubleClicked, this, [this] {
        if ((style & LBS_NOTIFY) != 0)
            command(LBN_DBLCLK);
    });
}

int ListBoxWindow::insert(int index, const std::wstring& text) {
    const bool was = std::exchange(quiet_, true);
    const int at = index < 0 || index > list().count() ? list().count() : index;
    list().insertItem(at, toQt(text));
    quiet_ = was;
    return at;
}

int ListBoxWindow::add(const std::wstring& text) {
    int at = list().count();
    if ((style & LBS_SORT) != 0)
        for (at = 0; at < list().count() && !sortsBefore(toQt(text), list().item(at)->text());)
            ++at;
    return insert(at, text);
}

int ListBoxWindow::find(int after, const std::wstring& text, bool whole) const {
    const int count = list().count();
    for (int step = 1; step <= count; ++step) {
        const int at = (std::max(after, -1) + step) % count;
        const QString item = list().item(at)->text();
        if (whole ? item.compare(toQt(text), Qt::CaseInsensitive) == 0
                  : item.startsWith(toQt(text), Qt::CaseInsensitive))
            return at;
    }
    return LB_ERR;
}

std::vector<int> ListBoxWindow::selected() const {
    std::vector<int> rows;
    for (int i = 0; i < list().count(); ++i)
        if (list().item(i)->isSelected())
            rows.push_back(i);
    return rows;
}

int ListBoxWindow::current() const {
    if (isMultiple())
        return list().currentRow();
    const std::vector<int> rows = selected();
    return rows.empty() ? LB_ERR : rows.front();
}

bool ListBoxWindow::select(int index) {
    const bool there = index >= 0 && index < list().count();
    quiet_ = true;
    list().clearSelection();
    list().setCurrentRow(there ? index : -1);
    quiet_ = false;
    return there;
}

void ListBoxWindow::setSelected(int index, bool selected) {
    quiet_ = true;
    for (int i = 0; i < list().count(); ++i)
        if (index < 0 || i == index)
            list().item(i)->setSelected(selected);
    quiet_ = false;
}

LRESULT ListBoxWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case LB_GETCURSEL:
        return current();
    case LB_SETCURSEL:
        return select(static_cast<int>(wParam)) ? static_cast<LRESULT>(wParam) : LB_ERR;
    default:
        return HWND__::defaultProc(message, wParam, lParam);
    }
}

std::wstring ListBoxWindow::scriptSelect(const std::vector<int>& items) {
    for (const int item : items)
        if (item < 0 || item >= list().count())
            return L"列表框没有第 " + std::to_wstring(item) + L" 行（从 0 数起，共 " +
                   std::to_wstring(list().count()) + L" 行）";
    if (items.size() > 1 && !isMultiple())
        return L"列表框只能选一行";
    quiet_ = true;
    list().clearSelection();
    for (const int item : items)
        list().item(item)->setSelected(true);
    if (!items.empty())
        list().setCurrentRow(items.back(), isMultiple() ? QItemSelectionModel::NoUpdate
                                                        : QItemSelectionModel::ClearAndSelect);
    quiet_ = false;
    if ((style & LBS_NOTIFY) != 0)
        command(LBN_SELCHANGE);
    return {};
}

std::wstring ListBoxWindow::scriptSet(const std::wstring& value) {
    const int found = find(-1, value, true);
    return found < 0 ? L"列表框中没有“" + value + L"”" : scriptSelect({found});
}

std::wstring ListBoxWindow::scriptGet() const {
    std::wstring text;
    for (const int row : selected())
        text += (text.empty() ? L"" : L"; ") + fromQt(list().item(row)->text());
    return text;
}

bool ListBoxWindow::filter(QEvent* event) {
    const bool done = HWND__::filter(event);
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        command(event->type() == QEvent::FocusIn ? LBN_SETFOCUS : LBN_KILLFOCUS);
    return done;
}

HWND makeListBox(const WindowSpec& spec) {
    return new ListBoxWindow(new QListWidget(spec.parentWidget()), spec);
}

} // namespace host
