// The river: command V7_DrawRiver, and its dialog.
#pragma once

#include "drawing/mlinejig.h"
#include "drawing/river.h"
#include "resources/resource.h"
#include "restools/resizedialog.h"
#include "restools/sldlistctrl.h"

/// Lets the user choose a style and an alignment, and draw the river's course.
void DrawRiver();

/// Asks for style and alignment, and then draws the course as a multiline between the banks.
class CDrawRiverDlg : public CResizeDialog, public CAcDbMlineJig {
public:
    explicit CDrawRiverDlg(CWnd* parent = nullptr);

    const ACHAR* LayerName() const override { return river::layerName; }
    Adesk::UInt16 LayerColor() const override { return river::layerColor; }
    const ACHAR* DisplayName() const override { return L"河流"; }

    /// After OK: asks for width and course, and leaves the river in the drawing.
    void DrawCourse();

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

private:
    CComboBox mAlignment;
    CSldListCtrl mStyles;
    int mStyle = 0;
};
