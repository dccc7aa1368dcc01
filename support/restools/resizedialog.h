// A dialog whose controls keep their distances to chosen sides when it is resized.
#pragma once

#include "host/arx.h"

#include <vector>

class QDV_EXPORT CResizeDialog : public CDialog {
public:
    /// The sides that a control's own sides follow. Left and right (top and bottom) together stretch it.
    enum Sides : unsigned { left = 1, top = 2, right = 4, bottom = 8 };

    explicit CResizeDialog(UINT id, CWnd* parent = nullptr) : CDialog(id, parent) {}

protected:
    DECLARE_MESSAGE_MAP()
    /// Once the controls stand where the template has put them: from now on the dialog is not made smaller.
    BOOL OnInitDialog() override;
    /// After OnInitDialog of this class. Controls that are not anchored stay with the left top corner.
    void Anchor(int control, unsigned sides);

    void OnSize(UINT kind, int width, int height);
    void OnGetMinMaxInfo(MINMAXINFO* limits);

private:
    struct Anchored {
        int control;
        unsigned sides;
        CRect place; ///< at the size of the beginning
    };
    std::vector<Anchored> mAnchored;
    CSize mClient;
    CSize mSmallest;
};
