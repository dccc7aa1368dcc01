// The dialog that asks for a series of numbered labels.
#pragma once

#include "restools/arxobject.h"
#include "text/deltamark.h"
#include "text/textproperties.h"

class CDeltaMarkDlg : public CDialog {
public:
    static constexpr const ACHAR* sectionName = L"DeltaMark\\";

    explicit CDeltaMarkDlg(CWnd* parent);

    /// Valid after OK: the series, and a text in no drawing that looks as its labels do.
    deltamark::Series m_series;
    CArxObjTemplate<AcDbText> m_label;

protected:
    DECLARE_MESSAGE_MAP()
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

private:
    void readSettings();
    void writeSettings(const TextProperties& properties) const;
    void selectStyle(const CString& stored);
    void makeLabel(const TextProperties& properties);

    CTextPropertyControls mProperties;
    CComboBox mAlignments;
    int mDirection = 0; ///< 0 counts up
};
