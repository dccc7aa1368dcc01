// The panel of widths and snap increments, and the key that toggles snap.
#include "drawing/linepara.h"

#include "drawing/widthpolyline.h"
#include "restools/ownmodule.h"
#include "restools/sysvar.h"
#include "services/commtools.h"

namespace {

constexpr double greatestWidth = 10.0;
constexpr double leastIncrement = 10.0;
constexpr double greatestIncrement = 10000.0;

/// The panel while it is open.
CLinePara*& openPanel() {
    static CLinePara* panel = nullptr;
    return panel;
}

/// The host toggles its snap mode by the same key, so the message goes on.
BOOL toggleSnapByKey(MSG* message) {
    if (message->message == WM_KEYDOWN && message->wParam == VK_F9 && openPanel() != nullptr) {
        int& useSnap = GetWidthPolylineSettings().useSnap;
        useSnap = useSnap != 0 ? 0 : 1;
        openPanel()->RefreshEnabling();
    }
    return FALSE;
}

} // namespace

BEGIN_MESSAGE_MAP(CLinePara, CDialog)
ON_EN_CHANGE(IDC_START_WIDTH, &CLinePara::OnValueChange)
ON_EN_CHANGE(IDC_END_WIDTH, &CLinePara::OnValueChange)
ON_EN_CHANGE(IDC_X_INCREMENT, &CLinePara::OnValueChange)
ON_EN_CHANGE(IDC_Y_INCREMENT, &CLinePara::OnValueChange)
ON_BN_CLICKED(IDC_APPLY_WIDTHS, &CLinePara::OnApply)
ON_BN_CLICKED(IDC_USE_SNAP, &CLinePara::OnUseSnap)
ON_MESSAGE(WM_ACAD_KEEPFOCUS, &CLinePara::OnKeepFocus)
END_MESSAGE_MAP()

void CLinePara::DoDataExchange(CDataExchange* exchange) {
    CDialog::DoDataExchange(exchange);
    // The check box counts whatever the numbers are.
    DDX_Check(exchange, IDC_USE_SNAP, mUseSnap);
    DDX_Text(exchange, IDC_START_WIDTH, mStartWidth);
    DDV_MinMaxDouble(exchange, mStartWidth, 0.0, greatestWidth);
    DDX_Text(exchange, IDC_END_WIDTH, mEndWidth);
    DDV_MinMaxDouble(exchange, mEndWidth, 0.0, greatestWidth);
    DDX_Text(exchange, IDC_X_INCREMENT, mXIncrement);
    DDV_MinMaxDouble(exchange, mXIncrement, leastIncrement, greatestIncrement);
    DDX_Text(exchange, IDC_Y_INCREMENT, mYIncrement);
    DDV_MinMaxDouble(exchange, mYIncrement, leastIncrement, greatestIncrement);
}

BOOL CLinePara::OnInitDialog() {
    CDialog::OnInitDialog();
    RefreshEnabling();
    const WidthPolylineSettings& settings = GetWidthPolylineSettings();
    mXIncrement = settings.xIncrement;
    mYIncrement = settings.yIncrement;
    ShowWidths();
    return TRUE;
}

void CLinePara::OnCancel() {
    acedGetAcadDwgView()->SetFocus();
}

void CLinePara::ShowWidths() {
    mStartWidth = GetWidthPolylineSettings().startWidth;
    mEndWidth = GetWidthPolylineSettings().endWidth;
    UpdateData(FALSE);
}

void CLinePara::RefreshEnabling() {
    mUseSnap = GetWidthPolylineSettings().useSnap;
    UpdateData(FALSE);
    for (const int id : {IDC_X_INCREMENT, IDC_Y_INCREMENT, IDC_X_INCREMENT_LABEL, IDC_Y_INCREMENT_LABEL}) {
        GetDlgItem(id)->EnableWindow(mUseSnap != 0);
    }
}

void CLinePara::OnValueChange() {
    // The controls tell of their first texts before the button is there.
    if (CWnd* apply = GetDlgItem(IDC_APPLY_WIDTHS)) {
        apply->EnableWindow(TRUE);
    }
}

void CLinePara::OnApply() {
    if (!UpdateData(TRUE)) {
        return;
    }
    WidthPolylineSettings& settings = GetWidthPolylineSettings();
    settings.startWidth = GetCOMMTOOLSSystemScale() * mStartWidth;
    settings.endWidth = GetCOMMTOOLSSystemScale() * mEndWidth;
    settings.xIncrement = mXIncrement;
    settings.yIncrement = mYIncrement;
    SetVar(L"SNAPUNIT", AcGePoint2d(mXIncrement, mYIncrement));
    GetDlgItem(IDC_APPLY_WIDTHS)->EnableWindow(FALSE);
    acedGetAcadDwgView()->SetFocus();
}

void CLinePara::OnUseSnap() {
    UpdateData(TRUE);
    GetWidthPolylineSettings().useSnap = mUseSnap;
    RefreshEnabling();
    SetVar(L"SNAPMODE", mUseSnap);
    if (CWnd* parent = GetParent()) {
        parent->SetFocus();
    }
}

CLineParaHolder::CLineParaHolder() : mPanel(std::make_unique<CLinePara>()) {
    const CAcModuleResourceOverride resources(GetOwnModule().instance);
    mPanel->Create(CLinePara::IDD, acedGetAcadFrame());
    mPanel->ShowWindow(SW_SHOW);
    openPanel() = mPanel.get();
    acedGetAcadDwgView()->SetFocus();
    acedRegisterFilterWinMsg(toggleSnapByKey);
}

CLineParaHolder::~CLineParaHolder() {
    acedRemoveFilterWinMsg(toggleSnapByKey);
    openPanel() = nullptr;
    mPanel->DestroyWindow();
}

void RefreshLinePara() {
    if (openPanel() != nullptr) {
        openPanel()->ShowWidths();
    }
}
