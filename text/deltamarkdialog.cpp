// The dialog that asks for a series of numbered labels.
#include "text/deltamarkdialog.h"

#include "resources/resource.h"
#include "restools/drawing.h"
#include "restools/ownmodule.h"
#include "restools/profilesection.h"

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;

} // namespace

BEGIN_MESSAGE_MAP(CDeltaMarkDlg, CDialog)
END_MESSAGE_MAP()

CDeltaMarkDlg::CDeltaMarkDlg(CWnd* parent) : CDialog(IDD_DELTA_MARK, parent) {}

void CDeltaMarkDlg::DoDataExchange(CDataExchange* exchange) {
    CDialog::DoDataExchange(exchange);
    mProperties.Exchange(exchange);
    DDX_Control(exchange, IDC_DELTA_ALIGNMENT, mAlignments);
    DDX_Text(exchange, IDC_DELTA_PREFIX, m_series.prefix);
    DDX_Text(exchange, IDC_DELTA_POSTFIX, m_series.postfix);
    DDX_Text(exchange, IDC_DELTA_NUMBER, m_series.number);
    DDX_Text(exchange, IDC_DELTA_STEP, m_series.step);
    DDX_Radio(exchange, IDC_DELTA_UP, mDirection);
}

BOOL CDeltaMarkDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    mProperties.SetUp();
    for (int i = 0; i < deltamark::alignmentCount; ++i) {
        mAlignments.AddString(deltamark::AlignmentName(i));
    }
    readSettings();
    UpdateData(FALSE);
    if (m_series.prefix.IsEmpty()) {
        GetDlgItem(IDC_DELTA_PREFIX)->SetFocus();
    } else {
        CWnd* number = GetDlgItem(IDC_DELTA_NUMBER);
        number->SetFocus();
        number->SendMessage(EM_SETSEL, 0, -1);
    }
    return FALSE;
}

void CDeltaMarkDlg::readSettings() {
    const CProfileSection section(sectionName);
    mDirection = section.GetInt(L"Increace", 0) != 0 ? 1 : 0;
    m_series.step = section.GetInt(L"Delta", 1);
    m_series.number = section.GetInt(L"Variable", 1);
    m_series.prefix = section.GetText(L"Prefix", L"");
    m_series.postfix = section.GetText(L"Postfix", L"");
    if (mAlignments.SetCurSel(section.GetInt(L"Align", 0)) == CB_ERR) {
        mAlignments.SetCurSel(0);
    }
    mProperties.Show({section.GetReal(L"Height", L"3.5"),
                      section.GetReal(L"Width", L"0.75"),
                      section.GetReal(L"Angle", L"0"),
                      section.GetReal(L"Oblique", L"0"),
                      {}});
    selectStyle(section.GetText(L"Font", L""));
}

/// Only a stored name that is the first of the sorted list is kept; any other gives the current style.
void CDeltaMarkDlg::selectStyle(const CString& stored) {
    CComboBox& styles = mProperties.Styles();
    if (!stored.IsEmpty() && styles.SelectString(-1, stored) == 0) {
        return;
    }
    if (!mProperties.SelectStyle(WorkingDatabase()->textstyle())) {
        styles.SetCurSel(0);
    }
}

void CDeltaMarkDlg::OnOK() {
    if (!UpdateData(TRUE) || !mProperties.Validate()) {
        return;
    }
    m_series.countsDown = mDirection != 0;
    m_series.alignment = mAlignments.GetCurSel();
    const TextProperties properties = mProperties.Read();
    writeSettings(properties);
    makeLabel(properties);
    CDialog::OnOK();
}

void CDeltaMarkDlg::writeSettings(const TextProperties& properties) const {
    const CProfileSection section(sectionName);
    const auto setReal = [&](const ACHAR* value, double number) { section.SetReal(value, number, 2); };
    section.SetInt(L"Increace", mDirection);
    section.SetInt(L"Align", m_series.alignment);
    section.SetInt(L"Delta", m_series.step);
    section.SetText(L"Prefix", m_series.prefix);
    section.SetText(L"Postfix", m_series.postfix);
    // The width factor stands where the style's name should: so the current style is offered at the next
    // start.
    setReal(L"Font", properties.widthFactor);
    setReal(L"Height", properties.height);
    setReal(L"Width", properties.widthFactor);
    setReal(L"Angle", properties.rotation);
    setReal(L"Oblique", properties.oblique);
}

void CDeltaMarkDlg::makeLabel(const TextProperties& properties) {
    m_label.New();
    m_label->setDatabaseDefaults(WorkingDatabase());
    m_label->setTextStyle(properties.style);
    if (m_series.alignment != deltamark::alignedBetween) {
        m_label->setHeight(properties.height);
        m_label->setWidthFactor(properties.widthFactor);
    }
    const deltamark::TextModes modes = deltamark::ModesOf(m_series.alignment);
    m_label->setHorizontalMode(modes.horizontal);
    if (!deltamark::IsBetweenPoints(m_series.alignment)) {
        m_label->setRotation(properties.rotation * radiansPerDegree);
        m_label->setVerticalMode(modes.vertical);
    }
    m_label->setOblique(properties.oblique * radiansPerDegree);
}
