// Dialogs: building, keys, running and ending.
#include "host/mfc/dialog.h"

#include "host/mfc/controls.h"
#include "host/mfc/widgets/application.h"
#include "host/mfc/widgets/combos.h"
#include "host/mfc/widgets/dialogwindow.h"
#include "host/mfc/widgets/edits.h"

namespace {

// Where Tab would go first.
void focusFirst(CWnd& dialog) {
    if (CWnd* first = dialog.GetNextDlgTabItem(nullptr)) {
        first->SetFocus();
        if (dynamic_cast<host::EditWindow*>(first->m_hWnd) != nullptr)
            first->SendMessage(EM_SETSEL, 0, -1);
    }
}

// The control under the key takes Enter or Escape itself.
bool keepsKey(HWND control, WPARAM key) {
    if (const auto* combo = dynamic_cast<const host::ComboWindow*>(control))
        return combo->isDropped();
    if (const auto* edit = dynamic_cast<const host::EditWindow*>(control))
        return key == VK_RETURN && edit->lines() != nullptr && (edit->style & ES_WANTRETURN) != 0;
    return control != nullptr && (control->send(WM_GETDLGCODE) & DLGC_WANTALLKEYS) != 0;
}

} // namespace

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_MESSAGE(WM_INITDIALOG, &CDialog::initialize)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

CDialog::CDialog(LPCTSTR name, CWnd* parent) : m_lpszTemplateName(name), m_pParentWnd(parent) {}
CDialog::CDialog(UINT id, CWnd* parent) : CDialog(MAKEINTRESOURCE(id), parent) {
    m_nIDHelp = id;
}
CDialog::~CDialog() = default;

bool CDialog::build(LPCTSTR name, CWnd* parent, bool modal) {
    const std::optional<host::DialogTemplate> found = host::findDialogTemplate(name);
    if (!found)
        return false;
    return buildFrom(*found, parent, modal);
}

bool CDialog::buildFrom(const host::DialogTemplate& from, CWnd* parent, bool modal) {
    modal_ = modal;
    host::dialogOpened();
    host::DialogWindow* window =
        host::buildDialog(from, parent != nullptr ? parent->m_hWnd : nullptr, this, modal);
    PreSubclassWindow();
    bool setFocus = false;
    host::guarded([&] { setFocus = window->send(WM_INITDIALOG) != 0; });
    if (host::keptException()) {
        DestroyWindow();
        host::throwKept();
    }
    if (m_hWnd == nullptr)
        return false;
    window->updateLimits();
    if (setFocus)
        focusFirst(*this);
    return true;
}

INT_PTR CDialog::DoModal() {
    if (!build(m_lpszTemplateName, m_pParentWnd, true))
        return -1;
    const int result = host::runModal(*host::dialogOf(m_hWnd));
    DestroyWindow();
    host::processEvents();
    host::throwKept();
    return result;
}

BOOL CDialog::Create(LPCTSTR name, CWnd* parent) {
    if (!build(name, parent, false))
        return FALSE;
    if ((m_hWnd->style & WS_VISIBLE) != 0)
        ShowWindow(SW_SHOW);
    return TRUE;
}
BOOL CDialog::Create(UINT id, CWnd* parent) {
    return Create(MAKEINTRESOURCE(id), parent);
}
BOOL CDialog::CreateIndirect(LPCTSTR name, CWnd* parent) {
    return Create(name, parent);
}

LRESULT CDialog::initialize(WPARAM, LPARAM) {
    return OnInitDialog();
}

BOOL CDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (UpdateData(TRUE) != FALSE)
        EndDialog(IDOK);
}
void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::EndDialog(int result) {
    if (host::DialogWindow* window = host::dialogOf(m_hWnd)) {
        window->end(result);
        if (!window->modal)
            ShowWindow(SW_HIDE);
    }
}

void CDialog::NextDlgCtrl() const {
    if (CWnd* next = GetNextDlgTabItem(GetFocus()))
        next->SetFocus();
}
void CDialog::PrevDlgCtrl() const {
    if (CWnd* before = GetNextDlgTabItem(GetFocus(), TRUE))
        before->SetFocus();
}
void CDialog::GotoDlgCtrl(CWnd* control) {
    control->SetFocus();
    if (dynamic_cast<host::EditWindow*>(control->m_hWnd) != nullptr)
        control->SendMessage(EM_SETSEL, 0, -1);
}

void CDialog::SetDefID(UINT id) {
    if (host::DialogWindow* window = host::dialogOf(m_hWnd))
        window->setDefaultId(id);
}
DWORD CDialog::GetDefID() const {
    const host::DialogWindow* window = host::dialogOf(m_hWnd);
    return window != nullptr ? window->defaultId() : 0;
}

void CDialog::MapDialogRect(LPRECT rect) const {
    if (const host::DialogWindow* window = host::dialogOf(m_hWnd))
        *rect = host::toRect(
            window->units.pixels(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top));
}

BOOL CDialog::PreTranslateMessage(MSG* message) {
    if (CWnd::PreTranslateMessage(message) != FALSE)
        return TRUE;
    const bool isKey = message->wParam == VK_RETURN || message->wParam == VK_ESCAPE;
    // A dialog inside another leaves the keys to the outer one.
    if (message->message != WM_KEYDOWN || !isKey || m_hWnd == nullptr || (m_hWnd->style & WS_CHILD) != 0 ||
        keepsKey(message->hwnd, message->wParam))
        return FALSE;
    UINT id = IDCANCEL;
    if (message->wParam == VK_RETURN) {
        const bool onButton =
            message->hwnd != nullptr && message->hwnd != m_hWnd && host::isPushButton(message->hwnd);
        id = onButton ? message->hwnd->id : GetDefID() != 0 ? GetDefID() : IDOK;
    }
    const CWnd* button = GetDlgItem(static_cast<int>(id));
    if (button != nullptr && !button->IsWindowEnabled())
        return TRUE;
    SendMessage(WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                reinterpret_cast<LPARAM>(button != nullptr ? button->m_hWnd : nullptr));
    return TRUE;
}
