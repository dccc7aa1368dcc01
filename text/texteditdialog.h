// The dialog that edits texts: one after another, the current one highlighted, or the ticked properties of
// all.
#pragma once

#include "text/textproperties.h"

#include <array>
#include <vector>

class CTextEditDlg : public CDialog {
public:
    /// The texts, one at least.
    CTextEditDlg(std::vector<AcDbObjectId> texts, CWnd* parent);

protected:
    DECLARE_MESSAGE_MAP()
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    void OnSkip();
    void OnHelp();
    void OnChange();
    void OnControl(UINT control);

private:
    bool isLast() const { return mCurrent + 1 == mTexts.size(); }
    void load(std::size_t index);
    void next();
    void apply(AcDbObjectId id) const;
    void split(AcDbText& text) const;
    void refresh();
    bool canApply() const;
    bool isApplied(int field) const;
    void highlight(std::size_t index, bool on) const;

    std::vector<AcDbObjectId> mTexts;
    std::size_t mCurrent = 0;
    bool mHasBegun = false; ///< a text was applied or skipped
    int mMode = 0;          ///< 0: one by one; 1: all at once
    std::array<int, CTextPropertyControls::fieldCount> mTicks{1, 1, 1, 1, 1};
    int mSplits = 0;
    CString mString;
    CTextPropertyControls mProperties;
};
