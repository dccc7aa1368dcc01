// The classes of the standard controls over their widgets.
#include "host/mfc/controls.h"

#include "host/mfc/listctrl.h"
#include "host/mfc/widgets/buttons.h"
#include "host/mfc/widgets/combos.h"
#include "host/mfc/widgets/context.h"
#include "host/mfc/widgets/edits.h"
#include "host/mfc/widgets/lists.h"
#include "host/mfc/widgets/listview.h"
#include "host/mfc/widgets/spin.h"

#include <cwchar>

namespace {

template <class Window>
Window* as(const CWnd* control) {
    return control->m_hWnd != nullptr && !control->m_hWnd->dying ? dynamic_cast<Window*>(control->m_hWnd)
                                                                 : nullptr;
}

host::EditWindow* editOf(const CWnd* control) {
    return as<host::EditWindow>(control);
}
host::ComboWindow* comboOf(const CWnd* control) {
    return as<host::ComboWindow>(control);
}
host::ListBoxWindow* listOf(const CWnd* control) {
    return as<host::ListBoxWindow>(control);
}

bool hasRow(const host::ComboWindow* combo, int index) {
    return combo != nullptr && index >= 0 && index < combo->combo().count();
}
bool hasRow(const host::ListBoxWindow* list, int index) {
    return list != nullptr && index >= 0 && index < list->list().count();
}

int copyOut(const std::wstring& text, LPTSTR to) {
    std::wmemcpy(to, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

} // namespace

namespace host {

void setStaticPicture(HWND label, const QPixmap& picture);

CWnd* temporaryWindow(HWND window) {
    struct Plain : CWnd {};
    if (!window->temporary) {
        std::unique_ptr<CWnd>& made = window->temporary;
        if (dynamic_cast<EditWindow*>(window) != nullptr)
            made = std::make_unique<CEdit>();
        else if (dynamic_cast<ButtonWindow*>(window) != nullptr)
            made = std::make_unique<CButton>();
        else if (dynamic_cast<ComboWindow*>(window) != nullptr)
            made = std::make_unique<CComboBox>();
        else if (dynamic_cast<ListBoxWindow*>(window) != nullptr)
            made = std::make_unique<CListBox>();
        else if (dynamic_cast<ListViewWindow*>(window) != nullptr)
            made = std::make_unique<CListCtrl>();
        else if (dynamic_cast<SpinWindow*>(window) != nullptr)
            made = std::make_unique<CSpinButtonCtrl>();
        else if (window->kind() == L"标签")
            made = std::make_unique<CStatic>();
        else
            made = std::make_unique<Plain>();
        made->m_hWnd = window;
    }
    return window->temporary.get();
}

} // namespace host

BOOL CStatic::Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"Static", text, style, rect, parent, id);
}
HICON CStatic::SetIcon(HICON icon) {
    host::setStaticPicture(m_hWnd, host::iconPicture(icon));
    return nullptr;
}
HBITMAP CStatic::SetBitmap(HBITMAP bitmap) {
    host::setStaticPicture(m_hWnd, QPixmap::fromImage(host::imageOf(bitmap)));
    return nullptr;
}

BOOL CButton::Create(LPCTSTR text, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"Button", text, style, rect, parent, id);
}
int CButton::GetCheck() const {
    return host::checkOf(m_hWnd);
}
void CButton::SetCheck(int check) {
    host::setCheck(m_hWnd, check);
}
UINT CButton::GetButtonStyle() const {
    return GetStyle() & BS_TYPEMASK;
}
void CButton::SetButtonStyle(UINT style, BOOL) {
    if (m_hWnd != nullptr) {
        m_hWnd->style = (m_hWnd->style & ~BS_TYPEMASK) | (style & BS_TYPEMASK);
        host::setDefault(m_hWnd, (style & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
    }
}
HICON CButton::SetIcon(HICON icon) {
    if (auto* button = as<host::ButtonWindow>(this))
        button->button().setIcon(QIcon(host::iconPicture(icon)));
    return nullptr;
}
HBITMAP CButton::SetBitmap(HBITMAP bitmap) {
    if (auto* button = as<host::ButtonWindow>(this))
        button->button().setIcon(QIcon(QPixmap::fromImage(host::imageOf(bitmap))));
    return nullptr;
}
BOOL CButton::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (message != WM_DRAWITEM)
        return CWnd::OnChildNotify(message, wParam, lParam, result);
    DrawItem(reinterpret_cast<LPDRAWITEMSTRUCT>(lParam));
    return TRUE;
}

BOOL CEdit::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"Edit", L"", style, rect, parent, id);
}
void CEdit::SetSel(int start, int end, BOOL) {
    SendMessage(EM_SETSEL, static_cast<WPARAM>(start), end);
}
void CEdit::SetSel(DWORD selection, BOOL noScroll) {
    SetSel(static_cast<SHORT>(LOWORD(selection)), static_cast<SHORT>(HIWORD(selection)), noScroll);
}
void CEdit::GetSel(int& start, int& end) const {
    start = end = 0;
    if (const host::EditWindow* edit = editOf(this))
        std::tie(start, end) = edit->selection();
}
DWORD CEdit::GetSel() const {
    return static_cast<DWORD>(SendMessage(EM_GETSEL));
}
void CEdit::ReplaceSel(LPCTSTR text, BOOL) {
    if (host::EditWindow* edit = editOf(this))
        edit->replaceSelection(text);
}
void CEdit::SetLimitText(UINT most) {
    SendMessage(EM_LIMITTEXT, most);
}
BOOL CEdit::SetReadOnly(BOOL readOnly) {
    return static_cast<BOOL>(SendMessage(EM_SETREADONLY, static_cast<WPARAM>(readOnly)));
}
BOOL CEdit::GetModify() const {
    const host::EditWindow* edit = editOf(this);
    return edit != nullptr && edit->modified ? TRUE : FALSE;
}
void CEdit::SetModify(BOOL modified) {
    if (host::EditWindow* edit = editOf(this))
        edit->modified = modified != FALSE;
}
int CEdit::GetLineCount() const {
    const host::EditWindow* edit = editOf(this);
    return edit != nullptr && edit->lines() != nullptr ? edit->lines()->blockCount() : 1;
}
void CEdit::SetPasswordChar(TCHAR character) {
    if (host::EditWindow* edit = editOf(this); edit != nullptr && edit->line() != nullptr)
        edit->line()->setEchoMode(character != 0 ? QLineEdit::Password : QLineEdit::Normal);
}
void CEdit::Clear() {
    ReplaceSel(L"");
}
void CEdit::Copy() {
    if (host::EditWindow* edit = editOf(this); edit != nullptr && edit->line() != nullptr)
        edit->line()->copy();
}
void CEdit::Cut() {
    Copy();
    Clear();
}
void CEdit::Paste() {
    if (host::EditWindow* edit = editOf(this); edit != nullptr && edit->line() != nullptr)
        edit->line()->paste();
}
BOOL CEdit::Undo() {
    host::EditWindow* edit = editOf(this);
    if (edit == nullptr || edit->line() == nullptr || !edit->line()->isUndoAvailable())
        return FALSE;
    edit->line()->undo();
    return TRUE;
}

BOOL CComboBox::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"ComboBox", L"", style, rect, parent, id);
}
int CComboBox::GetCount() const {
    const host::ComboWindow* combo = comboOf(this);
    return combo != nullptr ? combo->combo().count() : CB_ERR;
}
int CComboBox::GetCurSel() const {
    const host::ComboWindow* combo = comboOf(this);
    return combo != nullptr ? combo->combo().currentIndex() : CB_ERR;
}
int CComboBox::SetCurSel(int index) {
    host::ComboWindow* combo = comboOf(this);
    return combo != nullptr && combo->select(index) ? index : CB_ERR;
}
int CComboBox::AddString(LPCTSTR text) {
    host::ComboWindow* combo = comboOf(this);
    return combo != nullptr ? combo->add(text) : CB_ERR;
}
int CComboBox::InsertString(int index, LPCTSTR text) {
    host::ComboWindow* combo = comboOf(this);
    if (combo == nullptr || index > combo->combo().count())
        return CB_ERR;
    const QSignalBlocker silent(&combo->combo());
    const int at = index < 0 ? combo->combo().count() : index;
    const int selected = combo->combo().currentIndex();
    combo->combo().insertItem(at, host::toQt(text));
    combo->combo().setCurrentIndex(selected >= at ? selected + 1 : selected);
    return at;
}
int CComboBox::DeleteString(UINT index) {
    host::ComboWindow* combo = comboOf(this);
    if (!hasRow(combo, static_cast<int>(index)))
        return CB_ERR;
    const QSignalBlocker silent(&combo->combo());
    const bool selected = combo->combo().currentIndex() == static_cast<int>(index);
    combo->combo().removeItem(static_cast<int>(index));
    if (selected)
        combo->combo().setCurrentIndex(-1);
    return combo->combo().count();
}
void CComboBox::ResetContent() {
    if (host::ComboWindow* combo = comboOf(this)) {
        const QSignalBlocker silent(&combo->combo());
        combo->combo().clear();
    }
}
int CComboBox::FindString(int after, LPCTSTR start) const {
    const host::ComboWindow* combo = comboOf(this);
    return combo != nullptr ? combo->find(after, start, false) : CB_ERR;
}
int CComboBox::FindStringExact(int after, LPCTSTR text) const {
    const host::ComboWindow* combo = comboOf(this);
    return combo != nullptr ? combo->find(after, text, true) : CB_ERR;
}
int CComboBox::SelectString(int after, LPCTSTR start) {
    const int found = FindString(after, start);
    return found == CB_ERR ? CB_ERR : SetCurSel(found);
}
int CComboBox::GetLBText(int index, LPTSTR text) const {
    const host::ComboWindow* combo = comboOf(this);
    return hasRow(combo, index) ? copyOut(host::fromQt(combo->combo().itemText(index)), text) : CB_ERR;
}
void CComboBox::GetLBText(int index, CString& text) const {
    const host::ComboWindow* combo = comboOf(this);
    text = hasRow(combo, index) ? host::fromQt(combo->combo().itemText(index)).c_str() : L"";
}
int CComboBox::GetLBTextLen(int index) const {
    CString text;
    GetLBText(index, text);
    return hasRow(comboOf(this), index) ? text.GetLength() : CB_ERR;
}
DWORD_PTR CComboBox::GetItemData(int index) const {
    const host::ComboWindow* combo = comboOf(this);
    return hasRow(combo, index) ? combo->combo().itemData(index).toULongLong()
                                : static_cast<DWORD_PTR>(CB_ERR);
}
int CComboBox::SetItemData(int index, DWORD_PTR data) {
    host::ComboWindow* combo = comboOf(this);
    if (!hasRow(combo, index))
        return CB_ERR;
    combo->combo().setItemData(index, static_cast<qulonglong>(data));
    return 0;
}
BOOL CComboBox::LimitText(int most) {
    const host::ComboWindow* combo = comboOf(this);
    if (combo != nullptr && combo->isEditable())
        combo->combo().lineEdit()->setMaxLength(most > 0 ? most : 32767);
    return TRUE;
}
DWORD CComboBox::GetEditSel() const {
    const host::ComboWindow* combo = comboOf(this);
    if (combo == nullptr || !combo->isEditable())
        return static_cast<DWORD>(CB_ERR);
    const QLineEdit& edit = *combo->combo().lineEdit();
    const int start = edit.hasSelectedText() ? edit.selectionStart() : edit.cursorPosition();
    return static_cast<DWORD>(
        MAKELONG(static_cast<unsigned>(start), static_cast<unsigned>(start + edit.selectedText().size())));
}
BOOL CComboBox::SetEditSel(int start, int end) {
    const host::ComboWindow* combo = comboOf(this);
    if (combo == nullptr || !combo->isEditable())
        return FALSE;
    QLineEdit& edit = *combo->combo().lineEdit();
    const int to = end < 0 ? static_cast<int>(edit.text().size()) : end;
    edit.setSelection(start, to - start);
    return TRUE;
}
void CComboBox::ShowDropDown(BOOL show) {
    if (host::ComboWindow* combo = comboOf(this))
        show != FALSE ? combo->combo().showPopup() : combo->combo().hidePopup();
}
BOOL CComboBox::GetDroppedState() const {
    const host::ComboWindow* combo = comboOf(this);
    return combo != nullptr && combo->isDropped() ? TRUE : FALSE;
}
int CComboBox::SetDroppedWidth(UINT width) {
    if (host::ComboWindow* combo = comboOf(this))
        combo->setDroppedWidth(static_cast<int>(width));
    return static_cast<int>(width);
}

BOOL CListBox::Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
    return CWnd::Create(L"ListBox", L"", style, rect, parent, id);
}
int CListBox::GetCount() const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? list->list().count() : LB_ERR;
}
int CListBox::GetCurSel() const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? list->current() : LB_ERR;
}
int CListBox::SetCurSel(int index) {
    host::ListBoxWindow* list = listOf(this);
    return list != nullptr && list->select(index) ? index : LB_ERR;
}
int CListBox::GetSel(int index) const {
    const host::ListBoxWindow* list = listOf(this);
    return !hasRow(list, index) ? LB_ERR : list->list().item(index)->isSelected() ? 1 : 0;
}
int CListBox::SetSel(int index, BOOL select) {
    host::ListBoxWindow* list = listOf(this);
    if (list == nullptr || !list->isMultiple() || (index >= 0 && !hasRow(list, index)))
        return LB_ERR;
    list->setSelected(index, select != FALSE);
    return 0;
}
int CListBox::GetSelCount() const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr && list->isMultiple() ? static_cast<int>(list->selected().size()) : LB_ERR;
}
int CListBox::GetSelItems(int most, int* indices) const {
    const host::ListBoxWindow* list = listOf(this);
    if (list == nullptr || !list->isMultiple())
        return LB_ERR;
    const std::vector<int> rows = list->selected();
    const std::size_t count = std::min(rows.size(), static_cast<std::size_t>(std::max(0, most)));
    std::copy_n(rows.begin(), count, indices);
    return static_cast<int>(count);
}
int CListBox::AddString(LPCTSTR text) {
    host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? list->add(text) : LB_ERR;
}
int CListBox::InsertString(int index, LPCTSTR text) {
    host::ListBoxWindow* list = listOf(this);
    return list != nullptr && index <= list->list().count() ? list->insert(index, text) : LB_ERR;
}
int CListBox::DeleteString(UINT index) {
    host::ListBoxWindow* list = listOf(this);
    if (!hasRow(list, static_cast<int>(index)))
        return LB_ERR;
    const QSignalBlocker silent(&list->list());
    delete list->list().takeItem(static_cast<int>(index));
    return list->list().count();
}
void CListBox::ResetContent() {
    if (host::ListBoxWindow* list = listOf(this)) {
        const QSignalBlocker silent(&list->list());
        list->list().clear();
    }
}
int CListBox::FindString(int after, LPCTSTR start) const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? list->find(after, start, false) : LB_ERR;
}
int CListBox::FindStringExact(int after, LPCTSTR text) const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? list->find(after, text, true) : LB_ERR;
}
int CListBox::SelectString(int after, LPCTSTR start) {
    const int found = FindString(after, start);
    return found == LB_ERR ? LB_ERR : SetCurSel(found);
}
int CListBox::GetText(int index, LPTSTR text) const {
    const host::ListBoxWindow* list = listOf(this);
    return hasRow(list, index) ? copyOut(host::fromQt(list->list().item(index)->text()), text) : LB_ERR;
}
void CListBox::GetText(int index, CString& text) const {
    const host::ListBoxWindow* list = listOf(this);
    text = hasRow(list, index) ? host::fromQt(list->list().item(index)->text()).c_str() : L"";
}
int CListBox::GetTextLen(int index) const {
    CString text;
    GetText(index, text);
    return hasRow(listOf(this), index) ? text.GetLength() : LB_ERR;
}
DWORD_PTR CListBox::GetItemData(int index) const {
    const host::ListBoxWindow* list = listOf(this);
    return hasRow(list, index) ? list->list().item(index)->data(Qt::UserRole).toULongLong()
                               : static_cast<DWORD_PTR>(LB_ERR);
}
int CListBox::SetItemData(int index, DWORD_PTR data) {
    host::ListBoxWindow* list = listOf(this);
    if (!hasRow(list, index))
        return LB_ERR;
    list->list().item(index)->setData(Qt::UserRole, static_cast<qulonglong>(data));
    return 0;
}
int CListBox::GetTopIndex() const {
    const host::ListBoxWindow* list = listOf(this);
    return list != nullptr ? std::max(0, list->list().indexAt(QPoint(2, 2)).row()) : 0;
}
int CListBox::SetTopIndex(int index) {
    host::ListBoxWindow* list = listOf(this);
    if (!hasRow(list, index))
        return LB_ERR;
    list->list().scrollToItem(list->list().item(index), QAbstractItemView::PositionAtTop);
    return 0;
}

void CSpinButtonCtrl::SetRange32(int least, int most) {
    if (auto* spin = as<host::SpinWindow>(this)) {
        spin->least = least;
        spin->most = most;
    }
}
void CSpinButtonCtrl::GetRange32(int& least, int& most) const {
    const auto* spin = as<host::SpinWindow>(this);
    least = spin != nullptr ? spin->least : 0;
    most = spin != nullptr ? spin->most : 0;
}
int CSpinButtonCtrl::SetPos(int position) {
    auto* spin = as<host::SpinWindow>(this);
    if (spin == nullptr)
        return 0;
    const int before = spin->position();
    spin->setPosition(position);
    return before;
}
int CSpinButtonCtrl::GetPos() const {
    const auto* spin = as<host::SpinWindow>(this);
    return spin != nullptr ? spin->position() : 0;
}
CWnd* CSpinButtonCtrl::SetBuddy(CWnd* buddy) {
    CWnd* const before = GetBuddy();
    host::attachBuddy(m_hWnd, buddy != nullptr ? buddy->m_hWnd : nullptr);
    return before;
}
CWnd* CSpinButtonCtrl::GetBuddy() const {
    const auto* spin = as<host::SpinWindow>(this);
    return spin != nullptr ? FromHandle(spin->buddy) : nullptr;
}
