// Controls follow the sides of their dialog.
#include "restools/resizedialog.h"

BEGIN_MESSAGE_MAP(CResizeDialog, CDialog)
ON_WM_SIZE()
ON_WM_GETMINMAXINFO()
END_MESSAGE_MAP()

BOOL CResizeDialog::OnInitDialog() {
    CDialog::OnInitDialog();
    CRect client, window;
    GetClientRect(client);
    GetWindowRect(window);
    mClient = client.Size();
    mSmallest = window.Size();
    return TRUE;
}

void CResizeDialog::Anchor(int control, unsigned sides) {
    const CWnd* window = GetDlgItem(control);
    if (window == nullptr) {
        return;
    }
    CRect place;
    window->GetWindowRect(place);
    ScreenToClient(place);
    mAnchored.push_back({control, sides, place});
}

void CResizeDialog::OnSize(UINT kind, int width, int height) {
    CDialog::OnSize(kind, width, height);
    const int wider = width - mClient.cx;
    const int higher = height - mClient.cy;
    for (const Anchored& anchored : mAnchored) {
        CRect place = anchored.place;
        const auto follows = [&](Sides side) { return (anchored.sides & side) != 0; };
        place.left += follows(right) && !follows(left) ? wider : 0;
        place.right += follows(right) ? wider : 0;
        place.top += follows(bottom) && !follows(top) ? higher : 0;
        place.bottom += follows(bottom) ? higher : 0;
        if (CWnd* control = GetDlgItem(anchored.control)) {
            control->MoveWindow(place);
        }
    }
}

void CResizeDialog::OnGetMinMaxInfo(MINMAXINFO* limits) {
    CDialog::OnGetMinMaxInfo(limits);
    if (mSmallest.cx > 0) {
        limits->ptMinTrackSize = {mSmallest.cx, mSmallest.cy};
    }
}
