#include "host/mfc/widgets/listview.h"

#include "host/mfc/widgets/context.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace host {
namespace {

// Rows with the lines between them that were asked for.
class RowDelegate : public QStyledItemDelegate {
public:
    explicit RowDelegate(ListViewWindow& window) : window_(window) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if ((window_.extended & LVS_EX_GRIDLINES) != 0) {
            painter->setPen(QColor(225, 225, 225));
            painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
            painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        }
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width(), std::max(size.height(), option.font.pixelSize() * 3 / 2 + 3)};
    }

private:
    ListViewWindow& window_;
};

// A picture with its label under it, in a cell of one size.
class PictureDelegate : public QStyledItemDelegate {
public:
    explicit PictureDelegate(ListViewWindow& window) : window_(window) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        if (window_.drawByClass(*painter, option.rect, index.row(), selected))
            return;
        const QRect rect = option.rect;
        if (selected)
            painter->fillRect(rect.adjusted(2, 2, -2, -2), QColor(204, 228, 247));
        const int labelHeight = option.fontMetrics.height() + 2;
        if (CImageList* images = window_.images()) {
            const QImage image =
                imageOf(images->image(window_.model().items[static_cast<std::size_t>(index.row())].image));
            const CSize size = images->size();
            painter->drawImage(QRect(rect.center().x() - size.cx / 2, rect.top() + 4, size.cx, size.cy),
                               image);
        }
        painter->setPen(option.palette.color(QPalette::Text));
        painter->drawText(
            QRect(rect.left() + 2, rect.bottom() - labelHeight - 2, rect.width() - 4, labelHeight),
            Qt::AlignCenter | Qt::TextSingleLine,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, rect.width() - 4));
    }
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return window_.cell; }

private:
    ListViewWindow& window_;
};

QAbstractItemView* newView(const WindowSpec& spec) {
    if ((spec.style & LVS_TYPEMASK) == LVS_REPORT) {
        auto* tree = new QTreeView(spec.parentWidget());
        tree->setRootIsDecorated(false);
        tree->setUniformRowHeights(true);
        tree->setAllColumnsShowFocus(true);
        tree->setHeaderHidden((spec.style & LVS_NOCOLUMNHEADER) != 0);
        tree->header()->setStretchLastSection(false);
        tree->header()->setSectionsMovable(false);
        tree->header()->setMinimumSectionSize(8);
        tree->header()->setHighlightSections(false);
        return tree;
    }
    auto* pictures = new QListView(spec.parentWidget());
    pictures->setViewMode(QListView::IconMode);
    pictures->setMovement(QListView::Static);
    pictures->setResizeMode(QListView::Adjust);
    pictures->setUniformItemSizes(true);
    pictures->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    return pictures;
}

} // namespace

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : window_.asksForItems() ? askedCount : static_cast<int>(items.size());
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : std::max(1, static_cast<int>(columns.size()));
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    const auto column = static_cast<std::size_t>(index.column());
    if (role == Qt::DisplayRole)
        return toQt(window_.itemText(index.row(), index.column()));
    if (role == Qt::TextAlignmentRole && column < columns.size()) {
        const int format = columns[column].format & 3;
        return QVariant::fromValue(
            Qt::Alignment(Qt::AlignVCenter | (format == LVCFMT_RIGHT    ? Qt::AlignRight
                                              : format == LVCFMT_CENTER ? Qt::AlignHCenter
                                                                        : Qt::AlignLeft)));
    }
    return {};
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const auto column = static_cast<std::size_t>(section);
    if (orientation != Qt::Horizontal || column >= columns.size())
        return {};
    if (role == Qt::DisplayRole)
        return toQt(columns[column].heading);
    if (role == Qt::TextAlignmentRole)
        return data(createIndex(0, section), role);
    return {};
}

void ListModel::insert(int at, ListItem item) {
    beginInsertRows({}, at, at);
    items.insert(items.begin() + at, std::move(item));
    endInsertRows();
}
void ListModel::remove(int at) {
    window_.forget(at, at);
    beginRemoveRows({}, at, at);
    items.erase(items.begin() + at);
    endRemoveRows();
}
void ListModel::clear() {
    beginResetModel();
    items.clear();
    askedCount = 0;
    endResetModel();
}
void ListModel::setCount(int count) {
    if (count > askedCount) {
        beginInsertRows({}, askedCount, count - 1);
        askedCount = count;
        endInsertRows();
    } else if (count < askedCount) {
        window_.forget(count, askedCount - 1);
        beginRemoveRows({}, count, askedCount - 1);
        askedCount = count;
        endRemoveRows();
    }
    if (count > 0)
        changed(0, count - 1);
}
void ListModel::changed(int first, int last) {
    emit dataChanged(index(first, 0), index(last, columnCount() - 1));
}
void ListModel::insertColumn(int at, ListColumn column) {
    // The one that stands for none becomes the first.
    const bool first = columns.empty();
    if (!first)
        beginInsertColumns({}, at, at);
    columns.insert(columns.begin() + at, std::move(column));
    if (!first)
        endInsertColumns();
    else
        emit headerDataChanged(Qt::Horizontal, 0, 0);
}
void ListModel::removeColumn(int at) {
    beginResetModel();
    columns.erase(columns.begin() + at);
    endResetModel();
}

ListViewWindow::ListViewWindow(QAbstractItemView* made, const WindowSpec& spec)
    : HWND__(made, spec.parent, spec.id, spec.style, spec.exStyle), model_(*this) {
    made->setModel(&model_);
    made->viewport()->installEventFilter(this);
    made->viewport()->setMouseTracking(true);
    made->setEditTriggers(QAbstractItemView::NoEditTriggers);
    made->setSelectionBehavior(QAbstractItemView::SelectRows);
    made->setSelectionMode((style & LVS_SINGLESEL) != 0 ? QAbstractItemView::SingleSelection
                                                        : QAbstractItemView::ExtendedSelection);
    made->setItemDelegate(isReport() ? static_cast<QAbstractItemDelegate*>(new RowDelegate(*this))
                                     : new PictureDelegate(*this));
    made->itemDelegate()->setParent(made);
    QObject::connect(
        made->selectionModel(), &QItemSelectionModel::selectionChanged, this,
        [this](const QItemSelection& now, const QItemSelection& before) { selectionChanged(now, before); });
    QObject::connect(made, &QAbstractItemView::clicked, this,
                     [this](const QModelIndex& at) { activate(NM_CLICK, at.row()); });
    QObject::connect(made, &QAbstractItemView::doubleClicked, this,
                     [this](const QModelIndex& at) { activate(NM_DBLCLK, at.row()); });
    if (auto* tree = qobject_cast<QTreeView*>(made)) {
        tree->header()->setSectionsClickable((style & LVS_NOSORTHEADER) == 0);
        QObject::connect(tree->header(), &QHeaderView::sectionClicked, this, [this](int section) {
            NMLISTVIEW clicked{};
            clicked.iItem = -1;
            clicked.iSubItem = section;
            notify(clicked.hdr, LVN_COLUMNCLICK);
        });
    }
}

ListViewWindow::~ListViewWindow() {
    if (!widget.isNull())
        view().setModel(nullptr);
}

void ListViewWindow::activate(UINT code, int row) {
    NMITEMACTIVATE item{};
    item.iItem = row;
    if (code == NM_DBLCLK)
        notify(item.hdr, LVN_ITEMACTIVATE);
    if (!dying)
        notify(item.hdr, code);
}

// Of no row (-1) beside the rows.
bool ListViewWindow::tellRightClick(QPoint onScreen) {
    const QPoint at = view().viewport()->mapFromGlobal(onScreen);
    NMITEMACTIVATE item{};
    item.iItem = view().indexAt(at).row();
    item.ptAction = {at.x(), at.y()};
    return notify(item.hdr, NM_RCLICK) != 0;
}

QPoint ListViewWindow::contextPlace() const {
    const QRect row = view().visualRect(view().currentIndex());
    return row.isEmpty() ? HWND__::contextPlace() : view().viewport()->mapToGlobal(row.center());
}

// What lost the selection is told first.
void ListViewWindow::selectionChanged(const QItemSelection& now, const QItemSelection& before) {
    const auto tell = [this](const QItemSelection& rows, bool selected) {
        for (const QModelIndex& at : rows.indexes()) {
            if (at.column() != 0 || dying)
                continue;
            NMLISTVIEW change{};
            change.iItem = at.row();
            change.uChanged = LVIF_STATE;
            change.uNewState = selected ? LVIS_SELECTED : 0;
            change.uOldState = selected ? 0 : LVIS_SELECTED;
            if (!asksForItems() && static_cast<std::size_t>(at.row()) < model_.items.size())
                change.lParam = model_.items[static_cast<std::size_t>(at.row())].data;
            notify(change.hdr, LVN_ITEMCHANGED);
        }
    };
    tell(before, false);
    tell(now, true);
}

std::wstring ListViewWindow::itemText(int row, int column) const {
    if (!asksForItems()) {
        const auto at = static_cast<std::size_t>(row), sub = static_cast<std::size_t>(column);
        return at < model_.items.size() && sub < model_.items[at].texts.size() ? model_.items[at].texts[sub]
                                                                               : std::wstring();
    }
    wchar_t buffer[512] = {};
    NMLVDISPINFO asked{};
    asked.item.mask = LVIF_TEXT;
    asked.item.iItem = row;
    asked.item.iSubItem = column;
    asked.item.pszText = buffer;
    asked.item.cchTextMax = 512;
    const_cast<ListViewWindow*>(this)->notify(asked.hdr, LVN_GETDISPINFO);
    return asked.item.pszText != nullptr ? asked.item.pszText : L"";
}

bool ListViewWindow::isSelected(int row) const {
    return view().selectionModel()->isSelected(model_.index(row, 0));
}

std::vector<int> ListViewWindow::selected() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : view().selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void ListViewWindow::forget(int first, int last) {
    view().selectionModel()->select(
        QItemSelection(model_.index(first, 0), model_.index(last, model_.columnCount() - 1)),
        QItemSelectionModel::Deselect);
    if (focused() >= first && focused() <= last)
        view().selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
}

int ListViewWindow::focused() const {
    return view().currentIndex().row();
}

void ListViewWindow::setFocused(int row) {
    view().selectionModel()->setCurrentIndex(model_.index(row, 0), QItemSelectionModel::NoUpdate);
}

void ListViewWindow::setState(int row, UINT state, UINT mask) {
    const int count = model_.rowCount();
    if (row >= count || count == 0)
        return;
    if ((mask & LVIS_SELECTED) != 0) {
        const bool on = (state & LVIS_SELECTED) != 0;
        const int first = row < 0 ? 0 : row, last = row < 0 ? count - 1 : row;
        const QItemSelection rows(model_.index(first, 0), model_.index(last, model_.columnCount() - 1));
        const bool single = (style & LVS_SINGLESEL) != 0;
        view().selectionModel()->select(rows, !on      ? QItemSelectionModel::Deselect
                                              : single ? QItemSelectionModel::ClearAndSelect
                                                       : QItemSelectionModel::Select);
    }
    if ((mask & LVIS_FOCUSED) != 0 && (state & LVIS_FOCUSED) != 0 && row >= 0)
        setFocused(row);
}

void ListViewWindow::setCellSize(QSize size) {
    cell = size;
    if (auto* pictures = qobject_cast<QListView*>(widget.data()))
        pictures->setGridSize(size);
}

void ListViewWindow::setColumnWidth(int column, int width) {
    auto* tree = qobject_cast<QTreeView*>(widget.data());
    if (tree == nullptr || column < 0 || column >= model_.columnCount())
        return;
    if (width < 0)
        tree->resizeColumnToContents(column);
    else
        tree->setColumnWidth(column, width);
}

int ListViewWindow::columnWidth(int column) const {
    const auto* tree = qobject_cast<const QTreeView*>(widget.data());
    return tree != nullptr ? tree->columnWidth(column) : 0;
}

void ListViewWindow::setExtended(DWORD value) {
    extended = value;
    view().viewport()->update();
}

bool ListViewWindow::drawByClass(QPainter& painter, const QRect& rect, int row, bool selected) {
    if (parent == nullptr || dying)
        return false;
    painter.save();
    CDC context;
    context.Attach(newContext(&painter));
    NMLVCUSTOMDRAW item{};
    item.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
    item.nmcd.hdc = context.m_hDC;
    item.nmcd.rc = toRect(rect);
    item.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
    item.nmcd.uItemState =
        (selected ? CDIS_SELECTED : 0) | (row == focused() && view().hasFocus() ? CDIS_FOCUS : 0);
    if (!asksForItems())
        item.nmcd.lItemlParam = model_.items[static_cast<std::size_t>(row)].data;
    const LRESULT result = notify(item.nmcd.hdr, NM_CUSTOMDRAW);
    painter.restore();
    return (result & CDRF_SKIPDEFAULT) != 0;
}

LRESULT ListViewWindow::defaultProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SETREDRAW) {
        widget->setUpdatesEnabled(wParam != 0);
        return 0;
    }
    return HWND__::defaultProc(message, wParam, lParam);
}

std::wstring ListViewWindow::scriptSelect(const std::vector<int>& items) {
    const int count = model_.rowCount();
    for (const int item : items)
        if (item < 0 || item >= count)
            return kind() + L"没有第 " + std::to_wstring(item) + L" 项（从 0 数起，共 " +
                   std::to_wstring(count) + L" 项）";
    if (items.size() > 1 && (style & LVS_SINGLESEL) != 0)
        return kind() + L"只能选一项";
    QItemSelection selection;
    for (const int item : items)
        selection.select(model_.index(item, 0), model_.index(item, model_.columnCount() - 1));
    if (!items.empty())
        setFocused(items.back());
    view().selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!items.empty())
        view().scrollTo(model_.index(items.back(), 0));
    return {};
}

std::wstring ListViewWindow::scriptSet(const std::wstring& value) {
    for (int row = 0; row < model_.rowCount(); ++row)
        if (itemText(row, 0) == value)
            return scriptSelect({row});
    return kind() + L"中没有“" + value + L"”";
}

// Twice on the item that is selected.
std::wstring ListViewWindow::scriptClick() {
    const std::vector<int> rows = selected();
    if (rows.empty())
        return kind() + L"没有选中的项";
    activate(NM_CLICK, rows.front());
    if (!dying)
        activate(NM_DBLCLK, rows.front());
    return {};
}

std::wstring ListViewWindow::scriptGet() const {
    std::wstring text;
    for (const int row : selected())
        text += (text.empty() ? L"" : L"; ") + itemText(row, 0);
    return text;
}

bool ListViewWindow::filter(QEvent* event) {
    const bool done = HWND__::filter(event);
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        notify(event->type() == QEvent::FocusIn ? NM_SETFOCUS : NM_KILLFOCUS);
    return done;
}

HWND makeListView(const WindowSpec& spec) {
    return new ListViewWindow(newView(spec), spec);
}

} // namespace host
