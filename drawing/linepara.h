// The panel beside the drawing while a polyline with widths is drawn.
#pragma once

#include "resources/resource.h"

#include "host/arx.h"

#include <memory>

/// Widths and snap increments for the next segment.
class CLinePara : public CDialog {
public:
    enum { IDD = IDD_LINE_PARA };

    /// Shows the settings' widths.
    void ShowWidths();
    /// Shows whether snap is used; its increments can be changed only then.
    void RefreshEnabling();

protected:
    DECLARE_MESSAGE_MAP()
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    /// The keys of a dialog would close the panel: Enter applies, Escape goes back to the drawing.
    void OnOK() override { OnApply(); }
    void OnCancel() override;

    void OnValueChange();
    void OnApply();
    void OnUseSnap();
    LRESULT OnKeepFocus(WPARAM, LPARAM) { return TRUE; }

private:
    double mEndWidth = 0.0;
    double mStartWidth = 0.0;
    double mXIncrement = 10.0;
    double mYIncrement = 10.0;
    int mUseSnap = 0;
};

/// Keeps the panel open, and the key that toggles snap listened to, for its own lifetime.
class CLineParaHolder {
public:
    CLineParaHolder();
    ~CLineParaHolder();
    CLineParaHolder(const CLineParaHolder&) = delete;
    CLineParaHolder& operator=(const CLineParaHolder&) = delete;

private:
    std::unique_ptr<CLinePara> mPanel;
};

/// Shows the settings' widths in the panel, when it is open.
void RefreshLinePara();
