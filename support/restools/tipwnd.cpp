// The tip beside the cursor.
#include "restools/tipwnd.h"

#include "restools/dpi.h"

namespace {

constexpr int margin = 4;    // around the text
constexpr int distance = 16; // from the cursor

} // namespace

BEGIN_MESSAGE_MAP(CTipWnd, CWnd)
ON_WM_PAINT()
END_MESSAGE_MAP()

bool CTipWnd::make() {
    if (m_hWnd != nullptr) {
        return true;
    }
    CWnd* owner = mOwner != nullptr ? mOwner : acedGetAcadFrame();
    return CreateEx(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, AfxRegisterWndClass(CS_SAVEBITS),
                    L"", WS_POPUP, 0, 0, 1, 1, owner->GetSafeHwnd(), nullptr) != FALSE;
}

CSize CTipWnd::measure() {
    if (mFont.GetSafeHandle() == nullptr) {
        mFont.CreateFont(-CalculateByDPI(mTextHeight), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0,
                         0, L"Microsoft YaHei UI");
    }
    CClientDC context(this);
    CFont* before = context.SelectObject(&mFont);
    const CSize text = context.GetTextExtent(mText);
    context.SelectObject(before);
    return text + CSize(2 * margin, margin);
}

CRect CTipWnd::Place(CPoint cursor, CSize screen) {
    const CSize size = measure();
    CPoint corner(cursor.x + distance, cursor.y + distance);
    if (corner.x + size.cx > screen.cx) {
        corner.x = cursor.x - distance - size.cx;
    }
    if (corner.y + size.cy > screen.cy) {
        corner.y = cursor.y - distance - size.cy;
    }
    return CRect(corner, size);
}

void CTipWnd::Show(const CString& text) {
    // Without a window of the host there is nothing to point at.
    if (acedGetAcadFrame()->GetSafeHwnd() == nullptr || !make()) {
        mText = text;
        return;
    }
    mText = text;
    CPoint cursor;
    GetCursorPos(&cursor);
    MoveWindow(Place(cursor, CSize(GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN))));
    ShowWindow(SW_SHOWNOACTIVATE);
    RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

void CTipWnd::Hide() {
    ShowWindow(SW_HIDE);
}

void CTipWnd::OnPaint() {
    CPaintDC context(this);
    CRect client;
    GetClientRect(client);
    context.FillSolidRect(client, mBackground);
    context.Draw3dRect(client, GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNSHADOW));
    CFont* before = context.SelectObject(&mFont);
    context.SetBkMode(TRANSPARENT);
    client.DeflateRect(margin, 0);
    context.DrawText(mText, client, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    context.SelectObject(before);
}
