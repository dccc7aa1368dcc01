// The dialog that edits texts.
#include "text/texteditdialog.h"

#include "resources/resource.h"
#include "restools/arxobject.h"
#include "restools/icons.h"
#include "text/linktext.h"

#include <algorithm>

namespace {

constexpr double degreesPerHalfTurn = 180.0, halfTurn = 3.141592653589793;
constexpr std::array tickIds{IDC_EDIT_ALL_HEIGHTS, IDC_EDIT_ALL_WIDTHS, IDC_EDIT_ALL_ANGLES,
                             IDC_EDIT_ALL_OBLIQUES, IDC_EDIT_ALL_STYLES};

double toDegrees(double angle) {
    return angle * degreesPerHalfTurn / halfTurn;
}
double toRadians(double angle) {
    return angle * halfTurn / degreesPerHalfTurn;
}

TextProperties propertiesOf(const AcDbText& text) {
    // A slant to the left is one of nearly a whole turn here.
    const double oblique = text.oblique() + (text.oblique() < 0.0 ? 2.0 * halfTurn : 0.0);
    return {text.height(), text.widthFactor(), toDegrees(text.rotation()), toDegrees(oblique),
            text.textStyle()};
}

} // namespace

BEGIN_MESSAGE_MAP(CTextEditDlg, CDialog)
ON_BN_CLICKED(IDC_EDIT_ONE_BY_ONE, &CTextEditDlg::OnChange)
ON_BN_CLICKED(IDC_EDIT_ALL, &CTextEditDlg::OnChange)
ON_BN_CLICKED(IDC_EDIT_SPLIT, &CTextEditDlg::OnChange)
ON_BN_CLICKED(IDC_EDIT_SKIP, &CTextEditDlg::OnSkip)
ON_BN_CLICKED(IDHELP, &CTextEditDlg::OnHelp)
ON_EN_CHANGE(IDC_EDIT_TEXT, &CTextEditDlg::OnChange)
ON_CONTROL_RANGE(EN_CHANGE, IDC_TEXT_HEIGHT, IDC_TEXT_OBLIQUE, &CTextEditDlg::OnControl)
ON_CONTROL_RANGE(BN_CLICKED, IDC_EDIT_ALL_HEIGHTS, IDC_EDIT_ALL_STYLES, &CTextEditDlg::OnControl)
END_MESSAGE_MAP()

CTextEditDlg::CTextEditDlg(std::vector<AcDbObjectId> texts, CWnd* parent)
    : CDialog(IDD_TEXT_EDIT, parent), mTexts(std::move(texts)) {}

void CTextEditDlg::DoDataExchange(CDataExchange* exchange) {
    CDialog::DoDataExchange(exchange);
    mProperties.Exchange(exchange);
    DDX_Radio(exchange, IDC_EDIT_ONE_BY_ONE, mMode);
    DDX_Text(exchange, IDC_EDIT_TEXT, mString);
    DDX_Check(exchange, IDC_EDIT_SPLIT, mSplits);
    for (std::size_t i = 0; i < tickIds.size(); ++i) {
        DDX_Check(exchange, tickIds[i], mTicks[i]);
    }
}

BOOL CTextEditDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    SetIconAndAttachCaption(this);
    mProperties.SetUp();
    load(0);
    return FALSE; // the focus is in the string
}

void CTextEditDlg::highlight(std::size_t index, bool on) const {
    constexpr int highlighted = 3, plain = 4;
    ads_name name;
    if (acdbGetAdsName(name, mTexts[index]) == Acad::eOk) {
        acedRedraw(name, on ? highlighted : plain);
    }
}

void CTextEditDlg::load(std::size_t index) {
    if (index > 0) {
        highlight(index - 1, false);
    }
    mCurrent = index;
    if (const CArxObjTemplate<AcDbText> text(mTexts[index], false); text) {
        highlight(index, true);
        mProperties.Show(propertiesOf(*text)); // first: its changes are heard, and the string read back
        mString = text->textStringConst();
    }
    UpdateData(FALSE);
    CWnd* string = GetDlgItem(IDC_EDIT_TEXT);
    string->SetFocus();
    string->SendMessage(EM_SETSEL, 0, -1);
    refresh();
    acedUpdateDisplay();
}

bool CTextEditDlg::isApplied(int field) const {
    return mMode == 0 || mTicks[static_cast<std::size_t>(field)] != 0;
}

bool CTextEditDlg::canApply() const {
    if (mMode == 0 && mString.IsEmpty()) {
        return false;
    }
    for (int field = 0; field < CTextPropertyControls::fieldCount; ++field) {
        if (isApplied(field) && !mProperties.IsValid(static_cast<CTextPropertyControls::Field>(field))) {
            return false;
        }
    }
    return true;
}

void CTextEditDlg::refresh() {
    const bool oneByOne = mMode == 0;
    GetDlgItem(IDC_EDIT_TEXT)->EnableWindow(oneByOne);
    for (int field = 0; field < CTextPropertyControls::fieldCount; ++field) {
        mProperties.Enable(static_cast<CTextPropertyControls::Field>(field), isApplied(field));
        GetDlgItem(tickIds[static_cast<std::size_t>(field)])->EnableWindow(!oneByOne);
    }
    GetDlgItem(IDC_EDIT_ONE_BY_ONE)->EnableWindow(!mHasBegun);
    GetDlgItem(IDC_EDIT_ALL)->EnableWindow(!mHasBegun);
    GetDlgItem(IDOK)->EnableWindow(canApply());
}

void CTextEditDlg::OnChange() {
    UpdateData(TRUE);
    refresh();
}

void CTextEditDlg::OnControl(UINT) {
    OnChange();
}

void CTextEditDlg::apply(AcDbObjectId id) const {
    const CArxObjTemplate<AcDbText> text(id, true);
    if (!text) {
        return;
    }
    using Controls = CTextPropertyControls;
    const TextProperties properties = mProperties.Read();
    if (mMode == 0) {
        text->setTextString(mString);
    }
    if (isApplied(Controls::rotation)) {
        text->setRotation(toRadians(properties.rotation));
    }
    if (isApplied(Controls::oblique)) {
        text->setOblique(toRadians(properties.oblique));
    }
    if (isApplied(Controls::widthFactor)) {
        text->setWidthFactor(properties.widthFactor);
    }
    if (isApplied(Controls::height)) {
        text->setHeight(properties.height);
    }
    if (isApplied(Controls::style)) {
        text->setTextStyle(properties.style);
    }
    if (mSplits != 0) {
        split(*text);
    }
}

void CTextEditDlg::split(AcDbText& text) const {
    constexpr double sameHeight = 1.0;
    text.downgradeOpen();
    if (linktext::PlaceRuns(text, linktext::SplitIntoCharacters(text.textStringConst()), sameHeight) &&
        text.upgradeOpen() == Acad::eOk) {
        text.erase(Adesk::kTrue);
    }
}

void CTextEditDlg::next() {
    mHasBegun = true;
    load(mCurrent + 1);
}

void CTextEditDlg::OnOK() {
    UpdateData(TRUE);
    if (!canApply()) {
        return;
    }
    if (mMode != 0) {
        std::for_each(mTexts.begin(), mTexts.end(), [this](AcDbObjectId id) { apply(id); });
    } else {
        apply(mTexts[mCurrent]);
        if (!isLast()) {
            next();
            return;
        }
    }
    highlight(mCurrent, false);
    CDialog::OnOK();
}

void CTextEditDlg::OnSkip() {
    if (mMode == 0 && !isLast()) {
        next();
        return;
    }
    highlight(mCurrent, false);
    EndDialog(IDCANCEL);
}

void CTextEditDlg::OnCancel() {
    highlight(mCurrent, false);
    CDialog::OnCancel();
}

void CTextEditDlg::OnHelp() {
    MessageBox(L"逐个修改：依次修改选中的每个文字，可改内容；“跳过”不改当前文字。\n"
               L"批量修改：只把打勾的属性一次改到全部文字。\n"
               L"将文字拆为单个：每个字成为一个单独的文字。",
               L"标注文字编辑", MB_OK);
}
