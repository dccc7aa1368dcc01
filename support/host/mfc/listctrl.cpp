// CListCtrl and its pictures.
#include "host/mfc/listctrl.h"

#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/listview.h"

#include <QScreen>

namespace {

host::ListViewWindow* viewOf(const CListCtrl* list) {
    return list->m_hWnd != nullptr && !list->m_hWnd->dying ? dynamic_cast<host::ListViewWindow*>(list->m_hWnd)
                                                           : nullptr;
}

host::ListItem* itemOf(const CListCtrl* list, int index) {
    host::ListViewWindow* view = viewOf(list);
    const bool there =
        view != nullptr && index >= 0 && static_cast<std::size_t>(index) < view->model().items.size();
    return there ? &view->model().items[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace

BOOL CImageList::Create(int width, int height, UINT, int, int) {
    size_ = CSize(width, height);
    images_.clear();
    return TRUE;
}
int CImageList::Add(CBitmap* bitmap, COLORREF) {
    auto copy = std::make_shared<CBitmap>();
    copy->Attach(new host::GdiObject{host::imageOf(*bitmap)});
    images_.push_back(std::move(copy));
    return GetImageCount() - 1;
}
int CImageList::Add(HICON icon) {
    auto copy = std::make_shared<CBitmap>();
    copy->Attach(new host::GdiObject{host::iconPicture(icon).toImage()});
    images_.push_back(std::move(copy));
    return GetImageCount() - 1;
}
HBITMAP CImageList::image(int index) const {
    return index >= 0 && index < GetImageCount()
               ? static_cast<HBITMAP>(*images_[static_cast<std::size_t>(index)])
               : nullptr;
}

BOOL CListCtrl::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"SysListView32", L"", style, rect, parent, id);
}

DWORD CListCtrl::SetExtendedStyle(DWORD style) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return 0;
    const DWORD before = view->extended;
    view->setExtended(style);
    return before;
}
DWORD CListCtrl::GetExtendedStyle() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->extended : 0;
}

int CListCtrl::InsertColumn(int index, LPCTSTR heading, int format, int width, int) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return -1;
    const int at = std::clamp(index, 0, static_cast<int>(view->model().columns.size()));
    view->model().insertColumn(at, {heading != nullptr ? heading : L"", format});
    if (width >= 0)
        view->setColumnWidth(at, width);
    return at;
}
int CListCtrl::InsertColumn(int index, const LVCOLUMN* column) {
    return InsertColumn(index, (column->mask & LVCF_TEXT) != 0 ? column->pszText : L"",
                        (column->mask & LVCF_FMT) != 0 ? column->fmt : LVCFMT_LEFT,
                        (column->mask & LVCF_WIDTH) != 0 ? column->cx : -1);
}
BOOL CListCtrl::DeleteColumn(int index) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index < 0 || index >= columnCount())
        return FALSE;
    view->model().removeColumn(index);
    return TRUE;
}
int CListCtrl::columnCount() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? static_cast<int>(view->model().columns.size()) : 0;
}
int CListCtrl::GetColumnWidth(int index) const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->columnWidth(index) : 0;
}
BOOL CListCtrl::SetColumnWidth(int index, int width) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return FALSE;
    view->setColumnWidth(index, width);
    return TRUE;
}

int CListCtrl::GetItemCount() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->model().rowCount() : 0;
}
void CListCtrl::SetItemCount(int count) {
    host::ListViewWindow* view = viewOf(this);
    if (view != nullptr && view->asksForItems())
        view->model().setCount(count);
}
BOOL CListCtrl::SetItemCountEx(int count, DWORD) {
    SetItemCount(count);
    return TRUE;
}
int CListCtrl::InsertItem(int index, LPCTSTR text) {
    return InsertItem(index, text, -1);
}
int CListCtrl::InsertItem(int index, LPCTSTR text, int image) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || view->asksForItems())
        return -1;
    const int at = std::clamp(index, 0, GetItemCount());
    host::ListItem item;
    item.texts = {text != nullptr ? text : L""};
    item.image = image;
    view->model().insert(at, std::move(item));
    return at;
}
int CListCtrl::InsertItem(const LVITEM* item) {
    const int at = InsertItem(item->iItem, (item->mask & LVIF_TEXT) != 0 ? item->pszText : L"",
                              (item->mask & LVIF_IMAGE) != 0 ? item->iImage : -1);
    if (at >= 0 && (item->mask & LVIF_PARAM) != 0)
        SetItemData(at, static_cast<DWORD_PTR>(item->lParam));
    if (at >= 0 && (item->mask & LVIF_STATE) != 0)
        SetItemState(at, item->state, item->stateMask);
    return at;
}
BOOL CListCtrl::DeleteItem(int index) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index < 0 || index >= GetItemCount())
        return FALSE;
    if (view->asksForItems())
        view->model().setCount(GetItemCount() - 1);
    else
        view->model().remove(index);
    return TRUE;
}
BOOL CListCtrl::DeleteAllItems() {
    if (host::ListViewWindow* view = viewOf(this))
        view->model().clear();
    return TRUE;
}

BOOL CListCtrl::SetItemText(int index, int subItem, LPCTSTR text) {
    host::ListItem* item = itemOf(this, index);
    if (item == nullptr || subItem < 0)
        return FALSE;
    const auto sub = static_cast<std::size_t>(subItem);
    if (item->texts.size() <= sub)
        item->texts.resize(sub + 1);
    item->texts[sub] = text != nullptr ? text : L"";
    viewOf(this)->model().changed(index, index);
    return TRUE;
}
CString CListCtrl::GetItemText(int index, int subItem) const {
    const host::ListViewWindow* view = viewOf(this);
    const bool there = view != nullptr && index >= 0 && index < view->model().rowCount();
    return there ? CString(view->itemText(index, subItem).c_str()) : CString();
}

BOOL CListCtrl::SetItem(const LVITEM* item) {
    host::ListItem* held = itemOf(this, item->iItem);
    if (held == nullptr)
        return FALSE;
    if ((item->mask & LVIF_TEXT) != 0)
        SetItemText(item->iItem, item->iSubItem, item->pszText);
    if ((item->mask & LVIF_IMAGE) != 0)
        held->image = item->iImage;
    if ((item->mask & LVIF_PARAM) != 0)
        held->data = item->lParam;
    if ((item->mask & LVIF_STATE) != 0)
        SetItemState(item->iItem, item->state, item->stateMask);
    return TRUE;
}
BOOL CListCtrl::GetItem(LVITEM* item) const {
    if (item->iItem < 0 || item->iItem >= GetItemCount())
        return FALSE;
    if ((item->mask & LVIF_TEXT) != 0 && item->pszText != nullptr && item->cchTextMax > 0) {
        const CString text = GetItemText(item->iItem, item->iSubItem).Left(item->cchTextMax - 1);
        std::copy_n(text.GetString(), text.GetLength() + 1, item->pszText);
    }
    const host::ListItem* held = itemOf(this, item->iItem);
    if (held != nullptr) {
        item->iImage = held->image;
        item->lParam = held->data;
    }
    item->state = GetItemState(item->iItem, item->stateMask);
    return TRUE;
}
BOOL CListCtrl::SetItemData(int index, DWORD_PTR data) {
    host::ListItem* item = itemOf(this, index);
    if (item == nullptr)
        return FALSE;
    item->data = static_cast<LPARAM>(data);
    return TRUE;
}
DWORD_PTR CListCtrl::GetItemData(int index) const {
    const host::ListItem* item = itemOf(this, index);
    return item != nullptr ? static_cast<DWORD_PTR>(item->data) : 0;
}

BOOL CListCtrl::SetItemState(int index, UINT state, UINT mask) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index >= GetItemCount())
        return FALSE;
    view->setState(index, state, mask);
    return TRUE;
}
UINT CListCtrl::GetItemState(int index, UINT mask) const {
    const host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index < 0 || index >= GetItemCount())
        return 0;
    return ((view->isSelected(index) ? LVIS_SELECTED : 0) | (view->focused() == index ? LVIS_FOCUSED : 0)) &
           mask;
}
int CListCtrl::GetNextItem(int after, int flags) const {
    const host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return -1;
    if ((flags & LVNI_FOCUSED) != 0)
        return view->focused() > after ? view->focused() : -1;
    if ((flags & LVNI_SELECTED) == 0)
        return after + 1 < GetItemCount() ? after + 1 : -1;
    const std::vector<int> rows = view->selected();
    const auto next = std::ranges::upper_bound(rows, after);
    return next != rows.end() ? *next : -1;
}

// A position is the index of the item, from 1.
POSITION CListCtrl::GetFirstSelectedItemPosition() const {
    return reinterpret_cast<POSITION>(static_cast<UINT_PTR>(GetNextItem(-1, LVNI_SELECTED) + 1));
}
int CListCtrl::GetNextSelectedItem(POSITION& position) const {
    const int index = static_cast<int>(reinterpret_cast<UINT_PTR>(position)) - 1;
    position = reinterpret_cast<POSITION>(static_cast<UINT_PTR>(GetNextItem(index, LVNI_SELECTED) + 1));
    return index;
}
UINT CListCtrl::GetSelectedCount() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? static_cast<UINT>(view->selected().size()) : 0;
}
int CListCtrl::GetSelectionMark() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->focused() : -1;
}
int CListCtrl::SetSelectionMark(int index) {
    const int before = GetSelectionMark();
    if (host::ListViewWindow* view = viewOf(this))
        view->setFocused(index);
    return before;
}

BOOL CListCtrl::EnsureVisible(int index, BOOL) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index < 0 || index >= GetItemCount())
        return FALSE;
    view->view().scrollTo(view->model().index(index, 0));
    return TRUE;
}
BOOL CListCtrl::RedrawItems(int first, int last) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || first < 0 || last >= GetItemCount() || first > last)
        return FALSE;
    view->model().changed(first, last);
    return TRUE;
}
BOOL CListCtrl::Update(int index) {
    return RedrawItems(index, index);
}
BOOL CListCtrl::GetItemRect(int index, LPRECT rect, UINT) const {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr || index < 0 || index >= GetItemCount())
        return FALSE;
    *rect = host::toRect(view->view().visualRect(view->model().index(index, 0)));
    return TRUE;
}
int CListCtrl::HitTest(CPoint point, UINT*) const {
    host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->view().indexAt(QPoint(point.x, point.y)).row() : -1;
}

CImageList* CListCtrl::SetImageList(CImageList* images, int) {
    host::ListViewWindow* view = viewOf(this);
    CImageList* const before = view != nullptr ? view->images() : nullptr;
    if (view != nullptr)
        view->setImages(images);
    return before;
}
CSize CListCtrl::SetIconSpacing(int width, int height) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return {};
    const QSize before = view->cell;
    view->setCellSize(QSize(width, height));
    return {before.width(), before.height()};
}
COLORREF CListCtrl::GetBkColor() const {
    const host::ListViewWindow* view = viewOf(this);
    return view != nullptr ? view->backColor : GetSysColor(COLOR_WINDOW);
}
BOOL CListCtrl::SetBkColor(COLORREF color) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return FALSE;
    view->backColor = color;
    QPalette palette = view->view().palette();
    palette.setColor(QPalette::Base, host::toColor(color));
    view->view().setPalette(palette);
    return TRUE;
}
BOOL CListCtrl::SetTextColor(COLORREF color) {
    host::ListViewWindow* view = viewOf(this);
    if (view == nullptr)
        return FALSE;
    QPalette palette = view->view().palette();
    palette.setColor(QPalette::Text, host::toColor(color));
    view->view().setPalette(palette);
    return TRUE;
}
BOOL CListCtrl::SetTextBkColor(COLORREF color) {
    return SetBkColor(color);
}
